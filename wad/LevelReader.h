// The level reader: a level's lumps, in the Doom, Hexen or Extended layout, into a LevelData.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>
#include <vector>

namespace kelvar::wad
{

/// Record sizes of the level lumps.
inline constexpr std::size_t DoomThingSize = 10;
inline constexpr std::size_t HexenThingSize = 20;
inline constexpr std::size_t DoomLineSize = 14;
inline constexpr std::size_t HexenLineSize = 16;
inline constexpr std::size_t ExtendedDoomLineSize = 22;
inline constexpr std::size_t ExtendedHexenLineSize = 24;
inline constexpr std::size_t SideDefSize = 30;
inline constexpr std::size_t VertexSize = 4;
inline constexpr std::size_t SectorSize = 26;
inline constexpr std::size_t SegSize = 12;
inline constexpr std::size_t SSectorSize = 4;
inline constexpr std::size_t NodeSize = 28;
/// A LineDef or SideDef count from this on means the level is in the Extended Format.
inline constexpr std::size_t ExtendedFormatCount = 65535;

/// The byte size of a REJECT table for `sectors` Sectors: a bit for each pair.
constexpr std::int64_t RejectSize(std::int64_t sectors)
{
    return (sectors * sectors + 7) / 8;
}

/// Reads the named level of the master directory into `level`, or makes an empty one with
/// `newLevel`. Repairs what it can after asking (bad Vertex, Sector or SideDef references;
/// a level from another game's format); quitting at any question ends the program. A missing
/// required lump is fatal. Returns 1.
int ReadLevel(map::LevelData& level, std::string_view levelName, bool newLevel);

/// The layout of a level, from the file's directory on disk: 1 Doom, 2 Hexen, 0 no level.
/// `directoryIndex` is the marker's entry, or -1 to search by name.
int LevelLayoutOf(std::FILE* stream, std::string_view levelName, int directoryIndex);

/// 30-byte SIDEDEFS records into memory records (the Sector as an unsigned 16-bit number),
/// into `sides`.
void ConvertSideDefsIn(std::span<const std::uint8_t> source, std::size_t count,
                       map::ObjectArray<map::SideDef>& sides);

} // namespace kelvar::wad
