// A level alone in a new PWAD of its own, for another program to read: the 3D viewer's copy.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelCopy.h"

#include "map/GameCodes.h"
#include "wad/CheckedFile.h"
#include "wad/FindLump.h"
#include "wad/LevelWriter.h"
#include "wad/WadState.h"

#include <utility>

namespace kelvar::wad
{
namespace
{

// The level with its unknown wall textures replaced. The copy shares the level's arrays but
// for the SideDef blocks it changes.
map::LevelData Cleaned(const map::LevelData& level, const TextureCleaning& cleaning)
{
    map::LevelData copy = level;
    const auto unknown = [&](const map::TextureName& name)
    { return name.Chars[0] != '-' && name.Chars[0] != '$' && !cleaning.Known(name); };
    for (std::int32_t i = 0; i < copy.SideDefs.Count(); ++i)
    {
        const map::SideDef& side = std::as_const(copy).SideDefs[static_cast<std::size_t>(i)];
        if (unknown(side.UpperTexture) || unknown(side.LowerTexture) || unknown(side.NormalTexture))
        {
            map::SideDef& changed = copy.SideDefs[static_cast<std::size_t>(i)];
            for (map::TextureName* name :
                 {&changed.UpperTexture, &changed.LowerTexture, &changed.NormalTexture})
            {
                *name = unknown(*name) ? cleaning.Replacement : *name;
            }
        }
    }
    return copy;
}

} // namespace

int WriteLevelCopy(const map::LevelData& original, const std::string& path,
                   const std::string& levelName, const TextureCleaning* cleaning)
{
    const map::LevelData cleaned =
        cleaning != nullptr && cleaning->Known ? Cleaned(original, *cleaning) : map::LevelData{};
    const map::LevelData& level = cleaning != nullptr && cleaning->Known ? cleaned : original;
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
