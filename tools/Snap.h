// Holding positions and moves to the grid, as every drawing and moving tool does.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::tools
{

/// `value` held to a grid of `grid` map units: half the grid is added away from zero and the
/// sum truncated by integer division, then multiplied back. A grid of 0 (or less) leaves the
/// value as it is.
int SnapToGrid(int value, int grid);

/// The map position (x, y) as whole map units held to the grid when `snap` is on: each
/// coordinate truncated toward zero, then snapped.
struct SnappedPoint
{
    int X = 0;
    int Y = 0;
    bool operator==(const SnappedPoint&) const = default;
};
SnappedPoint SnapPoint(double x, double y, int grid, bool snap);

} // namespace kelvar::tools
