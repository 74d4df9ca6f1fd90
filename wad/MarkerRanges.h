// The marker runs of the master directory (flats, sprites, patches, TX textures) after a merge.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadState.h"

namespace kelvar::wad
{

/// Finds the newest pair of each marker kind in the master directory and the run of entries
/// between them, keeps them in Wad().Markers, and marks the pictures of the runs: sprites
/// ClassCode 2 and LumpGroup 5, patches 2 and 3, TX and HI textures 2 and 1 (lumps of more
/// than 12 bytes only; a shorter one is a marker or no picture).
void BuildMarkerLists();

} // namespace kelvar::wad
