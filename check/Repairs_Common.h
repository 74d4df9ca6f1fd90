// What the repair commands share: the undo step each takes before it changes the editor's level.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/MapState.h"
#include "map/Undo.h"

namespace kelvar::check
{

/// True when `level` is the level being edited, whose changes undo can take back.
inline bool IsEditorLevel(const map::LevelData& level)
{
    return &level == &map::Map().Level;
}

/// Takes the undo step of a repair, when it repairs the editor's level; true when one was
/// taken.
inline bool TakeUndoStep(const map::LevelData& level)
{
    return IsEditorLevel(level) && map::SaveUndoStep() == 1;
}

} // namespace kelvar::check
