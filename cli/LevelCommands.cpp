// kelvar-cli commands over one level: level.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/LevelCommands.h"

#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "map/GameCodes.h"
#include "map/LevelData.h"
#include "wad/LevelList.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <cstdio>

namespace kelvar::cli
{

int DescribeLevel(const std::vector<std::string>& arguments)
{
    const std::string& levelName = arguments.back();
    const std::vector<std::string> files(arguments.begin(), arguments.end() - 1);
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    const int listed = wad::FindLevel(wad::LumpName::From(levelName));
    if (listed < 0)
    {
        std::fprintf(stderr, "kelvar-cli: no level %s in these files\n", levelName.c_str());
        return ExitBadFile;
    }
    map::LevelData level;
    (void)wad::ReadLevel(level, levelName, false);
    const wad::WadState& state = wad::Wad();
    const auto file = static_cast<std::size_t>(state.CurrentFile.FileNumber);
    std::printf("level %s from %s\n", levelName.c_str(), state.Files[file].FileName.c_str());
    std::printf("layout: %s\n", level.LevelLayout == map::LayoutHexen ? "Hexen" : "Doom");
    std::printf("things: %d\n", level.Things.Count());
    std::printf("linedefs: %d\n", level.LineDefs.Count());
    std::printf("sidedefs: %d\n", level.SideDefs.Count());
    std::printf("vertexes: %d\n", level.Vertexes.Count());
    std::printf("sectors: %d\n", level.Sectors.Count());
    std::printf("segs: %d\n", level.SegCount);
    std::printf("ssectors: %d\n", level.SSectorCount);
    std::printf("nodes: %d\n", level.NodeCount);
    std::printf("reject: %d bytes\n", level.RejectSize);
    std::printf("blockmap: %d bytes\n", level.BlockmapSize);
    std::printf("behavior: %d bytes\n", level.BehaviorSize);
    std::printf("bounds: x %d to %d, y %d to %d\n", level.MinX, level.MaxX, level.MinY, level.MaxY);
    std::printf("changed: %s\n", level.ChangeCount != 0 ? "yes (repaired while reading)" : "no");
    return status;
}

} // namespace kelvar::cli
