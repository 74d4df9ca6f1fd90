// The closed-Sector check (button 2 of the checker): every Sector's edges meet, each side
// faces its own Sector, and one-sided lines inside a Sector get their missing side.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

/// The three steps, each under its option "Sector Closed 1", "2" and "3":
/// 1. "Checking All Sectors Closed Step 1 (esc)": each SideDef is an edge of its Sector from
///    its LineDef's start to its end (the other way for a back side); at each Vertex as many
///    of a Sector's edges must end as start: "Sector %d is not closed!" with "No SideDef
///    ending at Vertex %d" or "No SideDef starting at Vertex %d".
/// 2. "Checking All Sectors Closed Step 2 (esc)": a ray from the middle of each side must meet
///    a LineDef whose facing side is in the side's own Sector: "Sectors %d and %d not closed!"
///    ("Sectors %d and hd not closed!" for a back side), or "Sector %d not closed! (no
///    opposite Sector found)" when it meets no Sector.
/// 3. "Checking All Sectors Closed Step 3": a one-sided LineDef with a Sector on both sides
///    gives "line %d possible problem", "line %d Side2 missing"; the repair adds a SideDef
///    facing the Sector behind and the two-sided flag, and the repaired lines are listed
///    under "List of linedef problems corrected".
/// False when the user stopped it.
[[nodiscard]] bool CheckSectorsClosed(CheckRun& run);

} // namespace kelvar::check
