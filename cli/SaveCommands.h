// kelvar-cli save: a level written through the editor's save pipeline.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// save IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes]: reads the level and saves it into OUT.wad
/// as the editor's Save Level does (Build Node with --nodes), every question answered with its
/// first button (an I/O error's "Quit now ?" with No) and shown on stderr. Returns the exit
/// status.
int SaveLevel(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
