// Texture alignment: vertical offsets lined up across selected LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/TextureAlign.h"

#include "map/ObjectStore.h"
#include "map/SectorOps.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace kelvar::map
{

namespace
{

bool Unpegged(const LineDef& line)
{
    return (line.Flags & (FlagUpperUnpegged | FlagLowerUnpegged)) != 0;
}

} // namespace

int SideCeiling(const LevelData& level, const LineDef& line, int side)
{
    const std::uint32_t own = SectorOfSide(level, line.Side(side));
    if (own >= level.Sectors.size())
    {
        return 0;
    }
    const Sector& mine = level.Sectors[own];
    const std::uint32_t other = SectorOfSide(level, line.Side(side == 1 ? 2 : 1));
    if (other < level.Sectors.size() && level.Sectors[other].CeilingHeight > mine.FloorHeight)
    {
        return std::min<int>(mine.CeilingHeight, level.Sectors[other].CeilingHeight);
    }
    return mine.CeilingHeight;
}

AlignResult AlignTexturesY(LevelData& level, const ObjectList& list, int side)
{
    bool anyPegged = false;
    std::optional<int> reference;
    for (const std::int32_t number : list.Objects())
    {
        const LineDef line = std::as_const(level).LineDefs[static_cast<std::size_t>(number)];
        if (Unpegged(line))
        {
            continue;
        }
        anyPegged = true;
        const std::uint32_t face = line.Side(side);
        if (face >= level.SideDefs.size())
        {
            continue;
        }
        const int ceiling = SideCeiling(level, line, side);
        if (!reference)
        {
            reference = ceiling;
        }
        // The remainder keeps the sign: offsets stay within -127 to 127.
        level.SideDefs[face].YOffset = static_cast<std::int16_t>((*reference - ceiling) % 128);
    }
    if (!anyPegged && !list.Empty())
    {
        return AlignResult::AllPegged;
    }
    if (!reference)
    {
        return AlignResult::NothingDone;
    }
    NoteChange(level, KindSideDef);
    return AlignResult::Done;
}

} // namespace kelvar::map
