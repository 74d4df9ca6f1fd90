// Fitting an outside picture to a lump kind: limits, kind sizes, offsets and the stretch.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PictureFit.h"

#include <algorithm>
#include <cmath>

namespace kelvar::gfx
{
namespace
{

int Scaled(int value, double ratio)
{
    return std::max(1, static_cast<int>(std::lround(value * ratio)));
}

} // namespace

PictureSize FitToLimits(int width, int height, const ImportSizeLimits& limits)
{
    const int clampedWidth = std::clamp(width, limits.MinWidth, limits.MaxWidth);
    const int clampedHeight = std::clamp(height, limits.MinHeight, limits.MaxHeight);
    if (width < 1 || height < 1 || (clampedWidth == width && clampedHeight == height))
    {
        return {clampedWidth, clampedHeight};
    }
    const double ratio = height > width ? static_cast<double>(clampedHeight) / height
                                        : static_cast<double>(clampedWidth) / width;
    PictureSize size{Scaled(width, ratio), Scaled(height, ratio)};
    if (size.Height > limits.MaxHeight)
    {
        const double down = static_cast<double>(limits.MaxHeight) / size.Height;
        size = {Scaled(size.Width, down), limits.MaxHeight};
    }
    else if (size.Width > limits.MaxWidth)
    {
        const double down = static_cast<double>(limits.MaxWidth) / size.Width;
        size = {limits.MaxWidth, Scaled(size.Height, down)};
    }
    return size;
}

PictureSize SizeForKind(LumpKind kind, PictureSize size)
{
    switch (kind)
    {
    case LumpKind::FlatBig:
        return {320, 200};
    case LumpKind::FlatBig158:
        return {320, 158};
    case LumpKind::Flat:
    {
        const bool square = size.Width == size.Height &&
                            (size.Width == 128 || size.Width == 256 || size.Width == 512 ||
                             size.Width == 1024 || size.Width == 2048);
        return square || size.Width == 320 ? size : PictureSize{64, 64};
    }
    default:
        return size;
    }
}

void SetOffsetsForKind(ImageRaster& raster, LumpKind kind)
{
    const int width = raster.Width();
    const int height = raster.Height();
    int left = 0;
    int top = 0;
    switch (kind)
    {
    case LumpKind::Proj:
    case LumpKind::Imgz:
        left = width / 2;
        top = height / 2;
        break;
    case LumpKind::Sprite:
        left = width / 2;
        top = height - 4;
        break;
    case LumpKind::Weapon:
        left = width / 2 - 166;
        top = -104;
        break;
    default:
        break;
    }
    raster.leftOffset = static_cast<std::int16_t>(left);
    raster.topOffset = static_cast<std::int16_t>(top);
}

ImageRaster StretchRaster(const ImageRaster& source, int width, int height)
{
    ImageRaster target(width, height);
    if (source.Empty())
    {
        return target;
    }
    for (int y = 0; y < target.Height(); ++y)
    {
        const auto sourceY =
            static_cast<int>(static_cast<std::int64_t>(y) * source.Height() / target.Height());
        const std::uint8_t* from = source.Row(sourceY);
        std::uint8_t* to = target.Row(y);
        for (int x = 0; x < target.Width(); ++x)
        {
            to[x] = from[static_cast<std::int64_t>(x) * source.Width() / target.Width()];
        }
    }
    return target;
}

ImageRaster FitPictureToKind(const ImageRaster& source, LumpKind kind,
                             const ImportSizeLimits& limits)
{
    const PictureSize size =
        SizeForKind(kind, FitToLimits(source.Width(), source.Height(), limits));
    ImageRaster fitted = StretchRaster(source, size.Width, size.Height);
    SetOffsetsForKind(fitted, kind);
    return fitted;
}

} // namespace kelvar::gfx
