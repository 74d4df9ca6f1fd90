// The target list of the lump tools: reading it, its rows, and the commands that change it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TargetList.h"

#include "lumps/LumpNames.h"
#include "lumps/MergeParts.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/DirectoryReader.h"
#include "wad/LumpDirectory.h"
#include "wad/WadRewrite.h"

#include <algorithm>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

// The level test looks at most 18 entries past the marker.
constexpr std::size_t LevelWindow = 19;

bool IsLevelComponent(const wad::LumpName& name)
{
    return wad::ReservedName(name) > 0;
}

// The name a user typed, as a lump name: upper case, at most 8 characters.
wad::LumpName TypedName(std::string_view text)
{
    return wad::LumpName::From(
        wad::UpperText(text.substr(0, std::min<std::size_t>(text.size(), 8))));
}

void ShowLines(const std::string& title, const std::vector<std::string>& lines)
{
    platform::ShowMessageLines(platform::LinesInfo, title, lines);
}

// True when `index` heads a row of the list.
bool HeadsRow(const TargetList& list, int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= list.Entries.size())
    {
        return false;
    }
    for (const TargetRow& row : TargetRows(list))
    {
        if (row.First == static_cast<std::size_t>(index))
        {
            return true;
        }
        if (row.First > static_cast<std::size_t>(index))
        {
            break;
        }
    }
    return false;
}

// The row that holds entry `index`; nothing past the end.
std::optional<TargetRow> RowHolding(const TargetList& list, std::size_t index)
{
    for (const TargetRow& row : TargetRows(list))
    {
        if (index >= row.First && index < row.First + row.Count)
        {
            return row;
        }
    }
    return std::nullopt;
}

// The heads of the rows named `name`.
std::vector<std::size_t> RowsNamed(const TargetList& list, const wad::LumpName& name)
{
    std::vector<std::size_t> heads;
    for (const TargetRow& row : TargetRows(list))
    {
        if (wad::SameName(list.Entries[row.First].Name, name))
        {
            heads.push_back(row.First);
        }
    }
    return heads;
}

// Takes the row at `first` out of the list and returns its entries.
std::vector<TargetEntry> TakeRow(TargetList& list, const TargetRow& row)
{
    const auto begin = list.Entries.begin() + static_cast<std::ptrdiff_t>(row.First);
    const auto end = begin + static_cast<std::ptrdiff_t>(row.Count);
    std::vector<TargetEntry> taken(begin, end);
    list.Entries.erase(begin, end);
    return taken;
}

// Puts `entries` back at `position` and returns where they begin.
int PutRow(TargetList& list, std::size_t position, const std::vector<TargetEntry>& entries)
{
    std::size_t at = std::min(position, list.Entries.size());
    const std::size_t first = at;
    InsertTargetEntry(list, at, entries);
    list.DirectoryChanged = true;
    NumberTargetRows(list);
    return static_cast<int>(first);
}

// True when the entry at `index` heads a row that may move; otherwise shows why not.
bool CheckMovable(const TargetList& list, int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= list.Entries.size())
    {
        ShowLines("Move", {"Please select a lump to Move"});
        return false;
    }
    if (!HeadsRow(list, index))
    {
        ShowLines("Move", {"This name is reserved and can't be moved"});
        return false;
    }
    return true;
}

// Moves the row headed by `index` past the row above or below it and returns where it
// begins; a row already at that end stays put.
int StepRow(TargetList& list, int index, bool up)
{
    if (!CheckMovable(list, index))
    {
        return -1;
    }
    const std::vector<TargetRow> rows = TargetRows(list);
    const auto self = std::find_if(rows.begin(), rows.end(),
                                   [&](const TargetRow& row)
                                   { return row.First == static_cast<std::size_t>(index); });
    if (up ? self == rows.begin() : std::next(self) == rows.end())
    {
        return index;
    }
    // Once this row is out, the next one starts where this one did.
    const std::size_t position = up ? std::prev(self)->First : self->First + std::next(self)->Count;
    const std::vector<TargetEntry> entries = TakeRow(list, *self);
    return PutRow(list, position, entries);
}

