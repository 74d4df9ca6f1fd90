// The level statistics: object counts and sizes, ranges, save game estimates and the Thing
// tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Statistics.h"

#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "map/GameCodes.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace kelvar::check
{
namespace
{

// Heading codes of the Thing tables' categories.
constexpr std::uint32_t HeadingStarts = 0xFFFF8002;
constexpr std::uint32_t HeadingEnemies = 0xFFFF8003;
constexpr std::uint32_t HeadingWeapons = 0xFFFF8004;
constexpr std::uint32_t HeadingAmmunition = 0xFFFF8005;
constexpr std::uint32_t HeadingKeys = 0xFFFF8006;
constexpr std::uint32_t HeadingPuzzle = 0xFFFF8007;
constexpr std::uint32_t HeadingEquipment = 0xFFFF8008; // Hexen's artifacts
constexpr std::uint32_t HeadingRebels = 0xFFFF8080;
constexpr std::uint32_t HeadingPeasants = 0xFFFF8081;
constexpr std::uint32_t HeadingBeggars = 0xFFFF8082;
constexpr std::uint32_t HeadingShopKeepers = 0xFFFF8083;
constexpr std::uint32_t HeadingQuestEquipment = 0xFFFF8085;

constexpr std::size_t MostColumns = 11;
using Counts = std::array<int, MostColumns>;

// The three forms of the flag tables, by the meaning of the Things' flag word.
enum class FlagForm
{
    Plain, // Doom, Heretic, Strife: easy, medium, hard, deaf, net
    Boom,  // and Boom's not-in-deathmatch and not-in-coop bits
    Hexen, // dormant, the three classes and the three modes
};

// What a column counts: the Things whose flags have `Mask` set, or clear when `Set` is false.
// A mask of 0 counts nothing: Boom's flags have no dormant bit.
struct Column
{
    std::uint16_t Mask;
    bool Set;
};

constexpr std::array<Column, 5> PlainColumns{
    {{1, true}, {2, true}, {4, true}, {8, true}, {0x10, true}}};
constexpr std::array<Column, 8> BoomColumns{{{1, true},
                                             {2, true},
                                             {4, true},
                                             {8, true},
                                             {0, true},
                                             {0x10, false},
                                             {0x40, false},
                                             {0x20, false}}};
constexpr std::array<Column, 11> HexenColumns{{{1, true},
                                               {2, true},
                                               {4, true},
                                               {8, true},
                                               {0x10, true},
                                               {0x20, true},
                                               {0x40, true},
                                               {0x80, true},
                                               {0x100, true},
                                               {0x200, true},
                                               {0x400, true}}};

struct Category
{
    const char* Name;
    std::vector<std::uint32_t> Headings;
};

bool HexenFormat(const map::LevelData& level)
{
    return map::FormatOfLayout(level.LevelLayout, game::Game().LevelFormat) == map::GameHexen;
}

FlagForm FormOf(const map::LevelData& level)
{
    if (HexenFormat(level))
    {
        return FlagForm::Hexen;
    }
    return game::Game().BoomTypes ? FlagForm::Boom : FlagForm::Plain;
}

void AddFlags(Counts& counts, std::uint16_t flags, FlagForm form)
{
    const auto add = [&](const auto& columns)
    {
        for (std::size_t i = 0; i < columns.size(); ++i)
        {
            const Column& column = columns[i];
            counts[i] += column.Mask != 0 && ((flags & column.Mask) != 0) == column.Set ? 1 : 0;
        }
    };
    switch (form)
    {
    case FlagForm::Plain:
        add(PlainColumns);
        break;
    case FlagForm::Boom:
        add(BoomColumns);
        break;
    case FlagForm::Hexen:
        add(HexenColumns);
        break;
    }
}

void AddCounts(Counts& to, const Counts& from)
{
    for (std::size_t i = 0; i < MostColumns; ++i)
    {
        to[i] += from[i];
    }
}

// The categories of the tables, in their order; the Thing tables follow the IWAD. The summary
// folds Strife's four kinds of people into one row.
std::vector<Category> Categories(bool summary)
{
    const int game = game::Game().IwadKind;
    std::vector<Category> categories{{"Enemies", {HeadingEnemies}}};
    if (game == map::GameStrife)
    {
        categories.push_back({"Equipment", {HeadingEquipment, HeadingQuestEquipment}});
    }
    else if (game != map::GameHexen)
    {
        categories.push_back({"Equipment", {HeadingEquipment}});
    }
    categories.push_back({"Weapons", {HeadingWeapons}});
    categories.push_back({"Ammunition", {HeadingAmmunition}});
    categories.push_back({"Keys", {HeadingKeys}});
    if (game == map::GameHexen)
    {
        categories.push_back({"Artifacts", {HeadingEquipment}});
        categories.push_back({"Puzzle", {HeadingPuzzle}});
    }
    if (game == map::GameStrife && summary)
    {
        categories.push_back(
            {"Rebels/etc", {HeadingRebels, HeadingBeggars, HeadingPeasants, HeadingShopKeepers}});
    }
    else if (game == map::GameStrife)
    {
        categories.push_back({"Rebels", {HeadingRebels}});
        categories.push_back({"Beggars", {HeadingBeggars}});
        categories.push_back({"Peasants", {HeadingPeasants}});
        categories.push_back({"ShopKeepers", {HeadingShopKeepers}});
    }
    categories.push_back({"Players/Teleports", {HeadingStarts}});
    return categories;
}

// The types of the Thing table in row order, each with its heading; a type listed twice
// belongs where it is first listed, as the lookups find it.
std::vector<std::pair<std::uint16_t, std::uint32_t>> TypesByHeading()
{
    std::vector<std::pair<std::uint16_t, std::uint32_t>> types;
    std::unordered_set<std::uint32_t> seen;
    std::uint32_t heading = 0;
    for (const game::ThingTypeRow& row : game::Game().Things)
    {
        if (row.Type == game::EndOfTable)
        {
            break;
        }
        if (row.Type >= game::FirstHeading)
        {
            heading = row.Type;
        }
        else if (row.Type != 0 && seen.insert(row.Type).second)
        {
            types.emplace_back(static_cast<std::uint16_t>(row.Type), heading);
        }
    }
    return types;
}

short Short(int count)
{
    return static_cast<short>(count);
}

int KiloBytes(std::int64_t count, int recordSize)
{
    return static_cast<int>((count * recordSize + 511) >> 10);
}

void AddObjectTable(std::vector<std::string>& lines, const map::LevelData& level,
                    const LevelLumpSizes& lumps)
{
    const bool hexen = HexenFormat(level);
    struct Row
    {
        const char* Name;
        std::int64_t Count;
        int RecordSize;
    };
    std::vector<Row> rows{{"Things", level.Things.Count(), hexen ? 20 : 10},
                          {"Vertices", level.Vertexes.Count(), 4},
                          {"LineDefs", level.LineDefs.Count(), hexen ? 16 : 14},
                          {"SideDefs", level.SideDefs.Count(), 30},
                          {"Sectors", level.Sectors.Count(), 26},
                          {"Segs", level.SegCount, 12},
                          {"SSectors", level.SSectorCount, 4},
                          {"Nodes", level.NodeCount, 28},
                          {"Reject", level.RejectSize, 1},
                          {"BlockMap", level.BlockmapSize, 1}};
    if (hexen)
    {
        rows.push_back({"Behavior", level.BehaviorSize, 1});
    }
    if (lumps.HasMapInfo)
    {
        rows.push_back({"MapInfo", lumps.MapInfoBytes, 1});
    }
    lines.emplace_back("Number of Object Statistics");
    lines.emplace_back(" Description      Number Size Kb");
    int total = 0;
    for (const Row& row : rows)
    {
        const int size = KiloBytes(row.Count, row.RecordSize);
        lines.push_back(
            platform::Format("%-16s %6d %6d", row.Name, static_cast<int>(row.Count), size));
        total += size;
    }
    lines.push_back(platform::Format("                  Total  %5d", total));
}

std::uint64_t NameKey(const map::TextureName& name)
{
    std::uint64_t key = 0;
    std::memcpy(&key, name.Chars.data(), sizeof key);
    return key;
}

void AddRanges(std::vector<std::string>& lines, const map::LevelData& level)
{
    const map::VertexBox box = map::VertexBounds(level);
    int lowest = 0;
    int highest = 0;
    std::unordered_set<std::uint64_t> flats;
    for (std::size_t i = 0; i < level.Sectors.size(); ++i)
    {
        const map::Sector& sector = level.Sectors[i];
        lowest = i == 0 ? sector.FloorHeight : std::min<int>(lowest, sector.FloorHeight);
        highest = i == 0 ? sector.CeilingHeight : std::max<int>(highest, sector.CeilingHeight);
        flats.insert(NameKey(sector.FloorTexture));
        flats.insert(NameKey(sector.CeilingTexture));
    }
    std::unordered_set<std::uint64_t> walls;
    for (const map::SideDef& side : level.SideDefs)
    {
        for (const map::TextureName* name :
             {&side.UpperTexture, &side.LowerTexture, &side.NormalTexture})
        {
            if (!name->IsNone())
            {
                walls.insert(NameKey(*name));
            }
        }
    }
    lines.push_back(platform::Format("X range          %6d %6d", box.MinX, box.MaxX));
    lines.push_back(platform::Format("Y range          %6d %6d", box.MinY, box.MaxY));
    lines.push_back(platform::Format("Z range          %6d %6d", lowest, highest));
    lines.push_back(platform::Format("#Floor&WallTxts  %6d %6d", static_cast<int>(flats.size()),
                                     static_cast<int>(walls.size())));
}

void AddSaveGameEstimates(std::vector<std::string>& lines, const map::LevelData& level)
{
    std::array<int, 3> skill{};
    for (const map::Thing& thing : level.Things)
    {
        skill[0] += (thing.Flags & 1) != 0 ? 1 : 0;
        skill[1] += (thing.Flags & 2) != 0 ? 1 : 0;
        skill[2] += (thing.Flags & 4) != 0 ? 1 : 0;
    }
    const int lineDefs = level.LineDefs.Count();
    lines.emplace_back("Save Game Estimates (< 180180)");
    lines.push_back(platform::Format("Easy    (%4hd)    %10d", Short(skill[0]),
                                     SaveGameEstimate(lineDefs, skill[0])));
    lines.push_back(platform::Format("Medium  (%4hd)    %10d", Short(skill[1]),
                                     SaveGameEstimate(lineDefs, skill[1])));
    lines.push_back(platform::Format("Hard    (%4hd)    %10d", Short(skill[2]),
                                     SaveGameEstimate(lineDefs, skill[2])));
}

std::string SummaryHeader(FlagForm form)
{
    switch (form)
    {
    case FlagForm::Boom:
        return "Description        Easy Medium Hard  Deaf Dormant Single Coop Death";
    case FlagForm::Hexen:
        return "Description        Easy Medium Hard  Deaf Dormant Fighter Cleric Mage Single Coop "
               "Death";
    default:
        return "Description          Easy Medium Hard  Deaf   Net";
    }
}

std::string SummaryRow(FlagForm form, const char* name, const Counts& c)
{
    switch (form)
    {
    case FlagForm::Boom:
        return platform::Format("%-19s %3hd%6hd%6hd%6hd%6hd%6hd%6hd%6hd", name, Short(c[0]),
                                Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]), Short(c[5]),
                                Short(c[6]), Short(c[7]));
    case FlagForm::Hexen:
        return platform::Format("%-19s %3hd%6hd%6hd%6hd%6hd%9hd%6hd%6hd%6hd%6hd%6hd", name,
                                Short(c[0]), Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]),
                                Short(c[5]), Short(c[6]), Short(c[7]), Short(c[8]), Short(c[9]),
                                Short(c[10]));
    default:
        return platform::Format("%-21s %3hd%6hd%6hd%6hd%6hd", name, Short(c[0]), Short(c[1]),
                                Short(c[2]), Short(c[3]), Short(c[4]));
    }
}

