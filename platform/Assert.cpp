// The assertion handler behind KELVAR_ASSERT.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Assert.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace kelvar::platform
{
namespace
{

void DefaultHandler(const char* condition, const char* file, int line)
{
    std::fprintf(stderr, "kelvar: internal check failed: %s (%s:%d)\n", condition, file, line);
#ifndef NDEBUG
    std::abort();
#endif
}

AssertHandler& Handler()
{
    static AssertHandler handler = DefaultHandler;
    return handler;
}

} // namespace

AssertHandler InstallAssertHandler(AssertHandler handler)
{
    AssertHandler previous =
        std::exchange(Handler(), handler ? std::move(handler) : DefaultHandler);
    return previous;
}

void AssertFailed(const char* condition, const char* file, int line)
{
    Handler()(condition, file, line);
}

} // namespace kelvar::platform
