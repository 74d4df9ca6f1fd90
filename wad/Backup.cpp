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

// Nothing changed: the old file lump by lump in directory order, the old directory behind
// it, the old header's values. Offsets aren't recomputed: a file with gaps gives a copy
// whose offsets are off, which a recovery by hand copes with.
bool CopyWhole(WadOutput& out, int fileNumber, const std::vector<LumpEntry>& entries)
{
    std::FILE* from = Wad().Files[static_cast<std::size_t>(fileNumber)].Stream.get();
    std::uint8_t header[WadHeaderSize];
    if (CheckedSeek(from, 0) != 1 || CheckedRead(from, header, WadHeaderSize) != 1 ||
        !WriteData(out, header, WadHeaderSize))
    {
        return false;
    }
    for (const LumpEntry& entry : entries)
    {
        if (!CopyFileData(out, fileNumber, entry.Offset, entry.Size))
        {
            return false;
        }
    }
    const std::int32_t directory = ReadLe32(header + 8);
    const auto bytes = static_cast<std::int64_t>(entries.size()) * DirectoryEntrySize;
    return CopyFileData(out, fileNumber, directory, static_cast<std::int32_t>(bytes));
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

    WadOutput out;
    out.Stream = CheckedOpen(path, "wb", 0);
    if (!out.Stream)
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
        const bool copied = CopyWhole(out, number, *own);
        out.Stream.reset();
        return copied ? 0 : -1;
    }

    // The level in the file's own directory, for the group's other lumps.
    const LumpName levelName = Master()[marker].Name;
    const std::optional<LevelSpan> span = FindLevelEntries(*own, levelName);
    const std::size_t levelAt = span ? span->Marker : own->size();
    const std::size_t levelEnd = span ? span->End : own->size();
    const auto oldEntry = [&](std::string_view name) -> const LumpEntry*
    {
        for (std::size_t i = levelAt + 1; i < levelEnd; ++i)
        {
            if ((*own)[i].Name.Is(name))
            {
                return &(*own)[i];
            }
        }
        return nullptr;
    };
    const auto copyRange = [&](std::size_t first, std::size_t last)
    {
        for (std::size_t i = first; i < last && i < own->size(); ++i)
        {
            const LumpEntry& entry = (*own)[i];
            const std::int64_t start = out.Offset;
            if (!CopyFileData(out, number, entry.Offset, entry.Size))
            {
                return false;
            }
            EnterRow(out, entry.Name.Text(), start);
        }
        return true;
    };

    const std::uint8_t placeholder[WadHeaderSize] = {};
    if (CheckedWrite(out.Stream.get(), placeholder, WadHeaderSize) != 1 ||
        (group && !copyRange(0, levelAt)))
    {
        return -1;
    }
    // The marker's row keeps its old size, with no bytes behind it.
    const std::int32_t markerSize = span ? (*own)[levelAt].Size : 0;
    out.Rows.push_back({static_cast<std::int32_t>(out.Offset), markerSize, levelName.Text()});
    const RowLayout rows = ProjectRowLayout(level, false);
    for (const std::string_view name : {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES"})
    {
        if (!WriteObjectLump(out, level, rows, name))
        {
            return -1;
        }
    }
    // The node lumps are listed with their old sizes, and the running offset moves on by them,
    // though no node bytes are written.
    for (const char* name : {"SEGS", "SSECTORS", "NODES"})
    {
        const LumpEntry* old = oldEntry(name);
        const std::int32_t size = old != nullptr ? old->Size : 0;
        out.Rows.push_back({static_cast<std::int32_t>(out.Offset), size, name});
        out.Offset += size;
    }
    if (!WriteObjectLump(out, level, rows, "SECTORS"))
    {
        return -1;
    }
    EnterRow(out, "REJECT", out.Offset);
    EnterRow(out, "BLOCKMAP", out.Offset);
    if (wad.Game.Format == 4)
    {
        // The old script as it is, an empty entry when there was none.
        const LumpEntry* behavior = oldEntry("BEHAVIOR");
        const std::int64_t start = out.Offset;
        if (behavior != nullptr && !CopyFileData(out, number, behavior->Offset, behavior->Size))
        {
            return -1;
        }
        EnterRow(out, "BEHAVIOR", start);
    }
    if (group && !copyRange(levelEnd, own->size()))
    {
        return -1;
    }

    // The directory follows the data actually written; the entries' offsets past the node
    // lumps point beyond it, as they always have.
    if (!WriteDirectoryAndHeader(out, "PWAD"))
    {
        return -1;
    }
    CloseFiles('A', false, false);
    return 0;
}

} // namespace kelvar::wad
