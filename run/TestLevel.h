// Test Level: the game started on the level's PWAD with a warp to the level.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The command line is put together from pieces in a buffer of at most 2046 characters, as
//   the game's loaders have always taken it; a piece that doesn't fit is refused with a
//   message and left out, and the run goes on without it.
// - The pieces are the EXE, the warp, -file and the PWADs, the options, the extra parameters,
//   in that order, either on the command line or, with ResponseFile, one per line in
//   Kelvar.RSP, which the command line then names as @file.
// - Program names: a bare name (no '/') is looked for on PATH, then in /usr/games, where
//   Debian puts the engines, then in the IWAD's directory; a relative path is taken from the
//   IWAD's directory, as the game program once lived beside its IWAD.
#pragma once

#include "map/GameCodes.h"
#include "run/TestOptions.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::run
{

/// The command buffer's size: a command line has at most CommandBufferSize - 1 characters.
inline constexpr std::size_t CommandBufferSize = 2047;
/// The response file, in the game's directory.
inline constexpr const char* ResponseFileName = "Kelvar.RSP";
/// Game codes of the old loaders: a format below 3 run by DOOM95.EXE, or with CHEX.WAD.
inline constexpr int GameCodeNone = 0;
inline constexpr int GameCodeDoom95 = 6;
inline constexpr int GameCodeChex = 7;

/// What a test run takes from the session. TestLevel reads it from the WAD layer.
struct TestSession
{
    std::string LevelName;
    std::filesystem::path IwadPath;
    std::filesystem::path LevelPwad;               // empty: the level comes from the IWAD
    std::vector<std::filesystem::path> OtherPwads; // the rest of the name table, in order
    int Game = 2;                                  // 1 Doom ... 5 Strife
    int Format = map::GameDoom2; // the level format: the game, or GameHexen for that layout
    bool BoomTypes = false;
    bool ZdoomHexenFormat = false;
    bool GlNodes = false;
    std::filesystem::path ProgramDir;
};

/// The session as the WAD layer has it, for the level `levelName`.
TestSession CurrentTestSession(const std::string& levelName);

/// The warp argument of a level name: "%hd %hd" of episode and map for ExMy ("2 3"), "%hd" of
/// the map for MAPxy ("7"); empty for any other name, which then stands in the warp itself.
std::string WarpOf(std::string_view levelName);

/// The warp of a run: the warp text and its value. `Nonstandard` is set when the name isn't
/// ExMy or MAPxy and no custom warp is set: the text is then "+map " and the name.
struct TestWarp
{
    std::string Text;
    std::string Value;
    bool Nonstandard = false;
};

TestWarp WarpFor(const std::string& warpText, const std::string& levelName);

/// Adds `text` to the command buffer. When both lengths together reach CommandBufferSize it
/// shows "Command Buffer Size exceeded!", adds nothing and returns false.
bool AppendCommand(std::string& buffer, std::string_view text);

/// The game program to run: see the design notes. A value with a blank (a program with words
/// of its own, such as "wine game.exe") is taken as it stands; so is a name found nowhere, and
/// its start then fails.
std::string CompleteGameExe(const std::string& gameExe, const std::filesystem::path& iwadPath);

/// The extra parameters to pass: a leading ':' becomes a blank, and in a Boom, ZDoom or GL
/// project " -iwad " and the IWAD's path go ahead of the rest.
std::string CompleteExtraParameters(const std::string& extra, const TestSession& session);

/// The game's working directory: GameDirectory, or the IWAD's directory when it is empty.
std::filesystem::path GameDirectoryOf(const TestOptions& options, const TestSession& session);

/// Where Kelvar.RSP goes: the game's directory, or the program's directory when the game's
/// can't be written (a system folder such as /usr/share/games/doom).
std::filesystem::path ResponseFilePath(const std::filesystem::path& gameDirectory,
                                       const std::filesystem::path& programDir);

/// The old loaders' game code: DOOM95.EXE with a format below 3 gives GameCodeDoom95, or
/// GameCodeChex with an IWAD named CHEX.WAD; anything else GameCodeNone.
int TestGameCode(int format, const std::string& gameExe, const std::filesystem::path& iwadPath);

/// The text of Kelvar.RSP for a run whose options and extra parameters are complete.
std::string ResponseFileText(const TestOptions& options, const TestSession& session,
                             const TestWarp& warp);

/// The command line without a response file. Pieces that overflow the buffer are refused
/// with AppendCommand's message.
std::string PlainCommandLine(const TestOptions& options, const TestSession& session,
                             const TestWarp& warp);

/// Test Level (Shift+F1) for the level `levelName`: the warp and its warning, the unsaved
/// changes question, the TestOptions dialog, the game's run in its working directory, then
/// the level reloaded through the hooks. Messages: "%s is a nonstandard level name\n\nVerify
/// Custom Warp setting for your Port", "!! Warning !! Save this LEVEL first !!...", "Command
/// Buffer Size exceeded!", and for a game that doesn't start the lines "Make sure game %s" ...
/// under "Test Error". A response file that can't be created is fatal ("Unable to create %s").
/// Returns -1 when it was stopped (No, Cancel), 0 when the game didn't start, 1 when it ran.
[[nodiscard]] int TestLevel(const std::string& levelName);

} // namespace kelvar::run
