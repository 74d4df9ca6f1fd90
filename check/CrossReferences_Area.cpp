// The overlap commands on a selected area: marked Vertexes at one place, and marked LineDefs
// that join the same two Vertexes, moved apart on the answer so each can be seen and handled.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferences.h"

#include "map/ObjectStore.h"
#include "platform/Format.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using platform::Format;

// How far apart separated objects are put: the second of a place moves this far, the third
// twice as far, and so on. Far enough to be seen and grabbed at any usual zoom.
constexpr int SeparationStep = 8;

// Groups of equal keys among (key, number) pairs: each group sorted by number, groups of one
// left out.
template <typename Key>
std::vector<std::vector<std::uint32_t>>
SharedGroups(std::vector<std::pair<Key, std::uint32_t>> keyed)
{
    std::sort(keyed.begin(), keyed.end());
    std::vector<std::vector<std::uint32_t>> groups;
    for (std::size_t i = 0; i < keyed.size();)
    {
        std::size_t end = i + 1;
        while (end < keyed.size() && keyed[end].first == keyed[i].first)
        {
            ++end;
        }
        if (end - i > 1)
        {
            groups.emplace_back();
            for (std::size_t k = i; k < end; ++k)
            {
                groups.back().push_back(keyed[k].second);
            }
        }
        i = end;
    }
    return groups;
}

std::size_t Members(const std::vector<std::vector<std::uint32_t>>& groups)
{
    std::size_t members = 0;
    for (const auto& group : groups)
    {
        members += group.size();
    }
    return members;
}

// A coordinate moved by `by`, or back by it when that would leave the 16-bit range.
std::int16_t Shifted(std::int16_t value, int by)
{
    const int moved = value + by;
    return static_cast<std::int16_t>(moved <= INT16_MAX && moved >= INT16_MIN ? moved : value - by);
}

// The marked objects of a kind that exist, without repeats.
std::vector<std::uint32_t> MarkedObjects(const map::ObjectList& marked, std::size_t count)
{
    std::vector<std::uint32_t> objects;
    marked.ForEach(
        [&](std::int32_t object)
        {
            if (object >= 0 && static_cast<std::size_t>(object) < count)
            {
                objects.push_back(static_cast<std::uint32_t>(object));
            }
        });
    std::sort(objects.begin(), objects.end());
    objects.erase(std::unique(objects.begin(), objects.end()), objects.end());
    return objects;
}

// Gives each LineDef of a group but the first two new Vertexes of its own, moved off the line
// at right angles, the k-th of the group k steps away.
void SeparateLineDefs(LevelData& level, const std::vector<std::uint32_t>& group)
{
    for (std::size_t k = 1; k < group.size(); ++k)
    {
        const map::LineDef line = std::as_const(level).LineDefs[group[k]];
        const map::Vertex a = std::as_const(level).Vertexes[line.StartVertex];
        const map::Vertex b = std::as_const(level).Vertexes[line.EndVertex];
        const double length = std::hypot(double(b.X) - a.X, double(b.Y) - a.Y);
        const double step = SeparationStep * static_cast<double>(k);
        // A LineDef of no length has no right angle: it moves diagonally.
        const int byX = length > 0 ? static_cast<int>(std::lround(-(b.Y - a.Y) * step / length))
                                   : static_cast<int>(step);
        const int byY = length > 0 ? static_cast<int>(std::lround((b.X - a.X) * step / length))
                                   : static_cast<int>(step);
        const int start =
            map::InsertObject(level, map::KindVertex, -1, Shifted(a.X, byX), Shifted(a.Y, byY));
        const int end =
            map::InsertObject(level, map::KindVertex, -1, Shifted(b.X, byX), Shifted(b.Y, byY));
        map::LineDef& moved = level.LineDefs[group[k]];
        moved.StartVertex = static_cast<std::uint32_t>(start);
        moved.EndVertex = static_cast<std::uint32_t>(end);
    }
}

} // namespace

bool CheckVertexOverlap(CheckRun& run, const map::ObjectList& marked)
{
    const LevelData& level = run.Level;
    const std::vector<std::uint32_t> vertexes = MarkedObjects(marked, level.Vertexes.size());
    if (vertexes.empty())
    {
        run.Tell("Vertex Overlap", {"In Vertex Mode, Select Vertexes area to include\nin the area "
                                    "to check (use Drag Select tool)"});
        return true;
    }
    if (vertexes.size() < 2)
    {
        run.Tell("Vertex Overlap", {"You need to select at least 2 Vertexes"});
        return true;
    }
    std::vector<std::pair<std::uint32_t, std::uint32_t>> keyed;
    for (std::size_t i = 0; i < vertexes.size(); ++i)
    {
        if (run.Poll(i, vertexes.size()))
        {
            return false;
        }
        const map::Vertex& v = level.Vertexes[vertexes[i]];
        keyed.emplace_back(static_cast<std::uint32_t>(static_cast<std::uint16_t>(v.X)) << 16 |
                               static_cast<std::uint16_t>(v.Y),
                           vertexes[i]);
    }
    const auto groups = SharedGroups(std::move(keyed));
    if (groups.empty())
    {
        run.Tell("Vertex Overlap", {"No vertices Overlap"});
        return true;
    }
    if (run.Ask("Vertex Overlap", {Format("%d vertices overlap", static_cast<int>(Members(groups))),
                                   "Separate the Vertices?"}) != Answer::Fix)
    {
        return true;
    }
    run.BeforeRepair();
    for (const auto& group : groups)
    {
        for (std::size_t k = 1; k < group.size(); ++k)
        {
            map::Vertex& moved = run.Level.Vertexes[group[k]];
            const int by = SeparationStep * static_cast<int>(k);
            moved = {Shifted(moved.X, by), Shifted(moved.Y, by)};
        }
    }
    map::MeasureLevel(run.Level);
    map::NoteChange(run.Level, map::KindVertex);
    return true;
}

bool CheckLineOverlap(CheckRun& run, const map::ObjectList& marked)
{
    const LevelData& level = run.Level;
    const std::vector<std::uint32_t> lines = MarkedObjects(marked, level.LineDefs.size());
    if (lines.empty())
    {
        run.Tell("LineDef Overlap", {"In LineDef Mode, Select LineDef area to include\nin the "
                                     "area to check (use Drag Select tool)"});
        return true;
    }
    std::vector<std::pair<std::uint64_t, std::uint32_t>> keyed;
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        if (run.Poll(i, lines.size()))
        {
            return false;
        }
        const map::LineDef& line = level.LineDefs[lines[i]];
        if (line.StartVertex < level.Vertexes.size() && line.EndVertex < level.Vertexes.size())
        {
            const std::uint64_t low = std::min(line.StartVertex, line.EndVertex);
            const std::uint64_t high = std::max(line.StartVertex, line.EndVertex);
            keyed.emplace_back(low << 32 | high, lines[i]);
        }
    }
    const auto groups = SharedGroups(std::move(keyed));
    if (groups.empty())
    {
        run.Tell("LineDef Overlap", {"No LineDefs Share Vertexes"});
        return true;
    }
    if (run.Ask("LineDef Overlap",
                {Format("%d LineDefs share the same Vertexes", static_cast<int>(Members(groups))),
                 "Separate the LineDefs?"}) != Answer::Fix)
    {
        return true;
    }
    run.BeforeRepair();
    for (const auto& group : groups)
    {
        SeparateLineDefs(run.Level, group);
    }
    map::NoteChange(run.Level, map::KindLineDef);
    return true;
}

} // namespace kelvar::check
