// Benchmarks of colour matching: a 256 x 256 picture of outside colours matched pixel by pixel,
// by the weighted and the fast match, and a COLORMAP of 32 light maps built.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Colormap.h"
#include "gfx/GamePalette.h"
#include "gfx/PictureFile.h"
#include "platform/ConsoleUi.h"
#include "wad/WadState.h"

#include <benchmark/benchmark.h>

#include <cstdio>

namespace
{

using namespace kelvar;

constexpr int Side = 256;

// Freedoom's palette 0, read as the editor reads it when no IWAD is open.
const gfx::Palette& FreedoomPalette()
{
    static const gfx::Palette palette = []
    {
        static std::FILE* devnull = std::fopen("/dev/null", "w");
        static platform::ConsoleUi quiet(devnull, 0);
        platform::InstallUi(&quiet);
        wad::Wad().Options.IwadPath = "/usr/share/games/doom/freedoom2.wad";
        if (gfx::LoadGamePalette(0) != 1)
        {
            std::fprintf(stderr, "no PLAYPAL in %s\n", wad::Wad().Options.IwadPath.c_str());
            std::abort();
        }
        return gfx::Palettes().RawGamePalette;
    }();
    return palette;
}

// Every pixel a different colour: red and green run with x and y, blue mixes both, so few
// colours are in the palette and the dominance rule meets every case.
gfx::Rgb Outside(int x, int y)
{
    return {static_cast<uint8_t>(x), static_cast<uint8_t>(y),
            static_cast<uint8_t>((x * 7 + y * 13) & 255)};
}

void MatchColorImage(benchmark::State& state)
{
    const gfx::Palette& palette = FreedoomPalette();
    for (auto _ : state)
    {
        unsigned sum = 0;
        for (int y = 0; y < Side; ++y)
        {
            for (int x = 0; x < Side; ++x)
            {
                const gfx::Rgb c = Outside(x, y);
                sum += gfx::MatchColor(palette, c.red, c.green, c.blue);
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * Side * Side);
}
BENCHMARK(MatchColorImage)->Unit(benchmark::kMillisecond);

void FastMatchColorImage(benchmark::State& state)
{
    const gfx::Palette& palette = FreedoomPalette();
    for (auto _ : state)
    {
        unsigned sum = 0;
        for (int y = 0; y < Side; ++y)
        {
            for (int x = 0; x < Side; ++x)
            {
                const gfx::Rgb c = Outside(x, y);
                sum += gfx::FastMatchColor(palette, c.red, c.green, c.blue, 50);
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * Side * Side);
}
BENCHMARK(FastMatchColorImage)->Unit(benchmark::kMillisecond);

// A direct-colour picture brought to the palette as the BMP reader does it.
void PictureToGamePalette(benchmark::State& state)
{
    gfx::FilePicture picture;
    picture.Width = Side;
    picture.Height = Side;
    picture.Bits = 24;
    picture.Indexed = false;
    for (int y = 0; y < Side; ++y)
    {
        for (int x = 0; x < Side; ++x)
        {
            picture.Colors.push_back(Outside(x, y));
        }
    }
    const gfx::Palette& palette = FreedoomPalette();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(gfx::ToGamePalette(picture, palette, {}));
    }
    state.SetItemsProcessed(state.iterations() * Side * Side);
}
BENCHMARK(PictureToGamePalette)->Unit(benchmark::kMillisecond);

void BuildColormap(benchmark::State& state)
{
    const gfx::Palette& palette = FreedoomPalette();
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(gfx::BuildColormapLump(palette));
    }
}
BENCHMARK(BuildColormap)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
