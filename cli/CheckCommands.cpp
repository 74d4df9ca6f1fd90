// kelvar-cli check and stats: the level checker and the level statistics.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CheckCommands.h"

#include "app/BrowserLists.h"
#include "app/CheckerCommands.h"
#include "check/CheckControl.h"
#include "check/Statistics.h"
#include "cli/Commands.h"
#include "cli/SaveCommands.h"
#include "cli/WadCommands.h"
#include "map/MapState.h"
#include "platform/ConsoleUi.h"
#include "platform/Ui.h"

#include <cstdio>
#include <optional>
#include <utility>

namespace kelvar::cli
{
namespace
{

// The exit status of a check that found something.
constexpr int ExitFound = 1;

// The words --only takes, one for each single check.
const std::vector<std::pair<const char*, check::CheckButton>>& GroupWords()
{
    static const std::vector<std::pair<const char*, check::CheckButton>> words = {
        {"closed", check::CheckButton::SectorsClosed},
        {"xref", check::CheckButton::CrossReferences},
        {"walls", check::CheckButton::MissingTextures},
        {"names", check::CheckButton::TextureNames},
        {"things", check::CheckButton::Things},
        {"lines", check::CheckButton::LineTypes},
        {"sectors", check::CheckButton::SectorTypes},
        {"extra", check::CheckButton::ExtraTextures},
    };
    return words;
}

struct CheckRequest
{
    std::vector<std::string> Files; // the files and, last, the level's name
    std::vector<check::CheckButton> Checks;
    bool Fix = false;
    bool Json = false;
    std::string Output;
};

void PrintCheckUsage()
{
    std::fputs("kelvar-cli: check IWAD [PWAD...] MAPNAME [--only GROUP,...] [--json]\n"
               "                  [--fix -o OUT.wad]\n"
               "  GROUP: closed, xref, walls, names, things, lines, sectors, extra\n",
               stderr);
}

bool AddGroups(const std::string& list, std::vector<check::CheckButton>& checks)
{
    std::size_t start = 0;
    while (start <= list.size())
    {
        const std::size_t comma = std::min(list.find(',', start), list.size());
        const std::string word = list.substr(start, comma - start);
        bool known = false;
        for (const auto& [name, button] : GroupWords())
        {
            if (word == name)
            {
                checks.push_back(button);
                known = true;
            }
        }
        if (!known)
        {
            std::fprintf(stderr, "kelvar-cli: no check group '%s'\n", word.c_str());
            return false;
        }
        start = comma + 1;
    }
    return true;
}

std::optional<CheckRequest> ParseCheck(const std::vector<std::string>& arguments)
{
    CheckRequest request;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        if (word == "--only" && i + 1 < arguments.size())
        {
            if (!AddGroups(arguments[++i], request.Checks))
            {
                return std::nullopt;
            }
        }
        else if (word == "-o" && i + 1 < arguments.size())
        {
            request.Output = arguments[++i];
        }
        else if (word == "--fix")
        {
            request.Fix = true;
        }
        else if (word == "--json")
        {
            request.Json = true;
        }
        else
        {
            request.Files.push_back(word);
        }
    }
    if (request.Files.size() < 2 || request.Fix == request.Output.empty())
    {
        PrintCheckUsage();
        return std::nullopt;
    }
    if (request.Checks.empty())
    {
        request.Checks = check::GroupMembers(check::CheckButton::GroupAll);
    }
    return request;
}

// The checks of the request over the editor's level; false when one was stopped.
bool RunChecks(const CheckRequest& request, check::CheckRun& run)
{
    app::EnsureBrowserCatalogues(); // the texture checks look names up in the catalogue
    for (const check::CheckButton button : request.Checks)
    {
        if (!check::RunChecksOf(button, run))
        {
            return false;
        }
    }
    return true;
}

void PrintFindings(const CheckRequest& request, const check::CheckRun& run, int changes)
{
    const std::string& level = request.Files.back();
    if (request.Json)
    {
        std::fputs(FindingsJson(level, run.Findings, changes).c_str(), stdout);
        return;
    }
    for (const check::Finding& finding : run.Findings)
    {
        std::printf("%s\n", check::FindingLine(finding).c_str());
    }
    std::printf("%s: %d found%s\n", level.c_str(), run.ErrorCount,
                changes != 0 ? (", " + std::to_string(changes) + " changes made").c_str() : "");
}

void AppendJsonString(std::string& out, const std::string& text)
{
    out += '"';
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
        {
            out += '\\';
            out += c;
        }
        else if (c == '\n')
        {
            out += "\\n";
        }
        else if (c == '\t')
        {
            out += "\\t";
        }
        else if (byte < 0x20)
        {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", byte);
            out += escaped;
        }
        else
        {
            out += c;
        }
    }
    out += '"';
}

} // namespace

