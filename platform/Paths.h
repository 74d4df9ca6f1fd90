// Where the program keeps its files on this system.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

namespace kelvar::platform
{

/// The program's own directory for status files, logs and temporary WADs:
/// $XDG_CONFIG_HOME/kelvar/, or ~/.config/kelvar/ when that is unset.
std::filesystem::path DefaultProgramDir();

/// The user's home directory ($HOME), or empty.
std::filesystem::path HomeDir();

} // namespace kelvar::platform
