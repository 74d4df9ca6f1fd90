// Insert (Add, Ctrl+N) in Things and Sectors modes: a new object cloned from the highlighted
// one, taken back by undo like every edit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Modes.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Undo.h"
#include "platform/Messages.h"
#include "view/ViewState.h"
#include "view/Viewport.h"

namespace kelvar::app
{

namespace
{

// The highlighted object of the mode when it is one, else -1 (new objects take defaults).
int TemplateOf(const map::LevelData& level, int mode)
{
    const int highlighted = map::Selected().HighlightedObject;
    return map::IsValidObject(level, mode, highlighted) ? highlighted : -1;
}

void Changed()
{
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
}

// A Thing at the pointer, on the grid.
void InsertThing(map::LevelData& level)
{
    const view::ViewState& view = view::View();
    const int x =
        view::SnapToGrid(view.Settings, view::ScreenToMapX(view.Viewport, view.Pointer.X));
    const int y =
        view::SnapToGrid(view.Settings, view::ScreenToMapY(view.Viewport, view.Pointer.Y));
    (void)map::SaveUndoStep();
    const int added = map::InsertObject(level, map::KindThing, TemplateOf(level, ModeThings), x, y);
    map::Selected().HighlightedObject = added;
    Changed();
}

// A Sector, after the user confirms twice: it has no lines yet.
void InsertSector(map::LevelData& level)
{
    if (platform::ShowMessageLines(platform::LinesCancel, "New Sector",
                                   {"Create a Sector ?", "Are you SURE ?"},
                                   platform::MessageButtons::YesNo) != 1)
    {
        return;
    }
    (void)map::SaveUndoStep();
    const int added =
        map::InsertObject(level, map::KindSector, TemplateOf(level, ModeSectors), 0, 0);
    map::Selected().HighlightedObject = added;
    Changed();
}

} // namespace

void InsertCommand(int /*number*/, CommandSource /*source*/)
{
    map::LevelData& level = map::Map().Level;
    if (EditMode() == ModeThings)
    {
        InsertThing(level);
    }
    else if (EditMode() == ModeSectors)
    {
        InsertSector(level);
    }
}

} // namespace kelvar::app
