// Rewriting a WAD file whole: the old file becomes its .BAK, every entry is streamed into a new
// file under the old name, then the directory and the header. The lump tools, the palette
// save and the group writers all write through it.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A rewrite never patches a file. The target's old bytes stay in the .BAK, which is the
//   user's protection against every write error and is kept after a success. A failure at any
//   point removes the half-written file and renames the .BAK back, so the target is as it was.
// - An entry's bytes come from memory or from a span of a file; a span of the target itself is
//   read from the .BAK. Entries are written in order, data from byte 12 on, the directory last.
// - The bytes are laid out by the WAD output of LevelWriter.h, which the level save writes
//   with too; what differs is only how the old file is kept: the save turns the session's
//   open file record into its .BAK, a rewrite works on a path.
// - Everything the user sees goes through platform::TheUi(): the progress ("Copying %d
//   Entries", or the caller's caption with a count to 100) and the messages of a failed
//   rename, open, read or write.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::wad
{

/// One entry of the WAD being written.
struct RewriteEntry
{
    std::string Name;                // up to 8 characters
    std::vector<std::uint8_t> Bytes; // the data, when File is empty
    std::filesystem::path File;      // or a span of this file
    std::int64_t Offset = 0;
    std::int32_t Size = 0;

    /// An entry whose data is `bytes` (none for a marker).
    static RewriteEntry FromBytes(std::string name, std::vector<std::uint8_t> bytes = {});
    /// An entry whose data is `size` bytes of `file` from `offset`.
    static RewriteEntry FromFile(std::string name, std::filesystem::path file, std::int64_t offset,
                                 std::int32_t size);

    /// The size the entry has in the new file.
    std::int64_t DataSize() const
    {
        return File.empty() ? static_cast<std::int64_t>(Bytes.size()) : Size;
    }
};

/// What a rewrite writes.
struct RewritePlan
{
    std::string Magic = "PWAD"; // "PWAD" or "IWAD"
    std::vector<RewriteEntry> Entries;
    /// Off: every entry whose name starts with "SCRIPT" is written as "SCRIPTS", the name the
    /// games look a level's script up by.
    bool KeepScriptNames = true;

    /// The progress panel's caption while the data is copied; empty: "Copying %d Entries".
    std::string ProgressCaption;
    /// The caption while the directory is written; empty: the panel stays as it is.
    std::string DirectoryCaption;
    /// The bytes the panel counts to: its detail reads "%d of 100" as the data goes out and
    /// "100 of 100" when the file is whole. 0: the detail is the target's name.
    std::int64_t ProgressTotal = 0;
    /// The message when the new file can't be created, "%s" standing for the target; empty:
    /// "Failure creating new TargetFile?\nYour old Target file is %s".
    std::string CreateFailure;
};

/// The entries of the WAD at `path` as spans of that file, in directory order, with the file's
/// magic; nothing when it can't be read whole as a WAD (a damaged header, a directory past the
/// end, an entry outside the file), after "Failure reading old File?".
std::optional<RewritePlan> PlanOfWad(const std::filesystem::path& path);

/// The .BAK of a file: its extension replaced.
std::filesystem::path BakPathOf(const std::filesystem::path& target);

/// Writes `plan` as the file `target`. An existing target is renamed to its .BAK first (an
/// older .BAK deleted): "Err %d: Could not rename file\n\n%s\n-to-\n%s\n\nFile is most likely in
/// use.\nTry saving to another filename\n" when it can't be. "Failure creating new
/// TargetFile?\nYour old Target file is %s" when the new file can't be made, "Failure reading
/// old File?" when a span can't be read. On any failure the new file is removed and the .BAK
/// renamed back; returns false. True when the new file is whole.
[[nodiscard]] bool RewriteWad(const std::filesystem::path& target, const RewritePlan& plan);

} // namespace kelvar::wad
