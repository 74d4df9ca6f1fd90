// Tests of the target list: reading a target with its notices, rows with levels whole, the
// list commands with their refusals, and writing the list back without touching the rest.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TargetList.h"

#include "tests/lumps/MergeTestLumps.h"
#include "tests/lumps/TargetListFixture.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testing::ReadWadLumps;
using testing::WadLump;
using testkit::WadBuilder;

const std::vector<std::string> NodelessLevel = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                                "SECTORS"};

class TargetListTest : public TargetListFixture
{
protected:
    // Levels of every length between plain lumps: a full Doom level, a nodeless one, a Hexen
    // one with BEHAVIOR, a level with GL nodes.
    std::filesystem::path MultiLevelPwad()
    {
        WadBuilder builder;
        builder.Lump("DEHACKED", "Patch File")
            .Level("MAP01")
            .LevelInOrder("MAP02", NodelessLevel)
            .Lump("SONG", "MUS\x1a")
            .HexenLevel("MAP03")
            .Lump("SCRIPT01", "script 1 { }")
            .LevelInOrder("MAP04", GlLevel("MAP04"))
            .Marker("FF_START")
            .Lump("FLOOR1", std::string(4096, 'f'))
            .Marker("FF_END");
        return builder.Write(Dir.Path() / "multi.wad");
    }

    static int IndexOf(const TargetList& list, const std::string& name)
    {
        const std::optional<FoundTarget> found = FindTargetEntry(list, name);
        return found ? static_cast<int>(found->Index) : -1;
    }

    std::vector<std::string> LastLines() const { return Ui.Last().Lines; }
};

TEST_F(TargetListTest, ReadingGivesRowsWithLevelsWholeAndNoticesForOddNames)
{
    const TargetList list = Read(MultiLevelPwad());
    EXPECT_EQ(list.Magic, "PWAD");
    EXPECT_EQ(RowNames(list),
              (std::vector<std::string>{"DEHACKED", "MAP01", "MAP02", "SONG", "MAP03", "SCRIPT01",
                                        "MAP04", "FF_START", "FLOOR1", "FF_END"}));
    const std::vector<TargetRow> rows = TargetRows(list);
    EXPECT_EQ(rows[1].Count, 11u);
    EXPECT_EQ(rows[2].Count, 6u);
    EXPECT_EQ(rows[4].Count, 12u);
    EXPECT_EQ(rows[4].Layout, 2);
    EXPECT_EQ(rows[6].Count, 16u);
    EXPECT_TRUE(TargetLevelAt(list, rows[6].First).HasGlNodes);
    EXPECT_EQ(list.Entries[rows[3].First].ListPosition, 3);
    EXPECT_EQ(list.Entries.back().Ordinal, static_cast<std::int32_t>(list.Entries.size()) - 1);

    // Control characters in names, a level's lump standing alone (first, since any entry
    // before a THINGS makes a level), and texture lumps.
    WadBuilder odd;
    odd.Lump("THINGS", "t").Lump("\x07OOPS", "a").Lump("GL_VERT", "g").Lump("\x01", "b");
    odd.Lump("PNAMES", testing::PnamesBytes({"P"}));
    TargetList read;
    ASSERT_EQ(ReadTargetFile(odd.Write(Dir.Path() / "odd.wad"), true, read), 1);
    EXPECT_EQ(RowNames(read),
              (std::vector<std::string>{"THINGS", "bad0", "GL_VERT", "bad1", "PNAMES"}));
    ASSERT_EQ(Ui.Messages.size(), 3u);
    EXPECT_EQ(Ui.Messages[0].Title, " Info - Lump Names");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (std::vector<std::string>{"This file has invalid Lump names",
                                        "The names were made into names BADxx",
                                        "If you save, these new names are used"}));
    EXPECT_EQ(Ui.Messages[1].Title, " Info - Lump Name Reserverd");
    EXPECT_EQ(Ui.Messages[1].Lines,
              (std::vector<std::string>{"** Warning **", "THINGS",
                                        "This is not a valid lump name by itself"}));
    EXPECT_EQ(Ui.Messages[2].Title, " Info - TEXTUREx/PNAMES");
    EXPECT_EQ(Ui.Messages[2].Lines[0], "This file has TEXTUREx and PNAMES");
}

