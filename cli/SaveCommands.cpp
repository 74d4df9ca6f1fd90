// kelvar-cli save: a level written through the editor's save pipeline.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SaveCommands.h"

#include "app/SaveDispatcher.h"
#include "app/Session.h"
#include "cli/BatchUi.h"
#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "map/MapState.h"
#include "platform/Paths.h"
#include "wad/WadState.h"

#include <cstdio>
#include <filesystem>

namespace kelvar::cli
{
namespace
{

struct SaveRequest
{
    std::vector<std::string> Files;
    std::string Level;
    std::string Output;
    bool Nodes = false;
    bool NewLevel = false; // edit only: start from the level made empty, as File, New Level does
};

bool ParseRequest(const std::vector<std::string>& arguments, SaveRequest& request, bool editing)
{
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        if (arguments[i] == "-o" && i + 1 < arguments.size())
        {
            request.Output = arguments[++i];
        }
        else if (arguments[i] == "--nodes")
        {
            request.Nodes = true;
        }
        else if (editing && arguments[i] == "--new")
        {
            request.NewLevel = true;
        }
        else
        {
            positional.push_back(arguments[i]);
        }
    }
    if (positional.size() < 2 || request.Output.empty())
    {
        std::fprintf(stderr, "kelvar-cli: %s IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes]%s\n",
                     editing ? "edit" : "save", editing ? " [--new] -- COMMAND..." : "");
        return false;
    }
    request.Level = positional.back();
    request.Files.assign(positional.begin(), positional.end() - 1);
    return true;
}

} // namespace

int SaveLevel(const std::vector<std::string>& arguments, const LevelEdit& edit)
{
    SaveRequest request;
    if (!ParseRequest(arguments, request, static_cast<bool>(edit)))
    {
        return ExitUsage;
    }
    std::error_code error;
    const std::filesystem::path output = std::filesystem::absolute(request.Output, error);
    BatchUi ui(output);
    platform::ScopedUi scoped(ui);

    // The node builder's temporary file goes where the editor puts it.
    wad::Wad().ProgramDir = platform::DefaultProgramDir();
    std::filesystem::create_directories(wad::Wad().ProgramDir, error);
    bool loaded = false;
    const int status = OpenLevel(request.Files, request.Level, loaded, request.NewLevel);
    if (!loaded)
    {
        return status;
    }
    app::Session().LevelLoaded = true;
    app::Session().AppState = app::AppEditing;
    if (edit)
    {
        const int edited = edit();
        if (edited != ExitOk)
        {
            return edited;
        }
    }

    const int code = request.Nodes ? wad::BuildNodesCode : wad::SaveLevelCode;
    if (app::SaveDispatcher(code, std::nullopt, true) != app::SaveDone)
    {
        std::fprintf(stderr, "kelvar-cli: %s was not saved\n", request.Level.c_str());
        return ExitBadFile;
    }
    std::printf("%s: %s saved%s\n", output.c_str(), request.Level.c_str(),
                request.Nodes ? " with new nodes" : "");
    return status;
}

} // namespace kelvar::cli
