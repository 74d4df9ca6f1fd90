// Tests of the texture and flat reports: the names levels use, the names a PWAD defines, and the
// unused check with its deletion, whose result omgifol reads and whose textures still compose.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/UsageReport.h"

#include "gfx/Patch.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureCompose.h"
#include "gfx/TextureLumps.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

namespace kelvar::lumps
{
namespace
{

using testkit::LevelBuilder;
using testkit::LevelLayout;
using testkit::LumpFiller;
using testkit::WadBuilder;
using Lines = std::vector<std::string>;

// Little-endian 16-bit words and 8-byte names, as the texture lumps hold them.
std::string Words(std::initializer_list<int> words)
{
    std::string out;
    for (const int word : words)
    {
        out += {static_cast<char>(word & 0xFF), static_cast<char>((word >> 8) & 0xFF)};
    }
    return out;
}

std::string Name8(const std::string& name)
{
    return name + std::string(8 - name.size(), '\0');
}

// A TEXTUREx lump in the Doom layout: each texture 16 x 8, its patches (by PNAMES index) 8
// pixels apart.
std::string TextureLump(const std::vector<std::pair<std::string, std::vector<int>>>& textures)
{
    std::string head = Words({static_cast<int>(textures.size()), 0});
    std::string records;
    for (const auto& [name, patches] : textures)
    {
        head += Words(
            {4 + 4 * static_cast<int>(textures.size()) + static_cast<int>(records.size()), 0});
        records += Name8(name) + Words({0, 0, 16, 8, 0, 0, static_cast<int>(patches.size())});
        for (std::size_t i = 0; i < patches.size(); ++i)
        {
            records += Words({8 * static_cast<int>(i), 0, patches[i], 1, 0});
        }
    }
    return head + records;
}

std::string PnamesLump(const std::vector<std::string>& names)
{
    std::string out = Words({static_cast<int>(names.size()), 0});
    for (const std::string& name : names)
    {
        out += Name8(name);
    }
    return out;
}

// An 8 x 8 patch whose pixels depend on `colour` and their place.
std::string PatchLump(int colour)
{
    gfx::ImageRaster raster(8, 8);
    for (int y = 0; y < 8; ++y)
    {
        for (int x = 0; x < 8; ++x)
        {
            raster.Set(x, y, static_cast<std::uint8_t>(colour + (x * 3 + y) % 7));
        }
    }
    const std::vector<std::uint8_t> bytes = gfx::EncodePatch(raster, gfx::DefaultTransparentIndex);
    return std::string(bytes.begin(), bytes.end());
}

// A level without nodes whose first wall and floor bear the names given.
WadBuilder& NodelessLevel(WadBuilder& wad, std::string_view name, LevelBuilder level)
{
    return wad.Marker(name)
        .Lump("THINGS", level.ThingsLump(LevelLayout::Doom))
        .Lump("LINEDEFS", level.LineDefsLump(LevelLayout::Doom))
        .Lump("SIDEDEFS", level.SideDefsLump())
        .Lump("VERTEXES", level.VertexesLump())
        .Lump("SECTORS", level.SectorsLump());
}

LevelBuilder Room(const std::string& wall, const std::string& flat)
{
    LevelBuilder level;
    level.Room(0, 0, 64, 64);
    level.Level().SideDefs[0].NormalTexture = map::TextureName::From(wall);
    level.Level().Sectors[0].FloorTexture = map::TextureName::From(flat);
    return level;
}

Lines Matching(const Lines& lines, const std::function<bool(const std::string&)>& keep)
{
    Lines kept;
    std::copy_if(lines.begin(), lines.end(), std::back_inserter(kept), keep);
    return kept;
}

const Lines Banner = {"**   Use the External Viewer to save this to a text file   **",
                      "**   ! Animation or Switch sequence check is up to YOU !   **", ""};
const Lines Closing = {"", "** Above may be used in Animation or Switch sequences **",
                       "**               Be sure to VERIFY usage              **"};

Lines Report(const Lines& body)
{
    Lines lines = Banner;
    lines.insert(lines.end(), body.begin(), body.end());
    lines.insert(lines.end(), Closing.begin(), Closing.end());
    return lines;
}

class UsageReportTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        Reopen({});
    }
    void TearDown() override
    {
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
        WadFixture::TearDown();
    }

