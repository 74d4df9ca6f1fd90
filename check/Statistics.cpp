// The level statistics: object counts and sizes, ranges, save game estimates and the Thing
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Statistics.h"
