// Loading and saving status files: refusals, their codes and messages, round trips.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/StatusFiles.h"
#include "app/StatusDefaults.h"
#include "tests/app/StatusTestKit.h"

#include <functional>

namespace kelvar::app
{
namespace
{

using StatusFiles = StatusFixture;

struct Refusal
{
    const char* What;
    std::function<void(std::string&)> Damage;
    int Code;
    const char* OwnerText;   // after "%s\n\n" with the file's name
    const char* StartupText; // the same, without owner
};

constexpr const char* OldOwner = "You have to delete and recreate to use this name";
constexpr const char* OldStartup = "Delete KELVAR.CHK file to fix";
constexpr const char* InvalidOwner = "Ignored";
constexpr const char* InvalidStartup = "VERIFY and Delete KELVAR.CHK file to fix";

std::string Message(int code, const char* tail)
{
    const char* head =
        code == StatusInvalid ? "?? Invalid File, not for Kelvar ??" : "!! File is Old Version !!";
    return std::string(head) + "\n\nP.PRJ\n\n" + tail;
}

TEST_F(StatusFiles, RefusedProjectGivesItsCodeAndMessageAndLeavesTheRecordAlone)
{
    const Refusal refusals[] = {
        {"another tag", [](std::string& b) { b.replace(1, 3, "TCF"); }, StatusInvalid, InvalidOwner,
         InvalidStartup},
        {"tag case differs", [](std::string& b) { b[2] = 'r'; }, StatusInvalid, InvalidOwner,
         InvalidStartup},
        {"three bytes", [](std::string& b) { b.resize(3); }, StatusInvalid, InvalidOwner,
         InvalidStartup},
        {"another version", [](std::string& b) { b[4] = static_cast<char>(b[4] - 1); },
         StatusOldVersion, OldOwner, OldStartup},
        {"another size", [](std::string& b) { b[6] = static_cast<char>(b[6] + 2); },
         StatusOldVersion, OldOwner, OldStartup},
        {"end word ee", [](std::string& b) { b.replace(b.size() - 2, 2, "ee"); }, StatusOldVersion,
         OldOwner, OldStartup},
        {"cut short", [](std::string& b) { b.resize(4000); }, StatusOldVersion, OldOwner,
         OldStartup},
        {"frame cut short", [](std::string& b) { b.resize(6); }, StatusOldVersion, OldOwner,
         OldStartup},
    };
    const std::string good = [&]
    {
        EXPECT_EQ(SaveProject(DefaultProject(), "P.PRJ"), 1);
        return Bytes("P.PRJ");
    }();
    ProjectRecord record = DefaultProject();
    record.Skill = 2; // so that a load of the default would show
    const ProjectRecord before = record;

    for (const Refusal& refusal : refusals)
    {
        SCOPED_TRACE(refusal.What);
        std::string bytes = good;
        refusal.Damage(bytes);
        testkit::WriteFile(Dir.Path() / "P.PRJ", bytes);
        for (const bool owner : {true, false})
        {
            Ui.Clear();
            EXPECT_EQ(LoadProject(record, owner, "P.PRJ"), refusal.Code);
            ASSERT_EQ(Ui.Messages.size(), 1u);
            EXPECT_EQ(Ui.Last().Title, "Kelvar Error");
            EXPECT_EQ(Ui.Last().Text(),
                      Message(refusal.Code, owner ? refusal.OwnerText : refusal.StartupText));
            EXPECT_TRUE(record == before);
        }
    }
}

TEST_F(StatusFiles, MissingFileSaysSoWithAndWithoutOwner)
{
    ChkRecord chk = DefaultChk();
    for (const bool owner : {true, false})
    {
        Ui.Clear();
        EXPECT_EQ(LoadChk(chk, owner), StatusMissing);
        EXPECT_EQ(Ui.Last().Text(), "?? File Not Found ??\n\nKELVAR.CHK\n\nDelete KELVAR.CHK to "
                                    "recreate control files");
    }
}

TEST_F(StatusFiles, OldKelvarChkAtStartIsToBeResetWhileOtherOldFilesPointAtIt)
{
    ChkRecord chk = DefaultChk();
    chk.Frame.Version = 4495;
    ASSERT_EQ(SaveStatus("CHK", "KELVAR.CHK", std::as_bytes(std::span(&chk, 1))), 1);
    EXPECT_EQ(LoadChk(chk, false), StatusOldVersion);
    EXPECT_EQ(Ui.Last().Text(),
              "!! File is Old Version !!\n\nKELVAR.CHK\n\nWill be reset to new version\n\nYou may "
              "need to reset the PROJECT\n\nIf anything goes wrong delete Kelvar.CHK");
    EXPECT_EQ(LoadChk(chk, true), StatusOldVersion);
    EXPECT_EQ(Ui.Last().Text(),
              "!! File is Old Version !!\n\nKELVAR.CHK\n\n" + std::string(OldOwner));
}

TEST_F(StatusFiles, TrailingBytesBehindTheRecordDontMatter)
{
    ASSERT_EQ(SaveGameConfig(DefaultGameConfig(4, false, false), "HEXEN.DFG"), 1);
    testkit::WriteFile(Dir.Path() / "HEXEN.DFG", Bytes("HEXEN.DFG") + "junk");
    GameConfigRecord config = DefaultGameConfig(2, false, false);
    EXPECT_EQ(LoadGameConfig(config, false, "HEXEN.DFG"), StatusLoaded);
    EXPECT_EQ(config.Format, 4);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(StatusFiles, EveryKindComesBackAsItWasSaved)
{
    ChkRecord chk = DefaultChk();
    chk.SessionWord = 166;
    chk.GridSize = 32;
    chk.PaneRects[14] = StatusRect{1, -2, 3, -4};
    SetText(chk.ToolFiles[4], "Other.TOL");
    ProjectRecord project = DefaultProject();
    project.ViewX = 1234.5;
    project.Zoom = 0.125F;
    SetText(project.OpenFiles[100], "/tmp/last.wad");
    SetText(project.RecentPrefabs[19], "/tmp/prefab.wad");
    project.EndWord = 0; // a save puts the frame right
    project.Frame = StatusFrame{};
    GameConfigRecord config = DefaultGameConfig(3, false, true);
    config.Args = TypeRange{-5, 5};
    TextureControlRecord tcf = DefaultTextureControl(5);
    SetName(tcf.CurrentFloor, "LONGNAME");
    ToolRecord tools = DefaultToolFile(2);
    tools.Body[6721] = 0x7F;

    ASSERT_EQ(SaveChk(chk), 1);
    ASSERT_EQ(SaveProject(project, "R.PRJ"), 1);
    ASSERT_EQ(SaveGameConfig(config, "R.DFG"), 1);
    ASSERT_EQ(SaveTextureControl(tcf, "R.TCF"), 1);
    ASSERT_EQ(SaveToolFile(tools, "R.TOL"), 1);

    ChkRecord chkBack = DefaultChk();
    ProjectRecord projectBack = DefaultProject();
    GameConfigRecord configBack = DefaultGameConfig(2, false, false);
    TextureControlRecord tcfBack = DefaultTextureControl(2);
    ToolRecord toolsBack = DefaultToolFile(1);
    EXPECT_EQ(LoadChk(chkBack, true), 1);
    EXPECT_EQ(LoadProject(projectBack, true, "R.PRJ"), 1);
    EXPECT_EQ(LoadGameConfig(configBack, true, "R.DFG"), 1);
    EXPECT_EQ(LoadTextureControl(tcfBack, true, "R.TCF"), 1);
    EXPECT_EQ(LoadToolFile(toolsBack, true, "R.TOL"), 1);

    StampFrame(project);
    EXPECT_TRUE(chkBack == chk);
    EXPECT_TRUE(projectBack == project);
    EXPECT_TRUE(configBack == config);
    EXPECT_TRUE(tcfBack == tcf);
    EXPECT_TRUE(toolsBack == tools);
    EXPECT_EQ(NameText(tcfBack.CurrentFloor), "LONGNAME");
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(StatusFiles, RelativeNamesComeFromTheGivenDirectoryElseTheProgramDirectory)
{
    testkit::TempDir other;
    ASSERT_EQ(SaveChk(DefaultChk()), 1);
    EXPECT_TRUE(std::filesystem::exists(Dir.Path() / "KELVAR.CHK"));
    ChkRecord chk = DefaultChk();
    chk.GridSize = 64;
    ASSERT_EQ(SaveChk(chk, other.Path()), 1);
    ASSERT_EQ(LoadChk(chk, false), 1);
    EXPECT_EQ(chk.GridSize, 8);
    ASSERT_EQ(LoadChk(chk, false, other.Path()), 1);
    EXPECT_EQ(chk.GridSize, 64);
    // An absolute name ignores the directory.
    ASSERT_EQ(LoadChk(chk, false), 1);
    ASSERT_EQ(LoadRecord(chk, false, other.Path() / "KELVAR.CHK", Dir.Path()), 1);
    EXPECT_EQ(chk.GridSize, 64);
}

TEST_F(StatusFiles, SaveThatCantCreateTheFileNamesTagFileAndDirectory)
{
    EXPECT_EQ(SaveTextureControl(DefaultTextureControl(2), "nowhere/X.TCF"), 0);
    EXPECT_EQ(Ui.Last().Title, "Kelvar Error");
    EXPECT_EQ(Ui.Last().Text(), "Save TCF Status file open error?\n\nfile=nowhere/X.TCF\n\n"
                                "Current dir=" +
                                    Dir.Path().string());
}

TEST_F(StatusFiles, SaveOntoAFullDiskIsReportedAsAFailedWrite)
{
    if (!std::filesystem::exists("/dev/full"))
    {
        GTEST_SKIP() << "no /dev/full here";
    }
    Ui.Answer(0); // don't quit
    EXPECT_EQ(SaveRecord(DefaultChk(), "/dev/full"), 0);
    EXPECT_EQ(Ui.Last().Title, "I/O error");
    EXPECT_EQ(Ui.Last().Lines.at(0).rfind(" write error: 2750 bytes at location", 0), 0u);
}

TEST_F(StatusFiles, ProjectNamesAreStoredWithThePrjExtension)
{
    EXPECT_EQ(ProjectFileName("Mine.wad"), "Mine.PRJ");
    EXPECT_EQ(ProjectFileName("Mine"), "Mine.PRJ");
    EXPECT_EQ(ProjectFileName("my.doom2.prj"), "my.PRJ");
    // Folders keep their dots; only the file's own name is cut.
    EXPECT_EQ(ProjectFileName("/home/me/.config/kelvar/X.prj"), "/home/me/.config/kelvar/X.PRJ");
    // A name that would outgrow the record's field stays as it is.
    const std::string longName = std::string(125, 'a') + ".b";
    EXPECT_EQ(ProjectFileName(longName), longName);

    ASSERT_EQ(SaveProject(DefaultProject(), "Mine.wad"), 1);
    EXPECT_TRUE(std::filesystem::exists(Dir.Path() / "Mine.PRJ"));
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "Mine.wad"));
}

} // namespace
} // namespace kelvar::app
