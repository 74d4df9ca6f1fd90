// Colour matching: outside colours to palette indexes, by the weighted and the fast metric.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The weighted match measures (3 dRed)^2 + (5 dGreen)^2 + (w dBlue)^2. Before the search
//   the wanted colour is tested for a dominant channel; a colour that is strongly red, green
//   or blue is given an entry with the same dominant channel even when a gray entry is
//   numerically nearer, so shaded reds stay red.
// - Ties: the plain search keeps the first of equal entries, the dominance search the last
//   of equal dominant entries. Both orders are deliberate and tested.
// - The fast match sums absolute differences and stops at the first entry that is close
//   enough; it exists for images with a match per pixel.
#pragma once

#include "gfx/ImageRaster.h"

#include <array>
#include <cstdint>

namespace kelvar::gfx
{

/// A table from one palette's indexes to another's.
using IndexTable = std::array<uint8_t, 256>;

/// The margins of the dominance test.
struct MatchMargins
{
    int DominantMargin = 10;       // a channel is a candidate above both others by more
    int StrongDominantMargin = 35; // and dominant above both by more than this
};

/// The distance no entry reaches: the start value of the searches.
inline constexpr int NoDistance = 99999999;

/// The entry of `palette` nearest to the colour under the weighted metric and the dominance
/// rule. An exact colour returns at once.
uint8_t MatchColor(const Palette& palette, int red, int green, int blue,
                   const MatchMargins& margins = {});

/// The first entry of `palette` whose sum of absolute differences is under `101 - pngMatch`,
/// else the nearest by that sum (the first of equals). A `pngMatch` of 0 counts as 50.
uint8_t FastMatchColor(const Palette& palette, int red, int green, int blue, int pngMatch);

/// MatchColor for each of the 256 entries of `source`, in order, against `target`.
IndexTable MatchPaletteTable(const Palette& source, const Palette& target,
                             const MatchMargins& margins = {});

/// The identity table (entry i = i).
IndexTable IdentityTable();

} // namespace kelvar::gfx
