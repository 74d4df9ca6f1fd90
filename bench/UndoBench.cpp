// Benchmarks of undo: taking a step, undoing and redoing it on Freedoom 2 MAP12 and on the
// generated level of 250,000 LineDefs, and the memory that 500 steps of small edits hold.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "bench/HeapCounter.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Undo.h"
#include "wad/LevelReader.h"

#include <benchmark/benchmark.h>

#include <random>
#include <string>

namespace
{

using namespace kelvar;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// Reads the level into the map model, undo on with the largest limit.
void LoadLevel(const std::string& iwad, const std::string& name)
{
    bench::OpenIwad(iwad);
    map::MapState& map = map::Map();
    (void)wad::ReadLevel(map.Level, name, false);
    map.Options.UndoEnabled = true;
    map.Options.UndoLimit = 1000;
    map::UndoReset();
}

// The bytes a plain full copy of the level's five arrays holds.
double FullCopyBytes(const map::LevelData& level)
{
    return static_cast<double>(
        level.Things.size() * sizeof(map::Thing) + level.LineDefs.size() * sizeof(map::LineDef) +
        level.SideDefs.size() * sizeof(map::SideDef) + level.Vertexes.size() * sizeof(map::Vertex) +
        level.Sectors.size() * sizeof(map::Sector));
}

// A small edit as a drag makes it: a few Vertexes moved.
void MoveSomeVertexes(std::mt19937& random)
{
    map::LevelData& level = map::Map().Level;
    std::uniform_int_distribution<std::size_t> pick(0, level.Vertexes.size() - 1);
    for (int i = 0; i < 3; ++i)
    {
        map::Vertex& vertex = level.Vertexes[pick(random)];
        vertex.X = static_cast<std::int16_t>(vertex.X + 8);
    }
    map::NoteChange(level, map::KindVertex);
}

void SaveStep(benchmark::State& state, const std::string& iwad, const std::string& name)
{
    LoadLevel(iwad, name);
    std::mt19937 random(1);
    for (auto _ : state)
    {
        state.PauseTiming();
        if (map::Map().Undo.Position >= 900)
        {
            map::UndoReset();
        }
        MoveSomeVertexes(random);
        state.ResumeTiming();
        benchmark::DoNotOptimize(map::SaveUndoStep());
    }
    map::UndoReset();
}

void UndoThenRedo(benchmark::State& state, const std::string& iwad, const std::string& name,
                  bool timeUndo)
{
    LoadLevel(iwad, name);
    std::mt19937 random(1);
    (void)map::SaveUndoStep();
    MoveSomeVertexes(random);
    for (auto _ : state)
    {
        if (!timeUndo)
        {
            state.PauseTiming();
        }
        benchmark::DoNotOptimize(map::UndoStep());
        if (!timeUndo)
        {
            state.ResumeTiming();
        }
        else
        {
            state.PauseTiming();
        }
        benchmark::DoNotOptimize(map::RedoStep());
        if (timeUndo)
        {
            state.ResumeTiming();
        }
    }
    map::UndoReset();
}

// 500 steps, each followed by a small edit: the heap they hold against one full copy.
void FiveHundredSmallSteps(benchmark::State& state)
{
    LoadLevel(bench::MakeHugeLevel(), "MAP01");
    std::mt19937 random(1);
    double held = 0;
    for (auto _ : state)
    {
        map::UndoReset();
        const std::size_t before = bench::HeapInUse();
        for (int step = 0; step < 500; ++step)
        {
            (void)map::SaveUndoStep();
            MoveSomeVertexes(random);
        }
        held = static_cast<double>(bench::HeapInUse() - before);
    }
    const double copy = FullCopyBytes(map::Map().Level);
    state.counters["steps_bytes"] = held;
    state.counters["full_copy_bytes"] = copy;
    state.counters["steps_over_copy"] = held / copy;
    map::UndoReset();
}

void SaveUndoStepMap12(benchmark::State& state)
{
    SaveStep(state, Freedoom2, "MAP12");
}
void SaveUndoStepHuge(benchmark::State& state)
{
    SaveStep(state, bench::MakeHugeLevel(), "MAP01");
}
void UndoStepMap12(benchmark::State& state)
{
    UndoThenRedo(state, Freedoom2, "MAP12", true);
}
void UndoStepHuge(benchmark::State& state)
{
    UndoThenRedo(state, bench::MakeHugeLevel(), "MAP01", true);
}
void RedoStepMap12(benchmark::State& state)
{
    UndoThenRedo(state, Freedoom2, "MAP12", false);
}
void RedoStepHuge(benchmark::State& state)
{
    UndoThenRedo(state, bench::MakeHugeLevel(), "MAP01", false);
}

BENCHMARK(SaveUndoStepMap12)->Unit(benchmark::kMicrosecond);
BENCHMARK(SaveUndoStepHuge)->Unit(benchmark::kMicrosecond);
BENCHMARK(UndoStepMap12)->Unit(benchmark::kMicrosecond);
BENCHMARK(UndoStepHuge)->Unit(benchmark::kMicrosecond);
BENCHMARK(RedoStepMap12)->Unit(benchmark::kMicrosecond);
BENCHMARK(RedoStepHuge)->Unit(benchmark::kMicrosecond);
BENCHMARK(FiveHundredSmallSteps)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
