// The palette and COLORMAP editor's core: whole-lump copies, the edited palette, and its
// operations. SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The editor holds one copy of the whole PLAYPAL and one of the whole COLORMAP, read once
//   with the file they came from. Every operation changes these copies or EditedPalette;
//   only saving reaches the disk.
// - EditedPalette is the palette number chosen, seen through the chosen map when
//   ProcessColormap is on. ApplyEditedPalette writes it back into the lump copy.
// - Adjustments act on the selection [First, Last] or, with AllColors, on all 256 entries;
//   with AllPalettes on every palette of the lump copy instead of the one shown.
#pragma once

#include "gfx/ColorMatch.h"
#include "gfx/ImageRaster.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// The editor's state.
struct PaletteEditorState
{
    std::vector<uint8_t> Playpal;  // the whole lump
    std::vector<uint8_t> Colormap; // the whole lump
    int PlaypalFile = -1;          // file numbers the lumps came from
    int ColormapFile = -1;
    int PaletteNumber = 0;
    int MapNumber = 0;
    int First = 0; // selection range
    int Last = 0;
    bool IwadPalette = true; // IWAD palette; otherwise PWAD palette
    bool ProcessColormap = false;
    bool AllPalettes = false;
    bool AllColors = false;
    bool PercentChange = true; // Type of Change: percent, else absolute values
    bool SavePlaypal = false;
    bool SaveColormap = false;
    Palette EditedPalette{};
    MatchMargins Margins;
};

/// The slider values of one adjustment: gamma moves all three channels, the others one each.
struct ColorAdjustment
{
    int Gamma = 0;
    int Red = 0;
    int Green = 0;
    int Blue = 0;
};

/// Reads PLAYPAL (the IWAD's newest in IWAD palette mode, else the newest of any file) and
/// makes palette `paletteNumber` the edited one. A number past the last palette is lowered
/// to it after "Invalid PLAYPAL number=%hd". Returns 1, or 0 after "No PLAYPAL found ?" or
/// "PLAYPAL size is too small=%d".
[[nodiscard]] int LoadPalette(PaletteEditorState& state, int paletteNumber);

/// Reads COLORMAP likewise and chooses map `mapNumber` ("Invalid COLORMAP number=%hd" lowers
/// it). Returns 1, or 0 after "No COLORMAP found?".
[[nodiscard]] int LoadColormap(PaletteEditorState& state, int mapNumber);

/// Palette `number` of the lump copy.
Palette LumpPalette(const PaletteEditorState& state, int number);

/// Recomputes EditedPalette from the lump copies.
void RefreshEditedPalette(PaletteEditorState& state);

/// Writes EditedPalette into the lump copy at the palette number.
void ApplyEditedPalette(PaletteEditorState& state);

/// Edit Color: one entry of EditedPalette.
void SetSingleColor(PaletteEditorState& state, int index, Rgb color);

/// Edit Color with a colormap: one entry of the chosen map.
void SetColormapValue(PaletteEditorState& state, int index, uint8_t value);

/// Gradient: an even ramp over the selection from `begin` to `end`. Returns 1, or 0 after
/// the "Set Range" message when the selection holds fewer than 3 entries.
[[nodiscard]] int GradientColors(PaletteEditorState& state, Rgb begin, Rgb end);

/// Gradient of map values over the selection of the chosen map; as GradientColors.
[[nodiscard]] int GradientColormap(PaletteEditorState& state, int begin, int end);

/// The sliders: shifts the selected entries (or all) of EditedPalette (or of every palette
/// of the lump copy), by percent or by absolute values, each result held to 0..255.
void AdjustColors(PaletteEditorState& state, const ColorAdjustment& adjustment);

/// Grayscale Colormap: the chosen map shows each colour as the palette's nearest gray.
void MakeGrayscaleColormap(PaletteEditorState& state);

/// Grayscale Palette Doom: each colour becomes its own gray level (the palette keeps its
/// light and dark); Grayscale Palette Standard: a plain ramp, entry i = (i, i, i).
void MakeGrayscalePaletteDoom(PaletteEditorState& state);
void MakeGrayscalePaletteStandard(PaletteEditorState& state);

/// Create 32 ColorMaps: maps 0 to 31 fade palette 0 of the lump copy towards `display`,
/// the colours on display. Maps past 31 are kept.
void CreateColormapsFromDisplay(PaletteEditorState& state, const Palette& display);

/// The lines "Duplicate Color index=%3d =%3d RGB=%3hd,%3hd,%3hd" for each entry that repeats
/// an earlier one, or the single line "No duplicate Colors".
std::vector<std::string> DuplicateColorLines(const Palette& palette);

/// List Duplicate Colors: the lines under their header in the log, shown.
void ListDuplicateColors(const PaletteEditorState& state);

/// Get Palette from BMP: takes the palette of a 256-colour BMP or PCX as the palette in hand,
/// then asks "Match Palette to Original Game Palette?" and on to the colormap questions.
/// Returns 1, or 0 after "%s is not BMP or PCX" or "%s is not 256 color image".
[[nodiscard]] int GetPaletteFromPicture(PaletteEditorState& state,
                                        const std::filesystem::path& fileName);

} // namespace kelvar::gfx
