// The system's Processes: programs started with posix_spawnp, waited for with waitpid while
// the window stays alive.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/PosixProcesses.h"

#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace kelvar::platform
{
namespace
{

/// The wait step: how often a waiting call looks at the child, in milliseconds.
constexpr int WaitStep = 500;
constexpr int SlowWaitStep = 1000;
/// The window is served this many times per wait step, so it doesn't feel frozen.
constexpr int PumpsPerStep = 10;
/// How long a child asked to stop (SIGTERM) may take before it is killed.
constexpr int StopGraceMilliseconds = 2000;

int ExitCodeOf(int status)
{
    if (WIFEXITED(status))
    {
        return WEXITSTATUS(status);
    }
    // A program killed by a signal has failed, whatever its last words: never 0.
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : 1;
}

/// The child's end, as a pollable descriptor; -1 when the kernel has none (then the waits
/// sleep their slices and look).
int OpenPidFd(pid_t child)
{
#ifdef SYS_pidfd_open
    return static_cast<int>(syscall(SYS_pidfd_open, child, 0));
#else
    (void)child;
    return -1;
#endif
}

/// Waits up to `milliseconds` for the child's end. True when it ended; `status` holds how.
bool WaitSlice(pid_t child, int pidFd, int milliseconds, int& status)
{
    if (pidFd >= 0)
    {
        pollfd watch{pidFd, POLLIN, 0};
        while (poll(&watch, 1, milliseconds) < 0 && errno == EINTR)
        {
        }
    }
    else
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, WNOHANG)) < 0 && errno == EINTR)
    {
    }
    // An error means the child is gone (reaped elsewhere): count it as a failed run.
    if (ended < 0)
    {
        status = 1 << 8;
        return true;
    }
    return ended == child;
}

int WaitBlocking(pid_t child)
{
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, 0)) < 0 && errno == EINTR)
    {
    }
    return ended == child ? ExitCodeOf(status) : 1;
}

/// Asks the child's process group to end, and kills it when it doesn't within the grace.
int StopChild(pid_t child, int pidFd)
{
    kill(-child, SIGTERM);
    kill(child, SIGTERM); // in case it left the group
    int status = 0;
    const int slice = 50;
    for (int waited = 0; waited < StopGraceMilliseconds; waited += slice)
    {
        if (WaitSlice(child, pidFd, slice, status))
        {
            return ExitCodeOf(status);
        }
    }
    kill(-child, SIGKILL);
    kill(child, SIGKILL);
    return WaitBlocking(child);
}

/// The wait with the window alive: the window is served between short slices, and Escape
/// offers to stop the child.
int WaitPumping(const ChildRequest& request, pid_t child, const std::string& program)
{
    const int step = (request.Flags & ChildSlowPoll) != 0 ? SlowWaitStep : WaitStep;
    const int slice = step / PumpsPerStep;
    const int pidFd = OpenPidFd(child);
    int code = 0;
    for (;;)
    {
        int status = 0;
        if (WaitSlice(child, pidFd, slice, status))
        {
            code = ExitCodeOf(status);
            break;
        }
        if (TheUi().PollEscape() && AskYesNo("%s is still running.\n\nStop it?", program.c_str()))
        {
            code = StopChild(child, pidFd);
            break;
        }
    }
    if (pidFd >= 0)
    {
        close(pidFd);
    }
    // An Escape pressed while the child ran is thrown away with the wait.
    TheUi().PollEscape();
    return code;
}

/// Starts the program; 0 or the system's error number.
int Spawn(const ChildRequest& request, std::vector<std::string>& words, pid_t& child)
{
    std::vector<char*> argv;
    for (std::string& word : words)
    {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    // No console to type into: a program that waits for a key reads the end of its input.
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (!request.OutputFile.empty())
    {
        // Opened before the change of directory, so a relative name means the caller's.
        posix_spawn_file_actions_addopen(&actions, 1, request.OutputFile.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions, 1, 2);
    }
    if (!request.Directory.empty())
    {
        posix_spawn_file_actions_addchdir_np(&actions, request.Directory.c_str());
    }
    // The child leads a process group of its own (the "new console"), so a stop reaches the
    // programs it starts in turn, and it begins with the usual signal handling.
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setpgroup(&attributes, 0);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    for (const int signal : {SIGPIPE, SIGINT, SIGQUIT, SIGTERM, SIGHUP, SIGCHLD})
    {
        sigaddset(&signals, signal);
    }
    posix_spawnattr_setsigdefault(&attributes, &signals);

    const int error = posix_spawnp(&child, argv[0], &actions, &attributes, argv.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

class PosixProcesses final : public Processes
{
public:
    int RunChild(const ChildRequest& request) override
    {
        ReapUnwaited();
        std::vector<std::string> words = SplitCommandLine(request.CommandLine);
        const bool wait = (request.Flags & ChildWait) != 0;
        const ChildWaitObserver& observer = TheChildWaitObserver();
        if (wait && observer)
        {
            observer(request, true);
        }
        pid_t child = 0;
        const int error = words.empty() ? ENOENT : Spawn(request, words, child);
        if (error != 0)
        {
            if (wait && observer)
            {
                observer(request, false);
            }
            ShowLastError(error);
            return ChildDidNotStart;
        }
        if (!wait)
        {
            Unwaited.push_back(child);
            return 0;
        }
        const int code = (request.Flags & ChildPump) != 0 ? WaitPumping(request, child, words[0])
                                                          : WaitBlocking(child);
        if (observer)
        {
            observer(request, false);
        }
        return code;
    }

private:
    /// Children started without a wait are collected once they ended, so none lingers.
    void ReapUnwaited()
    {
        std::erase_if(Unwaited,
                      [](pid_t child)
                      {
                          int status = 0;
                          return waitpid(child, &status, WNOHANG) != 0;
                      });
    }

    std::vector<pid_t> Unwaited;
};

} // namespace

Processes& SystemProcesses()
{
    static PosixProcesses processes;
    return processes;
}

} // namespace kelvar::platform
