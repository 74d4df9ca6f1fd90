// The PWAD as the texture reports read it: its levels, flats and picture runs, the names its
// levels use, and its TEXTUREx lumps as a deletion changes them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/TextureLumps.h"
#include "lumps/TextureConvert.h"
#include "wad/WadRewrite.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::lumps::usage
{

/// What an entry of the PWAD is to the reports.
enum class Role : std::uint8_t
{
    Plain,
    LevelLump, // a level's marker or one of its lumps
    Marker,    // a marker of a picture run
    Flat,
    Sprite,
};

/// A PWAD read for the reports: its directory, its levels and what each entry is.
struct Pwad
{
    std::filesystem::path Path;
    wad::RewritePlan Plan; // the entries as spans of the file, to write it again
    std::vector<wad::LumpEntry> Entries;
    std::vector<LevelLumps> Levels;
    std::vector<Role> Roles;
};

/// Name keys (wad::LumpName::Key), for "is this name among them".
using NameKeys = std::set<std::uint64_t>;
using NameVisit = std::function<void(const wad::LumpName&)>;

/// Reads the directory of a PWAD; nothing after "Failure reading old File?".
std::optional<Pwad> ReadPwad(const std::filesystem::path& path);

/// The newest entry of that name outside the levels; -1 when there is none.
int FindOutsideLevels(const Pwad& pwad, std::string_view name);

/// The entries that can be a patch's picture: named so, with data, outside levels, flats and
/// sprites.
std::vector<std::size_t> PatchLumps(const Pwad& pwad, const wad::LumpName& name);

/// The newest entry of the open IWAD of that name in the master directory; -1 when none.
int IwadLump(std::string_view name);

/// Calls the visits for each flat and wall name of a level's Sectors and SideDefs; "-" and
/// empty names are no names. False when a lump could not be read.
bool VisitLevelNames(const Pwad& pwad, const LevelLumps& level, const NameVisit& flat,
                     const NameVisit& texture);

/// The flat entries of the PWAD (between F_START or FF_START and F_END or FF_END), in order.
std::vector<std::size_t> FlatEntries(const Pwad& pwad);

/// The name padded to 8 characters.
std::string Padded(const wad::LumpName& name);

/// Opens the common log afresh for a report of plain lines.
void OpenReportLog();
/// Adds a line to the report.
void Log(const std::string& text);

/// A TEXTUREx lump of the PWAD as a deletion run changes it.
struct TextureBuffer
{
    int Number = 1;
    int Position = -1; // its entry in the PWAD
    std::vector<std::uint8_t> Bytes;
    gfx::TextureLump Parsed;
    std::vector<bool> Removed; // by texture
    bool Whole = true;         // every record lies inside the lump
    bool Changed = false;
};

/// The PWAD's TEXTURE1 (1) or TEXTURE2 (2), read in the layout of the game now identified;
/// nothing when it has none or it can't be read.
std::optional<TextureBuffer> ReadTextureBuffer(const Pwad& pwad, int number);

/// The lump without the records removed, each taken out as the merge deletes a texture: the
/// others keep their order and any spare bytes behind them.
std::vector<std::uint8_t> WithoutRemoved(const TextureBuffer& buffer);

/// Calls `visit(textureName, indexBytes)` for every patch entry of the records not removed;
/// `indexBytes` points at the entry's 16-bit PNAMES index in the buffer's bytes.
void ForEachPatchIndex(TextureBuffer& buffer,
                       const std::function<void(const wad::LumpName&, std::uint8_t*)>& visit);

/// The 16-bit patch index at `bytes`.
std::int16_t ReadIndex(const std::uint8_t* bytes);
void WriteIndex(std::uint8_t* bytes, int index);

} // namespace kelvar::lumps::usage
