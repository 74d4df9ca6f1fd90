// Hit testing: the object under the pointer for each kind, and AutoMode's choice of mode.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "view/Viewport.h"

namespace kelvar::view
{

/// The object of `kind` (1 Thing, 2 LineDef, 4 Vertex, 8 Sector) nearest the middle of the
/// box (x1, y1)-(x2, y2), whose corners may come in any order; -1 for none, for another kind
/// or an empty level. With `inPixels` the corners are window pixels, else map coordinates.
/// Things and Vertexes must lie in the box, and one within half a unit of the middle is taken
/// at once. A LineDef is the one nearest the middle along the perpendicular, however far
/// outside the box: it counts whenever the foot of its perpendicular falls strictly between
/// its ends, and of equal ones the lower number wins. A Sector is the one whose side faces
/// the middle across the nearest LineDef crossing its height.
int FindObject(const map::LevelData& level, const MapViewport& viewport, bool inPixels, int kind,
               double x1, double y1, double x2, double y2);

/// The object of `kind` nearest the pointer, searched in a box of half-size `range` (taken in
/// map units and as a number of pixels, whichever box is larger). Things and Vertexes must
/// lie in it; LineDefs and Sectors are found as FindObject finds them, from its middle.
int FindNearPointer(const map::LevelData& level, const MapViewport& viewport, int kind,
                    double range, int pointerX, int pointerY);

/// The Vertex nearest the pointer's map point within a box of half-size `range` map units.
int FindVertexNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                   int pointerY, double range);

/// The Thing nearest the pointer's map point within a box of half-size `range` map units.
int FindThingNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                  int pointerY, double range);

/// The squared distance of point (px, py) from the LineDef A-B, or a negative value when its
/// foot doesn't fall strictly between the ends (or the line has no length).
double LineDistanceSquared(double ax, double ay, double bx, double by, double px, double py);

/// What AutoMode makes of the pointer's place: the mode to be in and the object under it.
struct AutoModeChoice
{
    int Mode = 0;
    int Object = -1;
    bool Changed = false;
};

/// The ranges AutoMode tries.
struct AutoModeRanges
{
    double Vertex = 0.5;
    double Thing = 2.0;
};

/// AutoMode: a Vertex under the pointer picks Vertex mode, else a Thing Thing mode, else the
/// nearest LineDef LineDef mode; a second LineDef in LineDef mode picks the Sector there.
AutoModeChoice ChooseAutoMode(const map::LevelData& level, const MapViewport& viewport,
                              int currentMode, int currentObject, int pointerX, int pointerY,
                              const AutoModeRanges& ranges);

} // namespace kelvar::view
