// The lumps of a WAD file held in memory.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gfx/WadLumps.h"

#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace kelvar::testkit
{

WadLumps::WadLumps(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    File.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (File.size() < 12)
    {
        ADD_FAILURE() << path << " is no WAD";
        return;
    }
    const std::int32_t count = wad::ReadLe32(File.data() + 4);
    const std::int32_t directory = wad::ReadLe32(File.data() + 8);
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::uint8_t* entry = File.data() + directory + i * 16;
        WadLump lump;
        lump.Offset = wad::ReadLe32(entry);
        lump.Size = wad::ReadLe32(entry + 4);
        const char* name = reinterpret_cast<const char*>(entry + 8);
        lump.Name.assign(name, strnlen(name, 8));
        lump.Index = static_cast<std::size_t>(i);
        Directory.push_back(lump);
    }
}

std::span<const std::uint8_t> WadLumps::Bytes(const WadLump& lump) const
{
    return BytesFrom(lump, lump.Size);
}

std::span<const std::uint8_t> WadLumps::BytesFrom(const WadLump& lump, std::int64_t count) const
{
    const auto start = static_cast<std::size_t>(lump.Offset);
    const std::size_t available = File.size() - std::min(File.size(), start);
    return std::span<const std::uint8_t>(File).subspan(
        std::min(File.size(), start), std::min(available, static_cast<std::size_t>(count)));
}

std::vector<WadLump> WadLumps::Between(const std::string& start, const std::string& end) const
{
    std::vector<WadLump> found;
    bool inside = false;
    for (const WadLump& lump : Directory)
    {
        if (lump.Name == start)
        {
            inside = true;
        }
        else if (lump.Name == end)
        {
            inside = false;
        }
        else if (inside && lump.Size > 0)
        {
            found.push_back(lump);
        }
    }
    return found;
}

} // namespace kelvar::testkit
