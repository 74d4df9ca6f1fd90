// Writing one lump to one outside file: raw, as a one-lump or one-level PWAD, as a sound or
// music file with the conversions, or as a BMP or PCX picture.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Sources are only read. A target that is one of the open files (or the IWAD) is refused
//   before anything is written.
// - A file is written under a temporary name beside the target and renamed over it only when
//   it is whole, so a full disk or a failed write leaves an older file of that name as it was.
//   Appending extends the file in place and cuts it back to its old length on failure.
//   PWADs are written through wad::RewriteWad, which keeps an older file as its .BAK.
// - Every write goes through the WAD layer's checked writes, so a short write is reported as
//   an I/O error like any other.
#pragma once

#include "gfx/LumpKind.h"
#include "gfx/Picture.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace kelvar::lumps
{

/// ExportLump flags: ask for the file name in a dialog; extend an existing file.
inline constexpr int ExportAskName = 1;
inline constexpr int ExportAppend = 2;

/// Results of ExportLump and ExportGraphic.
inline constexpr int ExportWritten = 1;
inline constexpr int ExportFailed = 0;
inline constexpr int ExportCancelled = -1;

/// The extension of the file a lump is written to under an export extension: ".SCRIPT" gives
/// ".ACS", ".MAPINFO", ".SNDINFO", ".SNDSEQ" and ".ANIMDEFS" give ".txt", ".DEHACKED" ".deh",
/// ".FRAGGLE" ".fs"; the others stand as they are. Empty for an extension ExportLump doesn't
/// take.
std::string ExportFileExtension(std::string_view extension);

/// Makes sure the palette pictures are exported on: the game palette and the import palette
/// built from the transparent colour and the import gamma. Returns false when PLAYPAL can't be
/// found (after its message).
bool PrepareExportPalette();

/// Writes lump `lumpName` (the master entry `directoryIndex` when that entry has this name,
/// else the newest of the name) as `extension` (".WAD", ".TXT", ".LMP", ".WAV", ".SND", ".MID",
/// ".MUS", ".SCRIPT", ".MAPINFO", ".SNDINFO", ".SNDSEQ", ".ANIMDEFS", ".DEHACKED", ".FRAGGLE").
/// Without ExportAskName, `pathInOut` is the folder, or empty for the folder last used for
/// such files; with it, the dialog "Save Lump" proposes that folder and the name. On success
/// `pathInOut` is the file written. A level written as ".WAD" is a PWAD of the level's lumps;
/// as ".TXT" or ".LMP" it is its header's own bytes.
/// Returns ExportWritten, ExportCancelled (a dialog or prompt cancelled), or ExportFailed after
/// "Invalid SaveLump option", " %s - Lump Name not found", "Could not create %s", a
/// conversion's message, "File %hd ... is in use by Kelvar\nCan't write over file" or an I/O
/// error.
[[nodiscard]] int ExportLump(std::string_view lumpName, int directoryIndex,
                             std::string_view extension, std::filesystem::path& pathInOut,
                             int flags);

/// Writes a graphics lump of `kind` as a BMP, or a PCX when `extension` is ".PCX", with holes
/// of patches in `transparentIndex`: a flat as the largest square of side 128, 256, 512, 1024
/// or 2048 that its bytes hold (64 otherwise), full-screen raws at 320 x 200 and 320 x 158,
/// FLATLEG and IMGZ at their own sizes. With `prompt` the dialog "BMP name" or "PCX name" asks
/// for the file and success is reported; otherwise `path` is the file. On success `path` is
/// the file written. Returns as ExportLump, after "Could not process Graphic %s\n\nProbably
/// invalid format!", "Not enough Memory to read or invalid size %s!", "DIB Error opening
/// file!" or "DIB Error saving file!" on failure.
[[nodiscard]] int ExportGraphic(std::string_view extension, std::string_view lumpName,
                                int directoryIndex, gfx::LumpKind kind, int transparentIndex,
                                std::filesystem::path& path, bool prompt);

/// The picture ExportGraphic writes for master entry `index` read as `kind`, without a word to
/// the user: the raster, or the reason there is none (PictureError::None when the lump could
/// not be read, which the read reported).
gfx::DecodedPicture DecodeExportedGraphic(int index, gfx::LumpKind kind, std::uint8_t fillIndex);

/// Writes `bytes` as the file `path`: through a temporary file renamed over the target when
/// it is whole, or, with `append`, at the end of the file, cut back on failure. Returns false
/// after "Could not create %s" or an I/O error.
bool WriteExportFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes,
                     bool append);

/// False, after the notice "Not Valid Name", for a lump name no file can be named after:
/// IsExportableName's characters, and '/'.
bool IsExportableFileName(std::string_view name);

/// The layout of the level whose marker is master entry `markerIndex` as its file holds it on
/// disk (the master directory may have left out lumps another game's layout has): 1 Doom,
/// 2 Hexen, 0 no level.
int ExportedLevelLayout(int markerIndex);

/// The master entry an export takes: `directoryIndex` when that entry is named `name`, else
/// the newest entry of the name; -1 when there is none.
int ExportEntryIndex(std::string_view name, int directoryIndex);

} // namespace kelvar::lumps
