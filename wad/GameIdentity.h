// Choosing the IWAD and telling which game it belongs to.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::wad
{

/// The name of a game number: "Doom, Ultimate Doom", "Doom 2, Final Doom", "Heretic"...
const char* GameName(int game);

/// What a project format is called and how its levels look.
struct FormatNames
{
    std::string DisplayName; // "DOOM", "BOOM", "HERETIC", "STRIFE", "HEXEN", "ZDOOM"
    std::string ConfigFile;  // "DOOM1.DFG" ... "ZDOOMHERETIC.DFG"
    int ExpectedLevelEntries = 11;
};

/// The names of a format (1 to 5) for a game, with the project's Boom and ZDoom switches.
FormatNames NamesOfFormat(int format, int game, bool boomTypes, bool zdoomHexenFormat);

/// Identifies the game from the master directory and sets Wad().Game: the game, the format
/// (4 for any Hexen layout), the display name, the configuration file, the expected level
/// entries and the texture record sizes. An unknown IWAD is taken as Doom 2 after
/// "Unable to identify IWAD type...".
void IdentifyGame();

/// Closes and frees all files, scans `path` as the IWAD, identifies the game and lists its
/// levels. Returns 1, or 0 when the file was refused (the reason was shown).
[[nodiscard]] int ScanMainIwad(const std::string& path);

/// Chooses the project's IWAD and scans it: the stored one directly on a later run, else
/// after a question; failing that the user lets the program search for it or picks it.
/// Returns 1 when an IWAD was scanned, 0 when the user gave up.
[[nodiscard]] int SelectMainIwad(bool firstRun);

/// The folders of this system that usually hold IWADs, in search order.
std::vector<std::filesystem::path> IwadSearchFolders();

/// Searches the folder of the stored path, then IwadSearchFolders(), depth first, for a file
/// of the stored name (case ignored). Escape asks whether to stop. Returns the path found.
std::optional<std::filesystem::path> SearchForIwad(const std::filesystem::path& stored);

} // namespace kelvar::wad