TEST_F(TargetListTest, NewEmptyAndBrokenTargets)
{
    TargetList list;
    EXPECT_EQ(ReadTargetFile(Dir.Path() / "new.wad", true, list), 1);
    EXPECT_TRUE(list.Entries.empty());
    EXPECT_TRUE(list.Magic.empty());
    testkit::WriteFile(Dir.Path() / "zero.wad", "");
    EXPECT_EQ(ReadTargetFile(Dir.Path() / "zero.wad", true, list), 1);
    EXPECT_TRUE(list.Entries.empty());
    // A header that counts no lumps, whatever its directory offset says.
    EXPECT_EQ(ReadTargetFile(WadBuilder().Write(Dir.Path() / "none.wad"), true, list), 1);
    EXPECT_EQ(list.Magic, "PWAD");
    EXPECT_TRUE(Ui.Messages.empty());

    WadBuilder damaged;
    damaged.Lump("GOOD", "1234").Entry(100000, 8, "BEYOND");
    EXPECT_EQ(ReadTargetFile(damaged.Write(Dir.Path() / "damaged.wad"), true, list), 0);
    EXPECT_EQ(Ui.Last().Text(), "Target File " + (Dir.Path() / "damaged.wad").string() +
                                    "\n\nhas a damaged directory and is left as it is");
    EXPECT_TRUE(list.Entries.empty());
    testkit::WriteFile(Dir.Path() / "text.wad", "not a wad at all");
    EXPECT_EQ(ReadTargetFile(Dir.Path() / "text.wad", true, list), 0);
    EXPECT_EQ(Ui.Last().Text(),
              "Target File " + (Dir.Path() / "text.wad").string() + "\n\nis not a WAD file");
    EXPECT_EQ(ReadTargetFile(Dir.Path(), true, list), 0);
    EXPECT_EQ(Ui.Last().Title, " Error - File Open Error");
    EXPECT_EQ(LastLines(), (std::vector<std::string>{"File Error Opening", Dir.Path().string(),
                                                     "Make sure no one is using this file"}));
}

TEST_F(TargetListTest, FindAndRemoveByNameAndOrdinal)
{
    WadBuilder builder;
    builder.Lump("TWIN", "1").Level("MAP01").Lump("TWIN", "2").Lump("LAST", "3");
    TargetList list = Read(builder.Write(Dir.Path() / "twins.wad"));
    const std::optional<FoundTarget> level = FindTargetEntry(list, "map01");
    ASSERT_TRUE(level);
    EXPECT_EQ(level->Level.Count, 11);
    EXPECT_EQ(level->Level.Layout, 1);
    EXPECT_EQ(FindTargetEntry(list, "TWIN", 12)->Index, 12u);
    EXPECT_FALSE(FindTargetEntry(list, "TWIN", 5));
    EXPECT_FALSE(FindTargetEntry(list, "THINGS")) << "a level's lump heads no row";

    EXPECT_EQ(RemoveTargetEntry(list, "TWIN", 12), 1);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"TWIN", "MAP01", "LAST"}));
    EXPECT_EQ(RemoveTargetEntry(list, "MAP01", -1), 11);
    EXPECT_EQ(RemoveTargetEntry(list, "TWIN", -1), 1);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"LAST"}));
    EXPECT_TRUE(list.DirectoryChanged);
}

