// The common error log.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/ErrorLog.h"

#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/WadState.h"

#include <cstdio>

namespace kelvar::wad
{

bool OpenErrorLog()
{
    ErrorLogState& log = Wad().Log;
    log.File.reset();
    log.Lines = 0;
    log.Path = Wad().ProgramDir / "KelvarErrorLog";
    std::error_code error;
    if (!Wad().ProgramDir.empty())
    {
        std::filesystem::create_directories(Wad().ProgramDir, error);
    }
    log.File.reset(std::fopen(log.Path.c_str(), "wt"));
    if (!log.File)
    {
        platform::ShowError("Failed to create %s", log.Path.c_str());
        return false;
    }
    return true;
}

void LogLine(std::initializer_list<std::string_view> texts)
{
    ErrorLogState& log = Wad().Log;
    if (!log.File && !OpenErrorLog())
    {
        return;
    }
    bool first = true;
    for (const std::string_view text : texts)
    {
        const std::string line(text);
        if (!first)
        {
            std::fprintf(log.File.get(), "       %s\n", line.c_str());
        }
        else if (log.Lines < 0)
        {
            std::fprintf(log.File.get(), "%s\n", line.c_str());
        }
        else
        {
            std::fprintf(log.File.get(), "%4d. %s\n", ++log.Lines, line.c_str());
        }
        first = false;
    }
}

int ErrorLogLines()
{
    return Wad().Log.Lines;
}

void CloseErrorLog()
{
    Wad().Log.File.reset();
}

void ShowErrorLog(const std::string& caption)
{
    CloseErrorLog();
    platform::TheUi().ShowTextFile(caption, Wad().Log.Path);
}

} // namespace kelvar::wad
