// kelvarbsp: the editor's built-in node builder. See kelvarbsp/KelvarBsp.h.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/KelvarBsp.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

/// Writes the log over the last one. Not truncated first: on ext4 a file truncated to nothing
/// and written again is flushed to disk when it is closed, which costs more than the build's
/// own work.
bool WriteLog(const std::string& text)
{
    const int file = open(kelvar::kelvarbsp::BspLogName, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    if (file < 0)
    {
        return false;
    }
    std::size_t written = 0;
    while (written < text.size())
    {
        const ssize_t got = write(file, text.data() + written, text.size() - written);
        if (got <= 0)
        {
            break;
        }
        written += static_cast<std::size_t>(got);
    }
    const bool whole = written == text.size() && ftruncate(file, static_cast<off_t>(written)) == 0;
    return close(file) == 0 && whole;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    // A build that is stopped or crashes leaves this log, not the last build's.
    WriteLog("kelvarbsp did not finish.\n");
    // KELVARBSP_ZDBSP names another zdbsp (tests put a failing one there).
    const char* zdbsp = std::getenv("KELVARBSP_ZDBSP");
    std::string log;
    const int code = kelvar::kelvarbsp::RunKelvarBsp(
        arguments, zdbsp != nullptr && *zdbsp != '\0' ? zdbsp : "zdbsp", log);
    if (!WriteLog(log))
    {
        std::fprintf(stderr, "kelvarbsp: cannot write %s\n", kelvar::kelvarbsp::BspLogName);
    }
    // A shown build ("L") prints the log; a failure always says why.
    const bool shown = arguments.size() > 5 && !arguments[5].empty() && arguments[5][0] == 'L';
    if (shown)
    {
        std::fputs(log.c_str(), stdout);
    }
    else if (code != 0)
    {
        const std::size_t error = log.rfind("Error: ");
        std::fputs(("kelvarbsp: " + log.substr(error == std::string::npos ? 0 : error)).c_str(),
                   stderr);
    }
    return code;
}
