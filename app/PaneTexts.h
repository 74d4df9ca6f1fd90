// The texts of the status bar and of the info pane, from the shell's, the view's and the
// map's state, for the window to paint.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "view/InfoPane.h"

#include <string>
#include <vector>

namespace kelvar::app
{

/// The values the status bar shows now: the mode, the scale, the grid, the scroll speed, the
/// snap and AutoMode toggles and the change counters.
view::StatusBarValues CurrentStatusValues();

/// The status bar fields now (view::StatusBarFields of CurrentStatusValues).
std::vector<std::string> StatusBarTexts();

/// The info pane of the object under the cursor in the current mode, with the number base
/// option and the level format of the current game; empty while the pane is hidden.
view::InfoPane InfoPaneTexts();

} // namespace kelvar::app
