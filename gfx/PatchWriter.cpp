// Doom patches: a raster turned into columns of posts, and the posts written as a lump.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Patch.h"

#include "wad/WadFormat.h"

#include <algorithm>
#include <array>

namespace kelvar::gfx
{
namespace
{

// A post holds at most this many pixels, and a delta is at most this much.
constexpr int MaxPostRun = 254;

// The state of one column while its rows are walked top to bottom.
class ColumnBuilder
{
public:
    explicit ColumnBuilder(PatchColumn& column) : Column(column) {}

    // A pixel that is not transparent at `row`; `lastRow` tells the column ends here.
    void Opaque(int row, std::uint8_t pixel, bool previousTransparent, bool lastRow)
    {
        if (previousTransparent)
        {
            BeginPost(row);
        }
        Column.Pixels.push_back(pixel);
        ++Post.Count;
        // A post that starts above row 254 is cut where it would reach row 254, so that the
        // next post starts exactly there with an absolute delta of 254.
        if (row < 255 && Post.TopDelta + Post.Count == MaxPostRun)
        {
            Limit = Post.Count;
            Carry = Post.TopDelta;
        }
        if (Post.Count == Limit && !lastRow)
        {
            SplitFullPost(row);
        }
    }

    // A transparent pixel after an opaque one: the post under construction is done.
    void HoleAfterPost(bool lastRow)
    {
        if (!lastRow)
        {
            Chain(0);
        }
    }

    // Keeps the post under construction; an empty one of delta 0 is dropped at writing.
    void Finish() { Column.Posts.push_back(Post); }

private:
    // The post under construction is kept and a new one of `delta` begins.
    void Chain(int delta)
    {
        Column.Posts.push_back(Post);
        Post = PatchPost{static_cast<std::uint8_t>(delta), 0,
                         static_cast<std::uint32_t>(Column.Pixels.size())};
        Limit = MaxPostRun;
        Carry = 0;
    }

    // Deltas up to row 254 are absolute. Past it they count from the row of the post before
    // (from 0 while that lies above 254), in steps of at most 254 carried by empty posts.
    void BeginPost(int row)
    {
        int delta = row;
        if (row > MaxPostRun)
        {
            const int base = Start < MaxPostRun ? 0 : Start;
            delta = row - base;
            while (delta > MaxPostRun)
            {
                Post.TopDelta = MaxPostRun;
                Post.Count = 0;
                Chain(0);
                delta -= MaxPostRun;
            }
        }
        Post.TopDelta = static_cast<std::uint8_t>(delta);
        Post.FirstPixel = static_cast<std::uint32_t>(Column.Pixels.size());
        Start = row;
    }

    // The post is full at `row`, which is not the last: the pixels go on in a new post.
    void SplitFullPost(int row)
    {
        const bool cutAt254 = Carry != 0 && Limit != MaxPostRun;
        const int carried = Carry;
        if (Start < MaxPostRun && row > MaxPostRun)
        {
            Chain(MaxPostRun);
            Start = MaxPostRun;
        }
        const int delta = cutAt254 ? (carried == MaxPostRun ? 1 : MaxPostRun) : row - Start + 1;
        Chain(delta);
        Start = row + 1;
    }

    PatchColumn& Column;
    PatchPost Post;
    int Start = 0; // the row the last delta counted from
    int Limit = MaxPostRun;
    int Carry = 0; // the delta of a post cut short above row 254
};

PatchColumn ConvertColumn(const ImageRaster& raster, int x, std::uint8_t transparentIndex)
{
    PatchColumn column;
    ColumnBuilder builder(column);
    bool previousTransparent = true;
    const int height = raster.Height();
    for (int row = 0; row < height; ++row)
    {
        const std::uint8_t pixel = raster.At(x, row);
        const bool lastRow = row == height - 1;
        if (pixel == transparentIndex)
        {
            if (!previousTransparent)
            {
                builder.HoleAfterPost(lastRow);
            }
            previousTransparent = true;
            continue;
        }
        builder.Opaque(row, pixel, previousTransparent, lastRow);
        previousTransparent = false;
    }
    builder.Finish();
    return column;
}

bool IsWritten(const PatchPost& post)
{
    return post.Count != 0 || post.TopDelta > 0;
}

std::size_t ColumnBytes(const PatchColumn& column)
{
    std::size_t bytes = 1; // the closing 255
    for (const PatchPost& post : column.Posts)
    {
        if (IsWritten(post))
        {
            bytes += 4 + static_cast<std::size_t>(post.Count);
        }
    }
    return bytes;
}

} // namespace

std::vector<PatchColumn> ConvertRawY(const ImageRaster& raster, std::uint8_t transparentIndex)
{
    std::vector<PatchColumn> columns;
    columns.reserve(static_cast<std::size_t>(raster.Width()));
    for (int x = 0; x < raster.Width(); ++x)
    {
        columns.push_back(ConvertColumn(raster, x, transparentIndex));
    }
    return columns;
}

std::size_t PatchSizeFromColumns(std::span<const PatchColumn> columns)
{
    std::size_t size = 8 + columns.size() * 4;
    for (const PatchColumn& column : columns)
    {
        size += ColumnBytes(column);
    }
    return size;
}

std::vector<std::uint8_t> WritePatchColumns(std::span<const std::uint8_t, 8> header8,
                                            std::span<const PatchColumn> columns)
{
    std::vector<std::uint8_t> lump(PatchSizeFromColumns(columns));
    std::copy(header8.begin(), header8.end(), lump.begin());
    std::size_t offset = 8 + columns.size() * 4;
    for (std::size_t x = 0; x < columns.size(); ++x)
    {
        wad::WriteLe32(lump.data() + 8 + x * 4, static_cast<std::int32_t>(offset));
        offset += ColumnBytes(columns[x]);
    }
    std::uint8_t* out = lump.data() + 8 + columns.size() * 4;
    for (const PatchColumn& column : columns)
    {
        for (const PatchPost& post : column.Posts)
        {
            if (!IsWritten(post))
            {
                continue;
            }
            *out++ = post.TopDelta;
            *out++ = post.Count;
            *out++ = 0;
            out = std::copy_n(column.Pixels.begin() + post.FirstPixel, post.Count, out);
            *out++ = 0;
        }
        *out++ = 255;
    }
    return lump;
}

std::vector<std::uint8_t> EncodePatch(const ImageRaster& raster, std::uint8_t transparentIndex)
{
    std::array<std::uint8_t, 8> header{};
    wad::WriteLe16(header.data(), static_cast<std::uint16_t>(raster.Width()));
    wad::WriteLe16(header.data() + 2, static_cast<std::uint16_t>(raster.Height()));
    wad::WriteLe16(header.data() + 4, static_cast<std::uint16_t>(raster.leftOffset));
    wad::WriteLe16(header.data() + 6, static_cast<std::uint16_t>(raster.topOffset));
    const std::vector<PatchColumn> columns = ConvertRawY(raster, transparentIndex);
    return WritePatchColumns(header, columns);
}

} // namespace kelvar::gfx
