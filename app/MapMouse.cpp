// The mouse of the map window: pointer tracking, AutoMode, clicks, the rubber band, the wheel
// and scrolling at the window's edges.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapMouse.h"

#include "app/Commands.h"
#include "app/MapKeys.h"
#include "app/Modes.h"
#include "app/Router.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "view/HitTest.h"
#include "view/ViewState.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace kelvar::app
{
namespace
{

// The map window fills its frame, so "on its edge" is its outermost pixels.
constexpr int EdgePixels = 2;

void AskForRedraw(bool status)
{
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshInfoPanes = true;
    requests.RefreshStatus = requests.RefreshStatus || status;
}

// Without AutoMode each move finds the nearest object of the mode within the object select
// range; only a change of it is news.
void TrackPointer(int x, int y, int modifiers)
{
    map::SelectionState& select = map::Selected();
    if (select.AutoMode && (modifiers & view::ModShift) == 0)
    {
        (void)FollowPointer(x, y);
        return;
    }
    const view::ViewState& view = view::View();
    const int object = view::FindNearPointer(map::Map().Level, view.Viewport, EditMode(),
                                             map::Map().Options.ObjectSelectRange, x, y);
    if (object != select.HighlightedObject)
    {
        select.HighlightedObject = object;
        AskForRedraw(false);
    }
}

void FinishBand(MapMouseState& state, view::BoxSelectStep step, int modifiers)
{
    view::BoxSelectState& box = state.Box;
    view::ViewState& view = view::View();
    if (step == view::BoxSelectStep::Select)
    {
        const bool additive = map::Map().Options.AdditiveSelect || (modifiers & view::ModCtrl) != 0;
        map::FinishBoxSelection(map::Map().Level, EditMode(), box.AnchorX, box.AnchorY, box.CornerX,
                                box.CornerY, additive);
        Shell().Requests.Sound = SoundCue::Selection;
    }
    else if (step == view::BoxSelectStep::Zoom)
    {
        view::ZoomToRectangle(view.Viewport, box.AnchorX, box.AnchorY, box.CornerX, box.CornerY);
    }
    box.Active = false;
    (void)view::ReleaseMouse();
    AskForRedraw(true);
}

void EndDrag(MapMouseState& state, const tools::DragEnd& end)
{
    Shell().Chk.EditMode = static_cast<std::int16_t>(end.Mode);
    map::Selected().HighlightedObject = end.Highlight;
    Session().InDrag = false;
    state.Clicks.Down = view::MouseButton::None;
    (void)view::ReleaseMouse();
    Shell().Requests.MiscMenuChanged = true;
    AskForRedraw(true);
}

// The right button moved past the drag distance: the drag starts from the press point.
void BeginDrag(MapMouseState& state, const view::MouseInput& event)
{
    const view::MapViewport& viewport = view::View().Viewport;
    const map::MapState& map = map::Map();
    const int pressX = state.Clicks.DownX;
    const int pressY = state.Clicks.DownY;
    tools::PressObject pressed;
    if (map.Select.Selection.Empty())
    {
        const double range =
            map.Options.ObjectSelectRange / std::max(0.001, double{viewport.Scale});
        pressed = tools::DragObjectAtPress(map.Level, viewport, EditMode(), pressX, pressY, range,
                                           range, map.Select.HighlightedObject);
    }
    if (!view::CaptureMouse())
    {
        return;
    }
    if (!tools::DragBegin(state.Drag, EditMode(), view::ScreenToMapXExact(viewport, pressX),
                          view::ScreenToMapYExact(viewport, pressY), pressed))
    {
        (void)view::ReleaseMouse();
        return;
    }
    Session().InDrag = true;
    // What is dragged shows in its own mode while the drag runs.
    Shell().Chk.EditMode = static_cast<std::int16_t>(state.Drag.Mode);
    (void)tools::DragMoveTo(state.Drag, view::ScreenToMapXExact(viewport, event.X),
                            view::ScreenToMapYExact(viewport, event.Y));
    AskForRedraw(true);
}

// An event while the drag runs: moves carry the objects, the right button's release ends it.
void DragEvent(MapMouseState& state, const view::MouseInput& event)
{
    const view::MapViewport& viewport = view::View().Viewport;
    if (event.Kind == view::MouseEventKind::Move)
    {
        if (tools::DragMoveTo(state.Drag, view::ScreenToMapXExact(viewport, event.X),
                              view::ScreenToMapYExact(viewport, event.Y)))
        {
            AskForRedraw(true);
        }
    }
    else if (event.Kind == view::MouseEventKind::Release &&
             event.Button == view::MouseButton::Right)
    {
        EndDrag(state, tools::DragFinish(state.Drag));
    }
}

void Wheel(const view::MouseInput& event)
{
    view::ViewState& view = view::View();
    switch (MouseWheel(event.WheelDelta, (event.Modifiers & view::ModCtrl) != 0))
    {
    case WheelAction::ZoomIn:
    case WheelAction::ZoomOut:
        view.Pointer.X = event.X;
        view.Pointer.Y = event.Y;
        (void)view::ZoomStep(view.Viewport, view.Settings, event.WheelDelta > 0 ? 1 : -1, event.X,
                             event.Y, false);
        AskForRedraw(true);
        break;
    case WheelAction::NextMode:
        (void)RunCommand(409, CommandSource::Key);
        break;
    case WheelAction::LastMode:
        (void)RunCommand(410, CommandSource::Key);
        break;
    case WheelAction::None:
        break;
    }
}

} // namespace

view::ClickMeaning MapMouseEvent(MapMouseState& state, const view::MouseInput& event)
{
    if (!EditingLevel())
    {
        return view::ClickMeaning::None;
    }
    view::ViewState& view = view::View();
    if (event.Kind != view::MouseEventKind::Wheel)
    {
        view.Pointer.X = event.X;
        view.Pointer.Y = event.Y;
    }
    if (event.Kind == view::MouseEventKind::Wheel)
    {
        Wheel(event);
        return event.WheelDelta > 0 ? view::ClickMeaning::ZoomIn : view::ClickMeaning::ZoomOut;
    }

    if (state.Drag.Active)
    {
        DragEvent(state, event);
        return view::ClickMeaning::None;
    }
    if (state.Box.Active)
    {
        const view::BoxSelectStep step =
            view::BoxSelectMouse(state.Box, view.Viewport, event, state.Clicks.DoubleClickMs);
        if (event.Kind == view::MouseEventKind::Release && event.Button == view::MouseButton::Left)
        {
            state.LeftDown = false;
            state.Clicks.Down = view::MouseButton::None;
        }
        if (step != view::BoxSelectStep::Continue)
        {
            FinishBand(state, step, event.Modifiers);
            return view::ClickMeaning::BoxSelect;
        }
        Shell().Requests.RedrawMap = true;
        return view::ClickMeaning::None;
    }

    if (event.Kind == view::MouseEventKind::Press && event.Button == view::MouseButton::Left)
    {
        state.LeftDown = true;
        state.PressX = event.X;
        state.PressY = event.Y;
    }
    if (event.Kind == view::MouseEventKind::Release && event.Button == view::MouseButton::Left)
    {
        state.LeftDown = false;
    }

    const view::ClickMeaning meaning = view::InterpretMouse(state.Clicks, event);
    switch (meaning)
    {
    case view::ClickMeaning::BoxSelect:
        if (view::CaptureMouse())
        {
            view::BoxSelectBegin(state.Box, view.Viewport, state.PressX, state.PressY);
            (void)view::BoxSelectMouse(state.Box, view.Viewport, event, state.Clicks.DoubleClickMs);
            Shell().Requests.RedrawMap = true;
        }
        return meaning;
    case view::ClickMeaning::Drag:
        BeginDrag(state, event);
        return meaning;
    case view::ClickMeaning::Edit:
        // Vertexes have no editor: a right click on one is no mistake to beep at.
        state.EditPending = EditMode() != map::ModeVertexes;
        return meaning;
    case view::ClickMeaning::PopupMenu:
        state.EditPending = false;
        return meaning;
    case view::ClickMeaning::Mark:
        map::ToggleHighlighted(map::Map().Options.AdditiveSelect ||
                               (event.Modifiers & view::ModCtrl) != 0);
        AskForRedraw(true);
        return meaning;
    default:
        break;
    }
    if (event.Kind == view::MouseEventKind::Move && !state.LeftDown)
    {
        TrackPointer(event.X, event.Y, event.Modifiers);
    }
    return meaning;
}

bool RunPendingEdit(MapMouseState& state)
{
    if (!std::exchange(state.EditPending, false) || !EditingLevel())
    {
        return false;
    }
    (void)RunCommand(CmdEditObject, CommandSource::Key);
    return true;
}

bool MapMouseKey(MapMouseState& state, int key)
{
    if (state.Drag.Active)
    {
        if (key == view::KeyEscape)
        {
            EndDrag(state, tools::DragCancel(state.Drag));
        }
        return true;
    }
    if (!state.Box.Active)
    {
        return false;
    }
    const view::BoxSelectStep step = view::BoxSelectKey(state.Box, key);
    if (step == view::BoxSelectStep::Continue)
    {
        return false;
    }
    FinishBand(state, step, 0);
    return true;
}

bool Dragging(const MapMouseState& state)
{
    return state.Drag.Active;
}

bool RubberBand(const MapMouseState& state, int& x1, int& y1, int& x2, int& y2)
{
    if (!state.Box.Active)
    {
        return false;
    }
    view::BoxSelectPixels(state.Box, view::View().Viewport, x1, y1, x2, y2);
    return true;
}

void MapWindowResized(MapMouseState& state, int width, int height, int pointerX, int pointerY)
{
    view::ViewState& view = view::View();
    view::MapViewport& viewport = view.Viewport;
    const bool over = pointerX >= 0 && pointerY >= 0 &&
                      pointerX < std::max(width, viewport.WidthPx) &&
                      pointerY < std::max(height, viewport.HeightPx);
    if (!over || !Session().LevelLoaded)
    {
        view::SetWindowSize(viewport, width, height);
        return;
    }
    const double mapX = view::ScreenToMapXExact(viewport, pointerX);
    const double mapY = view::ScreenToMapYExact(viewport, pointerY);
    view::SetWindowSize(viewport, width, height);
    // The scale stays, so moving the origin by the shift of the map point under the pointer
    // keeps every map point where it was.
    viewport.OriginX += mapX - view::ScreenToMapXExact(viewport, pointerX);
    viewport.OriginY += mapY - view::ScreenToMapYExact(viewport, pointerY);
    const bool onMap = pointerX < width && pointerY < height;
    if (onMap && EditingLevel() && !state.LeftDown && !state.Box.Active)
    {
        view.Pointer.X = pointerX;
        view.Pointer.Y = pointerY;
        TrackPointer(pointerX, pointerY, 0);
    }
}

EdgeScroll EdgeScrollDirection(int x, int y, int width, int height, int border)
{
    EdgeScroll step;
    const bool inside = x > -border && y > -border && x < width + border && y < height + border;
    if (!inside || width <= 0 || height <= 0)
    {
        return step;
    }
    step.Dx = x < EdgePixels ? -1 : (x >= width - EdgePixels ? 1 : 0);
    step.Dy = y < EdgePixels ? 1 : (y >= height - EdgePixels ? -1 : 0);
    return step;
}

bool EdgeScrollStep(const EdgeScroll& direction)
{
    if (!EditingLevel() || (direction.Dx == 0 && direction.Dy == 0))
    {
        return false;
    }
    view::ViewState& view = view::View();
    const bool moved =
        view::Scroll(view.Viewport, view.Settings, map::Map().Level, direction.Dx, direction.Dy);
    if (moved)
    {
        AskForRedraw(true);
    }
    return moved;
}

} // namespace kelvar::app
