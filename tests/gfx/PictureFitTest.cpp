// Tests of fitting an outside picture to a lump kind: limits, kind sizes, offsets, stretch.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PictureFit.h"

#include "tests/gfx/PicturePrinters.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

TEST(PictureFit, LimitsScaleByTheLongerSideAndKeepTheAspectRatio)
{
    const ImportSizeLimits limits;
    EXPECT_EQ(FitToLimits(4000, 1000, limits), (PictureSize{2048, 512}));
    EXPECT_EQ(FitToLimits(1000, 4000, limits), (PictureSize{512, 2048}));
    EXPECT_EQ(FitToLimits(300, 200, limits), (PictureSize{300, 200}));
    // Scaled by the width to 100 x 75, then down once more for the height.
    EXPECT_EQ(FitToLimits(200, 150, {1, 1, 100, 50}), (PictureSize{67, 50}));
    // A picture under the minimum grows by its longer side only; the other may stay short.
    EXPECT_EQ(FitToLimits(10, 20, {40, 40, 2048, 2048}), (PictureSize{20, 40}));
}

TEST(PictureFit, EachKindTakesItsSizeAndOffsets)
{
    EXPECT_EQ(SizeForKind(LumpKind::Flat, {320, 200}), (PictureSize{320, 200}));
    EXPECT_EQ(SizeForKind(LumpKind::Flat, {256, 256}), (PictureSize{256, 256}));
    EXPECT_EQ(SizeForKind(LumpKind::Flat, {300, 300}), (PictureSize{64, 64}));
    EXPECT_EQ(SizeForKind(LumpKind::FlatBig158, {64, 64}), (PictureSize{320, 158}));
    EXPECT_EQ(SizeForKind(LumpKind::FlatLeg, {3, 5}), (PictureSize{3, 5}));

    const auto offsets = [](LumpKind kind)
    {
        ImageRaster raster(41, 60);
        SetOffsetsForKind(raster, kind);
        return std::pair<int, int>(raster.leftOffset, raster.topOffset);
    };
    EXPECT_EQ(offsets(LumpKind::Proj), (std::pair(20, 30)));
    EXPECT_EQ(offsets(LumpKind::Imgz), (std::pair(20, 30)));
    EXPECT_EQ(offsets(LumpKind::Sprite), (std::pair(20, 56)));
    EXPECT_EQ(offsets(LumpKind::Weapon), (std::pair(-146, -104)));
    EXPECT_EQ(offsets(LumpKind::Pic), (std::pair(0, 0)));
}

TEST(PictureFit, TheStretchTakesTheNearestPixel)
{
    ImageRaster source(2, 2);
    source.Set(0, 0, 1);
    source.Set(1, 0, 2);
    source.Set(0, 1, 3);
    source.Set(1, 1, 4);
    const ImageRaster fitted = FitPictureToKind(source, LumpKind::Flat, {});
    ASSERT_EQ(fitted.Width(), 64);
    EXPECT_EQ(fitted.At(31, 31), 1);
    EXPECT_EQ(fitted.At(32, 31), 2);
    EXPECT_EQ(fitted.At(31, 32), 3);
    EXPECT_EQ(fitted.At(63, 63), 4);
    EXPECT_EQ(StretchRaster(fitted, 2, 2), source);
}

} // namespace
} // namespace kelvar::gfx
