// The lump tools in the editor: the F7 menu of tools, and Group, UnGroup and Save and make an
// IWAD with the reload of the file they made.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Router.h"

#include <array>
#include <filesystem>

namespace kelvar::app
{

/// The tools of the F7 menu, in the menu's order.
enum class LumpTool : int
{
    Export,  // the export dialog: lumps to files
    Merge,   // the Merge/Import dialog: files and PWADs into a target WAD
    Rename,  // the rename dialog: a PWAD's entries renamed, deleted, inserted, moved
    Convert, // texture and flat names of every level replaced by a .CVT table
    Used,    // the textures and flats a PWAD's levels use
    Unused,  // what a PWAD defines that its levels don't use
};

/// The entries of the F7 menu.
const std::array<const char*, 6>& LumpToolEntries();

/// 1007 (F7): the menu of lump tools; the chosen one opens through the window.
void GraphicsMenuCommand(int number, CommandSource source);

/// 139 Group, 140 UnGroup, 250 Save and make an IWAD; with the answer to reload, the open
/// PWADs are closed and the file made is opened in their place.
void GroupMenuCommand(int number, CommandSource source);

/// Closes the open PWADs (after the unsaved-changes question) and opens `pwad` alone.
void ReloadWith(const std::filesystem::path& pwad);

} // namespace kelvar::app
