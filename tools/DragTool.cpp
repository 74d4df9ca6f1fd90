// Dragging objects: what a drag takes along, the moves, and the clean-up on release.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/DragTool.h"

#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/SectorRays.h"
#include "map/Selection.h"
#include "map/Undo.h"
#include "platform/Ui.h"
#include "view/HitTest.h"

#include <algorithm>

namespace kelvar::tools
{

namespace
{

bool InRange(std::int32_t object, std::int32_t count)
{
    return object >= 0 && object < count;
}

// Adds `vertex` to `list` unless `seen` already has it.
void AddOnce(std::vector<std::int32_t>& list, std::vector<bool>& seen, std::uint32_t vertex)
{
    if (vertex < seen.size() && !seen[vertex])
    {
        seen[vertex] = true;
        list.push_back(static_cast<std::int32_t>(vertex));
    }
}

// One mark per Sector of the level, set for the listed ones.
std::vector<bool> SectorMarks(const map::LevelData& level, const std::vector<std::int32_t>& sectors)
{
    std::vector<bool> marks(level.Sectors.size(), false);
    for (const std::int32_t sector : sectors)
    {
        if (InRange(sector, level.Sectors.Count()))
        {
            marks[static_cast<std::size_t>(sector)] = true;
        }
    }
    return marks;
}

bool SideInMarkedSector(const map::LevelData& level, std::uint32_t side,
                        const std::vector<bool>& marks)
{
    if (side >= level.SideDefs.size())
    {
        return false;
    }
    const std::uint32_t sector = level.SideDefs[side].Sector;
    return sector < marks.size() && marks[sector];
}

// The objects the drag works on: the selection, or the press object marked for the drag.
std::vector<std::int32_t> TakeObjects(DragState& state, PressObject pressed)
{
    map::SelectionState& select = map::Map().Select;
    if (!select.Selection.Empty())
    {
        return select.Selection.Objects();
    }
    state.TemporarySelection = true;
    state.Mode = pressed.Mode;
    map::ObjectListPush(select.Selection, pressed.Object);
    select.HighlightedObject = pressed.Object;
    return {pressed.Object};
}

// Saves what the drag moves: Vertexes, or Things in Thing mode, with their positions.
void CollectDragged(DragState& state, const map::LevelData& level,
                    const std::vector<std::int32_t>& objects)
{
    platform::TheUi().SetStatusText("Selecting Objects to Drag - Wait");
    if (state.Mode == map::ModeThings)
    {
        SaveThingPlaces(state, level, objects);
        return;
    }
    SaveVertexPlaces(state, level, state.Mode, objects);
    if (state.Mode == map::ModeSectors && map::Map().Options.DragSectorThings)
    {
        platform::TheUi().SetStatusText("Selecting Things to Drag - Wait");
        state.SectorThings = ThingsInSectors(level, objects, state.Vertexes);
    }
}

void MoveThings(DragState& state, map::LevelData& level, int dx, int dy)
{
    for (std::size_t i = 0; i < state.Things.size(); ++i)
    {
        map::Thing& thing = level.Things[static_cast<std::size_t>(state.Things[i])];
        thing.X = state.SavedThings[i].X + dx;
        thing.Y = state.SavedThings[i].Y + dy;
    }
    map::NoteChange(level, map::KindThing);
}

// The delta is held to the grid first, so that Vertexes on the grid stay on it; then each
// position is snapped, which brings Vertexes off the grid onto it. Coordinates are truncated
// to the 16 bits a Vertex holds.
void MoveVertexes(DragState& state, map::LevelData& level, int dx, int dy, int grid)
{
    state.VertexDeltaX = SnapToGrid(dx, grid);
    state.VertexDeltaY = SnapToGrid(dy, grid);
    for (std::size_t i = 0; i < state.Vertexes.size(); ++i)
    {
        const map::Vertex& saved = state.SavedVertexes[i];
        const map::Vertex moved{
            static_cast<std::int16_t>(SnapToGrid(saved.X + state.VertexDeltaX, grid)),
            static_cast<std::int16_t>(SnapToGrid(saved.Y + state.VertexDeltaY, grid))};
        level.Vertexes[static_cast<std::size_t>(state.Vertexes[i])] = moved;
        map::ExtendBounds(level, moved);
    }
    map::NoteChange(level, map::KindVertex);
}

// The merge check of dragged LineDefs: their Vertexes are checked, and the list keeps only
// the LineDefs that are left after merges.
void MergeCheckLines(map::LevelData& level, map::ObjectList& lines)
{
    std::vector<std::int32_t> vertexes = DragVertexList(level, map::ModeLineDefs, lines.Objects());
    map::ObjectList checked;
    // Pushed in reverse, so the list reads in the order the Vertexes were met.
    for (auto vertex = vertexes.rbegin(); vertex != vertexes.rend(); ++vertex)
    {
        map::ObjectListPush(checked, *vertex);
    }
    map::MergeCheckAfterMove(level, checked, true);
    for (const std::int32_t line : lines.Objects())
    {
        if (!InRange(line, level.LineDefs.Count()))
        {
            map::ObjectListRemove(lines, line);
        }
    }
}

void MergeCheckDragged(const DragState& state, map::LevelData& level)
{
    map::ObjectList& selection = map::Map().Select.Selection;
    switch (state.Mode)
    {
    case map::ModeLineDefs:
        MergeCheckLines(level, selection);
        break;
    case map::ModeVertexes:
        map::MergeCheckAfterMove(level, selection, true);
        break;
    case map::ModeSectors:
    {
        map::ObjectList lines;
        for (const std::int32_t line : LineDefsOfSectors(level, selection.Objects()))
        {
            map::ObjectListPush(lines, line);
        }
        MergeCheckLines(level, lines);
        break;
    }
    default:
        break;
    }
}

// The Things of a Sector drag take the Vertexes' move once, at the end.
void MoveSectorThings(const DragState& state, map::LevelData& level)
{
    if (state.SectorThings.empty() || (state.VertexDeltaX == 0 && state.VertexDeltaY == 0))
    {
        return;
    }
    for (const std::int32_t number : state.SectorThings)
    {
        map::Thing& thing = level.Things[static_cast<std::size_t>(number)];
        thing.X += state.VertexDeltaX;
        thing.Y += state.VertexDeltaY;
    }
    map::NoteChange(level, map::KindThing);
}

DragEnd EndDrag(DragState& state)
{
    if (!state.Active)
    {
        return {state.StartMode, state.StartHighlight};
    }
    map::SelectionState& select = map::Map().Select;
    if (state.TemporarySelection)
    {
        map::ObjectListClear(select.Selection);
    }
    select.HighlightedObject = state.StartHighlight;
    const DragEnd end{state.StartMode, state.StartHighlight};
    state = DragState{};
    return end;
}

} // namespace

PressObject DragObjectAtPress(const map::LevelData& level, const view::MapViewport& viewport,
                              int mode, int pointerX, int pointerY, double vertexRange,
                              double thingRange, int oldHighlight)
{
    const auto vertexAt = [&]
    { return view::FindVertexNear(level, viewport, pointerX, pointerY, vertexRange); };
    const auto thingAt = [&]
    { return view::FindThingNear(level, viewport, pointerX, pointerY, thingRange); };
    if (mode == map::ModeThings)
    {
        if (const int thing = thingAt(); thing >= 0)
        {
            return {map::ModeThings, thing};
        }
        if (const int vertex = vertexAt(); vertex >= 0)
        {
            return {map::ModeVertexes, vertex};
        }
        return {map::ModeThings, oldHighlight};
    }
    if (const int vertex = vertexAt(); vertex >= 0)
    {
        return {map::ModeVertexes, vertex};
    }
    if (const int thing = thingAt(); thing >= 0)
    {
        return {map::ModeThings, thing};
    }
    return {mode, oldHighlight};
}

std::vector<std::int32_t> DragVertexList(const map::LevelData& level, int mode,
                                         const std::vector<std::int32_t>& objects)
{
    std::vector<std::int32_t> list;
    std::vector<bool> seen(level.Vertexes.size(), false);
    switch (mode)
    {
    case map::ModeVertexes:
        for (const std::int32_t vertex : objects)
        {
            if (vertex >= 0)
            {
                AddOnce(list, seen, static_cast<std::uint32_t>(vertex));
            }
        }
        break;
    case map::ModeLineDefs:
        for (const std::int32_t line : objects)
        {
            if (InRange(line, level.LineDefs.Count()))
            {
                const map::LineDef& def = level.LineDefs[static_cast<std::size_t>(line)];
                AddOnce(list, seen, def.StartVertex);
                AddOnce(list, seen, def.EndVertex);
            }
        }
        break;
    case map::ModeSectors:
        return DragVertexList(level, map::ModeLineDefs, LineDefsOfSectors(level, objects));
    default:
        break;
    }
    return list;
}

void SaveVertexPlaces(SavedPlaces& saved, const map::LevelData& level, int mode,
                      const std::vector<std::int32_t>& objects)
{
    for (const std::int32_t vertex : DragVertexList(level, mode, objects))
    {
        saved.Vertexes.push_back(vertex);
        saved.SavedVertexes.push_back(level.Vertexes[static_cast<std::size_t>(vertex)]);
    }
}

void SaveThingPlaces(SavedPlaces& saved, const map::LevelData& level,
                     const std::vector<std::int32_t>& things)
{
    for (const std::int32_t thing : things)
    {
        if (InRange(thing, level.Things.Count()))
        {
            saved.Things.push_back(thing);
            saved.SavedThings.push_back(level.Things[static_cast<std::size_t>(thing)]);
        }
    }
}

std::vector<std::int32_t> LineDefsOfSectors(const map::LevelData& level,
                                            const std::vector<std::int32_t>& sectors)
{
    const std::vector<bool> marks = SectorMarks(level, sectors);
    std::vector<std::int32_t> lines;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const map::LineDef& line = level.LineDefs[i];
        if (SideInMarkedSector(level, line.SideDef1, marks) ||
            SideInMarkedSector(level, line.SideDef2, marks))
        {
            lines.push_back(static_cast<std::int32_t>(i));
        }
    }
    return lines;
}

