// Splitting a Sector by a line between two Vertexes: the halves, islands going along, the
// refusals that leave the level untouched, and the plain two-sided line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorSplit.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SectorRays.h"
#include "map/Undo.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"

#include <gtest/gtest.h>

namespace kelvar::map
{
namespace
{

int VertexAt(const LevelData& level, int x, int y)
{
    for (int i = 0; i < level.Vertexes.Count(); ++i)
    {
        const Vertex& v = level.Vertexes[static_cast<std::size_t>(i)];
        if (v.X == x && v.Y == y)
        {
            return i;
        }
    }
    ADD_FAILURE() << "no Vertex at " << x << ", " << y;
    return -1;
}

std::uint32_t SectorOf(const LevelData& level, std::uint32_t side)
{
    return side < level.SideDefs.size() ? level.SideDefs[side].Sector : NoSector;
}

// Every side of every LineDef faces the Sector that a ray from it finds: the level's Sectors
// are consistent with its geometry.
void ExpectSidesFaceTheirSectors(const LevelData& level)
{
    for (int i = 0; i < level.LineDefs.Count(); ++i)
    {
        for (const int which : {1, 2})
        {
            const std::uint32_t side = level.LineDefs[static_cast<std::size_t>(i)].Side(which);
            if (side != NoSideDef)
            {
                EXPECT_EQ(SectorBeside(level, i, which).Sector,
                          static_cast<int>(SectorOf(level, side)))
                    << "LineDef " << i << " side " << which;
            }
        }
    }
}

class SectorSplitTest : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
    void TearDown() override { ResetMap(); }

    LevelData& Level() { return Map().Level; }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

TEST_F(SectorSplitTest, ADiagonalSplitsASquareRoomInTwoTriangles)
{
    Level() = testkit::LevelBuilder().Room(0, 0, 256, 256).Build();
    const LevelData before = Level();
    Ui.AnswerList(2).Answer(1); // Split Sector; Continue

    ASSERT_EQ(SplitSector(Level(), VertexAt(Level(), 0, 0), VertexAt(Level(), 256, 256), true),
              SplitDone);

    EXPECT_EQ(Ui.EntriesEnabled.at(0), (std::vector<bool>{true, true, true}));
    ASSERT_TRUE(Ui.Saw("No Sector found between"));
    ASSERT_EQ(Level().Sectors.Count(), 2);
    ASSERT_EQ(Level().LineDefs.Count(), 5);
    const LineDef& made = Level().LineDefs[4];
    EXPECT_EQ(made.Flags, 4);
    EXPECT_NE(made.SideDef1, NoSideDef);
    EXPECT_NE(made.SideDef2, NoSideDef);
    EXPECT_NE(SectorOf(Level(), made.SideDef1), SectorOf(Level(), made.SideDef2));
    EXPECT_TRUE(Level().SideDefs[made.SideDef1].NormalTexture.IsNone());
    const int northWest = SectorAt(Level(), 64, 192, SectorAtMode::Loose);
    const int southEast = SectorAt(Level(), 192, 64, SectorAtMode::Loose);
    EXPECT_NE(northWest, southEast);
    EXPECT_GE(northWest, 0);
    EXPECT_GE(southEast, 0);
    ExpectSidesFaceTheirSectors(Level());

    EXPECT_EQ(UndoStep(), 1);
    EXPECT_EQ(Level(), before);
}

TEST_F(SectorSplitTest, AnIslandGoesWithTheHalfItLiesIn)
{
    testkit::LevelBuilder builder;
    builder.Polygon({{0, 0}, {0, 256}, {256, 256}, {512, 256}, {512, 0}, {256, 0}});
    // A pillar in the east half: its corners run anticlockwise, so its sides face out, into
    // the room's Sector.
    builder.Polygon({{350, 100}, {450, 100}, {450, 150}, {350, 150}});
    LevelData& built = builder.Level();
    for (std::size_t side = 6; side < 10; ++side)
    {
        built.SideDefs[side].Sector = 0;
    }
    built.Sectors.resize(1);
    Level() = builder.Build();
    Ui.AnswerList(2).Answer(1);

    ASSERT_EQ(SplitSector(Level(), VertexAt(Level(), 256, 256), VertexAt(Level(), 256, 0), false),
              SplitDone);

    ASSERT_EQ(Level().Sectors.Count(), 2);
    const std::uint32_t east = SectorOf(Level(), Level().LineDefs[3].SideDef1); // 512,256-512,0
    const std::uint32_t west = SectorOf(Level(), Level().LineDefs[0].SideDef1); // 0,0-0,256
    EXPECT_NE(east, west);
    for (std::size_t line = 6; line < 10; ++line)
    {
        EXPECT_EQ(SectorOf(Level(), Level().LineDefs[line].SideDef1), east) << line;
    }
    ExpectSidesFaceTheirSectors(Level());
}

TEST_F(SectorSplitTest, RefusalsChangeNothing)
{
    Level() = testkit::LevelBuilder().Room(0, 0, 256, 256).Build();
    const int a = VertexAt(Level(), 0, 0);
    const int b = VertexAt(Level(), 256, 256);
    const LevelData room = Level();

    // Exit, and a cancelled question, leave it to the caller.
    Ui.AnswerList(0);
    EXPECT_EQ(SplitSector(Level(), a, b, true), SplitExit);
    Ui.AnswerList(std::nullopt);
    EXPECT_EQ(SplitSector(Level(), a, b, true), SplitExit);
    // Stopping at the question about the Sector between them.
    Ui.AnswerList(2).Answer(0);
    EXPECT_EQ(SplitSector(Level(), a, b, true), SplitNothing);
    EXPECT_EQ(Level(), room);
    EXPECT_EQ(UndoStep(), 0) << "no undo step was taken";

    // Two walked LineDefs sharing one SideDef can't be divided between two Sectors.
    Level().LineDefs[1].SideDef1 = Level().LineDefs[0].SideDef1;
    const LevelData packed = Level();
    Ui.Clear();
    Ui.AnswerList(2).Answer(1);
    EXPECT_EQ(SplitSector(Level(), a, b, true), SplitNothing);
    EXPECT_TRUE(Ui.Saw("ERROR\n\nPacked/Duplicate Sidedefs can't be split"));
    EXPECT_EQ(Level(), packed);
}

TEST_F(SectorSplitTest, TwoSidedLineKeepsOneSectorAndSplitIsGreyedForLooseVertexes)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 256, 256).Vertex(64, 64).Vertex(192, 192);
    Level() = builder.Build();
    Ui.AnswerList(1).Answer(1); // 2-Sided Line; Continue

