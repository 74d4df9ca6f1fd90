// Make Stairs from 2 Linedefs: the area between two LineDefs that face each other across one
// Sector cut into steps, each a Sector of its own.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

#include <vector>

namespace kelvar::map
{

/// Cuts `line` into `parts` parts of equal length on new Vertexes, truncating each point
/// toward zero; returns the parts from the LineDef's start to its end, or nothing (with
/// "Steps are too small %d") when a part would be 2 map units long or less.
std::vector<int> SplitEven(LevelData& level, int line, int parts);

/// Builds stairs between the two listed LineDefs: asks the number of steps, the step height
/// and the direction, splits both LineDefs evenly, and makes one Sector a step, its floor
/// `step height` above the one before, divided from the next by a two-sided LineDef whose
/// front faces down the stairs. Refuses, changing nothing, another number of LineDefs, two
/// that share a Vertex, or two that don't face the same Sector. Returns true when built.
bool MakeStairs(LevelData& level, const ObjectList& list);

} // namespace kelvar::map
