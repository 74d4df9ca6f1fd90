// The table of open files: finding, opening, closing and dropping file records.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadState.h"

#include <string>

namespace kelvar::wad
{

/// The record of an open or closed file of that name, or -1.
int FindFileRecord(const std::string& path);

/// The first free PWAD record within the project's file limit, or -1.
int FreeFileRecordIndex();

/// Reopens a closed ('C') file "r+b" ("rb" for the IWAD or while ReadOnlyOpen is set) and
/// marks it open. A failure is fatal. Free records are left alone.
void EnsureOpen(FileRec& file);

/// Closes streams. Mode 'A' or 'X' includes record 0 and drops the texture catalogues; 'L'
/// includes the current file; any other mode passes over it. `freeDirectories` frees and
/// clears the records; `clearNames` also clears their names in OpenFiles.
void CloseFiles(char mode, bool freeDirectories, bool clearNames);

/// The entry of OpenFiles for `path`: its own, else the first empty one; -1 when the table is
/// full.
int NameTableSlot(const std::string& path);

/// Puts `path` in OpenFiles (its own entry, or the first empty one) and opens it as a PWAD.
/// A full name table is fatal ("Maximum of %hd files exceeded"). Returns the file number or
/// -1.
int AddOpenFile(const std::string& path, bool warnings);

/// Frees the PWAD records that no entry of the master directory uses any more and compacts
/// OpenFiles, keeping every record's ListIndex right.
void DropUnusedFiles();

} // namespace kelvar::wad
