// kelvar-cli textures: the wall textures, flats, patches or sprites of the loaded files, with
// their sizes and where each lies.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// textures IWAD [PWAD...] [--flats|--patches|--sprites]
int ListTextures(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
