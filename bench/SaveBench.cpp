// Benchmarks of saving: the largest Freedoom 2 level written from memory into a PWAD of its
// own, as Save Level writes it (no node build; kelvarbsp is timed beside zdbsp by
// bench/nodes.py).
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "map/MapState.h"
#include "platform/ConsoleUi.h"
#include "wad/LevelFile.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <optional>
#include <string>

namespace
{

using namespace kelvar;

void SaveFreedoomMap12(benchmark::State& state)
{
    bench::OpenIwad("/usr/share/games/doom/freedoom2.wad");
    map::LevelData& level = map::Map().Level;
    (void)wad::ReadLevel(level, "MAP12", false);
    const std::string path =
        (std::filesystem::temp_directory_path() / "kelvar-bench-save.wad").string();
    std::int64_t bytes = 0;
    for (auto _ : state)
    {
        // Changed objects come from memory; the node lumps are copied from the IWAD.
        level.ChangeCount = 1;
        std::optional<wad::SavePlan> plan =
            wad::PlanLevelSave(level, path, wad::SaveLevelCode, std::nullopt, {});
        wad::WadOutput out;
        if (!plan || !wad::CreateSaveOutput(*plan, out) || !wad::WriteLevelSave(out, level, *plan))
        {
            state.SkipWithError("the save failed");
            break;
        }
        bytes = static_cast<std::int64_t>(std::filesystem::file_size(path));
    }
    state.counters["file_bytes"] = static_cast<double>(bytes);
    std::filesystem::remove(path);
}
BENCHMARK(SaveFreedoomMap12)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
