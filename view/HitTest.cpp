// Hit testing: the object under the pointer for each kind, and AutoMode's choice of mode.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/HitTest.h"

#include "map/SpatialIndex.h"
#include "view/ViewState.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace kelvar::view
{
namespace
{

struct Box
{
    double MinX, MinY, MaxX, MaxY;
    double MiddleX() const { return (MinX + MaxX) / 2; }
    double MiddleY() const { return (MinY + MaxY) / 2; }
};

// The squared distance of a point from a LineDef, measured along the perpendicular; nothing
// when the foot of the perpendicular doesn't fall strictly between the ends, or the line has
// no length.
std::optional<double> PerpendicularSquared(double ax, double ay, double bx, double by, double px,
                                           double py)
{
    const double dx = bx - ax;
    const double dy = by - ay;
    const double length = dx * dx + dy * dy;
    if (length == 0.0)
    {
        return std::nullopt;
    }
    const double t = ((px - ax) * dx + (py - ay) * dy) / length;
    if (t <= 0.0 || t >= 1.0)
    {
        return std::nullopt;
    }
    const double cross = (px - ax) * dy - (py - ay) * dx;
    return cross * cross / length;
}

// The candidate of the smallest distance offered so far; of equal ones the first, and none at
// or beyond `Distance` as it starts.
struct Nearest
{
    int Index = -1;
    double Distance = std::numeric_limits<double>::infinity();

    void Offer(int index, double distance)
    {
        if (distance < Distance)
        {
            Index = index;
            Distance = distance;
        }
    }
};

// Things and Vertexes: the smallest squared distance from the middle wins, the lower number
// on a tie; one within half a unit each way is taken at once, before any later one.
template <class Points>
int NearestPoint(const std::vector<std::int32_t>& candidates, const Box& box, const Points& points)
{
    Nearest best;
    for (const std::int32_t i : candidates)
    {
        const auto& point = points[static_cast<std::size_t>(i)];
        const double dx = point.X - box.MiddleX();
        const double dy = point.Y - box.MiddleY();
        if (dx * dx <= 0.25 && dy * dy <= 0.25)
        {
            return i;
        }
        best.Offer(i, dx * dx + dy * dy);
    }
    return best.Index;
}

void OfferLine(const map::LevelData& level, std::int32_t index, double px, double py, Nearest& best)
{
    const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(index)];
    const std::size_t count = level.Vertexes.size();
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return;
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    if (const std::optional<double> distance = PerpendicularSquared(a.X, a.Y, b.X, b.Y, px, py))
    {
        best.Offer(index, *distance);
    }
}

// Every LineDef is a candidate, however far from the box: the box only places the point. The
// nearest by perpendicular distance wins, the first of equal ones; a line whose foot falls
// outside it (or that has no length) never does.
int NearestLine(const map::LevelData& level, const Box& box)
{
    const double px = box.MiddleX();
    const double py = box.MiddleY();
    // A line that doesn't reach the square of half-size r round the point is farther than r,
    // so a nearest one found within r in that square, ties included, is the nearest of all.
    // The square doubles until that holds, or until it would take in every 16-bit coordinate
    // and the walk over all lines is no dearer.
    const double whole = std::max(std::abs(px), std::abs(py)) + 32768.0;
    const map::SpatialIndex& index = map::IndexOf(level);
    for (double r = 64.0; r < whole; r *= 2.0)
    {
        Nearest best;
        for (const std::int32_t i : index.LineDefsNear(px - r, py - r, px + r, py + r))
        {
            OfferLine(level, i, px, py, best);
        }
        if (best.Index >= 0 && best.Distance <= r * r)
        {
            return best.Index;
        }
    }
    Nearest best;
    for (std::int32_t i = 0; i < level.LineDefs.Count(); ++i)
    {
        OfferLine(level, i, px, py, best);
    }
    return best.Index;
}

// The Sector at the box's middle: along the horizontal through it, the nearest crossing of a
// LineDef decides, and the side of that LineDef facing the point names the Sector.
int SectorAtPoint(const map::LevelData& level, const Box& box)
{
    const double px = box.MiddleX();
    const double py = box.MiddleY();
    double bestX = 327670.0;
    const map::LineDef* hit = nullptr;
    // Only the LineDefs of the index's row at the point's height can cross it.
    for (const std::int32_t i : map::IndexOf(level).LineDefsNear(-1.0e9, py, 1.0e9, py))
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        const std::size_t count = level.Vertexes.size();
        if (line.StartVertex >= count || line.EndVertex >= count)
        {
            continue;
        }
        const map::Vertex& a = level.Vertexes[line.StartVertex];
        const map::Vertex& b = level.Vertexes[line.EndVertex];
        double x;
        if (a.Y == b.Y)
        {
            if (a.Y != py)
            {
                continue;
            }
            // A horizontal line at the point's height counts by its end nearest the point,
            // moved in by one.
            const double nearEnd = std::abs(a.X - px) < std::abs(b.X - px) ? a.X : b.X;
            x = nearEnd + (nearEnd < px ? 1.0 : -1.0);
        }
        else
        {
            if ((py < a.Y && py < b.Y) || (py > a.Y && py > b.Y))
            {
                continue;
            }
            x = a.X + (py - a.Y) * (b.X - a.X) / (b.Y - a.Y);
        }
        if (std::abs(x - px) < std::abs(bestX - px))
        {
            bestX = x;
            hit = &line;
        }
    }
    if (hit == nullptr)
    {
        return -1;
    }
    const map::Vertex& a = level.Vertexes[hit->StartVertex];
    const map::Vertex& b = level.Vertexes[hit->EndVertex];
    // The front (right) side of a line going up faces east.
    const bool up = a.Y < b.Y || (a.Y == b.Y && a.X > b.X);
    const bool pointEast = px > bestX;
    const std::uint32_t side = up == pointEast ? hit->SideDef1 : hit->SideDef2;
    if (side == map::NoSideDef || side >= level.SideDefs.size())
    {
        return -1;
    }
    const std::uint32_t sector = level.SideDefs[side].Sector;
    return sector < level.Sectors.size() ? static_cast<int>(sector) : -1;
}

} // namespace

