// The handlers of the PWAD commands of the File menu: Open PWAD with the recent PWADs, Close
// All Files and Close 1 File.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Modes.h"
#include "app/RecentLists.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/GameCodes.h"
#include "platform/Messages.h"
#include "wad/FileTable.h"
#include "wad/LevelList.h"
#include "wad/WadScan.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kelvar::app
{
namespace
{

// Layout bits of LevelsLayouts.
constexpr int DoomLayoutBit = 1;
constexpr int HexenLayoutBit = 2;

// The file commands work on the files of a session: without a scanned IWAD (its scan failed
// at the last reload) there is nothing to lay a PWAD over or to close.
bool FilesAreOpen()
{
    return wad::Wad().Files[0].State != 0;
}

std::optional<std::string> PickPwad()
{
    platform::FileChoice choice;
    choice.Caption = "Open PWAD";
    choice.Filter = "PWAD files (*.wad)|*.wad;*.WAD|";
    choice.InitialPath = GetText(Shell().Project.DefaultPwadDir);
    choice.NameLimit = wad::MaxPathLength;
    const std::optional<std::filesystem::path> picked = platform::TheUi().ChooseFile(choice);
    if (!picked || picked->empty())
    {
        return std::nullopt;
    }
    return picked->string();
}

// The layouts of the levels of a WAD file, as bits; 0 for a file without levels and for one
// that isn't a readable WAD (opening it says why).
int LevelsLayouts(const std::string& path)
{
    const wad::StreamPtr stream(std::fopen(path.c_str(), "rb"));
    if (!stream)
    {
        return 0;
    }
    std::string magic;
    const std::vector<wad::LumpEntry> entries = wad::ReadDirectoryQuietly(stream.get(), &magic);
    if (magic != "PWAD" && magic != "IWAD")
    {
        return 0;
    }
    int layouts = 0;
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        int count = 1;
        const int layout = wad::LevelAt(entries, i, entries.size(), count);
        if (layout != map::LayoutNone)
        {
            layouts |= layout == map::LayoutHexen ? HexenLayoutBit : DoomLayoutBit;
            i += static_cast<std::size_t>(count - 1);
        }
    }
    return layouts;
}

// The question for a file with levels of the other layout than the project's: true when the
// user wants to switch projects.
bool AskToSwitchProjects(const std::string& path)
{
    const bool hexenProject = wad::Wad().Game.Format == map::GameHexen;
    const int other = LevelsLayouts(path) & (hexenProject ? DoomLayoutBit : HexenLayoutBit);
    if (other == 0)
    {
        return false;
    }
    return hexenProject ? platform::AskYesNo("DOOM format Level and you are editing HEXEN "
                                             "levels\nDo you want to switch Projects?")
                        : platform::AskYesNo("HEXEN format Level and you are editing DOOM "
                                             "levels\nDo you want to switch Projects?");
}

// Lays the PWAD over the master directory, puts it first on the recent list and reads its
// first level, or the level in the editor again when it has none.
void OpenChosenPwad(const std::string& path)
{
    wad::WadState& wad = wad::Wad();
    const int slot = wad::NameTableSlot(path);
    if (slot < 0)
    {
        platform::ShowError("Maximum of %hd files exceeded",
                            static_cast<short>(wad::NameTableSize));
        return;
    }
    std::string& entry = wad.OpenFiles[static_cast<std::size_t>(slot)];
    entry = path;
    ProjectRecord& project = Shell().Project;
    GatherSettings();
    const double x = project.ViewX;
    const double y = project.ViewY;
    const int number = wad::OpenPwad(path, true, true);
    if (number < 0)
    {
        // Refused (the reason was shown): it doesn't stay in the session's list.
        entry.clear();
        project.ViewX = x;
        project.ViewY = y;
        return;
    }
    (void)AddRecentPwad(project, path);
    const wad::LumpName first = wad.Files[static_cast<std::size_t>(number)].FirstLevelName;
    if (!first.Text().empty() && wad::FindLevel(first) >= 0)
    {
        SetText(project.LevelName, first.Text());
    }
    else
    {
        // A PWAD of resources only: the level in the editor stays, and so does the view.
        project.ViewX = x;
        project.ViewY = y;
    }
    SessionState& session = Session();
    const bool withoutAsking = session.OpenLevelWithoutAsking;
    session.OpenLevelWithoutAsking = true;
    (void)LoadCurrentLevel(false, false);
    session.OpenLevelWithoutAsking = withoutAsking;
    GatherSettings();
    (void)SaveChkAndProject();
    Shell().Requests.MenuStateChanged = true;
}

// Open PWAD from its question on: `path` is the file when it is known already (a recent
// PWAD, or the file of a project switch), else the dialog asks for it.
void OpenPwadFrom(std::string path, bool askAboutChanges)
{
    if (!FilesAreOpen() || (askAboutChanges && !ContinueWithUnsavedChanges()))
    {
        return;
    }
    if (path.empty())
    {
        const std::optional<std::string> picked = PickPwad();
        if (!picked)
        {
            return;
        }
        path = *picked;
    }
    if (AskToSwitchProjects(path))
    {
        // The file is opened again in the new project, which asks once more if its layout
        // still differs; a project choice given up opens nothing.
        if (SwitchProject())
        {
            OpenPwadFrom(path, false);
        }
        return;
    }
    OpenChosenPwad(path);
}

// The PWADs of the name table, in overlay order.
std::vector<std::string> ListedPwads()
{
    std::vector<std::string> names;
    for (const std::string& name : wad::Wad().OpenFiles)
    {
        if (!name.empty())
        {
            names.push_back(name);
        }
    }
    return names;
}

// True when the level in the editor comes from the file `path`.
bool LevelComesFrom(const std::string& path)
{
    const wad::WadState& wad = wad::Wad();
    const int number = wad.CurrentFile.FileNumber;
    return number > 0 && number < wad::FileTableSize &&
           wad.Files[static_cast<std::size_t>(number)].FileName == path;
}

} // namespace

void OpenPwadCommand(int /*number*/, CommandSource /*source*/)
{
    OpenPwadFrom(std::exchange(Shell().Commands.OpenPwadName, {}), true);
}

void CloseAllFilesCommand(int /*number*/, CommandSource /*source*/)
{
    if (!FilesAreOpen() || !ContinueWithUnsavedChanges())
    {
        return;
    }
    wad::CloseFiles('A', true, true);
    wad::Wad().OpenFiles.fill({});
    // The IWAD's level of the same name is another map: it is centred.
    (void)ReloadAllFiles(false);
    GatherSettings();
    (void)SaveChkAndProject();
}

void CloseOneFileCommand(int /*number*/, CommandSource /*source*/)
{
    const std::vector<std::string> names = ListedPwads();
    if (!FilesAreOpen() || names.empty())
    {
        return;
    }
    const std::optional<int> chosen =
        platform::TheUi().ChooseFromList("Select File to Reset", names);
    if (!chosen || *chosen < 0 || static_cast<std::size_t>(*chosen) >= names.size() ||
        !ContinueWithUnsavedChanges())
    {
        return;
    }
    const std::string& path = names[static_cast<std::size_t>(*chosen)];
    const bool keepView = !LevelComesFrom(path);
    for (std::string& name : wad::Wad().OpenFiles)
    {
        if (name == path)
        {
            name.clear();
        }
    }
    (void)ReloadAllFiles(keepView);
    GatherSettings();
    (void)SaveChkAndProject();
}

bool AnyPwadListed()
{
    return !ListedPwads().empty();
}

} // namespace kelvar::app
