// The state of the WAD layer: file table, master directory, level list, game, options.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Record 0 of the file table is the IWAD; its directory is the master directory through
//   which every lump is found. PWADs are laid over it by appending (searches run from the
//   end, so the newest definition wins) and, for levels, by overwriting the IWAD level's
//   slots in place, which keeps the canonical lump order whatever the order in the file.
// - OpenFiles is the name table: the PWADs of the session in overlay order. A PWAD record
//   points into it through ListIndex.
// - The options and hooks are how the application shell feeds in its settings and its own
//   reactions (status files, the picture catalogue) without this layer
//   knowing the shell.
#pragma once

#include "map/GameCodes.h"
#include "wad/LumpDirectory.h"
#include "wad/LumpName.h"
#include "wad/SaveOptions.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kelvar::wad
{

/// Closes a stream owned by a StreamPtr.
struct StreamCloser
{
    void operator()(std::FILE* stream) const noexcept { std::fclose(stream); }
};

/// An open buffered binary stream.
using StreamPtr = std::unique_ptr<std::FILE, StreamCloser>;

/// Records in the file table.
inline constexpr int FileTableSize = 102;
/// Entries in the name table of PWADs (the project's OpenFiles).
inline constexpr int NameTableSize = 101;
/// Longest full file name in a table (260-byte buffers).
inline constexpr std::size_t MaxPathLength = 259;
/// Longest file name kept in a status record (128-byte fields).
inline constexpr std::size_t MaxRecordPathLength = 127;
/// The view position that means "not set": the next load centres the map.
inline constexpr double UnsetViewPosition = -32666.0;

/// Settings of the project and the program that the WAD layer reads. The application shell
/// copies them from its status records.
struct WadOptions
{
    std::string IwadPath = "/usr/share/games/doom/freedoom2.wad";
    bool ProjectNeverUsed = false;    // the project's marker is still "ee"
    bool ZdoomHexenFormat = false;    // " ZDOOM - HEXEN format"
    bool BoomTypes = false;           // " ZDOOM & BOOM types"
    bool GlNodes = false;             // " GLnodes (as applicable)"
    bool AllowDuplicates = false;     // Allow Duplicates
    bool DuplicateLumpMsg = true;     // Duplicate Lump Msg
    bool ExpertMode = false;          // Expert Mode (Fewer Messages)
    bool NoIwadWarningMsg = false;    // no  IWAD warning Msg
    bool AutomaticSideUnpack = false; // Automatic SideUnpack
    bool GroupSave = false;           // Group Save: the other lumps of a file go along
    bool PlainScriptNames = false;    // a level's script lump is saved as SCRIPTS
    std::int16_t AdditionalLumpEntries = 32000;
    std::int16_t FileLimit = 100;
    int LevelListLimit = 200;
    std::filesystem::path DefaultPwadDir; // empty: the program's directory
};

/// Reactions of the rest of the program that the WAD layer triggers. Each may be empty.
struct WadHooks
{
    std::function<void()> ResetViewPosition;             // a PWAD was opened
    std::function<void(const LumpName&)> ResetCatalogue; // TEXTURE1/2, PNAMES, S_START...
    std::function<void(const LumpName&)> ForgetPicture;  // a newer lump of this name came
    std::function<void()> DropCatalogues;                // all files are being closed
    std::function<void()> SaveStatusFiles;               // the IWAD name changed
};

/// One record of the file table.
struct FileRec
{
    std::string FileName;        // path as opened
    StreamPtr Stream;            // open stream or null
    std::int16_t CacheId = 0;    // handed to the picture cache when the file goes
    std::int16_t ListIndex = -1; // index in OpenFiles; -1 for the IWAD
    std::int16_t IsMain = 0;     // 1 for record 0
    char State = 0;              // 0 free, 'O' open, 'C' closed with its directory kept
    std::int16_t LevelLayout = map::LayoutNone; // a map::LayoutCode
    std::int32_t LumpCount = 0;                 // entries read, later maintained
    std::int32_t DirectoryOffset = 0;
    LumpName FirstLevelName; // or ".BAK" / "DEL" as marks
    LumpDirectory Directory; // the file's own directory; record 0: the master
    bool ReadOnly = false;   // the stream was opened for reading only
    bool IwadAsPwad = false; // an IWAD opened as a PWAD: only its levels are used
};

/// The file of the level in the editor: which record, and where its level starts in the
/// master directory, so that a forward search from there finds the level's lumps first.
struct CurrentFileRec
{
    int FileNumber = -1;
    std::size_t LevelStart = 0; // index of the level's marker in the master directory
};

/// One entry of the level list.
struct LevelListEntry
{
    LumpName Name;
    std::int16_t Spare = 0;
    std::int16_t FileNumber = 0; // the file that supplies the level now

    bool operator==(const LevelListEntry&) const = default;
};

/// What the IWAD turned out to be, and the project format that follows from it.
struct GameIdentity
{
    int Game = 0;               // 1 Doom, 2 Doom 2, 3 Heretic, 4 Hexen, 5 Strife
    int Format = map::GameNone; // the level format: the game, or GameHexen for a Hexen layout
    std::string DisplayName;    // "DOOM", "BOOM", "HERETIC", "HEXEN", "STRIFE", "ZDOOM"
    std::string ConfigFile;     // "DOOM2.DFG" ...
    int ExpectedLevelEntries = 11;
    bool ExtendedTypes = false;
    bool IwadHasBehavior = false;
    int TextureHeadSize = 22;
    int TexturePatchSize = 10;
    int TexturePatchCountIndex = 10;
};

/// One run of entries between a pair of markers in the master directory.
struct MarkerRun
{
    int Start = -1; // index of the start marker, -1 when the pair is not there
    int First = -1; // first entry of the run
    int Count = 0;

    bool operator==(const MarkerRun&) const = default;
};

/// The runs found after a merge: the IWAD's single pairs and the newest PWAD's doubled pairs.
struct MarkerRanges
{
    MarkerRun Tx, Hi, F, FF, P, PP, S, SS, C, CC;
};

/// The common error log.
struct ErrorLogState
{
    StreamPtr File;
    int Lines = 0; // running number; negative writes plain lines
    std::filesystem::path Path;
};

/// Everything the WAD layer keeps.
struct WadState
{
    // Checked file access.
    bool BackupInProgress = false;
    bool ReadOnlyOpen = false;
    std::size_t LastReadCount = 0;
    std::size_t LastWriteCount = 0;
    std::int64_t WriteBudget = -1; // bytes the disk still takes; -1 no limit (tests fill it)
    int LastSeekResult = 0;
    std::filesystem::path ProgramDir;

    WadOptions Options;
    WadHooks Hooks;
    ErrorLogState Log;

    // File table and directories.
    std::array<FileRec, FileTableSize> Files;
    std::array<std::string, NameTableSize> OpenFiles;
    CurrentFileRec CurrentFile;
    std::size_t MasterCapacity = 0;
    std::vector<LevelListEntry> Levels;
    GameIdentity Game;
    MarkerRanges Markers;
    int OtherGameLevels = 0;
    bool IwadBehaviorWarned = false;

    // Saving.
    SaveOptions SaveChoices;       // the Save dialog's choices, offered again
    SaveWriterSettings Writer;     // the 3D test's options that act on every save
    std::FILE* LockFile = nullptr; // KELVAR.LOK, held open by the session
    int AutoSaveCount = 0;         // quick backups made this session
};

/// The one instance of the WAD layer's state.
WadState& Wad();

/// Closes every stream and puts the state back to its defaults (tests call it).
void ResetWad();

/// The master directory (record 0's).
inline LumpDirectory& Master()
{
    return Wad().Files[0].Directory;
}

} // namespace kelvar::wad
