// Tests of hit testing on built levels and on Freedoom 2 MAP01, and of AutoMode.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/HitTest.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "view/ViewState.h"
#include "wad/LevelReader.h"

#include <random>

namespace kelvar::view
{
namespace
{

using testkit::LevelBuilder;

class HitTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        map::ResetMap();
        SetWindowSize(Viewport, 800, 600);
        Viewport.Scale = 1.0f;
        CenterOn(Viewport, 0, 0);
    }

    int At(const map::LevelData& level, int kind, double x, double y, double half = 8)
    {
        return FindObject(level, Viewport, false, kind, x - half, y - half, x + half, y + half);
    }

    MapViewport Viewport;
};

TEST_F(HitTest, ThingsNearestTheMiddleWinWithADirectHitTakenAtOnce)
{
    LevelBuilder builder;
    builder.Thing(10, 10, 1).Thing(10, 10, 2).Thing(3, 0, 3).Thing(0, 0, 4);
    const map::LevelData level = builder.Build();
    EXPECT_EQ(At(level, ModeThings, 10, 10), 0) << "two at one point: the first";
    EXPECT_EQ(At(level, ModeThings, 0.4, 0.4), 3) << "within half a unit: taken at once";
    EXPECT_EQ(At(level, ModeThings, 2, 0), 2);
    EXPECT_EQ(At(level, ModeThings, 100, 100), -1);
    // The box's corners may come in any order, and can be pixels.
    EXPECT_EQ(FindObject(level, Viewport, false, ModeThings, 12, 12, 8, 8), 0);
    EXPECT_EQ(FindObject(level, Viewport, true, ModeThings, 405, 295, 415, 285), 0);
    EXPECT_EQ(At(level, 3, 10, 10), -1) << "SideDefs can't be pointed at";
}

TEST_F(HitTest, LinesAreFoundByTheirPerpendicularDistanceWhereverTheyLie)
{
    LevelBuilder builder;
    builder.Sector().Side(0).Side(0).Side(0);
    builder.Vertex(0, 0).Vertex(100, 0).Vertex(0, 10).Vertex(100, 10).Vertex(50, 50).Vertex(50, 50);
    builder.Line(0, 1, 0).Line(2, 3, 1).Line(4, 5, 2);
    const map::LevelData level = builder.Build();
    EXPECT_EQ(At(level, ModeLineDefs, 50, 3), 0);
    EXPECT_EQ(At(level, ModeLineDefs, 50, 7), 1);
    EXPECT_EQ(At(level, ModeLineDefs, 50, 5), 0) << "a tie keeps the first";
    EXPECT_EQ(At(level, ModeLineDefs, -3, 0), -1) << "beyond the ends";
    EXPECT_EQ(At(level, ModeLineDefs, 100, 5), -1) << "the foot on an end is not between them";
    EXPECT_EQ(At(level, ModeLineDefs, 50, 50, 2), 1) << "a line of no length is never found";
    EXPECT_EQ(At(level, ModeLineDefs, 50, 3000, 1), 1) << "far outside the box, still the nearest";
    EXPECT_EQ(At(level, ModeLineDefs, 50, -3000, 1), 0);
    EXPECT_DOUBLE_EQ(LineDistanceSquared(0, 0, 100, 0, 50, 3), 9.0);
    EXPECT_DOUBLE_EQ(LineDistanceSquared(0, 0, 30, 40, 55, 10), 1444.0);
    EXPECT_LT(LineDistanceSquared(0, 0, 0, 0, 1, 1), 0.0);
}

