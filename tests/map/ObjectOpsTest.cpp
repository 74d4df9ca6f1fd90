// Tests of the object operations, grouped by the Misc menu they serve: each runs as a command
// does (an undo step, then the change) and is checked before, after, after undo and after redo.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MoverOps.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/StairOps.h"
#include "map/TextureAlign.h"
#include "map/Undo.h"
#include "map/VertexOps.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/MapPrinters.h"

#include <functional>
#include <gtest/gtest.h>
#include <initializer_list>

namespace kelvar::map
{
namespace
{

using testkit::Marked;

// Three rooms in a row, Sectors 0, 1 and 2 from west to east, sharing the walls x = 128
// (LineDef 8: Sector 1 in front, 0 behind) and x = 256 (LineDef 9: Sector 2 in front, 1
// behind). LineDefs 3 and 4 are the middle room's top and bottom.
testkit::LevelBuilder ThreeRooms(int floor0, int floor1, int floor2)
{
    testkit::LevelBuilder rooms;
    rooms.Sector(floor0, 128).Sector(floor1, 128).Sector(floor2, 128);
    for (const int x : {0, 128, 256, 384})
    {
        rooms.Vertex(x, 0); // 0 to 3
    }
    for (const int x : {0, 128, 256, 384})
    {
        rooms.Vertex(x, 128); // 4 to 7
    }
    for (const std::uint32_t sector : {0u, 0u, 0u, 1u, 1u, 2u, 2u, 2u, 1u, 0u, 2u, 1u})
    {
        rooms.Side(sector);
    }
    rooms.Line(0, 4, 0).Line(4, 5, 1).Line(1, 0, 2); // the west room
    rooms.Line(5, 6, 3).Line(2, 1, 4);               // the middle room
    rooms.Line(6, 7, 5).Line(3, 2, 6).Line(7, 3, 7); // the east room
    rooms.Line(1, 5, 8, 9).Line(2, 6, 10, 11);       // the shared walls
    return rooms;
}

template <typename Record> void Unshare(ObjectArray<Record>& records)
{
    const std::int32_t capacity = records.Capacity;
    records.Assign(std::as_const(records).ToVector());
    records.Capacity = capacity;
}

// A copy of a level that shares no block with it: a comparison with it still holds when an
// edit writes into a block the level wrongly shares.
LevelData Unshared(const LevelData& level)
{
    LevelData copy = level;
    Unshare(copy.Things);
    Unshare(copy.LineDefs);
    Unshare(copy.SideDefs);
    Unshare(copy.Vertexes);
    Unshare(copy.Sectors);
    return copy;
}

class ObjectOpsTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ResetMap();
        Map().Level = testkit::TwoRooms();
    }
    void TearDown() override { ResetMap(); }

    // Runs `operation` after an undo step and checks that undo brings back the level as it
    // was and redo the level as the operation left it. Returns the level after.
    static LevelData FourStates(const std::function<void(LevelData&)>& operation)
    {
        const LevelData before = Unshared(Map().Level);
        EXPECT_EQ(SaveUndoStep(), 1);
        operation(Map().Level);
        const LevelData after = Unshared(Map().Level);
        EXPECT_NE(after, before) << "the operation changed nothing";
        EXPECT_EQ(UndoStep(), 1);
        EXPECT_EQ(Map().Level, before) << "undo gives back the level before";
        EXPECT_EQ(RedoStep(), 1);
        EXPECT_EQ(Map().Level, after) << "redo gives back the level after";
        return after;
    }

