// Operations on Sectors: merging, joining across deleted LineDefs, and distributing heights
// and light over a selection.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A refusal returns false with the level as it was; the caller's undo step stays.
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// The Sector a SideDef faces, or NoSector for no SideDef or one out of range.
std::uint32_t SectorOfSide(const LevelData& level, std::uint32_t side);

/// The number of the Sector a SideDef faces when that Sector exists, else -1.
int SectorNumberOfSide(const LevelData& level, std::uint32_t side);

/// Points every SideDef of the listed Sectors at the head of the list (the last marked). The
/// other Sector records stay, unused, for the level check to report or remove.
void MergeSectors(LevelData& level, const ObjectList& list);

/// Merges the two Sectors of each listed LineDef (the front's stays) and deletes the
/// LineDefs. Refuses, changing nothing, when a LineDef lacks a side ("LineDef %d has only one
/// side") or has a side without a Sector. The caller removes what became unused.
bool DeleteLineDefsJoinSectors(LevelData& level, const ObjectList& list);

/// What a distribution sets.
enum class Distributed
{
    FloorHeight,
    CeilingHeight,
    Light,
    ThingHeight,
};

/// Spreads a value evenly over the list: the head (last marked) and the tail (first marked)
/// keep theirs, the objects between them, in list order, get head + i * (tail - head) / (n -
/// 1), truncated. Needs at least three objects ("Select at least %d %ss"); returns false when
/// refused.
bool Distribute(LevelData& level, const ObjectList& list, Distributed what);

} // namespace kelvar::map
