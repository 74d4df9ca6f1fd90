// Tests of Test Level: the warp, the command buffer, the game's command line and response
// file, the questions, the run and the reload. A run of a real engine is in tests/e2e.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/TestLevel.h"

#include "platform/Fatal.h"
#include "tests/run/TestRunKit.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>
#include <optional>
#include <sys/stat.h>

namespace kelvar::run
{
namespace
{

constexpr const char* Port = "/opt/port/doom"; // absolute: taken as it stands

class TestLevelTest : public TestRunFixture
{
protected:
    void SetUp() override
    {
        TestRunFixture::SetUp();
        Options().GameExe = Port;
        Options().Hooks.ReloadAfterTest = [this] { ++Reloads; };
        Options().Hooks.FileOperation = [this](bool busy) { Busy.push_back(busy); };
    }

    // Runs Test Level for `level` and returns the one command line it started.
    std::string LineOf(const std::string& level)
    {
        EXPECT_EQ(TestLevel(level), 1);
        return Processes.Runs.empty() ? std::string() : Processes.Runs.back().CommandLine;
    }

    int Reloads = 0;
    std::vector<bool> Busy;
};

TEST(WarpOf, ReadsEpisodeAndMapNamesOnly)
{
    EXPECT_EQ(WarpOf("MAP07"), "7");
    EXPECT_EQ(WarpOf("MAP32"), "32");
    EXPECT_EQ(WarpOf("map01"), "1");
    EXPECT_EQ(WarpOf("E2M3"), "2 3");
    for (const char* other : {"START", "E1M10", "MAP7", "MAP007", "", "MAP07XYZW"})
    {
        EXPECT_EQ(WarpOf(other), "") << other;
    }
}

TEST_F(TestLevelTest, CommandBufferRefusesAPieceThatWouldFillIt)
{
    std::string buffer(2000, 'a');
    EXPECT_TRUE(AppendCommand(buffer, std::string(46, 'b')));
    EXPECT_EQ(buffer.size(), 2046u);
    EXPECT_FALSE(AppendCommand(buffer, "c"));
    EXPECT_EQ(buffer.size(), 2046u);

    std::string empty;
    EXPECT_FALSE(AppendCommand(empty, std::string(2047, 'x')));
    EXPECT_TRUE(empty.empty());
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Lines, std::vector<std::string>{"Command Buffer Size exceeded!"});
}

TEST_F(TestLevelTest, PlainLineHasExeWarpFilesOptionsAndExtrasInOrder)
{
    AddPwad("/maps/my level.wad", true);
    AddPwad("/maps/textures.wad", false);
    TestOptions& options = Options();
    options.LoadAllFiles = true;
    options.QuoteFileNames = true;
    options.Skill = 3;
    options.Turbo = 150;
    for (bool* flag :
         {&options.DevParm, &options.NoMonsters, &options.NoMusic, &options.NoSound, &options.NoSfx,
          &options.FastMonsters, &options.Deathmatch, &options.AltDeath, &options.Respawn})
    {
        *flag = true;
    }
    options.ExtraParameters = "-nodraw";

    EXPECT_EQ(LineOf("MAP07"),
              "/opt/port/doom -warp 7 -file \"/maps/my level.wad\" \"/maps/textures.wad\" "
              "-skill 3 -turbo 150 -devparm -nomonsters -nomusic -nosound -nosfx -fast "
              "-deathmatch -altdeath -respawn -nodraw");
    const platform::ChildRequest& request = Processes.Runs[0];
    EXPECT_EQ(request.Directory, "/usr/share/games/doom"); // no game directory: the IWAD's
    EXPECT_EQ(request.ShowMode, platform::ShowDefault);
    EXPECT_EQ(request.Flags, 0);
    EXPECT_EQ(Reloads, 1);
    EXPECT_EQ(Busy, (std::vector<bool>{true, false}));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TestLevelTest, LevelOfTheIwadHasNoFileOfItsOwn)
{
    LevelFromIwad();
    AddPwad("/maps/textures.wad", false);
    EXPECT_EQ(LineOf("E2M3"), "/opt/port/doom -warp 2 3 -skill 4");

    Options().LoadAllFiles = true;
    EXPECT_EQ(LineOf("E2M3"), "/opt/port/doom -warp 2 3 -file /maps/textures.wad -skill 4");
}

TEST_F(TestLevelTest, NonstandardNameWarpsByNameAndSaysSo)
{
    AddPwad("/maps/a.wad", true);
    EXPECT_EQ(LineOf("START"), "/opt/port/doom +map START -file /maps/a.wad -skill 4");
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines[0],
              "START is a nonstandard level name\n\nVerify Custom Warp setting for your Port");

