// Data the benchmarks share: a quiet Ui, an opened IWAD, a generated level of 250,000 LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchData.h"

#include "map/MapState.h"
#include "platform/ConsoleUi.h"
#include "wad/GameIdentity.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <cstdio>
#include <filesystem>
#include <vector>

namespace kelvar::bench
{
namespace
{

platform::ConsoleUi& Quiet()
{
    static std::FILE* devnull = std::fopen("/dev/null", "w");
    static platform::ConsoleUi ui(devnull, 0);
    return ui;
}

void Put(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
    {
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
}

} // namespace

void OpenIwad(const std::string& iwad)
{
    wad::ResetWad();
    map::ResetMap();
    platform::InstallUi(&Quiet());
    wad::Wad().ProgramDir = std::filesystem::temp_directory_path() / "kelvar-bench";
    wad::Wad().Options.AutomaticSideUnpack = false;
    wad::Wad().Options.ExpertMode = true; // no packing warning in a timed loop
    (void)wad::ScanMainIwad(iwad);
}

// The bytes of the level's own lumps (marker to BLOCKMAP) in the master directory.
double LevelLumpBytes(const std::string& name)
{
    const wad::LumpDirectory& master = wad::Master();
    const int marker = master.FindLast(wad::LumpName::From(name), 0, master.Size());
    double bytes = 0;
    for (std::size_t i = static_cast<std::size_t>(marker) + 1;
         i < master.Size() && i <= static_cast<std::size_t>(marker) + 10; ++i)
    {
        bytes += master[i].Size;
    }
    return bytes;
}

// A K x K grid of square rooms with shared walls, one Sector per row, written in the
// Extended Format as the IWAD's MAP01: about 250,000 LineDefs for K = 353.
std::string MakeHugeLevel()
{
    const std::string path =
        (std::filesystem::temp_directory_path() / "kelvar-bench-250k.wad").string();
    if (std::filesystem::exists(path))
    {
        return path;
    }
    constexpr std::uint32_t K = 353;
    std::vector<std::uint8_t> things, lines, sides, vertexes, sectors;
    const auto vertex = [](std::uint32_t x, std::uint32_t y) { return y * (K + 1) + x; };
    for (std::uint32_t y = 0; y <= K; ++y)
    {
        for (std::uint32_t x = 0; x <= K; ++x)
        {
            Put(vertexes, x * 64, 2);
            Put(vertexes, y * 64, 2);
        }
    }
    std::uint32_t sideCount = 0;
    const auto side = [&](std::uint32_t sector)
    {
        Put(sides, 0, 4);
        for (const char* name : {"-", "-", "STARTAN3"})
        {
            std::string text(name);
            text.resize(8, '\0');
            sides.insert(sides.end(), text.begin(), text.end());
        }
        Put(sides, sector, 2);
        return sideCount++;
    };
    const auto line = [&](std::uint32_t a, std::uint32_t b, std::uint32_t front, std::uint32_t back)
    {
        Put(lines, a, 4);
        Put(lines, b, 4);
        Put(lines, back == 0xFFFFFFFFu ? 1 : 4, 2);
        Put(lines, 0, 2);
        Put(lines, 0, 2);
        Put(lines, front, 4);
        Put(lines, back, 4);
    };
    for (std::uint32_t y = 0; y <= K; ++y) // horizontal walls
    {
        for (std::uint32_t x = 0; x < K; ++x)
        {
            const std::uint32_t below = y > 0 ? side(y - 1) : 0xFFFFFFFFu;
            const std::uint32_t above = y < K ? side(y) : 0xFFFFFFFFu;
            line(vertex(x, y), vertex(x + 1, y), above != 0xFFFFFFFFu ? above : below,
                 above != 0xFFFFFFFFu ? below : 0xFFFFFFFFu);
        }
    }
    for (std::uint32_t x = 0; x <= K; ++x) // vertical walls
    {
        for (std::uint32_t y = 0; y < K; ++y)
        {
            const std::uint32_t front = side(y);
            line(vertex(x, y + 1), vertex(x, y), front, x > 0 && x < K ? side(y) : 0xFFFFFFFFu);
        }
    }
    for (std::uint32_t y = 0; y < K; ++y)
    {
        Put(sectors, 0, 2);
        Put(sectors, 128, 2);
        for (const char* name : {"FLOOR4_8", "CEIL3_5\0"})
        {
            sectors.insert(sectors.end(), name, name + 8);
        }
        Put(sectors, 160, 2);
        Put(sectors, 0, 4);
    }
    for (std::uint32_t i = 0; i < 2000; ++i)
    {
        Put(things, (i % K) * 64 + 32, 2);
        Put(things, (i / K) * 64 + 32, 2);
        Put(things, 0, 2);
        Put(things, 3004, 2);
        Put(things, 7, 2);
    }

    std::vector<std::pair<std::string, std::vector<std::uint8_t>*>> lumps = {
        {"MAP01", nullptr},      {"THINGS", &things}, {"LINEDEFS", &lines},  {"SIDEDEFS", &sides},
        {"VERTEXES", &vertexes}, {"SEGS", nullptr},   {"SSECTORS", nullptr}, {"NODES", nullptr},
        {"SECTORS", &sectors},   {"REJECT", nullptr}, {"BLOCKMAP", nullptr}};
    std::vector<std::uint8_t> sprite = {'s'};
    lumps.emplace_back("SARGA1", &sprite);
    std::vector<std::uint8_t> file(12, 0), directory;
    for (const auto& [name, data] : lumps)
    {
        std::uint8_t entry[16] = {};
        wad::WriteLe32(entry, static_cast<std::int32_t>(file.size()));
        wad::WriteLe32(entry + 4, data != nullptr ? static_cast<std::int32_t>(data->size()) : 0);
        std::copy(name.begin(), name.end(), entry + 8);
        directory.insert(directory.end(), entry, entry + 16);
        if (data != nullptr)
        {
            file.insert(file.end(), data->begin(), data->end());
        }
    }
    std::copy_n("IWAD", 4, file.begin());
    wad::WriteLe32(file.data() + 4, static_cast<std::int32_t>(lumps.size()));
    wad::WriteLe32(file.data() + 8, static_cast<std::int32_t>(file.size()));
    file.insert(file.end(), directory.begin(), directory.end());
    std::FILE* out = std::fopen(path.c_str(), "wb");
    std::fwrite(file.data(), 1, file.size(), out);
    std::fclose(out);
    return path;
}

} // namespace kelvar::bench