std::string DetailHeader(FlagForm form)
{
    switch (form)
    {
    case FlagForm::Boom:
        return "Description             Easy   Med  Hard  Deaf Dormant Single Coop Death";
    case FlagForm::Hexen:
        return "Description             Easy   Med  Hard  Deaf Dormant Fighter Cleric Mage Single "
               "Coop Death";
    default:
        return "Description             Easy   Med  Hard  Deaf   Net";
    }
}

std::string DetailRow(FlagForm form, std::string_view name, const Counts& c)
{
    const std::string text(name);
    switch (form)
    {
    case FlagForm::Boom:
        return platform::Format("%-22.22s %5hd%6hd%6hd%6hd%6hd%6hd%6hd%6hd", text.c_str(),
                                Short(c[0]), Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]),
                                Short(c[5]), Short(c[6]), Short(c[7]));
    case FlagForm::Hexen:
        return platform::Format("%-22.22s %5hd%6hd%6hd%6hd%6hd%9hd%6hd%6hd%6hd%6hd%6hd",
                                text.c_str(), Short(c[0]), Short(c[1]), Short(c[2]), Short(c[3]),
                                Short(c[4]), Short(c[5]), Short(c[6]), Short(c[7]), Short(c[8]),
                                Short(c[9]), Short(c[10]));
    default:
        return platform::Format("%-22.22s %5hd%6hd%6hd%6hd%6hd", text.c_str(), Short(c[0]),
                                Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]));
    }
}

