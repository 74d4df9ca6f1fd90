// The pictures of the browsers' cells: each read from its lump, composed, or drawn as a small
// map, as an 8-bit raster on the game palette.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Browser.h"
#include "gfx/ImageRaster.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace kelvar::app
{

/// A cell's picture as read for a browser.
struct BrowserPicture
{
    std::optional<gfx::ImageRaster> Raster; // nothing: no picture to draw
    bool Bad = false;   // the lump is no picture that can be read: the " bad lump " sign
    bool Holes = false; // pixels of HoleIndex are see-through (patches, sprites, textures)
    std::uint8_t HoleIndex = gfx::DefaultTransparentIndex;
    PictureFacts Facts;
};

/// Reads the picture of list entry `index` of the open browser: a texture composed from its
/// patches (or the PNG one of its patches is), a flat, a patch, a sprite, a Thing's sprite, or
/// a level's LineDefs drawn to the cell's size. A lump that is no readable picture comes back
/// Bad; nothing is shown to the user either way. "-" and a Thing without a sprite lump have
/// no picture and are not bad.
BrowserPicture ReadBrowserPicture(const BrowserState& state, int index);

/// A small map of a level: its LineDefs in `lineIndex` on `backgroundIndex`, fitted with a
/// margin into `width` by `height`. Nothing when the level or its lumps are not found.
std::optional<gfx::ImageRaster> LevelThumbnail(std::string_view name, int width, int height,
                                               std::uint8_t lineIndex,
                                               std::uint8_t backgroundIndex);

/// A PNG lump on the game palette, its see-through pixels on the transparent index; nothing
/// when libpng refuses it.
std::optional<gfx::ImageRaster> BrowserPngRaster(std::span<const std::uint8_t> bytes);

} // namespace kelvar::app
