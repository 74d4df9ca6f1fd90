// The conversation of a level save: the questions before the write, the Save dialog, the
// unused-object clean-up, the write itself, and the node build with its recovery.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "wad/SaveOptions.h"

#include <optional>
#include <string>

namespace kelvar::app
{

/// Writes `level` into `path` under the name its marker has in the master directory now.
/// `oldPath` is the file the level was read from, `oldLevelName` its name there when Save As
/// renamed it (empty: the same). `code` is the save code; `replace` a lump to put in along the
/// way. Asks what the save needs: "Nothing Made" for a level without LineDefs, SideDefs or
/// Sectors, the Extended Format question past the Doom format's limits, the "**WARNING**" of
/// levels from another game, and the Save dialog ("Kelvar - Verify REJECT, NODES & GROUP
/// SAVE") when the code, the nodes or the file call for it. With the nodes to rebuild the file
/// goes through ~Kelvar.WAD and the node builder, whose failure offers to recover the file
/// ("Node Error"). Returns 0, or -1 when the save stopped (the old file then has its name back).
/// The level's change counter is 0 after a save; the node counter too when nodes were built.
[[nodiscard]] int WriteLevelFile(map::LevelData& level, const std::string& path,
                                 const std::string& oldPath, int code,
                                 const std::optional<wad::LumpReplace>& replace = std::nullopt,
                                 const std::string& oldLevelName = {});

} // namespace kelvar::app
