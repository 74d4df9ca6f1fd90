// Saving: the level written into a whole new WAD beside the old one, and the quick backups.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A save never patches a file. The old file is renamed to .BAK and reopened under that
//   name; the new file is written beside it, taking from the old file everything memory
//   doesn't hold, in the old file's order with the level's lumps in the canonical order.
//   Until the new file is whole the master directory still describes the old bytes, so any
//   failure can rename the .BAK back (RestoreBak).
// - What only the shell or other subsystems can do (the Save dialog, the unused-object
//   clean-up, the node builder, redraws) reaches them through SaveHooks.
#pragma once

#include "map/LevelData.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kelvar::wad
{

/// Save codes: the command word that goes through the pipeline.
inline constexpr int SaveLevelCode = 15360;       // Save Level (F2)
inline constexpr int SaveLevelAsCode = 15616;     // Save Level As, a new level name (F3)
inline constexpr int BuildNodesCode = 26880;      // Build Node (Alt+F2)
inline constexpr int BuildNodesAsCode = 47616;    // Build Node As
inline constexpr int NewRejectCode = 28416;       // Save with new RejectMask
inline constexpr int ExtraDataCode = 24576;       // save with extra data: a lump replace
inline constexpr int ReplaceLumpCode = 26624;     // replace or add a named lump from a file
inline constexpr int ReplaceBehaviorCode = 26625; // the compiled script: BEHAVIOR
inline constexpr int ReplaceOtherCode = 26626;    // as 26624, another file filter
inline constexpr int AddLumpCode = 26627;         // a new lump name, no file prompt

/// The choices of the Save dialog; kept in the project and offered again.
struct SaveOptions
{
    bool CopyReject = true;  // "Copy Reject": keep the old table
    bool AllAttacks = false; // "ALL Attacks": all zero bytes
    int AttackStep = 0;      // 0 "NO  Attacks", 1 "50% Attacks", 2 "33% Attacks"
    std::uint8_t AttackByte = 255;
    bool GroupSave = false;     // "Group Save Option - See Help"
    bool UnusedCleanup = false; // "Automatic Unused Object Cleanup"
    bool RebuildNodes = false;  // "Rebuild the Nodes ?"
    bool SeeResults = false;    // "See Results ? [Nodes are not shown - KelvarBSP]"
    bool ShowBuild = false;     // "Show Node Build ?"
    bool CustomBuilder = false; // "Use Custom NodeBuilder"
    bool ZeroNodes = false;     // "-0- NODES"
    bool ZeroReject = false;    // "-0- REJECT"
    bool ZeroBlockmap = false;  // "-0- BLOCKMAP"
    std::string FileName;       // shown as the dialog's caption line

    bool operator==(const SaveOptions&) const = default;
};

/// A lump to put into the file as it is saved: replaced at its entry, or added at the end.
struct LumpReplace
{
    std::string Name;       // the lump's name
    std::string SourceFile; // the file whose whole bytes become the lump; empty: no data
};

/// Settings of the 3D test that act on every save while they are on.
struct SaveWriterSettings
{
    bool ShowInvisibleLines = false;    // flag 128 cleared on the way out
    bool ClearSectorSpecials = false;   // Sector types written as 0
    bool ScriptsUnderPlainName = false; // every level script lump is written as SCRIPTS
};

/// What the shell and the other subsystems do for a save. Each may be empty.
struct SaveHooks
{
    /// The Save dialog ("Kelvar - Verify REJECT, NODES & GROUP SAVE"); false: Cancel.
    std::function<bool(SaveOptions&)> SaveDialog;
    /// The unused-object clean-up before the write.
    std::function<void()> UnusedCleanup;
    /// The node builder on the temporary file; 0 success. Empty: no builder, the save of the
    /// level stays as written and the node change counter stays raised.
    std::function<int(const std::string& temporary, const std::string& target,
                      const std::string& levelName)>
        BuildNodes;
    /// The map is drawn; the status line is drawn.
    std::function<void()> RedrawMap;
    /// The session's minute counter since the last save goes back to 0.
    std::function<void()> SaveClockReset;
};

/// The temporary file of a node build, in the program's directory.
inline constexpr const char* NodeBuildFileName = "~Kelvar.WAD";

/// The minute counter is reset, then a one-byte lock on KELVAR.LOK is tried (and let go at
/// once) until it is free: waiting on an earlier save first ("Stuck waiting for Save to
/// finish?" after 21 s), then 11 tries 500 ms apart ("Permanent LOCK active?"). SaveBusy is
/// set either way; the caller clears it after the write.
void AcquireSaveLock();

/// The file a save writes: the level's own file turned into its .BAK, a new <level>.wad for
/// a level of the IWAD, or what the user picks (`ask`). Refuses the IWAD and files in use,
/// a level name another PWAD uses, and a new name in a multi-level PWAD. Returns the path,
/// or nothing (after the reason was shown). `groupSave` is the Group Save choice.
std::optional<std::string> ChooseSavePath(const std::string& newLevelName,
                                          const std::string& oldLevelName, bool ask,
                                          bool groupSave);

/// Writes the level into `path` (see the design notes), under the name its marker has in the
/// master directory now. `oldPath` is the file the level was read from, `oldLevelName` its
/// name there when Save As renamed it (empty: the same). `code` is the save code; `replace` a
/// lump to put in along the way. Returns 0, or -1 when the save stopped (after RestoreBak when
/// the old file had been renamed). The level's change counter is 0 after a save; the node
/// counter too when nodes were built.
[[nodiscard]] int WriteLevelFile(map::LevelData& level, const std::string& path,
                                 const std::string& oldPath, int code,
                                 const std::optional<LumpReplace>& replace = std::nullopt,
                                 const std::string& oldLevelName = {});

/// Renames the file turned into .BAK back to its name and reopens it as the level's file.
/// Returns -1 (the save's result).
int RestoreBak(const std::string& targetPath);

/// The quick backup: the level into `path` (.BKP), the whole file in group mode. With
/// `confirm`, "Save BKP file?\n\n%s" is asked first. I/O failures are reported, never
/// fatal. Returns 0, or -1.
[[nodiscard]] int WriteBackup(bool confirm, const map::LevelData& level, const std::string& path);

/// Writes the level alone into a new PWAD at `path` under `levelName`: its object lumps from
/// memory, empty node lumps, and in a Hexen project its script (or 16 zero bytes). For
/// another program to read, after a node builder has run on it. Returns 0, or -1 after a
/// reported failure.
[[nodiscard]] int WriteLevelCopy(const map::LevelData& level, const std::string& path,
                                 const std::string& levelName);

/// The .BKP name of a file: its extension replaced.
std::string BackupPathOf(const std::string& path);

} // namespace kelvar::wad
