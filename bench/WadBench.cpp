// Benchmarks of the WAD layer: opening an IWAD into the master directory, merging big PWADs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/ConsoleUi.h"
#include "wad/FileTable.h"
#include "wad/GameIdentity.h"
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

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// Quiet: a benchmark has no one to read messages.
platform::ConsoleUi& QuietUi()
{
    static std::FILE* devnull = std::fopen("/dev/null", "w");
    static platform::ConsoleUi ui(devnull, 0);
    return ui;
}

void Prepare()
{
    wad::ResetWad();
    platform::InstallUi(&QuietUi());
    wad::Wad().ProgramDir = std::filesystem::temp_directory_path() / "kelvar-bench";
    wad::Wad().Options.IwadPath = Freedoom2;
}

// A PWAD of `count` lumps as a big resource PWAD has them: the 32 levels of the IWAD replaced,
// a thousand of its sprites and patches replaced, and new lumps for the rest.
std::string MakeBigPwad(int count)
{
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("kelvar-bench-" + std::to_string(count) + ".wad"))
                                 .string();
    if (std::filesystem::exists(path))
    {
        return path;
    }
    std::vector<std::string> names;
    static const char* const LevelLumps[] = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                             "SEGS",   "SSECTORS", "NODES",    "SECTORS",
                                             "REJECT", "BLOCKMAP"};
    for (int map = 1; map <= 32; ++map)
    {
        char marker[16];
        std::snprintf(marker, sizeof marker, "MAP%02d", map);
        names.emplace_back(marker);
        names.insert(names.end(), std::begin(LevelLumps), std::end(LevelLumps));
    }
    wad::ResetWad();
    Prepare();
    if (wad::ScanMainIwad(Freedoom2) != 1)
    {
        return path;
    }
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = 950; i < master.Size() && names.size() < 1352; i += 2)
    {
        names.push_back(master[i].Name.Text()); // sprites and patches of the IWAD
    }
    for (int i = 0; static_cast<int>(names.size()) < count; ++i)
    {
        char name[16];
        std::snprintf(name, sizeof name, "N%07d", i % 10000000);
        names.emplace_back(name);
    }

    std::vector<std::uint8_t> file(12, 0);
    std::vector<std::uint8_t> directory;
    for (const std::string& name : names)
    {
        const auto offset = static_cast<std::int32_t>(file.size());
        const std::int32_t size = name.rfind("MAP", 0) == 0 ? 0 : 16;
        file.insert(file.end(), static_cast<std::size_t>(size), 0x5A);
        std::uint8_t entry[16] = {};
        wad::WriteLe32(entry, offset);
        wad::WriteLe32(entry + 4, size);
        std::copy_n(name.begin(), std::min<std::size_t>(name.size(), 8), entry + 8);
        directory.insert(directory.end(), entry, entry + 16);
    }
    const auto directoryOffset = static_cast<std::int32_t>(file.size());
    file.insert(file.end(), directory.begin(), directory.end());
    std::copy_n("PWAD", 4, file.begin());
    wad::WriteLe32(file.data() + 4, static_cast<std::int32_t>(names.size()));
    wad::WriteLe32(file.data() + 8, directoryOffset);
    std::FILE* out = std::fopen(path.c_str(), "wb");
    std::fwrite(file.data(), 1, file.size(), out);
    std::fclose(out);
    return path;
}

void OpenFreedoom2(benchmark::State& state)
{
    Prepare();
    for (auto _ : state)
    {
        const int result = wad::ScanMainIwad(Freedoom2);
        benchmark::DoNotOptimize(result);
    }
    state.counters["lumps"] = static_cast<double>(wad::Master().Size());
}
BENCHMARK(OpenFreedoom2)->Unit(benchmark::kMicrosecond);

void MergePwad(benchmark::State& state)
{
    const std::string pwad = MakeBigPwad(static_cast<int>(state.range(0)));
    Prepare();
    for (auto _ : state)
    {
        state.PauseTiming();
        wad::CloseFiles('A', true, true);
        (void)wad::ScanMainIwad(Freedoom2);
        state.ResumeTiming();
        const int number = wad::AddOpenFile(pwad, true);
        benchmark::DoNotOptimize(number);
    }
    state.counters["master"] = static_cast<double>(wad::Master().Size());
}
BENCHMARK(MergePwad)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
