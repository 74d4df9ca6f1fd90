// The selection: marking, box selection, mode translation, walking the objects.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/Selection.h"

#include "map/MapState.h"
#include "map/SpatialIndex.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <vector>

namespace kelvar::map
{
namespace
{

int ModeSlot(int mode)
{
    switch (mode)
    {
    case ModeThings:
        return 0;
    case ModeLineDefs:
        return 1;
    case ModeVertexes:
        return 2;
    case ModeSectors:
        return 3;
    default:
        return -1;
    }
}

std::uint32_t SectorOfSide(const LevelData& level, std::uint32_t side)
{
    return side != NoSideDef && side < level.SideDefs.size() ? level.SideDefs[side].Sector
                                                             : NoSector;
}

bool InBox(double x, double y, double minX, double minY, double maxX, double maxY)
{
    return x >= minX && x <= maxX && y >= minY && y <= maxY;
}

// Pushes the objects flagged in `flags` in ascending order, so the highest is the head.
void PushFlagged(ObjectList& list, const std::vector<bool>& flags)
{
    for (std::size_t i = 0; i < flags.size(); ++i)
    {
        if (flags[i])
        {
            ObjectListPush(list, static_cast<std::int32_t>(i));
        }
    }
}

} // namespace

SelectionState& Selected()
{
    return Map().Select;
}

bool IsValidObject(const LevelData& level, int kind, int object)
{
    if (!StoredKind(kind))
    {
        return true;
    }
    return object >= 0 && object <= HighestObject(level, kind);
}

int HighestObject(const LevelData& level, int kind)
{
    switch (kind)
    {
    case KindThing:
        return level.Things.Count() - 1;
    case KindLineDef:
        return level.LineDefs.Count() - 1;
    case KindSideDef:
        return level.SideDefs.Count() - 1;
    case KindVertex:
        return level.Vertexes.Count() - 1;
    case KindSector:
        return level.Sectors.Count() - 1;
    case KindSegment:
        return level.SegCount - 1;
    case KindSSector:
        return level.SSectorCount - 1;
    default:
        return -1;
    }
}

bool CountOrComplain(int kind, bool exactly, int wanted, int& outCount, const ObjectList& list,
                     int& outFirst, int& outLast)
{
    outCount = list.Size();
    const std::vector<std::int32_t> objects = list.Objects();
    outFirst = objects.empty() ? -1 : objects.front();
    outLast = objects.empty() ? -1 : objects.back();
    if (exactly ? outCount != wanted : outCount < wanted)
    {
        platform::ShowMessageLines(
            0, "Select",
            {platform::Format(exactly ? "Select exactly %d %ss" : "Select at least %d %ss", wanted,
                              KindName(kind))});
        return false;
    }
    return true;
}

std::vector<std::int32_t> SelectionOrHighlight(const LevelData& level, int kind)
{
    const SelectionState& select = Selected();
    if (!select.Selection.Empty())
    {
        return select.Selection.Objects();
    }
    if (IsValidObject(level, kind, select.HighlightedObject))
    {
        return {select.HighlightedObject};
    }
    return {};
}

void ToggleHighlighted(bool additive)
{
    SelectionState& state = Selected();
    const int object = state.HighlightedObject;
    if (object < 0)
    {
        platform::TheUi().Beep();
        return;
    }
    if (ObjectListContains(state.Selection, object))
    {
        ObjectListRemove(state.Selection, object);
        return;
    }
    if (!additive)
    {
        ObjectListClear(state.Selection);
    }
    ObjectListPush(state.Selection, object);
}

int KindOfMode(int mode)
{
    switch (mode)
    {
    case ModeThings:
        return KindThing;
    case ModeLineDefs:
        return KindLineDef;
    case ModeVertexes:
        return KindVertex;
    case ModeSectors:
        return KindSector;
    default:
        return 0;
    }
}

std::function<bool(const Thing&)>& BoxThingFilter()
{
    static std::function<bool(const Thing&)> filter;
    return filter;
}

ObjectList SelectInBox(const LevelData& level, int kind, double x1, double y1, double x2, double y2)
{
    const double minX = std::min(x1, x2);
    const double maxX = std::max(x1, x2);
    const double minY = std::min(y1, y2);
    const double maxY = std::max(y1, y2);
    const SpatialIndex& index = IndexOf(level);
    ObjectList list;
    if (kind == ModeThings || kind == ModeVertexes)
    {
        for (const std::int32_t object : kind == ModeThings
                                             ? index.ThingsIn(minX, minY, maxX, maxY)
                                             : index.VertexesIn(minX, minY, maxX, maxY))
        {
            const auto& filter = BoxThingFilter();
            if (kind == ModeThings && filter &&
                !filter(level.Things[static_cast<std::size_t>(object)]))
            {
                continue;
            }
            ObjectListPush(list, object);
        }
        return list;
    }
    if (kind != ModeLineDefs && kind != ModeSectors)
    {
        return list;
    }
    std::vector<bool> flags(kind == ModeLineDefs ? level.LineDefs.size() : level.Sectors.size(),
                            false);
    for (const std::int32_t i : index.LineDefsNear(minX, minY, maxX, maxY))
    {
        const LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        const Vertex& a = level.Vertexes[line.StartVertex];
        const Vertex& b = level.Vertexes[line.EndVertex];
        if (!InBox(a.X, a.Y, minX, minY, maxX, maxY) || !InBox(b.X, b.Y, minX, minY, maxX, maxY))
        {
            continue;
        }
        if (kind == ModeLineDefs)
        {
            flags[static_cast<std::size_t>(i)] = true;
            continue;
        }
        // One LineDef wholly inside is enough to select the Sectors on its sides.
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            const std::uint32_t sector = SectorOfSide(level, side);
            if (sector < flags.size())
            {
                flags[sector] = true;
            }
        }
    }
    PushFlagged(list, flags);
    return list;
}

