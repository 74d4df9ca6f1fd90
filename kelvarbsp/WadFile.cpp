// WAD files as kelvarbsp sees them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/WadFile.h"

#include "wad/WadFormat.h"

#include <array>
#include <cstring>
#include <system_error>

namespace kelvar::kelvarbsp
{
namespace
{

/// The lumps that belong to a level after its marker.
constexpr std::array<std::string_view, 12> LevelLumpNames{
    "THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",     "SSECTORS",
    "NODES",  "SECTORS",  "REJECT",   "BLOCKMAP", "BEHAVIOR", "SCRIPTS",
};

bool IsLevelLump(const wad::LumpName& name)
{
    for (const std::string_view lump : LevelLumpNames)
    {
        if (name.Key() == wad::NameKey(lump))
        {
            return true;
        }
    }
    return false;
}

bool ReadBytes(std::ifstream& stream, std::int64_t offset, char* data, std::size_t size)
{
    stream.clear();
    stream.seekg(offset);
    stream.read(data, static_cast<std::streamsize>(size));
    return static_cast<std::size_t>(stream.gcount()) == size;
}

void PutLe32(std::string& bytes, std::int32_t value)
{
    std::uint8_t raw[4];
    wad::WriteLe32(raw, value);
    bytes.append(reinterpret_cast<const char*>(raw), sizeof raw);
}

} // namespace

std::optional<WadFile> OpenWad(const std::filesystem::path& path, std::string& reason)
{
    std::error_code error;
    const std::uintmax_t fileSize = std::filesystem::file_size(path, error);
    WadFile wad;
    wad.Stream.open(path, std::ios::binary);
    if (error || !wad.Stream)
    {
        reason = "cannot open " + path.string() + ": " +
                 (error ? error.message() : std::string(std::strerror(errno)));
        return std::nullopt;
    }
    std::uint8_t header[wad::WadHeaderSize];
    if (!ReadBytes(wad.Stream, 0, reinterpret_cast<char*>(header), sizeof header))
    {
        reason = path.string() + " is too short to be a WAD";
        return std::nullopt;
    }
    wad.Magic.assign(reinterpret_cast<const char*>(header), 4);
    wad.End = static_cast<std::int64_t>(fileSize);
    const std::int32_t count = wad::ReadLe32(header + 4);
    const std::int32_t directory = wad::ReadLe32(header + 8);
    if ((wad.Magic != "PWAD" && wad.Magic != "IWAD") || count < 0 || directory < 0 ||
        static_cast<std::uintmax_t>(directory) +
                static_cast<std::uintmax_t>(count) * wad::DirectoryEntrySize >
            fileSize)
    {
        reason = path.string() + " is not a WAD (its header or directory is damaged)";
        return std::nullopt;
    }
    std::vector<std::uint8_t> entries(static_cast<std::size_t>(count) * wad::DirectoryEntrySize);
    if (!ReadBytes(wad.Stream, directory, reinterpret_cast<char*>(entries.data()), entries.size()))
    {
        reason = "cannot read the directory of " + path.string();
        return std::nullopt;
    }
    wad.Lumps.reserve(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
    {
        const std::uint8_t* entry = entries.data() + i * wad::DirectoryEntrySize;
        WadLump lump{wad::ReadLe32(entry), wad::ReadLe32(entry + 4),
                     wad::LumpName::FromBytes(entry + 8)};
        if (lump.Offset < 0 || lump.Size < 0 ||
            static_cast<std::uintmax_t>(lump.Offset) + static_cast<std::uintmax_t>(lump.Size) >
                fileSize)
        {
            reason = "lump " + std::to_string(i) + " (" + lump.Name.Text() + ") of " +
                     path.string() + " lies outside the file";
            return std::nullopt;
        }
        wad.Lumps.push_back(lump);
    }
    return wad;
}

bool ReadLump(WadFile& wad, const WadLump& lump, std::string& bytes)
{
    bytes.resize(static_cast<std::size_t>(lump.Size));
    return lump.Size == 0 || ReadBytes(wad.Stream, lump.Offset, bytes.data(), bytes.size());
}

const WadLump* LevelLumps::Find(const WadFile& wad, const std::string& name) const
{
    const auto found = Lumps.find(name);
    return found == Lumps.end() ? nullptr : &wad.Lumps[found->second];
}

std::optional<LevelLumps> FindLevel(const WadFile& wad, std::string_view levelName)
{
    const std::uint64_t key = wad::NameKey(levelName);
    for (std::size_t i = 0; i < wad.Lumps.size(); ++i)
    {
        // A level is a marker of that name with THINGS or LINEDEFS behind it.
        if (wad.Lumps[i].Name.Key() != key || i + 1 >= wad.Lumps.size() ||
            !IsLevelLump(wad.Lumps[i + 1].Name))
        {
            continue;
        }
        LevelLumps level;
        level.Marker = i;
        for (std::size_t j = i + 1; j < wad.Lumps.size() && IsLevelLump(wad.Lumps[j].Name); ++j)
        {
            level.Lumps.emplace(wad.Lumps[j].Name.Text(), j);
        }
        return level;
    }
    return std::nullopt;
}

bool ReplaceLumps(WadFile& wad, const std::filesystem::path& path,
                  const std::map<std::size_t, std::string>& replacements, std::string& reason)
{
    if (replacements.empty())
    {
        wad.Stream.close();
        return true;
    }
    // Everything from the first replaced lump on is rewritten, starting where that lump's
    // data began, unless a lump before it lies further on: then the whole file is.
    std::size_t first = replacements.begin()->first;
    std::int64_t start = wad.Lumps[first].Offset;
    for (std::size_t i = 0; i < first; ++i)
    {
        if (static_cast<std::int64_t>(wad.Lumps[i].Offset) + wad.Lumps[i].Size > start)
        {
            first = 0;
            start = wad::WadHeaderSize;
            break;
        }
    }
    std::string data;
    data.reserve(static_cast<std::size_t>(wad.End - start) + 4096);
    std::string directory;
    std::string bytes;
    std::int64_t offset = start;
    for (std::size_t i = 0; i < wad.Lumps.size(); ++i)
    {
        const WadLump& lump = wad.Lumps[i];
        std::int64_t at = lump.Offset;
        std::int32_t size = lump.Size;
        if (i >= first)
        {
            const auto replaced = replacements.find(i);
            if (replaced == replacements.end() && !ReadLump(wad, lump, bytes))
            {
                reason = "cannot read lump " + lump.Name.Text() + " of " + path.string();
                return false;
            }
            const std::string& lumpData = replaced == replacements.end() ? bytes : replaced->second;
            data += lumpData;
            at = offset;
            size = static_cast<std::int32_t>(lumpData.size());
            offset += static_cast<std::int64_t>(lumpData.size());
        }
        PutLe32(directory, static_cast<std::int32_t>(at));
        PutLe32(directory, size);
        directory.append(lump.Name.Chars.data(), lump.Name.Chars.size());
    }
    wad.Stream.close();
    if (offset > INT32_MAX)
    {
        reason = path.string() + " would pass the 2 GB a WAD can address";
        return false;
    }
    std::string header = wad.Magic;
    PutLe32(header, static_cast<std::int32_t>(wad.Lumps.size()));
    PutLe32(header, static_cast<std::int32_t>(offset));
    // Written over the old bytes, not truncated first: freeing and taking blocks again costs
    // more than the write.
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(start);
    file.write(data.data(), static_cast<std::streamsize>(data.size()));
    file.write(directory.data(), static_cast<std::streamsize>(directory.size()));
    file.seekp(0);
    file.write(header.data(), static_cast<std::streamsize>(header.size()));
    file.close();
    std::error_code error;
    const std::uintmax_t end = static_cast<std::uintmax_t>(offset) + directory.size();
    if (file && std::filesystem::file_size(path, error) > end)
    {
        std::filesystem::resize_file(path, end, error);
    }
    if (!file || error)
    {
        reason = "cannot write " + path.string() + ": " +
                 (error ? error.message() : std::string(std::strerror(errno)));
        return false;
    }
    return true;
}

} // namespace kelvar::kelvarbsp
