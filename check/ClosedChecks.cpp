// The closed-Sector check (button 2 of the checker): every Sector's edges meet, each side
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ClosedChecks.h"
