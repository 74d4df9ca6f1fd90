// The export dialog's buttons over a selection: tests, batches, PWAD exports, Analyze Graphics.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportBatch.h"

#include "gfx/GamePalette.h"
#include "gfx/Picture.h"
#include "lumps/ExportLump.h"
#include "lumps/ToolFiles.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/CheckedFile.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;
using gfx::LumpKind;

bool IsSoundKind(LumpKind kind)
{
    return kind == LumpKind::DoomSound || kind == LumpKind::Wave;
}

bool IsMusicKind(LumpKind kind)
{
    return kind == LumpKind::DoomMus || kind == LumpKind::Midi;
}

bool IsPictureExtension(const std::string& extension)
{
    return extension == ".BMP" || extension == ".PCX";
}

// The notice of a refused row: its name, why, and the kind it is.
bool Refuse(const ExportRow& row, const char* title, const char* reason)
{
    const std::string kindName(gfx::KindName(row.Kind, row.LevelLumpCount));
    platform::ShowMessageLines(platform::LinesInfo, title, {row.Name.Text(), reason, kindName});
    return false;
}

bool AskLevelHeader(const ExportRow& row)
{
    return platform::ShowMessageLines(platform::LinesCancel, "A Level",
                                      {row.Name.Text(),
                                       "This will export the contents of the level header",
                                       "Press Y to continue"},
                                      platform::MessageButtons::YesNo) == 1;
}

int TransparentIndex()
{
    return gfx::Palettes().Options.TransparentIndex;
}

fs::path DefaultFolder()
{
    const wad::WadOptions& options = wad::Wad().Options;
    return options.DefaultPwadDir.empty() ? wad::Wad().ProgramDir : options.DefaultPwadDir;
}

void Count(ExportReport& report, int result, const fs::path& file)
{
    if (result == ExportWritten)
    {
        ++report.Written;
        report.Files.push_back(file);
    }
    else if (result == ExportCancelled)
    {
        report.Stopped = true;
    }
    else
    {
        ++report.Refused;
    }
}

// Writes one row as `extension` into `folder` (or, with an empty folder, after a dialog).
int WriteRow(const ExportRow& row, const std::string& extension, const fs::path& folder, int flags,
             fs::path& written)
{
    const std::string name = row.Name.Text();
    if (IsPictureExtension(extension))
    {
        const bool prompt = folder.empty();
        written = prompt ? fs::path() : folder / (name + extension);
        return ExportGraphic(extension, name, row.DirectoryIndex, row.Kind, TransparentIndex(),
                             written, prompt);
    }
    written = folder;
    return ExportLump(name, row.DirectoryIndex, extension, written,
                      folder.empty() ? flags | ExportAskName : flags);
}

// The batch loop: for each row, the Escape check, the list moved to it, the status line, the
// name check, the button's test, the writer and a tick of the progress.
ExportReport RunBatch(const std::vector<const ExportRow*>& chosen, ExportButton button,
                      const fs::path& folder, int flags, const ExportRequest& request)
{
    ExportReport report;
    platform::Ui& ui = platform::TheUi();
    const std::string caption =
        platform::Format("Saving %d Entries", static_cast<int>(chosen.size()));
    ui.ShowProgress(caption, "");
    for (std::size_t i = 0; i < chosen.size(); ++i)
    {
        if (IsExportInterrupted())
        {
            report.Stopped = true;
            break;
        }
        const ExportRow& row = *chosen[i];
        const std::string name = row.Name.Text();
        if (request.ShowRow)
        {
            request.ShowRow(row.ListPosition);
        }
        const std::string extension = ButtonExtension(button, row.Kind);
        ui.SetStatusText((folder / name).string() + extension);
        fs::path written;
        if (!IsExportableFileName(name) || !ButtonAccepts(button, row))
        {
            ++report.Refused;
        }
        else if (ExportEntryIndex(name, row.DirectoryIndex) < 0)
        {
            platform::ShowError(" %s - Lump Name not found ?", name.c_str());
            ++report.Refused;
        }
        else
        {
            Count(report, WriteRow(row, extension, folder, flags, written), written);
        }
        ui.ShowProgress(caption, platform::Format("%d", static_cast<int>(i + 1)));
    }
    ui.EndProgress();
    return report;
}

bool AllNamesEqual(const std::vector<const ExportRow*>& chosen)
{
    return std::all_of(chosen.begin(), chosen.end(),
                       [&](const ExportRow* row)
                       { return wad::SameName(row->Name, chosen.front()->Name); });
}

