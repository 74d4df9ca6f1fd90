// The door and lift makers: a door or a lift made of a Sector, and a door made of four
// LineDefs drawn across a passage.
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

/// Makes a door of four LineDefs drawn across a passage: two pairs that meet end to end, the
/// LineDef of each pair nearer the other pair being the door face and the other its track. A
/// new Sector, closed at the floor of the passage, takes the faces' backs and the tracks'
/// sides. Refuses another number of LineDefs, or four that don't make two such pairs.
bool MakeDoorFromLineDefs(LevelData& level, const ObjectList& list, bool hexen);

/// Makes a lift of `sector`: raised to its highest neighbour's floor, tagged with `freeTag`,
/// its two-sided LineDefs lowering it, those from neighbours at its top walked over. Refuses
/// a Sector without a two-sided LineDef. Returns true when the lift was made.
bool MakeLiftFromSector(LevelData& level, int sector, int freeTag, bool hexen);

} // namespace kelvar::map
