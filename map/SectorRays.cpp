// The Sector beside a LineDef, by rays along the axes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorRays.h"

#include <cmath>

namespace kelvar::map
{

namespace
{

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

Ends EndsOf(const LevelData& level, const LineDef& line, bool horizontal)
{
    const Vertex& a = level.Vertexes[line.StartVertex];
    const Vertex& b = level.Vertexes[line.EndVertex];
    return horizontal ? Ends{double(a.X), double(a.Y), double(b.X), double(b.Y)}
                      : Ends{double(a.Y), double(a.X), double(b.Y), double(b.X)};
}

bool ValidLine(const LevelData& level, const LineDef& line)
{
    return line.StartVertex < level.Vertexes.size() && line.EndVertex < level.Vertexes.size();
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

} // namespace

Beside SectorBesideAt(const LevelData& level, int line, RayStart start, double distance, int side)
{
    if (line < 0 || line >= level.LineDefs.Count() ||
        !ValidLine(level, level.LineDefs[static_cast<std::size_t>(line)]))
    {
        return {};
    }
    const LineDef& tested = level.LineDefs[static_cast<std::size_t>(line)];
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

    double best = ray.Positive ? 327670.0 : -327670.0;
    double bestMiddle = 0;
    int hit = -1;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& other = level.LineDefs[i];
        if (static_cast<int>(i) == line || !ValidLine(level, other))
        {
            continue;
        }
        const Ends e = EndsOf(level, other, ray.Horizontal);
        if ((at < e.Across1) == (at < e.Across2))
        {
            continue; // the ray's line doesn't separate its ends
        }
        const double crossing =
            (at - e.Across1) * (e.Along2 - e.Along1) / (e.Across2 - e.Across1) + e.Along1;
        if (ray.Positive ? !(crossing > from) : !(crossing < from))
        {
            continue;
        }
        const double middle = std::fabs((e.Along1 + e.Along2) / 2 - from);
        const bool nearer = ray.Positive ? crossing < best : crossing > best;
        if (nearer || (crossing == best && hit >= 0 && middle < bestMiddle))
        {
            best = crossing;
            bestMiddle = middle;
            hit = static_cast<int>(i);
        }
    }
    if (hit < 0)
    {
        return {};
    }
    const std::uint32_t facing =
        FacingSide(level, level.LineDefs[static_cast<std::size_t>(hit)], ray);
    if (facing >= level.SideDefs.size())
    {
        return {-1, hit, -1};
    }
    const std::uint32_t sector = level.SideDefs[facing].Sector;
    return {sector < level.Sectors.size() ? static_cast<int>(sector) : -1, hit,
            static_cast<int>(facing)};
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
