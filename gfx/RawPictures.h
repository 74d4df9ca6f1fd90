// Raw pictures: flats, full-screen raws, FLATLEG with its size header, and IMGZ.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A flat has no header: its size says its side. A flat is read as at least 4096 bytes, so
//   a short flat takes in the bytes that follow it in the file; the reader takes the bytes it
//   is given and counts missing ones as 0.
// - The raw writers (flats, full-screen, FLATLEG) write a raster's bytes as they lie in
//   memory, `width * height` of them, with no removal of the row padding: rasters of those
//   kinds are 64, 128, ... or 320 wide, where there is none. IMGZ removes it.
#pragma once

#include "gfx/ImageRaster.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// A picture size.
struct PictureSize
{
    int Width = 0;
    int Height = 0;

    bool operator==(const PictureSize&) const = default;
};

/// The size of a flat lump of `size` bytes: 64000 gives 320 x 200; a square of side 128,
/// 256, 512, 1024 or 2048 gives that square; everything else 64 x 64.
PictureSize FlatSizeFromLumpSize(std::int64_t size);

/// Bytes a flat of `size` bytes is read as: at least 4096.
std::int64_t FlatReadSize(std::int64_t size);

/// Copies `width * height` raw pixels to `target` row by row, each pixel repeated `scale`
/// times both ways (scale below 1 counts as 1). Missing raw bytes count as 0.
void ExpandRawToRaster(int width, int height, std::span<const std::uint8_t> raw,
                       ImageRaster& target, int scale);

/// A raw picture of the given size from `raw` (missing bytes count as 0).
ImageRaster DecodeRaw(std::span<const std::uint8_t> raw, int width, int height);

/// A flat lump of `lumpSize` bytes; `bytes` are what the file holds from the lump on (up to
/// FlatReadSize bytes), so they may be more or fewer than the lump.
ImageRaster DecodeFlat(std::span<const std::uint8_t> bytes, std::int64_t lumpSize);

/// A FLATLEG lump: an 8-byte header of width and height (i32), then the pixels. Nothing when
/// width or height lies outside 1 to 2048 or the pixels are not all there.
std::optional<ImageRaster> DecodeFlatleg(std::span<const std::uint8_t> lump);

/// IMGZ header values.
inline constexpr std::size_t ImgzHeaderBytes = 24;

/// An IMGZ lump, raw or run-length coded, with its offsets. Nothing for a lump under 25 bytes,
/// without the magic, or with a width or height outside 1 to 1024. A coded stream that ends
/// early reads on into 100 spare zero bytes, and past them as zeros.
std::optional<ImageRaster> DecodeImgz(std::span<const std::uint8_t> lump);

/// The first `width * height` bytes of the raster's memory, padding included (see above).
std::vector<std::uint8_t> EncodeRaw(const ImageRaster& raster);

/// A raw of exactly `bytes` bytes from the raster's memory, zero padded: the full-screen
/// kinds write 64000 or 50560 whatever the raster.
std::vector<std::uint8_t> EncodeRawOfSize(const ImageRaster& raster, std::size_t bytes);

/// A FLATLEG lump: width and height as i32, then the raster's memory as EncodeRaw takes it.
std::vector<std::uint8_t> EncodeFlatleg(const ImageRaster& raster);

/// An IMGZ lump, always stored raw: the header with size and offsets, compression 0, and the
/// rows without their padding.
std::vector<std::uint8_t> EncodeImgz(const ImageRaster& raster);

} // namespace kelvar::gfx
