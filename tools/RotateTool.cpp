// The Rotate and Scale tool, and the turning of a Thing's own angle.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/RotateTool.h"

#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/Selection.h"
#include "map/Undo.h"
#include "platform/Ui.h"
#include "tools/DragTool.h"
#include "tools/Snap.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvar::tools
{

namespace
{

// The geometry counter alone; like NoteChange's, it skips 0 when it wraps, since 0 means
// "unchanged".
void CountGeometryChange(map::LevelData& level)
{
    if (++level.GeometryChangeCount == 0)
    {
        level.GeometryChangeCount = 1;
    }
}

// The angle is kept within one turn either way, so the caption never shows more.
void WrapAngle(int& angle)
{
    if (angle > 359)
    {
        angle -= 360;
    }
    else if (angle < -359)
    {
        angle += 360;
    }
}

// Takes the objects down to Vertexes, or Things, with their positions.
void CollectRotated(RotateScaleState& state, const map::LevelData& level, int mode,
                    const std::vector<std::int32_t>& objects)
{
    platform::TheUi().SetStatusText("Selecting Rotate Data - wait");
    if (mode == map::ModeThings)
    {
        state.Mode = map::ModeThings;
        SaveThingPlaces(state, level, objects);
        return;
    }
    state.Mode = map::ModeVertexes;
    SaveVertexPlaces(state, level, mode, objects);
    if (mode == map::ModeSectors && map::Map().Options.DragSectorThings)
    {
        platform::TheUi().SetStatusText("Selecting Things for Rotate - Wait");
        SaveThingPlaces(state, level, ThingsInSectors(level, objects, state.Vertexes));
    }
}

// The refusal of too few objects, worded as every command on a selection words it.
bool EnoughObjects(const RotateScaleState& state)
{
    const bool things = state.Mode == map::ModeThings;
    map::ObjectList counted;
    for (const std::int32_t object : things ? state.Things : state.Vertexes)
    {
        map::ObjectListPush(counted, object);
    }
    int count = 0, first = -1, last = -1;
    return map::CountOrComplain(things ? map::KindThing : map::KindVertex, false, 2, count, counted,
                                first, last);
}

// The mean of the Vertexes' positions, or of the Things' when only Things turn.
void FindCenter(RotateScaleState& state)
{
    double sumX = 0, sumY = 0;
    std::size_t count = 0;
    if (state.Mode == map::ModeThings)
    {
        for (const map::Thing& thing : state.SavedThings)
        {
            sumX += thing.X;
            sumY += thing.Y;
        }
        count = state.SavedThings.size();
    }
    else
    {
        for (const map::Vertex& vertex : state.SavedVertexes)
        {
            sumX += vertex.X;
            sumY += vertex.Y;
        }
        count = state.SavedVertexes.size();
    }
    state.CenterX = sumX / static_cast<double>(count);
    state.CenterY = sumY / static_cast<double>(count);
}

// Every position anew from the saved copy: turned and scaled about the centre, then
// truncated to whole units and snapped when the grid is on.
void Reposition(const RotateScaleState& state)
{
    map::MapState& map = map::Map();
    map::LevelData& level = map.Level;
    const int grid = map.Options.GridSize;
    const bool snap = map.Options.GridSnap;
    const auto place = [&](double x, double y)
    {
        const map::Point turned =
            Rotate(x - state.CenterX, y - state.CenterY, state.Angle, state.Scale);
        return SnapPoint(state.CenterX + turned.X, state.CenterY + turned.Y, grid, snap);
    };
    for (std::size_t i = 0; i < state.Vertexes.size(); ++i)
    {
        const SnappedPoint at = place(state.SavedVertexes[i].X, state.SavedVertexes[i].Y);
        // A Vertex holds 16 bits: a position scaled beyond them is truncated.
        const map::Vertex moved{static_cast<std::int16_t>(at.X), static_cast<std::int16_t>(at.Y)};
        level.Vertexes[static_cast<std::size_t>(state.Vertexes[i])] = moved;
        map::ExtendBounds(level, moved);
    }
    for (std::size_t i = 0; i < state.Things.size(); ++i)
    {
        const SnappedPoint at = place(state.SavedThings[i].X, state.SavedThings[i].Y);
        map::Thing& thing = level.Things[static_cast<std::size_t>(state.Things[i])];
        thing.X = at.X;
        thing.Y = at.Y;
    }
}

} // namespace

map::Point Rotate(double dx, double dy, int angle, double scale)
{
    double cosine = 0;
    double sine = 0;
    // Quarter turns use exact values: cos(90 degrees) in floating point is a little off 0,
    // and a position a hair below a whole number would be truncated a whole unit short.
    switch ((angle % 360 + 360) % 360)
    {
    case 0:
        cosine = 1;
        break;
    case 90:
        sine = 1;
        break;
    case 180:
        cosine = -1;
        break;
    case 270:
        sine = -1;
        break;
    default:
    {
        const double radians = angle * std::numbers::pi / 180.0;
        cosine = std::cos(radians);
        sine = std::sin(radians);
        break;
    }
    }
    return {(dx * cosine - dy * sine) * scale, (dx * sine + dy * cosine) * scale};
}

bool RotateScaleBegin(RotateScaleState& state, int mode, const map::ObjectList& objects)
{
    map::MapState& map = map::Map();
    state = RotateScaleState{};
    CollectRotated(state, map.Level, mode, objects.Objects());
    if (!EnoughObjects(state))
    {
        state = RotateScaleState{};
        return false;
    }
    map::SaveUndoStep(true);
    // Counted as a change of Things: the Vertexes' geometry is counted when the tool finishes.
    map::NoteChange(map.Level, map::KindThing);
    FindCenter(state);
    state.SavedBounds = {map.Level.MinX, map.Level.MinY, map.Level.MaxX, map.Level.MaxY};
    state.Active = true;
    platform::TheUi().SetStatusText("Rotate Tool <> = Rotate, F1=Help");
    return true;
}

RotateStep RotateScaleKey(RotateScaleState& state, int key, bool shift)
{
    if (!state.Active)
    {
        return RotateStep::Continue;
    }
    switch (key)
    {
    case '>':
    case '.':
        state.Angle += state.AngleStep;
        break;
    case '<':
    case ',':
        state.Angle -= state.AngleStep;
        break;
    case 'r':
    case 'R':
        state.Scale = std::max(0.0, state.Scale + (shift ? -state.ScaleStep : state.ScaleStep));
        break;
    case ' ':
        state.AngleStep = state.AngleStep == 1 ? 4 : 1;
        state.ScaleStep = state.AngleStep == 1 ? 0.01 : 0.04;
        return RotateStep::Continue;
    case RotateKeyEnter:
        return RotateStep::Finish;
    case RotateKeyEscape:
        return RotateStep::Cancel;
    default:
        return RotateStep::Continue;
    }
    WrapAngle(state.Angle);
    Reposition(state);
    return RotateStep::Continue;
}

void RotateScaleMouse(RotateScaleState& state, int dx, int dy)
{
    if (!state.Active || (dx == 0 && dy == 0))
    {
        return;
    }
    state.Angle += dx + dy < 1 ? -1 : 1;
    WrapAngle(state.Angle);
    Reposition(state);
}

void RotateScaleFinish(RotateScaleState& state)
{
    if (!state.Active)
    {
        return;
    }
    map::LevelData& level = map::Map().Level;
    // Things alone leave the nodes as they are, and the clean-up is for Vertexes.
    if (!state.Vertexes.empty())
    {
        CountGeometryChange(level);
        map::ObjectList moved;
        for (auto vertex = state.Vertexes.rbegin(); vertex != state.Vertexes.rend(); ++vertex)
        {
            map::ObjectListPush(moved, *vertex);
        }
        map::MergeCheckAfterMove(level, moved, true);
    }
    state = RotateScaleState{};
}

void RotateScaleCancel(RotateScaleState& state)
{
    if (!state.Active)
    {
        return;
    }
    map::LevelData& level = map::Map().Level;
    for (std::size_t i = 0; i < state.Vertexes.size(); ++i)
    {
        level.Vertexes[static_cast<std::size_t>(state.Vertexes[i])] = state.SavedVertexes[i];
    }
    for (std::size_t i = 0; i < state.Things.size(); ++i)
    {
        level.Things[static_cast<std::size_t>(state.Things[i])] = state.SavedThings[i];
    }
    level.MinX = state.SavedBounds[0];
    level.MinY = state.SavedBounds[1];
    level.MaxX = state.SavedBounds[2];
    level.MaxY = state.SavedBounds[3];
    state = RotateScaleState{};
}

RotateCaption RotateScaleCaption(const RotateScaleState& state)
{
    return {-state.Angle, static_cast<int>(std::lround(state.Scale * 100))};
}

std::uint16_t TurnThingAngle(std::uint16_t angle, bool up)
{
    if (up)
    {
        return angle >= 315 ? std::uint16_t{0} : static_cast<std::uint16_t>(angle + 45);
    }
    return angle < 45 ? std::uint16_t{315} : static_cast<std::uint16_t>(angle - 45);
}

} // namespace kelvar::tools
