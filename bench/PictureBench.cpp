// Benchmarks of picture lumps: every picture of freedoom2.wad decoded, every lump classified.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"
#include "gfx/LumpKind.h"
#include "gfx/Picture.h"
#include "wad/MarkerRanges.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace
{

using namespace kelvar;

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// The IWAD's bytes and, for each lump, where it lies.
struct IwadInMemory
{
    std::vector<std::uint8_t> File;
    struct Lump
    {
        std::size_t Offset = 0;
        std::size_t Size = 0;
    };
    std::vector<Lump> Lumps;

    std::span<const std::uint8_t> From(const Lump& lump, std::size_t count) const
    {
        const std::size_t available = File.size() - lump.Offset;
        return std::span(File).subspan(lump.Offset, std::min(count, available));
    }
};

const IwadInMemory& Iwad()
{
    static const IwadInMemory iwad = []
    {
        IwadInMemory read;
        std::ifstream in(Freedoom2, std::ios::binary);
        read.File.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        const std::int32_t count = wad::ReadLe32(read.File.data() + 4);
        const std::int32_t directory = wad::ReadLe32(read.File.data() + 8);
        for (std::int32_t i = 0; i < count; ++i)
        {
            const std::uint8_t* entry = read.File.data() + directory + i * 16;
            read.Lumps.push_back({static_cast<std::size_t>(wad::ReadLe32(entry)),
                                  static_cast<std::size_t>(wad::ReadLe32(entry + 4))});
        }
        return read;
    }();
    return iwad;
}

// Every picture lump of freedoom2.wad (patches, sprites, flats, the full-screen pictures),
// decoded from memory to rasters.
void DecodeEveryPicture(benchmark::State& state)
{
    const IwadInMemory& iwad = Iwad();
    struct Picture
    {
        IwadInMemory::Lump Lump;
        gfx::LumpKind Kind;
    };
    std::vector<Picture> pictures;
    for (const IwadInMemory::Lump& lump : iwad.Lumps)
    {
        const auto size = static_cast<std::int64_t>(lump.Size);
        const gfx::LumpKind kind = gfx::ClassifyLumpPrefix(iwad.From(lump, lump.Size), size).Kind;
        if (gfx::IsDecodedKind(kind))
        {
            pictures.push_back({lump, kind});
        }
    }
    for (auto _ : state)
    {
        std::size_t pixels = 0;
        for (const Picture& picture : pictures)
        {
            const auto size = static_cast<std::int64_t>(picture.Lump.Size);
            const auto readSize =
                static_cast<std::size_t>(gfx::PictureReadSize(picture.Kind, size));
            const gfx::DecodedPicture decoded =
                gfx::DecodePictureAs(iwad.From(picture.Lump, readSize), size, picture.Kind,
                                     gfx::DefaultTransparentIndex);
            pixels += decoded.Raster ? decoded.Raster->Bytes().size() : 0;
        }
        benchmark::DoNotOptimize(pixels);
    }
    state.counters["pictures"] = static_cast<double>(pictures.size());
}
BENCHMARK(DecodeEveryPicture)->Unit(benchmark::kMillisecond);

// Every picture lump read from the open IWAD and decoded, as a browser fills its list.
void ReadEveryPictureFromTheFile(benchmark::State& state)
{
    bench::OpenIwad(Freedoom2);
    wad::BuildMarkerLists();
    std::vector<std::size_t> pictures;
    for (std::size_t i = 0; i < wad::Master().Size(); ++i)
    {
        const gfx::EntryClass found = gfx::ClassifyDirectoryEntry("", static_cast<int>(i));
        if (gfx::IsDecodedKind(found.Class.Kind))
        {
            pictures.push_back(i);
        }
    }
    for (auto _ : state)
    {
        std::size_t read = 0;
        for (const std::size_t index : pictures)
        {
            read += gfx::ReadPictureLump(index, gfx::DefaultTransparentIndex) ? 1 : 0;
        }
        benchmark::DoNotOptimize(read);
    }
    state.counters["pictures"] = static_cast<double>(pictures.size());
}
BENCHMARK(ReadEveryPictureFromTheFile)->Unit(benchmark::kMillisecond);

// Every entry of the master directory classified, each by a short read of its file.
void ClassifyEveryLump(benchmark::State& state)
{
    bench::OpenIwad(Freedoom2);
    wad::BuildMarkerLists();
    const std::size_t count = wad::Master().Size();
    for (auto _ : state)
    {
        int pictures = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            const gfx::EntryClass found = gfx::ClassifyDirectoryEntry("", static_cast<int>(i));
            pictures += found.Class.Kind == gfx::LumpKind::Pic ? 1 : 0;
        }
        benchmark::DoNotOptimize(pictures);
    }
    state.counters["lumps"] = static_cast<double>(count);
}
BENCHMARK(ClassifyEveryLump)->Unit(benchmark::kMillisecond);

// The byte tests alone, on lumps already in memory.
void ClassifyEveryLumpInMemory(benchmark::State& state)
{
    const IwadInMemory& iwad = Iwad();
    for (auto _ : state)
    {
        int pictures = 0;
        for (const IwadInMemory::Lump& lump : iwad.Lumps)
        {
            const gfx::LumpClass found = gfx::ClassifyLumpPrefix(
                iwad.From(lump, gfx::PrefixBytes), static_cast<std::int64_t>(lump.Size));
            pictures += found.Kind == gfx::LumpKind::Pic ? 1 : 0;
        }
        benchmark::DoNotOptimize(pictures);
    }
    state.counters["lumps"] = static_cast<double>(iwad.Lumps.size());
}
BENCHMARK(ClassifyEveryLumpInMemory)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
