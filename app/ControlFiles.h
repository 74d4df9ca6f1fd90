// The control files a new installation starts with: KELVAR.CHK, the projects, their game
// configurations and texture controls, the tool files.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/StatusRecords.h"

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

/// One of the projects built in: how it differs from the built-in project.
struct ProjectRow
{
    const char* Name;            // the project's name; its files are NAME.PRJ and NAME.TCF
    int Game;                    // 1 Doom, 2 Doom 2, 3 Heretic, 4 Hexen, 5 Strife
    const char* Iwad;            // file name in the IWAD folder
    const char* GameExe;         // the game's program
    const char* OptFile;         // the type definitions
    const char* ExtraParameters; // parameters of the game's command line
    bool BoomTypes;              // " ZDOOM & BOOM types"
    bool ZdoomHexenFormat;       // " ZDOOM - HEXEN format"
    bool Zennode;                // the custom node builder's sample is zennode's
};

/// The built-in projects, DOOM2 first.
std::span<const ProjectRow> ProjectRows();

/// The project record of a row: the built-in project with the default user tools and the
/// row's changes, never used yet.
ProjectRecord ProjectOfRow(const ProjectRow& row);

/// The files BuildControlFiles writes, in the order it writes them, each once.
std::vector<std::string> ControlFileNames();

/// Writes all control files from the built-in defaults into `directory` (the program's
/// directory when none is given), which is created when it's missing: KELVAR.CHK, then for
/// each project row its .PRJ, its game configuration and its .TCF, then the tool files.
/// Returns 1, or 0 at the first file that couldn't be written (it was reported).
[[nodiscard]] int BuildControlFiles(const std::filesystem::path& directory = {});

/// The default OPT files of the projects, compiled in: file name and text.
struct OptFileText
{
    const char* Name;
    std::string_view Text;
};
std::span<const OptFileText> DefaultOptFiles();

/// Writes the default OPT files into `directory` (the program's directory when none is given)
/// where a file of the name isn't there yet: the user's own changes stay. Returns the number
/// written; a file that can't be written is reported and skipped.
int InstallDefaultOptFiles(const std::filesystem::path& directory = {});

} // namespace kelvar::app
