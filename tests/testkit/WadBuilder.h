// WadBuilder: WAD files built byte by byte for tests, damaged ones included.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::testkit
{

/// Builds a WAD in memory: header, the lumps' data in order, the directory at the end.
/// `WadBuilder().Level("MAP01").Lump("TEXTURE1", "...").Write(path)`.
class WadBuilder
{
public:
    explicit WadBuilder(std::string magic = "PWAD");

    /// A lump with data.
    WadBuilder& Lump(std::string_view name, std::string_view data);
    /// A lump of size 0 (a marker).
    WadBuilder& Marker(std::string_view name);
    /// A Doom-layout level: the marker and THINGS ... BLOCKMAP, each lump with a few bytes of
    /// its own (its name repeated `size` bytes long).
    WadBuilder& Level(std::string_view name, int size = 16);
    /// A Hexen-layout level: Level plus BEHAVIOR.
    WadBuilder& HexenLevel(std::string_view name, int size = 16);
    /// The level's lumps in the given order after the marker (names only).
    WadBuilder& LevelInOrder(std::string_view name, const std::vector<std::string>& lumps,
                             int size = 16);
    /// A directory entry with these values and no data of its own.
    WadBuilder& Entry(std::int32_t offset, std::int32_t size, std::string_view name);

    /// Overrides the header's lump count.
    WadBuilder& HeaderCount(std::int32_t count);
    /// Overrides the header's directory offset.
    WadBuilder& HeaderDirectory(std::int32_t offset);

    /// The file's bytes.
    std::string Bytes() const;
    /// Writes the file and returns its path as text.
    std::string Write(const std::filesystem::path& path) const;

    /// The data offset the next lump will get.
    std::int32_t NextOffset() const;

private:
    struct Item
    {
        std::string Name;
        std::string Data;
        std::optional<std::int32_t> Offset; // a raw entry: these values, no data
        std::int32_t Size = 0;
    };

    std::string Magic;
    std::vector<Item> Items;
    std::optional<std::int32_t> Count;
    std::optional<std::int32_t> DirectoryOffset;
};

/// The data WadBuilder gives a level lump: its name repeated to `size` bytes.
std::string LumpFiller(std::string_view name, int size);

} // namespace kelvar::testkit
