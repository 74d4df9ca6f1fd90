// The application shell's state and its bridge to the WAD layer's options.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ShellState.h"

#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"

namespace kelvar::app
{

namespace
{

void PutDefaults(ShellState& state)
{
    state.Chk = DefaultChk();
    state.Project = DefaultProject();
    state.GameConfig = DefaultGameConfig(2, false, false);
    state.TextureControl = DefaultTextureControl(2);
    for (std::size_t i = 0; i < ToolFileCount; ++i)
    {
        state.Tools[i] = DefaultToolFile(static_cast<int>(i) + 1);
    }
}

} // namespace

ShellState& Shell()
{
    static ShellState state = []
    {
        ShellState initial{};
        PutDefaults(initial);
        return initial;
    }();
    return state;
}

void ResetShell()
{
    PutDefaults(Shell());
    Shell().Commands = CommandWords{};
    Shell().Requests = CommandRequests{};
}

void CopyToWadOptions(const ChkRecord& chk, const ProjectRecord& project, wad::WadOptions& options)
{
    options.IwadPath = GetText(project.IwadPath);
    options.ProjectNeverUsed = project.ProjectMarker == NeverUsedMark;
    options.ZdoomHexenFormat = project.ZdoomHexenFormat != 0;
    options.BoomTypes = project.BoomTypes != 0;
    options.GlNodes = project.GlNodes != 0;
    options.FileLimit = project.FileLimit;
    options.LevelListLimit = project.LevelListLimit;
    options.DefaultPwadDir = GetText(project.DefaultPwadDir);
    options.AllowDuplicates = chk.AllowDuplicates != 0;
    options.DuplicateLumpMsg = chk.DuplicateLumpMsg != 0;
    options.ExpertMode = chk.ExpertMode != 0;
    options.NoIwadWarningMsg = chk.NoIwadWarningMsg != 0;
    options.AdditionalLumpEntries = chk.AdditionalLumpEntries;
}

bool CopyIwadPathToProject(const wad::WadOptions& options, ProjectRecord& project)
{
    if (options.IwadPath.size() >= RecordPathSize)
    {
        return false;
    }
    SetText(project.IwadPath, options.IwadPath);
    return true;
}

void MarkProjectUsed(ProjectRecord& project)
{
    project.ProjectMarker = EndMark;
    project.ListMarker = EndMark;
}

int SaveChkAndProject()
{
    ShellState& state = Shell();
    if (SaveChk(state.Chk) != 1)
    {
        return 0;
    }
    MarkProjectUsed(state.Project);
    return SaveProject(state.Project, GetText(state.Chk.ProjectFile));
}

} // namespace kelvar::app
