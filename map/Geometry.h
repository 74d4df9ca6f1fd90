// Points of a level in double precision: a Vertex's place, a point along a LineDef, and which
// side of a LineDef a point lies on.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <cmath>

namespace kelvar::map
{

struct Point
{
    double X = 0;
    double Y = 0;
};

inline Point VertexPoint(const LevelData& level, std::uint32_t vertex)
{
    return {double(level.Vertexes[vertex].X), double(level.Vertexes[vertex].Y)};
}

/// The point `fraction` of the way from the LineDef's start to its end.
inline Point PointAlong(const LevelData& level, const LineDef& line, double fraction)
{
    const Point a = VertexPoint(level, line.StartVertex);
    const Point b = VertexPoint(level, line.EndVertex);
    return {a.X + (b.X - a.X) * fraction, a.Y + (b.Y - a.Y) * fraction};
}

inline double Distance(Point a, Point b)
{
    return std::hypot(a.X - b.X, a.Y - b.Y);
}

/// 1 when `point` lies right of the LineDef, looking from its start to its end (its front),
/// 2 when on its left or on its line.
inline int SideFacing(const LevelData& level, const LineDef& line, Point point)
{
    const Point a = VertexPoint(level, line.StartVertex);
    const Point b = VertexPoint(level, line.EndVertex);
    const double cross = (b.X - a.X) * (point.Y - a.Y) - (b.Y - a.Y) * (point.X - a.X);
    return cross < 0 ? 1 : 2;
}

} // namespace kelvar::map