double LineDistanceSquared(double ax, double ay, double bx, double by, double px, double py)
{
    return PerpendicularSquared(ax, ay, bx, by, px, py).value_or(-1.0);
}

int FindObject(const map::LevelData& level, const MapViewport& viewport, bool inPixels, int kind,
               double x1, double y1, double x2, double y2)
{
    if (inPixels)
    {
        x1 = ScreenToMapXExact(viewport, x1);
        x2 = ScreenToMapXExact(viewport, x2);
        y1 = ScreenToMapYExact(viewport, y1);
        y2 = ScreenToMapYExact(viewport, y2);
    }
    const Box box{std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
    if (level.LineDefs.empty() && level.Things.empty() && level.Vertexes.empty())
    {
        return -1;
    }
    const map::SpatialIndex& index = map::IndexOf(level);
    switch (kind)
    {
    case ModeThings:
        return NearestPoint(index.ThingsIn(box.MinX, box.MinY, box.MaxX, box.MaxY), box,
                            level.Things);
    case ModeVertexes:
        return NearestPoint(index.VertexesIn(box.MinX, box.MinY, box.MaxX, box.MaxY), box,
                            level.Vertexes);
    case ModeLineDefs:
        return NearestLine(level, box);
    case ModeSectors:
        return SectorAtPoint(level, box);
    default:
        return -1;
    }
}

int FindNearPointer(const map::LevelData& level, const MapViewport& viewport, int kind,
                    double range, int pointerX, int pointerY)
{
    // The box is never smaller than `range` pixels, however far the view is zoomed out.
    const double half =
        std::max(static_cast<double>(static_cast<int>(range * viewport.Scale)), range);
    return FindObject(level, viewport, true, kind, pointerX - half, pointerY - half,
                      pointerX + half, pointerY + half);
}

namespace
{

using PointsIn = std::vector<std::int32_t> (map::SpatialIndex::*)(double, double, double,
                                                                  double) const;

// The Thing or Vertex nearest the pointer's map point, taken in whole units, within a box of
// half-size `range` around it; a distance of 9999999 or more counts as none.
template <class Points>
int NearestToPointer(const map::LevelData& level, const Points& points, PointsIn pointsIn,
                     const MapViewport& viewport, int pointerX, int pointerY, double range)
{
    if (range <= 0.0)
    {
        return -1;
    }
    const int x = ScreenToMapX(viewport, pointerX);
    const int y = ScreenToMapY(viewport, pointerY);
    Nearest best{-1, 9999999.0};
    for (const std::int32_t i :
         (map::IndexOf(level).*pointsIn)(x - range, y - range, x + range, y + range))
    {
        const auto& point = points[static_cast<std::size_t>(i)];
        const double dx = static_cast<double>(point.X) - x;
        const double dy = static_cast<double>(point.Y) - y;
        best.Offer(i, dx * dx + dy * dy);
    }
    return best.Index;
}

} // namespace

int FindVertexNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                   int pointerY, double range)
{
    return NearestToPointer(level, level.Vertexes, &map::SpatialIndex::VertexesIn, viewport,
                            pointerX, pointerY, range);
}

int FindThingNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                  int pointerY, double range)
{
    return NearestToPointer(level, level.Things, &map::SpatialIndex::ThingsIn, viewport, pointerX,
                            pointerY, range);
}

AutoModeChoice ChooseAutoMode(const map::LevelData& level, const MapViewport& viewport,
                              int currentMode, int currentObject, int pointerX, int pointerY,
                              const AutoModeRanges& ranges)
{
    AutoModeChoice choice{currentMode, currentObject, false};
    const auto pick = [&](int mode, int object)
    {
        choice.Changed = mode != currentMode;
        choice.Mode = mode;
        choice.Object = object;
        return choice;
    };
    if (const int vertex = FindVertexNear(level, viewport, pointerX, pointerY, ranges.Vertex);
        vertex >= 0)
    {
        return pick(ModeVertexes, vertex);
    }
    if (const int thing = FindThingNear(level, viewport, pointerX, pointerY, ranges.Thing);
        thing >= 0)
    {
        return pick(ModeThings, thing);
    }
    int line = -1;
    for (int range = 20; range <= 180 && line < 0; range += 20)
    {
        line = FindNearPointer(level, viewport, ModeLineDefs, range, pointerX, pointerY);
    }
    if (line < 0)
    {
        return choice;
    }
    if (currentMode != ModeLineDefs || line == currentObject)
    {
        return pick(ModeLineDefs, line);
    }
    // Already on a line and now near another: the Sector between them is what's wanted.
    for (int range = 20; range <= 1980; range += 20)
    {
        const int sector = FindNearPointer(level, viewport, ModeSectors, range, pointerX, pointerY);
        if (sector >= 0)
        {
            return pick(ModeSectors, sector);
        }
    }
    return pick(ModeLineDefs, line);
}

} // namespace kelvar::view
