// The old file of a save: turned into its .BAK while the new file is written, and back when
// the save stops; the names a save derives from a file's.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// A save never patches a file. The level's own file is renamed to .BAK and reopened under that
// name, and the new file is written beside it, taking from the .BAK everything memory doesn't
// hold. Until the new file is whole the master directory still describes the old bytes, so a
// failure at any point can rename the .BAK back (RestoreBak).
#pragma once

#include <string>

namespace kelvar::wad
{

/// The levels of the level list that file `fileNumber` supplies.
int LevelsOfFile(int fileNumber);

/// Renames the file of record `fileNumber` to its .BAK and reopens the record under that name.
/// Access denied shows the system's text, then "Error %d: Could not rename file\n\n%s\n-to-
/// \n%s\n\nTry saving to another filename\n"; other failures delete an old .BAK and try again
/// ("Err %d: Could not delete file...", "Err %d: Could not rename file..."). A failed rename
/// puts the record back as it was and returns false. A .BAK that can't be reopened is fatal:
/// "could not reopen file : %s".
[[nodiscard]] bool TurnIntoBackup(int fileNumber);

/// Renames the file turned into .BAK back to `targetPath` and reopens it as the level's file
/// ("FAILED TO RENAME %s to %s" when it can't be). Records marked DEL are freed. Returns -1, the
/// result of a save that stopped.
int RestoreBak(const std::string& targetPath);

/// The .BAK name of a file: its extension replaced.
std::string BakNameOf(const std::string& path);

/// The .BKP name of a file: its extension replaced.
std::string BackupPathOf(const std::string& path);

} // namespace kelvar::wad
