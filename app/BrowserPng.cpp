// PNG lumps for the browsers, brought to the game palette as a PNG file is.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserPictures.h"

#include "gfx/GamePalette.h"
#include "gfx/PngFile.h"

namespace kelvar::app
{

std::optional<gfx::ImageRaster> BrowserPngRaster(std::span<const std::uint8_t> bytes)
{
    gfx::FilePicture decoded;
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
