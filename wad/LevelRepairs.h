// The checks and repairs of a level being read: bad references, the game format, packing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <vector>

namespace kelvar::wad
{

/// Checks the LineDefs' Vertex numbers against the VERTEXES lump ("Vertex in Linedef %d not
/// valid..."; continuing sets the bad ones to 0), then keeps only the Vertexes that a LineDef
/// uses, renumbering the LineDefs.
void ReadUsedVertexes(map::LevelData& level, const std::vector<std::uint8_t>& vertexes);

/// Gives SideDefs whose Sector doesn't exist, and that a LineDef uses, a new Sector (one per
/// bad number), after asking once.
void RepairSideDefSectors(map::LevelData& level);

/// Checks each LineDef's sides: after asking once, sides beyond the SideDefs become 0.
void RepairLineSides(map::LevelData& level);

/// A level of another layout than the project's format: marked as changed, the user may
/// reset specials and tags, and the Things' flags are adjusted. `mismatch` 1 is a Doom layout
/// in a Hexen-format project, 2 a Hexen layout in another one, 0 none.
void ApplyFormatMismatch(map::LevelData& level, int mismatch);

/// Warns of shared SideDefs, or unpacks them when the option asks for it.
void CheckSideDefPacking(map::LevelData& level);

} // namespace kelvar::wad
