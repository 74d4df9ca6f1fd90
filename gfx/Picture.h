// Pictures of any lump kind: bytes to a raster and a raster to bytes, chosen by LumpKind.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"
#include "gfx/LumpKind.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// Why a picture did not decode.
enum class PictureError
{
    None,
    NotAPicture,   // the bytes are of no picture kind decoded here
    InvalidFormat, // a patch whose posts run past its end
    InvalidSize,   // an IMGZ or FLATLEG whose size is out of range or whose pixels are short
};

/// A decoded picture: the raster, or the reason there is none.
struct DecodedPicture
{
    std::optional<ImageRaster> Raster;
    LumpKind Kind = LumpKind::Lump;
    PictureError Error = PictureError::None;
    bool TransparentUsed = false; // a patch pixel equals the fill index
};

/// True for the kinds DecodePicture turns into a raster: Flat, Pic, FlatBig, FlatBig158,
/// FlatLeg and Imgz.
bool IsDecodedKind(LumpKind kind);

/// Decodes the lump `bytes` as the picture `kind` says. A flat's size comes from `lumpSize`,
/// and `bytes` may hold more (what follows the lump in its file) or fewer; full-screen raws
/// and FLATLEG take the bytes they need, missing ones as 0. Patch holes get `fillIndex`.
DecodedPicture DecodePictureAs(std::span<const std::uint8_t> bytes, std::int64_t lumpSize,
                               LumpKind kind, std::uint8_t fillIndex);

/// Classifies the lump's bytes, then decodes them as above.
DecodedPicture DecodePicture(std::span<const std::uint8_t> lump, std::uint8_t fillIndex);

/// The lump bytes of a raster in the format of `kind`: Flat writes `width * height` bytes,
/// FlatBig 64000, FlatBig158 50560, FlatLeg the size header and the pixels, Imgz an IMGZ;
/// every other kind a patch, with pixels of `transparentIndex` as holes.
std::vector<std::uint8_t> WriteLumpFromRaster(const ImageRaster& raster, LumpKind kind,
                                              std::uint8_t transparentIndex);

/// The bytes a picture of that kind is read as, for a lump of `size` bytes: a flat at least
/// 4096, the full-screen raws their 64000 or 50560, others their size.
std::int64_t PictureReadSize(LumpKind kind, std::int64_t size);

/// Reads and decodes entry `index` of the master directory as a picture of the kind its bytes
/// give, with `fillIndex` in the holes. On failure shows "Could not process Graphic
/// %s\n\nProbably invalid format!" (a patch whose posts run past the end, or bytes of no
/// picture kind) or "Not enough Memory to read or invalid size %s!" (IMGZ or FLATLEG of a bad
/// size), and returns nothing. An index past the directory returns nothing, silently.
std::optional<ImageRaster> ReadPictureLump(std::size_t index, std::uint8_t fillIndex);

} // namespace kelvar::gfx
