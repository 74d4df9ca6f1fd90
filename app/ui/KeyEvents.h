// Qt's key and mouse events in the editor's own terms: key chords and mouse input records.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Keys.h"
#include "view/MouseInput.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <optional>

namespace kelvar::app
{

/// The chord of a key press. The eight typed characters of the key table come as themselves,
/// with no modifiers, however they were typed; other keys with the Shift, Ctrl and Alt held.
/// Nothing for a key the table can't name (a lone modifier, say).
std::optional<KeyChord> ChordOfKeyEvent(const QKeyEvent& event);

/// The typed character of a key press, for the zoom keys: '+', '-', 'z', '0' ... or 0.
char CharacterOfKeyEvent(const QKeyEvent& event);

/// The modifier bits of the view's mouse records.
int MouseModifiers(Qt::KeyboardModifiers modifiers);

/// A mouse event of the map window as the view's input record, stamped with `timeMs`.
view::MouseInput MouseInputOf(const QMouseEvent& event, view::MouseEventKind kind,
                              std::int64_t timeMs);
view::MouseInput MouseInputOf(const QWheelEvent& event, std::int64_t timeMs);

} // namespace kelvar::app
