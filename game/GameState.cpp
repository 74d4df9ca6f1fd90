// The one instance of the game definitions' state, and the choice of the game's tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/GameState.h"

#include "game/ObjectEdit.h"
#include "game/ThingMask.h"
#include "map/GameCodes.h"
#include "wad/WadState.h"

namespace kelvar::game
{
namespace
{

TableSet TableSetOf(int game)
{
    switch (game)
    {
    case map::GameHeretic:
        return TableSet::Heretic;
    case map::GameHexen:
        return TableSet::Hexen;
    case map::GameStrife:
        return TableSet::Strife;
    default:
        return TableSet::Doom;
    }
}

// A Hexen IWAD keeps the Hexen menu, which has the argument entries already, so that the menu
// offers the categories its Thing table holds.
ThingMenuSet ThingMenuOf(int iwadKind, int levelFormat, bool zdoomTypes)
{
    if (levelFormat == map::GameHexen && zdoomTypes)
    {
        switch (iwadKind)
        {
        case map::GameHeretic:
            return ThingMenuSet::ZdoomHeretic;
        case map::GameHexen:
            return ThingMenuSet::Hexen;
        case map::GameStrife:
            return ThingMenuSet::ZdoomStrife;
        default:
            return ThingMenuSet::ZdoomDoom;
        }
    }
    switch (levelFormat)
    {
    case map::GameHeretic:
        return ThingMenuSet::Heretic;
    case map::GameHexen:
        return ThingMenuSet::Hexen;
    case map::GameStrife:
        return ThingMenuSet::Strife;
    default:
        return ThingMenuSet::Doom;
    }
}

template <class Row> std::vector<Row> Copy(std::span<const Row> rows)
{
    return std::vector<Row>(rows.begin(), rows.end());
}

} // namespace

GameState& Game()
{
    static GameState state;
    return state;
}

void ResetGame()
{
    Game() = GameState{};
    TheThingMask() = ThingMask{};
    LastDoorArguments() = DefaultDoorArguments;
}

void SelectGameTables()
{
    const wad::WadState& wad = wad::Wad();
    SelectTablesFor(wad.Game.Game, wad.Game.Format, wad.Options.BoomTypes,
                    wad.Options.ZdoomHexenFormat);
}

void SelectTablesFor(int iwadKind, int levelFormat, bool boomTypes, bool zdoomTypes)
{
    GameState& game = Game();
    if (zdoomTypes)
    {
        levelFormat = map::GameHexen;
    }
    game.IwadKind = iwadKind;
    game.LevelFormat = levelFormat;
    game.BoomTypes = boomTypes;
    game.ZdoomTypes = zdoomTypes;

    const TableSet things = TableSetOf(iwadKind);
    const TableSet lines = levelFormat == map::GameHexen ? TableSet::Hexen : TableSetOf(iwadKind);
    const TableSet menus = TableSetOf(levelFormat);
    game.Things = Copy(BuiltInThings(things));
    game.LineDefs = Copy(BuiltInLineDefs(lines));
    game.Sectors = Copy(BuiltInSectors(lines));
    game.ThingMenu = Copy(BuiltInThingMenu(ThingMenuOf(iwadKind, levelFormat, zdoomTypes)));
    game.LineDefMenu = Copy(BuiltInLineDefMenu(menus));
    game.SectorMenu = Copy(BuiltInSectorMenu(menus));

    game.Saved.reset();
    game.Opt = OptCounters{};
}

} // namespace kelvar::game
