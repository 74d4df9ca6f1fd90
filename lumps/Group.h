// Joining the open files into one new WAD: Group, Ungroup, Save and make an IWAD, and the
// command flows that ask for them.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The writers never touch their sources. Each builds a plan of the new file from the open
//   files (the file table and the master directory) and hands it to wad::RewriteWad, which
//   streams every lump from its file, writes the directory and the header, and puts an
//   existing target back when anything fails.
// - Group and Ungroup walk the PWADs the master directory still uses, in overlay order, each
//   through its own directory as it stands on disk. A level is a run of lumps taken from the
//   file being walked. Any other lump is looked up by name in the master directory and
//   written with the definition that wins there, once, at the place where the first walk met
//   it (CopiedLumps). Markers (an empty *_START or *_END) are taken from each file as they
//   stand, so every file's flats and sprites keep their pair.
// - A grouped file closes its flats with one F_END: every F_START is written, the first F_END
//   only, and an FF_END not yet followed by an F_END gets one.
// - Save and make an IWAD writes the master directory in order, duplicates and overlays as
//   the master has them.
#pragma once

#include <filesystem>

namespace kelvar::lumps
{

/// Writes the open PWADs as one PWAD at `targetPath`: every level of every file and, with
/// `includeAll`, the other lumps too (each once, in its winning definition). The panel reads
/// "Grouping PWAD %44s". An existing target is kept as its .BAK. Returns 1 when the file was
/// written, 0 when it couldn't be (the target open in the editor, "Unable to create : %s", a
/// source that can't be read, a write that failed: the old target is then put back).
[[nodiscard]] int GroupWads(const std::filesystem::path& targetPath, bool includeAll);

/// Writes what of the open PWADs is alive in its own file as one PWAD at `targetPath`: the
/// non-level lumps with `nonLevelsOnly` set, else the levels. The panel reads "Ungrouping
/// PWAD %44s". With nothing to write, the file is made with an empty directory and
/// "Ungroup file created is invalid\n\nThere was no data found for the option" is shown; the
/// result is still 1. Returns as GroupWads.
[[nodiscard]] int UngroupWads(const std::filesystem::path& targetPath, bool nonLevelsOnly);

/// Writes the whole master directory, in order, as an IWAD at `targetPath`, under the panel
/// "Making IWAD %s (%dK)". "File Seekend Error?" when the IWAD's size can't be found. Returns
/// as GroupWads.
[[nodiscard]] int WriteIwad(const std::filesystem::path& targetPath);

/// The checks Group and UnGroup begin with: a PWAD must be open ("No PWADs") and no level of
/// another game may be among the open files. False after telling the user why not.
[[nodiscard]] bool ReadyToGroup(bool ungrouping);

/// How a command flow ended.
struct GroupCommandResult
{
    bool Written = false;
    /// The user asked for the new file to be loaded: the caller replaces the open PWADs with
    /// Target and reloads the session.
    bool Reload = false;
    std::filesystem::path Target;
};

/// Group (menu command 139): the checks, the "Include ALL" question, the "Grouped PWAD"
/// dialog, GroupWads and the "Reload Group file ?" question.
GroupCommandResult GroupCommand();

/// UnGroup (menu command 140): as GroupCommand, with the "Ungroup" question, the "UnGrouped
/// PWAD" dialog and the overwrite question for an existing target.
GroupCommandResult UngroupCommand();

/// Save and make an IWAD (menu command 250): refused in a ZDoom project of the Hexen layout;
/// the "IWAD name" dialog proposes MYIWAD.WAD, then WriteIwad.
GroupCommandResult MakeIwadCommand();

} // namespace kelvar::lumps
