// Writing a WAD front to back: the level's lumps from memory as rows of the Doom, Hexen or
// Extended layout, written a block at a time, other lumps' bytes copied, then the directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/GameCodes.h"
#include "map/LevelData.h"
#include "wad/LumpDirectory.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::wad
{

/// How the rows are laid out.
struct RowLayout
{
    int Layout = map::LayoutDoom;     // a map::LayoutCode
    bool Wide = false;                // the Extended Format's 32-bit LineDef rows
    bool ShowInvisibleLines = false;  // flag 128 cleared
    bool ClearSectorSpecials = false; // Sector types written as 0
};

/// The rows the project writes `level` in: the Hexen layout in a Hexen-format project, the
/// wide LineDef rows past 65534 LineDefs or SideDefs, and with `writerSettings` the 3D test's
/// settings that act on every save.
RowLayout ProjectRowLayout(const map::LevelData& level, bool writerSettings);

/// The THINGS lump as bytes. The Things of the Hexen layout lose flag 0x0010.
std::vector<std::uint8_t> ThingRows(const map::LevelData& level, const RowLayout& layout);

/// One entry of a directory being written.
struct DirectoryRow
{
    std::int32_t Offset = 0;
    std::int32_t Size = 0;
    std::string Name;
};

/// A WAD being written: its stream, the offset the next lump's data starts at, and the
/// directory rows entered so far.
struct WadOutput
{
    StreamPtr Stream;
    std::int64_t Offset = WadHeaderSize;
    std::vector<DirectoryRow> Rows;
};

/// Adds the directory row `name` for the data from `start` to the running offset.
void EnterRow(WadOutput& out, std::string name, std::int64_t start);

/// Writes `size` bytes at the running offset. Returns false after a failed write was reported.
bool WriteData(WadOutput& out, const void* bytes, std::int64_t size);

/// Copies `size` bytes from `offset` of the file of record `fileNumber` (reopened when closed)
/// to the running offset. Returns false for a record out of range, or after a failed transfer
/// was reported.
bool CopyFileData(WadOutput& out, int fileNumber, std::int32_t offset, std::int32_t size);

/// True for the lumps a level writes from memory: THINGS, LINEDEFS, SIDEDEFS, VERTEXES and
/// SECTORS.
bool IsObjectLump(std::string_view name);

/// Writes the object lump `name` (IsObjectLump) from memory, in blocks, and enters it. Returns
/// false after a failed write was reported.
bool WriteObjectLump(WadOutput& out, const map::LevelData& level, const RowLayout& layout,
                     std::string_view name);

/// Writes the level's script and enters it as BEHAVIOR: the bytes of `old` when it has any,
/// else an empty script of 16 zero bytes. Returns false after a reported failure.
bool WriteBehavior(WadOutput& out, const LumpEntry* old);

/// Writes the rows as a WAD directory at the stream's current position, then the header at
/// offset 0: `magic`, the count, and the directory's position. Returns false after a failed
/// write was reported.
bool WriteDirectoryAndHeader(WadOutput& out, std::string_view magic);

} // namespace kelvar::wad