void FinishBoxSelection(const LevelData& level, int kind, double x1, double y1, double x2,
                        double y2, bool additive)
{
    SelectionState& state = Selected();
    std::vector<std::int32_t> old = state.Selection.Objects();
    ObjectListClear(state.Selection);
    ObjectList fresh = SelectInBox(level, kind, x1, y1, x2, y2);
    if (additive)
    {
        // The old marks go on top of the new ones, without doubles.
        for (auto it = old.rbegin(); it != old.rend(); ++it)
        {
            if (!ObjectListContains(fresh, *it))
            {
                ObjectListPush(fresh, *it);
            }
        }
    }
    state.Selection = std::move(fresh);
    state.HighlightedObject = state.Selection.Head();
}

void TranslateSelection(const LevelData& level, int oldMode, int newMode)
{
    SelectionState& state = Selected();
    if (oldMode == newMode && newMode != ModeThings)
    {
        return;
    }
    const int oldSlot = ModeSlot(oldMode);
    if (oldSlot >= 0)
    {
        state.LastHighlight[static_cast<std::size_t>(oldSlot)] = state.HighlightedObject;
    }
    std::vector<std::int32_t> marked = state.Selection.Objects();
    ObjectListClear(state.Selection);
    const auto isMarked = [&](std::size_t count)
    {
        std::vector<bool> flags(count, false);
        for (const std::int32_t object : marked)
        {
            if (object >= 0 && static_cast<std::size_t>(object) < count)
            {
                flags[static_cast<std::size_t>(object)] = true;
            }
        }
        return flags;
    };
    std::vector<bool> result;
    if (oldMode == ModeSectors && newMode == ModeLineDefs)
    {
        const std::vector<bool> sectors = isMarked(level.Sectors.size());
        result.assign(level.LineDefs.size(), false);
        for (std::size_t l = 0; l < level.LineDefs.size(); ++l)
        {
            const LineDef& line = level.LineDefs[l];
            for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
            {
                const std::uint32_t sector = SectorOfSide(level, side);
                result[l] = result[l] || (sector < sectors.size() && sectors[sector]);
            }
        }
    }
    else if (oldMode == ModeLineDefs && newMode == ModeVertexes)
    {
        const std::vector<bool> lines = isMarked(level.LineDefs.size());
        result.assign(level.Vertexes.size(), false);
        for (std::size_t l = 0; l < lines.size(); ++l)
        {
            for (const std::uint32_t vertex :
                 {level.LineDefs[l].StartVertex, level.LineDefs[l].EndVertex})
            {
                if (lines[l] && vertex < result.size())
                {
                    result[vertex] = true;
                }
            }
        }
    }
    else if (oldMode == ModeLineDefs && newMode == ModeSectors)
    {
        const std::vector<bool> lines = isMarked(level.LineDefs.size());
        result.assign(level.Sectors.size(), false);
        std::vector<bool> spoiled(level.Sectors.size(), false);
        for (std::size_t l = 0; l < lines.size(); ++l)
        {
            for (const std::uint32_t side :
                 {level.LineDefs[l].SideDef1, level.LineDefs[l].SideDef2})
            {
                const std::uint32_t sector = SectorOfSide(level, side);
                if (sector < result.size())
                {
                    (lines[l] ? result : spoiled)[sector] = true;
                }
            }
        }
        // Only Sectors whose whole border is selected stay.
        for (std::size_t s = 0; s < result.size(); ++s)
        {
            result[s] = result[s] && !spoiled[s];
        }
    }
    else if (oldMode == ModeVertexes && newMode == ModeLineDefs)
    {
        const std::vector<bool> vertexes = isMarked(level.Vertexes.size());
        result.assign(level.LineDefs.size(), false);
        for (std::size_t l = 0; l < result.size(); ++l)
        {
            const LineDef& line = level.LineDefs[l];
            result[l] = line.StartVertex < vertexes.size() && line.EndVertex < vertexes.size() &&
                        vertexes[line.StartVertex] && vertexes[line.EndVertex];
        }
    }
    PushFlagged(state.Selection, result);
    const int newSlot = ModeSlot(newMode);
    state.HighlightedObject =
        newSlot >= 0 ? state.LastHighlight[static_cast<std::size_t>(newSlot)] : -1;
    if (!IsValidObject(level, newMode, state.HighlightedObject))
    {
        state.HighlightedObject = -1;
    }
    state.PreviousMode = static_cast<std::uint16_t>(oldMode);
}

