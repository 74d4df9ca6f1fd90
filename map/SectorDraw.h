// Sectors for drawn lines: a closed run of new lines becomes a Sector of its own, each side of
// every drawn line faces the Sector its ray finds, and Sectors cut in pieces by a drawing get a
// Sector for each piece.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Which side of a drawn line faces the inside of the closed run is decided by an even-odd
//   ray test against the run's own lines, so a room drawn either way round comes out right.
// - Rays then have the last word on every side of a new line: a side whose ray finds another
//   Sector takes it, a side whose ray finds none is removed.
// - A drawn two-sided line with one Sector on both sides that closes off part of that Sector
//   divides it, one piece at a time, until no drawn line does.
#pragma once

#include "map/LevelData.h"

#include <vector>

namespace kelvar::map
{

/// What the drawing tool hands over when a run of lines ends.
struct DrawnRun
{
    std::vector<int> Lines;         // every LineDef made or touched by the run
    std::vector<int> NewLines;      // of those, the ones the run made (halves included)
    std::vector<int> ExistingLines; // one-sided LineDefs the run went along (now two-sided)
    int StartSector = -1;           // the Sector the drawing started in, or -1
    int Action = 1;                 // 1 closed, 2 one-sided lines wanted, 3 ended with Esc
    int Crossings = 0;              // intersections and splits the run made
    bool LineDrawMode = true;       // the conflict message of the LineDraw tool
};

/// Gives the lines of a run their Sectors, sides, flags and textures. Returns false when a
/// drawn LineDef ended with no front side ("line %d sideDef1 is missing?").
bool SmartDrawSectors(LevelData& level, const DrawnRun& run);

/// Divides `sector` (any Sector for -1) wherever one of the drawn lines closes off part of it.
/// Returns the number of Sectors made.
int NewIntersectionSectors(LevelData& level, int sector, const std::vector<int>& drawnLines);

} // namespace kelvar::map