    // A fresh session over a Freedoom IWAD and the PWAD given.
    void Reopen(const std::string& pwad, const std::string& iwad = "freedoom2.wad")
    {
        wad::ResetWad();
        wad::Wad().ProgramDir = Dir.Path();
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad(iwad)), 1);
        if (!pwad.empty())
        {
            ASSERT_GE(OpenPwad(pwad), 0);
        }
    }

    // Its own PNAMES, TEXTURE1, TEXTURE2, patches and flats, and three levels (with nodes'
    // places, without them, in Hexen layout). PNAMES: 0 PA, 1 PB, 2 PC, 3 PD, 4 PNOLUMP (no
    // picture anywhere), 5 PSPARE (no texture uses it), 6 and 7 Freedoom 2's RW22_1 and BODIES.
    // A sprite named PSPARE stands in the sprite run.
    std::string ResourcePwad()
    {
        WadBuilder wad;
        LevelBuilder map01 = Room("TUSED1", "FUSED");
        map01.Level().SideDefs[1].UpperTexture = map::TextureName::From("tused2");
        map01.Thing(32, 32, 1).WriteTo(wad, "MAP01");
        LevelBuilder map02 = Room("TIWAD", "FUSED");
        map02.Level().SideDefs[1].LowerTexture = map::TextureName::From("T2USED");
        map02.Level().Sectors[0].CeilingTexture = map::TextureName::From("F_SKY1");
        NodelessLevel(wad, "MAP02", map02);
        LevelBuilder().Room(0, 0, 64, 64).WriteTo(wad, "MAP03", LevelLayout::Hexen);
        wad.Lump("PNAMES",
                 PnamesLump({"PA", "PB", "PC", "PD", "PNOLUMP", "PSPARE", "RW22_1", "BODIES"}));
        wad.Lump("TEXTURE1", TextureLump({{"AASTINKY", {0}},
                                          {"TUSED1", {0, 1}},
                                          {"TUSED2", {2}},
                                          {"TEXTRA1", {3}},
                                          {"TEXTRA2", {1}},
                                          {"SKY1", {2}},
                                          {"TIWAD", {6, 1}},
                                          {"TEXTRA3", {7}}}));
        wad.Lump("TEXTURE2", TextureLump({{"T2USED", {1, 2}}, {"T2EXTRA", {4}}}));
        wad.Marker("PP_START").Lump("PA", PatchLump(16)).Lump("PB", PatchLump(48));
        wad.Lump("PC", PatchLump(80)).Lump("PD", PatchLump(112)).Lump("PSPARE", PatchLump(144));
        wad.Marker("PP_END").Marker("S_START").Lump("PSPARE", PatchLump(176)).Marker("S_END");
        wad.Marker("F_START").Lump("FUSED", LumpFiller("FUSED", 4096));
        wad.Lump("FEXTRA", LumpFiller("FEXTRA", 4096)).Marker("F_END");
        return wad.Write(Dir.Path() / "resource.wad");
    }

    std::string LevelsOnlyPwad()
    {
        WadBuilder wad;
        return NodelessLevel(wad, "MAP05", Room("TEXTRA1", "FEXTRA")).Write(Dir.File("maps.wad"));
    }

    // The report shown last, after checking its caption.
    Lines Shown(const std::string& caption) const
    {
        EXPECT_FALSE(Ui.TextFiles.empty());
        EXPECT_EQ(Ui.TextFiles.empty() ? "" : Ui.TextFiles.back().Caption, caption);
        return Ui.TextFiles.empty() ? Lines{} : Ui.TextFiles.back().Lines;
    }

    static Lines Read(const std::string& script, const std::filesystem::path& wad)
    {
        const testkit::CommandOutput output = testkit::RunCommand(
            "/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/" + script + " '" + wad.string() + "'");
        EXPECT_EQ(output.Status, 0) << script;
        return output.Lines();
    }

    // Each texture composed by the gfx catalogue over Freedoom 2 and the PWAD, as pixels.
    std::map<std::string, std::string> Composed(const std::string& pwad, const Lines& names)
    {
        Reopen(pwad);
        wad::BuildMarkerLists();
        gfx::BuildTextureCatalogue({});
        std::map<std::string, std::string> pictures;
        for (const std::string& name : names)
        {
            const std::optional<gfx::ImageRaster> picture = gfx::ComposeTexture(name);
            EXPECT_TRUE(picture.has_value()) << name;
            for (int y = 0; picture && y < picture->Height(); ++y)
            {
                for (int x = 0; x < picture->Width(); ++x)
                {
                    pictures[name] += static_cast<char>(picture->At(x, y));
                }
            }
        }
        return pictures;
    }

    UnusedDeletion Deleted(const std::string& pwad, bool prompt = false)
    {
        UnusedOptions options;
        options.DeleteMode = true;
        options.PromptForDeletes = prompt;
        options.NextStepNotice = false;
        UnusedDeletion deletion;
        EXPECT_EQ(ListUnused(pwad, options, &deletion), 1);
        return deletion;
    }
};