TEST_F(TargetListTest, RenameKeepsLevelsWholeAndRefusesWithTheDialogsWords)
{
    TargetList list = Read(MultiLevelPwad());
    const auto refused =
        [&](int index, const std::string& name, const std::vector<std::string>& lines)
    {
        Ui.Clear();
        EXPECT_EQ(RenameTargetEntry(list, index, name), 0) << name;
        ASSERT_FALSE(Ui.Messages.empty()) << name;
        EXPECT_EQ(LastLines(), lines) << name;
    };
    refused(-1, "X", {"Please select a lump to Rename"});
    refused(IndexOf(list, "MAP01") + 1, "X",
            {"This name is reserved for level components", "and can't be renamed"});
    refused(IndexOf(list, "SONG"), "SIDEDEFS",
            {"This name is reserved for level components", "and can't be renamed"});
    refused(IndexOf(list, "SONG"), "MAP07",
            {"This name is reserved for level components", "and can't be renamed"});
    refused(IndexOf(list, "SONG"), "dehacked",
            {"Lump name is a duplicate", "Please choose another name."});
    refused(IndexOf(list, "MAP04"), "MAP100",
            {"! MAP04 is a GL enabled level !", "maximum level name length is 5"});
    EXPECT_EQ(Ui.Last().Title, " Info - GL Level");
    EXPECT_FALSE(list.DirectoryChanged);

    Ui.Clear();
    ASSERT_EQ(RenameTargetEntry(list, IndexOf(list, "SONG"), "d_runnin_long"), 1);
    ASSERT_EQ(RenameTargetEntry(list, IndexOf(list, "MAP04"), "map09"), 1);
    ASSERT_EQ(RenameTargetEntry(list, IndexOf(list, "MAP02"), "E2M3"), 1);
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(RowNames(list)[3], "D_RUNNIN");
    EXPECT_EQ(RowNames(list)[2], "E2M3");
    const int map09 = IndexOf(list, "MAP09");
    EXPECT_EQ(list.Entries[static_cast<std::size_t>(map09) + 11].Name.Text(), "GL_MAP09");
    EXPECT_EQ(TargetLevelAt(list, static_cast<std::size_t>(map09)).Count, 16);

    // The prompt: its words, and a cancel that changes nothing.
    Ui.AnswerText(std::string("NOTES"));
    EXPECT_EQ(AskRenameTargetEntry(list, IndexOf(list, "DEHACKED")), 1);
    Ui.AnswerText(std::nullopt);
    EXPECT_EQ(AskRenameTargetEntry(list, IndexOf(list, "NOTES")), 0);
    EXPECT_EQ(RowNames(list)[0], "NOTES");
    EXPECT_TRUE(list.DirectoryChanged);
}

TEST_F(TargetListTest, DeleteAndInsertWorkOnWholeRows)
{
    TargetList list = Read(MultiLevelPwad());
    EXPECT_EQ(DeleteTargetEntry(list, -1), 0);
    EXPECT_EQ(LastLines(), (std::vector<std::string>{"Please select a lump to Delete"}));
    EXPECT_EQ(DeleteTargetEntry(list, IndexOf(list, "MAP01") + 3), 0) << "a level's lump";
    EXPECT_EQ(DeleteTargetEntry(list, IndexOf(list, "MAP03")), 12);
    EXPECT_EQ(RowNames(list)[4], "SCRIPT01");

    const auto refused = [&](int index, const std::string& name, const std::string& line)
    {
        Ui.Clear();
        EXPECT_EQ(InsertNamedEntry(list, index, name, Placement::After), -1) << name;
        ASSERT_FALSE(Ui.Messages.empty()) << name;
        EXPECT_EQ(LastLines(), std::vector<std::string>{line}) << name;
    };
    refused(-1, "NEW", "Please select a Lump to Insert after");
    refused(IndexOf(list, "MAP02") + 1, "NEW", "You can't insert after a reserved name");
    refused(IndexOf(list, "SONG"), "BLOCKMAP", "You can't insert a reserved name");
    refused(IndexOf(list, "SONG"), "E1M1", "You can't insert a reserved name");
    refused(IndexOf(list, "SONG"), "song", "Name already exists");

    // After a level goes past its lumps; before a row goes in front of its head.
    const int after = InsertNamedEntry(list, IndexOf(list, "MAP02"), "p_start", Placement::After);
    EXPECT_EQ(after, IndexOf(list, "MAP02") + 6);
    EXPECT_EQ(list.Entries[static_cast<std::size_t>(after)].Size, 0);
    EXPECT_EQ(InsertNamedEntry(list, IndexOf(list, "MAP01"), "S_START", Placement::Before), 1);
    EXPECT_EQ(RowNames(list),
              (std::vector<std::string>{"DEHACKED", "S_START", "MAP01", "MAP02", "P_START", "SONG",
                                        "SCRIPT01", "MAP04", "FF_START", "FLOOR1", "FF_END"}));
    // The dialog's form asks the name, then before or after.
    Ui.AnswerText(std::string("TAIL")).AnswerList(1);
    const int tail = AskInsertNamedEntry(list, IndexOf(list, "FF_END"));
    EXPECT_EQ(tail, static_cast<int>(list.Entries.size()) - 1);
    EXPECT_EQ(Ui.ListCaptions.back(), "LumpInsertOption");
    EXPECT_EQ(RowNames(list).back(), "TAIL");

    TargetList empty;
    EXPECT_EQ(InsertNamedEntry(empty, -1, "FIRST", Placement::After), 0);
}

