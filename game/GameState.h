// The state of the game definitions: the current game's type tables and menus.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The active tables are copies of the built-in ones of the current game, made when the IWAD
//   has been identified. They have the built-in size for good: the OPT overlay, the DECORATE
//   reader and a few lookups change rows in place, never the number of rows.
// - Before an OPT file is laid over them, the tables are saved; the next read restores them
//   first, so a changed OPT file never stacks on the previous one.
#pragma once

#include "game/TypeRows.h"
#include "game/TypeTables.h"
#include "map/GameCodes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kelvar::game
{

/// The three type tables and three category menus of a game.
struct GameTables
{
    std::vector<ThingTypeRow> Things;
    std::vector<LineTypeRow> LineDefs;
    std::vector<SectorTypeRow> Sectors;
    std::vector<CategoryMenuRow> ThingMenu;
    std::vector<CategoryMenuRow> LineDefMenu;
    std::vector<CategoryMenuRow> SectorMenu;
};

/// The counts of the last OPT read, by section: problems and the categories it opened.
struct OptCounters
{
    int TooManyThings = 0;
    int TooManyLineDefs = 0;
    int TooManySectors = 0;
    int MissingThingCategory = 0;
    int MissingLineCategory = 0;
    int MissingSectorCategory = 0;
    int NewThingCategories = 0;
    int NewLineCategories = 0;
    int NewSectorCategories = 0;
};

/// Everything the game definitions keep: the active tables are its GameTables part.
struct GameState : GameTables
{
    int IwadKind = map::GameNone;    // a map::GameCode; GameNone before selection
    int LevelFormat = map::GameNone; // the game, or GameHexen for any Hexen-format project
    bool BoomTypes = false;          // the project's Boom switch
    bool ZdoomTypes = false;         // the project's ZDoom switch

    std::optional<GameTables> Saved; // the tables as they stood before the last OPT overlay
    OptCounters Opt;

    SectorTypeRow SectorWorkRow; // the answer for a Boom light type no row names
};

/// The one instance of the game definitions' state.
GameState& Game();

/// Puts the game definitions back to their defaults: no tables (tests call it).
void ResetGame();

/// Chooses the tables after the IWAD has been identified, from wad::Wad().Game and the
/// project's Boom and ZDoom switches (SelectTablesFor).
void SelectGameTables();

/// Makes the built-in tables of a game the active ones and forgets any saved copies. Things
/// follow the IWAD; LineDefs and Sectors are Hexen's in level format 4. The menus follow the
/// format, and the Thing menu of a ZDoom project follows the IWAD.
void SelectTablesFor(int iwadKind, int levelFormat, bool boomTypes, bool zdoomTypes);

} // namespace kelvar::game
