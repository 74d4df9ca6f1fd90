// How a failed test prints a raster and a lump's class.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"
#include "gfx/LumpKind.h"

#include <ostream>

namespace kelvar::gfx
{

/// Size, offsets and up to the first 16 pixels of the top row.
inline void PrintTo(const ImageRaster& raster, std::ostream* out)
{
    *out << raster.Width() << "x" << raster.Height() << " offsets (" << raster.leftOffset << ","
         << raster.topOffset << ") row 0:";
    for (int x = 0; x < raster.Width() && x < 16 && raster.Height() > 0; ++x)
    {
        *out << " " << static_cast<int>(raster.At(x, 0));
    }
}

/// Kind, tag and size.
inline void PrintTo(const LumpClass& found, std::ostream* out)
{
    *out << "kind " << static_cast<int>(found.Kind) << " " << found.Tag << " " << found.Width << "x"
         << found.Height;
}

} // namespace kelvar::gfx
