// The checker's dialog, without its window: its buttons, the run flags of a dialog session,
// the run flow around each button, and the error list.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"
