// The file a save writes, chosen and checked.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SaveTarget.h"

#include "platform/Messages.h"
#include "wad/FileChecks.h"
#include "wad/LevelList.h"
#include "wad/SavePath.h"
#include "wad/WadState.h"

#include <filesystem>

namespace kelvar::app
{
namespace
{

using wad::FileInUse;
using wad::SamePath;

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

std::optional<std::string> ChooseSavePath(const std::string& newLevelName,
                                          const std::string& oldLevelName, bool ask, bool groupSave)
{
    wad::WadState& wad = wad::Wad();
    const int present = wad.CurrentFile.FileNumber;
    if (present < 0 || present >= wad::FileTableSize)
    {
        return std::nullopt;
    }
    const int levelIndex = wad::FindLevel(wad::LumpName::From(newLevelName));
    const int targetFile =
        levelIndex < 0 ? -1 : wad.Levels[static_cast<std::size_t>(levelIndex)].FileNumber;
    const int levels = wad::LevelsOfFile(present);
    const bool renamed =
        !wad::SameName(wad::LumpName::From(newLevelName), wad::LumpName::From(oldLevelName));

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
        path = wad::CompleteWadPath(newLevelName + ".wad").string();
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
    if (present > 0 && SamePath(path, readPath) && !wad::TurnIntoBackup(present))
    {
        return std::nullopt;
    }
    return path;
}

} // namespace kelvar::app
