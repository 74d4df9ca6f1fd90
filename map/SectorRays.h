// Which Sector lies beside a LineDef, found by a ray from a point beside it to the nearest
// LineDef across the ray's path.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The ray runs along the axis nearer the side's normal, never along the normal itself: east
//   or west when the normal is at least as horizontal as vertical, else north or south.
// - A LineDef counts when the ray's line separates its ends, by a half-open test, so a ray
//   through a shared Vertex meets exactly one of the two LineDefs there, unless both end on
//   the same side; equal crossings go to the LineDef whose middle is nearer the start.
#pragma once

#include "map/LevelData.h"

namespace kelvar::map
{

/// What a ray found: the Sector, the LineDef hit and its SideDef that faces the ray's start.
/// All -1 when nothing was hit; Sector and Side -1 with the LineDef when the facing side is
/// missing.
struct Beside
{
    int Sector = -1;
    int Line = -1;
    int Side = -1;

    bool operator==(const Beside&) const = default;
};

/// Where along the LineDef the ray starts: its middle, a quarter, three quarters.
enum class RayStart
{
    Middle,
    Quarter,
    ThreeQuarters,
};

/// One ray from `line`'s side `side` (1 right, looking from start to end; 2 left), starting
/// at `start`, or `distance` map units from the LineDef's start when `distance` is above 0.
Beside SectorBesideAt(const LevelData& level, int line, RayStart start, double distance, int side);

/// The Sector beside `line` on `side`: rays from the middle, a quarter and three quarters
/// along, the first that answers.
Beside SectorBeside(const LevelData& level, int line, int side);

/// How SectorAt settles a point on or next to lines: Strict gives -1 for a point on a Vertex
/// the ray meets; Loose takes a Sector whenever one can be named; Drawing is the form the
/// drawing tools use at the Vertexes they place.
enum class SectorAtMode
{
    Strict = 0,
    Loose = 1,
    Drawing = 2,
};

/// The Sector at the point (x, y), by a ray to the east: the nearest LineDef the ray meets
/// names it by the side that faces west, provided some line also lies to the west of the
/// point; -1 for a point outside every Sector.
int SectorAt(const LevelData& level, double x, double y, SectorAtMode mode);

} // namespace kelvar::map
