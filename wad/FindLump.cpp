// The lump search family.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FindLump.h"

#include "platform/Fatal.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/WadFormat.h"

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

// Reads a directory from disk: the entries of a WAD that opens and whose header holds.
bool ReadDiskDirectory(const std::filesystem::path& path, std::vector<LumpEntry>& entries,
                       std::string* magic)
{
    StreamPtr stream(std::fopen(path.c_str(), "rb"));
    if (!stream)
    {
        return false;
    }
    std::uint8_t header[WadHeaderSize];
    const std::int64_t size = FileSize(stream.get(), 0);
    if (size < WadHeaderSize || std::fread(header, WadHeaderSize, 1, stream.get()) != 1)
    {
        if (magic != nullptr)
        {
            magic->clear();
        }
        return true;
    }
    if (magic != nullptr)
    {
        magic->assign(reinterpret_cast<const char*>(header), 4);
    }
    const std::int32_t count = ReadLe32(header + 4);
    const std::int32_t offset = ReadLe32(header + 8);
    if (count <= 0 || offset < 0 ||
        static_cast<std::int64_t>(offset) + static_cast<std::int64_t>(count) * DirectoryEntrySize >
            size)
    {
        return true;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count) * DirectoryEntrySize);
    if (fseeko(stream.get(), offset, SEEK_SET) != 0 ||
        std::fread(bytes.data(), bytes.size(), 1, stream.get()) != 1)
    {
        return true;
    }
    entries.resize(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        const std::uint8_t* raw = bytes.data() + i * DirectoryEntrySize;
        entries[i].Offset = ReadLe32(raw);
        entries[i].Size = ReadLe32(raw + 4);
        entries[i].Name = LumpName::FromBytes(raw + 8);
    }
    return true;
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

int FindLevelLump(std::string_view name, bool fatal)
{
    WadState& wad = Wad();
    FileRec& master = wad.Files[0];
    const CurrentFileRec& current = wad.CurrentFile;
    if (current.FileNumber >= 0 && current.FileNumber < FileTableSize)
    {
        EnsureOpen(wad.Files[static_cast<std::size_t>(current.FileNumber)]);
    }
    const std::size_t end = current.LevelStart + static_cast<std::size_t>(current.LumpCount);
    const int found = master.Directory.FindFirst(LumpName::From(name), current.LevelStart, end);
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
    const LumpName wanted = LumpName::From(name);
    for (auto it = entries.rbegin(); it != entries.rend(); ++it)
    {
        if (SameName(it->Name, wanted))
        {
            return *it;
        }
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
    const LumpName wanted = LumpName::From(name);
    for (auto it = entries.rbegin(); it != entries.rend(); ++it)
    {
        if (SameName(it->Name, wanted))
        {
            if (outEntry != nullptr)
            {
                *outEntry = *it;
            }
            return 1;
        }
    }
    return 0;
}

} // namespace kelvar::wad