TEST_F(UsageReportTest, TheUnusedListNamesWhatNoLevelUsesAndTheGameNeedsNot)
{
    const std::string pwad = ResourcePwad();
    const std::string before = testkit::ReadFile(pwad);
    ASSERT_EQ(ListUnused(pwad, {}), 1);
    EXPECT_EQ(Shown("List of WAD Flats and Patches not Used"),
              Report({"    == 2 Flats defined in PWAD ==", "FEXTRA   extra", "1 Flats not used", "",
                      "    == 10 Textures defined ==", "TEXTRA1  extra", "TEXTRA2  extra",
                      "TEXTRA3  extra", "T2EXTRA  extra", "4 Textures not used", "",
                      "    == 8 Patches defined in PWAD ==", "PSPARE   extra + lump in PWAD",
                      "1 Patches not used"}));
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(testkit::ReadFile(pwad), before);

    // The levels of another PWAD count too: maps kept apart from their resources.
    UnusedOptions options;
    options.LevelFiles = {LevelsOnlyPwad()};
    ASSERT_EQ(ListUnused(pwad, options), 1);
    const Lines lines = Shown("List of WAD Flats and Patches not Used");
    EXPECT_EQ(lines[4], "0 Flats not used");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "3 Textures not used"), 1);
}

TEST_F(UsageReportTest, DeletingKeepsEveryOtherLumpAndEveryRemainingTextureComposesAsBefore)
{
    const std::string pwad = ResourcePwad();
    const Lines kept = {"AASTINKY", "TUSED1", "TUSED2", "SKY1", "TIWAD", "T2USED"};
    const std::map<std::string, std::string> composedBefore = Composed(pwad, kept);

    UnusedOptions options;
    options.DeleteMode = true;
    UnusedDeletion deletion;
    ASSERT_EQ(ListUnused(pwad, options, &deletion), 1);
    EXPECT_EQ(Shown("List of WAD Flats and Patches not Used"),
              Report({"    == 2 Flats defined in PWAD ==", "FEXTRA   deleted", "1 Flats not used",
                      "", "    == 10 Textures defined ==", "TEXTRA1  deleted", "TEXTRA2  deleted",
                      "TEXTRA3  deleted", "T2EXTRA  deleted", "4 Textures not used", "",
                      "    == 8 Patches defined in PWAD ==", "PD       deleted + lump deleted",
                      "PNOLUMP  deleted + lump not found", "PSPARE   deleted + lump deleted",
                      "BODIES   deleted + lump in IWAD", "4 Patches not used"}));
    EXPECT_EQ(Ui.Last().Text(), "** Next Step **:\n\nPress Save to save a modified PWAD\nwith the "
                                "Textures and Flats deleted");
    EXPECT_EQ(deletion.Flats + deletion.Textures + deletion.Patches, 9);
    const std::filesystem::path output = Dir.Path() / "trimmed.wad";
    ASSERT_TRUE(wad::RewriteWad(output, deletion.Plan));

    // omgifol: the remaining textures have the same patches by name; TIWAD's RW22_1 moved from
    // PNAMES index 6 to 3.
    const Lines gone = {"L FEXTRA", "P PD", "P PNOLUMP", "P PSPARE", "P BODIES"};
    const Lines read = Read("lumps/omg_texture_use.py", output);
    EXPECT_EQ(read, Matching(Read("lumps/omg_texture_use.py", pwad),
                             [&](const std::string& line)
                             {
                                 return !line.starts_with("T TEXTRA") &&
                                        !line.starts_with("T T2EXTRA") &&
                                        std::find(gone.begin(), gone.end(), line) == gone.end();
                             }));
    EXPECT_NE(std::find(read.begin(), read.end(), "T TIWAD 16 8 RW22_1 PB"), read.end());

    // Every entry but those deleted reads back byte for byte, the three rebuilt aside.
    bool sprite = false;
    const auto unchanged = [&sprite](const std::string& line)
    {
        sprite = line.starts_with("E S_START") || (sprite && !line.starts_with("E S_END"));
        return !line.starts_with("E TEXTURE") && !line.starts_with("E PNAMES ") &&
               !line.starts_with("E FEXTRA ") && !line.starts_with("E PD ") &&
               (sprite || !line.starts_with("E PSPARE "));
    };
    EXPECT_EQ(Matching(Read("wad/omg_entries.py", output), unchanged),
              Matching(Read("wad/omg_entries.py", pwad), unchanged));
    EXPECT_EQ(Composed(output.string(), kept), composedBefore);
}