// With the list sorted and every name the same, the rows may be combined into one file.
bool AskCombineDuplicates()
{
    return platform::AskYesNo(
        "%s",
        "All names are duplicates\n\nIf you reply Y, then all these lumps will be combined "
        "into\na single file.  Any existing file with that name will have the data\nextended, "
        "NOT erased\n\nDo you want to combine them into 1 lump?");
}

bool LevelOfOtherGame(const ExportRow& row)
{
    const int layout = ExportedLevelLayout(row.DirectoryIndex);
    const int entries = layout == 2 ? 12 : 11;
    if (entries == wad::Wad().Game.ExpectedLevelEntries)
    {
        return false;
    }
    platform::ShowError(" %s - Level to be exported does not belong to this game\n\nSave the "
                        "level first, then Exit and start over",
                        row.Name.Text().c_str());
    return true;
}

std::optional<fs::path> AskGroupedPwad()
{
    platform::FileChoice choice;
    choice.Caption = "Grouped PWAD";
    choice.Filter = "PWAD (*.WAD)|*.WAD|";
    const auto& folders = Exports().LastFolders;
    const auto found = folders.find("WAD");
    choice.InitialPath = (found != folders.end() ? found->second : DefaultFolder()) / "LUMPS.WAD";
    choice.ForSaving = true;
    return platform::TheUi().ChooseFile(choice);
}

// Every lump in one PWAD, in the order of the selection.
ExportReport WriteOnePwad(const std::vector<const ExportRow*>& chosen)
{
    ExportReport report;
    const std::optional<fs::path> target = AskGroupedPwad();
    if (!target)
    {
        report.Stopped = true;
        return report;
    }
    if (!TargetIsFree(*target))
    {
        report.Refused = static_cast<int>(chosen.size());
        return report;
    }
    wad::RewritePlan plan;
    const wad::LumpDirectory& master = wad::Master();
    for (const ExportRow* row : chosen)
    {
        const int index = ExportEntryIndex(row->Name.Text(), row->DirectoryIndex);
        if (index < 0)
        {
            platform::ShowError(" %s - Lump Name not found ?", row->Name.Text().c_str());
            ++report.Refused;
            continue;
        }
        const wad::LumpEntry& entry = master[static_cast<std::size_t>(index)];
        const std::string& file =
            wad::Wad().Files[static_cast<std::size_t>(entry.FileNumber)].FileName;
        plan.Entries.push_back(
            wad::RewriteEntry::FromFile(entry.Name.Text(), file, entry.Offset, entry.Size));
    }
    if (wad::RewriteWad(*target, plan))
    {
        report.Written = static_cast<int>(plan.Entries.size());
        report.Files.push_back(*target);
        Exports().LastFolders["WAD"] = target->parent_path();
    }
    else
    {
        report.Refused += static_cast<int>(plan.Entries.size());
    }
    return report;
}

// Levels one at a time, each to a PWAD of its own; a cancelled dialog ends the run.
ExportReport WriteLevels(const std::vector<const ExportRow*>& levels, const fs::path& folder)
{
    ExportReport report;
    for (const ExportRow* row : levels)
    {
        if (IsExportInterrupted())
        {
            report.Stopped = true;
            break;
        }
        fs::path written;
        Count(report, WriteRow(*row, ".WAD", folder, 0, written), written);
        if (report.Stopped)
        {
            break;
        }
    }
    return report;
}

ExportReport ExportAsPwads(const std::vector<const ExportRow*>& chosen,
                           const ExportRequest& request)
{
    std::vector<const ExportRow*> levels;
    std::copy_if(chosen.begin(), chosen.end(), std::back_inserter(levels),
                 [](const ExportRow* row) { return row->IsLevel(); });
    for (const ExportRow* level : levels)
    {
        if (LevelOfOtherGame(*level))
        {
            return ExportReport{0, 1, true, {}};
        }
    }
    const int lumps = static_cast<int>(chosen.size() - levels.size());
    if (!levels.empty() && lumps > 0)
    {
        platform::ShowMessageLines(platform::LinesInfo, "Levels and Data",
                                   {platform::Format("%d levels and %d lumps selected",
                                                     static_cast<int>(levels.size()), lumps),
                                    "To save levels individually", "Do them one at a time",
                                    "Cancel the next prompt to quit"});
    }
    if (!levels.empty() || chosen.size() == 1)
    {
        return WriteLevels(levels.empty() ? chosen : levels, request.Folder);
    }
    WadGrouping grouping = request.Grouping;
    if (grouping == WadGrouping::Ask)
    {
        const std::optional<int> choice = platform::TheUi().ChooseFromList(
            "Export PWAD",
            {"Export All lumps as one PWAD file", "Export All lumps as Separate PWAD files"});
        if (!choice)
        {
            return ExportReport{0, 0, true, {}};
        }
        grouping = *choice == 0 ? WadGrouping::OnePwad : WadGrouping::Separate;
    }
    if (grouping == WadGrouping::OnePwad)
    {
        return WriteOnePwad(chosen);
    }
    std::optional<fs::path> folder = request.Folder;
    if (folder->empty())
    {
        folder = ChooseExportFolder(static_cast<int>(chosen.size()));
    }
    return folder ? RunBatch(chosen, ExportButton::Wad, *folder, 0, request)
                  : ExportReport{0, 0, true, {}};
}

