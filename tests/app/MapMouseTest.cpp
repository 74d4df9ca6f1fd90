// Tests of the map window's mouse: tracking, marking, the rubber band, AutoMode and Shift,
// the wheel, and scrolling at the edges.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapMouse.h"

#include "game/ObjectEdit.h"
#include "tests/app/CommandTestKit.h"

namespace kelvar::app
{
namespace
{

class MapMouseTest : public CommandFixture
{
protected:
    void SetUp() override
    {
        CommandFixture::SetUp();
        // Two rooms side by side, 0..128 and 256..384, at one pixel a unit around (192, 64).
        testkit::LevelBuilder builder;
        builder.Room(0, 0, 128, 128).Room(256, 0, 128, 128).Thing(64, 64, 3001);
        Edit(builder.Build());
        view::ViewState& view = view::View();
        view.Viewport.Scale = 1.0f;
        view::CenterOn(view.Viewport, 192, 64);
    }

    view::MouseInput At(view::MouseEventKind kind, int x, int y,
                        view::MouseButton button = view::MouseButton::None, int modifiers = 0)
    {
        Time += 500; // apart enough never to make a double click
        return {kind, button, x, y, modifiers, 0, Time};
    }

    /// The window pixel of a map point.
    static std::pair<int, int> Pixel(int x, int y)
    {
        const view::MapViewport& viewport = view::View().Viewport;
        return {view::MapToScreenX(viewport, x), view::MapToScreenY(viewport, y)};
    }

    void ClickAt(int x, int y, int modifiers = 0)
    {
        (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x, y));
        (void)MapMouseEvent(
            State, At(view::MouseEventKind::Press, x, y, view::MouseButton::Left, modifiers));
        (void)MapMouseEvent(
            State, At(view::MouseEventKind::Release, x, y, view::MouseButton::Left, modifiers));
    }

    MapMouseState State;
    std::int64_t Time = 0;
};

TEST_F(MapMouseTest, MovesTrackTheNearestLineAndClicksMarkIt)
{
    const auto [x, y] = Pixel(128, 64); // the middle of the first room's east wall
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x, y));
    const int line = map::Selected().HighlightedObject;
    ASSERT_GE(line, 0);
    EXPECT_TRUE(TakeRequests().RefreshInfoPanes);

    ClickAt(x, y);
    EXPECT_EQ(Marked(), std::vector<std::int32_t>{line});
    const auto [far, farY] = Pixel(256, 64);
    ClickAt(far, farY); // another line, the option off and no Ctrl: it replaces the mark
    EXPECT_EQ(Marked().size(), map::Map().Options.AdditiveSelect ? 2u : 1u);
    ClickAt(x, y, view::ModCtrl);
    EXPECT_EQ(Marked().size(), map::Map().Options.AdditiveSelect ? 1u : 2u) << "Ctrl adds";
}

TEST_F(MapMouseTest, ARightClickOpensTheEditorUnlessASecondMakesItDouble)
{
    int opened = 0;
    Session().Hooks.ObjectEditor = [&opened](game::ObjectEditor&) { ++opened; };
    const auto [x, y] = Pixel(128, 64);
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x, y));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Press, x, y, view::MouseButton::Right));
    EXPECT_EQ(
        MapMouseEvent(State, At(view::MouseEventKind::Release, x, y, view::MouseButton::Right)),
        view::ClickMeaning::Edit);
    EXPECT_EQ(opened, 0) << "not before the double click time";
    EXPECT_TRUE(RunPendingEdit(State));
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(RunPendingEdit(State)) << "once";

    // A second press in time: the pop-up menu, and no editor.
    const std::int64_t first = Time + 500;
    (void)MapMouseEvent(State,
                        {view::MouseEventKind::Press, view::MouseButton::Right, x, y, 0, 0, first});
    (void)MapMouseEvent(
        State, {view::MouseEventKind::Release, view::MouseButton::Right, x, y, 0, 0, first + 50});
    EXPECT_EQ(MapMouseEvent(State, {view::MouseEventKind::Press, view::MouseButton::Right, x, y, 0,
                                    0, first + 120}),
              view::ClickMeaning::PopupMenu);
    Time = first + 200;
    (void)MapMouseEvent(State, At(view::MouseEventKind::Release, x, y, view::MouseButton::Right));
    EXPECT_FALSE(RunPendingEdit(State));
    EXPECT_EQ(opened, 1);

    // Vertexes have no editor, and nothing sounds.
    Shell().Chk.EditMode = ModeVertexes;
    (void)MapMouseEvent(State, At(view::MouseEventKind::Press, x, y, view::MouseButton::Right));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Release, x, y, view::MouseButton::Right));
    EXPECT_FALSE(RunPendingEdit(State));
    EXPECT_EQ(Ui.Beeps, 0);
    Session().Hooks.ObjectEditor = nullptr;
}