// The totals line has the columns of the rows; the Boom and Hexen forms add theirs in the
// same widths.
std::string TotalsRow(FlagForm form, const Counts& c)
{
    switch (form)
    {
    case FlagForm::Boom:
        return platform::Format("Totals   %6hd%6hd%6hd%6hd%6hd%6hd%6hd%6hd", Short(c[0]),
                                Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]), Short(c[5]),
                                Short(c[6]), Short(c[7]));
    case FlagForm::Hexen:
        return platform::Format("Totals   %6hd%6hd%6hd%6hd%6hd%9hd%6hd%6hd%6hd%6hd%6hd",
                                Short(c[0]), Short(c[1]), Short(c[2]), Short(c[3]), Short(c[4]),
                                Short(c[5]), Short(c[6]), Short(c[7]), Short(c[8]), Short(c[9]),
                                Short(c[10]));
    default:
        return platform::Format("Totals   %6hd%6hd%6hd%6hd%6hd", Short(c[0]), Short(c[1]),
                                Short(c[2]), Short(c[3]), Short(c[4]));
    }
}

bool InCategory(const Category& category, std::uint32_t heading)
{
    return std::find(category.Headings.begin(), category.Headings.end(), heading) !=
           category.Headings.end();
}

// The Thing tables: the counts per flag of each type in the level, gathered per category.
void AddThingTables(std::vector<std::string>& lines, const map::LevelData& level)
{
    const FlagForm form = FormOf(level);
    std::unordered_map<std::uint16_t, Counts> byType;
    for (const map::Thing& thing : level.Things)
    {
        AddFlags(byType[thing.Type], thing.Flags, form);
    }
    const auto types = TypesByHeading();

    lines.emplace_back("Summary");
    lines.push_back(SummaryHeader(form));
    for (const Category& category : Categories(true))
    {
        Counts sum{};
        for (const auto& [type, heading] : types)
        {
            const auto found = byType.find(type);
            if (found != byType.end() && InCategory(category, heading))
            {
                AddCounts(sum, found->second);
            }
        }
        lines.push_back(SummaryRow(form, category.Name, sum));
    }

    for (const Category& category : Categories(false))
    {
        std::vector<std::string> rows;
        Counts totals{};
        for (const auto& [type, heading] : types)
        {
            const auto found = byType.find(type);
            if (found != byType.end() && InCategory(category, heading))
            {
                rows.push_back(DetailRow(form, game::ThingTypeName(type), found->second));
                AddCounts(totals, found->second);
            }
        }
        if (rows.empty())
        {
            continue;
        }
        lines.emplace_back();
        lines.emplace_back(category.Name);
        lines.push_back(DetailHeader(form));
        lines.insert(lines.end(), rows.begin(), rows.end());
        lines.push_back(TotalsRow(form, totals));
    }
}

} // namespace

int SaveGameEstimate(int lineDefs, int thingsOfSkill)
{
    return 337 + 12 * lineDefs + 156 * thingsOfSkill;
}

std::vector<std::string> StatisticsLines(const map::LevelData& level, const LevelLumpSizes& lumps)
{
    std::vector<std::string> lines;
    AddObjectTable(lines, level, lumps);
    lines.emplace_back();
    AddRanges(lines, level);
    lines.emplace_back();
    AddSaveGameEstimates(lines, level);
    lines.emplace_back();
    AddThingTables(lines, level);
    return lines;
}

} // namespace kelvar::check
