// kelvar-cli palette: PLAYPAL exported as a palette file or a swatch, COLORMAP built from PLAYPAL.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/PaletteCommands.h"

#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "gfx/Colormap.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "gfx/PngFile.h"
#include "wad/WadState.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace kelvar::cli
{
namespace
{

// Pixels a side of each palette entry in the swatch picture.
constexpr int SwatchCell = 8;

struct PaletteRequest
{
    std::string Action; // export or build
    std::vector<std::string> Files;
    std::string Output;
    int PaletteNumber = 0;
};

bool ParseRequest(const std::vector<std::string>& arguments, PaletteRequest& request)
{
    if (!arguments.empty())
    {
        request.Action = arguments[0];
    }
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if ((word == "-o" || word == "--output") && hasValue)
        {
            request.Output = arguments[++i];
        }
        else if (word == "--palette" && hasValue)
        {
            request.PaletteNumber = std::atoi(arguments[++i].c_str());
        }
        else
        {
            request.Files.push_back(word);
        }
    }
    if ((request.Action != "export" && request.Action != "build") || request.Files.empty() ||
        request.Output.empty() || request.PaletteNumber < 0)
    {
        std::fprintf(stderr, "kelvar-cli: palette needs export|build IWAD [PWAD...] -o FILE "
                             "[--palette N]\n");
        return false;
    }
    return true;
}

std::string LowerExtension(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension)
    {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return extension;
}

// The 256 colours as a 16 by 16 grid of cells, entry 0 at the top left.
gfx::ImageRaster Swatch()
{
    gfx::ImageRaster raster(16 * SwatchCell, 16 * SwatchCell);
    for (int y = 0; y < raster.Height(); ++y)
    {
        for (int x = 0; x < raster.Width(); ++x)
        {
            raster.Set(x, y, static_cast<uint8_t>((y / SwatchCell) * 16 + x / SwatchCell));
        }
    }
    return raster;
}

bool WriteText(const std::string& path, const std::string& text)
{
    return gfx::WriteFileBytes(
        path, std::span(reinterpret_cast<const uint8_t*>(text.data()), text.size()));
}

int ExportPalette(const PaletteRequest& request, const gfx::Palette& palette)
{
    const std::string extension = LowerExtension(request.Output);
    bool written = false;
    if (extension == ".pac")
    {
        written = gfx::WriteFileBytes(request.Output, gfx::PaletteToBytes(palette));
    }
    else if (extension == ".png")
    {
        const auto bytes = gfx::EncodePng(Swatch(), palette);
        written = bytes && gfx::WriteFileBytes(request.Output, *bytes);
    }
    else
    {
        written = WriteText(request.Output, gfx::JascPaletteText(palette));
    }
    if (!written)
    {
        std::fprintf(stderr, "kelvar-cli: can't write %s\n", request.Output.c_str());
        return ExitBadFile;
    }
    std::printf("%s: palette %d\n", request.Output.c_str(), request.PaletteNumber);
    return ExitOk;
}

// 32 light maps faded to black from the palette; maps past 31 come from the files' own
// COLORMAP when there is one.
int BuildColormap(const PaletteRequest& request, const gfx::Palette& palette)
{
    std::vector<uint8_t> colormap;
    if (const auto entry = gfx::FindPaletteLump("COLORMAP", false))
    {
        colormap = gfx::ReadWholeLump(*entry);
    }
    gfx::CreateColormaps(colormap, palette, gfx::Palette{}, palette);
    if (!gfx::WriteFileBytes(request.Output, colormap))
    {
        std::fprintf(stderr, "kelvar-cli: can't write %s\n", request.Output.c_str());
        return ExitBadFile;
    }
    std::printf("%s: COLORMAP of %zu maps from palette %d\n", request.Output.c_str(),
                colormap.size() / gfx::ColormapBytes, request.PaletteNumber);
    return ExitOk;
}

} // namespace

int PaletteCommand(const std::vector<std::string>& arguments)
{
    PaletteRequest request;
    if (!ParseRequest(arguments, request))
    {
        return ExitUsage;
    }
    const int status = OpenFiles(request.Files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    const auto playpal = gfx::FindPaletteLump("PLAYPAL", false);
    const std::vector<uint8_t> bytes =
        playpal ? gfx::ReadWholeLump(*playpal) : std::vector<uint8_t>{};
    const auto count = static_cast<int>(bytes.size() / gfx::PaletteBytes);
    if (request.PaletteNumber >= count)
    {
        std::fprintf(stderr, "kelvar-cli: no palette %d in PLAYPAL (%d palettes)\n",
                     request.PaletteNumber, count);
        return ExitBadFile;
    }
    const gfx::Palette palette =
        gfx::PaletteFromBytes(bytes, static_cast<std::size_t>(request.PaletteNumber));
    const int result = request.Action == "export" ? ExportPalette(request, palette)
                                                  : BuildColormap(request, palette);
    return result != ExitOk ? result : status;
}

} // namespace kelvar::cli
