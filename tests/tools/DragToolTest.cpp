// Tests of dragging: what a drag takes along, moves held to the grid, Esc, and the clean-up
// and the Sector's Things on release.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/DragTool.h"

#include "map/MapState.h"
#include "map/Selection.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/MapPrinters.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <initializer_list>

namespace kelvar::tools
{
namespace
{

using map::Map;
using map::ModeLineDefs;
using map::ModeSectors;
using map::ModeThings;
using map::ModeVertexes;

class DragToolTest : public ::testing::Test
{
protected:
    void SetUp() override { map::ResetMap(); }
    void TearDown() override { map::ResetMap(); }

    static void Select(std::initializer_list<int> objects)
    {
        for (const int object : objects)
        {
            map::ObjectListPush(Map().Select.Selection, object);
        }
    }

    static map::Vertex At(int vertex)
    {
        return Map().Level.Vertexes[static_cast<std::size_t>(vertex)];
    }
    static SnappedPoint Place(int thing)
    {
        const map::Thing& at = Map().Level.Things[static_cast<std::size_t>(thing)];
        return {at.X, at.Y};
    }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
    DragState Drag;
};

TEST_F(DragToolTest, ThePressObjectIsFoundInTheOrderOfTheMode)
{
    // A Vertex and a Thing on the same spot, and a Thing alone 100 units east.
    map::LevelData level =
        testkit::LevelBuilder().Vertex(0, 0).Thing(0, 0, 1).Thing(100, 0, 1).Build();
    const view::MapViewport viewport; // map (0, 0) at pixel (400, 300), half a pixel a unit
    const auto at = [&](int mode, int pointerX, int highlight)
    { return DragObjectAtPress(level, viewport, mode, pointerX, 300, 4, 4, highlight); };
    EXPECT_EQ(at(ModeVertexes, 400, 7), (PressObject{ModeVertexes, 0}));
    EXPECT_EQ(at(ModeThings, 400, 7), (PressObject{ModeThings, 0}));
    EXPECT_EQ(at(ModeLineDefs, 400, 7), (PressObject{ModeVertexes, 0}));
    EXPECT_EQ(at(ModeVertexes, 450, 7), (PressObject{ModeThings, 1}));
    EXPECT_EQ(at(ModeSectors, 450, 7), (PressObject{ModeThings, 1}));
    EXPECT_EQ(at(ModeThings, 700, 7), (PressObject{ModeThings, 7}))
        << "nothing near: the highlight";
    EXPECT_EQ(at(ModeSectors, 700, 3), (PressObject{ModeSectors, 3}));
    level.Things.clear();
    EXPECT_EQ(at(ModeThings, 400, 7), (PressObject{ModeVertexes, 0}));
}

TEST_F(DragToolTest, LineDefsAndSectorsComeDownToEachOfTheirVertexesOnce)
{
    const map::LevelData level = testkit::TwoRooms();
    EXPECT_EQ(DragVertexList(level, ModeLineDefs, {4, 1, 3, 99}),
              (std::vector<std::int32_t>{3, 2, 1, 4}));
    std::vector<std::int32_t> both = DragVertexList(level, ModeSectors, {1, 0});
    std::sort(both.begin(), both.end());
    EXPECT_EQ(both, (std::vector<std::int32_t>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(DragVertexList(level, ModeVertexes, {5, 5, -1, 6, 0}),
              (std::vector<std::int32_t>{5, 0}));
    EXPECT_EQ(LineDefsOfSectors(level, {1}), (std::vector<std::int32_t>{3, 4, 5, 6}));
}

TEST_F(DragToolTest, APressAndReleaseInPlaceLeavesOneUndoStepAndNoChange)
{
    Map().Level = testkit::TwoRooms();
    Map().Options.UndoEnabled = false; // the drag's step is taken all the same
    const map::LevelData before = Map().Level;
    EXPECT_FALSE(DragBegin(Drag, ModeVertexes, 0, 0, {ModeVertexes, 0})) << "no highlight";
    EXPECT_EQ(Map().Undo.Position, -1);
    Select({2});
    ASSERT_TRUE(DragBegin(Drag, ModeVertexes, 126.5, 129.9, {}));
    EXPECT_FALSE(DragMoveTo(Drag, 129, 131)) << "the same grid point as the press";
    EXPECT_EQ(DragFinish(Drag), (DragEnd{ModeVertexes, -1}));
    EXPECT_EQ(Map().Level, before);
    EXPECT_EQ(Map().Undo.Position, 0) << "one step";
    EXPECT_EQ(Map().Select.Selection.Objects(), (std::vector<std::int32_t>{2}));
    EXPECT_EQ(Ui.StatusTexts,
              (std::vector<std::string>{"Selecting Objects to Drag - Wait",
                                        "When done, Press C to Clear Selected Objects, F1=Help"}));
    EXPECT_FALSE(DragMoveTo(Drag, 64, 64)) << "the drag is over";
}

TEST_F(DragToolTest, EscapeRestoresTheLevelExactly)
{
    Map().Level = testkit::TwoRooms();
    const map::LevelData before = Map().Level;
    Map().Select.HighlightedObject = 1;
    Select({1});
    ASSERT_TRUE(DragBegin(Drag, ModeSectors, 200, 64, {}));
    ASSERT_TRUE(DragMoveTo(Drag, 5000, -3000)) << "far beyond the bounds";
    ASSERT_TRUE(DragMoveTo(Drag, 300, 100));
    ASSERT_NE(Map().Level, before);
    EXPECT_EQ(DragCancel(Drag), (DragEnd{ModeSectors, 1}));
    EXPECT_EQ(Map().Level, before);
    EXPECT_EQ(Map().Select.Selection.Objects(), (std::vector<std::int32_t>{1}));
}

TEST_F(DragToolTest, MovesAreHeldToTheGridOnBothSidesOfZeroWithoutDrift)
{
    Map().Level = testkit::LevelBuilder().Vertex(64, 64).Vertex(3, 5).Build();
    Select({0, 1});
    ASSERT_TRUE(DragBegin(Drag, ModeVertexes, 2, -2, {})); // held to (0, 0)
    const std::uint16_t changes = Map().Level.ChangeCount;
    const std::uint16_t geometry = Map().Level.GeometryChangeCount;

    ASSERT_TRUE(DragMoveTo(Drag, -12, -4)); // (-16, -8): halves go away from zero
    EXPECT_EQ(At(0), (map::Vertex{48, 56}));
    EXPECT_EQ(At(1), (map::Vertex{-16, 0})) << "off the grid: snapped after the move";
    ASSERT_TRUE(DragMoveTo(Drag, -11.9, -3.9)); // (-8, 0)
    EXPECT_EQ(At(0), (map::Vertex{56, 64}));
    EXPECT_EQ(At(1), (map::Vertex{-8, 8}));
    EXPECT_EQ(Map().Level.MinX, -16) << "the bounds take in every place on the way";
    EXPECT_EQ(Map().Level.ChangeCount, changes + 2);
    EXPECT_EQ(Map().Level.GeometryChangeCount, geometry + 2);

    Map().Options.GridSnap = false;
    ASSERT_TRUE(DragMoveTo(Drag, -13.5, -3));
    EXPECT_EQ(At(0), (map::Vertex{51, 61})) << "no grid: the plain delta";
    EXPECT_EQ(At(1), (map::Vertex{-10, 2}));
}

TEST_F(DragToolTest, ADragFromAnEmptySelectionTakesThePressObjectAndGivesTheModeBack)
{
    Map().Level = testkit::TwoRooms();
    Map().Select.HighlightedObject = 4;
    ASSERT_TRUE(DragBegin(Drag, ModeLineDefs, 64, 64, {ModeThings, 0}));
    EXPECT_EQ(Drag.Mode, ModeThings);
    EXPECT_EQ(Map().Select.Selection.Objects(), (std::vector<std::int32_t>{0}));
    const map::LevelData before = Map().Level;
    ASSERT_TRUE(DragMoveTo(Drag, 73, 50)); // (72, 48): Things move by the pointer's delta
    ASSERT_TRUE(DragMoveTo(Drag, 81, 50));
    EXPECT_EQ(Place(0), (SnappedPoint{80, 48}));
    EXPECT_EQ(Map().Level.ChangeCount, before.ChangeCount + 2);
    EXPECT_EQ(Map().Level.GeometryChangeCount, before.GeometryChangeCount) << "only Things";
    EXPECT_EQ(Map().Level.Vertexes, before.Vertexes);
    EXPECT_EQ(DragFinish(Drag), (DragEnd{ModeLineDefs, 4}));
    EXPECT_TRUE(Map().Select.Selection.Empty());
    EXPECT_EQ(Map().Select.HighlightedObject, 4);
}

TEST_F(DragToolTest, AVertexDroppedOnAnotherAsksOnceAndMerges)
{
    Map().Level = testkit::TwoRooms();
    Map().Options.VertexMergeTolerance = 3.0;
    Map().Select.HighlightedObject = 5;
    Ui.Answer(1);
    ASSERT_TRUE(DragBegin(Drag, ModeVertexes, 256, 0, {ModeVertexes, 5}));
    ASSERT_TRUE(DragMoveTo(Drag, 255, 126)); // onto Vertex 4 at (256, 128)
    EXPECT_EQ(DragFinish(Drag), (DragEnd{ModeVertexes, 5}));
    EXPECT_EQ(Ui.Titles(), (std::vector<std::string>{"Vertices"}));
    EXPECT_EQ(Map().Level.Vertexes.Count(), 5);
    EXPECT_EQ(Map().Options.VertexMergeTolerance, 3.0) << "put back after the check";
    EXPECT_TRUE(Map().Select.Selection.Empty());
}

TEST_F(DragToolTest, AVertexDroppedBesideALineLeavesItWholeWhateverTheTolerance)
{
    // A room, and a free LineDef (4) east of it, dragged until one end lies a unit inside the
    // room's east wall and the other below the room, so that the wall is looked at.
    testkit::LevelBuilder level;
    level.Room(0, 0, 128, 128).Side(0).Vertex(298, 64).Vertex(400, -50).Line(4, 5, 4);
    Map().Level = level.Build();
    Map().Options.GridSnap = false;
    Map().Options.VertexMergeTolerance = 3.0; // would take in a Vertex a unit off the wall
    Select({4});
    ASSERT_TRUE(DragBegin(Drag, ModeLineDefs, 298, 64, {}));
    ASSERT_TRUE(DragMoveTo(Drag, 127, 64));
    DragFinish(Drag);
    EXPECT_EQ(At(4), (map::Vertex{127, 64}));
    EXPECT_EQ(Ui.StatusTexts[2], "Moving Objects, Please Wait");
    EXPECT_EQ(Map().Level.LineDefs.Count(), 5) << "no split, and no question";
    EXPECT_EQ(Map().Options.VertexMergeTolerance, 3.0);
}

// A triangle room (Sector 0) with a Thing inside and one in its box but outside it, and the
// two rooms' Sector 1 east of it with a Thing of its own.
map::LevelData TriangleBesideARoom()
{
    testkit::LevelBuilder rooms;
    rooms.Polygon({{0, 0}, {0, 128}, {128, 0}}).Room(256, 0, 128, 128);
    rooms.Thing(20, 20, 1).Thing(100, 100, 1).Thing(300, 64, 1);
    return rooms.Build();
}

TEST_F(DragToolTest, TheThingsOfADraggedSectorFollowOnRelease)
{
    Map().Level = TriangleBesideARoom();
    Select({0});
    ASSERT_TRUE(DragBegin(Drag, ModeSectors, 10, 10, {}));
    EXPECT_EQ(Drag.SectorThings, (std::vector<std::int32_t>{0}));
    ASSERT_TRUE(DragMoveTo(Drag, 10, -54)); // down 64
    EXPECT_EQ(Place(0), (SnappedPoint{20, 20})) << "Things wait for the release";
    DragFinish(Drag);
    EXPECT_EQ(Place(0), (SnappedPoint{20, -44}));
    EXPECT_EQ(Place(1), (SnappedPoint{100, 100})) << "in the box, outside the Sector";
    EXPECT_EQ(Place(2), (SnappedPoint{300, 64}));
    EXPECT_EQ(At(0), (map::Vertex{0, -64}));
    EXPECT_EQ(Ui.StatusTexts[1], "Selecting Things to Drag - Wait");

    Map().Level = TriangleBesideARoom();
    Map().Options.DragSectorThings = false;
    ASSERT_TRUE(DragBegin(Drag, ModeSectors, 10, 10, {}));
    ASSERT_TRUE(DragMoveTo(Drag, 10, -54));
    DragFinish(Drag);
    EXPECT_EQ(Map().Level.Things, TriangleBesideARoom().Things);
}

} // namespace
} // namespace kelvar::tools
