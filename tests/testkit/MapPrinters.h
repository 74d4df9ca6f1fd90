// How test failures print the level's records, instead of as raw bytes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"

#include <ostream>

namespace kelvar::map
{

void PrintTo(const TextureName& name, std::ostream* out);
void PrintTo(const Thing& thing, std::ostream* out);
void PrintTo(const LineDef& line, std::ostream* out);
void PrintTo(const SideDef& side, std::ostream* out);
void PrintTo(const Vertex& vertex, std::ostream* out);
void PrintTo(const Sector& sector, std::ostream* out);

} // namespace kelvar::map
