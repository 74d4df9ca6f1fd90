// Data the benchmarks share: an opened IWAD, a generated level of 250,000 LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace kelvar::bench
{

/// Resets the WAD layer and the map model, silences messages, and opens `iwad`.
void OpenIwad(const std::string& iwad);

/// The bytes of a level's own lumps (marker to BLOCKMAP) in the master directory.
double LevelLumpBytes(const std::string& name);

/// The path of an IWAD whose MAP01 is a 353 by 353 grid of rooms in the Extended Format,
/// about 250,000 LineDefs; written once to the temporary folder.
std::string MakeHugeLevel();

} // namespace kelvar::bench
