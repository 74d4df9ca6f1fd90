// A grid of buckets over a level for near-point and in-rectangle queries.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SpatialIndex.h"

#include "map/MapState.h"

#include <algorithm>
#include <cmath>

namespace kelvar::map
{
namespace
{

// The objects of `found` whose position lies in the box, edges included.
template <typename Records>
std::vector<std::int32_t> Inside(std::vector<std::int32_t> found, const Records& records,
                                 double minX, double minY, double maxX, double maxY)
{
    std::erase_if(found,
                  [&](std::int32_t i)
                  {
                      const auto& object = records[static_cast<std::size_t>(i)];
                      return object.X < minX || object.X > maxX || object.Y < minY ||
                             object.Y > maxY;
                  });
    return found;
}

} // namespace

int SpatialIndex::CellX(double x) const
{
    return std::clamp(static_cast<int>(std::floor((x - OriginX) / Cell)), 0, Columns - 1);
}

int SpatialIndex::CellY(double y) const
{
    return std::clamp(static_cast<int>(std::floor((y - OriginY) / Cell)), 0, Rows - 1);
}

// Counting sort into the cells: cellBoxes[i] is the range of cells (x1, y1, x2, y2) of item i.
void SpatialIndex::Fill(Buckets& buckets, const std::vector<std::array<int, 4>>& cellBoxes) const
{
    const std::size_t cells = static_cast<std::size_t>(Columns) * static_cast<std::size_t>(Rows);
    buckets.Start.assign(cells + 1, 0);
    for (std::size_t i = 0; i < cellBoxes.size(); ++i)
    {
        const auto& box = cellBoxes[i];
        for (int y = box[1]; y <= box[3]; ++y)
        {
            for (int x = box[0]; x <= box[2]; ++x)
            {
                ++buckets.Start[static_cast<std::size_t>(y * Columns + x) + 1];
            }
        }
    }
    for (std::size_t c = 0; c < cells; ++c)
    {
        buckets.Start[c + 1] += buckets.Start[c];
    }
    buckets.Items.assign(static_cast<std::size_t>(buckets.Start[cells]), 0);
    std::vector<std::int32_t> next(buckets.Start.begin(), buckets.Start.end() - 1);
    for (std::size_t i = 0; i < cellBoxes.size(); ++i)
    {
        const auto& box = cellBoxes[i];
        for (int y = box[1]; y <= box[3]; ++y)
        {
            for (int x = box[0]; x <= box[2]; ++x)
            {
                buckets.Items[static_cast<std::size_t>(
                    next[static_cast<std::size_t>(y * Columns + x)]++)] =
                    static_cast<std::int32_t>(i);
            }
        }
    }
}

void SpatialIndex::Build(const LevelData& level)
{
    Level = &level;
    double minX = 0;
    double minY = 0;
    double maxX = 0;
    double maxY = 0;
    bool first = true;
    const auto take = [&](double x, double y)
    {
        minX = first ? x : std::min(minX, x);
        maxX = first ? x : std::max(maxX, x);
        minY = first ? y : std::min(minY, y);
        maxY = first ? y : std::max(maxY, y);
        first = false;
    };
    for (const Thing& thing : level.Things)
    {
        take(thing.X, thing.Y);
    }
    for (const Vertex& vertex : level.Vertexes)
    {
        take(vertex.X, vertex.Y);
    }
    // About two objects a cell, never cells smaller than 32 map units.
    const double objects =
        static_cast<double>(level.Things.size() + level.Vertexes.size() + level.LineDefs.size()) +
        1.0;
    const double area = std::max((maxX - minX + 1) * (maxY - minY + 1), 1.0);
    Cell = std::max(32.0, std::sqrt(area * 2.0 / objects));
    OriginX = minX;
    OriginY = minY;
    Columns = std::max(1, static_cast<int>((maxX - minX) / Cell) + 1);
    Rows = std::max(1, static_cast<int>((maxY - minY) / Cell) + 1);

    std::vector<std::array<int, 4>> boxes;
    boxes.reserve(std::max({level.Things.size(), level.Vertexes.size(), level.LineDefs.size()}));
    const auto fillPoints = [&](Buckets& buckets, const auto& records)
    {
        boxes.clear();
        for (const auto& object : records)
        {
            const int x = CellX(object.X);
            const int y = CellY(object.Y);
            boxes.push_back({x, y, x, y});
        }
        Fill(buckets, boxes);
    };
    fillPoints(Things, level.Things);
    fillPoints(Vertexes, level.Vertexes);
    boxes.clear();
    const std::size_t vertexCount = level.Vertexes.size();
    for (const LineDef& line : level.LineDefs)
    {
        if (line.StartVertex >= vertexCount || line.EndVertex >= vertexCount)
        {
            boxes.push_back({0, 0, -1, -1}); // a line with a bad Vertex is in no bucket
            continue;
        }
        const Vertex& a = level.Vertexes[line.StartVertex];
        const Vertex& b = level.Vertexes[line.EndVertex];
        boxes.push_back({CellX(std::min(a.X, b.X)), CellY(std::min(a.Y, b.Y)),
                         CellX(std::max(a.X, b.X)), CellY(std::max(a.Y, b.Y))});
    }
    Fill(Lines, boxes);
}

std::vector<std::int32_t> SpatialIndex::Gather(const Buckets& buckets, double minX, double minY,
                                               double maxX, double maxY) const
{
    std::vector<std::int32_t> found;
    const int x1 = CellX(minX);
    const int x2 = CellX(maxX);
    const int y1 = CellY(minY);
    const int y2 = CellY(maxY);
    for (int y = y1; y <= y2; ++y)
    {
        for (int x = x1; x <= x2; ++x)
        {
            const auto cell = static_cast<std::size_t>(y * Columns + x);
            found.insert(found.end(), buckets.Items.begin() + buckets.Start[cell],
                         buckets.Items.begin() + buckets.Start[cell + 1]);
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<std::int32_t> SpatialIndex::ThingsIn(double minX, double minY, double maxX,
                                                 double maxY) const
{
    return Inside(Gather(Things, minX, minY, maxX, maxY), Level->Things, minX, minY, maxX, maxY);
}

std::vector<std::int32_t> SpatialIndex::VertexesIn(double minX, double minY, double maxX,
                                                   double maxY) const
{
    return Inside(Gather(Vertexes, minX, minY, maxX, maxY), Level->Vertexes, minX, minY, maxX,
                  maxY);
}

std::vector<std::int32_t> SpatialIndex::LineDefsNear(double minX, double minY, double maxX,
                                                     double maxY) const
{
    return Gather(Lines, minX, minY, maxX, maxY);
}

std::span<const std::int32_t> SpatialIndex::LineDefsInCell(int column, int row) const
{
    const auto cell = static_cast<std::size_t>(row * Columns + column);
    const auto begin = static_cast<std::size_t>(Lines.Start[cell]);
    const auto end = static_cast<std::size_t>(Lines.Start[cell + 1]);
    return {Lines.Items.data() + begin, end - begin};
}

const SpatialIndex& IndexOf(const LevelData& level)
{
    MapState& state = Map();
    // The index depends only on where Things, Vertexes and LineDefs are: a change of SideDefs
    // or Sectors leaves it standing.
    const std::array<std::uint64_t, 3> stamps{level.Things.Stamp(), level.Vertexes.Stamp(),
                                              level.LineDefs.Stamp()};
    if (state.IndexedLevel != &level || state.IndexedStamps != stamps)
    {
        state.Index.Build(level);
        state.IndexedLevel = &level;
        state.IndexedStamps = stamps;
    }
    return state.Index;
}

} // namespace kelvar::map
