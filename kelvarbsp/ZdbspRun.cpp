// A run of zdbsp with its output captured for the log.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/ZdbspRun.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <spawn.h>
#include <sys/wait.h>

extern char** environ;

namespace kelvar::kelvarbsp
{
namespace
{

using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

std::string ReadAll(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    char buffer[4096];
    std::size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0)
    {
        text.append(buffer, got);
    }
    return text;
}

bool IsProgressPiece(const std::string& piece)
{
    const std::size_t first = piece.find_first_not_of(' ');
    return first == std::string::npos ||
           (piece.back() == '%' && piece.find(':') != std::string::npos);
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
    // The output goes to unnamed temporary files, read once the program ended: no pipe to
    // keep drained, nothing left on disk.
    File output(std::tmpfile(), &std::fclose);
    File errors(std::tmpfile(), &std::fclose);
    if (!output || !errors)
    {
        result.StartError = errno;
        return result;
    }
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words)
    {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fileno(output.get()), 1);
    posix_spawn_file_actions_adddup2(&actions, fileno(errors.get()), 2);
    pid_t child = 0;
    result.StartError = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (result.StartError != 0)
    {
        return result;
    }
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(child, &status, 0)) < 0 && errno == EINTR)
    {
    }
    if (ended != child)
    {
        result.ExitCode = 1;
    }
    else if (WIFSIGNALED(status))
    {
        result.Signal = WTERMSIG(status);
    }
    else
    {
        result.ExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 1;
    }
    result.Output = ReadAll(output.get()) + WithoutProgress(ReadAll(errors.get()));
    return result;
}

} // namespace kelvar::kelvarbsp