// The notices of a target just read: bad names, lone reserved names, texture lumps.
void ReportTargetNames(const TargetList& list, bool badNames, bool warnTextures)
{
    if (badNames)
    {
        ShowLines("Lump Names",
                  {"This file has invalid Lump names", "The names were made into names BADxx",
                   "If you save, these new names are used"});
    }
    int textureLumps = 0;
    for (const TargetRow& row : TargetRows(list))
    {
        const wad::LumpName& name = list.Entries[row.First].Name;
        textureLumps += IsTextureLumpName(name) ? 1 : 0;
        if (row.Layout == 0 && wad::ReservedName(name) != 0 && !name.StartsWith("GL_"))
        {
            ShowLines("Lump Name Reserverd",
                      {"** Warning **", name.Text(), "This is not a valid lump name by itself"});
        }
    }
    if (warnTextures && textureLumps > 0)
    {
        ShowLines("TEXTUREx/PNAMES",
                  {"This file has TEXTUREx and PNAMES",
                   "The default action merges & combines all TEXTUREx and PNAMES",
                   "If want to just replace these lumps, please delete them using the Target "
                   "controls"});
    }
}

} // namespace

WadRead ReadWadEntries(const std::filesystem::path& path, std::string& magic,
                       std::vector<TargetEntry>& entries)
{
    magic.clear();
    entries.clear();
    std::error_code error;
    if (!std::filesystem::exists(path, error))
    {
        return WadRead::Missing;
    }
    const wad::StreamPtr in = wad::OpenStream(path, "rb");
    if (!in)
    {
        return WadRead::CantOpen;
    }
    const wad::DirectoryReport report =
        wad::ReadDirectoryOf(in.get(), wad::BadEntryRule::StopAtBadEntry);
    if (report.FileSize == 0 && report.Problem == wad::HeaderProblem::TooSmall)
    {
        return WadRead::Read;
    }
    if (report.Magic != "PWAD" && report.Magic != "IWAD")
    {
        return report.Problem == wad::HeaderProblem::ReadFailed ? WadRead::CantOpen
                                                                : WadRead::NotWad;
    }
    magic = report.Magic;
    // A header that counts no lumps has nothing to point at: its directory offset may be
    // anything, and a negative count is taken as none.
    const bool noLumps =
        (report.Problem == wad::HeaderProblem::BadDirectoryOffset && report.LumpCount == 0) ||
        report.Problem == wad::HeaderProblem::BadLumpCount;
    if (noLumps)
    {
        return WadRead::Read;
    }
    if (report.Problem != wad::HeaderProblem::None || report.RunsPastEnd ||
        !report.BadEntries.empty())
    {
        return WadRead::Damaged;
    }
    entries.reserve(report.Entries.size());
    for (std::size_t i = 0; i < report.Entries.size(); ++i)
    {
        const wad::LumpEntry& read = report.Entries[i];
        TargetEntry entry;
        entry.FileOffset = read.Offset;
        entry.Size = read.Size;
        entry.Name = read.Name;
        entry.Ordinal = static_cast<std::int32_t>(i);
        entries.push_back(entry);
    }
    return WadRead::Read;
}

int ReadTargetFile(const std::filesystem::path& file, bool warnTextures, TargetList& list)
{
    list = TargetList();
    list.File = file;
    const WadRead read = ReadWadEntries(file, list.Magic, list.Entries);
    switch (read)
    {
    case WadRead::Read:
    case WadRead::Missing:
        break;
    case WadRead::CantOpen:
        platform::ShowMessageLines(
            platform::LinesError, "File Open Error",
            {"File Error Opening", file.string(), "Make sure no one is using this file"});
        return 0;
    case WadRead::NotWad:
        platform::ShowError("Target File %s\n\nis not a WAD file", file.c_str());
        return 0;
    case WadRead::Damaged:
        platform::ShowError("Target File %s\n\nhas a damaged directory and is left as it is",
                            file.c_str());
        list.Entries.clear();
        return 0;
    }
    BadNames bad;
    for (TargetEntry& entry : list.Entries)
    {
        entry.Name = wad::LumpName::From(bad.Clean(entry.Name.Text()));
    }
    NumberTargetRows(list);
    ReportTargetNames(list, bad.Any(), warnTextures);
    return 1;
}

