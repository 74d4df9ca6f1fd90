// Raw pictures: flats, full-screen raws, FLATLEG and IMGZ, read and written.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/RawPictures.h"

#include "wad/WadFormat.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kelvar::gfx
{
namespace
{

// The byte at `at`, or 0 past the end.
std::uint8_t ByteAt(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return at < bytes.size() ? bytes[at] : 0;
}

std::size_t Area(const ImageRaster& raster)
{
    return static_cast<std::size_t>(raster.Width()) * static_cast<std::size_t>(raster.Height());
}

// Unpacks IMGZ's run-length stream into `out`: a signed byte n of 0 or more copies the next
// n + 1 bytes, -127 to -1 repeats the next byte 1 - n times, -128 does nothing. Runs that
// overshoot the picture are cut at its end.
void UnpackImgzRuns(std::span<const std::uint8_t> stream, std::vector<std::uint8_t>& out)
{
    std::size_t written = 0;
    std::size_t at = 0;
    while (written < out.size())
    {
        const auto code = static_cast<std::int8_t>(ByteAt(stream, at++));
        if (code >= 0)
        {
            for (int i = 0; i <= code && written < out.size(); ++i)
            {
                out[written++] = ByteAt(stream, at++);
            }
        }
        else if (code != -128)
        {
            const std::uint8_t value = ByteAt(stream, at++);
            for (int i = 0; i < 1 - code && written < out.size(); ++i)
            {
                out[written++] = value;
            }
        }
    }
}

} // namespace

PictureSize FlatSizeFromLumpSize(std::int64_t size)
{
    if (size == 64000)
    {
        return {320, 200};
    }
    const auto side =
        static_cast<int>(std::sqrt(static_cast<double>(std::max<std::int64_t>(size, 0))));
    switch (side)
    {
    case 128:
    case 256:
    case 512:
    case 1024:
    case 2048:
        return {side, side};
    default:
        return {64, 64};
    }
}

std::int64_t FlatReadSize(std::int64_t size)
{
    return std::max<std::int64_t>(size, 4096);
}

void ExpandRawToRaster(int width, int height, std::span<const std::uint8_t> raw,
                       ImageRaster& target, int scale)
{
    scale = std::max(scale, 1);
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            const std::uint8_t pixel =
                ByteAt(raw, static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                static_cast<std::size_t>(x));
            for (int dy = 0; dy < scale; ++dy)
            {
                const int ty = y * scale + dy;
                if (ty >= target.Height())
                {
                    break;
                }
                const int tx = x * scale;
                const int run = std::min(scale, target.Width() - tx);
                if (run > 0)
                {
                    std::fill_n(target.Row(ty) + tx, run, pixel);
                }
            }
        }
    }
}

ImageRaster DecodeRaw(std::span<const std::uint8_t> raw, int width, int height)
{
    ImageRaster raster(width, height);
    const std::size_t rowBytes = static_cast<std::size_t>(std::max(width, 0));
    for (int y = 0; y < raster.Height(); ++y)
    {
        const std::size_t from = static_cast<std::size_t>(y) * rowBytes;
        if (from >= raw.size())
        {
            break;
        }
        std::copy_n(raw.begin() + static_cast<std::ptrdiff_t>(from),
                    std::min(rowBytes, raw.size() - from), raster.Row(y));
    }
    return raster;
}

ImageRaster DecodeFlat(std::span<const std::uint8_t> bytes, std::int64_t lumpSize)
{
    const PictureSize size = FlatSizeFromLumpSize(lumpSize);
    return DecodeRaw(bytes, size.Width, size.Height);
}

std::optional<ImageRaster> DecodeFlatleg(std::span<const std::uint8_t> lump)
{
    if (lump.size() < 8)
    {
        return std::nullopt;
    }
    const std::int32_t width = wad::ReadLe32(lump.data());
    const std::int32_t height = wad::ReadLe32(lump.data() + 4);
    if (width < 1 || width > 2048 || height < 1 || height > 2048 ||
        lump.size() - 8 < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    {
        return std::nullopt;
    }
    return DecodeRaw(lump.subspan(8), width, height);
}

std::optional<ImageRaster> DecodeImgz(std::span<const std::uint8_t> lump)
{
    if (lump.size() < ImgzHeaderBytes + 1 || std::memcmp(lump.data(), "IMGZ", 4) != 0)
    {
        return std::nullopt;
    }
    const auto field = [&](std::size_t at)
    { return static_cast<std::int16_t>(wad::ReadLe16(lump.data() + at)); };
    const int width = field(4);
    const int height = field(6);
    if (width < 1 || width > 1024 || height < 1 || height > 1024)
    {
        return std::nullopt;
    }
    // The data is read into a buffer with 100 spare zero bytes behind it, which is what a
    // slightly overlong run of a coded stream reads.
    std::vector<std::uint8_t> data(lump.begin() + ImgzHeaderBytes, lump.end());
    data.resize(data.size() + 100, 0);
    std::vector<std::uint8_t> pixels(
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    if (lump[12] == 0)
    {
        std::copy_n(data.begin(), std::min(pixels.size(), data.size()), pixels.begin());
    }
    else
    {
        UnpackImgzRuns(data, pixels);
    }
    ImageRaster raster = DecodeRaw(pixels, width, height);
    raster.leftOffset = field(8);
    raster.topOffset = field(10);
    return raster;
}

std::vector<std::uint8_t> EncodeRaw(const ImageRaster& raster)
{
    return EncodeRawOfSize(raster, Area(raster));
}

std::vector<std::uint8_t> EncodeRawOfSize(const ImageRaster& raster, std::size_t bytes)
{
    std::vector<std::uint8_t> out(bytes, 0);
    const std::vector<std::uint8_t>& memory = raster.Bytes();
    std::copy_n(memory.begin(), std::min(bytes, memory.size()), out.begin());
    return out;
}

std::vector<std::uint8_t> EncodeFlatleg(const ImageRaster& raster)
{
    std::vector<std::uint8_t> out(8);
    wad::WriteLe32(out.data(), raster.Width());
    wad::WriteLe32(out.data() + 4, raster.Height());
    const std::vector<std::uint8_t> pixels = EncodeRaw(raster);
    out.insert(out.end(), pixels.begin(), pixels.end());
    return out;
}

std::vector<std::uint8_t> EncodeImgz(const ImageRaster& raster)
{
    std::vector<std::uint8_t> out(ImgzHeaderBytes, 0);
    std::memcpy(out.data(), "IMGZ", 4);
    wad::WriteLe16(out.data() + 4, static_cast<std::uint16_t>(raster.Width()));
    wad::WriteLe16(out.data() + 6, static_cast<std::uint16_t>(raster.Height()));
    wad::WriteLe16(out.data() + 8, static_cast<std::uint16_t>(raster.leftOffset));
    wad::WriteLe16(out.data() + 10, static_cast<std::uint16_t>(raster.topOffset));
    out.reserve(out.size() + Area(raster));
    for (int y = 0; y < raster.Height(); ++y)
    {
        out.insert(out.end(), raster.Row(y), raster.Row(y) + raster.Width());
    }
    return out;
}

} // namespace kelvar::gfx
