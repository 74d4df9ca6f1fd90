// FatalError, which lives in the platform port; kept here for code not yet moved over.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Fatal.h"

namespace kelvar::wad
{
using platform::FatalError;
using platform::FatalExitCode;
} // namespace kelvar::wad
