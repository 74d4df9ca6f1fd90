// The save's links to the level checks and the node builders: the checks a save runs first,
// and the hooks through which the WAD layer's writer reaches the builder and the clean-up.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::app
{

/// Save Level, Build Node, Save with new RejectMask: the port limits, the -0- length lines,
/// the player 1 start and the start counts. False when a check stopped the save.
bool RunPreSaveChecks();

/// Save As and Build Node As: the -0- length lines and the port limits.
bool RunSaveAsChecks();

/// Puts the hooks of wad::Wad().Save in place: the node builder of the project's choice, the
/// unused-object clean-up, the minute counter, the redraw.
void InstallSaveHooks();

} // namespace kelvar::app
