// OPT files: the project's text file that renames, changes, deletes and adds type rows.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// An OPT file has the sections [THINGS], [LINEDEFS] and [SECTORS]. A line that begins with a
// number names a row; a line that begins with a quoted text opens or names a category, into
// whose free rows the following new rows go. Nothing an OPT file says stops a load: each
// problem is a message or a silent skip, and the tables keep what was applied.
#pragma once

#include <filesystem>
#include <string>

namespace kelvar::game
{

/// The file the Thing table is written to for the 3D viewer, in the program directory.
inline constexpr const char* CurrentOptFileName = "CurrentOpt.OPT";

/// Copies the current game's three tables and three menus, so that the next overlay starts
/// from them.
void SaveBuiltInTables();
/// Copies the saved tables back over the active ones (when there are any).
void RestoreBuiltInTables();
/// Forgets the saved copies.
void FreeSavedTables();

/// Lays the OPT file `optFile` (resolved against the program directory) over the tables of
/// the current game: first the tables are restored from the copies saved by the previous read,
/// then saved again, then the file is applied line by line. A file that can't be opened is no
/// error: the tables stay built-in. Messages, all titled "OPT errors" unless told: "Thing with
/// invalid Property", "Line with invalid Floor Property", "Line with invalid Property", "Line
/// with invalid Tag Type", "New entry with no Thing category" (LineDef, Sector), "Too many
/// Thing entries for existing category." (LineDef, Sector), "Too Many New Thing entries"
/// (LineDef, Sector), the category errors titled "Thing Category Error" (LineDef, Sector),
/// "COLORMAPS", and a summary of the counts at the end. Returns true when the file was read.
bool ReadOptFile(const std::string& optFile);

/// Writes the Thing table to CurrentOpt.OPT in the program directory as an OPT file without
/// the player and deathmatch starts. Returns 1, or 0 when the file can't be created (the
/// reason was shown).
[[nodiscard]] int WriteThingList();

/// Makes every run of blanks in the names of the three tables one blank.
void SqueezeTypeNames();

} // namespace kelvar::game
