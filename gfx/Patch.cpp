// Doom patches: the header tests, decoding posts to a raster, and the placeholder pictures.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Patch.h"

#include "platform/Messages.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <array>
#include <string>

namespace kelvar::gfx
{
namespace
{

constexpr std::array<std::uint8_t, 8> PngSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

std::int16_t Le16s(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::int16_t>(wad::ReadLe16(bytes.data() + at));
}

// The row of the next post by the tall patch rule: a delta above the row is the new row,
// any other counts on from the row. The row is kept in 16 bits, as the format's readers do.
std::int16_t NextPostRow(std::int16_t row, std::uint8_t delta)
{
    if (delta > row)
    {
        return static_cast<std::int16_t>(delta);
    }
    return static_cast<std::int16_t>(row + delta);
}

// The offset of column x, or -1 when the column table runs past the end of the lump.
std::int64_t ColumnOffset(std::span<const std::uint8_t> lump, int x)
{
    const std::size_t at = 8 + static_cast<std::size_t>(x) * 4;
    if (at + 4 > lump.size())
    {
        return -1;
    }
    return static_cast<std::uint32_t>(wad::ReadLe32(lump.data() + at));
}

// How a decode lays the patch's pixels on the target: each kept pixel is repeated `Repeat`
// times both ways, and only every `Step`-th column and pixel is kept.
struct Layout
{
    int Repeat = 1;
    int Step = 1;
};

Layout LayoutForScale(int scale)
{
    if (scale >= 1)
    {
        return {scale, 1};
    }
    return {1, 2 - scale};
}

// Writes one source pixel of (column, row) to the target, repeated as the layout says. A pixel
// is written only where its linear index lies inside the raster.
void PutPixel(ImageRaster& target, const Layout& layout, int column, int row, std::uint8_t index)
{
    if (row < 0 || row % layout.Step != 0)
    {
        return;
    }
    const std::int64_t x0 = static_cast<std::int64_t>(column / layout.Step) * layout.Repeat;
    const std::int64_t y0 = static_cast<std::int64_t>(row / layout.Step) * layout.Repeat;
    const std::int64_t total = static_cast<std::int64_t>(target.Pitch()) * target.Height();
    for (int dy = 0; dy < layout.Repeat; ++dy)
    {
        const std::int64_t rowStart = (y0 + dy) * target.Pitch();
        for (int dx = 0; dx < layout.Repeat; ++dx)
        {
            const std::int64_t linear = rowStart + x0 + dx;
            if (linear >= 0 && linear < total)
            {
                target.Row(0)[linear] = index;
            }
        }
    }
}

// Draws the `count` pixels of a post, the first at `row`; a post stops at the target's height.
void DrawPost(const std::uint8_t* pixels, int count, int row, int column, ImageRaster& target,
              const Layout& layout, std::uint8_t fillIndex, PatchDecode& result)
{
    bool used = false;
    if (layout.Repeat == 1 && layout.Step == 1)
    {
        // The usual case, straight down the column; rows above the top are passed over.
        const int first = std::max(0, -row);
        const int end = std::min(count, target.Height() - row);
        // A post wholly above or below the target (or an empty target) draws nothing, and its
        // first pixel's address would lie outside the raster.
        if (first < end)
        {
            const auto pitch = static_cast<std::ptrdiff_t>(target.Pitch());
            std::uint8_t* out = target.Row(0) + (row + first) * pitch + column;
            for (int i = first; i < end; ++i, out += pitch)
            {
                *out = pixels[i];
                used |= pixels[i] == fillIndex;
            }
        }
    }
    else
    {
        for (int i = 0; i < count; ++i)
        {
            const int y = row + i;
            if (y >= 0 && (y / layout.Step) * layout.Repeat >= target.Height())
            {
                break;
            }
            used |= pixels[i] == fillIndex;
            PutPixel(target, layout, column, y, pixels[i]);
        }
    }
    result.TransparentUsed = result.TransparentUsed || used;
}

// Draws the posts of one column starting at `offset`. Returns false when a post runs past the
// end of the lump.
bool DecodeColumn(std::span<const std::uint8_t> lump, std::size_t offset, int column,
                  ImageRaster& target, const Layout& layout, std::uint8_t fillIndex,
                  PatchDecode& result)
{
    const std::size_t size = lump.size();
    std::size_t at = offset;
    auto row = static_cast<std::int16_t>(lump[at]);
    while (true)
    {
        if (at + 3 > size)
        {
            return false;
        }
        const int count = lump[at + 1];
        at += 3; // delta, count, pad
        if (at + static_cast<std::size_t>(count) > size)
        {
            return false;
        }
        DrawPost(lump.data() + at, count, row, column, target, layout, fillIndex, result);
        at += static_cast<std::size_t>(count) + 1; // the pixels and the closing pad
        if (at >= size)
        {
            return false;
        }
        if (lump[at] == 255)
        {
            return true;
        }
        row = NextPostRow(row, lump[at]);
    }
}

} // namespace

bool HasPngSignature(std::span<const std::uint8_t> bytes)
{
    return bytes.size() >= PngSignature.size() &&
           std::equal(PngSignature.begin(), PngSignature.end(), bytes.begin());
}

PatchHeader ReadPatchHeader(std::span<const std::uint8_t> bytes)
{
    std::array<std::uint8_t, PatchHeaderBytes> header{};
    std::copy_n(bytes.begin(), std::min(bytes.size(), header.size()), header.begin());
    PatchHeader result;
    result.Width = Le16s(header, 0);
    result.Height = Le16s(header, 2);
    result.LeftOffset = Le16s(header, 4);
    result.TopOffset = Le16s(header, 6);
    result.FirstColumn = static_cast<std::uint32_t>(wad::ReadLe32(header.data() + 8));
    return result;
}

int IsPatchHeader(std::span<const std::uint8_t> header, std::int64_t lumpSize)
{
    if (lumpSize <= 12)
    {
        return PatchNo;
    }
    if (HasPngSignature(header))
    {
        return PatchIsPng;
    }
    const PatchHeader fields = ReadPatchHeader(header);
    const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
    if (!within(fields.Width, 1, 2048) || !within(fields.Height, 1, 2048) ||
        !within(fields.LeftOffset, -2046, 2046) || !within(fields.TopOffset, -2046, 2046))
    {
        return PatchNo;
    }
    if (fields.FirstColumn < static_cast<std::uint32_t>(fields.Width) * 4 ||
        static_cast<std::int64_t>(fields.FirstColumn) >= lumpSize)
    {
        return PatchNo;
    }
    return PatchYes;
}

bool CheckPatchColumns(std::span<const std::uint8_t> lump)
{
    const auto size = static_cast<std::int64_t>(lump.size());
    if (size < 12)
    {
        return false; // no room for the first column offset
    }
    const std::int64_t first = static_cast<std::uint32_t>(wad::ReadLe32(lump.data() + 8));
    if (first < 4 || first >= size)
    {
        return false;
    }
    const int width = Le16s(lump, 0);
    for (int x = 0; x < width; ++x)
    {
        if (8 + static_cast<std::int64_t>(x) * 4 + 4 > size)
        {
            return false;
        }
        if (wad::ReadLe32(lump.data() + 8 + x * 4) >= size)
        {
            return false;
        }
    }
    return true;
}

std::optional<PatchHeader> ReadPatchSize(std::span<const std::uint8_t> header)
{
    const PatchHeader fields = ReadPatchHeader(header);
    const auto within = [](int value, int low, int high) { return value >= low && value <= high; };
    if (header.size() < 8 || !within(fields.Width, 1, 2048) || !within(fields.Height, 1, 2048) ||
        !within(fields.LeftOffset, -2048, 2048) || !within(fields.TopOffset, -2048, 2048))
    {
        return std::nullopt;
    }
    return fields;
}

std::optional<TrimmedSize> ReadPatchTrimmedSize(std::span<const std::uint8_t> lump)
{
    if (IsPatchHeader(lump, static_cast<std::int64_t>(lump.size())) != PatchYes)
    {
        return std::nullopt;
    }
    const PatchHeader header = ReadPatchHeader(lump);
    int minColumn = 32757;
    int maxColumn = 0;
    int minRow = 32767;
    int maxRow = 0;
    for (int x = 0; x < header.Width; ++x)
    {
        const std::int64_t offset = ColumnOffset(lump, x);
        if (offset < 0 || offset >= static_cast<std::int64_t>(lump.size()))
        {
            return std::nullopt;
        }
        auto at = static_cast<std::size_t>(offset);
        std::int16_t row = lump[at];
        if (lump[at] == 255)
        {
            continue;
        }
        minColumn = std::min(minColumn, x);
        maxColumn = std::max(maxColumn, x);
        while (true)
        {
            if (at + 3 > lump.size())
            {
                return std::nullopt;
            }
            const int count = lump[at + 1];
            if (count > 0)
            {
                minRow = std::min(minRow, static_cast<int>(row));
                maxRow = std::max(maxRow, row + count - 1);
            }
            at += static_cast<std::size_t>(count) + 4;
            if (at >= lump.size())
            {
                return std::nullopt;
            }
            if (lump[at] == 255)
            {
                break;
            }
            row = NextPostRow(row, lump[at]);
        }
    }
    return TrimmedSize{maxColumn - minColumn + 1, maxRow - minRow + 1, minColumn, minRow};
}

PatchDecode DecodePatchToRaster(std::span<const std::uint8_t> lump, ImageRaster& target, int scale,
                                std::uint8_t fillIndex)
{
    std::fill(target.Row(0), target.Row(0) + target.Bytes().size(), fillIndex);
    PatchDecode result;
    const PatchHeader header = ReadPatchHeader(lump);
    const Layout layout = LayoutForScale(scale);
    for (int x = 0; x < header.Width; x += layout.Step)
    {
        const std::int64_t offset = ColumnOffset(lump, x);
        if (offset < 0 || offset >= static_cast<std::int64_t>(lump.size()))
        {
            DrawPlaceholder(target, Placeholder::BadImage, fillIndex);
            return result;
        }
        const std::int64_t targetX = static_cast<std::int64_t>(x / layout.Step) * layout.Repeat;
        if (targetX >= target.Width() || lump[static_cast<std::size_t>(offset)] > 254)
        {
            continue;
        }
        if (!DecodeColumn(lump, static_cast<std::size_t>(offset), x, target, layout, fillIndex,
                          result))
        {
            DrawPlaceholder(target, Placeholder::BadImage, fillIndex);
            return result;
        }
    }
    result.Complete = true;
    return result;
}

PatchDecode DecodePatchToRaster(const char* errorName, std::span<const std::uint8_t> lump,
                                ImageRaster& target, int scale, std::uint8_t fillIndex)
{
    const PatchDecode result = DecodePatchToRaster(lump, target, scale, fillIndex);
    if (errorName != nullptr && result.TransparentUsed)
    {
        platform::ShowMessageLines(
            0, "Transparent used",
            {"Warning - transparent color is used as an actual color", std::string(errorName)});
    }
    return result;
}

std::optional<ImageRaster> DecodePatch(std::span<const std::uint8_t> lump, std::uint8_t fillIndex)
{
    if (IsPatchHeader(lump, static_cast<std::int64_t>(lump.size())) != PatchYes ||
        !CheckPatchColumns(lump))
    {
        return std::nullopt;
    }
    const PatchHeader header = ReadPatchHeader(lump);
    ImageRaster raster(header.Width, header.Height, fillIndex);
    if (!DecodePatchToRaster(lump, raster, 1, fillIndex).Complete)
    {
        return std::nullopt;
    }
    raster.leftOffset = header.LeftOffset;
    raster.topOffset = header.TopOffset;
    return raster;
}

void DrawPlaceholder(ImageRaster& target, Placeholder which, std::uint8_t fillIndex)
{
    // A framed 24 x 24 square: crossed out in red for a bad lump, barred in green for a PNG.
    constexpr int Side = 24;
    constexpr std::uint8_t Red = 176;
    constexpr std::uint8_t Green = 112;
    constexpr std::uint8_t White = 4;
    std::fill(target.Row(0), target.Row(0) + target.Bytes().size(), fillIndex);
    const int left = (target.Width() - Side) / 2;
    const int top = (target.Height() - Side) / 2;
    for (int y = 0; y < Side; ++y)
    {
        for (int x = 0; x < Side; ++x)
        {
            const bool frame = x == 0 || y == 0 || x == Side - 1 || y == Side - 1;
            const bool mark = which == Placeholder::BadImage ? (x == y || x + y == Side - 1)
                                                             : (y % 6 == 3 && x > 3 && x < 20);
            const int tx = left + x;
            const int ty = top + y;
            if ((frame || mark) && tx >= 0 && ty >= 0 && tx < target.Width() &&
                ty < target.Height())
            {
                target.Set(tx, ty, frame ? White : (which == Placeholder::BadImage ? Red : Green));
            }
        }
    }
}

} // namespace kelvar::gfx
