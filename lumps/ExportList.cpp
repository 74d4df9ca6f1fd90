// The export list: scanning the master directory into rows, filters, sorting, the preview line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportList.h"

#include "gfx/Patch.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "sound/SoundFormats.h"
#include "wad/FindLump.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::lumps
{
namespace
{

using gfx::LumpKind;

ExportState& State()
{
    static ExportState state;
    return state;
}

ExportRow RowOf(std::size_t index, const wad::LumpEntry& entry, LumpKind kind, std::string_view tag)
{
    ExportRow row;
    row.Name = entry.Name;
    row.DirectoryIndex = static_cast<std::int32_t>(index);
    row.FileOffset = entry.Offset;
    row.Size = entry.Size;
    row.Kind = kind;
    row.Tag = std::string(tag);
    row.FileNumber = entry.FileNumber;
    return row;
}

// A patch whose column table points outside the lump is no picture to export.
bool PatchColumnsHold(std::size_t index)
{
    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(static_cast<int>(index));
    return gfx::CheckPatchColumns(bytes);
}

bool NameLess(const ExportRow& a, const ExportRow& b)
{
    return wad::UpperText(a.Name.Text()) < wad::UpperText(b.Name.Text());
}

const std::string& FileNameOf(const ExportRow& row)
{
    return wad::Wad().Files[static_cast<std::size_t>(row.FileNumber)].FileName;
}

} // namespace

ExportState& Exports()
{
    return State();
}

void ResetExports()
{
    State() = ExportState{};
}

bool FilterListsKind(const ExportFilters& filters, LumpKind kind, std::int32_t size)
{
    switch (kind)
    {
    case LumpKind::Flat:
    case LumpKind::FlatBig:
    case LumpKind::FlatBig158:
    case LumpKind::FlatLeg:
    case LumpKind::Imgz:
        return filters.Flats;
    case LumpKind::Pic:
    case LumpKind::Png:
        return filters.Graphics;
    case LumpKind::DoomSound:
    case LumpKind::Wave:
        return filters.Sounds;
    case LumpKind::DoomMus:
    case LumpKind::Midi:
        return filters.MidiMus;
    case LumpKind::Level:
        return filters.Levels;
    default:
        return size == 0 ? filters.Control : filters.Other;
    }
}

std::vector<ExportRow> ScanExportList(const ExportFilters& filters)
{
    const wad::LumpDirectory& master = wad::Master();
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress(platform::Format("Scanning %d Entries", static_cast<int>(master.Size())), "");
    std::vector<ExportRow> rows;
    for (std::size_t index = 0; index < master.Size();)
    {
        const wad::LumpEntry& entry = master[index];
        const bool external = entry.FileNumber != 0;
        int count = 1;
        if (wad::LevelAt(master.Entries(), index, master.Size(), count) != 0)
        {
            if (filters.Levels && (external || !filters.ExternalFilesOnly))
            {
                ExportRow row = RowOf(index, entry, LumpKind::Level, count >= 13 ? "LGL" : "LVL");
                row.LevelLumpCount = count;
                rows.push_back(std::move(row));
            }
            index += static_cast<std::size_t>(std::max(count, 1));
            continue;
        }
        if (filters.ExternalFilesOnly && !external)
        {
            ++index;
            continue;
        }
        const gfx::EntryClass found = gfx::ClassifyDirectoryEntry("", static_cast<int>(index));
        LumpKind kind = found.Class.Kind;
        std::string_view tag = found.Class.Tag;
        if (kind == LumpKind::Pic && filters.Graphics && !PatchColumnsHold(index))
        {
            kind = LumpKind::Lump;
            tag = "LUMP";
        }
        if (FilterListsKind(filters, kind, entry.Size))
        {
            rows.push_back(RowOf(index, entry, kind, tag));
        }
        ++index;
    }
    if (filters.SortedList)
    {
        std::stable_sort(rows.begin(), rows.end(), NameLess);
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        rows[i].ListPosition = static_cast<std::int32_t>(i);
    }
    ui.EndProgress();
    return rows;
}

std::vector<int> PreserveSelection(const std::vector<ExportRow>& before,
                                   const std::vector<int>& selected,
                                   const std::vector<ExportRow>& rows)
{
    std::vector<int> kept;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const bool wasSelected = std::any_of(
            selected.begin(), selected.end(),
            [&](int s)
            {
                return s >= 0 && static_cast<std::size_t>(s) < before.size() &&
                       wad::SameName(before[static_cast<std::size_t>(s)].Name, rows[i].Name);
            });
        if (wasSelected)
        {
            kept.push_back(static_cast<int>(i));
        }
    }
    return kept;
}

int FindRowByName(const std::vector<ExportRow>& rows, std::string_view name)
{
    const wad::LumpName wanted = wad::LumpName::From(name);
    int found = -1;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        if (wad::SameName(rows[i].Name, wanted) &&
            (found < 0 ||
             rows[i].DirectoryIndex > rows[static_cast<std::size_t>(found)].DirectoryIndex))
        {
            found = static_cast<int>(i);
        }
    }
    return found;
}

std::string PreviewStatusText(const ExportRow& row)
{
    const std::string name = row.Name.Text();
    const wad::LumpDirectory& master = wad::Master();
    if (row.DirectoryIndex < 0 || static_cast<std::size_t>(row.DirectoryIndex) >= master.Size() ||
        !wad::SameName(master[static_cast<std::size_t>(row.DirectoryIndex)].Name, row.Name))
    {
        return platform::Format("%8s ERROR - name not found?", name.c_str());
    }
    const std::string& file = FileNameOf(row);
    if (row.Kind == LumpKind::DoomSound || row.Kind == LumpKind::Wave)
    {
        const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(row.DirectoryIndex);
        if (row.Kind == LumpKind::DoomSound && bytes.size() >= sound::SndHeaderSize)
        {
            const sound::SndHeader header = sound::ReadSndHeader(bytes);
            return platform::Format("%d %8s Sound %hd %hdx%d %-.80s", row.DirectoryIndex,
                                    name.c_str(), static_cast<short>(header.Rate),
                                    static_cast<short>(8), row.Size, file.c_str());
        }
        if (row.Kind == LumpKind::Wave && bytes.size() >= sound::WavHeaderSize)
        {
            return platform::Format(
                "%d %8s WAVE %hd %hdx%d %-.80s", row.DirectoryIndex, name.c_str(),
                static_cast<short>(wad::ReadLe32(bytes.data() + 24)),
                static_cast<short>(wad::ReadLe16(bytes.data() + 34)), row.Size, file.c_str());
        }
    }
    if (row.Kind == LumpKind::Lump)
    {
        return platform::Format("%d %8s data %d %-.80s", row.DirectoryIndex, name.c_str(), row.Size,
                                file.c_str());
    }
    return platform::Format("%d %8s %s %d %-.80s", row.DirectoryIndex, name.c_str(),
                            row.Tag.c_str(), row.Size, file.c_str());
}

} // namespace kelvar::lumps
