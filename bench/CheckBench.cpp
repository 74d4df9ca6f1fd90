// Benchmarks of the level checker: every check of the dialog's "ALL" button over Freedoom 2
// MAP12 and over the generated level of 250,000 LineDefs, each check on its own over the large
// level, and a plain all-pairs search for Vertexes on one spot beside the checker's on MAP12.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "check/CheckControl.h"
#include "check/CrossReferences.h"
#include "game/GameState.h"
#include "gfx/TextureCatalogue.h"
#include "map/MapState.h"
#include "wad/FileTable.h"
#include "wad/LevelReader.h"
#include "wad/MarkerRanges.h"

#include <benchmark/benchmark.h>

#include <string>

namespace
{

using namespace kelvar;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// The level over Freedoom 2's textures and flats: the generated level is opened as a PWAD
// over the IWAD, so its names are those of a real game.
void LoadLevel(const std::string& pwad, const std::string& name)
{
    bench::OpenIwad(Freedoom2);
    if (!pwad.empty())
    {
        (void)wad::AddOpenFile(pwad, false);
    }
    map::ResetMap();
    (void)wad::ReadLevel(map::Map().Level, name, false);
    game::SelectGameTables();
    wad::BuildMarkerLists();
    gfx::BuildTextureCatalogue({});
    gfx::BuildFlatCatalogue({});
}

// One button's checks over a fresh copy of the level, findings to the error list.
void RunButton(benchmark::State& state, const std::string& pwad, const std::string& name,
               check::CheckButton button)
{
    LoadLevel(pwad, name);
    const map::LevelData original = map::Map().Level;
    const check::CheckSettings settings;
    std::size_t findings = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        map::LevelData level = original;
        state.ResumeTiming();
        check::CheckRun run(level, settings, check::RunMode::Log);
        benchmark::DoNotOptimize(check::RunChecksOf(button, run));
        findings = run.Findings.size();
    }
    state.counters["findings"] = static_cast<double>(findings);
    state.counters["linedefs"] = static_cast<double>(original.LineDefs.size());
}

void AllChecksMap12(benchmark::State& state)
{
    RunButton(state, "", "MAP12", check::CheckButton::GroupAll);
}
void AllChecksHuge(benchmark::State& state)
{
    RunButton(state, bench::MakeHugeLevel(), "MAP01", check::CheckButton::GroupAll);
}
void OneCheckHuge(benchmark::State& state)
{
    const auto button = static_cast<check::CheckButton>(state.range(0));
    RunButton(state, bench::MakeHugeLevel(), "MAP01", button);
}

// What a walk over all pairs of Vertexes costs, the search the hashing replaces.
void AllPairsVertexesMap12(benchmark::State& state)
{
    LoadLevel("", "MAP12");
    const map::LevelData& level = map::Map().Level;
    for (auto _ : state)
    {
        int pairs = 0;
        for (std::size_t a = 0; a < level.Vertexes.size(); ++a)
        {
            for (std::size_t b = a + 1; b < level.Vertexes.size(); ++b)
            {
                pairs += level.Vertexes[a] == level.Vertexes[b] ? 1 : 0;
            }
        }
        benchmark::DoNotOptimize(pairs);
    }
}
void HashedVertexesMap12(benchmark::State& state)
{
    LoadLevel("", "MAP12");
    check::CheckSettings settings;
    for (auto _ : state)
    {
        map::LevelData level = map::Map().Level;
        check::CheckRun run(level, settings, check::RunMode::Log);
        benchmark::DoNotOptimize(check::CheckVertexDuplicates(run));
    }
}

} // namespace

BENCHMARK(AllChecksMap12)->Unit(benchmark::kMillisecond);
BENCHMARK(AllChecksHuge)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(OneCheckHuge)
    ->DenseRange(static_cast<int>(kelvar::check::CheckButton::SectorsClosed),
                 static_cast<int>(kelvar::check::CheckButton::SectorTypes))
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(AllPairsVertexesMap12)->Unit(benchmark::kMillisecond);
BENCHMARK(HashedVertexesMap12)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
