// Benchmarks of the Sector rays and the drag: SectorAt at random points of Freedoom 2 MAP12 and
// of the generated level of 250,000 LineDefs, SectorBeside on both sides of every LineDef of
// MAP12 beside a plain scan of every LineDef, and one drag step of 10,000 Vertexes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "map/MapState.h"
#include "map/ObjectList.h"
#include "map/SectorRays.h"
#include "map/Undo.h"
#include "tools/DragTool.h"
#include "wad/LevelReader.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>

namespace
{

using namespace kelvar;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

void LoadLevel(const std::string& iwad, const std::string& name)
{
    bench::OpenIwad(iwad);
    map::ResetMap();
    (void)wad::ReadLevel(map::Map().Level, name, false);
}

void SectorAtRandomPoints(benchmark::State& state, const std::string& iwad)
{
    LoadLevel(iwad, iwad == Freedoom2 ? "MAP12" : "MAP01");
    const map::LevelData& level = map::Map().Level;
    std::mt19937 random(7);
    std::uniform_real_distribution<double> x(level.MinX, level.MaxX);
    std::uniform_real_distribution<double> y(level.MinY, level.MaxY);
    (void)map::SectorAt(level, 0, 0, map::SectorAtMode::Loose); // the index, built once
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(
            map::SectorAt(level, x(random), y(random), map::SectorAtMode::Loose));
    }
}

void SectorAtMap12(benchmark::State& state)
{
    SectorAtRandomPoints(state, Freedoom2);
}
void SectorAtHuge(benchmark::State& state)
{
    SectorAtRandomPoints(state, bench::MakeHugeLevel());
}

// Both sides of every LineDef, as a full rebuild of the Sectors asks.
void SectorBesideEveryLineMap12(benchmark::State& state)
{
    LoadLevel(Freedoom2, "MAP12");
    const map::LevelData& level = map::Map().Level;
    for (auto _ : state)
    {
        for (int line = 0; line < level.LineDefs.Count(); ++line)
        {
            benchmark::DoNotOptimize(map::SectorBeside(level, line, 1));
            benchmark::DoNotOptimize(map::SectorBeside(level, line, 2));
        }
    }
}

// The same pass by a ray that looks at every LineDef: the middle ray of each side only, so
// the figure is a lower bound of the plain scan's cost.
int PlainMiddleRay(const map::LevelData& level, int line, int side)
{
    const map::LineDef& tested = level.LineDefs[static_cast<std::size_t>(line)];
    const map::Vertex& a = level.Vertexes[tested.StartVertex];
    const map::Vertex& b = level.Vertexes[tested.EndVertex];
    const double px = (a.X + b.X) / 2.0;
    const double py = (a.Y + b.Y) / 2.0;
    const double nx = side == 1 ? b.Y - a.Y : a.Y - b.Y;
    const double ny = side == 1 ? a.X - b.X : b.X - a.X;
    const bool horizontal = !(std::fabs(ny) > std::fabs(nx));
    const bool positive = horizontal ? nx > 0 : ny > 0;
    double best = positive ? 327670.0 : -327670.0;
    int hit = -1;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const map::LineDef& other = level.LineDefs[i];
        const map::Vertex& c = level.Vertexes[other.StartVertex];
        const map::Vertex& d = level.Vertexes[other.EndVertex];
        const double at = horizontal ? py : px;
        const double c1 = horizontal ? c.Y : c.X;
        const double c2 = horizontal ? d.Y : d.X;
        if (static_cast<int>(i) == line || (at < c1) == (at < c2))
        {
            continue;
        }
        const double a1 = horizontal ? c.X : c.Y;
        const double a2 = horizontal ? d.X : d.Y;
        const double crossing = (at - c1) * (a2 - a1) / (c2 - c1) + a1;
        const double from = horizontal ? px : py;
        if (positive ? (crossing > from && crossing < best) : (crossing < from && crossing > best))
        {
            best = crossing;
            hit = static_cast<int>(i);
        }
    }
    return hit;
}

void PlainScanEveryLineMap12(benchmark::State& state)
{
    LoadLevel(Freedoom2, "MAP12");
    const map::LevelData& level = map::Map().Level;
    for (auto _ : state)
    {
        for (int line = 0; line < level.LineDefs.Count(); ++line)
        {
            benchmark::DoNotOptimize(PlainMiddleRay(level, line, 1));
            benchmark::DoNotOptimize(PlainMiddleRay(level, line, 2));
        }
    }
}

// One move of a drag of 10,000 Vertexes of the generated level.
void DragStep10000Vertexes(benchmark::State& state)
{
    LoadLevel(bench::MakeHugeLevel(), "MAP01");
    map::Map().Options.GridSnap = false;
    map::Map().Options.UndoEnabled = true;
    for (int v = 0; v < 10000; ++v)
    {
        map::ObjectListPush(map::Selected().Selection, v);
    }
    tools::DragState drag;
    if (!tools::DragBegin(drag, map::ModeVertexes, 0, 0, {map::ModeVertexes, -1}))
    {
        state.SkipWithError("the drag did not start");
        return;
    }
    int step = 0;
    for (auto _ : state)
    {
        ++step;
        benchmark::DoNotOptimize(tools::DragMoveTo(drag, step % 64, step % 32));
    }
    (void)tools::DragCancel(drag);
}

} // namespace

BENCHMARK(SectorAtMap12)->Unit(benchmark::kMicrosecond);
BENCHMARK(SectorAtHuge)->Unit(benchmark::kMicrosecond);
BENCHMARK(SectorBesideEveryLineMap12)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainScanEveryLineMap12)->Unit(benchmark::kMillisecond);
BENCHMARK(DragStep10000Vertexes)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
