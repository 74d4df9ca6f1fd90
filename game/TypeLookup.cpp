// The lookups of Thing, LineDef and Sector types in the active tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeLookup.h"

#include "game/GameState.h"
#include "game/Generalized.h"
#include "game/TypeTables.h"
#include "map/GameCodes.h"

namespace kelvar::game
{
namespace
{

ThingTypeRow* FindThing(std::uint16_t type)
{
    std::vector<ThingTypeRow>& rows = Game().Things;
    const std::ptrdiff_t at = FindTypeRow(rows, type);
    return at < 0 ? nullptr : &rows[static_cast<std::size_t>(at)];
}

std::uint32_t ThingProperty(std::uint16_t type)
{
    const ThingTypeRow* row = FindThing(type);
    return row != nullptr ? row->Property : 0;
}

// The names of the Boom light kinds by the low five bits of a type; -1 for the others.
int LightKindIndex(unsigned lowBits)
{
    constexpr unsigned Kinds[] = {0, 1, 2, 3, 8, 12, 13, 17};
    for (int i = 0; i < 8; ++i)
    {
        if (Kinds[i] == lowBits)
        {
            return i;
        }
    }
    return -1;
}

} // namespace

bool LineTypeIsGeneralized(std::uint16_t type)
{
    const GameState& game = Game();
    return game.LevelFormat <= map::GameHeretic && game.BoomTypes &&
           type >= FirstGeneralizedLineType && type <= LastGeneralizedLineType;
}

const LineTypeRow& LookupLineType(std::uint16_t type, std::uint16_t key)
{
    GameState& game = Game();
    if (LineTypeIsGeneralized(type))
    {
        return DecodeGeneralizedLine(type);
    }
    std::vector<LineTypeRow>& rows = game.LineDefs;
    std::ptrdiff_t at = FindTypeRow(rows, type);
    if (at < 0)
    {
        return UnknownLineRow;
    }
    LineTypeRow* row = &rows[static_cast<std::size_t>(at)];
    if (game.LevelFormat != map::GameHexen)
    {
        // A manual door acts on the Sector behind it; Boom lets such a door have a tag too.
        if (row->Name[0] == 'D')
        {
            row->TagType = game.BoomTypes ? TagOption : 0;
        }
        return *row;
    }
    if (type == 13 && key != 0)
    {
        // The key doors share a number; the key of each is its fourth argument.
        while (at >= 0 && rows[static_cast<std::size_t>(at)].Args[3] != key)
        {
            at = FindTypeRow(rows, type, static_cast<std::size_t>(at) + 1);
        }
        return at < 0 ? UnknownLineRow : rows[static_cast<std::size_t>(at)];
    }
    return *row;
}

const SectorTypeRow& LookupSectorType(std::int16_t type)
{
    GameState& game = Game();
    auto number = static_cast<std::uint16_t>(type);
    if (game.ZdoomTypes)
    {
        number &= 0xE0FF;
    }
    const std::ptrdiff_t at = FindTypeRow(game.Sectors, number);
    if (at >= 0)
    {
        return game.Sectors[static_cast<std::size_t>(at)];
    }
    if (game.ZdoomTypes || game.IwadKind >= map::GameHexen || !game.BoomTypes)
    {
        return UnknownSectorRow;
    }
    // Boom's generalized Sector types keep the light kind in their low five bits.
    const int kind = LightKindIndex(number & 31u);
    if (kind < 0)
    {
        return UnknownSectorRow;
    }
    static constexpr std::string_view Names[] = {"no Light",    "Random Light", "Fast Light",
                                                 "Slow Light",  "Pulse Light",  "Ssync Light",
                                                 "Fsync Light", "Flick Light"};
    SectorTypeRow& row = game.SectorWorkRow;
    row = SectorTypeRow{};
    row.Type = number;
    SetText(row.Name, Names[kind]);
    SetText(row.ShortName, Names[kind]);
    return row;
}

std::string_view SectorTypeName(std::int16_t type)
{
    return Text(LookupSectorType(type).Name);
}

std::string_view SectorTypeShortName(std::int16_t type)
{
    return Text(LookupSectorType(type).ShortName);
}

const ThingTypeRow& ThingRow(const map::Thing& thing)
{
    ThingTypeRow* row = FindThing(thing.Type);
    if (row == nullptr)
    {
        return UnknownThingRow;
    }
    if (row->Property == PropertyBridge && thing.Args[0] != 0)
    {
        row->Radius = thing.Args[0];
    }
    if (row->Radius == 0)
    {
        row->Radius = 32;
    }
    return *row;
}

const ThingTypeRow& ThingRowOfType(std::uint16_t type)
{
    const ThingTypeRow* row = FindThing(type);
    return row != nullptr ? *row : UnknownThingRow;
}

std::string_view ThingTypeName(std::uint16_t type)
{
    const ThingTypeRow* row = FindThing(type);
    return row != nullptr ? Text(row->Name) : std::string_view("<?unknown?>");
}

std::uint32_t ThingCategoryOf(std::uint16_t type)
{
    const std::vector<ThingTypeRow>& rows = Game().Things;
    std::uint32_t heading = 0;
    for (std::size_t i = 0; i < rows.size() && rows[i].Type != EndOfTable; ++i)
    {
        if (rows[i].Type >= FirstHeading)
        {
            heading = rows[i].Type;
        }
        else if (rows[i].Type == type)
        {
            return heading;
        }
    }
    return 0;
}

std::uint16_t ThingColor(std::uint16_t type)
{
    const ThingTypeRow* row = FindThing(type);
    return row != nullptr ? row->Color : 15;
}

std::uint16_t ThingRadius(const map::Thing& thing)
{
    const ThingTypeRow* row = FindThing(thing.Type);
    if (row == nullptr)
    {
        return 16;
    }
    if (row->Property == PropertyBridge && thing.Type == 9990 && thing.Args[0] != 0)
    {
        return thing.Args[0];
    }
    return row->Radius;
}

bool IsMapSpotProperty(std::uint32_t property)
{
    return property == PropertyMapSpot || property == PropertyMapSpotGrav;
}

bool IsPlayerStartProperty(std::uint32_t property)
{
    return property >= PropertyPlayerStart1 && property <= PropertyPlayerStart;
}

bool IsPolyStartProperty(std::uint32_t property)
{
    return property == PropertyPolyObj || property == PropertyPolyObjCrush ||
           property == PropertyPolyAnchor;
}

bool ThingIsMapSpot(std::uint16_t type)
{
    return IsMapSpotProperty(ThingProperty(type));
}

bool ThingIsPlayerStart(std::uint16_t type)
{
    return IsPlayerStartProperty(ThingProperty(type));
}

bool ThingIsPolyAnchor(std::uint16_t type)
{
    return ThingProperty(type) == PropertyPolyAnchor;
}

bool ThingIsPolyStart(std::uint16_t type)
{
    return IsPolyStartProperty(ThingProperty(type));
}

bool ThingIsPolyOrHate(std::uint16_t type)
{
    const std::uint32_t property = ThingProperty(type);
    return IsPolyStartProperty(property) || property == PropertyHate;
}

bool ThingIsTeleportLanding(std::uint16_t type)
{
    return ThingProperty(type) == PropertyTeleport;
}

bool LineIsDoorSpecial(std::uint16_t type)
{
    return Game().LevelFormat == map::GameHexen && (type == 0 || (type >= 11 && type <= 13));
}

bool LineTagIsPolyId(std::uint16_t type)
{
    return Game().LevelFormat == map::GameHexen &&
           (LookupLineType(type, 0).TagType & TagPolyId) != 0;
}

bool LineTagIsTid(std::uint16_t type)
{
    return Game().LevelFormat == map::GameHexen && (LookupLineType(type, 0).TagType & TagTid) != 0;
}

} // namespace kelvar::game
