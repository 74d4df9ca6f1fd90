// The state of the map view: the viewport, the view's settings and toggles, the pointer.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/GameCodes.h"
#include "map/Selection.h"
#include "platform/Canvas.h"
#include "view/Colors.h"
#include "view/Viewport.h"

namespace kelvar::view
{

using map::ModeLineDefs;
using map::ModeSectors;
using map::ModeThings;
using map::ModeVertexes;

/// Grid display bits: the grid of the current size, and the 64-unit marks.
inline constexpr int GridShown = 1;
inline constexpr int Grid64Shown = 16;

/// What the renderer shows, set by toggles and options.
struct ViewOptions
{
    int GridDisplay = GridShown | Grid64Shown;
    bool GridLines = false;           // D: lines through the crossings instead of dots
    bool GridDashed = true;           // the lines of the grid dashed
    bool ShowVertexes = false;        // Vertex squares in every mode
    int VertexSize = 4;               // pixels
    bool ShowInvisibleLines = false;  // F12: off hides lines with flag 128
    bool ThingsInAllModes = false;    // Q
    int ThingStyle = 1;               // 1 symbols, 2 bare, anything else text only
    bool RoundThings = true;          // DEFAULT shapes drawn round, else square
    bool FilledThings = true;         // Things filled with the background
    bool NumberLabels = false;        // TID and polyobject numbers beside Things
    bool SpriteDisplay = false;       // Things as their sprites, in Thing mode
    bool RulerOn = false;             // R
    bool RulerDashed = false;         // !
    bool RulerSquare = false;         // Shift+2
    int LevelFormat = map::GameDoom2; // a map::GameCode

    bool operator==(const ViewOptions&) const = default;
};

/// Where the pointer is, and whether an interactive loop holds it.
struct PointerState
{
    int X = 0; // pixels in the map window
    int Y = 0;
    bool MouseCaptured = false;
};

/// The grid's picture, made again only when what it shows changed.
struct GridPicture
{
    int Grid = 0;
    MapViewport Viewport;
    bool Lines = false;
    bool Dashed = false;
    platform::MonoBitmap Picture; // empty when none is made yet
};

/// Everything the view keeps.
struct ViewState
{
    MapViewport Viewport;
    ViewSettings Settings;
    ViewOptions Options;
    ColorRoles Colors;
    PointerState Pointer;
    /// A cache of the renderer: drawing a level changes no setting, so it lives beside them.
    mutable GridPicture Grid;
};

/// The one instance of the view's state.
ViewState& View();

/// Puts the view back to its defaults (tests call it).
void ResetView();

} // namespace kelvar::view
