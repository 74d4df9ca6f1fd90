// The browsers' lists and cell pictures on Freedoom 2, and a PWAD's bad and PNG pictures.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"
#include "app/BrowserPictures.h"

#include "game/GameState.h"
#include "gfx/GamePalette.h"
#include "gfx/PngFile.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "tests/app/BrowserFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace kelvar::app
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

std::vector<std::string> NamesOf(const std::vector<BrowserItem>& list)
{
    std::vector<std::string> names;
    for (const BrowserItem& item : list)
    {
        names.push_back(item.Name);
    }
    return names;
}

bool IsUpper(const std::string& name)
{
    return std::none_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

class BrowserListsTest : public FreedoomBrowserFixture
{
protected:
    // A browser on `variant` as OpenBrowser starts it, with the grid of a large window.
    BrowserState Open(int variant, bool externalOnly = false)
    {
        EnsureBrowserCatalogues();
        BrowserState state;
        state.GridWidth = 1200;
        state.GridHeight = 800;
        StartBrowser(state, variant, BuildBrowserList(variant, externalOnly), {});
        return state;
    }

    static int IndexOf(const BrowserState& state, const std::string& name)
    {
        const std::vector<std::string> names = NamesOf(state.List);
        const auto found = std::find(names.begin(), names.end(), name);
        return found == names.end() ? -1 : static_cast<int>(found - names.begin());
    }
};

TEST_F(BrowserListsTest, TexturesAndFlatsComeFromTheCataloguesInTheirOrder)
{
    const BrowserState textures = Open(BrowseTextures);
    const gfx::NameCatalogue& catalogue = gfx::Catalogue().Textures;
    ASSERT_EQ(textures.List.size(), catalogue.Size());
    EXPECT_GT(textures.List.size(), 300u);
    EXPECT_EQ(textures.List.front().Name, "-");
    EXPECT_TRUE(std::is_sorted(textures.List.begin() + 1, textures.List.end(),
                               [](const BrowserItem& a, const BrowserItem& b)
                               { return a.Name < b.Name; }));

    const BrowserState flats = Open(BrowseFlats);
    EXPECT_EQ(flats.List.size(), gfx::Catalogue().Flats.Size());
    EXPECT_GT(IndexOf(flats, "FLOOR4_8"), 0);
    EXPECT_TRUE(std::all_of(flats.List.begin(), flats.List.end(),
                            [](const BrowserItem& item) { return IsUpper(item.Name); }));

    // The IWAD alone: no texture from a PWAD, and of its flats only the sky.
    EXPECT_TRUE(Open(BrowseTextures, true).List.empty());
    for (const BrowserItem& item : Open(BrowseFlats, true).List)
    {
        EXPECT_EQ(item.Name.substr(0, 5), "F_SKY");
    }
    EXPECT_TRUE(Open(BrowseLevels, true).List.empty());
}

TEST_F(BrowserListsTest, LevelsPnamesPatchesSpritesAndThingsHaveTheirLists)
{
    const BrowserState levels = Open(BrowseLevels);
    ASSERT_EQ(levels.List.size(), 32u);
    EXPECT_EQ(levels.List.front().Name, "MAP01");

    const BrowserState pnames = Open(BrowsePnames);
    const std::vector<gfx::PatchRecord>& patches = gfx::Catalogue().Patches;
    ASSERT_EQ(pnames.List.size(), patches.size());
    for (std::size_t i = 0; i < patches.size(); i += 37)
    {
        EXPECT_EQ(pnames.List[i].Name, patches[i].Name.Text());
        EXPECT_EQ(pnames.List[i].Number, static_cast<int>(i));
    }

    const BrowserState patchLumps = Open(BrowsePatches);
    const std::vector<std::string> patchNames = NamesOf(patchLumps.List);
    EXPECT_GT(patchNames.size(), 100u);
    EXPECT_TRUE(std::is_sorted(patchNames.begin(), patchNames.end()));
    EXPECT_EQ(std::set<std::string>(patchNames.begin(), patchNames.end()).size(),
              patchNames.size());

    // Sprites keep the directory's order, which the jump rule relies on.
    const BrowserState sprites = Open(BrowseSprites);
    EXPECT_GT(sprites.List.size(), 1000u);
    EXPECT_TRUE(std::is_sorted(sprites.List.begin(), sprites.List.end(),
                               [](const BrowserItem& a, const BrowserItem& b)
                               { return a.DirectoryIndex < b.DirectoryIndex; }));
    for (const BrowserItem& item : sprites.List)
    {
        ASSERT_GT(wad::Master()[static_cast<std::size_t>(item.DirectoryIndex)].Size, 12);
    }

    const BrowserState things = Open(BrowseThings);
    const auto trooper = std::find_if(things.List.begin(), things.List.end(),
                                      [](const BrowserItem& item) { return item.Number == 3004; });
    ASSERT_NE(trooper, things.List.end());
    EXPECT_FALSE(trooper->Sprite.empty());
    for (const BrowserItem& item : things.List)
    {
        EXPECT_GT(item.Number, 0);
        EXPECT_LT(item.Number, static_cast<int>(game::FirstHeading)) << item.Name;
    }
}

TEST_F(BrowserListsTest, OpeningABrowserBuildsTheCataloguesAndLoadsThePalette)
{
    gfx::ResetPalettes();
    Ui.AnswerBrowse("FLOOR4_8");
    EXPECT_EQ(OpenBrowser(BrowseFlats, "floor4_8"), "FLOOR4_8");
    EXPECT_TRUE(gfx::Palettes().Loaded);
    ASSERT_EQ(Ui.BrowseRequests.size(), 1u);
    const platform::BrowseRequest& request = Ui.BrowseRequests.front();
    EXPECT_EQ(request.Names.size(), gfx::Catalogue().Flats.Size());
    EXPECT_EQ(request.Names[static_cast<std::size_t>(request.Current)], "FLOOR4_8");
}

TEST_F(BrowserListsTest, EachVariantReadsItsPictures)
{
    BrowserState textures = Open(BrowseTextures);
    BrowserPicture dash = ReadBrowserPicture(textures, 0);
    EXPECT_FALSE(dash.Raster.has_value());
    EXPECT_FALSE(dash.Bad);
    const int index = IndexOf(textures, textures.List[10].Name);
    const BrowserPicture texture = ReadBrowserPicture(textures, index);
    const std::optional<gfx::TextureRecord> record = gfx::LookupTexture(textures.List[10].Name);
    ASSERT_TRUE(texture.Raster && record);
    EXPECT_EQ(texture.Raster->Width(), record->Width);
    EXPECT_EQ(texture.Facts.PatchCount, record->PatchCount);
    EXPECT_TRUE(texture.Holes);

    BrowserState flats = Open(BrowseFlats);
    const BrowserPicture flat = ReadBrowserPicture(flats, IndexOf(flats, "FLOOR4_8"));
    ASSERT_TRUE(flat.Raster);
    EXPECT_EQ(flat.Facts.Width, 64);
    EXPECT_FALSE(flat.Holes);

    BrowserState sprites = Open(BrowseSprites);
    const BrowserPicture sprite = ReadBrowserPicture(sprites, 0);
    ASSERT_TRUE(sprite.Raster);
    EXPECT_TRUE(sprite.Facts.Drawn);
    EXPECT_NE(sprite.Facts.Top, 0);

    BrowserState things = Open(BrowseThings);
    int drawn = 0;
    for (int i = 0; i < static_cast<int>(things.List.size()); ++i)
    {
        drawn += ReadBrowserPicture(things, i).Facts.Drawn ? 1 : 0;
    }
    EXPECT_GT(drawn, static_cast<int>(things.List.size()) * 3 / 4) << "most Things have sprites";

    BrowserState pnames = Open(BrowsePnames);
    EXPECT_TRUE(ReadBrowserPicture(pnames, 0).Raster.has_value());

    BrowserState levels = Open(BrowseLevels);
    const BrowserPicture level = ReadBrowserPicture(levels, 0);
    ASSERT_TRUE(level.Raster);
    EXPECT_EQ(level.Raster->Width(), levels.CellWidth);
    const std::vector<std::uint8_t>& pixels = level.Raster->Bytes();
    const std::uint8_t background = level.Raster->At(0, 0);
    EXPECT_GT(std::count_if(pixels.begin(), pixels.end(),
                            [&](std::uint8_t p) { return p != background; }),
              200)
        << "the level's lines are drawn";
}

TEST_F(BrowserListsTest, APwadPatchThatIsNoPictureIsBadAndAPngPatchIsDrawn)
{
    gfx::ImageRaster square(8, 6, 112);
    const std::optional<std::vector<std::uint8_t>> png =
        gfx::EncodePng(square, gfx::Palettes().GamePalette);
    ASSERT_TRUE(png);
    const std::string pwad = testkit::WadBuilder()
                                 .Marker("PP_START")
                                 .Lump("JUNK", std::string(40, '\xff'))
                                 .Lump("PNGPATCH", std::string(png->begin(), png->end()))
                                 .Marker("PP_END")
                                 .Write(Dir.Path() / "pictures.wad");
    ASSERT_EQ(OpenPwad(pwad), 1);

    BrowserState patches = Open(BrowsePatches, true);
    ASSERT_EQ(NamesOf(patches.List), (std::vector<std::string>{"JUNK", "PNGPATCH"}));
    const BrowserPicture junk = ReadBrowserPicture(patches, 0);
    EXPECT_TRUE(junk.Bad);
    EXPECT_FALSE(junk.Facts.Drawn);
    EXPECT_EQ(BrowserLabel(patches, 0, junk.Facts), "JUNK        ");
    const BrowserPicture picture = ReadBrowserPicture(patches, 1);
    EXPECT_FALSE(picture.Bad);
    ASSERT_TRUE(picture.Raster);
    EXPECT_EQ(picture.Raster->Width(), 8);
    EXPECT_EQ(picture.Raster->At(3, 3), 112);
    EXPECT_TRUE(Ui.Messages.empty()) << "a browser shows no message for a bad picture";
}

} // namespace
} // namespace kelvar::app
