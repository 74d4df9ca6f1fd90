// Tests of the session: command line, a running copy, first and later starts, the level to
// edit, the minute timer, the exit prompt and the shutdown.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"

#include "app/ControlFiles.h"
#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "platform/test/SteppedClock.h"
#include "tests/app/StatusTestKit.h"
#include "tests/testkit/LevelBuilder.h"
#include "view/ViewState.h"

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

using testkit::FreedoomWad;
using testkit::LevelBuilder;
using testkit::WadBuilder;

class SessionTest : public StatusFixture
{
protected:
    void SetUp() override
    {
        StatusFixture::SetUp();
        ResetSession();
        map::ResetMap();
        view::ResetView();
        game::ResetGame();
    }

    void TearDown() override
    {
        ResetSession();
        StatusFixture::TearDown();
    }

    /// Process start and window creation in a program directory of its own, as the only
    /// running copy.
    int Start(std::string_view commandLine = {})
    {
        ProcessStart(ParseCommandLine(commandLine), Dir.Path() / "");
        EXPECT_TRUE(CheckSecondCopy());
        EXPECT_FALSE(Session().SecondCopy);
        return CreateSession(nullptr);
    }

    /// A first start through to the first drawn map: project DOOM2, the IWAD confirmed, the
    /// first level picked from the list.
    void FirstStartToMap()
    {
        ASSERT_EQ(Start(), CommandFirstStartup);
        Ui.AnswerFile(Dir.Path() / "DOOM2.PRJ").Answer(1).AnswerList(0);
        ASSERT_TRUE(RunStartupCommand(CommandFirstStartup));
    }

    /// The end of a run, as the window's destruction does it.
    void EndRun()
    {
        ShutdownOnce(10, 20, 810, 620);
        ForgetRun();
    }

    /// The end of a run whose window was never made: nothing is written.
    void ForgetRun()
    {
        ResetSession();
        ResetShell();
        map::ResetMap();
        wad::ResetWad();
    }

    ChkRecord ChkOnDisk()
    {
        ChkRecord chk{};
        EXPECT_EQ(LoadChk(chk, false, Dir.Path()), StatusLoaded);
        return chk;
    }
};

TEST(CommandLineTest, NoFilesSwitchInEitherCaseKeepsTheText)
{
    for (const char* text : {"-N", "-n", "-Nanything"})
    {
        const CommandLine line = ParseCommandLine(text);
        EXPECT_TRUE(line.SkipFiles) << text;
        EXPECT_EQ(line.StartFile, text);
    }
}

TEST(CommandLineTest, QuotedNameOpensThatFileAndUnquotedLosesItsEnds)
{
    EXPECT_EQ(ParseCommandLine("\"/maps/my level.wad\"").StartFile, "/maps/my level.wad");
    EXPECT_FALSE(ParseCommandLine("\"/maps/a.wad\"").SkipFiles);
    EXPECT_EQ(ParseCommandLine("/maps/a.wad").StartFile, "maps/a.wa");
    EXPECT_EQ(ParseCommandLine("x").StartFile, "");
    EXPECT_EQ(ParseCommandLine("").StartFile, "");
}

TEST(CommandLineTest, LinuxArgumentsArePutBetweenQuotesAsFullNames)
{
    const char* quoted[] = {"kelvar", "/tmp/level.wad"};
    EXPECT_EQ(CommandLineText(2, quoted), "\"/tmp/level.wad\"");
    EXPECT_EQ(ParseCommandLine(CommandLineText(2, quoted)).StartFile, "/tmp/level.wad");

    const char* relative[] = {"kelvar", "level.wad"};
    const std::string text = CommandLineText(2, relative);
    EXPECT_EQ(ParseCommandLine(text).StartFile,
              (std::filesystem::current_path() / "level.wad").string());

    const char* skip[] = {"kelvar", "-n"};
    EXPECT_EQ(CommandLineText(2, skip), "-n");
    const char* none[] = {"kelvar"};
    EXPECT_EQ(CommandLineText(1, none), "");
}

TEST(PlaceWindowTest, StoredRectangleIsCheckedAgainstTheScreen)
{
    const WindowPlacement unset = PlaceWindow(-100, -100, -100, -100, 1920, 1080);
    EXPECT_TRUE(unset.Maximised);
    EXPECT_EQ(unset.Right, 1920);
    EXPECT_EQ(unset.Bottom, 1080);

    const WindowPlacement fits = PlaceWindow(10, 20, 810, 620, 1920, 1080);
    EXPECT_FALSE(fits.Maximised);
    EXPECT_EQ(fits.Top, 20);

    // Too low: moved up by the excess and clipped; too wide: clipped.
    const WindowPlacement low = PlaceWindow(100, 500, 2500, 1200, 1920, 1080);
    EXPECT_EQ(low.Top, 380);
    EXPECT_EQ(low.Bottom, 1080);
    EXPECT_EQ(low.Right, 1920);
}

