// The application shell's state: the status records in memory for the whole run.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/CommandState.h"
#include "app/StatusRecords.h"
#include "wad/WadState.h"

#include <array>

namespace kelvar::app
{

/// Everything the shell keeps. The records are the images of their files; a setting changes
/// here first and reaches its file at the next save.
struct ShellState
{
    ChkRecord Chk;
    ProjectRecord Project;
    GameConfigRecord GameConfig;
    TextureControlRecord TextureControl;
    std::array<ToolRecord, ToolFileCount> Tools;
    CommandWords Commands;
    CommandRequests Requests;
};

/// The one instance of the shell's state.
ShellState& Shell();

/// Puts every record back to its built-in default, and the commands' words and requests back
/// to their start (tests call it).
void ResetShell();

/// Copies what the WAD layer reads from KELVAR.CHK and the project into its options: the
/// IWAD, the "ee" marker of a never used project, the project's format switches and limits,
/// the default PWAD directory, and the duplicate, expert and IWAD-message options.
void CopyToWadOptions(const ChkRecord& chk, const ProjectRecord& project, wad::WadOptions& options);

/// Takes the IWAD path the WAD layer settled on back into the project. Returns false when
/// the path doesn't fit the record's 127 characters, which then keeps its old path.
bool CopyIwadPathToProject(const wad::WadOptions& options, ProjectRecord& project);

/// Marks the project as used by a session: both markers become "ff".
void MarkProjectUsed(ProjectRecord& project);

/// Saves KELVAR.CHK and, marked as used, the project KELVAR.CHK names, as every file command
/// and the exit do. Returns 1, or 0 when a save failed (it was reported).
[[nodiscard]] int SaveChkAndProject();

} // namespace kelvar::app
