// The session's loading: the start-up commands, the files of the session, the level to edit,
// and the settings that go from the status records to the rest of the program and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"

#include "app/BrowserLists.h"
#include "app/RecentLists.h"
#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "game/Decorate.h"
#include "game/GameState.h"
#include "game/OptFile.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Selection.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "sound/SoundState.h"
#include "view/ViewState.h"
#include "wad/CheckedFile.h"
#include "wad/FileTable.h"
#include "wad/GameIdentity.h"
#include "wad/LevelList.h"
#include "wad/LevelReader.h"
#include "wad/MarkerRanges.h"
#include "wad/WadScan.h"

#include <unistd.h>

namespace kelvar::app
{

namespace
{

void SetWaitCursor(bool on)
{
    if (Session().Hooks.WaitCursor)
    {
        Session().Hooks.WaitCursor(on);
    }
}

// The project's OpenFiles and the WAD layer's name table are the same list: the record is
// what is saved, the table what the scans use.
void CopyOpenFilesToWad()
{
    const ProjectRecord& project = Shell().Project;
    wad::WadState& wad = wad::Wad();
    for (std::size_t i = 0; i < wad::NameTableSize; ++i)
    {
        wad.OpenFiles[i] = GetText(project.OpenFiles[i]);
    }
}

void CopyOpenFilesToProject()
{
    ProjectRecord& project = Shell().Project;
    const wad::WadState& wad = wad::Wad();
    for (std::size_t i = 0; i < wad::NameTableSize; ++i)
    {
        SetText(project.OpenFiles[i], wad.OpenFiles[i]);
    }
}

// Of two equal names in the table the earlier is cleared, so the later place in the overlay
// order stands.
void RemoveDuplicateNames()
{
    auto& names = wad::Wad().OpenFiles;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        for (std::size_t j = i + 1; j < names.size() && !names[i].empty(); ++j)
        {
            if (names[j] == names[i])
            {
                names[i].clear();
            }
        }
    }
}

// Moves the names of the table up over its empty places.
void CompactNames()
{
    auto& names = wad::Wad().OpenFiles;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        if (!names[i].empty())
        {
            if (kept != i)
            {
                names[kept] = std::move(names[i]);
            }
            ++kept;
        }
    }
    for (std::size_t i = kept; i < names.size(); ++i)
    {
        names[i].clear();
    }
}

// Opens the file of the command line. A WAD's first level becomes the level to edit.
void OpenStartFile(const std::string& startFile)
{
    ProjectRecord& project = Shell().Project;
    wad::Wad().OpenFiles[0] = startFile;
    wad::StreamPtr stream = wad::CheckedOpen(startFile, "rb", 0);
    if (!stream)
    {
        return;
    }
    const std::optional<wad::LumpName> level = wad::FirstLevelOfFile(stream.get(), startFile);
    stream.reset();
    if (level)
    {
        SetText(project.LevelName, level->Text());
    }
    (void)AddRecentPwad(project, startFile);
    Shell().Requests.MenuStateChanged = true;
}

// The environment checks that a start without Auto Start Program runs.
void CheckEnvironment()
{
    const ChkRecord& chk = Shell().Chk;
    if (chk.AutoStartProgram != 0 || chk.SkipEnvironmentChecks != 0)
    {
        return;
    }
    bool fired = false;
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGE_SIZE);
    const long long kilobytes =
        pages > 0 && pageSize > 0 ? static_cast<long long>(pages) * pageSize / 1024 : 0;
    if (kilobytes > 0 && kilobytes < 512000)
    {
        platform::ShowMessageLines(platform::LinesInfo, "Memory",
                                   {platform::Format("This system has %d Kb of Physical memory.",
                                                     static_cast<int>(kilobytes)),
                                    "A minimum of 512MB is recommended to run Kelvar",
                                    "If you have lots of programs open, we suggest closing them",
                                    "Texture Caching is disabled, reset using F5"});
        fired = true;
    }
    const auto& screenSize = Session().Hooks.ScreenSize;
    if (screenSize)
    {
        const auto [width, height] = screenSize();
        if (width > 0 && height > 0 && (width < 1024 || height < 768))
        {
            platform::ShowInfo("Kelvar is designed for a minimum  resolution of 1024 x 768 ");
            fired = true;
        }
    }
    if (fired && platform::AskYesNo("Select the option - Auto Start Program\n    - (press F5 in "
                                    "main screeen) -\nto bypass the prior messages next time\n\n"
                                    "          or Reply Y now"))
    {
        Shell().Chk.AutoStartProgram = 1;
    }
}

