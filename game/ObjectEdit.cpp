// The editing rules of the object editors: changes applied per object, only where they differ.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/ObjectEdit.h"

#include "game/Generalized.h"
#include "map/ObjectStore.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>

namespace kelvar::game
{
namespace
{

constexpr std::int32_t ObjectCount(const map::LevelData& level, int kind)
{
    switch (kind)
    {
    case map::KindThing:
        return level.Things.Count();
    case map::KindLineDef:
        return level.LineDefs.Count();
    case map::KindSector:
        return level.Sectors.Count();
    default:
        return 0;
    }
}

std::int16_t Clamp16(int value)
{
    return static_cast<std::int16_t>(std::clamp(value,
                                                int{std::numeric_limits<std::int16_t>::min()},
                                                int{std::numeric_limits<std::int16_t>::max()}));
}

std::uint16_t ClampU16(int value)
{
    return static_cast<std::uint16_t>(std::clamp(value, 0, 0xFFFF));
}

// A SideDef's texture at `part`, writable when the SideDef is.
template <class Side> auto& PartOf(Side& side, SidePart part)
{
    switch (part)
    {
    case SidePart::Upper:
        return side.UpperTexture;
    case SidePart::Lower:
        return side.LowerTexture;
    case SidePart::Normal:
        break;
    }
    return side.NormalTexture;
}

void SetSectorValue(map::Sector& sector, SectorField field, int value)
{
    switch (field)
    {
    case SectorField::Floor:
        sector.FloorHeight = Clamp16(value);
        break;
    case SectorField::Ceiling:
        sector.CeilingHeight = Clamp16(value);
        break;
    case SectorField::Light:
        sector.Light = Clamp16(value);
        break;
    case SectorField::Type:
        sector.Type = ClampU16(value);
        break;
    case SectorField::Tag:
        sector.Tag = ClampU16(value);
        break;
    }
}

} // namespace

const map::TextureName& SideTexture(const map::SideDef& side, SidePart part)
{
    return PartOf(side, part);
}

int SectorFieldValue(const map::Sector& sector, SectorField field)
{
    switch (field)
    {
    case SectorField::Floor:
        return sector.FloorHeight;
    case SectorField::Ceiling:
        return sector.CeilingHeight;
    case SectorField::Light:
        return sector.Light;
    case SectorField::Type:
        return sector.Type;
    case SectorField::Tag:
        break;
    }
    return sector.Tag;
}

int ThingFieldValue(const map::Thing& thing, ThingField field)
{
    switch (field)
    {
    case ThingField::Type:
        return thing.Type;
    case ThingField::Angle:
        return thing.Angle;
    case ThingField::X:
        return thing.X;
    case ThingField::Y:
        return thing.Y;
    case ThingField::Z:
        return thing.Z;
    case ThingField::Tid:
        return thing.Tid;
    case ThingField::Special:
        break;
    }
    return thing.Special;
}

// --- Flag rows ---------------------------------------------------------------------------

std::vector<FlagRow> LineDefFlagRows(bool hexenFormat, bool zdoom)
{
    std::vector<FlagRow> rows{
        {LineImpassable, "Impassible", "I"},
        {LineMonsterBlock, "MonsterBlock", "M"},
        {LineTwoSided, "Two-Sided", "2"},
        {LineUpperUnpegged, "UpperUnpeg", "U"},
        {LineLowerUnpegged, "LowerUnpeg", "L"},
        {LineSecret, "Secret", "S"},
        {LineRepeat, "Repeat (Hexen)\nThruLine (Boom)", "R-"},
        {LineBlockSound, "BlockSound", "B"},
        {LineInvisible, "Invisible", "V"},
        {LineAutomapped, "AutoMapped", "A"},
    };
    if (hexenFormat && zdoom)
    {
        rows.push_back({LineMonsterActivate, "Monster+Player", ""});
        rows.push_back({LineBlockAll, "Block ALL", ""});
    }
    return rows;
}

std::vector<std::string> ActivationTexts(bool zdoom)
{
    std::vector<std::string> texts{"Player Crosses Line",  "Player Uses Line w/u Key",
                                   "Monster Crosses Line", "Projectile Impacts Wall",
                                   "Player Pushes Wall",   "Projectile Crosses Line"};
    if (zdoom)
    {
        // ZDoom's activation 6: a use that passes through to the lines behind.
        texts.emplace_back("Player PassThru (ZDOOM)");
    }
    return texts;
}

std::vector<FlagRow> ThingFlagRows(bool hexenFormat, bool zdoom)
{
    std::vector<FlagRow> rows{{1, "Easy", "E-"}, {2, "Medium", "M-"}, {4, "Hard", "H-"}};
    if (!hexenFormat)
    {
        rows.insert(rows.end(), {{8, "Deaf", "Deaf "},
                                 {0x10, "MultiPlayer", "Net "},
                                 {0x20, "Not DM", "nDM"},
                                 {0x40, "Not Coop", "nCO"}});
        return rows;
    }
    rows.insert(rows.end(), {{8, "Deaf", "Df-"},
                             {0x10, "Dormant", "Do-"},
                             {0x20, "Fighter", "f"},
                             {0x40, "Cleric", "c"},
                             {0x80, "Mage", "m"},
                             {0x100, "Single Player", "S"},
                             {0x200, "Cooperative", "C"},
                             {0x400, "Death Match", "D"}});
    if (zdoom)
    {
        rows.insert(rows.end(), {{0x800, "Translucent", ""},
                                 {0x1000, "Invisible", ""},
                                 {0x2000, "Friendly", ""},
                                 {0x4000, "StandsStill-Inactive", ""}});
    }
    return rows;
}

std::string ThingFlagText(std::uint16_t flags, bool hexenFormat)
{
    std::string text;
    for (const FlagRow& row : ThingFlagRows(hexenFormat, false))
    {
        if ((flags & row.Bit) != 0)
        {
            text += row.Short;
        }
    }
    return text;
}

// --- The editor ------------------------------------------------------------------------------

ObjectEditor::ObjectEditor(map::LevelData& level, int kind, std::vector<std::int32_t> objects,
                           std::function<void()> beforeFirstChange)
    : Data(level), ObjectKind(kind), BeforeFirst(std::move(beforeFirstChange))
{
    const std::int32_t count = ObjectCount(level, kind);
    std::vector<bool> seen(static_cast<std::size_t>(count), false);
    List.reserve(objects.size());
    for (const std::int32_t object : objects)
    {
        if (object >= 0 && object < count && !seen[static_cast<std::size_t>(object)])
        {
            seen[static_cast<std::size_t>(object)] = true;
            List.push_back(object);
        }
    }
}

std::string ObjectEditor::Title() const
{
    const auto count = List.size();
    switch (ObjectKind)
    {
    case map::KindLineDef:
        return count == 1 ? "Editing 1 LineDef" : "Editing " + std::to_string(count) + " LineDefs";
    case map::KindSector:
        return count == 1 ? "Editing Sector" : "Editing " + std::to_string(count) + " Sectors";
    case map::KindThing:
        return count == 1 ? "Editing 1 Thing" : "Editing " + std::to_string(count) + " Things";
    default:
        return {};
    }
}

void ObjectEditor::SetHeadOnly(bool on)
{
    HeadList.clear();
    if (on && !List.empty())
    {
        HeadList.push_back(List.front());
    }
    HeadOnly = on;
}

const std::vector<std::int32_t>& ObjectEditor::Targets() const
{
    return HeadOnly ? HeadList : List;
}

void ObjectEditor::Written1(int kind)
{
    if (!StepTaken)
    {
        StepTaken = true;
        if (BeforeFirst)
        {
            BeforeFirst();
        }
    }
    map::NoteChange(Data, kind);
    ++Written;
}

template <class Object, class Change>
int ObjectEditor::Apply(map::ObjectArray<Object>& objects, const std::vector<std::int32_t>& indexes,
                        int noteKind, Change change)
{
    int count = 0;
    for (const std::int32_t index : indexes)
    {
        const Object& before = std::as_const(objects)[static_cast<std::size_t>(index)];
        Object after = before;
        change(after);
        if (after == before)
        {
            continue; // read only: the object stays shared with the undo step
        }
        Written1(noteKind);
        objects[static_cast<std::size_t>(index)] = after;
        ++count;
    }
    return count;
}

// --- LineDefs ------------------------------------------------------------------------------

const map::LineDef& ObjectEditor::HeadLine() const
{
    return std::as_const(Data).LineDefs[static_cast<std::size_t>(Head())];
}

const map::SideDef* ObjectEditor::HeadSide(int side) const
{
    const std::uint32_t number = HeadLine().Side(side);
    if (number == map::NoSideDef || number >= Data.SideDefs.size())
    {
        return nullptr;
    }
    return &std::as_const(Data).SideDefs[number];
}

bool ObjectEditor::AnySide(int side) const
{
    return !SidesOf(side).empty();
}

std::vector<std::int32_t> ObjectEditor::SidesOf(int side) const
{
    std::vector<std::int32_t> sides;
    if (ObjectKind != map::KindLineDef)
    {
        return sides;
    }
    for (const std::int32_t line : Targets())
    {
        const std::uint32_t number =
            std::as_const(Data).LineDefs[static_cast<std::size_t>(line)].Side(side);
        if (number != map::NoSideDef && number < Data.SideDefs.size())
        {
            sides.push_back(static_cast<std::int32_t>(number));
        }
    }
    std::sort(sides.begin(), sides.end());
    sides.erase(std::unique(sides.begin(), sides.end()), sides.end());
    return sides;
}

int ObjectEditor::SetLineType(std::uint32_t type)
{
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [type](map::LineDef& line) { line.Type = type; });
}