TEST_F(UsageReportTest, PromptForDeletesKeepsWhatTheUserCancels)
{
    const std::string pwad = ResourcePwad();
    // FEXTRA no; TEXTRA1, TEXTRA2 yes, TEXTRA3 no, T2EXTRA yes; then PD and PNOLUMP yes,
    // PSPARE no (BODIES stays in use by TEXTRA3).
    for (const int answer : {0, 1, 1, 0, 1, 1, 1, 0})
    {
        Ui.Answer(answer);
    }
    const UnusedDeletion deletion = Deleted(pwad, true);
    Lines questions;
    for (const platform::Message& message : Ui.Messages)
    {
        questions.push_back(message.Title + " " + message.Text());
    }
    EXPECT_EQ(questions,
              (Lines{"Delete FLAT? FEXTRA", "Delete Texture? TEXTRA1", "Delete Texture? TEXTRA2",
                     "Delete Texture? TEXTRA3", "Delete Texture? T2EXTRA", "Delete PNAMES? PD",
                     "Delete PNAMES? PNOLUMP", "Delete PNAMES? PSPARE"}));
    const Lines lines = Shown("List of WAD Flats and Patches not Used");
    for (const char* line : {"FEXTRA   *** cancelled ***", "TEXTRA3  *** cancelled ***",
                             "PSPARE   *** cancelled ***", "3 Patches not used"})
    {
        EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 1) << line;
    }
    const std::filesystem::path output = Dir.Path() / "asked.wad";
    ASSERT_TRUE(wad::RewriteWad(output, deletion.Plan));
    const Lines read = Read("lumps/omg_texture_use.py", output);
    for (const char* line :
         {"L FEXTRA", "P PSPARE", "T TEXTRA3 16 8 BODIES", "T TIWAD 16 8 RW22_1 PB"})
    {
        EXPECT_NE(std::find(read.begin(), read.end(), line), read.end()) << line;
    }
}

TEST_F(UsageReportTest, WhatCantBeJudgedSafelyIsListedOrRefusedAndNeverDeleted)
{
    // No flats, TEXTURE1 or PNAMES: each check impossible.
    ASSERT_EQ(ListUnused(LevelsOnlyPwad(), {}), 1);
    EXPECT_EQ(
        Shown("List of WAD Flats and Patches not Used"),
        Report({"** FLATS not found                 **", "** Unused Flat check not possible **", "",
                "** TEXTURE1 not found                 **",
                "** Unused Texture check not possible **", "",
                "** PNAMES not found                 **",
                "** Unused Patch check not possible **"}));

    // TEXTURE1's last record cut short: listed, not rebuilt, no patch judged; nothing changes.
    std::string texture1 = TextureLump({{"AASTINKY", {0}}, {"TEXTRA1", {1, 0}}});
    texture1.resize(texture1.size() - 12);
    WadBuilder damaged;
    damaged.Lump("PNAMES", PnamesLump({"PA", "PB"})).Lump("TEXTURE1", texture1);
    const std::string cut = damaged.Lump("PA", PatchLump(16)).Write(Dir.File("cut.wad"));
    UnusedDeletion deletion = Deleted(cut);
    const Lines lines = Shown("List of WAD Flats and Patches not Used");
    EXPECT_EQ(Lines(lines.begin() + 6, lines.end() - 3),
              (Lines{"    == 2 Textures defined ==", "TEXTRA1  extra", "1 Textures not used", "",
                     "** Unused Patch check not possible **"}));
    ASSERT_TRUE(wad::RewriteWad(Dir.Path() / "same.wad", deletion.Plan));
    EXPECT_EQ(testkit::ReadFile(Dir.Path() / "same.wad"), testkit::ReadFile(cut));

    // A damaged PWAD is refused by every report.
    Ui.Clear();
    const std::string broken = WadBuilder().Lump("ONE", "1").HeaderCount(40).Write(Dir.File("b"));
    EXPECT_EQ(ListUnused(broken, {}), 0);
    EXPECT_EQ(ListTexturesUsed(broken), 0);
    EXPECT_EQ(ListTextureNames(broken), 0);
    EXPECT_EQ(Ui.Messages.size(), 3U);
    EXPECT_TRUE(Ui.Saw("Failure reading old File?"));
    EXPECT_TRUE(Ui.TextFiles.empty());
}

