// Tests of the clean-up after a move and of the rays that find the Sector beside a LineDef:
// Vertexes merged, LineDefs split at Vertexes, superimposed LineDefs merged into one facing
// both its Sectors.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MergeCheck.h"
#include "map/MapState.h"
#include "map/SectorRays.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/MapPrinters.h"

#include <gtest/gtest.h>

namespace kelvar::map
{
namespace
{

class MergeCheckTest : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
    void TearDown() override { ResetMap(); }

    static ObjectList Listed(std::initializer_list<int> vertexes)
    {
        ObjectList list;
        for (const int vertex : vertexes)
        {
            ObjectListPush(list, vertex);
        }
        return list;
    }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

TEST_F(MergeCheckTest, RaysFindTheSectorOnEachSideAndNothingOutside)
{
    const LevelData level = testkit::TwoRooms();
    EXPECT_EQ(SectorBeside(level, 4, 1).Sector, 1) << "the shared wall's front faces east";
    EXPECT_EQ(SectorBeside(level, 4, 2).Sector, 0);
    EXPECT_EQ(SectorBeside(level, 0, 1).Sector, 0) << "an outer wall's inside";
    EXPECT_EQ(SectorBeside(level, 0, 2), Beside{}) << "outside: nothing is hit";
    const Beside top = SectorBeside(level, 1, 1); // the west room's top, its inside south
    EXPECT_EQ(top.Sector, 0);
    EXPECT_EQ(top.Line, 2) << "the ray goes straight down to the bottom wall";
}

TEST_F(MergeCheckTest, ALineCrossesABoxByAnEndOrThroughAnEdgeWithInclusiveBounds)
{
    EXPECT_TRUE(LineCrossesBox(0, 0, 10, 10, -1, -1, 1, 1)) << "an end inside";
    EXPECT_TRUE(LineCrossesBox(-10, 0, 10, 0, -1, -1, 1, 1)) << "straight through";
    EXPECT_TRUE(LineCrossesBox(-10, -10, 10, 10, -1, -1, 1, 1)) << "through a corner";
    EXPECT_TRUE(LineCrossesBox(64, 10, 64, -10, 64, 0, 64, 0)) << "a box of no size on the line";
    EXPECT_FALSE(LineCrossesBox(-10, 2, 10, 2, -1, -1, 1, 1)) << "passing above";
    EXPECT_FALSE(LineCrossesBox(-10, -10, -5, 10, -1, -1, 1, 1)) << "passing to the left";
}

TEST_F(MergeCheckTest, TwoRoomsDrawnApartAndPushedTogetherShareOneTwoSidedWall)
{
    testkit::LevelBuilder rooms;
    rooms.Room(0, 0, 128, 128).Room(128, 0, 128, 128);
    rooms.Level().Sectors[1].FloorHeight = 16;
    Map().Level = rooms.Build();
    ObjectList moved = Listed({4, 5}); // the east room's west wall, drawn on the west room's
    const MergeCheckCounts counts = MergeCheckAfterMove(Map().Level, moved, false);
    EXPECT_EQ(counts, (MergeCheckCounts{2, 0, 1}));

    const LevelData& level = Map().Level;
    ASSERT_EQ(level.Vertexes.Count(), 6);
    ASSERT_EQ(level.LineDefs.Count(), 7);
    const LineDef& wall = level.LineDefs[2]; // the west room's east wall, kept
    ASSERT_NE(wall.SideDef2, NoSideDef);
    EXPECT_EQ(wall.Flags & (FlagTwoSided | FlagImpassable), FlagTwoSided);
    EXPECT_EQ(level.SideDefs[wall.SideDef1].Sector,
              static_cast<std::uint32_t>(SectorBeside(level, 2, 1).Sector));
    EXPECT_EQ(level.SideDefs[wall.SideDef2].Sector,
              static_cast<std::uint32_t>(SectorBeside(level, 2, 2).Sector));
    EXPECT_NE(level.SideDefs[wall.SideDef1].Sector, level.SideDefs[wall.SideDef2].Sector);
    EXPECT_EQ(level.SideDefs[wall.SideDef1].NormalTexture, NoTexture);
    EXPECT_EQ(level.SideDefs[wall.SideDef2].NormalTexture, NoTexture);
    // The west room's floor is lower: its side shows the step.
    const SideDef& west =
        level.SideDefs[level.SideDefs[wall.SideDef1].Sector == 0 ? wall.SideDef1 : wall.SideDef2];
    EXPECT_FALSE(west.LowerTexture.IsNone());
    EXPECT_TRUE(west.UpperTexture.IsNone()) << "the ceilings are level";
}

TEST_F(MergeCheckTest, AWallDrawnTwiceTheSameWayStaysOneSided)
{
    testkit::LevelBuilder room;
    room.Room(0, 0, 128, 128).Side(0, "OTHER").Line(0, 1, 4); // LineDef 4 on LineDef 0
    Map().Level = room.Build();
    EXPECT_TRUE(MergeLineDefs(Map().Level, 0, 4));
    const LevelData& level = Map().Level;
    ASSERT_EQ(level.LineDefs.Count(), 4);
    const LineDef& wall = level.LineDefs[0];
    EXPECT_EQ(wall.SideDef2, NoSideDef);
    EXPECT_EQ(wall.Flags & (FlagTwoSided | FlagImpassable), FlagImpassable);
    EXPECT_EQ(level.SideDefs[wall.SideDef1].Sector, 0u);
    EXPECT_EQ(level.SideDefs.Count(), 5) << "the removed LineDef's side is left for the check";
}

TEST_F(MergeCheckTest, AVertexOnALineSplitsItOnlyWithinTheTolerance)
{
    const auto level = [](int y)
    {
        testkit::LevelBuilder room;
        room.Room(0, 0, 128, 128).Vertex(64, y);
        return room.Build();
    };
    struct Case
    {
        int Y;
        double Tolerance;
        int Splits;
    };
    for (const Case& c : {Case{0, 0.0, 1}, Case{1, 0.0, 0}, Case{1, 0.5, 0}, Case{1, 1.0, 1}})
    {
        Map().Level = level(c.Y);
        Map().Options.VertexMergeTolerance = c.Tolerance;
        ObjectList moved = Listed({3, 4}); // the room's corner at (128, 0) and the new Vertex
        const MergeCheckCounts counts = MergeCheckAfterMove(Map().Level, moved, false);
        EXPECT_EQ(counts.LineSplits, c.Splits) << "y " << c.Y << ", tolerance " << c.Tolerance;
        EXPECT_EQ(Map().Level.LineDefs.Count(), 4 + c.Splits);
    }
}

TEST_F(MergeCheckTest, EscapeStopsTheScanLeavingWhatWasMerged)
{
    // 150 Vertexes, each on the spot of one more that is not listed.
    testkit::LevelBuilder pairs;
    pairs.Sector();
    for (int i = 0; i < 150; ++i)
    {
        pairs.Vertex(i * 8, 0).Vertex(i * 8, 0);
    }
    Map().Level = pairs.Build();
    ObjectList moved;
    for (int i = 149; i >= 0; --i)
    {
        ObjectListPush(moved, 2 * i);
    }
    Ui.EscapeFromPoll(1);
    const MergeCheckCounts counts = MergeCheckAfterMove(Map().Level, moved, false);
    EXPECT_EQ(counts.VertexMerges, 99) << "the first poll, after 100 steps, stops the scan";
    EXPECT_EQ(Map().Level.Vertexes.Count(), 300 - 99);
}

TEST_F(MergeCheckTest, TheInteractiveFormAsksUntilTheFirstYes)
{
    testkit::LevelBuilder rooms;
    rooms.Room(0, 0, 128, 128).Room(128, 0, 128, 128);
    Map().Level = rooms.Build();
    const LevelData before = Map().Level;
    ObjectList moved = Listed({4, 5});
    Ui.Answer(0).Answer(0);
    EXPECT_EQ(MergeCheckAfterMove(Map().Level, moved, true), (MergeCheckCounts{}));
    EXPECT_TRUE(Ui.Saw("One or more Vertices specify the same position"));
    EXPECT_EQ(Map().Level, before) << "no: nothing merged";

    Ui.Clear();
    Ui.Answer(1);
    moved = Listed({4, 5});
    const MergeCheckCounts counts = MergeCheckAfterMove(Map().Level, moved, true);
    EXPECT_EQ(counts, (MergeCheckCounts{2, 0, 1}));
    EXPECT_EQ(Ui.Titles().size(), 1u) << "after the first yes no more questions";
}

} // namespace
} // namespace kelvar::map
