// Fitting an outside picture to a lump kind: the size limits, the size each kind takes, the
// offsets each kind gets, and the stretch between.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"
#include "gfx/LumpKind.h"
#include "gfx/RawPictures.h"

#include <cstdint>

namespace kelvar::gfx
{

/// The smallest and largest picture an import takes.
struct ImportSizeLimits
{
    int MinWidth = 1;
    int MinHeight = 1;
    int MaxWidth = 2048;
    int MaxHeight = 2048;
};

/// The size a picture of `width` x `height` gets within the limits. A picture that has to
/// change is scaled by the ratio of its longer side (height when it exceeds the width), and
/// scaled down once more when a side still exceeds its maximum, keeping the aspect ratio.
PictureSize FitToLimits(int width, int height, const ImportSizeLimits& limits);

/// The size a picture of `size` takes as `kind`: the full-screen kinds their 320 x 200 and
/// 320 x 158; a flat 64 x 64, unless it is a square of side 128, 256, 512, 1024 or 2048 or is
/// 320 wide, which keep their size; every other kind its own size.
PictureSize SizeForKind(LumpKind kind, PictureSize size);

/// A patch's offsets by the kind it is made as: a projectile and an IMGZ are centred, a sprite
/// stands on its bottom 4 rows, a weapon sits at the bottom of the screen; others get 0, 0.
void SetOffsetsForKind(ImageRaster& raster, LumpKind kind);

/// `source` stretched to `width` x `height` by taking the nearest pixel.
ImageRaster StretchRaster(const ImageRaster& source, int width, int height);

/// An outside picture, already on the game palette, made ready for WriteLumpFromRaster as
/// `kind`: fitted to the limits and the kind's size, stretched, with the kind's offsets.
ImageRaster FitPictureToKind(const ImageRaster& source, LumpKind kind,
                             const ImportSizeLimits& limits);

} // namespace kelvar::gfx
