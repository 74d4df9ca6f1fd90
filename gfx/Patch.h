// Doom patches: the header tests, decoding posts to a raster, and encoding a raster to posts.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A patch lump is 8 bytes of width, height, left and top offset (i16 each), `width` column
//   offsets (u32, from the start of the lump), then the columns. A column is a run of posts
//   ending with the byte 255; a post is top delta, pixel count, a pad byte, the pixels and a
//   pad byte.
// - Tall patches: a post's delta is its row when it is greater than the row of the post
//   before; otherwise it counts on from that row. The first post's delta is its row. The
//   encoder writes deltas that this one rule reads back, so columns may run past row 254.
// - Every reader here takes the lump's bytes and never reads outside them; posts that run past
//   the end make the decode fail rather than read on.
#pragma once

#include "gfx/ImageRaster.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// The first 12 bytes of a patch: its four header fields and the first column offset.
struct PatchHeader
{
    std::int16_t Width = 0;
    std::int16_t Height = 0;
    std::int16_t LeftOffset = 0;
    std::int16_t TopOffset = 0;
    std::uint32_t FirstColumn = 0;

    bool operator==(const PatchHeader&) const = default;
};

/// Bytes of the header the quick test reads.
inline constexpr std::size_t PatchHeaderBytes = 12;

/// The header fields of the first 12 bytes (missing bytes count as 0).
PatchHeader ReadPatchHeader(std::span<const std::uint8_t> bytes);

/// IsPatchHeader results.
inline constexpr int PatchYes = 1;
inline constexpr int PatchNo = -3;
inline constexpr int PatchIsPng = -4;

/// The quick test on a lump's first 12 bytes: PatchYes, PatchNo, or PatchIsPng when the bytes
/// begin with the PNG signature. A lump of 12 bytes or less is never a patch. Width and height
/// must be 1 to 2048, both offsets -2046 to 2046, and the first column offset at least
/// `width * 4` (not `width * 4 + 8`: the looser test is the one wanted) and below the size.
int IsPatchHeader(std::span<const std::uint8_t> header, std::int64_t lumpSize);

/// True when the 8 PNG signature bytes begin `bytes`.
bool HasPngSignature(std::span<const std::uint8_t> bytes);

/// The bounds test of the column table before decoding: the first column offset is at least 4
/// and below the size, and every column offset, read as signed, is below the size. A lump
/// whose table itself runs past its end fails.
bool CheckPatchColumns(std::span<const std::uint8_t> lump);

/// A patch's size and offsets by the wider rule of size queries: width and height 1 to 2048,
/// offsets -2048 to 2048. Nothing when the header fails it.
std::optional<PatchHeader> ReadPatchSize(std::span<const std::uint8_t> header);

/// The size of the box that the posts really cover. Nothing when the header is no patch or a
/// post runs past the end of the lump.
struct TrimmedSize
{
    int Width = 0;
    int Height = 0;
    int MinColumn = 0;
    int MinRow = 0;
};
std::optional<TrimmedSize> ReadPatchTrimmedSize(std::span<const std::uint8_t> lump);

/// What DecodePatchToRaster found.
struct PatchDecode
{
    bool Complete = false;        // false: a post ran past the end of the lump
    bool TransparentUsed = false; // a stored pixel equals the fill index
};

/// Draws a patch on `target`, which the caller has sized and which is first filled with
/// `fillIndex`. `scale` 1 or more repeats each pixel that many times both ways; 0 or less
/// keeps every (2 - scale)-th column and pixel, for a target ceil(width / factor) by
/// ceil(height / factor). A post that runs past the end of the lump ends the decode and the
/// target holds the BADIMAGE placeholder instead.
PatchDecode DecodePatchToRaster(std::span<const std::uint8_t> lump, ImageRaster& target, int scale,
                                std::uint8_t fillIndex);

/// As above, and with `errorName` given, a stored pixel equal to the fill index shows the
/// notice "Transparent used" (once for the picture) with the lump name.
PatchDecode DecodePatchToRaster(const char* errorName, std::span<const std::uint8_t> lump,
                                ImageRaster& target, int scale, std::uint8_t fillIndex);

/// A patch decoded at its own size, with its offsets, on a background of `fillIndex`. Nothing
/// when the header fails IsPatchHeader, the column table fails CheckPatchColumns, or a post
/// runs past the end.
std::optional<ImageRaster> DecodePatch(std::span<const std::uint8_t> lump, std::uint8_t fillIndex);

/// One post of a column as the encoder builds it: delta, count, and where its pixels start in
/// the column's pixel store.
struct PatchPost
{
    std::uint8_t TopDelta = 0;
    std::uint8_t Count = 0;
    std::uint32_t FirstPixel = 0;

    bool operator==(const PatchPost&) const = default;
};

/// One column ready for writing: its posts in order and the pixels they point into.
struct PatchColumn
{
    std::vector<PatchPost> Posts;
    std::vector<std::uint8_t> Pixels;
};

/// Turns a raster into columns of posts; pixels equal to `transparentIndex` are holes. A post
/// holds at most 254 pixels, and a column that passes row 254 gets the deltas of the tall patch
/// rule.
std::vector<PatchColumn> ConvertRawY(const ImageRaster& raster, std::uint8_t transparentIndex);

/// The size of the lump WritePatchColumns makes; 8 for a picture of no columns.
std::size_t PatchSizeFromColumns(std::span<const PatchColumn> columns);

/// The patch lump: the 8 header bytes, the column offsets, then the posts. A post is written
/// when its count is not 0 or its delta is over 0.
std::vector<std::uint8_t> WritePatchColumns(std::span<const std::uint8_t, 8> header8,
                                            std::span<const PatchColumn> columns);

/// A raster as a patch lump, with its size and offsets in the header.
std::vector<std::uint8_t> EncodePatch(const ImageRaster& raster, std::uint8_t transparentIndex);

/// The stand-ins drawn where a picture failed: BADIMAGE for a bad lump, PNGIMAGE for a PNG
/// where a patch was wanted.
enum class Placeholder
{
    BadImage,
    PngImage,
};

/// Fills `target` with `fillIndex` and draws the placeholder centred on it, clipped.
void DrawPlaceholder(ImageRaster& target, Placeholder which, std::uint8_t fillIndex);

} // namespace kelvar::gfx
