// Tests of the Rotate and Scale tool: turns recomputed from the saved copy, snapping, the keys
// and the mouse, refusal, Esc and the clean-up; and the turning of a Thing's own angle.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RotateTool.h"

#include "map/MapState.h"
#include "map/Selection.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/MapPrinters.h"

#include <gtest/gtest.h>
#include <initializer_list>

namespace kelvar::tools
{
namespace
{

using map::Map;

class RotateToolTest : public ::testing::Test
{
protected:
    void SetUp() override { map::ResetMap(); }
    void TearDown() override { map::ResetMap(); }

    void Press(int key, int times, bool shift = false)
    {
        for (int i = 0; i < times; ++i)
        {
            ASSERT_EQ(RotateScaleKey(Rotation, key, shift), RotateStep::Continue);
        }
    }

    static map::Vertex At(int vertex)
    {
        return Map().Level.Vertexes[static_cast<std::size_t>(vertex)];
    }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
    RotateScaleState Rotation;
};

// A triangle whose centre, (10, 33.33), lies off every whole unit.
map::LevelData Triangle()
{
    return testkit::LevelBuilder().Polygon({{0, 0}, {0, 100}, {30, 0}}).Build();
}

TEST_F(RotateToolTest, QuarterTurnsAreExactAndFourReturnEveryVertex)
{
    // Corners about the origin: a quarter turn that came out a hair short of a whole unit
    // would be truncated a unit short.
    Map().Level = testkit::LevelBuilder().Vertex(-64, -64).Vertex(64, 64).Vertex(0, 0).Build();
    Map().Options.GridSnap = false;
    const map::LevelData before = Map().Level;
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeVertexes, testkit::Marked({0, 1, 2})));
    Press('>', 90);
    EXPECT_EQ(At(0), (map::Vertex{64, -64})) << "counter-clockwise";
    EXPECT_EQ(At(1), (map::Vertex{-64, 64}));
    EXPECT_EQ(RotateScaleCaption(Rotation), (RotateCaption{-90, 100}));
    Press('.', 180);
    EXPECT_EQ(At(0), (map::Vertex{-64, 64}));
    EXPECT_EQ(At(1), (map::Vertex{64, -64}));
    Press('>', 90);
    EXPECT_EQ(Rotation.Angle, 0) << "a whole turn wraps";
    EXPECT_EQ(Map().Level.Vertexes, before.Vertexes);

    // About a centre off the whole units, (10, 33.33): each place truncated toward zero, and
    // four quarter turns recomputed from the saved copy lose nothing.
    Map().Level = Triangle();
    const map::LevelData triangle = Map().Level;
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeSectors, testkit::Marked({0})));
    Press('>', 90);
    EXPECT_EQ(At(0), (map::Vertex{43, 23}));
    EXPECT_EQ(At(1), (map::Vertex{-56, 23}));
    EXPECT_EQ(At(2), (map::Vertex{43, 53}));
    Press('>', 270);
    EXPECT_EQ(Map().Level.Vertexes, triangle.Vertexes);
}

TEST_F(RotateToolTest, WithTheGridOnNoTurnStillSnaps)
{
    Map().Level = testkit::LevelBuilder().Polygon({{3, 5}, {50, 77}, {100, 3}}).Build();
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeVertexes, testkit::Marked({0, 1, 2})));
    Press('>', 1);
    Press('<', 1);
    EXPECT_EQ(Rotation.Angle, 0);
    EXPECT_EQ(At(0), (map::Vertex{0, 8}));
    EXPECT_EQ(At(1), (map::Vertex{48, 80}));
    EXPECT_EQ(At(2), (map::Vertex{104, 0}));
}

TEST_F(RotateToolTest, KeysAndMouseStepTheAngleAndScale)
{
    Map().Level = Triangle();
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeLineDefs, testkit::Marked({1})));
    EXPECT_EQ(Rotation.Vertexes.size(), 2u) << "one LineDef is two Vertexes: enough";
    Press('>', 1);
    Press(' ', 1);
    Press('>', 2);
    Press('r', 1);
    EXPECT_EQ(RotateScaleCaption(Rotation), (RotateCaption{-9, 104}));
    Press(' ', 1);
    Press(',', 2);
    Press('R', 1, true);
    EXPECT_EQ(RotateScaleCaption(Rotation), (RotateCaption{-7, 103}));
    Press('R', 200, true);
    EXPECT_EQ(Rotation.Scale, 0.0) << "the scale stops at 0";

    RotateScaleMouse(Rotation, 3, -5); // dx + dy below 1: one off
    RotateScaleMouse(Rotation, 1, 0);
    RotateScaleMouse(Rotation, 1, 0);
    RotateScaleMouse(Rotation, 0, 0); // no movement
    EXPECT_EQ(Rotation.Angle, 8);

    Rotation.Angle = -356;
    Press(' ', 1);
    Press('<', 1);
    EXPECT_EQ(Rotation.Angle, 0) << "a whole turn backwards wraps";
    Rotation.Angle = 358;
    Press('.', 1);
    EXPECT_EQ(Rotation.Angle, 2);

    EXPECT_EQ(RotateScaleKey(Rotation, 'x', false), RotateStep::Continue);
    EXPECT_EQ(RotateScaleKey(Rotation, RotateKeyEnter, false), RotateStep::Finish);
    EXPECT_EQ(RotateScaleKey(Rotation, RotateKeyEscape, false), RotateStep::Cancel);
    EXPECT_EQ(Ui.StatusTexts, (std::vector<std::string>{"Selecting Rotate Data - wait",
                                                        "Rotate Tool <> = Rotate, F1=Help"}));
}

