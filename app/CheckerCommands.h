// The level checker in the editor: its options from KELVAR.CHK, F10 and the statistics, the
// repair commands of the File menu, and showing an object a finding names.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Router.h"
#include "check/CheckRun.h"
#include "check/Statistics.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::app
{

/// The checker's options as KELVAR.CHK and the editing options hold them.
check::CheckSettings CheckerSettings();

/// Puts the checker's options back into KELVAR.CHK's record.
void StoreCheckerSettings(const check::CheckSettings& settings);

/// Shows the object a finding names: its mode, made current, centred. A SideDef is shown as
/// the LineDef that holds it. Nothing for a kind the editor has no mode for, or a number
/// beyond the objects.
void ShowCheckedObject(int kind, std::uint32_t index);

/// The file the statistics are written into, in the program's directory, for the text viewer.
inline constexpr const char* StatisticsFileName = "KelvarStats.txt";

/// What the statistics need of the open files beyond the level: the newest MAPINFO.
check::LevelLumpSizes CurrentLumpSizes();

/// The statistics report of the current level, shown in the text viewer.
void ShowStatistics();

/// 1010 (F10): the checker's dialog; 801 the statistics, which the dialog's Statistics button
/// posts as it closes.
void CheckLevelCommand(int number, CommandSource source);

/// 130 to 133, 147 and 546: pack and unpack SideDefs, pack Sectors, centre the map, renumber
/// tags, fix each side's Sector.
void RepairCommand(int number, CommandSource source);

} // namespace kelvar::app
