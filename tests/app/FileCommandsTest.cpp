// Tests of the File menu's commands on Freedoom 2: Open PWAD and the recent PWADs, the question
// about another level layout, Close All Files, Close 1 File, New Level, Choose Game Project
// and Choose Texture Group.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CommandHandlers.h"
#include "app/Menus.h"
#include "app/RecentLists.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "tests/app/StatusTestKit.h"
#include "tests/testkit/LevelBuilder.h"
#include "view/ViewState.h"
#include "wad/LevelList.h"

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

using testkit::LevelBuilder;
using testkit::LevelLayout;
using testkit::WadBuilder;

constexpr const char* UnsavedQuestion = " You have unsaved Changes. Continue ?";

class FileCommandsTest : public StatusFixture
{
protected:
    void SetUp() override
    {
        StatusFixture::SetUp();
        ResetSession();
        map::ResetMap();
        view::ResetView();
        game::ResetGame();
        // A first start to Freedoom 2 MAP01 in a program directory of its own.
        ProcessStart({}, Dir.Path() / "");
        ASSERT_TRUE(CheckSecondCopy());
        ASSERT_EQ(CreateSession(nullptr), CommandFirstStartup);
        Ui.AnswerFile(Dir.Path() / "DOOM2.PRJ").Answer(1).AnswerList(0);
        ASSERT_TRUE(RunStartupCommand(CommandFirstStartup));
        Map01Lines = map::Map().Level.LineDefs.Count();
        Ui.Clear();
    }

    void TearDown() override
    {
        ShutdownOnce(0, 0, 800, 600);
        ResetSession();
        StatusFixture::TearDown();
    }

    /// A PWAD holding one square room as `level`, and lumps of its own when given.
    std::string RoomPwad(const std::string& file, const std::string& level,
                         LevelLayout layout = LevelLayout::Doom, int rooms = 1)
    {
        LevelBuilder builder;
        for (int i = 0; i < rooms; ++i)
        {
            builder.Room(i * 256, 0, 128, 128);
        }
        builder.Thing(64, 64, 1);
        WadBuilder wad;
        builder.WriteTo(wad, level, layout);
        wad.Lump("KELVLUMP", file);
        return wad.Write(Dir.Path() / file);
    }

    /// Open PWAD through its file dialog.
    CommandResult Open(const std::string& path)
    {
        Ui.AnswerFile(path);
        return RunCommand(CmdOpenPwad);
    }

    static std::string LevelName() { return GetText(Shell().Project.LevelName); }
    static int Lines() { return map::Map().Level.LineDefs.Count(); }

    /// The file number that supplies a level now.
    static int FileOfLevel(const char* name)
    {
        const int index = wad::FindLevel(wad::LumpName::From(name));
        return index < 0 ? -1 : wad::Wad().Levels[static_cast<std::size_t>(index)].FileNumber;
    }

    static bool InMaster(const char* name)
    {
        for (const wad::LumpEntry& entry : wad::Master().Entries())
        {
            if (entry.Name.Text() == name)
            {
                return true;
            }
        }
        return false;
    }

    /// The project record as it stands on disk.
    ProjectRecord ProjectOnDisk(const char* file = "DOOM2.PRJ")
    {
        ProjectRecord project{};
        EXPECT_EQ(LoadProject(project, false, Dir.Path() / file), StatusLoaded);
        return project;
    }

    int Map01Lines = 0;
};

