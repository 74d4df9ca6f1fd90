// The checks a save runs before it writes: port limits, zero-length lines, player starts, and
// the clean-up of unused objects.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Each check takes the level it looks at and the options it reads, and talks to the user only
//   through the platform's messages and progress. Those that can stop the save return whether
//   it may go on.
// - A check that stops the save leaves the level as it found it. What an earlier check added or
//   repaired (PlayerOneCheck's Thing, CheckUnused's reported repairs) stays, counted as edits.
// - The order of a save is the caller's: PortLimitCaution, ShortLineCheck, PlayerOneCheck,
//   PlayerStartCountCheck before the path is chosen; CheckUnused once the output file exists.
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <functional>

namespace kelvar::check
{

/// The editor's options the checks read; the application shell fills it from its records.
struct CheckOptions
{
    bool ExpertMode = false;       // "Expert Mode (Fewer Messages)"
    bool CheckPlayerStarts = true; // "Check Player Starts"

    bool operator==(const CheckOptions&) const = default;
};

/// Counts from which most ports crash: LineDefs or SideDefs, and Vertexes.
inline constexpr std::int32_t PortLineLimit = 32675;
inline constexpr std::int32_t PortVertexLimit = 32765;

/// Unless Expert Mode is on, a level with PortLineLimit or more LineDefs or SideDefs, or
/// PortVertexLimit or more Vertexes, asks "Caution\n\nThis level exceeds the limits of
/// most\nDOOM ports ...\n\nContinue with Save?". Returns true to go on with the save: no
/// question, or Yes.
[[nodiscard]] bool PortLimitCaution(const map::LevelData& level, const CheckOptions& options);

/// True when a LineDef has no length: both ends are the same Vertex, or Vertexes at the same
/// place. A LineDef with a Vertex number out of range is not counted.
bool IsZeroLength(const map::LevelData& level, const map::LineDef& line);

/// The save's look for zero-length LineDefs, under the progress "Checking %d Short LineDefs
/// (esc Cancel)". It changes nothing. The first such LineDef asks "!! LineDef %d is -0- length
/// !!\n\n...Quit Save Now (yes recommended)?", and no other is asked about. Escape shows
/// "Short LineDef check Cancelled!". Returns false to stop the save (Yes, or Escape).
[[nodiscard]] bool ShortLineCheck(const map::LevelData& level);

/// In a level of the Hexen layout, a LineDef whose first argument (the tag's field) is above
/// 255 can't be written: the first such LineDef shows "One or more argument values of LineDef
/// %hu exceeds 255\n\nSet to 0", and every such argument is set to 0, counted as one edit.
/// Returns the LineDefs changed.
int ArgumentRangeCheck(map::LevelData& level);

/// The checker's repair of zero-length LineDefs: under the same progress it finds them all,
/// then deletes them with what hangs on them, and reports "%d -0- length lines deleted" when
/// there were any. Escape shows "Short LineDef check Cancelled!" before anything is deleted,
/// and returns false; otherwise true.
[[nodiscard]] bool CheckShortLines(map::LevelData& level);

/// Without a Thing whose type is the game's player 1 start, asks under the caption "No Player
/// 1" ("No Player 1 found!", "Do you want Kelvar to", "add a Player 1 Start", "in the center?",
/// "(Required for Testing)"). Yes adds a player 1 start at the middle of the Vertexes' bounds,
/// facing north, on every skill. The save goes on either way; returns true when a Thing was
/// added. When the game's tables name no player 1 type, nothing is asked.
bool PlayerOneCheck(map::LevelData& level);

/// True when the level has a player 1 start, or the game's tables name none: what a test of
/// the level in the game needs.
bool PlayerOneReady(const map::LevelData& level);

/// The player starts (players 1 to 8) and the deathmatch starts among a level's Things.
struct StartCounts
{
    int Players = 0;
    int DeathMatch = 0;

    bool operator==(const StartCounts&) const = default;
};

/// Counts the starts by the properties of the Things' type rows.
StartCounts CountStarts(const map::LevelData& level);

/// With the Check Player Starts option on and fewer than four of either kind of start, asks
/// under the caption "Not enough" ("%d player starts found", "%d deathmatch starts found",
/// "Check for Player Starts&Exits?", "(to disable this msg change: F5-Check Player Start)").
/// Yes runs `levelCheck`, the checker's run over the level, whose false stops the save. With
/// no `levelCheck` installed nothing is asked. Returns true to go on with the save.
[[nodiscard]] bool PlayerStartCountCheck(const map::LevelData& level, const CheckOptions& options,
                                         const std::function<bool()>& levelCheck);

/// The save's clean-up, under the progress "Checking for Unused objects (esc)":
/// - a LineDef's Vertex number out of range becomes 0 ("LineDef %d Vertex out of range\nset
///   to 0"), as does a SideDef number out of range ("LineDef %d SideDef %d out of range set to
///   0") and a missing first side ("LineDef %d missing side 1 set to 0");
/// - the Vertexes no LineDef uses, the SideDefs no LineDef uses ("Please Wait while %d unused
///   sidedefs are removed\n\nPress OK to continue") and the Sectors no remaining SideDef faces
///   are removed; what stays keeps its order and every reference is renumbered, in time linear
///   in the size of the level.
/// A SideDef's Sector number out of range is left as it is. Escape stops the clean-up before
/// anything is removed and returns false (repairs already reported stay); otherwise true. Any
/// change counts as an edit of the level.
[[nodiscard]] bool CheckUnused(map::LevelData& level);

} // namespace kelvar::check