std::vector<std::int32_t> ThingsInSectors(const map::LevelData& level,
                                          const std::vector<std::int32_t>& sectors,
                                          const std::vector<std::int32_t>& vertexes)
{
    if (vertexes.empty())
    {
        return {};
    }
    int minX = 32767, minY = 32767, maxX = -32768, maxY = -32768;
    for (const std::int32_t vertex : vertexes)
    {
        const map::Vertex& v = level.Vertexes[static_cast<std::size_t>(vertex)];
        minX = std::min<int>(minX, v.X);
        minY = std::min<int>(minY, v.Y);
        maxX = std::max<int>(maxX, v.X);
        maxY = std::max<int>(maxY, v.Y);
    }
    const std::vector<bool> marks = SectorMarks(level, sectors);
    std::vector<std::int32_t> things;
    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        const map::Thing& thing = level.Things[i];
        if (thing.X < minX || thing.X > maxX || thing.Y < minY || thing.Y > maxY)
        {
            continue;
        }
        const int sector = map::SectorAt(level, thing.X, thing.Y, map::SectorAtMode::Loose);
        if (sector >= 0 && marks[static_cast<std::size_t>(sector)])
        {
            things.push_back(static_cast<std::int32_t>(i));
        }
    }
    return things;
}

bool DragBegin(DragState& state, int mode, double x, double y, PressObject pressed)
{
    map::MapState& map = map::Map();
    if (map.Select.Selection.Empty() && (map.Select.HighlightedObject < 0 || pressed.Object < 0))
    {
        return false;
    }
    state = DragState{};
    state.StartMode = mode;
    state.StartHighlight = map.Select.HighlightedObject;
    state.Mode = mode;
    map::SaveUndoStep(true);
    const std::vector<std::int32_t> objects = TakeObjects(state, pressed);
    CollectDragged(state, map.Level, objects);
    const int grid = map.Options.GridSnap ? map.Options.GridSize : 0;
    state.Anchor = SnapPoint(x, y, grid, map.Options.GridSnap);
    state.Last = state.Anchor;
    state.Active = true;
    platform::TheUi().SetStatusText("When done, Press C to Clear Selected Objects, F1=Help");
    return true;
}

