// The Thing checks of the checker (button 6): exits and player starts, then each Thing's
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ThingChecks.h"
