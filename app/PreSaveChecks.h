// The level checks a save runs first.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::app
{

/// Save Level, Build Node, Save with new RejectMask: the port limits, the -0- length lines,
/// the player 1 start and the start counts. False when a check stopped the save.
bool RunPreSaveChecks();

/// Save As and Build Node As: the -0- length lines and the port limits.
bool RunSaveAsChecks();

} // namespace kelvar::app
