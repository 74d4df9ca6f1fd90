// What the export dialog shows and plays of a row, without a window: the preview a kind gets,
// the wave of a sound, the lines of a data lump, the game's logo, the labels of the dialog's
// controls, and playing a row through the audio port.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/ExportBatch.h"
#include "lumps/ExportList.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// How the preview pane draws a row.
enum class ExportPreview
{
    Picture, // a lump the picture decoders read: flats, patches, raw full-screen pictures, IMGZ
    Image,   // a picture file stored as a lump (PNG, BMP, JPEG), read as that file
    Sound,   // its waveform, and it plays
    Music,   // it plays
    Level,   // a small map of its LineDefs
    Data,    // its bytes as text lines, or as a hex dump
};

/// The preview of a lump of `kind`.
ExportPreview PreviewOf(gfx::LumpKind kind);

/// The logo the pane shows while no row is selected: "M_DOOM" for Doom and Doom 2, "M_HTIC"
/// for Heretic and Hexen, "M_STRIFE" for Strife (`game` as wad::GameIdentity::Game numbers it).
std::string_view GameLogoName(int game);

/// The RIFF WAVE the waveform of a sound lump is drawn from: a WAV lump as it stands, an SND
/// (2000 to 45000 Hz) as the 8-bit mono wave it plays as. Nothing for any other lump.
std::optional<std::vector<std::uint8_t>> PreviewWave(std::span<const std::uint8_t> lump);

/// The lines the pane shows of a data lump, at most `maxLines` of them. Bytes that read as
/// text (printable ASCII, tabs and line ends, with zero bytes only at the end) come as their
/// lines, tabs expanded to 8 columns and each cut at 120 characters; anything else as a hex
/// dump of 16 bytes a line ("000010  41 42 ...  AB..").
std::vector<std::string> DataPreviewLines(std::span<const std::uint8_t> bytes,
                                          std::size_t maxLines);

/// Plays row `row` through the audio port as its kind says: an SND or WAV sound, a MUS or
/// MIDI piece. A sound stops the sound before it, music stops both. Returns what the sound
/// subsystem's play function returned (sound::PlayResult), PlayRefused for a row that is
/// neither sound nor music, PlayNotFound when its entry is gone.
int PlayExportRow(const ExportRow& row);

/// Stops the sound and the music the dialog started.
void StopExportPlayback();

/// A format button of the dialog and its label.
struct ExportButtonLabel
{
    ExportButton Button;
    const char* Text;
};

/// The format buttons in the order shown, labelled with the format each writes.
const std::array<ExportButtonLabel, 9>& ExportButtonLabels();

/// A filter check box of the dialog and the flag it sets.
struct ExportFilterLabel
{
    bool ExportFilters::*Flag;
    const char* Text;
};

/// The filter check boxes in the order shown. Every box but Lump Preview changes the rows.
const std::array<ExportFilterLabel, 10>& ExportFilterLabels();

/// The dialog's other buttons.
inline constexpr const char* ExportPlayText = "Pla&y";
inline constexpr const char* ExportStopText = "St&op";
inline constexpr const char* ExportAnalyzeText = "Analy&ze Graphics";
inline constexpr const char* ExportOptionsText = "Auto Optio&ns";

} // namespace kelvar::lumps
