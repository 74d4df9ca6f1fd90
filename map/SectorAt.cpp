// The Sector at a point: a ray to the east, the side of the nearest LineDef it meets that
// faces west, and the tie rules for a ray through a Vertex.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorOps.h"
#include "map/SectorRays.h"
#include "map/SpatialIndex.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace kelvar::map
{
namespace
{

const LineDef& LineAt(const LevelData& level, std::int32_t i)
{
    return level.LineDefs[static_cast<std::size_t>(i)];
}

// A LineDef with both Vertexes and a front side: only these can hold a point.
bool Counts(const LevelData& level, const LineDef& line)
{
    return line.SideDef1 != NoSideDef && line.StartVertex < level.Vertexes.size() &&
           line.EndVertex < level.Vertexes.size();
}

struct Span
{
    double X1, Y1, X2, Y2;
};

Span SpanOf(const LevelData& level, const LineDef& line)
{
    const Vertex& a = level.Vertexes[line.StartVertex];
    const Vertex& b = level.Vertexes[line.EndVertex];
    return {double(a.X), double(a.Y), double(b.X), double(b.Y)};
}

bool SpansHeight(const Span& s, double y)
{
    return std::min(s.Y1, s.Y2) <= y && y <= std::max(s.Y1, s.Y2);
}

// Where the eastward ray at height py meets a LineDef that spans that height. A horizontal
// LineDef counts by its far end when the point lies west of it, else by its near end, moved
// one unit west unless it has no length.
double CrossingX(const Span& s, double px, double py)
{
    if (s.Y1 != s.Y2)
    {
        return (py - s.Y1) * (s.X2 - s.X1) / (s.Y2 - s.Y1) + s.X1;
    }
    const double low = std::min(s.X1, s.X2);
    const double high = std::max(s.X1, s.X2);
    const double x = px < low ? high : low;
    return s.X1 == s.X2 ? x : x - 1.0;
}

// The side that faces west: the front of a LineDef running down or level, else the back.
std::uint32_t WestSide(const LevelData& level, const LineDef& line)
{
    const Span s = SpanOf(level, line);
    return s.Y2 <= s.Y1 ? line.SideDef1 : line.SideDef2;
}

// The first walk: the nearest crossing at or east of the point (a later LineDef winning an
// equal one), and whether any crossing lies at or west of it.
struct EastHit
{
    double X = 327670.0;
    int Line = -1;
    bool SomethingWest = false;
};

EastHit CastEast(const LevelData& level, const SpatialIndex& index, double px, double py)
{
    EastHit hit;
    const auto offer = [&](std::int32_t i)
    {
        const LineDef& line = LineAt(level, i);
        if (!Counts(level, line))
        {
            return;
        }
        const Span s = SpanOf(level, line);
        if (!SpansHeight(s, py))
        {
            return;
        }
        const double x = CrossingX(s, px, py);
        if (x <= px)
        {
            hit.SomethingWest = true;
        }
        if (x >= px && (x < hit.X || (x == hit.X && i > hit.Line)))
        {
            hit.X = x;
            hit.Line = i;
        }
    };
    const int row = index.RowOf(py);
    const int columns = index.ColumnCount();
    // A horizontal LineDef's crossing may lie a unit outside its own cells: two units of
    // margin keep it in the walk.
    const int start = index.ColumnOf(px - 2.0);
    for (int column = start; column < columns; ++column)
    {
        if (hit.Line >= 0 && index.ColumnStart(column) > hit.X + 2.0)
        {
            break;
        }
        for (const std::int32_t i : index.LineDefsInCell(column, row))
        {
            offer(i);
        }
    }
    // West of the start only the flag is wanted: the walk ends at the first crossing found.
    for (int column = index.ColumnOf(px + 2.0); column >= 0 && !hit.SomethingWest; --column)
    {
        for (const std::int32_t i : index.LineDefsInCell(column, row))
        {
            const LineDef& line = LineAt(level, i);
            if (Counts(level, line))
            {
                const Span s = SpanOf(level, line);
                if (SpansHeight(s, py) && CrossingX(s, px, py) <= px)
                {
                    hit.SomethingWest = true;
                    break;
                }
            }
        }
    }
    return hit;
}

// The LineDefs whose box holds the point, in ascending order.
std::vector<std::int32_t> LinesAtPoint(const SpatialIndex& index, double x, double y)
{
    return index.LineDefsNear(x, y, x, y);
}

// A ray through a Vertex of the hit LineDef: a neighbour at that Vertex that also spans the
// point's height may lie nearer. Each gets a representative X; the nearest at or east of the
// point and below the best so far takes the hit's place. Returns the LineDef that decides.
int TieAtVertex(const LevelData& level, const SpatialIndex& index, int hit, double bestX, double px,
                double py)
{
    const LineDef& first = LineAt(level, hit);
    const Vertex& a = level.Vertexes[first.StartVertex];
    const Vertex& b = level.Vertexes[first.EndVertex];
    std::vector<std::int32_t> near = LinesAtPoint(index, a.X, a.Y);
    const std::vector<std::int32_t> atEnd = LinesAtPoint(index, b.X, b.Y);
    near.insert(near.end(), atEnd.begin(), atEnd.end());
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());

    int decided = hit;
    bool tookExtent = false;
    for (const std::int32_t i : near)
    {
        const LineDef& line = LineAt(level, i);
        if (i == hit || !Counts(level, line))
        {
            continue;
        }
        const bool touches =
            line.StartVertex == first.StartVertex || line.EndVertex == first.StartVertex ||
            line.StartVertex == first.EndVertex || line.EndVertex == first.EndVertex;
        const Span s = SpanOf(level, line);
        if (!touches || !SpansHeight(s, py) || s.Y1 == s.Y2)
        {
            continue;
        }
        const double low = std::min(s.X1, s.X2);
        const double high = std::max(s.X1, s.X2);
        if (tookExtent && !(low > px))
        {
            continue;
        }
        const double x = s.X1 == s.X2 ? s.X1 - 1.0 : high > bestX ? high - 2.0 : (low + high) / 2;
        if (x >= px && x < bestX)
        {
            bestX = x;
            decided = i;
            tookExtent = tookExtent || s.X1 != s.X2;
        }
    }
    return decided;
}

// The rule for a side found: its Sector when some line lies west of the point, else -1
// (outside); nothing when the side is missing and the tie rules must decide.
std::optional<int> ByFacingSide(const LevelData& level, std::uint32_t side, bool somethingWest)
{
    if (side == NoSideDef)
    {
        return std::nullopt;
    }
    return somethingWest ? SectorNumberOfSide(level, side) : -1;
}

// The last resort of the loose forms: a vertical LineDef exactly through the point.
int VerticalThroughPoint(const LevelData& level, const SpatialIndex& index, double px, double py)
{
    for (const std::int32_t i : LinesAtPoint(index, px, py))
    {
        const LineDef& line = LineAt(level, i);
        if (!Counts(level, line))
        {
            continue;
        }
        const Span s = SpanOf(level, line);
        if (s.X1 == px && s.X2 == px && SpansHeight(s, py))
        {
            return SectorNumberOfSide(level, line.SideDef1);
        }
    }
    return -1;
}

int Settle(const LevelData& level, const SpatialIndex& index, double px, double py,
           SectorAtMode mode)
{
    const EastHit east = CastEast(level, index, px, py);
    if (east.Line < 0)
    {
        return -1;
    }
    const LineDef& hit = LineAt(level, east.Line);
    const Span s = SpanOf(level, hit);
    const std::uint32_t side = WestSide(level, hit);
    const bool throughEnd = py == s.Y1 || py == s.Y2;
    if (throughEnd && mode == SectorAtMode::Strict)
    {
        const bool onEnd = (px == s.X1 && py == s.Y1) || (px == s.X2 && py == s.Y2);
        if (onEnd)
        {
            return -1;
        }
    }
    if (throughEnd && mode == SectorAtMode::Drawing)
    {
        if (side == NoSideDef)
        {
            return -1;
        }
        if (!east.SomethingWest)
        {
            return SectorNumberOfSide(level, side);
        }
    }
    else if (const std::optional<int> answer = ByFacingSide(level, side, east.SomethingWest))
    {
        return *answer;
    }
    const int decided = TieAtVertex(level, index, east.Line, east.X, px, py);
    const std::uint32_t decidedSide = WestSide(level, LineAt(level, decided));
    return ByFacingSide(level, decidedSide != NoSideDef ? decidedSide : side, east.SomethingWest)
        .value_or(-1);
}

} // namespace

int SectorAt(const LevelData& level, double x, double y, SectorAtMode mode)
{
    if (level.LineDefs.empty())
    {
        return -1;
    }
    const SpatialIndex& index = IndexOf(level);
    const int found = Settle(level, index, x, y, mode);
    if (found == -1 && mode != SectorAtMode::Strict)
    {
        return VerticalThroughPoint(level, index, x, y);
    }
    return found;
}

} // namespace kelvar::map
