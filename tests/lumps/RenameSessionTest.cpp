// Tests of the rename tool's session: the sorted list against the file's order, the selection
// through the commands, the warning and the save, and a PWAD the editor has open.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/RenameSession.h"

#include "lumps/ToolFiles.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testkit::WadBuilder;

class RenameSessionTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        Pwad = WadBuilder()
                   .Lump("SONG", "song")
                   .Level("MAP01")
                   .Lump("animated", "anim")
                   .Lump("DEHACKED", "Patch File")
                   .Write(Dir.Path() / "pwad.wad");
        ASSERT_EQ(OpenRenameSession(Session, Pwad), 1);
    }

    std::vector<std::string> Listed() const
    {
        std::vector<std::string> names;
        for (const TargetRow& row : ListedRows(Session))
        {
            names.push_back(Session.List.Entries[row.First].Name.Text());
        }
        return names;
    }

    static std::vector<std::string> FileNames(const std::filesystem::path& file)
    {
        std::string magic;
        std::vector<TargetEntry> entries;
        EXPECT_EQ(ReadWadEntries(file, magic, entries), WadRead::Read);
        std::vector<std::string> names;
        for (const TargetEntry& entry : entries)
        {
            names.push_back(wad::UpperText(entry.Name.Text()));
        }
        return names;
    }

    TargetRow RowNamed(const std::string& name) const
    {
        for (const TargetRow& row : TargetRows(Session.List))
        {
            if (Session.List.Entries[row.First].Name.Is(name))
            {
                return row;
            }
        }
        ADD_FAILURE() << name;
        return {};
    }

    std::filesystem::path Pwad;
    RenameSession Session;
};

TEST_F(RenameSessionTest, SortingOrdersTheListButNeverTheFile)
{
    EXPECT_EQ(Listed(), (std::vector<std::string>{"SONG", "MAP01", "animated", "DEHACKED"}));
    Session.SortAlpha = true;
    EXPECT_EQ(Listed(), (std::vector<std::string>{"animated", "DEHACKED", "MAP01", "SONG"}));
    EXPECT_EQ(SaveRenameSession(Session), 1);
    EXPECT_EQ(FileNames(Pwad).front(), "SONG");
    EXPECT_EQ(FileNames(Pwad).back(), "DEHACKED");
    // Nothing left out: no warning, the usual caption, the notice naming the backup.
    EXPECT_EQ(Ui.Progress.front().first, "Copying 14 Entries");
    EXPECT_EQ(Ui.Last().Title, " Info - Save Status");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"File has been rewritten",
                                        "If you made a mistake, this is the original copy",
                                        "Your old file is " + wad::BakPathOf(Pwad).string()}));
}

TEST_F(RenameSessionTest, RowsNotSelectedAreLeftOutAfterTheWarning)
{
    SelectRow(Session, RowNamed("MAP01"), false);
    EXPECT_EQ(SelectedEntries(Session), 3);
    // The selection belongs to the row, through a rename and a move.
    const int head = static_cast<int>(RowNamed("MAP01").First);
    ASSERT_EQ(RenameTargetEntry(Session.List, head, "MAP07"), 1);
    const int moved = MoveTargetEntryDown(Session.List, head);
    EXPECT_FALSE(RowSelected(Session, RowNamed("MAP07")));
    EXPECT_EQ(moved, 2);
    Ui.Clear();

    // Cancel at the warning: nothing written.
    Ui.Answer(0);
    EXPECT_EQ(SaveRenameSession(Session), 0);
    EXPECT_EQ(Ui.Last().Title, " Info - WARNING - All Lumps Not Selected");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"The number of entries selected 3",
                                        "Is less than the number you started with 14",
                                        "press Cancel to stop"}));
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(Pwad)));

    Ui.Answer(1);
    EXPECT_EQ(SaveRenameSession(Session), 1);
    EXPECT_EQ(FileNames(Pwad), (std::vector<std::string>{"SONG", "ANIMATED", "DEHACKED"}));
    EXPECT_EQ(Ui.Progress.front().first, "Removing 11 Entries");
    // The session holds the file as written, every row selected again.
    EXPECT_EQ(Session.StartCount, 3);
    EXPECT_EQ(SelectedEntries(Session), 3);
    EXPECT_TRUE(ConfirmLeaveRename(Session));
}

TEST_F(RenameSessionTest, LeavingAsksWhileRowsAreNotSelectedOrTheListChanged)
{
    EXPECT_TRUE(ConfirmLeaveRename(Session));
    SelectAllRows(Session, false);
    EXPECT_EQ(SelectedEntries(Session), 0);
    Ui.Answer(0);
    EXPECT_FALSE(ConfirmLeaveRename(Session));
    SelectAllRows(Session, true);
    EXPECT_TRUE(ConfirmLeaveRename(Session));
    // A row inserted since the file was read keeps its selection by its name.
    const int inserted = InsertNamedEntry(Session.List, 0, "NEWONE", Placement::After);
    ASSERT_GE(inserted, 0);
    SelectRow(Session, RowNamed("NEWONE"), false);
    EXPECT_FALSE(RowSelected(Session, RowNamed("NEWONE")));
    EXPECT_TRUE(RowSelected(Session, RowNamed("SONG")));
}

TEST_F(RenameSessionTest, APwadTheEditorHasOpenReadsTheNewFileAfterTheSave)
{
    const int number = OpenPwad(Pwad.string());
    ASSERT_GT(number, 0);
    wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(number)];
    wad::EnsureOpen(file);
    ASSERT_EQ(file.State, 'O');
    EXPECT_TRUE(OpenInEditor(Pwad));

    SelectRow(Session, RowNamed("SONG"), false);
    Ui.Answer(1);
    ASSERT_EQ(SaveRenameSession(Session), 1);
    // Its stream was let go for the rewrite and reads the new file now, not the backup.
    ASSERT_EQ(file.State, 'O');
    std::uint8_t header[wad::WadHeaderSize] = {};
    ASSERT_EQ(std::fseek(file.Stream.get(), 0, SEEK_SET), 0);
    ASSERT_EQ(std::fread(header, sizeof header, 1, file.Stream.get()), 1U);
    EXPECT_EQ(wad::ReadLe32(header + 4), 13);
}

} // namespace
} // namespace kelvar::lumps