    ASSERT_EQ(SplitSector(Level(), 4, 5, false), SplitDone);

    EXPECT_EQ(Ui.EntriesEnabled.at(0), (std::vector<bool>{true, true, false}));
    ASSERT_EQ(Level().Sectors.Count(), 1);
    const LineDef& made = Level().LineDefs[4];
    EXPECT_EQ(made.StartVertex, 4u);
    EXPECT_EQ(made.EndVertex, 5u);
    EXPECT_EQ(made.Flags, 4);
    EXPECT_EQ(SectorOf(Level(), made.SideDef1), 0u);
    EXPECT_EQ(SectorOf(Level(), made.SideDef2), 0u);
}

TEST_F(SectorSplitTest, ConnectingVertexesGivesEachSideTheSectorItsRayFinds)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 256, 256).Vertex(64, 64).Vertex(64, 192).Vertex(400, 64).Vertex(400, 192);
    Level() = builder.Build();

    const int inside = ConnectVertexes(Level(), 4, 5);
    EXPECT_EQ(SectorOf(Level(), Level().LineDefs[static_cast<std::size_t>(inside)].SideDef1), 0u);
    EXPECT_EQ(SectorOf(Level(), Level().LineDefs[static_cast<std::size_t>(inside)].SideDef2), 0u);
    EXPECT_EQ(Level().LineDefs[static_cast<std::size_t>(inside)].Flags & 4, 4);

    const int outside = ConnectVertexes(Level(), 6, 7);
    const LineDef& alone = Level().LineDefs[static_cast<std::size_t>(outside)];
    EXPECT_EQ(alone.SideDef1, NoSideDef);
    EXPECT_EQ(alone.SideDef2, NoSideDef);
}

} // namespace
} // namespace kelvar::map