// The level to edit: the project's, or the first of the list; the EditLevel list unless the
// session opens it without asking. Returns the name, or nothing when the user cancelled.
std::optional<std::string> ChooseLevelName(double& savedX, double& savedY)
{
    const wad::WadState& wad = wad::Wad();
    if (wad.Levels.empty())
    {
        platform::FatalError("No Levels Found");
    }
    ProjectRecord& project = Shell().Project;
    const std::string stored = GetText(project.LevelName);
    std::string name = stored;
    if (wad::FindLevel(wad::LumpName::From(name)) < 0)
    {
        name = wad.Levels.front().Name.Text();
    }
    if (!Session().OpenLevelWithoutAsking)
    {
        const std::optional<std::string> chosen = ChooseLevel(name);
        if (!chosen)
        {
            return std::nullopt;
        }
        name = *chosen;
        if (wad::FindLevel(wad::LumpName::From(name)) < 0)
        {
            platform::ShowError("Mission %s not available", name.c_str());
            return std::nullopt;
        }
    }
    if (name != stored)
    {
        savedX = wad::UnsetViewPosition;
        savedY = wad::UnsetViewPosition;
    }
    SetText(project.LevelName, name);
    return name;
}

// The game's tables for the level's format, with the project's OPT file over them and, in a
// ZDoom project, the actors of the open files' DECORATE lumps; and the game configuration of
// the format when it is another than the one loaded.
void LoadGameDefinitions()
{
    ShellState& shell = Shell();
    game::SelectGameTables();
    (void)game::ReadOptFile(GetText(shell.Project.OptFile));
    if (game::Game().ZdoomTypes)
    {
        (void)game::ReadDecorateLumps();
    }
    const std::string config = wad::Wad().Game.ConfigFile;
    if (!config.empty() && config != Session().ConfigFile)
    {
        GameConfigRecord record{};
        if (LoadGameConfig(record, false, config) == StatusLoaded)
        {
            shell.GameConfig = record;
        }
        Session().ConfigFile = config;
    }
}

// Puts the view where the project had it, or in the middle of the level when it wasn't set.
void PlaceView(const map::LevelData& level, double savedX, double savedY)
{
    view::MapViewport& viewport = view::View().Viewport;
    const bool empty = level.Vertexes.Count() == 0 && level.Things.Count() == 0;
    if (empty)
    {
        view::CenterOn(viewport, 0.0, 0.0);
        return;
    }
    if (savedX == wad::UnsetViewPosition || savedY == wad::UnsetViewPosition)
    {
        const int x = (level.MinX + level.MaxX) / 2;
        const int y = (level.MinY + level.MaxY) / 2;
        view::CenterOn(viewport, x, y - 16.0 / static_cast<double>(viewport.Scale));
        return;
    }
    view::CenterOn(viewport, savedX, savedY);
}

} // namespace

// --- Settings ------------------------------------------------------------------------------

void ApplyWadSettings()
{
    const ShellState& shell = Shell();
    const ChkRecord& chk = shell.Chk;
    wad::WadState& wad = wad::Wad();
    CopyToWadOptions(chk, shell.Project, wad.Options);
    wad.Options.AutomaticSideUnpack = chk.AutomaticSideUnpack != 0;
    wad.Hooks.SaveStatusFiles = []
    {
        (void)CopyIwadPathToProject(wad::Wad().Options, Shell().Project);
        (void)SaveChkAndProject();
    };
    wad.Hooks.ResetViewPosition = []
    {
        Shell().Project.ViewX = wad::UnsetViewPosition;
        Shell().Project.ViewY = wad::UnsetViewPosition;
    };
    // With every file closing, what was read from them goes too.
    wad.Hooks.DropCatalogues = []
    {
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
    };
}

