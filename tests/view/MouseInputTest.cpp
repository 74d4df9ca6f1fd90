// Tests of mouse input: the click conventions, the button-state word, capture, the box tool.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/MouseInput.h"
#include "platform/test/RecordingUi.h"
#include "view/ViewState.h"

#include <gtest/gtest.h>

namespace kelvar::view
{
namespace
{

MouseInput Event(MouseEventKind kind, MouseButton button, int x, int y, std::int64_t time)
{
    MouseInput event;
    event.Kind = kind;
    event.Button = button;
    event.X = x;
    event.Y = y;
    event.TimeMs = time;
    return event;
}

TEST(ClickConventions, ClicksHoldsAndDoubleClicks)
{
    ClickTracker tracker;
    using K = MouseEventKind;
    using B = MouseButton;
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Press, B::Left, 10, 10, 0)), ClickMeaning::None);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Release, B::Left, 11, 10, 50)), ClickMeaning::Mark);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Press, B::Left, 11, 11, 200)), ClickMeaning::Insert)
        << "a second press in place, in time";
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Release, B::Left, 11, 11, 250)), ClickMeaning::None);

    EXPECT_EQ(InterpretMouse(tracker, Event(K::Press, B::Left, 10, 10, 1000)), ClickMeaning::None);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Move, B::None, 12, 11, 1010)), ClickMeaning::None);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Move, B::None, 30, 40, 1020)),
              ClickMeaning::BoxSelect);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Release, B::Left, 30, 40, 1030)),
              ClickMeaning::None);

    EXPECT_EQ(InterpretMouse(tracker, Event(K::Press, B::Right, 5, 5, 2000)), ClickMeaning::None);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Release, B::Right, 5, 5, 2050)), ClickMeaning::Edit);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::DoubleClick, B::Right, 5, 5, 2100)),
              ClickMeaning::PopupMenu);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Press, B::Right, 5, 5, 3000)), ClickMeaning::None);
    EXPECT_EQ(InterpretMouse(tracker, Event(K::Move, B::None, 50, 5, 3010)), ClickMeaning::Drag);

    MouseInput wheel = Event(K::Wheel, B::None, 0, 0, 4000);
    wheel.WheelDelta = 120;
    EXPECT_EQ(InterpretMouse(tracker, wheel), ClickMeaning::ZoomIn);
    wheel.WheelDelta = -120;
    EXPECT_EQ(InterpretMouse(tracker, wheel), ClickMeaning::ZoomOut);

    // A second click too late is two clicks.
    ClickTracker slow;
    InterpretMouse(slow, Event(K::Press, B::Left, 0, 0, 0));
    InterpretMouse(slow, Event(K::Release, B::Left, 0, 0, 10));
    InterpretMouse(slow, Event(K::Press, B::Left, 0, 0, 500));
    EXPECT_EQ(InterpretMouse(slow, Event(K::Release, B::Left, 0, 0, 510)), ClickMeaning::Mark);
}

TEST(ClickConventions, TheButtonStateWord)
{
    int word = 0;
    word = UpdateButtonState(word, Event(MouseEventKind::Press, MouseButton::Left, 0, 0, 0));
    EXPECT_EQ(word, ButtonLeft);
    word = UpdateButtonState(word, Event(MouseEventKind::Press, MouseButton::Right, 0, 0, 0));
    EXPECT_EQ(word, ButtonLeft | ButtonRight);
    word = UpdateButtonState(word, Event(MouseEventKind::Release, MouseButton::Left, 0, 0, 0));
    EXPECT_EQ(word, ButtonRight);
    word = UpdateButtonState(word, Event(MouseEventKind::DoubleClick, MouseButton::Left, 0, 0, 0));
    EXPECT_EQ(word, ButtonLeft | ButtonRight | ButtonDouble);
    EXPECT_EQ(UpdateButtonState(word, Event(MouseEventKind::Wheel, MouseButton::None, 0, 0, 0)), 0);
}

TEST(PointerCapture, EveryTakeNeedsARelease)
{
    ResetView();
    platform::RecordingUi ui;
    platform::ScopedUi guard(ui);
    EXPECT_TRUE(CaptureMouse());
    EXPECT_FALSE(CaptureMouse());
    EXPECT_EQ(ui.Last().Text(), "mouse already captured!");
    EXPECT_TRUE(ReleaseMouse());
    EXPECT_FALSE(ReleaseMouse());
    EXPECT_EQ(ui.Last().Text(), "mouse release with no capture");
}

TEST(BoxSelectTool, TheBandStaysAnchoredInTheMapAndCanBeMoved)
{
    MapViewport viewport;
    SetWindowSize(viewport, 800, 600);
    viewport.Scale = 1.0f;
    BoxSelectState state;
    BoxSelectBegin(state, viewport, 400, 300); // map (0, 0)
    BoxSelectMouse(state, viewport, Event(MouseEventKind::Move, MouseButton::None, 500, 200, 0),
                   300);
    viewport.Scale = 2.0f; // the map zooms under the band
    int x1, y1, x2, y2;
    BoxSelectPixels(state, viewport, x1, y1, x2, y2);
    EXPECT_EQ(x1, 400);
    EXPECT_EQ(x2, 600) << "the corner is map (100, 100), now 200 pixels out";
    EXPECT_EQ(y2, 100);

    viewport.Scale = 1.0f;
    BoxSelectMouse(state, viewport,
                   Event(MouseEventKind::Press, MouseButton::Right, 450, 250, 1000), 300);
    BoxSelectMouse(state, viewport, Event(MouseEventKind::Move, MouseButton::None, 470, 250, 1100),
                   300);
    EXPECT_EQ(BoxSelectMouse(state, viewport,
                             Event(MouseEventKind::Release, MouseButton::Right, 470, 250, 1500),
                             300),
              BoxSelectStep::Continue)
        << "a long right press drags";
    EXPECT_DOUBLE_EQ(state.AnchorX, 20.0);
    EXPECT_DOUBLE_EQ(state.CornerX, 120.0);
    BoxSelectMouse(state, viewport, Event(MouseEventKind::Press, MouseButton::Right, 0, 0, 2000),
                   300);
    EXPECT_EQ(BoxSelectMouse(state, viewport,
                             Event(MouseEventKind::Release, MouseButton::Right, 0, 0, 2100), 300),
              BoxSelectStep::Zoom)
        << "a quick right click zooms to the box";
    EXPECT_EQ(BoxSelectKey(state, 'Z'), BoxSelectStep::Zoom);
    EXPECT_EQ(BoxSelectMouse(state, viewport,
                             Event(MouseEventKind::Release, MouseButton::Left, 480, 260, 3000),
                             300),
              BoxSelectStep::Select);
    EXPECT_DOUBLE_EQ(state.CornerX, 80.0);
    BoxSelectBegin(state, viewport, 0, 0);
    EXPECT_EQ(BoxSelectKey(state, KeyEscape), BoxSelectStep::Cancel);
    EXPECT_FALSE(state.Active);
}

} // namespace
} // namespace kelvar::view
