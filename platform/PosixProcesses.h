// The system's Processes: programs started with posix_spawn.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Processes.h"

namespace kelvar::platform
{

/// The one system Processes.
Processes& SystemProcesses();

} // namespace kelvar::platform
