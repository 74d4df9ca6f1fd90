// The export list: one row for each lump of the loaded files (a level as one row), the filters
// that choose the rows, and the export settings the dialog keeps from one opening to the next.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The list is built from the master directory in its order. A level is found by the level
//   test and becomes one row of kind Level tagged "LVL" (or "LGL" from 13 lumps on); the walk
//   then jumps past its lumps. Every other entry is classified by its first bytes.
// - A row remembers its master directory index, so two lumps of one name (one from each file)
//   stay two rows and each exports its own bytes.
// - The filters, the Auto formats and the folders last written to live in ExportState, the one
//   state of the export tools.
#pragma once

#include "gfx/LumpKind.h"
#include "gfx/PictureFit.h"
#include "wad/LumpName.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// One row of the export list.
struct ExportRow
{
    wad::LumpName Name;
    std::int32_t DirectoryIndex = -1; // in the master directory; a level's marker
    std::int32_t FileOffset = 0;
    std::int32_t Size = 0;
    gfx::LumpKind Kind = gfx::LumpKind::Lump;
    std::int32_t ListPosition = 0; // the row's place in the list as shown
    std::string Tag = "LUMP";      // "LVL", "LGL", or the classification's tag
    int LevelLumpCount = 0;        // a level's lumps, its marker included; 0 for a lump
    std::int16_t FileNumber = 0;   // the file that supplies the data; 0 the IWAD

    bool IsLevel() const { return Kind == gfx::LumpKind::Level; }
};

/// The check boxes of the export dialog.
struct ExportFilters
{
    bool LumpPreview = true;
    bool SortedList = false;
    bool ExternalFilesOnly = false; // leave out the IWAD's entries
    bool Graphics = true;
    bool Sounds = true;
    bool MidiMus = true;
    bool Flats = true;
    bool Other = true;
    bool Control = false; // entries of size 0 (markers)
    bool Levels = true;
};

/// The import and export settings: the formats the Auto conversion writes, as file
/// extensions (the music and sound ones are also what an import converts to), and the sizes a
/// picture import takes.
struct ExportSettings
{
    std::string AutoGraphicFormat = ".BMP"; // ".BMP" or ".PCX"
    std::string AutoMusicFormat = ".MID";   // ".MID" or ".MUS"
    std::string AutoSoundFormat = ".WAV";   // ".WAV" or ".SND"
    gfx::ImportSizeLimits ImportLimits;
};

/// Everything the export tools keep between uses.
struct ExportState
{
    ExportFilters Filters;
    ExportSettings Settings;
    /// The folder last written to, by the extension of the file ("LMP", "WAV"...).
    std::map<std::string, std::filesystem::path> LastFolders;
    /// The folder last chosen for a batch.
    std::filesystem::path BatchFolder;
};

/// The one instance.
ExportState& Exports();

/// Back to the defaults (tests).
void ResetExports();

/// True when `filters` list an entry of `kind` and `size` bytes. Patches are listed as
/// Graphics; ScanExportList tests their columns before it asks.
bool FilterListsKind(const ExportFilters& filters, gfx::LumpKind kind, std::int32_t size);

/// Builds the list from the master directory, "Scanning %d Entries" in the progress panel.
/// With Graphics on, every patch's column table is checked and a patch that fails is listed
/// as kind Lump. Sorted by name (case ignored, directory order among equal names) when
/// `filters.SortedList` is on; ListPosition is the row's place either way.
std::vector<ExportRow> ScanExportList(const ExportFilters& filters);

/// The rows of `rows` whose names the rows `selected` of `before` had, for keeping a
/// selection across a new scan; names no longer listed are dropped.
std::vector<int> PreserveSelection(const std::vector<ExportRow>& before,
                                   const std::vector<int>& selected,
                                   const std::vector<ExportRow>& rows);

/// The row of the newest lump of that name (case ignored), or -1.
int FindRowByName(const std::vector<ExportRow>& rows, std::string_view name);

/// The status line the preview shows for a row: "%d %8s %s %d %-.80s" (entry, name, tag,
/// size, file); for a sound "%d %8s Sound %hd %hdx%d %-.80s" or "%d %8s WAVE %hd %hdx%d
/// %-.80s" (entry, name, rate, bits, size, file); "%d %8s data %d %-.80s" for a lump of no
/// known kind; "%8s ERROR - name not found?" when the entry is no longer there.
std::string PreviewStatusText(const ExportRow& row);

} // namespace kelvar::lumps