int ObjectEditor::SetLineTypeWithArgs(std::uint32_t type, const std::array<std::uint8_t, 5>& args,
                                      bool hexenFormat)
{
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [&](map::LineDef& line)
                 {
                     line.Type = type;
                     if (hexenFormat)
                     {
                         // The first argument is the tag's low byte, as Set tag writes it.
                         line.Tag = static_cast<std::uint16_t>((line.Tag & 0xFF00) | args[0]);
                         std::copy(args.begin() + 1, args.end(), line.Args.begin());
                     }
                 });
}

int ObjectEditor::SetLineTag(std::uint16_t tag)
{
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [tag](map::LineDef& line) { line.Tag = tag; });
}

int ObjectEditor::SetLineArg(int index, std::uint8_t value)
{
    if (index < 0 || index > 4)
    {
        return 0;
    }
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [index, value](map::LineDef& line)
                 {
                     if (index == 0)
                     {
                         line.Tag = static_cast<std::uint16_t>((line.Tag & 0xFF00) | value);
                     }
                     else
                     {
                         line.Args[static_cast<std::size_t>(index - 1)] = value;
                     }
                 });
}

int ObjectEditor::SetLineFlag(std::uint16_t bit, bool on)
{
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [bit, on](map::LineDef& line) {
                     line.Flags =
                         static_cast<std::uint16_t>(on ? line.Flags | bit : line.Flags & ~bit);
                 });
}

