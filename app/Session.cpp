// The session's start: the command line, a running copy, the window's creation steps, the
// project chooser and the loading of the status files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"

#include "app/ControlFiles.h"
#include "app/ShellState.h"
#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"
#include "map/GameCodes.h"
#include "platform/Messages.h"
#include "platform/Paths.h"
#include "wad/WadState.h"

#include <algorithm>
#include <system_error>

namespace kelvar::app
{

SessionState& Session()
{
    static SessionState state;
    return state;
}

bool EditingLevel()
{
    const SessionState& session = Session();
    return session.LevelLoaded && session.AppState == AppEditing;
}

void ResetSession()
{
    wad::Wad().LockFile = nullptr;
    Session() = SessionState{};
}

// --- The command line ----------------------------------------------------------------------

CommandLine ParseCommandLine(std::string_view text)
{
    CommandLine line;
    if (text.size() <= 1)
    {
        return line;
    }
    // StartFile holds up to 260 bytes with its terminator.
    text = text.substr(0, wad::MaxPathLength);
    if (text[0] == '-' && (text[1] == 'N' || text[1] == 'n'))
    {
        line.SkipFiles = true;
        line.StartFile = std::string(text);
        return line;
    }
    // The shell hands a double-clicked file over between double quotes.
    line.StartFile = std::string(text.substr(1, text.size() - 2));
    return line;
}

std::string CommandLineText(int argc, const char* const* argv)
{
    if (argc < 2 || argv[1] == nullptr || argv[1][0] == '\0')
    {
        return {};
    }
    const std::string first = argv[1];
    if (first.size() >= 2 && first[0] == '-' && (first[1] == 'N' || first[1] == 'n'))
    {
        return first;
    }
    // Files are remembered by full name (recent list, project), and the current directory
    // of the start is the only one that knows what a relative name meant.
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(first, error);
    return "\"" + (error ? first : full.string()) + "\"";
}

void ProcessStart(const CommandLine& commandLine, const std::filesystem::path& programDir)
{
    SessionState& session = Session();
    session.AppState = AppNotReady;
    session.SkipFiles = commandLine.SkipFiles;
    session.StartFile = commandLine.StartFile;

    wad::Wad().ProgramDir = programDir;
    std::error_code error;
    std::filesystem::create_directories(programDir, error);

    // Loaded now so the window's rectangle is known; a missing file is no message here.
    session.ChkResult = std::filesystem::exists(programDir / "KELVAR.CHK", error)
                            ? LoadChk(Shell().Chk, false)
                            : StatusMissing;
}

// --- A running copy ------------------------------------------------------------------------

bool CheckSecondCopy()
{
    SessionState& session = Session();
    session.RunningLock = std::make_unique<platform::InstanceLock>();
    if (session.RunningLock->Acquire(wad::Wad().ProgramDir / RunningLockName))
    {
        return true;
    }
    platform::Message warning;
    warning.Title = "Kelvar -            !! WARNING !!";
    warning.Lines = {"\nCaution - Kelvar is already active!\n\nPWADS that are OPEN in the other "
                     "copy are IN USE and saves won't work to those files!\n\nAutomatic file "
                     "loading is temporarily suppressed\n\nIf continuing, you should CLOSE this "
                     "copy of Kelvar first before doing saves.",
                     "Using the ClipBoard is OK"};
    warning.Icon = platform::MessageIcon::Exclamation;
    warning.Buttons = platform::MessageButtons::OkCancel;
    warning.ButtonTexts = {"&OK Continue", "&Cancel"};
    if (platform::TheUi().Show(warning) == 1)
    {
        session.SecondCopy = true;
        return true;
    }
    Shell().Chk.SessionWord = SessionCancelled;
    return false;
}

WindowPlacement PlaceWindow(int left, int top, int right, int bottom, int screenWidth,
                            int screenHeight)
{
    WindowPlacement place{left, top, right, bottom, false};
    if (left < 0 || top < 0 || right <= left || bottom <= top)
    {
        return {0, 0, screenWidth, screenHeight, true};
    }
    if (place.Bottom > screenHeight)
    {
        const int excess = place.Bottom - screenHeight;
        place.Top = std::max(0, place.Top - excess);
        place.Bottom = screenHeight;
    }
    place.Right = std::min(place.Right, screenWidth);
    return place;
}

// --- The window's creation -----------------------------------------------------------------

namespace
{

std::filesystem::path ProgramDir()
{
    return wad::Wad().ProgramDir;
}

std::filesystem::path ProjectPath()
{
    const std::filesystem::path name = GetText(Shell().Chk.ProjectFile);
    return name.is_relative() ? ProgramDir() / name : name;
}

// KELVAR.LOK is kept open for the whole run; saves lock a byte of it (Part of the save
// pipeline) so two running copies notice one another.
void OpenLockFile()
{
    SessionState& session = Session();
    const std::filesystem::path path = ProgramDir() / LockFileName;
    session.LockHandle.reset(std::fopen(path.c_str(), "r+b"));
    wad::Wad().LockFile = session.LockHandle.get();
    if (session.LockHandle)
    {
        return;
    }
    wad::StreamPtr created(std::fopen(path.c_str(), "w+b"));
    if (!created)
    {
        const std::string folder = ProgramDir().string();
        platform::ShowError("Save %s Status file open error?\n\nfile=%s\n\nCurrent dir=%s", "LOK",
                            LockFileName, folder.c_str());
    }
    else
    {
        std::fputs(LockFileName, created.get());
        created.reset();
        session.LockHandle.reset(std::fopen(path.c_str(), "r+b"));
        wad::Wad().LockFile = session.LockHandle.get();
        if (session.LockHandle)
        {
            return;
        }
    }
    platform::ShowError("KELVAR.LOK can't be created, AutoSave disabled");
    session.AutoSaveOff = true;
}

// The game configuration goes by the game's format, which only the IWAD tells for sure. Before
// it is scanned, a project of the built-in rows has its row's game, any other Doom 2's.
std::string SessionConfigFile()
{
    const wad::GameIdentity& game = wad::Wad().Game;
    if (game.Game != map::GameNone)
    {
        return game.ConfigFile;
    }
    const ProjectRecord& project = Shell().Project;
    std::string stem = ProjectPath().stem().string();
    std::transform(stem.begin(), stem.end(), stem.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    int gameNumber = 2;
    for (const ProjectRow& row : ProjectRows())
    {
        if (stem == row.Name)
        {
            gameNumber = row.Game;
        }
    }
    return ConfigFileName(gameNumber, project.BoomTypes != 0, project.ZdoomHexenFormat != 0);
}

// Which file of the set failed, for the question about a prior version.
struct LoadResult
{
    int Result = StatusLoaded;
    const char* What = "";
};

LoadResult LoadEachProjectFile()
{
    ShellState& shell = Shell();
    std::error_code error;
    if (std::filesystem::exists(ProjectPath(), error))
    {
        const int result = LoadProject(shell.Project, false, ProjectPath());
        if (result != StatusLoaded)
        {
            return {result, "The Project File"};
        }
    }
    int result = LoadTextureControl(shell.TextureControl, false, GetText(shell.Project.TcfFile));
    if (result != StatusLoaded)
    {
        return {result, "The TCF File"};
    }
    const std::string config = SessionConfigFile();
    result = LoadGameConfig(shell.GameConfig, false, config);
    if (result != StatusLoaded)
    {
        return {result, "The DFG File"};
    }
    Session().ConfigFile = config;
    for (std::size_t i = 0; i < ToolFileCount; ++i)
    {
        const std::string name = GetText(shell.Chk.ToolFiles[i]);
        if (name.empty())
        {
            continue;
        }
        result = LoadToolFile(shell.Tools[i], false, name);
        if (result != StatusLoaded)
        {
            return {result, "The TOOL definition File"};
        }
    }
    return {};
}

// Fills in the folders of the project that are empty, or all of them on a first run.
void FillDefaultFolders(bool firstTime)
{
    ProjectRecord& project = Shell().Project;
    const std::string home = platform::HomeDir().string();
    const std::string pwads = home.empty() ? ProgramDir().string() : home + "/";
    if (firstTime || GetText(project.DefaultPwadDir).empty())
    {
        SetText(project.DefaultPwadDir, pwads);
    }
    if (firstTime || GetText(project.ThirdDir).empty())
    {
        SetText(project.ThirdDir, pwads);
    }
    if (firstTime || GetText(project.PrefabDir).empty())
    {
        SetText(project.PrefabDir, (ProgramDir() / "Prefabs" / "").string());
    }
}

} // namespace

bool LoadProjectFiles()
{
    for (int round = 0;; ++round)
    {
        const LoadResult loaded = LoadEachProjectFile();
        if (loaded.Result == StatusLoaded)
        {
            return true;
        }
        if (round > 0)
        {
            return false;
        }
        if (loaded.Result == StatusOldVersion)
        {
            if (!platform::AskYesNo(
                    "%s is for a prior version\n\nIf you want we can try to re-create ALL control "
                    "files\nClick YES to try or No to exit out.\n\nUse Explorer to Delete the "
                    "Kelvar.CHK file if it gets stuck",
                    loaded.What))
            {
                return false;
            }
        }
        else if (loaded.Result != StatusMissing)
        {
            return false;
        }
        if (BuildControlFiles() != 1)
        {
            return false;
        }
    }
}

int CreateSession(platform::Clock* clock)
{
    SessionState& session = Session();
    ShellState& shell = Shell();
    session.AppState = AppNotReady;
    std::error_code error;
    std::filesystem::create_directories(ProgramDir(), error);

    if (clock != nullptr && !clock->StartTimer(TimerPeriodMs, [] { TimerTick(); }))
    {
        platform::ShowError("Can't Set TIMER?!");
        return 0;
    }

    if (session.ChkResult == StatusLoaded)
    {
        if (!std::filesystem::exists(ProjectPath(), error))
        {
            session.FirstTime = true;
        }
    }
    else
    {
        shell.Chk = DefaultChk();
        SetText(shell.Chk.TextEditor, DefaultTextEditor());
        (void)SaveChk(shell.Chk);
        session.FirstTime = session.ChkResult == StatusMissing;
    }

    OpenLockFile();

    if (session.FirstTime)
    {
        SetText(shell.Chk.TextEditor, DefaultTextEditor());
        shell.Chk.AutoStartProgram = 0;
        (void)BuildControlFiles();
        (void)InstallDefaultOptFiles();
        platform::ShowInfo("After you have choosen your Project\n\\nPress F5 to set editing "
                           "properties\n\nUse R3Kelvar.prj for 3D levels");
    }

    SetText(shell.Chk.ProjectFile, ProjectFileName(GetText(shell.Chk.ProjectFile)).string());
    if (!LoadProjectFiles())
    {
        return 0;
    }

    FillDefaultFolders(session.FirstTime);
    shell.Chk.SessionWord = SessionRunning;
    (void)SaveChk(shell.Chk);
    return session.FirstTime ? CommandFirstStartup : CommandStartup;
}

// --- The project chooser -------------------------------------------------------------------

bool ChooseProject()
{
    SessionState& session = Session();
    ShellState& shell = Shell();
    for (;;)
    {
        platform::FileChoice choice;
        choice.Caption = "Game Project";
        choice.Filter = "Projects (*.PRJ)|*.prj|";
        choice.InitialPath = ProgramDir();
        choice.NameLimit = 127;
        const std::optional<std::filesystem::path> picked = platform::TheUi().ChooseFile(choice);
        if (!picked)
        {
            if (session.FirstTime &&
                !platform::AskYesNo("No Project choosen.\nDo you want to quit?"))
            {
                continue;
            }
            return false;
        }

        // A project in the program's directory is kept by its name alone, as the built-in
        // ones are, so the directory can move.
        std::filesystem::path name = ProjectFileName(*picked);
        if (name.parent_path().lexically_normal() / "" == ProgramDir().lexically_normal() / "")
        {
            name = name.filename();
        }
        const std::filesystem::path full = name.is_relative() ? ProgramDir() / name : name;
        std::error_code error;
        if (std::filesystem::exists(full, error))
        {
            ProjectRecord project{};
            if (LoadProject(project, true, full) != StatusLoaded)
            {
                continue;
            }
            SetText(shell.Chk.ProjectFile, name.string());
            return true;
        }
        if (session.FirstTime)
        {
            platform::ShowInfo("You have to select a valid project first");
            continue;
        }
        const std::string shown = name.string();
        if (platform::AskYesNo("!!  Project %s does not exist  !!\nDo you want to create a new "
                               "project using current settings?",
                               shown.c_str()))
        {
            SetText(shell.Chk.ProjectFile, shown);
            if (SaveProject(shell.Project, full) == 1)
            {
                (void)SaveChk(shell.Chk);
            }
            return true;
        }
    }
}

} // namespace kelvar::app
