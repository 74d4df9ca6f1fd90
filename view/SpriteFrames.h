// Sprite frames for the map view: a Thing type's sprite found among the sprite runs of the open
// files, decoded once and kept, with the game palette's colours to show it in.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kelvar::view
{

/// At most this many frames are kept; past it a frame is decoded for each use.
inline constexpr std::size_t SpriteCacheLimit = 600;

/// The picture of a sprite frame ("PLAYA1"), or nothing when there is no such lump in the
/// sprite runs or it isn't a readable patch. A frame not there under its own name is looked for
/// under rotation 0 ("PLAYA0"), the one frame for every angle. The pointer stays valid until the
/// open files change or the cache is cleared.
const gfx::ImageRaster* SpriteFrame(std::string_view frame);

/// Drops every kept frame.
void ClearSpriteFrames();

/// The game palette as shown (gamma applied), 0x00RRGGBB; a gray ramp before a palette is
/// loaded. Made again only when the palette changes.
const std::array<std::uint32_t, 256>& DisplayColors();

/// The palette index that stands for the holes of a sprite frame.
int SpriteHoleIndex();

} // namespace kelvar::view
