// Texture alignment across selected LineDefs: the vertical offsets of one side made to line up
// with the first listed side's.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// LineDef flag bits that peg a wall's textures to its own ceiling or floor.
inline constexpr std::uint16_t FlagUpperUnpegged = 8;
inline constexpr std::uint16_t FlagLowerUnpegged = 16;

/// What an alignment did.
enum class AlignResult
{
    Done,
    NothingDone, // no listed LineDef has the side
    AllPegged,   // every listed LineDef is unpegged, so none was aligned
};

/// The height a side's wall texture hangs from: its Sector's ceiling, or the other side's
/// Sector's when that one is lower and above this side's floor.
int SideCeiling(const LevelData& level, const LineDef& line, int side);

/// Lines up the vertical offsets of side `side` (1 or 2) of the listed LineDefs, skipping the
/// unpegged ones: the first listed side is the reference, with offset 0; every other side gets
/// the difference of the reference's ceiling and its own, kept within -127 to 127 by its
/// remainder by 128 (a texture's own height is not known here).
AlignResult AlignTexturesY(LevelData& level, const ObjectList& list, int side);

} // namespace kelvar::map
