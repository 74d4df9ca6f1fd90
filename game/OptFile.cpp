// The OPT file reader.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/OptFile.h"

#include "game/GameState.h"
#include "game/Keywords.h"
#include "game/OptLine.h"
#include "game/TypeMenus.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/LumpName.h"
#include "wad/WadState.h"

#include <array>
#include <cstdio>

namespace kelvar::game
{
namespace
{

enum Section : std::uint8_t
{
    NoSection = 0,
    ThingSection = 1,
    LineSection = 2,
    SectorSection = 3,
    ColormapSection = 4,
};

// The entry number of a category line: there is no entry.
constexpr std::int64_t NoEntry = -1;
// A menu label takes this much of a category's text.
constexpr std::size_t MenuLabelLimit = 64;

// The running state of one read.
struct OptReader
{
    Section Current = NoSection;
    std::string Source;      // the line in hand, for the messages
    std::int64_t Number = 0; // kept from line to line: a number that can't be read keeps it
    std::array<std::uint32_t, 4> Running{};     // the running category of each section
    std::array<std::uint32_t, 4> NewCategory{}; // the code of the category a section opened
    std::array<bool, 4> MissingShown{};
    std::array<bool, 4> TooManyShown{};
};

const char* KindWord(Section section)
{
    return section == ThingSection ? "Thing" : section == LineSection ? "LineDef" : "Sector";
}

void ShowOptError(const std::vector<std::string>& lines)
{
    platform::ShowMessageLines(0, "OPT errors", lines);
}

std::vector<CategoryMenuRow>& MenuOf(Section section)
{
    GameState& game = Game();
    return section == ThingSection  ? game.ThingMenu
           : section == LineSection ? game.LineDefMenu
                                    : game.SectorMenu;
}

bool HasHeading(Section section, std::uint32_t code)
{
    const GameState& game = Game();
    return section == ThingSection  ? FindTypeRow(game.Things, code) >= 0
           : section == LineSection ? FindTypeRow(game.LineDefs, code) >= 0
                                    : FindTypeRow(game.Sectors, code) >= 0;
}

std::span<const Keyword> CategoryKeywords(Section section)
{
    return section == ThingSection  ? ThingCategoryKeywords()
           : section == LineSection ? LineCategoryKeywords()
                                    : SectorCategoryKeywords();
}

int& NewCategoryCount(Section section)
{
    OptCounters& counters = Game().Opt;
    return section == ThingSection  ? counters.NewThingCategories
           : section == LineSection ? counters.NewLineCategories
                                    : counters.NewSectorCategories;
}

// The first free row of the menu takes the text: the section has one more category.
void OpenNewCategory(OptReader& reader, const std::string& text)
{
    for (CategoryMenuRow& row : MenuOf(reader.Current))
    {
        if (row.Category == 0)
        {
            break;
        }
        if (row.Label[0] == 'x' && row.Category != SeparatorType)
        {
            SetText(row.Label, text);
            const int count = ++NewCategoryCount(reader.Current);
            reader.NewCategory[reader.Current] =
                NewCategoryBase + static_cast<std::uint32_t>(count);
            return;
        }
    }
    reader.NewCategory[reader.Current] = 0;
}

void NameCategory(Section section, std::uint32_t code, const std::string& text)
{
    for (CategoryMenuRow& row : MenuOf(section))
    {
        if (row.Category == code)
        {
            SetText(row.Label, std::string_view(text).substr(0, MenuLabelLimit));
        }
    }
}

// A line that begins with a quoted text: a separator ("-"), a category by keyword, or a new
// category. Returns true when a separator entry follows.
bool ReadCategoryLine(OptReader& reader, std::string_view line)
{
    std::size_t at = 0;
    const std::optional<std::string> text = QuotedText(line, at);
    if (!text)
    {
        return false;
    }
    const std::vector<std::string> tokens = Tokens(line.substr(at));
    const bool separator = *text == "-";
    if (separator)
    {
        reader.Number = SeparatorType;
    }
    else
    {
        reader.Running.fill(0);
        reader.Number = NoEntry;
    }
    if (tokens.empty())
    {
        if (!separator)
        {
            OpenNewCategory(reader, *text);
        }
        return separator;
    }
    reader.Running.fill(0);
    const std::string& keyword = tokens[0];
    if (const std::optional<std::uint32_t> code =
            FindKeyword(CategoryKeywords(reader.Current), keyword))
    {
        if (HasHeading(reader.Current, *code))
        {
            NameCategory(reader.Current, *code, *text);
            reader.Running[reader.Current] = *code;
            return separator;
        }
        platform::ShowMessageLines(0, std::string(KindWord(reader.Current)) + " Category Error",
                                   {"Category Keyword", "", keyword, "Not found", reader.Source});
    }
    OpenNewCategory(reader, *text);
    return separator;
}

// The index of the first free row at or after the heading of `category`, spilling into the
// blocks that follow; category 0 searches from the first row of type 0. -1 when there is none.
template <class Row> std::ptrdiff_t FreeRowIn(const std::vector<Row>& rows, std::uint32_t category)
{
    const std::ptrdiff_t start = FindTypeRow(rows, category);
    if (start < 0)
    {
        return -1;
    }
    for (auto i = static_cast<std::size_t>(start); i < rows.size() && rows[i].Type != EndOfTable;
         ++i)
    {
        if (rows[i].Name[0] == 'x')
        {
            return static_cast<std::ptrdiff_t>(i);
        }
    }
    return -1;
}

int& MissingCount(Section section)
{
    OptCounters& counters = Game().Opt;
    return section == ThingSection  ? counters.MissingThingCategory
           : section == LineSection ? counters.MissingLineCategory
                                    : counters.MissingSectorCategory;
}

int& TooManyCount(Section section)
{
    OptCounters& counters = Game().Opt;
    return section == ThingSection  ? counters.TooManyThings
           : section == LineSection ? counters.TooManyLineDefs
                                    : counters.TooManySectors;
}

// The row a new entry goes into, or -1 when it is dropped (the reason was shown).
template <class Row> std::ptrdiff_t RowForNewEntry(OptReader& reader, const std::vector<Row>& rows)
{
    const Section section = reader.Current;
    std::uint32_t category = reader.Running[section];
    if (category == 0)
    {
        if (reader.NewCategory[section] == 0)
        {
            ++MissingCount(section);
            if (!reader.MissingShown[section])
            {
                reader.MissingShown[section] = true;
                ShowOptError({platform::Format("New entry with no %s category", KindWord(section)),
                              reader.Source});
                return -1;
            }
        }
        category = reader.NewCategory[section];
    }
    std::ptrdiff_t at = FreeRowIn(rows, category);
    if (at >= 0)
    {
        return at;
    }
    ShowOptError({platform::Format("Too many %s entries for existing category.", KindWord(section)),
                  "Starting with", reader.Source, "Put in next open slot"});
    at = FreeRowIn(rows, reader.NewCategory[section]);
    if (at >= 0)
    {
        return at;
    }
    ++TooManyCount(section);
    if (!reader.TooManyShown[section])
    {
        reader.TooManyShown[section] = true;
        ShowOptError({platform::Format("Too Many New %s entries", KindWord(section)),
                      "starting with", reader.Source});
    }
    return -1;
}

// A row matches when it has the number and is not a free row.
template <class Row> bool IsSpare(const Row& row)
{
    return row.Property == SpareProperty && row.Name[0] == 'x';
}

template <class Row> std::ptrdiff_t MatchingRow(const std::vector<Row>& rows, std::uint32_t type)
{
    for (std::size_t i = 0; i < rows.size() && rows[i].Type != EndOfTable; ++i)
    {
        if (rows[i].Type == type && !IsSpare(rows[i]))
        {
            return static_cast<std::ptrdiff_t>(i);
        }
    }
    return -1;
}

void ShowTokenErrors(const OptReader& reader, const std::vector<OptTokenError>& errors)
{
    for (const OptTokenError& error : errors)
    {
        ShowOptError({error.What, reader.Source, "", "=Property=", "", error.Token});
    }
}

void ApplyThing(OptReader& reader, const OptEntry& entry, bool separator)
{
    const ThingFields fields = ReadThingFields(entry.Tokens);
    ShowTokenErrors(reader, fields.Errors);
    std::vector<ThingTypeRow>& rows = Game().Things;
    const auto type = static_cast<std::uint32_t>(reader.Number);
    const bool remove = fields.Property && *fields.Property == CodeDelete;
    std::ptrdiff_t at = separator ? -1 : MatchingRow(rows, type);
    if (remove)
    {
        if (at >= 0)
        {
            ThingTypeRow& row = rows[static_cast<std::size_t>(at)];
            row.Type = 0;
            row.Name[0] = 'x';
            row.Property = SpareProperty;
        }
        return;
    }
    if (at < 0)
    {
        at = RowForNewEntry(reader, rows);
    }
    if (at < 0)
    {
        return;
    }
    ThingTypeRow& row = rows[static_cast<std::size_t>(at)];
    row.Type = type;
    // The sprite is one word: anything after a blank is not part of it.
    SetText(row.Sprite, std::string_view(entry.First).substr(0, entry.First.find(' ')));
    SetText(row.Name, entry.Second);
    if (fields.Property && *fields.Property != CodeSkip)
    {
        row.Property = *fields.Property;
    }
    if (fields.Color)
    {
        row.Color = *fields.Color;
    }
    if (fields.Radius)
    {
        row.Radius = *fields.Radius;
    }
    if (fields.Height)
    {
        row.Height = *fields.Height;
    }
    if (fields.Shape)
    {
        row.Shape = *fields.Shape;
    }
    if (fields.ShapeText)
    {
        SetText(row.ShapeText, *fields.ShapeText);
    }
}

void ApplyLine(OptReader& reader, const OptEntry& entry, bool separator)
{
    const LineFields fields = ReadLineFields(entry.Tokens);
    ShowTokenErrors(reader, fields.Errors);
    GameState& game = Game();
    std::vector<LineTypeRow>& rows = game.LineDefs;
    const auto type = static_cast<std::uint32_t>(reader.Number);
    const bool remove = fields.Motion == CodeDelete;
    std::ptrdiff_t at = -1;
    // Each key door of a ZDoom project is a row of its own: a line never changes the first.
    if (!separator && !(game.ZdoomTypes && type == 13 && !remove))
    {
        at = FindTypeRow(rows, type);
    }
    if (remove)
    {
        if (at >= 0)
        {
            LineTypeRow& row = rows[static_cast<std::size_t>(at)];
            row.Type = 0;
            row.Name[0] = 'x';
            row.Property = 0;
            row.Motion = 0;
            row.TagType = 0;
            row.Color = 0;
        }
        return;
    }
    const bool added = at < 0;
    if (added)
    {
        at = RowForNewEntry(reader, rows);
    }
    if (at < 0)
    {
        return;
    }
    LineTypeRow& row = rows[static_cast<std::size_t>(at)];
    row.Type = type;
    SetText(row.Name, entry.First);
    SetText(row.ShortName, entry.Second);
    // A new row takes Skip as it stands; a changed row keeps its value for it.
    if (added || fields.Motion != CodeSkip)
    {
        row.Motion = static_cast<std::uint16_t>(fields.Motion);
    }
    if (added || fields.Property != CodeSkip)
    {
        row.Property = fields.Property;
    }
    if (added || fields.TagType != CodeSkip)
    {
        row.TagType = static_cast<std::uint16_t>(fields.TagType);
    }
    row.Args = fields.Args;
    row.Color = fields.Color;
}

void ApplySector(OptReader& reader, const OptEntry& entry, bool separator)
{
    std::vector<SectorTypeRow>& rows = Game().Sectors;
    const auto type = static_cast<std::uint32_t>(reader.Number);
    const bool remove =
        !entry.Tokens.empty() && FindKeyword(SectorKeywords(), entry.Tokens[0]) == CodeDelete;
    std::ptrdiff_t at = separator ? -1 : MatchingRow(rows, type);
    if (remove)
    {
        if (at >= 0)
        {
            // Off the menu only: the type keeps its names for the lookups.
            rows[static_cast<std::size_t>(at)].Name[0] = 'x';
        }
        return;
    }
    const bool added = at < 0;
    if (added)
    {
        at = RowForNewEntry(reader, rows);
    }
    if (at < 0)
    {
        return;
    }
    SectorTypeRow& row = rows[static_cast<std::size_t>(at)];
    if (added)
    {
        row = SectorTypeRow{};
    }
    row.Type = type;
    SetText(row.Name, entry.First);
    SetText(row.ShortName, entry.Second);
}

// A separator is always a new row, however many the category has already.
void ApplyEntry(OptReader& reader, const OptEntry& entry, bool separator = false)
{
    if (reader.Number == NoEntry)
    {
        return;
    }
    switch (reader.Current)
    {
    case ThingSection:
        ApplyThing(reader, entry, separator);
        break;
    case LineSection:
        ApplyLine(reader, entry, separator);
        break;
    case SectorSection:
        ApplySector(reader, entry, separator);
        break;
    default:
        break;
    }
}

// A section header; false when the line is none.
bool ReadSectionHeader(OptReader& reader, std::string_view line)
{
    static constexpr std::string_view Headers[] = {"[THINGS]", "[LINEDEFS]", "[SECTORS]",
                                                   "[COLORMAPS]"};
    for (std::size_t i = 0; i < 4; ++i)
    {
        if (wad::EqualNoCase(line.substr(0, Headers[i].size()), Headers[i]))
        {
            reader.Current = static_cast<Section>(i + 1);
            if (reader.Current == ColormapSection)
            {
                platform::ShowMessageLines(0, "COLORMAPS",
                                           {"COLORMAP entries are set in F5 / Texture dialog", "",
                                            "Please remove entries from OPT files"});
            }
            return true;
        }
    }
    return false;
}

void ReadLine(OptReader& reader, std::string line)
{
    // The last character is taken for the newline, so a last line without one loses a real
    // character: OPT files are written with a newline after every line, and this keeps their
    // reading the same whoever wrote them.
    line.pop_back();
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line[start] == '/')
    {
        return;
    }
    const std::string_view rest = std::string_view(line).substr(start);
    if (ReadSectionHeader(reader, rest) || reader.Current == NoSection ||
        reader.Current == ColormapSection)
    {
        return;
    }
    reader.Source = std::string(rest);
    if (rest[0] == '"')
    {
        if (ReadCategoryLine(reader, rest))
        {
            ApplyEntry(reader, OptEntry{"-", "-", {}}, true);
        }
        return;
    }
    const std::optional<OptEntry> entry = ReadEntryLine(rest, reader.Number);
    if (entry)
    {
        ApplyEntry(reader, *entry);
    }
}

void ShowSummary(const std::string& fileName)
{
    const OptCounters& counters = Game().Opt;
    if (counters.TooManyThings == 0 && counters.TooManySectors == 0 &&
        counters.TooManyLineDefs == 0 && counters.MissingLineCategory == 0)
    {
        return; // a missing Thing or Sector category alone has had its message
    }
    ShowOptError({"One or more of the following entries", "in", fileName, "has errors as noted", "",
                  platform::Format("Too many new Things    =%d", counters.TooManyThings),
                  platform::Format("Too many new Sectors   =%d", counters.TooManySectors),
                  platform::Format("Too many new LineDefs  =%d", counters.TooManyLineDefs),
                  platform::Format("Missing ThingCategory  =%d", counters.MissingThingCategory),
                  platform::Format("Missing SectoryCategory=%d", counters.MissingSectorCategory),
                  platform::Format("Missing Line Categories=%d", counters.MissingLineCategory), "",
                  "* Check that you have no more than 32 entries per section *"});
}

} // namespace

bool ReadOptFile(const std::string& optFile)
{
    RestoreBuiltInTables();
    FreeSavedTables();
    Game().Opt = OptCounters{};
    const std::filesystem::path path = wad::Wad().ProgramDir / optFile;
    wad::StreamPtr stream(std::fopen(path.c_str(), "rb"));
    if (!stream)
    {
        return false;
    }
    SaveBuiltInTables();

    OptReader reader;
    char buffer[MaxOptLine + 1];
    while (std::fgets(buffer, sizeof buffer, stream.get()) != nullptr)
    {
        std::string line(buffer);
        // Read as a text file: a line ends in a newline alone.
        if (line.size() >= 2 && line.ends_with("\r\n"))
        {
            line.erase(line.size() - 2, 1);
        }
        if (line.size() < 3)
        {
            continue;
        }
        ReadLine(reader, std::move(line));
    }
    stream.reset();

    RenumberThingMenu();
    ShowSummary(optFile);
    SqueezeTypeNames();
    return true;
}

} // namespace kelvar::game
