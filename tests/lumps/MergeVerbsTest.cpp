// Tests of kelvar-cli import, merge, rename and delete: what they write, what they print, and
// their exit statuses for a refused file or bad words, with the target left as it was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/lumps/MergeTestLumps.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testing::ReadWadLumps;
using testing::WadLump;
using testkit::WadBuilder;

class MergeVerbsTest : public ::testing::Test
{
protected:
    testkit::CommandOutput Cli(const std::string& arguments)
    {
        return testkit::RunCli(arguments, Dir.Path() / "config");
    }

    std::string Quoted(const std::string& name) const { return "'" + Dir.File(name) + "'"; }

    static std::vector<std::string> Names(const std::vector<WadLump>& lumps)
    {
        std::vector<std::string> names;
        for (const WadLump& lump : lumps)
        {
            names.push_back(lump.Name);
        }
        return names;
    }

    std::string LastLine(const testkit::CommandOutput& output) const
    {
        const std::vector<std::string> lines = output.Lines();
        return lines.empty() ? std::string() : lines.back();
    }

    testkit::TempDir Dir;
};

TEST_F(MergeVerbsTest, ImportWritesFilesAndPwadsIntoANewOrOldTarget)
{
    WadBuilder pwad;
    pwad.Lump("DEHACKED", "Patch File").Level("MAP01").Lump("SONG", "song");
    pwad.Write(Dir.Path() / "source.wad");
    testkit::WriteFile(Dir.Path() / "credits.txt", "thanks");
    const testkit::CommandOutput made = Cli("import " + Quoted("target.wad") + " " +
                                            Quoted("source.wad") + " " + Quoted("credits.txt"));
    EXPECT_EQ(made.Status, 0) << made.Text;
    EXPECT_EQ(LastLine(made),
              Dir.File("target.wad") + ": 4 added, 0 replaced, 0 left out, 14 entries");
    std::vector<WadLump> expected = ReadWadLumps(Dir.Path() / "source.wad");
    expected.push_back({"CREDITS", "thanks"});
    EXPECT_EQ(ReadWadLumps(Dir.Path() / "target.wad"), expected);
    EXPECT_TRUE(std::filesystem::exists(Dir.Path() / "config" / "kelvar" / "KelvarMerge.LOG"));

    // Into the old target: the same name replaced, the new rows after the level.
    testkit::WriteFile(Dir.Path() / "song.lmp", "new song");
    const testkit::CommandOutput again =
        Cli("import " + Quoted("target.wad") + " " + Quoted("song.lmp") + " --after MAP01");
    EXPECT_EQ(again.Status, 0) << again.Text;
    EXPECT_EQ(LastLine(again),
              Dir.File("target.wad") + ": 1 added, 1 replaced, 0 left out, 14 entries");
    const std::vector<WadLump> written = ReadWadLumps(Dir.Path() / "target.wad");
    EXPECT_EQ(written[12], (WadLump{"SONG", "new song"}));
    EXPECT_EQ(Names(written).back(), "CREDITS");
    EXPECT_EQ(testing::LinesOf(testing::OmgReading(Dir.Path() / "target.wad"), "E"),
              testing::EntryLines(written));
}