    // A custom warp takes the name, and then there is nothing to warn about.
    Ui.Clear();
    Options().WarpText = " -map ";
    EXPECT_EQ(LineOf("START"), "/opt/port/doom -map START -file /maps/a.wad -skill 4");
    EXPECT_EQ(LineOf("MAP02"), "/opt/port/doom -map 2 -file /maps/a.wad -skill 4");
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TestLevelTest, ColonInExtraParametersPutsTheIwadAheadInEveryProject)
{
    // Linux game programs pick an IWAD of their own when given none, so vanilla projects name
    // theirs too.
    TestSession session;
    session.IwadPath = "/usr/share/games/doom/freedoom1.wad";
    EXPECT_EQ(CompleteExtraParameters(":-nomonsters", session),
              " -iwad /usr/share/games/doom/freedoom1.wad -nomonsters");
    EXPECT_EQ(CompleteExtraParameters("-nomonsters", session), "-nomonsters");
    EXPECT_EQ(CompleteExtraParameters("-x :", session), "-x :");
    session.BoomTypes = true;
    EXPECT_EQ(CompleteExtraParameters(":-maxzone 50M", session),
              " -iwad /usr/share/games/doom/freedoom1.wad -maxzone 50M");

    AddPwad("/maps/a.wad", true);
    Options().ExtraParameters = ":";
    EXPECT_EQ(LineOf("MAP01"), "/opt/port/doom -warp 1 -file /maps/a.wad -skill 4  -iwad "
                               "/usr/share/games/doom/freedoom2.wad");
    EXPECT_EQ(Options().ExtraParameters, ":"); // the stored form stays
}

TEST_F(TestLevelTest, UnsavedChangesAskFirstAndNoStops)
{
    AddPwad("/maps/a.wad", true);
    map::Map().Level.ChangeCount = 1;
    Ui.Answer(0);
    EXPECT_EQ(TestLevel("MAP01"), -1);
    EXPECT_TRUE(Processes.Runs.empty());
    EXPECT_EQ(Reloads, 0);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines[0], "!! Warning !! Save this LEVEL first !!\n\n      You will "
                                       "LOSE ALL CHANGES\n\n             Continue?");
    EXPECT_EQ(Busy, (std::vector<bool>{true, false}));

    map::Map().Level.ChangeCount = 0;
    map::Map().Level.GeometryChangeCount = 1;
    Ui.Answer(1);
    EXPECT_EQ(TestLevel("MAP01"), 1);
    EXPECT_EQ(Processes.Runs.size(), 1u);
}

TEST_F(TestLevelTest, DialogShowsCompletedValuesAndKeepsTheStoredForms)
{
    // A bare program name is found on PATH.
    const std::filesystem::path bin = Dir.Path() / "bin";
    std::filesystem::create_directories(bin);
    testkit::WriteFile(bin / "kelvar-test-game", "#!/bin/sh\n");
    ::chmod((bin / "kelvar-test-game").c_str(), 0755);
    const std::string oldPath = std::getenv("PATH") != nullptr ? std::getenv("PATH") : "";
    ::setenv("PATH", (bin.string() + ":" + oldPath).c_str(), 1);

    AddPwad("/maps/a.wad", true);
    wad::Wad().Options.GlNodes = true;
    TestOptions& options = Options();
    options.GameExe = "kelvar-test-game";
    options.ExtraParameters = ":";
    std::vector<std::string> seen;
    bool answer = false;
    options.Hooks.EditTestOptions = [&](TestOptions& shown, const std::string& info)
    {
        seen = {info, shown.GameExe, shown.ExtraParameters};
        shown.Skill = 2;
        shown.QuoteFileNames = true;
        return answer;
    };
    EXPECT_EQ(TestLevel("MAP01"), -1);
    EXPECT_TRUE(Processes.Runs.empty());
    EXPECT_EQ(options.Skill, 4); // Cancel stores nothing
    const std::string game = (bin / "kelvar-test-game").string();
    EXPECT_EQ(seen, (std::vector<std::string>{"a.wad level - MAP01", game,
                                              " -iwad /usr/share/games/doom/freedoom2.wad "}));

    answer = true;
    EXPECT_EQ(LineOf("MAP01"), game + " -warp 1 -file \"/maps/a.wad\" -skill 2  -iwad " +
                                   "/usr/share/games/doom/freedoom2.wad");
    ::setenv("PATH", oldPath.c_str(), 1);
    EXPECT_EQ(options.Skill, 2);
    EXPECT_TRUE(options.QuoteFileNames);
    EXPECT_EQ(options.GameExe, "kelvar-test-game");
    EXPECT_EQ(options.ExtraParameters, ":");
    EXPECT_TRUE(static_cast<bool>(options.Hooks.EditTestOptions));
}

