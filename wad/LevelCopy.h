// A level alone in a new PWAD of its own, for another program to read.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <functional>
#include <string>

namespace kelvar::wad
{

/// Wall texture names the copy replaces: every name that doesn't begin with "-" or "$" and that
/// `Known` doesn't accept becomes `Replacement`.
struct TextureCleaning
{
    std::function<bool(const map::TextureName&)> Known;
    map::TextureName Replacement;
};

/// Writes the level alone into a new PWAD at `path` under `levelName`: its object lumps from
/// memory, empty node lumps, and in a Hexen project its script (or 16 zero bytes). For
/// another program to read, after a node builder has run on it. With `cleaning` the copy's
/// unknown wall textures are replaced; the level itself is not changed. Returns 0, or -1 after
/// a reported failure.
[[nodiscard]] int WriteLevelCopy(const map::LevelData& level, const std::string& path,
                                 const std::string& levelName,
                                 const TextureCleaning* cleaning = nullptr);

} // namespace kelvar::wad
