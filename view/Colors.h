// The colour table of the map window and the colour roles the renderer draws with.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace kelvar::view
{

/// Colours of the table: 0 is black; 1 to 29 are the named colours of the type tables (BLUE,
/// GREEN, CYAN, RED, ... LIGHTERGRAY); up to 54 are window colours and the last eight, 55 to
/// 62, colours of the game palette only.
inline constexpr int ColorCount = 63;

/// The RGB value (0x00RRGGBB) of each colour index.
std::span<const std::uint32_t> ColorTable();

/// Which colour the renderer uses for what; the game configuration keeps these.
struct ColorRoles
{
    int Selection = 4;         // the selection overlay, drawn in XOR
    int Vertex = 9;            // Vertex squares
    int Grid64 = 7;            // the 64-unit marks
    int Grid = 8;              // the grid of the current size
    int Line2Sided = 29;       // two-sided plain lines
    int Line1Sided = 15;       // one-sided and impassable lines
    int Background = 59;       // the map background
    int LineSecret = 21;       // flag 32
    int LineHidden = 22;       // flag 128
    int BackgroundThings = 62; // the background in Thing mode with the sprite display on
    int LineMonsterBlock = 19; // flag 2
    int LineBlockSound = 18;   // flag 64
    int LineSpecial = 10;      // a special with a tag, or a tagged Sector's lines
    int LineTypedNoTag = 13;   // a special with no tag
    int LineTagged = 12;       // a tag with no special
    int SectorTyped = 9;       // lines of a Sector with a type
    int LineScript = 9;        // Hexen script specials
    int LineTeleport = 26;     // teleport specials

    bool operator==(const ColorRoles&) const = default;
};

} // namespace kelvar::view
