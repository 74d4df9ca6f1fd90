// The cross-reference check (button 3 of the checker): missing, shared, short, duplicate and
// overlapping LineDefs, wrong flags, numbers out of range and unused objects; and the
// duplicate and overlap checks on their own.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Tests of pairs (Vertexes at one place, LineDefs at one place, Vertexes on LineDefs,
//   LineDefs along each other) sort or use the spatial index, so a level of a quarter of a
//   million LineDefs is checked in seconds. Their findings come in the order of the lower
//   number of the pair, then the higher.
// - Of three or more objects at one place, each is reported with the next one of them: every
//   one but the last is named once as the first of a pair.
// - A step finds before it repairs where a repair would change what it is looking at; the
//   numbers shown are those the objects have when the finding is shown.
#pragma once

#include "check/CheckRun.h"
#include "map/ObjectList.h"

namespace kelvar::check
{

/// The steps of button 3 in order: the duplicate Vertexes ("Check Duplicate Vertex"); missing
/// and doubled sides; short LineDefs ("Check Short Lines"); duplicate LineDefs ("Check
/// Duplicate Linedefs"); Vertexes on LineDefs and LineDefs along each other ("Check
/// Overlapping Linedefs"); flags that disagree with the sides; then Vertex, SideDef and
/// Sector numbers out of range and the unused objects of each kind. False when the user
/// stopped it.
[[nodiscard]] bool CheckCrossReferences(CheckRun& run);

/// "Checking Vertex Duplicates": "Vertex %d and %d share the same Coordinates". With the
/// merge option the first is merged into the second unasked (noted "(Vertex Merge option set
/// in F5)"); otherwise the prompt asks "Merge the Vertices?". False when stopped.
[[nodiscard]] bool CheckVertexDuplicates(CheckRun& run);

/// The area commands: Vertexes of `marked` that share a place ("%d vertices overlap",
/// "Separate the Vertices?"), and LineDefs of `marked` that join the same two Vertexes ("%d
/// LineDefs share the same Vertexes", "Separate the LineDefs?"). On the answer all but the
/// first of each place are moved apart, the k-th by k times 8 map units (a LineDef on new
/// Vertexes of its own, off the line at right angles). Without marked objects they say how to
/// mark them. False when stopped by Escape.
[[nodiscard]] bool CheckVertexOverlap(CheckRun& run, const map::ObjectList& marked);
[[nodiscard]] bool CheckLineOverlap(CheckRun& run, const map::ObjectList& marked);

} // namespace kelvar::check
