// The clean-up after Vertexes moved: Vertexes on the same spot merged, Vertexes lying on a
// LineDef splitting it, and LineDefs that came to lie on each other merged into one.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Tests are in double precision; a Vertex lies on a LineDef when the LineDef crosses the
//   square of half-size VertexMergeTolerance around it.
// - The questions are asked only in the interactive form, and only until the first yes; the
//   other form does every merge and split it finds.
// - Long scans show a status and poll for Escape every 100 steps, leaving what was done.
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

namespace kelvar::map
{

/// True when the LineDef from (x1, y1) to (x2, y2) has an end in the box or crosses one of
/// its edges; the bounds are inclusive.
bool LineCrossesBox(double x1, double y1, double x2, double y2, double minX, double minY,
                    double maxX, double maxY);

/// Replaces two LineDefs that join the same two Vertexes (in either direction) by `kept`: its
/// sides are chosen from the four so that each faces its Sector, checked by rays, its flags
/// and textures made right for one or two sides, and `removed` is deleted. Returns false when
/// the user stopped it at the question about a wrong Sector reference (nothing is deleted).
bool MergeLineDefs(LevelData& level, int kept, int removed);

/// Gives a drawn LineDef its final flags and wall textures from what its sides had: one side
/// makes it impassable with a normal texture (its own, else the default); two sides make it
/// two-sided, and each face gets an upper or lower texture where its Sector shows a step (its
/// own names, else the defaults).
void FinishDrawnLine(LevelData& level, int line);

/// What the clean-up did.
struct MergeCheckCounts
{
    int VertexMerges = 0;
    int LineSplits = 0;
    int LineMerges = 0;

    bool operator==(const MergeCheckCounts&) const = default;
};

/// For its lifetime the clean-up's VertexMergeTolerance is held at 0.2 at most, as after a
/// drag or a drawing: a Vertex put down near a line, not on it, is meant to stay where it was
/// put rather than split the line. The setting comes back at the end.
class PlacedVertexTolerance
{
public:
    PlacedVertexTolerance();
    ~PlacedVertexTolerance();
    PlacedVertexTolerance(const PlacedVertexTolerance&) = delete;
    PlacedVertexTolerance& operator=(const PlacedVertexTolerance&) = delete;

private:
    double Saved;
};

/// The clean-up after a drag or a tool moved or made the listed Vertexes: with the options
/// VertexMerge, VertexSplit and LineMerge, in this order. The list follows its Vertexes.
MergeCheckCounts MergeCheckAfterMove(LevelData& level, ObjectList& vertexes, bool interactive);

} // namespace kelvar::map
