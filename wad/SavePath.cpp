// Where a save goes: the target file chosen, the old file turned into its .BAK and back, and
// the lock that tells two running copies apart.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/Save.h"

#include "map/MapState.h"
#include "platform/Fatal.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/LevelList.h"
#include "wad/WadState.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace kelvar::wad
{
namespace
{

const LumpName BakMark = LumpName::From(".BAK");
const LumpName DelMark = LumpName::From("DEL");

void Sleep(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// A one-byte lock on KELVAR.LOK, let go at once: true when no other copy held it.
bool TryLockByte(std::FILE* file)
{
    if (file == nullptr)
    {
        return true;
    }
    struct flock lock
    {
    };
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0;
    lock.l_len = 1;
    if (::fcntl(::fileno(file), F_SETLK, &lock) != 0)
    {
        return false;
    }
    lock.l_type = F_UNLCK;
    (void)::fcntl(::fileno(file), F_SETLK, &lock);
    return true;
}

// The levels of the level list that file `fileNumber` supplies.
int LevelsOfFile(int fileNumber)
{
    int count = 0;
    for (const LevelListEntry& entry : Wad().Levels)
    {
        count += entry.FileNumber == fileNumber ? 1 : 0;
    }
    return count;
}

std::string BakNameOf(const std::string& path)
{
    const std::size_t slash = path.find_last_of('/');
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
    {
        return path + ".BAK";
    }
    return path.substr(0, dot) + ".BAK";
}

// Puts the record back under its own name and opens it again after a failed rename.
void RestoreRecord(FileRec& file, const std::string& path, const LumpName& firstLevel)
{
    file.FileName = path;
    file.FirstLevelName = firstLevel;
    file.Stream = CheckedOpen(path, "r+b", 0);
    file.State = file.Stream ? 'O' : 'C';
}

// Renames the level's own file to .BAK and reopens it under that name, so the master
// directory keeps describing bytes that stay readable while the new file is written.
bool TurnIntoBackup(int fileNumber)
{
    WadState& wad = Wad();
    FileRec& file = wad.Files[static_cast<std::size_t>(fileNumber)];
    const std::string path = file.FileName;
    const std::string bak = BakNameOf(path);
    const LumpName firstLevel = file.FirstLevelName;
    file.Stream.reset();
    file.State = 'C';
    file.FirstLevelName = BakMark;

    if (std::rename(path.c_str(), bak.c_str()) != 0)
    {
        const int error = errno;
        if (error == EACCES || error == EPERM || error == EROFS)
        {
            platform::ShowLastError(error);
            platform::ShowError("Error %d: Could not rename file\n\n%s\n-to-\n%s\n\nTry saving to "
                                "another filename\n",
                                WindowsErrorOf(error), path.c_str(), bak.c_str());
            RestoreRecord(file, path, firstLevel);
            return false;
        }
        if (std::remove(bak.c_str()) != 0 && errno != ENOENT)
        {
            platform::ShowError("Err %d: Could not delete file\n\n%s\n\nMake sure file is not in "
                                "use or readonly.\nTry saving to another filename\n",
                                WindowsErrorOf(errno), bak.c_str());
            RestoreRecord(file, path, firstLevel);
            return false;
        }
        if (std::rename(path.c_str(), bak.c_str()) != 0)
        {
            platform::ShowError("Err %d: Could not rename file\n\n%s\n-to-\n%s\n\nTry saving to "
                                "another filename\n",
                                WindowsErrorOf(errno), path.c_str(), bak.c_str());
            RestoreRecord(file, path, firstLevel);
            return false;
        }
    }
    file.FileName = bak;
    file.Stream = CheckedOpen(bak, "r+b", 0);
    if (!file.Stream)
    {
        platform::FatalError("could not reopen file : %s", bak.c_str());
    }
    file.State = 'O';
    wad.CurrentFile.FileNumber = fileNumber;
    return true;
}

// The Save PWAD name dialog. Nothing when cancelled.
std::optional<std::string> AskSavePath(const std::string& proposed, const std::string& readPath)
{
    for (;;)
    {
        platform::FileChoice choice;
        choice.Caption = "Save PWAD name";
        choice.Filter = "PWAD files (*.wad)|*.wad;*.WAD|";
        choice.InitialPath = proposed;
        choice.ForSaving = true;
        const std::optional<std::filesystem::path> picked = platform::TheUi().ChooseFile(choice);
        if (!picked)
        {
            return std::nullopt;
        }
        std::string path = picked->string();
        std::string probe = path;
        if (!SamePath(path, readPath) && FileInUse(probe, false, false) != 0)
        {
            platform::ShowError("! Duplicate File Name not Permitted !");
            continue;
        }
        std::error_code error;
        if (!SamePath(path, readPath) && std::filesystem::exists(path, error) &&
            !platform::AskYesNo("     OVERWRITE WARNING !\n\nOverwrite Existing File - %s ?",
                                path.c_str()))
        {
            continue;
        }
        return path;
    }
}

} // namespace

void AcquireSaveLock()
{
    WadState& wad = Wad();
    if (wad.Save.SaveClockReset)
    {
        wad.Save.SaveClockReset();
    }
    map::MapState& map = map::Map();
    for (int waits = 0; map.SaveBusy; ++waits)
    {
        if (waits == 21)
        {
            platform::ShowError("Stuck waiting for Save to finish?");
            break;
        }
        Sleep(1000);
    }
    bool locked = false;
    for (int round = 0; round < 11 && !locked; ++round)
    {
        locked = TryLockByte(wad.LockFile);
        if (!locked)
        {
            Sleep(500);
        }
    }
    if (!locked)
    {
        platform::ShowError("Permanent LOCK active?");
    }
    map.SaveBusy = true;
}

std::optional<std::string> ChooseSavePath(const std::string& newLevelName,
                                          const std::string& oldLevelName, bool ask, bool groupSave)
{
    WadState& wad = Wad();
    const int present = wad.CurrentFile.FileNumber;
    if (present < 0 || present >= FileTableSize)
    {
        return std::nullopt;
    }
    const int levelIndex = FindLevel(LumpName::From(newLevelName));
    const int targetFile =
        levelIndex < 0 ? -1 : wad.Levels[static_cast<std::size_t>(levelIndex)].FileNumber;
    const int levels = LevelsOfFile(present);
    const bool renamed = !SameName(LumpName::From(newLevelName), LumpName::From(oldLevelName));

    if (renamed && present > 0 && targetFile == present && levels > 1)
    {
        platform::ShowMessageLines(0, "create PWAD",
                                   {"This is in a PWAD with multiple Levels",
                                    "Use F7 - Export tool to extract individual levels"});
        return std::nullopt;
    }
    if (renamed && targetFile > 0 && targetFile != present)
    {
        platform::ShowMessageLines(platform::LinesError, "Save",
                                   {"You have read a PWAD file that is already using the same "
                                    "Level name",
                                    "(see Edit menu - use List Files to see"});
        return std::nullopt;
    }

    const std::string readPath = wad.Files[static_cast<std::size_t>(present)].FileName;
    std::string path = readPath;
    const bool ownFile = present == 0 || (renamed && levels == 1) || (levels > 1 && !groupSave);
    if (ownFile)
    {
        path = CompleteWadPath(newLevelName + ".wad").string();
    }
    if (levels > 1 && !groupSave && !wad.Options.ExpertMode)
    {
        platform::ShowMessageLines(0, "Group File",
                                   {"This level is in the Group File", readPath,
                                    "Select Group Save in F5 Options",
                                    "to default to the same file name"});
    }
    if (ask || present == 0)
    {
        const std::optional<std::string> chosen = AskSavePath(path, readPath);
        if (!chosen)
        {
            return std::nullopt;
        }
        path = *chosen;
    }

    // The IWAD is never written over, nor a file the session has open under another role.
    std::string probe = path;
    const int inUse = FileInUse(probe, false, false);
    if (inUse == -1 || (!SamePath(path, readPath) && inUse != 0))
    {
        (void)FileInUse(probe, true, false);
        return std::nullopt;
    }
    if (present > 0 && SamePath(path, readPath) && !TurnIntoBackup(present))
    {
        return std::nullopt;
    }
    return path;
}

int RestoreBak(const std::string& targetPath)
{
    WadState& wad = Wad();
    for (int i = 1; i < FileTableSize; ++i)
    {
        FileRec& file = wad.Files[static_cast<std::size_t>(i)];
        if (file.State != 0 && SameName(file.FirstLevelName, DelMark))
        {
            file = FileRec{};
        }
        if (file.State == 0 || !SameName(file.FirstLevelName, BakMark))
        {
            continue;
        }
        const std::string bak = file.FileName;
        file.Stream.reset();
        const std::size_t marker = wad.CurrentFile.LevelStart;
        file.FirstLevelName =
            marker < Master().Size() ? Master()[marker].Name : LumpName::From("MAP01");
        file.FileName = targetPath;
        if (std::rename(bak.c_str(), targetPath.c_str()) != 0)
        {
            platform::ShowError("FAILED TO RENAME %s to %s", bak.c_str(), targetPath.c_str());
            file.FileName = bak;
        }
        file.Stream = CheckedOpen(file.FileName, "r+b", 0);
        file.State = file.Stream ? 'O' : 'C';
        wad.CurrentFile.FileNumber = i;
    }
    return -1;
}

std::string BackupPathOf(const std::string& path)
{
    const std::string bak = BakNameOf(path);
    return bak.substr(0, bak.size() - 4) + ".BKP";
}

} // namespace kelvar::wad
