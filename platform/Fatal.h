// FatalError: the one way the program ends on an unusable state.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace kelvar::platform
{

/// The exit status of a fatal end.
inline constexpr int FatalExitCode = 4;

/// Installs what the shell does before a fatal end: write KELVAR.CHK, offer the crash save,
/// shut down. Returns the hook it replaces; an empty one removes it.
std::function<void()> InstallFatalHook(std::function<void()> hook);

/// Shows the formatted message with the start-up hint in a box titled "FATAL ERROR", runs the
/// shell's fatal hook once, and ends the process with exit code 4. Never returns.
[[noreturn]] void FatalError(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace kelvar::platform
