// The quick backup (.BKP): the level's object lumps from memory into a file beside the PWAD,
// with the rest of the file in group mode. Raw material for a recovery, never opened as a WAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Backup.h"

#include "map/GameCodes.h"
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

// The level's file as a backup reads it: its record, its own directory from disk, and where
// the level stands in that directory (at its end when it isn't found there).
struct BackupSource
{
    int FileNumber = -1;
    LumpName LevelName;
    std::vector<LumpEntry> Entries;
    std::size_t LevelAt = 0;
    std::size_t LevelEnd = 0;
    bool Group = false; // the lumps ahead of and behind the level go along

    // The level's own entry of that name in the old file, or null.
    const LumpEntry* Old(std::string_view name) const
    {
        for (std::size_t i = LevelAt + 1; i < LevelEnd; ++i)
        {
            if (Entries[i].Name.Is(name))
            {
                return &Entries[i];
            }
        }
        return nullptr;
    }
};

// The current file's record, opened, when the level can be backed up from it: it must have
// LineDefs, SideDefs and Sectors and a marker. Null after "Create a New File first, then make
// a backup".
FileRec* BackupFile(const map::LevelData& level)
{
    WadState& wad = Wad();
    const int number = wad.CurrentFile.FileNumber;
    FileRec* file = number >= 0 && number < FileTableSize
                        ? &wad.Files[static_cast<std::size_t>(number)]
                        : nullptr;
    if (file != nullptr && file->State != 0)
    {
        EnsureOpen(*file);
    }
    if (file == nullptr || file->State == 0 || !file->Stream || level.LineDefs.Count() == 0 ||
        level.SideDefs.Count() == 0 || level.Sectors.Count() == 0 ||
        wad.CurrentFile.LevelStart >= Master().Size())
    {
        platform::ShowError("Create a New File first, then make a backup");
        return nullptr;
    }
    return file;
}

std::optional<BackupSource> ReadBackupSource(FileRec& file)
{
    const WadState& wad = Wad();
    std::optional<std::vector<LumpEntry>> entries =
        ReadWadDirectory(file.Stream.get(), file.FileName);
    if (!entries)
    {
        return std::nullopt;
    }
    BackupSource source;
    source.FileNumber = wad.CurrentFile.FileNumber;
    source.LevelName = Master()[wad.CurrentFile.LevelStart].Name;
    source.Entries = std::move(*entries);
    const std::optional<LevelSpan> span = FindLevelEntries(source.Entries, source.LevelName);
    source.LevelAt = span ? span->Marker : source.Entries.size();
    source.LevelEnd = span ? span->End : source.Entries.size();
    source.Group = source.FileNumber > 0 && file.LumpCount > wad.Game.ExpectedLevelEntries &&
                   wad.Options.GroupSave;
    return source;
}

// Nothing changed: the old file lump by lump in directory order, the old directory behind
// it, the old header's values. Offsets aren't recomputed: a file with gaps gives a copy
// whose offsets are off, which a recovery by hand copes with.
bool CopyWhole(WadOutput& out, const BackupSource& source)
{
    std::FILE* from = Wad().Files[static_cast<std::size_t>(source.FileNumber)].Stream.get();
    std::uint8_t header[WadHeaderSize];
    if (CheckedSeek(from, 0) != 1 || CheckedRead(from, header, WadHeaderSize) != 1 ||
        !WriteData(out, header, WadHeaderSize))
    {
        return false;
    }
    for (const LumpEntry& entry : source.Entries)
    {
        if (!CopyFileData(out, source.FileNumber, entry.Offset, entry.Size))
        {
            return false;
        }
    }
    const std::int32_t directory = ReadLe32(header + 8);
    const auto bytes = static_cast<std::int64_t>(source.Entries.size()) * DirectoryEntrySize;
    return CopyFileData(out, source.FileNumber, directory, static_cast<std::int32_t>(bytes));
}

// The old file's entries from `first` to `last` (exclusive), with their bytes.
bool CopyEntries(WadOutput& out, const BackupSource& source, std::size_t first, std::size_t last)
{
    for (std::size_t i = first; i < last && i < source.Entries.size(); ++i)
    {
        const LumpEntry& entry = source.Entries[i];
        const std::int64_t start = out.Offset;
        if (!CopyFileData(out, source.FileNumber, entry.Offset, entry.Size))
        {
            return false;
        }
        EnterRow(out, entry.Name.Text(), start);
    }
    return true;
}

// The level: the marker's row with its old size and no bytes, the object lumps from memory,
// the node lumps listed with their old sizes though no node bytes are written (the running
// offset moves on by them), an empty REJECT and BLOCKMAP, and in a Hexen project the old
// script as it is.
bool WriteLevelLumps(WadOutput& out, const map::LevelData& level, const BackupSource& source)
{
    const std::int32_t markerSize =
        source.LevelAt < source.Entries.size() ? source.Entries[source.LevelAt].Size : 0;
    out.Rows.push_back(
        {static_cast<std::int32_t>(out.Offset), markerSize, source.LevelName.Text()});
    const RowLayout rows = ProjectRowLayout(level, false);
    for (const std::string_view name : {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES"})
    {
        if (!WriteObjectLump(out, level, rows, name))
        {
            return false;
        }
    }
    for (const char* name : {"SEGS", "SSECTORS", "NODES"})
    {
        const LumpEntry* old = source.Old(name);
        const std::int32_t size = old != nullptr ? old->Size : 0;
        out.Rows.push_back({static_cast<std::int32_t>(out.Offset), size, name});
        out.Offset += size;
    }
    if (!WriteObjectLump(out, level, rows, "SECTORS"))
    {
        return false;
    }
    EnterRow(out, "REJECT", out.Offset);
    EnterRow(out, "BLOCKMAP", out.Offset);
    if (Wad().Game.Format != map::GameHexen)
    {
        return true;
    }
    const LumpEntry* behavior = source.Old("BEHAVIOR");
    const std::int64_t start = out.Offset;
    if (behavior != nullptr &&
        !CopyFileData(out, source.FileNumber, behavior->Offset, behavior->Size))
    {
        return false;
    }
    EnterRow(out, "BEHAVIOR", start);
    return true;
}

} // namespace

int WriteBackup(bool confirm, const map::LevelData& level, const std::string& path)
{
    BackupScope scope;
    if (confirm && !platform::AskYesNo("Save BKP file?\n\n%s", path.c_str()))
    {
        return -1;
    }
    FileRec* file = BackupFile(level);
    if (file == nullptr)
    {
        return -1;
    }
    WadOutput out;
    out.Stream = CheckedOpen(path, "wb", 0);
    if (!out.Stream)
    {
        return -1;
    }
    const std::optional<BackupSource> source = ReadBackupSource(*file);
    if (!source)
    {
        return -1;
    }
    if (level.ChangeCount == 0 && level.GeometryChangeCount == 0)
    {
        const bool copied = CopyWhole(out, *source);
        out.Stream.reset();
        return copied ? 0 : -1;
    }
    const std::uint8_t placeholder[WadHeaderSize] = {};
    const bool written =
        CheckedWrite(out.Stream.get(), placeholder, WadHeaderSize) == 1 &&
        (!source->Group || CopyEntries(out, *source, 0, source->LevelAt)) &&
        WriteLevelLumps(out, level, *source) &&
        (!source->Group || CopyEntries(out, *source, source->LevelEnd, source->Entries.size())) &&
        WriteDirectoryAndHeader(out, "PWAD");
    if (!written)
    {
        return -1;
    }
    CloseFiles('A', false, false);
    return 0;
}

} // namespace kelvar::wad
