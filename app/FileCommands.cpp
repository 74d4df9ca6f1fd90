// The handlers of the save commands: Save, Save As, the node builds, the reject save, the
// quick backup; each reloads the files after a save.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Commands.h"
#include "app/SaveDispatcher.h"
#include "app/ShellState.h"

namespace kelvar::app
{
namespace
{

int SaveCodeOf(int number)
{
    switch (number)
    {
    case CmdSaveLevelAs:
        return wad::SaveLevelAsCode;
    case CmdBuildNodes:
        return wad::BuildNodesCode;
    case CmdBuildNodesAs:
        return wad::BuildNodesAsCode;
    case CmdSaveNewReject:
        return wad::NewRejectCode;
    default:
        return wad::SaveLevelCode;
    }
}

} // namespace

void SaveCommand(int number, CommandSource /*source*/)
{
    if (SaveDispatcher(SaveCodeOf(number)) != SaveDone)
    {
        Shell().Requests.RefreshStatus = true;
        return;
    }
    // The files are read again: the saved file's new directory, the level and its view.
    (void)ReloadAfterSave();
    (void)SaveChkAndProject();
    CommandRequests& requests = Shell().Requests;
    requests.MenuStateChanged = true;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
}

void QuickSaveCommand(int /*number*/, CommandSource /*source*/)
{
    (void)QuickSaveBackup(false);
    Shell().Requests.RefreshStatus = true;
}

} // namespace kelvar::app
