// The lumps of a WAD file held in memory, for picture tests that walk every lump of an IWAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kelvar::testkit
{

/// One lump: its name, its place in the directory and its bytes.
struct WadLump
{
    std::string Name;
    std::size_t Index = 0;
    std::int64_t Offset = 0;
    std::int64_t Size = 0;
};

/// A whole WAD file read into memory with its directory.
class WadLumps
{
public:
    /// Reads `path`; fails the test (and holds no lumps) when it is no WAD.
    explicit WadLumps(const std::string& path);

    const std::vector<WadLump>& Lumps() const { return Directory; }
    /// The lump's own bytes.
    std::span<const std::uint8_t> Bytes(const WadLump& lump) const;
    /// The bytes from the lump's start on, `count` of them or up to the end of the file.
    std::span<const std::uint8_t> BytesFrom(const WadLump& lump, std::int64_t count) const;
    /// The lumps between the markers `start` and `end` (exclusive), of more than 0 bytes.
    std::vector<WadLump> Between(const std::string& start, const std::string& end) const;

private:
    std::vector<std::uint8_t> File;
    std::vector<WadLump> Directory;
};

} // namespace kelvar::testkit
