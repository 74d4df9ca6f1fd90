// Insert (Add, Ctrl+N) in every mode: a Thing or a Sector cloned from the highlighted one, a new
// Sector for one side of the selected LineDefs, or a line joining two selected Vertexes (the
// LineDraw tool when fewer are selected); taken back by undo like every edit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Modes.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorSplit.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "view/ViewState.h"
#include "view/Viewport.h"

#include <utility>
#include <vector>

namespace kelvar::app
{

namespace
{

// The highlighted object of the mode when it is one, else -1 (new objects take defaults).
int TemplateOf(const map::LevelData& level, int mode)
{
    const int highlighted = map::Selected().HighlightedObject;
    return map::IsValidObject(level, mode, highlighted) ? highlighted : -1;
}

// A Thing at the pointer, on the grid.
void InsertThing(map::LevelData& level)
{
    const view::ViewState& view = view::View();
    const int x =
        view::SnapToGrid(view.Settings, view::ScreenToMapX(view.Viewport, view.Pointer.X));
    const int y =
        view::SnapToGrid(view.Settings, view::ScreenToMapY(view.Viewport, view.Pointer.Y));
    (void)map::SaveUndoStep();
    const int added = map::InsertObject(level, map::KindThing, TemplateOf(level, ModeThings), x, y);
    map::Selected().HighlightedObject = added;
}

// A Sector, after the user confirms twice: it has no lines yet.
void InsertSector(map::LevelData& level)
{
    if (platform::ShowMessageLines(platform::LinesCancel, "New Sector",
                                   {"Create a Sector ?", "Are you SURE ?"},
                                   platform::MessageButtons::YesNo) != 1)
    {
        return;
    }
    (void)map::SaveUndoStep();
    const int added =
        map::InsertObject(level, map::KindSector, TemplateOf(level, ModeSectors), 0, 0);
    map::Selected().HighlightedObject = added;
}

// The side the user wants the new Sector on: 1, 2, or 0 when cancelled.
int AskSideForSector()
{
    platform::Message question;
    question.Title = "New Sector";
    question.Lines = {"This also adds any SideDefs missing", "Replace sideDef1 or sideDef2 Sector",
                      "Do NOT do this on Packed SideDefs"};
    question.Icon = platform::MessageIcon::Question;
    question.Buttons = platform::MessageButtons::YesNoCancel;
    question.ButtonTexts = {"SideDef&1", "SideDef&2", "Cancel"};
    switch (platform::TheUi().Show(question))
    {
    case 1:
        return 1;
    case 0:
        return 2;
    default:
        return 0;
    }
}

// The Sector the new one is cloned from: of the first listed LineDef with a side in a Sector,
// the chosen side's first; -1 (defaults) when none has one.
int TemplateSector(const map::LevelData& level, const std::vector<std::int32_t>& lines, int side)
{
    for (const std::int32_t number : lines)
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(number)];
        const std::uint32_t chosen = line.Side(side);
        const std::uint32_t other = line.Side(side == 1 ? 2 : 1);
        for (const std::uint32_t face : {chosen, other})
        {
            const std::uint32_t sector = map::SectorOfSide(level, face);
            if (sector < level.Sectors.size())
            {
                return static_cast<int>(sector);
            }
        }
    }
    return -1;
}

// A new Sector for the chosen side of the selected LineDefs; the mode becomes Sectors.
void InsertSectorForLines(map::LevelData& level)
{
    map::SelectionState& select = map::Selected();
    const std::vector<std::int32_t> lines = map::SelectionOrHighlight(level, ModeLineDefs);
    if (lines.empty())
    {
        platform::TheUi().Beep();
        return;
    }
    const int side = AskSideForSector();
    if (side == 0)
    {
        return;
    }
    (void)map::SaveUndoStep();
    const int sector =
        map::InsertObject(level, map::KindSector, TemplateSector(level, lines, side), 0, 0);
    for (const std::int32_t number : lines)
    {
        const auto at = static_cast<std::size_t>(number);
        std::uint32_t face = std::as_const(level).LineDefs[at].Side(side);
        if (face == map::NoSideDef)
        {
            face = static_cast<std::uint32_t>(map::InsertObject(level, map::KindSideDef, -1, 0, 0));
            map::LineDef& line = level.LineDefs[at];
            line.Side(side) = face;
            if (side == 2)
            {
                line.Flags = static_cast<std::uint16_t>(line.Flags | map::FlagTwoSided);
            }
        }
        level.SideDefs[face].Sector = static_cast<std::uint32_t>(sector);
    }
    map::ClearSelection();
    ChooseMode(ModeSectors);
    select.HighlightedObject = sector;
}

} // namespace

// Two selected Vertexes are joined, dividing the Sector there when the user wants it; fewer
// start the LineDraw tool; more are refused.
void InsertInVertexes(map::LevelData& level)
{
    const std::vector<std::int32_t> selected = map::Selected().Selection.Objects();
    if (selected.size() < 2)
    {
        Shell().Requests.StartLineDraw = true;
        return;
    }
    if (selected.size() > 2)
    {
        platform::ShowMessageLines(
            0, "Insert",
            {platform::Format("You have %d Vertexes selected", static_cast<int>(selected.size())),
             "That's too many !",
             "Select 2 vertices to connect 2 points or draw in the missing line",
             "Select Exit in the Split menu if this will create a line in a new area"});
        return;
    }
    (void)map::SaveUndoStep();
    if (map::SplitSector(level, selected[1], selected[0], false) != map::SplitDone)
    {
        map::ConnectVertexes(level, selected[1], selected[0]);
    }
    map::ClearSelection();
}

void InsertCommand(int /*number*/, CommandSource /*source*/)
{
    map::LevelData& level = map::Map().Level;
    if (EditMode() == ModeThings)
    {
        InsertThing(level);
    }
    else if (EditMode() == ModeSectors)
    {
        InsertSector(level);
    }
    else if (EditMode() == ModeLineDefs)
    {
        InsertSectorForLines(level);
    }
    else if (EditMode() == ModeVertexes)
    {
        InsertInVertexes(level);
    }
}

} // namespace kelvar::app
