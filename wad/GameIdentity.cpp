// Choosing the IWAD and telling which game it belongs to.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/GameIdentity.h"

#include "map/GameCodes.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/LevelList.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstdlib>

namespace kelvar::wad
{
namespace
{

bool HasLump(std::string_view name)
{
    const LumpDirectory& master = Master();
    return master.FindLast(LumpName::From(name), 0, master.Size()) >= 0;
}

int IdentifyGameNumber(GameIdentity& game)
{
    const LumpDirectory& master = Master();
    const int lastThings = master.FindLast(LumpName::From("THINGS"), 0, master.Size());
    const bool mapNames =
        lastThings > 0 && master[static_cast<std::size_t>(lastThings) - 1].Name.StartsWith("MAP");
    if (HasLump("SARGA1"))
    {
        return mapNames ? map::GameDoom2 : map::GameDoom;
    }
    if (!mapNames)
    {
        return 3;
    }
    if (HasLump("MAGEA1"))
    {
        return 4;
    }
    const int pnames = master.FindLast(LumpName::From("PNAMES"), 0, master.Size());
    if (HasLump("PEASA1"))
    {
        // The full Strife file keeps its texture records in the narrower layout.
        if (pnames >= 0 && master[static_cast<std::size_t>(pnames)].Size >= 5141)
        {
            game.TextureHeadSize = 18;
            game.TexturePatchSize = 6;
            game.TexturePatchCountIndex = 8;
        }
        return 5;
    }
    platform::ShowError(
        "Unable to identify IWAD type\n\nDOOM2 is assumed\n\nUse a stock IWAD to fix this "
        "problem");
    return 2;
}

// One depth-first walk: the directory's own files first, then its subdirectories, each
// listing sorted so the walk is the same on every run. Returns 1 found, -1 stopped.
int WalkForIwad(const std::filesystem::path& directory, const std::string& wanted,
                const std::string& caption, int depth, std::filesystem::path& found)
{
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress(caption, directory.string());
    if (ui.PollEscape() &&
        platform::AskYesNo(
            " Volume Scan Interrupted\n\nDo you want to stop ?\nConfirm Stop - Find IWAD"))
    {
        return -1;
    }
    std::error_code error;
    std::vector<std::filesystem::directory_entry> files;
    std::vector<std::filesystem::path> folders;
    for (std::filesystem::directory_iterator
             it(directory, std::filesystem::directory_options::skip_permission_denied, error),
         end;
         !error && it != end; it.increment(error))
    {
        const std::filesystem::directory_entry& entry = *it;
        const std::string name = entry.path().filename().string();
        if (entry.is_symlink(error) && entry.is_directory(error))
        {
            continue; // a linked folder could lead the walk round in circles
        }
        if (entry.is_directory(error))
        {
            if (name != "." && name != ".." && name[0] != '.')
            {
                folders.push_back(entry.path());
            }
        }
        else if (UpperText(name) == wanted)
        {
            files.push_back(entry);
        }
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files)
    {
        std::string path = file.path().string();
        if (PathFitsRecord(path))
        {
            found = file.path();
            return 1;
        }
    }
    if (depth <= 0)
    {
        return 0;
    }
    std::sort(folders.begin(), folders.end());
    for (const auto& folder : folders)
    {
        const int result = WalkForIwad(folder, wanted, caption, depth - 1, found);
        if (result != 0)
        {
            return result;
        }
    }
    return 0;
}

} // namespace

FormatNames NamesOfFormat(int format, int game, bool boomTypes, bool zdoomHexenFormat)
{
    switch (format)
    {
    case map::GameDoom:
    case map::GameDoom2:
        return {boomTypes ? "BOOM" : "DOOM",
                boomTypes ? "BOOM.DFG" : (format == map::GameDoom ? "DOOM1.DFG" : "DOOM2.DFG"), 11};
    case map::GameHeretic:
        return {"HERETIC", "HERETIC.DFG", 11};
    case map::GameStrife:
        return {"STRIFE", "STRIFE.DFG", 11};
    default:
        if (!zdoomHexenFormat)
        {
            return {"HEXEN", "HEXEN.DFG", 12};
        }
        return {"ZDOOM", game == map::GameHeretic ? "ZDOOMHERETIC.DFG" : "ZDOOMHEXEN.DFG", 12};
    }
}

const char* GameName(int game)
{
    switch (game)
    {
    case map::GameDoom:
        return "Doom, Ultimate Doom";
    case map::GameDoom2:
        return "Doom 2, Final Doom";
    case map::GameHeretic:
        return "Heretic";
    case map::GameHexen:
        return "Hexen";
    case map::GameStrife:
        return "Strife";
    default:
        return "unknown";
    }
}

void IdentifyGame()
{
    WadState& wad = Wad();
    GameIdentity& game = wad.Game;
    // The IWAD's own BEHAVIOR, as its scan saw it: the spare slots of the master directory
    // are named BEHAVIOR too.
    const bool hasBehavior = game.IwadHasBehavior;
    game = GameIdentity{};
    game.IwadHasBehavior = hasBehavior;
    game.Game = IdentifyGameNumber(game);
    game.Format = game.Game;
    if (hasBehavior || wad.Options.ZdoomHexenFormat)
    {
        game.Format = map::GameHexen;
    }
    wad.Files[0].LevelLayout = hasBehavior ? map::LayoutHexen : map::LayoutDoom;
    game.ExtendedTypes = ((game.Format == map::GameDoom || game.Format == map::GameDoom2) &&
                          wad.Options.BoomTypes) ||
                         (game.Format == map::GameHexen && wad.Options.ZdoomHexenFormat);
    FormatNames names =
        NamesOfFormat(game.Format, game.Game, wad.Options.BoomTypes, wad.Options.ZdoomHexenFormat);
    game.DisplayName = std::move(names.DisplayName);
    game.ConfigFile = std::move(names.ConfigFile);
    game.ExpectedLevelEntries = names.ExpectedLevelEntries;
}

int ScanMainIwad(const std::string& path)
{
    WadState& wad = Wad();
    CloseFiles('A', true, false);
    wad.Game = GameIdentity{};
    wad.OtherGameLevels = 0;
    if (OpenWad(path, "IWAD", true) != 0)
    {
        return 0;
    }
    IdentifyGame();
    ListMasterLevels();
    if (wad.Game.Format != map::GameHexen && wad.Game.IwadHasBehavior)
    {
        platform::ShowError("IWAD %s\nhas BEHAVIOR\nPlease select a different IWAD", path.c_str());
        return 0;
    }
    if (wad.Game.Format == map::GameHexen && !wad.Game.IwadHasBehavior && !wad.IwadBehaviorWarned &&
        !wad.Options.NoIwadWarningMsg)
    {
        wad.IwadBehaviorWarned = true;
        platform::ShowError(
            "IWAD %s\ndoes not have BEHAVIOR\nPlease convert the IWAD using ZWADCONV\n\nUse "
            "F5 Options and set IWAD message to bypass this message and not reset "
            "anything\n\n",
            path.c_str());
    }
    return 1;
}

int SelectMainIwad(bool firstRun)
{
    WadState& wad = Wad();
    wad.OtherGameLevels = 0;
    std::string& iwad = wad.Options.IwadPath;

    if (!firstRun && !wad.Options.ProjectNeverUsed)
    {
        if (ScanMainIwad(iwad) == 1)
        {
            return 1;
        }
    }
    else
    {
        std::string candidate = iwad;
        if (CheckFileType(candidate, "IWAD", false, 0) > 0 &&
            platform::AskYesNo(
                "IWAD = %s found!!\n\nIs this the IWAD to use for this project?\n\nPress NO "
                "to choose the file yourself\n",
                iwad.c_str()) &&
            ScanMainIwad(iwad) == 1)
        {
            return 1;
        }
    }

    for (;;)
    {
        const int answer = platform::ShowMessageLines(
            platform::LinesCancel, "find IWAD",
            {"!! No Main IWAD found !!", "Press Continue to have Kelvar find it for you",
             "Press Cancel to choose the file yourself"},
            platform::MessageButtons::OkCancel);
        if (answer == 1)
        {
            const std::optional<std::filesystem::path> found = SearchForIwad(iwad);
            if (found)
            {
                iwad = found->string();
                platform::ShowMessageLines(0, "found IWAD", {iwad});
                if (wad.Hooks.SaveStatusFiles)
                {
                    wad.Hooks.SaveStatusFiles();
                }
                if (ScanMainIwad(iwad) == 1)
                {
                    return 1;
                }
            }
            continue;
        }

        platform::FileChoice choice;
        choice.Caption = "Game IWAD file";
        choice.Filter = "IWAD files (*.wad)|*.wad;*.WAD|";
        choice.InitialPath = std::filesystem::path(iwad).parent_path();
        choice.NameLimit = MaxRecordPathLength;
        const std::optional<std::filesystem::path> chosen = platform::TheUi().ChooseFile(choice);
        if (!chosen)
        {
            platform::ShowMessageLines(
                0, "Games",
                {"You MUST have one of the following", "Games installed on your system:",
                 "      Doom/Ultimate Doom", "      Doom2/Final Doom", "      Heretic",
                 "      Hexen", "      Strife", "Please select an IWAD or New Project",
                 "If you don't do either, please EXIT Kelvar!"});
            return 0;
        }
        std::string picked = chosen->string();
        if (PathFitsRecord(picked) && ScanMainIwad(picked) == 1)
        {
            iwad = picked;
            if (wad.Hooks.SaveStatusFiles)
            {
                wad.Hooks.SaveStatusFiles();
            }
            return 1;
        }
    }
}

std::vector<std::filesystem::path> IwadSearchFolders()
{
    std::vector<std::filesystem::path> folders;
    const auto add = [&](const std::filesystem::path& folder)
    {
        if (!folder.empty() && std::find(folders.begin(), folders.end(), folder) == folders.end())
        {
            folders.push_back(folder);
        }
    };
    const auto addList = [&](const char* variable, const char* suffix)
    {
        const char* value = std::getenv(variable);
        if (value == nullptr)
        {
            return;
        }
        std::string list(value);
        std::size_t start = 0;
        while (start <= list.size())
        {
            const std::size_t end = std::min(list.find(':', start), list.size());
            if (end > start)
            {
                add(std::filesystem::path(list.substr(start, end - start)) / suffix);
            }
            start = end + 1;
        }
    };
    addList("DOOMWADDIR", "");
    addList("DOOMWADPATH", "");
    const char* home = std::getenv("HOME");
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    if (dataHome != nullptr && dataHome[0] == '/')
    {
        add(std::filesystem::path(dataHome) / "games/doom");
    }
    else if (home != nullptr)
    {
        add(std::filesystem::path(home) / ".local/share/games/doom");
    }
    addList("XDG_DATA_DIRS", "games/doom");
    add("/usr/local/share/games/doom");
    add("/usr/share/games/doom");
    add("/usr/local/share/doom");
    add("/usr/share/doom");
    if (home != nullptr)
    {
        add(home); // the user's own files, as the last resort
    }
    return folders;
}

std::optional<std::filesystem::path> SearchForIwad(const std::filesystem::path& stored)
{
    const std::string wanted = UpperText(stored.filename().string());
    if (wanted.empty())
    {
        return std::nullopt;
    }
    const std::string caption =
        platform::Format("(press ESC to cancel) Searching for IWAD %s", wanted.c_str());
    std::vector<std::filesystem::path> roots;
    if (stored.has_parent_path())
    {
        roots.push_back(stored.parent_path());
    }
    for (const auto& folder : IwadSearchFolders())
    {
        if (std::find(roots.begin(), roots.end(), folder) == roots.end())
        {
            roots.push_back(folder);
        }
    }
    std::optional<std::filesystem::path> result;
    for (const auto& root : roots)
    {
        std::error_code error;
        if (!std::filesystem::is_directory(root, error))
        {
            continue;
        }
        std::filesystem::path found;
        const int outcome = WalkForIwad(root, wanted, caption, 8, found);
        if (outcome == 1)
        {
            result = found;
        }
        if (outcome != 0)
        {
            break;
        }
    }
    platform::TheUi().EndProgress();
    return result;
}

} // namespace kelvar::wad
