// The invariants of the built-in type tables and their category menus.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeTables.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace kelvar::game
{
namespace
{

constexpr TableSet AllSets[] = {TableSet::Doom, TableSet::Heretic, TableSet::Hexen,
                                TableSet::Strife};

const char* SetName(TableSet set)
{
    constexpr const char* Names[] = {"Doom", "Heretic", "Hexen", "Strife"};
    return Names[static_cast<int>(set)];
}

std::size_t BlockRows(TableSet set)
{
    return set == TableSet::Doom ? DoomBlockRows : OtherBlockRows;
}

// One block of a table: its heading, its real rows and the free rows after them.
struct Block
{
    std::uint32_t Heading = 0;
    std::size_t Real = 0;
    std::size_t Free = 0;
    bool FreeBeforeReal = false;
};

template <class Row> std::vector<Block> Blocks(std::span<const Row> rows)
{
    std::vector<Block> blocks(1); // rows before the first heading
    for (const Row& row : rows.first(rows.size() - 1))
    {
        if (row.Type >= FirstHeading)
        {
            blocks.push_back({row.Type});
        }
        else if (row.Name[0] == 'x')
        {
            ++blocks.back().Free;
        }
        else
        {
            blocks.back().FreeBeforeReal |= blocks.back().Free != 0;
            ++blocks.back().Real;
        }
    }
    return blocks;
}

// Every block holds its block's count of rows, real ones first; a block whose real rows fill it
// has no free rows, nor has the Normal block. Then the empty categories an OPT file opens.
template <class Row>
void ExpectLayout(std::span<const Row> rows, std::size_t blockRows, std::size_t newCategories,
                  std::size_t decorateCategories, const std::string& table)
{
    SCOPED_TRACE(table);
    ASSERT_FALSE(rows.empty());
    EXPECT_EQ(rows.back().Type, EndOfTable);
    std::vector<Block> blocks = Blocks(rows);
    EXPECT_EQ(blocks.front().Free, 0u);
    blocks.erase(blocks.begin());
    const std::size_t builtIn = blocks.size() - newCategories - decorateCategories;
    for (std::size_t i = 0; i < blocks.size(); ++i)
    {
        const Block& block = blocks[i];
        SCOPED_TRACE(testing::Message() << "block " << std::hex << block.Heading);
        EXPECT_FALSE(block.FreeBeforeReal);
        if (i < builtIn)
        {
            EXPECT_GE(block.Heading, NormalHeading);
            const std::size_t size =
                block.Heading == NormalHeading ? block.Real : std::max(blockRows, block.Real);
            EXPECT_EQ(block.Real + block.Free, size);
        }
        else if (i < builtIn + newCategories)
        {
            EXPECT_EQ(block.Heading, NewCategoryBase + (i - builtIn + 1));
            EXPECT_EQ(block.Real, 0u);
            EXPECT_EQ(block.Free, blockRows);
        }
        else
        {
            EXPECT_EQ(block.Heading, DecorateCategoryBase + (i - builtIn - newCategories + 1));
            EXPECT_EQ(block.Free, DecorateBlockRows);
        }
    }
}

template <class Row> std::size_t RealRows(std::span<const Row> rows)
{
    std::size_t count = 0;
    for (const Row& row : rows)
    {
        count += row.Type < FirstHeading && row.Name[0] != 'x';
    }
    return count;
}

TEST(TypeTables, BlocksArePaddedToTheirSizeAndEndTheTable)
{
    for (const TableSet set : AllSets)
    {
        const std::string name = SetName(set);
        ExpectLayout(BuiltInThings(set), BlockRows(set), NewThingCategories, DecorateCategories,
                     name + " Things");
        ExpectLayout(BuiltInLineDefs(set), BlockRows(set), NewLineCategories, 0,
                     name + " LineDefs");
        ExpectLayout(BuiltInSectors(set), BlockRows(set), NewSectorCategories, 0,
                     name + " Sectors");
    }
}

TEST(TypeTables, EachGameHoldsItsRowCountAndFullBlocksHaveNoSpareRows)
{
    // Real rows by game: Things, LineDefs (with the Normal row), Sectors (with Normal).
    const std::map<TableSet, std::array<std::size_t, 3>> counts = {
        {TableSet::Doom, {123, 140, 16}},
        {TableSet::Heretic, {96, 108, 48}},
        {TableSet::Hexen, {251, 97, 34}},
        {TableSet::Strife, {263, 237, 18}},
    };
    for (const auto& [set, expected] : counts)
    {
        SCOPED_TRACE(SetName(set));
        EXPECT_EQ(RealRows(BuiltInThings(set)), expected[0]);
        EXPECT_EQ(RealRows(BuiltInLineDefs(set)), expected[1]);
        EXPECT_EQ(RealRows(BuiltInSectors(set)), expected[2]);
    }
    // The Doom table with its spare rows: 10 blocks, 23 new and 8 DECORATE categories.
    EXPECT_EQ(BuiltInThings(TableSet::Doom).size(), 10u * 36 + 23 * 36 + 8 * 33 + 1);
    // Strife's key doors and specials outgrow a block: those blocks have no free rows.
    const std::vector<Block> strife = Blocks(BuiltInLineDefs(TableSet::Strife));
    const auto block = [&](std::uint32_t heading)
    {
        return *std::find_if(strife.begin(), strife.end(),
                             [&](const Block& b) { return b.Heading == heading; });
    };
    EXPECT_EQ(block(0xFFFF8001).Real, 36u); // Doors/Key
    EXPECT_EQ(block(0xFFFF8001).Free, 0u);
    EXPECT_EQ(block(0xFFFF800D).Real, 40u); // TelePort/End/Special
    EXPECT_EQ(block(0xFFFF800D).Free, 0u);
}

// The numbers each table holds more than once: Hexen's key doors (one row per key) and the
// Strife LineDef types that the game lists under two headings.
template <class Row> std::set<std::uint32_t> RepeatedTypes(std::span<const Row> rows)
{
    std::set<std::uint32_t> seen;
    std::set<std::uint32_t> repeated;
    for (const Row& row : rows)
    {
        if (row.Type < FirstHeading && row.Name[0] != 'x' && !seen.insert(row.Type).second)
        {
            repeated.insert(row.Type);
        }
    }
    return repeated;
}

TEST(TypeTables, TypeNumbersAreUniqueSaveForTheKnownRepeats)
{
    for (const TableSet set : AllSets)
    {
        SCOPED_TRACE(SetName(set));
        EXPECT_EQ(RepeatedTypes(BuiltInThings(set)), std::set<std::uint32_t>{});
        EXPECT_EQ(RepeatedTypes(BuiltInSectors(set)), std::set<std::uint32_t>{});
    }
    EXPECT_EQ(RepeatedTypes(BuiltInLineDefs(TableSet::Doom)), std::set<std::uint32_t>{});
    EXPECT_EQ(RepeatedTypes(BuiltInLineDefs(TableSet::Heretic)), std::set<std::uint32_t>{});
    EXPECT_EQ(RepeatedTypes(BuiltInLineDefs(TableSet::Hexen)), std::set<std::uint32_t>{13});
    EXPECT_EQ(RepeatedTypes(BuiltInLineDefs(TableSet::Strife)),
              (std::set<std::uint32_t>{37, 62, 112, 165, 182}));

    std::set<int> keys;
    for (const LineTypeRow& row : BuiltInLineDefs(TableSet::Hexen))
    {
        if (row.Type == 13)
        {
            EXPECT_TRUE(keys.insert(row.Args[3]).second) << "key " << int{row.Args[3]};
        }
    }
    EXPECT_EQ(keys.size(), 11u);
}

TEST(TypeTables, RowsCarryUsableValues)
{
    for (const TableSet set : AllSets)
    {
        SCOPED_TRACE(SetName(set));
        for (const ThingTypeRow& row : BuiltInThings(set))
        {
            if (row.Type >= FirstHeading || row.Name[0] == 'x')
            {
                continue;
            }
            SCOPED_TRACE(row.Type);
            EXPECT_FALSE(Text(row.Sprite).empty());
            EXPECT_LE(row.Color, 29);
            EXPECT_EQ(row.Shape == ShapeChar, !Text(row.ShapeText).empty());
            EXPECT_NE(row.Property, SpareProperty);
        }
        for (const LineTypeRow& row : BuiltInLineDefs(set))
        {
            if (row.Type < FirstHeading && row.Name[0] != 'x')
            {
                EXPECT_FALSE(Text(row.ShortName).empty()) << row.Type;
                EXPECT_EQ(Text(row.ShortName).find("  "), std::string_view::npos);
            }
        }
    }
    // The property of an ordinary item is its heading's code; starts and keys have their own.
    const auto doom = BuiltInThings(TableSet::Doom);
    const auto row = [&](std::uint32_t type)
    { return *std::find_if(doom.begin(), doom.end(), [&](auto& r) { return r.Type == type; }); };
    EXPECT_EQ(row(2013).Property, 0xFFFF8008u);
    EXPECT_EQ(row(1).Property, 0x1001u);
    EXPECT_EQ(Text(row(1).ShapeText), "Play1");
    EXPECT_EQ(row(38).Property, 0x2005u);
    EXPECT_EQ(Text(row(7).Sprite), "SPIDA1D1");
}

// Each category of a menu opens a heading of the tables it goes with, each built-in heading is
// offered by the menu, and no two entries share a mnemonic.
void ExpectMenuFits(std::span<const CategoryMenuRow> menu, const std::set<std::uint32_t>& headings,
                    const std::string& name)
{
    SCOPED_TRACE(name);
    ASSERT_FALSE(menu.empty());
    EXPECT_EQ(menu.back().Category, 0u);
    std::set<std::uint32_t> offered;
    std::set<std::string> mnemonics;
    for (const CategoryMenuRow& row : menu.first(menu.size() - 1))
    {
        if (row.Category == SeparatorType)
        {
            continue;
        }
        const std::string mnemonic(row.Mnemonic.data(), row.Mnemonic.size());
        EXPECT_TRUE(mnemonics.insert(mnemonic).second) << mnemonic;
        EXPECT_EQ(mnemonic.substr(2), "   ");
        if (row.Category == DirectEntry)
        {
            EXPECT_NE(row.Command, 0u) << Text(row.Label);
            continue;
        }
        EXPECT_EQ(row.Command, 0u);
        EXPECT_TRUE(headings.contains(row.Category)) << std::hex << row.Category;
        offered.insert(row.Category);
    }
    for (const std::uint32_t heading : headings)
    {
        EXPECT_TRUE(heading <= NormalHeading || offered.contains(heading))
            << "unreachable " << std::hex << heading;
    }
}

template <class Row> std::set<std::uint32_t> Headings(std::span<const Row> rows)
{
    std::set<std::uint32_t> headings;
    for (const Row& row : rows)
    {
        if (row.Type >= FirstHeading && row.Type != EndOfTable)
        {
            headings.insert(row.Type);
        }
    }
    return headings;
}

TEST(TypeTables, MenusOpenTheHeadingsOfTheirTables)
{
    const std::pair<ThingMenuSet, TableSet> thingMenus[] = {
        {ThingMenuSet::Doom, TableSet::Doom},
        {ThingMenuSet::ZdoomDoom, TableSet::Doom},
        {ThingMenuSet::Heretic, TableSet::Heretic},
        {ThingMenuSet::ZdoomHeretic, TableSet::Heretic},
        {ThingMenuSet::Hexen, TableSet::Hexen},
        {ThingMenuSet::Strife, TableSet::Strife},
        {ThingMenuSet::ZdoomStrife, TableSet::Strife},
    };
    for (const auto& [menu, table] : thingMenus)
    {
        ExpectMenuFits(BuiltInThingMenu(menu), Headings(BuiltInThings(table)),
                       std::string("Things of ") + SetName(table));
    }
    for (const TableSet set : AllSets)
    {
        ExpectMenuFits(BuiltInLineDefMenu(set), Headings(BuiltInLineDefs(set)),
                       std::string("LineDefs of ") + SetName(set));
        ExpectMenuFits(BuiltInSectorMenu(set), Headings(BuiltInSectors(set)),
                       std::string("Sectors of ") + SetName(set));
    }
}

} // namespace
} // namespace kelvar::game
