// Moving the view to objects: the centre of an object, Goto, Next and Previous, bookmarks.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/Selection.h"
#include "view/Viewport.h"

namespace kelvar::view
{

/// The map point an object is shown at: a Thing's or Vertex's position, a LineDef's middle, a
/// SideDef's first LineDef's middle, a Sector's centre (the mean of the ends of the LineDefs
/// with a side on it). An object with no LineDef gets the middle of the level's box.
struct MapPoint
{
    double X = 0;
    double Y = 0;
};
MapPoint ObjectCenter(const map::LevelData& level, int kind, int object);

/// Centres the view on an object. For a Sector, a point that really lies in it is sought
/// (its LineDefs' middles, then points around the centre); with `force` the view zooms in
/// by 1.1 at a time, up to 1.0, until the Sector test finds the Sector there.
void GotoObject(const map::LevelData& level, MapViewport& viewport, int kind, int object,
                bool force);

/// Stores the current place in bookmark `slot` (0 to 9).
void SetBookmark(int slot, std::uint16_t project, std::uint16_t levelNumber, int mode, int object,
                 int cursorX, int cursorY, const MapViewport& viewport);

/// True when bookmark `slot` may be gone to: it is used, and of this project and level.
bool BookmarkEnabled(int slot, std::uint16_t project, std::uint16_t levelNumber);

/// Goes to bookmark `slot`: restores zoom and view and returns its mode; the selection is
/// cleared and the highlight set. A bookmark whose object no longer exists sounds the error
/// signal and returns 0.
int GotoBookmark(const map::LevelData& level, MapViewport& viewport, int slot);

} // namespace kelvar::view
