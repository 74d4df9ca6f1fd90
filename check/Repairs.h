// The whole-level repair commands of the File menu: pack and unpack SideDefs, pack Sectors,
// centre the map, renumber tags, and fix each side's Sector from what lies there.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

namespace kelvar::check
{

/// Each asks first when `ask` is set (the save pipeline passes false), and returns true when
/// it changed the level.
bool PackSideDefs(map::LevelData& level, bool ask);
bool UnpackSideDefs(map::LevelData& level, bool ask);
bool PackSectors(map::LevelData& level);
bool CenterMap(map::LevelData& level);
bool RenumberTags(map::LevelData& level);
bool AutoFixSector(map::LevelData& level);

} // namespace kelvar::check
