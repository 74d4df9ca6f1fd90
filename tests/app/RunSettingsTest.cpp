// Tests of the test launcher's settings between the status records and the run state.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RunSettings.h"

#include "app/StatusDefaults.h"

#include <cstring>
#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

// The game test's fields of two options, side by side.
auto GameFields(const run::TestOptions& o)
{
    return std::tuple(o.GameExe, o.GameDirectory, o.WarpText, o.ExtraParameters, o.ResponseFile,
                      o.ShortFileNames, o.QuoteResponse, o.QuoteFileNames, o.LoadAllFiles,
                      o.WaitForGame, o.Skill, o.Turbo, o.DevParm, o.NoMonsters, o.NoMusic,
                      o.NoSound, o.NoSfx, o.FastMonsters, o.Deathmatch, o.AltDeath, o.Respawn);
}

TEST(RunSettings, DefaultRecordsGiveTheDefaultOptions)
{
    run::TestOptions options;
    options.GameExe = "changed";
    TestOptionsFromRecords(DefaultChk(), DefaultProject(), options);
    const run::TestOptions defaults;
    EXPECT_EQ(GameFields(options), GameFields(defaults));
    EXPECT_EQ(options.Viewer, defaults.Viewer);
}

TEST(RunSettings, EverySettingGoesIntoItsFieldAndComesBack)
{
    run::TestOptions options;
    options.GameExe = "dsda-doom";
    options.GameDirectory = "/home/me/doom";
    options.WarpText = " +map ";
    options.ExtraParameters = ":-complevel 9";
    options.Skill = 5;
    options.Turbo = 200;
    for (bool* flag :
         {&options.ResponseFile, &options.ShortFileNames, &options.QuoteResponse,
          &options.QuoteFileNames, &options.LoadAllFiles, &options.WaitForGame, &options.DevParm,
          &options.NoMonsters, &options.NoMusic, &options.NoSound, &options.NoSfx,
          &options.FastMonsters, &options.Deathmatch, &options.AltDeath, &options.Respawn})
    {
        *flag = true;
    }
    run::Viewer3DOptions& viewer = options.Viewer;
    viewer.ViewerPath = "/opt/r3d/viewer";
    viewer.ViewerParameters = "-fast";
    viewer.Prompt = false;
    viewer.WaitFor3D = viewer.NoInfight = viewer.UseSpecials = viewer.R3dglbspNodes = true;
    viewer.Scope = run::ViewerScope::Partial;
    viewer.Screen = run::ViewerScreen::CustomWindow;
    viewer.Width = 1024;
    viewer.YPos = -8;
    viewer.Skill = 3;
    viewer.Speed = 1000;
    viewer.Memory = 512;
    viewer.MaxFps = 70;
    int hookCalls = 0;
    options.Hooks.Redraw = [&] { ++hookCalls; };

    ChkRecord chk = DefaultChk();
    ProjectRecord project = DefaultProject();
    TestOptionsToRecords(options, chk, project);
    // A few bytes where the files keep them.
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&project);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes) + 5360), " +map ");
    EXPECT_EQ(bytes[5618] | bytes[5619] << 8, 200);
    EXPECT_EQ(bytes[5625], 1); // WaitForGame
    const auto* chkBytes = reinterpret_cast<const std::uint8_t*>(&chk);
    EXPECT_EQ(chkBytes[308], 0); // the prompt
    EXPECT_EQ(chkBytes[1117], 4);
    EXPECT_EQ(chkBytes[1147], 1);

    run::TestOptions back;
    back.Hooks = options.Hooks;
    TestOptionsFromRecords(chk, project, back);
    EXPECT_EQ(GameFields(back), GameFields(options));
    EXPECT_EQ(back.Viewer, options.Viewer);
    back.Hooks.Redraw();
    EXPECT_EQ(hookCalls, 1);

    // A choice no dialog offers, from a file edited by hand, falls back to the first.
    chk.ViewerScreen = 9;
    TestOptionsFromRecords(chk, project, back);
    EXPECT_EQ(back.Viewer.Screen, run::ViewerScreen::FullScreenHardware);
}

} // namespace
} // namespace kelvar::app
