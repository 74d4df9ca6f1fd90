// Benchmarks of the map view: a full redraw at best fit into a 1920x1080 raster canvas, and
// hit tests at random points, on Freedoom 2 MAP12 and on a level of 250,000 LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "map/MapState.h"
#include "map/SpatialIndex.h"
#include "platform/raster/RasterCanvas.h"
#include "view/HitTest.h"
#include "view/Renderer.h"
#include "wad/LevelReader.h"

#include <benchmark/benchmark.h>

#include <random>

namespace
{

using namespace kelvar;

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// Opens the IWAD and reads the level into the map model's current level.
map::LevelData& Load(const std::string& iwad, const std::string& name)
{
    bench::OpenIwad(iwad);
    map::LevelData& level = map::Map().Level;
    (void)wad::ReadLevel(level, name, false);
    return level;
}

void Redraw(benchmark::State& state, const std::string& iwad, const std::string& name)
{
    const map::LevelData& level = Load(iwad, name);
    view::ViewState view;
    view::SetWindowSize(view.Viewport, 1920, 1080);
    view::BestFit(view.Viewport, level);
    platform::RasterCanvas canvas(1920, 1080, view::ColorTable());
    view::MapPicture picture;
    picture.Level = &level;
    for (auto _ : state)
    {
        view::DrawMap(canvas, picture, view, view::DrawFull);
        benchmark::DoNotOptimize(canvas.Data().data());
    }
    state.counters["linedefs"] = level.LineDefs.Count();
}

void HitTests(benchmark::State& state, const std::string& iwad, const std::string& name)
{
    const map::LevelData& level = Load(iwad, name);
    view::MapViewport viewport;
    view::SetWindowSize(viewport, 1920, 1080);
    viewport.Scale = 1.0f;
    (void)map::IndexOf(level); // built once, as the first pointer move after a load builds it
    std::mt19937 random(11);
    std::uniform_real_distribution<double> x(level.MinX, level.MaxX);
    std::uniform_real_distribution<double> y(level.MinY, level.MaxY);
    int found = 0;
    for (auto _ : state)
    {
        view::CenterOn(viewport, x(random), y(random));
        // What the pointer tracking does on a move in LineDef mode: the nearest line within
        // the object select range.
        found += view::FindNearPointer(level, viewport, view::ModeLineDefs, 10, 960, 540) >= 0;
    }
    state.counters["hits"] = found;
}

void RedrawMap12(benchmark::State& state)
{
    Redraw(state, Freedoom2, "MAP12");
}
BENCHMARK(RedrawMap12)->Unit(benchmark::kMillisecond);

void RedrawHugeLevel(benchmark::State& state)
{
    Redraw(state, bench::MakeHugeLevel(), "MAP01");
}
BENCHMARK(RedrawHugeLevel)->Unit(benchmark::kMillisecond);

void HitTestMap12(benchmark::State& state)
{
    HitTests(state, Freedoom2, "MAP12");
}
BENCHMARK(HitTestMap12)->Unit(benchmark::kMicrosecond);

void HitTestHugeLevel(benchmark::State& state)
{
    HitTests(state, bench::MakeHugeLevel(), "MAP01");
}
BENCHMARK(HitTestHugeLevel)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
