// The built-in type tables and category menus of the five games, laid out at compile time.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeTables.h"

#include <array>
#include <string_view>

namespace kelvar::game
{
namespace
{

// A row of res/ that gives no property: it takes its heading's code.
constexpr std::uint32_t FromHeading = 0xFFFFFFFEu;

// The rows as res/ holds them: headings and real rows only, in table order.
struct ThingSource
{
    std::uint32_t Type = 0;
    const char* Sprite = "";
    const char* Name = "";
    std::uint16_t Color = 0;
    std::uint16_t Radius = 0;
    std::uint16_t Height = 0;
    std::uint32_t Property = FromHeading;
    const char* ShapeText = nullptr;
};

struct LineSource
{
    std::uint32_t Type = 0;
    const char* Name = "";
    std::uint16_t Motion = 0;
    std::uint32_t Property = 0;
    std::uint16_t TagType = 0;
    std::array<std::uint8_t, 5> Args{};
};

struct SectorSource
{
    std::uint32_t Type = 0;
    const char* Name = "";
    const char* ShortName = "";
};

struct MenuSource
{
    std::uint32_t Category = 0;
    const char* Mnemonic = "";
    const char* Label = "";
    std::uint32_t Command = 0;
};

constexpr std::uint32_t Separator = SeparatorType;

constexpr ThingSource DoomThingSource[] = {
#include "res/DoomThings.inc"
};
constexpr ThingSource HereticThingSource[] = {
#include "res/HereticThings.inc"
};
constexpr ThingSource HexenThingSource[] = {
#include "res/HexenThings.inc"
};
constexpr ThingSource StrifeThingSource[] = {
#include "res/StrifeThings.inc"
};
constexpr LineSource DoomLineSource[] = {
#include "res/DoomLineDefs.inc"
};
constexpr LineSource HereticLineSource[] = {
#include "res/HereticLineDefs.inc"
};
constexpr LineSource HexenLineSource[] = {
#include "res/HexenLineDefs.inc"
};
constexpr LineSource StrifeLineSource[] = {
#include "res/StrifeLineDefs.inc"
};
constexpr SectorSource DoomSectorSource[] = {
#include "res/DoomSectors.inc"
};
constexpr SectorSource HereticSectorSource[] = {
#include "res/HereticSectors.inc"
};
constexpr SectorSource HexenSectorSource[] = {
#include "res/HexenSectors.inc"
};
constexpr SectorSource StrifeSectorSource[] = {
#include "res/StrifeSectors.inc"
};

// How a table is padded: rows per block, and the empty categories that follow the built-in ones.
struct Layout
{
    std::size_t BlockRows = DoomBlockRows;
    std::size_t NewCategories = 0;
    std::size_t DecorateCategories = 0;
};

constexpr Layout ThingLayout(std::size_t blockRows)
{
    return {blockRows, NewThingCategories, DecorateCategories};
}
constexpr Layout LineLayout(std::size_t blockRows)
{
    return {blockRows, NewLineCategories, 0};
}
constexpr Layout SectorLayout(std::size_t blockRows)
{
    return {blockRows, NewSectorCategories, 0};
}

enum class Slot : std::uint8_t
{
    Real,    // a row or heading of res/
    Free,    // padding
    Heading, // the heading of an empty category; `code` tells which
    End,
};

// Walks the rows a table is made of, in order. Rows before the first heading, and the Normal
// block, are not padded.
template <class Source, class Emit>
constexpr void Walk(std::span<const Source> source, const Layout& layout, Emit&& emit)
{
    std::size_t inBlock = 0;
    bool padded = false;
    const auto pad = [&](std::size_t blockRows)
    {
        for (; padded && inBlock < blockRows; ++inBlock)
        {
            emit(Slot::Free, nullptr, 0u);
        }
    };
    for (const Source& row : source)
    {
        if (row.Type >= FirstHeading)
        {
            pad(layout.BlockRows);
            padded = row.Type != NormalHeading;
            inBlock = 0;
        }
        else
        {
            ++inBlock;
        }
        emit(Slot::Real, &row, 0u);
    }
    pad(layout.BlockRows);
    const auto emptyCategories = [&](std::uint32_t base, std::size_t count, std::size_t blockRows)
    {
        for (std::size_t i = 1; i <= count; ++i)
        {
            emit(Slot::Heading, nullptr, base + static_cast<std::uint32_t>(i));
            padded = true;
            inBlock = 0;
            pad(blockRows);
        }
    };
    emptyCategories(NewCategoryBase, layout.NewCategories, layout.BlockRows);
    emptyCategories(DecorateCategoryBase, layout.DecorateCategories, DecorateBlockRows);
    emit(Slot::End, nullptr, 0u);
}

template <class Source>
constexpr std::size_t TableSize(std::span<const Source> source, Layout layout)
{
    std::size_t size = 0;
    Walk(source, layout, [&](Slot, const Source*, std::uint32_t) { ++size; });
    return size;
}

// "New things 7": the name of an empty category's heading.
template <std::size_t N>
constexpr FixedText<N> NumberedName(std::string_view prefix, std::uint32_t n)
{
    FixedText<N> text{};
    std::size_t at = 0;
    for (const char c : prefix)
    {
        text[at++] = c;
    }
    char digits[10]{};
    std::size_t count = 0;
    do
    {
        digits[count++] = static_cast<char>('0' + n % 10);
        n /= 10;
    } while (n != 0);
    while (count > 0)
    {
        text[at++] = digits[--count];
    }
    return text;
}

template <std::size_t N> constexpr FixedText<N> Fixed(std::string_view text)
{
    FixedText<N> field{};
    SetText(field, text);
    return field;
}

// The short name of a LineDef type: its name up to the argument list after '+', with runs of
// blanks made one, cut to 18 characters.
constexpr FixedText<19> ShortLineName(std::string_view name)
{
    FixedText<19> text{};
    std::size_t at = 0;
    bool blank = true; // drops leading blanks
    for (const char c : name.substr(0, name.find('+')))
    {
        if (at == 18)
        {
            break;
        }
        if (c == ' ')
        {
            if (!blank)
            {
                text[at++] = c;
            }
            blank = true;
            continue;
        }
        text[at++] = c;
        blank = false;
    }
    while (at > 0 && text[at - 1] == ' ')
    {
        text[--at] = '\0';
    }
    return text;
}

constexpr ThingTypeRow MakeFreeThing()
{
    ThingTypeRow row;
    row.Sprite = Fixed<9>("APLSA0");
    row.Name = Fixed<75>("xx BOOM spare");
    row.Color = 14;
    row.Radius = 16;
    row.Height = 10;
    row.Property = SpareProperty;
    return row;
}

constexpr LineTypeRow MakeFreeLine()
{
    LineTypeRow row;
    row.Name = Fixed<75>("xx -spare");
    row.ShortName = Fixed<19>("xx -spare");
    return row;
}

constexpr SectorTypeRow MakeFreeSector()
{
    SectorTypeRow row;
    row.Name = Fixed<75>("xx spare1");
    row.ShortName = Fixed<19>("xx spare1");
    row.Property = SpareProperty;
    return row;
}

template <std::size_t N>
constexpr std::array<ThingTypeRow, N> ExpandThings(std::span<const ThingSource> source,
                                                   Layout layout)
{
    std::array<ThingTypeRow, N> table{};
    std::size_t at = 0;
    std::uint32_t heading = 0;
    Walk(source, layout,
         [&](Slot slot, const ThingSource* from, std::uint32_t code)
         {
             ThingTypeRow& row = table[at++];
             if (slot == Slot::Free)
             {
                 row = MakeFreeThing();
             }
             else if (slot == Slot::Heading)
             {
                 row.Type = code;
                 row.Name = code > DecorateCategoryBase
                                ? NumberedName<75>("Decorate things ", code - DecorateCategoryBase)
                                : NumberedName<75>("New things ", code - NewCategoryBase);
             }
             else if (slot == Slot::End)
             {
                 row.Type = EndOfTable;
             }
             else if (from->Type >= FirstHeading)
             {
                 heading = from->Type;
                 row.Type = from->Type;
                 row.Name = Fixed<75>(from->Name);
             }
             else
             {
                 row.Type = from->Type;
                 row.Sprite = Fixed<9>(from->Sprite);
                 row.Name = Fixed<75>(from->Name);
                 row.Color = from->Color;
                 row.Radius = from->Radius;
                 row.Height = from->Height;
                 row.Property = from->Property == FromHeading ? heading : from->Property;
                 if (from->ShapeText != nullptr)
                 {
                     row.Shape = ShapeChar;
                     row.ShapeText = Fixed<9>(from->ShapeText);
                 }
             }
         });
    return table;
}

// LineDef and Sector tables share their layout; `Convert` makes a table row of a res/ row.
template <class Row, std::size_t N, class Source, class Convert>
constexpr std::array<Row, N> ExpandTypes(std::span<const Source> source, Layout layout,
                                         const Row& freeRow, std::string_view newPrefix,
                                         Convert convert)
{
    std::array<Row, N> table{};
    std::size_t at = 0;
    Walk(source, layout,
         [&](Slot slot, const Source* from, std::uint32_t code)
         {
             Row& row = table[at++];
             if (slot == Slot::Free)
             {
                 row = freeRow;
             }
             else if (slot == Slot::Heading)
             {
                 row.Type = code;
                 row.Name = NumberedName<75>(newPrefix, code - NewCategoryBase);
             }
             else if (slot == Slot::End)
             {
                 row.Type = EndOfTable;
             }
             else
             {
                 row = convert(*from);
             }
         });
    return table;
}

constexpr LineTypeRow FromLineSource(const LineSource& from)
{
    LineTypeRow row;
    row.Type = from.Type;
    row.Name = Fixed<75>(from.Name);
    if (from.Type < FirstHeading)
    {
        row.ShortName = ShortLineName(from.Name);
        row.Motion = from.Motion;
        row.Property = from.Property;
        row.TagType = from.TagType;
        row.Args = from.Args;
    }
    return row;
}

constexpr SectorTypeRow FromSectorSource(const SectorSource& from)
{
    SectorTypeRow row;
    row.Type = from.Type;
    row.Name = Fixed<75>(from.Name);
    row.ShortName = Fixed<19>(from.ShortName);
    return row;
}

template <std::size_t N, std::size_t M>
constexpr std::array<ThingTypeRow, N> Things(const ThingSource (&source)[M], std::size_t blockRows)
{
    return ExpandThings<N>(std::span<const ThingSource>(source), ThingLayout(blockRows));
}

template <std::size_t N, std::size_t M>
constexpr std::array<LineTypeRow, N> LineDefs(const LineSource (&source)[M], std::size_t blockRows)
{
    return ExpandTypes<LineTypeRow, N>(std::span<const LineSource>(source), LineLayout(blockRows),
                                       MakeFreeLine(), "New lines ", FromLineSource);
}

template <std::size_t N, std::size_t M>
constexpr std::array<SectorTypeRow, N> Sectors(const SectorSource (&source)[M],
                                               std::size_t blockRows)
{
    return ExpandTypes<SectorTypeRow, N>(std::span<const SectorSource>(source),
                                         SectorLayout(blockRows), MakeFreeSector(), "New sectors ",
                                         FromSectorSource);
}

template <std::size_t M>
constexpr std::size_t ThingCount(const ThingSource (&source)[M], std::size_t blockRows)
{
    return TableSize(std::span<const ThingSource>(source), ThingLayout(blockRows));
}

template <std::size_t M>
constexpr std::size_t LineCount(const LineSource (&source)[M], std::size_t blockRows)
{
    return TableSize(std::span<const LineSource>(source), LineLayout(blockRows));
}

template <std::size_t M>
constexpr std::size_t SectorCount(const SectorSource (&source)[M], std::size_t blockRows)
{
    return TableSize(std::span<const SectorSource>(source), SectorLayout(blockRows));
}

// Doom's blocks hold 35 rows, the other games' 34.
constexpr auto DoomThings =
    Things<ThingCount(DoomThingSource, DoomBlockRows)>(DoomThingSource, DoomBlockRows);
constexpr auto HereticThings =
    Things<ThingCount(HereticThingSource, OtherBlockRows)>(HereticThingSource, OtherBlockRows);
constexpr auto HexenThings =
    Things<ThingCount(HexenThingSource, OtherBlockRows)>(HexenThingSource, OtherBlockRows);
constexpr auto StrifeThings =
    Things<ThingCount(StrifeThingSource, OtherBlockRows)>(StrifeThingSource, OtherBlockRows);

constexpr auto DoomLineDefs =
    LineDefs<LineCount(DoomLineSource, DoomBlockRows)>(DoomLineSource, DoomBlockRows);
constexpr auto HereticLineDefs =
    LineDefs<LineCount(HereticLineSource, OtherBlockRows)>(HereticLineSource, OtherBlockRows);
constexpr auto HexenLineDefs =
    LineDefs<LineCount(HexenLineSource, OtherBlockRows)>(HexenLineSource, OtherBlockRows);
constexpr auto StrifeLineDefs =
    LineDefs<LineCount(StrifeLineSource, OtherBlockRows)>(StrifeLineSource, OtherBlockRows);

constexpr auto DoomSectors =
    Sectors<SectorCount(DoomSectorSource, DoomBlockRows)>(DoomSectorSource, DoomBlockRows);
constexpr auto HereticSectors =
    Sectors<SectorCount(HereticSectorSource, OtherBlockRows)>(HereticSectorSource, OtherBlockRows);
constexpr auto HexenSectors =
    Sectors<SectorCount(HexenSectorSource, OtherBlockRows)>(HexenSectorSource, OtherBlockRows);
constexpr auto StrifeSectors =
    Sectors<SectorCount(StrifeSectorSource, OtherBlockRows)>(StrifeSectorSource, OtherBlockRows);

template <std::size_t M>
constexpr std::array<CategoryMenuRow, M> Menu(const MenuSource (&source)[M])
{
    std::array<CategoryMenuRow, M> menu{};
    for (std::size_t i = 0; i < M; ++i)
    {
        menu[i].Category = source[i].Category;
        const std::string_view mnemonic = source[i].Mnemonic;
        std::copy_n(mnemonic.begin(), std::min(mnemonic.size(), menu[i].Mnemonic.size()),
                    menu[i].Mnemonic.begin());
        menu[i].Label = Fixed<81>(source[i].Label);
        menu[i].Command = source[i].Command;
    }
    return menu;
}

constexpr MenuSource DoomThingMenuSource[] = {
#include "res/DoomThingMenu.inc"
};
constexpr MenuSource ZdoomDoomThingMenuSource[] = {
#include "res/ZdoomDoomThingMenu.inc"
};
constexpr MenuSource HereticThingMenuSource[] = {
#include "res/HereticThingMenu.inc"
};
constexpr MenuSource ZdoomHereticThingMenuSource[] = {
#include "res/ZdoomHereticThingMenu.inc"
};
constexpr MenuSource HexenThingMenuSource[] = {
#include "res/HexenThingMenu.inc"
};
constexpr MenuSource StrifeThingMenuSource[] = {
#include "res/StrifeThingMenu.inc"
};
constexpr MenuSource ZdoomStrifeThingMenuSource[] = {
#include "res/ZdoomStrifeThingMenu.inc"
};
constexpr MenuSource DoomLineMenuSource[] = {
#include "res/DoomLineDefMenu.inc"
};
constexpr MenuSource HereticLineMenuSource[] = {
#include "res/HereticLineDefMenu.inc"
};
constexpr MenuSource HexenLineMenuSource[] = {
#include "res/HexenLineDefMenu.inc"
};
constexpr MenuSource StrifeLineMenuSource[] = {
#include "res/StrifeLineDefMenu.inc"
};
constexpr MenuSource DoomSectorMenuSource[] = {
#include "res/DoomSectorMenu.inc"
};
constexpr MenuSource HereticSectorMenuSource[] = {
#include "res/HereticSectorMenu.inc"
};
constexpr MenuSource HexenSectorMenuSource[] = {
#include "res/HexenSectorMenu.inc"
};
constexpr MenuSource StrifeSectorMenuSource[] = {
#include "res/StrifeSectorMenu.inc"
};

constexpr auto DoomThingMenu = Menu(DoomThingMenuSource);
constexpr auto ZdoomDoomThingMenu = Menu(ZdoomDoomThingMenuSource);
constexpr auto HereticThingMenu = Menu(HereticThingMenuSource);
constexpr auto ZdoomHereticThingMenu = Menu(ZdoomHereticThingMenuSource);
constexpr auto HexenThingMenu = Menu(HexenThingMenuSource);
constexpr auto StrifeThingMenu = Menu(StrifeThingMenuSource);
constexpr auto ZdoomStrifeThingMenu = Menu(ZdoomStrifeThingMenuSource);
constexpr auto DoomLineMenu = Menu(DoomLineMenuSource);
constexpr auto HereticLineMenu = Menu(HereticLineMenuSource);
constexpr auto HexenLineMenu = Menu(HexenLineMenuSource);
constexpr auto StrifeLineMenu = Menu(StrifeLineMenuSource);
constexpr auto DoomSectorMenu = Menu(DoomSectorMenuSource);
constexpr auto HereticSectorMenu = Menu(HereticSectorMenuSource);
constexpr auto HexenSectorMenu = Menu(HexenSectorMenuSource);
constexpr auto StrifeSectorMenu = Menu(StrifeSectorMenuSource);

constexpr ThingTypeRow MakeUnknownThing()
{
    ThingTypeRow row;
    row.Sprite = Fixed<9>("Unknown");
    row.Name = Fixed<75>("Unknown+1-2-3-4-5");
    row.Color = 4;
    row.Radius = 14;
    row.Shape = ShapeChar;
    row.ShapeText = Fixed<9>("?");
    return row;
}

constexpr LineTypeRow MakeUnknownLine()
{
    LineTypeRow row;
    row.Name = Fixed<75>("Unknown+1-2-3-4-5");
    row.ShortName = Fixed<19>("Unknown");
    return row;
}

constexpr SectorTypeRow MakeUnknownSector()
{
    SectorTypeRow row;
    row.Name = Fixed<75>("Unknown          ");
    row.ShortName = Fixed<19>("Unknown");
    return row;
}

} // namespace

const ThingTypeRow UnknownThingRow = MakeUnknownThing();
const LineTypeRow UnknownLineRow = MakeUnknownLine();
const SectorTypeRow UnknownSectorRow = MakeUnknownSector();

std::span<const ThingTypeRow> BuiltInThings(TableSet set)
{
    switch (set)
    {
    case TableSet::Heretic:
        return HereticThings;
    case TableSet::Hexen:
        return HexenThings;
    case TableSet::Strife:
        return StrifeThings;
    default:
        return DoomThings;
    }
}

std::span<const LineTypeRow> BuiltInLineDefs(TableSet set)
{
    switch (set)
    {
    case TableSet::Heretic:
        return HereticLineDefs;
    case TableSet::Hexen:
        return HexenLineDefs;
    case TableSet::Strife:
        return StrifeLineDefs;
    default:
        return DoomLineDefs;
    }
}

std::span<const SectorTypeRow> BuiltInSectors(TableSet set)
{
    switch (set)
    {
    case TableSet::Heretic:
        return HereticSectors;
    case TableSet::Hexen:
        return HexenSectors;
    case TableSet::Strife:
        return StrifeSectors;
    default:
        return DoomSectors;
    }
}

std::span<const CategoryMenuRow> BuiltInThingMenu(ThingMenuSet set)
{
    switch (set)
    {
    case ThingMenuSet::ZdoomDoom:
        return ZdoomDoomThingMenu;
    case ThingMenuSet::Heretic:
        return HereticThingMenu;
    case ThingMenuSet::ZdoomHeretic:
        return ZdoomHereticThingMenu;
    case ThingMenuSet::Hexen:
        return HexenThingMenu;
    case ThingMenuSet::Strife:
        return StrifeThingMenu;
    case ThingMenuSet::ZdoomStrife:
        return ZdoomStrifeThingMenu;
    default:
        return DoomThingMenu;
    }
}

std::span<const CategoryMenuRow> BuiltInLineDefMenu(TableSet set)
{
    switch (set)
    {
    case TableSet::Heretic:
        return HereticLineMenu;
    case TableSet::Hexen:
        return HexenLineMenu;
    case TableSet::Strife:
        return StrifeLineMenu;
    default:
        return DoomLineMenu;
    }
}

std::span<const CategoryMenuRow> BuiltInSectorMenu(TableSet set)
{
    switch (set)
    {
    case TableSet::Heretic:
        return HereticSectorMenu;
    case TableSet::Hexen:
        return HexenSectorMenu;
    case TableSet::Strife:
        return StrifeSectorMenu;
    default:
        return DoomSectorMenu;
    }
}

} // namespace kelvar::game
