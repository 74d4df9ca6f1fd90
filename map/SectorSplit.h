// Dividing a Sector by a new line between two Vertexes, and joining two Vertexes by a plain
// LineDef whose sides take the Sectors their rays find.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The user first says what is meant: leave (the caller draws a plain line), a two-sided line
//   inside one Sector, or a real split.
// - A split walks the Sector's sides from the first Vertex, keeping the Sector on the right,
//   until it reaches the second: the walked LineDefs and the new line enclose the part that
//   becomes the new Sector. The rest of the Sector (islands, spurs) is sorted by rays, and
//   what hangs on a moved LineDef follows it by a flood over shared Vertexes.
// - Nothing is changed before every refusal has had its chance: a refused split leaves the
//   level as it was.
#pragma once

#include "map/LevelData.h"

namespace kelvar::map
{

/// What SplitSector did.
enum SplitResult : int
{
    SplitExit = -1,   // the user chose Exit: nothing done, the caller draws its own line
    SplitNothing = 0, // refused or stopped: nothing done
    SplitDone = 1,    // the line is made (a split, or a two-sided line)
};

/// Makes a LineDef between `vertexA` and `vertexB` that divides the Sector there, after asking
/// what is meant. With `takeUndoStep` it takes the undo step itself before its first change.
int SplitSector(LevelData& level, int vertexA, int vertexB, bool takeUndoStep);

/// Divides the Sector on both sides of `line` (a two-sided LineDef with the same Sector on both
/// sides) when the line closes a part of it: the Sector's sides are walked from the line's end
/// around to its start, and that part with the line's front becomes a new Sector, cloned from
/// the old one with no type or tag. Returns the new Sector, or -1 when the line divides
/// nothing (a spur, a line to an island). No question is asked.
int DivideSectorAlong(LevelData& level, int line);

/// A plain LineDef from `vertexA` to `vertexB`: each side gets a SideDef on the Sector its ray
/// finds, if any; textures and flags follow the sides. Returns the LineDef's number.
int ConnectVertexes(LevelData& level, int vertexA, int vertexB);

} // namespace kelvar::map
