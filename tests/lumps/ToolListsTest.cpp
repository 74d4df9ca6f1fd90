// Tests of what the lump tools' windows show of their lists and do with them: the target rows'
// texts, the selection after a command, and the import list's rename, removal and file dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ToolLists.h"

#include "lumps/ExportList.h"
#include "tests/lumps/TargetListFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testkit::WadBuilder;

class ToolListsTest : public TargetListFixture
{
protected:
    static std::vector<std::string> ImportNames(const MergeSession& session)
    {
        std::vector<std::string> names;
        for (const ImportRow& row : session.Imports)
        {
            names.push_back(row.LumpName);
        }
        return names;
    }
};

TEST_F(ToolListsTest, TargetRowsShowALevelWholeAndEachLumpsKind)
{
    // A MUS head: score length 4 at 16, one channel.
    std::string mus = std::string("MUS\x1a", 4) + std::string(16, '\0');
    mus[4] = 4;
    mus[6] = 16;
    mus[8] = 1;
    const std::filesystem::path file = WadBuilder()
                                           .Lump("D_RUNNIN", mus)
                                           .Level("MAP01", 10)
                                           .Marker("FF_START")
                                           .Lump("PNAMES", std::string(4, '\0'))
                                           .Write(Dir.Path() / "kinds.wad");
    const TargetList list = Read(file);
    const std::vector<TargetRow> rows = TargetRows(list);
    const std::vector<TargetRowText> texts = TargetRowTexts(list, rows);
    ASSERT_EQ(texts.size(), 4U);
    EXPECT_EQ(texts[0].Type, "DOOMMUS");
    EXPECT_EQ(texts[1].Name, "MAP01");
    EXPECT_EQ(texts[1].Type, "LEVEL 11");
    EXPECT_EQ(texts[1].Size, 100); // ten lumps of ten bytes, the marker none
    EXPECT_EQ(texts[2].Type, "MARKER");
    EXPECT_EQ(texts[3].Type, "PNAMES");
}

TEST_F(ToolListsTest, CommandsLeaveTheSelectionWhereTheUserExpectsIt)
{
    const std::filesystem::path file =
        WadBuilder().Lump("A", "a").Level("MAP01").Lump("B", "b").Lump("C", "c").Write(
            Dir.Path() / "commands.wad");
    TargetList list = Read(file);
    const int headB = static_cast<int>(FindTargetEntry(list, "B")->Index);
    // Up past a whole level; the selection follows the row.
    const int moved = RunTargetCommand(list, TargetCommand::Up, headB);
    EXPECT_EQ(RowNames(list), (std::vector<std::string>{"A", "B", "MAP01", "C"}));
    EXPECT_EQ(list.Entries[static_cast<std::size_t>(moved)].Name.Text(), "B");
    // A deleted row's place goes to the next row, the last row's to the one before it.
    const int next = RunTargetCommand(list, TargetCommand::Delete, moved);
    EXPECT_EQ(list.Entries[static_cast<std::size_t>(next)].Name.Text(), "MAP01");
    const int headC = static_cast<int>(FindTargetEntry(list, "C")->Index);
    const int before = RunTargetCommand(list, TargetCommand::Delete, headC);
    EXPECT_EQ(list.Entries[static_cast<std::size_t>(before)].Name.Text(), "MAP01");
    // No row selected: the refusal, and still none.
    EXPECT_EQ(RunTargetCommand(list, TargetCommand::Delete, -1), -1);
    EXPECT_TRUE(Ui.Saw("Please select a lump to Delete"));
    // Clear asks; yes leaves no row to select.
    Ui.Answer(1);
    EXPECT_EQ(RunTargetCommand(list, TargetCommand::Clear, 0), -1);
    EXPECT_TRUE(list.Entries.empty());
}

TEST_F(ToolListsTest, ImportRowsAreRenamedWithTheRulesOfLevelNames)
{
    const std::filesystem::path file = WadBuilder()
                                           .Lump("DEHACKED", "Patch File")
                                           .LevelInOrder("MAP01", GlLevel("MAP01"))
                                           .Write(Dir.Path() / "input.wad");
    MergeSession session;
    ASSERT_EQ(AddInputFile(session, file), 2);
    EXPECT_EQ(ImportRowColumns(session.Imports[1]),
              (std::array<std::string, 4>{file.string(), "MAP01", "1", "LEVGL"}));

    // A plain row takes neither a level's lump name nor a level's name.
    EXPECT_EQ(RenameImportRow(session, 0, "things"), 0);
    EXPECT_EQ(RenameImportRow(session, 0, "MAP02"), 0);
    EXPECT_EQ(Ui.Messages.size(), 2U);
    EXPECT_TRUE(Ui.Saw("This name is reserved for level components"));
    // Cut to 8 characters the name is the same: nothing changes.
    EXPECT_EQ(RenameImportRow(session, 0, "dehacked2long"), 0);
    EXPECT_EQ(RenameImportRow(session, 0, "deh2"), 1);
    EXPECT_EQ(session.Imports[0].LumpName, "DEH2");

    // A GL level keeps five characters, and its GL marker follows its name.
    EXPECT_EQ(RenameImportRow(session, 1, "MAP01X"), 0);
    EXPECT_TRUE(Ui.Saw("maximum level name length is 5"));
    EXPECT_EQ(RenameImportRow(session, 1, "E1M1"), 1);
    const std::vector<TargetEntry>& entries = session.Imports[1].Entries;
    EXPECT_EQ(entries[11].Name.Text(), "GL_E1M1");
}

TEST_F(ToolListsTest, ImportRowsComeFromSeveralFilesAndGoInAnyOrder)
{
    const std::filesystem::path first =
        WadBuilder().Lump("ONE", "1").Lump("TWO", "2").Write(Dir.Path() / "first.wad");
    const std::filesystem::path lump = Dir.Path() / "third.lmp";
    testkit::WriteFile(lump, "three");
    Ui.AnswerFile(first);
    MergeSession session;
    EXPECT_EQ(AskAddInputFiles(session), 2);
    ASSERT_EQ(Ui.FileRequests.size(), 1U);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Select Files to Import");
    EXPECT_EQ(AddInputFile(session, lump), 1);
    EXPECT_EQ(ImportRowColumns(session.Imports[2])[2], "-");

    EXPECT_EQ(RemoveImportRows(session, {2, 0, 2, 7, -1}), 2);
    EXPECT_EQ(ImportNames(session), (std::vector<std::string>{"TWO"}));
    EXPECT_EQ(session.Log.back(), "ONE removed from the list (" + first.string() + ")");
}

TEST_F(ToolListsTest, TheSettingsDecideTheConversionsOfAnImport)
{
    ResetExports();
    MergeOptions options;
    ApplyImportSettings(options);
    EXPECT_FALSE(options.WavToSnd);
    EXPECT_FALSE(options.MidiToMus);
    EXPECT_TRUE(options.KeepScriptNames);
    Exports().Settings.AutoSoundFormat = ".snd";
    Exports().Settings.AutoMusicFormat = ".MUS";
    Exports().Settings.ImportLimits.MaxHeight = 128;
    wad::Wad().Options.PlainScriptNames = true;
    ApplyImportSettings(options);
    EXPECT_TRUE(options.WavToSnd);
    EXPECT_TRUE(options.MidiToMus);
    EXPECT_EQ(options.Limits.MaxHeight, 128);
    EXPECT_FALSE(options.KeepScriptNames);
    ResetExports();
}

} // namespace
} // namespace kelvar::lumps
