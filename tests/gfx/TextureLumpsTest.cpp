// Tests of PNAMES and TEXTUREx reading: every Freedoom texture against omgifol, a PWAD's
// TEXTURE1 replacing the IWAD's, TX pictures, both record layouts, damaged lumps, the audit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureLumps.h"

#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/MarkerRanges.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace kelvar::gfx
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// A texture record for a TEXTUREx lump, Doom layout unless `strife`.
struct TextureSpec
{
    std::string Name;
    int Width = 64;
    int Height = 128;
    int Patches = 1;
    int XScale = 0;
};

std::vector<std::uint8_t> TextureLumpBytes(const std::vector<TextureSpec>& textures,
                                           bool strife = false, int hole = 0)
{
    const std::size_t head = strife ? 18 : 22;
    const std::size_t entry = strife ? 6 : 10;
    std::vector<std::uint8_t> bytes(4 + 4 * textures.size());
    wad::WriteLe32(bytes.data(), static_cast<std::int32_t>(textures.size()));
    for (std::size_t i = 0; i < textures.size(); ++i)
    {
        const TextureSpec& spec = textures[i];
        wad::WriteLe32(bytes.data() + 4 + 4 * i, static_cast<std::int32_t>(bytes.size()));
        std::vector<std::uint8_t> record(head + entry * static_cast<std::size_t>(spec.Patches));
        std::copy(spec.Name.begin(), spec.Name.end(), record.begin());
        record[10] = static_cast<std::uint8_t>(spec.XScale);
        wad::WriteLe16(record.data() + 12, static_cast<std::uint16_t>(spec.Width));
        wad::WriteLe16(record.data() + 14, static_cast<std::uint16_t>(spec.Height));
        wad::WriteLe16(record.data() + (strife ? 16 : 20),
                       static_cast<std::uint16_t>(spec.Patches));
        for (int p = 0; p < spec.Patches; ++p)
        {
            std::uint8_t* patch = record.data() + head + entry * static_cast<std::size_t>(p);
            wad::WriteLe16(patch, static_cast<std::uint16_t>(8 * p));
            wad::WriteLe16(patch + 4, static_cast<std::uint16_t>(p));
        }
        bytes.insert(bytes.end(), record.begin(), record.end());
        bytes.insert(bytes.end(), static_cast<std::size_t>(i == 0 ? hole : 0), 0);
    }
    return bytes;
}

std::string Text(const std::vector<std::uint8_t>& bytes)
{
    return {bytes.begin(), bytes.end()};
}

class TextureLumpsTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        TextureLumps() = {};
    }
    void TearDown() override
    {
        TextureLumps() = {};
        WadFixture::TearDown();
    }

    std::vector<std::string> ShownTexts() const
    {
        std::vector<std::string> texts;
        for (const platform::Message& message : Ui.Messages)
        {
            texts.push_back(message.Lines.empty() ? "" : message.Lines.front());
        }
        return texts;
    }
};

