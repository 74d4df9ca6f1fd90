// What the renderer needs of the type tables: a Thing's row made into its look, a LineDef
// type's colour.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/TypeLooks.h"

#include "game/GameState.h"
#include "game/TypeLookup.h"

namespace kelvar::view
{

ThingLook LookOfThing(const map::Thing& thing, int levelFormat)
{
    ThingLook look;
    if (game::Game().Things.empty())
    {
        return look; // no game chosen yet: the unknown look
    }
    const game::ThingTypeRow& row = game::ThingRow(thing);
    look.Color = row.color;
    look.Radius = row.radius;
    look.Height = row.height;
    look.Shape = row.shape;
    look.ShapeText = std::string(game::Text(row.shape_text));
    look.Sprite = std::string(game::Text(row.sprite));
    look.MapSpot = game::ThingIsMapSpot(thing.Type);
    look.PlayerStart = game::ThingIsPlayerStart(thing.Type);
    look.PolyObject = game::ThingIsPolyStart(thing.Type) || game::ThingIsPolyAnchor(thing.Type);
    const bool bridge = row.property == game::PropertyBridge;
    look.Arrow = !(levelFormat == 4 && (look.PolyObject || bridge));
    return look;
}

int LineTypeColor(std::uint32_t type, std::uint16_t tag)
{
    if (game::Game().LineDefs.empty() || type > 0xFFFF)
    {
        return 0;
    }
    return game::LookupLineType(static_cast<std::uint16_t>(type), tag).color;
}

} // namespace kelvar::view
