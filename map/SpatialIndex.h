// A grid of buckets over a level, so that "what is near this point" and "what is in this
// rectangle" look at a few objects instead of all of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace kelvar::map
{

/// Buckets of Things, Vertexes and LineDefs over the level's area. A Thing or Vertex sits in
/// the bucket of its position; a LineDef in every bucket its bounding box touches. Queries
/// give object numbers in ascending order, so callers that walk them keep the order rules
/// of a walk over the whole array.
class SpatialIndex
{
public:
    /// Sorts the level's objects into buckets.
    void Build(const LevelData& level);

    /// Things whose position lies in the box, edges included.
    std::vector<std::int32_t> ThingsIn(double minX, double minY, double maxX, double maxY) const;
    /// Vertexes whose position lies in the box, edges included.
    std::vector<std::int32_t> VertexesIn(double minX, double minY, double maxX, double maxY) const;
    /// LineDefs whose bounding box meets the box: every LineDef that passes through it, and
    /// perhaps a few that don't.
    std::vector<std::int32_t> LineDefsNear(double minX, double minY, double maxX,
                                           double maxY) const;

    /// The grid, for walks cell by cell: cells are squares of `CellSize()` map units, column 0
    /// starting at `ColumnStart(0)`; a position beyond the grid falls in its edge cell.
    int ColumnCount() const { return Columns; }
    int RowCount() const { return Rows; }
    int ColumnOf(double x) const { return CellX(x); }
    int RowOf(double y) const { return CellY(y); }
    double ColumnStart(int column) const { return OriginX + column * Cell; }
    double RowStart(int row) const { return OriginY + row * Cell; }
    double CellSize() const { return Cell; }
    /// The LineDefs whose bounding box meets one cell, in ascending order.
    std::span<const std::int32_t> LineDefsInCell(int column, int row) const;

private:
    struct Buckets
    {
        std::vector<std::int32_t> Start; // per cell: first item; one more entry at the end
        std::vector<std::int32_t> Items;
    };

    int CellX(double x) const;
    int CellY(double y) const;
    void Fill(Buckets& buckets, const std::vector<std::array<int, 4>>& cellBoxes) const;
    std::vector<std::int32_t> Gather(const Buckets& buckets, double minX, double minY, double maxX,
                                     double maxY) const;

    const LevelData* Level = nullptr;
    double OriginX = 0;
    double OriginY = 0;
    double Cell = 64;
    int Columns = 1;
    int Rows = 1;
    Buckets Things;
    Buckets Vertexes;
    Buckets Lines;
};

/// The index of a level, built on first use and rebuilt after any change to it.
const SpatialIndex& IndexOf(const LevelData& level);

} // namespace kelvar::map
