// The cross-reference check (button 3 of the checker): missing, shared, short, duplicate and
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferences.h"
