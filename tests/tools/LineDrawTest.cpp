// The LineDraw tool fed scripted clicks: rooms in the void and in rooms, lines that split
// Sectors, runs across several Sectors and along existing rooms, runs ended early; every
// result checked object by object and against the rays of its own Sectors.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/LineDraw.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SectorRays.h"
#include "map/Undo.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"

#include <gtest/gtest.h>

#include <functional>

namespace kelvar::tools
{
namespace
{

using map::LevelData;
using map::NoSideDef;

std::uint32_t SectorOf(const LevelData& level, std::uint32_t side)
{
    return side < level.SideDefs.size() ? level.SideDefs[side].Sector : map::NoSector;
}

// Every side of every LineDef faces the Sector its ray finds, and no LineDef is left with a
// back side but no front.
void ExpectConsistent(const LevelData& level)
{
    for (int i = 0; i < level.LineDefs.Count(); ++i)
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        EXPECT_FALSE(line.SideDef1 == NoSideDef && line.SideDef2 != NoSideDef) << "LineDef " << i;
        for (const int which : {1, 2})
        {
            const std::uint32_t side = line.Side(which);
            if (side != NoSideDef)
            {
                EXPECT_EQ(map::SectorBeside(level, i, which).Sector,
                          static_cast<int>(SectorOf(level, side)))
                    << "LineDef " << i << " side " << which;
            }
        }
        const bool twoSided = line.SideDef1 != NoSideDef && line.SideDef2 != NoSideDef;
        if (line.SideDef1 != NoSideDef)
        {
            EXPECT_EQ(line.Flags & 5, twoSided ? 4 : 1) << "flags of LineDef " << i;
        }
    }
}

struct Click
{
    double X, Y;
};

class LineDrawTest : public ::testing::Test
{
protected:
    void SetUp() override { map::ResetMap(); }
    void TearDown() override { map::ResetMap(); }

    LevelData& Level() { return map::Map().Level; }

    // One run: the clicks, then the closing input. Returns the tool's state after it.
    DrawState Run(const std::vector<Click>& clicks, DrawAction close = DrawAction::Close)
    {
        LineDrawTool tool(Level(), -1);
        for (const Click& c : clicks)
        {
            tool.Feed({DrawAction::Click, c.X, c.Y});
        }
        const DrawState state = tool.Feed({close, 0, 0});
        EXPECT_EQ(tool.Feed({DrawAction::Escape, 0, 0}), DrawState::Left);
        return state;
    }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

TEST_F(LineDrawTest, ASquareRoomInTheVoidEitherWayRound)
{
    for (const bool clockwise : {true, false})
    {
        map::ResetMap();
        std::vector<Click> corners{{0, 0}, {0, 256}, {256, 256}, {256, 0}};
        if (!clockwise)
        {
            std::reverse(corners.begin(), corners.end());
        }
        Run(corners);
        ASSERT_EQ(Level().Vertexes.Count(), 4);
        ASSERT_EQ(Level().LineDefs.Count(), 4);
        ASSERT_EQ(Level().Sectors.Count(), 1);
        for (const map::LineDef& line : Level().LineDefs)
        {
            EXPECT_EQ(SectorOf(Level(), line.SideDef1), 0u);
            EXPECT_EQ(line.SideDef2, NoSideDef);
            EXPECT_EQ(Level().SideDefs[line.SideDef1].NormalTexture, map::Map().Textures.Normal);
        }
        EXPECT_EQ(map::SectorAt(Level(), 128, 128, map::SectorAtMode::Loose), 0);
        ExpectConsistent(Level());
    }
}

TEST_F(LineDrawTest, ARoomInsideARoomIsTwoSidedOntoTheRoomAround)
{
    Level() = testkit::LevelBuilder().Room(-256, -256, 768, 768).Build();
    Run({{0, 0}, {0, 256}, {256, 256}, {256, 0}});
    ASSERT_EQ(Level().Sectors.Count(), 2);
    ASSERT_EQ(Level().LineDefs.Count(), 8);
    for (std::size_t i = 4; i < 8; ++i)
    {
        const map::LineDef& line = Level().LineDefs[i];
        EXPECT_EQ(SectorOf(Level(), line.SideDef1), 1u) << i;
        EXPECT_EQ(SectorOf(Level(), line.SideDef2), 0u) << i;
    }
    ExpectConsistent(Level());
}

TEST_F(LineDrawTest, ALineFromWallToWallSplitsTheRoomAndTakesTheWallsLook)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 256, 256);
    builder.Level().SideDefs[0].NormalTexture = map::TextureName::From("BRICK7");
    Level() = builder.Build();
    const map::TextureName before = map::Map().Textures.Normal;
    Ui.AnswerList(2).Answer(1); // Split Sector; Continue
    {
        LineDrawTool tool(Level(), -1);
        tool.Feed({DrawAction::Click, 0, 128}); // on the west wall
        EXPECT_EQ(map::Map().Textures.Normal.Text(), "BRICK7") << "the run carries the look on";
        tool.Feed({DrawAction::Click, 256, 128}); // on the east wall
        tool.Feed({DrawAction::Close, 0, 0});
    }
    EXPECT_EQ(map::Map().Textures.Normal, before) << "the defaults come back with the tool";
    ASSERT_EQ(Level().Sectors.Count(), 2);
    ASSERT_EQ(Level().LineDefs.Count(), 7); // two walls split, one new line
    EXPECT_NE(map::SectorAt(Level(), 128, 64, map::SectorAtMode::Loose),
              map::SectorAt(Level(), 128, 192, map::SectorAtMode::Loose));
    ExpectConsistent(Level());
}

