// The checker dialog session: buttons, run flags, and the run flow around each button.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckControl.h"
