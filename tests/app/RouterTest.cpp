// Tests of the command router: its guards, recent PWADs, mode requirements, requests, and the
// view's and the selection's commands run through it, with the map keys and the wheel.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/MapKeys.h"
#include "app/Menus.h"
#include "app/PaneTexts.h"
#include "app/RecentLists.h"
#include "tests/app/CommandTestKit.h"

namespace kelvar::app
{
namespace
{

using Objects = std::vector<std::int32_t>;

class RouterTest : public CommandFixture
{
};

TEST_F(RouterTest, BusyCommandsBeepOutsideTheEditingStateAndTheFlagAlwaysComesBack)
{
    Edit(TwoRooms());
    Session().IdleMinutes = 7;
    EXPECT_EQ(RunCommand(CmdClearSelection), CommandResult::Done);
    EXPECT_EQ(Session().IdleMinutes, 0);
    EXPECT_FALSE(Session().CommandBusy) << "cleared when the command is done";

    // A drag or a modal tool has the view: a command from the menu only beeps.
    Session().CommandBusy = true;
    Session().AppState = AppModalTool;
    Mark({1});
    EXPECT_EQ(RunCommand(CmdClearSelection), CommandResult::Busy);
    EXPECT_EQ(Ui.Beeps, 1);
    EXPECT_EQ(Marked(), (Objects{1})) << "the command didn't run";
    EXPECT_TRUE(Session().CommandBusy) << "the running command keeps its flag";

    // In the editing state a nested command runs, and the outer one stays guarded.
    Session().AppState = AppEditing;
    EXPECT_EQ(RunCommand(CmdClearSelection), CommandResult::Done);
    EXPECT_TRUE(Marked().empty());
    EXPECT_TRUE(Session().CommandBusy);

    // Every other way out clears the flag too.
    Session().CommandBusy = false;
    EXPECT_EQ(RunCommand(444), CommandResult::Unknown);
    EXPECT_EQ(RunCommand(CmdCopy), CommandResult::NotAvailable);
    EXPECT_EQ(RunCommand(CmdMarkSameThings), CommandResult::WrongMode);
    EXPECT_FALSE(Session().CommandBusy);
    EXPECT_EQ(Ui.Beeps, 3) << "unknown and unbuilt commands beep, a command of another mode not";
}

TEST_F(RouterTest, RecentPwadsGoThroughOpenPwad)
{
    Edit(TwoRooms());
    ASSERT_TRUE(AddRecentPwad(Shell().Project, "/maps/old.wad"));
    ASSERT_TRUE(AddRecentPwad(Shell().Project, "/maps/new.wad"));
    EXPECT_EQ(RunCommand(CmdRecentPwadFirst + 2), CommandResult::Unknown) << "no third name";
    EXPECT_TRUE(IsCommandEnabled(CmdRecentPwadFirst));

    const std::vector<RecentEntry> entries = RecentPwadEntries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].Text, "&1 /maps/new.wad");
    EXPECT_EQ(entries[1].Command, CmdRecentPwadFirst + 1);

    EXPECT_EQ(RunCommand(CmdResetRecentList), CommandResult::Done);
    EXPECT_TRUE(RecentPwadEntries().empty());
    EXPECT_TRUE(TakeRequests().MenuStateChanged);
}

TEST_F(RouterTest, ACommandThatRanAsksForTheMapStatusAndPanes)
{
    Edit(TwoRooms());
    EXPECT_EQ(RunCommand(CmdRedrawMap), CommandResult::Done);
    const CommandRequests requests = TakeRequests();
    EXPECT_TRUE(requests.RedrawMap && requests.RefreshStatus && requests.RefreshInfoPanes);
    EXPECT_EQ(TakeRequests(), CommandRequests{}) << "taken requests are cleared";

    RunCommand(CmdExit);
    EXPECT_TRUE(TakeRequests().QuitRequested) << "the window runs the exit prompt";

    (void)RunCommand(CmdCopy);
    EXPECT_EQ(TakeRequests(), CommandRequests{}) << "a command that didn't run asks nothing";
}

