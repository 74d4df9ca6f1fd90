// The game palette: PLAYPAL loading, gamma, the display and import versions, the matcher's target.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - Every picture the editor draws goes through one 256-colour palette. RawGamePalette is
//   the palette as PLAYPAL holds it; GamePalette is the same with the transparent index
//   showing the transparent colour, and is what outside colours are matched to;
//   DisplayPalette is the view's version after gamma.
// - ActivePalette is the palette the state-level matcher reads. LoadGamePalette points it at
//   GamePalette; MatchPaletteTable with a named target makes that target active. It is held
//   by value, so a caller's palette that goes away leaves nothing dangling.
// - TranslationTable maps the palette of the last outside picture read to GamePalette.
#pragma once

#include "gfx/ColorMatch.h"
#include "gfx/ImageRaster.h"
#include "wad/LumpDirectory.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// Bytes of one palette in PLAYPAL, of a .PAC file and of every palette buffer.
inline constexpr size_t PaletteBytes = 768;
/// Bytes of one map in COLORMAP.
inline constexpr size_t ColormapBytes = 256;

/// The settings the palette code reads, with their defaults.
struct PaletteOptions
{
    int ViewGamma = 4;          // -100 to 100: brightness of the palette for display
    int ImportGamma = 0;        // -50 to 50: brightness for picture conversion
    int TransparentIndex = 251; // palette index used for holes
    int TransparentRed = 255;
    int TransparentGreen = 0;
    int TransparentBlue = 255;
    int PngMatch = 50;           // 1 to 100, 0 means 50: how close the fast match must come
    int PaletteNumber = 0;       // which PLAYPAL palette is used
    bool UsePwadPalette = false; // take PLAYPAL and COLORMAP from PWADs
    MatchMargins Margins;        // DominantMargin 10, StrongDominantMargin 35

    Rgb TransparentColor() const;
};

/// One row of a colour table as an 8-bit raster needs it: blue, green, red, 0.
struct ColorTableEntry
{
    uint8_t blue = 0;
    uint8_t green = 0;
    uint8_t red = 0;
    uint8_t reserved = 0;
    friend bool operator==(const ColorTableEntry&, const ColorTableEntry&) = default;
};

using ColorTable = std::array<ColorTableEntry, 256>;

/// A palette made for one use: the colours after gamma and the gamma they were made with.
struct PaletteHandle
{
    Palette Colors{};
    int Gamma = 0;
    bool Valid = false;
};

/// Everything the palette code keeps.
struct PaletteState
{
    PaletteOptions Options;
    Palette RawGamePalette{};
    Palette GamePalette{};
    Palette DisplayPalette{};
    std::optional<Palette> ActivePalette; // what MatchColor(red, green, blue) reads
    ColorTable DisplayColorTable{};
    PaletteHandle ViewPalette;   // for the map view
    PaletteHandle ImportPalette; // for picture conversion
    IndexTable TranslationTable = IdentityTable();
    bool Loaded = false;

    // Outside picture files.
    int LastImageKind = 0;               // 5 PCX, 6 BMP, 7 PNG, 0 after a failure
    std::filesystem::path PictureFolder; // where the last picture was saved
};

/// The one instance of the palette state.
PaletteState& Palettes();

/// Puts the palette state back to its defaults (tests call it).
void ResetPalettes();

/// Palette `number` of a PLAYPAL lump's bytes; a short palette is filled with black.
Palette PaletteFromBytes(std::span<const uint8_t> bytes, size_t number = 0);

/// The 768 bytes of a palette.
std::vector<uint8_t> PaletteToBytes(const Palette& palette);

/// Entry i = (i, i, i).
Palette GrayRamp();

/// Applies gamma to `source`: the transparent index (when over 0) takes the transparent
/// colour; a negative transparent index gives a gray ramp at gamma 0. Gamma is held to
/// -100..100; every colour but pure black (and entry 0 when the transparent index is over
/// 0) is scaled by (gamma + 100) / 100 and held to 255. The result goes to `destination`,
/// to the state's DisplayColorTable, and to `handleOut`.
void ApplyPalette(PaletteHandle& handleOut, const Palette& source, Palette& destination, int gamma,
                  int transparentIndex, int red, int green, int blue);

/// Fills the palette buffers from the open files' PLAYPAL, ending with palette
/// `paletteNumber` (or the last one there is). With UsePwadPalette the newest PLAYPAL of any
/// file is taken and a PWAD's COLORMAP map 0 recolours the working palette; otherwise the
/// IWAD's. With no IWAD open the configured game file is opened for the call ("Couldn't open
/// %s" ends the program). Returns 1, or -1 after "Couldn't locate palette \"PLAYPAL\" entry"
/// and "PLAYPAL not found in %s?". "Couldn't locate COLORMAP entry?" is a notice only.
[[nodiscard]] int LoadGamePalette(int paletteNumber);

/// The newest master entry named `name`; with `iwadOnly`, the newest that comes from the IWAD.
std::optional<wad::LumpEntry> FindPaletteLump(const char* name, bool iwadOnly);

/// A lump's bytes as its file holds them; fewer when the file ends early, none when it can't
/// be read.
std::vector<uint8_t> ReadWholeLump(const wad::LumpEntry& entry);

/// MatchColor against ActivePalette; with none set the program ends with
/// "ColorMatch-ActivePalette error".
uint8_t MatchColor(int red, int green, int blue);

/// MatchPaletteTable into `tableOut` against `target`, or GamePalette when null; the target
/// becomes the active palette.
void MatchPaletteTable(const Palette& source, const Palette* target, IndexTable& tableOut);

/// FastMatchColor against GamePalette with the PngMatch setting.
uint8_t FastMatchColor(int red, int green, int blue);

} // namespace kelvar::gfx
