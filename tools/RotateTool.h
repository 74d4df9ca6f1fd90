// The Rotate and Scale tool: the selection turned and scaled about its centre, fed keys and
// mouse moves; and the turning of a Thing's own angle.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Angles are whole degrees; a positive angle turns counter-clockwise on the map, whose y
//   axis runs up. The caption shows the angle negated, so turning clockwise reads positive.
// - Every change recomputes all positions from the copy saved at the start, never from the
//   last result, so turning back to 0 at scale 1 restores what was there (snapped, when the
//   grid is on).
// - LineDefs and Sectors are taken down to their Vertexes. Vertexes rotate about the mean of
//   their positions; Things alone about the mean of theirs; the Things of a Sector rotation
//   (with DragSectorThings on) about the Vertexes' centre.
#pragma once

#include "map/Geometry.h"
#include "map/LevelData.h"
#include "map/ObjectList.h"
#include "tools/DragTool.h"

#include <array>
#include <cstdint>
#include <vector>

namespace kelvar::tools
{

/// The offset (dx, dy) turned by `angle` degrees counter-clockwise and multiplied by `scale`.
/// Quarter turns are exact.
map::Point Rotate(double dx, double dy, int angle, double scale);

/// One run of the tool.
struct RotateScaleState : SavedPlaces
{
    bool Active = false;
    int Mode = 0;       // Vertexes or Things: what the positions are of
    int Angle = 0;      // degrees, within -359 to 359
    double Scale = 1.0; // never below 0
    int AngleStep = 1;  // 1 and 0.01, or 4 and 0.04, switched by Space
    double ScaleStep = 0.01;
    double CenterX = 0;
    double CenterY = 0;
    std::array<std::int32_t, 4> SavedBounds{}; // the level's MinX, MinY, MaxX, MaxY at the start
};

/// Starts the tool on `objects` of edit mode `mode` (the selection), showing "Selecting Rotate
/// Data - wait", and for Sectors with DragSectorThings on "Selecting Things for Rotate -
/// Wait", then "Rotate Tool <> = Rotate, F1=Help". LineDefs and Sectors are taken down to
/// their Vertexes. Fewer than two Vertexes (or Things) are refused with "Select at least %d
/// %ss" titled "Select", and false. Otherwise a forced undo step is taken and the change
/// counted.
[[nodiscard]] bool RotateScaleBegin(RotateScaleState& state, int mode,
                                    const map::ObjectList& objects);

/// What a key or a click makes of the tool.
enum class RotateStep : std::uint8_t
{
    Continue,
    Finish, // Enter, or the left button
    Cancel, // Esc
};

/// Key codes the tool looks at besides the characters it is typed with.
inline constexpr int RotateKeyEnter = 13;
inline constexpr int RotateKeyEscape = 27;

/// A key typed: '>' or '.' adds the angle step, '<' or ',' takes it off; R adds the scale
/// step ('r' or 'R'), with Shift it takes it off (the scale stops at 0); Space switches between the
/// fine and the coarse steps. Positions are recomputed after a change. Enter and Esc are reported
/// for the caller to finish or cancel; other keys are passed over.
RotateStep RotateScaleKey(RotateScaleState& state, int key, bool shift);

/// The pointer moved by (dx, dy) pixels: one degree off when dx + dy is below 1, else one on.
void RotateScaleMouse(RotateScaleState& state, int dx, int dy);

/// Enter or the left button: the Vertexes' new places are kept; the geometry change is
/// counted and they are merged and split where they landed, asking first.
void RotateScaleFinish(RotateScaleState& state);

/// Esc: the saved positions and the level's bounds are put back.
void RotateScaleCancel(RotateScaleState& state);

/// What the window shows while the tool runs: the angle negated and the scale in per cent.
struct RotateCaption
{
    int Angle = 0;
    int Scale = 100;

    bool operator==(const RotateCaption&) const = default;
};
RotateCaption RotateScaleCaption(const RotateScaleState& state);

/// A Thing's own angle turned by 45 degrees up (`up`) or down: up from 315 or more gives 0,
/// down from below 45 gives 315.
std::uint16_t TurnThingAngle(std::uint16_t angle, bool up);

} // namespace kelvar::tools
