// The type and tag checks of the checker: LineDef types, tags and teleports (button 7) and
// Sector types and tags (button 8).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"

namespace kelvar::check
{

[[nodiscard]] bool CheckLineTypes(CheckRun& run);
[[nodiscard]] bool CheckSectorTypes(CheckRun& run);

} // namespace kelvar::check
