// Texture name conversion: every wall and flat name of every level of a PWAD replaced by the
// pairs of a .CVT table, written to a new file; and the level walk the texture reports share.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/CvtFile.h"
#include "wad/LumpDirectory.h"
#include "wad/WadRewrite.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace kelvar::lumps
{

/// Where the names stand in a Sector record (floor, ceiling) and a SideDef record (upper,
/// lower, middle); the same in every layout.
inline constexpr std::size_t SectorNameOffsets[] = {4, 12};
inline constexpr std::size_t SideDefNameOffsets[] = {4, 12, 20};

/// One level of a directory: its marker and the entry past its last lump, with the positions
/// of its SECTORS and SIDEDEFS lumps (-1 when it has none).
struct LevelLumps
{
    wad::LevelSpan Span;
    int Sectors = -1;
    int SideDefs = -1;
};

/// The levels of a directory in order, as the level test finds them.
std::vector<LevelLumps> LevelsOf(std::span<const wad::LumpEntry> entries);

/// The entries of a rewrite plan read from a WAD (wad::PlanOfWad) as directory records, for
/// the level test.
std::vector<wad::LumpEntry> EntriesOfPlan(const wad::RewritePlan& plan);

/// The bytes of an entry of the file at `path`; nothing (after the read error was shown) when
/// they can't be read.
std::optional<std::vector<std::uint8_t>> ReadEntryBytes(const std::filesystem::path& path,
                                                        const wad::LumpEntry& entry);

/// Replaces a Sector's flat name in place by the first pair of `flats` whose old name it is,
/// case ignored. With `report` the log gets "%8s = %8s sector=%d", or "%8s sector=%d no
/// replacement found" when no pair names it. A pair without a new name changes and logs
/// nothing. Returns 1 when the name changed, else 0.
int ReplaceFlat(const std::vector<CvtEntry>& flats, std::span<std::uint8_t, 8> name8, int sector,
                bool report);

/// As ReplaceFlat for a SideDef's wall name, with "%8s = %8s linedef=%d" and "%8s linedef=%d
/// no replacement found", the number being the SideDef's. The name "-" (no texture) is never
/// looked up.
int ReplaceTexture(const std::vector<CvtEntry>& textures, std::span<std::uint8_t, 8> name8,
                   int sideDef, bool report);

/// Writes the PWAD `inputPath` as `outputPath` with the names of every level's Sectors and
/// SideDefs replaced by the table of `cvtPath`; all other lumps are copied as they are, and the
/// input is never changed. The log "List of WAD Textures and Flats Replaced" is shown at the
/// end; `listReplacements` adds every replacement and every name the table lacks.
/// Refusals: "** Please select a Texture Conversion File **\n\n" (no table), "** Failed to
/// Open File **\n\n%s" (the input), "! New File Name can't be same as input!\n\n%s" (the output
/// is the input, or its .BAK would be), "** Failed to Create File **\n\n%s" (the output).
/// Returns 1 when the output was written, 0 when refused or when the write failed (the
/// rewrite's message shown, no output left behind).
[[nodiscard]] int ConvertTextures(const std::filesystem::path& cvtPath,
                                  const std::filesystem::path& inputPath,
                                  const std::filesystem::path& outputPath, bool listReplacements);

} // namespace kelvar::lumps