TEST_F(TestLevelTest, ResponseFileHoldsOnePieceALine)
{
    const std::filesystem::path game = Dir.Path() / "game";
    std::filesystem::create_directories(game);
    AddPwad("/maps/a.wad", true);
    AddPwad("/maps/b.wad", false);
    TestOptions& options = Options();
    options.ResponseFile = true;
    options.QuoteResponse = true;
    options.LoadAllFiles = true;
    options.NoMonsters = true;
    options.FastMonsters = true;
    options.WaitForGame = true;
    options.GameDirectory = game.string();
    options.ExtraParameters = "-nodraw";

    const std::string response = (game / "Kelvar.RSP").string();
    EXPECT_EQ(LineOf("MAP01"), "/opt/port/doom @" + response);
    EXPECT_EQ(testkit::ReadFile(response), " -warp 1\n -file \"/maps/a.wad\"\n\"/maps/b.wad\"\n"
                                           "-skill 4\n-nomonsters\n-fast\n-nodraw\n");
    EXPECT_EQ(Processes.Runs[0].Directory, game);
    EXPECT_EQ(Processes.Runs[0].Flags, platform::ChildWait | platform::ChildPump);

    // From the IWAD, the first further PWAD brings the -file; a game folder that can't be
    // written sends the file to the program's directory.
    LevelFromIwad();
    options.QuoteResponse = false;
    options.GameDirectory = (Dir.Path() / "missing").string();
    const std::string fallback = (Dir.Path() / "Kelvar.RSP").string();
    EXPECT_EQ(LineOf("MAP01"), "/opt/port/doom @" + fallback);
    EXPECT_EQ(testkit::ReadFile(fallback),
              " -warp 1\n -file /maps/a.wad\n/maps/b.wad\n-skill 4\n-nomonsters\n-fast\n"
              "-nodraw\n");
}

TEST_F(TestLevelTest, ResponseFileThatCannotBeCreatedIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    AddPwad("/maps/a.wad", true);
    Options().ResponseFile = true;
    Options().GameDirectory = (Dir.Path() / "missing").string();
    wad::Wad().ProgramDir = Dir.Path() / "also-missing";
    EXPECT_EXIT((void)TestLevel("MAP01"), ::testing::ExitedWithCode(platform::FatalExitCode),
                "Unable to create .*also-missing/Kelvar.RSP");
}

TEST_F(TestLevelTest, GameThatDoesNotStartIsReportedAndTheLevelReloaded)
{
    AddPwad("/maps/a.wad", true);
    Processes.Exit(platform::ChildDidNotStart);
    Processes.OnRun = [](const platform::ChildRequest&) { wad::Wad().Game.Format = 4; };
    bool readOnlyDuringReload = false;
    Options().Hooks.ReloadAfterTest = [&]
    {
        ++Reloads;
        readOnlyDuringReload = wad::Wad().ReadOnlyOpen;
    };

    EXPECT_EQ(TestLevel("MAP01"), 0);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Title, "Test Error");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (std::vector<std::string>{"Make sure game /opt/port/doom", "has been installed",
                                        "and you have modified this dialog",
                                        "to point to the game location"}));
    EXPECT_EQ(Reloads, 1);
    EXPECT_TRUE(readOnlyDuringReload);
    EXPECT_FALSE(wad::Wad().ReadOnlyOpen);
    EXPECT_EQ(wad::Wad().Game.Format, 2);
    EXPECT_EQ(wad::Wad().Files[1].State, 'C'); // the level's stream was let go for the game
}

TEST(CompleteGameExe, FindsBareNamesAndTakesRelativePathsFromTheIwad)
{
    const std::filesystem::path iwad = "/usr/share/games/doom/freedoom2.wad";
    EXPECT_EQ(CompleteGameExe("/opt/doom", iwad), "/opt/doom");
    EXPECT_EQ(CompleteGameExe("bin/doom", iwad), "/usr/share/games/doom/bin/doom");
    EXPECT_EQ(CompleteGameExe("no-such-game-anywhere", iwad), "no-such-game-anywhere");
    EXPECT_EQ(CompleteGameExe("wine DOOM2.EXE", iwad), "wine DOOM2.EXE");
    EXPECT_EQ(std::filesystem::path(CompleteGameExe("sh", iwad)).filename(), "sh");
    EXPECT_TRUE(std::filesystem::path(CompleteGameExe("sh", iwad)).is_absolute());
}

TEST(TestGameCode, MarksDoom95AndChexBelowHeretic)
{
    EXPECT_EQ(TestGameCode(2, "C:\\DOOM/doom95.exe", "/w/doom2.wad"), GameCodeDoom95);
    EXPECT_EQ(TestGameCode(1, "DOOM95.EXE", "/w/Chex.wad"), GameCodeChex);
    EXPECT_EQ(TestGameCode(3, "DOOM95.EXE", "/w/heretic.wad"), GameCodeNone);
    EXPECT_EQ(TestGameCode(2, "chocolate-doom", "/w/chex.wad"), GameCodeNone);
}

TEST_F(TestLevelTest, Doom95TakesItsOptionsFromItsLoader)
{
    AddPwad("/maps/a.wad", true);
    Options().GameExe = "/dos/DOOM95.EXE";
    EXPECT_EQ(LineOf("MAP01"), "/dos/DOOM95.EXE");
    EXPECT_EQ(Ui.StatusTexts, std::vector<std::string>{"** DOOM95 Options set in Loader **"});
}

} // namespace
} // namespace kelvar::run
