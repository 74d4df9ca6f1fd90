// The command router, its table, and the handlers of modes, files and the session.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Router.h"

#include "app/CheckerCommands.h"
#include "app/CommandHandlers.h"
#include "app/LumpCommands.h"
#include "app/Modes.h"
#include "app/RecentLists.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/MapState.h"
#include "platform/Ui.h"
#include "wad/WadState.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::app
{
namespace
{

constexpr int Things = ModeThings;
constexpr int LineDefs = ModeLineDefs;
constexpr int Vertexes = ModeVertexes;
constexpr int Sectors = ModeSectors;

// The first row holding a number wins: single numbers stand before the ranges round them.
// Rows without a handler are commands that are disabled (greyed) in the menus; their keys only
// beep.
constexpr RouteRow RouteTable[] = {
    // Saving, node builds, test play.
    {CmdSaveNewReject, CmdSaveNewReject, AnyMode, SaveCommand, "Save with new RejectMask"},
    {CmdBuildNodesAs, CmdBuildNodesAs, AnyMode, SaveCommand, "Build Node As"},
    {CmdSaveLevel, CmdSaveLevelAs, AnyMode, SaveCommand, "Save, Save As"},
    {CmdBuildNodes, CmdBuildNodes, AnyMode, SaveCommand, "Build Node"},
    {CmdQuickSaveBackup, CmdQuickSaveBackup, AnyMode, QuickSaveCommand, "Quick Save Backup"},
    {CmdTestLevel, CmdTestLevel, AnyMode, TestLevelCommand, "Test Level"},
    {CmdTextureAlign3D, CmdTextureAlign3D, AnyMode, TestIn3DCommand, "3D Mode Texture Align"},
    // Files, levels, projects.
    {CmdEditLevel, CmdEditLevel, AnyMode, EditLevelCommand, "Edit Level"},
    {CmdNewLevel, CmdNewLevel, AnyMode, NewLevelCommand, "New Level"},
    {CmdCloseAllFiles, CmdCloseAllFiles, AnyMode, CloseAllFilesCommand, "Close All Files"},
    {CmdOpenPwad, CmdOpenPwad, AnyMode, OpenPwadCommand, "Open PWAD"},
    {CmdCloseOneFile, CmdCloseOneFile, AnyMode, CloseOneFileCommand, "Close 1 File"},
    {CmdExit, CmdExit, AnyMode, ExitCommand, "Exit"},
    {CmdChooseProject, CmdChooseProject, AnyMode, ChooseProjectCommand, "Choose Game Project"},
    {CmdChooseTextureGroup, CmdChooseTextureGroup, AnyMode, ChooseTextureGroupCommand,
     "Choose Texture Group"},
    {CmdGroup, CmdUngroup, AnyMode, GroupMenuCommand, "Group, UnGroup"},
    {CmdMakeIwad, CmdMakeIwad, AnyMode, GroupMenuCommand, "Save and make an IWAD"},
    {CmdResetRecentList, CmdResetRecentList, AnyMode, ResetRecentCommand, "Reset recent PWAD List"},
    {CommandStartup, CommandStartup, AnyMode, StartupCommand, "start-up"},
    {CommandFirstStartup, CommandFirstStartup, AnyMode, StartupCommand, "first start-up"},
    {CmdGraphicsMenu, CmdGraphicsMenu, AnyMode, GraphicsMenuCommand, "Graphics/Import/Export"},
    {CmdOptionsMenu, CmdScriptMenu, AnyMode, nullptr, "F5, F6 menus"},
    {CmdMiscMenu, CmdMiscMenu, AnyMode, MiscMenuCommand, "Misc Menu"},
    {CmdCheckLevel, CmdCheckLevel, AnyMode, CheckLevelCommand, "Check Level"},
    {CmdStatistics, CmdStatistics, AnyMode, CheckLevelCommand, "Statistics"},
    {CmdCheckOpt, CmdCheckOpt, AnyMode, nullptr, "CheckOpt (a button of the checker)"},
    {CmdPrefabMenu, CmdPrefabMenu, AnyMode, nullptr, "F9 menu"},
    {CmdPackSideDefs, CmdCenterMapCoordinates, AnyMode, RepairCommand, "Pack, Unpack, Center"},
    {CmdRenumberTags, CmdRenumberTags, AnyMode, RepairCommand, "Renumber"},
    // Undo, clipboard, objects.
    {CmdRedo, CmdRedo, AnyMode, UndoCommand, "Redo"},
    {CmdUndo, CmdUndo, AnyMode, UndoCommand, "Undo"},
    {CmdCut, CmdCut, AnyMode, nullptr, "Cut"},
    {CmdDeleteObject, CmdDeleteObject, AnyMode, DeleteCommand, "Delete"},
    {CmdCopy, CmdPaste, AnyMode, nullptr, "Copy, Paste"},
    {CmdSystemClipboardFirst, CmdViewSystemClipboard, AnyMode, nullptr, "system clipboard"},
    {CmdMirror, CmdMirror, AnyMode, nullptr, "Mirror"},
    {CmdAddObject, CmdAddObject, Things | LineDefs | Sectors, InsertCommand, "Add"},
    {CmdOpenPrefab, CmdOpenPrefab, AnyMode, nullptr, "Open Prefab PWAD"},
    {CmdSavePrefab, CmdSavePrefab, AnyMode, nullptr, "Save Clipboard as Prefab PWAD"},
    {CmdPrefabSlotFirst, CmdPrefabSlotLast, AnyMode, nullptr, "prefab commands"},
    {CmdViewClipboard, CmdViewClipboard, AnyMode, nullptr, "View Clipboard"},
    {CmdThingMask, CmdThingMask, AnyMode, ThingMaskCommand, "Thing Filter Mask"},
    {CmdViewLump, CmdWadList, AnyMode, nullptr, "ViewLump, Wadlist"},
    {CmdClearSelection, CmdClearSelection, AnyMode, ClearSelectionCommand, "Clear Selection"},
    {CmdFind, CmdRepeatLastFind, AnyMode, nullptr, "Find"},
    {CmdNextObject, CmdPrevObject, AnyMode, WalkCommand, "Next, Prev. Object"},
    {CmdJumpToObject, CmdJumpToObject, AnyMode, JumpCommand, "Jump to Object"},
    {CmdJumpToTags, CmdJumpToTags, AnyMode, JumpToTagsCommand, "Jump to Tags"},
    {CmdMarkSameThings, CmdMarkSameThings, Things, MarkSameThingsCommand, "Mark all same Things"},
    {CmdFindMenuFirst, CmdFindMenuLast, AnyMode, nullptr, "finds and replaces"},
    // Modes and tools.
    {CmdThingsMode, CmdSectorsMode, AnyMode, ModeCommand, "modes"},
    {CmdNextMode, CmdLastMode, AnyMode, ModeCommand, "Next, Last Mode"},
    {CmdAutoModePassThrough, CmdAutoModePassThrough, AnyMode, ZoomToggleCommand,
     "the Z key: the two fixed scales"},
    {CmdSlowerScroll, CmdFasterScroll, AnyMode, ScrollSpeedCommand, "map scroll speed"},
    {CmdRepeatToolFirst, CmdRepeatToolLast, AnyMode, nullptr, "repeat the last drawing tool"},
    {CmdRepeatTool431, CmdRepeatTool431, AnyMode, nullptr, "repeat the last drawing tool"},
    {CmdAutoMode, CmdAutoMode, AnyMode, AutoModeCommand, "AutoMode"},
    {CmdRectangleTool, CmdPolygonTool, AnyMode, nullptr, "tools"},
    {CmdLineDrawTool, CmdLineDrawTool, AnyMode, LineDrawCommand, "LineDraw"},
    {CmdStairTool, CmdStairTool, AnyMode, nullptr, "tools"},
    {CmdTool426, CmdTool426, LineDefs | Sectors, nullptr, "tool"},
    {CmdTool430, CmdTool430, AnyMode, nullptr, "tool"},
    {CmdPrefabToolFirst, CmdPrefabToolLast, AnyMode, nullptr, "prefab tools"},
    // The view.
    {CmdToggleThingDisplay, CmdToggleThingDisplay, AnyMode, DisplayCommand, "Toggle Thing Display"},
    {CmdSetTagOrHeight, CmdSetTagOrHeight, LineDefs | Sectors, SetTagCommand, "Set tag or height"},
    {CmdToggleGrid64, CmdToggleGrid64, AnyMode, GridCommand, "Toggle Grid 64"},
    {CmdToggleGridDisplay, CmdToggleGridLine, AnyMode, GridCommand, "grid"},
    {CmdToggleGridSnap, CmdToggleGridSnap, AnyMode, GridCommand, "Toggle Grid Snap"},
    {CmdGridOff, CmdGridOff, AnyMode, GridCommand, "Grid off"},
    {CmdCenterMap, CmdCenterMap, AnyMode, CenterCommand, "Centre map"},
    {CmdCenterAtCursor, CmdCenterAtCursor, AnyMode, CenterCommand, "Center at cursor"},
    {CmdCenterView, CmdCenterView, AnyMode, CenterCommand, "Center view on map"},
    {CmdNewGridSize, CmdNewGridSize, AnyMode, NewGridSizeCommand, "New Grid Size"},
    {CmdToggleVertexes, CmdToggleVertexes, AnyMode, DisplayCommand, "Toggle always show vertex"},
    {CmdToggleInfoPane, CmdToggleInfoPane, AnyMode, DisplayCommand, "Toggle InfoBotm"},
    {CmdToggleRuler, CmdToggleRulerShape, AnyMode, DisplayCommand, "ruler"},
    {CmdToggleInvisibleLines, CmdToggleInvisibleLines, AnyMode, DisplayCommand,
     "Toggle Invisible Lines"},
    {CmdToggleCheckDisplay, CmdToggleCheckDisplay, AnyMode, DisplayCommand, "Toggle check display"},
    {CmdRedrawMap, CmdRedrawMap, AnyMode, RedrawCommand, "Redraw Map"},
    {CmdWireFrame, CmdWireFrame, AnyMode, nullptr, "3D WireFrame Viewer"},
    // LineDef, Sector and Thing operations.
    {CmdFlipVertexesOnly, CmdSwapSideDefs, LineDefs, MiscEntryCommand, "flip, swap"},
    {CmdSide1Textures, CmdSide2Textures, LineDefs, SideTextureCommand, "texture pick for a side"},
    // Texture alignment: the X offsets need the texture catalogue's widths.
    {CmdAlignXShift, CmdAlignXShift, LineDefs, AlignTexturesXCommand, "Align X shift"},
    {CmdAlignYShift, CmdAlignYShift, LineDefs, AlignTexturesYCommand, "Align Y shift"},
    {CmdAlignX, CmdAlignX, LineDefs, AlignTexturesXCommand, "Align Textures (X Offset)"},
    {CmdAlignY, CmdAlignY, LineDefs, AlignTexturesYCommand, "Align Textures (Y Offset)"},
    {CmdAlignYSide1, CmdAlignYSide2Menu, LineDefs, nullptr,
     "Align Y, side 1 or 2: the menu uses 479 and 601"},
    // 537 and 541 run as 478 and 600, their keys; the other six only from the menu.
    {CmdAlignXFirst, CmdAlignXFirst, LineDefs, nullptr, "Align X: the menu uses 478"},
    {CmdAlignXFirst + 1, CmdAlignXFirst + 3, LineDefs, AlignTexturesXCommand, "Align X"},
    {CmdAlignXFirst + 4, CmdAlignXFirst + 4, LineDefs, nullptr, "Align X: the menu uses 600"},
    {CmdAlignXFirst + 5, CmdAlignXLast, LineDefs, AlignTexturesXCommand, "Align X"},
    {CmdAlignXSide2, CmdAlignXSide2, LineDefs, AlignTexturesXCommand, "Align X side 2"},
    {CmdAlignYSide2, CmdAlignYSide2, LineDefs, AlignTexturesYCommand, "Align Y side 2"},
    {CmdRaiseCeiling, CmdLowerBoth, Sectors | Things, nullptr, "heights"},
    {CmdLightUp, CmdLightLast, Sectors, nullptr, "light"},
    {CmdEditObject, CmdEditObject, Things | LineDefs | Sectors, EditObjectCommand, "edit objects"},
    {CmdEditObjectT, CmdEditObjectT, Things | LineDefs | Sectors, EditObjectCommand,
     "edit objects"},
    // The Misc popups: Rotate and Scale belongs to the drag tools, the Sector splits to the
    // Sector construction.
    {501, 501, Sectors, RotateScaleCommand, "Rotate and Scale"},
    {502, CmdMiscSectorsLast, Sectors, MiscEntryCommand, "Misc popup of Sectors"},
    {510, 510, LineDefs, RotateScaleCommand, "Rotate and Scale"},
    {511, 511, LineDefs, MiscEntryCommand, "First Free Tag"},
    {514, 515, LineDefs, MiscEntryCommand, "Join Sectors, Flip"},
    {518, 518, LineDefs, MiscEntryCommand, "Make door from 4 Linedefs"},
    {519, 519, LineDefs, MiscEntryCommand, "Make Stairs from 2 Linedefs"},
    {520, 520, LineDefs, MiscEntryCommand, "Renumber Selected Linedefs"},
    {525, 525, Things, RotateScaleCommand, "Rotate and Scale"},
    {526, 527, Things, MiscEntryCommand, "Misc popup of Things"},
    {530, 530, Vertexes, RotateScaleCommand, "Rotate and Scale"},
    {531, 531, Vertexes, MiscEntryCommand, "First Free Tag"},
    {533, 533, Vertexes, MiscEntryCommand, "Merge Several Vertices into one"},
    {534, 534, Vertexes, MiscEntryCommand, "Add a Linedef and split Sector"},
    {CmdAutoFixSector, CmdAutoFixSector, LineDefs | Sectors, RepairCommand, "Auto Fix Sector"},
    {CmdRaiseByStep, CmdResetStep, AnyMode, nullptr, "object step"},
    {CmdSplitAddVertex, CmdSplitAddVertex, LineDefs, MiscEntryCommand, "Split and Add Vertex"},
    {CmdSplitLineDefSector, CmdSplitLineDefSector, LineDefs, MiscEntryCommand,
     "Split Linedef and Sector"},
    {CmdAlignLineDef, CmdAlignLineDef, LineDefs, AlignLineDefCommand, "Align Linedef"},
    {CmdDeleteVertexJoin, CmdDeleteVertexJoin, Vertexes, MiscEntryCommand,
     "Delete Vertex and join Linedefs"},
    {CmdTextureReport, CmdObjectReport, AnyMode, nullptr, "texture and object reports"},
    // Help, the workbench, lump tools, toolbars, user tools.
    {CmdHelpContents, CmdHelpContents, AnyMode, nullptr, "help"},
    {CmdAbout, CmdAbout, AnyMode, nullptr, "About"},
    {CmdTipsFirst, CmdTipsLast, AnyMode, nullptr, "tips, tutorial"},
    {CmdScreenSaver, CmdScreenSaver, AnyMode, nullptr, "ScreenSaver"},
    {CmdExtraMenuFirst, CmdExtraMenuLast, AnyMode, nullptr, "extra menus"},
    {CmdScriptToolFirst, CmdScriptToolLast, AnyMode, nullptr, "script and text lump tools"},
    {CmdLumpToolFirst, CmdLumpToolLast, AnyMode, nullptr, "lump tools"},
    {CmdToolBarFirst, CmdToolBarLast, AnyMode, nullptr, "toolbars"},
    {CmdUserToolFirst, CmdUserToolLast, AnyMode, nullptr, "user tool slots"},
    {CmdSetBookmark0, CmdSetBookmark9, AnyMode, BookmarkCommand, "Set BookMark"},
    {CmdGotoBookmark0, CmdGotoBookmark9, AnyMode, BookmarkCommand, "Goto BookMark"},
    {CmdBrowserPick, CmdBrowserPick, AnyMode, nullptr, "value picked in a browser"},
    // Commands without a handler, reached by keys: disabled in the menus, their keys only beep.
    {CmdCalculator, CmdCalculator, AnyMode, nullptr, "Calculator"},
    {CmdBookmarkBrowser, CmdBookmarkBrowser, AnyMode, nullptr, "Bookmark browser"},
    {CmdToggleGridColor, CmdToggleGridColor, AnyMode, nullptr, "Toggle grid-colour mark"},
    {CmdToggleRulerKey, CmdToggleRulerKey, AnyMode, nullptr, "Toggle ruler key"},
    {CmdMeasure, CmdCycleDetail, AnyMode, nullptr, "Measure, cursor tracking, detail"},
    {CmdInsertObject, CmdInsertObject, AnyMode, InsertCommand, "Insert"},
    {CmdDeleteObjectShift, CmdDeleteObjectShift, AnyMode, DeleteCommand, "Delete variant"},
    {CmdPaletteView, CmdThingTextureTool, AnyMode, nullptr, "Palette view, Thing/Texture tool"},
    {CmdSplitIntoArc, CmdSplitIntoArc, LineDefs, nullptr, "Split Linedef into an Arc"},
    {CmdSplitAddVertexF, CmdSplitAddVertexF, LineDefs, MiscEntryCommand, "Split and Add Vertex"},
    {CmdSplitSectorH, CmdSplitSectorH, LineDefs, nullptr, "Split Linedef and Sector"},
    {CmdEditMenuPopup, CmdEditMenuPopup, AnyMode, nullptr, "Edit menu popup"},
    {CmdHelpIndex, CmdHelpIndex, AnyMode, nullptr, "Index"},
    {CmdFindChange, CmdFindChange, AnyMode, nullptr, "Find/Change"},
    {CmdKeyboardSummary, CmdKeyboardSummary, AnyMode, nullptr, "Keyboard Summary"},
    {CmdViewPictureFiles, CmdViewCdFiles, AnyMode, nullptr, "file viewers"},
};

// The recent PWAD a number names, or nothing for a number beyond the list's names.
std::optional<std::string> RecentPwadOf(int number)
{
    const std::vector<std::string> names = RecentNames(Shell().Project.RecentPwads);
    const int place = number - CmdRecentPwadFirst;
    if (place < 0 || place >= static_cast<int>(names.size()))
    {
        return std::nullopt;
    }
    return names[static_cast<std::size_t>(place)];
}

// Steps 4 to 6 of RunCommand, while CommandBusy is set.
CommandResult Route(int number, CommandSource source)
{
    if (number >= CmdRecentPwadFirst && number < CmdRecentPwadFirst + int{RecentCount})
    {
        if (const std::optional<std::string> name = RecentPwadOf(number))
        {
            Shell().Commands.OpenPwadName = *name;
            number = CmdOpenPwad;
        }
    }
    const RouteRow* row = FindRoute(number);
    if (row == nullptr)
    {
        platform::TheUi().Beep();
        return CommandResult::Unknown;
    }
    if (row->Modes != AnyMode && (row->Modes & EditMode()) == 0)
    {
        return CommandResult::WrongMode;
    }
    if (row->Handler == nullptr)
    {
        platform::TheUi().Beep();
        return CommandResult::NotAvailable;
    }
    row->Handler(number, source);
    AskForRefresh();
    return CommandResult::Done;
}

} // namespace

void AskForRefresh()
{
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
}

CommandRequests TakeRequests()
{
    CommandRequests taken = Shell().Requests;
    Shell().Requests = CommandRequests{};
    return taken;
}

std::span<const RouteRow> RouteRows()
{
    return RouteTable;
}

const RouteRow* FindRoute(int number)
{
    for (const RouteRow& row : RouteTable)
    {
        if (number >= row.First && number <= row.Last)
        {
            return &row;
        }
    }
    return nullptr;
}

bool IsCommandAvailable(int number)
{
    if (number >= CmdRecentPwadFirst && number < CmdRecentPwadFirst + int{RecentCount})
    {
        number = CmdOpenPwad;
    }
    const RouteRow* row = FindRoute(number);
    return row != nullptr && row->Handler != nullptr;
}

std::uint16_t CurrentLevelNumber()
{
    const std::string name = GetText(Shell().Project.LevelName);
    const std::vector<wad::LevelListEntry>& levels = wad::Wad().Levels;
    for (std::size_t i = 0; i < levels.size(); ++i)
    {
        if (levels[i].Name.Text() == name)
        {
            return static_cast<std::uint16_t>(i);
        }
    }
    return 0;
}

bool IsCommandEnabled(int number)
{
    if (!IsCommandAvailable(number))
    {
        return false;
    }
    if (number == CmdCloseOneFile)
    {
        return AnyPwadListed();
    }
    if (number >= CmdGotoBookmark0 && number <= CmdGotoBookmark9)
    {
        const map::Bookmark& bookmark =
            map::Selected().Bookmarks[static_cast<std::size_t>(number - CmdGotoBookmark0)];
        return bookmark.Mode != 0 && bookmark.Project == 0 &&
               bookmark.Level == CurrentLevelNumber();
    }
    return true;
}

CommandResult RunCommand(int number, CommandSource source)
{
    SessionState& session = Session();
    session.IdleMinutes = 0;
    if (session.CommandBusy && session.AppState != AppEditing)
    {
        platform::TheUi().Beep();
        return CommandResult::Busy;
    }
    // A nested command (allowed in the editing state) gives the flag back as the outer
    // command had it, so the outer one stays guarded; the outermost leaves it clear.
    const bool outer = session.CommandBusy;
    session.CommandBusy = true;
    const CommandResult result = Route(number, source);
    Session().CommandBusy = outer;
    return result;
}

void ModeCommand(int number, CommandSource /*source*/)
{
    switch (number)
    {
    case CmdNextMode:
        ChooseMode(NextModeAfter(EditMode()));
        break;
    case CmdLastMode:
        ChooseMode(ModeBefore(EditMode()));
        break;
    default:
    {
        constexpr int Modes[] = {ModeThings, ModeLineDefs, ModeVertexes, ModeSectors};
        ChooseMode(Modes[number - CmdThingsMode]);
        break;
    }
    }
}

void AutoModeCommand(int /*number*/, CommandSource /*source*/)
{
    map::SelectionState& select = map::Selected();
    select.AutoMode = !select.AutoMode;
    Shell().Requests.Sound = SoundCue::Confirm;
}

void ExitCommand(int /*number*/, CommandSource /*source*/)
{
    // The window runs the exit prompt: only it can close.
    Shell().Requests.QuitRequested = true;
}

namespace
{

// Edit Level and New Level: the unsaved-changes question, the list of levels (the EditLevel
// dialog) and the level chosen read, or made empty in its place. A cancelled list leaves the
// level as it was.
void ChooseAndLoadLevel(bool newLevel)
{
    if (wad::Wad().Levels.empty() || !ContinueWithUnsavedChanges())
    {
        return;
    }
    SessionState& session = Session();
    const bool withoutAsking = session.OpenLevelWithoutAsking;
    session.OpenLevelWithoutAsking = false;
    (void)LoadCurrentLevel(newLevel, false);
    session.OpenLevelWithoutAsking = withoutAsking;
}

} // namespace

void EditLevelCommand(int /*number*/, CommandSource /*source*/)
{
    ChooseAndLoadLevel(false);
}

void NewLevelCommand(int /*number*/, CommandSource /*source*/)
{
    ChooseAndLoadLevel(true);
}

void ResetRecentCommand(int /*number*/, CommandSource /*source*/)
{
    for (auto& name : Shell().Project.RecentPwads)
    {
        std::fill(std::begin(name), std::end(name), '\0');
    }
    Shell().Requests.MenuStateChanged = true;
}

void StartupCommand(int number, CommandSource /*source*/)
{
    // A failed start-up has the window destroyed through the session's hook.
    (void)RunStartupCommand(number);
}

void ChangeModeKeeping(int mode, int object)
{
    if (mode != EditMode())
    {
        map::Selected().PreviousMode = static_cast<std::uint16_t>(EditMode());
        Shell().Chk.EditMode = static_cast<std::int16_t>(mode);
        SwitchMode();
    }
    map::Selected().HighlightedObject = object;
}

} // namespace kelvar::app
