// Mouse input of the map window: the click conventions, capture, the box selection tool.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/MouseInput.h"

#include "platform/Messages.h"
#include "view/ViewState.h"

#include <cstdlib>

namespace kelvar::view
{

int UpdateButtonState(int word, const MouseInput& event)
{
    const int bit = event.Button == MouseButton::Left    ? ButtonLeft
                    : event.Button == MouseButton::Right ? ButtonRight
                                                         : 0;
    switch (event.Kind)
    {
    case MouseEventKind::Press:
        return word | bit;
    case MouseEventKind::Release:
        return word & ~bit;
    case MouseEventKind::DoubleClick:
        return word | bit | ButtonDouble;
    case MouseEventKind::Wheel:
        return 0;
    default:
        return word;
    }
}

ClickMeaning InterpretMouse(ClickTracker& tracker, const MouseInput& event)
{
    switch (event.Kind)
    {
    case MouseEventKind::Wheel:
        return event.WheelDelta > 0
                   ? ClickMeaning::ZoomIn
                   : (event.WheelDelta < 0 ? ClickMeaning::ZoomOut : ClickMeaning::None);
    case MouseEventKind::Press:
    case MouseEventKind::DoubleClick:
    {
        const bool quickSecond = event.Button == tracker.LastClick &&
                                 event.TimeMs - tracker.LastClickTime <= tracker.DoubleClickMs &&
                                 std::abs(event.X - tracker.LastClickX) <= tracker.DragPixels &&
                                 std::abs(event.Y - tracker.LastClickY) <= tracker.DragPixels;
        if (event.Kind == MouseEventKind::DoubleClick || quickSecond)
        {
            tracker.Down = MouseButton::None;
            tracker.LastClick = MouseButton::None;
            return event.Button == MouseButton::Left ? ClickMeaning::Insert
                                                     : ClickMeaning::PopupMenu;
        }
        tracker.Down = event.Button;
        tracker.DownX = event.X;
        tracker.DownY = event.Y;
        tracker.Moved = false;
        return ClickMeaning::None;
    }
    case MouseEventKind::Move:
        if (tracker.Down != MouseButton::None && !tracker.Moved &&
            (std::abs(event.X - tracker.DownX) > tracker.DragPixels ||
             std::abs(event.Y - tracker.DownY) > tracker.DragPixels))
        {
            tracker.Moved = true;
            return tracker.Down == MouseButton::Left ? ClickMeaning::BoxSelect : ClickMeaning::Drag;
        }
        return ClickMeaning::None;
    case MouseEventKind::Release:
    {
        if (event.Button != tracker.Down)
        {
            return ClickMeaning::None;
        }
        tracker.Down = MouseButton::None;
        if (tracker.Moved)
        {
            return ClickMeaning::None; // the hold-and-move ran its own loop
        }
        tracker.LastClick = event.Button;
        tracker.LastClickTime = event.TimeMs;
        tracker.LastClickX = event.X;
        tracker.LastClickY = event.Y;
        return event.Button == MouseButton::Left ? ClickMeaning::Mark : ClickMeaning::Edit;
    }
    }
    return ClickMeaning::None;
}

bool CaptureMouse()
{
    PointerState& pointer = View().Pointer;
    if (pointer.MouseCaptured)
    {
        platform::ShowError("mouse already captured!");
        return false;
    }
    pointer.MouseCaptured = true;
    return true;
}

bool ReleaseMouse()
{
    PointerState& pointer = View().Pointer;
    if (!pointer.MouseCaptured)
    {
        platform::ShowError("mouse release with no capture");
        return false;
    }
    pointer.MouseCaptured = false;
    return true;
}

void BoxSelectBegin(BoxSelectState& state, const MapViewport& viewport, int x, int y)
{
    state = BoxSelectState{};
    state.Active = true;
    state.AnchorX = state.CornerX = ScreenToMapXExact(viewport, x);
    state.AnchorY = state.CornerY = ScreenToMapYExact(viewport, y);
}

BoxSelectStep BoxSelectMouse(BoxSelectState& state, const MapViewport& viewport,
                             const MouseInput& event, int doubleClickMs)
{
    const double x = ScreenToMapXExact(viewport, event.X);
    const double y = ScreenToMapYExact(viewport, event.Y);
    switch (event.Kind)
    {
    case MouseEventKind::Move:
        if (state.RightDown)
        {
            // The right button drags the whole box.
            const double dx = x - state.GrabX;
            const double dy = y - state.GrabY;
            state.AnchorX += dx;
            state.AnchorY += dy;
            state.CornerX += dx;
            state.CornerY += dy;
            state.GrabX = x;
            state.GrabY = y;
        }
        else
        {
            state.CornerX = x;
            state.CornerY = y;
        }
        return BoxSelectStep::Continue;
    case MouseEventKind::Press:
        if (event.Button == MouseButton::Right)
        {
            state.RightDown = true;
            state.RightDownTime = event.TimeMs;
            state.GrabX = x;
            state.GrabY = y;
        }
        return BoxSelectStep::Continue;
    case MouseEventKind::Release:
        if (event.Button == MouseButton::Right)
        {
            state.RightDown = false;
            return event.TimeMs - state.RightDownTime < doubleClickMs ? BoxSelectStep::Zoom
                                                                      : BoxSelectStep::Continue;
        }
        if (event.Button == MouseButton::Left)
        {
            state.CornerX = x;
            state.CornerY = y;
            state.Active = false;
            return BoxSelectStep::Select;
        }
        return BoxSelectStep::Continue;
    default:
        return BoxSelectStep::Continue;
    }
}

BoxSelectStep BoxSelectKey(BoxSelectState& state, int key)
{
    if (key == KeyEscape)
    {
        state.Active = false;
        return BoxSelectStep::Cancel;
    }
    if (key == KeyZ || key == 'z')
    {
        return BoxSelectStep::Zoom;
    }
    return BoxSelectStep::Continue;
}

void BoxSelectPixels(const BoxSelectState& state, const MapViewport& viewport, int& x1, int& y1,
                     int& x2, int& y2)
{
    x1 = MapToScreenX(viewport, state.AnchorX);
    y1 = MapToScreenY(viewport, state.AnchorY);
    x2 = MapToScreenX(viewport, state.CornerX);
    y2 = MapToScreenY(viewport, state.CornerY);
}

} // namespace kelvar::view
