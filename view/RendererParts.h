// Pieces the renderer's files share; not for use outside the renderer.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "platform/Canvas.h"
#include "view/ViewState.h"

namespace kelvar::view
{

/// How far beyond the window lines are clipped, in pixels.
inline constexpr double ClipMargin = 4096.0;

/// Draws a map-space line, skipped when it can't reach the window and clipped when it reaches
/// far out. Returns false when nothing was drawn.
bool DrawClippedLine(platform::Canvas& canvas, const ViewState& view, double x1, double y1,
                     double x2, double y2);

/// Draws a LineDef with the current pen; false for one off the window or with bad Vertexes.
bool DrawLevelLine(platform::Canvas& canvas, const map::LevelData& level, const map::LineDef& line,
                   const ViewState& view);

/// Draws every LineDef in the colours of `mode`.
void DrawLinesInMode(platform::Canvas& canvas, const map::LevelData& level, int mode,
                     const ViewState& view);

/// The short tick at a LineDef's middle that points to its front side.
void DrawLineTick(platform::Canvas& canvas, const map::LevelData& level, const map::LineDef& line,
                  const ViewState& view);

/// Draws the Vertex squares.
void DrawVertexMarks(platform::Canvas& canvas, const map::LevelData& level, const ViewState& view);

} // namespace kelvar::view