TEST_F(MapMouseTest, RubberBandSelectsTheLinesWhollyInsideIt)
{
    const auto [x1, y1] = Pixel(-10, 140);
    const auto [x2, y2] = Pixel(140, -10);
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x1, y1));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Press, x1, y1, view::MouseButton::Left));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x1 + 30, y1 + 30));
    int bx1 = 0, by1 = 0, bx2 = 0, by2 = 0;
    EXPECT_TRUE(RubberBand(State, bx1, by1, bx2, by2));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x2, y2));
    EXPECT_EQ(
        MapMouseEvent(State, At(view::MouseEventKind::Release, x2, y2, view::MouseButton::Left)),
        view::ClickMeaning::BoxSelect);
    std::vector<std::int32_t> marked = Marked();
    std::sort(marked.begin(), marked.end());
    EXPECT_EQ(marked, (std::vector<std::int32_t>{0, 1, 2, 3})) << "the first room's four walls";
    EXPECT_FALSE(RubberBand(State, bx1, by1, bx2, by2));
    EXPECT_FALSE(view::View().Pointer.MouseCaptured) << "the band gives the pointer back";
}

TEST_F(MapMouseTest, EscapeDropsTheBandAndSelectsNothing)
{
    const auto [x, y] = Pixel(-10, 140);
    (void)MapMouseEvent(State, At(view::MouseEventKind::Press, x, y, view::MouseButton::Left));
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x + 200, y + 200));
    EXPECT_TRUE(MapMouseKey(State, view::KeyEscape));
    EXPECT_TRUE(Marked().empty());
    EXPECT_FALSE(MapMouseKey(State, view::KeyEscape)) << "no band any more";
}

TEST_F(MapMouseTest, AutoModeFollowsThePointerUnlessShiftIsDown)
{
    map::Selected().AutoMode = true;
    const auto [x, y] = Pixel(64, 64); // on the Thing
    (void)MapMouseEvent(
        State, At(view::MouseEventKind::Move, x, y, view::MouseButton::None, view::ModShift));
    EXPECT_EQ(EditMode(), ModeLineDefs);
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x + 1, y));
    EXPECT_EQ(EditMode(), ModeThings);
}

TEST_F(MapMouseTest, WheelZoomsAboutThePointer)
{
    const auto [x, y] = Pixel(300, 100);
    const float before = view::View().Viewport.Scale;
    view::MouseInput wheel = At(view::MouseEventKind::Wheel, x, y);
    wheel.WheelDelta = -120;
    EXPECT_EQ(MapMouseEvent(State, wheel), view::ClickMeaning::ZoomOut);
    EXPECT_LT(view::View().Viewport.Scale, before);
    EXPECT_NEAR(view::ScreenToMapXExact(view::View().Viewport, x), 300.0, 1.0);
}

TEST(EdgeScrollTest, TheEdgePixelsAndTheBorderBeyondScroll)
{
    EXPECT_EQ(EdgeScrollDirection(400, 300, 800, 600, 10).Dx, 0);
    EXPECT_EQ(EdgeScrollDirection(0, 300, 800, 600, 10).Dx, -1);
    EXPECT_EQ(EdgeScrollDirection(799, 300, 800, 600, 10).Dx, 1);
    EXPECT_EQ(EdgeScrollDirection(400, 0, 800, 600, 10).Dy, 1) << "the top scrolls up the map";
    EXPECT_EQ(EdgeScrollDirection(400, 605, 800, 600, 10).Dy, -1) << "beyond, within the border";
    EXPECT_EQ(EdgeScrollDirection(400, 620, 800, 600, 10).Dy, 0) << "past the border";
    const EdgeScroll corner = EdgeScrollDirection(0, 0, 800, 600, 10);
    EXPECT_EQ(corner.Dx, -1);
    EXPECT_EQ(corner.Dy, 1);
}

TEST_F(MapMouseTest, ResizeKeepsTheMapUnderThePointerAndTracksItAgain)
{
    // The pointer rests on the first room's east wall; its highlight is stale.
    const auto [x, y] = Pixel(128, 64);
    map::Selected().HighlightedObject = -1;
    const view::MapViewport& viewport = view::View().Viewport;

    // A pane of 140 pixels comes below the map: nothing moves on screen.
    MapWindowResized(State, 800, 460, x, y);
    EXPECT_EQ(viewport.HeightPx, 460);
    EXPECT_EQ(Pixel(128, 64), std::make_pair(x, y));
    EXPECT_EQ(Pixel(256, 128), std::make_pair(x + 128, y - 64));
    const int wall = Highlighted();
    EXPECT_GE(wall, 0) << "the line under the pointer is found again";
    (void)MapMouseEvent(State, At(view::MouseEventKind::Move, x, y));
    EXPECT_EQ(Highlighted(), wall) << "as a move there finds it";

    // The pane goes while the pointer is over it: the map stays too, and the pointer, now
    // over the map, is on no object.
    MapWindowResized(State, 800, 600, x, 500);
    EXPECT_EQ(Pixel(128, 64), std::make_pair(x, y));
    EXPECT_EQ(Highlighted(), -1);

    // The pointer off the map window (the window's frame is dragged): the centre stays.
    const double originX = viewport.OriginX;
    const double originY = viewport.OriginY;
    MapWindowResized(State, 1000, 700, -5, 650);
    EXPECT_EQ(viewport.OriginX, originX);
    EXPECT_EQ(viewport.OriginY, originY);
    EXPECT_EQ(viewport.CenterXPx, 500.0);
}

} // namespace
} // namespace kelvar::app
