// The Thing filter mask: which Things the map shows, by skill, game mode and category.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The mask has two groups. The first holds the skills, the game modes, the "ONLY" filters
//   and the Hexen classes; the second the categories of the Thing tables. A Thing is drawn
//   only when it meets both.
// - Within the first group, the skills, the modes and the classes each filter only when some
//   box of theirs is cleared: with every box ticked (the defaults) every Thing shows, including
//   Things with no skill bit at all, which a mapper must be able to see to fix.
// - The mask lasts for the session; the renderer and the box selection ask ThingPassesMask.
#pragma once

#include "map/LevelData.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace kelvar::game
{

/// The categories of the mask's second group.
enum class MaskCategory : std::uint8_t
{
    Starts, // "Player/Tele/Mapspot"
    Keys,
    Artifacts,
    Weapons,
    Ammunition,
    Enemies,
    Puzzle,
    Other, // "All Other Things"
    PolyObjects,
};
inline constexpr int MaskCategoryCount = 9;

/// The labels of the categories, in the order of MaskCategory.
const std::array<std::string_view, MaskCategoryCount>& MaskCategoryLabels();

struct ThingMask
{
    bool Easy = true;         // "Skill 1-2 (easy)"
    bool Medium = true;       // "Skill  3 (medium)"
    bool Hard = true;         // "Skill 4-5 (hard)"
    bool DeathMatch = true;   // "Death Match"
    bool SinglePlayer = true; // "Single Player"
    bool Cooperative = true;  // "Cooperative"
    bool DeafOnly = false;    // "Deaf   ONLY"
    bool DormantOnly = false; // "Dormant  ONLY" (Hexen format)
    bool Fighter = true;      // Hexen format
    bool Cleric = true;
    bool Mage = true;
    std::array<bool, MaskCategoryCount> Categories{true, true, true, true, true,
                                                   true, true, true, true};

    bool operator==(const ThingMask&) const = default;
};

/// The session's mask.
ThingMask& TheThingMask();

/// True when the mask lets every Thing through (the renderer then skips the test).
bool MaskShowsAll(const ThingMask& mask);

/// The category of a Thing type: by its row's property (starts, teleport landings and map
/// spots; polyobject spots), else by the heading its row stands under; Other for the rest and
/// for types no row has.
MaskCategory MaskCategoryOf(std::uint16_t type);

/// True when `thing` meets the mask: one of its skill bits is ticked, one of the ticked modes
/// admits it (Doom: single player unless multiplayer-only, death match unless Boom's "not DM",
/// co-op unless "not co-op"; Hexen: its own mode bits), in Hexen one of its classes is ticked,
/// it passes the "ONLY" filters, and its category is ticked.
bool ThingPassesMask(const map::Thing& thing, const ThingMask& mask, bool hexenFormat);

} // namespace kelvar::game
