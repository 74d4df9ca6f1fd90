// Lump import and merge: input files listed as import rows, and the merge run that writes them
// into the target WAD with its PNAMES and textures combined.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A MergeSession is what the Merge/Import dialog holds: the target's list (TargetList.h),
//   the import rows, the options and the log. kelvar-cli's import and merge verbs fill one the
//   same way and run the same SaveMerge.
// - An import row is one file, or one lump of a WAD, or one level of a WAD with all its lumps.
//   Its entries say where its bytes lie in its file; nothing is read whole before the run.
// - The run places the rows into the target list, merges PNAMES and TEXTUREx into the merge
//   buffers (TextureMerge.h), then writes the whole target through the WAD rewrite
//   (wad/WadRewrite.h): the old file becomes the .BAK, which stays after a success and comes
//   back after a failure. Source files are only read.
// - The order of the target after a merge: its old entries in their old order, less those
//   replaced; the new rows at the insert position (or the end) in import order, PNAMES rows
//   first, then TEXTUREx rows, then the rest; one PNAMES and one TEXTURE1, each where the first
//   such lump stood, and TEXTURE2 (when there is one) holding only the dummy texture.
#pragma once

#include "gfx/LumpKind.h"
#include "gfx/PictureFit.h"
#include "lumps/TargetList.h"
#include "lumps/TextureMerge.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// One input of the import list.
struct ImportRow
{
    std::filesystem::path File;
    std::string LumpName; // the name it gets in the target (a level's name for a level)
    std::string TypeName; // "PWAD" for a lump of a WAD, the level kind, or the file's kind
    bool FromWad = false; // a lump (or level) of a WAD file, not a file of its own
    int LevelLayout = 0;  // 1 Doom, 2 Hexen for a level row; 0 otherwise
    std::vector<TargetEntry> Entries; // its lumps, with their places in File
};

/// The settings of a merge: the dialog's Target and Import Options.
struct MergeOptions
{
    std::string Magic = "PWAD";   // Save PWAD header, or "IWAD" for Save IWAD header
    bool SortTextures = false;    // Sort Textures
    bool AllowDuplicates = false; // Allow Duplicates
    /// What picture files (.BMP, .PCX, .PNG) become: Pic (Textures), Sprite, Proj, Weapon,
    /// Flat, Imgz, FlatLeg (Legacy); Lump keeps the file's bytes as they are (RAW).
    gfx::LumpKind PictureKind = gfx::LumpKind::Lump;
    bool WavToSnd = false;       // the sound format ".SND": waves become SND lumps
    bool MidiToMus = false;      // the music format ".MUS": MIDI becomes MUS through kelvarmus
    bool KeepScriptNames = true; // off: "SCRIPTxx" names are written as "SCRIPTS"
    gfx::ImportSizeLimits Limits;
};

/// What the last run did.
struct MergeCounts
{
    int Added = 0;    // rows written into the target
    int Replaced = 0; // target rows replaced by an import row of the same name
    int Skipped = 0;  // import rows left out: refused, unreadable, not convertible
    int Written = 0;  // entries of the target as written
};

/// The dialog's state.
struct MergeSession
{
    TargetList Target;
    std::vector<ImportRow> Imports;
    MergeOptions Options;
    int Selected = -1; // the target entry heading the selected row; -1 none
    std::vector<std::string> Log;
    MergeCounts Counts;
};

/// Opens the target: ReadTargetFile with the texture notice, the selection cleared. Returns
/// its result.
[[nodiscard]] int OpenMergeTarget(MergeSession& session, const std::filesystem::path& file);

/// Adds `path` to the import list: a WAD lump by lump (a level as one row, names with control
/// characters as "bad%d" with the notice "Lump Names"), any other file as one row named by its
/// base name, upper-cased and cut to 8. A path already listed shows "This File is a
/// Duplicate\n\n%s\n\nand is ignored"; one that can't be read shows the notice "Source File"
/// ("Could not access", the path, "Ignored as a new lump"); a WAD whose directory is damaged
/// the notice "Source File" with "Damaged WAD directory", the path and "File ignored". Each
/// row goes to the log with its number and, where it applies, " ** Reserved Name (please
/// rename) ", " ** Duplicate Name (rename or allow duplicates) " or " ** Duplicate Name (*
/// warning *) ". Returns the rows added.
int AddInputFile(MergeSession& session, const std::filesystem::path& path);

/// The merge run, the dialog's Save: the rows placed, duplicates asked about and removed,
/// PNAMES and textures merged, the target rewritten, the log written to KelvarMerge.LOG in the
/// program directory and shown as "Merge/Import Log", the target read again and the import
/// list emptied. Returns 1 written, 0 stopped before anything was written (no target, a
/// cancelled question, a source that is the target), -1 when the rewrite failed (the target
/// is as it was).
[[nodiscard]] int SaveMerge(MergeSession& session);

/// The path of the merge log.
std::filesystem::path MergeLogPath();

/// The target list's Verify Pnames: every patch of the textures of its first TEXTURE1 and
/// TEXTURE2 checked against its first PNAMES, and each name against the lumps of the target
/// and of the files open in the editor. The report ("== Checking Patch names used in Textures
/// ==", a line for each bad patch index "%-8s Invalid patch index = %hd" and each name no lump
/// has "%-8s patch %-8s not found", then "Total TEXURES= %d size= %d\nTotal PNAMES = %d size=
/// %d\n") goes to the merge log and is shown as "Verify Pnames". With no PNAMES the notice
/// "No PNAMES lump in Target File" / "with a PNAMES entry"; with no TEXTUREx "No TEXTURE lump
/// in Target File" / "with TEXTURE1 or TEXTURE2 entries". Returns the patches found wanting,
/// or -1 when there was nothing to check.
int VerifyPnames(const MergeSession& session, std::vector<std::string>* report = nullptr);

/// Writes the target list with the merged lumps (the run's last step): every entry in order,
/// a lump of the target from the old file, an import's lump from its file, converted as the
/// options say; the first PNAMES and TEXTURE1 hold the merged buffers and later ones are left
/// out, the first TEXTURE2 holds the dummy texture. Conversions that fail say so (see the
/// .cpp) and either keep the bytes as they are or leave the lump out. `texturesMerged` false
/// keeps every PNAMES and TEXTUREx as it is. The magic question ("You request to create a %4.4s
/// header...") may stop it. Returns 1 written, 0 stopped, -1 failed.
[[nodiscard]] int RewriteTargetFile(MergeSession& session, MergeBuffers& buffers,
                                    bool texturesMerged);

} // namespace kelvar::lumps