// The grid keys and the grid menu entries share their numbers but not their steps.
TEST_F(RouterTest, GridKeysPassThroughOffWhereTheMenuWraps)
{
    Edit(TwoRooms());
    view::ViewSettings& settings = view::View().Settings;
    settings.GridSize = 512;
    RunCommand(CmdGridIncrease, CommandSource::Key);
    EXPECT_EQ(settings.GridSize, 0);
    RunCommand(CmdGridIncrease, CommandSource::Key);
    EXPECT_EQ(settings.GridSize, 1);
    RunCommand(CmdGridDecrease, CommandSource::Key);
    EXPECT_EQ(settings.GridSize, 0);
    RunCommand(CmdGridDecrease, CommandSource::Key);
    EXPECT_EQ(settings.GridSize, 512);

    RunCommand(CmdGridIncrease, CommandSource::Menu);
    EXPECT_EQ(settings.GridSize, 1) << "the menu wraps from the largest to the smallest";
    RunCommand(CmdGridDecrease, CommandSource::Menu);
    EXPECT_EQ(settings.GridSize, 512);
    RunCommand(CmdGridDecrease, CommandSource::Menu);
    EXPECT_EQ(settings.GridSize, 256);
    EXPECT_EQ(Shell().Chk.GridSize, 256) << "kept for KELVAR.CHK";
    EXPECT_EQ(map::Map().Options.GridSize, 256) << "and for the tools";
    EXPECT_EQ(StatusBarTexts()[view::StatusFieldGrid], "Grid 256");

    RunCommand(CmdGridOff);
    EXPECT_EQ(settings.GridSize, 0);

    Ui.AnswerNumber(24).AnswerNumber(std::nullopt);
    RunCommand(CmdNewGridSize);
    EXPECT_EQ(settings.GridSize, 24);
    RunCommand(CmdNewGridSize);
    EXPECT_EQ(settings.GridSize, 24) << "a cancelled prompt changes nothing";
}

TEST_F(RouterTest, GridTogglesFlipTheirBitsWithTheConfirmSound)
{
    Edit(TwoRooms());
    view::ViewState& view = view::View();
    const int display = view.Options.GridDisplay;
    RunCommand(CmdToggleGridDisplay);
    EXPECT_EQ(view.Options.GridDisplay, display ^ view::GridShown);
    EXPECT_EQ(TakeRequests().Sound, SoundCue::Confirm);
    RunCommand(CmdToggleGrid64);
    EXPECT_EQ(view.Options.GridDisplay, display ^ view::GridShown ^ view::Grid64Shown);
    RunCommand(CmdToggleGridLine);
    EXPECT_TRUE(view.Options.GridLines);
    RunCommand(CmdToggleGridSnap);
    EXPECT_FALSE(view.Settings.GridSnap);
    EXPECT_FALSE(map::Map().Options.GridSnap);
    EXPECT_EQ(StatusBarTexts()[view::StatusFieldSnap], "Snap=OFF");
}

TEST_F(RouterTest, DisplayTogglesAndScrollSpeed)
{
    Edit(TwoRooms());
    view::ViewOptions& options = view::View().Options;
    RunCommand(CmdToggleInvisibleLines);
    EXPECT_TRUE(options.ShowInvisibleLines);
    RunCommand(CmdToggleVertexes);
    EXPECT_TRUE(options.ShowVertexes);
    EXPECT_EQ(Shell().Chk.AlwaysShowVertex, 1);
    RunCommand(CmdToggleRuler);
    RunCommand(CmdToggleRulerSolid);
    RunCommand(CmdToggleRulerShape);
    EXPECT_TRUE(options.RulerOn && options.RulerDashed && options.RulerSquare);

    // Q steps the Thing display through its three values.
    RunCommand(CmdToggleThingDisplay);
    EXPECT_TRUE(options.ThingsInAllModes);
    EXPECT_EQ(options.ThingStyle, 1);
    RunCommand(CmdToggleThingDisplay);
    EXPECT_EQ(options.ThingStyle, 2);
    RunCommand(CmdToggleThingDisplay);
    EXPECT_FALSE(options.ThingsInAllModes);
    EXPECT_EQ(Shell().Commands.ThingDisplay, 0);

    RunCommand(CmdToggleInfoPane);
    EXPECT_TRUE(TakeRequests().LayoutChanged);
    EXPECT_TRUE(InfoPaneTexts().Lines.empty()) << "a hidden pane has nothing to show";
    RunCommand(CmdToggleInfoPane);
    EXPECT_FALSE(InfoPaneTexts().Lines.empty());

    view::View().Settings.ScrollUnit = 49;
    RunCommand(CmdFasterScroll);
    RunCommand(CmdFasterScroll);
    EXPECT_EQ(view::View().Settings.ScrollUnit, 50);
    EXPECT_EQ(StatusBarTexts()[view::StatusFieldSpeed], "Speed 50");
    view::View().Settings.ScrollUnit = 1;
    RunCommand(CmdSlowerScroll);
    EXPECT_EQ(view::View().Settings.ScrollUnit, 1);
}