bool DragMoveTo(DragState& state, double x, double y)
{
    const map::EditOptions& options = map::Map().Options;
    const int grid = options.GridSnap ? options.GridSize : 0;
    const SnappedPoint at = SnapPoint(x, y, grid, options.GridSnap);
    if (!state.Active || at == state.Last)
    {
        return false;
    }
    state.Last = at;
    const int dx = at.X - state.Anchor.X;
    const int dy = at.Y - state.Anchor.Y;
    map::LevelData& level = map::Map().Level;
    if (state.Mode == map::ModeThings)
    {
        MoveThings(state, level, dx, dy);
    }
    else
    {
        MoveVertexes(state, level, dx, dy, grid);
    }
    ++state.Steps;
    return true;
}

DragEnd DragCancel(DragState& state)
{
    if (state.Active)
    {
        map::UndoStep();
    }
    return EndDrag(state);
}

DragEnd DragFinish(DragState& state)
{
    if (state.Active && state.Steps > 0)
    {
        platform::TheUi().SetStatusText("Moving Objects, Please Wait");
        map::LevelData& level = map::Map().Level;
        {
            const map::PlacedVertexTolerance tolerance;
            MergeCheckDragged(state, level);
        }
        MoveSectorThings(state, level);
    }
    return EndDrag(state);
}

} // namespace kelvar::tools
