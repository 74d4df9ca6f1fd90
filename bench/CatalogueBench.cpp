// Benchmarks of the texture catalogue and the browsers on freedoom2.wad: the catalogue's names
// and lists built, every texture composed, a browser page of 100 texture thumbnails read cold
// and warm, and a redraw of MAP12 with Things as their sprites at 1920x1080.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Browser.h"
#include "app/BrowserLists.h"
#include "app/BrowserPictures.h"
#include "bench/BenchData.h"
#include "game/GameState.h"
#include "gfx/GamePalette.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureCompose.h"
#include "map/MapState.h"
#include "platform/raster/RasterCanvas.h"
#include "view/Renderer.h"
#include "view/SpriteFrames.h"
#include "wad/LevelReader.h"
#include "wad/MarkerRanges.h"

#include <benchmark/benchmark.h>

namespace
{

using namespace kelvar;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";
constexpr int PageCells = 100;

void BuildCatalogue()
{
    wad::BuildMarkerLists();
    gfx::BuildTextureCatalogue({});
    gfx::BuildFlatCatalogue({});
}

// The names and lists: the marker runs, PNAMES and TEXTUREx, and the flats.
void LoadTheCatalogue(benchmark::State& state)
{
    bench::OpenIwad(Freedoom2);
    for (auto _ : state)
    {
        BuildCatalogue();
        benchmark::DoNotOptimize(gfx::Catalogue().Textures.Size());
    }
    state.counters["textures"] = static_cast<double>(gfx::Catalogue().Textures.Size());
    state.counters["flats"] = static_cast<double>(gfx::Catalogue().Flats.Size());
}
BENCHMARK(LoadTheCatalogue)->Unit(benchmark::kMillisecond);

// Every texture of TEXTURE1 composed from its patches, the patches read once and kept.
void ComposeEveryTexture(benchmark::State& state)
{
    bench::OpenIwad(Freedoom2);
    BuildCatalogue();
    const std::vector<app::BrowserItem> textures =
        app::BuildBrowserList(app::BrowseTextures, false);
    std::size_t pixels = 0;
    for (auto _ : state)
    {
        pixels = 0;
        for (const app::BrowserItem& item : textures)
        {
            if (const std::optional<gfx::ImageRaster> raster = gfx::ComposeTexture(item.Name))
            {
                pixels += static_cast<std::size_t>(raster->Width() * raster->Height());
            }
        }
        benchmark::DoNotOptimize(pixels);
    }
    state.counters["textures"] = static_cast<double>(textures.size());
    state.counters["Mpixels"] = static_cast<double>(pixels) / 1e6;
}
BENCHMARK(ComposeEveryTexture)->Unit(benchmark::kMillisecond);

// One page of the Textures browser: the pictures of 100 cells read as the window reads them.
// Cold, the patch cache starts empty (the catalogue is built again before each page); warm, the
// patches of the page are in it.
void BrowserPage(benchmark::State& state, bool warm)
{
    bench::OpenIwad(Freedoom2);
    BuildCatalogue();
    app::BrowserState browser;
    app::StartBrowser(browser, app::BrowseTextures,
                      app::BuildBrowserList(app::BrowseTextures, false), "");
    const int cells = std::min(PageCells, static_cast<int>(browser.List.size()));
    const auto page = [&]
    {
        int drawn = 0;
        for (int i = 0; i < cells; ++i)
        {
            drawn += app::ReadBrowserPicture(browser, i).Raster ? 1 : 0;
        }
        return drawn;
    };
    int drawn = page();
    for (auto _ : state)
    {
        if (!warm)
        {
            state.PauseTiming();
            BuildCatalogue();
            state.ResumeTiming();
        }
        drawn = page();
        benchmark::DoNotOptimize(drawn);
    }
    state.counters["drawn"] = drawn;
}
void BrowserPageCold(benchmark::State& state)
{
    BrowserPage(state, false);
}
void BrowserPageWarm(benchmark::State& state)
{
    BrowserPage(state, true);
}
BENCHMARK(BrowserPageCold)->Unit(benchmark::kMillisecond);
BENCHMARK(BrowserPageWarm)->Unit(benchmark::kMillisecond);

// MAP12 in Thing mode with every Thing drawn as its sprite, into a 1920x1080 raster; the
// sprite frames are decoded on the first redraw and kept.
void RedrawMap12WithSprites(benchmark::State& state)
{
    bench::OpenIwad(Freedoom2);
    map::ResetMap();
    map::LevelData& level = map::Map().Level;
    (void)wad::ReadLevel(level, "MAP12", false);
    game::SelectGameTables();
    wad::BuildMarkerLists();
    view::ViewState view;
    view.Options.SpriteDisplay = gfx::LoadGamePalette(0) == 1;
    view::SetWindowSize(view.Viewport, 1920, 1080);
    view::BestFit(view.Viewport, level);
    platform::RasterCanvas canvas(1920, 1080, view::ColorTable());
    view::MapPicture picture;
    picture.Level = &level;
    picture.EditMode = view::ModeThings;
    view::DrawMap(canvas, picture, view, view::DrawFull);
    for (auto _ : state)
    {
        view::DrawMap(canvas, picture, view, view::DrawFull);
        benchmark::DoNotOptimize(canvas.Data().data());
    }
    state.counters["things"] = level.Things.Count();
    state.counters["sprites"] = view.Options.SpriteDisplay ? 1 : 0;
}
BENCHMARK(RedrawMap12WithSprites)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
