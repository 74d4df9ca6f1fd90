// A level alone in a new PWAD of its own, for another program to read.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <string>

namespace kelvar::wad
{

/// Writes the level alone into a new PWAD at `path` under `levelName`: its object lumps from
/// memory, empty node lumps, and in a Hexen project its script (or 16 zero bytes). For
/// another program to read, after a node builder has run on it. Returns 0, or -1 after a
/// reported failure.
[[nodiscard]] int WriteLevelCopy(const map::LevelData& level, const std::string& path,
                                 const std::string& levelName);

} // namespace kelvar::wad
