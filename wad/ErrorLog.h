// The common error log, KelvarErrorLog in the program's directory.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace kelvar::wad
{

/// Creates KelvarErrorLog afresh ("wt") and resets its line counter. Returns false after
/// "Failed to create %s".
bool OpenErrorLog();

/// Adds a numbered line ("%4d. %s"), or a plain one while the counter is negative, and an
/// indented line for each further text. Opens the log first when it isn't open.
void LogLine(std::initializer_list<std::string_view> texts);

/// The number of numbered lines written since the log was opened.
int ErrorLogLines();

/// Closes the log.
void CloseErrorLog();

/// Closes the log and shows it in the text viewer under `caption`.
void ShowErrorLog(const std::string& caption);

} // namespace kelvar::wad