void ApplyViewSettings()
{
    ShellState& shell = Shell();
    const ChkRecord& chk = shell.Chk;
    const ProjectRecord& project = shell.Project;
    const GameConfigRecord& config = shell.GameConfig;

    map::EditOptions& options = map::Map().Options;
    options.ExpertMode = chk.ExpertMode != 0;
    options.AdditiveSelect = chk.AdditiveSelect != 0;
    options.UndoEnabled = chk.EnableUndo != 0;
    // The editor's own sounds (selection, mode change, confirmations) follow "Enable Sound
    // Select"; the sound output itself is the audio port's business.
    sound::Sound().InterfaceSoundsOn = chk.EnableSoundSelect != 0;
    if (chk.UndoLimit >= 10 && chk.UndoLimit <= 1000)
    {
        options.UndoLimit = chk.UndoLimit;
    }

    view::ViewState& view = view::View();
    if (chk.GridSize >= 0 && chk.GridSize <= 4096)
    {
        view.Settings.GridSize = chk.GridSize;
        options.GridSize = chk.GridSize;
    }
    view.Options.GridDashed = chk.GridDashed != 0;
    view.Options.ShowVertexes = chk.AlwaysShowVertex != 0;
    if (config.VertexSize > 0 && config.VertexSize <= 16)
    {
        view.Options.VertexSize = config.VertexSize;
    }
    if (project.Zoom >= view.Settings.MinimumScale && project.Zoom <= view.Settings.MaximumScale)
    {
        view.Viewport.Scale = project.Zoom;
    }
    view::ColorRoles& colors = view.Colors;
    colors.Selection = config.ColorSelection;
    colors.Vertex = config.ColorVertex;
    colors.Grid64 = config.ColorGrid64;
    colors.Line2Sided = config.ColorLine2Sided;
    colors.Line1Sided = config.ColorLine1Sided;
    colors.Background = config.ColorBackground;
    colors.LineSecret = config.ColorLineSecret;
    colors.LineHidden = config.ColorLineHidden;
    colors.BackgroundThings = config.ColorBackgroundThings;
    colors.LineMonsterBlock = config.ColorLineMonsterBlock;
    colors.LineBlockSound = config.ColorLineBlockSound;
    colors.LineSpecial = config.ColorLineSpecial;
    colors.LineTypedNoTag = config.ColorLineTypedNoTag;
    colors.LineTagged = config.ColorLineTagged;
    colors.SectorTyped = config.ColorSectorTyped;
    colors.LineScript = config.ColorLineScript;
    colors.LineTeleport = config.ColorLineTeleport;
    if (chk.EditMode != map::ModeThings && chk.EditMode != map::ModeLineDefs &&
        chk.EditMode != map::ModeVertexes && chk.EditMode != map::ModeSectors)
    {
        shell.Chk.EditMode = map::ModeLineDefs;
    }
}

void GatherSettings()
{
    ShellState& shell = Shell();
    const view::ViewState& view = view::View();
    if (Session().LevelLoaded)
    {
        shell.Project.ViewX = view.Viewport.OriginX;
        shell.Project.ViewY = view.Viewport.OriginY;
    }
    shell.Project.Zoom = view.Viewport.Scale;
    shell.Chk.GridSize = static_cast<std::int16_t>(view.Settings.GridSize);
    CopyOpenFilesToProject();
}

// --- Loading -------------------------------------------------------------------------------

std::optional<std::string> ChooseLevel(const std::string& current)
{
    const wad::WadState& wad = wad::Wad();
    std::vector<std::string> names;
    names.reserve(wad.Levels.size());
    for (const wad::LevelListEntry& entry : wad.Levels)
    {
        names.push_back(entry.Name.Text());
    }
    // The last entry opens the Levels browser, where each level shows as a small map.
    std::vector<std::string> entries = names;
    entries.emplace_back(BrowseLevelsEntry);
    const std::optional<int> index = platform::TheUi().ChooseFromList(
        platform::Format("Edit Level - %s", current.c_str()), entries);
    if (!index || *index < 0 || static_cast<std::size_t>(*index) > names.size())
    {
        return std::nullopt;
    }
    if (static_cast<std::size_t>(*index) == names.size())
    {
        return OpenBrowser(BrowseLevels, current);
    }
    return names[static_cast<std::size_t>(*index)];
}

bool RunStartupCommand(int command)
{
    SessionState& session = Session();
    auto fail = [&session]
    {
        if (session.Hooks.DestroyWindow)
        {
            session.Hooks.DestroyWindow();
        }
        return false;
    };
    if (command == CommandFirstStartup)
    {
        if (!ChooseProject() || !LoadProjectFiles())
        {
            return fail();
        }
        Shell().Chk.AutoStartProgram = 0;
        return LoadSessionFiles() != 0 || fail();
    }
    if (LoadSessionFiles() != 0)
    {
        return true;
    }
    if (!ChooseProject() || !LoadProjectFiles() || LoadSessionFiles() == 0)
    {
        return fail();
    }
    return true;
}

int OpenProjectIwad()
{
    SessionState& session = Session();
    ApplyWadSettings();
    session.AppState = AppChoosingIwad;
    const int selected = wad::SelectMainIwad(session.FirstTime);
    (void)CopyIwadPathToProject(wad::Wad().Options, Shell().Project);
    session.AppState = AppNotReady;
    if (selected == 0)
    {
        return 0;
    }
    CopyOpenFilesToWad();
    RemoveDuplicateNames();
    Shell().Requests.MenuStateChanged = true;
    Shell().Requests.MiscMenuChanged = true;
    return 1;
}

