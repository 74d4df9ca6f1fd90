// The system's Processes against real little programs: exit codes, signals, programs that
// don't start, the working directory, the wait with the window alive and its cancel.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Processes.h"
#include "platform/PosixProcesses.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <sys/stat.h>

namespace kelvar::platform
{
namespace
{

int Start(const std::string& commandLine, int flags = ChildWait,
          const std::filesystem::path& directory = {})
{
    ChildRequest request;
    request.CommandLine = commandLine;
    request.Flags = flags;
    request.Directory = directory;
    return SystemProcesses().RunChild(request);
}

double SecondsOf(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(SplitCommandLine, BlanksSeparateQuotesGroupBackslashesStay)
{
    EXPECT_EQ(SplitCommandLine(R"(  kelvarbsp ~Kelvar.WAD "/my maps/x.wad"  MAP01 a\b "")"),
              (std::vector<std::string>{"kelvarbsp", "~Kelvar.WAD", "/my maps/x.wad", "MAP01",
                                        R"(a\b)", ""}));
    EXPECT_TRUE(SplitCommandLine(" \t ").empty());
}

TEST(RunChild, ReturnsTheExitCodeAndCountsASignalDeathAsFailure)
{
    RecordingUi ui;
    ScopedUi scope(ui);
    for (const int flags : {ChildWait, ChildWait | ChildPump})
    {
        EXPECT_EQ(Start("/bin/true", flags), 0);
        EXPECT_EQ(Start("/bin/false", flags), 1);
        EXPECT_EQ(Start("sh -c \"exit 7\"", flags), 7);
        EXPECT_EQ(Start("sh -c \"kill -9 $$\"", flags), 128 + 9);
        EXPECT_EQ(Start("sh -c \"kill -SEGV $$\"", flags), 128 + 11);
        // Nothing to type into: a program waiting for a key reads the end of its input.
        EXPECT_EQ(Start("sh -c \"read key || exit 4\"", flags), 4);
    }
    // Without a wait the call returns at once, with 0 whatever the program does.
    EXPECT_LT(SecondsOf([] { EXPECT_EQ(Start("sh -c \"sleep 2; exit 3\"", 0), 0); }), 1.0);
    EXPECT_TRUE(ui.Messages.empty());
}

TEST(RunChild, AProgramThatCannotStartGivesMinus666AndTheSystemsReason)
{
    testkit::TempDir temp;
    const std::string plain = temp.File("not-executable");
    testkit::WriteFile(plain, "#!/bin/sh\nexit 0\n");
    chmod(plain.c_str(), 0644);

    RecordingUi ui;
    ScopedUi scope(ui);
    EXPECT_EQ(Start("kelvar-no-such-program --help"), ChildDidNotStart);
    EXPECT_EQ(Start(temp.File("missing")), ChildDidNotStart);
    EXPECT_EQ(Start(plain), ChildDidNotStart);
    EXPECT_EQ(Start(temp.Path().string()), ChildDidNotStart); // a directory
    EXPECT_EQ(Start("/bin/sh -c true", ChildWait, temp.Path() / "no-such-folder"),
              ChildDidNotStart);
    EXPECT_EQ(Start(""), ChildDidNotStart);
    ASSERT_EQ(ui.Messages.size(), 6u);
    EXPECT_EQ(ui.Messages[0].Title, "GetLastError");
    EXPECT_EQ(ui.Messages[0].Text(), "No such file or directory");
    EXPECT_EQ(ui.Messages[2].Text(), "Permission denied");
}

TEST(RunChild, RunsInTheRequestedDirectory)
{
    testkit::TempDir temp;
    RecordingUi ui;
    ScopedUi scope(ui);
    EXPECT_EQ(Start("sh -c \"pwd > where.txt\"", ChildWait, temp.Path()), 0);
    EXPECT_EQ(testkit::ReadFile(temp.Path() / "where.txt"), temp.Path().string() + "\n");
}

TEST(RunChild, AnOutputFileTakesBothStreamsOfTheChild)
{
    testkit::TempDir temp;
    RecordingUi ui;
    ScopedUi scope(ui);
    ChildRequest request;
    request.CommandLine = "sh -c \"echo out; echo err >&2; exit 3\"";
    request.Flags = ChildWait;
    request.Directory = temp.Path() / "elsewhere";
    request.OutputFile = temp.Path() / "output.txt";
    std::filesystem::create_directory(request.Directory);
    testkit::WriteFile(request.OutputFile, "stale text of an earlier run");
    EXPECT_EQ(SystemProcesses().RunChild(request), 3);
    EXPECT_EQ(testkit::ReadFile(request.OutputFile), "out\nerr\n");
    EXPECT_TRUE(ui.Messages.empty());
}

TEST(RunChild, PumpingWaitServesTheWindowAndThrowsAwayAPendingEscape)
{
    RecordingUi ui;
    ScopedUi scope(ui);
    EXPECT_EQ(Start("sleep 0.3", ChildWait | ChildPump), 0);
    // Served every 50 ms while the child runs, once more at the end.
    EXPECT_GE(ui.EscapePolls, 3);
    const int polls = ui.EscapePolls;
    EXPECT_EQ(Start("sleep 0.3", ChildWait), 0);
    EXPECT_EQ(ui.EscapePolls, polls) << "a plain wait doesn't touch the window";
}

TEST(RunChild, EscapeAsksAndYesStopsTheChildQuickly)
{
    RecordingUi ui;
    ScopedUi scope(ui);
    ui.EscapeFromPoll(2).Answer(0).Answer(1);
    int code = 0;
    const double seconds =
        SecondsOf([&] { code = Start("sh -c \"sleep 1000\"", ChildWait | ChildPump); });
    EXPECT_EQ(code, 128 + 15);
    EXPECT_LT(seconds, 3.0);
    // No keeps the wait going; the question comes again at the next Escape.
    ASSERT_EQ(ui.Messages.size(), 2u);
    EXPECT_EQ(ui.Messages[0].Title, "Kelvar Confirm");
    EXPECT_EQ(ui.Messages[0].Text(), "sh is still running.\n\nStop it?");
}

TEST(RunChild, AChildThatIgnoresTheStopIsKilledAfterTheGrace)
{
    RecordingUi ui;
    ScopedUi scope(ui);
    ui.EscapeFromPoll(1).Answer(1);
    int code = 0;
    const double seconds = SecondsOf(
        [&] { code = Start("sh -c \"trap '' TERM; sleep 1000\"", ChildWait | ChildPump); });
    EXPECT_EQ(code, 128 + 9);
    EXPECT_LT(seconds, 4.0);
}

TEST(RunChild, TheWindowObserverBracketsEveryWait)
{
    std::vector<std::pair<int, bool>> calls;
    InstallChildWaitObserver([&](const ChildRequest& request, bool waiting)
                             { calls.emplace_back(request.Flags, waiting); });
    RecordingUi ui;
    ScopedUi scope(ui);
    EXPECT_EQ(Start("/bin/true", ChildMinimise | ChildWait | ChildPump), 0);
    EXPECT_EQ(Start("kelvar-no-such-program", ChildWait), ChildDidNotStart);
    EXPECT_EQ(Start("/bin/true", 0), 0);
    InstallChildWaitObserver({});
    const int shown = ChildMinimise | ChildWait | ChildPump;
    EXPECT_EQ(calls, (std::vector<std::pair<int, bool>>{
                         {shown, true}, {shown, false}, {ChildWait, true}, {ChildWait, false}}));
}

} // namespace
} // namespace kelvar::platform