TEST_F(RouterTest, CenteringFitsCentersAndFollowsThePointer)
{
    Edit(TwoRooms());
    view::ViewState& view = view::View();
    RunCommand(CmdCenterView);
    EXPECT_DOUBLE_EQ(view.Viewport.OriginX, 128.0) << "End fits the level";
    const float fitted = view.Viewport.Scale;

    view::CenterOn(view.Viewport, 1000, 1000);
    RunCommand(CmdCenterMap);
    EXPECT_DOUBLE_EQ(view.Viewport.OriginX, 128.0);
    EXPECT_DOUBLE_EQ(view.Viewport.OriginY, 64.0);
    EXPECT_EQ(view.Viewport.Scale, fitted) << "Home keeps the scale";

    view.Pointer.X = 500;
    view.Pointer.Y = 300;
    const int x = view::ScreenToMapX(view.Viewport, 500);
    TakeRequests();
    RunCommand(CmdCenterAtCursor);
    EXPECT_DOUBLE_EQ(view.Viewport.OriginX, x);
    const CommandRequests requests = TakeRequests();
    EXPECT_TRUE(requests.MovePointer);
    EXPECT_EQ(requests.PointerX, 400);
    EXPECT_EQ(requests.PointerY, 300);
}

TEST_F(RouterTest, ZoomKeysAndTheWheel)
{
    view::ViewState& view = view::View();
    EXPECT_FALSE(HandleMapCharacter('2')) << "no level, no keys";
    Edit(TwoRooms());
    view.Settings.ZoomAtPointer = false;
    EXPECT_TRUE(HandleMapCharacter('2'));
    EXPECT_FLOAT_EQ(view.Viewport.Scale, 0.5f);
    EXPECT_TRUE(HandleMapCharacter('+'));
    EXPECT_FLOAT_EQ(view.Viewport.Scale, 0.55f);
    EXPECT_TRUE(HandleMapCharacter('-'));
    EXPECT_NEAR(view.Viewport.Scale, 0.495, 1e-6);
    EXPECT_EQ(StatusBarTexts()[view::StatusFieldScale], "Scale 0.50");
    EXPECT_TRUE(HandleMapCharacter('z'));
    EXPECT_FLOAT_EQ(view.Viewport.Scale, 8.0f);
    RunCommand(CmdAutoModePassThrough, CommandSource::Key);
    EXPECT_FLOAT_EQ(view.Viewport.Scale, 0.125f) << "the Z key of the key table";
    EXPECT_FALSE(HandleMapCharacter(',')) << "rotation belongs to the drag tools";

    // The wheel zooms; with Ctrl it steps the modes. The option swaps the two.
    Shell().Chk.MouseWheelModeChange = 0;
    EXPECT_EQ(MouseWheel(120, false), WheelAction::ZoomIn);
    EXPECT_EQ(MouseWheel(-120, false), WheelAction::ZoomOut);
    EXPECT_EQ(MouseWheel(120, true), WheelAction::NextMode);
    EXPECT_EQ(MouseWheel(-120, true), WheelAction::LastMode);
    Shell().Chk.MouseWheelModeChange = 1;
    EXPECT_EQ(MouseWheel(-120, false), WheelAction::LastMode);
    EXPECT_EQ(MouseWheel(120, true), WheelAction::ZoomIn);
    EXPECT_EQ(MouseWheel(0, true), WheelAction::None);
    Session().AppState = AppModalTool;
    EXPECT_EQ(MouseWheel(120, false), WheelAction::None);
}

TEST_F(RouterTest, ArrowKeysScrollWhenTheOptionIsOn)
{
    Edit(TwoRooms());
    view::ViewState& view = view::View();
    view::CenterOn(view.Viewport, 128, 64);
    view.Viewport.Scale = 1.0f;
    EXPECT_TRUE(HandleMapKey({KeyCode::Right, KeyMods::Plain}));
    EXPECT_DOUBLE_EQ(view.Viewport.OriginX, 138.0) << "two scroll units at scale 1";
    EXPECT_TRUE(HandleMapKey({KeyCode::Up, KeyMods::Plain}));
    EXPECT_DOUBLE_EQ(view.Viewport.OriginY, 74.0);
    EXPECT_FALSE(HandleMapKey({KeyCode::Right, KeyMods::Shift}));
    Shell().Chk.CursorKeysMoveMap = 0;
    EXPECT_FALSE(HandleMapKey({KeyCode::Left, KeyMods::Plain}));
    EXPECT_DOUBLE_EQ(view.Viewport.OriginX, 138.0);
}

