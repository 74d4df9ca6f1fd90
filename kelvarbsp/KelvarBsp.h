// kelvarbsp: the editor's built-in node builder, which has zdbsp build one level's nodes and
// writes the target PWAD with everything else of the input kept.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The input is the WAD the editor saved (~Kelvar.WAD); the target gets the same lumps in
//   the same order, with the level's SEGS, SSECTORS, NODES, BLOCKMAP and REJECT (and GL
//   lumps, when asked for) built anew. Other levels and lumps are byte copies (zdbsp -m).
// - The level is checked before zdbsp sees it, since zdbsp crashes on broken references.
// - zdbsp never computes a REJECT table. The editor has already put the table the user
//   chose into the input, of the right size or empty; that table goes into the target. A
//   level without one gets a table of zeros of the right size.
// - The target is written beside itself under a temporary name and renamed at the end, so
//   a failed build leaves no half-written target.
#pragma once

#include <string>
#include <vector>

namespace kelvar::kelvarbsp
{

/// kelvarbsp's exit codes. 255 is never used: the editor takes it (exit code -1) as success.
inline constexpr int BspBuilt = 0;
inline constexpr int BspBadCommandLine = 1;
inline constexpr int BspBadInput = 2;      // the input can't be read or lacks the level
inline constexpr int BspLevelRefused = 3;  // the level is incomplete or its references broken
inline constexpr int BspBuilderFailed = 4; // zdbsp didn't start, failed or crashed
inline constexpr int BspOutputFailed = 5;  // zdbsp's output is unusable or the target unwritable

/// The log's file name, in the current directory.
inline constexpr const char* BspLogName = "KelvarBSP.LOG";

/// Runs kelvarbsp with `arguments` (the program's name left out), with `zdbsp` as the node
/// builder program. Appends what it does, zdbsp's output and any reason of failure to `log`.
/// Returns one of the exit codes above.
int RunKelvarBsp(const std::vector<std::string>& arguments, const std::string& zdbsp,
                 std::string& log);

} // namespace kelvar::kelvarbsp
