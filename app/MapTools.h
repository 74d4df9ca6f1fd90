// The interactive tools of the map window, LineDraw and Rotate and Scale: their state while they
// run and the window's mouse and keys turned into their inputs.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window holds one MapToolState. While a tool runs, the window's input goes here instead of
// to the map's mouse and key handlers; everything the tools change is left as requests
// (app/CommandState.h), like a command's. Pointer positions are window pixels.
#pragma once

#include "tools/LineDraw.h"
#include "tools/RotateTool.h"

#include <cstdint>
#include <memory>
#include <string>

namespace kelvar::app
{

enum class MapTool : std::uint8_t
{
    None,
    LineDraw,
    RotateScale,
};

struct MapToolState
{
    MapTool Active = MapTool::None;
    std::unique_ptr<tools::LineDrawTool> Draw;
    int ModeBefore = 0; // the edit mode LineDraw gives back
    tools::RotateScaleState Rotate;
    int PointerX = 0; // the pointer as the tool last saw it
    int PointerY = 0;
    bool PointerKnown = false;
    std::string Caption; // the tool's line for the status bar; empty when none runs
};

/// Starts LineDraw: the mode reads Vertexes while it runs. The run starts from the one
/// selected Vertex when exactly one is selected in Vertex mode; otherwise the selection is
/// dropped. Returns false without a level to edit or with a tool running.
bool StartLineDraw(MapToolState& state);

/// One input of LineDraw at the pointer position (x, y). The tool ends on Left, giving the mode
/// back.
void LineDrawInput(MapToolState& state, tools::DrawAction action, int x, int y);

/// Starts Rotate and Scale on the selection, or the highlighted object when nothing is
/// selected, in the current mode. Returns false when the tool refused (too few objects).
bool StartRotateScale(MapToolState& state, int pointerX, int pointerY);

/// A key for Rotate and Scale (its characters, RotateKeyEnter, RotateKeyEscape).
void RotateScaleInputKey(MapToolState& state, int key, bool shift);

/// The left button while Rotate and Scale runs: the new places are kept.
void RotateScaleClick(MapToolState& state);

/// The pointer moved to (x, y): LineDraw's pane text, or the turn of Rotate and Scale.
void MapToolPointer(MapToolState& state, int x, int y);

/// Whether a command of the key table still runs while a tool runs: under LineDraw the view's
/// Home (centre the level) and End (fit it) do; nothing that changes the level does.
bool ToolLetsCommandThrough(const MapToolState& state, std::uint16_t command);

/// Ends whatever tool runs as Esc would.
void CancelMapTool(MapToolState& state);

/// LineDraw's rubber line in window pixels, from the run's last Vertex to the pointer; false
/// when there is none.
bool RubberLine(const MapToolState& state, int& x1, int& y1, int& x2, int& y2);

} // namespace kelvar::app