TEST_F(RouterTest, WalkingJumpingAndMarkingThroughTheRouter)
{
    Edit(TwoRooms(), ModeThings);
    map::Selected().HighlightedObject = 2;
    RunCommand(CmdNextObject);
    EXPECT_EQ(Highlighted(), 0) << "past the highest it wraps";
    EXPECT_DOUBLE_EQ(view::View().Viewport.OriginX, 64.0) << "and the view follows";
    RunCommand(CmdPrevObject);
    EXPECT_EQ(Highlighted(), 2);

    Ui.AnswerNumber(1);
    RunCommand(CmdJumpToObject);
    EXPECT_EQ(Highlighted(), 1);
    EXPECT_DOUBLE_EQ(view::View().Viewport.OriginX, 200.0);

    Mark({1});
    RunCommand(CmdMarkSameThings);
    EXPECT_EQ(Marked(), (Objects{2, 1})) << "both Things of type 3004";
    EXPECT_EQ(TakeRequests().Sound, SoundCue::Selection);
    RunCommand(CmdClearSelection);
    EXPECT_TRUE(Marked().empty());
}

TEST_F(RouterTest, JumpToTagsAlternatesModesAndEachModeKeepsItsObject)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[5].Tag = 7;
    level.Sectors[0].Tag = 7;
    Edit(std::move(level), ModeLineDefs);
    map::Selected().HighlightedObject = 5;
    RunCommand(CmdJumpToTags);
    EXPECT_EQ(EditMode(), ModeSectors);
    EXPECT_EQ(Highlighted(), 0);
    EXPECT_EQ(map::Selected().LastHighlight[1], 5) << "LineDef mode remembers its line";
    RunCommand(CmdJumpToTags);
    EXPECT_EQ(EditMode(), ModeLineDefs);
    EXPECT_EQ(Highlighted(), 5);
}

TEST_F(RouterTest, BookmarksComeBackToTheirModeAndObject)
{
    Edit(TwoRooms(), ModeThings);
    map::Selected().HighlightedObject = 1;
    RunCommand(CmdSetBookmark3);
    EXPECT_EQ(TakeRequests().Sound, SoundCue::Tick);
    EXPECT_TRUE(IsCommandEnabled(CmdGotoBookmark3));
    EXPECT_FALSE(IsCommandEnabled(CmdGotoBookmark4));

    RunCommand(CmdSectorsMode);
    view::CenterOn(view::View().Viewport, 5000, 5000);
    TakeRequests();
    RunCommand(CmdGotoBookmark3);
    EXPECT_EQ(EditMode(), ModeThings);
    EXPECT_EQ(Highlighted(), 1);
    const CommandRequests requests = TakeRequests();
    ASSERT_TRUE(requests.MovePointer);
    EXPECT_EQ(view::ScreenToMapX(view::View().Viewport, requests.PointerX), 200)
        << "the pointer goes onto the object";

    RunCommand(CmdGotoBookmark4);
    EXPECT_EQ(Ui.Beeps, 1) << "an unused slot";
    map::Map().Level.Things.resize(1);
    RunCommand(CmdGotoBookmark3);
    EXPECT_EQ(Ui.Beeps, 2) << "its object is gone";
}

TEST_F(RouterTest, EditLevelAsksAboutUnsavedChangesFirst)
{
    Edit(TwoRooms());
    RunCommand(CmdEditLevel);
    EXPECT_TRUE(Ui.Messages.empty()) << "no level list, nothing to ask";

    wad::Wad().Levels.push_back({wad::LumpName::From("MAP01"), 0, 0});
    map::Map().Level.ChangeCount = 3;
    Ui.Answer(0);
    RunCommand(CmdEditLevel);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Text(), " You have unsaved Changes. Continue ?");
    EXPECT_TRUE(Ui.ListCaptions.empty()) << "no goes no further";
    wad::ResetWad();
}

} // namespace
} // namespace kelvar::app
