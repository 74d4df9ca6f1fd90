// PNAMES and TEXTURE1 lumps built byte by byte for the merge tests, and read back.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/TextureLumps.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "wad/WadFormat.h"

#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <zlib.h>

namespace kelvar::lumps::testing
{

/// One patch of a texture built for a test.
struct PatchDef
{
    int X = 0;
    int Y = 0;
    int Index = 0;

    bool operator==(const PatchDef&) const = default;
};

/// One texture built for a test.
struct TextureDef
{
    std::string Name;
    int Width = 64;
    int Height = 128;
    std::vector<PatchDef> Patches;

    bool operator==(const TextureDef&) const = default;
};

inline void PutLe(std::string& bytes, std::size_t at, std::int64_t value, int size)
{
    for (int i = 0; i < size; ++i)
    {
        bytes[at + static_cast<std::size_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFF);
    }
}

/// A PNAMES lump of these names.
inline std::string PnamesBytes(const std::vector<std::string>& names)
{
    std::string bytes(4 + 8 * names.size(), '\0');
    PutLe(bytes, 0, static_cast<std::int64_t>(names.size()), 4);
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        bytes.replace(4 + 8 * i, names[i].size(), names[i]);
    }
    return bytes;
}

/// A TEXTURE1 lump in Doom's layout, records back to back in order.
inline std::string TextureBytes(const std::vector<TextureDef>& textures)
{
    std::string bytes(4 + 4 * textures.size(), '\0');
    PutLe(bytes, 0, static_cast<std::int64_t>(textures.size()), 4);
    for (std::size_t t = 0; t < textures.size(); ++t)
    {
        const TextureDef& texture = textures[t];
        PutLe(bytes, 4 + 4 * t, static_cast<std::int64_t>(bytes.size()), 4);
        std::string record(22 + 10 * texture.Patches.size(), '\0');
        record.replace(0, texture.Name.size(), texture.Name);
        PutLe(record, 12, texture.Width, 2);
        PutLe(record, 14, texture.Height, 2);
        PutLe(record, 20, static_cast<std::int64_t>(texture.Patches.size()), 2);
        for (std::size_t p = 0; p < texture.Patches.size(); ++p)
        {
            PutLe(record, 22 + 10 * p, texture.Patches[p].X, 2);
            PutLe(record, 24 + 10 * p, texture.Patches[p].Y, 2);
            PutLe(record, 26 + 10 * p, texture.Patches[p].Index, 2);
            PutLe(record, 28 + 10 * p, 1, 2);
        }
        bytes += record;
    }
    return bytes;
}

inline std::vector<std::uint8_t> AsBytes(const std::string& text)
{
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

/// The textures of a TEXTUREx lump as TextureLump reads them, in order.
inline std::vector<TextureDef> ReadTextures(const std::vector<std::uint8_t>& lump)
{
    const gfx::TextureLump read(lump, 1, 0, gfx::TextureLayout{});
    std::vector<TextureDef> textures;
    for (int i = 0; i < read.Count(); ++i)
    {
        const std::optional<gfx::TextureRecord> record = read.Record(i);
        if (!record)
        {
            continue;
        }
        TextureDef texture{record->Name.Text(), record->Width, record->Height, {}};
        for (const gfx::TexturePatch& patch : read.Patches(*record))
        {
            texture.Patches.push_back({patch.X, patch.Y, patch.Index});
        }
        textures.push_back(texture);
    }
    return textures;
}

/// The names of a PNAMES lump.
inline std::vector<std::string> ReadPnames(const std::vector<std::uint8_t>& lump)
{
    std::vector<std::string> names;
    const std::int64_t count = lump.size() < 4 ? 0 : wad::ReadLe32(lump.data());
    for (std::int64_t i = 0; i < count && 4 + 8 * static_cast<std::size_t>(i) + 8 <= lump.size();
         ++i)
    {
        names.push_back(wad::LumpName::FromBytes(lump.data() + 4 + 8 * i).Text());
    }
    return names;
}

/// One lump of a WAD file as the file holds it.
struct WadLump
{
    std::string Name;
    std::string Data;

    bool operator==(const WadLump&) const = default;
};

/// Every lump of a WAD file, read straight from its bytes; empty for a file that isn't one.
inline std::vector<WadLump> ReadWadLumps(const std::filesystem::path& path)
{
    const std::string file = testkit::ReadFile(path);
    std::vector<WadLump> lumps;
    if (file.size() < 12)
    {
        return lumps;
    }
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(file.data());
    const std::int32_t count = wad::ReadLe32(bytes + 4);
    const std::int32_t directory = wad::ReadLe32(bytes + 8);
    for (std::int32_t i = 0; i < count; ++i)
    {
        const std::size_t at =
            static_cast<std::size_t>(directory) + 16 * static_cast<std::size_t>(i);
        const std::int32_t offset = wad::ReadLe32(bytes + at);
        const std::int32_t size = wad::ReadLe32(bytes + at + 4);
        lumps.push_back(
            {wad::LumpName::FromBytes(bytes + at + 8).Text(),
             file.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size))});
    }
    return lumps;
}

/// The lumps named `name`, in order.
inline std::vector<WadLump> LumpsNamed(const std::vector<WadLump>& lumps, const std::string& name)
{
    std::vector<WadLump> found;
    for (const WadLump& lump : lumps)
    {
        if (lump.Name == name)
        {
            found.push_back(lump);
        }
    }
    return found;
}

/// The omgifol reading of a WAD (tests/lumps/omg_merge.py), line by line.
inline std::vector<std::string> OmgReading(const std::filesystem::path& path)
{
    const testkit::CommandOutput output =
        testkit::RunCommand("/usr/bin/python3 " KELVAR_SOURCE_DIR "/tests/lumps/omg_merge.py '" +
                            path.string() + "' 2>&1");
    EXPECT_EQ(output.Status, 0) << "omg_merge.py failed on " << path << ":\n" << output.Text;
    return output.Lines();
}

/// The entry lines omgifol should print for these lumps.
inline std::vector<std::string> EntryLines(const std::vector<WadLump>& lumps)
{
    std::vector<std::string> lines;
    for (const WadLump& lump : lumps)
    {
        const uLong crc = crc32(0L, reinterpret_cast<const Bytef*>(lump.Data.data()),
                                static_cast<uInt>(lump.Data.size()));
        lines.push_back("E " + lump.Name + " " + std::to_string(lump.Data.size()) + " " +
                        std::to_string(crc));
    }
    return lines;
}

/// The lines of one kind ("E", "M", "T") of an omgifol reading.
inline std::vector<std::string> LinesOf(const std::vector<std::string>& reading,
                                        const std::string& kind)
{
    std::vector<std::string> lines;
    for (const std::string& line : reading)
    {
        if (line.rfind(kind + " ", 0) == 0)
        {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace kelvar::lumps::testing
