// The interactive tools of the map window, LineDraw and Rotate and Scale: their state while they
// run and the window's mouse and keys turned into their inputs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapTools.h"

#include "app/Commands.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/ObjectList.h"
#include "map/Selection.h"
#include "platform/Format.h"
#include "view/ViewState.h"

namespace kelvar::app
{
namespace
{

void SetMode(int mode)
{
    Shell().Chk.EditMode = static_cast<std::int16_t>(mode);
}

double MapX(int x)
{
    return view::ScreenToMapXExact(view::View().Viewport, x);
}

double MapY(int y)
{
    return view::ScreenToMapYExact(view::View().Viewport, y);
}

void NotePointer(MapToolState& state, int x, int y)
{
    state.PointerX = x;
    state.PointerY = y;
    state.PointerKnown = true;
}

void EndLineDraw(MapToolState& state)
{
    state.Draw.reset();
    state.Active = MapTool::None;
    state.Caption.clear();
    if (state.ModeBefore != ModeVertexes)
    {
        // The run's selection and highlight are Vertex and LineDef numbers: they mean nothing
        // in the mode given back.
        map::ClearSelection();
        map::Selected().HighlightedObject = -1;
    }
    SetMode(state.ModeBefore);
    Shell().Requests.MiscMenuChanged = true;
    AskForRefresh();
}

void RotateCaption(MapToolState& state)
{
    const tools::RotateCaption caption = tools::RotateScaleCaption(state.Rotate);
    state.Caption = platform::Format("Angle %d  Scale %d%%", caption.Angle, caption.Scale);
}

void EndRotate(MapToolState& state, bool keep)
{
    if (keep)
    {
        tools::RotateScaleFinish(state.Rotate);
    }
    else
    {
        tools::RotateScaleCancel(state.Rotate);
    }
    state.Rotate = tools::RotateScaleState{};
    state.Active = MapTool::None;
    state.Caption.clear();
    AskForRefresh();
}

} // namespace

bool StartLineDraw(MapToolState& state)
{
    if (!EditingLevel() || state.Active != MapTool::None)
    {
        return false;
    }
    map::SelectionState& select = map::Selected();
    int start = -1;
    if (EditMode() == ModeVertexes && select.Selection.Size() == 1)
    {
        start = select.Selection.Head();
    }
    else
    {
        map::ClearSelection();
    }
    state.ModeBefore = EditMode();
    SetMode(ModeVertexes);
    select.HighlightedObject = -1;
    state.Draw = std::make_unique<tools::LineDrawTool>(map::Map().Level, start);
    state.Active = MapTool::LineDraw;
    state.Caption.clear();
    Shell().Requests.MiscMenuChanged = true;
    AskForRefresh();
    return true;
}

void LineDrawInput(MapToolState& state, tools::DrawAction action, int x, int y)
{
    if (state.Active != MapTool::LineDraw)
    {
        return;
    }
    NotePointer(state, x, y);
    const tools::DrawState result = state.Draw->Feed({action, MapX(x), MapY(y)});
    if (result == tools::DrawState::Left)
    {
        EndLineDraw(state);
        return;
    }
    state.Caption = state.Draw->PaneText(MapX(x), MapY(y));
    AskForRefresh();
}

bool StartRotateScale(MapToolState& state, int pointerX, int pointerY)
{
    if (!EditingLevel() || state.Active != MapTool::None)
    {
        return false;
    }
    map::SelectionState& select = map::Selected();
    bool begun = false;
    if (!select.Selection.Empty())
    {
        begun = tools::RotateScaleBegin(state.Rotate, EditMode(), select.Selection);
    }
    else
    {
        map::ObjectList single;
        if (select.HighlightedObject >= 0)
        {
            map::ObjectListPush(single, select.HighlightedObject);
        }
        begun = tools::RotateScaleBegin(state.Rotate, EditMode(), single);
    }
    if (!begun)
    {
        state.Rotate = tools::RotateScaleState{};
        return false;
    }
    state.Active = MapTool::RotateScale;
    NotePointer(state, pointerX, pointerY);
    RotateCaption(state);
    AskForRefresh();
    return true;
}

void RotateScaleInputKey(MapToolState& state, int key, bool shift)
{
    if (state.Active != MapTool::RotateScale)
    {
        return;
    }
    switch (tools::RotateScaleKey(state.Rotate, key, shift))
    {
    case tools::RotateStep::Finish:
        EndRotate(state, true);
        return;
    case tools::RotateStep::Cancel:
        EndRotate(state, false);
        return;
    case tools::RotateStep::Continue:
        break;
    }
    RotateCaption(state);
    AskForRefresh();
}

void RotateScaleClick(MapToolState& state)
{
    if (state.Active == MapTool::RotateScale)
    {
        EndRotate(state, true);
    }
}

void MapToolPointer(MapToolState& state, int x, int y)
{
    if (state.Active == MapTool::LineDraw)
    {
        NotePointer(state, x, y);
        state.Caption = state.Draw->PaneText(MapX(x), MapY(y));
        Shell().Requests.RefreshStatus = true;
    }
    else if (state.Active == MapTool::RotateScale)
    {
        const int dx = x - state.PointerX;
        const int dy = y - state.PointerY;
        NotePointer(state, x, y);
        if (dx == 0 && dy == 0)
        {
            return;
        }
        tools::RotateScaleMouse(state.Rotate, dx, dy);
        RotateCaption(state);
        AskForRefresh();
    }
}

bool ToolLetsCommandThrough(const MapToolState& state, std::uint16_t command)
{
    return state.Active == MapTool::LineDraw &&
           (command == CmdCenterMap || command == CmdCenterView);
}

void CancelMapTool(MapToolState& state)
{
    if (state.Active == MapTool::LineDraw)
    {
        LineDrawInput(state, tools::DrawAction::Escape, state.PointerX, state.PointerY);
        if (state.Active == MapTool::LineDraw)
        {
            EndLineDraw(state);
        }
    }
    else if (state.Active == MapTool::RotateScale)
    {
        EndRotate(state, false);
    }
}

bool RubberLine(const MapToolState& state, int& x1, int& y1, int& x2, int& y2)
{
    if (state.Active != MapTool::LineDraw || !state.PointerKnown)
    {
        return false;
    }
    const std::optional<map::Point> start = state.Draw->RubberStart();
    if (!start)
    {
        return false;
    }
    const view::MapViewport& viewport = view::View().Viewport;
    x1 = view::MapToScreenX(viewport, start->X);
    y1 = view::MapToScreenY(viewport, start->Y);
    x2 = state.PointerX;
    y2 = state.PointerY;
    return true;
}

} // namespace kelvar::app
