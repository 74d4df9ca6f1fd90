// The lump search family.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FindLump.h"

#include "platform/Fatal.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadScan.h"

#include <vector>

namespace kelvar::wad
{
namespace
{

int NotFound(const FileRec& file, std::string_view name, bool fatal)
{
    if (fatal)
    {
        const std::string lump(name);
        platform::FatalError(" Internal Damaged %s file %s not found", file.FileName.c_str(),
                             lump.c_str());
    }
    return -1;
}

int Result(FileRec& file, int found, std::string_view name, bool fatal)
{
    return found >= 0 ? found : NotFound(file, name, fatal);
}

// Reads a directory from disk: the entries of a WAD that opens and whose header holds. False
// when the file doesn't open.
bool ReadDiskDirectory(const std::filesystem::path& path, std::vector<LumpEntry>& entries,
                       std::string* magic)
{
    StreamPtr stream(std::fopen(path.c_str(), "rb"));
    if (!stream)
    {
        return false;
    }
    entries = ReadDirectoryQuietly(stream.get(), magic);
    return true;
}

// The newest entry named `name`, or null.
const LumpEntry* Newest(const std::vector<LumpEntry>& entries, std::string_view name)
{
    const LumpName wanted = LumpName::From(name);
    for (auto it = entries.rbegin(); it != entries.rend(); ++it)
    {
        if (SameName(it->Name, wanted))
        {
            return &*it;
        }
    }
    return nullptr;
}

} // namespace

int FindLump(FileRec& file, std::string_view name, bool fatal)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    return Result(file, directory.FindLast(LumpName::From(name), 0, directory.Size()), name, fatal);
}

int FindLumpForward(FileRec& file, std::string_view name, bool fatal)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    return Result(file, directory.FindFirst(LumpName::From(name), 0, directory.Size()), name,
                  fatal);
}

int FindLumpAt(FileRec& file, std::string_view name, std::size_t index, bool fatal, int* outLayout,
               int* outCount)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    if (index >= directory.Size() || !directory[index].Name.Is(name))
    {
        return NotFound(file, name, fatal);
    }
    if (outLayout != nullptr)
    {
        int count = 0;
        *outLayout = LevelAt(directory.Entries(), index, directory.Size(), count);
        if (outCount != nullptr)
        {
            *outCount = count;
        }
    }
    return static_cast<int>(index);
}

int FindLumpWithLevel(FileRec& file, std::string_view name, bool fatal, int* outLayout,
                      int* outCount)
{
    const int found = FindLump(file, name, fatal);
    if (found >= 0)
    {
        int count = 0;
        const int layout = LevelAt(file.Directory.Entries(), static_cast<std::size_t>(found),
                                   file.Directory.Size(), count);
        if (outLayout != nullptr)
        {
            *outLayout = layout;
        }
        if (outCount != nullptr)
        {
            *outCount = count;
        }
    }
    return found;
}

int FindLumpSkipTextures(FileRec& file, std::string_view name, bool fatal)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    const std::vector<std::int32_t> positions = directory.Positions(LumpName::From(name));
    for (auto it = positions.rbegin(); it != positions.rend(); ++it)
    {
        if (directory[static_cast<std::size_t>(*it)].LumpGroup != GroupTexture)
        {
            return *it;
        }
    }
    return NotFound(file, name, fatal);
}

int FindLumpByGroup(FileRec& file, std::string_view name, std::uint16_t group,
                    std::uint16_t classCode)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    const std::vector<std::int32_t> positions = directory.Positions(LumpName::From(name));
    for (auto it = positions.rbegin(); it != positions.rend(); ++it)
    {
        const LumpEntry& entry = directory[static_cast<std::size_t>(*it)];
        if (entry.ClassCode == classCode && entry.LumpGroup == group)
        {
            return *it;
        }
    }
    for (auto it = positions.rbegin(); it != positions.rend(); ++it)
    {
        if (directory[static_cast<std::size_t>(*it)].FileNumber != 0)
        {
            return *it;
        }
    }
    return -1;
}

