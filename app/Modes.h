// The four edit modes, how they switch and carry the selection along, and the change counters.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// EditMode is the field of KELVAR.CHK, so the mode survives a restart: 1 Things, 2 LineDefs
// (with SideDefs), 4 Vertexes, 8 Sectors. PreviousMode is the selection's, which keeps the
// mode before the last mode command.
#pragma once

#include "map/Selection.h"

#include <string_view>

namespace kelvar::app
{

using map::ModeLineDefs;
using map::ModeSectors;
using map::ModeThings;
using map::ModeVertexes;

/// The current edit mode.
int EditMode();
/// The mode before the last mode command.
int PreviousMode();

/// The modes in the order Next Mode walks them: Things, LineDefs, Vertexes, Sectors.
int NextModeAfter(int mode);
int ModeBefore(int mode);

/// Commands 401 to 404. A new mode: PreviousMode takes the old one, EditMode the new one and
/// SwitchMode runs. The mode it is in already: in Things mode the sprite display flag toggles,
/// in the others the object under the cursor stays and the map is only redrawn; the
/// selection stays either way. Any mode command turns AutoMode off.
void ChooseMode(int mode);

/// Runs after EditMode and PreviousMode are set. Without a level nothing happens. Otherwise
/// any tool is cancelled, AutoMode goes off, the selection is translated to the new mode
/// (map::TranslateSelection), the object under the cursor comes back from when the mode was
/// left or else is the nearest one to the pointer, and the mode's Misc popup, the status bar
/// and the map are asked for.
void SwitchMode();

/// AutoMode: when it is on, the mode follows the object under the pointer (window pixels).
/// A change of mode drops the selection, and asks for the status bar and a redraw. Returns
/// true when the mode or the object under the cursor changed.
bool FollowPointer(int pointerX, int pointerY);

/// MapChanged and NodesChanged: the change counters of the level being edited. MapChanged
/// goes up with any change of object data, NodesChanged with any change the node tree sees;
/// both are 0 after a load or a save.
int MapChanged();
int NodesChanged();
/// True when either counter is not 0.
bool HasUnsavedChanges();

/// The question before a command that drops the level: with no unsaved changes it is not
/// asked and the answer is yes. It reads " You have unsaved Changes. Continue ?", or with a
/// command's name " You have unsaved Changes.  Continue with %s?". True to go on.
bool ContinueWithUnsavedChanges(std::string_view commandName = {});

} // namespace kelvar::app
