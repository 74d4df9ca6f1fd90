// Operations on LineDefs: splitting, flipping and swapping sides, straightening to the grid,
// and renumbering a selection (LineDefs or Sectors) to the front of its array.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Geometry is 16-bit integers; midpoints are the truncating division of the sum by 2, so
//   negative coordinates round toward zero like positive ones.
// - Every function counts its change (ChangeCount and GeometryChangeCount) once, on top of
//   whatever the store counted for the objects it inserted. Undo steps are the caller's.
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// A new LineDef with the defaults from `start` to `end`, with no sides yet. Returns its number.
int InsertLineDef(LevelData& level, std::uint32_t start, std::uint32_t end);

/// Splits `line` at `vertex`: the LineDef is cloned (flags, type, tag and args, no sides), the
/// old one ends at `vertex` and the new one runs from `vertex` to the old end. Each side is
/// cloned for the new LineDef with its textures, Sector and offsets unchanged. Returns the
/// new LineDef's number, the last of the array.
int SplitLineDefAt(LevelData& level, int line, int vertex);

/// Splits each LineDef of the list at the truncated midpoint of its ends, on a new Vertex.
void SplitLineDefsAtMidpoint(LevelData& level, const ObjectList& list);

/// What a flip exchanges.
enum class FlipWhat
{
    VertexesAndSides, // the faces stay where they are on the map
    VertexesOnly,
    SidesOnly,
};

/// Flips every LineDef of the list; the flags are left alone.
void FlipLineDefs(LevelData& level, const ObjectList& list, FlipWhat what);

/// Straightens `line` when it is nearly horizontal or vertical: with dx and dy the
/// differences of its ends, when |dx| is the smaller, above 0 and below `gridSize`, the start
/// Vertex takes the end's x; otherwise when |dy| is above 0, below `gridSize` and dx is not 0,
/// the start takes the end's y. Returns true when a Vertex moved.
bool AlignLineDefToGrid(LevelData& level, int line, int gridSize);

/// Moves the listed LineDefs or Sectors (`kind`) to the front of their array, the one marked
/// first becoming number 0, the next 1, and so on; the others keep their order behind them.
/// Renumbering Sectors rewrites every SideDef's reference, so each side keeps its Sector.
/// The list follows its objects to their new numbers.
void RenumberSelected(LevelData& level, int kind, ObjectList& list);

} // namespace kelvar::map
