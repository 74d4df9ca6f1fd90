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

// The lumps of the huge level: a K x K grid of square rooms with shared walls, one Sector per
// row, in the Extended Format's rows.
class HugeLevel
{
public:
    static constexpr std::uint32_t K = 353;
    static constexpr std::uint32_t None = 0xFFFFFFFFu;

    HugeLevel()
    {
        AddVertexes();
        AddHorizontalWalls();
        AddVerticalWalls();
        AddSectors();
        AddThings();
    }

    // The level as the IWAD's MAP01, with a sprite that makes the file a Doom 2 IWAD.
    std::vector<std::uint8_t> Iwad()
    {
        std::vector<std::uint8_t> sprite = {'s'};
        const std::vector<std::pair<std::string, std::vector<std::uint8_t>*>> lumps = {
            {"MAP01", nullptr},    {"THINGS", &Things},     {"LINEDEFS", &Lines},
            {"SIDEDEFS", &Sides},  {"VERTEXES", &Vertexes}, {"SEGS", nullptr},
            {"SSECTORS", nullptr}, {"NODES", nullptr},      {"SECTORS", &Sectors},
            {"REJECT", nullptr},   {"BLOCKMAP", nullptr},   {"SARGA1", &sprite}};
        std::vector<std::uint8_t> file(12, 0);
        std::vector<std::uint8_t> directory;
        for (const auto& [name, data] : lumps)
        {
            std::uint8_t entry[16] = {};
            wad::WriteLe32(entry, static_cast<std::int32_t>(file.size()));
            wad::WriteLe32(entry + 4,
                           data != nullptr ? static_cast<std::int32_t>(data->size()) : 0);
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
        return file;
    }

private:
    static std::uint32_t VertexAt(std::uint32_t x, std::uint32_t y) { return y * (K + 1) + x; }

    void AddVertexes()
    {
        for (std::uint32_t y = 0; y <= K; ++y)
        {
            for (std::uint32_t x = 0; x <= K; ++x)
            {
                Put(Vertexes, x * 64, 2);
                Put(Vertexes, y * 64, 2);
            }
        }
    }

    std::uint32_t Side(std::uint32_t sector)
    {
        Put(Sides, 0, 4);
        for (const char* name : {"-", "-", "STARTAN3"})
        {
            std::string text(name);
            text.resize(8, '\0');
            Sides.insert(Sides.end(), text.begin(), text.end());
        }
        Put(Sides, sector, 2);
        return SideCount++;
    }

    void Line(std::uint32_t a, std::uint32_t b, std::uint32_t front, std::uint32_t back)
    {
        Put(Lines, a, 4);
        Put(Lines, b, 4);
        Put(Lines, back == None ? 1 : 4, 2);
        Put(Lines, 0, 2);
        Put(Lines, 0, 2);
        Put(Lines, front, 4);
        Put(Lines, back, 4);
    }

    void AddHorizontalWalls()
    {
        for (std::uint32_t y = 0; y <= K; ++y)
        {
            for (std::uint32_t x = 0; x < K; ++x)
            {
                const std::uint32_t below = y > 0 ? Side(y - 1) : None;
                const std::uint32_t above = y < K ? Side(y) : None;
                Line(VertexAt(x, y), VertexAt(x + 1, y), above != None ? above : below,
                     above != None ? below : None);
            }
        }
    }

    void AddVerticalWalls()
    {
        for (std::uint32_t x = 0; x <= K; ++x)
        {
            for (std::uint32_t y = 0; y < K; ++y)
            {
                const std::uint32_t front = Side(y);
                Line(VertexAt(x, y + 1), VertexAt(x, y), front, x > 0 && x < K ? Side(y) : None);
            }
        }
    }

    void AddSectors()
    {
        for (std::uint32_t y = 0; y < K; ++y)
        {
            Put(Sectors, 0, 2);
            Put(Sectors, 128, 2);
            for (const char* name : {"FLOOR4_8", "CEIL3_5\0"})
            {
                Sectors.insert(Sectors.end(), name, name + 8);
            }
            Put(Sectors, 160, 2);
            Put(Sectors, 0, 4);
        }
    }

    void AddThings()
    {
        for (std::uint32_t i = 0; i < 2000; ++i)
        {
            Put(Things, (i % K) * 64 + 32, 2);
            Put(Things, (i / K) * 64 + 32, 2);
            Put(Things, 0, 2);
            Put(Things, 3004, 2);
            Put(Things, 7, 2);
        }
    }

    std::vector<std::uint8_t> Things, Lines, Sides, Vertexes, Sectors;
    std::uint32_t SideCount = 0;
};

// The huge level written once into the temporary folder: about 250,000 LineDefs.
std::string MakeHugeLevel()
{
    const std::string path =
        (std::filesystem::temp_directory_path() / "kelvar-bench-250k.wad").string();
    if (std::filesystem::exists(path))
    {
        return path;
    }
    const std::vector<std::uint8_t> file = HugeLevel().Iwad();
    std::FILE* out = std::fopen(path.c_str(), "wb");
    std::fwrite(file.data(), 1, file.size(), out);
    std::fclose(out);
    return path;
}

} // namespace kelvar::bench
