// Undo and redo of whole levels: before a change a command takes a copy of the level into a
// table of steps; undoing exchanges the level with its step, so the same step serves the redo.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A step covers exactly the five arrays, the bounding box and the counters of the level. The
//   selection, the view, the mode and the options are not part of it.
// - Undo and redo exchange the level and the step whole; nothing is copied. ChangeCount and
//   GeometryChangeCount therefore travel with the level.
// - A new step never lowers the top of the table: the steps above it stay reachable by redo
//   until the table is reset.
// - The table has a fixed number of slots; at the limit the oldest step is given up and the
//   whole table moves down one slot.
#pragma once

#include "map/LevelData.h"

#include <optional>
#include <vector>

namespace kelvar::map
{

/// The slots of the undo table.
inline constexpr int UndoSlots = 1000;

/// The undo table: a step is a copy of the level; an empty slot holds none.
struct UndoTable
{
    std::vector<std::optional<LevelData>> Slots = std::vector<std::optional<LevelData>>(UndoSlots);
    int Position = -1;       // the step the next undo takes; -1 for none
    int Top = -1;            // the highest slot that has held a step since the last reset
    bool HasCurrent = false; // a step has been taken since the last reset
};

/// Takes a step: a copy of `level` into the next slot. Returns 1, or 0 (and takes none) when
/// undo is off and `force` is not set. At the limit the oldest step goes first.
int SaveUndoStep(UndoTable& table, const LevelData& level, int limit, bool enabled, bool force);

/// Frees the step at the position and steps back, for an operation that ended with nothing
/// done. Returns 1, or 0 when there is no step.
int DropLastUndoStep(UndoTable& table);

/// Exchanges `level` with the step at the position and steps back. Returns 1, or 0 when there
/// is no step to take (the caller sounds the error signal). The level taken back has
/// NodesCurrent cleared.
int UndoStep(UndoTable& table, LevelData& level);

/// Exchanges `level` with the step above the position and steps up. Returns 1, or 0 when undo
/// is off or there is nothing above.
int RedoStep(UndoTable& table, LevelData& level, bool enabled);

/// Frees every step: the table as after start.
void UndoReset(UndoTable& table);

/// The forms commands call, on the map model's level and table, with the editing options'
/// UndoEnabled and UndoLimit. Every command calls SaveUndoStep once before its first change.
int SaveUndoStep(bool force = false);
int DropLastUndoStep();
int UndoStep();
int RedoStep();
void UndoReset();

} // namespace kelvar::map
