// The edit modes: choosing, switching with the selection translated, AutoMode, change counters.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Modes.h"

#include "app/Session.h"
#include "app/ShellState.h"
#include "gfx/GamePalette.h"
#include "map/MapState.h"
#include "platform/Messages.h"
#include "view/HitTest.h"
#include "view/ViewState.h"

#include <algorithm>
#include <array>
#include <string>

namespace kelvar::app
{
namespace
{

constexpr std::array<int, 4> ModeOrder = {ModeThings, ModeLineDefs, ModeVertexes, ModeSectors};

std::size_t PlaceOf(int mode)
{
    const auto it = std::find(ModeOrder.begin(), ModeOrder.end(), mode);
    return it == ModeOrder.end() ? 0 : static_cast<std::size_t>(it - ModeOrder.begin());
}

void AskForModeRefresh()
{
    CommandRequests& requests = Shell().Requests;
    requests.MiscMenuChanged = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
    requests.RedrawMap = true;
    requests.Sound = SoundCue::Mode;
}

// AutoMode's change of mode: PreviousMode becomes the old mode, and the old mode's selection
// is dropped rather than translated. The pointer only passed over an object of another kind,
// so marks made in one mode must not turn up as marks of another the user never chose.
void EnterModeFollowingPointer(int mode)
{
    map::Selected().PreviousMode = static_cast<std::uint16_t>(EditMode());
    Shell().Chk.EditMode = static_cast<std::int16_t>(mode);
    map::ClearSelection();
}

// A mode with objects always has one under the cursor: when the mode had none when it was
// left, the nearest to the pointer in the window is taken.
void PickNearestObject(int mode)
{
    map::SelectionState& select = map::Selected();
    const map::LevelData& level = map::Map().Level;
    if (select.HighlightedObject >= 0 || map::HighestObject(level, mode) < 0)
    {
        return;
    }
    const view::ViewState& view = view::View();
    const double range = std::max(view.Viewport.WidthPx, view.Viewport.HeightPx);
    select.HighlightedObject =
        view::FindNearPointer(level, view.Viewport, mode, range, view.Pointer.X, view.Pointer.Y);
}

} // namespace

int EditMode()
{
    return Shell().Chk.EditMode;
}

int PreviousMode()
{
    return map::Selected().PreviousMode;
}

int NextModeAfter(int mode)
{
    return ModeOrder[(PlaceOf(mode) + 1) % ModeOrder.size()];
}

int ModeBefore(int mode)
{
    return ModeOrder[(PlaceOf(mode) + ModeOrder.size() - 1) % ModeOrder.size()];
}

void ChooseMode(int mode)
{
    map::SelectionState& select = map::Selected();
    select.AutoMode = false;
    if (mode != EditMode())
    {
        select.PreviousMode = static_cast<std::uint16_t>(EditMode());
        Shell().Chk.EditMode = static_cast<std::int16_t>(mode);
        SwitchMode();
        return;
    }
    // The same mode again: Things mode shows or hides the sprites; the selection and the
    // object under the cursor stay in every mode.
    if (mode == ModeThings)
    {
        bool& sprites = view::View().Options.SpriteDisplay;
        // The sprites are shown in the game's colours: the palette is read when first needed.
        sprites = !sprites && (gfx::Palettes().Loaded || gfx::LoadGamePalette(0) == 1);
        Shell().Requests.Sound = SoundCue::Confirm;
    }
    Shell().Requests.RedrawMap = true;
}

void SwitchMode()
{
    if (!Session().LevelLoaded)
    {
        return;
    }
    Shell().Requests.CancelTool = true;
    map::SelectionState& select = map::Selected();
    select.AutoMode = false;
    map::TranslateSelection(map::Map().Level, select.PreviousMode, EditMode());
    PickNearestObject(EditMode());
    AskForModeRefresh();
}

bool FollowPointer(int pointerX, int pointerY)
{
    map::SelectionState& select = map::Selected();
    if (!select.AutoMode || !Session().LevelLoaded)
    {
        return false;
    }
    const view::AutoModeChoice choice =
        view::ChooseAutoMode(map::Map().Level, view::View().Viewport, EditMode(),
                             select.HighlightedObject, pointerX, pointerY, {});
    if (choice.Mode == 0 ||
        (choice.Mode == EditMode() && choice.Object == select.HighlightedObject))
    {
        return false;
    }
    if (choice.Mode != EditMode())
    {
        // The mode follows the pointer; unlike a mode command this keeps AutoMode on.
        EnterModeFollowingPointer(choice.Mode);
        AskForModeRefresh();
    }
    select.HighlightedObject = choice.Object;
    Shell().Requests.RefreshInfoPanes = true;
    Shell().Requests.RedrawMap = true;
    return true;
}

int MapChanged()
{
    return map::Map().Level.ChangeCount;
}

int NodesChanged()
{
    return map::Map().Level.GeometryChangeCount;
}

bool HasUnsavedChanges()
{
    return MapChanged() != 0 || NodesChanged() != 0;
}

bool ContinueWithUnsavedChanges(std::string_view commandName)
{
    if (!HasUnsavedChanges())
    {
        return true;
    }
    if (commandName.empty())
    {
        return platform::AskYesNo(" You have unsaved Changes. Continue ?");
    }
    const std::string name(commandName);
    return platform::AskYesNo(" You have unsaved Changes.  Continue with %s?", name.c_str());
}

} // namespace kelvar::app
