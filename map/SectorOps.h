// Operations on Sectors: merging, joining across deleted LineDefs, the door and lift makers,
// and distributing heights and light over a selection.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The makers ask their questions through the platform's messages; `hexen` says the level is
//   of Hexen format, where the specials take their speed and delay as arguments.
// - A refusal returns false with the level as it was; the caller's undo step stays.
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// Points every SideDef of the listed Sectors at the head of the list (the last marked). The
/// other Sector records stay, unused, for the level check to report or remove.
void MergeSectors(LevelData& level, const ObjectList& list);

/// Merges the two Sectors of each listed LineDef (the front's stays) and deletes the
/// LineDefs. Refuses, changing nothing, when a LineDef lacks a side ("LineDef %d has only one
/// side") or has a side without a Sector. The caller removes what became unused.
bool DeleteLineDefsJoinSectors(LevelData& level, const ObjectList& list);

/// Speed and delay of the Hexen door and lift specials.
struct MoverTiming
{
    int Speed = 0;
    int Delay = 0;
};

/// Makes a door of `sector`: its two-sided LineDefs face out and become doors, its one-sided
/// ones door tracks, and its ceiling comes down to its floor. Asks when the Sector has more
/// than two two-sided LineDefs, refuses with fewer than two, and in Hexen format asks the
/// speed and delay. Returns true when the door was made.
bool MakeDoorFromSector(LevelData& level, int sector, bool hexen);

/// Makes a lift of `sector`: raised to its highest neighbour's floor, tagged with `freeTag`,
/// its two-sided LineDefs lowering it, those from neighbours at its top walked over. Refuses
/// a Sector without a two-sided LineDef. Returns true when the lift was made.
bool MakeLiftFromSector(LevelData& level, int sector, int freeTag, bool hexen);

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
