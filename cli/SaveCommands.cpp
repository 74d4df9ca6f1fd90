// kelvar-cli save: a level written through the editor's save pipeline.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/SaveCommands.h"

#include "app/SaveDispatcher.h"
#include "app/Session.h"
#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "map/MapState.h"
#include "platform/ConsoleUi.h"
#include "platform/Paths.h"
#include "wad/WadState.h"

#include <cstdio>
#include <filesystem>

namespace kelvar::cli
{
namespace
{

// The console, with every question answered by its first button and every file dialog by
// the output file. The one exception: an I/O error's "Quit now ?" is answered No, so the save
// stops and the old file is put back instead of the program ending half way.
class BatchUi final : public platform::Ui
{
public:
    explicit BatchUi(std::filesystem::path output) : Output(std::move(output)) {}

    int Show(const platform::Message& message) override
    {
        if (message.IsQuestion() && message.Text().find("Quit now") != std::string::npos)
        {
            return Refusing.Show(message);
        }
        return Console.Show(message);
    }
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override
    {
        Console.ShowTextFile(caption, file);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice&) override
    {
        return Output;
    }
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override
    {
        return Console.ChooseFromList(caption, items);
    }
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override
    {
        return Console.AskNumber(caption, prompt, initial, low, high);
    }
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override
    {
        return Console.AskText(caption, prompt, initial);
    }
    void SetStatusText(const std::string& text) override { Console.SetStatusText(text); }
    void ShowProgress(const std::string& caption, const std::string& detail) override
    {
        Console.ShowProgress(caption, detail);
    }
    void EndProgress() override { Console.EndProgress(); }
    bool PollEscape() override { return false; }
    void Beep() override {}

private:
    platform::ConsoleUi Console{stderr, 1};
    platform::ConsoleUi Refusing{stderr, 0};
    std::filesystem::path Output;
};

struct SaveRequest
{
    std::vector<std::string> Files;
    std::string Level;
    std::string Output;
    bool Nodes = false;
};

bool ParseRequest(const std::vector<std::string>& arguments, SaveRequest& request)
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
        else
        {
            positional.push_back(arguments[i]);
        }
    }
    if (positional.size() < 2 || request.Output.empty())
    {
        std::fprintf(stderr, "kelvar-cli: save IWAD [PWAD...] MAPNAME -o OUT.wad [--nodes]\n");
        return false;
    }
    request.Level = positional.back();
    request.Files.assign(positional.begin(), positional.end() - 1);
    return true;
}

} // namespace

int SaveLevel(const std::vector<std::string>& arguments)
{
    SaveRequest request;
    if (!ParseRequest(arguments, request))
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
    const int status = OpenLevel(request.Files, request.Level, loaded);
    if (!loaded)
    {
        return status;
    }
    app::Session().LevelLoaded = true;
    app::Session().AppState = app::AppEditing;

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
