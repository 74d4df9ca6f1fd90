// Test Level against a real engine: a level built here, its nodes built by zdbsp, played by
// dsda-doom from the command line Test Level makes, to its exit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/TestLevel.h"

#include "tests/run/TestRunKit.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

namespace kelvar::run
{
namespace
{

using RealEngine = TestRunFixture;

// The two-room level of the engine test: a W1 Exit line 192 units in front of the player.
std::string ExitLevelWad()
{
    testkit::LevelBuilder level;
    for (const auto& [x, y] :
         {std::pair{0, 0}, {256, 0}, {512, 0}, {512, 256}, {256, 256}, {0, 256}})
    {
        level.Vertex(x, y);
    }
    level.Sector(0, 128).Sector(0, 128);
    level.Side(0).Side(0).Side(0).Side(1).Side(1).Side(1).Side(0, "-").Side(1, "-");
    level.Line(1, 0, 0).Line(5, 4, 1).Line(0, 5, 2).Line(2, 1, 3).Line(3, 2, 4).Line(4, 3, 5);
    level.Line(4, 1, 6, 7);
    level.Level().LineDefs[6].Type = 52;
    level.Thing(64, 128, 1, 0, 7);
    testkit::WadBuilder wad;
    level.WriteTo(wad, "MAP01");
    return wad.Bytes();
}

// A vanilla demo of MAP01 that walks forward for 70 tics.
std::string WalkingDemo()
{
    std::string demo{109, 2, 1, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0};
    for (int tic = 0; tic < 70; ++tic)
    {
        demo += std::string{50, 0, 0, 0};
    }
    return demo + '\x80';
}

TEST_F(RealEngine, FinishesTheLevelFromOurCommandLine)
{
    // scripts/setup installs both: a missing one fails the run.
    ASSERT_TRUE(std::filesystem::exists("/usr/games/dsda-doom")) << "dsda-doom is not installed";
    ASSERT_TRUE(std::filesystem::exists("/usr/bin/zdbsp")) << "zdbsp is not installed";
    const std::filesystem::path root = Dir.Path();
    testkit::WriteFile(root / "src.wad", ExitLevelWad());
    testkit::WriteFile(root / "walk.lmp", WalkingDemo());
    const std::string zdbsp = "/usr/bin/zdbsp -o '" + (root / "exit.wad").string() + "' '" +
                              (root / "src.wad").string() + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(zdbsp.c_str()), 0);

    wad::Wad().Files[0].FileName = testkit::FreedoomWad("freedoom2.wad");
    AddPwad((root / "exit.wad").string(), true);
    wad::Wad().Options.BoomTypes = true;
    TestOptions& options = Options();
    options.GameExe = "dsda-doom"; // not on PATH: found in /usr/games
    options.GameDirectory = root.string();
    options.WaitForGame = true;
    options.ExtraParameters = ":-timedemo " + (root / "walk.lmp").string() +
                              " -nodraw -nosound -no_message_box -levelstat";

    // The game runs in a home of its own, with no screen and no sound.
    std::vector<std::pair<std::string, std::optional<std::string>>> saved;
    for (const auto& [name, value] : {std::pair{"HOME", root.string()},
                                      {"XDG_RUNTIME_DIR", root.string()},
                                      {"SDL_VIDEODRIVER", std::string("dummy")},
                                      {"SDL_AUDIODRIVER", std::string("dummy")}})
    {
        const char* old = std::getenv(name);
        saved.emplace_back(name, old != nullptr ? std::optional<std::string>(old) : std::nullopt);
        ::setenv(name, value.c_str(), 1);
    }
    platform::Processes* recorder = platform::InstallProcesses(nullptr);
    const int result = TestLevel("MAP01");
    platform::InstallProcesses(recorder);
    for (const auto& [name, value] : saved)
    {
        value ? (void)::setenv(name.c_str(), value->c_str(), 1) : (void)::unsetenv(name.c_str());
    }

    EXPECT_EQ(result, 1);
    EXPECT_TRUE(Ui.Messages.empty());
    const std::string stat = testkit::ReadFile(root / "levelstat.txt");
    EXPECT_EQ(stat.rfind("MAP01 - ", 0), 0u) << stat;
}

} // namespace
} // namespace kelvar::run
