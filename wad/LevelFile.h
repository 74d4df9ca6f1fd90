// Writing the level's file: the plan of a save worked out from the level and the directories,
// and the write that follows it: the other lumps of the file in their order, the level's lumps
// in the canonical order, the reject table, the directory.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shell holds the conversation of a save (its questions, the Save dialog, the clean-up and
// the node build) and settles the plan's choices; this layer only reads and writes files.
#pragma once

#include "map/LevelData.h"
#include "wad/LevelWriter.h"
#include "wad/SaveOptions.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::wad
{

/// Everything one save writes, worked out before the file is created.
struct SavePlan
{
    std::string LevelName;    // the marker's name in the new file
    std::string OldLevelName; // the marker's name in the old file
    std::string TargetPath;   // the file the user gets
    std::string WritePath;    // the file written: the target, or ~Kelvar.WAD for a node build
    int Code = SaveLevelCode;
    std::size_t Marker = 0; // the level's marker in the master directory
    int LevelFile = -1;     // the record of the file the level came from
    bool FromPwad = false;
    bool FileHasMore = false; // the level's file holds more than the level
    bool Group = false;       // the other lumps of the file go along
    bool BuildNodes = false;  // a node build follows on WritePath
    SaveOptions Choices;
    RowLayout Rows;
    std::vector<LumpEntry> Level; // the level's entries after the marker, in master order
    std::optional<LumpReplace> Replace;
};

/// The plan of a save of `level` into `path` under the name its marker has in the master
/// directory now (`oldLevelName`: its name in the old file when Save As renamed it). Its
/// choices are the stored ones, Group is set by the option or a file that holds more than the
/// level. Nothing when the level's marker is no longer in the master directory.
std::optional<SavePlan> PlanLevelSave(const map::LevelData& level, const std::string& path,
                                      int code, const std::optional<LumpReplace>& replace,
                                      const std::string& oldLevelName);

/// Creates the file the plan writes ("wb"). False after the failure was reported.
[[nodiscard]] bool CreateSaveOutput(const SavePlan& plan, WadOutput& out);

/// Writes the whole file under a "Saving %s" progress panel: the header, the lumps ahead of the
/// level (group saves), the marker, the level's lumps, the lumps behind it, a replaced or added
/// lump, the directory; then closes it. False after a reported failure. A level marker not
/// found again in the old file's own directory is fatal: "Level name %s not found in existing
/// file?".
[[nodiscard]] bool WriteLevelSave(WadOutput& out, const map::LevelData& level,
                                  const SavePlan& plan);

/// After a written save: the .BAK and DEL records closed and freed, all files closed, the
/// level's change counter 0; the target becomes an open file of the session and an old file
/// the level moved away from no longer is.
void FinishLevelSave(map::LevelData& level, const std::string& oldPath, const std::string& target);

/// After a save that stopped once its file was chosen: the progress panel closed, a partial
/// file (`out`, when it was created) closed and removed, the .BAK renamed back to `path`. Returns
/// -1.
int AbandonLevelSave(WadOutput& out, const SavePlan& plan, const std::string& path);

} // namespace kelvar::wad
