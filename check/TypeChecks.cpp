// The type and tag checks of the checker: LineDef types, tags and teleports (button 7) and
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TypeChecks.h"
