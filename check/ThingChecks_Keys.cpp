// The door check of the Thing checks: the keys in the level per colour and skill, against the
// doors that need them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckWalk.h"
#include "check/ThingChecks.h"
#include "game/GameState.h"
#include "platform/Format.h"

#include <array>
#include <span>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using platform::Format;

// A key or door kind: its name in findings, and the colour whose keys open it. A door opens
// with a key card or a skull key of its colour alike.
struct KeyKind
{
    const char* Name;
    int Colour;
};

constexpr int Green = 0;
constexpr int Blue = 1;
constexpr int Yellow = 2;
constexpr int Red = 3;
constexpr std::size_t DoomColours = 4;

constexpr std::array<KeyKind, 10> DoomKinds = {{
    {"Green key", Green},
    {"Blue key", Blue},
    {"Yellow key", Yellow},
    {"Red key", Red},
    {"Red skull", Red},
    {"Blue skull", Blue},
    {"Yellow skull", Yellow},
    {"Red Any", Red},
    {"Blue Any", Blue},
    {"Yellow Any", Yellow},
}};

// Hexen's keys by their number, 1 to 11; each is a colour of its own.
constexpr std::array<KeyKind, 11> HexenKinds = {{
    {"Steel", 0},
    {"Cave", 1},
    {"Axe", 2},
    {"Fire", 3},
    {"Emerald", 4},
    {"Dungeon", 5},
    {"Silver", 6},
    {"Rusted", 7},
    {"Horn", 8},
    {"Swamp", 9},
    {"Castle", 10},
}};

// The Thing types of Hexen's keys 1 to 11, which their rows give no key property.
constexpr std::array<std::uint16_t, 11> HexenKeyTypes = {8030, 8031, 8032, 8033, 8034, 8035,
                                                         8036, 8037, 8038, 8039, 8200};

// The key door special of the Hexen format; its fourth argument is the key.
constexpr std::uint16_t HexenKeyDoor = 13;

// Line and Thing property codes of the keys.
constexpr std::uint32_t PropertyRedKey = 0x2001;
constexpr std::uint32_t PropertyBlueKey = 0x2002;
constexpr std::uint32_t PropertyYellowKey = 0x2003;
constexpr std::uint32_t PropertyGreenKey = 0x2004;
constexpr std::uint32_t PropertyRedSkull = 0x2005;
constexpr std::uint32_t PropertyBlueSkull = 0x2006;
constexpr std::uint32_t PropertyYellowSkull = 0x2007;
constexpr std::uint32_t PropertyRedAny = 0x2008;
constexpr std::uint32_t PropertyBlueAny = 0x2009;
constexpr std::uint32_t PropertyYellowAny = 0x200A;
constexpr std::uint32_t PropertyAllKeys = 0x200B;
constexpr std::uint32_t PropertyAnyKey = 0x200C;

// Thing flags of keys that appear only in multiplayer games: the multiplayer bit, or in the
// Hexen format a missing single-player bit.
constexpr std::uint16_t FlagMultiplayer = 0x10;
constexpr std::uint16_t FlagHexenSingle = 0x100;

struct KeyTally
{
    std::span<const KeyKind> Kinds;
    bool Hexen = false;
    // Per kind: the keys and the doors of the kind, and the first of each.
    std::vector<int> Keys;
    std::vector<int> FirstKey;
    std::vector<int> Doors;
    std::vector<int> FirstDoor;
    // Per colour: the skills with a key that counts, keys of multiplayer games only, doors.
    std::vector<unsigned> Skills;
    std::vector<bool> NetworkKeys;
    std::vector<bool> ColourDoors;
    // Doors that take any key, or all of them, need whatever keys there are.
    bool DoorsTakeAnyKey = false;
};

// The kind of a key Thing by its row's property; -1 for a Thing that is no key.
int DoomKeyKind(std::uint32_t property)
{
    switch (property)
    {
    case PropertyGreenKey:
        return 0;
    case PropertyBlueKey:
        return 1;
    case PropertyYellowKey:
        return 2;
    case PropertyRedKey:
        return 3;
    case PropertyRedSkull:
        return 4;
    case PropertyBlueSkull:
        return 5;
    case PropertyYellowSkull:
        return 6;
    default:
        return -1;
    }
}

// The kind of a door by its row's property; -1 for a LineDef that needs no key. Heretic's
// doors give their green key the code of Doom's red one.
int DoomDoorKind(std::uint32_t property)
{
    switch (property)
    {
    case PropertyRedKey:
        return game::Game().IwadKind == map::GameHeretic ? 0 : 3;
    case PropertyRedAny:
        return 7;
    case PropertyBlueAny:
        return 8;
    case PropertyYellowAny:
        return 9;
    default:
        return DoomKeyKind(property);
    }
}

