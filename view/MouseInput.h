// Mouse input of the map window: input records, the click conventions, pointer capture, and
// the box selection tool as a state machine fed with input records.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "view/Viewport.h"

#include <cstdint>

namespace kelvar::view
{

enum class MouseButton : std::uint8_t
{
    None,
    Left,
    Right,
};

enum class MouseEventKind : std::uint8_t
{
    Move,
    Press,
    Release,
    DoubleClick,
    Wheel,
};

/// Modifier keys held at the event.
inline constexpr int ModShift = 1;
inline constexpr int ModCtrl = 2;
inline constexpr int ModAlt = 4;

/// One mouse event of the map window, in window pixels.
struct MouseInput
{
    MouseEventKind Kind = MouseEventKind::Move;
    MouseButton Button = MouseButton::None;
    int X = 0;
    int Y = 0;
    int Modifiers = 0;
    int WheelDelta = 0; // positive away from the user
    std::int64_t TimeMs = 0;
};

/// The button-state word: bit 0 left down, bit 1 right down, bit 2 a double click.
inline constexpr int ButtonLeft = 1;
inline constexpr int ButtonRight = 2;
inline constexpr int ButtonDouble = 4;

/// The word after an event: a press sets its button's bit, a release clears it, a double
/// click sets its button and the double bit, a wheel turn clears all.
int UpdateButtonState(int word, const MouseInput& event);

/// What a finished gesture means in the map window.
enum class ClickMeaning : std::uint8_t
{
    None,
    Mark,      // left click: mark or unmark the object under the pointer
    BoxSelect, // left hold and move: rubber band
    Insert,    // double left: a new object of the mode at the pointer
    Edit,      // right click: the object's (or the marked set's) dialog
    Drag,      // right hold and move: drag the object or the marked set
    PopupMenu, // double right: the mode's menu
    ZoomIn,    // wheel away
    ZoomOut,   // wheel toward
};

/// Turns raw events into the click conventions: a press followed by a release in place is a
/// click, unless a second press comes within `doubleClickMs` (a double click); a press
/// followed by a move of more than `dragPixels` is a hold-and-move.
struct ClickTracker
{
    int DoubleClickMs = 300;
    int DragPixels = 3;
    MouseButton Down = MouseButton::None;
    int DownX = 0;
    int DownY = 0;
    MouseButton LastClick = MouseButton::None;
    std::int64_t LastClickTime = -1000000;
    int LastClickX = 0;
    int LastClickY = 0;
    bool Moved = false;
};

/// Feeds one event; returns what it completes (None while a gesture is still open). A single
/// click is reported at once on release; a double click follows it as its own meaning.
ClickMeaning InterpretMouse(ClickTracker& tracker, const MouseInput& event);

/// Takes the pointer for an interactive loop. When it is taken already, "mouse already
/// captured!" is shown and the result is false.
bool CaptureMouse();
/// Gives the pointer back; without capture, "mouse release with no capture" is shown and the
/// result is false.
bool ReleaseMouse();

/// The box selection tool: a band from the press position to the pointer, anchored in map
/// coordinates so it stays put when the view scrolls or zooms under it.
struct BoxSelectState
{
    bool Active = false;
    double AnchorX = 0; // map corners
    double AnchorY = 0;
    double CornerX = 0;
    double CornerY = 0;
    bool RightDown = false;
    std::int64_t RightDownTime = 0;
    double GrabX = 0; // map point where the right button took the box
    double GrabY = 0;
};

/// How an event leaves the box selection tool.
enum class BoxSelectStep : std::uint8_t
{
    Continue,
    Select, // left released: select what the box holds
    Zoom,   // a right click or Z: zoom to the box
    Cancel, // Esc
};

/// Starts the band at a pixel position.
void BoxSelectBegin(BoxSelectState& state, const MapViewport& viewport, int x, int y);
/// Feeds a mouse event: a move stretches the band, or with the right button held moves it
/// whole; a quick right click asks for a zoom; the left release ends it.
BoxSelectStep BoxSelectMouse(BoxSelectState& state, const MapViewport& viewport,
                             const MouseInput& event, int doubleClickMs);
/// Feeds a key: Esc cancels, Z zooms to the box.
BoxSelectStep BoxSelectKey(BoxSelectState& state, int key);
/// The band's corners in pixels, recomputed from its map corners at the current view.
void BoxSelectPixels(const BoxSelectState& state, const MapViewport& viewport, int& x1, int& y1,
                     int& x2, int& y2);

/// Key codes the tools look at.
inline constexpr int KeyEscape = 27;
inline constexpr int KeyZ = 'Z';

} // namespace kelvar::view
