// The check of a level before its nodes are built: every lump there, every reference whole.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// zdbsp dies on a signal when a LineDef names a Vertex or SideDef that isn't there, and
// quietly builds nothing for a level that lacks a lump. kelvarbsp therefore reads the level
// itself first and refuses it with the reason.
#pragma once

#include "kelvarbsp/WadFile.h"

#include <string>

namespace kelvar::kelvarbsp
{

/// What the check found: the counts, the layout, and the reason of a refusal.
struct LevelCheck
{
    bool Ok = false;
    std::string Reason;             // why the level is refused
    std::vector<std::string> Notes; // things worth the log that don't stop the build
    bool Hexen = false;             // a BEHAVIOR lump: 20-byte Things, 16-byte LineDefs
    std::int64_t Things = 0;
    std::int64_t LineDefs = 0;
    std::int64_t SideDefs = 0;
    std::int64_t Vertexes = 0;
    std::int64_t Sectors = 0;
};

/// Checks the level `level` of `wad`.
LevelCheck CheckLevel(WadFile& wad, const LevelLumps& level);

} // namespace kelvar::kelvarbsp