int HexenKeyKind(std::uint16_t type)
{
    for (std::size_t i = 0; i < HexenKeyTypes.size(); ++i)
    {
        if (HexenKeyTypes[i] == type)
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

void CountKey(KeyTally& tally, const map::Thing& thing, int kind, std::size_t index)
{
    const auto at = static_cast<std::size_t>(kind);
    const auto colour = static_cast<std::size_t>(tally.Kinds[at].Colour);
    if (tally.Keys[at]++ == 0)
    {
        tally.FirstKey[at] = static_cast<int>(index);
    }
    const bool network =
        tally.Hexen ? (thing.Flags & FlagHexenSingle) == 0 : (thing.Flags & FlagMultiplayer) != 0;
    if (network)
    {
        tally.NetworkKeys[colour] = true;
        return;
    }
    tally.Skills[colour] |= thing.Flags & SkillBits;
}

void CountDoor(KeyTally& tally, int kind, std::size_t index)
{
    const auto at = static_cast<std::size_t>(kind);
    if (tally.Doors[at]++ == 0)
    {
        tally.FirstDoor[at] = static_cast<int>(index);
    }
    tally.ColourDoors[static_cast<std::size_t>(tally.Kinds[at].Colour)] = true;
}

int DoorKindOf(const KeyTally& tally, const map::LineDef& line, const game::LineTypeRow& row)
{
    if (!tally.Hexen)
    {
        return DoomDoorKind(row.Property);
    }
    const int key = line.Args[2];
    if (LineTypeOf(line) != HexenKeyDoor || key < 1 || key > static_cast<int>(HexenKinds.size()))
    {
        return -1;
    }
    return key - 1;
}

// False when the user pressed Escape.
bool TallyKeysAndDoors(CheckRun& run, KeyTally& tally)
{
    const LevelData& level = run.Level;
    const std::size_t total = level.Things.size() + level.LineDefs.size();
    RowCache rows;
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        if (run.Poll(i, total))
        {
            return false;
        }
        const map::Thing& thing = level.Things[i];
        const int kind = tally.Hexen ? HexenKeyKind(thing.Type)
                                     : DoomKeyKind(CachedThingRow(rows, thing.Type).Property);
        if (kind >= 0)
        {
            CountKey(tally, thing, kind, i);
        }
    }
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        if (run.Poll(level.Things.size() + i, total))
        {
            return false;
        }
        const map::LineDef& line = level.LineDefs[i];
        if (line.Type == 0)
        {
            continue;
        }
        const game::LineTypeRow& row = CachedLineRow(rows, line);
        const int kind = DoorKindOf(tally, line, row);
        if (kind >= 0)
        {
            CountDoor(tally, kind, i);
        }
        tally.DoorsTakeAnyKey =
            tally.DoorsTakeAnyKey ||
            (!tally.Hexen && (row.Property == PropertyAnyKey || row.Property == PropertyAllKeys));
    }
    return true;
}

// Keys of a colour no door needs: told about the level, and in the list on the first key.
void ReportSpareKeys(CheckRun& run, const KeyTally& tally)
{
    if (tally.DoorsTakeAnyKey)
    {
        return;
    }
    for (std::size_t kind = 0; kind < tally.Kinds.size(); ++kind)
    {
        const KeyKind& key = tally.Kinds[kind];
        if (tally.Keys[kind] == 0 || tally.ColourDoors[static_cast<std::size_t>(key.Colour)])
        {
            continue;
        }
        const std::vector<std::string> lines = {
            Format("Found %hd %s keys but no %s Door", AsShort(tally.Keys[kind]), key.Name,
                   key.Name),
            "Key could be used in a different level?", "So this key is not necessary?"};
        if (run.Logging())
        {
            run.Log(map::KindThing, static_cast<std::uint32_t>(tally.FirstKey[kind]), lines[0]);
            run.LogDetail(lines[1]);
            run.LogDetail(lines[2]);
        }
        else
        {
            run.Tell("Keys", lines);
        }
    }
}

// Doors of a kind whose key is missing for some skill; false when the user stopped the check.
bool ReportLockedDoors(CheckRun& run, const KeyTally& tally)
{
    for (std::size_t kind = 0; kind < tally.Kinds.size(); ++kind)
    {
        const KeyKind& door = tally.Kinds[kind];
        const auto colour = static_cast<std::size_t>(door.Colour);
        const unsigned missing = SkillBits & ~tally.Skills[colour];
        if (tally.Doors[kind] == 0 || missing == 0)
        {
            continue;
        }
        std::vector<std::string> lines = {
            Format("For %hd %s doors", AsShort(tally.Doors[kind]), door.Name),
            Format("No %s key found for skills", door.Name)};
        const std::vector<std::string> skills = SkillLines(missing);
        lines.insert(lines.end(), skills.begin(), skills.end());
        lines.emplace_back(missing == SkillBits ? "Doors require key from a different level"
                                                : "Doors cannot be opened at the skills shown");
        if (tally.NetworkKeys[colour])
        {
            lines.emplace_back("NETWORK keys don't count!");
        }
        if (!ReportObject(run, map::KindLineDef, static_cast<std::size_t>(tally.FirstDoor[kind]),
                          std::move(lines)))
        {
            return false;
        }
    }
    return true;
}

} // namespace

bool CheckKeyDoors(CheckRun& run)
{
    run.Progress("Checking LineDef Doors (esc)");
    const game::GameState& game = game::Game();
    KeyTally tally;
    tally.Hexen = game.LevelFormat == map::GameHexen;
    // A Hexen-format level on another game's IWAD has that game's keys, and its doors' key
    // numbers are the port's own: there is nothing to compare them with.
    if (tally.Hexen && game.IwadKind != map::GameHexen)
    {
        return true;
    }
    tally.Kinds =
        tally.Hexen ? std::span<const KeyKind>(HexenKinds) : std::span<const KeyKind>(DoomKinds);
    const std::size_t colours = tally.Hexen ? HexenKinds.size() : DoomColours;
    tally.Keys.assign(tally.Kinds.size(), 0);
    tally.FirstKey.assign(tally.Kinds.size(), -1);
    tally.Doors.assign(tally.Kinds.size(), 0);
    tally.FirstDoor.assign(tally.Kinds.size(), -1);
    tally.Skills.assign(colours, 0);
    tally.NetworkKeys.assign(colours, false);
    tally.ColourDoors.assign(colours, false);
    if (!TallyKeysAndDoors(run, tally))
    {
        return false;
    }
    ReportSpareKeys(run, tally);
    return ReportLockedDoors(run, tally);
}

} // namespace kelvar::check