TEST_F(LineDrawTest, ALineAcrossTwoRoomsCutsEachInTwoAtItsCrossings)
{
    Level() = testkit::TwoRooms();
    Run({{-64, 64}, {320, 64}}, DrawAction::Escape);
    // Three crossings: three new Vertexes, and the drawn line in four pieces along it.
    ASSERT_EQ(Level().Vertexes.Count(), 6 + 2 + 3);
    ASSERT_EQ(Level().Sectors.Count(), 4);
    for (const auto& [x, y] :
         {std::pair{64, 32}, std::pair{64, 100}, std::pair{200, 32}, std::pair{200, 100}})
    {
        EXPECT_GE(map::SectorAt(Level(), x, y, map::SectorAtMode::Loose), 0) << x << "," << y;
    }
    EXPECT_NE(map::SectorAt(Level(), 64, 32, map::SectorAtMode::Loose),
              map::SectorAt(Level(), 64, 100, map::SectorAtMode::Loose));
    EXPECT_NE(map::SectorAt(Level(), 200, 32, map::SectorAtMode::Loose),
              map::SectorAt(Level(), 200, 100, map::SectorAtMode::Loose));
    ExpectConsistent(Level());
}

TEST_F(LineDrawTest, ARoomAlongAnExistingRoomSharesItsWall)
{
    Level() = testkit::LevelBuilder().Room(0, 0, 256, 256).Build();
    Run({{256, 0}, {256, 256}, {512, 256}, {512, 0}});
    ASSERT_EQ(Level().Vertexes.Count(), 6) << "the clicks on corners reuse their Vertexes";
    ASSERT_EQ(Level().LineDefs.Count(), 7) << "the shared wall is the old LineDef";
    ASSERT_EQ(Level().Sectors.Count(), 2);
    int twoSided = 0;
    for (const map::LineDef& line : Level().LineDefs)
    {
        twoSided += line.SideDef2 != NoSideDef ? 1 : 0;
    }
    EXPECT_EQ(twoSided, 1);
    EXPECT_EQ(map::SectorAt(Level(), 400, 128, map::SectorAtMode::Loose), 1);
    ExpectConsistent(Level());
}

TEST_F(LineDrawTest, RunsEndedEarlyKeepTheirLinesAndDropLooseVertexes)
{
    // Esc after three clicks: the closing line is not drawn and nothing is closed.
    Run({{0, 0}, {0, 256}, {256, 256}}, DrawAction::Escape);
    EXPECT_EQ(Level().LineDefs.Count(), 2);
    EXPECT_EQ(Level().Sectors.Count(), 0);
    // One click and a close: the Vertex no line uses goes.
    Run({{512, 512}});
    EXPECT_EQ(Level().Vertexes.Count(), 3);
    map::Map().Options.KeepExtraVertex = true;
    Run({{512, 512}});
    EXPECT_EQ(Level().Vertexes.Count(), 4);
}

TEST_F(LineDrawTest, ARunIsOneUndoStep)
{
    Level() = testkit::TwoRooms();
    const LevelData before = Level();
    Run({{-64, 64}, {320, 64}}, DrawAction::Escape);
    const LevelData after = Level();
    ASSERT_NE(after, before);
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(Level(), before);
    EXPECT_EQ(map::UndoStep(), 0);
    EXPECT_EQ(map::RedoStep(), 1);
    EXPECT_EQ(Level(), after);
}

TEST_F(LineDrawTest, CrossingsLandOnWholeUnitsAlongTheDrawnLine)
{
    map::Map().Options.GridSnap = false;
    Level() = testkit::LevelBuilder().Room(0, 0, 100, 100).Build();
    Run({{-31, 7}, {131, 61}}, DrawAction::Escape);
    // The line crosses the west wall at y = 7 + 31 * 54 / 162 = 17.33 and the east wall at
    // y = 7 + 131 * 54 / 162 - 100 * 54 / 162 = 50.67: rounded, 17 and 51.
    bool west = false;
    bool east = false;
    for (const map::Vertex& v : Level().Vertexes)
    {
        west = west || (v.X == 0 && v.Y == 17);
        east = east || (v.X == 100 && v.Y == 51);
    }
    EXPECT_TRUE(west);
    EXPECT_TRUE(east);
}

TEST(LineIntersectionTest, SharedEndsAndParallelLinesDoNotCross)
{
    EXPECT_FALSE(LineIntersection({0, 0}, {10, 0}, {10, 0}, {10, 10}, false));
    EXPECT_FALSE(LineIntersection({0, 0}, {10, 0}, {0, 5}, {10, 5}, false));
    const std::optional<map::Point> at =
        LineIntersection({0, 0}, {10, 10}, {0, 10}, {10, 0}, false);
    ASSERT_TRUE(at);
    EXPECT_EQ(at->X, 5);
    EXPECT_EQ(at->Y, 5);
    const std::optional<map::Point> negative =
        LineIntersection({-10, -3}, {10, -3}, {-5.5, -10}, {-5.5, 10}, true);
    ASSERT_TRUE(negative);
    EXPECT_EQ(negative->X, -6) << "half away from zero";
}

} // namespace
} // namespace kelvar::tools
