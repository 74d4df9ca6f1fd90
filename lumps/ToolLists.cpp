// What the lump tools' windows show of their lists and do with them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ToolLists.h"

#include "lumps/ExportList.h"
#include "lumps/ToolFiles.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/CheckedFile.h"
#include "wad/LumpDirectory.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::lumps
{
namespace
{

void ShowLines(const std::string& title, const std::vector<std::string>& lines)
{
    platform::ShowMessageLines(platform::LinesInfo, title, lines);
}

// The kind shown for a plain lump of the target.
std::string PlainType(std::FILE* in, const TargetEntry& entry)
{
    if (entry.Size == 0)
    {
        return "MARKER";
    }
    const gfx::LumpKind named = gfx::KindFromName(entry.Name.Text(), "WAD");
    if (named != gfx::LumpKind::Lump || in == nullptr || entry.Size < 0)
    {
        return std::string(gfx::KindName(named));
    }
    return std::string(gfx::KindName(
        gfx::ClassifyLumpData(in, entry.FileOffset, entry.Size, entry.Name.Text().c_str()).Kind));
}

// The row that follows a deleted one takes its place; the last row's place goes to the one
// before it.
int HeadAfterDelete(const TargetList& list, std::size_t rowNumber)
{
    const std::vector<TargetRow> rows = TargetRows(list);
    if (rows.empty())
    {
        return -1;
    }
    return static_cast<int>(rows[std::min(rowNumber, rows.size() - 1)].First);
}

std::size_t RowNumberOf(const TargetList& list, int head)
{
    const std::vector<TargetRow> rows = TargetRows(list);
    for (std::size_t r = 0; r < rows.size(); ++r)
    {
        if (rows[r].First == static_cast<std::size_t>(head))
        {
            return r;
        }
    }
    return 0;
}

} // namespace

std::vector<TargetRowText> TargetRowTexts(const TargetList& list, std::span<const TargetRow> rows)
{
    const wad::StreamPtr in = list.File.empty() ? nullptr : wad::OpenStream(list.File, "rb");
    std::vector<TargetRowText> texts;
    texts.reserve(rows.size());
    for (const TargetRow& row : rows)
    {
        const TargetEntry& head = list.Entries[row.First];
        TargetRowText text;
        text.Name = head.Name.Text();
        for (std::size_t i = row.First; i < row.First + row.Count; ++i)
        {
            text.Size += std::max(list.Entries[i].Size, 0);
        }
        text.Type = row.Layout != 0
                        ? platform::Format("%s %d",
                                           std::string(gfx::KindName(gfx::LumpKind::Level,
                                                                     static_cast<int>(row.Count)))
                                               .c_str(),
                                           static_cast<int>(row.Count))
                        : PlainType(in.get(), head);
        texts.push_back(std::move(text));
    }
    return texts;
}

int RunTargetCommand(TargetList& list, TargetCommand command, int head)
{
    switch (command)
    {
    case TargetCommand::Rename:
        (void)AskRenameTargetEntry(list, head);
        return head;
    case TargetCommand::Delete:
    {
        const std::size_t rowNumber = head >= 0 ? RowNumberOf(list, head) : 0;
        return DeleteTargetEntry(list, head) > 0 ? HeadAfterDelete(list, rowNumber) : head;
    }
    case TargetCommand::Insert:
    {
        const int inserted = AskInsertNamedEntry(list, head);
        return inserted >= 0 ? inserted : head;
    }
    case TargetCommand::Move:
    {
        const int moved = AskMoveTargetEntry(list, head);
        return moved >= 0 ? moved : head;
    }
    case TargetCommand::Up:
    {
        const int moved = MoveTargetEntryUp(list, head);
        return moved >= 0 ? moved : head;
    }
    case TargetCommand::Down:
    {
        const int moved = MoveTargetEntryDown(list, head);
        return moved >= 0 ? moved : head;
    }
    case TargetCommand::Clear:
        return ClearTargetList(list) == 1 ? -1 : head;
    }
    return head;
}

std::array<std::string, 4> ImportRowColumns(const ImportRow& row)
{
    const bool indexed = row.FromWad && !row.Entries.empty();
    return {row.File.string(), row.LumpName,
            indexed ? std::to_string(row.Entries.front().Ordinal) : std::string("-"), row.TypeName};
}

int RenameImportRow(MergeSession& session, std::size_t row, std::string_view newName)
{
    if (row >= session.Imports.size())
    {
        ShowLines("Rename", {"Please select a lump to Rename"});
        return 0;
    }
    ImportRow& import = session.Imports[row];
    const std::string typed =
        wad::UpperText(newName.substr(0, std::min<std::size_t>(8, newName.size())));
    const wad::LumpName name = wad::LumpName::From(typed);
    const wad::LumpName old = wad::LumpName::From(import.LumpName);
    if (name.Empty() || typed == import.LumpName)
    {
        return 0;
    }
    // A level's own lumps are found by their names, and a plain lump named like a level would
    // be taken for one.
    const int reserved = wad::ReservedName(name);
    if (reserved > 0 || (import.LevelLayout == 0 && reserved != 0))
    {
        ShowLines("Rename", {"This name is reserved for level components", "and can't be renamed"});
        return 0;
    }
    const wad::LumpName glOld = wad::LumpName::From("GL_" + old.Text().substr(0, 5));
    const auto glMarker = std::find_if(
        import.Entries.begin() + (import.Entries.empty() ? 0 : 1), import.Entries.end(),
        [&glOld](const TargetEntry& entry) { return wad::SameName(entry.Name, glOld); });
    const bool hasGlNodes = import.LevelLayout != 0 && glMarker != import.Entries.end();
    if (hasGlNodes && typed.size() > 5)
    {
        ShowLines("GL Level",
                  {platform::Format("! %s is a GL enabled level !", import.LumpName.c_str()),
                   "maximum level name length is 5"});
        return 0;
    }
    if (hasGlNodes)
    {
        glMarker->Name = wad::LumpName::From("GL_" + typed);
    }
    session.Log.push_back(import.LumpName + " renamed " + typed);
    import.LumpName = typed;
    return 1;
}

int AskRenameImportRow(MergeSession& session, int row)
{
    if (row < 0 || static_cast<std::size_t>(row) >= session.Imports.size())
    {
        ShowLines("Rename", {"Please select a lump to Rename"});
        return 0;
    }
    const std::optional<std::string> typed = platform::TheUi().AskText(
        "Rename", "New Lump Name", session.Imports[static_cast<std::size_t>(row)].LumpName);
    return typed ? RenameImportRow(session, static_cast<std::size_t>(row), *typed) : 0;
}

int RemoveImportRows(MergeSession& session, std::vector<int> rows)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    int removed = 0;
    // From the last, so the rows still to go keep their numbers.
    for (auto it = rows.rbegin(); it != rows.rend(); ++it)
    {
        if (*it < 0 || static_cast<std::size_t>(*it) >= session.Imports.size())
        {
            continue;
        }
        const auto at = session.Imports.begin() + *it;
        session.Log.push_back(at->LumpName + " removed from the list (" + at->File.string() + ")");
        session.Imports.erase(at);
        ++removed;
    }
    return removed;
}

