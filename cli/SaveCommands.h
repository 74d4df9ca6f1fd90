// kelvar-cli save: a level written through the editor's save pipeline.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kelvar::cli
{

/// An edit made between reading the level and saving it; returns an exit status, and the
/// save goes on only for ExitOk.
using LevelEdit = std::function<int()>;

/// save IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes]: reads the level and saves it into OUT.wad
/// as the editor's Save Level does (Build Node with --nodes), every question answered with its
/// first button (an I/O error's "Quit now ?" with No) and shown on stderr. Returns the exit
/// status. With `edit`, it runs on the level read before the save (kelvar-cli edit).
int SaveLevel(const std::vector<std::string>& arguments, const LevelEdit& edit = {});

} // namespace kelvar::cli
