// Boom's generalized LineDef types and the Sector flag bits.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/Generalized.h"

#include "game/GameState.h"

#include <algorithm>

namespace kelvar::game
{
namespace
{

// What a special moves, as the tables' Motion field says it.
constexpr std::uint16_t MotionRaiseDoor = 0x4001;
constexpr std::uint16_t MotionRaiseFloor = 0x8001;
constexpr std::uint16_t MotionLowerFloor = 0x8002;
constexpr std::uint16_t MotionRaiseCeil = 0x2001;
constexpr std::uint16_t MotionLowerCeil = 0x2002;
constexpr std::uint16_t MotionRaiseStair = 0x1001;
constexpr std::uint16_t MotionRaiseLower = 3;

// The keys of a locked door, in the order of its key field.
constexpr std::array<std::uint32_t, 8> LockedKeyProperties = {
    0x200C, // ANYKey
    0x2001, // RedKey
    0x2002, // BlueKey
    0x2003, // YellowKey
    0x2005, // RedSkull
    0x2006, // BlueSkull
    0x2007, // YellowSkull
    0x200B, // ALLKeys
};

const GeneralizedField Trigger{"Trigger", 0, 3, {"W1", "WR", "S1", "SR", "G1", "GR", "D1", "DR"}};
const GeneralizedField Speed{"Speed", 3, 2, {"Slow", "Norm", "Fast", "Turb"}};
const GeneralizedField Monsters5{"Monsters", 5, 1, {"Nomonst", "Monst"}};

std::vector<GeneralizedField> MovingPlane(std::vector<const char*> targets)
{
    return {Trigger,
            Speed,
            {"Model", 5, 1, {"no", "mon"}},
            {"Direction", 6, 1, {"dn", "up"}},
            {"Target", 7, 3, std::move(targets)},
            {"Change", 10, 2, {"noc", "zro", "txt", "typ"}},
            {"Crush", 12, 1, {"", "crush"}}};
}

std::uint16_t FieldValue(std::uint16_t type, const GeneralizedField& field)
{
    return static_cast<std::uint16_t>((type >> field.FirstBit) & ((1 << field.Bits) - 1));
}

// The most fields a category has.
constexpr std::size_t MostFields = 8;
using FieldValues = std::array<int, MostFields>;

// What a type moves, for the checks that look ahead at moving Sectors.
std::uint16_t MotionOf(GeneralizedCategory category, const FieldValues& values)
{
    constexpr std::size_t Direction = 3; // the direction field of floors and ceilings
    switch (category)
    {
    case GeneralizedCategory::Floor:
        return values[Direction] != 0 ? MotionRaiseFloor : MotionLowerFloor;
    case GeneralizedCategory::Ceiling:
        return values[Direction] != 0 ? MotionRaiseCeil : MotionLowerCeil;
    case GeneralizedCategory::Door:
    case GeneralizedCategory::Locked:
        return MotionRaiseDoor;
    case GeneralizedCategory::Lift:
        return MotionRaiseLower;
    case GeneralizedCategory::Stair:
        return MotionRaiseStair;
    case GeneralizedCategory::Crusher:
        return MotionLowerCeil;
    }
    return 0;
}

} // namespace

const std::array<GeneralizedCategoryRow, 7>& GeneralizedCategories()
{
    static const std::array<GeneralizedCategoryRow, 7> rows = {{
        {24576, GeneralizedCategory::Floor, "Floor", "EditLineFloorBOOM", "BOOM Floors"},
        {16384, GeneralizedCategory::Ceiling, "Ceiling", "EditLineCeilingBOOM", "BOOM Ceilings"},
        {15360, GeneralizedCategory::Door, "Door", "EditLineDoorBOOM", "BOOM Doors"},
        {14336, GeneralizedCategory::Locked, "Locked", "EditLineLockedDoorBOOM",
         "BOOM Locked Doors"},
        {13312, GeneralizedCategory::Lift, "Lift", "EditLineLiftBOOM", "BOOM Lifts"},
        {12288, GeneralizedCategory::Stair, "Stair", "EditLineStairBOOM", "BOOM Stairs"},
        {12160, GeneralizedCategory::Crusher, "Crusher", "EditLineCrusherBOOM", "BOOM Crushers"},
    }};
    return rows;
}

const GeneralizedCategoryRow& CategoryRow(GeneralizedCategory category)
{
    // The categories stand in the table in the order of their enumeration.
    return GeneralizedCategories()[static_cast<std::size_t>(category)];
}

std::optional<GeneralizedCategory> CategoryOfType(std::uint16_t type)
{
    if (type > 32767)
    {
        return std::nullopt;
    }
    for (const GeneralizedCategoryRow& row : GeneralizedCategories())
    {
        if (type >= row.Base)
        {
            return row.Category;
        }
    }
    return std::nullopt;
}

const std::vector<GeneralizedField>& FieldsOf(GeneralizedCategory category)
{
    static const std::array<std::vector<GeneralizedField>, 7> fields = {{
        MovingPlane({"HnF", "LnF", "NnF", "LnC", "C", "sT", "24", "32"}),
        MovingPlane({"HnC", "LnC", "NnC", "HnF", "F", "sT", "24", "32"}),
        {Trigger,
         Speed,
         {"Kind", 5, 2, {"o-c", "o", "c-o", "c"}},
         {"Monsters", 7, 1, {"Nomonst", "Monst"}},
         {"Delay", 8, 2, {"1", "4", "9", "30"}}},
        {Trigger,
         Speed,
         {"Kind", 5, 1, {"o-c", "o"}},
         {"Key", 6, 3, {"Any", "Rk", "Bk", "Yk", "Rs", "Bs", "Ys", "all"}},
         {"Keys", 9, 1, {"3k", "6k"}}},
        {Trigger,
         Speed,
         Monsters5,
         {"Delay", 6, 2, {"1", "3", "5", "10"}},
         {"Target", 8, 2, {"LnF", "NnF", "LnC", "LnF-HnF"}}},
        {Trigger,
         Speed,
         Monsters5,
         {"Step", 6, 2, {"4", "8", "16", "24"}},
         {"Direction", 8, 1, {"dn", "up"}},
         {"Texture", 9, 1, {"", "Igntxt"}}},
        {Trigger, Speed, Monsters5, {"Sound", 6, 1, {"", "Silent"}}},
    }};
    return fields[static_cast<std::size_t>(category)];
}

std::vector<int> DecodeFieldValues(std::uint16_t type)
{
    const std::optional<GeneralizedCategory> category = CategoryOfType(type);
    std::vector<int> values;
    if (!category)
    {
        return values;
    }
    for (const GeneralizedField& field : FieldsOf(*category))
    {
        values.push_back(FieldValue(type, field));
    }
    return values;
}

std::uint16_t ComposeLineType(GeneralizedCategory category, const std::vector<int>& values)
{
    int type = CategoryRow(category).Base;
    const std::vector<GeneralizedField>& fields = FieldsOf(category);
    for (std::size_t i = 0; i < fields.size() && i < values.size(); ++i)
    {
        type += (values[i] & ((1 << fields[i].Bits) - 1)) << fields[i].FirstBit;
    }
    return static_cast<std::uint16_t>(type);
}

namespace
{

// The field values of a type of `category`, in the order of FieldsOf.
FieldValues ValuesOf(std::uint16_t type, const std::vector<GeneralizedField>& fields)
{
    FieldValues values{};
    for (std::size_t i = 0; i < fields.size() && i < MostFields; ++i)
    {
        values[i] = FieldValue(type, fields[i]);
    }
    return values;
}

// The name written into `out`, cut at its size: the decoder fills every number of the range
// into a fixed row, so it builds the text in place instead of in a string.
template <std::size_t N>
std::size_t WriteName(GeneralizedCategory category, const std::vector<GeneralizedField>& fields,
                      const FieldValues& values, std::array<char, N>& out)
{
    std::size_t length = 0;
    const auto append = [&](std::string_view text)
    {
        const std::size_t room = N - 1 - length;
        const std::size_t count = std::min(room, text.size());
        std::copy_n(text.begin(), count, out.begin() + static_cast<std::ptrdiff_t>(length));
        length += count;
    };
    const auto text = [&](std::size_t i)
    { return std::string_view(fields[i].Texts[static_cast<std::size_t>(values[i])]); };
    append(text(0));
    append("  ");
    append(CategoryRow(category).Word);
    append(" ");
    append(text(1));
    append(" ");
    for (std::size_t i = 2; i < fields.size() && i < MostFields; ++i)
    {
        append(text(i));
        append(" ");
    }
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(length), out.end(), '\0');
    return length;
}

} // namespace

