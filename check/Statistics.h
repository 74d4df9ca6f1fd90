// The level statistics: object counts and sizes, ranges, save game estimates and the Thing
// tables, as the lines of fixed-width text the statistics window and kelvar-cli print.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <string>
#include <vector>

namespace kelvar::check
{

/// What the level's lumps hold beyond its five arrays, for the object table.
struct LevelLumpSizes
{
    bool HasBehavior = false;
    std::uint32_t BehaviorBytes = 0;
    bool HasMapInfo = false;
    std::uint32_t MapInfoBytes = 0;
    std::uint32_t RejectBytes = 0;
    std::uint32_t BlockMapBytes = 0;
    std::int32_t NodeCount = 0;
};

/// The report, line by line.
std::vector<std::string> StatisticsLines(const map::LevelData& level, const LevelLumpSizes& lumps);

} // namespace kelvar::check
