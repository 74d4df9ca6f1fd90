// Tests of COLORMAP building: Freedoom's light maps rebuilt from its PLAYPAL, the maps past 31
// kept, gray maps, and maps carried over to a new palette.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Colormap.h"

#include "gfx/GamePalette.h"
#include "tests/gfx/PaletteTestData.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace kelvar::gfx
{
namespace
{

int Brightness(const Rgb& c)
{
    return c.red + c.green + c.blue;
}

// How far the colour a map shows strays from the colour it stands for.
int ColorDistance(const Rgb& a, const Rgb& b)
{
    return std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue);
}

TEST(CreateColormaps, FreedoomLightMapsFromItsPalette)
{
    const Palette palette = test::FreedoomPalette();
    const std::vector<uint8_t> shipped = test::FreedoomLump("freedoom2.wad", "COLORMAP");
    ASSERT_EQ(shipped.size(), 8704u); // 34 maps
    std::vector<uint8_t> built = shipped;
    CreateColormaps(built, palette, Palette{}, palette);
    ASSERT_EQ(built.size(), shipped.size());
    // Maps 32 and 33 are not touched.
    EXPECT_TRUE(std::equal(built.begin() + 32 * 256, built.end(), shipped.begin() + 32 * 256));

    // Map 0 shows every colour as itself.
    for (size_t i = 0; i < 256; ++i)
    {
        EXPECT_EQ(palette[built[i]], palette[i]) << i;
    }
    // Every map is darker than the one before on the whole, and the last is near black.
    long previous = 1L << 30;
    for (int m = 0; m < BuiltColormaps; ++m)
    {
        const IndexTable map = ColormapMap(built, m);
        long total = 0;
        for (size_t i = 0; i < 256; ++i)
        {
            total += Brightness(palette[map[i]]);
        }
        EXPECT_LT(total, previous + 256) << "map " << m;
        previous = total;
    }
    EXPECT_LT(previous / 256, 40) << "map 31 is too bright";

    // Against the maps Freedoom ships: report the differences, and hold them to shading
    // errors, not wrong colours: the mean distance of the shown colours stays small.
    int differing = 0;
    int largest = 0;
    long totalDistance = 0;
    for (size_t i = 0; i < 32 * 256; ++i)
    {
        const int distance = ColorDistance(palette[built[i]], palette[shipped[i]]);
        differing += built[i] != shipped[i] ? 1 : 0;
        largest = std::max(largest, distance);
        totalDistance += distance;
    }
    std::printf("COLORMAP built from PLAYPAL against Freedoom's: %d of 8192 entries differ, "
                "largest colour distance %d, mean %.2f\n",
                differing, largest, static_cast<double>(totalDistance) / 8192.0);
    EXPECT_LT(totalDistance / 8192, 24);
}

TEST(CreateColormaps, GrowsAShortLumpAndFadesToTheTarget)
{
    const Palette palette = test::FreedoomPalette();
    std::vector<uint8_t> colormap(256, 7);
    Palette white;
    white.fill({255, 255, 255});
    CreateColormaps(colormap, palette, white, palette);
    ASSERT_EQ(colormap.size(), 32u * 256u);
    const IndexTable last = ColormapMap(colormap, 31);
    for (size_t i = 0; i < 256; ++i)
    {
        EXPECT_GE(Brightness(palette[last[i]]), 600) << i;
    }
}

TEST(RematchColormaps, ReproducesTheDarkeningInANewPalette)
{
    const Palette palette = test::FreedoomPalette();
    const std::vector<uint8_t> shipped = test::FreedoomLump("freedoom2.wad", "COLORMAP");
    // Carried to the same palette, each map shows the same colours as before.
    std::vector<uint8_t> same = shipped;
    RematchColormaps(same, shipped, palette, palette);
    for (size_t i = 0; i < 32 * 256; ++i)
    {
        ASSERT_EQ(palette[same[i]], palette[shipped[i]]) << i;
    }
    // Carried to the palette reversed, the indexes follow the reversal.
    Palette reversed{};
    for (size_t i = 0; i < 256; ++i)
    {
        reversed[i] = palette[255 - i];
    }
    std::vector<uint8_t> moved;
    RematchColormaps(moved, shipped, palette, reversed);
    ASSERT_EQ(moved.size(), 32u * 256u);
    for (size_t i = 0; i < moved.size(); ++i)
    {
        ASSERT_EQ(reversed[moved[i]], palette[shipped[i]]) << i;
    }
}

TEST(GrayscaleColormap, ShowsEachColourAsAGray)
{
    const Palette palette = test::FreedoomPalette();
    const IndexTable map = GrayscaleColormap(palette);
    for (size_t i = 0; i < 256; ++i)
    {
        const Rgb& shown = palette[map[i]];
        EXPECT_LE(std::max({shown.red, shown.green, shown.blue}) -
                      std::min({shown.red, shown.green, shown.blue}),
                  24)
            << i;
    }
    // White stays white, black black.
    EXPECT_EQ(palette[map[4]], (Rgb{255, 255, 255}));
    EXPECT_EQ(palette[map[0]], (Rgb{0, 0, 0}));
}

} // namespace
} // namespace kelvar::gfx