TEST_F(MergeVerbsTest, RefusedFilesAndBadWordsLeaveTheTargetAsItWas)
{
    WadBuilder target;
    target.Lump("KEEP", "k").Level("MAP01");
    target.Write(Dir.Path() / "target.wad");
    const std::string before = testkit::ReadFile(Dir.Path() / "target.wad");
    testkit::WriteFile(Dir.Path() / "a.lmp", "a");

    const testkit::CommandOutput missing =
        Cli("import " + Quoted("target.wad") + " " + Quoted("a.lmp") + " " + Quoted("nope.lmp"));
    EXPECT_EQ(missing.Status, 2) << missing.Text;
    EXPECT_NE(missing.Text.find("Could not access"), std::string::npos) << missing.Text;
    const testkit::CommandOutput after =
        Cli("import " + Quoted("target.wad") + " " + Quoted("a.lmp") + " --after NOWHERE");
    EXPECT_EQ(after.Status, 2);
    EXPECT_EQ(LastLine(after), "kelvar-cli: NOWHERE is not a lump of " + Dir.File("target.wad"));
    EXPECT_EQ(Cli("import " + Quoted("target.wad") + " " + Quoted("a.lmp") + " --as jpeg").Status,
              1);
    EXPECT_EQ(Cli("import " + Quoted("target.wad")).Status, 1);
    EXPECT_EQ(Cli("merge " + Quoted("target.wad") + " " + Quoted("a.lmp")).Status, 2);
    EXPECT_EQ(Cli("rename " + Quoted("target.wad") + " MAP01").Status, 1);
    EXPECT_EQ(Cli("rename " + Quoted("target.wad") + " THINGS STUFF").Status, 2);
    EXPECT_EQ(Cli("rename " + Quoted("target.wad") + " KEEP MAP02").Status, 2);
    EXPECT_EQ(Cli("delete " + Quoted("target.wad") + " KEEP NOPE").Status, 2);
    EXPECT_EQ(Cli("delete " + Quoted("absent.wad") + " KEEP").Status, 2);
    EXPECT_EQ(testkit::ReadFile(Dir.Path() / "target.wad"), before);
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "target.BAK"));
}

TEST_F(MergeVerbsTest, MergeCombinesTexturesAndRenameAndDeleteChangeOnlyTheirLumps)
{
    using testing::PnamesBytes;
    using testing::TextureBytes;
    WadBuilder first;
    first.Lump("PNAMES", PnamesBytes({"PA", "PB"}))
        .Lump("TEXTURE1", TextureBytes({{"ONE", 64, 64, {{0, 0, 1}}}}))
        .Level("MAP01")
        .Lump("INFO", "first");
    first.Write(Dir.Path() / "first.wad");
    WadBuilder second;
    second.Lump("PNAMES", PnamesBytes({"PB", "PC"}))
        .Lump("TEXTURE1", TextureBytes({{"TWO", 32, 32, {{0, 0, 1}, {0, 0, 0}}}}))
        .Level("MAP02");
    second.Write(Dir.Path() / "second.wad");
    const testkit::CommandOutput merged = Cli("merge " + Quoted("target.wad") + " " +
                                              Quoted("first.wad") + " " + Quoted("second.wad"));
    EXPECT_EQ(merged.Status, 0) << merged.Text;
    const std::vector<WadLump> written = ReadWadLumps(Dir.Path() / "target.wad");
    ASSERT_EQ(written.size(), 2u + 11 + 1 + 11);
    EXPECT_EQ(testing::ReadPnames(testing::AsBytes(written[0].Data)),
              (std::vector<std::string>{"PA", "PB", "PC"}));
    EXPECT_EQ(testing::LinesOf(testing::OmgReading(Dir.Path() / "target.wad"), "T"),
              (std::vector<std::string>{"T ONE 64 64 PB@0,0", "T TWO 32 32 PC@0,0 PB@0,0"}));

    const testkit::CommandOutput renamed = Cli("rename " + Quoted("target.wad") + " map02 map05");
    EXPECT_EQ(renamed.Status, 0) << renamed.Text;
    EXPECT_EQ(LastLine(renamed), Dir.File("target.wad") + ": map02 renamed MAP05");
    const testkit::CommandOutput deleted = Cli("delete " + Quoted("target.wad") + " MAP01 INFO");
    EXPECT_EQ(deleted.Status, 0) << deleted.Text;
    EXPECT_EQ(LastLine(deleted), Dir.File("target.wad") + ": 12 entries deleted, 13 left");
    std::vector<WadLump> expected(written.begin(), written.begin() + 2);
    expected.insert(expected.end(), written.begin() + 14, written.end());
    expected[2].Name = "MAP05";
    EXPECT_EQ(ReadWadLumps(Dir.Path() / "target.wad"), expected);
}

} // namespace
} // namespace kelvar::lumps
