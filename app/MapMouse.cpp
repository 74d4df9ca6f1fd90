// The mouse of the map window: pointer tracking, AutoMode, clicks, the rubber band, the wheel
// and scrolling at the window's edges.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapMouse.h"

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

namespace kelvar::app
{
namespace
{

// The map window fills its frame, so "on its edge" is its outermost pixels.
constexpr int EdgePixels = 2;

bool Editing()
{
    const SessionState& session = Session();
    return session.LevelLoaded && session.AppState == AppEditing;
}

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
    if (!Editing())
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

bool MapMouseKey(MapMouseState& state, int key)
{
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
    if (onMap && Editing() && !state.LeftDown && !state.Box.Active)
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
    if (!Editing() || (direction.Dx == 0 && direction.Dy == 0))
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
