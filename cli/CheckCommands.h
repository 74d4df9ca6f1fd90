// kelvar-cli check and stats: the level checker and the level statistics, for scripts and the
// continuous integration of map projects.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

#include <string>
#include <vector>

namespace kelvar::cli
{

/// check IWAD [PWAD...] MAPNAME [--only GROUP,...] [--fix -o OUT.wad] [--json]: runs the
/// checker's groups (all of buttons 2 to 8 by default) with the findings going to the error
/// list, and prints the list: as text, or as JSON. With --fix every repair a finding offers
/// is taken and the level saved into OUT.wad as `save` does. Exit status 0 when nothing was
/// found, 1 when something was (before any repair), 2 when a file was refused.
int CheckLevel(const std::vector<std::string>& arguments);

/// stats IWAD [PWAD...] MAPNAME: the statistics report of the level.
int LevelStatistics(const std::vector<std::string>& arguments);

/// The error list as JSON: {"level": ..., "found": N, "changes": N, "findings": [{"kind":
/// "LineDef", "index": 3, "text": "...", "detail": ["..."]}, ...]}. A finding about the level
/// as a whole has the kind "Level" and no index.
std::string FindingsJson(const std::string& level, const std::vector<check::Finding>& findings,
                         int changes);

} // namespace kelvar::cli