TEST_F(TextureLumpsTest, EveryFreedoomTextureHasTheSizeAndPatchCountOmgifolReads)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    const testkit::CommandOutput oracle = testkit::RunCommand(
        "/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/gfx/omg_textures.py " + Freedoom2);
    ASSERT_EQ(oracle.Status, 0) << oracle.Text;
    int checked = 0;
    for (const std::string& line : oracle.Lines())
    {
        std::istringstream words(line);
        std::string name;
        int width = 0, height = 0, patches = 0;
        words >> name >> width >> height >> patches;
        const std::optional<TextureRecord> found = LookupTexture(name);
        ASSERT_TRUE(found) << name;
        EXPECT_EQ(found->Name.Text(), name);
        EXPECT_EQ(found->Width, width) << name;
        EXPECT_EQ(found->Height, height) << name;
        EXPECT_EQ(found->PatchCount, patches) << name;
        EXPECT_EQ(found->File, 0);
        ++checked;
    }
    EXPECT_GT(checked, 400);
    EXPECT_FALSE(LookupTexture("-"));
    EXPECT_FALSE(LookupTexture("NOSUCHTX"));
    EXPECT_TRUE(LookupTexture("startan3")) << "names are compared without regard to case";
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TextureLumpsTest, APwadTexture1ReplacesTheIwadsAndATxPictureIsNoTextureEntry)
{
    ASSERT_EQ(OpenIwad(Freedoom2), 1);
    ASSERT_TRUE(LookupTexture("STARTAN3"));
    const std::string pwad =
        testkit::WadBuilder()
            .Lump("TEXTURE1", Text(TextureLumpBytes({{"NEWWALL", 96, 72, 2}, {"TXPIC"}})))
            .Marker("TX_START")
            .Lump("TXPIC", std::string(64, 'x'))
            .Marker("TX_END")
            .Write(Dir.Path() / "new.wad");
    ASSERT_EQ(OpenPwad(pwad), 1);
    wad::BuildMarkerLists();

    const std::optional<TextureRecord> wall = LookupTexture("NEWWALL");
    ASSERT_TRUE(wall);
    EXPECT_EQ(wall->Width, 96);
    EXPECT_EQ(wall->Height, 72);
    EXPECT_EQ(wall->File, 1);
    EXPECT_EQ(TextureLumps().Texture1->Patches(0).size(), 2u);
    EXPECT_EQ(TextureLumps().Texture1->Patches(0)[1].X, 8);
    EXPECT_FALSE(LookupTexture("STARTAN3"))
        << "once the PWAD is open, the IWAD's TEXTURE1 is not read at all";
    EXPECT_FALSE(LookupTexture("TXPIC")) << "a TX picture is drawn as a picture";

    // Closing another file keeps the lump; closing its own drops it, to be read again.
    FreeTexture1(0);
    EXPECT_TRUE(TextureLumps().Texture1);
    FreeTexture1(1);
    EXPECT_FALSE(TextureLumps().Texture1);
}

TEST_F(TextureLumpsTest, BothRecordLayoutsAndTheScaleReadAsTheyShould)
{
    const TextureLump doom(TextureLumpBytes({{"A", 128, 64, 3, 16}, {"B", 32, 16, 1}}), 1, 0,
                           TextureLayout{});
    ASSERT_EQ(doom.Count(), 2);
    EXPECT_EQ(doom.Record(0)->PatchCount, 3);
    EXPECT_EQ(doom.Record(0)->XScale, 16);
    EXPECT_EQ(doom.Record(0)->ScaledWidth(), 64) << "scale 16 eighths halves the width";
    EXPECT_EQ(doom.Record(0)->Width, 128) << "the stored width stays";
    EXPECT_EQ(doom.Record(1)->XScale, 8) << "a scale byte of 0 means 8";
    EXPECT_EQ(doom.Record(1)->ScaledWidth(), 32);

    const TextureLump strife(TextureLumpBytes({{"S1", 64, 64, 2}, {"S2", 16, 8, 4}}, true), 1, 0,
                             TextureLayout{18, 6, 8});
    ASSERT_EQ(strife.Count(), 2);
    EXPECT_EQ(strife.Record(1)->Name.Text(), "S2");
    EXPECT_EQ(strife.Record(1)->PatchCount, 4);
    EXPECT_EQ(strife.Patches(1).size(), 4u);
    EXPECT_EQ(strife.Patches(1)[3].Index, 3);
    EXPECT_EQ(strife.Patches(1)[3].X, 24);
}

