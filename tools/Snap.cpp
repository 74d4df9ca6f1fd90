// Holding positions and moves to the grid.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Snap.h"

namespace kelvar::tools
{

int SnapToGrid(int value, int grid)
{
    if (grid <= 0)
    {
        return value;
    }
    const int half = grid / 2;
    // Integer division truncates toward zero, so adding half away from zero rounds to the
    // nearest multiple on both sides of the origin.
    return (value < 0 ? value - half : value + half) / grid * grid;
}

SnappedPoint SnapPoint(double x, double y, int grid, bool snap)
{
    const int ix = static_cast<int>(x);
    const int iy = static_cast<int>(y);
    if (!snap)
    {
        return {ix, iy};
    }
    return {SnapToGrid(ix, grid), SnapToGrid(iy, grid)};
}

} // namespace kelvar::tools