std::string FindingsJson(const std::string& level, const std::vector<check::Finding>& findings,
                         int changes)
{
    int found = 0;
    for (const check::Finding& finding : findings)
    {
        found += finding.Detail ? 0 : 1;
    }
    std::string out = "{\n  \"level\": ";
    AppendJsonString(out, level);
    out += ",\n  \"found\": " + std::to_string(found);
    out += ",\n  \"changes\": " + std::to_string(changes);
    out += ",\n  \"findings\": [";
    bool open = false;       // a finding's detail list is open
    bool firstDetail = true; // nothing in it yet
    bool first = true;
    for (const check::Finding& finding : findings)
    {
        // A detail line with no finding before it opens one of its own, so none is lost.
        if (finding.Detail && open)
        {
            out += firstDetail ? "" : ", ";
            firstDetail = false;
            AppendJsonString(out, finding.Text);
            continue;
        }
        if (open)
        {
            out += "]}";
        }
        out += first ? "\n    {" : ",\n    {";
        first = false;
        if (finding.Kind == 0)
        {
            out += "\"kind\": \"Level\", \"index\": null";
        }
        else
        {
            out += "\"kind\": ";
            AppendJsonString(out, map::KindName(finding.Kind));
            out += ", \"index\": " + std::to_string(finding.Index);
        }
        out += ", \"text\": ";
        AppendJsonString(out, finding.Text);
        out += ", \"detail\": [";
        open = true;
        firstDetail = true;
    }
    if (open)
    {
        out += "]}\n  ";
    }
    out += "]\n}\n";
    return out;
}

int CheckLevel(const std::vector<std::string>& arguments)
{
    const std::optional<CheckRequest> parsed = ParseCheck(arguments);
    if (!parsed)
    {
        return ExitUsage;
    }
    const CheckRequest& request = *parsed;
    const check::CheckSettings settings;
    bool found = false;
    const auto checkLevel = [&]() -> int
    {
        map::LevelData& level = map::Map().Level;
        const std::uint16_t before = level.ChangeCount;
        check::CheckRun run(level, settings,
                            request.Fix ? check::RunMode::LogAndFix : check::RunMode::Log);
        if (!RunChecks(request, run))
        {
            std::fputs("kelvar-cli: the check was stopped\n", stderr);
        }
        found = !run.Findings.empty();
        PrintFindings(request, run, static_cast<std::uint16_t>(level.ChangeCount - before));
        return ExitOk;
    };

    if (request.Fix)
    {
        std::vector<std::string> saveArguments = request.Files;
        saveArguments.insert(saveArguments.end(), {"-o", request.Output});
        const int saved = SaveLevel(saveArguments, checkLevel);
        return saved != ExitOk ? saved : (found ? ExitFound : ExitOk);
    }
    bool loaded = false;
    const std::vector<std::string> files(request.Files.begin(), request.Files.end() - 1);
    const int status = OpenLevel(files, request.Files.back(), loaded, false);
    if (!loaded)
    {
        return status;
    }
    (void)checkLevel();
    return found ? ExitFound : status;
}

} // namespace kelvar::cli

namespace kelvar::cli
{

int LevelStatistics(const std::vector<std::string>& arguments)
{
    bool loaded = false;
    const std::vector<std::string> files(arguments.begin(), arguments.end() - 1);
    const int status = OpenLevel(files, arguments.back(), loaded, false);
    if (!loaded)
    {
        return status;
    }
    for (const std::string& line :
         check::StatisticsLines(map::Map().Level, app::CurrentLumpSizes()))
    {
        std::printf("%s\n", line.c_str());
    }
    return status;
}

} // namespace kelvar::cli