TEST_F(TargetListTest, MovesTakeAWholeRowPastAWholeRow)
{
    TargetList list = Read(MultiLevelPwad());
    const auto refused = [&](int index, const std::string& target, const std::string& line)
    {
        Ui.Clear();
        EXPECT_EQ(MoveTargetEntry(list, index, target, Placement::Before), -1) << target;
        ASSERT_FALSE(Ui.Messages.empty()) << target;
        EXPECT_EQ(LastLines(), std::vector<std::string>{line}) << target;
    };
    refused(-1, "SONG", "Please select a lump to Move");
    refused(IndexOf(list, "MAP01") + 2, "SONG", "This name is reserved and can't be moved");
    refused(IndexOf(list, "SONG"), "NOPE", "Target Lump name not found");
    refused(IndexOf(list, "SONG"), "song", "Source and Target locations are the same");
    refused(IndexOf(list, "SONG"), "LINEDEFS", "Reserved name you can't move in front of");
    WadBuilder twins;
    twins.Lump("A", "1").Lump("TWIN", "2").Lump("TWIN", "3");
    TargetList doubled = Read(twins.Write(Dir.Path() / "twins.wad"));
    EXPECT_EQ(MoveTargetEntry(doubled, 0, "TWIN", Placement::After), -1);
    EXPECT_EQ(LastLines(), std::vector<std::string>{"Duplicate Name"});

    const std::vector<TargetEntry> map03 = {list.Entries.begin() + IndexOf(list, "MAP03"),
                                            list.Entries.begin() + IndexOf(list, "MAP03") + 12};
    const int moved = MoveTargetEntry(list, IndexOf(list, "MAP03"), "DEHACKED", Placement::Before);
    EXPECT_EQ(moved, 0);
    EXPECT_TRUE(std::equal(map03.begin(), map03.end(), list.Entries.begin(),
                           [](const TargetEntry& a, const TargetEntry& b)
                           { return a.Name == b.Name && a.FileOffset == b.FileOffset; }));
    EXPECT_EQ(MoveTargetEntry(list, IndexOf(list, "FLOOR1"), "MAP01", Placement::After),
              IndexOf(list, "MAP01") + 11);
    EXPECT_EQ(RowNames(list),
              (std::vector<std::string>{"MAP03", "DEHACKED", "MAP01", "FLOOR1", "MAP02", "SONG",
                                        "SCRIPT01", "MAP04", "FF_START", "FF_END"}));

    // Up and down step over one row, a level whole; at either end nothing moves.
    EXPECT_EQ(MoveTargetEntryUp(list, IndexOf(list, "MAP03")), 0);
    EXPECT_EQ(MoveTargetEntryUp(list, IndexOf(list, "FLOOR1")), 13);
    EXPECT_EQ(MoveTargetEntryDown(list, IndexOf(list, "DEHACKED")), 13);
    EXPECT_EQ(MoveTargetEntryDown(list, IndexOf(list, "MAP03")), 1);
    EXPECT_EQ(MoveTargetEntryDown(list, IndexOf(list, "DEHACKED")), 13 + 11);
    EXPECT_EQ(MoveTargetEntryDown(list, IndexOf(list, "FF_END")), IndexOf(list, "FF_END"));
    EXPECT_EQ(RowNames(list),
              (std::vector<std::string>{"FLOOR1", "MAP03", "MAP01", "DEHACKED", "MAP02", "SONG",
                                        "SCRIPT01", "MAP04", "FF_START", "FF_END"}));
    // The dialog's form asks the name, then before or after.
    Ui.AnswerText(std::string("map02")).AnswerList(1);
    const int behind = AskMoveTargetEntry(list, IndexOf(list, "FLOOR1"));
    EXPECT_EQ(behind, IndexOf(list, "MAP02") + 6);
    EXPECT_EQ(RowNames(list)[4], "FLOOR1");
    EXPECT_EQ(MoveTargetEntryUp(list, IndexOf(list, "MAP02") + 1), -1);
    EXPECT_EQ(LastLines(), std::vector<std::string>{"This name is reserved and can't be moved"});
}

