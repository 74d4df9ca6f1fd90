// Tests of Set tag or height (Alt+T): the free tag search its title shows, the ranges of the
// two formats, and the tags written to the selection or the highlighted object.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TagCommands.h"
#include "tests/app/CommandTestKit.h"
#include "wad/WadState.h"

namespace kelvar::app
{
namespace
{

TEST(FreeTagInfo, FirstGapAboveTheLowestOrPastTheHighest)
{
    EXPECT_EQ(FreeTagInfo({}), (FreeNumbers{1, 0})) << "none in use";
    EXPECT_EQ(FreeTagInfo({3, 4, 6}), (FreeNumbers{5, 6}));
    EXPECT_EQ(FreeTagInfo({6, 4, 3, 4}), (FreeNumbers{5, 6})) << "any order, repeats";
    EXPECT_EQ(FreeTagInfo({3, 4, 5}), (FreeNumbers{6, 5}));
    EXPECT_EQ(FreeTagInfo({7}), (FreeNumbers{8, 7}));
    EXPECT_EQ(FreeTagInfo({1, 2, 32767}), (FreeNumbers{3, 32767}));
}

class TagCommandTest : public CommandFixture
{
protected:
    void TearDown() override
    {
        wad::ResetWad();
        CommandFixture::TearDown();
    }

    /// Two rooms with tags: Sector 0 has 3, Sector 1 has 4, LineDef 4 has 6.
    static map::LevelData TaggedRooms()
    {
        map::LevelData level = TwoRooms();
        level.Sectors[0].Tag = 3;
        level.Sectors[1].Tag = 4;
        level.LineDefs[4].Tag = 6;
        return level;
    }

    const platform::RecordingUi::NumberPrompt& Prompt() const
    {
        EXPECT_FALSE(Ui.NumberPrompts.empty());
        return Ui.NumberPrompts.back();
    }
};

TEST_F(TagCommandTest, SetsTheTagOfEverySelectedSector)
{
    Edit(TaggedRooms(), ModeSectors);
    Mark({0, 1});
    Ui.AnswerNumber(-5);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);

    EXPECT_EQ(Prompt().Caption, "Free=5, Last=6");
    EXPECT_EQ(Prompt().Initial, 4) << "the newest marked Sector's tag";
    EXPECT_EQ(Prompt().Low, -32768);
    EXPECT_EQ(Prompt().High, 32767);
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.Sectors[0].Tag, 0xFFFB) << "-5 as the 16 bits it is stored in";
    EXPECT_EQ(level.Sectors[1].Tag, 0xFFFB);
    EXPECT_EQ(level.LineDefs[4].Tag, 6) << "LineDefs are left alone";
    EXPECT_EQ(level.ChangeCount, 1);
    EXPECT_EQ(level.GeometryChangeCount, 0) << "no node rebuild is called for";
}

TEST_F(TagCommandTest, FallsBackOnTheHighlightedLineDefAndCountsOnlyRealChanges)
{
    Edit(TaggedRooms(), ModeLineDefs);
    map::Selected().HighlightedObject = 2;
    Ui.AnswerNumber(9);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    EXPECT_EQ(Prompt().Caption, "Free=5, Last=6");
    EXPECT_EQ(Prompt().Prompt, "LineDef Tag");
    EXPECT_EQ(map::Map().Level.LineDefs[2].Tag, 9);
    EXPECT_EQ(map::Map().Level.ChangeCount, 1);

    // The same value again changes nothing; a cancelled prompt neither.
    Ui.AnswerNumber(9).AnswerNumber(std::nullopt);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    EXPECT_EQ(Prompt().Caption, "Free=5, Last=9");
    EXPECT_EQ(map::Map().Level.ChangeCount, 1);

    // Nothing selected or highlighted, or another mode: no prompt.
    map::Selected().HighlightedObject = -1;
    EXPECT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    ChooseMode(ModeThings);
    map::Selected().HighlightedObject = 0;
    EXPECT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::WrongMode);
    EXPECT_EQ(Ui.NumberPrompts.size(), 3u);
}

TEST_F(TagCommandTest, HexenFormatTagsAreTheFirstArgumentFrom0To255)
{
    game::SelectTablesFor(4, 4, false, false);
    wad::Wad().Game.Format = 4;
    map::LevelData level = TaggedRooms();
    level.LineDefs[4].Type = 80; // Script Run: its first argument is a script number
    level.LineDefs[4].Tag = 0x0102;
    level.LineDefs[1].Type = 12; // Door Open/Close: a Sector tag
    level.LineDefs[1].Tag = 5;
    Edit(level, ModeLineDefs);
    EXPECT_EQ(TagsInUse(map::Map().Level, true), (std::vector<int>{5, 3, 4}));

    Mark({4});
    Ui.AnswerNumber(200);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    EXPECT_EQ(Prompt().Caption, "Free=6, Last=5");
    EXPECT_EQ(Prompt().Initial, 2) << "the low byte";
    EXPECT_EQ(Prompt().Low, 0);
    EXPECT_EQ(Prompt().High, 255);
    EXPECT_EQ(map::Map().Level.LineDefs[4].Tag, 0x01C8) << "only the low byte changes";
}

TEST_F(TagCommandTest, UndoTakesTheTagsBackAndRedoSetsThemAgain)
{
    Edit(TaggedRooms(), ModeSectors);
    map::Map().Level.ChangeCount = 0;
    const map::LevelData before = map::Map().Level;
    Mark({0, 1});
    Ui.AnswerNumber(9);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    const map::LevelData after = map::Map().Level;
    EXPECT_EQ(after.Sectors[1].Tag, 9);

    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before) << "the change counter comes back too";
    EXPECT_TRUE(Marked().empty()) << "an undo drops the selection";
    ASSERT_EQ(RunCommand(CmdRedo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, after);
    ASSERT_EQ(RunCommand(CmdRedo), CommandResult::Done);
    EXPECT_EQ(Ui.Beeps, 1) << "nothing more to redo: the signal alone";

    // A tag that changes nothing leaves no step behind.
    Mark({1});
    Ui.AnswerNumber(9);
    ASSERT_EQ(RunCommand(CmdSetTagOrHeight), CommandResult::Done);
    EXPECT_EQ(map::Map().Undo.Position, 0);

    map::Map().Options.UndoEnabled = false;
    ASSERT_EQ(RunCommand(CmdRedo), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "Undo");
    EXPECT_EQ(Ui.Last().Text(), "Undo Option Not Set!");
}

} // namespace
} // namespace kelvar::app
