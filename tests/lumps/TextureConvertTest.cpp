// Tests of texture name conversion: every level of a multi-level PWAD converted by a .CVT table,
// counts checked against omgifol's reading, every other lump unchanged; the table's section
// rules, the replacement log, files without levels, refusals and a full disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureConvert.h"

#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kelvar::lumps
{
namespace
{

using testkit::LevelBuilder;
using testkit::LevelLayout;
using testkit::LumpFiller;
using testkit::WadBuilder;
using Lines = std::vector<std::string>;

const char* const Table = "Conversion table of the test: text before the first section\n"
                          "[Textures]\n"
                          "STARTAN3   BROWN1\n"
                          "// a comment line\n"
                          "SW1COMP\n"
                          "startan2   //  kept as well\n"
                          "FLOOR4_8   WALLFLAT\n"
                          "[FLATS]\n"
                          "FLOOR4_8   FLAT14\n"
                          "CEIL3_5    ceil1_1\n";

// The bytes of a record cut short, ending a SIDEDEFS lump.
const std::string CutRecord = "\x01\x02STARTAN3";

// A level of the Doom layout, with the node lumps holding bytes of their own (texture names
// among them, which must stay) or without them, and with or without SIDEDEFS.
void WriteLevel(WadBuilder& wad, const LevelBuilder& level, std::string_view name, bool nodes,
                bool sideDefs = true)
{
    wad.Marker(name)
        .Lump("THINGS", level.ThingsLump(LevelLayout::Doom))
        .Lump("LINEDEFS", level.LineDefsLump(LevelLayout::Doom));
    if (sideDefs)
    {
        wad.Lump("SIDEDEFS", level.SideDefsLump() + (nodes ? "" : CutRecord));
    }
    wad.Lump("VERTEXES", level.VertexesLump());
    if (nodes)
    {
        wad.Lump("SEGS", LumpFiller("STARTAN3", 48)).Lump("SSECTORS", LumpFiller("SSECTORS", 8));
        wad.Lump("NODES", LumpFiller("FLOOR4_8", 56));
    }
    wad.Lump("SECTORS", level.SectorsLump());
    if (nodes)
    {
        wad.Lump("REJECT", "\x01").Lump("BLOCKMAP", LumpFiller("BLOCKMAP", 40));
    }
}

// The name fields that differ between two readings of omg_texture_use.py: flats, walls.
std::pair<int, int> Differences(const Lines& before, const Lines& after)
{
    std::pair<int, int> differences;
    EXPECT_EQ(before.size(), after.size());
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i)
    {
        std::istringstream oldWords(before[i]);
        std::istringstream newWords(after[i]);
        std::string oldWord, newWord;
        // The first three words are the kind, the level and the record number.
        for (int word = 0; oldWords >> oldWord && newWords >> newWord; ++word)
        {
            EXPECT_TRUE(word > 2 || oldWord == newWord) << before[i] << " / " << after[i];
            if (oldWord != newWord)
            {
                ++(before[i][0] == 'F' ? differences.first : differences.second);
            }
        }
    }
    return differences;
}

bool Has(const Lines& lines, const std::string& line)
{
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

class TextureConvertTest : public testkit::WadFixture
{
protected:
    std::filesystem::path WriteTable(const std::string& text)
    {
        testkit::WriteFile(Dir.Path() / "test.cvt", text);
        return Dir.Path() / "test.cvt";
    }

    // MAP01 with nodes, MAP02 without (its SIDEDEFS ending in a cut record), MAP03 in Hexen
    // layout, MAP04 without SIDEDEFS, with lumps between them that hold texture names as bytes.
    std::string MultiLevelPwad()
    {
        WadBuilder wad;
        LevelBuilder map01;
        map01.Room(0, 0, 256, 256).Room(512, 0, 128, 128).Thing(64, 64, 1);
        map01.Level().SideDefs[0].UpperTexture = map::TextureName::From("SW1COMP");
        map01.Level().SideDefs[1].LowerTexture = map::TextureName::From("FLOOR4_8");
        WriteLevel(wad, map01, "MAP01", true);
        wad.Lump("NOTES", "STARTAN3 FLOOR4_8 CEIL3_5");
        LevelBuilder map02;
        map02.Room(0, 0, 128, 128);
        map02.Level().Sectors[0].CeilingTexture = map::TextureName::From("F_SKY1");
        WriteLevel(wad, map02, "MAP02", false);
        LevelBuilder map03;
        map03.Room(0, 0, 64, 64).Thing(32, 32, 1);
        map03.Level().SideDefs[2].UpperTexture = map::TextureName::From("startan3");
        map03.WriteTo(wad, "MAP03", LevelLayout::Hexen);
        WriteLevel(wad, LevelBuilder().Room(0, 0, 64, 64), "MAP04", false, false);
        wad.Lump("DEHACKED", "Patch File for DeHackEd v3.0\nSTARTAN3\n");
        return wad.Write(Dir.Path() / "levels.wad");
    }

    // A single level whose walls and ceiling bear the names given.
    std::string OneLevelPwad(const std::string& ceiling, const Lines& middles)
    {
        LevelBuilder level;
        level.Room(0, 0, 128, 128);
        level.Level().Sectors[0].CeilingTexture = map::TextureName::From(ceiling);
        for (std::size_t i = 0; i < middles.size(); ++i)
        {
            level.Level().SideDefs[i].NormalTexture = map::TextureName::From(middles[i]);
        }
        WadBuilder wad;
        WriteLevel(wad, level, "MAP07", true);
        return wad.Write(Dir.Path() / "one.wad");
    }

    // omgifol's reading of the names (F and W lines) or of every entry (E lines, the bytes).
    static Lines Read(const std::string& script, const std::filesystem::path& wad, char kind)
    {
        const testkit::CommandOutput output = testkit::RunCommand(
            "/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/" + script + " '" + wad.string() + "'");
        EXPECT_EQ(output.Status, 0) << script;
        Lines lines;
        for (const std::string& line : output.Lines())
        {
            if (line[0] == kind || (kind == 'F' && line[0] == 'W'))
            {
                lines.push_back(line);
            }
        }
        return lines;
    }
    static Lines Names(const std::filesystem::path& wad)
    {
        return Read("lumps/omg_texture_use.py", wad, 'F');
    }

    // The log shown last, after checking its caption; from its fifth line (past the files).
    Lines ShownLog() const
    {
        EXPECT_EQ(Ui.TextFiles.size(), 1U);
        if (Ui.TextFiles.empty())
        {
            return {};
        }
        EXPECT_EQ(Ui.TextFiles.back().Caption, "List of WAD Textures and Flats Replaced");
        const Lines& lines = Ui.TextFiles.back().Lines;
        return Lines(lines.begin() + std::min<std::ptrdiff_t>(4, std::ssize(lines)), lines.end());
    }
};

TEST_F(TextureConvertTest, EveryLevelIsConvertedAndTheCountsAgreeWithOmgifol)
{
    const std::string input = MultiLevelPwad();
    const std::string before = testkit::ReadFile(input);
    const std::filesystem::path table = WriteTable(Table);
    const std::filesystem::path output = Dir.Path() / "converted.wad";
    ASSERT_EQ(ConvertTextures(table, input, output, false), 1);

    EXPECT_EQ(testkit::ReadFile(input), before) << "the input is never changed";
    EXPECT_EQ(Ui.TextFiles[0].Lines[0] + "|" + Ui.TextFiles[0].Lines[1] + "|" +
                  Ui.TextFiles[0].Lines[2] + "|" + Ui.TextFiles[0].Lines[3],
              "CVT   " + table.string() + "|Textures=4 Flats=2|Input " + input + "|Output" +
                  output.string());
    Lines expected;
    for (const char* level : {"MAP01", "MAP02", "MAP03", "MAP04"})
    {
        expected.insert(expected.end(),
                        {std::string("     Level ") + level, "== Flats ==", "== Textures =="});
    }
    expected.insert(expected.end(), {"4 Levels Found", "9 Flats Replaced", "18 Textures Replaced"});
    EXPECT_EQ(ShownLog(), expected);
    EXPECT_EQ(Ui.Progress.front().first, "Processing 36 Entries");

    // MAP01: 2 Sectors (4 flats), 8 STARTAN3 sides and a wall named FLOOR4_8; MAP02: FLOOR4_8
    // (F_SKY1 has no pair), 4 sides; MAP03: 2 flats, 4 sides and an upper "startan3"; MAP04:
    // 2 flats and no SideDefs.
    const Lines newNames = Names(output);
    EXPECT_EQ(Differences(Names(input), newNames), std::make_pair(9, 18));
    for (const char* line : {"F MAP01 0 FLAT14 CEIL1_1", "W MAP01 0 SW1COMP - BROWN1",
                             "W MAP01 1 - WALLFLAT BROWN1", "F MAP02 0 FLAT14 F_SKY1"})
    {
        EXPECT_TRUE(Has(newNames, line)) << line;
    }

    // Every other lump reads back byte for byte; a SIDEDEFS record cut short stays as it was.
    const Lines oldEntries = Read("wad/omg_entries.py", input, 'E');
    const Lines newEntries = Read("wad/omg_entries.py", output, 'E');
    ASSERT_EQ(oldEntries.size(), newEntries.size());
    int sideDefs = 0;
    for (std::size_t i = 0; i < oldEntries.size(); ++i)
    {
        const std::string name = oldEntries[i].substr(0, oldEntries[i].find(' ', 2));
        EXPECT_TRUE(newEntries[i].starts_with(name + " ")) << newEntries[i];
        if (name == "E SIDEDEFS" && ++sideDefs == 2)
        {
            EXPECT_TRUE(newEntries[i].ends_with("01025354415254414e33")) << "the cut record";
        }
        EXPECT_TRUE(name == "E SECTORS" || name == "E SIDEDEFS" || newEntries[i] == oldEntries[i])
            << name;
    }
}

TEST_F(TextureConvertTest, OnlyTheSectionThatNamesAPairActsAndOnlyOnItsOwnRecords)
{
    const std::string input = OneLevelPwad("CEIL3_5", {"FLOOR4_8"});
    const Lines oldNames = Names(input);

    // A [FLATS]-only table leaves every SideDef alone.
    const std::filesystem::path flatsOut = Dir.Path() / "flats.wad";
    ASSERT_EQ(ConvertTextures(WriteTable("[FLATS]\nFLOOR4_8 FLAT14\nSTARTAN3 GRAY1\n"), input,
                              flatsOut, false),
              1);
    EXPECT_EQ(Differences(oldNames, Names(flatsOut)), std::make_pair(1, 0));

    // A flat's name listed under [TEXTURES] replaces the wall of that name, not the floor.
    const std::filesystem::path wallsOut = Dir.Path() / "walls.wad";
    ASSERT_EQ(ConvertTextures(WriteTable("[TEXTURES]\nFLOOR4_8 GRAY1\n"), input, wallsOut, false),
              1);
    const Lines newNames = Names(wallsOut);
    EXPECT_EQ(Differences(oldNames, newNames), std::make_pair(0, 1));
    EXPECT_TRUE(Has(newNames, "W MAP07 0 - - GRAY1"));
}

TEST_F(TextureConvertTest, ListReplacementsLogsEachChangeAndEachAbsentNameButNeverAKeptOne)
{
    const std::string input = OneLevelPwad("F_SKY1", {"STARTAN3", "SW1COMP", "COMPSPAN"});
    const std::filesystem::path table = WriteTable(Table);
    ASSERT_EQ(ConvertTextures(table, input, Dir.Path() / "quiet.wad", false), 1);
    EXPECT_EQ(ShownLog().size(), 6U);
    Ui.TextFiles.clear();
    ASSERT_EQ(ConvertTextures(table, input, Dir.Path() / "listed.wad", true), 1);
    EXPECT_EQ(ShownLog(),
              (Lines{"     Level MAP07", "== Flats ==", "FLOOR4_8 =   FLAT14 sector=0",
                     "  F_SKY1 sector=0 no replacement found",
                     "== Textures ==", "STARTAN3 =   BROWN1 linedef=0",
                     "COMPSPAN linedef=2 no replacement found", "STARTAN3 =   BROWN1 linedef=3",
                     "1 Levels Found", "1 Flats Replaced", "2 Textures Replaced"}));
}

TEST_F(TextureConvertTest, AFileWithoutLevelsSaysSoAndIsStillWritten)
{
    WadBuilder wad;
    wad.Lump("DEHACKED", "Patch File").Marker("F_START").Lump("FLAT14", LumpFiller("FLAT", 4096));
    const std::string input = wad.Marker("F_END").Write(Dir.Path() / "nolevels.wad");
    const std::filesystem::path output = Dir.Path() / "out.wad";
    ASSERT_EQ(ConvertTextures(WriteTable(Table), input, output, true), 1);
    EXPECT_EQ(Ui.Last().Title + " / " + Ui.Last().Text(), "No Levels / No levels Found");
    EXPECT_EQ(ShownLog(), (Lines{"No levels Found", "0 Flats Replaced", "0 Textures Replaced"}));
    EXPECT_EQ(testkit::ReadFile(output), testkit::ReadFile(input));
}

TEST_F(TextureConvertTest, RefusalsAndAFullDiskLeaveEveryFileAsItWas)
{
    const std::string input = MultiLevelPwad();
    const std::string before = testkit::ReadFile(input);
    const std::filesystem::path table = WriteTable(Table);
    const std::filesystem::path output = Dir.Path() / "out.wad";
    const auto refused = [&](const std::filesystem::path& cvt, const std::filesystem::path& in,
                             const std::filesystem::path& out, const std::string& text)
    {
        Ui.Clear();
        EXPECT_EQ(ConvertTextures(cvt, in, out, false), 0) << text;
        EXPECT_EQ(Ui.Messages.size(), 1U) << text;
        EXPECT_EQ(Ui.Last().Text(), text);
        EXPECT_TRUE(Ui.TextFiles.empty());
    };
    refused("", input, output, "** Please select a Texture Conversion File **\n\n");
    refused(Dir.Path() / "none.cvt", input, output,
            "** Please select a Texture Conversion File **\n\n");
    refused(table, Dir.File("none.wad"), output,
            "** Failed to Open File **\n\n" + Dir.File("none.wad"));
    refused(table, input, input, "! New File Name can't be same as input!\n\n" + input);
    // levels.BAK as input: writing levels.wad would first make it the output's backup.
    const std::filesystem::path bak = Dir.Path() / "levels.BAK";
    std::filesystem::copy_file(input, bak);
    refused(table, bak, input, "! New File Name can't be same as input!\n\n" + input);
    const std::filesystem::path nowhere = Dir.Path() / "missing" / "out.wad";
    refused(table, input, nowhere, "** Failed to Create File **\n\n" + nowhere.string());
    const std::string damaged =
        WadBuilder().Lump("ONE", "1").HeaderDirectory(5000).Write(Dir.Path() / "damaged.wad");
    refused(table, damaged, output, "Failure reading old File?");
    EXPECT_FALSE(std::filesystem::exists(output));

    // A full disk: no log, the older output put back.
    Ui.Clear();
    testkit::WriteFile(output, "an older output");
    wad::Wad().WriteBudget = 600;
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_EQ(ConvertTextures(table, input, output, false), 0);
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(Ui.Messages.front().Title, "I/O error");
    EXPECT_TRUE(Ui.TextFiles.empty());
    EXPECT_EQ(testkit::ReadFile(output), "an older output");
    EXPECT_EQ(testkit::ReadFile(input), before);
    EXPECT_EQ(testkit::ReadFile(bak), before);
}

TEST_F(TextureConvertTest, TheCommandLinePrintsTheLogAndRefusesBadWords)
{
    const std::string input = "'" + MultiLevelPwad() + "'";
    const std::string table = "--cvt '" + WriteTable(Table).string() + "'";
    const std::filesystem::path output = Dir.Path() / "cli.wad";
    const auto run = [this](const std::string& arguments)
    { return testkit::RunCli("convert " + arguments, Dir.Path() / "config"); };
    const testkit::CommandOutput listed =
        run(input + " " + table + " -o '" + output.string() + "' --list");
    EXPECT_EQ(listed.Status, 0) << listed.Text;
    EXPECT_NE(listed.Text.find("\nSTARTAN3 =   BROWN1 linedef=0\n"), std::string::npos);
    EXPECT_NE(listed.Text.find("\n18 Textures Replaced\n"), std::string::npos) << listed.Text;
    EXPECT_EQ(Differences(Names(Dir.File("levels.wad")), Names(output)).second, 18);

    EXPECT_EQ(run(input + " -o x.wad --bogus").Status, 1);
    EXPECT_EQ(run(input + " " + table).Status, 1);
    EXPECT_EQ(run(input + " " + table + " -o " + input).Status, 2);
}

} // namespace
} // namespace kelvar::lumps
