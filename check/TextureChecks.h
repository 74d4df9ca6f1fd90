// The texture checks of the checker: Sector heights and missing wall textures (button 4 and
// its automatic fix), unknown texture names and offsets (button 5), and textures no wall
// needs (button D).
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Each check returns false when the user stopped it (Escape, or Cancel on a prompt); the
//   repairs made until then stay.
// - `fix` is the automatic fix of the dialog's buttons E, F and G: every finding is repaired
//   without a question, whatever the run's mode, and only the repair's line ("LineDef %d Fixed
//   Upper sideDef1 %d") goes to the list. Without it the run's mode decides: a prompt whose
//   third button picks the texture (or the offset) the user wants, the list alone, or the list
//   with the fixed default repairs taken.
// - The default repairs: MARBLE1 for normal textures, MARBGRAY for upper and lower ones, FLAT4
//   for ceilings and FLOOR4_8 for floors; offsets are brought within the limits of the options.
// - Names are known by the texture and flat catalogues of the files now open (gfx::Catalogue),
//   which the caller builds first. A name that begins with '$' or '#' is one of the ports'
//   colour or fog maps and is never looked up.
// - The wall test looks ahead at what moves: a Sector that a LineDef special lowers or raises is
//   tested again with its floor or ceiling moved one unit, so a wall that only shows once a
//   lift has gone down is found too. The moved heights live in a copy the test reads; the
//   level's Sectors are never changed, so an undo step taken for a repair meanwhile holds the
//   true heights, and a stopped run leaves nothing to put back.
#pragma once

#include "check/CheckRun.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{

/// Button 4: ceilings below floors ("Sector %d has its ceiling lower than its floor."),
/// one-sided LineDefs without a normal texture ("Linedef %d: sideDef1 %d missing normal
/// texture"), then the wall test five times: over the level as it is ("2-sided"), and over the
/// Sectors that specials move with each kind of move applied by one unit ("Lower Floor",
/// "Raise Floor", "Lower Ceiling", "Raise Ceiling"). A wall reported in one of the five runs is
/// not reported again in a later one. `fix` repairs unasked.
[[nodiscard]] bool CheckSectorHeights(CheckRun& run, bool fix);

/// The upper and lower textures two-sided LineDefs need ("Linedef %d: sideDef1 %d has no upper
/// texture"), under the options "Upper Texture" and "Lower Texture"; with `sectors` not empty,
/// only the LineDefs that touch one of them. `name` stands in the progress ("Checking %s Wall
/// Textures (esc Cancel)") and the findings ("%s LineDef requires Texture."). Over the whole
/// level and without `fix`, the option "Multi-Patch Txtr.'s" also warns of a normal texture of
/// more than one patch on a two-sided LineDef ("Linedef %d, texture %s has %hd patches!").
[[nodiscard]] bool CheckWallTextures(CheckRun& run, bool fix,
                                     const std::vector<std::uint32_t>& sectors,
                                     const std::string& name);

/// Button 5: flats the flat list doesn't know ("Sector %d, ceiling", "texture %s not found"),
/// wall textures the texture list doesn't know ("SideDef %d, upper", under the options of each
/// texture), and with the options "X Offsets" and "Y Offsets" offsets beyond the limits
/// ("SideDef %d, Xoffset %hd (maxoffset set in F5 options)"). `fix` repairs unasked.
[[nodiscard]] bool CheckTextureNames(CheckRun& run, bool fix);

/// Button D: upper and lower textures that no height difference needs, now or once a special
/// has moved a Sector ("Linedef %d: sideDef1 %d upper %s not req"); a repair removes the
/// texture. Lower textures are checked when the prompt's question "Do you want to check lower
/// textures?" is answered Yes, and in the list without repairs; the automatic fixes (`fix`, and
/// the list with repairs) leave them alone. When they are checked and the level has rising
/// stairs, "Caution ! Rising stairs exist !" is told first.
[[nodiscard]] bool CheckExtraTextures(CheckRun& run, bool fix);

} // namespace kelvar::check