TargetLevel TargetLevelAt(const TargetList& list, std::size_t index)
{
    TargetLevel level;
    // Only an entry followed by THINGS can start a level: most rows are settled by that alone.
    if (index + 1 >= list.Entries.size() ||
        !list.Entries[index + 1].Name.HasKey(wad::NameKey("THINGS")))
    {
        return level;
    }
    std::vector<wad::LumpEntry> window;
    const std::size_t end = std::min(list.Entries.size(), index + LevelWindow);
    window.reserve(end - index);
    for (std::size_t i = index; i < end; ++i)
    {
        wad::LumpEntry entry;
        entry.Name = list.Entries[i].Name;
        window.push_back(entry);
    }
    level.Layout = wad::LevelAt(window, 0, window.size(), level.Count);
    if (level.Layout == 0)
    {
        level.Count = 1;
    }
    for (int i = 1; i < level.Count; ++i)
    {
        level.HasGlNodes =
            level.HasGlNodes || window[static_cast<std::size_t>(i)].Name.StartsWith("GL_");
    }
    return level;
}

std::vector<TargetRow> TargetRows(const TargetList& list)
{
    std::vector<TargetRow> rows;
    for (std::size_t i = 0; i < list.Entries.size();)
    {
        const TargetLevel level = TargetLevelAt(list, i);
        rows.push_back({i, static_cast<std::size_t>(level.Count), level.Layout});
        i += static_cast<std::size_t>(level.Count);
    }
    return rows;
}

void NumberTargetRows(TargetList& list)
{
    const std::vector<TargetRow> rows = TargetRows(list);
    for (std::size_t r = 0; r < rows.size(); ++r)
    {
        for (std::size_t i = rows[r].First; i < rows[r].First + rows[r].Count; ++i)
        {
            list.Entries[i].ListPosition = static_cast<std::int32_t>(r);
        }
    }
}

std::optional<FoundTarget> FindTargetEntry(const TargetList& list, std::string_view name,
                                           std::int32_t ordinal)
{
    const wad::LumpName key = wad::LumpName::From(name);
    for (const TargetRow& row : TargetRows(list))
    {
        const TargetEntry& entry = list.Entries[row.First];
        if (wad::SameName(entry.Name, key) && (ordinal < 0 || entry.Ordinal == ordinal))
        {
            return FoundTarget{row.First, TargetLevelAt(list, row.First), entry.FileOffset,
                               entry.Size};
        }
    }
    return std::nullopt;
}

int RemoveTargetEntry(TargetList& list, std::string_view name, std::int32_t ordinal)
{
    int removed = 0;
    while (const std::optional<FoundTarget> found = FindTargetEntry(list, name, ordinal))
    {
        const auto begin = list.Entries.begin() + static_cast<std::ptrdiff_t>(found->Index);
        list.Entries.erase(begin, begin + found->Level.Count);
        removed += found->Level.Count;
        if (ordinal >= 0)
        {
            break;
        }
    }
    if (removed > 0)
    {
        list.DirectoryChanged = true;
        NumberTargetRows(list);
    }
    return removed;
}

void InsertTargetEntry(TargetList& list, std::size_t& position,
                       std::span<const TargetEntry> entries)
{
    position = std::min(position, list.Entries.size());
    list.Entries.insert(list.Entries.begin() + static_cast<std::ptrdiff_t>(position),
                        entries.begin(), entries.end());
    position += entries.size();
}

