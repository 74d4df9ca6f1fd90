// The built-in projects and the writing of all control files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ControlFiles.h"

#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"
#include "platform/Messages.h"
#include "wad/WadState.h"

#include <algorithm>

namespace kelvar::app
{
namespace
{

// The vanilla projects run the Chocolate Doom program of their game; Boom and the later ports
// run dsda-doom. Where a port's own command-line words are stored, they stay as they were.
constexpr const char* Doom = "chocolate-doom";
constexpr const char* Port = "dsda-doom";
constexpr const char* NoExtra = ":";

constexpr ProjectRow Rows[] = {
    {"DOOM2", 2, "freedoom2.wad", Doom, "DOOM2.OPT", NoExtra, false, false, false},
    {"PLUTONIA", 2, "plutonia.wad", Doom, "DOOM2.OPT", NoExtra, false, false, false},
    {"TNT", 2, "tnt.wad", Doom, "DOOM2.OPT", NoExtra, false, false, false},
    {"JDOOM2", 2, "freedoom2.wad", Port, "JDOOM2.OPT", ":-maxzone 50M -game JDOOM.DLL", false,
     false, false},
    {"RISEN3D", 2, "freedoom2.wad", Port, "RISEN3D.OPT", NoExtra, true, false, false},
    {"R3KELVAR", 2, "freedoom2.wad", Port, "R3KELVAR.OPT", NoExtra, true, false, false},
    {"BOOM", 2, "freedoom2.wad", Port, "BOOM.OPT", NoExtra, true, false, false},
    {"ETERNITY", 2, "freedoom2.wad", Port, "ETERNITY.OPT", NoExtra, true, false, false},
    {"LEGACY", 2, "freedoom2.wad", Port, "LEGACY.OPT", ":-mb 30 -opengl", true, false, false},
    {"EDGE", 2, "freedoom2.wad", Port, "EDGE.OPT", NoExtra, true, false, false},
    {"ZDOOM", 2, "freedoom2.wad", Port, "ZDOOM.OPT", NoExtra, true, false, true},
    {"ZDOOMHEXEN", 2, "freedoom2.wad", Port, "ZDOOMHEXEN.OPT", NoExtra, false, true, true},
    {"SKULLTAG", 2, "freedoom2.wad", Port, "SKULLTAG.OPT", NoExtra, false, true, true},
    {"GZDOOMHEXEN", 2, "freedoom2.wad", Port, "GZDOOMHEXEN.OPT", NoExtra, false, true, true},
    {"DOOM1", 1, "freedoom1.wad", Doom, "DOOM1.OPT", NoExtra, false, false, false},
    {"HERETIC", 3, "heretic.wad", "chocolate-heretic", "HERETIC.OPT", NoExtra, false, false, false},
    // The missing blank of "50M- game" is as stored.
    {"JHERETIC", 3, "heretic.wad", Port, "HERETIC.OPT", ":-maxzone 50M- game JHERETIC.DLL", false,
     false, false},
    {"ZDOOMHERETIC", 3, "heretic.wad", Port, "ZDOOMHERETIC.OPT", NoExtra, false, true, true},
    {"HEXEN", 4, "hexen.wad", "chocolate-hexen", "HEXEN.OPT", NoExtra, false, false, false},
    {"JHEXEN", 4, "hexen.wad", Port, "HEXEN.OPT", ":-maxzone 50M- game JHEXEN.dll", false, false,
     false},
    {"STRIFE", 5, "strife1.wad", "chocolate-strife", "STRIFE.OPT", NoExtra, false, false, false},
    {"ZDOOMSTRIFE", 5, "strife1.wad", Port, "ZDOOMSTRIFE.OPT", NoExtra, false, true, true},
};

std::string ConfigFileOf(const ProjectRow& row)
{
    return ConfigFileName(row.Game, row.BoomTypes, row.ZdoomHexenFormat);
}

} // namespace

std::span<const ProjectRow> ProjectRows()
{
    return Rows;
}

ProjectRecord ProjectOfRow(const ProjectRow& row)
{
    ProjectRecord project = DefaultProject();
    PutDefaultUserTools(project);
    SetText(project.IwadPath, std::string(IwadFolder) + row.Iwad);
    SetText(project.GameExe, row.GameExe);
    SetText(project.OptFile, row.OptFile);
    SetText(project.ExtraParameters, row.ExtraParameters);
    SetText(project.TcfFile, std::string(row.Name) + ".TCF");
    project.BoomTypes = row.BoomTypes ? 1 : 0;
    project.ZdoomHexenFormat = row.ZdoomHexenFormat ? 1 : 0;
    PutCustomBuilderDefaults(project, row.Zennode);
    return project;
}

std::vector<std::string> ControlFileNames()
{
    std::vector<std::string> names{ChkFileName};
    const auto add = [&](const std::string& name)
    {
        if (std::find(names.begin(), names.end(), name) == names.end())
        {
            names.push_back(name);
        }
    };
    for (const ProjectRow& row : Rows)
    {
        add(std::string(row.Name) + ".PRJ");
        add(ConfigFileOf(row));
        add(std::string(row.Name) + ".TCF");
    }
    for (const char* tools : DefaultToolFileNames)
    {
        add(tools);
    }
    return names;
}

int BuildControlFiles(const std::filesystem::path& directory)
{
    const std::filesystem::path folder = StatusDirectory(directory);
    std::error_code error;
    std::filesystem::create_directories(folder, error); // a failure shows at the first save

    if (SaveChk(DefaultChk(), folder) != 1)
    {
        return 0;
    }
    for (const ProjectRow& row : Rows)
    {
        const std::string name(row.Name);
        if (SaveProject(ProjectOfRow(row), name + ".PRJ", folder) != 1 ||
            SaveGameConfig(DefaultGameConfig(row.Game, row.BoomTypes, row.ZdoomHexenFormat),
                           ConfigFileOf(row), folder) != 1 ||
            SaveTextureControl(DefaultTextureControl(row.Game), name + ".TCF", folder) != 1)
        {
            return 0;
        }
    }
    for (std::size_t i = 0; i < ToolFileCount; ++i)
    {
        if (SaveToolFile(DefaultToolFile(static_cast<int>(i) + 1), DefaultToolFileNames[i],
                         folder) != 1)
        {
            return 0;
        }
    }
    return 1;
}

std::span<const OptFileText> DefaultOptFiles()
{
    static constexpr OptFileText Files[] = {
#include "res/DefaultOptFiles.inc"
    };
    return Files;
}

int InstallDefaultOptFiles(const std::filesystem::path& directory)
{
    const std::filesystem::path folder = StatusDirectory(directory);
    int written = 0;
    for (const OptFileText& file : DefaultOptFiles())
    {
        const std::filesystem::path path = folder / file.Name;
        std::error_code error;
        if (std::filesystem::exists(path, error))
        {
            continue;
        }
        wad::StreamPtr stream(std::fopen(path.c_str(), "wb"));
        if (!stream ||
            std::fwrite(file.Text.data(), 1, file.Text.size(), stream.get()) != file.Text.size())
        {
            const std::string name = path.string();
            platform::ShowError("Can't write %s", name.c_str());
            stream.reset();
            std::filesystem::remove(path, error);
            continue;
        }
        ++written;
    }
    return written;
}

} // namespace kelvar::app
