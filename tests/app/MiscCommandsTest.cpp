// Tests of the Misc popups' commands, their keys and Delete as a user runs them: the
// highlighted object standing in for an empty selection, the count guard, the undo step that
// takes each back, First Free Tag's texts, and the Delete question.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TagCommands.h"
#include "map/Undo.h"
#include "tests/app/CommandTestKit.h"
#include "view/ViewState.h"
#include "view/Viewport.h"
#include "wad/WadState.h"

namespace kelvar::app
{
namespace
{

TEST(FirstFreeNumber, StartsAtOneAndTakesTheFirstNumberNotInUse)
{
    EXPECT_EQ(FirstFreeNumber({}), (NumberStats{1, 0, 0}));
    EXPECT_EQ(FirstFreeNumber({3, 4, 6}), (NumberStats{1, 6, 3})) << "1 is free below them";
    EXPECT_EQ(FirstFreeNumber({2, 1, 1, 4}), (NumberStats{3, 4, 4})) << "any order, repeats";
}

class MiscCommandsTest : public CommandFixture
{
protected:
    void TearDown() override
    {
        wad::ResetWad();
        CommandFixture::TearDown();
    }
};

TEST_F(MiscCommandsTest, TheHighlightedLineDefIsFlippedWhenNothingIsSelectedAndUndoTakesItBack)
{
    Edit(TwoRooms(), ModeLineDefs);
    const map::LevelData before = map::Map().Level;
    map::Selected().HighlightedObject = 4;
    ASSERT_EQ(RunCommand(CmdFlipLineDef), CommandResult::Done);
    const map::LineDef& flipped = map::Map().Level.LineDefs[4];
    EXPECT_EQ(flipped.StartVertex, 2u);
    EXPECT_EQ(flipped.SideDef1, 7u);

    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before);
    ASSERT_EQ(RunCommand(CmdRedo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level.LineDefs[4].StartVertex, 2u);
}

TEST_F(MiscCommandsTest, AnEmptySelectionIsRefusedAndTheStepStays)
{
    Edit(TwoRooms(), ModeVertexes);
    ASSERT_EQ(RunCommand(CmdDeleteVertexJoin), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "Select");
    EXPECT_TRUE(Ui.Saw("Select at least 1 Vertexs"));
    EXPECT_EQ(map::Map().Undo.Position, 0) << "the dispatcher's step stays on a refusal";
}

TEST_F(MiscCommandsTest, MergingSectorsNeedsTwoAndADoorExactlyOne)
{
    Edit(TwoRooms(), ModeSectors);
    Mark({1});
    ASSERT_EQ(RunCommand(508), CommandResult::Done); // Merge Sectors
    EXPECT_TRUE(Ui.Saw("Select at least 2 Sectors"));
    Mark({0, 1});
    ASSERT_EQ(RunCommand(504), CommandResult::Done); // Make DOOR from Sector
    EXPECT_TRUE(Ui.Saw("Select exactly 1 Sectors"));
}

TEST_F(MiscCommandsTest, FirstFreeTagShowsTheTagStatistics)
{
    map::LevelData level = TwoRooms();
    level.Sectors[0].Tag = 1;
    level.LineDefs[4].Tag = 3;
    Edit(std::move(level), ModeSectors);
    ASSERT_EQ(RunCommand(502), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "tag stats");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"FreeTag\t  2", "Highest\t  3", "Tag#\t  2"}));
}

TEST_F(MiscCommandsTest, ALiftTakesTheFirstFreeTag)
{
    map::LevelData level = TwoRooms();
    level.Sectors[0].Tag = 1;
    level.Sectors[0].FloorHeight = 64;
    level.Sectors[1].Tag = 2;
    Edit(std::move(level), ModeSectors);
    Mark({1});
    ASSERT_EQ(RunCommand(503), CommandResult::Done); // Make LIFT from Sector
    EXPECT_EQ(map::Map().Level.Sectors[1].Tag, 3) << "1 and 2 are in use, its own old tag too";
    EXPECT_EQ(map::Map().Level.Sectors[1].FloorHeight, 64);
}

