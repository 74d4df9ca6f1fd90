// Operations on Sectors: merge, join across deleted LineDefs, distribution.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorOps.h"

#include "map/ObjectStore.h"
#include "map/Selection.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>
#include <vector>

namespace kelvar::map
{

namespace
{

bool HasSector(const LevelData& level, std::uint32_t side)
{
    return side < level.SideDefs.size() && level.SideDefs[side].Sector < level.Sectors.size();
}

} // namespace

std::uint32_t SectorOfSide(const LevelData& level, std::uint32_t side)
{
    return side < level.SideDefs.size() ? level.SideDefs[side].Sector : NoSector;
}

void MergeSectors(LevelData& level, const ObjectList& list)
{
    std::vector<std::int32_t> sectors = list.Objects();
    if (sectors.empty())
    {
        return;
    }
    const auto head = static_cast<std::uint32_t>(sectors.front());
    const std::unordered_set<std::uint32_t> merged(sectors.begin() + 1, sectors.end());
    for (std::size_t at = 0; at < level.SideDefs.size(); ++at)
    {
        const std::uint32_t sector = std::as_const(level).SideDefs[at].Sector;
        if (sector != head && merged.contains(sector))
        {
            level.SideDefs[at].Sector = head;
        }
    }
    NoteChange(level, KindSector);
}

bool DeleteLineDefsJoinSectors(LevelData& level, const ObjectList& list)
{
    const std::vector<std::int32_t> lines = list.Objects();
    for (const std::int32_t number : lines)
    {
        const LineDef& line = std::as_const(level).LineDefs[static_cast<std::size_t>(number)];
        if (line.SideDef1 == NoSideDef || line.SideDef2 == NoSideDef)
        {
            platform::ShowMessageLines(platform::LinesError, "Join Sectors",
                                       {platform::Format("LineDef %d has only one side", number)});
            return false;
        }
        if (!HasSector(level, line.SideDef1) || !HasSector(level, line.SideDef2))
        {
            platform::ShowMessageLines(
                platform::LinesError, "Join Sectors",
                {platform::Format("LineDef %d has 2 sides,\nbut 1 side is not bound to a Sector",
                                  number)});
            return false;
        }
    }
    for (const std::int32_t number : lines)
    {
        const LineDef line = std::as_const(level).LineDefs[static_cast<std::size_t>(number)];
        ObjectList pair;
        ObjectListPush(pair, static_cast<std::int32_t>(SectorOfSide(level, line.SideDef2)));
        ObjectListPush(pair, static_cast<std::int32_t>(SectorOfSide(level, line.SideDef1)));
        MergeSectors(level, pair);
    }
    ObjectList deleted;
    for (const std::int32_t number : lines)
    {
        ObjectListPush(deleted, number);
    }
    DeleteObjectList(level, KindLineDef, deleted);
    return true;
}

bool Distribute(LevelData& level, const ObjectList& list, Distributed what)
{
    const int kind = what == Distributed::ThingHeight ? KindThing : KindSector;
    int count = 0;
    int head = -1;
    int tail = -1;
    if (!CountOrComplain(kind, false, 3, count, list, head, tail))
    {
        return false;
    }
    const auto valueOf = [&](int object) -> int
    {
        const auto at = static_cast<std::size_t>(object);
        switch (what)
        {
        case Distributed::FloorHeight:
            return std::as_const(level).Sectors[at].FloorHeight;
        case Distributed::CeilingHeight:
            return std::as_const(level).Sectors[at].CeilingHeight;
        case Distributed::Light:
            return std::as_const(level).Sectors[at].Light;
        case Distributed::ThingHeight:
            return std::as_const(level).Things[at].Z;
        }
        return 0;
    };
    const int first = valueOf(head);
    const int last = valueOf(tail);
    const std::vector<std::int32_t> objects = list.Objects();
    for (std::size_t i = 0; i < objects.size(); ++i)
    {
        const auto value =
            static_cast<std::int16_t>(first + static_cast<int>(i) * (last - first) / (count - 1));
        const auto at = static_cast<std::size_t>(objects[i]);
        switch (what)
        {
        case Distributed::FloorHeight:
            level.Sectors[at].FloorHeight = value;
            break;
        case Distributed::CeilingHeight:
            level.Sectors[at].CeilingHeight = value;
            break;
        case Distributed::Light:
            level.Sectors[at].Light = value;
            break;
        case Distributed::ThingHeight:
            level.Things[at].Z = value;
            break;
        }
    }
    NoteChange(level, kind);
    return true;
}

} // namespace kelvar::map
