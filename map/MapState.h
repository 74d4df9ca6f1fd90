// The state of the map model: the current level, the editing options and the store's flags.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/EditOptions.h"
#include "map/LevelData.h"
#include "map/Selection.h"
#include "map/SpatialIndex.h"
#include "map/Undo.h"

#include <array>
#include <functional>

namespace kelvar::map
{

/// Everything the map model keeps.
struct MapState
{
    LevelData Level; // the level being edited
    EditOptions Options;
    DefaultTextures Textures;
    NewObjectDefaults Defaults;
    bool HexenThings = false;  // the project's game is of Hexen kind: new Things get flags 2023
    bool PurgeVertices = true; // deleting a LineDef removes the Vertexes left without lines
    bool StoreBusy = false;    // an array is being changed: the timed auto-save waits
    bool SaveBusy = false;     // a save is writing: changes to the store wait for it
    int SelectedCount = 0;     // live nodes of the general lists: the selection's size
    int DrawingCount = 0;      // live nodes of the drawing lists
    SelectionState Select;     // what is marked and highlighted
    UndoTable Undo;            // the steps of undo and redo
    /// The spatial index of the level last asked for, and the content stamps of the arrays it
    /// was built from.
    SpatialIndex Index;
    const LevelData* IndexedLevel = nullptr;
    std::array<std::uint64_t, 3> IndexedStamps{}; // Things, Vertexes, LineDefs
    /// Called when a level's ChangeCount has just become non-zero, for the window title.
    std::function<void()> TitleChanged;
};

/// The one instance of the map model's state.
MapState& Map();

/// Puts the map model back to its defaults (tests call it).
void ResetMap();

} // namespace kelvar::map