TEST_F(MiscCommandsTest, DeleteAsksForLineDefsAndSectorsButNotForThings)
{
    Edit(TwoRooms(), ModeSectors);
    const map::LevelData before = map::Map().Level;
    map::Selected().HighlightedObject = 1;
    Ui.Answer(0);
    ASSERT_EQ(RunCommand(CmdDeleteObject), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "Delete");
    EXPECT_TRUE(Ui.Saw("Do you really want to delete 1 Sector?"));
    EXPECT_TRUE(Ui.Saw("This also deletes the objects bound to them"));
    EXPECT_EQ(map::Map().Level, before) << "no: nothing deleted";
    EXPECT_TRUE(map::Selected().Selection.Empty()) << "the highlight was not left marked";

    Mark({0, 1});
    Ui.Answer(1);
    ASSERT_EQ(RunCommand(CmdDeleteObject), CommandResult::Done);
    EXPECT_TRUE(Ui.Saw("Do you really want to delete 2 Sectors?"));
    EXPECT_EQ(map::Map().Level.Sectors.Count(), 0);
    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before);

    Ui.Clear();
    Shell().Chk.EditMode = ModeThings;
    Mark({2});
    ASSERT_EQ(RunCommand(CmdDeleteObject), CommandResult::Done);
    EXPECT_TRUE(Ui.Titles().empty()) << "Things go without a question";
    EXPECT_EQ(map::Map().Level.Things.Count(), 2);
}

TEST_F(MiscCommandsTest, DeletingAVertexJoinsItsLinesAndShiftDeleteTurnsTheOptionRound)
{
    const map::LevelData wall = testkit::WallOfTwoLines(); // LineDefs 0 and 1 meet at Vertex 1
    Edit(wall, ModeVertexes);
    Mark({1});
    ASSERT_EQ(RunCommand(CmdDeleteObject), CommandResult::Done);
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 1) << "joined into one";

    Edit(wall, ModeVertexes);
    Mark({1});
    ASSERT_EQ(RunCommand(CmdDeleteObjectShift), CommandResult::Done);
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 0) << "deleted with its lines";
}

TEST_F(MiscCommandsTest, InsertPutsAThingOnTheGridAtThePointerClonedFromTheHighlight)
{
    Edit(TwoRooms(), ModeThings);
    const map::LevelData before = map::Map().Level;
    map::Selected().HighlightedObject = 1; // a 3004 at (200, 64)
    view::View().Pointer = {437, 291, false};
    view::View().Settings.GridSize = 32;
    ASSERT_EQ(RunCommand(CmdAddObject), CommandResult::Done);
    const map::LevelData& level = map::Map().Level;
    ASSERT_EQ(level.Things.Count(), 4);
    const map::Thing& added = level.Things[3];
    EXPECT_EQ(added.Type, 3004);
    EXPECT_EQ(added.X % 32, 0) << "on the grid";
    EXPECT_EQ(added.Y % 32, 0);
    EXPECT_LE(std::abs(added.X - view::ScreenToMapX(view::View().Viewport, 437)), 16);
    EXPECT_EQ(Highlighted(), 3);
    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before);
}

TEST_F(MiscCommandsTest, InsertAsksTwiceBeforeASector)
{
    Edit(TwoRooms(), ModeSectors);
    map::Selected().HighlightedObject = 1;
    Ui.Answer(0);
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "New Sector");
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{"Create a Sector ?", "Are you SURE ?"}));
    EXPECT_EQ(map::Map().Level.Sectors.Count(), 2);
    Ui.Answer(1);
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    ASSERT_EQ(map::Map().Level.Sectors.Count(), 3);
    EXPECT_EQ(map::Map().Level.Sectors[2], map::Map().Level.Sectors[1])
        << "cloned from the highlight";
    EXPECT_EQ(Highlighted(), 2);
}

TEST_F(MiscCommandsTest, InsertInVertexesJoinsTwoDrawsForFewerAndRefusesMore)
{
    // Two rooms: Vertexes 0 (0,0) and 2 (128,128) are opposite corners of the west room.
    Edit(TwoRooms(), ModeVertexes);
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    EXPECT_TRUE(TakeRequests().StartLineDraw) << "no Vertex selected: the LineDraw tool";

    for (const int v : {0, 2, 5})
    {
        map::ObjectListPush(map::Selected().Selection, v);
    }
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Lines.at(0), "You have 3 Vertexes selected");
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 7);

    map::ClearSelection();
    map::ObjectListPush(map::Selected().Selection, 0);
    map::ObjectListPush(map::Selected().Selection, 2);
    Ui.AnswerList(2).Answer(1); // Split Sector; Continue
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 8);
    EXPECT_EQ(map::Map().Level.Sectors.Count(), 3) << "the west room divided";
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level, TwoRooms());
}