TEST_F(FileCommandsTest, OpenPwadReadsItsFirstLevelAndRecentPwadsReopenWithoutTheDialog)
{
    const std::string first = RoomPwad("first.wad", "MAP03");
    const std::string second = RoomPwad("second.wad", "MAP05", LevelLayout::Doom, 2);

    ASSERT_EQ(Open(first), CommandResult::Done);
    ASSERT_EQ(Ui.FileRequests.size(), 1u);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Open PWAD");
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_EQ(Lines(), 4);
    EXPECT_GT(wad::Wad().CurrentFile.FileNumber, 0) << "the level comes from the PWAD";
    EXPECT_TRUE(Session().LevelLoaded);
    EXPECT_EQ(map::Map().Level.ChangeCount, 0);
    EXPECT_TRUE(InMaster("KELVLUMP"));

    ASSERT_EQ(Open(second), CommandResult::Done);
    EXPECT_EQ(LevelName(), "MAP05");
    EXPECT_EQ(Lines(), 8);
    EXPECT_EQ(wad::Wad().OpenFiles[0], first);
    EXPECT_EQ(wad::Wad().OpenFiles[1], second) << "overlay order: the newest last";
    ASSERT_EQ(RecentPwadEntries().size(), 2u);
    EXPECT_EQ(RecentPwadEntries()[0].Text, "&1 " + second) << "newest first";
    EXPECT_TRUE(TakeRequests().MenuStateChanged) << "the File menu shows the new list";

    // The project on disk keeps both, in order, and the list of recent PWADs.
    const ProjectRecord saved = ProjectOnDisk();
    EXPECT_EQ(GetText(saved.OpenFiles[0]), first);
    EXPECT_EQ(GetText(saved.OpenFiles[1]), second);
    EXPECT_EQ(RecentNames(saved.RecentPwads), (std::vector<std::string>{second, first}));

    // The older one, from the recent list: no dialog, it goes first, its level is read.
    ASSERT_EQ(RunCommand(CmdRecentPwadFirst + 1), CommandResult::Done);
    EXPECT_EQ(Ui.FileRequests.size(), 2u);
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_EQ(Lines(), 4);
    EXPECT_EQ(RecentNames(Shell().Project.RecentPwads), (std::vector<std::string>{first, second}));
    EXPECT_EQ(wad::Wad().OpenFiles[2], "") << "opened once only";

    // A cancelled dialog changes nothing.
    Ui.AnswerFile(std::nullopt);
    ASSERT_EQ(RunCommand(CmdOpenPwad), CommandResult::Done);
    EXPECT_EQ(LevelName(), "MAP03");
}

TEST_F(FileCommandsTest, APwadWithoutLevelsKeepsTheLevelAndItsView)
{
    const std::string path = (Dir.Path() / "lumps.wad").string();
    WadBuilder().Lump("KELVLUMP", "data").Write(path);
    view::CenterOn(view::View().Viewport, 321.0, -123.0);

    ASSERT_EQ(Open(path), CommandResult::Done);
    EXPECT_EQ(LevelName(), "MAP01");
    EXPECT_EQ(Lines(), Map01Lines);
    EXPECT_TRUE(InMaster("KELVLUMP"));
    EXPECT_EQ(view::View().Viewport.OriginX, 321.0);
    EXPECT_EQ(view::View().Viewport.OriginY, -123.0);
}

TEST_F(FileCommandsTest, ARefusedFileStaysOutOfTheSessionAndTheRecentList)
{
    const std::string path = (Dir.Path() / "notes.wad").string();
    testkit::WriteFile(path, "just some text, no WAD at all");

    ASSERT_EQ(Open(path), CommandResult::Done);
    EXPECT_FALSE(Ui.Messages.empty()) << "the reason is shown";
    EXPECT_EQ(wad::Wad().OpenFiles[0], "");
    EXPECT_TRUE(RecentPwadEntries().empty());
    EXPECT_EQ(LevelName(), "MAP01");
    EXPECT_EQ(Lines(), Map01Lines);
    EXPECT_TRUE(Session().LevelLoaded);
}

TEST_F(FileCommandsTest, UnsavedChangesAreAskedAboutAndNoKeepsEverything)
{
    const std::string path = RoomPwad("room.wad", "MAP03");
    ASSERT_EQ(Open(path), CommandResult::Done);
    map::Map().Level.ChangeCount = 3;
    const map::LevelData before = map::Map().Level;
    Ui.Clear();

    for (const int command : {CmdOpenPwad, CmdCloseAllFiles, CmdNewLevel, CmdEditLevel,
                              CmdChooseProject, CmdCloseOneFile})
    {
        if (command == CmdCloseOneFile)
        {
            Ui.AnswerList(0); // the file is chosen first
        }
        Ui.Answer(0);
        ASSERT_EQ(RunCommand(command), CommandResult::Done) << command;
        EXPECT_EQ(Ui.Last().Text(), UnsavedQuestion) << command;
        EXPECT_EQ(map::Map().Level, before) << command;
    }
    EXPECT_TRUE(Ui.FileRequests.empty()) << "no file dialog after No";
    EXPECT_EQ(wad::Wad().OpenFiles[0], path);
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "DOOM2.PRJ");
}

