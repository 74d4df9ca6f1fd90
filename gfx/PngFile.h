// PNG picture files through libpng: palette, gray and colour pictures, offsets in a grAb chunk.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/PictureFile.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// What DecodePng makes of a file's bytes.
enum class PngStatus
{
    Ok,
    NotPng,   // no PNG signature
    ZeroSize, // a width or height of 0
    Damaged,  // libpng refused the data: truncated, bad CRC, sizes out of range
};

/// Decodes a PNG. Palette pictures (any bit depth) keep their indexes and PLTE, with tRNS as
/// alpha; gray pictures of 8 bits or less become indexes on a gray ramp; everything else
/// becomes colours, with alpha when the file has any. A grAb chunk gives the offsets.
PngStatus DecodePng(std::span<const uint8_t> bytes, FilePicture& out);

/// A palette PNG of `raster` with the 256 colours of `palette`, and a grAb chunk holding the
/// raster's offsets when either is not 0. Nothing when libpng fails.
std::optional<std::vector<uint8_t>> EncodePng(const ImageRaster& raster, const Palette& palette);

/// Reads a PNG file for the editor on the game palette. Colours go through the fast match
/// with the PngMatch setting, indexes through the translation table, and pixels under half
/// alpha become the transparent index. Returns 1, or 0 after "Image %s\nnot found",
/// "PNG_WADLoad: Bad file? Size is zero" or "Could not process Graphic %s\n\nProbably invalid
/// format!".
[[nodiscard]] int LoadPng(const std::filesystem::path& fileName, int scale, bool matchPalette,
                          PictureRead& out);

/// Writes `raster` as a palette PNG with `palette`, or the game palette when null; as
/// SaveBmp, with the dialog "PNG name" and "PNG %s (%d x %-d) Saved Successfully".
[[nodiscard]] int SavePng(const std::string& name, const ImageRaster& raster,
                          const Palette* palette, const std::filesystem::path& fileName,
                          bool prompt);

} // namespace kelvar::gfx