void ClearSelection()
{
    SelectionState& state = Selected();
    ObjectListClear(state.Selection);
    state.TagFollow = TagFollowState{};
}

int NextObject(const LevelData& level, int mode)
{
    const int highest = HighestObject(level, mode);
    SelectionState& state = Selected();
    if (highest < 0)
    {
        return state.HighlightedObject = -1;
    }
    const int next = state.HighlightedObject + 1;
    return state.HighlightedObject = next > highest ? 0 : next;
}

int PreviousObject(const LevelData& level, int mode)
{
    const int highest = HighestObject(level, mode);
    SelectionState& state = Selected();
    if (highest < 0)
    {
        return state.HighlightedObject = -1;
    }
    const int previous = state.HighlightedObject - 1;
    return state.HighlightedObject = previous < 0 ? highest : previous;
}

void MarkAllSameThings(const LevelData& level)
{
    SelectionState& state = Selected();
    const int from = state.Selection.Empty() ? state.HighlightedObject : state.Selection.Head();
    if (from < 0 || from >= level.Things.Count())
    {
        return;
    }
    const std::uint16_t type = level.Things[static_cast<std::size_t>(from)].Type;
    ObjectListClear(state.Selection);
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        if (level.Things[i].Type == type)
        {
            ObjectListPush(state.Selection, static_cast<std::int32_t>(i));
        }
    }
}

TagJump JumpToTags(const LevelData& level, int mode)
{
    SelectionState& state = Selected();
    TagFollowState& follow = state.TagFollow;
    const int object = state.HighlightedObject;
    if ((mode != ModeLineDefs && mode != ModeSectors) || !IsValidObject(level, mode, object))
    {
        return {};
    }
    const auto index = static_cast<std::size_t>(object);
    const std::uint16_t tag =
        mode == ModeLineDefs ? level.LineDefs[index].Tag : level.Sectors[index].Tag;
    // A new non-zero tag under the highlight starts a new walk from the beginning.
    std::uint16_t& followed = mode == ModeLineDefs ? follow.LineTag : follow.SectorTag;
    if (follow.StartMode == 0 || (tag != 0 && tag != followed))
    {
        if (tag == 0)
        {
            return {};
        }
        follow = TagFollowState{mode, 0, tag, tag};
    }
    else
    {
        follow.NextIndex += 1;
    }
    const int target = mode == ModeLineDefs ? ModeSectors : ModeLineDefs;
    const int count = target == ModeSectors ? level.Sectors.Count() : level.LineDefs.Count();
    const std::uint16_t wanted = mode == ModeLineDefs ? follow.LineTag : follow.SectorTag;
    for (int step = 0; step < count; ++step)
    {
        const int i = (follow.NextIndex + step) % count;
        const std::uint16_t other = target == ModeSectors
                                        ? level.Sectors[static_cast<std::size_t>(i)].Tag
                                        : level.LineDefs[static_cast<std::size_t>(i)].Tag;
        if (other == wanted)
        {
            follow.NextIndex = i;
            follow.LineTag = follow.SectorTag = wanted;
            state.HighlightedObject = i;
            return {target, i};
        }
    }
    return {};
}

} // namespace kelvar::map
