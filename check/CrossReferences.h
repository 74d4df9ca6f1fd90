// The cross-reference check (button 3 of the checker): missing, shared, short, duplicate and
// overlapping LineDefs, wrong flags, numbers out of range and unused objects; and the
// duplicate and overlap checks on their own.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"
#include "map/ObjectList.h"

namespace kelvar::check
{

/// The steps of button 3 in order. False when the user stopped it.
[[nodiscard]] bool CheckCrossReferences(CheckRun& run);

/// Vertexes at the same coordinates: merged unasked with the merge option, or on the answer.
[[nodiscard]] bool CheckVertexDuplicates(CheckRun& run);

/// The area commands: Vertexes of `marked` that share a place, and LineDefs of `marked` that
/// share their Vertexes, each separated on the answer.
[[nodiscard]] bool CheckVertexOverlap(CheckRun& run, const map::ObjectList& marked);
[[nodiscard]] bool CheckLineOverlap(CheckRun& run, const map::ObjectList& marked);

} // namespace kelvar::check
