// What the renderer needs of the type tables: how a Thing looks, which colour a LineDef type
// has.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <string>

namespace kelvar::view
{

/// Symbol shapes of a Thing.
inline constexpr int ShapeDefault = 0;
inline constexpr int ShapeRound = 1;
inline constexpr int ShapeSquare = 2;
inline constexpr int ShapeTriangle = 3;
inline constexpr int ShapePlus = 4;
inline constexpr int ShapeChar = 5;

/// How a Thing is drawn.
struct ThingLook
{
    int Color = 4;
    int Radius = 14;
    int Height = 0;
    int Shape = ShapeChar;
    std::string ShapeText = "?";
    bool Arrow = true;       // polyobject and bridge Things of the Hexen layout have none
    bool PolyObject = false; // labelled with its angle
    bool MapSpot = false;    // labelled with its TID
    bool PlayerStart = false;
    std::string Sprite;
};

/// The look of a Thing from its type's row; before a game is chosen, the unknown look.
ThingLook LookOfThing(const map::Thing& thing, int levelFormat);

/// The colour a LineDef type's row gives it, 0 for none (or before a game is chosen). `key` picks
/// among the Hexen key doors that share a number.
int LineTypeColor(std::uint32_t type, std::uint16_t key);

} // namespace kelvar::view
