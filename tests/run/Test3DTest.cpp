// Tests of 3D Mode Texture Align: the viewer's command line, the rows of edit.out, and the
// command's run with a fake viewer that writes them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/Test3D.h"

#include "game/OptFile.h"
#include "map/ObjectStore.h"
#include "tests/run/TestRunKit.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

namespace kelvar::run
{
namespace
{

// A level of two rooms with a two-sided line between them, and two Things.
// Two rooms side by side with a two-sided LineDef of its own between their corners.
map::LevelData RoomsWithALineBetween()
{
    testkit::LevelBuilder level;
    level.Room(0, 0, 128, 128).Room(256, 0, 128, 128);
    level.Side(0, "-").Side(1, "-");
    level.Line(1, 4, 8, 9); // a line of its own between the rooms' corners, two-sided
    level.Thing(64, 64, 1, 90, 7).Thing(300, 64, 3004, 180, 12);
    return level.Build();
}

TEST(ApplyEditLine, ChangesOnlyWhatDiffers)
{
    map::LevelData level = RoomsWithALineBetween();
    const map::LevelData before = level;

    // Rows that repeat what the level holds change nothing and count nothing.
    for (const char* same : {"THING 1 300 64 180 3004 12\n", "FLAT_CEIL 0 128 160 CEIL3_5\n",
                             "FLAT_FLOOR 1 0 160 FLOOR4_8\n", "LINE 0 0 0 0 - - STARTAN3\n"})
    {
        EXPECT_TRUE(ApplyEditLine(level, same)) << same;
    }
    EXPECT_EQ(level, before);

    EXPECT_TRUE(ApplyEditLine(level, "THING 1 310 64 180 3004 12"));
    EXPECT_EQ(level.Things[1].X, 310);
    EXPECT_EQ(level.ChangeCount, 1);
    EXPECT_EQ(level.GeometryChangeCount, 0); // a Thing leaves the nodes alone

    EXPECT_TRUE(ApplyEditLine(level, "FLAT_CEIL 1 144 200 F_SKY1"));
    EXPECT_EQ(level.Sectors[1].CeilingHeight, 144);
    EXPECT_EQ(level.Sectors[1].Light, 200);
    EXPECT_EQ(level.Sectors[1].CeilingTexture, map::TextureName::From("F_SKY1"));
    EXPECT_EQ(level.Sectors[1].FloorHeight, 0);
    EXPECT_TRUE(ApplyEditLine(level, "FLAT_FLOOR 0 -8 160 NUKAGE1"));
    EXPECT_EQ(level.Sectors[0].FloorHeight, -8);
    EXPECT_EQ(level.Sectors[0].FloorTexture, map::TextureName::From("NUKAGE1"));
    EXPECT_EQ(level.Sectors[0].CeilingTexture, before.Sectors[0].CeilingTexture);
    EXPECT_EQ(level.ChangeCount, 6);
    EXPECT_GT(level.GeometryChangeCount, 0);
}

TEST(ApplyEditLine, LineRowsSetTexturesOffsetsAndPegging)
{
    map::LevelData level = RoomsWithALineBetween();
    ASSERT_TRUE(ApplyEditLine(level, "LINE 8 1 16 -24 BIGDOOR2 STEP1 - Upeg Lpeg"));
    const map::SideDef& back = level.SideDefs[9];
    EXPECT_EQ(back.XOffset, 16);
    EXPECT_EQ(back.YOffset, -24);
    EXPECT_EQ(back.UpperTexture, map::TextureName::From("BIGDOOR2"));
    EXPECT_EQ(back.LowerTexture, map::TextureName::From("STEP1"));
    EXPECT_EQ(back.NormalTexture, map::NoTexture);
    EXPECT_EQ(level.LineDefs[8].Flags & 24, 24);
    EXPECT_EQ(level.SideDefs[8], RoomsWithALineBetween().SideDefs[8]); // the front is untouched

    const std::uint16_t changes = level.ChangeCount;
    ASSERT_TRUE(ApplyEditLine(level, "LINE 8 1 16 -24 BIGDOOR2 STEP1 - Lpeg"));
    EXPECT_EQ(level.LineDefs[8].Flags & 24, 16);
    EXPECT_EQ(level.ChangeCount, changes + 1);
}

TEST(ApplyEditLine, ThingsAreAddedAndDeleted)
{
    map::LevelData level = RoomsWithALineBetween();
    ASSERT_TRUE(ApplyEditLine(level, "THING 9 32 96 45 2001 7 args 1 2 3 4 5"));
    ASSERT_EQ(level.Things.Count(), 3);
    const map::Thing& added = level.Things[2];
    EXPECT_EQ(std::tuple(added.X, added.Y, added.Angle, added.Type, added.Flags),
              std::tuple(32, 96, 45, 2001, 7));
    EXPECT_EQ(added.Args, (std::array<std::uint8_t, 5>{1, 2, 3, 4, 5}));

    ASSERT_TRUE(ApplyEditLine(level, "THING 0 64 64 90 1 7 del"));
    ASSERT_EQ(level.Things.Count(), 2);
    EXPECT_EQ(level.Things[0].Type, 3004);
}

TEST(ApplyEditLine, PassesOverRowsOfOtherKindsAndRowsThatDoNotRead)
{
    map::LevelData level = RoomsWithALineBetween();
    const map::LevelData before = level;
    for (const char* other :
         {"", "\n", "# viewer notes", "THINGS 0 1 2 3 4 5", "THING 0 1 2", "THING x 1 2 3 4 5",
          "THING -1 1 2 3 4 5", "FLAT_CEIL 7 0 0 FLAT1", "FLAT_FLOOR 0 0 0", "LINE 99 0 0 0 - - -",
          "LINE 0 1 0 0 - - -", "LINE 0 2 0 0 - - -", "SECTOR 0 1"})
    {
        EXPECT_FALSE(ApplyEditLine(level, other)) << other;
    }
    EXPECT_EQ(level, before);
}

class Test3DTest : public TestRunFixture
{
protected:
    void SetUp() override
    {
        TestRunFixture::SetUp();
        Viewer = Dir.Path() / "viewer";
        std::filesystem::create_directories(Viewer);
        AddPwad("/maps/a.wad", true);
        map::Map().Level = RoomsWithALineBetween();
        Viewer3DOptions& options = Options().Viewer;
        options.ViewerPath = "/opt/r3d/viewer";
        options.ViewerDirectory = Viewer.string();
        options.Prompt = false;
        options.WaitFor3D = true;
        options.AutoSpeed = true;
        options.Analyze = true;
        options.Caching = true;
        options.NoConsole = true;
        TestHooks& hooks = Options().Hooks;
        hooks.Write3DCopy = [this](const std::filesystem::path& copy, const Viewer3DOptions&)
        {
            Copies.push_back(copy);
            return true;
        };
        hooks.SaveUndoStep = [this] { ++UndoSteps; };
        hooks.Redraw = [this] { ++Redraws; };
    }

