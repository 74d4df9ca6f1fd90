// A run of zdbsp with its output captured for the log.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/ZdbspRun.h"

#include "platform/ConsoleUi.h"
#include "platform/Processes.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <unistd.h>

namespace kelvar::kelvarbsp
{
namespace
{

bool IsProgressPiece(const std::string& piece)
{
    const std::size_t first = piece.find_first_not_of(' ');
    return first == std::string::npos ||
           (piece.back() == '%' && piece.find(':') != std::string::npos);
}

// The command line of the process port: each word in double quotes, so paths with blanks
// stay one word.
std::string CommandLineOf(const std::string& program, const std::vector<std::string>& arguments)
{
    std::string line = '"' + program + '"';
    for (const std::string& argument : arguments)
    {
        line += " \"" + argument + '"';
    }
    return line;
}

// A file name of its own for the child's output; empty when none can be made.
std::filesystem::path OutputFileName()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "kelvarbsp-XXXXXX").string();
    const int descriptor = mkstemp(pattern.data());
    if (descriptor < 0)
    {
        return {};
    }
    close(descriptor);
    return pattern;
}

std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

// The last line of what the port showed: the system's reason for a program that didn't start.
std::string LastLine(const std::string& text)
{
    std::string last;
    std::string line;
    for (const char c : text)
    {
        if (c != '\n')
        {
            line += c;
            continue;
        }
        if (line.find_first_not_of(' ') != std::string::npos)
        {
            last = line.substr(line.find_first_not_of(' '));
        }
        line.clear();
    }
    return last;
}

} // namespace

std::string WithoutProgress(const std::string& text)
{
    std::string kept;
    std::string piece;
    for (const char c : text)
    {
        if (c != '\r' && c != '\n')
        {
            piece += c;
            continue;
        }
        if (!IsProgressPiece(piece))
        {
            kept += piece + '\n';
        }
        piece.clear();
    }
    if (!IsProgressPiece(piece))
    {
        kept += piece + '\n';
    }
    return kept;
}

ZdbspResult RunZdbsp(const std::string& program, const std::vector<std::string>& arguments)
{
    ZdbspResult result;
    platform::ChildRequest request;
    request.CommandLine = CommandLineOf(program, arguments);
    request.Flags = platform::ChildWait;
    request.OutputFile = OutputFileName();

    // The port tells why a program didn't start through the Ui: here it is kept for the log.
    char* shown = nullptr;
    std::size_t shownSize = 0;
    std::unique_ptr<std::FILE, decltype(&std::fclose)> messages(open_memstream(&shown, &shownSize),
                                                                &std::fclose);
    int code = 0;
    {
        platform::ConsoleUi quiet(messages ? messages.get() : stderr, 0);
        platform::ScopedUi scope(quiet);
        code = platform::TheProcesses().RunChild(request);
    }
    messages.reset();
    const std::string reasons = shown != nullptr ? std::string(shown, shownSize) : std::string();
    std::free(shown);

    if (!request.OutputFile.empty())
    {
        result.Output = WithoutProgress(ReadText(request.OutputFile));
        std::error_code error;
        std::filesystem::remove(request.OutputFile, error);
    }
    if (code == platform::ChildDidNotStart)
    {
        result.Started = false;
        result.StartReason = LastLine(reasons);
    }
    else if (code > 128)
    {
        // The port counts a death by a signal as 128 + the signal; zdbsp's own codes are small.
        result.Signal = code - 128;
    }
    else
    {
        result.ExitCode = code;
    }
    return result;
}

} // namespace kelvar::kelvarbsp