int FindLumpTextureFirst(FileRec& file, std::string_view name, bool fatal)
{
    EnsureOpen(file);
    const LumpDirectory& directory = file.Directory;
    if (&file == &Wad().Files[0])
    {
        const LumpName wanted = LumpName::From(name);
        for (const MarkerRun& run : {Wad().Markers.Tx, Wad().Markers.Hi})
        {
            if (run.First < 0 || run.Count <= 0)
            {
                continue;
            }
            const auto first = static_cast<std::size_t>(run.First);
            const int found =
                directory.FindLast(wanted, first, first + static_cast<std::size_t>(run.Count));
            if (found >= 0)
            {
                return found;
            }
        }
    }
    return FindLump(file, name, fatal);
}

std::size_t CurrentLevelEnd()
{
    const LumpDirectory& master = Master();
    const std::size_t marker = Wad().CurrentFile.LevelStart;
    if (marker >= master.Size())
    {
        return master.Size();
    }
    int count = 1;
    (void)LevelAt(master.Entries(), marker, master.Size(), count);
    return marker + static_cast<std::size_t>(count);
}

int FindLevelLump(std::string_view name, bool fatal)
{
    WadState& wad = Wad();
    FileRec& master = wad.Files[0];
    const CurrentFileRec& current = wad.CurrentFile;
    if (current.FileNumber >= 0 && current.FileNumber < FileTableSize)
    {
        EnsureOpen(wad.Files[static_cast<std::size_t>(current.FileNumber)]);
    }
    const int found =
        master.Directory.FindFirst(LumpName::From(name), current.LevelStart, CurrentLevelEnd());
    if (found >= 0)
    {
        return found;
    }
    const std::string& fileName =
        current.FileNumber >= 0 && current.FileNumber < FileTableSize
            ? wad.Files[static_cast<std::size_t>(current.FileNumber)].FileName
            : master.FileName;
    if (fatal)
    {
        const std::string lump(name);
        platform::FatalError(" Internal Damaged %s file %s not found", fileName.c_str(),
                             lump.c_str());
    }
    return -1;
}

std::optional<LumpEntry> ReadIwadEntry(std::string_view name, bool fatal)
{
    const std::string& path = Wad().Files[0].FileName;
    std::vector<LumpEntry> entries;
    ReadDiskDirectory(path, entries, nullptr);
    if (const LumpEntry* found = Newest(entries, name))
    {
        return *found;
    }
    if (fatal)
    {
        const std::string lump(name);
        platform::FatalError(" Reading Damaged %s file %s not found", path.c_str(), lump.c_str());
    }
    return std::nullopt;
}

int PeekPwadEntry(const std::filesystem::path& path, std::string_view name, LumpEntry* outEntry)
{
    std::vector<LumpEntry> entries;
    std::string magic;
    if (!ReadDiskDirectory(path, entries, &magic))
    {
        return -2;
    }
    if (magic != "PWAD")
    {
        return -1;
    }
    const LumpEntry* found = Newest(entries, name);
    if (found != nullptr && outEntry != nullptr)
    {
        *outEntry = *found;
    }
    return found != nullptr ? 1 : 0;
}

std::vector<std::uint8_t> ReadLumpBytes(int entry)
{
    std::vector<std::uint8_t> bytes;
    if (entry < 0)
    {
        return bytes;
    }
    const LumpEntry& lump = Master()[static_cast<std::size_t>(entry)];
    if (lump.Size <= 0 || lump.FileNumber < 0 || lump.FileNumber >= FileTableSize)
    {
        return bytes;
    }
    FileRec& file = Wad().Files[static_cast<std::size_t>(lump.FileNumber)];
    EnsureOpen(file);
    if (!file.Stream)
    {
        return bytes;
    }
    std::FILE* stream = file.Stream.get();
    if (CheckedSeek(stream, lump.Offset) != 1)
    {
        return bytes;
    }
    // The scan checked the entry against the file, but the file may have shrunk since. No
    // room is taken for bytes it no longer holds: that is a short read, reported as one.
    const std::int64_t fileSize = FileSize(stream, 1);
    if (static_cast<std::int64_t>(lump.Offset) + lump.Size > fileSize)
    {
        IoFailure("read", stream, 0, lump.Size);
        return bytes;
    }
    bytes.resize(static_cast<std::size_t>(lump.Size));
    if (CheckedRead(stream, bytes.data(), lump.Size) != 1)
    {
        bytes.clear();
    }
    return bytes;
}

} // namespace kelvar::wad
