// The save commands of the editor: checks, file, write, reload; backups and the crash save.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SaveDispatcher.h"

#include "app/LevelSave.h"
#include "app/PreSaveChecks.h"
#include "app/SaveTarget.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "map/GameCodes.h"
#include "map/MapState.h"
#include "platform/InstanceLock.h"
#include "platform/Messages.h"
#include "wad/Backup.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/GameIdentity.h"
#include "wad/LevelList.h"
#include "wad/SavePath.h"
#include "wad/WadState.h"

#include <chrono>
#include <thread>

namespace kelvar::app
{
namespace
{

// InFileOperation and BlockAutoSave for the length of a file command.
class FileOperation
{
public:
    FileOperation() : InFile(Session().InFileOperation), Block(Session().BlockAutoSave)
    {
        Session().InFileOperation = true;
        Session().BlockAutoSave = true;
    }
    ~FileOperation()
    {
        Session().InFileOperation = InFile;
        Session().BlockAutoSave = Block;
    }
    FileOperation(const FileOperation&) = delete;
    FileOperation& operator=(const FileOperation&) = delete;

private:
    bool InFile;
    bool Block;
};

std::string CurrentLevelName()
{
    const wad::WadState& wad = wad::Wad();
    const std::size_t marker = wad.CurrentFile.LevelStart;
    return marker < wad::Master().Size() ? wad::Master()[marker].Name.Text()
                                         : GetText(Shell().Project.LevelName);
}

std::string CurrentFilePath()
{
    const wad::WadState& wad = wad::Wad();
    const int number = wad.CurrentFile.FileNumber;
    return number >= 0 && number < wad::FileTableSize
               ? wad.Files[static_cast<std::size_t>(number)].FileName
               : std::string();
}

// The lock, the write, SaveBusy cleared: every path through the writer goes so.
int LockedWrite(const std::string& path, const std::string& oldPath, int code,
                const std::optional<wad::LumpReplace>& replace, const std::string& oldLevel = {})
{
    AcquireSaveLock();
    const int result = WriteLevelFile(map::Map().Level, path, oldPath, code, replace, oldLevel);
    map::Map().SaveBusy = false;
    return result;
}

// A new name for Save As: asked, checked against the game's level names.
std::optional<std::string> AskNewLevelName(const std::string& current)
{
    for (;;)
    {
        const std::optional<std::string> answer =
            platform::TheUi().AskText("Save Level As", "New level name", current);
        if (!answer)
        {
            return std::nullopt;
        }
        std::string name = *answer;
        for (char& c : name)
        {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        if (name.empty() || name.size() > 8)
        {
            continue;
        }
        const wad::LevelNameParts parts = wad::LevelNameKind(wad::LumpName::From(name));
        const int game = wad::Wad().Game.Game;
        const bool episodic = map::IsEpisodicGame(game);
        const bool fits =
            parts.Kind != wad::NotALevelName && (parts.Kind == wad::EpisodeMapName) == episodic;
        if (!fits && !platform::AskYesNo("Warning - You have selected a level name format\nthat "
                                         "is not this game's own (%s)\n\nUse it anyway?",
                                         name.c_str()))
        {
            continue;
        }
        return name;
    }
}

// Save As: the marker and the project's level name take the new name before the write and
// get the old one back if the write fails.
int SaveUnderNewName(int code, bool prompt)
{
    if (!RunSaveAsChecks())
    {
        return 0;
    }
    const std::string oldName = CurrentLevelName();
    const std::optional<std::string> newName = AskNewLevelName(oldName);
    if (!newName)
    {
        return 0;
    }
    const std::string oldPath = CurrentFilePath();
    const std::optional<std::string> path =
        ChooseSavePath(*newName, oldName, prompt, wad::Wad().Options.GroupSave);
    if (!path)
    {
        return 0;
    }
    wad::LumpDirectory& master = wad::Master();
    const std::size_t marker = wad::Wad().CurrentFile.LevelStart;
    master.Rename(marker, wad::LumpName::From(*newName));
    SetText(Shell().Project.LevelName, *newName);
    if (LockedWrite(*path, oldPath, code, std::nullopt, oldName) != 0)
    {
        master.Rename(marker, wad::LumpName::From(oldName));
        SetText(Shell().Project.LevelName, oldName);
        return 0;
    }
    return SaveDone;
}

} // namespace

void AcquireSaveLock()
{
    Session().MinutesSinceSave = 0;
    map::MapState& map = map::Map();
    const auto sleep = [](int milliseconds)
    { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); };
    for (int waits = 0; map.SaveBusy; ++waits)
    {
        if (waits == 21)
        {
            platform::ShowError("Stuck waiting for Save to finish?");
            break;
        }
        sleep(1000);
    }
    bool locked = false;
    for (int round = 0; round < 11 && !locked; ++round)
    {
        locked = platform::TryLockFirstByte(wad::Wad().LockFile);
        if (!locked)
        {
            sleep(500);
        }
    }
    if (!locked)
    {
        platform::ShowError("Permanent LOCK active?");
    }
    map.SaveBusy = true;
}

int SaveDispatcher(int code, const std::optional<wad::LumpReplace>& replace, bool prompt)
{
    FileOperation operation;
    if (!Session().LevelLoaded)
    {
        return 0;
    }
    ApplySaveSettings();
    int result = 0;
    if (code == wad::SaveLevelAsCode || code == wad::BuildNodesAsCode)
    {
        result = SaveUnderNewName(code, prompt);
    }
    else
    {
        const bool levelSave =
            code == wad::SaveLevelCode || code == wad::BuildNodesCode || code == wad::NewRejectCode;
        if (levelSave && !RunPreSaveChecks())
        {
            return 0;
        }
        const std::string level = CurrentLevelName();
        const std::string oldPath = CurrentFilePath();
        // A lump replace writes the level's own file with its group, without asking.
        const bool group = replace ? true : wad::Wad().Options.GroupSave;
        const std::optional<std::string> path =
            ChooseSavePath(level, level, replace ? false : prompt, group);
        if (path && LockedWrite(*path, oldPath, code, replace) == 0)
        {
            result = SaveDone;
        }
    }
    GatherSaveSettings();
    if (result == SaveDone)
    {
        Session().MinutesSinceSave = 0;
    }
    return result;
}

bool ReloadAfterSave()
{
    // The view stays where it was: the save doesn't move the map.
    return ReloadAllFiles(true);
}

bool QuickSaveBackup(bool exitForm)
{
    FileOperation operation;
    if (!Session().LevelLoaded)
    {
        return false;
    }
    ApplySaveSettings();
    if (exitForm)
    {
        const std::string level = CurrentLevelName();
        const std::string oldPath = CurrentFilePath();
        const std::optional<std::string> path =
            ChooseSavePath(level, level, true, wad::Wad().Options.GroupSave);
        return path && LockedWrite(*path, oldPath, wad::SaveLevelCode, std::nullopt) == 0;
    }
    if (map::Map().SaveBusy)
    {
        return false;
    }
    const std::string path = wad::BackupPathOf(CurrentFilePath());
    ++wad::Wad().AutoSaveCount;
    Shell().Requests.RefreshStatus = true;
    AcquireSaveLock();
    const int result = wad::WriteBackup(true, map::Map().Level, path);
    map::Map().SaveBusy = false;
    return result == 0;
}

bool CrashSave()
{
    const std::string path = (wad::Wad().ProgramDir / "CRASH.WAD").string();
    map::Map().SaveBusy = true;
    const int result = wad::WriteBackup(false, map::Map().Level, path);
    map::Map().SaveBusy = false;
    return result == 0;
}

void ApplySaveSettings()
{
    const ShellState& shell = Shell();
    wad::WadState& wad = wad::Wad();
    wad.Options.GroupSave = shell.Chk.GroupSave != 0;
    wad.Options.ExpertMode = shell.Chk.ExpertMode != 0;
    wad::SaveOptions& choices = wad.SaveChoices;
    const ProjectRecord& project = shell.Project;
    wad.Options.PlainScriptNames = project.PlainScriptNames != 0;
    choices.CopyReject = project.CopyReject != 0;
    choices.AllAttacks = project.AllAttacks != 0;
    choices.AttackStep = project.AttackStep;
    choices.UnusedCleanup = project.UnusedCleanup != 0;
    choices.ZeroNodes = project.ZeroNodes != 0;
    choices.ZeroReject = project.ZeroReject != 0;
    choices.ZeroBlockmap = project.ZeroBlockmap != 0;
    choices.CustomBuilder = project.CustomBuilder != 0;
    choices.ShowBuild = shell.Chk.ShowNodeBuild != 0;
    choices.SeeResults = shell.Chk.SeeNodeResults != 0;
}

void GatherSaveSettings()
{
    ShellState& shell = Shell();
    const wad::SaveOptions& choices = wad::Wad().SaveChoices;
    ProjectRecord& project = shell.Project;
    // A Group Save box the user changed in the Save dialog became the option.
    if (wad::Wad().Options.GroupSave != (shell.Chk.GroupSave != 0))
    {
        shell.Chk.GroupSave = wad::Wad().Options.GroupSave ? 257 : 0;
    }
    project.CopyReject = choices.CopyReject ? 1 : 0;
    project.AllAttacks = choices.AllAttacks ? 1 : 0;
    project.AttackStep = static_cast<std::uint8_t>(choices.AttackStep);
    project.RebuildNodes = choices.RebuildNodes ? 1 : 0;
    project.UnusedCleanup = choices.UnusedCleanup ? 1 : 0;
    project.ZeroNodes = choices.ZeroNodes ? 1 : 0;
    project.ZeroReject = choices.ZeroReject ? 1 : 0;
    project.ZeroBlockmap = choices.ZeroBlockmap ? 1 : 0;
    project.CustomBuilder = choices.CustomBuilder ? 1 : 0;
    shell.Chk.ShowNodeBuild = choices.ShowBuild ? 1 : 0;
    shell.Chk.SeeNodeResults = choices.SeeResults ? 1 : 0;
}

} // namespace kelvar::app
