// What the renderer needs of the type tables: a Thing's row made into its look, a LineDef
// type's colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/TypeLooks.h"

#include "game/TypeLookup.h"
#include "map/GameCodes.h"

namespace kelvar::view
{

ThingLook LookOfThing(const map::Thing& thing, int levelFormat)
{
    // Before a game is chosen the tables are empty, and every Thing has the unknown row.
    const game::ThingTypeRow& row = game::ThingRow(thing);
    ThingLook look;
    look.Color = row.Color;
    look.Radius = row.Radius;
    look.Shape = row.Shape;
    look.ShapeText = std::string(game::Text(row.ShapeText));
    look.Height = row.Height;
    look.Sprite = std::string(game::Text(row.Sprite));
    // The row holds all the rest: no further search of the table for each Thing drawn.
    look.MapSpot = game::IsMapSpotProperty(row.Property);
    look.PlayerStart = game::IsPlayerStartProperty(row.Property);
    look.PolyObject = game::IsPolyStartProperty(row.Property);
    const bool bridge = row.Property == game::PropertyBridge;
    look.Arrow = !(levelFormat == map::GameHexen && (look.PolyObject || bridge));
    return look;
}

int LineTypeColor(std::uint32_t type, std::uint16_t key)
{
    if (type > 0xFFFF)
    {
        return 0;
    }
    return game::LookupLineType(static_cast<std::uint16_t>(type), key).Color;
}

} // namespace kelvar::view
