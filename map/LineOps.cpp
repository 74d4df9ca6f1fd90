// Operations on LineDefs: splitting, flipping, straightening and renumbering.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/LineOps.h"

#include "map/ObjectStore.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace kelvar::map
{

namespace
{

// A side's clone for the second half of a split LineDef, or none for none.
std::uint32_t CloneSide(LevelData& level, std::uint32_t side)
{
    if (side == NoSideDef)
    {
        return NoSideDef;
    }
    return static_cast<std::uint32_t>(
        InsertObject(level, KindSideDef, static_cast<int>(side), 0, 0));
}

// The new number of each object when `first` (in this order) go to the front and the rest
// keep their order behind them.
std::vector<std::uint32_t> FrontPermutation(std::size_t count,
                                            const std::vector<std::int32_t>& first)
{
    std::vector<std::uint32_t> newNumber(count, NoSideDef);
    std::uint32_t next = 0;
    for (const std::int32_t object : first)
    {
        const auto at = static_cast<std::size_t>(object);
        if (object >= 0 && at < count && newNumber[at] == NoSideDef)
        {
            newNumber[at] = next++;
        }
    }
    for (std::size_t at = 0; at < count; ++at)
    {
        if (newNumber[at] == NoSideDef)
        {
            newNumber[at] = next++;
        }
    }
    return newNumber;
}

template <typename Record>
void Permute(ObjectArray<Record>& records, const std::vector<std::uint32_t>& newNumber)
{
    std::vector<Record> moved(records.size());
    const ObjectArray<Record>& old = records;
    for (std::size_t at = 0; at < old.size(); ++at)
    {
        moved[newNumber[at]] = old[at];
    }
    const std::int32_t capacity = records.Capacity;
    records.Assign(moved);
    records.Capacity = capacity;
}

// The list's objects under their new numbers; a stale number stays as it is.
void Renumber(std::vector<std::int32_t>& objects, const std::vector<std::uint32_t>& newNumber)
{
    for (std::int32_t& object : objects)
    {
        const auto at = static_cast<std::size_t>(object);
        if (object >= 0 && at < newNumber.size())
        {
            object = static_cast<std::int32_t>(newNumber[at]);
        }
    }
}

} // namespace

int InsertLineDef(LevelData& level, std::uint32_t start, std::uint32_t end)
{
    const int line = InsertObject(level, KindLineDef, -1, 0, 0);
    LineDef& made = level.LineDefs[static_cast<std::size_t>(line)];
    made.StartVertex = start;
    made.EndVertex = end;
    return line;
}

int SplitLineDefAt(LevelData& level, int line, int vertex)
{
    const int added = InsertObject(level, KindLineDef, line, 0, 0);
    const auto at = static_cast<std::size_t>(line);
    const std::uint32_t oldEnd = std::as_const(level).LineDefs[at].EndVertex;
    level.LineDefs[at].EndVertex = static_cast<std::uint32_t>(vertex);
    const std::uint32_t side1 = CloneSide(level, std::as_const(level).LineDefs[at].SideDef1);
    const std::uint32_t side2 = CloneSide(level, std::as_const(level).LineDefs[at].SideDef2);
    LineDef& second = level.LineDefs[static_cast<std::size_t>(added)];
    second.StartVertex = static_cast<std::uint32_t>(vertex);
    second.EndVertex = oldEnd;
    second.SideDef1 = side1;
    second.SideDef2 = side2;
    NoteChange(level, KindLineDef);
    return added;
}

void SplitLineDefsAtMidpoint(LevelData& level, const ObjectList& list)
{
    for (const std::int32_t line : list.Objects())
    {
        const LineDef& record = std::as_const(level).LineDefs[static_cast<std::size_t>(line)];
        const Vertex& start = std::as_const(level).Vertexes[record.StartVertex];
        const Vertex& end = std::as_const(level).Vertexes[record.EndVertex];
        // Integer division truncates toward zero, for negative sums too.
        const int x = (start.X + end.X) / 2;
        const int y = (start.Y + end.Y) / 2;
        const int vertex = InsertObject(level, KindVertex, -1, x, y);
        SplitLineDefAt(level, line, vertex);
    }
}

void FlipLineDefs(LevelData& level, const ObjectList& list, FlipWhat what)
{
    for (const std::int32_t object : list.Objects())
    {
        LineDef& line = level.LineDefs[static_cast<std::size_t>(object)];
        if (what != FlipWhat::SidesOnly)
        {
            std::swap(line.StartVertex, line.EndVertex);
        }
        if (what != FlipWhat::VertexesOnly)
        {
            std::swap(line.SideDef1, line.SideDef2);
        }
    }
    NoteChange(level, KindLineDef);
}

bool AlignLineDefToGrid(LevelData& level, int line, int gridSize)
{
    if (gridSize <= 0)
    {
        return false;
    }
    const LineDef& record = std::as_const(level).LineDefs[static_cast<std::size_t>(line)];
    const Vertex end = std::as_const(level).Vertexes[record.EndVertex];
    const Vertex start = std::as_const(level).Vertexes[record.StartVertex];
    const int dx = std::abs(end.X - start.X);
    const int dy = std::abs(end.Y - start.Y);
    Vertex moved = start;
    if (dx < dy && dx > 0 && dx < gridSize)
    {
        moved.X = end.X;
    }
    else if (dy > 0 && dy < gridSize && dx != 0)
    {
        moved.Y = end.Y;
    }
    else
    {
        return false;
    }
    level.Vertexes[record.StartVertex] = moved;
    NoteChange(level, KindVertex);
    return true;
}

void RenumberSelected(LevelData& level, int kind, ObjectList& list)
{
    if (kind != KindLineDef && kind != KindSector)
    {
        return;
    }
    const StoreChange busy;
    std::vector<std::int32_t> newestFirst = list.Objects();
    const std::vector<std::int32_t> firstMarked(newestFirst.rbegin(), newestFirst.rend());
    const std::size_t count = kind == KindLineDef ? level.LineDefs.size() : level.Sectors.size();
    const std::vector<std::uint32_t> newNumber = FrontPermutation(count, firstMarked);
    if (kind == KindLineDef)
    {
        Permute(level.LineDefs, newNumber);
    }
    else
    {
        Permute(level.Sectors, newNumber);
        // Every side keeps its Sector under the Sector's new number.
        for (std::size_t at = 0; at < level.SideDefs.size(); ++at)
        {
            const std::uint32_t sector = std::as_const(level).SideDefs[at].Sector;
            if (sector < newNumber.size() && newNumber[sector] != sector)
            {
                level.SideDefs[at].Sector = newNumber[sector];
            }
        }
    }
    // The list keeps its order and follows its objects.
    Renumber(newestFirst, newNumber);
    ObjectListClear(list);
    for (auto it = newestFirst.rbegin(); it != newestFirst.rend(); ++it)
    {
        ObjectListPush(list, *it);
    }
    NoteChange(level, kind);
}

} // namespace kelvar::map
