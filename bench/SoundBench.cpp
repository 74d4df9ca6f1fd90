// Benchmarks of sound and music conversion: every sound lump of freedoom2.wad to WAV, and the
// longest Freedoom song from MIDI to MUS and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MidiToMus.h"
#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/WaveConversion.h"
#include "wad/WadFormat.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace
{

using namespace kelvar;
using Bytes = std::vector<std::uint8_t>;

const char* const Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// Every lump of the IWAD by name, read once.
const std::map<std::string, Bytes>& Lumps()
{
    static const std::map<std::string, Bytes> lumps = []
    {
        std::map<std::string, Bytes> read;
        std::FILE* file = std::fopen(Freedoom2, "rb");
        if (file == nullptr)
        {
            return read;
        }
        const Bytes header = sound::ReadRange(file, 0, wad::WadHeaderSize);
        const auto count = wad::ReadLe32(&header[4]);
        const Bytes directory =
            sound::ReadRange(file, wad::ReadLe32(&header[8]), count * wad::DirectoryEntrySize);
        for (std::int32_t i = 0; i < count; ++i)
        {
            const std::uint8_t* entry = &directory[static_cast<std::size_t>(i) * 16];
            const std::string name(reinterpret_cast<const char*>(entry + 8),
                                   strnlen(reinterpret_cast<const char*>(entry + 8), 8));
            read[name] = sound::ReadRange(file, wad::ReadLe32(entry), wad::ReadLe32(entry + 4));
        }
        std::fclose(file);
        return read;
    }();
    return lumps;
}

void AllSoundsToWav(benchmark::State& state)
{
    std::vector<const Bytes*> sounds;
    for (const auto& [name, lump] : Lumps())
    {
        if (sound::IsSnd(lump, sound::ListRateLow))
        {
            sounds.push_back(&lump);
        }
    }
    Bytes wav;
    std::int64_t bytes = 0;
    for (auto _ : state)
    {
        for (const Bytes* lump : sounds)
        {
            benchmark::DoNotOptimize(sound::SndToWav(*lump, wav));
            bytes += static_cast<std::int64_t>(lump->size());
        }
    }
    state.counters["sounds"] = static_cast<double>(sounds.size());
    state.SetBytesProcessed(bytes);
}
BENCHMARK(AllSoundsToWav)->Unit(benchmark::kMillisecond);

// D_ROMER2, 67,747 bytes of MIDI, Freedoom's longest song.
void LongMidiToMus(benchmark::State& state)
{
    const Bytes& midi = Lumps().at("D_ROMER2");
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(sound::MidiToMusBytes(midi, 140));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(midi.size()));
}
BENCHMARK(LongMidiToMus)->Unit(benchmark::kMillisecond);

void LongMusToMidi(benchmark::State& state)
{
    const Bytes mus = sound::MidiToMusBytes(Lumps().at("D_ROMER2"), 140).Mus;
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(sound::MusToMidiBytes(mus, {}));
    }
    state.counters["mus_bytes"] = static_cast<double>(mus.size());
}
BENCHMARK(LongMusToMidi)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
