// The state of the external programs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/RunState.h"

namespace kelvar::run
{

RunState& Run()
{
    static RunState state;
    return state;
}

void ResetRun()
{
    Run() = RunState{};
}

} // namespace kelvar::run
