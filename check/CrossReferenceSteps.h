// The steps of the cross-reference check, each a check of its own over the whole level; shared
// by the files that hold them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

/// "LineDef %d has no first SideDef."; with "Check Duplicate Sidedefs", a LineDef whose two
/// sides are one SideDef: "LineDef %d uses %d SideDef twice".
[[nodiscard]] bool CheckMissingSideDefs(CheckRun& run);

/// LineDefs of no length ("LineDef %d is -0- length!") or shorter than the shortest length
/// set ("LineDef %d is less than %hd long! Remnant?"), deleted on the answer.
[[nodiscard]] bool CheckShortLineDefs(CheckRun& run);

/// LineDefs that join the same two Vertexes ("LineDef %d and %d share the same Vertices") or
/// places ("... share the same Coordinates"); the first of the two is deleted on the answer.
[[nodiscard]] bool CheckDuplicateLineDefs(CheckRun& run);

/// A Vertex lying on a LineDef it doesn't end: "Vertex %d is on LineDef %d", split there on the
/// answer.
[[nodiscard]] bool CheckVertexesOnLineDefs(CheckRun& run);

/// Two LineDefs along the same straight line that share a stretch of it: "LineDef %d and %d
/// overlap".
[[nodiscard]] bool CheckCollinearOverlaps(CheckRun& run);

/// The flags that disagree with the sides, each fault collected over all LineDefs and asked
/// about once.
[[nodiscard]] bool CheckInvalidFlags(CheckRun& run);

/// Vertex numbers out of range (set to 0 on the answer) and unused Vertexes (deleted).
[[nodiscard]] bool CheckUnusedVertexes(CheckRun& run);

/// SideDef numbers out of range or missing (set to 0), SideDefs two LineDefs share, and unused
/// SideDefs (deleted).
[[nodiscard]] bool CheckUnusedSideDefs(CheckRun& run);

/// Sector numbers out of range and unused Sectors (deleted).
[[nodiscard]] bool CheckUnusedSectors(CheckRun& run);

} // namespace kelvar::check
