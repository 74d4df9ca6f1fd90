// The closed-Sector check (button 2 of the checker): every Sector's edges meet, each side
// faces its own Sector, and one-sided lines inside a Sector get their missing side.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

/// The three steps under "Sector Closed 1", "2" and "3". False when the user stopped it.
[[nodiscard]] bool CheckSectorsClosed(CheckRun& run);

} // namespace kelvar::check
