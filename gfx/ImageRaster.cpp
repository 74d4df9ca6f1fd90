// ImageRaster: construction and comparison of the 8-bit picture type.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/ImageRaster.h"

#include <algorithm>

namespace kelvar::gfx
{

ImageRaster::ImageRaster(int width, int height, uint8_t fill)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      pitch_(PitchFor(std::max(width, 0))),
      pixels_(static_cast<size_t>(pitch_) * static_cast<size_t>(height_), fill)
{
}

bool operator==(const ImageRaster& a, const ImageRaster& b)
{
    if (a.width_ != b.width_ || a.height_ != b.height_ || a.leftOffset != b.leftOffset ||
        a.topOffset != b.topOffset)
        return false;
    for (int y = 0; y < a.height_; ++y)
    {
        if (!std::equal(a.Row(y), a.Row(y) + a.width_, b.Row(y)))
            return false;
    }
    return true;
}

} // namespace kelvar::gfx
