// FatalError: message, the shell's last words, exit code 4.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Fatal.h"

#include "platform/Format.h"
#include "platform/Ui.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace kelvar::platform
{
namespace
{

struct FatalState
{
    std::function<void()> Hook;
    bool Running = false; // the hook is running: a fatal end inside it must not loop
};

FatalState& Fatal()
{
    static FatalState state;
    return state;
}

} // namespace

std::function<void()> InstallFatalHook(std::function<void()> hook)
{
    std::function<void()> previous = std::move(Fatal().Hook);
    Fatal().Hook = std::move(hook);
    return previous;
}

void FatalError(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = FormatV(format, arguments);
    va_end(arguments);
    // The hint keeps its old wording; on this system the switch is "kelvar -N".
    text += "\n\nTo bypass all files at startup\n\nFrom Windows Start Menu\n\nRun ** "
            "C:\\Kelvar\\Kelvar -N\n\n(**replace with your installation location)";

    Message message;
    message.Title = "FATAL ERROR";
    message.Lines.push_back(text);
    message.Icon = MessageIcon::Stop;
    message.SystemModal = true;
    // Whatever the installed Ui does with it, the reason also reaches stderr, so that a
    // fatal end in a batch run or under a test harness is never silent.
    std::fprintf(stderr, "FATAL ERROR: %s\n", text.c_str());
    TheUi().Show(message);

    if (!Fatal().Running && Fatal().Hook)
    {
        Fatal().Running = true;
        Fatal().Hook();
    }
    std::fflush(nullptr);
    std::_Exit(FatalExitCode);
}

} // namespace kelvar::platform
