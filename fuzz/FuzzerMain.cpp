// The libFuzzer entry of one fuzz target, chosen by the name the build gives it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "platform/Assert.h"

#include <cstdio>
#include <cstdlib>

#ifndef KELVAR_FUZZ_TARGET
#error "KELVAR_FUZZ_TARGET names the target this fuzzer runs"
#endif

namespace
{

const kelvar::fuzz::Target* Chosen = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Chosen = kelvar::fuzz::FindTarget(KELVAR_FUZZ_TARGET);
    if (Chosen == nullptr)
    {
        std::fprintf(stderr, "fuzz: no target named %s\n", KELVAR_FUZZ_TARGET);
        std::abort();
    }
    // A failed internal check is a fault the fuzzer must report, whatever the build type.
    kelvar::platform::InstallAssertHandler(
        [](const char* condition, const char* file, int line)
        {
            std::fprintf(stderr, "%s:%d: internal check failed: %s\n", file, line, condition);
            std::abort();
        });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Chosen->Run({data, size});
    return 0;
}
