// kelvar-cli commands over the WAD directory: lumps, levels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// Opens the IWAD and the PWADs named in `files` (IWAD first). Returns ExitOk, or
/// ExitBadFile when a file was refused (the IWAD's refusal stops; a PWAD's doesn't).
int OpenFiles(const std::vector<std::string>& files);

/// Opens the files and reads `levelName` into the map model's level, with the game's type
/// tables chosen. Returns the exit status so far; `loaded` tells whether the level is there
/// (a missing one is reported). `newLevel` reads it made empty, as File, New Level does.
int OpenLevel(const std::vector<std::string>& files, const std::string& levelName, bool& loaded,
              bool newLevel = false);

/// kelvar-cli lumps IWAD [PWAD...]
int ListLumps(const std::vector<std::string>& files);

/// kelvar-cli levels IWAD [PWAD...]
int ListLevels(const std::vector<std::string>& files);

} // namespace kelvar::cli
