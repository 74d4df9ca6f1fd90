// Tests of the raster: row padding and comparison that ignores the padding.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/ImageRaster.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

TEST(ImageRaster, RowsArePaddedToFourBytesAndPaddingIsNotCompared)
{
    for (int width : {1, 3, 4, 5, 64, 321})
    {
        ImageRaster a(width, 3, 7);
        EXPECT_EQ(a.Pitch() % 4, 0);
        EXPECT_GE(a.Pitch(), width);
        EXPECT_LT(a.Pitch() - width, 4);
        EXPECT_EQ(a.Bytes().size(), static_cast<size_t>(a.Pitch()) * 3);
        ImageRaster b(width, 3, 7);
        if (a.Pitch() > width)
            b.Row(1)[width] = 9;
        EXPECT_EQ(a, b) << width;
        b.Set(width - 1, 2, 8);
        EXPECT_NE(a, b) << width;
    }
    ImageRaster moved(4, 4);
    moved.leftOffset = 1;
    EXPECT_NE(moved, ImageRaster(4, 4));
    EXPECT_TRUE(ImageRaster().Empty());
    EXPECT_TRUE(ImageRaster(-2, 5).Empty());
}

} // namespace
} // namespace kelvar::gfx
