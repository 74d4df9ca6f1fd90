// The level's lumps from memory: Things, LineDefs, SideDefs, Vertexes and Sectors as rows of
// the Doom, Hexen or Extended layout, written to a stream a block at a time.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::wad
{

/// How the rows are laid out.
struct RowLayout
{
    int Layout = 1;                   // 1 Doom, 2 Hexen
    bool Wide = false;                // the Extended Format's 32-bit LineDef rows
    bool ShowInvisibleLines = false;  // flag 128 cleared
    bool ClearSectorSpecials = false; // Sector types written as 0
};

/// The rows of each kind, as bytes. The Things of the Hexen layout lose flag 0x0010.
std::vector<std::uint8_t> ThingRows(const map::LevelData& level, const RowLayout& layout);
std::vector<std::uint8_t> LineDefRows(const map::LevelData& level, const RowLayout& layout);
std::vector<std::uint8_t> SideDefRows(const map::LevelData& level);
std::vector<std::uint8_t> VertexRows(const map::LevelData& level);
std::vector<std::uint8_t> SectorRows(const map::LevelData& level, const RowLayout& layout);

/// The byte size of each lump as the writers below write it.
std::int64_t ThingRowsSize(const map::LevelData& level, const RowLayout& layout);
std::int64_t LineDefRowsSize(const map::LevelData& level, const RowLayout& layout);

/// Writes a kind's rows to `stream` (the current position) in blocks, adding the bytes
/// written to `counter`. Returns false after a failed write was reported.
bool WriteThings(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                 std::int64_t& counter);
bool WriteLineDefs(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                   std::int64_t& counter);
bool WriteSideDefs(std::FILE* stream, const map::LevelData& level, std::int64_t& counter);
bool WriteVertexes(std::FILE* stream, const map::LevelData& level, std::int64_t& counter);
bool WriteSectors(std::FILE* stream, const map::LevelData& level, const RowLayout& layout,
                  std::int64_t& counter);

/// One entry of a directory being written.
struct DirectoryRow
{
    std::int32_t Offset = 0;
    std::int32_t Size = 0;
    std::string Name;
};

/// Writes `rows` as a WAD directory at the stream's current position, then the header at
/// offset 0: `magic`, the count, and the directory's position. Returns false after a failed
/// write was reported.
bool WriteDirectoryAndHeader(std::FILE* stream, const std::vector<DirectoryRow>& rows,
                             std::string_view magic);

} // namespace kelvar::wad
