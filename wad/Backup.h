// The quick backup (.BKP) and the crash save: the level's object lumps from memory into a file
// of their own, with the rest of the level's file in group mode.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <string>

namespace kelvar::wad
{

/// The quick backup: the level into `path` (.BKP), the whole file in group mode. With
/// `confirm`, "Save BKP file?\n\n%s" is asked first. I/O failures are reported, never
/// fatal. Returns 0, or -1.
[[nodiscard]] int WriteBackup(bool confirm, const map::LevelData& level, const std::string& path);

} // namespace kelvar::wad
