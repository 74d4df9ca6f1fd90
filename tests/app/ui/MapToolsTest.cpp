// Tests of the map window's interactive tools through the real window: LineDraw from Ctrl+D,
// the right-button drag, and Rotate and Scale from the Vertexes' Misc entry.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/ui/MainWindowFixture.h"

#include <cmath>

namespace kelvar::app
{
namespace
{

class MapToolsTest : public MainWindowTest
{
protected:
    /// An empty level in Vertex mode, the grid at 64, and the map point at the window's middle
    /// on the grid.
    void EmptyLevel()
    {
        QTest::keyClick(Map(), Qt::Key_V);
        ASSERT_EQ(EditMode(), ModeVertexes);
        Settle();
        map::Map().Level = map::LevelData{};
        map::ClearSelection();
        map::Selected().HighlightedObject = -1;
        map::Map().Options.GridSize = 64;
        map::Map().Options.GridSnap = true;
        const view::MapViewport& viewport = view::View().Viewport;
        CenterX = 64.0 * std::round(view::ScreenToMapXExact(viewport, Map()->width() / 2) / 64);
        CenterY = 64.0 * std::round(view::ScreenToMapYExact(viewport, Map()->height() / 2) / 64);
        Window->Map()->Redraw();
    }

    /// Ctrl+D, a click at each corner of a square 256 wide about the centre, a right click to
    /// close the run and Esc to leave the tool.
    void DrawSquare()
    {
        QTest::keyClick(Map(), Qt::Key_D, Qt::ControlModifier);
        ASSERT_TRUE(Window->Map()->ToolRunning());
        const double corners[4][2] = {{-128, -128}, {128, -128}, {128, 128}, {-128, 128}};
        for (const auto& corner : corners)
        {
            Click(Pixel(CenterX + corner[0], CenterY + corner[1]));
        }
        const QPoint last = Pixel(CenterX - 128, CenterY + 128);
        QTest::mouseClick(Map(), Qt::RightButton, Qt::NoModifier, last);
        QTest::qWait(350);
        QTest::keyClick(Map(), Qt::Key_Escape);
    }

