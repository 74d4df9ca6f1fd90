// The texture checks of the checker: Sector heights and missing wall textures (button 4 and
// its automatic fix), unknown texture names and offsets (button 5), and textures no wall
// needs (button D).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{

/// Ceilings below floors, one-sided lines without a normal texture, then the wall test over
/// the level as it is and with the moving Sectors moved by one unit. `fix` repairs unasked.
[[nodiscard]] bool CheckSectorHeights(CheckRun& run, bool fix);

/// The upper and lower textures two-sided LineDefs need; with `sectors` not empty, only the
/// LineDefs that touch one of them. `name` stands in the progress and the findings.
[[nodiscard]] bool CheckWallTextures(CheckRun& run, bool fix, const std::vector<std::uint32_t>& sectors,
                                     const std::string& name);

/// Flats and wall textures the catalogue doesn't know, and offsets beyond the limits.
[[nodiscard]] bool CheckTextureNames(CheckRun& run, bool fix);

/// Upper and lower textures no height difference needs.
[[nodiscard]] bool CheckExtraTextures(CheckRun& run, bool fix);

} // namespace kelvar::check