bool ReloadAllFiles(bool keepView)
{
    SessionState& session = Session();
    ProjectRecord& project = Shell().Project;
    GatherSettings();
    const double x = keepView ? project.ViewX : wad::UnsetViewPosition;
    const double y = keepView ? project.ViewY : wad::UnsetViewPosition;
    if (wad::ScanMainIwad(wad::Wad().Options.IwadPath) != 1)
    {
        return false;
    }
    CompactNames();
    project.ViewX = x;
    project.ViewY = y;
    const bool withoutAsking = session.OpenLevelWithoutAsking;
    session.OpenLevelWithoutAsking = true;
    const bool loaded = LoadCurrentLevel(false, false);
    session.OpenLevelWithoutAsking = withoutAsking;
    Shell().Requests.MenuStateChanged = true;
    return loaded;
}

int LoadSessionFiles()
{
    SessionState& session = Session();
    ShellState& shell = Shell();
    ProjectRecord& project = shell.Project;

    if (OpenProjectIwad() == 0)
    {
        return 0;
    }

    session.OpenLevelWithoutAsking = shell.Chk.AutoStartProgram != 0 || !session.FirstTime;
    if (shell.Chk.AutoLoadLevels != 0 && session.StartFile.empty())
    {
        // A second copy opens nothing, as its warning said; the files are scanned when the
        // level is loaded.
        if (session.SecondCopy)
        {
            wad::Wad().OpenFiles.fill({});
        }
    }
    else
    {
        wad::Wad().OpenFiles.fill({});
        project.ViewX = wad::UnsetViewPosition;
        project.ViewY = wad::UnsetViewPosition;
        if (!session.SkipFiles)
        {
            OpenStartFile(session.StartFile);
        }
    }
    CompactNames();

    if (shell.Chk.AutoStartProgram == 0 && !session.FirstTime && shell.Chk.AutoStartReminder != 2)
    {
        if (platform::ShowMessageLines(platform::LinesInfo | platform::LinesCancel,
                                       "AutoStart Reminder",
                                       {"To bypass this screen turn the -Auto Start Program - "
                                        "option on.",
                                        "Press F5 to bring up the Option dialog",
                                        ">> Press Y to never see this message again! <<"}) == 1)
        {
            shell.Chk.AutoStartReminder = 2;
        }
    }
    CheckEnvironment();
    if (session.FirstTime)
    {
        platform::ShowInfo("Press the PAUSE key to define ToolBar Display Properties\n\nPress "
                           "the Shift+SCROLL key to Redefine ToolBars\n\nPress F5 to set various "
                           "Eding Options\n\nUse 3D option (top right) when creating 3D levels");
    }
    return LoadCurrentLevel(false, true) ? 1 : 0;
}

bool LoadCurrentLevel(bool newLevel, bool resetView)
{
    SessionState& session = Session();
    ProjectRecord& project = Shell().Project;
    double savedX = project.ViewX;
    double savedY = project.ViewY;
    session.InFileOperation = true;
    wad::CloseFiles('L', false, false);

    if (session.SecondCopy)
    {
        savedX = wad::UnsetViewPosition;
        savedY = wad::UnsetViewPosition;
    }
    else
    {
        const auto& names = wad::Wad().OpenFiles;
        std::size_t last = 0;
        for (std::size_t i = 0; i < names.size(); ++i)
        {
            last = names[i].empty() ? last : i;
        }
        for (std::size_t i = 0; i < names.size(); ++i)
        {
            if (!names[i].empty())
            {
                (void)wad::OpenPwad(names[i], true, i == last);
            }
        }
    }
    wad::DropUnusedFiles();
    map::Selected().HighlightedObject = -1;
    (void)resetView;

    SetWaitCursor(true);
    const std::optional<std::string> name = ChooseLevelName(savedX, savedY);
    if (!name)
    {
        SetWaitCursor(false);
        session.InFileOperation = false;
        return session.LevelLoaded;
    }
    map::LevelData& level = map::Map().Level;
    map::ClearSelection();
    map::LevelFree(level);
    (void)wad::ReadLevel(level, *name, newLevel);
    map::UndoReset(); // the steps of another level are no steps of this one
    wad::BuildMarkerLists();
    LoadGameDefinitions();
    ApplyViewSettings();
    view::View().Options.LevelFormat = wad::Wad().Game.Format;

    PlaceView(level, savedX, savedY);
    project.ViewX = view::View().Viewport.OriginX;
    project.ViewY = view::View().Viewport.OriginY;
    session.MinutesSinceSave = 0;
    session.IdleMinutes = 0;
    session.ChangesAtAutoSave = 0;
    level.ChangeCount = 0;
    level.GeometryChangeCount = 0;
    session.LevelLoaded = true;
    session.AppState = AppEditing;
    session.InFileOperation = false;
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
    requests.MenuStateChanged = true;
    SetWaitCursor(false);
    return true;
}

} // namespace kelvar::app
