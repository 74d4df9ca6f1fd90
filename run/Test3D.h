// 3D Mode Texture Align: the level in the external 3D viewer, and its changes read back.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The viewer gets a private copy of the level (~R3Dedit.WAD in its directory, written by
//   the save pipeline through TestHooks::Write3DCopy) and the Thing list (CurrentOpt.OPT in
//   the program's directory), and starts at the map position under the cursor.
// - What the user changed comes back in edit.out, one change a line. The rows the editor
//   knows, with blank-separated fields:
//     THING <n> <x> <y> <angle> <type> <flags> [args <a1> <a2> <a3> <a4> <a5>] [del]
//     FLAT_CEIL <sector> <height> <light> <flat>     (FLAT_FLOOR alike)
//     LINE <linedef> <side> <x offset> <y offset> <upper> <lower> <normal> [Upeg] [Lpeg]
//   A THING at or past the count adds one Thing first; side 0 is the front, 1 the back.
//   Rows of other kinds, and rows that don't read, are passed over. A field is written only
//   when it differs, so an unchanged row leaves the level's change counters alone.
#pragma once

#include "map/LevelData.h"
#include "run/TestLevel.h"
#include "run/TestOptions.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

namespace kelvar::run
{

/// The viewer's files in its directory.
inline constexpr const char* ViewerCopyName = "~R3Dedit.WAD";
inline constexpr const char* ViewerEditFileName = "edit.out";
inline constexpr const char* ViewerHelpFileName = "R3Dedit.xrf";
/// The modeless panel of the command.
inline constexpr const char* Instruction3DCaption = "3D Mode Texture Align";
inline constexpr const char* Instruction3DText =
    "Place Cursor at Place you want to start Editing in Level\n\n Before you press W";

/// What a viewer run is started with, besides its options.
struct ViewerLaunch
{
    int CursorX = 0; // the map position under the cursor
    int CursorY = 0;
    std::filesystem::path OptFile; // CurrentOpt.OPT
    std::filesystem::path Copy;    // ~R3Dedit.WAD
    ScreenRect Automatic;          // the map window, for the automatic size
    std::int16_t Turbo = 0;        // the game test's turbo; 0 not passed
    bool PlayOnly = false;         // leave the edit keywords out
};

/// The viewer's command line: the EXE, the start position, the OPT and help files, the edit
/// keywords, the IWAD, memory, skill, turbo, the screen, the game's type, the play options
/// and last " xxxxx " with the files. Pieces that overflow the buffer are refused with
/// AppendCommand's message.
std::string ViewerCommandLine(const Viewer3DOptions& options, const TestSession& session,
                              const ViewerLaunch& launch);

/// Applies one row of edit.out to `level`; returns false for a row of another kind or one
/// that doesn't read (nothing changed then).
bool ApplyEditLine(map::LevelData& level, std::string_view line);

/// Reads edit.out from an open stream, lines of up to 128 characters, and applies each.
/// Returns the number of rows applied.
int ApplyEditStream(map::LevelData& level, std::FILE* stream);

/// 3D Mode Texture Align (W) with the cursor at map position (cursorX, cursorY): the
/// instruction panel, the TestR3D dialog (unless its prompt is off), the level's copy, the
/// viewer's run, and its edit.out applied to the current level after an undo step. Messages:
/// "!! Please SAVE first  !!", "!! Level is from IWAD !!" under "IWAD level", "Command Buffer
/// Size exceeded!", and for a viewer that doesn't start "Make sure %s" ... under "Test Error".
/// Returns -1 when it was stopped (Cancel, a level that can't be copied), 0 when the viewer
/// didn't start, 1 when it ran.
[[nodiscard]] int TestIn3D(int cursorX, int cursorY);

} // namespace kelvar::run
