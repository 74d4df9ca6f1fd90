// kelvar-cli commands over one level: level.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli level IWAD [PWAD...] MAPNAME: the level's layout, object counts, node lumps and
/// bounding box.
int DescribeLevel(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
