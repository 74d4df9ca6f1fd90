// Fuzz targets of the WAD readers: a file opened as IWAD and as PWAD, and its levels read.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "map/LevelData.h"
#include "map/MapState.h"
#include "wad/DirectoryReader.h"
#include "wad/FileTable.h"
#include "wad/GameIdentity.h"
#include "wad/LevelReader.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace kelvar::fuzz
{
namespace
{

using Bytes = std::span<const std::uint8_t>;

void PutLe32(std::vector<std::uint8_t>& out, std::size_t at, std::size_t value)
{
    for (std::size_t i = 0; i < 4; ++i)
    {
        out[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

// A WAD of the named lumps, each of `size` zero bytes, directory at the end.
std::vector<std::uint8_t> BuildWad(const char* magic,
                                   const std::vector<std::pair<const char*, std::size_t>>& lumps)
{
    std::vector<std::uint8_t> out(12, 0);
    std::copy_n(magic, 4, out.begin());
    std::vector<std::size_t> offsets;
    for (const auto& [name, size] : lumps)
    {
        offsets.push_back(out.size());
        out.resize(out.size() + size, 0);
    }
    PutLe32(out, 4, lumps.size());
    PutLe32(out, 8, out.size());
    for (std::size_t i = 0; i < lumps.size(); ++i)
    {
        const std::size_t at = out.size();
        out.resize(at + 16, 0);
        PutLe32(out, at, offsets[i]);
        PutLe32(out, at + 4, lumps[i].second);
        const std::string name = lumps[i].first;
        std::copy(name.begin(), name.end(), out.begin() + static_cast<std::ptrdiff_t>(at + 8));
    }
    return out;
}

// The IWAD the PWAD cases lie over: a Doom 2 style file with one empty level, the marker runs
// of flats and sprites, a palette and a texture pair.
const std::filesystem::path& BaseIwad()
{
    static const std::filesystem::path path = WriteScratchFile(
        "base.wad",
        BuildWad("IWAD", {{"PLAYPAL", 768}, {"COLORMAP", 256}, {"MAP01", 0},    {"THINGS", 0},
                          {"LINEDEFS", 0},  {"SIDEDEFS", 0},   {"VERTEXES", 0}, {"SEGS", 0},
                          {"SSECTORS", 0},  {"NODES", 0},      {"SECTORS", 0},  {"REJECT", 0},
                          {"BLOCKMAP", 0},  {"PNAMES", 4},     {"TEXTURE1", 4}, {"S_START", 0},
                          {"SARGA1", 8},    {"S_END", 0},      {"F_START", 0},  {"FLOOR0_1", 4096},
                          {"F_END", 0}}));
    return path;
}

// A clean WAD layer and level for each input: the program directory is the scratch folder,
// and the IWAD's spare entries are few, so that a run stays quick.
void ResetLayers()
{
    wad::ResetWad();
    map::ResetMap();
    wad::Wad().ProgramDir = ScratchDir();
    wad::Wad().Options.AdditionalLumpEntries = 64;
}

// The quiet readers that take an open stream, as the save and kelvarbsp use them.
void ReadStreamQuietly(const std::filesystem::path& path)
{
    std::FILE* stream = std::fopen(path.c_str(), "rb");
    if (stream == nullptr)
    {
        return;
    }
    for (const wad::BadEntryRule rule :
         {wad::BadEntryRule::StopAtBadEntry, wad::BadEntryRule::PassOverBadEntries})
    {
        (void)wad::ReadDirectoryOf(stream, rule);
    }
    std::string magic;
    (void)wad::ReadDirectoryQuietly(stream, &magic);
    (void)wad::WadMagicOf(stream);
    (void)wad::LevelLayoutOf(stream, "MAP01", -1);
    (void)wad::LevelLayoutOf(stream, "E1M1", 0);
    std::fclose(stream);
}

void OpenWadFile(Bytes input)
{
    const std::filesystem::path path = WriteScratchFile("input.wad", input);
    ReadStreamQuietly(path);

    ResetLayers();
    wad::Wad().Options.IwadPath = path.string();
    (void)wad::ScanMainIwad(path.string());

    ResetLayers();
    if (wad::ScanMainIwad(BaseIwad().string()) == 1)
    {
        if (wad::AddOpenFile(path.string(), true) > 0)
        {
            wad::DropUnusedFiles();
        }
    }
    if (std::FILE* stream = std::fopen(path.c_str(), "rb"))
    {
        (void)wad::ReadWadDirectory(stream, path.string());
        (void)wad::FirstLevelOfFile(stream, path.string());
        std::fclose(stream);
    }
}

// Reads the first two levels the list holds now.
void ReadListedLevels()
{
    const std::vector<wad::LevelListEntry> levels = wad::Wad().Levels;
    for (std::size_t i = 0; i < levels.size() && i < 2; ++i)
    {
        map::LevelData level;
        (void)wad::ReadLevel(level, levels[i].Name.Text(), false);
    }
}

void ReadLevelFile(Bytes input, bool asPwad)
{
    const std::filesystem::path path = WriteScratchFile("level.wad", input);
    ResetLayers();
    if (!asPwad)
    {
        wad::Wad().Options.IwadPath = path.string();
        if (wad::ScanMainIwad(path.string()) == 1)
        {
            ReadListedLevels();
        }
        return;
    }
    if (wad::ScanMainIwad(BaseIwad().string()) == 1 && wad::AddOpenFile(path.string(), true) > 0)
    {
        ReadListedLevels();
    }
}

} // namespace

void FuzzWad(std::span<const std::uint8_t> input)
{
    // The scan ends the program only when a file it opened can't be opened again, or when the
    // user quits at an I/O error; neither happens here, so a fatal end is a fault.
    RunGuarded(FatalRule::IsAFault, [&] { OpenWadFile(input); });
    wad::ResetWad();
}

void FuzzLevel(std::span<const std::uint8_t> input)
{
    // A level without one of its required lumps ends the program by design.
    RunGuarded(FatalRule::IsAllowed, [&] { ReadLevelFile(input, false); });
    RunGuarded(FatalRule::IsAllowed, [&] { ReadLevelFile(input, true); });
    wad::ResetWad();
    map::ResetMap();
}

} // namespace kelvar::fuzz
