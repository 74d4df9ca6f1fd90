// The status bar and info pane texts of the current state.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PaneTexts.h"

#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "game/GameState.h"
#include "map/GameCodes.h"
#include "map/MapState.h"
#include "view/ViewState.h"

namespace kelvar::app
{

view::StatusBarValues CurrentStatusValues()
{
    const view::ViewState& view = view::View();
    view::StatusBarValues values;
    values.Mode = EditMode();
    values.SecondCopy = Session().SecondCopy;
    values.Scale = view.Viewport.Scale;
    values.Grid = view.Settings.GridSize;
    values.Speed = view.Settings.ScrollUnit;
    values.Snap = view.Settings.GridSnap;
    values.AutoSel = map::Selected().AutoMode;
    values.Edit3D = Shell().Chk.Correct3D != 0;
    values.Changed = MapChanged() != 0;
    values.NodesChanged = NodesChanged() != 0;
    return values;
}

std::vector<std::string> StatusBarTexts()
{
    return view::StatusBarFields(CurrentStatusValues());
}

view::InfoPane InfoPaneTexts()
{
    if (!Shell().Commands.InfoPaneShown)
    {
        return {};
    }
    const map::LevelData& level = map::Map().Level;
    view::InfoPaneOptions options;
    // Before the game is known, the level's own layout tells Hexen from the others.
    const int format = game::Game().LevelFormat;
    options.LevelFormat =
        format != map::GameNone ? format : map::FormatOfLayout(level.LevelLayout, map::GameDoom2);
    options.HexTypes = Shell().Chk.DecimalTypes == 0;
    return view::ObjectInfo(level, EditMode(), map::Selected().HighlightedObject, options);
}

} // namespace kelvar::app
