// Shared SideDefs: the packing test and the unpacking.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SideDefPacking.h"

#include "map/ObjectStore.h"
#include "platform/Format.h"
#include "platform/Ui.h"

namespace kelvar::map
{

bool SideDefsShared(const LevelData& level)
{
    std::vector<bool> used(level.SideDefs.size(), false);
    for (const LineDef& line : level.LineDefs)
    {
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            if (side == NoSideDef || side >= used.size())
            {
                continue;
            }
            if (used[side])
            {
                return true;
            }
            used[side] = true;
        }
    }
    return false;
}

UnpackResult UnpackSideDefsOf(LevelData& level)
{
    UnpackResult result;
    std::vector<bool> used(level.SideDefs.size(), false);
    for (std::size_t l = 0; l < level.LineDefs.size(); ++l)
    {
        if (l % 100 == 99 && platform::TheUi().PollEscape())
        {
            result.Cancelled = true;
            break;
        }
        LineDef& line = level.LineDefs[l];
        if (line.SideDef1 == NoSideDef)
        {
            line.SideDef1 = 0;
            result.Notes.push_back(
                platform::Format("LineDef %d missing side 1 set to 0", static_cast<int>(l)));
        }
        for (std::uint32_t* side : {&line.SideDef1, &line.SideDef2})
        {
            if (*side == NoSideDef)
            {
                continue;
            }
            if (*side >= used.size())
            {
                result.Notes.push_back(
                    platform::Format("LineDef %d SideDef out of range", static_cast<int>(l)));
                continue;
            }
            if (!used[*side])
            {
                used[*side] = true;
                continue;
            }
            const int copy = InsertObject(level, KindSideDef, static_cast<int>(*side), 0, 0);
            *side = static_cast<std::uint32_t>(copy);
            ++result.Unpacked;
        }
    }
    return result;
}

} // namespace kelvar::map
