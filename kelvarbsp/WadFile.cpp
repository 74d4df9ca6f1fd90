// WAD files as kelvarbsp sees them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/WadFile.h"

#include "wad/DirectoryReader.h"
#include "wad/WadFormat.h"

#include <cstring>
#include <fstream>
#include <system_error>

namespace kelvar::kelvarbsp
{
namespace
{

bool ReadBytes(std::FILE* stream, std::int64_t offset, char* data, std::size_t size)
{
    return fseeko(stream, static_cast<off_t>(offset), SEEK_SET) == 0 &&
           (size == 0 || std::fread(data, size, 1, stream) == 1);
}

void PutLe32(std::string& bytes, std::int32_t value)
{
    std::uint8_t raw[4];
    wad::WriteLe32(raw, value);
    bytes.append(reinterpret_cast<const char*>(raw), sizeof raw);
}

// Why the directory can't be built on, in the words of the log; empty when it can.
std::string Refusal(const wad::DirectoryReport& read, const std::string& path)
{
    if (read.Problem == wad::HeaderProblem::TooSmall)
    {
        return path + " is too short to be a WAD";
    }
    if (read.Problem != wad::HeaderProblem::None ||
        (read.Magic != "PWAD" && read.Magic != "IWAD") || read.RunsPastEnd)
    {
        return path + " is not a WAD (its header or directory is damaged)";
    }
    if (!read.BadEntries.empty())
    {
        const wad::LumpEntry& bad = read.BadEntries.front();
        return "lump " + std::to_string(read.Entries.size()) + " (" + bad.Name.Text() + ") of " +
               path + " lies outside the file";
    }
    return {};
}

} // namespace

std::optional<WadFile> OpenWad(const std::filesystem::path& path, std::string& reason)
{
    WadFile wad;
    wad.Stream.reset(std::fopen(path.c_str(), "rb"));
    if (!wad.Stream)
    {
        reason = "cannot open " + path.string() + ": " + std::strerror(errno);
        return std::nullopt;
    }
    // kelvarbsp rewrites the file it builds into: a directory with anything wrong is refused
    // whole, never worked round.
    wad::DirectoryReport read =
        wad::ReadDirectoryOf(wad.Stream.get(), wad::BadEntryRule::StopAtBadEntry);
    reason = Refusal(read, path.string());
    if (!reason.empty())
    {
        return std::nullopt;
    }
    wad.Magic = read.Magic;
    wad.End = read.FileSize;
    wad.Lumps = std::move(read.Entries);
    return wad;
}

bool ReadLump(WadFile& wad, const WadLump& lump, std::string& bytes)
{
    bytes.resize(static_cast<std::size_t>(lump.Size));
    return lump.Size == 0 || ReadBytes(wad.Stream.get(), lump.Offset, bytes.data(), bytes.size());
}

const WadLump* LevelLumps::Find(const WadFile& wad, const std::string& name) const
{
    const auto found = Lumps.find(name);
    return found == Lumps.end() ? nullptr : &wad.Lumps[found->second];
}

std::optional<LevelLumps> FindLevel(const WadFile& wad, std::string_view levelName)
{
    const std::optional<wad::LevelSpan> span =
        wad::FindLevelEntries(wad.Lumps, wad::LumpName::From(levelName));
    if (!span)
    {
        return std::nullopt;
    }
    LevelLumps level;
    level.Marker = span->Marker;
    for (std::size_t j = span->Marker + 1; j < span->End; ++j)
    {
        // The GL nodes are no lumps zdbsp reads or writes here.
        if (!wad.Lumps[j].Name.StartsWith("GL_"))
        {
            level.Lumps.emplace(wad.Lumps[j].Name.Text(), j);
        }
    }
    return level;
}

bool ReplaceLumps(WadFile& wad, const std::filesystem::path& path,
                  const std::map<std::size_t, std::string>& replacements, std::string& reason)
{
    if (replacements.empty())
    {
        wad.Stream.reset();
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
        const wad::LumpEntry& lump = wad.Lumps[i];
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
    wad.Stream.reset();
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
