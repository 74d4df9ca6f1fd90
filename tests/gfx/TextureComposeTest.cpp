// Tests of texture composition: every Freedoom 2 texture composes at the size TEXTURE1 gives,
// and a tenth of them pixel for pixel as omgifol's texture definitions and patches make them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureCompose.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"

#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/MarkerRanges.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelvar::gfx
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

std::string Hex(const ImageRaster& raster)
{
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (int y = 0; y < raster.Height(); ++y)
    {
        for (int x = 0; x < raster.Width(); ++x)
        {
            text += digits[raster.At(x, y) >> 4];
            text += digits[raster.At(x, y) & 15];
        }
    }
    return text;
}

class TextureComposeTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        Catalogue() = {};
        TextureLumps() = {};
        ASSERT_EQ(OpenIwad(Freedoom2), 1);
        wad::BuildMarkerLists();
        BuildTextureCatalogue({});
    }
    void TearDown() override
    {
        Catalogue() = {};
        TextureLumps() = {};
        WadFixture::TearDown();
    }
};

TEST_F(TextureComposeTest, EveryTextureComposesAtItsSizeAndASampleMatchesOmgifolPixelForPixel)
{
    int composed = 0;
    for (const int row : Catalogue().Textures.List())
    {
        const std::string name =
            Catalogue().Textures.Rows()[static_cast<std::size_t>(row)].Name.Text();
        if (name == "-")
        {
            continue;
        }
        const std::optional<ImageRaster> picture = ComposeTexture(name);
        const std::optional<TextureRecord> record = LookupTexture(name);
        ASSERT_TRUE(picture && record) << name;
        EXPECT_EQ(picture->Width(), record->Width) << name;
        EXPECT_EQ(picture->Height(), record->Height) << name;
        ++composed;
    }
    EXPECT_GT(composed, 400);

    const testkit::CommandOutput oracle = testkit::RunCommand(
        "/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/gfx/omg_compose.py " + Freedoom2 + " 10");
    ASSERT_EQ(oracle.Status, 0) << oracle.Text.substr(0, 2000);
    int compared = 0;
    for (const std::string& line : oracle.Lines())
    {
        std::istringstream words(line);
        std::string name, pixels;
        int width = 0, height = 0;
        words >> name >> width >> height >> pixels;
        const std::optional<ImageRaster> picture = ComposeTexture(name);
        ASSERT_TRUE(picture) << name;
        EXPECT_EQ(picture->Width(), width) << name;
        EXPECT_TRUE(Hex(*picture) == pixels) << name << " differs from omgifol's composition";
        ++compared;
    }
    EXPECT_GT(compared, 40);
}

TEST_F(TextureComposeTest, NoTextureForTheDashOrAnUnknownName)
{
    EXPECT_FALSE(ComposeTexture("-"));
    EXPECT_FALSE(ComposeTexture("NOSUCHTX"));
    // A patch read once stays in the table when it is small enough, and only then.
    const auto cached = []
    {
        return std::count_if(Catalogue().Patches.begin(), Catalogue().Patches.end(),
                             [](const PatchRecord& patch) { return !patch.Data.empty(); });
    };
    ASSERT_TRUE(ComposeTexture("STARTAN3", {.CacheLimit = 0}));
    EXPECT_EQ(cached(), 0);
    ASSERT_TRUE(ComposeTexture("STARTAN3"));
    EXPECT_GE(cached(), 1);
}

} // namespace
} // namespace kelvar::gfx
