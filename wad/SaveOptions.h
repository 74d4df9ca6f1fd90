// What a save is asked to do: the save codes, the choices of the Save dialog, a lump to put
// in along the way, and the 3D test's settings that act on every save.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
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
    bool ShowInvisibleLines = false;  // flag 128 cleared on the way out
    bool ClearSectorSpecials = false; // Sector types written as 0
};

/// The temporary file of a node build, in the program's directory.
inline constexpr const char* NodeBuildFileName = "~Kelvar.WAD";

} // namespace kelvar::wad
