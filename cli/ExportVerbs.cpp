// kelvar-cli export: lumps of the loaded files written to a folder by the export dialog's routine.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/BatchUi.h"
#include "cli/Commands.h"
#include "cli/Verbs.h"
#include "cli/WadCommands.h"
#include "lumps/ExportBatch.h"
#include "lumps/ExportList.h"
#include "lumps/ExportLump.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/LumpName.h"
#include "wad/WadState.h"

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace kelvar::cli
{
namespace
{

namespace fs = std::filesystem;
using lumps::ExportButton;

constexpr const char* UsageLine =
    "export IWAD [PWAD...] NAME... -d DIR [--as FORMAT] [--external], or "
    "export IWAD [PWAD...] --all [--kind KIND] [--external] -d DIR [--as FORMAT]";

// The words of an export command line.
struct ExportWords
{
    std::vector<std::string> Files; // the IWAD, then the PWADs
    std::vector<std::string> Names;
    fs::path Directory;
    std::optional<ExportButton> Button;
    std::vector<std::string> Kinds;
    bool External = false;
    bool All = false;
};

std::optional<ExportButton> ButtonOfWord(const std::string& word)
{
    static const std::vector<std::pair<std::string, ExportButton>> buttons = {
        {"auto", ExportButton::Auto}, {"lmp", ExportButton::Lmp}, {"wad", ExportButton::Wad},
        {"bmp", ExportButton::Bmp},   {"pcx", ExportButton::Pcx}, {"wav", ExportButton::Wav},
        {"mid", ExportButton::Mid},   {"mus", ExportButton::Mus}, {"txt", ExportButton::Txt}};
    for (const auto& [name, button] : buttons)
    {
        if (word == name)
        {
            return button;
        }
    }
    return std::nullopt;
}

// A word before the first lump name is a file when it names a path or ends in ".wad".
bool LooksLikeFile(const std::string& word)
{
    const std::string upper = wad::UpperText(word);
    return word.find('/') != std::string::npos ||
           (upper.size() > 4 && upper.compare(upper.size() - 4, 4, ".WAD") == 0);
}

bool KnownKind(const std::string& kind)
{
    for (const char* known : {"graphics", "sounds", "music", "flats", "other", "levels"})
    {
        if (kind == known)
        {
            return true;
        }
    }
    return false;
}

// Splits the words; nothing (after saying why) when they don't make an export.
std::optional<ExportWords> ParseWords(const std::vector<std::string>& arguments)
{
    ExportWords words;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& word = arguments[i];
        const bool hasValue = i + 1 < arguments.size();
        if (word == "-d" && hasValue)
        {
            words.Directory = arguments[++i];
        }
        else if (word == "--as" && hasValue)
        {
            words.Button = ButtonOfWord(arguments[++i]);
            if (!words.Button)
            {
                std::fprintf(stderr, "kelvar-cli: --as takes auto, lmp, wad, bmp, pcx, wav, "
                                     "mid, mus or txt\n");
                return std::nullopt;
            }
        }
        else if (word == "--kind" && hasValue)
        {
            words.Kinds.push_back(arguments[++i]);
            if (!KnownKind(words.Kinds.back()))
            {
                std::fprintf(stderr, "kelvar-cli: --kind takes graphics, sounds, music, flats, "
                                     "other or levels\n");
                return std::nullopt;
            }
        }
        else if (word == "--external")
        {
            words.External = true;
        }
        else if (word == "--all")
        {
            words.All = true;
        }
        else if (word.starts_with("-"))
        {
            std::fprintf(stderr, "kelvar-cli: unknown option %s\n", word.c_str());
            return std::nullopt;
        }
        else if (words.Files.empty() || (words.Names.empty() && LooksLikeFile(word)))
        {
            words.Files.push_back(word);
        }
        else
        {
            words.Names.push_back(word);
        }
    }
    const bool chosen = words.All ? words.Names.empty() : !words.Names.empty();
    if (words.Files.empty() || words.Directory.empty() || !chosen ||
        (!words.All && !words.Kinds.empty()))
    {
        std::fprintf(stderr, "kelvar-cli: %s\n", UsageLine);
        return std::nullopt;
    }
    return words;
}

bool Asked(const ExportWords& words, const char* kind)
{
    for (const std::string& asked : words.Kinds)
    {
        if (asked == kind)
        {
            return true;
        }
    }
    return false;
}

// The dialog's check boxes for the command: everything for named lumps; for --all the kinds
// asked, or every kind but markers (and levels, which only a PWAD or TXT export takes).
lumps::ExportFilters FiltersFor(const ExportWords& words, ExportButton button)
{
    lumps::ExportFilters filters;
    filters.ExternalFilesOnly = words.External;
    filters.Control = !words.All;
    if (!words.All || words.Kinds.empty())
    {
        filters.Levels = !words.All || button == ExportButton::Wad || button == ExportButton::Txt;
        return filters;
    }
    filters.Graphics = Asked(words, "graphics");
    filters.Sounds = Asked(words, "sounds");
    filters.MidiMus = Asked(words, "music");
    filters.Flats = Asked(words, "flats");
    filters.Other = Asked(words, "other");
    filters.Levels = Asked(words, "levels");
    return filters;
}

// The format when --as is not given: Auto, or a PWAD for levels alone.
ExportButton ButtonFor(const ExportWords& words)
{
    if (words.Button)
    {
        return *words.Button;
    }
    const bool levelsOnly = words.Kinds.size() == 1 && words.Kinds.front() == "levels";
    return levelsOnly ? ExportButton::Wad : ExportButton::Auto;
}

int Export(const std::vector<std::string>& arguments)
{
    const std::optional<ExportWords> words = ParseWords(arguments);
    if (!words)
    {
        return ExitUsage;
    }
    int status = OpenFiles(words->Files);
    if (wad::Wad().Files[0].State == 0)
    {
        return ExitBadFile;
    }
    std::error_code error;
    fs::create_directories(words->Directory, error);
    const fs::path folder = fs::absolute(words->Directory, error);
    BatchUi ui(folder);
    platform::ScopedUi scoped(ui);

    const ExportButton button = ButtonFor(*words);
    if (button == ExportButton::Bmp || button == ExportButton::Pcx || button == ExportButton::Auto)
    {
        lumps::PrepareExportPalette();
    }
    const std::vector<lumps::ExportRow> rows = lumps::ScanExportList(FiltersFor(*words, button));
    std::vector<int> selected;
    if (words->All)
    {
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            selected.push_back(static_cast<int>(i));
        }
    }
    for (const std::string& name : words->Names)
    {
        const int row = lumps::FindRowByName(rows, name);
        if (row < 0)
        {
            platform::ShowError(" %s - Lump Name not found", wad::UpperText(name).c_str());
            status = ExitBadFile;
            continue;
        }
        selected.push_back(row);
    }
    lumps::ExportRequest request;
    request.Button = button;
    request.Folder = folder;
    request.Grouping = lumps::WadGrouping::Separate;
    const lumps::ExportReport report =
        selected.empty() ? lumps::ExportReport{} : lumps::ExportSelection(rows, selected, request);
    std::printf("%d lumps written to %s\n", report.Written, folder.c_str());
    return report.Refused > 0 || report.Stopped ? ExitBadFile : status;
}

} // namespace

KELVAR_CLI_VERB(Export, "export", Export,
                "  export IWAD [PWAD...] NAME... -d DIR [--as FORMAT] [--external]\n"
                "  export IWAD [PWAD...] --all [--kind KIND] [--external] -d DIR [--as FORMAT]\n"
                "                          lumps written into DIR as the lump export dialog\n"
                "                          writes them, each as NAME.EXT: FORMAT is auto (the\n"
                "                          default: pictures as BMP, sounds as WAV, music as\n"
                "                          MID, the rest raw as LMP), lmp, wad (a level or a\n"
                "                          lump as a PWAD of its own), bmp, pcx, wav, mid, mus\n"
                "                          or txt. --all takes every lump of the KINDs asked:\n"
                "                          graphics, flats, sounds, music, other, levels\n"
                "                          (repeatable; without --kind all but levels; --kind\n"
                "                          levels alone writes PWADs); --external leaves out\n"
                "                          the IWAD's lumps\n");

} // namespace kelvar::cli
