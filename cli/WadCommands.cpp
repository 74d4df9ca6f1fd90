// kelvar-cli commands over the WAD directory (lumps, levels), and opening a level for the others.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/WadCommands.h"

#include "cli/Commands.h"
#include "game/GameState.h"
#include "gfx/LumpKind.h"
#include "map/MapState.h"
#include "wad/FileChecks.h"
#include "wad/FileTable.h"
#include "wad/GameIdentity.h"
#include "wad/LevelList.h"
#include "wad/LevelReader.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

#include <cstdio>

namespace kelvar::cli
{
namespace
{

// A lump name as printable text: bytes outside plain ASCII are shown as \xNN.
std::string Printable(const wad::LumpName& name)
{
    std::string text;
    for (const char c : name.Text())
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte >= 127)
        {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", byte);
            text += escaped;
        }
        else
        {
            text += c;
        }
    }
    return text;
}

// The editor goes on to other choices when a file is simply not there; a batch run has none,
// so it says so (" %s  not found!").
bool Exists(const std::string& path)
{
    std::string probe = path;
    return wad::CheckFileType(probe, "", true, 1) != 0;
}

} // namespace

int OpenFiles(const std::vector<std::string>& files)
{
    wad::Wad().Options.IwadPath = files[0];
    if (!Exists(files[0]) || wad::ScanMainIwad(files[0]) != 1)
    {
        return ExitBadFile;
    }
    int status = ExitOk;
    for (std::size_t i = 1; i < files.size(); ++i)
    {
        if (!Exists(files[i]) || wad::AddOpenFile(files[i], true) < 0)
        {
            status = ExitBadFile;
        }
    }
    return status;
}

int OpenLevel(const std::vector<std::string>& files, const std::string& levelName, bool& loaded,
              bool newLevel)
{
    loaded = false;
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    if (wad::FindLevel(wad::LumpName::From(levelName)) < 0)
    {
        std::fprintf(stderr, "kelvar-cli: no level %s in these files\n", levelName.c_str());
        return ExitBadFile;
    }
    (void)wad::ReadLevel(map::Map().Level, levelName, newLevel);
    game::SelectGameTables(); // Things in their symbols and colours, type names
    loaded = true;
    return status;
}

int ListLumps(const std::vector<std::string>& files)
{
    const int status = OpenFiles(files);
    if (wad::Wad().Files[0].State == 0)
    {
        return status;
    }
    wad::BuildMarkerLists(); // the flat runs, which tell a flat by its name
    const wad::LumpDirectory& master = wad::Master();
    std::printf("%6s  %-8s  %4s  %10s  %10s  %s\n", "index", "name", "file", "offset", "size",
                "kind");
    // The lumps of a level show the level's kind, not what their bytes happen to look like.
    std::size_t levelEnd = 0;
    std::string_view levelKind;
    for (std::size_t i = 0; i < master.Size(); ++i)
    {
        std::string_view kind = levelKind;
        if (i >= levelEnd)
        {
            const gfx::EntryClass found = gfx::ClassifyDirectoryEntry("", static_cast<int>(i));
            kind = found.KindName;
            levelEnd = i + static_cast<std::size_t>(found.LevelLumpCount);
            levelKind = kind;
        }
        const wad::LumpEntry& entry = master[i];
        const std::string name = Printable(entry.Name);
        std::printf("%6zu  %-8s  %4d  %10d  %10d  %.*s\n", i, name.c_str(), entry.FileNumber,
                    entry.Offset, entry.Size, static_cast<int>(kind.size()), kind.data());
    }
    return status;
}

int ListLevels(const std::vector<std::string>& files)
{
    const int status = OpenFiles(files);
    const wad::WadState& state = wad::Wad();
    if (state.Files[0].State == 0)
    {
        return status;
    }
    const wad::GameIdentity& game = state.Game;
    std::printf("game %d: %s\n", game.Game, wad::GameName(game.Game));
    std::printf("format %d: %s, %s, %d entries a level\n", game.Format, game.DisplayName.c_str(),
                game.ConfigFile.c_str(), game.ExpectedLevelEntries);
    std::printf("levels: %zu\n", state.Levels.size());
    for (const wad::LevelListEntry& level : state.Levels)
    {
        const std::string name = Printable(level.Name);
        const auto number = static_cast<std::size_t>(level.FileNumber);
        const std::string& file =
            number < state.Files.size() ? state.Files[number].FileName : std::string();
        std::printf("%-8s  %3d  %s\n", name.c_str(), level.FileNumber, file.c_str());
    }
    return status;
}

} // namespace kelvar::cli
