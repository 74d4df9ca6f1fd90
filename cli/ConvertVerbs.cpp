// kelvar-cli convert, used and unused: texture names replaced by a .CVT table, and the reports
// of the textures and flats a PWAD uses, defines and leaves unused, printed on stdout.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchUi.h"
#include "cli/Commands.h"
#include "cli/Verbs.h"
#include "cli/WadCommands.h"
#include "lumps/TextureConvert.h"
#include "lumps/UsageReport.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::cli
{
namespace
{

// The console, with the reports' text printed on stdout as it stands; messages go to stderr and
// questions take No.
class ReportUi final : public ConsoleBackedUi
{
public:
    ReportUi() : ConsoleBackedUi(0) {}

    void ShowTextFile(const std::string& /*caption*/, const std::filesystem::path& file) override
    {
        std::ifstream in(file);
        std::string line;
        while (std::getline(in, line))
        {
            std::printf("%s\n", line.c_str());
        }
    }
};

// The words of a command line: the files, the values of the options and the switches given.
struct Request
{
    std::vector<std::string> Files;
    std::vector<std::pair<std::string, std::string>> Values; // "-o", "--cvt", "--level"
    std::vector<std::string> Switches;

    std::string Value(const std::string& option) const
    {
        const auto found =
            std::find_if(Values.begin(), Values.end(),
                         [&option](const auto& pair) { return pair.first == option; });
        return found != Values.end() ? found->second : std::string();
    }
    bool Has(const std::string& word) const
    {
        return std::find(Switches.begin(), Switches.end(), word) != Switches.end();
    }
};

// Splits the words; nothing (after the usage line) when a word is unknown or an option lacks
// its value.
std::optional<Request> ParseRequest(const std::vector<std::string>& arguments,
                                    const std::vector<std::string>& options,
                                    const std::vector<std::string>& switches, const char* usage)
{
    Request request;
    bool valid = true;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        if (std::find(options.begin(), options.end(), word) != options.end())
        {
            valid = valid && i + 1 < arguments.size();
            request.Values.emplace_back(word, valid ? arguments[++i] : std::string());
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
    if (!valid)
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        return std::nullopt;
    }
    return request;
}

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b)
{
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

int Convert(const std::vector<std::string>& arguments)
{
    const char* usage = "convert PWAD --cvt FILE.cvt -o OUT.wad [--list]";
    const std::optional<Request> request =
        ParseRequest(arguments, {"--cvt", "-o"}, {"--list"}, usage);
    if (!request || request->Files.size() != 1 || request->Value("-o").empty())
    {
        if (request)
        {
            std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        }
        return ExitUsage;
    }
    ReportUi ui;
    const platform::ScopedUi installed(ui);
    return lumps::ConvertTextures(request->Value("--cvt"), request->Files[0], request->Value("-o"),
                                  request->Has("--list")) == 1
               ? ExitOk
               : ExitBadFile;
}

// Opens the IWAD and the PWADs; the last PWAD is the one reported on.
int OpenForReport(const Request& request, const char* usage)
{
    if (request.Files.size() < 2)
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        return ExitUsage;
    }
    const int status = OpenFiles(request.Files);
    return wad::Wad().Files[0].State == 0 ? ExitBadFile : status;
}

int Used(const std::vector<std::string>& arguments)
{
    const char* usage = "used IWAD [PWAD...] PWAD [--level MAPNAME] [--defined]";
    const std::optional<Request> request =
        ParseRequest(arguments, {"--level"}, {"--defined"}, usage);
    if (!request)
    {
        return ExitUsage;
    }
    const int status = OpenForReport(*request, usage);
    if (status != ExitOk)
    {
        return status;
    }
    ReportUi ui;
    const platform::ScopedUi installed(ui);
    const int shown =
        request->Has("--defined")
            ? lumps::ListTextureNames(request->Files.back())
            : lumps::ListTexturesUsed(request->Files.back(), request->Value("--level"));
    return shown == 1 ? ExitOk : ExitBadFile;
}

int Unused(const std::vector<std::string>& arguments)
{
    const char* usage = "unused IWAD [PWAD...] PWAD [--delete -o OUT.wad]";
    const std::optional<Request> request = ParseRequest(arguments, {"-o"}, {"--delete"}, usage);
    if (!request)
    {
        return ExitUsage;
    }
    const std::filesystem::path output = request->Value("-o");
    if (request->Has("--delete") != !output.empty())
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", usage);
        return ExitUsage;
    }
    const std::filesystem::path pwad = request->Files.empty() ? "" : request->Files.back();
    if (!output.empty() && (SameFile(output, pwad) || SameFile(wad::BakPathOf(output), pwad)))
    {
        std::fprintf(stderr, "kelvar-cli: the output may not replace the PWAD %s\n", pwad.c_str());
        return ExitUsage;
    }
    const int status = OpenForReport(*request, usage);
    if (status != ExitOk)
    {
        return status;
    }
    ReportUi ui;
    const platform::ScopedUi installed(ui);
    lumps::UnusedOptions options;
    options.DeleteMode = request->Has("--delete");
    options.NextStepNotice = false;
    options.LevelFiles.assign(request->Files.begin() + 1, request->Files.end() - 1);
    lumps::UnusedDeletion deletion;
    if (lumps::ListUnused(pwad, options, &deletion) != 1)
    {
        return ExitBadFile;
    }
    if (!options.DeleteMode)
    {
        return ExitOk;
    }
    if (!wad::RewriteWad(output, deletion.Plan))
    {
        return ExitBadFile;
    }
    std::fprintf(stderr, "%s: %d flats, %d textures and %d patches deleted\n", output.c_str(),
                 deletion.Flats, deletion.Textures, deletion.Patches);
    return ExitOk;
}

} // namespace

KELVAR_CLI_VERB(Convert, "convert", Convert,
                "  convert PWAD --cvt FILE.cvt -o OUT.wad [--list]\n"
                "                          the PWAD written as OUT.wad with the flat and wall\n"
                "                          names of all its levels replaced by the pairs of the\n"
                "                          conversion table; the log on stdout, --list with each\n"
                "                          replacement and each name the table lacks\n");
KELVAR_CLI_VERB(Used, "used", Used,
                "  used IWAD [PWAD...] PWAD [--level MAPNAME] [--defined]\n"
                "                          the flats and wall textures the levels of the last\n"
                "                          PWAD use (or of the one level), each once; --defined:\n"
                "                          the flats, textures and patch names the PWAD defines\n");
KELVAR_CLI_VERB(Unused, "unused", Unused,
                "  unused IWAD [PWAD...] PWAD [--delete -o OUT.wad]\n"
                "                          the flats, textures and patches the last PWAD defines\n"
                "                          that no level of the PWADs uses; --delete writes\n"
                "                          OUT.wad without them\n");

} // namespace kelvar::cli
