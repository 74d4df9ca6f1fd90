// The file a save writes: the level's own file, a file of the level's own, or one the user
// picks; refused when it is the IWAD, a file in use or a level name another PWAD holds.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace kelvar::app
{

/// The file a save writes: the level's own file turned into its .BAK, a new <level>.wad for
/// a level of the IWAD, or what the user picks (`ask`, the "Save PWAD name" dialog). Refuses
/// the IWAD and files in use, a level name another PWAD uses ("You have read a PWAD file that
/// is already using the same Level name"), and a new name in a multi-level PWAD ("This is in
/// a PWAD with multiple Levels"). Returns the path, or nothing after the reason was shown.
/// `groupSave` is the Group Save choice.
std::optional<std::string> ChooseSavePath(const std::string& newLevelName,
                                          const std::string& oldLevelName, bool ask,
                                          bool groupSave);

} // namespace kelvar::app