int ObjectEditor::SetLineActivation(int value)
{
    const auto bits =
        static_cast<std::uint16_t>((value << LineActivationShift) & LineActivationMask);
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [bits](map::LineDef& line) {
                     line.Flags =
                         static_cast<std::uint16_t>((line.Flags & ~LineActivationMask) | bits);
                 });
}

int ObjectEditor::SetLineFlags(std::uint16_t flags)
{
    return Apply(Data.LineDefs, Targets(), map::KindLineDef,
                 [flags](map::LineDef& line) { line.Flags = flags; });
}

int ObjectEditor::SetSideTexture(int side, SidePart part, map::TextureName name)
{
    return Apply(Data.SideDefs, SidesOf(side), map::KindSideDef,
                 [part, name](map::SideDef& sideDef) { PartOf(sideDef, part) = name; });
}

int ObjectEditor::SetSideXOffset(int side, std::int16_t offset)
{
    return Apply(Data.SideDefs, SidesOf(side), map::KindSideDef,
                 [offset](map::SideDef& sideDef) { sideDef.XOffset = offset; });
}

int ObjectEditor::SetSideYOffset(int side, std::int16_t offset)
{
    return Apply(Data.SideDefs, SidesOf(side), map::KindSideDef,
                 [offset](map::SideDef& sideDef) { sideDef.YOffset = offset; });
}

int ObjectEditor::SetSideSector(int side, std::uint32_t sector)
{
    if (sector >= Data.Sectors.size())
    {
        return 0;
    }
    return Apply(Data.SideDefs, SidesOf(side), map::KindSideDef,
                 [sector](map::SideDef& sideDef) { sideDef.Sector = sector; });
}

int ObjectEditor::CloneSideDef(int side)
{
    const map::SideDef* head = HeadSide(side);
    if (head == nullptr)
    {
        return 0;
    }
    const map::SideDef model = *head;
    return Apply(Data.SideDefs, SidesOf(side), map::KindSideDef,
                 [&model](map::SideDef& sideDef) { sideDef = model; });
}