TEST_F(SessionTest, FirstStartBuildsTheControlFilesAndOpensTheChosenLevel)
{
    FirstStartToMap();

    EXPECT_TRUE(Session().FirstTime);
    for (const char* file : {"KELVAR.CHK", "DOOM2.PRJ", "DOOM2.TCF", "DOOM2.DFG", "KELVAR.LOK",
                             "DOOM2.OPT", "BOOM.OPT"})
    {
        EXPECT_TRUE(std::filesystem::exists(Dir.Path() / file)) << file;
    }
    EXPECT_TRUE(Ui.Saw("After you have choosen your Project\n\\nPress F5 to set editing "
                       "properties\n\nUse R3Kelvar.prj for 3D levels"));
    EXPECT_TRUE(Ui.Saw("Press the PAUSE key to define ToolBar Display Properties\n\nPress the "
                       "Shift+SCROLL key to Redefine ToolBars\n\nPress F5 to set various Eding "
                       "Options\n\nUse 3D option (top right) when creating 3D levels"));
    EXPECT_EQ(ChkOnDisk().SessionWord, SessionRunning);

    EXPECT_EQ(Session().AppState, AppEditing);
    EXPECT_TRUE(Session().LevelLoaded);
    EXPECT_EQ(wad::Wad().Game.Game, 2);
    EXPECT_GT(map::Map().Level.LineDefs.Count(), 100);
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP01");
    EXPECT_FALSE(game::Game().Things.empty());

    // An unset view is centred on the level.
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(view::View().Viewport.OriginX, (level.MinX + level.MaxX) / 2);
}

TEST_F(SessionTest, DefaultOptFilesNeverOverwriteTheUsersOwn)
{
    testkit::WriteFile(Dir.Path() / "BOOM.OPT", "[THINGS]\n3004 My trooper\n");
    EXPECT_EQ(InstallDefaultOptFiles(Dir.Path()), static_cast<int>(DefaultOptFiles().size()) - 1);
    EXPECT_EQ(Bytes("BOOM.OPT"), "[THINGS]\n3004 My trooper\n");
    EXPECT_EQ(InstallDefaultOptFiles(Dir.Path()), 0);
}

TEST_F(SessionTest, LaterStartGoesStraightToTheProjectsLevelAndView)
{
    FirstStartToMap();
    view::CenterOn(view::View().Viewport, 1234.0, -567.0);
    EndRun();
    EXPECT_EQ(ChkOnDisk().SessionWord, SessionClean);

    ASSERT_EQ(Start(), CommandStartup);
    EXPECT_FALSE(Session().FirstTime);
    Ui.Answer(0); // the AutoStart reminder
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_EQ(Ui.Last().Title, " Info - AutoStart Reminder");
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP01");
    EXPECT_EQ(view::View().Viewport.OriginX, 1234.0);
    EXPECT_EQ(view::View().Viewport.OriginY, -567.0);
}

TEST_F(SessionTest, TheReminderAnsweredYesStaysAway)
{
    FirstStartToMap();
    EndRun();
    ASSERT_EQ(Start(), CommandStartup);
    Ui.Answer(1);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EndRun();

    ASSERT_EQ(Start(), CommandStartup);
    Ui.Clear();
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_TRUE(Ui.Titles().empty());
}

TEST_F(SessionTest, DeletedChkLeadsToAFirstStart)
{
    FirstStartToMap();
    EndRun();
    std::filesystem::remove(Dir.Path() / "KELVAR.CHK");
    EXPECT_EQ(Start(), CommandFirstStartup);
    EXPECT_TRUE(Session().FirstTime);
}

