// What the renderer needs of the type tables: how a Thing looks, which colour a LineDef type
// has.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "game/TypeRows.h"
#include "map/LevelData.h"

#include <cstdint>
#include <string>

namespace kelvar::view
{

/// How a Thing is drawn. Its shape is one of the rows' codes, game::ShapeDefault to
/// game::ShapeChar.
struct ThingLook
{
    int Color = 0;
    int Radius = 0;
    int Shape = game::ShapeDefault;
    std::string ShapeText;
    bool Arrow = true;       // polyobject and bridge Things of the Hexen layout have none
    bool PolyObject = false; // labelled with its angle
    bool MapSpot = false;    // labelled with its TID
    bool PlayerStart = false;
    int Height = 0;     // map units
    std::string Sprite; // the frame shown for the type
};

/// The look of a Thing from its type's row, or from the unknown row (as before a game is
/// chosen).
ThingLook LookOfThing(const map::Thing& thing, int levelFormat);

/// The colour a LineDef type's row gives it, 0 for none (or before a game is chosen). `key` picks
/// among the Hexen key doors that share a number.
int LineTypeColor(std::uint32_t type, std::uint16_t key);

} // namespace kelvar::view
