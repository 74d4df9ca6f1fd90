// Benchmarks of the level reader: the largest Freedoom 2 level, and a generated level of
// 250,000 LineDefs in the Extended Format, with the heap peak of each read.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "bench/HeapCounter.h"
#include "map/LevelData.h"
#include "map/MapState.h"
#include "platform/ConsoleUi.h"
#include "wad/GameIdentity.h"
#include "wad/LevelReader.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

using namespace kelvar;

void ReadBenchmark(benchmark::State& state, const std::string& iwad, const std::string& name)
{
    bench::OpenIwad(iwad);
    std::size_t peak = 0;
    for (auto _ : state)
    {
        map::LevelData level;
        bench::ResetHeapPeak();
        const std::size_t before = bench::HeapInUse();
        (void)wad::ReadLevel(level, name, false);
        peak = bench::HeapPeak() - before;
        benchmark::DoNotOptimize(&level.LineDefs);
        state.counters["linedefs"] = level.LineDefs.Count();
    }
    const double lumps = bench::LevelLumpBytes(name);
    state.counters["lump_bytes"] = lumps;
    state.counters["heap_peak_bytes"] = static_cast<double>(peak);
    state.counters["peak_over_lumps"] = static_cast<double>(peak) / lumps;
}

void ReadFreedoomMap12(benchmark::State& state)
{
    ReadBenchmark(state, "/usr/share/games/doom/freedoom2.wad", "MAP12");
}
BENCHMARK(ReadFreedoomMap12)->Unit(benchmark::kMillisecond);

void ReadHugeExtendedLevel(benchmark::State& state)
{
    ReadBenchmark(state, bench::MakeHugeLevel(), "MAP01");
}
BENCHMARK(ReadHugeExtendedLevel)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
