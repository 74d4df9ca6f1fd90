// The commands of kelvar-cli.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace kelvar::cli
{

/// Exit statuses of kelvar-cli.
inline constexpr int ExitOk = 0;
inline constexpr int ExitUsage = 1;
inline constexpr int ExitBadFile = 2;

/// Runs the command named by argv[1]; returns the process's exit status.
int Run(int argc, char** argv);

/// The edit mode a word names: things, linedefs, vertexes or sectors; 0 for any other.
int EditModeOfWord(const std::string& word);

} // namespace kelvar::cli