TEST_F(UsageReportTest, AnIwadWithATexture2KeepsThePwadsTexture2AndPnamesWhole)
{
    WadBuilder wad;
    wad.Lump("PNAMES", PnamesLump({"PA"})).Lump("TEXTURE1", TextureLump({{"AASTINKY", {0}}}));
    wad.Lump("TEXTURE2", TextureLump({{"T2EXTRA", {0}}, {"T2EXTRB", {0}}}));
    const std::string pwad = wad.Lump("PA", PatchLump(16)).Write(Dir.File("t2.wad"));
    // Over Freedoom 2 an emptied TEXTURE2 goes.
    UnusedDeletion deletion = Deleted(pwad);
    EXPECT_EQ(deletion.Textures, 2);
    ASSERT_EQ(deletion.Plan.Entries.size(), 3U);
    EXPECT_EQ(deletion.Plan.Entries[1].Name, "TEXTURE1");
    EXPECT_EQ(deletion.Plan.Entries[2].Name, "PA");

    // Freedoom 1's own TEXTURE2 would take its place, reading this PNAMES: TEXTURE2 keeps its
    // first texture. A PWAD without a TEXTURE2 lends its PNAMES to the IWAD's: no patch goes.
    Reopen({}, "freedoom1.wad");
    deletion = Deleted(pwad);
    EXPECT_EQ(deletion.Textures, 1);
    EXPECT_EQ(deletion.Plan.Entries[2].Bytes.size(), 4U + 4U + 22U + 10U);
    WadBuilder texture1Only;
    texture1Only.Lump("PNAMES", PnamesLump({"PA", "PB"}))
        .Lump("TEXTURE1", TextureLump({{"AASTINKY", {0}}}));
    deletion = Deleted(texture1Only.Write(Dir.File("t1.wad")));
    const Lines lines = Shown("List of WAD Flats and Patches not Used");
    EXPECT_EQ(Lines(lines.end() - 5, lines.end() - 3),
              (Lines{"** TEXTURE2 not found                 **",
                     "** Unused Patch check not possible **"}));
    EXPECT_EQ(deletion.Patches, 0);
}

TEST_F(UsageReportTest, TheUsedListGivesEachLevelsNamesOnceInOrder)
{
    const std::string pwad = ResourcePwad();
    ASSERT_EQ(ListTexturesUsed(pwad), 1);
    EXPECT_EQ(Shown("List of WAD Textures and Flats Used"), (Lines{"     Level MAP01",
                                                                   "== Flats ==",
                                                                   "CEIL3_5",
                                                                   "FUSED",
                                                                   "2 unique Flats used",
                                                                   "== Textures ==",
                                                                   "STARTAN3",
                                                                   "TUSED1",
                                                                   "tused2",
                                                                   "3 unique Textures used",
                                                                   "     Level MAP02",
                                                                   "== Flats ==",
                                                                   "FUSED",
                                                                   "F_SKY1",
                                                                   "2 unique Flats used",
                                                                   "== Textures ==",
                                                                   "STARTAN3",
                                                                   "T2USED",
                                                                   "TIWAD",
                                                                   "3 unique Textures used",
                                                                   "     Level MAP03",
                                                                   "== Flats ==",
                                                                   "CEIL3_5",
                                                                   "FLOOR4_8",
                                                                   "2 unique Flats used",
                                                                   "== Textures ==",
                                                                   "STARTAN3",
                                                                   "1 unique Textures used",
                                                                   "3 Levels Found"}));

    ASSERT_EQ(ListTexturesUsed(pwad, "map02"), 1);
    const Lines one = Shown("List of WAD Textures and Flats Used");
    EXPECT_EQ(one.front() + " / " + one.back(), "     Level MAP02 / 1 Levels Found");

    Ui.Clear();
    EXPECT_EQ(ListTexturesUsed(pwad, "MAP09"), 0);
    EXPECT_EQ(Ui.Last().Title + " / " + Ui.Last().Text(), "Not Level / Not a Level");
    EXPECT_TRUE(Ui.TextFiles.empty());
}

