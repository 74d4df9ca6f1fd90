// PCX picture files: 8-bit run-length pictures with a 768-byte palette at the end.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/PictureFile.h"

#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// The shortest PCX file read.
inline constexpr size_t MinPcxSize = 131;

/// What DecodePcx makes of a file's bytes.
enum class PcxStatus
{
    Ok,
    TooSmall,    // under 131 bytes
    Unsupported, // not 10, 5, 1, 8, a negative window field, or a size out of range
};

/// The header fields the refusal message shows.
struct PcxHeader
{
    int16_t XMin = 0, YMin = 0, XMax = 0, YMax = 0;
    int16_t BytesPerLine = 0;
    uint8_t Control[4] = {};
};

/// Decodes a PCX: the run-length pixels after the 128-byte header, rows taken at the stride
/// of bytes per line, the palette from the last 768 bytes of the file. `header` receives the
/// header fields whenever the file is long enough to hold them.
PcxStatus DecodePcx(std::span<const uint8_t> bytes, FilePicture& out, PcxHeader* header);

/// An 8-bit PCX of `raster`: every row coded over its whole pitch, then 12 and the palette.
std::vector<uint8_t> EncodePcx(const ImageRaster& raster, const Palette& palette);

/// Reads an outside picture for the editor: kind ImageKindPcx or ImageKindBmp (any other
/// kind returns 0 and reads nothing). A PCX shows "Image %s\nnot found", "Size is too
/// small?" (titled "Size"), or, unless `quiet`, the header and "Image size or type not
/// supported (must be 10,5,1,8)!" (titled "Not Supported"). Returns 1 or 0.
[[nodiscard]] int ReadImageFile(int kind, bool matchPalette, int scale,
                                const std::filesystem::path& fileName, bool quiet,
                                PictureRead& out);

/// Writes `raster` as a PCX with `palette`, or the game palette when null; as SaveBmp, with
/// the dialog "PCX name" and "PCX %s (%d x %-d) Saved Successfully".
[[nodiscard]] int SavePcx(const std::string& name, const ImageRaster& raster,
                          const Palette* palette, const std::filesystem::path& fileName,
                          bool prompt);

} // namespace kelvar::gfx