TEST_F(FileCommandsTest, CloseAllFilesGoesBackToTheIwadsLevel)
{
    const std::string path = RoomPwad("map01.wad", "MAP01");
    ASSERT_EQ(Open(path), CommandResult::Done);
    ASSERT_EQ(Lines(), 4);

    map::Map().Level.ChangeCount = 1;
    Ui.Answer(1);
    ASSERT_EQ(RunCommand(CmdCloseAllFiles), CommandResult::Done);
    EXPECT_EQ(Ui.Last().Text(), UnsavedQuestion);
    EXPECT_EQ(LevelName(), "MAP01");
    EXPECT_EQ(Lines(), Map01Lines);
    EXPECT_EQ(wad::Wad().CurrentFile.FileNumber, 0);
    EXPECT_EQ(FileOfLevel("MAP01"), 0);
    EXPECT_FALSE(InMaster("KELVLUMP"));
    EXPECT_EQ(wad::Wad().OpenFiles[0], "");
    EXPECT_EQ(map::Map().Level.ChangeCount, 0);
    EXPECT_EQ(GetText(ProjectOnDisk().OpenFiles[0]), "") << "the next start opens no PWAD";
    EXPECT_EQ(RecentPwadEntries().size(), 1u) << "the recent list stays";
}

TEST_F(FileCommandsTest, CloseOneFileResetsTheDirectoryWithoutIt)
{
    const std::string over = RoomPwad("over.wad", "MAP01");
    const std::string extra = RoomPwad("extra.wad", "MAP03", LevelLayout::Doom, 2);
    ASSERT_EQ(Open(over), CommandResult::Done);
    ASSERT_EQ(Open(extra), CommandResult::Done);
    ASSERT_GT(FileOfLevel("MAP01"), 0);
    EXPECT_TRUE(IsCommandEnabled(CmdCloseOneFile));

    // A cancelled list closes nothing.
    Ui.AnswerList(std::nullopt);
    ASSERT_EQ(RunCommand(CmdCloseOneFile), CommandResult::Done);
    EXPECT_EQ(wad::Wad().OpenFiles[0], over);

    // The file under the other one goes; the level in the editor stays as it is.
    Ui.AnswerList(0);
    ASSERT_EQ(RunCommand(CmdCloseOneFile), CommandResult::Done);
    EXPECT_EQ(Ui.ListCaptions.back(), "Select File to Reset");
    EXPECT_EQ(Ui.ListItems.back(), (std::vector<std::string>{over, extra}));
    EXPECT_EQ(wad::Wad().OpenFiles[0], extra);
    EXPECT_EQ(wad::Wad().OpenFiles[1], "");
    EXPECT_EQ(FileOfLevel("MAP01"), 0) << "MAP01 is the IWAD's again";
    EXPECT_GT(FileOfLevel("MAP03"), 0);
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_EQ(Lines(), 8);
    EXPECT_TRUE(InMaster("KELVLUMP")) << "extra.wad's own lump";
    EXPECT_EQ(GetText(ProjectOnDisk().OpenFiles[0]), extra);

    // The file of the level itself: the IWAD's level of that name takes its place.
    Ui.AnswerList(0);
    ASSERT_EQ(RunCommand(CmdCloseOneFile), CommandResult::Done);
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_GT(Lines(), 8);
    EXPECT_EQ(wad::Wad().CurrentFile.FileNumber, 0);
    EXPECT_FALSE(InMaster("KELVLUMP"));

    // Nothing left to close: the menu entry is disabled and the key asks nothing.
    EXPECT_FALSE(IsCommandEnabled(CmdCloseOneFile));
    ASSERT_EQ(RunCommand(CmdCloseOneFile), CommandResult::Done);
}

TEST_F(FileCommandsTest, NewLevelMakesTheChosenLevelEmpty)
{
    Ui.AnswerList(1);
    ASSERT_EQ(RunCommand(CmdNewLevel), CommandResult::Done);
    EXPECT_EQ(Ui.ListCaptions.back(), "Edit Level - MAP01");
    EXPECT_EQ(LevelName(), "MAP02");
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.LineDefs.Count(), 0);
    EXPECT_EQ(level.Things.Count(), 0);
    EXPECT_EQ(level.Sectors.Count(), 0);
    EXPECT_TRUE(Session().LevelLoaded);
    EXPECT_EQ(Session().AppState, AppEditing);

    // Edit Level reads a level with its objects again.
    Ui.AnswerList(0);
    ASSERT_EQ(RunCommand(CmdEditLevel), CommandResult::Done);
    EXPECT_EQ(Lines(), Map01Lines);
}

