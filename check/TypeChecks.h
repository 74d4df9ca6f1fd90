// The type and tag checks of the checker: LineDef types, tags and teleports (button 7) and
// Sector types and tags (button 8).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

/// Under "Checking LineDef Types/Tags (esc)":
/// - in the Hexen format without the ZDoom switch, more than 200 distinct Thing ids ("There
///   are %hd Tids", "Exceeded max HEXEN TID of 200", under "HEXEN Tid max of 200 exceeded!");
/// - each LineDef whose type no row knows ("LineDef %d, Invalid Type %hd"); Boom's generalized
///   types are left to their decoder;
/// - with "Check Tags" on, what the type's tag refers to: a tagged Sector, another LineDef, a
///   Thing id or a polyobject must exist, and a type that takes no tag asks "Reset tag to 0?"
///   under "LineDef tag" (Yes resets it, as one undo step). Strife's types 11, 145 and 202
///   with a tag, and 205, are left out;
/// - each Sector a teleport's tag names must hold a teleport landing for every skill.
/// Returns false when the user stopped it.
[[nodiscard]] bool CheckLineTypes(CheckRun& run);

/// Under "Checking Sector Types/Tags (esc)": each Sector whose type no row knows ("Sector %d,
/// Invalid Sector type %hd"), and with "Check Tags" on each tagged Sector that no LineDef's tag
/// names: "Reset tag to 0?" under "Sector tag" (Yes resets it, as one undo step). In the Hexen
/// format scripts may name the tag as well, so the tag is reported but not offered for reset.
/// Returns false when the user stopped it.
[[nodiscard]] bool CheckSectorTypes(CheckRun& run);

} // namespace kelvar::check