TEST_F(HitTest, ALargeRoomHighlightsTheNearestWallFromAnyPointInsideIt)
{
    // Walls 0 west, 1 north, 2 east, 3 south; a 4096-unit room fitted to the window.
    const map::LevelData level = LevelBuilder().Room(0, 0, 4096, 4096).Build();
    BestFit(Viewport, level);
    ASSERT_LT(Viewport.Scale, 0.2f);
    const auto pointAt = [&](int x, int y)
    {
        return FindNearPointer(level, Viewport, ModeLineDefs, 10, MapToScreenX(Viewport, x),
                               MapToScreenY(Viewport, y));
    };
    // The object select range is 10 pixels, some 60 units here; the walls lie much further.
    EXPECT_EQ(pointAt(40, 1000), 0);
    EXPECT_EQ(pointAt(900, 2000), 0);
    EXPECT_EQ(pointAt(2000, 3000), 1);
    EXPECT_EQ(pointAt(3500, 2100), 2);
    EXPECT_EQ(pointAt(2100, 1900), 3);
    EXPECT_EQ(FindObject(level, Viewport, false, ModeLineDefs, 2048, 2048, 2048, 2048), 0)
        << "in the middle all four are as near: the first";
    EXPECT_EQ(pointAt(4300, 1000), 2) << "outside, beside the east wall";
    EXPECT_EQ(pointAt(4300, 4300), -1) << "off a corner no wall has the point between its ends";
    // Zoomed in, so that the box is a few units wide, the answers stay.
    Viewport.Scale = 8.0f;
    CenterOn(Viewport, 1000, 1000);
    EXPECT_EQ(pointAt(1000, 1030), 0);
    EXPECT_EQ(pointAt(1030, 1000), 3);
}

TEST_F(HitTest, SectorsAreFoundByTheSideFacingThePoint)
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Room(300, 0, 128, 128);
    const map::LevelData level = builder.Build();
    EXPECT_EQ(At(level, ModeSectors, 64, 64), 0);
    EXPECT_EQ(At(level, ModeSectors, 364, 30), 1);
    EXPECT_EQ(At(level, ModeSectors, 200, 64), -1) << "between the rooms: outside every Sector";
    EXPECT_EQ(At(level, ModeSectors, 64, 500), -1);
}

TEST_F(HitTest, PointerSearchesScaleTheirBoxes)
{
    LevelBuilder builder;
    builder.Thing(30, 0, 1).Vertex(0, 0).Vertex(3, 0);
    const map::LevelData level = builder.Build();
    // At scale 1 the pointer at pixel 400 is map 0; the Thing is 30 pixels away.
    EXPECT_EQ(FindNearPointer(level, Viewport, ModeThings, 20, 400, 300), -1);
    EXPECT_EQ(FindNearPointer(level, Viewport, ModeThings, 40, 400, 300), 0);
    Viewport.Scale = 4.0f; // 40 units of range are 160 pixels: the larger box wins
    EXPECT_EQ(FindNearPointer(level, Viewport, ModeThings, 40, 400, 300), 0);
    Viewport.Scale = 1.0f;
    EXPECT_EQ(FindVertexNear(level, Viewport, 402, 300, 1.0), 1) << "map point 2: nearer Vertex 1";
    EXPECT_EQ(FindVertexNear(level, Viewport, 400, 300, 0.0), -1);
    EXPECT_EQ(FindThingNear(level, Viewport, 400, 300, 10.0), -1);
    EXPECT_EQ(FindThingNear(level, Viewport, 425, 300, 10.0), 0);
}

