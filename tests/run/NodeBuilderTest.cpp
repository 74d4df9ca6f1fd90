// The node builders' command lines, the custom builder's variables, and what the runs tell
// the user for each exit code.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/NodeBuilder.h"

#include "platform/Processes.h"
#include "platform/test/RecordingProcesses.h"
#include "platform/test/RecordingUi.h"
#include "run/RunState.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace kelvar::run
{
namespace
{

using platform::ChildRequest;
using platform::RecordingProcesses;
using platform::RecordingUi;

constexpr const char* Target = "/home/ann/maps/x.wad";

class NodeBuilderRun : public ::testing::Test
{
protected:
    NodeBuilderRun()
    {
        ResetRun();
        run::Run().Builder.ProgramDir = Temp.Path();
        run::Run().Builder.KelvarBsp = "kelvarbsp";
        testkit::WriteFile(Temp.Path() / KelvarBspLogName, "Result: nodes built\n");
    }
    ~NodeBuilderRun() override { ResetRun(); }

    testkit::TempDir Temp;
    RecordingUi Ui;
    platform::ScopedUi Scope{Ui};
    RecordingProcesses Processes;
};

TEST(BuiltInCommandLine, DefaultsAndLetterCombinations)
{
    BuilderOptions options;
    options.KelvarBsp = "kelvarbsp";
    EXPECT_EQ(BuiltInCommandLine(options, Target, "MAP01"),
              R"(kelvarbsp ~Kelvar.WAD "/home/ann/maps/x.wad" MAP01 1NNNN16 N SX2xxx)");

    options.NodeType = 3;
    options.IgnoreTwoSided = true;
    options.SpecialSectorTags = true;
    options.SpecialLineDefTags = true;
    options.SplitFactor = 64;
    options.SplitMode = 3;
    options.ShowBuild = true;
    options.ZdoomHexenFormat = true;
    options.ZeroBlockmap = true;
    options.GlNodes = true;
    options.GlNodesV3 = true;
    options.ForceExtended = true;
    options.SuppressExtendedMessages = true;
    EXPECT_EQ(BuiltInOptionWords(options), "3NISL64 H LZ03EY");

    BuilderOptions some;
    some.NodeType = 2;
    some.SpecialSectorTags = true;
    some.SplitFactor = 5;
    some.SplitMode = 1;
    some.GlNodes = true;
    some.SuppressExtendedMessages = true;
    EXPECT_EQ(BuiltInOptionWords(some), "2NNSN5 A SX26xY");
    some.SplitMode = 2;
    some.GlNodes = false;
    some.GlNodesV3 = true; // only with GL nodes
    EXPECT_EQ(BuiltInOptionWords(some), "2NNSN5 V SX2xxY");

    // A program path with a blank is quoted, so the line splits where it should.
    options.KelvarBsp = "/opt/my tools/kelvarbsp";
    EXPECT_EQ(BuiltInCommandLine(options, "/maps/e1.wad", "E1M1"),
              R"("/opt/my tools/kelvarbsp" ~Kelvar.WAD "/maps/e1.wad" E1M1 3NISL64 H LZ03EY)");
}

TEST(ExpandBuilderParameters, ScansLeftToRightWithTheFirstMatchingVariable)
{
    const CustomBuilderPaths paths{"MAP01", "/home/ann/.config/kelvar/~Kelvar.WAD", Target,
                                   "/home/ann/.config/kelvar/"};
    EXPECT_EQ(ExpandBuilderParameters("-rz ~kelvar.wad %level -o $pwad", paths),
              R"(-rz "/home/ann/.config/kelvar/~Kelvar.WAD" MAP01 -o "/home/ann/maps/x.wad")");
    EXPECT_EQ(ExpandBuilderParameters("~kelvar.wad -o $pwad", paths),
              R"("/home/ann/.config/kelvar/~Kelvar.WAD" -o "/home/ann/maps/x.wad")");
    // $level is no variable and passes on.
    EXPECT_EQ(ExpandBuilderParameters("-rz ~kelvar.wad -map=$level $PWAD", paths),
              R"(-rz "/home/ann/.config/kelvar/~Kelvar.WAD" -map=$level "/home/ann/maps/x.wad")");
    EXPECT_EQ(ExpandBuilderParameters("%TempWad|%KELVARDIR|$kelvardir|#KelvarDir|#pwad", paths),
              R"("/home/ann/.config/kelvar/~Kelvar.WAD"|/home/ann/.config/kelvar/|)"
              R"("/home/ann/.config/kelvar/"|/home/ann/.config/kelvar/|/home/ann/maps/x.wad)");
    // The PWAD variables win over their DIR forms, which leave "DIR" behind as written.
    EXPECT_EQ(ExpandBuilderParameters("%PWADDIR $pwaddir #PwadDir", paths),
              R"(/home/ann/maps/x.wadDIR "/home/ann/maps/x.wad"dir /home/ann/maps/x.wadDir)");
    // Unknown and cut-off variables are copied as they stand.
    EXPECT_EQ(ExpandBuilderParameters("%foo $ # %LEVE ~kelvar.wa", paths),
              "%foo $ # %LEVE ~kelvar.wa");
}

TEST(CustomCommandLine, ProgramThenParametersWithTheTemporaryWadInTheProgramDir)
{
    BuilderOptions options;
    options.ProgramDir = "/home/ann/.config/kelvar";
    options.CustomExe = "/usr/bin/zdbsp";
    options.CustomParameters = "-R ~kelvar.wad -o $pwad";
    EXPECT_EQ(
        CustomCommandLine(options, "", Target, "MAP07"),
        R"(/usr/bin/zdbsp -R "/home/ann/.config/kelvar/~Kelvar.WAD" -o "/home/ann/maps/x.wad")");
    options.CustomExe = "/opt/node builders/zennode";
    options.CustomParameters = "%tempwad %LEVEL";
    EXPECT_EQ(CustomCommandLine(options, "/tmp/other.wad", Target, "MAP07"),
              R"("/opt/node builders/zennode" "/tmp/other.wad" MAP07)");
}

TEST_F(NodeBuilderRun, SuccessReportsAndShowsTheLogAsTheOptionsSay)
{
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), 0);
    ASSERT_EQ(Processes.Runs.size(), 1u);
    const ChildRequest& request = Processes.Runs[0];
    EXPECT_EQ(request.Directory, Temp.Path());
    EXPECT_EQ(request.CommandLine,
              R"(kelvarbsp ~Kelvar.WAD "/home/ann/maps/x.wad" MAP01 1NNNN16 N SX2xxx)");
    EXPECT_EQ(request.ShowMode, platform::ShowDefault);
    EXPECT_EQ(request.Flags, platform::ChildMinimise | platform::ChildWait | platform::ChildPump);
    EXPECT_EQ(Ui.StatusTexts, std::vector<std::string>{"Successful Nodes Built !"});
    ASSERT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "KelvarBSP Log");
    EXPECT_EQ(Ui.TextFiles[0].Lines, std::vector<std::string>{"Result: nodes built"});
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_TRUE(Ui.Progress.empty());

    // See Results asks first; no leaves the log unshown. No status text without showResult.
    Ui.Clear();
    Ui.TextFiles.clear();
    run::Run().Builder.SeeResults = true;
    Ui.Answer(0).Answer(1);
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", false), 0);
    EXPECT_EQ(Ui.Last().Title, "View Log");
    EXPECT_EQ(Ui.Last().Lines, std::vector<std::string>{"View KelvarBSP Log?"});
    EXPECT_TRUE(Ui.TextFiles.empty());
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", false), 0);
    EXPECT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_TRUE(Ui.StatusTexts.empty());

    // A shown build is minimised, names the target in the panel, and shows no log.
    Ui.Clear();
    Ui.TextFiles.clear();
    run::Run().Builder.ShowBuild = true;
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), 0);
    EXPECT_EQ(Processes.Runs.back().ShowMode, platform::ShowMinimised);
    EXPECT_NE(Processes.Runs.back().CommandLine.find(" N LX2xxx"), std::string::npos);
    ASSERT_EQ(Ui.Progress.size(), 1u);
    EXPECT_EQ(Ui.Progress[0].second, Target);
    EXPECT_TRUE(Ui.TextFiles.empty());
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(NodeBuilderRun, FailureShowsTheLogAndReturnsTheCode)
{
    Processes.Exit(3).Exit(-1).Exit(255);
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), 3);
    // -1, and 255 as the system hands it back, count as success, the log shown all the same.
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), 0);
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), 0);
    EXPECT_EQ(Ui.TextFiles.size(), 3u);
    EXPECT_TRUE(Ui.StatusTexts.empty());
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(NodeBuilderRun, ABuilderThatDoesNotStartSaysSo)
{
    Processes.Exit(platform::ChildDidNotStart).Exit(platform::ChildDidNotStart);
    run::Run().Builder.KelvarBsp = "/opt/kelvar/kelvarbsp";
    EXPECT_EQ(RunBuiltInBuilder(Target, "MAP01", true), platform::ChildDidNotStart);
    EXPECT_EQ(Ui.Last().Title, "Load error");
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{
                                   "Failed to start", "/opt/kelvar/kelvarbsp",
                                   "Most likely the program could not find the program in the"}));
    EXPECT_TRUE(Ui.TextFiles.empty());

    EXPECT_EQ(RunR3dBuilder("/opt/r3d", "/tmp/in.wad", Target), platform::ChildDidNotStart);
    EXPECT_EQ(Processes.Runs.back().CommandLine,
              R"("/opt/r3d/R3Dglbsp.exe" -r3d 16 -normal "/tmp/in.wad" -o "/home/ann/maps/x.wad")");
    EXPECT_EQ(Processes.Runs.back().Directory, "/opt/r3d");
    EXPECT_EQ(Ui.Last().Title, "Load error");
    EXPECT_EQ(
        Ui.Last().Lines,
        (std::vector<std::string>{
            "Failed to start", "make sure that Kelvar.EXE is installed in the SAME directory as"}));
}