std::string GeneralizedLineName(std::uint16_t type)
{
    const std::optional<GeneralizedCategory> category = CategoryOfType(type);
    if (!category)
    {
        return {};
    }
    const std::vector<GeneralizedField>& fields = FieldsOf(*category);
    std::array<char, 128> name{};
    const std::size_t length = WriteName(*category, fields, ValuesOf(type, fields), name);
    return std::string(name.data(), length);
}

const LineTypeRow& DecodeGeneralizedLine(std::uint16_t type)
{
    static LineTypeRow row;
    row = LineTypeRow{};
    row.Type = type;
    const std::optional<GeneralizedCategory> category = CategoryOfType(type);
    if (!category)
    {
        return row;
    }
    const std::vector<GeneralizedField>& fields = FieldsOf(*category);
    const FieldValues values = ValuesOf(type, fields);
    (void)WriteName(*category, fields, values, row.Name);
    SetText(row.ShortName,
            std::string_view(row.Name.data(), std::min<std::size_t>(16, Text(row.Name).size())));
    row.TagType = row.Name[0] == 'D' ? TagOption : TagSector;
    if (*category == GeneralizedCategory::Locked)
    {
        constexpr std::size_t Key = 3; // the key field
        row.Property = LockedKeyProperties[static_cast<std::size_t>(values[Key])];
    }
    row.Motion = MotionOf(*category, values);
    return row;
}

std::optional<SectorFlagBits> CurrentSectorFlags()
{
    const GameState& game = Game();
    if (game.LevelFormat < map::GameHexen && game.BoomTypes)
    {
        return SectorFlagBits{0x3E0, 0x60, 5, 0x80, 0x100, 0x200};
    }
    if (game.ZdoomTypes)
    {
        return SectorFlagBits{0x1F00, 0x300, 8, 0x400, 0x800, 0x1000};
    }
    return std::nullopt;
}

bool SectorFlagTest(std::uint16_t sectorType, std::uint16_t bit)
{
    const std::optional<SectorFlagBits> flags = CurrentSectorFlags();
    return flags && (sectorType & flags->Mask & bit) != 0;
}

std::optional<std::uint16_t> WithSectorFlags(std::uint16_t sectorType, std::uint16_t flags)
{
    const std::optional<SectorFlagBits> bits = CurrentSectorFlags();
    if (!bits)
    {
        return std::nullopt;
    }
    if (!Game().ZdoomTypes)
    {
        if (std::find(BoomLightTypes.begin(), BoomLightTypes.end(), sectorType & 0x1F) ==
            BoomLightTypes.end())
        {
            return std::nullopt;
        }
    }
    return static_cast<std::uint16_t>((sectorType & ~bits->Mask) | (flags & bits->Mask));
}

} // namespace kelvar::game
