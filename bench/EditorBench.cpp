// Benchmarks of the object editors: one change applied to a marked set of 10,000 LineDefs of
// Freedoom 2 MAP12 (with the undo step the dialog takes), the same change where every LineDef
// already has it, and the decoding of every generalized LineDef number.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "game/GameState.h"
#include "game/Generalized.h"
#include "game/ObjectEdit.h"
#include "map/MapState.h"
#include "map/Undo.h"
#include "wad/LevelReader.h"

#include <benchmark/benchmark.h>

#include <numeric>

namespace
{

using namespace kelvar;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";
constexpr int MarkedLines = 10000;

map::LevelData LoadMap12()
{
    bench::OpenIwad(Freedoom2);
    map::ResetMap();
    (void)wad::ReadLevel(map::Map().Level, "MAP12", false);
    return map::Map().Level;
}

std::vector<std::int32_t> FirstLines(const map::LevelData& level)
{
    std::vector<std::int32_t> lines(
        static_cast<std::size_t>(std::min(MarkedLines, level.LineDefs.Count())));
    std::iota(lines.begin(), lines.end(), 0);
    return lines;
}

// The Secret bit set on 10,000 LineDefs, most of which lack it: the undo step, then the
// compare and write of each.
void EditorChangeOnTenThousandLineDefs(benchmark::State& state)
{
    const map::LevelData original = LoadMap12();
    const std::vector<std::int32_t> lines = FirstLines(original);
    int written = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        map::LevelData level = original;
        map::UndoTable undo;
        state.ResumeTiming();
        game::ObjectEditor editor(
            level, map::KindLineDef, lines,
            [&] { (void)map::SaveUndoStep(undo, level, map::UndoSlots, true, false); });
        written = editor.SetLineFlag(game::LineSecret, true);
        benchmark::DoNotOptimize(level.LineDefs.Stamp());
    }
    state.counters["written"] = written;
    state.counters["lines"] = static_cast<double>(lines.size());
}
BENCHMARK(EditorChangeOnTenThousandLineDefs)->Unit(benchmark::kMillisecond);

// A change every LineDef already has: each is compared and none written, so no undo step.
void EditorChangeThatChangesNothing(benchmark::State& state)
{
    map::LevelData level = LoadMap12();
    const std::vector<std::int32_t> lines = FirstLines(level);
    game::ObjectEditor(level, map::KindLineDef, lines).SetLineFlag(game::LineSecret, true);
    for (auto _ : state)
    {
        game::ObjectEditor editor(level, map::KindLineDef, lines);
        benchmark::DoNotOptimize(editor.SetLineFlag(game::LineSecret, true));
    }
}
BENCHMARK(EditorChangeThatChangesNothing)->Unit(benchmark::kMillisecond);

// Every number of the generalized range decoded into its row and name.
void DecodeEveryGeneralizedLineType(benchmark::State& state)
{
    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    std::size_t characters = 0;
    for (auto _ : state)
    {
        characters = 0;
        for (int type = 12160; type <= 32767; ++type)
        {
            characters +=
                game::Text(game::DecodeGeneralizedLine(static_cast<std::uint16_t>(type)).Name)
                    .size();
        }
        benchmark::DoNotOptimize(characters);
    }
    state.counters["types"] = 32767 - 12160 + 1;
}
BENCHMARK(DecodeEveryGeneralizedLineType)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
