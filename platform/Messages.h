// The message forms every part of the system uses: error, information, confirmation, lines.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Ui.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace kelvar::platform
{

/// ShowMessageLines flags: the caption gets " Error - " or " Info - " in front of the title,
/// or is " Help - "; bit 0 adds a No/Cancel button.
inline constexpr int LinesError = 0x1000;
inline constexpr int LinesInfo = 0x8000;
inline constexpr int LinesHelp = 0x2200;
inline constexpr int LinesCancel = 0x0001;

/// A stop box titled "Kelvar Error" with OK; the text is formatted like printf.
void ShowError(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// An exclamation box titled "Kelvar Information" with OK.
void ShowInfo(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// A question box titled "Kelvar Confirm" with Yes and No; true for Yes.
bool AskYesNo(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// The caption ShowMessageLines gives a title under `flags`.
std::string MessageLinesCaption(int flags, const std::string& title);

/// A modal box of separate lines, centred, under the caption of `flags`. With LinesCancel it
/// has Yes and No (or `buttons` when given). Returns 1 for the affirmative button, 0 for the
/// other, 2 for a third.
int ShowMessageLines(int flags, const std::string& title, const std::vector<std::string>& lines,
                     MessageButtons buttons = MessageButtons::Ok);

/// The operating system's own text for an error number, in a box titled "GetLastError".
void ShowLastError(int osError);

} // namespace kelvar::platform