TEST_F(SessionTest, ProjectOfAPriorVersionAsksToRebuildEverything)
{
    ASSERT_EQ(Start(), CommandFirstStartup);
    EndRun();
    std::string project = Bytes("DOOM2.PRJ");
    project[4] = 0x01; // another version
    testkit::WriteFile(Dir.Path() / "DOOM2.PRJ", project);

    Ui.Answer(0);
    EXPECT_EQ(Start(), 0);
    EXPECT_TRUE(Ui.Saw("The Project File is for a prior version\n\nIf you want we can try to "
                       "re-create ALL control files\nClick YES to try or No to exit out.\n\nUse "
                       "Explorer to Delete the Kelvar.CHK file if it gets stuck"));
    // A window that was never made has no shutdown: the old file stays for the user.
    EXPECT_EQ(Bytes("DOOM2.PRJ"), project);
    ForgetRun();

    Ui.Answer(1);
    EXPECT_EQ(Start(), CommandStartup);
    ProjectRecord rebuilt{};
    EXPECT_EQ(LoadProject(rebuilt, false, "DOOM2.PRJ", Dir.Path()), StatusLoaded);
}

TEST_F(SessionTest, SecondCopyCancelledEndsStartUpAndLeavesTheFirstCopysRecord)
{
    FirstStartToMap(); // the first copy, still running
    const std::string firstChk = Bytes("KELVAR.CHK");

    SessionState first = std::move(Session());
    Session() = SessionState{};
    ShellState saved = Shell();

    ProcessStart({}, Dir.Path() / "");
    Ui.Answer(0);
    EXPECT_FALSE(CheckSecondCopy());
    EXPECT_EQ(Ui.Last().Title, "Kelvar -            !! WARNING !!");
    EXPECT_EQ(Ui.Last().ButtonTexts, (std::vector<std::string>{"&OK Continue", "&Cancel"}));
    EXPECT_EQ(Ui.Last().Lines.back(), "Using the ClipBoard is OK");
    EXPECT_EQ(Shell().Chk.SessionWord, SessionCancelled);
    ShutdownOnce(0, 0, 100, 100);
    EXPECT_EQ(Bytes("KELVAR.CHK"), firstChk);

    Session() = std::move(first);
    Shell() = saved;
}

TEST_F(SessionTest, SecondCopyContinuedOpensNothingAndWritesNothingAtExit)
{
    FirstStartToMap();
    const std::string firstChk = Bytes("KELVAR.CHK");
    SessionState first = std::move(Session());
    Session() = SessionState{};

    ProcessStart({}, Dir.Path() / "");
    Ui.Answer(1);
    EXPECT_TRUE(CheckSecondCopy());
    EXPECT_TRUE(Session().SecondCopy);
    ShutdownOnce(0, 0, 100, 100);
    EXPECT_EQ(Bytes("KELVAR.CHK"), firstChk);
    Session() = std::move(first);
}

TEST_F(SessionTest, CommandLinePwadGivesItsFirstLevelUnlessItHasNone)
{
    FirstStartToMap();
    EndRun();

    WadBuilder withLevel;
    LevelBuilder().Room(0, 0, 256, 256).Thing(128, 128, 1).WriteTo(withLevel, "MAP05");
    const std::string pwad = withLevel.Write(Dir.Path() / "mine.wad");
    ASSERT_EQ(Start("\"" + pwad + "\""), CommandStartup);
    Ui.Answer(0);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP05");
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 4);
    EXPECT_EQ(GetText(Shell().Project.RecentPwads[0]), pwad);
    EndRun();

    const std::string empty = WadBuilder().Lump("DEMO1", "abc").Write(Dir.Path() / "no.wad");
    ASSERT_EQ(Start("\"" + empty + "\""), CommandStartup);
    Ui.Answer(0);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP05");
}

TEST_F(SessionTest, ProjectFilesReopenAtStartUnlessTheNoFilesSwitchIsGiven)
{
    FirstStartToMap();
    WadBuilder builder;
    const std::string pwad =
        LevelBuilder().Room(0, 0, 64, 64).WriteTo(builder, "MAP01").Write(Dir.Path() / "p.wad");
    // As Open PWAD leaves the table, a name twice; the exit keeps it in the project.
    wad::Wad().OpenFiles[0] = pwad;
    wad::Wad().OpenFiles[1] = pwad;
    EndRun();

    ASSERT_EQ(Start(), CommandStartup);
    Ui.Answer(0);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 4) << "the PWAD's MAP01";
    EXPECT_EQ(wad::Wad().OpenFiles[0], pwad);
    EXPECT_TRUE(wad::Wad().OpenFiles[1].empty());
    EndRun();

    ASSERT_EQ(Start("-n"), CommandStartup);
    Ui.Answer(0);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    EXPECT_TRUE(wad::Wad().OpenFiles[0].empty());
    EXPECT_GT(map::Map().Level.LineDefs.Count(), 4) << "Freedoom's MAP01";
}

