// WAD files as kelvarbsp sees them: a directory read from disk, lump bytes on demand, a level's
// lumps, and a whole file written again with some lumps replaced.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/CheckedFile.h"
#include "wad/LumpDirectory.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::kelvarbsp
{

/// One directory entry.
using WadLump = wad::LumpEntry;

/// An open WAD: its stream and its directory, checked against the file's size.
struct WadFile
{
    wad::StreamPtr Stream;
    std::string Magic;
    std::vector<WadLump> Lumps;
    std::int64_t End = 0; // the file's size
};

/// Opens a WAD and reads its directory through the WAD layer's reader. Nothing when the file
/// can't be opened or anything of its header or directory is wrong; `reason` then says why.
std::optional<WadFile> OpenWad(const std::filesystem::path& path, std::string& reason);

/// Reads a lump's bytes; false when the file is shorter than its entry says.
bool ReadLump(WadFile& wad, const WadLump& lump, std::string& bytes);

/// The lumps of one level: the marker's index and the index of each of its lumps by name.
struct LevelLumps
{
    std::size_t Marker = 0;
    std::map<std::string, std::size_t> Lumps; // THINGS, LINEDEFS, ... GL_ lumps excluded

    /// The entry of `name`, or null.
    const WadLump* Find(const WadFile& wad, const std::string& name) const;
};

/// The level called `levelName` (case ignored), found as the editor finds levels: its marker
/// and the level lumps behind it.
std::optional<LevelLumps> FindLevel(const WadFile& wad, std::string_view levelName);

/// Puts the lumps listed in `replacements` (by directory index) into the WAD at `path`, whose
/// stream and directory `wad` holds, in place: the lumps from the first replaced one on are
/// written again behind those before it, then the directory. The stream is closed. False
/// when reading or writing fails; `reason` then says why.
bool ReplaceLumps(WadFile& wad, const std::filesystem::path& path,
                  const std::map<std::size_t, std::string>& replacements, std::string& reason);

} // namespace kelvar::kelvarbsp