int RenameTargetEntry(TargetList& list, int index, std::string_view newName)
{
    if (index < 0 || static_cast<std::size_t>(index) >= list.Entries.size())
    {
        ShowLines("Rename", {"Please select a lump to Rename"});
        return 0;
    }
    const wad::LumpName name = TypedName(newName);
    const std::size_t at = static_cast<std::size_t>(index);
    const wad::LumpName old = list.Entries[at].Name;
    if (name.Empty() || wad::SameName(name, old))
    {
        return 0;
    }
    const TargetLevel level = TargetLevelAt(list, at);
    // A level's own lumps are found by their names; a plain lump must not take a level's name.
    if (!HeadsRow(list, index) || IsLevelComponent(old) || IsLevelComponent(name) ||
        (level.Layout == 0 && wad::ReservedName(name) != 0))
    {
        ShowLines("Rename", {"This name is reserved for level components", "and can't be renamed"});
        return 0;
    }
    if (!RowsNamed(list, name).empty())
    {
        ShowLines("Rename", {"Lump name is a duplicate", "Please choose another name."});
        return 0;
    }
    // A GL level's nodes are found by the marker "GL_" and the level's first five characters.
    if (level.HasGlNodes && name.Text().size() > 5)
    {
        ShowLines("GL Level", {platform::Format("! %s is a GL enabled level !", old.Text().c_str()),
                               "maximum level name length is 5"});
        return 0;
    }
    const wad::LumpName glOld = wad::LumpName::From("GL_" + old.Text().substr(0, 5));
    for (int i = 1; i < level.Count; ++i)
    {
        TargetEntry& entry = list.Entries[at + static_cast<std::size_t>(i)];
        if (wad::SameName(entry.Name, glOld))
        {
            entry.Name = wad::LumpName::From("GL_" + name.Text());
        }
    }
    list.Entries[at].Name = name;
    list.DirectoryChanged = true;
    return 1;
}

int AskRenameTargetEntry(TargetList& list, int index)
{
    if (!HeadsRow(list, index))
    {
        ShowLines("Rename", {"Please select a lump to Rename"});
        return 0;
    }
    const std::optional<std::string> typed = platform::TheUi().AskText(
        "Rename", "New Lump Name", list.Entries[static_cast<std::size_t>(index)].Name.Text());
    return typed ? RenameTargetEntry(list, index, *typed) : 0;
}

int DeleteTargetEntry(TargetList& list, int index)
{
    if (!HeadsRow(list, index))
    {
        ShowLines("Delete", {"Please select a lump to Delete"});
        return 0;
    }
    const std::optional<TargetRow> row = RowHolding(list, static_cast<std::size_t>(index));
    TakeRow(list, *row);
    list.DirectoryChanged = true;
    NumberTargetRows(list);
    return static_cast<int>(row->Count);
}

int InsertNamedEntry(TargetList& list, int index, std::string_view name, Placement placement)
{
    const bool emptyList = list.Entries.empty() && index < 0;
    if (!emptyList && (index < 0 || static_cast<std::size_t>(index) >= list.Entries.size()))
    {
        ShowLines("Insert", {"Please select a Lump to Insert after"});
        return -1;
    }
    if (!emptyList && !HeadsRow(list, index))
    {
        ShowLines("Insert", {"You can't insert after a reserved name"});
        return -1;
    }
    const wad::LumpName typed = TypedName(name);
    if (typed.Empty())
    {
        return -1;
    }
    if (wad::ReservedName(typed) != 0)
    {
        ShowLines("Insert", {"You can't insert a reserved name"});
        return -1;
    }
    if (!RowsNamed(list, typed).empty())
    {
        ShowLines("Insert", {"Name already exists"});
        return -1;
    }
    std::size_t position = 0;
    if (!emptyList)
    {
        const TargetRow row = *RowHolding(list, static_cast<std::size_t>(index));
        position = placement == Placement::Before ? row.First : row.First + row.Count;
    }
    TargetEntry entry;
    entry.Name = typed;
    entry.Ordinal = -1;
    return PutRow(list, position, {entry});
}

int AskInsertNamedEntry(TargetList& list, int index)
{
    const std::optional<std::string> typed =
        platform::TheUi().AskText("Insert", "Insert Lump Name", "");
    if (!typed)
    {
        return -1;
    }
    const std::optional<int> choice = platform::TheUi().ChooseEntry(
        "LumpInsertOption", {"Insert &Before", "Insert &After"}, {true, true});
    if (!choice)
    {
        return -1;
    }
    return InsertNamedEntry(list, index, *typed,
                            *choice == 0 ? Placement::Before : Placement::After);
}

