// A level alone in a new PWAD of its own, for another program to read: the 3D viewer's copy.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Save.h"

#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/FindLump.h"
#include "wad/LevelWriter.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>
#include <array>

namespace kelvar::wad
{

int WriteLevelCopy(const map::LevelData& level, const std::string& path,
                   const std::string& levelName)
{
    WadState& wad = Wad();
    StreamPtr out = CheckedOpen(path, "wb", 0);
    if (!out)
    {
        return -1;
    }
    RowLayout rows;
    rows.Layout = wad.Game.Format == 4 ? 2 : 1;
    rows.Wide = level.LineDefs.Count() > 65534 || level.SideDefs.Count() > 65534;
    rows.ShowInvisibleLines = wad.Writer.ShowInvisibleLines;
    rows.ClearSectorSpecials = wad.Writer.ClearSectorSpecials;

    std::vector<DirectoryRow> entries{{WadHeaderSize, 0, levelName}};
    std::int64_t offset = WadHeaderSize;
    const std::uint8_t header[WadHeaderSize] = {};
    if (CheckedWrite(out.get(), header, WadHeaderSize) != 1)
    {
        return -1;
    }
    const auto put = [&](const char* name, auto write)
    {
        std::int64_t counter = 0;
        if (!write(counter))
        {
            return false;
        }
        entries.push_back(
            {static_cast<std::int32_t>(offset), static_cast<std::int32_t>(counter), name});
        offset += counter;
        return true;
    };
    const auto none = [](std::int64_t&) { return true; };
    std::FILE* stream = out.get();
    const bool written =
        put("THINGS", [&](std::int64_t& c) { return WriteThings(stream, level, rows, c); }) &&
        put("LINEDEFS", [&](std::int64_t& c) { return WriteLineDefs(stream, level, rows, c); }) &&
        put("SIDEDEFS", [&](std::int64_t& c) { return WriteSideDefs(stream, level, c); }) &&
        put("VERTEXES", [&](std::int64_t& c) { return WriteVertexes(stream, level, c); }) &&
        put("SEGS", none) && put("SSECTORS", none) && put("NODES", none) &&
        put("SECTORS", [&](std::int64_t& c) { return WriteSectors(stream, level, rows, c); }) &&
        put("REJECT", none) && put("BLOCKMAP", none);
    if (!written)
    {
        return -1;
    }
    if (wad.Game.Format == 4)
    {
        // The level's own script when it has one, else an empty one.
        const int behavior = FindLevelLump("BEHAVIOR", false);
        const bool own = behavior >= 0 && Master()[static_cast<std::size_t>(behavior)].Size > 0;
        if (!put("BEHAVIOR",
                 [&](std::int64_t& c)
                 {
                     if (!own)
                     {
                         const std::array<std::uint8_t, 16> empty{};
                         c = 16;
                         return CheckedWrite(stream, empty.data(), 16) == 1;
                     }
                     const LumpEntry& entry = Master()[static_cast<std::size_t>(behavior)];
                     FileRec& file = Wad().Files[static_cast<std::size_t>(entry.FileNumber)];
                     EnsureOpen(file);
                     c = entry.Size;
                     return file.Stream && CheckedSeek(file.Stream.get(), entry.Offset) == 1 &&
                            CopyFileSpan(stream, file.Stream.get(), entry.Size) == 1;
                 }))
        {
            return -1;
        }
    }
    if (!WriteDirectoryAndHeader(stream, entries, "PWAD"))
    {
        return -1;
    }
    return std::fclose(out.release()) == 0 ? 0 : -1;
}

} // namespace kelvar::wad