TEST_F(NodeBuilderRun, CustomBuilderRunsQuietOrShownAndAMissingProgramFailsToStart)
{
    run::Run().Builder.CustomExe = "zdbsp";
    run::Run().Builder.CustomParameters = "-R ~kelvar.wad -o $pwad";
    run::Run().Builder.CustomDirectory = "/tmp";
    Processes.Exit(2);
    EXPECT_EQ(RunCustomBuilder("", Target, "MAP01", false), 2);
    EXPECT_EQ(Processes.Runs[0].Directory, "/tmp");
    EXPECT_EQ(Processes.Runs[0].ShowMode, platform::ShowMinimised);
    EXPECT_EQ(Processes.Runs[0].Flags,
              platform::ChildMinimise | platform::ChildWait | platform::ChildPump);
    EXPECT_EQ(Ui.Progress.size(), 1u);
    EXPECT_EQ(RunCustomBuilder("", Target, "MAP01", true), 0);
    EXPECT_EQ(Processes.Runs[1].ShowMode, platform::ShowDefault);
    EXPECT_EQ(Processes.Runs[1].Flags, platform::ChildWait | platform::ChildPump);
    EXPECT_EQ(Ui.Progress.size(), 1u);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST(RunCustomBuilder, AProgramThatDoesNotExistFailsAtStartNotAsABuild)
{
    ResetRun();
    testkit::TempDir temp;
    run::Run().Builder.ProgramDir = temp.Path();
    run::Run().Builder.CustomExe = "/nonexistent/zennode";
    run::Run().Builder.CustomParameters = "-rz ~kelvar.wad %level -o $pwad";
    RecordingUi ui;
    platform::ScopedUi scope(ui);
    EXPECT_EQ(RunCustomBuilder("", Target, "MAP01", true), platform::ChildDidNotStart);
    ASSERT_EQ(ui.Messages.size(), 2u);
    EXPECT_EQ(ui.Messages[0].Title, "GetLastError");
    EXPECT_EQ(ui.Messages[1].Title, "Test Error");
    EXPECT_EQ(ui.Messages[1].Lines,
              (std::vector<std::string>{"Error code -666 starting NodeBuilder",
                                        "Make sure NodeBuilder /nonexistent/zennode",
                                        "has all files installed",
                                        "and that all parameters are correct"}));
    ResetRun();
}

TEST(RunBuiltInBuilder, BuildsARealLevelWithKelvarBsp)
{
    ResetRun();
    testkit::TempDir temp;
    const std::filesystem::path programDir = temp.Path() / "program";
    std::filesystem::create_directory(programDir);
    run::Run().Builder.ProgramDir = programDir;
    run::Run().Builder.KelvarBsp = KELVAR_BSP;
    testkit::WadBuilder wad;
    testkit::LevelBuilder()
        .Room(0, 0, 256, 128)
        .Room(256, 0, 128, 128)
        .Thing(64, 64, 1)
        .WriteTo(wad, "MAP01");
    wad.Write(programDir / NodeBuildInputName);
    const std::string target = (temp.Path() / "my maps" / "x.wad").string();
    std::filesystem::create_directory(temp.Path() / "my maps");

    RecordingUi ui;
    platform::ScopedUi scope(ui);
    EXPECT_EQ(RunBuiltInBuilder(target, "MAP01", true), 0);
    EXPECT_TRUE(std::filesystem::exists(target));
    EXPECT_EQ(ui.StatusTexts, std::vector<std::string>{"Successful Nodes Built !"});
    ASSERT_EQ(ui.TextFiles.size(), 1u);
    EXPECT_EQ(ui.TextFiles[0].Lines.back(), "Result: nodes built (exit code 0).");

    // A broken level: the build fails, the log says why, and no target is left.
    std::filesystem::remove(target);
    testkit::LevelBuilder broken;
    broken.Room(0, 0, 128, 128);
    broken.Level().LineDefs[2].EndVertex = 999;
    testkit::WadBuilder brokenWad;
    broken.WriteTo(brokenWad, "MAP01");
    brokenWad.Write(programDir / NodeBuildInputName);
    EXPECT_EQ(RunBuiltInBuilder(target, "MAP01", true), 3);
    EXPECT_FALSE(std::filesystem::exists(target));
    ASSERT_EQ(ui.TextFiles.size(), 2u);
    const std::vector<std::string>& log = ui.TextFiles[1].Lines;
    EXPECT_NE(std::find(log.begin(), log.end(),
                        "Error: LineDef 2 names Vertex 999, but the level has 4 Vertexes."),
              log.end());
    ResetRun();
}

} // namespace
} // namespace kelvar::run
