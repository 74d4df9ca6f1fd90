// FatalError: message, the shell's last words, exit code 4.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Fatal.h"

#include "platform/Format.h"
#include "platform/Ui.h"
#include "wad/WadState.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace kelvar::wad
{

void FatalError(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = platform::FormatV(format, arguments);
    va_end(arguments);
    // The hint keeps its old wording; on this system the switch is "kelvar -N".
    text += "\n\nTo bypass all files at startup\n\nFrom Windows Start Menu\n\nRun ** "
            "C:\\Kelvar\\Kelvar -N\n\n(**replace with your installation location)";

    platform::Message message;
    message.Title = "FATAL ERROR";
    message.Lines.push_back(text);
    message.Icon = platform::MessageIcon::Stop;
    message.SystemModal = true;
    // Whatever the installed Ui does with it, the reason also reaches stderr, so that a
    // fatal end in a batch run or under a test harness is never silent.
    std::fprintf(stderr, "FATAL ERROR: %s\n", text.c_str());
    platform::TheUi().Show(message);

    // A hook that itself fails fatally must not loop back here.
    if (!Wad().FatalInProgress)
    {
        Wad().FatalInProgress = true;
        if (Wad().Hooks.BeforeFatalExit)
        {
            Wad().Hooks.BeforeFatalExit();
        }
    }
    std::fflush(nullptr);
    std::_Exit(FatalExitCode);
}

} // namespace kelvar::wad
