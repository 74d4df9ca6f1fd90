// Undo (Ctrl+Z) and Redo (Ctrl+Y): the level and its step exchanged, then the box measured
// again and the selection dropped.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Commands.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Undo.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

namespace kelvar::app
{

void UndoCommand(int number, CommandSource /*source*/)
{
    map::MapState& map = map::Map();
    const int done = number == CmdUndo ? map::UndoStep() : map::RedoStep();
    if (done == 0)
    {
        // With undo off the user is told why; with nothing to take back the signal says it.
        if (!map.Options.UndoEnabled)
        {
            platform::ShowMessageLines(0, "Undo", {"Undo Option Not Set!"});
        }
        else
        {
            platform::TheUi().Beep();
        }
        return;
    }
    map::MeasureLevel(map.Level);
    map::ClearSelection();
    map.Select.HighlightedObject = -1;
    if (map.TitleChanged)
    {
        map.TitleChanged();
    }
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
}

} // namespace kelvar::app
