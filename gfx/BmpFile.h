// BMP picture files: reading every uncompressed depth, writing 8-bit files with a palette.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/PictureFile.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// What DecodeBmp makes of a file's bytes.
enum class BmpStatus
{
    Ok,
    ReadError,   // too short for its headers, colour table or pixels
    NotBmp,      // no "BM", or an info header other than the 40-byte one
    Compressed,  // RLE or any other compression
    Unsupported, // a bit count other than 1, 4, 8, 16, 24, 32, or a size out of range
};

/// Decodes a BMP: 1, 4 and 8 bits as indexes with the file's palette, 16 (5-5-5), 24 and
/// 32 bits as colours; top-down and bottom-up rows. A colour count of 0 means 1 << bits.
BmpStatus DecodeBmp(std::span<const uint8_t> bytes, FilePicture& out);

/// An 8-bit BMP of `raster`: 40-byte info header, 256 colours of `palette`, rows bottom-up.
std::vector<uint8_t> EncodeBmp(const ImageRaster& raster, const Palette& palette);

/// Reads a BMP file for the editor into `out` on the game palette, translating the pixels
/// when `matchPalette` is set and repeating each `scale` times when 2 or more; the file's
/// translation table goes to the palette state. Returns 1, or 0 after "Image %s\nnot found",
/// "DIB Error reading file!", "DIB Not a Windows BMP/DIB file!", "RLE BMPs not supported"
/// (titled "RLE BMP") or "DIB Not a supported format!".
[[nodiscard]] int LoadBmp(const std::filesystem::path& fileName, int scale, bool matchPalette,
                          PictureRead& out);

/// Writes `raster` as a BMP with `palette`, or with the game palette when null. With
/// `prompt` the file is chosen in a dialog "BMP name" proposing `name`.BMP, and success is
/// reported as "BMP %s (%d x %-d) Saved Successfully". Returns BmpSaved, BmpCreateFailed
/// after "DIB Error opening file!", BmpSaveFailed after "DIB Error saving file!", or -1 when
/// the dialog was cancelled.
[[nodiscard]] int SaveBmp(const std::string& name, const ImageRaster& raster,
                          const Palette* palette, const std::filesystem::path& fileName,
                          bool prompt);

} // namespace kelvar::gfx
