// The level statistics: object counts and sizes, ranges, save game estimates and the Thing
// tables, as the lines of fixed-width text the statistics window and kelvar-cli print.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{

/// What the level's lumps hold beyond what the level record notes at reading (the node lumps,
/// REJECT, BLOCKMAP and BEHAVIOR are there): the MAPINFO lump, when the caller found one.
struct LevelLumpSizes
{
    bool HasMapInfo = false;
    std::uint32_t MapInfoBytes = 0;
};

/// The size of a save file of the level on one skill, which the games limit to 180180 bytes:
/// 337 bytes, 12 per LineDef and 156 per Thing that appears on that skill.
int SaveGameEstimate(int lineDefs, int thingsOfSkill);

/// The report, line by line, blocks parted by an empty line:
/// - "Number of Object Statistics": each lump's count and size in Kb, (count * record size +
///   511) >> 10, and the total of the sizes; REJECT, BLOCKMAP, BEHAVIOR (Hexen format) and
///   MAPINFO count bytes;
/// - the X and Y ranges of the Vertexes, the Z range from the lowest floor to the highest
///   ceiling, and the number of distinct flats and wall textures in use;
/// - "Save Game Estimates (< 180180)" for the easy, medium and hard skills;
/// - "Summary": per category of Things, the counts per flag, in the form of the game's flags
///   (Doom, Heretic and Strife; Boom; Hexen format);
/// - per category that has Things, its name, each type's counts per flag and their totals.
/// The categories are the Thing table's headings: "Enemies", "Equipment" ("Artifacts" and
/// "Puzzle" in Hexen), "Weapons", "Ammunition", "Keys", Strife's "Rebels", "Beggars",
/// "Peasants" and "ShopKeepers" (one "Rebels/etc" row in the summary), and
/// "Players/Teleports". Things of other headings (decorations and the like) are counted in
/// neither table.
std::vector<std::string> StatisticsLines(const map::LevelData& level, const LevelLumpSizes& lumps);

} // namespace kelvar::check
