// The rows of the type definition tables: Things, LineDefs, Sectors and their category menus.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A type table is one flat array of fixed-size rows. Categories follow one another: a row
//   whose type is 0x10000 or above is a category heading, and EndOfTable ends the table.
//   Each category block is padded with free rows, so an OPT file can add types in place;
//   the arrays are never grown, and a table that is full refuses more.
// - A free row has a name that begins with 'x'. Rows are matched by type number with a
//   linear search from the top, so the first row of a number wins.
// - The built-in tables are constant; the game subsystem keeps a mutable copy of the current
//   game's tables, which the OPT overlay, the DECORATE reader and a few lookups write into.
// - A row's fields are named after what an OPT line sets in them (Type, Name, ShortName,
//   TagType...), so code that reads a row reads like the OPT keywords that fill it.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kelvar::game
{

/// The type of the row that ends a table.
inline constexpr std::uint32_t EndOfTable = 0xFFFFFFFFu;
/// Types from this on are category headings.
inline constexpr std::uint32_t FirstHeading = 0x10000u;
/// The heading of the "Normal" block of the LineDef and Sector tables.
inline constexpr std::uint32_t NormalHeading = 0xFFFF8000u;
/// Heading codes of the categories an OPT file opens are this plus 1, 2, ...
inline constexpr std::uint32_t NewCategoryBase = 0xFFFF0000u;
/// Heading codes of the DECORATE categories are this plus 1 to 8.
inline constexpr std::uint32_t DecorateCategoryBase = 0xFFFF0100u;
/// The type of a menu separator row.
inline constexpr std::uint32_t SeparatorType = 65535u;
/// The property of a free Thing or Sector row.
inline constexpr std::uint32_t SpareProperty = 0xFFFF80F0u;

/// Thing property codes the lookups test.
inline constexpr std::uint32_t PropertyDeathMatch = 0x1000;
inline constexpr std::uint32_t PropertyPlayerStart1 = 0x1001;
inline constexpr std::uint32_t PropertyPlayerStart = 0x1009; // any player
inline constexpr std::uint32_t PropertyEnemy = 0x100A;
inline constexpr std::uint32_t PropertyTeleport = 0x100E;
inline constexpr std::uint32_t PropertyMapSpot = 4;
inline constexpr std::uint32_t PropertyMapSpotGrav = 5;
inline constexpr std::uint32_t PropertyPolyObj = 6;
inline constexpr std::uint32_t PropertyPolyObjCrush = 7;
inline constexpr std::uint32_t PropertyPolyAnchor = 8;
inline constexpr std::uint32_t PropertyHate = 9;
inline constexpr std::uint32_t PropertyBridge = 12;
/// Keyword codes of OPT lines: free the row, and keep the row's value.
inline constexpr std::uint32_t CodeDelete = 0x1111;
inline constexpr std::uint32_t CodeSkip = 0x1112;
/// Line property: a script special.
inline constexpr std::uint32_t PropertyScript = 0x3001;

/// Tag type bits of LineDef rows.
inline constexpr std::uint16_t TagSector = 1;
inline constexpr std::uint16_t TagLine = 2;
inline constexpr std::uint16_t TagDummy = 4;
inline constexpr std::uint16_t TagLineId = 8;
inline constexpr std::uint16_t TagOption = 16;
inline constexpr std::uint16_t TagTid = 32;
inline constexpr std::uint16_t TagScript = 64;
inline constexpr std::uint16_t TagPolyId = 128;
inline constexpr std::uint16_t TagExit = 0x8000;

/// Symbol shapes of Things on the map.
inline constexpr std::uint8_t ShapeDefault = 0;
inline constexpr std::uint8_t ShapeRound = 1;
inline constexpr std::uint8_t ShapeSquare = 2;
inline constexpr std::uint8_t ShapeTriangle = 3;
inline constexpr std::uint8_t ShapePlus = 4;
inline constexpr std::uint8_t ShapeChar = 5;

/// A fixed character field: terminated by a zero byte unless all of it is used.
template <std::size_t N> using FixedText = std::array<char, N>;

/// The characters of a fixed field up to its first zero byte.
template <std::size_t N> constexpr std::string_view Text(const FixedText<N>& field)
{
    const auto end = std::find(field.begin(), field.end(), '\0');
    return std::string_view(field.data(), static_cast<std::size_t>(end - field.begin()));
}

/// Puts `text` into a fixed field, cut to leave room for the terminating zero byte.
template <std::size_t N> constexpr void SetText(FixedText<N>& field, std::string_view text)
{
    field.fill('\0');
    std::copy_n(text.begin(), std::min(text.size(), N - 1), field.begin());
}

/// The index of the first row of `type` at or after `from`, searching up to the end row; -1
/// when there is none.
template <class Rows>
std::ptrdiff_t FindTypeRow(const Rows& rows, std::uint32_t type, std::size_t from = 0)
{
    for (std::size_t i = from; i < rows.size() && rows[i].Type != EndOfTable; ++i)
    {
        if (rows[i].Type == type)
        {
            return static_cast<std::ptrdiff_t>(i);
        }
    }
    return -1;
}

/// One Thing type, or a category heading, a free row or the end of the table.
struct ThingTypeRow
{
    std::uint32_t Type = 0;     // type number, heading code, EndOfTable; 0 on a free row
    FixedText<9> Sprite{};      // sprite frame shown for the type
    FixedText<75> Name{};       // display name; 'x' first marks a free row
    std::uint16_t Color = 0;    // index in the colour name table, 1 to 29
    std::uint16_t Radius = 0;   // map units
    std::uint16_t Height = 0;   // map units
    std::uint16_t Reserved = 0; // carried along, read by nothing
    std::uint32_t Property = 0; // property code, the heading's code, or SpareProperty
    std::uint8_t Shape = 0;     // ShapeDefault ... ShapeChar
    FixedText<9> ShapeText{};   // drawn with ShapeChar

    bool operator==(const ThingTypeRow&) const = default;
};

/// One LineDef type, or a heading, a free row, a separator or the end of the table.
struct LineTypeRow
{
    std::uint32_t Type = 0;             // 0 on a free row; SeparatorType on a separator
    FixedText<75> Name{};               // long name; 'x' first marks a free row
    FixedText<19> ShortName{};          // map labels and the status bar
    std::uint32_t Property = 0;         // key needed, teleport, script
    std::uint16_t Motion = 0;           // what the special moves
    std::uint16_t TagType = 0;          // Tag... bits: what the tag or first argument refers to
    std::array<std::uint8_t, 5> Args{}; // Hexen arguments the menu pre-loads
    std::uint16_t Color = 0;            // 0 for none

    bool operator==(const LineTypeRow&) const = default;
};

/// One Sector type, or a heading, a free row, a separator or the end of the table.
struct SectorTypeRow
{
    std::uint32_t Type = 0;
    FixedText<75> Name{}; // 'x' first marks a free row, or a type deleted from the menu
    FixedText<19> ShortName{};
    std::uint32_t Property = 0; // SpareProperty on a free row
    std::uint16_t Motion = 0;
    std::uint16_t TagType = 0;
    std::array<std::uint8_t, 5> Args{};
    std::uint16_t Color = 0;

    bool operator==(const SectorTypeRow&) const = default;
};

/// The category of a menu entry that acts at once instead of opening a sub-menu.
inline constexpr std::uint32_t DirectEntry = 0x10000u;

/// One entry of the first-level pop-up menu of Things, LineDefs or Sectors.
struct CategoryMenuRow
{
    std::uint32_t Category = 0; // heading code, DirectEntry, SeparatorType, or 0 at the end
    FixedText<5> Mnemonic{};    // "&1   ": '&', one character, three blanks; no terminator
    FixedText<81> Label{};      // 'x' first hides the entry
    std::uint32_t Command = 0;  // posted when a direct entry is chosen

    bool operator==(const CategoryMenuRow&) const = default;
};

/// The commands of the direct menu entries. Entries of a type sub-menu post TypeMenuFirst
/// upward.
inline constexpr std::uint32_t MenuNormal = 2190;       // type 0: "Normal (no menu)", "None"
inline constexpr std::uint32_t MenuGeneralized = 2191;  // the BOOM and ZDOOM type builders
inline constexpr std::uint32_t MenuTypeNumber = 2192;   // "LineDef Type #", "Enter a Thing #"
inline constexpr std::uint32_t MenuSectorTag = 2193;    // "Sector Tag"
inline constexpr std::uint32_t MenuArgs = 2194;         // "LineDef Args", "Thing Args"
inline constexpr std::uint32_t MenuThingSpecial = 2195; // "Thing Special"
inline constexpr std::uint32_t TypeMenuFirst = 2001;

} // namespace kelvar::game
