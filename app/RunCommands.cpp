// The handlers of Test Level and 3D Mode Texture Align: the shared preparation, the records'
// settings in and out, and what the launcher needs of the shell.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"
#include "app/CommandHandlers.h"
#include "app/RunSettings.h"
#include "app/SaveDispatcher.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "check/SaveChecks.h"
#include "gfx/TextureCatalogue.h"
#include "map/GameCodes.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "platform/Messages.h"
#include "run/NodeBuilder.h"
#include "run/RunState.h"
#include "run/Test3D.h"
#include "run/TestLevel.h"
#include "view/ViewState.h"
#include "wad/LevelCopy.h"
#include "wad/WadState.h"

#include <chrono>
#include <thread>

namespace kelvar::app
{
namespace
{

// The name the viewer's copy of the level goes under, and its working file.
constexpr const char* ViewerWorkFile = "~R3D.WAD";

// Writes the level alone and builds its nodes: with the viewer's own builder when asked, else
// with kelvarbsp.
bool WriteViewerCopy(const std::filesystem::path& copy, const run::Viewer3DOptions& options)
{
    const wad::WadState& wad = wad::Wad();
    const int game = wad.Game.Game;
    const std::string name = map::IsEpisodicGame(game) ? "E1M1" : "MAP01";
    const std::filesystem::path work = wad.ProgramDir / ViewerWorkFile;
    // With "Check invalid textures" the copy's unknown wall textures become the default one.
    wad::TextureCleaning cleaning;
    if (options.CheckInvalidTextures)
    {
        EnsureBrowserCatalogues();
        cleaning.Known = [](const map::TextureName& texture)
        { return gfx::Catalogue().Textures.Contains(wad::LumpName::From(texture.Text())); };
        cleaning.Replacement = map::Map().Textures.Normal;
    }
    if (wad::WriteLevelCopy(map::Map().Level, work.string(), name, &cleaning) != 0)
    {
        return false;
    }
    PrepareBuilder();
    const int result =
        options.R3dglbspNodes
            ? run::RunR3dBuilder(options.ViewerDirectory, work.string(), copy.string())
            : run::RunBuiltInBuilder(copy.string(), name, false, ViewerWorkFile);
    if (result != 0)
    {
        platform::ShowMessageLines(0, "Node Error",
                                   {"Node Building Error Occurred creating file", copy.string()});
        return false;
    }
    return true;
}

// What the two commands share before they start: the level is loaded, the selection goes,
// and the game needs a player 1 start. False stops the command.
bool PrepareTest()
{
    if (!Session().LevelLoaded)
    {
        return false;
    }
    map::ClearSelection();
    map::LevelData& level = map::Map().Level;
    check::PlayerOneCheck(level);
    return check::PlayerOneReady(level);
}

// And after: the settings go back to the records, the window comes back and is drawn.
void FinishTest()
{
    TestOptionsToRecords(run::Run().Test, Shell().Chk, Shell().Project);
    (void)SaveChkAndProject();
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    CommandRequests& requests = Shell().Requests;
    requests.RedrawMap = true;
    requests.RefreshStatus = true;
    requests.RefreshInfoPanes = true;
    requests.MenuStateChanged = true;
}

void InstallTestHooks()
{
    run::TestOptions& test = run::Run().Test;
    TestOptionsFromRecords(Shell().Chk, Shell().Project, test);
    run::TestHooks& hooks = test.Hooks;
    hooks.FileOperation = [](bool busy)
    {
        Session().InFileOperation = busy;
        Session().BlockAutoSave = busy;
    };
    hooks.ReloadAfterTest = []
    {
        (void)ReloadAfterSave();
        Session().AppState = AppEditing;
    };
    hooks.Write3DCopy = WriteViewerCopy;
    hooks.Redraw = [] { Shell().Requests.RedrawMap = true; };
    wad::Wad().Writer.ShowInvisibleLines = test.Viewer.ShowInvisibleLines;
    wad::Wad().Writer.ClearSectorSpecials = test.Viewer.ClearSectorSpecials;
}

} // namespace

void TestLevelCommand(int /*number*/, CommandSource /*source*/)
{
    if (!PrepareTest())
    {
        return;
    }
    InstallTestHooks();
    (void)run::TestLevel(GetText(Shell().Project.LevelName));
    FinishTest();
}

void TestIn3DCommand(int /*number*/, CommandSource /*source*/)
{
    if (!PrepareTest())
    {
        return;
    }
    InstallTestHooks();
    const view::ViewState& view = view::View();
    (void)run::TestIn3D(view::ScreenToMapX(view.Viewport, view.Pointer.X),
                        view::ScreenToMapY(view.Viewport, view.Pointer.Y));
    FinishTest();
}

} // namespace kelvar::app
