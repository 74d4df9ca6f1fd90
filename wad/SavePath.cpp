// The old file of a save: turned into its .BAK while the new file is written, and back when
// the save stops.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/SavePath.h"

#include "platform/Fatal.h"
#include "platform/Messages.h"
#include "wad/CheckedFile.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/WadState.h"

#include <cerrno>
#include <cstdio>

namespace kelvar::wad
{
namespace
{

const LumpName BakMark = LumpName::From(".BAK");
const LumpName DelMark = LumpName::From("DEL");

// Puts the record back under its own name and opens it again after a failed rename.
void RestoreRecord(FileRec& file, const std::string& path, const LumpName& firstLevel)
{
    file.FileName = path;
    file.FirstLevelName = firstLevel;
    file.Stream = CheckedOpen(path, "r+b", 0);
    file.State = file.Stream ? 'O' : 'C';
}

} // namespace

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