TEST_F(HitTest, AutoModePicksTheModeOfWhatIsUnderThePointer)
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Thing(64, 64, 1);
    const map::LevelData level = builder.Build();
    const AutoModeRanges ranges;
    // Pixel (400, 300) is map (0, 0): a corner Vertex.
    AutoModeChoice choice = ChooseAutoMode(level, Viewport, ModeThings, -1, 400, 300, ranges);
    EXPECT_EQ(choice.Mode, ModeVertexes);
    EXPECT_TRUE(choice.Changed);
    choice = ChooseAutoMode(level, Viewport, ModeVertexes, 0, 464, 236, ranges);
    EXPECT_EQ(choice.Mode, ModeThings);
    choice = ChooseAutoMode(level, Viewport, ModeThings, 0, 410, 250, ranges); // near wall 0
    EXPECT_EQ(choice.Mode, ModeLineDefs);
    EXPECT_EQ(choice.Object, 0);
    // In LineDef mode, near another line than the current: the Sector there.
    choice = ChooseAutoMode(level, Viewport, ModeLineDefs, 0, 450, 180, ranges);
    EXPECT_EQ(choice.Mode, ModeSectors);
    EXPECT_EQ(choice.Object, 0);
    CenterOn(Viewport, 5000, 5000);
    choice = ChooseAutoMode(level, Viewport, ModeLineDefs, 2, 400, 300, ranges);
    EXPECT_FALSE(choice.Changed) << "nothing near: the mode stays";
}

TEST_F(HitTest, TheIndexIsRebuiltAfterAChange)
{
    map::LevelData level = LevelBuilder().Thing(0, 0, 1).Build();
    EXPECT_EQ(At(level, ModeThings, 0, 0), 0);
    map::InsertObject(level, map::KindThing, -1, 500, 500);
    EXPECT_EQ(At(level, ModeThings, 500, 500), 1);
    map::DeleteObject(level, map::KindThing, 0);
    EXPECT_EQ(At(level, ModeThings, 0, 0), -1);
}

// On a real level the answers through the index must be those of a walk over every object.
class HitTestFreedoom : public testkit::WadFixture
{
};

TEST_F(HitTestFreedoom, Map01AgreesWithAWalkOverEveryObject)
{
    map::ResetMap();
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    map::LevelData level;
    wad::ReadLevel(level, "MAP01", false);
    MapViewport viewport;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> x(level.MinX - 3000, level.MaxX + 3000);
    std::uniform_real_distribution<double> y(level.MinY - 3000, level.MaxY + 3000);
    for (int probe = 0; probe < 1000; ++probe)
    {
        const double px = x(random);
        const double py = y(random);
        const double half = 48;
        // Lines: the nearest of them all, the first on a tie.
        int expected = -1;
        double best = 0;
        for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
        {
            const map::LineDef& line = level.LineDefs[i];
            const map::Vertex& a = level.Vertexes[line.StartVertex];
            const map::Vertex& b = level.Vertexes[line.EndVertex];
            const double d = LineDistanceSquared(a.X, a.Y, b.X, b.Y, px, py);
            if (d >= 0 && (expected < 0 || d < best))
            {
                expected = static_cast<int>(i);
                best = d;
            }
        }
        ASSERT_EQ(FindObject(level, viewport, false, ModeLineDefs, px - half, py - half, px + half,
                             py + half),
                  expected)
            << "probe at " << px << "," << py;
        // Things: the nearest in the box.
        int thing = -1;
        double nearest = 0;
        for (std::size_t i = 0; i < level.Things.size(); ++i)
        {
            const double dx = level.Things[i].X - px;
            const double dy = level.Things[i].Y - py;
            if (std::abs(dx) <= half && std::abs(dy) <= half &&
                (thing < 0 || dx * dx + dy * dy < nearest))
            {
                thing = static_cast<int>(i);
                nearest = dx * dx + dy * dy;
            }
        }
        ASSERT_EQ(FindObject(level, viewport, false, ModeThings, px - half, py - half, px + half,
                             py + half),
                  thing);
    }
    // The player's start is found where it stands.
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        if (level.Things[i].Type == 1)
        {
            const map::Thing& start = level.Things[i];
            EXPECT_EQ(
                FindObject(level, viewport, false, ModeThings, start.X, start.Y, start.X, start.Y),
                static_cast<int>(i));
            EXPECT_GE(
                FindObject(level, viewport, false, ModeSectors, start.X, start.Y, start.X, start.Y),
                0)
                << "the player starts inside a Sector";
        }
    }
}

} // namespace
} // namespace kelvar::view