int AskAddInputFiles(MergeSession& session)
{
    platform::FileChoice choice;
    choice.Caption = "Select Files to Import";
    choice.Filter = "WAD, picture, sound and music files (*.WAD;*.LMP;*.BMP;*.PCX;*.PNG;*.WAV;*."
                    "SND;*.MID;*.MUS)|*.wad;*.lmp;*.bmp;*.pcx;*.png;*.wav;*.snd;*.mid;*.mus|";
    const std::filesystem::path last =
        session.Imports.empty() ? session.Target.File : session.Imports.back().File;
    choice.InitialPath = DialogFolder(last);
    int added = 0;
    for (const std::filesystem::path& file : platform::TheUi().ChooseFiles(choice))
    {
        added += AddInputFile(session, file);
    }
    return added;
}

const std::array<PictureKindChoice, 8>& PictureKindChoices()
{
    static const std::array<PictureKindChoice, 8> choices = {{
        {"Textures", gfx::LumpKind::Pic},
        {"Sprites", gfx::LumpKind::Sprite},
        {"Projectiles", gfx::LumpKind::Proj},
        {"Weapons", gfx::LumpKind::Weapon},
        {"Flats", gfx::LumpKind::Flat},
        {"IMGZ", gfx::LumpKind::Imgz},
        {"Legacy", gfx::LumpKind::FlatLeg},
        {"RAW", gfx::LumpKind::Lump},
    }};
    return choices;
}

void ApplyImportSettings(MergeOptions& options)
{
    const ExportSettings& settings = Exports().Settings;
    options.WavToSnd = wad::UpperText(settings.AutoSoundFormat) == ".SND";
    options.MidiToMus = wad::UpperText(settings.AutoMusicFormat) == ".MUS";
    options.Limits = settings.ImportLimits;
    options.KeepScriptNames = !wad::Wad().Options.PlainScriptNames;
}

} // namespace kelvar::lumps
