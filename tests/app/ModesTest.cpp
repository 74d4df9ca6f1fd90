// Tests of the edit modes: the selection carried from mode to mode, repeats of a mode, the
// mode cycle, AutoMode, and the unsaved-changes question.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "sound/SoundState.h"
#include "tests/app/CommandTestKit.h"

namespace kelvar::app
{
namespace
{

using Objects = std::vector<std::int32_t>;

class ModesTest : public CommandFixture
{
};

map::LevelData OneRoom()
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Thing(64, 64, 1);
    return builder.Build();
}

TEST_F(ModesTest, LinesAroundASectorBecomeTheSectorAndFewerBecomeNothing)
{
    Edit(OneRoom());
    Mark({0, 1, 2, 3});
    RunCommand(CmdSectorsMode);
    EXPECT_EQ(EditMode(), ModeSectors);
    EXPECT_EQ(PreviousMode(), ModeLineDefs);
    EXPECT_EQ(Marked(), (Objects{0}));

    RunCommand(CmdLineDefsMode);
    EXPECT_EQ(Marked(), (Objects{3, 2, 1, 0})) << "back to the lines of the Sector";
    map::ObjectListRemove(map::Selected().Selection, 2);
    RunCommand(CmdSectorsMode);
    EXPECT_TRUE(Marked().empty()) << "three of its four lines select no Sector";
}

TEST_F(ModesTest, ALineGoesToVertexesAndComesBack)
{
    Edit(TwoRooms());
    Mark({4});
    RunCommand(CmdVertexesMode);
    EXPECT_EQ(Marked(), (Objects{3, 2})) << "both ends of the shared wall, once each";
    RunCommand(CmdLineDefsMode);
    EXPECT_EQ(Marked(), (Objects{4}));

    // In the other direction only lines with both ends marked come along.
    RunCommand(CmdVertexesMode);
    map::ObjectListRemove(map::Selected().Selection, 3);
    RunCommand(CmdLineDefsMode);
    EXPECT_TRUE(Marked().empty());
}

TEST_F(ModesTest, ThingsNeverCarryASelection)
{
    Edit(TwoRooms(), ModeThings);
    Mark({0, 1});
    RunCommand(CmdLineDefsMode);
    EXPECT_TRUE(Marked().empty());
    Mark({4});
    RunCommand(CmdThingsMode);
    EXPECT_TRUE(Marked().empty());
    Mark({2});
    RunCommand(CmdSectorsMode);
    EXPECT_TRUE(Marked().empty());
}

TEST_F(ModesTest, RepeatingAModeKeepsTheSelection)
{
    Edit(TwoRooms(), ModeThings);
    Mark({0, 2});
    map::Selected().HighlightedObject = 2;
    TakeRequests();
    RunCommand(CmdThingsMode);
    EXPECT_TRUE(view::View().Options.SpriteDisplay) << "T again in Things mode toggles sprites";
    EXPECT_EQ(Marked(), (Objects{2, 0}));
    EXPECT_EQ(Highlighted(), 2);
    EXPECT_FALSE(TakeRequests().MiscMenuChanged) << "the mode didn't change";
    RunCommand(CmdThingsMode);
    EXPECT_FALSE(view::View().Options.SpriteDisplay);

    RunCommand(CmdLineDefsMode);
    Mark({5});
    map::Selected().HighlightedObject = 6;
    RunCommand(CmdLineDefsMode);
    EXPECT_EQ(Marked(), (Objects{5}));
    EXPECT_EQ(Highlighted(), 6) << "the object under the cursor stays";
    EXPECT_FALSE(view::View().Options.SpriteDisplay);
}

TEST_F(ModesTest, AModeChangeAsksForItsPopupAndTurnsAutoModeOff)
{
    Edit(TwoRooms());
    RunCommand(CmdAutoMode);
    EXPECT_TRUE(map::Selected().AutoMode);
    TakeRequests();
    RunCommand(CmdVertexesMode);
    EXPECT_FALSE(map::Selected().AutoMode);
    const CommandRequests requests = TakeRequests();
    EXPECT_TRUE(requests.MiscMenuChanged);
    EXPECT_TRUE(requests.CancelTool);
    EXPECT_EQ(requests.Sound, SoundCue::Mode);

    // Without a level the mode is only stored.
    Session().LevelLoaded = false;
    Mark({1});
    RunCommand(CmdSectorsMode);
    EXPECT_EQ(EditMode(), ModeSectors);
    EXPECT_EQ(Marked(), (Objects{1}));
    EXPECT_FALSE(TakeRequests().MiscMenuChanged);
}

TEST_F(ModesTest, NextAndLastModeCycleThroughTheFour)
{
    Edit(TwoRooms(), ModeThings);
    std::vector<int> seen;
    for (int i = 0; i < 4; ++i)
    {
        RunCommand(CmdNextMode);
        seen.push_back(EditMode());
    }
    EXPECT_EQ(seen, (std::vector<int>{ModeLineDefs, ModeVertexes, ModeSectors, ModeThings}));
    RunCommand(CmdLastMode);
    EXPECT_EQ(EditMode(), ModeSectors);
}

TEST_F(ModesTest, EachModeGetsItsObjectBackOrTheNearestOne)
{
    Edit(TwoRooms());
    map::Selected().HighlightedObject = 4;
    view::ViewState& view = view::View();
    view.Viewport.Scale = 1.0f;
    view::CenterOn(view.Viewport, 0, 0);
    view.Pointer.X = 400 + 200; // map point (200, 64): the second Thing
    view.Pointer.Y = 300 - 64;
    RunCommand(CmdThingsMode);
    EXPECT_EQ(Highlighted(), 1) << "Things mode had none: the nearest to the pointer";
    RunCommand(CmdLineDefsMode);
    EXPECT_EQ(Highlighted(), 4) << "the line LineDef mode had";
}

TEST_F(ModesTest, AutoModeFollowsThePointer)
{
    Edit(TwoRooms());
    view::ViewState& view = view::View();
    view.Viewport.Scale = 1.0f;
    view::CenterOn(view.Viewport, 0, 0);
    EXPECT_FALSE(FollowPointer(400 + 64, 300 - 64)) << "AutoMode is off";
    RunCommand(CmdAutoMode);
    EXPECT_TRUE(FollowPointer(400 + 64, 300 - 64));
    EXPECT_EQ(EditMode(), ModeThings);
    EXPECT_EQ(Highlighted(), 0);
    EXPECT_TRUE(map::Selected().AutoMode) << "following the pointer keeps AutoMode on";
    EXPECT_TRUE(FollowPointer(400 + 128, 300 - 128));
    EXPECT_EQ(EditMode(), ModeVertexes);
    EXPECT_EQ(Highlighted(), 2);

    // Beside the west wall: LineDef mode. Its marks don't become the lines' Vertexes, as a
    // mode command would make them, when the pointer moves on to a Vertex.
    EXPECT_TRUE(FollowPointer(400 + 10, 300 - 40));
    EXPECT_EQ(EditMode(), ModeLineDefs);
    EXPECT_EQ(Highlighted(), 0);
    Mark({0, 1});
    (void)TakeRequests();
    EXPECT_TRUE(FollowPointer(400 + 128, 300 - 128));
    EXPECT_EQ(EditMode(), ModeVertexes);
    EXPECT_EQ(PreviousMode(), ModeLineDefs);
    EXPECT_EQ(Highlighted(), 2);
    EXPECT_TRUE(Marked().empty()) << "a change of mode drops the old mode's selection";
    const CommandRequests requests = TakeRequests();
    EXPECT_TRUE(requests.RefreshStatus);
    EXPECT_TRUE(requests.RedrawMap);

    Mark({2});
    EXPECT_TRUE(FollowPointer(400 + 256, 300 - 128));
    EXPECT_EQ(EditMode(), ModeVertexes);
    EXPECT_EQ(Highlighted(), 4);
    EXPECT_EQ(Marked(), (Objects{2})) << "another Vertex in the same mode keeps the selection";
}

TEST_F(ModesTest, TheUnsavedChangesQuestionOnlyComesWithChanges)
{
    Edit(TwoRooms());
    EXPECT_TRUE(ContinueWithUnsavedChanges());
    EXPECT_TRUE(Ui.Messages.empty());

    map::Map().Level.GeometryChangeCount = 1;
    EXPECT_EQ(MapChanged(), 0);
    EXPECT_EQ(NodesChanged(), 1);
    EXPECT_TRUE(HasUnsavedChanges());
    Ui.Answer(1).Answer(0);
    EXPECT_TRUE(ContinueWithUnsavedChanges());
    EXPECT_EQ(Ui.Last().Text(), " You have unsaved Changes. Continue ?");
    EXPECT_FALSE(ContinueWithUnsavedChanges("Edit Level"));
    EXPECT_EQ(Ui.Last().Text(), " You have unsaved Changes.  Continue with Edit Level?");
    EXPECT_TRUE(Ui.Last().IsQuestion());
}

TEST_F(ModesTest, TheEditorsOwnSoundsFollowEnableSoundSelect)
{
    Shell().Chk.EnableSoundSelect = 0;
    ApplyViewSettings();
    EXPECT_FALSE(sound::Sound().InterfaceSoundsOn);
    Shell().Chk.EnableSoundSelect = 1;
    ApplyViewSettings();
    EXPECT_TRUE(sound::Sound().InterfaceSoundsOn);
}

} // namespace
} // namespace kelvar::app
