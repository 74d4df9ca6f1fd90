// The mouse of the map window: pointer tracking, AutoMode, clicks, the rubber band, the wheel
// and scrolling at the window's edges.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window turns its toolkit's events into view::MouseInput records and hands them here;
// what they change is left as requests (app/CommandState.h), like a command's. What only the
// window can do (a pop-up menu) comes back as the meaning of the gesture.
#pragma once

#include "tools/DragTool.h"
#include "view/MouseInput.h"

namespace kelvar::app
{

/// The gesture state of the map window.
struct MapMouseState
{
    view::ClickTracker Clicks;
    view::BoxSelectState Box;
    bool LeftDown = false;
    int PressX = 0;
    int PressY = 0;
    tools::DragState Drag;    // the right button's drag
    bool EditPending = false; // a right click waits to see whether a second makes it double
};

/// One mouse event of the map window. Moves track the object under the pointer (or follow it
/// with AutoMode, unless Shift is down); a left click marks or unmarks it; a right click (Edit)
/// leaves the editor pending until RunPendingEdit, so that a double right click opens the
/// pop-up menu alone; a left hold and
/// move is the rubber band, whose release selects what it holds; the wheel zooms about the
/// pointer or steps the mode. A right hold and move drags the selection, or the object at the
/// press when nothing is selected, until the release. Returns the gesture the event completed: the
/// window opens the mode's pop-up menu for PopupMenu. Acts only with a level loaded and the map
/// editable.
view::ClickMeaning MapMouseEvent(MapMouseState& state, const view::MouseInput& event);

/// Called once the double click time has passed after a right click: opens the editor of the
/// mode (494) unless a second click made the click double. Returns true when it ran.
bool RunPendingEdit(MapMouseState& state);

/// A key while the rubber band is out: Esc drops it, Z zooms to it; while a drag runs, Esc
/// puts everything back. Returns true when the band or the drag took the key.
bool MapMouseKey(MapMouseState& state, int key);

/// True while a right-button drag runs.
bool Dragging(const MapMouseState& state);

/// True while the rubber band is out; its corners in window pixels.
bool RubberBand(const MapMouseState& state, int& x1, int& y1, int& x2, int& y2);

/// The map window took a new size of `width` by `height` pixels, with the pointer at
/// (pointerX, pointerY) in it. When the pointer is over the window, before or after, the map
/// point under it stays where it is on screen: the info pane coming, going or changing height
/// below the map doesn't move the map. Otherwise the map point at the window's centre stays
/// there. The object under the pointer is then found again, if the pointer is over the map.
void MapWindowResized(MapMouseState& state, int width, int height, int pointerX, int pointerY);

/// The scroll direction of a pointer at (x, y) in a map window of `width` by `height`: -1, 0
/// or 1 each way (dy 1 is up the map) when it rests on an edge of the window (its outermost
/// two pixels) or beyond it, within `border` pixels outside. {0, 0} elsewhere.
struct EdgeScroll
{
    int Dx = 0;
    int Dy = 0;
};
EdgeScroll EdgeScrollDirection(int x, int y, int width, int height, int border);

/// One step of the edge scroll, within the level's bounds. Returns true when the view
/// moved.
bool EdgeScrollStep(const EdgeScroll& direction);

} // namespace kelvar::app
