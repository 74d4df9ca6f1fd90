// The Thing filter mask and the test the map's drawing asks of each Thing.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/ThingMask.h"

#include "game/TypeLookup.h"
#include "game/TypeRows.h"

#include <algorithm>

namespace kelvar::game
{
namespace
{

// Thing flag bits the mask reads.
constexpr std::uint16_t FlagEasy = 1;
constexpr std::uint16_t FlagMedium = 2;
constexpr std::uint16_t FlagHard = 4;
constexpr std::uint16_t FlagDeaf = 8;
constexpr std::uint16_t FlagMultiplayer = 0x10; // Doom; Hexen's dormant bit
constexpr std::uint16_t FlagNotDeathMatch = 0x20;
constexpr std::uint16_t FlagNotCoop = 0x40;
constexpr std::uint16_t FlagFighter = 0x20;
constexpr std::uint16_t FlagCleric = 0x40;
constexpr std::uint16_t FlagMage = 0x80;
constexpr std::uint16_t FlagSingle = 0x100;
constexpr std::uint16_t FlagCoop = 0x200;
constexpr std::uint16_t FlagDeathMatch = 0x400;

bool AllOf(bool a, bool b, bool c)
{
    return a && b && c;
}

bool MeetsSkills(std::uint16_t flags, const ThingMask& mask)
{
    if (AllOf(mask.Easy, mask.Medium, mask.Hard))
    {
        return true;
    }
    return (mask.Easy && (flags & FlagEasy) != 0) || (mask.Medium && (flags & FlagMedium) != 0) ||
           (mask.Hard && (flags & FlagHard) != 0);
}

bool MeetsModes(std::uint16_t flags, const ThingMask& mask, bool hexenFormat)
{
    if (AllOf(mask.SinglePlayer, mask.Cooperative, mask.DeathMatch))
    {
        return true;
    }
    if (hexenFormat)
    {
        return (mask.SinglePlayer && (flags & FlagSingle) != 0) ||
               (mask.Cooperative && (flags & FlagCoop) != 0) ||
               (mask.DeathMatch && (flags & FlagDeathMatch) != 0);
    }
    return (mask.SinglePlayer && (flags & FlagMultiplayer) == 0) ||
           (mask.Cooperative && (flags & FlagNotCoop) == 0) ||
           (mask.DeathMatch && (flags & FlagNotDeathMatch) == 0);
}

bool MeetsClasses(std::uint16_t flags, const ThingMask& mask, bool hexenFormat)
{
    if (!hexenFormat || AllOf(mask.Fighter, mask.Cleric, mask.Mage))
    {
        return true;
    }
    return (mask.Fighter && (flags & FlagFighter) != 0) ||
           (mask.Cleric && (flags & FlagCleric) != 0) || (mask.Mage && (flags & FlagMage) != 0);
}

} // namespace

const std::array<std::string_view, MaskCategoryCount>& MaskCategoryLabels()
{
    static const std::array<std::string_view, MaskCategoryCount> labels{
        "Player/Tele/Mapspot", "Keys",    "Artifacts", "Weapons",
        "Ammunition",          "Enemies", "Puzzle",    "All Other Things",
        "PolyObjects"};
    return labels;
}

ThingMask& TheThingMask()
{
    static ThingMask mask;
    return mask;
}

bool MaskShowsAll(const ThingMask& mask)
{
    return mask == ThingMask{};
}

MaskCategory MaskCategoryOf(std::uint16_t type)
{
    const ThingTypeRow& row = ThingRowOfType(type);
    if (IsPlayerStartProperty(row.Property) || IsMapSpotProperty(row.Property) ||
        row.Property == PropertyTeleport || row.Property == PropertyDeathMatch)
    {
        return MaskCategory::Starts;
    }
    if (IsPolyStartProperty(row.Property))
    {
        return MaskCategory::PolyObjects;
    }
    // The headings' low bytes number the same kinds of Thing in every game's table.
    switch (ThingCategoryOf(type) & 0xFF)
    {
    case 0x02:
        return MaskCategory::Starts;
    case 0x03:
        return MaskCategory::Enemies;
    case 0x04:
        return MaskCategory::Weapons;
    case 0x05:
        return MaskCategory::Ammunition;
    case 0x06:
        return MaskCategory::Keys;
    case 0x07:
        return MaskCategory::Puzzle;
    case 0x08:
        return MaskCategory::Artifacts;
    case 0x0F:
        return MaskCategory::PolyObjects;
    default:
        return MaskCategory::Other;
    }
}

bool ThingPassesMask(const map::Thing& thing, const ThingMask& mask, bool hexenFormat)
{
    const std::uint16_t flags = thing.Flags;
    if (!MeetsSkills(flags, mask) || !MeetsModes(flags, mask, hexenFormat) ||
        !MeetsClasses(flags, mask, hexenFormat))
    {
        return false;
    }
    if (mask.DeafOnly && (flags & FlagDeaf) == 0)
    {
        return false;
    }
    if (hexenFormat && mask.DormantOnly && (flags & FlagMultiplayer) == 0)
    {
        return false;
    }
    if (std::all_of(mask.Categories.begin(), mask.Categories.end(), [](bool on) { return on; }))
    {
        return true;
    }
    return mask.Categories[static_cast<std::size_t>(MaskCategoryOf(thing.Type))];
}

} // namespace kelvar::game
