// The view's commands: grid size and display, centring, scroll speed and the display toggles.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "platform/Ui.h"
#include "view/ViewState.h"

#include <optional>

namespace kelvar::app
{
namespace
{

void Toggled()
{
    Shell().Requests.Sound = SoundCue::Confirm;
}

} // namespace

void CenterOnPointer()
{
    view::ViewState& view = view::View();
    view::CenterOn(view.Viewport, view::ScreenToMapX(view.Viewport, view.Pointer.X),
                   view::ScreenToMapY(view.Viewport, view.Pointer.Y));
    CommandRequests& requests = Shell().Requests;
    requests.MovePointer = true;
    requests.PointerX = static_cast<int>(view.Viewport.CenterXPx);
    requests.PointerY = static_cast<int>(view.Viewport.CenterYPx);
}

void StoreGridSettings()
{
    const view::ViewSettings& settings = view::View().Settings;
    Shell().Chk.GridSize = static_cast<std::int16_t>(settings.GridSize);
    map::Map().Options.GridSize = settings.GridSize;
    map::Map().Options.GridSnap = settings.GridSnap;
}

void GridCommand(int number, CommandSource source)
{
    view::ViewState& view = view::View();
    view::ViewSettings& settings = view.Settings;
    switch (number)
    {
    case CmdToggleGrid64:
        view.Options.GridDisplay ^= view::Grid64Shown;
        Toggled();
        break;
    case CmdToggleGridDisplay:
        view.Options.GridDisplay ^= view::GridShown;
        Toggled();
        break;
    case CmdGridDecrease:
        // The key G and the menu entry differ on purpose: the key passes through "off".
        if (source == CommandSource::Key)
        {
            view::GridKeyFiner(settings);
        }
        else
        {
            view::GridMenuDecrease(settings);
        }
        break;
    case CmdGridIncrease:
        if (source == CommandSource::Key)
        {
            view::GridKeyCoarser(settings);
        }
        else
        {
            view::GridMenuIncrease(settings);
        }
        break;
    case CmdToggleGridLine:
        view.Options.GridLines = !view.Options.GridLines;
        Toggled();
        break;
    case CmdToggleGridSnap:
        settings.GridSnap = !settings.GridSnap;
        Toggled();
        break;
    case CmdGridOff:
        settings.GridSize = 0;
        break;
    default:
        return;
    }
    StoreGridSettings();
}

void NewGridSizeCommand(int /*number*/, CommandSource /*source*/)
{
    view::ViewSettings& settings = view::View().Settings;
    // Any size the dialog takes is accepted; 0 turns the grid, and so snapping, off.
    const std::optional<int> size =
        platform::TheUi().AskNumber("New Grid Size", "Grid Size", settings.GridSize, 0, 4096);
    if (size)
    {
        settings.GridSize = *size;
        StoreGridSettings();
    }
}

void CenterCommand(int number, CommandSource /*source*/)
{
    view::ViewState& view = view::View();
    const map::LevelData& level = map::Map().Level;
    switch (number)
    {
    case CmdCenterMap:
        // The middle of the level's box, halved in integers as every midpoint of the map.
        if (level.Vertexes.Count() > 0)
        {
            view::CenterOn(view.Viewport, (level.MinX + level.MaxX) / 2,
                           (level.MinY + level.MaxY) / 2);
        }
        break;
    case CmdCenterAtCursor:
        CenterOnPointer();
        break;
    case CmdCenterView:
        view::BestFit(view.Viewport, level);
        break;
    default:
        break;
    }
}

void ScrollSpeedCommand(int number, CommandSource /*source*/)
{
    view::ChangeScrollUnit(view::View().Settings, number == CmdFasterScroll ? 1 : -1);
}

void ZoomToggleCommand(int /*number*/, CommandSource /*source*/)
{
    view::ToggleZoom(view::View().Viewport, view::View().Settings);
}

void DisplayCommand(int number, CommandSource /*source*/)
{
    view::ViewOptions& options = view::View().Options;
    CommandWords& words = Shell().Commands;
    switch (number)
    {
    case CmdToggleVertexes:
        options.ShowVertexes = !options.ShowVertexes;
        Shell().Chk.AlwaysShowVertex = options.ShowVertexes ? 1 : 0;
        break;
    case CmdToggleThingDisplay:
        // 0 Things in Things mode only; 1 in every mode as symbols; 2 in every mode bare.
        words.ThingDisplay = (words.ThingDisplay + 1) % 3;
        options.ThingsInAllModes = words.ThingDisplay != 0;
        options.ThingStyle = words.ThingDisplay == 2 ? 2 : 1;
        break;
    case CmdToggleInfoPane:
        words.InfoPaneShown = !words.InfoPaneShown;
        Shell().Requests.LayoutChanged = true;
        break;
    case CmdToggleRuler:
        options.RulerOn = !options.RulerOn;
        break;
    case CmdToggleRulerSolid:
        options.RulerDashed = !options.RulerDashed;
        break;
    case CmdToggleRulerShape:
        options.RulerSquare = !options.RulerSquare;
        break;
    case CmdToggleInvisibleLines:
        options.ShowInvisibleLines = !options.ShowInvisibleLines;
        break;
    case CmdToggleCheckDisplay:
        words.CheckDisplay = !words.CheckDisplay;
        break;
    default:
        return;
    }
    Toggled();
}

void RedrawCommand(int /*number*/, CommandSource /*source*/)
{
    Shell().Requests.RedrawMap = true;
}

} // namespace kelvar::app
