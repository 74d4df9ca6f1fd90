// The colour table of the map window.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Colors.h"

namespace kelvar::view
{

std::span<const std::uint32_t> ColorTable()
{
    static constexpr std::array<std::uint32_t, ColorCount> Table = {
        0x000000, // 0 black
        0x0000AA, // 1 BLUE
        0x00AA00, // 2 GREEN
        0x00AAAA, // 3 CYAN
        0xAA0000, // 4 RED
        0xAA00AA, // 5 MAGENTA
        0xAA5500, // 6 BROWN
        0xAAAAAA, // 7 LIGHTGRAY
        0x555555, // 8 DARKGRAY
        0x5555FF, // 9 LIGHBLUE
        0x55FF55, // 10 LIGHTGREEN
        0x55FFFF, // 11 LIGHTCYAN
        0xFF5555, // 12 LIGHTRED
        0xFF55FF, // 13 LIGHTMAGENTA
        0xFFFF55, // 14 YELLOW
        0xFFFFFF, // 15 WHITE
        0x808080, // 16 GRAY
        0x404040, // 17 DARKERGRAY
        0x800000, // 18 DARKRED
        0x008000, // 19 DARKGREEN
        0x000080, // 20 DARKBLUE
        0x800080, // 21 DARKMAGENTA
        0xFF8000, // 22 ORANGE
        0xC08040, // 23 LIGHTBROWN
        0xFA8072, // 24 SALMON
        0xFFFFC0, // 25 LIGHTYELLOW
        0xA0C0FF, // 26 LIGHTERBLUE
        0xA0FFA0, // 27 LIGHTERGREEN
        0xFFA0A0, // 28 LIGHTERRED
        0xD0D0D0, // 29 LIGHTERGRAY
        // Further window colours.
        0x202020, 0x303030, 0x606060, 0x707070, 0x909090, 0xB0B0B0, 0xC0C0C0, 0xE0E0E0, 0x400000,
        0x004000, 0x000040, 0x404000, 0x004040, 0x400040, 0xC00000, 0x00C000, 0x0000C0, 0xC0C000,
        0x00C0C0, 0xC000C0, 0xFF4000, 0x40FF00, 0x0040FF, 0xFFC000, 0x00FFC0,
        // Colours of the game palette only.
        0x1F1F1F, 0x0B0B0B, 0x2F2F47, 0x101018, 0x171717, 0x232323, 0x2B1F0F, 0x0F170F};
    return Table;
}

} // namespace kelvar::view
