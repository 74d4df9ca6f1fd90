// The Sector beside a LineDef and the Sector at a point, by rays along the axes, walked cell by
// cell through the spatial index.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorRays.h"

#include "map/SectorOps.h"
#include "map/SpatialIndex.h"

#include <algorithm>
#include <cmath>

namespace kelvar::map
{

namespace
{

// The far end of every ray: no crossing lies beyond it.
constexpr double RayBound = 327670.0;

struct Ray
{
    double X = 0; // the start
    double Y = 0;
    bool Horizontal = true;
    bool Positive = true; // east or north
};

// A LineDef's ends, seen along the ray: `along` is the ray's axis, `across` the other.
struct Ends
{
    double Along1, Across1, Along2, Across2;
};

bool ValidLine(const LevelData& level, const LineDef& line)
{
    return line.StartVertex < level.Vertexes.size() && line.EndVertex < level.Vertexes.size();
}

const LineDef& LineAt(const LevelData& level, std::int32_t i)
{
    return level.LineDefs[static_cast<std::size_t>(i)];
}

Ends EndsOf(const LevelData& level, const LineDef& line, bool horizontal)
{
    const Vertex& a = level.Vertexes[line.StartVertex];
    const Vertex& b = level.Vertexes[line.EndVertex];
    return horizontal ? Ends{double(a.X), double(a.Y), double(b.X), double(b.Y)}
                      : Ends{double(a.Y), double(a.X), double(b.Y), double(b.X)};
}

// Offers the LineDefs of the cells along a ray's line to `visit`, from the ray's start outward,
// until `done(cellStart)` says that nothing in a cell starting there (its near edge along the
// ray) can matter any more. A LineDef that spans several cells is offered once per cell.
template <typename Visit, typename Done>
void WalkCells(const SpatialIndex& index, bool horizontal, bool positive, double from, double at,
               Visit visit, Done done)
{
    const int count = horizontal ? index.ColumnCount() : index.RowCount();
    const int fixed = horizontal ? index.RowOf(at) : index.ColumnOf(at);
    const int first = horizontal ? index.ColumnOf(from) : index.RowOf(from);
    const double size = index.CellSize();
    for (int cell = first; cell >= 0 && cell < count; cell += positive ? 1 : -1)
    {
        const double start = horizontal ? index.ColumnStart(cell) : index.RowStart(cell);
        // The edge of the cell nearest the ray's start; the first cell holds the start itself.
        const double nearEdge = cell == first ? from : positive ? start : start + size;
        if (done(nearEdge))
        {
            return;
        }
        const auto lines =
            horizontal ? index.LineDefsInCell(cell, fixed) : index.LineDefsInCell(fixed, cell);
        for (const std::int32_t i : lines)
        {
            visit(i);
        }
    }
}

// The SideDef of the hit LineDef that faces the ray's start.
std::uint32_t FacingSide(const LevelData& level, const LineDef& hit, const Ray& ray)
{
    const Vertex& a = level.Vertexes[hit.StartVertex];
    const Vertex& b = level.Vertexes[hit.EndVertex];
    if (ray.Horizontal)
    {
        const bool up = a.Y < b.Y;
        return up != ray.Positive ? hit.SideDef1 : hit.SideDef2;
    }
    const bool right = a.X < b.X;
    return right != ray.Positive ? hit.SideDef2 : hit.SideDef1;
}

// The nearest LineDef a ray crosses: of equal crossings the one whose middle, along the ray,
// is nearer the start, and of those the lower number.
struct RayHit
{
    double Crossing = 0;
    double Middle = 0;
    int Line = -1;

    bool Beats(double crossing, double middle, int line, bool positive) const
    {
        if (Line < 0)
        {
            return true;
        }
        if (crossing != Crossing)
        {
            return positive ? crossing < Crossing : crossing > Crossing;
        }
        return middle < Middle || (middle == Middle && line < Line);
    }
};

} // namespace

Beside SectorBesideAt(const LevelData& level, int line, RayStart start, double distance, int side)
{
    if (line < 0 || line >= level.LineDefs.Count() || !ValidLine(level, LineAt(level, line)))
    {
        return {};
    }
    const LineDef& tested = LineAt(level, line);
    const Vertex& a = level.Vertexes[tested.StartVertex];
    const Vertex& b = level.Vertexes[tested.EndVertex];
    const long double dx = static_cast<long double>(b.X) - a.X;
    const long double dy = static_cast<long double>(b.Y) - a.Y;
    long double fraction = start == RayStart::Middle    ? 0.5L
                           : start == RayStart::Quarter ? 0.25L
                                                        : 0.75L;
    if (distance > 0)
    {
        const long double length = std::sqrt(dx * dx + dy * dy);
        if (length == 0)
        {
            return {};
        }
        fraction = static_cast<long double>(distance) / length;
    }
    Ray ray;
    ray.X = static_cast<double>(a.X + dx * fraction);
    ray.Y = static_cast<double>(a.Y + dy * fraction);
    const long double normalX = side == 1 ? dy : -dy;
    const long double normalY = side == 1 ? -dx : dx;
    ray.Horizontal = !(std::fabs(normalY) > std::fabs(normalX));
    ray.Positive = ray.Horizontal ? normalX > 0 : normalY > 0;
    const double from = ray.Horizontal ? ray.X : ray.Y;
    const double at = ray.Horizontal ? ray.Y : ray.X;

    RayHit best;
    best.Crossing = ray.Positive ? RayBound : -RayBound;
    const auto offer = [&](std::int32_t i)
    {
        const LineDef& other = LineAt(level, i);
        if (i == line || !ValidLine(level, other))
        {
            return;
        }
        const Ends e = EndsOf(level, other, ray.Horizontal);
        if ((at < e.Across1) == (at < e.Across2))
        {
            return; // the ray's line doesn't separate its ends
        }
        const double crossing =
            (at - e.Across1) * (e.Along2 - e.Along1) / (e.Across2 - e.Across1) + e.Along1;
        if (ray.Positive ? !(crossing > from) : !(crossing < from))
        {
            return;
        }
        const double middle = std::fabs((e.Along1 + e.Along2) / 2 - from);
        if (best.Beats(crossing, middle, i, ray.Positive))
        {
            best = {crossing, middle, i};
        }
    };
    // A cell whose near edge lies beyond the best crossing holds nothing nearer; one unit of
    // margin keeps an equal crossing on the cell's edge in the walk.
    const auto done = [&](double nearEdge)
    {
        return best.Line >= 0 &&
               (ray.Positive ? nearEdge > best.Crossing + 1.0 : nearEdge < best.Crossing - 1.0);
    };
    WalkCells(IndexOf(level), ray.Horizontal, ray.Positive, from, at, offer, done);
    if (best.Line < 0)
    {
        return {};
    }
    const std::uint32_t facing = FacingSide(level, LineAt(level, best.Line), ray);
    if (facing >= level.SideDefs.size())
    {
        return {-1, best.Line, -1};
    }
    return {SectorNumberOfSide(level, facing), best.Line, static_cast<int>(facing)};
}

Beside SectorBeside(const LevelData& level, int line, int side)
{
    Beside found;
    for (const RayStart start : {RayStart::Middle, RayStart::Quarter, RayStart::ThreeQuarters})
    {
        found = SectorBesideAt(level, line, start, 0, side);
        if (found.Sector != -1)
        {
            return found;
        }
    }
    return found;
}

} // namespace kelvar::map
