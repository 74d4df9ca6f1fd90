// The export dialog's buttons over a selection of rows: the test each button makes, the
// Auto conversion, batches into a folder with Escape, the PWAD exports, and Analyze Graphics.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - One row exports through ExportLump or ExportGraphic after a file dialog; several rows go
//   to a folder asked once, each row to NAME plus the extension of its format. A caller that
//   has its folder already (kelvar-cli) passes it, and no dialog comes up.
// - A row that is refused (its name, its kind, a failed read or write) shows its message and
//   the batch goes on. Only Escape, answered yes, stops it.
// - Levels are written to PWADs only, one level a file.
#pragma once

#include "lumps/ExportList.h"

#include <array>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::lumps
{

/// The buttons of the export dialog, each a target format.
enum class ExportButton
{
    Lmp,
    Wad,
    Bmp,
    Pcx,
    Wav,
    Mid,
    Mus,
    Txt,
    Auto,
};

/// How several lumps (no level among them) go to PWADs.
enum class WadGrouping
{
    Ask,      // the choice between one PWAD and separate PWADs
    OnePwad,  // all lumps in one PWAD, its file asked in "Grouped PWAD"
    Separate, // one PWAD a lump, in the batch folder
};

/// What a button press exports.
struct ExportRequest
{
    ExportButton Button = ExportButton::Auto;
    /// The folder to write to; empty: asked (a file for one row, a folder for several).
    std::filesystem::path Folder;
    WadGrouping Grouping = WadGrouping::Ask;
    /// Moves the dialog's list to a row (its ListPosition) as the batch reaches it.
    std::function<void(int)> ShowRow;
};

/// What an export did.
struct ExportReport
{
    int Written = 0;
    int Refused = 0;      // rows that showed a refusal or failure
    bool Stopped = false; // Escape, a cancelled dialog or a refused level stopped it
    std::vector<std::filesystem::path> Files;
};

/// The extension a button writes a lump of `kind` as. Auto takes the Auto format for
/// graphics, sounds and music, ".LMP" for anything else.
std::string ButtonExtension(ExportButton button, gfx::LumpKind kind);

/// The test of a button on one row: the notices "It's a Level", "Not Graphics", "Not WAVE",
/// "Not MID/MUS", "Not text" and "Not Levels" refuse it; a level under TXT needs yes to the
/// question "A Level". True when the row may be written.
bool ButtonAccepts(ExportButton button, const ExportRow& row);

/// The folder of a batch of `count` lumps: asked in "Directory for Saves" (the folder of the
/// path chosen), then confirmed in "Group Export". Nothing when cancelled, or, after the notice
/// "No Lumps", when `count` is 0.
std::optional<std::filesystem::path> ChooseExportFolder(int count);

/// True when Escape was pressed and the user answers yes to " Export Interrupted\n\nDo you
/// want to stop ?".
bool IsExportInterrupted();

/// Exports the rows `selected` of `rows` as `request` says.
ExportReport ExportSelection(const std::vector<ExportRow>& rows, const std::vector<int>& selected,
                             const ExportRequest& request);

/// Analyze Graphics: marks every palette index some pixel of the listed graphics uses and
/// shows the log "Pixels used Log" with the indexes no graphic uses. Returns the marks.
std::array<bool, 256> AnalyzeGraphics(const std::vector<ExportRow>& rows);

} // namespace kelvar::lumps
