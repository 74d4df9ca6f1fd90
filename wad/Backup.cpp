// The quick backup (.BKP): the level's object lumps from memory into a file beside the PWAD,
// with the rest of the file in group mode. Raw material for a recovery, never opened as a WAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Save.h"

#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/LevelWriter.h"
#include "wad/WadFormat.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::wad
{
namespace
{

// Clears BackupInProgress however the backup ends.
struct BackupScope
{
    BackupScope() { Wad().BackupInProgress = true; }
    ~BackupScope() { Wad().BackupInProgress = false; }
    BackupScope(const BackupScope&) = delete;
    BackupScope& operator=(const BackupScope&) = delete;
};

bool CopySpan(std::FILE* to, std::FILE* from, std::int32_t offset, std::int32_t size)
{
    return size <= 0 || (CheckedSeek(from, offset) == 1 && CopyFileSpan(to, from, size) == 1);
}

// Nothing changed: the old file lump by lump in directory order, the old directory behind
// it, the old header's values. Offsets aren't recomputed: a file with gaps gives a copy
// whose offsets are off, which a recovery by hand copes with.
bool CopyWhole(std::FILE* to, std::FILE* from, const std::vector<LumpEntry>& entries)
{
    std::uint8_t header[WadHeaderSize];
    if (CheckedSeek(from, 0) != 1 || CheckedRead(from, header, WadHeaderSize) != 1 ||
        CheckedWrite(to, header, WadHeaderSize) != 1)
    {
        return false;
    }
    for (const LumpEntry& entry : entries)
    {
        if (!CopySpan(to, from, entry.Offset, entry.Size))
        {
            return false;
        }
    }
    const std::int32_t directory = ReadLe32(header + 8);
    const auto bytes = static_cast<std::int64_t>(entries.size()) * DirectoryEntrySize;
    return CopySpan(to, from, directory, static_cast<std::int32_t>(bytes));
}

} // namespace

int WriteBackup(bool confirm, const map::LevelData& level, const std::string& path)
{
    BackupScope scope;
    WadState& wad = Wad();
    if (confirm && !platform::AskYesNo("Save BKP file?\n\n%s", path.c_str()))
    {
        return -1;
    }
    const int number = wad.CurrentFile.FileNumber;
    const std::size_t marker = wad.CurrentFile.LevelStart;
    FileRec* file = number >= 0 && number < FileTableSize
                        ? &wad.Files[static_cast<std::size_t>(number)]
                        : nullptr;
    if (file != nullptr && file->State != 0)
    {
        EnsureOpen(*file);
    }
    if (file == nullptr || file->State == 0 || !file->Stream || level.LineDefs.Count() == 0 ||
        level.SideDefs.Count() == 0 || level.Sectors.Count() == 0 || marker >= Master().Size())
    {
        platform::ShowError("Create a New File first, then make a backup");
        return -1;
    }
    const bool group =
        number > 0 && file->LumpCount > wad.Game.ExpectedLevelEntries && wad.Options.GroupSave;

    StreamPtr out = CheckedOpen(path, "wb", 0);
    if (!out)
    {
        return -1;
    }
    const std::optional<std::vector<LumpEntry>> own =
        ReadWadDirectory(file->Stream.get(), file->FileName);
    if (!own)
    {
        return -1;
    }
    if (level.ChangeCount == 0 && level.GeometryChangeCount == 0)
    {
        const bool copied = CopyWhole(out.get(), file->Stream.get(), *own);
        out.reset();
        return copied ? 0 : -1;
    }

    // The level in the file's own directory, for the group's other lumps.
    const LumpName levelName = Master()[marker].Name;
    std::size_t levelAt = own->size();
    int count = 1;
    for (std::size_t i = 0; i < own->size() && levelAt == own->size(); ++i)
    {
        if (SameName((*own)[i].Name, levelName) && LevelAt(*own, i, own->size(), count) > 0)
        {
            levelAt = i;
        }
    }
    const std::size_t levelEnd =
        levelAt == own->size() ? levelAt : levelAt + static_cast<std::size_t>(count);
    const auto oldSize = [&](std::string_view name) -> std::int32_t
    {
        for (std::size_t i = levelAt + 1; i < levelEnd; ++i)
        {
            if ((*own)[i].Name.Is(name))
            {
                return (*own)[i].Size;
            }
        }
        return 0;
    };

    std::vector<DirectoryRow> entries;
    std::int64_t offset = WadHeaderSize;
    const std::uint8_t placeholder[WadHeaderSize] = {};
    if (CheckedWrite(out.get(), placeholder, WadHeaderSize) != 1)
    {
        return -1;
    }
    const auto copyRange = [&](std::size_t first, std::size_t last)
    {
        for (std::size_t i = first; i < last && i < own->size(); ++i)
        {
            const LumpEntry& entry = (*own)[i];
            if (!CopySpan(out.get(), file->Stream.get(), entry.Offset, entry.Size))
            {
                return false;
            }
            entries.push_back({static_cast<std::int32_t>(offset), entry.Size, entry.Name.Text()});
            offset += std::max(entry.Size, 0);
        }
        return true;
    };
    if (group && !copyRange(0, levelAt))
    {
        return -1;
    }

    RowLayout rows;
    rows.Layout = wad.Game.Format == 4 ? 2 : 1;
    rows.Wide = level.LineDefs.Count() > 65534 || level.SideDefs.Count() > 65534;
    const std::int32_t markerSize = levelAt < own->size() ? (*own)[levelAt].Size : 0;
    entries.push_back({static_cast<std::int32_t>(offset), markerSize, levelName.Text()});
    const auto fromMemory = [&](const char* name, auto write)
    {
        std::int64_t counter = 0;
        if (!write(counter))
        {
            return false;
        }
        entries.push_back(
            {static_cast<std::int32_t>(offset), static_cast<std::int32_t>(counter), name});
        offset += counter;
        return true;
    };
    std::FILE* stream = out.get();
    if (!fromMemory("THINGS",
                    [&](std::int64_t& c) { return WriteThings(stream, level, rows, c); }) ||
        !fromMemory("LINEDEFS",
                    [&](std::int64_t& c) { return WriteLineDefs(stream, level, rows, c); }) ||
        !fromMemory("SIDEDEFS", [&](std::int64_t& c) { return WriteSideDefs(stream, level, c); }) ||
        !fromMemory("VERTEXES", [&](std::int64_t& c) { return WriteVertexes(stream, level, c); }))
    {
        return -1;
    }
    // The node lumps are listed with their old sizes, and the running offset moves on by them,
    // though no node bytes are written.
    for (const char* name : {"SEGS", "SSECTORS", "NODES"})
    {
        const std::int32_t size = oldSize(name);
        entries.push_back({static_cast<std::int32_t>(offset), size, name});
        offset += size;
    }
    std::int64_t sectorStart = offset;
    std::int64_t counter = 0;
    if (!WriteSectors(stream, level, rows, counter))
    {
        return -1;
    }
    entries.push_back(
        {static_cast<std::int32_t>(sectorStart), static_cast<std::int32_t>(counter), "SECTORS"});
    offset += counter;
    entries.push_back({static_cast<std::int32_t>(offset), 0, "REJECT"});
    entries.push_back({static_cast<std::int32_t>(offset), 0, "BLOCKMAP"});
    if (wad.Game.Format == 4)
    {
        const int behavior = [&]
        {
            for (std::size_t i = levelAt + 1; i < levelEnd; ++i)
            {
                if ((*own)[i].Name.Is("BEHAVIOR"))
                {
                    return static_cast<int>(i);
                }
            }
            return -1;
        }();
        const std::int32_t size =
            behavior < 0 ? 0 : (*own)[static_cast<std::size_t>(behavior)].Size;
        if (behavior >= 0 && !CopySpan(stream, file->Stream.get(),
                                       (*own)[static_cast<std::size_t>(behavior)].Offset, size))
        {
            return -1;
        }
        entries.push_back({static_cast<std::int32_t>(offset), size, "BEHAVIOR"});
        offset += size;
    }
    if (group && !copyRange(levelEnd, own->size()))
    {
        return -1;
    }

    // The directory follows the data actually written; the entries' offsets past the node
    // lumps point beyond it, as they always have.
    if (!WriteDirectoryAndHeader(stream, entries, "PWAD"))
    {
        return -1;
    }
    CloseFiles('A', false, false);
    return 0;
}

} // namespace kelvar::wad
