// Outside picture files: a decoded picture brought to the game palette.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PictureFile.h"

#include "gfx/GamePalette.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cstdio>

namespace kelvar::gfx
{
namespace
{

// The colour cache of direct-colour pictures: 2^CacheBits slots, one colour each.
constexpr int CacheBits = 12;
constexpr size_t CacheSlots = size_t{1} << CacheBits;

// The game-palette index of each pixel, before scaling.
std::vector<uint8_t> GameIndexes(const FilePicture& picture, const Palette& gamePalette,
                                 const PictureOptions& options, PictureRead& read)
{
    std::vector<uint8_t> indexes;
    if (picture.Indexed)
    {
        read.FilePalette = picture.FilePalette;
        // A picture already in the game palette keeps its indexes: matching would send each of
        // the palette's repeated colours to the first of them, and a lump exported and brought
        // back would change.
        read.Translation =
            picture.FilePalette == gamePalette
                ? IdentityTable()
                : MatchPaletteTable(picture.FilePalette, gamePalette, options.Margins);
        indexes = picture.Indexes;
        if (options.MatchPalette)
        {
            for (uint8_t& index : indexes)
            {
                index = read.Translation[index];
            }
        }
        return indexes;
    }
    // Direct colours are matched through a small cache: pictures repeat their colours, and
    // a cache slot costs no allocation where a picture of all different colours misses.
    read.FilePalette = gamePalette;
    read.Translation = IdentityTable();
    constexpr uint32_t Empty = 0xFFFFFFFF;
    std::vector<uint32_t> cachedColor(CacheSlots, Empty);
    std::vector<uint8_t> cachedIndex(CacheSlots, 0);
    indexes.reserve(picture.Colors.size());
    for (const Rgb& color : picture.Colors)
    {
        const uint32_t key =
            (uint32_t{color.red} << 16) | (uint32_t{color.green} << 8) | color.blue;
        const size_t slot = (key * 2654435761u) >> (32 - CacheBits);
        if (cachedColor[slot] != key)
        {
            cachedColor[slot] = key;
            cachedIndex[slot] =
                options.FastMatch
                    ? FastMatchColor(gamePalette, color.red, color.green, color.blue,
                                     options.PngMatch)
                    : MatchColor(gamePalette, color.red, color.green, color.blue, options.Margins);
        }
        indexes.push_back(cachedIndex[slot]);
    }
    return indexes;
}

} // namespace

PictureRead ToGamePalette(const FilePicture& picture, const Palette& gamePalette,
                          const PictureOptions& options)
{
    PictureRead read;
    read.Bits = picture.Bits;
    std::vector<uint8_t> indexes = GameIndexes(picture, gamePalette, options, read);
    if (options.TransparentIndex >= 0 && options.TransparentIndex < 256 &&
        picture.Alpha.size() == indexes.size())
    {
        for (size_t i = 0; i < indexes.size(); ++i)
        {
            if (picture.Alpha[i] < 128)
            {
                indexes[i] = static_cast<uint8_t>(options.TransparentIndex);
            }
        }
    }
    const int scale = std::max(options.Scale, 1);
    read.Raster = ImageRaster(picture.Width * scale, picture.Height * scale);
    for (int y = 0; y < read.Raster.Height(); ++y)
    {
        const uint8_t* source =
            indexes.data() + static_cast<size_t>(y / scale) * static_cast<size_t>(picture.Width);
        uint8_t* row = read.Raster.Row(y);
        for (int x = 0; x < read.Raster.Width(); ++x)
        {
            row[x] = source[x / scale];
        }
    }
    read.Raster.leftOffset = picture.LeftOffset;
    read.Raster.topOffset = picture.TopOffset;
    return read;
}

PictureOptions PictureOptionsFromSettings(bool matchPalette, int scale)
{
    const PaletteOptions& settings = Palettes().Options;
    PictureOptions options;
    options.MatchPalette = matchPalette;
    options.Scale = scale;
    options.PngMatch = settings.PngMatch;
    options.Margins = settings.Margins;
    return options;
}

void SetLastImageKind(int kind)
{
    Palettes().LastImageKind = kind;
}

int LastImageKind()
{
    return Palettes().LastImageKind;
}

int WritePictureBytes(const std::filesystem::path& path, std::span<const uint8_t> bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
    {
        return WriteCreateFailed;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written ? WriteDone : WriteFailed;
}

std::optional<std::filesystem::path>
ChoosePictureFile(const std::string& caption, const std::string& name, const std::string& extension)
{
    platform::FileChoice choice;
    choice.Caption = caption;
    choice.Filter = caption.substr(0, 3) + " (*" + extension + ")|*" + extension + "|";
    choice.InitialPath = Palettes().PictureFolder / (name + extension);
    choice.ForSaving = true;
    std::optional<std::filesystem::path> path = platform::TheUi().ChooseFile(choice);
    if (path)
    {
        Palettes().PictureFolder = path->parent_path();
    }
    return path;
}

int SavePictureFile(const std::string& kind, const std::string& extension, const std::string& name,
                    const ImageRaster& raster, const std::filesystem::path& fileName, bool prompt,
                    const std::function<std::optional<std::vector<uint8_t>>()>& bytes)
{
    std::filesystem::path path = fileName;
    if (prompt)
    {
        const auto chosen = ChoosePictureFile(kind + " name", name, extension);
        if (!chosen)
        {
            return -1;
        }
        path = *chosen;
    }
    const std::optional<std::vector<uint8_t>> encoded = bytes();
    const int result = encoded ? WritePictureBytes(path, *encoded) : WriteFailed;
    if (result == WriteCreateFailed)
    {
        platform::ShowError("DIB Error opening file!");
        return BmpCreateFailed;
    }
    if (result == WriteFailed)
    {
        platform::ShowError("DIB Error saving file!");
        return BmpSaveFailed;
    }
    if (prompt)
    {
        platform::ShowInfo("%s %s (%d x %-d) Saved Successfully", kind.c_str(), path.c_str(),
                           raster.Width(), raster.Height());
    }
    return BmpSaved;
}

} // namespace kelvar::gfx
