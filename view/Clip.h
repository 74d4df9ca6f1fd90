// Cohen-Sutherland clipping of a line against a rectangle, in pixels.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace kelvar::view
{

/// Cuts the line (x1, y1)-(x2, y2) to the rectangle [left, right] x [top, bottom]. Returns
/// false when no part of it lies inside.
bool ClipLine(double& x1, double& y1, double& x2, double& y2, double left, double top, double right,
              double bottom);

} // namespace kelvar::view
