// The process port: starting another program (node builder, game, viewer) and waiting for it
// while the window stays alive.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::platform
{

/// What RunChild returns for a program that could not be started at all.
inline constexpr int ChildDidNotStart = -666;

/// RunChild flags, combined with |: the node builder passes wait and pump (and minimise when
/// its window is to step aside), test play and the 3D view wait and pump only when asked to.
inline constexpr int ChildMinimise = 0x0001; // the main window steps aside while the child runs
inline constexpr int ChildWait = 0x0002;     // wait for the child to end
inline constexpr int ChildPump = 0x0004;     // wait with the window alive (and cancellable)
inline constexpr int ChildSlowPoll = 0x8000; // poll each 1000 ms, not 500

/// Show modes of the child's window: 6 minimised, 10 as the program likes.
inline constexpr int ShowMinimised = 6;
inline constexpr int ShowDefault = 10;

/// One program to run.
struct ChildRequest
{
    std::filesystem::path Directory; // working directory; empty: the current one
    std::string CommandLine;         // program and arguments, double quotes group (see below)
    int ShowMode = ShowDefault;
    int Flags = 0;
    /// Empty: the child writes where the caller writes. Otherwise its standard output and
    /// error both go into this file, made afresh, for the caller to read once it ended.
    std::filesystem::path OutputFile;

    bool operator==(const ChildRequest&) const = default;
};

/// Starts programs. The editor and kelvar-cli install the system's; tests a recorder.
class Processes
{
public:
    virtual ~Processes() = default;

    /// Runs `request`. With ChildWait, returns the child's exit code once it ended (a child
    /// killed by a signal counts as failed: 128 + the signal); without it, 0 at once.
    /// ChildDidNotStart when the program can't be started (the system's reason is shown in a
    /// box titled "GetLastError"). With ChildPump the wait keeps the window alive through
    /// TheUi().PollEscape(); Escape asks "%s is still running.\n\nStop it?" and yes ends
    /// the child, which then counts as killed by SIGTERM (143) or SIGKILL (137).
    virtual int RunChild(const ChildRequest& request) = 0;
};

/// What the window does around a waited-for child: called with true before the program
/// starts (the request's ChildMinimise asks the window to step aside; a wait cursor fits)
/// and with false once the wait is over, also after a failed start. Empty: nothing.
using ChildWaitObserver = std::function<void(const ChildRequest& request, bool waiting)>;

/// Installs the observer the system's Processes calls, and returns the one it replaces.
ChildWaitObserver InstallChildWaitObserver(ChildWaitObserver observer);

/// The installed observer (empty when none).
const ChildWaitObserver& TheChildWaitObserver();

/// The installed Processes; before any is installed, the system's.
Processes& TheProcesses();

/// Installs one (not owned) and returns the one it replaces; null restores the system's.
Processes* InstallProcesses(Processes* processes);

/// Splits a command line into the program and its arguments: blanks separate, double quotes
/// group and are dropped, a backslash is kept as it stands (paths).
std::vector<std::string> SplitCommandLine(std::string_view commandLine);

} // namespace kelvar::platform
