// The control files of a new installation, the built-in projects, and the shell's records as
// the WAD layer sees them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ControlFiles.h"
#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"
#include "tests/app/StatusTestKit.h"

#include <set>

namespace kelvar::app
{
namespace
{

using StatusControlFiles = StatusFixture;

// Loads a control file by its extension; the result of the load.
int LoadByExtension(const std::filesystem::path& file)
{
    const std::string extension = file.extension().string();
    const std::filesystem::path directory = file.parent_path();
    const std::filesystem::path name = file.filename();
    if (extension == ".CHK")
    {
        ChkRecord chk{};
        return LoadChk(chk, false, directory);
    }
    if (extension == ".PRJ")
    {
        ProjectRecord project{};
        return LoadProject(project, false, name, directory);
    }
    if (extension == ".DFG")
    {
        GameConfigRecord config{};
        return LoadGameConfig(config, false, name, directory);
    }
    if (extension == ".TCF")
    {
        TextureControlRecord tcf{};
        return LoadTextureControl(tcf, false, name, directory);
    }
    ToolRecord tools{};
    return LoadToolFile(tools, false, name, directory);
}

const ProjectRow& Row(std::string_view name)
{
    for (const ProjectRow& row : ProjectRows())
    {
        if (row.Name == name)
        {
            return row;
        }
    }
    ADD_FAILURE() << "no project " << name;
    return ProjectRows()[0];
}

TEST_F(StatusControlFiles, BuildIntoAMissingDirectoryWritesEveryFileAndEachLoads)
{
    const std::filesystem::path target = Dir.Path() / "new" / "kelvar";
    ASSERT_EQ(BuildControlFiles(target), 1);

    std::set<std::string> written;
    for (const auto& entry : std::filesystem::directory_iterator(target))
    {
        written.insert(entry.path().filename().string());
        EXPECT_EQ(LoadByExtension(entry.path()), StatusLoaded) << entry.path();
    }
    const std::vector<std::string> names = ControlFileNames();
    EXPECT_EQ(written, std::set<std::string>(names.begin(), names.end()));
    // KELVAR.CHK, 22 projects with their texture controls, 8 game configurations, 5 tool files.
    EXPECT_EQ(names.size(), 1u + 22 * 2 + 8 + 5);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(StatusControlFiles, BuildStopsAtTheFirstFileItCantWrite)
{
    testkit::WriteFile(Dir.Path() / "plain", "a file, not a folder");
    EXPECT_EQ(BuildControlFiles(Dir.Path() / "plain" / "kelvar"), 0);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Lines.at(0).rfind("Save CHK Status file open error?", 0), 0u);
}

TEST_F(StatusControlFiles, EachProjectNamesItsGameFilesAndPrograms)
{
    ASSERT_EQ(BuildControlFiles(), 1);
    ProjectRecord project{};
    const auto load = [&](const char* name)
    {
        EXPECT_EQ(LoadProject(project, false, std::string(name) + ".PRJ"), 1);
        return project;
    };

    load("DOOM1");
    EXPECT_EQ(GetText(project.IwadPath), "/usr/share/games/doom/freedoom1.wad");
    EXPECT_EQ(GetText(project.GameExe), "chocolate-doom");
    EXPECT_EQ(GetText(project.TcfFile), "DOOM1.TCF");
    EXPECT_EQ(project.ProjectMarker, NeverUsedMark);

    load("HEXEN");
    EXPECT_EQ(GetText(project.IwadPath), "/usr/share/games/doom/hexen.wad");
    EXPECT_EQ(GetText(project.GameExe), "chocolate-hexen");
    EXPECT_EQ(GetText(project.OptFile), "HEXEN.OPT");

    load("JHERETIC");
    EXPECT_EQ(GetText(project.ExtraParameters), ":-maxzone 50M- game JHERETIC.DLL");
    EXPECT_EQ(GetText(project.GameExe), "dsda-doom");

    load("BOOM");
    EXPECT_EQ(project.BoomTypes, 1);
    EXPECT_EQ(project.ZdoomHexenFormat, 0);
    EXPECT_EQ(GetText(project.CustomExe), "Glbsp.exe (for example replace with your location)");

    load("ZDOOMSTRIFE");
    EXPECT_EQ(project.ZdoomHexenFormat, 1);
    EXPECT_EQ(GetText(project.IwadPath), "/usr/share/games/doom/strife1.wad");
    EXPECT_EQ(GetText(project.CustomParameters), "-rz ~kelvar.wad %level -o $pwad");
    EXPECT_EQ(GetText(project.UserTools[0].Description), "NotePad");
}

TEST_F(StatusControlFiles, GameConfigurationsAndTextureControlsFollowTheGame)
{
    EXPECT_EQ(ConfigFileName(1, false, false), "DOOM1.DFG");
    EXPECT_EQ(ConfigFileName(2, true, false), "BOOM.DFG");
    EXPECT_EQ(ConfigFileName(3, false, true), "ZDOOMHERETIC.DFG");
    EXPECT_EQ(ConfigFileName(5, false, true), "ZDOOMHEXEN.DFG");
    EXPECT_EQ(ConfigFileName(4, false, false), "HEXEN.DFG");

    ASSERT_EQ(BuildControlFiles(), 1);
    GameConfigRecord config{};
    ASSERT_EQ(LoadGameConfig(config, false, "ZDOOMHERETIC.DFG"), 1);
    EXPECT_EQ(config.Format, 4);
    EXPECT_EQ(config.LevelEntries, 12);
    EXPECT_EQ(config.ExtendedTypes, 1);
    EXPECT_EQ(config.LineTypes.High, 255);
    ASSERT_EQ(LoadGameConfig(config, false, "STRIFE.DFG"), 1);
    EXPECT_EQ(config.Format, 5);
    EXPECT_EQ(config.LevelEntries, 11);
    EXPECT_EQ(config.ExtendedTypes, 0);

    // Projects of different games that share a configuration file write the same image, so
    // the file doesn't depend on which project was written last.
    for (const ProjectRow& row : ProjectRows())
    {
        const std::string file = ConfigFileName(row.Game, row.BoomTypes, row.ZdoomHexenFormat);
        ASSERT_EQ(LoadGameConfig(config, false, file), 1);
        EXPECT_TRUE(config == DefaultGameConfig(row.Game, row.BoomTypes, row.ZdoomHexenFormat))
            << row.Name << " and " << file;
    }

    TextureControlRecord tcf{};
    const std::pair<const char*, const char*> doors[] = {{"DOOM1.TCF", "BIGDOOR2"},
                                                         {"TNT.TCF", "BIGDOOR2"},
                                                         {"HERETIC.TCF", "DOORSTON"},
                                                         {"JHEXEN.TCF", "D_WD07"},
                                                         {"ZDOOMSTRIFE.TCF", "DORWL01"}};
    for (const auto& [file, door] : doors)
    {
        ASSERT_EQ(LoadTextureControl(tcf, false, file), 1) << file;
        EXPECT_EQ(NameText(tcf.DefaultDoor), door) << file;
        EXPECT_TRUE(tcf.CurrentCeiling == tcf.DefaultCeiling) << file;
    }
}

TEST_F(StatusControlFiles, WadOptionsFollowTheRecordsAndTheIwadComesBack)
{
    ChkRecord chk = DefaultChk();
    ProjectRecord project = ProjectOfRow(Row("ZDOOMHEXEN"));
    chk.AllowDuplicates = 1;
    chk.DuplicateLumpMsg = 0;
    chk.ExpertMode = 1;
    chk.NoIwadWarningMsg = 1;
    chk.AdditionalLumpEntries = 1234;
    project.GlNodes = 1;
    project.FileLimit = 50;
    SetText(project.DefaultPwadDir, "/home/me/wads");

    wad::WadOptions options;
    CopyToWadOptions(chk, project, options);
    EXPECT_EQ(options.IwadPath, "/usr/share/games/doom/freedoom2.wad");
    EXPECT_TRUE(options.ProjectNeverUsed);
    EXPECT_TRUE(options.ZdoomHexenFormat);
    EXPECT_FALSE(options.BoomTypes);
    EXPECT_TRUE(options.GlNodes);
    EXPECT_TRUE(options.AllowDuplicates);
    EXPECT_FALSE(options.DuplicateLumpMsg);
    EXPECT_TRUE(options.ExpertMode);
    EXPECT_TRUE(options.NoIwadWarningMsg);
    EXPECT_EQ(options.AdditionalLumpEntries, 1234);
    EXPECT_EQ(options.FileLimit, 50);
    EXPECT_EQ(options.LevelListLimit, 200);
    EXPECT_EQ(options.DefaultPwadDir, "/home/me/wads");

    MarkProjectUsed(project);
    CopyToWadOptions(chk, project, options);
    EXPECT_FALSE(options.ProjectNeverUsed);

    options.IwadPath = "/games/doom2.wad";
    EXPECT_TRUE(CopyIwadPathToProject(options, project));
    EXPECT_EQ(GetText(project.IwadPath), "/games/doom2.wad");
    options.IwadPath = "/" + std::string(127, 'x');
    EXPECT_FALSE(CopyIwadPathToProject(options, project));
    EXPECT_EQ(GetText(project.IwadPath), "/games/doom2.wad");

    // The built-in records agree with the WAD layer's own defaults.
    wad::WadOptions fresh;
    wad::WadOptions fromRecords;
    CopyToWadOptions(DefaultChk(), DefaultProject(), fromRecords);
    EXPECT_EQ(fromRecords.IwadPath, fresh.IwadPath);
    EXPECT_EQ(fromRecords.AdditionalLumpEntries, fresh.AdditionalLumpEntries);
    EXPECT_EQ(fromRecords.FileLimit, fresh.FileLimit);
    EXPECT_EQ(fromRecords.DuplicateLumpMsg, fresh.DuplicateLumpMsg);
}

TEST_F(StatusControlFiles, SavingTheSessionMarksTheProjectUsed)
{
    Shell().Chk.GridSize = 16;
    SetText(Shell().Chk.ProjectFile, "MINE.prj");
    ASSERT_EQ(SaveChkAndProject(), 1);
    EXPECT_EQ(Shell().Project.ProjectMarker, EndMark);

    ChkRecord chk{};
    ProjectRecord project{};
    ASSERT_EQ(LoadChk(chk, false), 1);
    EXPECT_EQ(chk.GridSize, 16);
    ASSERT_EQ(LoadProject(project, false, "MINE.PRJ"), 1);
    EXPECT_EQ(project.ProjectMarker, EndMark);
    EXPECT_EQ(project.ListMarker, EndMark);
}

TEST_F(StatusControlFiles, TextEditorComesFromVisualThenEditorThenXdgOpen)
{
    EXPECT_EQ(DefaultTextEditor(), "xdg-open");
    setenv("EDITOR", "vi", 1);
    EXPECT_EQ(DefaultTextEditor(), "vi");
    setenv("VISUAL", "gedit --wait", 1);
    EXPECT_EQ(DefaultTextEditor(), "gedit --wait");
    EXPECT_EQ(GetText(DefaultChk().TextEditor), "gedit --wait");
    setenv("VISUAL", std::string(128, 'v').c_str(), 1); // can't be stored: passed over
    EXPECT_EQ(DefaultTextEditor(), "vi");
    unsetenv("VISUAL");
    unsetenv("EDITOR");
}

} // namespace
} // namespace kelvar::app