    // The fake viewer: writes `rows` to edit.out in its directory.
    void ViewerWrites(const std::string& rows)
    {
        Processes.OnRun = [this, rows](const platform::ChildRequest& request)
        {
            EXPECT_FALSE(std::filesystem::exists(Viewer / "edit.out")); // the old one went
            EXPECT_EQ(request.Directory, Viewer);
            testkit::WriteFile(Viewer / "edit.out", rows);
        };
    }

    std::filesystem::path Viewer;
    std::vector<std::filesystem::path> Copies;
    int UndoSteps = 0;
    int Redraws = 0;
};

TEST_F(Test3DTest, CommandLineTakesItsPartsInOrder)
{
    Viewer3DOptions options;
    options.ViewerPath = "/opt/r3d/viewer";
    options.ViewerDirectory = "/opt/r3d";
    options.ViewerParameters = "-fast";
    options.InvisibleThings = options.ClipToFloor = options.ClipToCeiling = true;
    options.HiResFlats = options.HiResTx = options.HiResTexture = true;
    options.Speed = 300;
    options.Memory = 64;
    options.Skill = 3;
    options.Screen = ViewerScreen::CustomWindow;
    options.Width = 800;
    options.Height = 600;
    options.XPos = 10;
    options.YPos = 20;
    options.UseSpecials = options.NoObjects = options.NoMonsters = options.NoMd2 = true;
    options.DisableWKey = options.NoSprites = options.NoEscape = options.NoInfight = true;
    options.MaxFps = 35;
    options.LoadAllFiles = true;
    AddPwad("/maps/tex.wad", false);
    TestSession session = CurrentTestSession("MAP01");
    session.Game = 3;
    ViewerLaunch launch;
    launch.CursorX = -64;
    launch.CursorY = 1024;
    launch.OptFile = "/cfg/CurrentOpt.OPT";
    launch.Copy = "/opt/r3d/~R3Dedit.WAD";
    launch.Turbo = 120;

    EXPECT_EQ(ViewerCommandLine(options, session, launch),
              "/opt/r3d/viewer -cmd \"warc -64 1024\" -opt \"/cfg/CurrentOpt.OPT\" -help "
              "\"/opt/r3d/R3Dedit.xrf\" -estock -eclipf -eclipc -espeed 300 -eflat -etx "
              "-etexture -eaof -ecof -fast -iwad \"/usr/share/games/doom/freedoom2.wad\" "
              "-maxzone 64M -skill 3 -turbo 120 -window -width 800 -height 600 -xpos 10 -ypos 20 "
              "-typeheretic -especial -noobjects -nomonsters -nomd2 -nowkey -console -nosprites "
              "-noescape -noinfight -maxfps 35 xxxxx \"/maps/a.wad\" \"/maps/tex.wad\" "
              "\"/opt/r3d/~R3Dedit.WAD\"");

    // Play Only and the defaults: no edit keywords, full screen, the copy alone.
    launch.PlayOnly = true;
    EXPECT_EQ(ViewerCommandLine(Viewer3DOptions{}, CurrentTestSession("MAP01"), launch),
              "c:\\R3Kelvar\\bin\\R3Kelvar.EXE -cmd \"warc -64 1024\" -opt "
              "\"/cfg/CurrentOpt.OPT\" -help \"c:\\R3Kelvar\\bin/R3Dedit.xrf\" -iwad "
              "\"/usr/share/games/doom/freedoom2.wad\" -turbo 120 -typedoom -console xxxxx "
              "\"/opt/r3d/~R3Dedit.WAD\"");

    Viewer3DOptions automatic;
    automatic.Screen = ViewerScreen::Automatic;
    launch.Automatic = ScreenRect{5, 6, 700, 500};
    EXPECT_NE(ViewerCommandLine(automatic, session, launch)
                  .find(" -window -width 700 -height 500 -xpos 5 -ypos 6 -typeheretic"),
              std::string::npos);
}

TEST_F(Test3DTest, ViewerChangesComeBackAfterOneUndoStep)
{
    testkit::WriteFile(Viewer / "edit.out", "THING 0 0 0 0 0 0\n"); // from an earlier run
    ViewerWrites("THING 0 64 64 90 1 7\n"                           // as it was
                 "some note of the viewer\n"
                 "FLAT_FLOOR 1 16 160 FLOOR4_8\n"
                 "LINE 8 0 8 0 - - MIDGRATE\n");

    EXPECT_EQ(TestIn3D(100, 50), 1);
    ASSERT_EQ(Processes.Runs.size(), 1u);
    const platform::ChildRequest& request = Processes.Runs[0];
    EXPECT_EQ(request.ShowMode, platform::ShowDefault);
    EXPECT_EQ(request.Flags, platform::ChildWait | platform::ChildPump);
    EXPECT_EQ(request.CommandLine.rfind("/opt/r3d/viewer -cmd \"warc 100 50\" -opt \"" +
                                            (Dir.Path() / "CurrentOpt.OPT").string() + "\"",
                                        0),
              0u)
        << request.CommandLine;
    EXPECT_EQ(Copies, std::vector<std::filesystem::path>{Viewer / "~R3Dedit.WAD"});
    EXPECT_TRUE(std::filesystem::exists(Dir.Path() / game::CurrentOptFileName));

    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.Sectors[1].FloorHeight, 16);
    EXPECT_EQ(level.SideDefs[8].XOffset, 8);
    EXPECT_EQ(level.SideDefs[8].NormalTexture, map::TextureName::From("MIDGRATE"));
    EXPECT_EQ(level.ChangeCount, 3);
    EXPECT_EQ(UndoSteps, 1);
    EXPECT_EQ(Redraws, 1);
    EXPECT_FALSE(std::filesystem::exists(Viewer / "edit.out"));
    EXPECT_EQ(Ui.Progress, (std::vector<std::pair<std::string, std::string>>{
                               {"3D Mode Texture Align",
                                "Place Cursor at Place you want to start Editing in Level\n\n "
                                "Before you press W"}}));
}

TEST_F(Test3DTest, NothingComesBackWithoutEditOutOrWithPlayOnly)
{
    EXPECT_EQ(TestIn3D(0, 0), 1);
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_EQ(map::Map().Level, RoomsWithALineBetween());

    Options().Viewer.Prompt = true;
    Options().Hooks.EditViewerOptions = [](Viewer3DOptions& options)
    {
        options.NoMonsters = true;
        return ViewerPlayOnly;
    };
    ViewerWrites("FLAT_FLOOR 1 16 160 FLOOR4_8\n");
    EXPECT_EQ(TestIn3D(0, 0), 1);
    EXPECT_EQ(UndoSteps, 0);
    EXPECT_EQ(map::Map().Level, RoomsWithALineBetween());
    EXPECT_TRUE(Options().Viewer.NoMonsters); // the dialog's values are kept
    // No edit keyword (" -estock", " -eaof"...): each starts a word, while the temporary
    // folder's random name in the quoted paths may hold "-e" too.
    EXPECT_EQ(Processes.Runs[1].CommandLine.find(" -e"), std::string::npos)
        << Processes.Runs[1].CommandLine;
}

TEST_F(Test3DTest, StopsBeforeTheViewerWhenTheLevelCannotBeCopied)
{
    Options().Viewer.Prompt = true;
    Options().Hooks.EditViewerOptions = [](Viewer3DOptions&) { return ViewerCancel; };
    EXPECT_EQ(TestIn3D(0, 0), -1);

    Options().Viewer.Prompt = false;
    LevelFromIwad();
    EXPECT_EQ(TestIn3D(0, 0), -1);
    wad::Wad().CurrentFile.FileNumber = -1;
    EXPECT_EQ(TestIn3D(0, 0), -1);
    Options().Hooks.Write3DCopy = [](const std::filesystem::path&, const Viewer3DOptions&)
    { return false; };
    wad::Wad().CurrentFile.FileNumber = 1;
    EXPECT_EQ(TestIn3D(0, 0), -1);

    EXPECT_TRUE(Processes.Runs.empty());
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Title, "IWAD level");
    EXPECT_EQ(Ui.Messages[0].Lines, std::vector<std::string>{"!! Level is from IWAD !!"});
    EXPECT_EQ(Ui.Messages[1].Lines, std::vector<std::string>{"!! Please SAVE first  !!"});
}

TEST_F(Test3DTest, ViewerThatDoesNotStartIsReported)
{
    Processes.Exit(platform::ChildDidNotStart);
    EXPECT_EQ(TestIn3D(0, 0), 0);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Title, "Test Error");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (std::vector<std::string>{"Make sure /opt/r3d/viewer", "has been installed",
                                        "and you have modified this dialog",
                                        "to point to the location of R3Dedit"}));
    EXPECT_EQ(UndoSteps, 0);
}

} // namespace
} // namespace kelvar::run
