// BMP picture files: reading every uncompressed depth, writing 8-bit files with a palette.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/BmpFile.h"

#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "platform/Messages.h"

#include <cstdlib>

namespace kelvar::gfx
{
namespace
{

constexpr size_t FileHeaderSize = 14;
constexpr size_t InfoHeaderSize = 40;
constexpr uint32_t ColorTableSize = 1024;
constexpr uint32_t PixelsOffset = FileHeaderSize + InfoHeaderSize + ColorTableSize; // 1078

uint16_t U16(std::span<const uint8_t> bytes, size_t at)
{
    return static_cast<uint16_t>(bytes[at] | (bytes[at + 1] << 8));
}

uint32_t U32(std::span<const uint8_t> bytes, size_t at)
{
    return static_cast<uint32_t>(bytes[at]) | (static_cast<uint32_t>(bytes[at + 1]) << 8) |
           (static_cast<uint32_t>(bytes[at + 2]) << 16) |
           (static_cast<uint32_t>(bytes[at + 3]) << 24);
}

void Put16(std::vector<uint8_t>& bytes, uint32_t value)
{
    bytes.push_back(static_cast<uint8_t>(value));
    bytes.push_back(static_cast<uint8_t>(value >> 8));
}

void Put32(std::vector<uint8_t>& bytes, uint32_t value)
{
    Put16(bytes, value & 0xFFFF);
    Put16(bytes, value >> 16);
}

// The fields of the info header that reading needs.
struct BmpInfo
{
    uint32_t PixelsAt = 0;
    uint32_t InfoLength = 0;
    int Width = 0;
    int Height = 0; // negative: top row first
    int Bits = 0;
    uint32_t Compression = 0;
    uint32_t ColorsUsed = 0;
};

BmpInfo ReadInfo(std::span<const uint8_t> bytes)
{
    BmpInfo info;
    info.PixelsAt = U32(bytes, 10);
    info.InfoLength = U32(bytes, 14);
    info.Width = static_cast<int32_t>(U32(bytes, 18));
    info.Height = static_cast<int32_t>(U32(bytes, 22));
    info.Bits = U16(bytes, 28);
    info.Compression = U32(bytes, 30);
    info.ColorsUsed = U32(bytes, 46);
    return info;
}

bool SupportedBits(int bits)
{
    return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
}

// The pixel at `x` of a stored row, as a palette index or a colour.
void TakePixel(const uint8_t* row, int x, int bits, FilePicture& out)
{
    const auto ux = static_cast<size_t>(x);
    switch (bits)
    {
    case 1:
        out.Indexes.push_back(static_cast<uint8_t>((row[ux / 8] >> (7 - ux % 8)) & 1));
        break;
    case 4:
        out.Indexes.push_back(static_cast<uint8_t>((row[ux / 2] >> (ux % 2 == 0 ? 4 : 0)) & 15));
        break;
    case 8:
        out.Indexes.push_back(row[ux]);
        break;
    case 16:
    {
        // 5 bits each of red, green, blue, each widened to 0..255.
        const int value = row[ux * 2] | (row[ux * 2 + 1] << 8);
        const auto widen = [](int five) { return static_cast<uint8_t>(five * 255 / 31); };
        out.Colors.push_back(
            {widen((value >> 10) & 31), widen((value >> 5) & 31), widen(value & 31)});
        break;
    }
    default:
    {
        const size_t at = ux * static_cast<size_t>(bits / 8);
        out.Colors.push_back({row[at + 2], row[at + 1], row[at]});
        break;
    }
    }
}

} // namespace

BmpStatus DecodeBmp(std::span<const uint8_t> bytes, FilePicture& out)
{
    if (bytes.size() < FileHeaderSize)
    {
        return BmpStatus::ReadError;
    }
    if (bytes[0] != 'B' || bytes[1] != 'M')
    {
        return BmpStatus::NotBmp;
    }
    if (bytes.size() < FileHeaderSize + InfoHeaderSize)
    {
        return BmpStatus::ReadError;
    }
    const BmpInfo info = ReadInfo(bytes);
    if (info.Compression != 0)
    {
        return BmpStatus::Compressed;
    }
    if (info.InfoLength != InfoHeaderSize)
    {
        return BmpStatus::NotBmp;
    }
    const int64_t height = std::abs(static_cast<int64_t>(info.Height));
    if (!SupportedBits(info.Bits) || info.Width < 1 || height < 1 || info.Width > MaxPictureSide ||
        height > MaxPictureSide || info.Width * height > MaxPicturePixels)
    {
        return BmpStatus::Unsupported;
    }

    // The colour table: blue, green, red, 0 an entry, `1 << bits` entries when the header
    // says 0. Direct-colour files may carry one too; it is not used.
    size_t colors = info.ColorsUsed != 0 ? info.ColorsUsed : (info.Bits < 9 ? 1u << info.Bits : 0u);
    const size_t tableAt = FileHeaderSize + InfoHeaderSize;
    if (info.Bits < 9)
    {
        colors = std::min<size_t>(colors, 256);
        if (bytes.size() < tableAt + colors * 4)
        {
            return BmpStatus::ReadError;
        }
    }
    out = FilePicture{};
    out.Width = info.Width;
    out.Height = static_cast<int>(height);
    out.Bits = info.Bits;
    out.Indexed = info.Bits < 9;
    for (size_t i = 0; out.Indexed && i < colors; ++i)
    {
        const size_t at = tableAt + i * 4;
        out.FilePalette[i] = {bytes[at + 2], bytes[at + 1], bytes[at]};
    }

    const size_t rowBytes =
        ((static_cast<size_t>(info.Width) * static_cast<size_t>(info.Bits) + 31) >> 5) * 4;
    if (info.PixelsAt > bytes.size() ||
        bytes.size() - info.PixelsAt < rowBytes * static_cast<size_t>(height))
    {
        return BmpStatus::ReadError;
    }
    const size_t pixels = static_cast<size_t>(info.Width) * static_cast<size_t>(height);
    (out.Indexed ? out.Indexes.reserve(pixels) : out.Colors.reserve(pixels));
    for (int64_t y = 0; y < height; ++y)
    {
        // A positive height stores the bottom row first.
        const int64_t stored = info.Height > 0 ? height - 1 - y : y;
        const uint8_t* row = bytes.data() + info.PixelsAt + static_cast<size_t>(stored) * rowBytes;
        for (int x = 0; x < info.Width; ++x)
        {
            TakePixel(row, x, info.Bits, out);
        }
    }
    return BmpStatus::Ok;
}

std::vector<uint8_t> EncodeBmp(const ImageRaster& raster, const Palette& palette)
{
    const auto imageSize = static_cast<uint32_t>(raster.Bytes().size());
    std::vector<uint8_t> bytes;
    bytes.reserve(PixelsOffset + imageSize);
    bytes.push_back('B');
    bytes.push_back('M');
    Put32(bytes, imageSize + PixelsOffset);
    Put32(bytes, 0);
    Put32(bytes, PixelsOffset);

    Put32(bytes, InfoHeaderSize);
    Put32(bytes, static_cast<uint32_t>(raster.Width()));
    Put32(bytes, static_cast<uint32_t>(raster.Height())); // positive: bottom row first
    Put16(bytes, 1);                                      // planes
    Put16(bytes, 8);                                      // bits
    Put32(bytes, 0);                                      // no compression
    Put32(bytes, imageSize);
    Put32(bytes, 0); // resolution
    Put32(bytes, 0);
    Put32(bytes, 256); // colours used
    Put32(bytes, 256); // and important
    for (const Rgb& entry : palette)
    {
        bytes.insert(bytes.end(), {entry.blue, entry.green, entry.red, 0});
    }
    for (int y = raster.Height() - 1; y >= 0; --y)
    {
        bytes.insert(bytes.end(), raster.Row(y), raster.Row(y) + raster.Pitch());
    }
    return bytes;
}

int LoadBmp(const std::filesystem::path& fileName, int scale, bool matchPalette, PictureRead& out)
{
    SetLastImageKind(ImageKindNone);
    const auto bytes = ReadFileBytes(fileName);
    if (!bytes)
    {
        platform::ShowError("Image %s\nnot found", fileName.c_str());
        return 0;
    }
    FilePicture picture;
    switch (DecodeBmp(*bytes, picture))
    {
    case BmpStatus::Ok:
        break;
    case BmpStatus::ReadError:
        platform::ShowError("DIB Error reading file!\n%s", fileName.c_str());
        return 0;
    case BmpStatus::NotBmp:
        platform::ShowError("DIB Not a Windows BMP/DIB file!");
        return 0;
    case BmpStatus::Compressed:
        platform::ShowMessageLines(0, "RLE BMP", {"RLE BMPs not supported"});
        return 0;
    case BmpStatus::Unsupported:
        platform::ShowError("DIB Not a supported format!");
        return 0;
    }
    // Pictures of other depths are drawn on the game palette, so they come already matched.
    PictureOptions options = PictureOptionsFromSettings(matchPalette || picture.Bits != 8, scale);
    out = ToGamePalette(picture, Palettes().GamePalette, options);
    Palettes().TranslationTable = out.Translation;
    SetLastImageKind(ImageKindBmp);
    return 1;
}

int SaveBmp(const std::string& name, const ImageRaster& raster, const Palette* palette,
            const std::filesystem::path& fileName, bool prompt)
{
    const Palette& colors = palette != nullptr ? *palette : Palettes().GamePalette;
    return SavePictureFile("BMP", ".BMP", name, raster, fileName, prompt,
                           [&]() -> std::optional<std::vector<uint8_t>>
                           { return EncodeBmp(raster, colors); });
}

} // namespace kelvar::gfx
