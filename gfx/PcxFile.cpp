// PCX picture files: 8-bit run-length pictures with a 768-byte palette at the end.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PcxFile.h"

#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <algorithm>

namespace kelvar::gfx
{
namespace
{

constexpr size_t HeaderSize = 128;
constexpr uint8_t RunFlag = 192; // a byte of 192 or more counts the next byte's repeats
constexpr int LongestRun = 63;

int16_t I16(std::span<const uint8_t> bytes, size_t at)
{
    return static_cast<int16_t>(bytes[at] | (bytes[at + 1] << 8));
}

void Put16(std::vector<uint8_t>& bytes, size_t at, int value)
{
    bytes[at] = static_cast<uint8_t>(value);
    bytes[at + 1] = static_cast<uint8_t>(value >> 8);
}

PcxHeader ReadHeader(std::span<const uint8_t> bytes)
{
    PcxHeader header;
    std::copy(bytes.begin(), bytes.begin() + 4, header.Control);
    header.XMin = I16(bytes, 4);
    header.YMin = I16(bytes, 6);
    header.XMax = I16(bytes, 8);
    header.YMax = I16(bytes, 10);
    header.BytesPerLine = I16(bytes, 66);
    return header;
}

bool Acceptable(const PcxHeader& header)
{
    const uint8_t* c = header.Control;
    if (c[0] != 10 || c[1] != 5 || c[2] != 1 || c[3] != 8 || header.XMin < 0 || header.YMin < 0 ||
        header.XMax < 0 || header.YMax < 0)
    {
        return false;
    }
    const int width = header.XMax - header.XMin + 1;
    const int height = header.YMax - header.YMin + 1;
    return width >= 1 && height >= 1 && header.BytesPerLine >= 0 && width <= MaxPictureSide &&
           height <= MaxPictureSide && int64_t{width} * height <= MaxPicturePixels;
}

// Decodes runs from `data` until `target` is full, also in the middle of a run, or the data
// ends. A count byte of exactly 192 repeats nothing.
void DecodeRuns(std::span<const uint8_t> data, std::vector<uint8_t>& target)
{
    size_t out = 0;
    size_t at = 0;
    while (out < target.size() && at < data.size())
    {
        const uint8_t c = data[at++];
        if (c < RunFlag)
        {
            target[out++] = c;
            continue;
        }
        if (at >= data.size())
        {
            break;
        }
        const uint8_t value = data[at++];
        for (int n = c - RunFlag; n > 0 && out < target.size(); --n)
        {
            target[out++] = value;
        }
    }
}

// Writes a run: two bytes, count and value; a run of 1 is the bare value when that can't
// be taken for a count.
void FlushRun(std::vector<uint8_t>& bytes, int count, uint8_t value, bool endOfRow)
{
    if (count == 1 && value < RunFlag && !endOfRow)
    {
        bytes.push_back(value);
        return;
    }
    bytes.push_back(static_cast<uint8_t>(count + RunFlag));
    bytes.push_back(value);
}

void EncodeRow(const uint8_t* row, int pitch, std::vector<uint8_t>& bytes)
{
    int count = 0;
    uint8_t value = 0;
    for (int x = 0; x < pitch; ++x)
    {
        if (count > 0 && row[x] == value)
        {
            if (++count == LongestRun)
            {
                FlushRun(bytes, count, value, false);
                count = 0;
            }
            continue;
        }
        if (count > 0)
        {
            FlushRun(bytes, count, value, false);
        }
        value = row[x];
        count = 1;
    }
    // The run left at the end of a row always takes a count byte, also a single pixel.
    if (count > 0)
    {
        FlushRun(bytes, count, value, true);
    }
}

} // namespace

PcxStatus DecodePcx(std::span<const uint8_t> bytes, FilePicture& out, PcxHeader* header)
{
    if (bytes.size() < MinPcxSize)
    {
        return PcxStatus::TooSmall;
    }
    const PcxHeader fields = ReadHeader(bytes);
    if (header != nullptr)
    {
        *header = fields;
    }
    if (!Acceptable(fields))
    {
        return PcxStatus::Unsupported;
    }
    const int width = fields.XMax - fields.XMin + 1;
    const int height = fields.YMax - fields.YMin + 1;
    const size_t stride = static_cast<size_t>(fields.BytesPerLine);
    std::vector<uint8_t> decoded(std::max(static_cast<size_t>(width), stride) *
                                 static_cast<size_t>(height));
    DecodeRuns(bytes.subspan(HeaderSize), decoded);

    out = FilePicture{};
    out.Width = width;
    out.Height = height;
    // The palette is the last 768 bytes, whatever the marker byte before it says.
    out.FilePalette =
        PaletteFromBytes(bytes.subspan(bytes.size() - std::min(bytes.size(), PaletteBytes)));
    out.Indexes.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t y = 0; y < static_cast<size_t>(height); ++y)
    {
        const uint8_t* row = decoded.data() + y * stride;
        out.Indexes.insert(out.Indexes.end(), row, row + width);
    }
    return PcxStatus::Ok;
}

