// The test launcher's options: the game's command line for Test Level, the 3D viewer's for
// 3D Mode Texture Align, and the shell's reactions both commands need.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The settings are the project's test fields and KELVAR.CHK's viewer fields; the
//   application shell copies them in from its status records before a run and takes them
//   back afterwards (app/RunSettings.h). Everything else a run needs of the session (IWAD,
//   PWADs, format, program directory) is read from the WAD layer when the command starts; the
//   level's name comes as an argument.
// - What only the window can do (the dialogs, reloading the level, the undo step) reaches the
//   shell through TestHooks. An empty hook does nothing, or takes the answer the comment names,
//   which is how tests and kelvar-cli run these commands headless.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace kelvar::run
{

/// The screen modes of the 3D viewer.
enum class ViewerScreen : std::uint8_t
{
    FullScreenHardware = 0, // "FullScreen Hardware"
    FullScreenWindow = 1,   // "Full Screen Window"
    Automatic = 2,          // "Automatic": a window over the editor's map
    CustomHardware = 3,     // "Custom Hardware"
    CustomWindow = 4,       // "Custom Window"
};

/// How much of the level the viewer lets the user change.
enum class ViewerScope : std::uint8_t
{
    Complete = 0, // "complete"
    Partial = 1,  // "partial"
    Play = 2,     // "play": as the Play Only button, nothing is read back
};

/// The 3D viewer's options, all kept in KELVAR.CHK, with the texts of their controls.
struct Viewer3DOptions
{
    std::string ViewerPath = "c:\\R3Kelvar\\bin\\R3Kelvar.EXE";
    std::string ViewerDirectory = "c:\\R3Kelvar\\bin";
    std::string ViewerParameters; // added to the viewer's option keywords
    bool Prompt = true;           // "* Prompt": show TestR3D before each run
    bool LoadAllFiles = false;    // "Load ALL Files (if you have custom textures in another File)"
    bool WaitFor3D = false;       // " Wait* for 3D to End"
    bool NoMonsters = false;      // "nomonsters"
    bool NoMd2 = false;           // "nomd2"
    bool NoObjects = false;       // "noobjects"
    bool LightsActive = false;    // "lights active"
    bool NoConsole = false;       // "no console"
    bool NoSprites = false;       // "no sprites"
    bool NoEscape = false;        // "no escape"
    bool NoInfight = false;       // "no infight"
    // The edit group.
    bool AutoPosition = false;    // "Auto Position"
    bool InvisibleThings = false; // "Invisible Things"
    bool ClipToFloor = false;     // "Clip to Floor"
    bool ClipToCeiling = false;   // "Clip to Ceiling"
    bool AutoSpeed = false;       // "Auto Speed"
    bool Analyze = false;         // "Analyze"
    bool Caching = false;         // "Caching"
    bool UseSpecials = false;     // "Use Specials"
    ViewerScope Scope = ViewerScope::Complete;
    ViewerScreen Screen = ViewerScreen::FullScreenHardware;
    std::int16_t Width = 0; // of a custom screen or window
    std::int16_t Height = 0;
    std::int16_t XPos = 0;
    std::int16_t YPos = 0;
    std::int16_t Skill = 0;    // 1 to 5; 0 "*All skills"
    std::int16_t Speed = 0;    // 0 to 1000, when Auto Speed is off
    std::int16_t Memory = 0;   // megabytes, 40 to 512; 0 leaves the viewer's own
    std::int16_t MaxFps = 0;   // 0 leaves the viewer's own
    bool HiResFlats = false;   // "HiRes Flats"
    bool HiResTx = false;      // "HiRes TX"
    bool HiResTexture = false; // "HiResTexture"
    bool DisableWKey = false;  // "Disable \"W\" key Exit\n(F10 also Exits)"
    // The map save group: how the private copy of the level is written.
    bool ShowInvisibleLines = false;     // "Show  invisible lines"
    bool RemoveUnused = false;           // "Remove unused"
    bool ApplyMissingTextures = false;   // "Apply missing textures"
    bool CheckInvalidTextures = false;   // "Check invalid textures"
    bool MergeDuplicateVertices = false; // "Merge Duplicate Vertices"
    bool SeeNodeResults = false;         // "See Node Results"
    bool CopyAllSpecialLumps = false;    // "Copy All Special Lumps"
    bool AutoFixSides = false;           // "AutoFix Sides"
    bool ClearSectorSpecials = false;    // "Clear all Sector Specials"
    bool R3dglbspNodes = false;          // "R3Dglbsp Nodes"

    bool operator==(const Viewer3DOptions&) const = default;
};

/// The answers of the TestR3D dialog.
inline constexpr int ViewerCancel = 0;
inline constexpr int ViewerEdit = 1;
inline constexpr int ViewerPlayOnly = 2; // "Play Only"

/// A rectangle of screen pixels: where the viewer's automatic window goes.
struct ScreenRect
{
    int Left = 0;
    int Top = 0;
    int Width = 640;
    int Height = 480;

    bool operator==(const ScreenRect&) const = default;
};

struct TestOptions;

/// What the shell does for the two test commands. Each may be empty.
struct TestHooks
{
    /// The command starts (true) or ends (false): InFileOperation and BlockAutoSave are set or
    /// cleared, so the timer and the auto-save stay out meanwhile.
    std::function<void(bool busy)> FileOperation;
    /// The TestOptions dialog over the options and the info line (" level - "); false is
    /// Cancel. Empty: the options are taken as they stand.
    std::function<bool(TestOptions& options, const std::string& info)> EditTestOptions;
    /// The TestR3D dialog: ViewerCancel, ViewerEdit or ViewerPlayOnly. Empty: ViewerEdit.
    std::function<int(Viewer3DOptions& options)> EditViewerOptions;
    /// Writes the level into `copy` (~R3Dedit.WAD) like a full save, under MAP01 or E1M1 by the
    /// game, with its nodes built as the map save group says; shows its own messages and
    /// returns false when nothing usable was written. Empty: the 3D command can't run.
    std::function<bool(const std::filesystem::path& copy, const Viewer3DOptions& options)>
        Write3DCopy;
    /// After the game returned (or failed to start): scan all files again and load the level,
    /// restore the window's rectangle, AppState 1. ReadOnlyOpen is set meanwhile.
    std::function<void()> ReloadAfterTest;
    /// Takes the undo snapshot before the viewer's changes are applied.
    std::function<void()> SaveUndoStep;
    /// Draws the map again.
    std::function<void()> Redraw;
    /// The map window on the screen, for the viewer's automatic size. Empty: 640 by 480.
    std::function<ScreenRect()> MapWindowRect;
};

/// Sets the shell's busy words through TestHooks::FileOperation for as long as it lives: the
/// length of a test command.
class FileOperationGuard
{
public:
    explicit FileOperationGuard(const TestHooks& hooks) : Hooks(hooks)
    {
        if (Hooks.FileOperation)
        {
            Hooks.FileOperation(true);
        }
    }
    ~FileOperationGuard()
    {
        if (Hooks.FileOperation)
        {
            Hooks.FileOperation(false);
        }
    }
    FileOperationGuard(const FileOperationGuard&) = delete;
    FileOperationGuard& operator=(const FileOperationGuard&) = delete;

private:
    const TestHooks& Hooks;
};

/// Everything the two test commands keep: the project's Test Level fields, the viewer's
/// options, and the shell's hooks.
struct TestOptions
{
    std::string GameExe = "chocolate-doom"; // a bare name is looked for on PATH and in /usr/games
    std::string GameDirectory;              // the working directory; empty: the IWAD's
    std::string WarpText;                   // a custom warp parameter; empty: " -warp "
    std::string ExtraParameters = ":";      // at the end; ":" first: see CompleteExtraParameters
    bool ResponseFile = false;              // "ResponseFile"
    bool ShortFileNames = false;            // "Short FileNames"
    bool QuoteResponse = false;             // "Quote Response"
    bool QuoteFileNames = false;            // "Quote FileNames"
    bool LoadAllFiles = false;              // "Load ALL Files"
    bool WaitForGame = false;               // " Wait** for Game to End"
    std::int16_t Skill = 4;                 // 0: not passed
    std::int16_t Turbo = 0;                 // 0: not passed
    bool DevParm = false;                   // " devparm"
    bool NoMonsters = false;                // "nomonsters"
    bool NoMusic = false;                   // "nomusic"
    bool NoSound = false;                   // "nosound"
    bool NoSfx = false;                     // "nosfx"
    bool FastMonsters = false;              // "fast monsters"
    bool Deathmatch = false;                // "deathmatch"
    bool AltDeath = false;                  // "altdeath"
    bool Respawn = false;                   // "respawn"

    Viewer3DOptions Viewer;
    TestHooks Hooks;
};

} // namespace kelvar::run
