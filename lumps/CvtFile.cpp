// The .CVT reader: sections, comments and name pairs into the two tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/CvtFile.h"

#include <fstream>
#include <iterator>
#include <string>

namespace kelvar::lumps
{
namespace
{

enum class Section
{
    None, // before the first header, or under a header that isn't ours
    Textures,
    Flats,
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

std::string_view Trimmed(std::string_view line)
{
    while (!line.empty() && IsBlank(line.front()))
    {
        line.remove_prefix(1);
    }
    while (!line.empty() && IsBlank(line.back()))
    {
        line.remove_suffix(1);
    }
    return line;
}

// The next blank-separated word of `line`, taken off its front.
std::string_view NextWord(std::string_view& line)
{
    line = Trimmed(line);
    std::size_t end = 0;
    while (end < line.size() && !IsBlank(line[end]))
    {
        ++end;
    }
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end);
    return word;
}

// The section a header line opens; nothing when the line is no header.
std::optional<Section> HeaderOf(std::string_view line)
{
    if (!line.starts_with('['))
    {
        return std::nullopt;
    }
    if (wad::EqualNoCase(line, "[TEXTURES]"))
    {
        return Section::Textures;
    }
    return wad::EqualNoCase(line, "[FLATS]") ? Section::Flats : Section::None;
}

// A pair line: the old name and the new one, "//" or nothing in its place keeping the name.
std::optional<CvtEntry> EntryOf(std::string_view line)
{
    const std::string_view oldName = NextWord(line);
    if (oldName.empty())
    {
        return std::nullopt;
    }
    const std::string_view newName = NextWord(line);
    CvtEntry entry;
    entry.OldName = wad::LumpName::From(oldName);
    if (!newName.starts_with("//"))
    {
        entry.NewName = wad::LumpName::From(wad::UpperText(newName));
    }
    return entry;
}

// The lines of the text without their line ends, each cut to the longest line.
std::vector<std::string_view> LinesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty())
    {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
        {
            line.remove_suffix(1);
        }
        lines.push_back(line.substr(0, CvtLineLength));
    }
    return lines;
}

} // namespace

CvtTable ParseCvtText(std::string_view text)
{
    CvtTable table;
    Section section = Section::None;
    for (const std::string_view rawLine : LinesOf(text))
    {
        const std::string_view line = Trimmed(rawLine);
        if (rawLine.size() <= 2 || line.empty())
        {
            continue;
        }
        if (const std::optional<Section> header = HeaderOf(line))
        {
            section = *header;
            continue;
        }
        if (section == Section::None || line.starts_with("//"))
        {
            continue;
        }
        if (const std::optional<CvtEntry> entry = EntryOf(line))
        {
            (section == Section::Textures ? table.Textures : table.Flats).push_back(*entry);
        }
    }
    return table;
}

std::optional<CvtTable> ReadCvtFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in || std::filesystem::is_directory(path))
    {
        return std::nullopt;
    }
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return ParseCvtText(text);
}

const CvtEntry* FindCvtEntry(const std::vector<CvtEntry>& table, const wad::LumpName& name)
{
    const std::uint64_t key = name.Key();
    for (const CvtEntry& entry : table)
    {
        if (entry.OldName.Key() == key)
        {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace kelvar::lumps