    static const LevelData& Level() { return Map().Level; }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

// The LineDef menu.

TEST_F(ObjectOpsTest, SplittingALineDefClonesItAndItsSidesOntoTheSecondHalf)
{
    const LineDef shared = Level().LineDefs[4]; // Vertex 3 to 2, sides 6 and 7
    const LevelData after =
        FourStates([](LevelData& level) { SplitLineDefsAtMidpoint(level, Marked({4})); });

    ASSERT_EQ(after.LineDefs.Count(), 8);
    ASSERT_EQ(after.Vertexes.Count(), 7);
    EXPECT_EQ(after.Vertexes[6], (Vertex{128, 64}));
    const LineDef& first = after.LineDefs[4];
    const LineDef& second = after.LineDefs[7];
    EXPECT_EQ(first.StartVertex, 3u);
    EXPECT_EQ(first.EndVertex, 6u);
    EXPECT_EQ(second.StartVertex, 6u);
    EXPECT_EQ(second.EndVertex, 2u);
    EXPECT_EQ(second.Flags, shared.Flags);
    EXPECT_EQ(second.Type, shared.Type);
    EXPECT_EQ(second.Tag, shared.Tag);
    ASSERT_EQ(second.SideDef1, 8u);
    ASSERT_EQ(second.SideDef2, 9u);
    EXPECT_EQ(after.SideDefs[8], after.SideDefs[6]) << "textures, offsets and Sector unchanged";
    EXPECT_EQ(after.SideDefs[9], after.SideDefs[7]);
}

TEST_F(ObjectOpsTest, MidpointsTruncateTowardZeroForNegativeCoordinates)
{
    Map().Level =
        testkit::LevelBuilder().Sector().Vertex(-3, -3).Vertex(0, 0).Side(0).Line(0, 1, 0).Build();
    const LevelData after =
        FourStates([](LevelData& level) { SplitLineDefsAtMidpoint(level, Marked({0})); });
    EXPECT_EQ(after.Vertexes[2], (Vertex{-1, -1})) << "-3 / 2 is -1, not -2";
}

TEST_F(ObjectOpsTest, FlipsExchangeVertexesSidesOrBothAndLeaveTheFlags)
{
    const LineDef shared = Level().LineDefs[4];
    struct Case
    {
        FlipWhat What;
        std::uint32_t Start, End, Side1, Side2;
    };
    for (const Case& c :
         {Case{FlipWhat::VertexesAndSides, 2, 3, 7, 6}, Case{FlipWhat::VertexesOnly, 2, 3, 6, 7},
          Case{FlipWhat::SidesOnly, 3, 2, 7, 6}})
    {
        Map().Level = testkit::TwoRooms();
        UndoReset();
        const LevelData after =
            FourStates([&](LevelData& level) { FlipLineDefs(level, Marked({4}), c.What); });
        const LineDef& line = after.LineDefs[4];
        EXPECT_EQ(line.StartVertex, c.Start);
        EXPECT_EQ(line.EndVertex, c.End);
        EXPECT_EQ(line.SideDef1, c.Side1);
        EXPECT_EQ(line.SideDef2, c.Side2);
        EXPECT_EQ(line.Flags, shared.Flags);
    }
}

TEST_F(ObjectOpsTest, AligningStraightensOnlyLinesOffByLessThanTheGrid)
{
    const auto level = [](int x1, int y1, int x2, int y2)
    {
        return testkit::LevelBuilder()
            .Sector()
            .Vertex(x1, y1)
            .Vertex(x2, y2)
            .Side(0)
            .Line(0, 1, 0)
            .Build();
    };

    Map().Level = level(0, 0, 3, 100);
    LevelData after = FourStates([](LevelData& l) { EXPECT_TRUE(AlignLineDefToGrid(l, 0, 8)); });
    EXPECT_EQ(after.Vertexes[0], (Vertex{3, 0})) << "nearly vertical: the start takes the end's x";

    Map().Level = level(0, 0, 100, -5);
    UndoReset();
    after = FourStates([](LevelData& l) { EXPECT_TRUE(AlignLineDefToGrid(l, 0, 8)); });
    EXPECT_EQ(after.Vertexes[0], (Vertex{0, -5}))
        << "nearly horizontal: the start takes the end's y";

    for (const LevelData& unchanged :
         {level(0, 0, 0, 100), level(0, 0, 8, 100), level(0, 0, 3, 100)})
    {
        Map().Level = unchanged;
        const int grid = unchanged.Vertexes[1].X == 3 ? 0 : 8;
        EXPECT_FALSE(AlignLineDefToGrid(Map().Level, 0, grid));
        EXPECT_EQ(Map().Level, unchanged) << "straight, off by the grid or more, or no grid";
    }
}

TEST_F(ObjectOpsTest, RenumberingPutsTheFirstMarkedFirstAndKeepsTheRestInOrder)
{
    const LevelData before = Level();
    ObjectList list = Marked({5, 2});
    const LevelData after =
        FourStates([&](LevelData& level) { RenumberSelected(level, KindLineDef, list); });
    const std::vector<int> order = {5, 2, 0, 1, 3, 4, 6};
    for (std::size_t i = 0; i < order.size(); ++i)
    {
        EXPECT_EQ(after.LineDefs[i], before.LineDefs[static_cast<std::size_t>(order[i])]) << i;
    }
    EXPECT_EQ(list.Objects(), (std::vector<std::int32_t>{1, 0})) << "the list follows its objects";
}

TEST_F(ObjectOpsTest, DeletingASharedWallJoinsItsSectorsIntoTheFrontOne)
{
    const LevelData after = FourStates(
        [](LevelData& level) { EXPECT_TRUE(DeleteLineDefsJoinSectors(level, Marked({4}))); });
    EXPECT_EQ(after.LineDefs.Count(), 6);
    for (const SideDef& side : after.SideDefs)
    {
        EXPECT_EQ(side.Sector, 1u) << "the front's Sector stays";
    }
}

TEST_F(ObjectOpsTest, JoiningRefusesALineDefWithOneSideAndChangesNothing)
{
    const LevelData before = Level();
    EXPECT_FALSE(DeleteLineDefsJoinSectors(Map().Level, Marked({4, 0})));
    EXPECT_TRUE(Ui.Saw("LineDef 0 has only one side"));
    EXPECT_EQ(Level(), before);
}

TEST_F(ObjectOpsTest, VerticalOffsetsFollowTheFirstSidesCeilingAndWrapAt128)
{
    testkit::LevelBuilder rooms = ThreeRooms(0, 0, 0);
    rooms.Level().Sectors[0].CeilingHeight = 128;
    rooms.Level().Sectors[1].CeilingHeight = 100;
    rooms.Level().Sectors[2].CeilingHeight = 300;
    Map().Level = rooms.Build();
    // The tops of the three rooms, the west one marked last: it is the reference.
    const LevelData after = FourStates(
        [](LevelData& level) {
            EXPECT_EQ(AlignTexturesY(level, Marked({5, 3, 1}), 1), AlignResult::Done);
        });
    EXPECT_EQ(after.SideDefs[after.LineDefs[1].SideDef1].YOffset, 0);
    EXPECT_EQ(after.SideDefs[after.LineDefs[3].SideDef1].YOffset, 28);
    EXPECT_EQ(after.SideDefs[after.LineDefs[5].SideDef1].YOffset, -44)
        << "128 - 300 = -172 keeps its sign and wraps at 128, whatever the texture's height";
}

TEST_F(ObjectOpsTest, HorizontalOffsetsRunAlongTheTopsOfThreeRoomsAndUndoTakesThemBack)
{
    Map().Level = ThreeRooms(0, 0, 0).Build();
    const TextureSizeOf sizes = [](const TextureName&) -> std::optional<TextureSize> {
        return TextureSize{96, 128, 8, 8};
    };
    // The tops, LineDefs 1, 3 and 5, each 128 long, run east: 0, 128 % 96, 256 % 96.
    const LevelData after = FourStates(
        [&sizes](LevelData& level) {
            EXPECT_EQ(AlignTexturesX(level, Marked({5, 1, 3}), {}, sizes), AlignResult::Done);
        });
    EXPECT_EQ(after.SideDefs[after.LineDefs[1].SideDef1].XOffset, 0);
    EXPECT_EQ(after.SideDefs[after.LineDefs[3].SideDef1].XOffset, 32);
    EXPECT_EQ(after.SideDefs[after.LineDefs[5].SideDef1].XOffset, 64);
}

TEST_F(ObjectOpsTest, ASidesCeilingIsTheLowerOfTheTwoWhereTheOtherIsAboveItsFloor)
{
    testkit::LevelBuilder rooms = ThreeRooms(0, 0, 0);
    rooms.Level().Sectors[0].CeilingHeight = 96;
    rooms.Level().Sectors[1].CeilingHeight = 160;
    const LevelData level = rooms.Build();
    const LineDef& shared = level.LineDefs[8]; // Sector 1 in front, 0 behind
    EXPECT_EQ(SideCeiling(level, shared, 1), 96);
    EXPECT_EQ(SideCeiling(level, shared, 2), 96);
    testkit::LevelBuilder low = ThreeRooms(0, 200, 0);
    low.Level().Sectors[1].CeilingHeight = 260;
    const LevelData raised = low.Build();
    EXPECT_EQ(SideCeiling(raised, raised.LineDefs[8], 1), 260) << "the other is below this floor";
}

TEST_F(ObjectOpsTest, UnpeggedLineDefsAreLeftAndAllUnpeggedIsTold)
{
    Map().Level = ThreeRooms(0, 0, 0).Build();
    Map().Level.LineDefs[3].Flags |= FlagUpperUnpegged;
    Map().Level.SideDefs[Map().Level.LineDefs[3].SideDef1].YOffset = 7;
    EXPECT_EQ(AlignTexturesY(Map().Level, Marked({3, 1}), 1), AlignResult::Done);
    EXPECT_EQ(Level().SideDefs[Level().LineDefs[3].SideDef1].YOffset, 7);
    Map().Level.LineDefs[1].Flags |= FlagLowerUnpegged;
    EXPECT_EQ(AlignTexturesY(Map().Level, Marked({3, 1}), 1), AlignResult::AllPegged);
    EXPECT_EQ(AlignTexturesY(Map().Level, Marked({0}), 2), AlignResult::NothingDone)
        << "a one-sided LineDef has no second side";
}

TEST_F(ObjectOpsTest, StairsBetweenARoomsTopAndBottomStepUpFromItsWestWall)
{
    Map().Level = testkit::LevelBuilder().Room(0, 0, 256, 128).Build(); // 1 top, 3 bottom
    Ui.AnswerNumber(4).AnswerNumber(8).Answer(0);
    const LevelData after = FourStates(
        [](LevelData& level) {
            EXPECT_TRUE(MakeStairs(level, Marked({1, 3})));
        });
    ASSERT_EQ(after.Sectors.Count(), 5);
    for (int step = 0; step < 4; ++step)
    {
        EXPECT_EQ(after.Sectors[static_cast<std::size_t>(1 + step)].FloorHeight, 8 * (step + 1));
    }
    EXPECT_EQ(after.LineDefs.Count(), 4 + 6 + 3) << "two walls in four parts, three risers";
    for (const SideDef& side : after.SideDefs)
    {
        EXPECT_NE(side.Sector, 0u) << "every side of the room is on a step now";
    }
    // The risers: two-sided, the lower step in front, the riser texture below.
    int risers = 0;
    for (const LineDef& line : after.LineDefs)
    {
        if (line.SideDef2 == NoSideDef)
        {
            continue;
        }
        ++risers;
        const Sector& front = after.Sectors[after.SideDefs[line.SideDef1].Sector];
        const Sector& back = after.Sectors[after.SideDefs[line.SideDef2].Sector];
        EXPECT_EQ(back.FloorHeight - front.FloorHeight, 8);
        EXPECT_EQ(after.SideDefs[line.SideDef1].LowerTexture, TextureName::From("STONE4"));
        EXPECT_EQ(line.Flags & (FlagTwoSided | FlagImpassable), FlagTwoSided);
    }
    EXPECT_EQ(risers, 3);
}

TEST_F(ObjectOpsTest, ReversedStairsGoingDownStartFromTheOtherEnd)
{
    Map().Level = testkit::LevelBuilder().Room(0, 0, 256, 128).Build(); // 0 west, 2 east walls
    Ui.AnswerNumber(2).AnswerNumber(-8).Answer(1);
    const LevelData after = FourStates(
        [](LevelData& level) {
            EXPECT_TRUE(MakeStairs(level, Marked({1, 3})));
        });
    const auto floorBehind = [&](std::size_t wall)
    { return after.Sectors[after.SideDefs[after.LineDefs[wall].SideDef1].Sector].FloorHeight; };
    EXPECT_EQ(floorBehind(2), -8) << "the first step is at the east end";
    EXPECT_EQ(floorBehind(0), -16);
    for (const LineDef& line : after.LineDefs)
    {
        if (line.SideDef2 != NoSideDef)
        {
            EXPECT_LT(after.Sectors[after.SideDefs[line.SideDef1].Sector].FloorHeight,
                      after.Sectors[after.SideDefs[line.SideDef2].Sector].FloorHeight)
                << "the riser's front faces the lower step";
        }
    }
}

TEST_F(ObjectOpsTest, StairsNeedTwoLinesApartFacingOneSector)
{
    Map().Level = testkit::LevelBuilder().Room(0, 0, 256, 128).Build();
    const LevelData before = Level();
    EXPECT_FALSE(MakeStairs(Map().Level, Marked({1})));
    EXPECT_TRUE(Ui.Saw("You have 1 LineDefs selected"));
    EXPECT_FALSE(MakeStairs(Map().Level, Marked({0, 1})));
    EXPECT_TRUE(Ui.Saw("a common Vertex!"));
    Ui.AnswerNumber(64).AnswerNumber(8).Answer(0);
    EXPECT_FALSE(MakeStairs(Map().Level, Marked({0, 2})));
    EXPECT_TRUE(Ui.Saw("Steps are too small 2")) << "128 / 64 is not above 2";
    EXPECT_EQ(Level(), before);
    // A room whose bottom is shorter than its top: 60 steps fit the top only.
    Map().Level = testkit::LevelBuilder().Polygon({{0, 0}, {0, 128}, {256, 128}, {100, 0}}).Build();
    const LevelData uneven = Level();
    Ui.AnswerNumber(60).AnswerNumber(8).Answer(0);
    EXPECT_FALSE(MakeStairs(Map().Level, Marked({1, 3})));
    EXPECT_TRUE(Ui.Saw("Steps are too small 1"));
    EXPECT_EQ(Level(), uneven) << "neither LineDef is cut";
}

// The Vertex menu.

TEST_F(ObjectOpsTest, DeletingAVertexBetweenALineEndingAndOneStartingJoinsThem)
{
    Map().Level = testkit::WallOfTwoLines();
    const LevelData after =
        FourStates([](LevelData& level) { JoinAtVertexes(level, Marked({1})); });
    ASSERT_EQ(after.LineDefs.Count(), 1);
    ASSERT_EQ(after.Vertexes.Count(), 2);
    EXPECT_EQ(after.LineDefs[0].StartVertex, 0u);
    EXPECT_EQ(after.LineDefs[0].EndVertex, 1u);
    EXPECT_EQ(after.Vertexes[1], (Vertex{128, 0}));
    EXPECT_EQ(after.SideDefs[after.LineDefs[0].SideDef1].NormalTexture, TextureName::From("FIRST"))
        << "the ending LineDef's side stands for the joined line";
}

TEST_F(ObjectOpsTest, TwoLinesStartingAtAVertexAreJoinedOnlyWhenTheUserSaysDelete)
{
    const LevelData two = testkit::LevelBuilder()
                              .Sector()
                              .Vertex(0, 0)
                              .Vertex(64, 0)
                              .Vertex(128, 0)
                              .Side(0)
                              .Side(0)
                              .Line(1, 0, 0)
                              .Line(1, 2, 1)
                              .Build();
    Map().Level = two;
    Ui.Answer(0);
    JoinAtVertexes(Map().Level, Marked({1}));
    EXPECT_EQ(Ui.Last().Title, "delete vertex");
    EXPECT_TRUE(Ui.Saw("Vertex 1 connects to 2 lines"));
    EXPECT_TRUE(Ui.Saw("Numbered 0 1"));
    EXPECT_EQ(Level(), two) << "no: the Vertex stays with its lines";

    Ui.Answer(1);
    const LevelData after =
        FourStates([](LevelData& level) { JoinAtVertexes(level, Marked({1})); });
    EXPECT_EQ(after.LineDefs.Count(), 0);
    EXPECT_EQ(after.Vertexes.Count(), 2) << "the listed Vertex goes; the far ends stay";
}

TEST_F(ObjectOpsTest, MergingATrianglesCornersLeavesNoLineBetweenThemAndKeepsTheOthers)
{
    Map().Level = testkit::LevelBuilder()
                      .Sector()
                      .Vertex(0, 0)
                      .Vertex(64, 0)
                      .Vertex(0, 64)
                      .Vertex(-64, -64)
                      .Side(0)
                      .Side(0)
                      .Side(0)
                      .Side(0)
                      .Side(0)
                      .Line(0, 1, 0)
                      .Line(1, 2, 1)
                      .Line(2, 0, 2)
                      .Line(3, 1, 3)
                      .Line(2, 3, 4)
                      .Build();
    // Vertex 0 is marked last: the target.
    const LevelData after = FourStates(
        [](LevelData& level) {
            MergeVertexes(level, Marked({1, 2, 0}));
        });
    ASSERT_EQ(after.Vertexes.Count(), 2);
    ASSERT_EQ(after.LineDefs.Count(), 2) << "the triangle's three lines are gone";
    for (const LineDef& line : after.LineDefs)
    {
        EXPECT_TRUE((line.StartVertex == 1 && line.EndVertex == 0) ||
                    (line.StartVertex == 0 && line.EndVertex == 1))
            << "the outside lines now end at the target";
    }
}

// The Sector menu.

TEST_F(ObjectOpsTest, MergedSectorsPointAtTheHeadAndTheirRecordsStay)
{
    const LevelData after = FourStates(
        [](LevelData& level) {
            MergeSectors(level, Marked({1, 0}));
        });
    EXPECT_EQ(after.Sectors.Count(), 2);
    for (const SideDef& side : after.SideDefs)
    {
        EXPECT_EQ(side.Sector, 0u);
    }
}

TEST_F(ObjectOpsTest, DistributingNeedsThreeAndTruncatesTheSteps)
{
    Map().Level = ThreeRooms(-7, 50, 0).Build();
    EXPECT_FALSE(Distribute(Map().Level, Marked({0, 2}), Distributed::FloorHeight));
    EXPECT_TRUE(Ui.Saw("Select at least 3 Sectors"));

    // Marked 0 first (the tail) and 2 last (the head): 0, then 0 + 1 * (-7 - 0) / 2 = -3.
    const LevelData after = FourStates(
        [](LevelData& level) {
            EXPECT_TRUE(Distribute(level, Marked({0, 1, 2}), Distributed::FloorHeight));
        });
    EXPECT_EQ(after.Sectors[2].FloorHeight, 0);
    EXPECT_EQ(after.Sectors[1].FloorHeight, -3);
    EXPECT_EQ(after.Sectors[0].FloorHeight, -7);
}

TEST_F(ObjectOpsTest, RenumberedSectorsKeepEverySideOnItsOwnSector)
{
    Map().Level = ThreeRooms(0, 8, 16).Build();
    const LevelData before = Level();
    ObjectList list = Marked({2, 1});
    const LevelData after =
        FourStates([&](LevelData& level) { RenumberSelected(level, KindSector, list); });
    EXPECT_EQ(after.Sectors[0], before.Sectors[2]);
    EXPECT_EQ(after.Sectors[1], before.Sectors[1]);
    EXPECT_EQ(after.Sectors[2], before.Sectors[0]);
    for (std::size_t i = 0; i < after.SideDefs.size(); ++i)
    {
        EXPECT_EQ(after.Sectors[after.SideDefs[i].Sector],
                  before.Sectors[before.SideDefs[i].Sector])
            << i;
    }
}

TEST_F(ObjectOpsTest, ADoorFromASectorWithTwoTwoSidedLinesNeedsNoQuestion)
{
    Map().Level = ThreeRooms(0, 0, 0).Build();
    const LevelData after =
        FourStates([](LevelData& level) { EXPECT_TRUE(MakeDoorFromSector(level, 1, false)); });
    EXPECT_TRUE(Ui.Titles().empty());
    const DefaultTextures& textures = Map().Textures;
    for (const std::size_t door : {8u, 9u})
    {
        const LineDef& line = after.LineDefs[door];
        EXPECT_EQ(after.SideDefs[line.SideDef2].Sector, 1u)
            << "every face points away from the door";
        EXPECT_EQ(line.Type, 1u);
        EXPECT_EQ(line.Flags, FlagTwoSided);
        EXPECT_EQ(after.SideDefs[line.SideDef1].UpperTexture, textures.Door);
        EXPECT_EQ(after.SideDefs[line.SideDef1].NormalTexture, NoTexture);
        EXPECT_EQ(after.SideDefs[line.SideDef2].NormalTexture, NoTexture);
    }
    for (const std::size_t track : {3u, 4u})
    {
        EXPECT_EQ(after.LineDefs[track].Flags, 17);
        EXPECT_EQ(after.SideDefs[after.LineDefs[track].SideDef1].NormalTexture, textures.DoorTrack);
    }
    EXPECT_EQ(after.Sectors[1].CeilingHeight, after.Sectors[1].FloorHeight);
    EXPECT_EQ(after.Sectors[1].CeilingTexture, textures.DoorCeiling);
}

TEST_F(ObjectOpsTest, AHexenDoorAsksItsTimingAndCarriesItInTheArguments)
{
    Map().Level = ThreeRooms(0, 0, 0).Build();
    Ui.AnswerNumber(20).AnswerNumber(150);
    const LevelData after =
        FourStates([](LevelData& level) { EXPECT_TRUE(MakeDoorFromSector(level, 1, true)); });
    const LineDef& door = after.LineDefs[8];
    EXPECT_EQ(door.Type, 12u);
    EXPECT_EQ(door.Flags, 1540);
    EXPECT_EQ(door.Args[0], 20);
    EXPECT_EQ(door.Args[1], 150);
}

TEST_F(ObjectOpsTest, ADoorRefusesTooFewTwoSidedLinesAndAsksAboutTooMany)
{
    const LevelData before = Level();
    EXPECT_FALSE(MakeDoorFromSector(Map().Level, 1, false));
    EXPECT_TRUE(Ui.Saw("Only 1 LineDef with 2 sides for Sector 1"));
    EXPECT_EQ(Level(), before);

    // Three two-sided lines: the middle room's top opens onto a fourth Sector.
    testkit::LevelBuilder rooms = ThreeRooms(0, 0, 0);
    rooms.Sector().Side(3);
    rooms.Level().LineDefs[3].SideDef2 = 12;
    Map().Level = rooms.Build();
    const LevelData three = Level();
    Ui.Answer(0);
    EXPECT_FALSE(MakeDoorFromSector(Map().Level, 1, false));
    EXPECT_TRUE(Ui.Saw("3 LineDefs with 2 sides Found for Sector 1"));
    EXPECT_EQ(Level(), three);
}

// A passage, Sector 0 from x 0 to 256, with a door drawn across it from x 120 to 136: its two
// faces (LineDefs 4 and 6, across the passage) and its tracks (5 and 7, along the walls).
testkit::LevelBuilder DoorDrawnInAPassage()
{
    testkit::LevelBuilder passage;
    passage.Room(0, 0, 256, 128);
    passage.Level().Sectors[0].FloorHeight = 24;
    passage.Vertex(120, 0).Vertex(136, 0).Vertex(136, 128).Vertex(120, 128); // 4 to 7
    passage.Side(0).Side(0).Side(0).Side(0);                                 // 4 to 7
    passage.Line(7, 4, 4).Line(4, 5, 5).Line(5, 6, 6).Line(6, 7, 7);
    return passage;
}

TEST_F(ObjectOpsTest, FourLinesDrawnAcrossAPassageBecomeADoorWithItsTracks)
{
    Map().Level = DoorDrawnInAPassage().Build();
    const LevelData after = FourStates(
        [](LevelData& level) {
            EXPECT_TRUE(MakeDoorFromLineDefs(level, Marked({5, 4, 7, 6}), false));
        });
    ASSERT_EQ(after.Sectors.Count(), 2);
    const Sector& door = after.Sectors[1];
    EXPECT_EQ(door.FloorHeight, 24) << "closed at the passage's floor";
    EXPECT_EQ(door.CeilingHeight, 24);
    EXPECT_EQ(door.CeilingTexture, Map().Textures.DoorCeiling);
    for (const std::size_t face : {4u, 6u})
    {
        const LineDef& line = after.LineDefs[face];
        EXPECT_EQ(line.Type, 1u) << face;
        EXPECT_EQ(line.Flags, FlagTwoSided);
        ASSERT_NE(line.SideDef2, NoSideDef);
        EXPECT_EQ(after.SideDefs[line.SideDef2].Sector, 1u);
        EXPECT_EQ(after.SideDefs[line.SideDef1].UpperTexture, Map().Textures.Door);
    }
    for (const std::size_t track : {5u, 7u})
    {
        const LineDef& line = after.LineDefs[track];
        EXPECT_EQ(line.Flags, 17) << track;
        EXPECT_EQ(after.SideDefs[line.SideDef1].Sector, 1u);
        EXPECT_EQ(after.SideDefs[line.SideDef1].NormalTexture, Map().Textures.DoorTrack);
    }
}

TEST_F(ObjectOpsTest, ADoorOfLineDefsNeedsFourThatMeetInPairs)
{
    Map().Level = DoorDrawnInAPassage().Build();
    const LevelData before = Level();
    EXPECT_FALSE(MakeDoorFromLineDefs(Map().Level, Marked({4, 5, 6}), false));
    EXPECT_EQ(Ui.Last().Title, "Door Error");
    EXPECT_TRUE(Ui.Saw("You have 3 selected"));
    EXPECT_FALSE(MakeDoorFromLineDefs(Map().Level, Marked({0, 2, 4, 6}), false));
    EXPECT_TRUE(Ui.Saw("The LineDefs must all touch each other"));
    EXPECT_EQ(Level(), before);
}

TEST_F(ObjectOpsTest, ALiftRisesToItsHighestNeighbourAndTriggersFromThere)
{
    Map().Level = ThreeRooms(0, 0, 64).Build();
    Map().Level.Sectors[1].Tag = 3; // the lift takes the free tag it is given, whatever it had
    const LevelData after =
        FourStates([](LevelData& level) { EXPECT_TRUE(MakeLiftFromSector(level, 1, 5, false)); });
    const Sector& lift = after.Sectors[1];
    EXPECT_EQ(lift.FloorHeight, 64);
    EXPECT_EQ(lift.CeilingHeight, 128);
    EXPECT_EQ(lift.Tag, 5);

    // The west wall: the low neighbour in front, lowering the lift.
    const LineDef& low = after.LineDefs[8];
    EXPECT_EQ(low.Type, 62u);
    EXPECT_EQ(low.Tag, 5);
    EXPECT_EQ(after.SideDefs[low.SideDef1].Sector, 0u);
    EXPECT_NE(after.SideDefs[low.SideDef1].LowerTexture, NoTexture);
    EXPECT_EQ(after.SideDefs[low.SideDef2].LowerTexture, NoTexture) << "no step below the low side";

    // The east wall: its neighbour is at the lift's top, so it is walked over and turned round.
    const LineDef& high = after.LineDefs[9];
    EXPECT_EQ(high.Type, 88u);
    EXPECT_EQ(after.SideDefs[high.SideDef1].Sector, 1u);
    EXPECT_EQ(after.SideDefs[high.SideDef1].LowerTexture, Map().Textures.Lift);

    EXPECT_EQ(after.LineDefs[3].Flags, FlagImpassable);
}

TEST_F(ObjectOpsTest, ALiftWithoutATwoSidedLineIsRefused)
{
    Map().Level = testkit::LevelBuilder().Room(0, 0, 128, 128).Build();
    const LevelData before = Level();
    EXPECT_FALSE(MakeLiftFromSector(Map().Level, 0, 1, false));
    EXPECT_TRUE(Ui.Saw("The Lift has all 1-sided lines?"));
    EXPECT_EQ(Level(), before);
}

} // namespace
} // namespace kelvar::map