std::vector<uint8_t> EncodePcx(const ImageRaster& raster, const Palette& palette)
{
    std::vector<uint8_t> bytes(HeaderSize, 0);
    bytes[0] = 10;
    bytes[1] = 5;
    bytes[2] = 1;
    bytes[3] = 8;
    Put16(bytes, 8, raster.Width() - 1);
    Put16(bytes, 10, raster.Height() - 1);
    Put16(bytes, 12, raster.Width());
    Put16(bytes, 14, raster.Height());
    bytes[65] = 1; // planes
    Put16(bytes, 66, raster.Pitch());
    Put16(bytes, 68, 2);
    for (int y = 0; y < raster.Height(); ++y)
    {
        EncodeRow(raster.Row(y), raster.Pitch(), bytes);
    }
    bytes.push_back(12);
    const std::vector<uint8_t> colors = PaletteToBytes(palette);
    bytes.insert(bytes.end(), colors.begin(), colors.end());
    return bytes;
}

int ReadImageFile(int kind, bool matchPalette, int scale, const std::filesystem::path& fileName,
                  bool quiet, PictureRead& out)
{
    if (kind == ImageKindBmp)
    {
        return LoadBmp(fileName, scale, matchPalette, out);
    }
    if (kind != ImageKindPcx)
    {
        return 0;
    }
    SetLastImageKind(ImageKindNone);
    const auto bytes = ReadFileBytes(fileName);
    if (!bytes)
    {
        platform::ShowError("Image %s\nnot found", fileName.c_str());
        return 0;
    }
    FilePicture picture;
    PcxHeader header;
    switch (DecodePcx(*bytes, picture, &header))
    {
    case PcxStatus::Ok:
        break;
    case PcxStatus::TooSmall:
        platform::ShowMessageLines(0, "Size", {"Size is too small?"});
        return 0;
    case PcxStatus::Unsupported:
        if (!quiet)
        {
            const uint8_t* c = header.Control;
            platform::ShowMessageLines(
                0, "Not Supported",
                {platform::Format("size=%d X=%hd,%hd Y=%hd,%hd  control=%hd,%hd,%hd,%hd",
                                  static_cast<int>(bytes->size()), header.XMin, header.XMax,
                                  header.YMin, header.YMax, static_cast<short>(c[0]),
                                  static_cast<short>(c[1]), static_cast<short>(c[2]),
                                  static_cast<short>(c[3])),
                 "Image size or type not supported (must be 10,5,1,8)!"});
        }
        return 0;
    }
    out = ToGamePalette(picture, Palettes().GamePalette,
                        PictureOptionsFromSettings(matchPalette, scale));
    Palettes().TranslationTable = out.Translation;
    SetLastImageKind(ImageKindPcx);
    return 1;
}

int SavePcx(const std::string& name, const ImageRaster& raster, const Palette* palette,
            const std::filesystem::path& fileName, bool prompt)
{
    const Palette& colors = palette != nullptr ? *palette : Palettes().GamePalette;
    return SavePictureFile("PCX", ".PCX", name, raster, fileName, prompt,
                           [&]() -> std::optional<std::vector<uint8_t>>
                           { return EncodePcx(raster, colors); });
}

} // namespace kelvar::gfx
