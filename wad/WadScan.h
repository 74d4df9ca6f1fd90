// Opening a WAD: header and directory checks, the IWAD scan with its spare slots.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/LumpDirectory.h"
#include "wad/LumpName.h"

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::wad
{

/// Opens and scans a WAD. `magic` "IWAD" makes it the main file, record 0, whose directory
/// becomes the master directory; "PWAD" lays the file over the master directory (the name
/// must stand in OpenFiles). Any magic not ending in "WAD" opens a plain data file with a
/// record but no directory. Warnings of the merge are gathered in the error log and shown
/// under "List of WAD problems"; `warnings` enables the optional ones.
/// Returns the file number (0 for the IWAD), or -1 after the reason was shown.
[[nodiscard]] int OpenWad(const std::string& path, std::string_view magic, bool warnings);

/// OpenWad for a PWAD; with `closeAfter` the stream is closed again (state 'C'). The view
/// position is reset so the next load centres the map. Returns the file number or -1.
int OpenPwad(const std::string& path, bool closeAfter, bool warnings);

/// Renumbers the Ordinal field of every master entry.
void RenumberOrdinals();

/// Puts the spare entry "k_e  v_r" (offset, size and file 0) at the end of the master
/// directory when there is none and there is room; the lump saver takes it over for a lump
/// that has no entry yet.
void EnsureSpareEntry();

/// The directory of an open WAD as it stands on disk, checked as a PWAD's scan checks it
/// (damage is reported, reading stops at a bad entry). Nothing when the header is refused.
std::optional<std::vector<LumpEntry>> ReadWadDirectory(std::FILE* stream, const std::string& path);

/// The directory of an open WAD as it stands on disk, read without a word to the user: the
/// entries that lie inside the file, however many the header claims; empty when the header
/// or the directory offset doesn't fit the file. `magic`, when given, gets the header's first
/// four bytes (empty for a file shorter than a header).
std::vector<LumpEntry> ReadDirectoryQuietly(std::FILE* stream, std::string* magic);

/// The magic of an open file, read from its start, when it is "PWAD" or "IWAD"; nothing for
/// any other file.
std::optional<std::string> WadMagicOf(std::FILE* stream);

/// The name of the first level in an open WAD file ("PWAD" or "IWAD"), read from its own
/// directory without touching the file table. Nothing for another kind of file or a file
/// without levels; a damaged header or directory is reported as a scan reports it.
std::optional<LumpName> FirstLevelOfFile(std::FILE* stream, const std::string& path);

} // namespace kelvar::wad