TEST_F(UsageReportTest, TheNamesListMarksWhatComesFromThePwad)
{
    // AASTINKY and SKY1 are textures of the IWAD as well; RW22_1 and BODIES its patches.
    ASSERT_EQ(ListTextureNames(ResourcePwad()), 1);
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(Shown("List of WAD Texture and Flat names"),
              (Lines{"**   List of Texture, Patch and Flat names defined in PWAD **",
                     "    == FLATS == 2 (in PWAD)",
                     "FUSED",
                     "FEXTRA",
                     "",
                     "    == TEXTUREx == 10 (PWAD + IWAD)",
                     "AASTINKY",
                     "TUSED1   *",
                     "TUSED2   *",
                     "TEXTRA1  *",
                     "TEXTRA2  *",
                     "SKY1",
                     "TIWAD    *",
                     "TEXTRA3  *",
                     "T2USED   *",
                     "T2EXTRA  *",
                     "",
                     "    == PNAMES == 8 (*=those in PWAD)",
                     "PA       *",
                     "PB       *",
                     "PC       *",
                     "PD       *",
                     "PNOLUMP",
                     "PSPARE   *",
                     "RW22_1",
                     "BODIES"}));

    Ui.Clear();
    ASSERT_EQ(ListTextureNames(LevelsOnlyPwad()), 1);
    EXPECT_EQ(Ui.Titles(), (Lines{"Kelvar Information", "Kelvar Information"}));
    EXPECT_TRUE(Ui.Saw("No TEXTUREx & PNAMES found") && Ui.Saw("No FLATS found"));
}

TEST_F(UsageReportTest, TheCommandLinePrintsTheReportsAndWritesTheTrimmedPwad)
{
    const std::string files = testkit::FreedoomWad("freedoom2.wad") + " '" + ResourcePwad() + "'";
    const std::filesystem::path config = Dir.Path() / "config";
    const auto run = [&config](const std::string& arguments)
    { return testkit::RunCli(arguments, config); };
    testkit::CommandOutput output = run("unused " + files);
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_NE(output.Text.find("\nPSPARE   extra + lump in PWAD\n"), std::string::npos);

    const std::filesystem::path trimmed = Dir.Path() / "cli.wad";
    output = run("unused " + files + " --delete -o '" + trimmed.string() + "'");
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_NE(output.Text.find(": 1 flats, 4 textures and 4 patches deleted\n"), std::string::npos);
    EXPECT_EQ(Matching(Read("lumps/omg_texture_use.py", trimmed),
                       [](const std::string& line) { return line.starts_with("T "); })
                  .size(),
              6U);

    output = run("used " + files + " --level MAP03");
    EXPECT_NE(output.Text.find("STARTAN3\n1 unique Textures used\n1 Levels Found\n"),
              std::string::npos)
        << output.Text;
    EXPECT_NE(run("used " + files + " --defined").Text.find("PNOLUMP\nPSPARE   *\n"),
              std::string::npos);

    EXPECT_EQ(run("unused " + files + " --delete").Status, 1);
    EXPECT_EQ(run("unused " + files + " --delete -o " + Dir.File("resource.wad")).Status, 1);
    EXPECT_EQ(run("unused " + testkit::FreedoomWad("freedoom2.wad")).Status, 1);
    EXPECT_EQ(run("used " + testkit::FreedoomWad("freedoom2.wad") + " none.wad").Status, 2);
}

} // namespace
} // namespace kelvar::lumps
