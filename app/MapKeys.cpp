// The zoom and scroll keys of the map window, and the mouse wheel.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapKeys.h"

#include "app/CommandHandlers.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "view/ViewState.h"

namespace kelvar::app
{
namespace
{

void ViewChanged()
{
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
}

bool Zoom(int direction)
{
    view::ViewState& view = view::View();
    view::ZoomStep(view.Viewport, view.Settings, direction, view.Pointer.X, view.Pointer.Y, true);
    ViewChanged();
    return true;
}

} // namespace

bool HandleMapCharacter(char character)
{
    if (!EditingLevel())
    {
        return false;
    }
    view::ViewState& view = view::View();
    if (character >= '0' && character <= '9')
    {
        if (view.Settings.ZoomAtPointer)
        {
            CenterOnPointer();
        }
        view::ZoomToDigit(view.Viewport, view.Settings, character - '0');
        ViewChanged();
        return true;
    }
    switch (character)
    {
    case '+':
        return Zoom(1);
    case '-':
        return Zoom(-1);
    case 'z':
        view::ToggleZoom(view.Viewport, view.Settings);
        ViewChanged();
        return true;
    case 'Z':
        view::SwapStoredView(view.Viewport);
        ViewChanged();
        return true;
    default:
        return false;
    }
}

bool HandleMapKey(KeyChord chord)
{
    if (!EditingLevel() || chord.Modifiers != KeyMods::Plain || Shell().Chk.CursorKeysMoveMap == 0)
    {
        return false;
    }
    int dx = 0;
    int dy = 0;
    switch (chord.Key)
    {
    case KeyCode::Left:
        dx = -1;
        break;
    case KeyCode::Right:
        dx = 1;
        break;
    case KeyCode::Up:
        dy = 1;
        break;
    case KeyCode::Down:
        dy = -1;
        break;
    default:
        return false;
    }
    view::ViewState& view = view::View();
    if (view::Scroll(view.Viewport, view.Settings, map::Map().Level, dx, dy))
    {
        ViewChanged();
    }
    return true;
}

WheelAction MouseWheel(int delta, bool ctrl)
{
    if (delta == 0 || !EditingLevel())
    {
        return WheelAction::None;
    }
    const bool away = delta > 0;
    if ((Shell().Chk.MouseWheelModeChange != 0) != ctrl)
    {
        return away ? WheelAction::NextMode : WheelAction::LastMode;
    }
    return away ? WheelAction::ZoomIn : WheelAction::ZoomOut;
}

} // namespace kelvar::app
