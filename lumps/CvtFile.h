// The texture conversion table: a .CVT text file of old and new wall and flat names.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The file is plain text, a line at most 130 characters (the rest of a longer line is passed
// over). Lines of two characters or fewer are skipped. "[TEXTURES]" and "[FLATS]" (any case)
// open the two sections; what comes before the first of them, or under any other bracketed
// header, is ignored. Inside a section a line beginning "//" is a comment, and every other
// line holds the old name and the new name separated by blanks, each cut to 8 characters (the
// new name in upper case, as names are stored). A line with no new name, or with "//" in its
// place, keeps that name: the first entry for a name wins, so such a line shields it from any
// later pair.
//
//     [TEXTURES]
//     STARTAN3  BROWN1
//     SW1COMP   //  kept as it is
//     [flats]
//     FLOOR4_8  FLAT14
#pragma once

#include "wad/LumpName.h"

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// One pair of the table. An empty new name means the old name stays.
struct CvtEntry
{
    wad::LumpName OldName;
    wad::LumpName NewName;

    /// True when the entry changes nothing.
    bool Keeps() const { return NewName.Empty(); }
};

/// The two sections of a .CVT file, each in the order of the file.
struct CvtTable
{
    std::vector<CvtEntry> Textures;
    std::vector<CvtEntry> Flats;
};

/// The longest line of a .CVT file; a longer one is cut there.
inline constexpr std::size_t CvtLineLength = 130;

/// Reads the text of a .CVT file into its table.
CvtTable ParseCvtText(std::string_view text);

/// Reads a .CVT file; nothing when it can't be opened.
std::optional<CvtTable> ReadCvtFile(const std::filesystem::path& path);

/// The entry of `table` for `name`: the first whose old name equals it, case ignored; null when
/// there is none.
const CvtEntry* FindCvtEntry(const std::vector<CvtEntry>& table, const wad::LumpName& name);

} // namespace kelvar::lumps
