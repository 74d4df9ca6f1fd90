// Undo and redo of whole levels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/Undo.h"

#include "map/MapState.h"
#include "map/ObjectStore.h"

#include <algorithm>
#include <utility>

namespace kelvar::map
{
namespace
{

// The exchange of undo and redo: the level and the step trade places whole, with the store
// kept from a timed save meanwhile.
void Exchange(LevelData& level, LevelData& step)
{
    const StoreChange busy;
    std::swap(level, step);
    level.NodesCurrent = 0;
}

} // namespace

int SaveUndoStep(UndoTable& table, const LevelData& level, int limit, bool enabled, bool force)
{
    if (!enabled && !force)
    {
        return 0;
    }
    ++table.Position;
    if (table.Position >= limit)
    {
        // The oldest step goes; the whole table moves down one slot whatever the limit, so
        // steps above a lowered limit stay where redo finds them.
        std::move(table.Slots.begin() + 1, table.Slots.end(), table.Slots.begin());
        table.Slots.back().reset();
        table.Position = limit - 1;
    }
    table.HasCurrent = true;
    table.Top = std::max(table.Top, table.Position);
    table.Slots[static_cast<std::size_t>(table.Position)] = level;
    return 1;
}

int DropLastUndoStep(UndoTable& table)
{
    if (table.Position < 0)
    {
        table.Position = -1;
        return 0;
    }
    table.Slots[static_cast<std::size_t>(table.Position)].reset();
    --table.Position;
    return 1;
}

int UndoStep(UndoTable& table, LevelData& level)
{
    if (!table.HasCurrent || table.Position < 0)
    {
        return 0;
    }
    std::optional<LevelData>& step = table.Slots[static_cast<std::size_t>(table.Position)];
    table.Position = std::max(table.Position - 1, -1);
    if (!step)
    {
        return 0;
    }
    Exchange(level, *step);
    return 1;
}

int RedoStep(UndoTable& table, LevelData& level, bool enabled)
{
    if (!enabled || !table.HasCurrent || table.Position >= table.Top)
    {
        return 0;
    }
    ++table.Position;
    std::optional<LevelData>& step = table.Slots[static_cast<std::size_t>(table.Position)];
    if (!step)
    {
        --table.Position;
        return 0;
    }
    Exchange(level, *step);
    return 1;
}

void UndoReset(UndoTable& table)
{
    table = UndoTable{};
}

int SaveUndoStep(bool force)
{
    MapState& map = Map();
    return SaveUndoStep(map.Undo, map.Level, map.Options.UndoLimit, map.Options.UndoEnabled, force);
}

int DropLastUndoStep()
{
    return DropLastUndoStep(Map().Undo);
}

int UndoStep()
{
    return UndoStep(Map().Undo, Map().Level);
}

int RedoStep()
{
    return RedoStep(Map().Undo, Map().Level, Map().Options.UndoEnabled);
}

void UndoReset()
{
    UndoReset(Map().Undo);
}

} // namespace kelvar::map
