// Set tag or height: the tags of the selected LineDefs or Sectors, and the free tag search
// whose result its dialog shows.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <vector>

namespace kelvar::app
{

/// What the free tag search found.
struct FreeNumbers
{
    int Free = 1; // the first gap above the lowest number in use
    int Last = 0; // the highest number in use

    bool operator==(const FreeNumbers&) const = default;
};

/// The free tag search over the numbers in use (in any order, repeats allowed): "last" is the
/// highest; "free" is the first gap above the lowest, or the highest plus 1, and 1 when none is
/// in use.
FreeNumbers FreeTagInfo(std::vector<int> numbers);

/// The free-number statistics of the Misc menus and the lift maker, over the positive numbers
/// in use: "free" starts at 1 and is the first number not in use, "last" the highest in use,
/// and "count" how many uses there are.
struct NumberStats
{
    int Free = 1;
    int Last = 0;
    int Count = 0;

    bool operator==(const NumberStats&) const = default;
};
NumberStats FirstFreeNumber(std::vector<int> numbers);

/// The positive tags of a level's LineDefs and Sectors. In the Hexen format a LineDef's tag is
/// its special's first argument and counts only for a special that refers to Sectors or lines
/// by tag.
std::vector<int> TagsInUse(const map::LevelData& level, bool hexenFormat);

} // namespace kelvar::app
