// Hit testing: the object under the pointer for each kind, and AutoMode's choice of mode.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/HitTest.h"

#include "map/SpatialIndex.h"
#include "view/ViewState.h"

#include <algorithm>
#include <cmath>

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

// Things and Vertexes: the smallest squared distance from the middle wins, the lower number
// on a tie; one within half a unit each way is taken at once, before any later one.
template <typename Position>
int NearestPoint(const std::vector<std::int32_t>& candidates, const Box& box, Position position)
{
    int best = -1;
    double bestDistance = 0;
    for (const std::int32_t i : candidates)
    {
        const auto [x, y] = position(i);
        const double dx = x - box.MiddleX();
        const double dy = y - box.MiddleY();
        if (dx * dx <= 0.25 && dy * dy <= 0.25)
        {
            return i;
        }
        const double distance = dx * dx + dy * dy;
        if (best < 0 || distance < bestDistance)
        {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

int NearestLine(const map::LevelData& level, const Box& box)
{
    const double px = box.MiddleX();
    const double py = box.MiddleY();
    int best = -1;
    double bestDistance = 0;
    for (const std::int32_t i :
         map::IndexOf(level).LineDefsNear(box.MinX, box.MinY, box.MaxX, box.MaxY))
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        const map::Vertex& a = level.Vertexes[line.StartVertex];
        const map::Vertex& b = level.Vertexes[line.EndVertex];
        const double distance = LineDistanceSquared(a.X, a.Y, b.X, b.Y, px, py);
        if (distance < 0)
        {
            continue;
        }
        // The line's nearest point must lie in the box: the box is the search range.
        const double length = std::hypot(b.X - a.X, b.Y - a.Y);
        const double t = ((px - a.X) * (b.X - a.X) + (py - a.Y) * (b.Y - a.Y)) / (length * length);
        const double footX = a.X + t * (b.X - a.X);
        const double footY = a.Y + t * (b.Y - a.Y);
        if (footX < box.MinX || footX > box.MaxX || footY < box.MinY || footY > box.MaxY)
        {
            continue;
        }
        if (best < 0 || distance < bestDistance)
        {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
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
        const std::size_t count = level.Vertexes.Array.size();
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
    if (side == map::NoSideDef || side >= level.SideDefs.Array.size())
    {
        return -1;
    }
    const std::uint32_t sector = level.SideDefs[side].Sector;
    return sector < level.Sectors.Array.size() ? static_cast<int>(sector) : -1;
}

} // namespace

double LineDistanceSquared(double ax, double ay, double bx, double by, double px, double py)
{
    const double dx = bx - ax;
    const double dy = by - ay;
    const double length = dx * dx + dy * dy;
    if (length == 0.0)
    {
        return -1.0;
    }
    const double t = ((px - ax) * dx + (py - ay) * dy) / length;
    if (t <= 0.0 || t >= 1.0)
    {
        return -1.0;
    }
    const double cross = (px - ax) * dy - (py - ay) * dx;
    return cross * cross / length;
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
    const bool empty =
        level.LineDefs.Array.empty() && level.Things.Array.empty() && level.Vertexes.Array.empty();
    if (empty)
    {
        return -1;
    }
    const map::SpatialIndex& index = map::IndexOf(level);
    switch (kind)
    {
    case ModeThings:
        return NearestPoint(index.ThingsIn(box.MinX, box.MinY, box.MaxX, box.MaxY), box,
                            [&](std::int32_t i)
                            {
                                const map::Thing& t = level.Things[static_cast<std::size_t>(i)];
                                return std::pair<double, double>(t.X, t.Y);
                            });
    case ModeVertexes:
        return NearestPoint(index.VertexesIn(box.MinX, box.MinY, box.MaxX, box.MaxY), box,
                            [&](std::int32_t i)
                            {
                                const map::Vertex& v = level.Vertexes[static_cast<std::size_t>(i)];
                                return std::pair<double, double>(v.X, v.Y);
                            });
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

template <typename Candidates, typename Position>
int NearestWithin(const MapViewport& viewport, int pointerX, int pointerY, double range,
                  Candidates candidates, Position position)
{
    if (range <= 0.0)
    {
        return -1;
    }
    const int x = ScreenToMapX(viewport, pointerX);
    const int y = ScreenToMapY(viewport, pointerY);
    int best = -1;
    double bestDistance = 9999999.0;
    for (const std::int32_t i : candidates(x - range, y - range, x + range, y + range))
    {
        const auto [px, py] = position(i);
        const double distance = (px - x) * (px - x) + (py - y) * (py - y);
        if (distance < bestDistance)
        {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

} // namespace

int FindVertexNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                   int pointerY, double range)
{
    const map::SpatialIndex& index = map::IndexOf(level);
    return NearestWithin(
        viewport, pointerX, pointerY, range,
        [&](double a, double b, double c, double d) { return index.VertexesIn(a, b, c, d); },
        [&](std::int32_t i)
        {
            const map::Vertex& v = level.Vertexes[static_cast<std::size_t>(i)];
            return std::pair<double, double>(v.X, v.Y);
        });
}

int FindThingNear(const map::LevelData& level, const MapViewport& viewport, int pointerX,
                  int pointerY, double range)
{
    const map::SpatialIndex& index = map::IndexOf(level);
    return NearestWithin(
        viewport, pointerX, pointerY, range,
        [&](double a, double b, double c, double d) { return index.ThingsIn(a, b, c, d); },
        [&](std::int32_t i)
        {
            const map::Thing& t = level.Things[static_cast<std::size_t>(i)];
            return std::pair<double, double>(t.X, t.Y);
        });
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