int ObjectEditor::DeleteSide(int side)
{
    std::vector<std::int32_t> dropped;
    const int changed = Apply(Data.LineDefs, Targets(), map::KindLineDef,
                              [side, &dropped](map::LineDef& line)
                              {
                                  if (line.Side(side) == map::NoSideDef)
                                  {
                                      return;
                                  }
                                  dropped.push_back(static_cast<std::int32_t>(line.Side(side)));
                                  line.Side(side) = map::NoSideDef;
                                  map::SetSideFlags(line);
                              });
    // A SideDef no LineDef refers to any more goes, from the highest number down so that the
    // lower numbers stay valid while the array closes up.
    std::sort(dropped.begin(), dropped.end(), std::greater<>());
    dropped.erase(std::unique(dropped.begin(), dropped.end()), dropped.end());
    for (const std::int32_t number : dropped)
    {
        const auto unsignedNumber = static_cast<std::uint32_t>(number);
        const bool used = std::any_of(Data.LineDefs.begin(), Data.LineDefs.end(),
                                      [unsignedNumber](const map::LineDef& line) {
                                          return line.SideDef1 == unsignedNumber ||
                                                 line.SideDef2 == unsignedNumber;
                                      });
        if (!used && unsignedNumber < Data.SideDefs.size())
        {
            map::DeleteObject(Data, map::KindSideDef, number);
        }
    }
    return changed;
}

int ObjectEditor::AddSide2()
{
    int changed = 0;
    for (const std::int32_t index : Targets())
    {
        const map::LineDef& line = std::as_const(Data).LineDefs[static_cast<std::size_t>(index)];
        if (line.SideDef2 != map::NoSideDef || line.SideDef1 == map::NoSideDef ||
            line.SideDef1 >= Data.SideDefs.size())
        {
            continue;
        }
        map::SideDef back = std::as_const(Data).SideDefs[line.SideDef1];
        back.NormalTexture = map::NoTexture;
        Written1(map::KindLineDef);
        map::ResizeObject(Data, map::KindSideDef, 1);
        Data.SideDefs.back() = back;
        map::LineDef& written = Data.LineDefs[static_cast<std::size_t>(index)];
        written.SideDef2 = static_cast<std::uint32_t>(Data.SideDefs.Count() - 1);
        map::SetSideFlags(written);
        ++changed;
    }
    return changed;
}

// --- Sectors -------------------------------------------------------------------------------

const map::Sector& ObjectEditor::HeadSector() const
{
    return std::as_const(Data).Sectors[static_cast<std::size_t>(Head())];
}

int ObjectEditor::SetSectorField(SectorField field, int value)
{
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [field, value](map::Sector& sector) { SetSectorValue(sector, field, value); });
}

int ObjectEditor::AddToSectorField(SectorField field, int delta)
{
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [field, delta](map::Sector& sector)
                 { SetSectorValue(sector, field, SectorFieldValue(sector, field) + delta); });
}

int ObjectEditor::SetSectorTexture(bool floor, map::TextureName name)
{
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [floor, name](map::Sector& sector)
                 { (floor ? sector.FloorTexture : sector.CeilingTexture) = name; });
}

int ObjectEditor::SetSectorType(std::uint16_t type, std::uint16_t keepMask)
{
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [type, keepMask](map::Sector& sector) {
                     sector.Type =
                         static_cast<std::uint16_t>((type & ~keepMask) | (sector.Type & keepMask));
                 });
}

int ObjectEditor::SetSectorFlags(std::uint16_t flags)
{
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [flags](map::Sector& sector)
                 {
                     if (const auto type = WithSectorFlags(sector.Type, flags))
                     {
                         sector.Type = *type;
                     }
                 });
}

int ObjectEditor::CloneSector()
{
    if (Empty())
    {
        return 0;
    }
    const map::Sector model = HeadSector();
    return Apply(Data.Sectors, Targets(), map::KindSector,
                 [&model](map::Sector& sector) { sector = model; });
}

// --- Things --------------------------------------------------------------------------------

const map::Thing& ObjectEditor::HeadThing() const
{
    return std::as_const(Data).Things[static_cast<std::size_t>(Head())];
}

