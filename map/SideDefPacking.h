// Shared SideDefs: the test whether a level packs them, and the unpacking that makes each one
// unique again.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <string>
#include <vector>

namespace kelvar::map
{

/// True when some SideDef serves more than one side of the level's LineDefs.
bool SideDefsShared(const LevelData& level);

/// What an unpacking did.
struct UnpackResult
{
    int Unpacked = 0;               // SideDefs copied so each side has its own
    std::vector<std::string> Notes; // "LineDef %d missing side 1 set to 0" and the like
    bool Cancelled = false;         // Escape stopped it
};

/// Gives every LineDef side that shares its SideDef with an earlier side (in LineDef order) a
/// copy of its own, appended to the SideDefs. A missing front side is set to 0 and a side
/// beyond the SideDefs is noted. Escape, polled every 100 LineDefs, stops it.
UnpackResult UnpackSideDefsOf(LevelData& level);

} // namespace kelvar::map
