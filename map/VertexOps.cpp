// Operations on Vertexes: delete-and-join, and merging several into one.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/VertexOps.h"

#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kelvar::map
{

namespace
{

// The LineDefs that touch a Vertex, and the one that starts and the one that ends there.
struct Meeting
{
    std::vector<std::int32_t> Lines;
    int Starting = -1; // -1 none, -2 more than one
    int Ending = -1;
};

Meeting MeetingAt(const LevelData& level, std::uint32_t vertex)
{
    Meeting meeting;
    const auto note = [](int& slot, std::int32_t line) { slot = slot == -1 ? line : -2; };
    for (std::size_t at = 0; at < level.LineDefs.size(); ++at)
    {
        const LineDef& line = level.LineDefs[at];
        const auto number = static_cast<std::int32_t>(at);
        if (line.StartVertex == vertex)
        {
            note(meeting.Starting, number);
        }
        if (line.EndVertex == vertex)
        {
            note(meeting.Ending, number);
        }
        if (line.StartVertex == vertex || line.EndVertex == vertex)
        {
            meeting.Lines.push_back(number);
        }
    }
    return meeting;
}

// Asks whether a Vertex whose lines can't be joined goes with all of them.
bool AskDeleteAllLines(std::int32_t vertex, const std::vector<std::int32_t>& lines)
{
    std::string numbered = "Numbered";
    for (const std::int32_t line : lines)
    {
        if (numbered.size() >= 60)
        {
            numbered += " ...";
            break;
        }
        numbered += platform::Format(" %d", line);
    }
    return platform::ShowMessageLines(platform::LinesCancel, "delete vertex",
                                      {platform::Format("Vertex %d connects to %d lines", vertex,
                                                        static_cast<int>(lines.size())),
                                       numbered, "They do not point the right direction to merge",
                                       "Instead of merging, delete all lines connected to it?"},
                                      platform::MessageButtons::YesNo) == 1;
}

// Joins or deletes at one Vertex, as JoinAtVertexes says.
void JoinAt(LevelData& level, std::int32_t vertex)
{
    const Meeting meeting = MeetingAt(level, static_cast<std::uint32_t>(vertex));
    if (meeting.Lines.size() == 2 && meeting.Starting >= 0 && meeting.Ending >= 0)
    {
        const std::uint32_t runsTo =
            std::as_const(level).LineDefs[static_cast<std::size_t>(meeting.Starting)].EndVertex;
        level.LineDefs[static_cast<std::size_t>(meeting.Ending)].EndVertex = runsTo;
        DeleteObject(level, KindVertex, vertex);
        NoteChange(level, KindLineDef);
        return;
    }
    if (meeting.Lines.size() == 1 || AskDeleteAllLines(vertex, meeting.Lines))
    {
        DeleteObject(level, KindVertex, vertex);
    }
}

} // namespace

void JoinAtVertexes(LevelData& level, const ObjectList& list)
{
    const bool purge = std::exchange(Map().PurgeVertices, false);
    std::vector<std::int32_t> vertexes = list.Objects();
    for (std::size_t i = 0; i < vertexes.size(); ++i)
    {
        const std::int32_t vertex = vertexes[i];
        if (vertex < 0 || vertex >= level.Vertexes.Count())
        {
            continue;
        }
        const std::int32_t before = level.Vertexes.Count();
        JoinAt(level, vertex);
        // A Vertex deleted outright renumbers those after it.
        if (level.Vertexes.Count() < before)
        {
            for (std::size_t j = i + 1; j < vertexes.size(); ++j)
            {
                vertexes[j] -= vertexes[j] > vertex ? 1 : 0;
            }
        }
    }
    ObjectList orphans;
    for (const std::int32_t vertex : vertexes)
    {
        if (vertex >= 0 && vertex < level.Vertexes.Count() && !ObjectListContains(orphans, vertex))
        {
            ObjectListPush(orphans, vertex);
        }
    }
    PurgeOrphanVertices(level, orphans);
    Map().PurgeVertices = purge;
}

void MergeVertexes(LevelData& level, const ObjectList& list)
{
    std::vector<std::int32_t> listed = list.Objects();
    if (listed.empty())
    {
        return;
    }
    const auto target = static_cast<std::uint32_t>(listed.front());
    listed.erase(listed.begin());
    const std::unordered_set<std::uint32_t> merged(listed.begin(), listed.end());
    const auto stays = [&](std::uint32_t vertex)
    { return !merged.contains(vertex) && vertex != target; };
    for (std::size_t at = 0; at < level.LineDefs.size(); ++at)
    {
        const LineDef& line = std::as_const(level).LineDefs[at];
        if (merged.contains(line.StartVertex) && stays(line.EndVertex))
        {
            level.LineDefs[at].StartVertex = target;
        }
        else if (merged.contains(line.EndVertex) && stays(line.StartVertex))
        {
            level.LineDefs[at].EndVertex = target;
        }
    }
    ObjectList deleted;
    for (const std::uint32_t vertex : merged)
    {
        ObjectListPush(deleted, static_cast<std::int32_t>(vertex));
    }
    DeleteObjectList(level, KindVertex, deleted);
    NoteChange(level, KindVertex);
}

} // namespace kelvar::map