TEST_F(FileCommandsTest, ChooseGameProjectOpensTheOtherGame)
{
    // A cancelled chooser keeps the project.
    Ui.AnswerFile(std::nullopt);
    ASSERT_EQ(RunCommand(CmdChooseProject), CommandResult::Done);
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "DOOM2.PRJ");
    EXPECT_EQ(Lines(), Map01Lines);

    // DOOM1 has never been used: its IWAD is confirmed first.
    Ui.AnswerFile(Dir.Path() / "DOOM1.PRJ").Answer(1);
    ASSERT_EQ(RunCommand(CmdChooseProject), CommandResult::Done);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Game Project");
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "DOOM1.PRJ");
    EXPECT_EQ(wad::Wad().Game.Game, 1);
    EXPECT_EQ(LevelName(), "E1M1");
    EXPECT_TRUE(Session().LevelLoaded);
    const CommandRequests requests = TakeRequests();
    EXPECT_TRUE(requests.MenuStateChanged && requests.MiscMenuChanged);

    ChkRecord chk{};
    ASSERT_EQ(LoadChk(chk, false, Dir.Path()), StatusLoaded);
    EXPECT_EQ(GetText(chk.ProjectFile), "DOOM1.PRJ");
    EXPECT_EQ(ProjectOnDisk("DOOM1.PRJ").ProjectMarker, EndMark);
    EXPECT_EQ(GetText(ProjectOnDisk().LevelName), "MAP01") << "the old project was saved";
}

TEST_F(FileCommandsTest, AProjectWhoseIwadCantBeOpenedGivesTheOldOneBack)
{
    ProjectRecord broken = Shell().Project;
    SetText(broken.IwadPath, (Dir.Path() / "gone.wad").string());
    ASSERT_EQ(SaveProject(broken, Dir.Path() / "BROKEN.PRJ"), 1);

    // The stored IWAD isn't there: the search is declined, the IWAD dialog cancelled.
    Ui.AnswerFile(Dir.Path() / "BROKEN.PRJ").Answer(0).AnswerFile(std::nullopt);
    ASSERT_EQ(RunCommand(CmdChooseProject), CommandResult::Done);
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "DOOM2.PRJ");
    EXPECT_EQ(wad::Wad().Game.Game, 2);
    EXPECT_EQ(LevelName(), "MAP01");
    EXPECT_EQ(Lines(), Map01Lines);
    EXPECT_TRUE(Session().LevelLoaded);
}

TEST_F(FileCommandsTest, AHexenLevelInADoomProjectOffersTheSwitch)
{
    const std::string path = RoomPwad("hexen.wad", "MAP03", LevelLayout::Hexen);

    // No: the file opens in this project, whose reader asks about the other game's level.
    Ui.Answer(0).Answer(0);
    ASSERT_EQ(Open(path), CommandResult::Done);
    EXPECT_EQ(Ui.Messages.front().Text(),
              "HEXEN format Level and you are editing DOOM levels\nDo you want to switch "
              "Projects?");
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "DOOM2.PRJ");
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_EQ(Lines(), 4);

    // Yes: the project chooser, then the same file again in the chosen project.
    ASSERT_EQ(RunCommand(CmdCloseAllFiles), CommandResult::Done);
    Ui.Clear();
    Ui.AnswerFile(path).Answer(1).AnswerFile(Dir.Path() / "ZDOOMHEXEN.PRJ").Answer(1).Answer(0);
    ASSERT_EQ(RunCommand(CmdOpenPwad), CommandResult::Done);
    EXPECT_EQ(GetText(Shell().Chk.ProjectFile), "ZDOOMHEXEN.PRJ");
    EXPECT_EQ(wad::Wad().Game.Format, 4);
    EXPECT_EQ(LevelName(), "MAP03");
    EXPECT_EQ(Lines(), 4);
    EXPECT_EQ(map::Map().Level.LevelLayout, 2);
    EXPECT_EQ(Ui.FileRequests.size(), 2u) << "the PWAD was picked once";

    // And the reverse: a Doom-layout level in the Hexen project.
    Ui.Clear();
    Ui.Answer(0).Answer(0);
    ASSERT_EQ(Open(RoomPwad("doom.wad", "MAP04")), CommandResult::Done);
    EXPECT_EQ(Ui.Messages.front().Text(), "DOOM format Level and you are editing HEXEN "
                                          "levels\nDo you want to switch Projects?");
}

TEST_F(FileCommandsTest, ChooseTextureGroupKeepsTheChosenControlInTheProject)
{
    Ui.AnswerFile(Dir.Path() / "HERETIC.TCF");
    ASSERT_EQ(RunCommand(CmdChooseTextureGroup), CommandResult::Done);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Texture TCF Control");
    EXPECT_NE(GetText(ProjectOnDisk().TcfFile).find("HERETIC.TCF"), std::string::npos);
    EXPECT_EQ(Lines(), Map01Lines) << "the level isn't read again";
}

} // namespace
} // namespace kelvar::app
