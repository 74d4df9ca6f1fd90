// The built-in type tables and category menus of the five games.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "game/TypeRows.h"

#include <cstddef>
#include <span>

namespace kelvar::game
{

/// The families of built-in tables. Doom serves Doom and Doom 2; Hexen serves every
/// Hexen-format project for its LineDefs and Sectors.
enum class TableSet : std::uint8_t
{
    Doom,
    Heretic,
    Hexen,
    Strife,
};

/// The Thing menus: the Hexen-format ports on a Doom, Heretic or Strife IWAD add the entries
/// for a Thing's arguments and special.
enum class ThingMenuSet : std::uint8_t
{
    Doom,
    ZdoomDoom,
    Heretic,
    ZdoomHeretic,
    Hexen,
    Strife,
    ZdoomStrife,
};

/// Rows after each heading of a built-in or new category: its real rows, then free rows up to
/// this count. A block whose real rows reach the count has no free rows, and neither has the
/// Normal block.
inline constexpr std::size_t DoomBlockRows = 35;
inline constexpr std::size_t OtherBlockRows = 34;
/// Categories an OPT file can open in each table, with their headings 0xFFFF0001 upward.
inline constexpr std::size_t NewThingCategories = 23;
inline constexpr std::size_t NewLineCategories = 11;
inline constexpr std::size_t NewSectorCategories = 6;
/// The DECORATE categories of the Thing tables and the free rows of each: 256 in all.
inline constexpr std::size_t DecorateCategories = 8;
inline constexpr std::size_t DecorateBlockRows = 32;

/// The built-in tables and menus, each up to and including its end row.
std::span<const ThingTypeRow> BuiltInThings(TableSet set);
std::span<const LineTypeRow> BuiltInLineDefs(TableSet set);
std::span<const SectorTypeRow> BuiltInSectors(TableSet set);
std::span<const CategoryMenuRow> BuiltInThingMenu(ThingMenuSet set);
std::span<const CategoryMenuRow> BuiltInLineDefMenu(TableSet set);
std::span<const CategoryMenuRow> BuiltInSectorMenu(TableSet set);

/// The rows of the lookups that find nothing.
extern const ThingTypeRow UnknownThingRow;
extern const LineTypeRow UnknownLineRow;
extern const SectorTypeRow UnknownSectorRow;

} // namespace kelvar::game
