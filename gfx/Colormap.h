// COLORMAP building: light maps faded towards a target, gray maps, and maps carried to a new
// palette. SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ColorMatch.h"
#include "gfx/ImageRaster.h"

#include <cstdint>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// The light maps the editor builds; maps past these are kept as they are.
inline constexpr int BuiltColormaps = 32;

/// Map `number` of a COLORMAP lump; entries the lump lacks are the identity.
IndexTable ColormapMap(std::span<const uint8_t> colormap, int number);

/// Stores `map` as map `number` of `colormap`, growing the lump to hold it.
void SetColormapMap(std::vector<uint8_t>& colormap, int number, const IndexTable& map);

/// The 256 colours of `base` moved the fraction `t` of the way to `target`, each component
/// held to 0..255.
Palette ShadePalette(const Palette& base, const Palette& target, double t);

/// Rewrites maps 0 to 31 of `colormap` so that map m shows `base` faded m/32 of the way to
/// `target`, matched to `matchTo`. Map 0 is thus the identity of the palette (for a palette
/// without duplicates); maps past 31 are left as they are. A lump shorter than 32 maps grows.
void CreateColormaps(std::vector<uint8_t>& colormap, const Palette& base, const Palette& target,
                     const Palette& matchTo, const MatchMargins& margins = {});

/// A light map list as the game fades to black: CreateColormaps towards black on `palette`.
std::vector<uint8_t> BuildColormapLump(const Palette& palette, const MatchMargins& margins = {});

/// Maps 0 to 31 carried to a new palette: the colours each old map shows over the old
/// palette, matched to `newPalette`. Reproduces the old darkening in the new colours.
void RematchColormaps(std::vector<uint8_t>& colormap, std::span<const uint8_t> oldColormap,
                      const Palette& oldPalette, const Palette& newPalette,
                      const MatchMargins& margins = {});

/// A map that shows each colour of `palette` as the palette's nearest gray.
IndexTable GrayscaleColormap(const Palette& palette, const MatchMargins& margins = {});

} // namespace kelvar::gfx
