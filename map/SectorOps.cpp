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

// The field a distribution sets, of object `at`: read through a const level, written through
// a level of one's own.
template <typename Level> auto& FieldOf(Level& level, std::size_t at, Distributed what)
{
    switch (what)
    {
    case Distributed::CeilingHeight:
        return level.Sectors[at].CeilingHeight;
    case Distributed::Light:
        return level.Sectors[at].Light;
    case Distributed::ThingHeight:
        return level.Things[at].Z;
    case Distributed::FloorHeight:
        break;
    }
    return level.Sectors[at].FloorHeight;
}

} // namespace

std::uint32_t SectorOfSide(const LevelData& level, std::uint32_t side)
{
    return side < level.SideDefs.size() ? level.SideDefs[side].Sector : NoSector;
}

int SectorNumberOfSide(const LevelData& level, std::uint32_t side)
{
    const std::uint32_t sector = SectorOfSide(level, side);
    return sector < level.Sectors.size() ? static_cast<int>(sector) : -1;
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
    const int first = FieldOf(std::as_const(level), static_cast<std::size_t>(head), what);
    const int last = FieldOf(std::as_const(level), static_cast<std::size_t>(tail), what);
    const std::vector<std::int32_t> objects = list.Objects();
    for (std::size_t i = 0; i < objects.size(); ++i)
    {
        FieldOf(level, static_cast<std::size_t>(objects[i]), what) =
            static_cast<std::int16_t>(first + static_cast<int>(i) * (last - first) / (count - 1));
    }
    NoteChange(level, kind);
    return true;
}

} // namespace kelvar::map