// The palette indexes a graphic's pixels use. A patch is drawn twice, on two backgrounds:
// where the two pictures differ no post reaches, and the background is no pixel of it.
bool MarkPixels(const ExportRow& row, std::array<bool, 256>& used)
{
    const gfx::DecodedPicture first = DecodeExportedGraphic(row.DirectoryIndex, row.Kind, 0);
    if (!first.Raster)
    {
        return false;
    }
    std::optional<gfx::ImageRaster> second;
    if (row.Kind == LumpKind::Pic)
    {
        second = DecodeExportedGraphic(row.DirectoryIndex, row.Kind, 255).Raster;
        if (!second)
        {
            return false;
        }
    }
    const gfx::ImageRaster& raster = *first.Raster;
    for (int y = 0; y < raster.Height(); ++y)
    {
        for (int x = 0; x < raster.Width(); ++x)
        {
            const std::uint8_t pixel = raster.At(x, y);
            if (!second || second->At(x, y) == pixel)
            {
                used[pixel] = true;
            }
        }
    }
    return true;
}

std::string PixelLog(const std::array<bool, 256>& used)
{
    const auto unused = static_cast<int>(std::count(used.begin(), used.end(), false));
    if (unused == 0)
    {
        return "All Palette Pixels are used\n";
    }
    std::string log =
        platform::Format("\nTotal Palette Pixels not used by any graphic = %d\n", unused);
    int onLine = 0;
    for (std::size_t index = 0; index < used.size(); ++index)
    {
        if (!used[index])
        {
            log += platform::Format("%03hd,", static_cast<short>(index));
            if (++onLine % 16 == 0)
            {
                log += '\n';
            }
        }
    }
    return log + "\n";
}

} // namespace

std::string ButtonExtension(ExportButton button, LumpKind kind)
{
    const ExportSettings& settings = Exports().Settings;
    switch (button)
    {
    case ExportButton::Lmp:
        return ".LMP";
    case ExportButton::Wad:
        return ".WAD";
    case ExportButton::Bmp:
        return ".BMP";
    case ExportButton::Pcx:
        return ".PCX";
    case ExportButton::Wav:
        return ".WAV";
    case ExportButton::Mid:
        return ".MID";
    case ExportButton::Mus:
        return ".MUS";
    case ExportButton::Txt:
        return ".TXT";
    case ExportButton::Auto:
        break;
    }
    if (gfx::IsDecodedKind(kind))
    {
        return wad::UpperText(settings.AutoGraphicFormat);
    }
    if (IsSoundKind(kind))
    {
        return wad::UpperText(settings.AutoSoundFormat);
    }
    return IsMusicKind(kind) ? wad::UpperText(settings.AutoMusicFormat) : ".LMP";
}

bool ButtonAccepts(ExportButton button, const ExportRow& row)
{
    switch (button)
    {
    case ExportButton::Lmp:
        if (row.IsLevel())
        {
            platform::ShowMessageLines(platform::LinesInfo, "It's a Level",
                                       {row.Name.Text(), "Is a Level"});
            return false;
        }
        return true;
    case ExportButton::Bmp:
    case ExportButton::Pcx:
        return gfx::IsDecodedKind(row.Kind) ||
               Refuse(row, "Not Graphics", "Is not a graphics lump, it's");
    case ExportButton::Wav:
        return IsSoundKind(row.Kind) || Refuse(row, "Not WAVE", "Is not a Wave lump, it's");
    case ExportButton::Mid:
    case ExportButton::Mus:
        return IsMusicKind(row.Kind) || Refuse(row, "Not MID/MUS", "Is not a MUS/MIDI lump, it's");
    case ExportButton::Txt:
        if (row.IsLevel())
        {
            return AskLevelHeader(row);
        }
        return row.Kind == LumpKind::Lump || Refuse(row, "Not text", "Is not a text lump, it's");
    case ExportButton::Auto:
        if (row.IsLevel())
        {
            platform::ShowMessageLines(platform::LinesInfo, "Not Levels",
                                       {row.Name.Text(), "Use WAD to save levels"});
            return false;
        }
        return true;
    case ExportButton::Wad:
        return true;
    }
    return false;
}

