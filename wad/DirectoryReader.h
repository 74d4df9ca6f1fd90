// Reading a WAD's header and directory without a word to the user: what is wrong comes back as
// values, and each caller words it (the scan as its messages, kelvarbsp in its log).
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/LumpDirectory.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace kelvar::wad
{

/// What stops a directory from being read at all.
enum class HeaderProblem
{
    None,
    TooSmall,           // the file is shorter than a header
    BadDirectoryOffset, // the directory starts before the file or within 4 bytes of its end
    BadLumpCount,       // the count is negative
    ReadFailed,         // the system refused a seek or a read of the header
    DirectoryCut,       // the system refused a read within the directory: Entries holds what came
};

/// What a read of a WAD's directory found.
struct DirectoryReport
{
    HeaderProblem Problem = HeaderProblem::None;
    std::int64_t FileSize = 0;
    std::string Magic;                // the first four bytes; empty for a file shorter than four
    std::int32_t LumpCount = 0;       // as the header says
    std::int32_t DirectoryOffset = 0; // as the header says
    /// The entries read: each lies inside the file. The header's count is believed only as
    /// far as the file holds entries.
    std::vector<LumpEntry> Entries;
    bool RunsPastEnd = false; // the header's count is more than the file holds
    std::int64_t Fits = 0;    // the entries the file holds from the directory's offset on
    /// Entries whose data lie outside the file, in order. When the read stops at a bad entry
    /// (StopAtBadEntry) there is at most one, and Entries ends before it.
    std::vector<LumpEntry> BadEntries;
};

/// Whether a bad entry ends the reading (a PWAD's scan) or is passed over (the IWAD's).
enum class BadEntryRule
{
    StopAtBadEntry,
    PassOverBadEntries,
};

/// Reads the header and directory of the WAD open on `stream`. Allocates no more than the
/// file can hold, whatever the header claims. Shows nothing.
DirectoryReport ReadDirectoryOf(std::FILE* stream, BadEntryRule rule);

} // namespace kelvar::wad
