// Data the palette and picture tests share: lumps read straight from the Freedoom IWADs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::gfx::test
{

/// The bytes of the newest lump `name` in Freedoom's `wadName`, read by a plain directory
/// walk so that the tests do not lean on the WAD layer; fails the test when it is missing.
std::vector<uint8_t> FreedoomLump(const std::string& wadName, const std::string& name);

/// Palette 0 of freedoom2.wad's PLAYPAL.
Palette FreedoomPalette();

/// A palette of `fill` with the given entries set from index 0 on.
Palette PaletteOf(std::initializer_list<Rgb> entries, Rgb fill = {255, 255, 255});

} // namespace kelvar::gfx::test
