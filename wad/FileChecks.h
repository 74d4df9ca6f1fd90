// The checks every file name passes: open diagnosis, type, in-use, length.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kelvar::wad
{

/// The error numbers the messages speak in (the classic Windows set), from an errno value:
/// 2 file not found, 3 path not found, 4 too many open files, 5 access denied, 161 bad path
/// name, 183 already exists, and a few more; any other errno e becomes 0x20000000 | e.
int WindowsErrorOf(int errnoValue);

/// Finds out why `path` didn't open with `mode` and tells the user. Returns 0 when the file
/// simply isn't there (no message), -1 when it exists but is read only, 1 when it exists but
/// can't be read at all, otherwise the error number (after a message).
int DiagnoseOpenFailure(const std::filesystem::path& path, std::string_view mode);

/// The test a name passes before it is opened as a WAD or a status file. `expectedMagic` is
/// a four-character tag ("IWAD", "_WAD", "_CHK"...; '_' accepts any first byte) or empty.
/// `mode` 0 refuses .BAK, .BKP and ~KELVAR files; `mode` 3 refuses a wrong tag silently.
/// A relative `path` is taken from `directory` when one is given.
/// Returns 1 acceptable, 2 acceptable with the magic "IWAD", 0 missing, -1 refused. With
/// `clearIfMissing`, a missing file is reported and `path` emptied.
[[nodiscard]] int CheckFileType(std::string& path, std::string_view expectedMagic,
                                bool clearIfMissing, int mode,
                                const std::filesystem::path& directory = {});

/// Whether a file is open in the editor: the record number plus one, -1 for the project's
/// main IWAD, 0 when free. `warn` tells the user; `clear` empties `path` when it's in use.
[[nodiscard]] int FileInUse(std::string& path, bool warn, bool clear);

/// Completes a PWAD name in a copy (directory from the default PWAD directory or the
/// program's, extension .WAD) and checks it. Returns 1 when it has a stem and its directory
/// exists, else 0. A name of 259 characters or more is reported and `path` emptied.
[[nodiscard]] int ValidateWadPath(std::string& path);

/// The completed form ValidateWadPath checks.
std::filesystem::path CompleteWadPath(const std::string& path);

/// A name of 128 characters or more doesn't fit a status record: reported and emptied.
/// Returns true when it fits.
bool PathFitsRecord(std::string& name);

/// Two paths name the same file (compared as absolute, normalised paths, case ignored).
bool SamePath(const std::filesystem::path& a, const std::filesystem::path& b);

} // namespace kelvar::wad
