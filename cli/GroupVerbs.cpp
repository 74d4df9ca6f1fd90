// kelvar-cli group, ungroup and make-iwad: the open files joined into one new WAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"
#include "cli/Verbs.h"
#include "cli/WadCommands.h"
#include "lumps/Group.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::cli
{
namespace
{

// The words of a command line: the files, the output and the switches given.
struct JoinRequest
{
    std::vector<std::string> Files;
    std::filesystem::path Output;
    std::vector<std::string> Switches;
};

// Splits the words; nothing (after the usage line) when a word is unknown, the output is
// missing or there are fewer than `minimumFiles` files.
std::optional<JoinRequest> ParseRequest(const std::vector<std::string>& arguments,
                                        const std::vector<std::string>& switches,
                                        std::size_t minimumFiles, const char* usage)
{
    JoinRequest request;
    bool valid = true;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        if (word == "-o" && i + 1 < arguments.size())
        {
            request.Output = arguments[++i];
        }
        else if (word.starts_with("-"))
        {
            valid = valid && std::find(switches.begin(), switches.end(), word) != switches.end();
            request.Switches.push_back(word);
        }
        else
        {
            request.Files.push_back(word);
        }
    }
    if (!valid || request.Output.empty() || request.Files.size() < minimumFiles)
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        return std::nullopt;
    }
    std::error_code error;
    request.Output = std::filesystem::absolute(request.Output, error);
    return request;
}

bool Has(const JoinRequest& request, const std::string& word)
{
    return std::find(request.Switches.begin(), request.Switches.end(), word) !=
           request.Switches.end();
}

// Opens every file; a file refused would be missing from the result, so nothing is written.
bool OpenAll(const JoinRequest& request)
{
    return OpenFiles(request.Files) == ExitOk && wad::Wad().Files[0].State != 0;
}

int Group(const std::vector<std::string>& arguments)
{
    const std::optional<JoinRequest> request = ParseRequest(
        arguments, {"--levels-only"}, 2, "group IWAD PWAD... -o OUT.wad [--levels-only]");
    if (!request)
    {
        return ExitUsage;
    }
    if (!OpenAll(*request) || !lumps::ReadyToGroup(false))
    {
        return ExitBadFile;
    }
    return lumps::GroupWads(request->Output, !Has(*request, "--levels-only")) == 1 ? ExitOk
                                                                                   : ExitBadFile;
}

int Ungroup(const std::vector<std::string>& arguments)
{
    const std::optional<JoinRequest> request = ParseRequest(
        arguments, {"--data", "--levels"}, 2, "ungroup IWAD PWAD... -o OUT.wad [--data|--levels]");
    if (!request)
    {
        return ExitUsage;
    }
    if (Has(*request, "--data") && Has(*request, "--levels"))
    {
        std::fprintf(stderr, "kelvar-cli: ungroup takes --data or --levels, not both\n");
        return ExitUsage;
    }
    if (!OpenAll(*request) || !lumps::ReadyToGroup(true))
    {
        return ExitBadFile;
    }
    return lumps::UngroupWads(request->Output, !Has(*request, "--levels")) == 1 ? ExitOk
                                                                                : ExitBadFile;
}

int MakeIwad(const std::vector<std::string>& arguments)
{
    const std::optional<JoinRequest> request =
        ParseRequest(arguments, {}, 1, "make-iwad IWAD [PWAD...] -o OUT.wad");
    if (!request)
    {
        return ExitUsage;
    }
    if (!OpenAll(*request))
    {
        return ExitBadFile;
    }
    return lumps::WriteIwad(request->Output) == 1 ? ExitOk : ExitBadFile;
}

} // namespace

KELVAR_CLI_VERB(Group, "group", Group,
                "  group IWAD PWAD... -o OUT.wad [--levels-only]\n"
                "                          the PWADs joined into one PWAD: every level of each\n"
                "                          file and, unless --levels-only, every other lump\n"
                "                          once, as the PWAD opened last defines it\n");
KELVAR_CLI_VERB(Ungroup, "ungroup", Ungroup,
                "  ungroup IWAD PWAD... -o OUT.wad [--data|--levels]\n"
                "                          what each PWAD supplies itself, as one PWAD: its\n"
                "                          lumps that aren't levels (--data, the default) or\n"
                "                          its levels\n");
KELVAR_CLI_VERB(MakeIwad, "make-iwad", MakeIwad,
                "  make-iwad IWAD [PWAD...] -o OUT.wad\n"
                "                          the IWAD with the PWADs laid over it, written as\n"
                "                          one new IWAD\n");

} // namespace kelvar::cli
