// COLORMAP building: light maps faded towards a target, gray maps, and maps carried to a new
// palette. SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Colormap.h"

#include "gfx/GamePalette.h"

#include <algorithm>

namespace kelvar::gfx
{
namespace
{

uint8_t Shade(uint8_t base, uint8_t target, double t)
{
    const double value = base + (target - base) * t;
    return static_cast<uint8_t>(std::clamp(static_cast<int>(value), 0, 255));
}

} // namespace

IndexTable ColormapMap(std::span<const uint8_t> colormap, int number)
{
    IndexTable map = IdentityTable();
    const size_t base = static_cast<size_t>(std::max(number, 0)) * ColormapBytes;
    for (size_t i = 0; i < 256 && base + i < colormap.size(); ++i)
    {
        map[i] = colormap[base + i];
    }
    return map;
}

void SetColormapMap(std::vector<uint8_t>& colormap, int number, const IndexTable& map)
{
    const size_t base = static_cast<size_t>(std::max(number, 0)) * ColormapBytes;
    if (colormap.size() < base + ColormapBytes)
    {
        // New maps start as the identity, so a map that is never set still reads right.
        const size_t oldMaps = colormap.size() / ColormapBytes;
        colormap.resize(base + ColormapBytes);
        for (size_t m = oldMaps; m * ColormapBytes < base; ++m)
        {
            const IndexTable identity = IdentityTable();
            std::copy(identity.begin(), identity.end(),
                      colormap.begin() + static_cast<std::ptrdiff_t>(m * ColormapBytes));
        }
    }
    std::copy(map.begin(), map.end(), colormap.begin() + static_cast<std::ptrdiff_t>(base));
}

Palette ShadePalette(const Palette& base, const Palette& target, double t)
{
    Palette shaded{};
    for (size_t i = 0; i < 256; ++i)
    {
        shaded[i] = {Shade(base[i].red, target[i].red, t), Shade(base[i].green, target[i].green, t),
                     Shade(base[i].blue, target[i].blue, t)};
    }
    return shaded;
}

void CreateColormaps(std::vector<uint8_t>& colormap, const Palette& base, const Palette& target,
                     const Palette& matchTo, const MatchMargins& margins)
{
    for (int m = 0; m < BuiltColormaps; ++m)
    {
        const double t = m * 0.03125;
        SetColormapMap(colormap, m,
                       MatchPaletteTable(ShadePalette(base, target, t), matchTo, margins));
    }
}

std::vector<uint8_t> BuildColormapLump(const Palette& palette, const MatchMargins& margins)
{
    std::vector<uint8_t> colormap;
    CreateColormaps(colormap, palette, Palette{}, palette, margins);
    return colormap;
}

void RematchColormaps(std::vector<uint8_t>& colormap, std::span<const uint8_t> oldColormap,
                      const Palette& oldPalette, const Palette& newPalette,
                      const MatchMargins& margins)
{
    for (int m = 0; m < BuiltColormaps; ++m)
    {
        const IndexTable oldMap = ColormapMap(oldColormap, m);
        Palette shades{};
        for (size_t i = 0; i < 256; ++i)
        {
            shades[i] = oldPalette[oldMap[i]];
        }
        SetColormapMap(colormap, m, MatchPaletteTable(shades, newPalette, margins));
    }
}

IndexTable GrayscaleColormap(const Palette& palette, const MatchMargins& margins)
{
    IndexTable map{};
    for (size_t i = 0; i < 256; ++i)
    {
        const Rgb& entry = palette[i];
        // Luma weights, in integers: 0.299, 0.587, 0.114.
        const int gray = (entry.red * 299 + entry.green * 587 + entry.blue * 114 + 500) / 1000;
        map[i] = MatchColor(palette, gray, gray, gray, margins);
    }
    return map;
}

} // namespace kelvar::gfx
