// The handlers of Choose Game Project and Choose Texture Group, and the change of project that
// Open PWAD also asks for.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/ControlChoice.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "wad/FileTable.h"

#include <string>

namespace kelvar::app
{
namespace
{

// The project KELVAR.CHK names, with its control files, its IWAD and its PWADs.
bool OpenNamedProject()
{
    return LoadProjectFiles() && OpenProjectIwad() != 0;
}

// Reads the project's level after a change of project, without asking.
void LoadProjectLevel()
{
    SessionState& session = Session();
    const bool withoutAsking = session.OpenLevelWithoutAsking;
    session.OpenLevelWithoutAsking = true;
    (void)LoadCurrentLevel(false, true);
    session.OpenLevelWithoutAsking = withoutAsking;
}

} // namespace

bool SwitchProject()
{
    SessionState& session = Session();
    ShellState& shell = Shell();
    GatherSettings();
    (void)SaveChkAndProject();
    const std::string oldName = GetText(shell.Chk.ProjectFile);

    // The session's first project was chosen at its start: from here on a cancelled chooser
    // only keeps the project, and a name that isn't there may be made.
    const bool firstTime = session.FirstTime;
    session.FirstTime = false;
    const bool chosen = ChooseProject();
    if (!chosen)
    {
        session.FirstTime = firstTime;
        return false;
    }
    wad::CloseFiles('A', true, false);
    wad::Wad().Levels.clear();
    if (!OpenNamedProject())
    {
        // The old project comes back; when even it can't be opened the session can't go on.
        SetText(shell.Chk.ProjectFile, oldName);
        if (!OpenNamedProject())
        {
            session.FirstTime = firstTime;
            if (session.Hooks.DestroyWindow)
            {
                session.Hooks.DestroyWindow();
            }
            return false;
        }
    }
    session.FirstTime = firstTime;
    LoadProjectLevel();
    GatherSettings();
    (void)SaveChkAndProject();
    shell.Requests.MenuStateChanged = true;
    shell.Requests.MiscMenuChanged = true;
    return true;
}

void ChooseProjectCommand(int /*number*/, CommandSource /*source*/)
{
    if (ContinueWithUnsavedChanges())
    {
        (void)SwitchProject();
    }
}

void ChooseTextureGroupCommand(int /*number*/, CommandSource /*source*/)
{
    // The texture control holds the tools' default textures: the level needn't be read again.
    if (ChooseTextureControl() == 1)
    {
        (void)SaveChkAndProject();
    }
}

} // namespace kelvar::app
