// The state of the external programs: the node builder's options and the test launcher's.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The application shell copies these from its status records before a run, as it copies the
// WAD layer's options, and takes back what the dialogs changed.
#pragma once

#include "run/BuilderOptions.h"
#include "run/TestOptions.h"

namespace kelvar::run
{

/// Everything the external programs' subsystem keeps.
struct RunState
{
    BuilderOptions Builder;
    TestOptions Test;
};

/// The one instance.
RunState& Run();

/// Puts everything back to its defaults (tests call it).
void ResetRun();

} // namespace kelvar::run