TEST_F(TextureLumpsTest, DamagedLumpsAreReportedAndReadNoFurtherThanTheyReach)
{
    std::vector<std::uint8_t> eight(8, 0);
    EXPECT_TRUE(ReadPatchNames(eight).Names.empty());
    std::vector<std::uint8_t> negative(20, 0);
    wad::WriteLe32(negative.data(), -1);
    EXPECT_TRUE(ReadPatchNames(negative).Damaged);
    std::vector<std::uint8_t> tooMany(20, 'A');
    wad::WriteLe32(tooMany.data(), 3);
    EXPECT_TRUE(ReadPatchNames(tooMany).Damaged);
    std::vector<std::uint8_t> cutShort(4 + 8 * 2 + 4, 'B');
    wad::WriteLe32(cutShort.data(), 3); // 3 * 8 fits in 24 bytes, but the third name runs past
    const PatchNames partial = ReadPatchNames(cutShort);
    EXPECT_EQ(partial.Names.size(), 2u);
    EXPECT_EQ(ShownTexts(),
              (std::vector<std::string>{
                  "PNAMES entry size is=8 ?", "PNAMES count -1 is <= 0 ?\nall files reset",
                  "PNAMES count is corrupt:?\nLumpsize=20 count=3\nall files reset",
                  "PnameCount=3, filesize=24 Corrupted data\nAll files Closed"}));
    Ui.Messages.clear();

    EXPECT_EQ(TextureLump(std::vector<std::uint8_t>(12, 0), 2, 0, {}).Count(), 0);
    std::vector<std::uint8_t> noTextures(16, 0);
    wad::WriteLe32(noTextures.data(), 0);
    EXPECT_EQ(TextureLump(noTextures, 1, 0, {}).Count(), 0);
    EXPECT_EQ(ShownTexts(),
              (std::vector<std::string>{"TEXTURE2 size is=12 ?", "TEXTURE1 count 0 is <= 0 ?"}));

    // Offsets past the end, and a patch list longer than the lump: nothing read out of bounds.
    std::vector<std::uint8_t> bytes = TextureLumpBytes({{"OK", 64, 64, 1}, {"LATE"}});
    wad::WriteLe32(bytes.data() + 8, static_cast<std::int32_t>(bytes.size()) - 10);
    wad::WriteLe32(bytes.data(), 1000);
    const TextureLump damaged(bytes, 1, 0, {});
    EXPECT_LT(damaged.Count(), 1000);
    EXPECT_TRUE(damaged.Record(0));
    EXPECT_FALSE(damaged.Record(1));
    EXPECT_FALSE(damaged.Find(wad::LumpName::From("LATE")));
    std::vector<std::uint8_t> longList = TextureLumpBytes({{"LONG", 64, 64, 2}});
    wad::WriteLe16(longList.data() + 8 + 20, 500);
    EXPECT_EQ(TextureLump(longList, 1, 0, {}).Patches(0).size(), 2u);
}

TEST_F(TextureLumpsTest, TheAuditAsksAboutARecordOfTheWrongSizeAndTellsOfSpareRoom)
{
    const std::vector<std::uint8_t> sound = TextureLumpBytes({{"ONE"}, {"TWO", 64, 64, 3}});
    EXPECT_TRUE(CheckTextureLump(sound, {}));
    EXPECT_TRUE(Ui.Messages.empty());

    const std::vector<std::uint8_t> holed = TextureLumpBytes({{"ONE"}, {"TWO"}}, false, 6);
    Ui.Answer(0);
    EXPECT_FALSE(CheckTextureLump(holed, {}));
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines[0].substr(0, 68),
              "TEXTUREx size discrepancy\n\nEntry=0 Texture      ONE actual size=38, ");
    Ui.Messages.clear();
    Ui.Answer(1);
    EXPECT_TRUE(CheckTextureLump(holed, {}));
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[1].Lines[0],
              "TEXTURE size is 82 but should be 76\nMost likely TEXTUREx has empty space not used");

    EXPECT_FALSE(CheckTextureLump(std::vector<std::uint8_t>(27, 0), {}));
    // A Strife lump read as Doom's is caught by the sizes.
    Ui.Answer(0);
    EXPECT_FALSE(CheckTextureLump(TextureLumpBytes({{"S1"}, {"S2"}}, true), {}));
}

} // namespace
} // namespace kelvar::gfx