TEST_F(RotateToolTest, FewerThanTwoObjectsAreRefusedWithoutAnUndoStep)
{
    Map().Level = Triangle();
    const map::LevelData before = Map().Level;
    EXPECT_FALSE(RotateScaleBegin(Rotation, map::ModeVertexes, testkit::Marked({2})));
    EXPECT_EQ(Ui.Last().Title, "Select");
    EXPECT_EQ(Ui.Last().Text(), "Select at least 2 Vertexs");
    EXPECT_FALSE(RotateScaleBegin(Rotation, map::ModeThings, testkit::Marked({})));
    EXPECT_EQ(Ui.Last().Text(), "Select at least 2 Things");
    EXPECT_EQ(Map().Undo.Position, -1);
    EXPECT_EQ(Map().Level, before);
}

TEST_F(RotateToolTest, ThingsTurnAboutTheirOwnCentreAndCountNoGeometry)
{
    Map().Level = testkit::LevelBuilder().Thing(0, 0, 1, 90).Thing(100, 20, 1).Build();
    Map().Options.GridSnap = false;
    Map().Options.UndoEnabled = false; // the tool's step is taken all the same
    const map::LevelData before = Map().Level;
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeThings, testkit::Marked({0, 1})));
    EXPECT_EQ(Map().Undo.Position, 0);
    Rotation.AngleStep = 180;
    Press('>', 1);
    EXPECT_EQ(Map().Level.Things[0], (map::Thing{100, 20, 90, 1, 7})) << "its own angle stays";
    RotateScaleFinish(Rotation);
    EXPECT_EQ(Map().Level.ChangeCount, before.ChangeCount + 1);
    EXPECT_EQ(Map().Level.GeometryChangeCount, before.GeometryChangeCount);
    EXPECT_FALSE(Rotation.Active);
}

TEST_F(RotateToolTest, EscapePutsBackTheSavedCopy)
{
    testkit::LevelBuilder room;
    room.Room(0, 0, 128, 128).Thing(64, 32, 1).Thing(500, 500, 1);
    Map().Level = room.Build();
    const map::LevelData before = Map().Level;
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeSectors, testkit::Marked({0})));
    EXPECT_EQ(Rotation.Things, (std::vector<std::int32_t>{0})) << "the Sector's Thing only";
    Press(' ', 1);
    Press('>', 11);
    Press('r', 25);
    ASSERT_NE(Map().Level.Vertexes, before.Vertexes);
    ASSERT_NE(Map().Level.Things, before.Things);
    RotateScaleCancel(Rotation);
    EXPECT_EQ(Map().Level.Vertexes, before.Vertexes);
    EXPECT_EQ(Map().Level.Things, before.Things);
    EXPECT_EQ(Map().Level.MinX, before.MinX);
    EXPECT_EQ(Map().Level.MaxY, before.MaxY);
    EXPECT_EQ(Map().Level.GeometryChangeCount, before.GeometryChangeCount);
}

TEST_F(RotateToolTest, FinishMergesVertexesScaledOntoOneAskingOnce)
{
    Map().Level = testkit::WallOfTwoLines(); // Vertexes at 0, 64 and 128 along y = 0
    ASSERT_TRUE(RotateScaleBegin(Rotation, map::ModeVertexes, testkit::Marked({0, 2})));
    Press(' ', 1);
    Press('R', 25, true); // scale 0: both ends onto the middle Vertex
    EXPECT_EQ(At(0), (map::Vertex{64, 0}));
    Ui.Answer(1);
    RotateScaleFinish(Rotation);
    EXPECT_EQ(Ui.Titles(), (std::vector<std::string>{"Vertices"})) << "asked once";
    EXPECT_EQ(Map().Level.Vertexes.Count(), 0) << "the LineDefs, of no length now, went with them";
}

TEST(TurnThingAngle, StepsOf45WrapAtBothEnds)
{
    EXPECT_EQ(TurnThingAngle(90, true), 135);
    EXPECT_EQ(TurnThingAngle(90, false), 45);
    EXPECT_EQ(TurnThingAngle(0, false), 315);
    EXPECT_EQ(TurnThingAngle(315, true), 0);
    EXPECT_EQ(TurnThingAngle(359, true), 0);
    EXPECT_EQ(TurnThingAngle(45, false), 0);
    EXPECT_EQ(TurnThingAngle(30, false), 315) << "below the first step: to the last";
    EXPECT_EQ(TurnThingAngle(330, true), 0);
}

} // namespace
} // namespace kelvar::tools
