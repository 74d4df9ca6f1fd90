// A level alone in a new PWAD of its own, for another program to read: the 3D viewer's copy.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelCopy.h"

#include "map/GameCodes.h"
#include "wad/CheckedFile.h"
#include "wad/FindLump.h"
#include "wad/LevelWriter.h"
#include "wad/WadState.h"

namespace kelvar::wad
{

int WriteLevelCopy(const map::LevelData& level, const std::string& path,
                   const std::string& levelName)
{
    WadOutput out;
    out.Stream = CheckedOpen(path, "wb", 0);
    if (!out.Stream)
    {
        return -1;
    }
    const RowLayout rows = ProjectRowLayout(level, true);
    const std::uint8_t header[WadHeaderSize] = {};
    if (CheckedWrite(out.Stream.get(), header, WadHeaderSize) != 1)
    {
        return -1;
    }
    out.Rows.push_back({WadHeaderSize, 0, levelName});
    const auto none = [&](const char* name)
    {
        EnterRow(out, name, out.Offset);
        return true;
    };
    const auto put = [&](std::string_view name) { return WriteObjectLump(out, level, rows, name); };
    if (!put("THINGS") || !put("LINEDEFS") || !put("SIDEDEFS") || !put("VERTEXES") ||
        !none("SEGS") || !none("SSECTORS") || !none("NODES") || !put("SECTORS") ||
        !none("REJECT") || !none("BLOCKMAP"))
    {
        return -1;
    }
    if (Wad().Game.Format == map::GameHexen)
    {
        // The level's own script when it has one, else an empty one.
        const int behavior = FindLevelLump("BEHAVIOR", false);
        if (!WriteBehavior(out,
                           behavior >= 0 ? &Master()[static_cast<std::size_t>(behavior)] : nullptr))
        {
            return -1;
        }
    }
    if (!WriteDirectoryAndHeader(out, "PWAD"))
    {
        return -1;
    }
    return std::fclose(out.Stream.release()) == 0 ? 0 : -1;
}

} // namespace kelvar::wad
