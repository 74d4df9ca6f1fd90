// kelvar-cli render: a level drawn as the map window shows it, into a PNG file.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli render IWAD [PWAD...] MAPNAME -o FILE.png [--mode MODE] [--size WxH]
int RenderLevel(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