int MoveTargetEntry(TargetList& list, int index, std::string_view targetName, Placement placement)
{
    if (!CheckMovable(list, index))
    {
        return -1;
    }
    const wad::LumpName target = TypedName(targetName);
    const std::vector<std::size_t> heads = RowsNamed(list, target);
    if (heads.empty())
    {
        const bool inLevel =
            std::any_of(list.Entries.begin(), list.Entries.end(),
                        [&](const TargetEntry& e) { return wad::SameName(e.Name, target); });
        ShowLines("Move", {inLevel ? "Reserved name you can't move in front of"
                                   : "Target Lump name not found"});
        return -1;
    }
    if (heads.size() > 1)
    {
        ShowLines("Move", {"Duplicate Name"});
        return -1;
    }
    if (heads.front() == static_cast<std::size_t>(index))
    {
        ShowLines("Move", {"Source and Target locations are the same"});
        return -1;
    }
    const std::vector<TargetEntry> entries =
        TakeRow(list, *RowHolding(list, static_cast<std::size_t>(index)));
    const std::vector<std::size_t> again = RowsNamed(list, target);
    if (again.size() != 1)
    {
        ShowLines("Move", {"Something is wrong with the Target File?"});
        PutRow(list, static_cast<std::size_t>(index), entries);
        return -1;
    }
    const TargetRow row = *RowHolding(list, again.front());
    return PutRow(list, placement == Placement::Before ? row.First : row.First + row.Count,
                  entries);
}

int AskMoveTargetEntry(TargetList& list, int index)
{
    if (index < 0 || static_cast<std::size_t>(index) >= list.Entries.size())
    {
        ShowLines("Move", {"Please select a lump to Move"});
        return -1;
    }
    const std::optional<std::string> typed =
        platform::TheUi().AskText("LumpMoveOption", "Move in front of or behind Lump", "");
    if (!typed)
    {
        return -1;
    }
    const std::optional<int> choice = platform::TheUi().ChooseEntry(
        "LumpMoveOption", {"Move &Before", "Move &After"}, {true, true});
    if (!choice)
    {
        return -1;
    }
    return MoveTargetEntry(list, index, *typed,
                           *choice == 0 ? Placement::Before : Placement::After);
}

int MoveTargetEntryUp(TargetList& list, int index)
{
    return StepRow(list, index, true);
}

int MoveTargetEntryDown(TargetList& list, int index)
{
    return StepRow(list, index, false);
}

int ClearTargetList(TargetList& list)
{
    if (!platform::AskYesNo(
            "This will erase ALL the entries\n\nAre you sure you want to continue?"))
    {
        return 0;
    }
    list.Entries.clear();
    list.DirectoryChanged = true;
    return 1;
}

bool SaveTargetList(TargetList& list, bool keepScriptNames, const std::string& progressCaption)
{
    wad::RewritePlan plan;
    plan.Magic = list.Magic.empty() ? "PWAD" : list.Magic;
    plan.KeepScriptNames = keepScriptNames;
    plan.ProgressCaption = progressCaption;
    for (const TargetEntry& entry : list.Entries)
    {
        if (entry.ImportIndex >= 0)
        {
            return false;
        }
        if (entry.Size < 0)
        {
            continue;
        }
        plan.Entries.push_back(wad::RewriteEntry::FromFile(entry.Name.Text(), list.File,
                                                           entry.FileOffset, entry.Size));
    }
    if (!wad::RewriteWad(list.File, plan))
    {
        return false;
    }
    const std::filesystem::path file = list.File;
    return ReadTargetFile(file, false, list) == 1;
}

bool ConfirmLeave(const TargetList& list, bool importsPending)
{
    if (importsPending)
    {
        return platform::AskYesNo("You have added files that were not saved.\n\nDo you still want "
                                  "to Exit?\n\nPress Save to write them into the Target File");
    }
    if (list.DirectoryChanged)
    {
        return platform::AskYesNo("You have made directory changes that were not saved.\n\nDo "
                                  "you still want to Exit?\n\nPress Save to write the Target File");
    }
    return true;
}

} // namespace kelvar::lumps