TEST_F(MiscCommandsTest, SplitLineDefsAndSectorDividesTheRoomBetweenTheirMiddles)
{
    // The west room's top (LineDef 1) and bottom (LineDef 2) walls.
    Edit(TwoRooms(), ModeLineDefs);
    map::ObjectListPush(map::Selected().Selection, 1);
    map::ObjectListPush(map::Selected().Selection, 2);
    Ui.AnswerList(2).Answer(1); // Split Sector; Continue
    ASSERT_EQ(RunCommand(CmdSplitLineDefSector), CommandResult::Done);
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.LineDefs.Count(), 10);
    EXPECT_EQ(level.Sectors.Count(), 3);
    EXPECT_EQ(level.Vertexes[6], (map::Vertex{64, 0}));
    EXPECT_EQ(level.Vertexes[7], (map::Vertex{64, 128}));

    // The east room's far wall and the west room's west wall share no Sector: asked first.
    Edit(TwoRooms(), ModeLineDefs);
    map::ObjectListPush(map::Selected().Selection, 0);
    map::ObjectListPush(map::Selected().Selection, 5);
    Ui.Answer(0);
    ASSERT_EQ(RunCommand(CmdSplitLineDefSector), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Lines.at(0), "LineDefs 5 and 0 are not adjacent to the same Sector");
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 7);
}

TEST_F(MiscCommandsTest, AligningOnlyUnpeggedLinesTellsSoAndTakesNoStep)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[0].Flags |= 8;
    level.LineDefs[1].Flags |= 16;
    Edit(std::move(level), ModeLineDefs);
    Mark({0, 1});
    ASSERT_EQ(RunCommand(CmdAlignY), CommandResult::Done);
    EXPECT_TRUE(Ui.Saw("Pegged Textures are Ignored!"));
    EXPECT_EQ(map::Map().Undo.Position, -1) << "nothing done, nothing to undo";
    EXPECT_EQ(map::Map().Level.ChangeCount, 0);
}

TEST_F(MiscCommandsTest, InsertGivesTheSelectedLineDefsANewSectorOnTheChosenSide)
{
    Edit(TwoRooms(), ModeLineDefs);
    Mark({0, 1});
    Ui.Answer(0); // the second button: SideDef2
    ASSERT_EQ(RunCommand(CmdInsertObject), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Title, "New Sector");
    EXPECT_TRUE(Ui.Saw("Replace sideDef1 or sideDef2 Sector"));
    const map::LevelData& level = map::Map().Level;
    ASSERT_EQ(level.Sectors.Count(), 3);
    EXPECT_EQ(level.Sectors[2], level.Sectors[0]) << "cloned from the lines' own Sector";
    for (const std::size_t at : {0u, 1u})
    {
        const map::LineDef& line = level.LineDefs[at];
        ASSERT_NE(line.SideDef2, map::NoSideDef) << "the missing side is added";
        EXPECT_EQ(level.SideDefs[line.SideDef2].Sector, 2u);
        EXPECT_NE(line.Flags & map::FlagTwoSided, 0);
        EXPECT_EQ(level.SideDefs[line.SideDef1].Sector, 0u) << "the other side stays";
    }
    EXPECT_EQ(EditMode(), ModeSectors);
    EXPECT_EQ(Highlighted(), 2);

    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, TwoRooms());
}

TEST_F(MiscCommandsTest, ACancelledSideChoiceChangesNothing)
{
    Edit(TwoRooms(), ModeLineDefs);
    Mark({4});
    Ui.Answer(2);
    ASSERT_EQ(RunCommand(CmdAddObject), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, TwoRooms());
    EXPECT_EQ(map::Map().Undo.Position, -1);
}

TEST_F(MiscCommandsTest, EveryMiscEntryIsEnabled)
{
    const std::vector<int> built = {502,
                                    503,
                                    504,
                                    505,
                                    506,
                                    507,
                                    508,
                                    509,
                                    511,
                                    514,
                                    515,
                                    520,
                                    526,
                                    527,
                                    531,
                                    533,
                                    518,
                                    519,
                                    534,
                                    CmdSplitLineDefSector,
                                    CmdSplitAddVertex,
                                    CmdSwapSideDefs,
                                    CmdFlipVertexesOnly,
                                    CmdAlignY,
                                    CmdAlignYShift,
                                    CmdAlignYSide2,
                                    CmdAlignLineDef,
                                    CmdDeleteVertexJoin,
                                    CmdMiscMenu,
                                    501,
                                    510,
                                    525,
                                    530};
    for (const int number : built)
    {
        EXPECT_TRUE(IsCommandAvailable(number)) << number;
    }
}

} // namespace
} // namespace kelvar::app
