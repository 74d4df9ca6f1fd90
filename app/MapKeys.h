// The keys of the map window that the key table doesn't take, and the mouse wheel.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window first looks a key up in the key table (CommandOfKey) and runs its command with
// CommandSource::Key. A key without a row comes here: as a typed character (the zoom keys)
// or as a key (the arrows). Both act only with a level loaded and AppState 1, and leave
// their requests like commands do.
#pragma once

#include "app/Keys.h"

namespace kelvar::app
{

/// A typed character: the digits set the scale from the digit table (on the pointer first,
/// when zooming at the pointer is on), + and - zoom one step about the pointer, z toggles the
/// two fixed scales, Z swaps the view with the one kept before the last zoom to a box.
/// Returns false for a character it doesn't use.
bool HandleMapCharacter(char character);

/// A key: the arrows scroll the map one step when the option for cursor keys is on. Returns
/// false for a key it doesn't use.
bool HandleMapKey(KeyChord chord);

/// What a turn of the wheel did.
enum class WheelAction : std::uint8_t
{
    None,
    ZoomIn,
    ZoomOut,
    NextMode,
    LastMode,
};

/// What a turn of the wheel (positive away from the user) means: a zoom step, or with the
/// wheel option set the next or last mode; Ctrl swaps the two meanings. It only decides: the
/// caller zooms about the pointer, or runs Next Mode (409) or Last Mode (410). None without a
/// level on screen.
WheelAction MouseWheel(int delta, bool ctrl);

} // namespace kelvar::app
