// The save commands of the editor: the checks before a save, the file chosen, the write, the
// reload after it; the quick backup, the auto-save and the crash save.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/SaveOptions.h"

#include <optional>
#include <string>

namespace kelvar::app
{

/// What SaveDispatcher returns when a save happened and the files are to be read again.
inline constexpr int SaveDone = 7;

/// The minute counter is reset, then a one-byte lock on KELVAR.LOK is tried (and let go at
/// once) until it is free: waiting on an earlier save first ("Stuck waiting for Save to
/// finish?" after 21 s), then 11 tries 500 ms apart ("Permanent LOCK active?"). SaveBusy is
/// set either way; the caller clears it after the write.
void AcquireSaveLock();

/// The save of a command (`code`: wad::SaveLevelCode and the others). Runs the checks the
/// code calls for, picks the file (asking for it with `prompt`), writes it under the lock and
/// builds the nodes when asked. Returns SaveDone when a save happened, else 0. The caller
/// reloads after SaveDone (ReloadAfterSave).
int SaveDispatcher(int code, const std::optional<wad::LumpReplace>& replace = std::nullopt,
                   bool prompt = false);

/// Reads the files again after a save and reloads the level with its view, without asking.
bool ReloadAfterSave();

/// Quick Save Backup: in the exit form a full save (asking for the file), otherwise the .BKP
/// beside the level's file, asked for first. Returns true when it wrote.
bool QuickSaveBackup(bool exitForm);

/// The level into CRASH.WAD in the program's directory, through the backup writer.
bool CrashSave();

/// Copies the save and node builder settings of the status records into the WAD layer and the
/// external programs.
void ApplySaveSettings();

/// Takes the choices of the last Save dialog back into the status records.
void GatherSaveSettings();

} // namespace kelvar::app
