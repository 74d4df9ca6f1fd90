// The Thing checks of the checker (button 6): exits and player starts, then each Thing's
// type, shooter target, Sector, room and neighbours, and the keys the doors need.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

/// Exits, player and deathmatch starts per skill. False when the user stopped it, or chose
/// to skip the rest of the player checks.
[[nodiscard]] bool CheckPlayerStarts(CheckRun& run, bool interactive);

/// Each Thing, then the keys and the doors that need them.
[[nodiscard]] bool CheckThings(CheckRun& run);

} // namespace kelvar::check
