// FatalError: the one way the program ends on an unusable state.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
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

/// Says whether the picture cache has a size limit, which changes the advice of OutOfMemory.
void SetTextureLimitAdvice(bool limited);

/// The end of an allocation that failed: the system's own text, then the fatal path with
/// "(%d) Kelvar requires %d bytes more memory, " and the advice. `code` tells which kind of
/// allocation failed (1 plain, 2 zero-filled, 3 growth, 4 a drawing list).
[[noreturn]] void OutOfMemory(int code, std::size_t size);

/// Installs a new-handler that ends the program through OutOfMemory when an allocation of
/// unknown size fails anywhere, and a terminate handler that does the same for an allocation
/// failure that was thrown and never caught (std::bad_alloc, std::length_error). Other
/// uncaught exceptions go on to the handler that was there before.
void InstallOutOfMemoryHandler();

} // namespace kelvar::platform
