// FatalError: message, the shell's last words, exit code 4.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/Fatal.h"

#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>

namespace kelvar::platform
{
namespace
{

struct FatalState
{
    std::function<void()> Hook;
    bool Running = false;        // the hook is running: a fatal end inside it must not loop
    bool TextureLimited = false; // the picture cache has a size limit
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

void SetTextureLimitAdvice(bool limited)
{
    Fatal().TextureLimited = limited;
}

void OutOfMemory(int code, std::size_t size)
{
    ShowLastError(ENOMEM);
    FatalError(Fatal().TextureLimited
                   ? "(%d) Kelvar requires %d bytes more memory, set texture size limit lower"
                   : "(%d) Kelvar requires %d bytes more memory, close ALL other PGMS, increase "
                     "swapfile",
               code, static_cast<int>(size));
}

void InstallOutOfMemoryHandler()
{
    std::set_new_handler([] { OutOfMemory(1, 0); });
    // The new-handler sees only exhausted memory. A request the allocator refuses without
    // trying (more than an array can hold: std::bad_array_new_length, std::length_error) and
    // a std::bad_alloc thrown by a library are exceptions instead; when no one catches them
    // they end the same way rather than by an abort.
    static const std::terminate_handler previous = std::set_terminate(
        []
        {
            if (const std::exception_ptr failure = std::current_exception())
            {
                try
                {
                    std::rethrow_exception(failure);
                }
                catch (const std::bad_alloc&)
                {
                    OutOfMemory(1, 0);
                }
                catch (const std::length_error&)
                {
                    OutOfMemory(1, 0);
                }
                catch (...)
                {
                }
            }
            if (previous != nullptr)
            {
                previous();
            }
            std::abort();
        });
}

} // namespace kelvar::platform
