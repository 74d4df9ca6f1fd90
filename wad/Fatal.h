// FatalError: the one way the program ends on an unusable state.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::wad
{

/// The exit status of a fatal end.
inline constexpr int FatalExitCode = 4;

/// Shows the formatted message with the start-up hint in a box titled "FATAL ERROR", lets the
/// shell save its status and offer the crash save (the BeforeFatalExit hook), and ends the
/// process with exit code 4. Never returns.
[[noreturn]] void FatalError(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace kelvar::wad
