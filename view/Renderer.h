// The map renderer: the level drawn on a Canvas in the style of the current edit mode.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"
#include "platform/Canvas.h"
#include "view/ViewState.h"

namespace kelvar::view
{

/// What DrawMap draws.
struct MapPicture
{
    const map::LevelData* Level = nullptr;
    int EditMode = ModeLineDefs;
    const map::ObjectList* Selection = nullptr; // marked objects of the edit mode
    int Highlighted = -1;                       // the object under the cursor
};

/// DrawMap flags: a full repaint, only the lines (the drag loop), only the selection.
inline constexpr int DrawFull = 1;
inline constexpr int DrawLinesOnly = 2;
inline constexpr int DrawSelectionOnly = 0x8000;

/// Draws the map: background, grid, 64-unit marks, frame, the mode's lines, Things and
/// Vertexes, then the selection. An empty level draws nothing.
void DrawMap(platform::Canvas& canvas, const MapPicture& picture, const ViewState& view, int flags);

/// Draws the selection and the highlighted object in XOR, so a second call erases them.
void DrawSelection(platform::Canvas& canvas, const MapPicture& picture, const ViewState& view);

/// Draws one Thing in its symbol, size and colour, with its arrow or label; with `sprite` as
/// its type's sprite in the box of its radius instead.
void DrawThing(platform::Canvas& canvas, const map::Thing& thing, const ViewState& view,
               bool highlighted, bool sprite = false);

/// Selects the pen of a special with a tag: teleports and scripts have their own colours.
void SelectSpecialPen(platform::Canvas& canvas, std::uint32_t type, const ViewState& view);

/// The colour a LineDef is drawn in, in LineDef mode; -1 for a line not drawn at all.
int LineColor(const map::LineDef& line, const ViewState& view);

/// The colour a LineDef takes from one of its Sectors in Sector mode: a tagged Sector's, else a
/// typed Sector's, else the flag and side colours of LineDef mode (also for a side with no
/// Sector); -1 for a line not drawn at all. Sector mode draws each line in the colour of its
/// first Sector, then, if it has a second side, again in that of its second.
int SectorSideColor(const map::Sector* sector, const map::LineDef& line, const ViewState& view);

/// The rubber band of a box selection between two pixel corners, in XOR: drawing it again
/// erases it.
void XorRubberBand(platform::Canvas& canvas, const ViewState& view, int x1, int y1, int x2, int y2);

/// The ruler at the pointer, in XOR.
void XorRuler(platform::Canvas& canvas, const ViewState& view);

} // namespace kelvar::view
