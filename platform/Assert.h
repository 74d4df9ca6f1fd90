// KELVAR_ASSERT: the one check for programmer errors, routed to a replaceable handler.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

namespace kelvar::platform
{

/// Called with the failed condition and its place. Tests install a handler that turns a
/// violation into a test failure; the default prints it and, in debug builds, aborts.
using AssertHandler = std::function<void(const char* condition, const char* file, int line)>;

/// Installs a handler and returns the previous one; an empty handler restores the default.
AssertHandler InstallAssertHandler(AssertHandler handler);

/// Reports a failed assertion to the installed handler.
void AssertFailed(const char* condition, const char* file, int line);

} // namespace kelvar::platform

#define KELVAR_ASSERT(condition)                                                                   \
    ((condition) ? static_cast<void>(0)                                                            \
                 : ::kelvar::platform::AssertFailed(#condition, __FILE__, __LINE__))
