// The session: from process start to the first drawn map, the minute timer, the exit.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The steps run in a fixed order, since each needs what the one before set up (the status
//   files before the window, the window before the files it shows), and each is a function
//   of its own so the window (app/ui) only strings them together: ProcessStart before the window
//   exists, CheckSecondCopy and CreateSession while it is being made, RunStartupCommand once it
//   is on screen, TimerTick every minute, ExitPrompt and ShutdownOnce at the end.
// - What the window is to show afterwards (menus, redraws, the status bar) is left as requests,
//   as a command leaves them; what it must do at once (the cursor, closing itself) reaches it
//   through SessionHooks. An empty hook does nothing, which is how the tests run these steps
//   headless.
// - The status records in app::Shell() are the truth for settings; ApplyWadSettings hands the
//   file settings to the WAD layer before the files are read, ApplyViewSettings the rest to
//   the map model and the view once a level is read, and GatherSettings takes the view's back.
#pragma once

#include "platform/Clock.h"
#include "platform/InstanceLock.h"
#include "wad/WadState.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kelvar::game
{
class ObjectEditor;
}

namespace kelvar::app
{

/// The version text: the main window's title, and what keeps copies of different versions
/// from seeing one another.
inline constexpr const char* VersionText = "Kelvar v13.0.5";

/// AppState values.
inline constexpr int AppNotReady = 0;     // not ready, or busy in a long step
inline constexpr int AppEditing = 1;      // the map is on screen and editable
inline constexpr int AppModalTool = 2;    // a modal tool has the view
inline constexpr int AppChoosingIwad = 3; // the IWAD is being chosen

/// SessionWord values of KELVAR.CHK.
inline constexpr int SessionClean = 0;
inline constexpr int SessionRunning = 1;
inline constexpr int SessionCancelled = 166;

/// The commands the window posts itself at the end of its creation.
inline constexpr int CommandStartup = 1280;
inline constexpr int CommandFirstStartup = 1284;
/// Exit (Alt+F4), which the close of the window becomes.
inline constexpr int CommandExit = 1044;

/// Milliseconds between two ticks of the session timer, and its id.
inline constexpr int TimerPeriodMs = 60000;
inline constexpr int SessionTimerId = 1;

/// The file whose lock tells a running copy of this version.
inline constexpr const char* RunningLockName = "KELVAR-13.0.5.RUN";
/// The file whose lock saves try, so that two running copies notice one another.
inline constexpr const char* LockFileName = "KELVAR.LOK";

/// What the window does for the session.
struct SessionHooks
{
    std::function<void(bool)> WaitCursor; // true: the wait cursor, false: the normal one
    std::function<void()> DestroyWindow;  // the session can't go on
    /// The Quick Save Backup of the save pipeline, `onExit` for the full save of the exit.
    /// Returns true when it saved. Empty while there is no save pipeline.
    std::function<bool(bool onExit)> QuickSaveBackup;
    /// Writes the level into CRASH.WAD in the program's directory. Empty: not offered.
    std::function<bool()> CrashSave;
    /// The Save dialog ("Kelvar - Verify REJECT, NODES & GROUP SAVE") on the choices of a
    /// save; false: Cancel. Empty: the stored choices stand, as in batch saves.
    std::function<bool(wad::SaveOptions&)> SaveDialog;
    /// The screen's size in pixels, for the resolution check; {0, 0} when unknown.
    std::function<std::pair<int, int>()> ScreenSize;
    /// Runs the level checker's dialog; true when it closed by its Statistics button. Empty:
    /// no window.
    std::function<bool()> CheckDialog;
    /// Opens a lump tool of the F7 menu (a LumpTool). Empty: no window.
    std::function<void(int tool)> LumpTool;
    /// The editor window of the editor's kind ("EditLineDef2", "EditSector", "ThingEdit"); it
    /// returns when the window closes. Empty: nothing is edited.
    std::function<void(game::ObjectEditor&)> ObjectEditor;
    /// The "ThingMask" dialog on game::TheThingMask(); true when OK changed it.
    std::function<bool()> ThingMask;
    /// The BOOM generalized LineDef dialogs on a type (a Floor type for a plain one): the
    /// composed type, or nothing when cancelled.
    std::function<std::optional<std::uint16_t>(std::uint16_t type)> GeneralizedLine;
    /// "EditHexenArgs" on the editor's LineDefs or Things; true when something changed.
    std::function<bool(game::ObjectEditor&)> HexenArgs;
    /// "EditSectorBOOM" or "EditSectorZDOOM" on the editor's Sectors; true when something
    /// changed.
    std::function<bool(game::ObjectEditor&)> SectorFlags;
};

/// The session words.
struct SessionState
{
    int AppState = AppNotReady;
    bool CommandBusy = false; // a menu or key command runs
    bool FirstTime = false;   // KELVAR.CHK or the project was missing
    bool SkipFiles = false;   // -N on the command line
    std::string StartFile;    // the file named on the command line
    bool SecondCopy = false;  // continued past the warning of a running copy
    bool LevelLoaded = false;
    int MinutesSinceSave = 0; // timer ticks since the last save
    int IdleMinutes = 0;      // timer ticks with no input
    bool TimerBusy = false;
    bool BlockAutoSave = false;
    bool InFileOperation = false;
    bool InDrag = false;
    bool OpenLevelWithoutAsking = false; // skip the EditLevel list at the next load
    bool ShuttingDown = false;
    bool ShutdownDone = false;
    std::uint16_t ChangesAtAutoSave = 0; // MapChanged when the last auto-save looked
    bool AutoSaveOff = false;            // KELVAR.LOK couldn't be opened
    wad::StreamPtr LockHandle;           // KELVAR.LOK, open for the whole run
    std::unique_ptr<platform::InstanceLock> RunningLock; // held while this copy runs
    int ChkResult = 0;      // what loading KELVAR.CHK at process start gave
    std::string ConfigFile; // the game configuration in Shell().GameConfig
    SessionHooks Hooks;
};

/// The one instance of the session's state.
SessionState& Session();

/// True while a level is loaded and the editor is editing it: the map takes input.
bool EditingLevel();

/// Puts the session back to its defaults and closes KELVAR.LOK (tests call it).
void ResetSession();

// --- Start ---------------------------------------------------------------------------------

/// What the command line asks for.
struct CommandLine
{
    bool SkipFiles = false;
    std::string StartFile;
};

/// Reads the command line as the editor always has: "-N" (either case) first means no files,
/// and the text stays as it is; otherwise the name is taken to stand between double quotes, so
/// its first and last character go. A line of one character or none asks for nothing.
CommandLine ParseCommandLine(std::string_view text);

/// The command line of a Linux start: the shell has already taken the quotes off, so the
/// first argument is put back between quotes, and -N passes as it is.
std::string CommandLineText(int argc, const char* const* argv);

/// Process start, before the window: the program's directory is made, the command line is
/// noted, and KELVAR.CHK is loaded when it is there so the window's rectangle is known.
void ProcessStart(const CommandLine& commandLine, const std::filesystem::path& programDir);

/// The test for a copy of this version already running, in place of looking for its window:
/// a lock in the program's directory. When it is held elsewhere the warning asks; Continue
/// sets SecondCopy, Cancel sets SessionWord to 166 and returns false: start-up ends then with
/// no window and nothing written.
[[nodiscard]] bool CheckSecondCopy();

/// Where the main window goes: the stored rectangle, checked against the screen.
struct WindowPlacement
{
    int Left = 0, Top = 0, Right = 0, Bottom = 0;
    bool Maximised = false;
};

/// A negative left or top maximises the window from the origin over the whole screen; a bottom
/// beyond the screen moves it up by the excess and clips it; a right beyond it clips it.
WindowPlacement PlaceWindow(int left, int top, int right, int bottom, int screenWidth,
                            int screenHeight);

/// The steps of the window's creation after the window exists: the minute timer is started on
/// `clock` (none in tests that tick by hand), the status files are loaded or built, KELVAR.LOK
/// is opened, the old-version questions are asked, the default folders are
/// filled in, SessionWord becomes 1 and KELVAR.CHK is written. Returns the command the window
/// posts itself (1280, or 1284 on a first run), or 0 when the window must not be created.
[[nodiscard]] int CreateSession(platform::Clock* clock);

/// Runs a start-up command (1280 or 1284) to the first drawn map. Returns false when the
/// session can't go on; the window is destroyed then (through the hook).
bool RunStartupCommand(int command);

/// The project chooser. Returns true when a project was picked (or created) and its name is
/// in KELVAR.CHK.
bool ChooseProject();

/// Loads the project named in KELVAR.CHK with its texture control, game configuration and tool
/// files, asking about files of a prior version. Returns false when the user gave up or a file
/// was refused.
bool LoadProjectFiles();

/// From the IWAD to the first drawn map. Returns 0 when the IWAD step was given up.
[[nodiscard]] int LoadSessionFiles();

/// The first steps of LoadSessionFiles, which a change of project runs as well: the file
/// settings go to the WAD layer, the project's IWAD is chosen and scanned (SelectMainIwad),
/// and the project's PWADs become the name table, duplicates cleared. Returns 0 when the
/// IWAD step was given up.
[[nodiscard]] int OpenProjectIwad();

/// Resets the master directory: every file is closed, the IWAD is scanned again, then the
/// PWADs of the name table in its order (the overlay order), and the project's level is read
/// again without asking, or the first level when that one is gone. `keepView` keeps the map
/// where it stands; otherwise the level is centred. Returns false when the IWAD couldn't be
/// scanned (the reason was shown) or no level was read.
bool ReloadAllFiles(bool keepView);

/// The EditLevel list: the levels of the level list, `current` in the caption, and last
/// BrowseLevelsEntry, which opens the Levels browser. Returns the chosen name, or nothing when
/// cancelled.
std::optional<std::string> ChooseLevel(const std::string& current);

/// The entry after the level names of the EditLevel list: the Levels browser.
inline constexpr const char* BrowseLevelsEntry = "Browse Levels...";

/// Reads the current level again after a file, project or level command, or at start.
/// `newLevel` is passed to the reader; `resetView` rebuilds what depends on the palette.
/// Returns false when no level could be read.
bool LoadCurrentLevel(bool newLevel, bool resetView);

/// Reads the file settings of the status records into the WAD layer, with its hooks.
void ApplyWadSettings();

/// Reads the editing and display settings of the status records (and the game configuration
/// of the level's format) into the map model and the view.
void ApplyViewSettings();

/// Takes what the view and the map changed back into the status records.
void GatherSettings();

// --- Running -------------------------------------------------------------------------------

/// One tick of the minute timer: counts the minutes and, when nothing is busy, runs the
/// auto-save when it is due.
void TimerTick();

// --- End -----------------------------------------------------------------------------------

/// The exit prompt's answers.
enum class ExitAnswer
{
    Stay,    // Cancel, or a save that didn't happen: the window stays
    Destroy, // nothing to save, No, or saved: the window goes
};

/// "File has been modified. Save Changes?" when the map or its nodes changed.
ExitAnswer ExitPrompt();

/// Runs once: stores the window's rectangle and the view, writes KELVAR.CHK and the project
/// (unless this is a second copy or start-up was cancelled), closes every file and KELVAR.LOK.
void ShutdownOnce(int left, int top, int right, int bottom);

/// The shell's part of a fatal end: KELVAR.CHK with SessionWord 0, the crash save offered,
/// the shutdown. FatalError calls it through its hook before the process ends with code 4.
void FatalShutdown();

/// "Save Current Data as CRASH.WAD?..." when a level is loaded and a writer is there.
void OfferCrashSave();

} // namespace kelvar::app