std::optional<fs::path> ChooseExportFolder(int count)
{
    if (count < 1)
    {
        platform::ShowMessageLines(
            platform::LinesInfo, "No Lumps",
            {"There are no LUMPs Selected", "Please select at least 1 LUMP"});
        return std::nullopt;
    }
    platform::FileChoice choice;
    choice.Caption = "Directory for Saves";
    choice.Filter = "All files (*.*)|*.*|";
    const fs::path& last = Exports().BatchFolder;
    choice.InitialPath = last.empty() ? DefaultFolder() : last;
    choice.ForSaving = true;
    const std::optional<fs::path> chosen = platform::TheUi().ChooseFile(choice);
    if (!chosen)
    {
        return std::nullopt;
    }
    std::error_code error;
    const fs::path folder = fs::is_directory(*chosen, error) ? *chosen : chosen->parent_path();
    const int confirmed =
        platform::ShowMessageLines(platform::LinesCancel, "Group Export",
                                   {platform::Format("%d Lumps will be exported to", count),
                                    folder.string(), "(once started escape stops Export too)"},
                                   platform::MessageButtons::OkCancel);
    if (confirmed != 1)
    {
        return std::nullopt;
    }
    Exports().BatchFolder = folder;
    return folder;
}

bool IsExportInterrupted()
{
    return platform::TheUi().PollEscape() &&
           platform::AskYesNo(" Export Interrupted\n\nDo you want to stop ?");
}

ExportReport ExportSelection(const std::vector<ExportRow>& rows, const std::vector<int>& selected,
                             const ExportRequest& request)
{
    std::vector<const ExportRow*> chosen;
    for (const int index : selected)
    {
        if (index >= 0 && static_cast<std::size_t>(index) < rows.size())
        {
            chosen.push_back(&rows[static_cast<std::size_t>(index)]);
        }
    }
    if (chosen.empty())
    {
        ChooseExportFolder(0);
        return {};
    }
    if (request.Button == ExportButton::Wad)
    {
        return ExportAsPwads(chosen, request);
    }
    if (chosen.size() == 1 && request.Folder.empty())
    {
        ExportReport report;
        const ExportRow& row = *chosen.front();
        if (!ButtonAccepts(request.Button, row))
        {
            report.Refused = 1;
            return report;
        }
        fs::path written;
        Count(report, WriteRow(row, ButtonExtension(request.Button, row.Kind), {}, 0, written),
              written);
        return report;
    }
    const bool combine = request.Button == ExportButton::Txt && chosen.size() > 1 &&
                         Exports().Filters.SortedList && AllNamesEqual(chosen) &&
                         AskCombineDuplicates();
    std::optional<fs::path> folder = request.Folder;
    if (folder->empty())
    {
        folder = ChooseExportFolder(static_cast<int>(chosen.size()));
    }
    if (!folder)
    {
        return ExportReport{0, 0, true, {}};
    }
    return RunBatch(chosen, request.Button, *folder, combine ? ExportAppend : 0, request);
}

std::array<bool, 256> AnalyzeGraphics(const std::vector<ExportRow>& rows)
{
    std::array<bool, 256> used{};
    std::vector<const ExportRow*> graphics;
    for (const ExportRow& row : rows)
    {
        if (gfx::IsDecodedKind(row.Kind))
        {
            graphics.push_back(&row);
        }
    }
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress(platform::Format("Scanning %d Entries", static_cast<int>(graphics.size())), "");
    for (const ExportRow* row : graphics)
    {
        if (!MarkPixels(*row, used))
        {
            platform::ShowError("Not enough Memory to read %8s!", row->Name.Text().c_str());
        }
    }
    ui.EndProgress();
    const fs::path log = wad::Wad().ProgramDir / "KelvarPixels.LOG";
    const std::string text = PixelLog(used);
    if (WriteExportFile(
            log, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), false))
    {
        ui.ShowTextFile("Pixels used Log", log);
    }
    return used;
}

} // namespace kelvar::lumps