TEST_F(SessionTest, AutoSaveWaitsForItsPeriodAChangeAndNoDragOrDialog)
{
    FirstStartToMap();
    EndRun();
    WadBuilder builder;
    LevelBuilder().Room(0, 0, 256, 256).WriteTo(builder, "MAP03");
    const std::string pwad = builder.Write(Dir.Path() / "work.wad");
    ASSERT_EQ(Start("\"" + pwad + "\""), CommandStartup);
    Ui.Answer(0);
    ASSERT_TRUE(RunStartupCommand(CommandStartup));
    ASSERT_GT(wad::Wad().CurrentFile.FileNumber, 0) << "the level comes from the PWAD";

    std::vector<bool> saves;
    Session().Hooks.QuickSaveBackup = [&saves](bool onExit)
    {
        saves.push_back(onExit);
        return true;
    };
    Shell().Chk.AutoSavePeriod = 5;
    map::LevelData& level = map::Map().Level;
    level.ChangeCount = 1;
    for (int minute = 1; minute <= 5; ++minute)
    {
        TimerTick();
    }
    EXPECT_TRUE(saves.empty()) << "five minutes don't exceed a period of five";
    Session().InDrag = true;
    TimerTick();
    EXPECT_TRUE(saves.empty()) << "never during a drag";
    Session().InDrag = false;
    Session().CommandBusy = true;
    TimerTick();
    EXPECT_TRUE(saves.empty()) << "never while a command (a dialog) runs";
    Session().CommandBusy = false;
    TimerTick();
    EXPECT_EQ(saves, std::vector<bool>{false});
    EXPECT_EQ(Session().MinutesSinceSave, 0);

    for (int minute = 1; minute <= 7; ++minute)
    {
        TimerTick();
    }
    EXPECT_EQ(saves.size(), 1u) << "not twice without a change in between";
    level.ChangeCount = 2;
    TimerTick();
    EXPECT_EQ(saves.size(), 2u);
}

TEST_F(SessionTest, NoAutoSaveOfTheIwadsOwnLevel)
{
    FirstStartToMap();
    int saves = 0;
    Session().Hooks.QuickSaveBackup = [&saves](bool)
    {
        ++saves;
        return true;
    };
    Shell().Chk.AutoSavePeriod = 5;
    map::Map().Level.ChangeCount = 3;
    for (int minute = 1; minute <= 10; ++minute)
    {
        TimerTick();
    }
    EXPECT_EQ(saves, 0);
}

TEST_F(SessionTest, ExitPromptAsksOnlyAboutChangesAndSavesOnYes)
{
    FirstStartToMap();
    Ui.Clear();
    EXPECT_EQ(ExitPrompt(), ExitAnswer::Destroy);
    EXPECT_TRUE(Ui.Titles().empty());

    map::Map().Level.GeometryChangeCount = 1; // nodes changed only: still asks
    Ui.Answer(2);
    EXPECT_EQ(ExitPrompt(), ExitAnswer::Stay);
    EXPECT_EQ(Ui.Last().Text(), "File has been modified. Save Changes?");
    EXPECT_EQ(Ui.Last().Buttons, platform::MessageButtons::YesNoCancel);

    Ui.Answer(1);
    EXPECT_EQ(ExitPrompt(), ExitAnswer::Stay) << "no save pipeline: nothing is lost";

    std::vector<bool> saves;
    Session().Hooks.QuickSaveBackup = [&saves](bool onExit)
    {
        saves.push_back(onExit);
        return true;
    };
    Ui.Answer(1);
    EXPECT_EQ(ExitPrompt(), ExitAnswer::Destroy);
    EXPECT_EQ(saves, std::vector<bool>{true});
    Ui.Answer(0);
    EXPECT_EQ(ExitPrompt(), ExitAnswer::Destroy);
    EXPECT_EQ(saves.size(), 1u);
}

TEST_F(SessionTest, ShutdownWritesTheSessionOnceOnly)
{
    FirstStartToMap();
    ShutdownOnce(5, 6, 705, 506);
    const ChkRecord chk = ChkOnDisk();
    EXPECT_EQ(chk.SessionWord, SessionClean);
    EXPECT_EQ(chk.WindowRect, (StatusRect{5, 6, 705, 506}));
    ProjectRecord project{};
    ASSERT_EQ(LoadProject(project, false, "DOOM2.PRJ", Dir.Path()), StatusLoaded);
    EXPECT_EQ(project.ProjectMarker, EndMark) << "the project counts as used now";

    std::filesystem::remove(Dir.Path() / "KELVAR.CHK");
    ShutdownOnce(0, 0, 1, 1);
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "KELVAR.CHK"));
}

} // namespace
} // namespace kelvar::app