    double CenterX = 0;
    double CenterY = 0;
};

TEST_F(MapToolsTest, LineDrawMakesASquareSectorAndGivesTheModeBack)
{
    QTest::keyClick(Map(), Qt::Key_L);
    Settle();
    EmptyLevel();
    QTest::keyClick(Map(), Qt::Key_L);
    ASSERT_EQ(EditMode(), ModeLineDefs);
    Settle();

    QTest::keyClick(Map(), Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(Window->Map()->ToolRunning());
    EXPECT_EQ(EditMode(), ModeVertexes) << "the tool works on Vertexes";
    // Keys of other commands go nowhere while the tool runs.
    QTest::keyClick(Map(), Qt::Key_T);
    EXPECT_EQ(EditMode(), ModeVertexes);
    QTest::keyClick(Map(), Qt::Key_Escape);
    ASSERT_FALSE(Window->Map()->ToolRunning());
    EXPECT_EQ(EditMode(), ModeLineDefs);

    DrawSquare();
    const map::LevelData& level = map::Map().Level;
    EXPECT_FALSE(Window->Map()->ToolRunning());
    EXPECT_EQ(EditMode(), ModeLineDefs);
    EXPECT_EQ(level.Vertexes.Count(), 4);
    EXPECT_EQ(level.LineDefs.Count(), 4);
    EXPECT_EQ(level.Sectors.Count(), 1);
    EXPECT_EQ(level.Vertexes[0].X, CenterX - 128);
    EXPECT_EQ(level.Vertexes[0].Y, CenterY - 128);
}

TEST_F(MapToolsTest, LineDrawShowsItsLinesInThePaneAndTheViewKeysStillMoveTheMap)
{
    EmptyLevel();
    QTest::keyClick(Map(), Qt::Key_D, Qt::ControlModifier);
    ASSERT_TRUE(Window->Map()->ToolRunning());
    ASSERT_FALSE(Ui.StatusTexts.empty());
    EXPECT_EQ(Ui.StatusTexts.back(), "LeftButton=Insert, RightButton=Close/Quit (F1=Help)");
    QTest::mouseMove(Map(), Pixel(CenterX, CenterY));
    Settle();
    EXPECT_EQ(Window->CoordinatesPaneText().toStdString(), " Crossing NO Line  ");
    Click(Pixel(CenterX, CenterY));
    Click(Pixel(CenterX + 128, CenterY));
    Settle();
    EXPECT_EQ(Window->CoordinatesPaneText().toStdString(), " NewLine    0 ");

    // The arrows scroll and Home centres the level; the run goes on where it was.
    const view::MapViewport& viewport = view::View().Viewport;
    const double x = viewport.OriginX;
    QTest::keyClick(Map(), Qt::Key_Right);
    EXPECT_GT(viewport.OriginX, x);
    QTest::keyClick(Map(), Qt::Key_Home);
    EXPECT_EQ(viewport.OriginX, CenterX + 64);
    EXPECT_TRUE(Window->Map()->ToolRunning());
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 1);

    Ui.AnswerList(0); // the line ends in the open: Split Options asks; Exit leaves it be
    QTest::keyClick(Map(), Qt::Key_Escape);
    QTest::keyClick(Map(), Qt::Key_Escape);
    EXPECT_FALSE(Window->Map()->ToolRunning());
    EXPECT_TRUE(Window->CoordinatesPaneText().isEmpty());
}

TEST_F(MapToolsTest, RightDragMovesAVertexByTheSnappedDeltaAndUndoPutsItBack)
{
    EmptyLevel();
    DrawSquare();
    ASSERT_EQ(map::Map().Level.Vertexes.Count(), 4);
    ASSERT_EQ(EditMode(), ModeVertexes);

    // Vertex 0 is the corner at (-128, -128); the drag ends a little off the grid point 128
    // below it.
    const QPoint from = Pixel(CenterX - 128, CenterY - 128);
    const QPoint to = Pixel(CenterX - 128, CenterY - 256) + QPoint(2, 1);
    QTest::mouseMove(Map(), from);
    QTest::qWait(20);
    ASSERT_EQ(map::Selected().HighlightedObject, 0);
    QTest::mousePress(Map(), Qt::RightButton, Qt::NoModifier, from);
    QTest::mouseMove(Map(), (from + to) / 2);
    EXPECT_TRUE(Window->Map()->ToolRunning());
    QTest::mouseMove(Map(), to);
    QTest::mouseRelease(Map(), Qt::RightButton, Qt::NoModifier, to);
    QTest::qWait(350);

    const map::LevelData& level = map::Map().Level;
    EXPECT_FALSE(Window->Map()->ToolRunning());
    EXPECT_FALSE(Session().InDrag);
    EXPECT_EQ(level.Vertexes[0].X, CenterX - 128);
    EXPECT_EQ(level.Vertexes[0].Y, CenterY - 256);
    EXPECT_EQ(level.Vertexes[1].Y, CenterY - 128) << "only the pressed Vertex moves";
    EXPECT_TRUE(map::Selected().Selection.Empty());

    QTest::keyClick(Map(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(level.Vertexes[0].X, CenterX - 128);
    EXPECT_EQ(level.Vertexes[0].Y, CenterY - 128);
}

TEST_F(MapToolsTest, RotateAndScaleTurnsTwoVertexesByTheKeysAndEscPutsThemBack)
{
    EmptyLevel();
    DrawSquare();
    ASSERT_EQ(EditMode(), ModeVertexes);
    map::ClearSelection();
    map::ObjectListPush(map::Selected().Selection, 0);
    map::ObjectListPush(map::Selected().Selection, 2);
    const map::LevelData before = map::Map().Level;
    map::Map().Options.GridSnap = false;

    Window->Run(530);
    ASSERT_TRUE(Window->Map()->ToolRunning());
    // Coarse steps of 4 degrees: four presses turn the diagonal by 16 degrees.
    QTest::keyClick(Map(), Qt::Key_Space);
    for (int i = 0; i < 4; ++i)
    {
        QTest::keyClick(Map(), Qt::Key_Greater, Qt::ShiftModifier, 0);
    }
    EXPECT_EQ(Window->Map()->ToolCaption().toStdString(), "Angle -16  Scale 100%");
    EXPECT_NE(map::Map().Level.Vertexes[0], before.Vertexes[0]);
    QTest::keyClick(Map(), Qt::Key_T);
    EXPECT_EQ(EditMode(), ModeVertexes) << "other keys go nowhere while the tool runs";
    QTest::keyClick(Map(), Qt::Key_Escape);
    EXPECT_FALSE(Window->Map()->ToolRunning());
    EXPECT_EQ(map::Map().Level.Vertexes[0], before.Vertexes[0]);
    EXPECT_EQ(map::Map().Level.Vertexes[2], before.Vertexes[2]);

    // The bottom side turned a quarter counter-clockwise about its middle stands upright.
    map::ClearSelection();
    map::ObjectListPush(map::Selected().Selection, 0);
    map::ObjectListPush(map::Selected().Selection, 1);
    Window->Run(530);
    ASSERT_TRUE(Window->Map()->ToolRunning());
    for (int i = 0; i < 90; ++i)
    {
        QTest::keyClick(Map(), Qt::Key_Period);
    }
    EXPECT_EQ(Window->Map()->ToolCaption().toStdString(), "Angle -90  Scale 100%");
    QTest::keyClick(Map(), Qt::Key_Return);
    EXPECT_FALSE(Window->Map()->ToolRunning());
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.Vertexes[0].X, CenterX);
    EXPECT_EQ(level.Vertexes[0].Y, CenterY - 256);
    EXPECT_EQ(level.Vertexes[1].X, CenterX);
    EXPECT_EQ(level.Vertexes[1].Y, CenterY);
}

} // namespace
} // namespace kelvar::app
