// kelvar-cli render: a level drawn as the map window shows it, into a PNG file.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/RenderCommands.h"

#include "cli/Commands.h"
#include "cli/WadCommands.h"
#include "gfx/GamePalette.h"
#include "map/MapState.h"
#include "platform/raster/RasterCanvas.h"
#include "view/Renderer.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <cstdio>
#include <cstdlib>

namespace kelvar::cli
{
namespace
{

struct RenderRequest
{
    std::vector<std::string> Files;
    std::string Level;
    std::string Output;
    int Mode = view::ModeLineDefs;
    int Width = 1280;
    int Height = 960;
    bool Sprites = false; // Things as their sprites (in Thing mode)
};

// Reads the arguments; false (after saying why) when they don't make a request.
bool ParseRequest(const std::vector<std::string>& arguments, RenderRequest& request)
{
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if ((word == "-o" || word == "--output") && hasValue)
        {
            request.Output = arguments[++i];
        }
        else if (word == "--mode" && hasValue)
        {
            request.Mode = EditModeOfWord(arguments[++i]);
            if (request.Mode == 0)
            {
                std::fprintf(stderr,
                             "kelvar-cli: --mode is things, linedefs, vertexes or sectors\n");
                return false;
            }
        }
        else if (word == "--sprites")
        {
            request.Sprites = true;
        }
        else if (word == "--size" && hasValue)
        {
            if (std::sscanf(arguments[++i].c_str(), "%dx%d", &request.Width, &request.Height) !=
                    2 ||
                request.Width < 16 || request.Height < 16 || request.Width > 16384 ||
                request.Height > 16384)
            {
                std::fprintf(stderr, "kelvar-cli: --size is WIDTHxHEIGHT, 16 to 16384 each\n");
                return false;
            }
        }
        else
        {
            positional.push_back(word);
        }
    }
    if (positional.size() < 2 || request.Output.empty())
    {
        std::fprintf(stderr, "kelvar-cli: render needs IWAD [PWAD...] MAPNAME -o FILE.png\n");
        return false;
    }
    request.Level = positional.back();
    request.Files.assign(positional.begin(), positional.end() - 1);
    return true;
}

} // namespace

int RenderLevel(const std::vector<std::string>& arguments)
{
    RenderRequest request;
    if (!ParseRequest(arguments, request))
    {
        return ExitUsage;
    }
    bool loaded = false;
    const int status = OpenLevel(request.Files, request.Level, loaded);
    if (!loaded)
    {
        return status;
    }
    const map::LevelData& level = map::Map().Level;

    view::ViewState state;
    state.Options.LevelFormat = wad::Wad().Game.Format;
    if (request.Sprites)
    {
        // The sprites come from the sprite runs, in the game palette's colours.
        wad::BuildMarkerLists();
        state.Options.SpriteDisplay = gfx::LoadGamePalette(0) == 1;
    }
    view::SetWindowSize(state.Viewport, request.Width, request.Height);
    view::BestFit(state.Viewport, level);
    platform::RasterCanvas canvas(request.Width, request.Height, view::ColorTable());
    view::MapPicture picture;
    picture.Level = &level;
    picture.EditMode = request.Mode;
    view::DrawMap(canvas, picture, state, view::DrawFull);
    if (!platform::WritePng(request.Output, request.Width, request.Height, canvas.Data()))
    {
        std::fprintf(stderr, "kelvar-cli: can't write %s\n", request.Output.c_str());
        return ExitBadFile;
    }
    std::printf("%s: %s %dx%d at scale %.3f\n", request.Output.c_str(), request.Level.c_str(),
                request.Width, request.Height, static_cast<double>(state.Viewport.Scale));
    return status;
}

} // namespace kelvar::cli