int ObjectEditor::SetThingField(ThingField field, int value)
{
    return Apply(Data.Things, Targets(), map::KindThing,
                 [field, value](map::Thing& thing)
                 {
                     switch (field)
                     {
                     case ThingField::Type:
                         thing.Type = ClampU16(value);
                         break;
                     case ThingField::Angle:
                         thing.Angle = ClampU16(((value % 360) + 360) % 360);
                         break;
                     case ThingField::X:
                         thing.X = Clamp16(value);
                         break;
                     case ThingField::Y:
                         thing.Y = Clamp16(value);
                         break;
                     case ThingField::Z:
                         thing.Z = Clamp16(value);
                         break;
                     case ThingField::Tid:
                         thing.Tid = ClampU16(value);
                         break;
                     case ThingField::Special:
                         thing.Special = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
                         break;
                     }
                 });
}

int ObjectEditor::SetThingFlag(std::uint16_t bit, bool on)
{
    return Apply(Data.Things, Targets(), map::KindThing,
                 [bit, on](map::Thing& thing) {
                     thing.Flags =
                         static_cast<std::uint16_t>(on ? thing.Flags | bit : thing.Flags & ~bit);
                 });
}

int ObjectEditor::SetThingFlags(std::uint16_t flags)
{
    return Apply(Data.Things, Targets(), map::KindThing,
                 [flags](map::Thing& thing) { thing.Flags = flags; });
}

int ObjectEditor::SetThingArg(int index, std::uint8_t value)
{
    if (index < 0 || index > 4)
    {
        return 0;
    }
    return Apply(Data.Things, Targets(), map::KindThing,
                 [index, value](map::Thing& thing)
                 { thing.Args[static_cast<std::size_t>(index)] = value; });
}

int ObjectEditor::SetThingSpecialWithArgs(std::uint8_t special,
                                          const std::array<std::uint8_t, 5>& args)
{
    return Apply(Data.Things, Targets(), map::KindThing,
                 [special, &args](map::Thing& thing)
                 {
                     thing.Special = special;
                     thing.Args = args;
                 });
}

// --- Bulk flags and arguments --------------------------------------------------------------

int ChangeFlagBits(map::LevelData& level, int kind, const std::vector<std::int32_t>& objects,
                   std::uint16_t set, std::uint16_t clear)
{
    const auto changeWord = [set, clear](std::uint16_t word)
    { return static_cast<std::uint16_t>((word | set) & ~clear); };
    int changed = 0;
    for (const std::int32_t object : objects)
    {
        if (object < 0 || object >= ObjectCount(level, kind))
        {
            continue;
        }
        const auto index = static_cast<std::size_t>(object);
        if (kind == map::KindLineDef)
        {
            const std::uint16_t flags = std::as_const(level).LineDefs[index].Flags;
            if (changeWord(flags) != flags)
            {
                level.LineDefs[index].Flags = changeWord(flags);
                ++changed;
            }
        }
        else if (kind == map::KindThing)
        {
            const std::uint16_t flags = std::as_const(level).Things[index].Flags;
            if (changeWord(flags) != flags)
            {
                level.Things[index].Flags = changeWord(flags);
                ++changed;
            }
        }
    }
    if (changed > 0)
    {
        map::NoteChange(level, kind);
    }
    return changed;
}

std::vector<std::string> ArgumentLabels(std::string_view name)
{
    std::vector<std::string> labels;
    const auto plus = name.find('+');
    if (plus == std::string_view::npos)
    {
        return labels;
    }
    std::string_view rest = name.substr(plus + 1);
    while (!rest.empty() && labels.size() < 5)
    {
        const auto dash = rest.find('-');
        std::string_view word = rest.substr(0, dash);
        while (!word.empty() && word.back() == ' ')
        {
            word.remove_suffix(1);
        }
        while (!word.empty() && word.front() == ' ')
        {
            word.remove_prefix(1);
        }
        labels.emplace_back(word);
        if (dash == std::string_view::npos)
        {
            break;
        }
        rest.remove_prefix(dash + 1);
    }
    return labels;
}

std::optional<std::uint8_t> ParseArgument(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && text.back() == ' ')
    {
        text.remove_suffix(1);
    }
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size() || value < 0 ||
        value > 255)
    {
        return std::nullopt;
    }
    return static_cast<std::uint8_t>(value);
}

std::array<std::uint8_t, 2>& LastDoorArguments()
{
    static std::array<std::uint8_t, 2> last = DefaultDoorArguments;
    return last;
}

} // namespace kelvar::game
