// PNG lumps for the browsers, on the game palette. Kept apart from the lump pictures: the
// picture-file decoder and the lump decoder each name their result DecodedPicture.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserPictures.h"

#include "gfx/GamePalette.h"
#include "gfx/PngFile.h"

namespace kelvar::app
{

std::optional<gfx::ImageRaster> BrowserPngRaster(std::span<const std::uint8_t> bytes)
{
    gfx::DecodedPicture decoded;
    if (gfx::DecodePng(bytes, decoded) != gfx::PngStatus::Ok)
    {
        return std::nullopt;
    }
    gfx::PictureOptions options = gfx::PictureOptionsFromSettings(true, 1);
    options.FastMatch = true;
    options.TransparentIndex = gfx::Palettes().Options.TransparentIndex;
    return gfx::ToGamePalette(decoded, gfx::Palettes().GamePalette, options).Raster;
}

} // namespace kelvar::app