TEST_F(TargetListTest, ClearAsksFirstAndLeavingWithChangesAsksToo)
{
    TargetList list = Read(MultiLevelPwad());
    EXPECT_TRUE(ConfirmLeave(list, false));
    Ui.Answer(0);
    EXPECT_EQ(ClearTargetList(list), 0);
    EXPECT_EQ(Ui.Last().Text(),
              "This will erase ALL the entries\n\nAre you sure you want to continue?");
    EXPECT_FALSE(list.Entries.empty());
    Ui.Answer(1);
    EXPECT_EQ(ClearTargetList(list), 1);
    EXPECT_TRUE(list.Entries.empty());
    Ui.Answer(0);
    EXPECT_FALSE(ConfirmLeave(list, false));
    EXPECT_EQ(Ui.Last().Text().substr(0, 52),
              "You have made directory changes that were not saved.");
    Ui.Answer(1);
    EXPECT_TRUE(ConfirmLeave(list, true));
    EXPECT_EQ(Ui.Last().Text().substr(0, 42), "You have added files that were not saved.\n");
}

TEST_F(TargetListTest, SavingTheListChangesOnlyWhatTheCommandsChanged)
{
    const std::filesystem::path path = MultiLevelPwad();
    const std::string before = testkit::ReadFile(path);
    const std::vector<WadLump> old = ReadWadLumps(path);
    TargetList list = Read(path);
    ASSERT_EQ(RenameTargetEntry(list, IndexOf(list, "SONG"), "D_SONG"), 1);
    ASSERT_EQ(DeleteTargetEntry(list, IndexOf(list, "MAP02")), 6);
    ASSERT_GE(MoveTargetEntryUp(list, IndexOf(list, "MAP04")), 0);
    ASSERT_TRUE(SaveTargetList(list));

    EXPECT_EQ(testkit::ReadFile(wad::BakPathOf(path)), before);
    std::vector<WadLump> expected = old;
    expected.erase(expected.begin() + 12, expected.begin() + 18);
    expected[12].Name = "D_SONG";
    // MAP04 and its 15 lumps now stand before SCRIPT01.
    std::rotate(expected.begin() + 25, expected.begin() + 26, expected.begin() + 42);
    const std::vector<WadLump> written = ReadWadLumps(path);
    EXPECT_EQ(written, expected);
    EXPECT_EQ(testing::LinesOf(testing::OmgReading(path), "E"), testing::EntryLines(expected));
    EXPECT_EQ(testing::LinesOf(testing::OmgReading(path), "M").size(), 3u);
    EXPECT_FALSE(list.DirectoryChanged);
    EXPECT_EQ(RowNames(list)[2], "D_SONG");

    // A full disk: the old file stays, whole, and so does the list.
    ASSERT_EQ(DeleteTargetEntry(list, IndexOf(list, "D_SONG")), 1);
    const std::string saved = testkit::ReadFile(path);
    wad::Wad().WriteBudget = 500;
    Ui.Answer(0); // the I/O error's "Quit now?"
    EXPECT_FALSE(SaveTargetList(list));
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(testkit::ReadFile(path), saved);
    EXPECT_EQ(IndexOf(list, "D_SONG"), -1);

    // A target named .BAK can't keep its old bytes as its .BAK: it is refused, not deleted.
    const std::filesystem::path bak = Dir.Path() / "old.BAK";
    std::filesystem::copy_file(path, bak);
    TargetList named = Read(bak);
    ASSERT_EQ(DeleteTargetEntry(named, IndexOf(named, "DEHACKED")), 1);
    EXPECT_FALSE(SaveTargetList(named));
    EXPECT_EQ(Ui.Last().Text().substr(0, 30), "Err 17: Could not rename file\n");
    EXPECT_EQ(testkit::ReadFile(bak), saved);
}

} // namespace
} // namespace kelvar::lumps
