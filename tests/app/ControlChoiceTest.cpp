// Choosing another tool file or texture control: load, create on request, or leave alone.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ControlChoice.h"
#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"
#include "tests/app/StatusTestKit.h"

namespace kelvar::app
{
namespace
{

using StatusControlChoice = StatusFixture;

TEST_F(StatusControlChoice, AnExistingTextureControlIsLoadedAndNamedInTheProject)
{
    ASSERT_EQ(SaveTextureControl(DefaultTextureControl(3), "Castle.TCF"), 1);
    Ui.AnswerFile(Dir.Path() / "Castle.TCF");
    EXPECT_EQ(ChooseTextureControl(), 1);
    EXPECT_EQ(NameText(Shell().TextureControl.DefaultDoor), "DOORSTON");
    EXPECT_EQ(GetText(Shell().Project.TcfFile), (Dir.Path() / "Castle.TCF").string());
    ASSERT_EQ(Ui.FileRequests.size(), 1u);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Texture TCF Control");
    EXPECT_EQ(Ui.FileRequests[0].NameLimit, 127u);
}

TEST_F(StatusControlChoice, AMissingToolFileIsMadeFromTheRecordInUseOnlyWhenTheUserSaysSo)
{
    Shell().Tools[1].Body[0] = 42;
    Ui.AnswerFile(std::filesystem::path("Mine.TOL")).Answer(0);
    EXPECT_EQ(ChooseToolFile(2), 0);
    EXPECT_EQ(Ui.Last().Text(), "!!  TOOL Definition Mine.TOL does not exist  !!\nDo you want "
                                "to create a new TOOL control using current settings?");
    EXPECT_EQ(GetText(Shell().Chk.ToolFiles[1]), "ToolPrefabs.TOL");
    EXPECT_FALSE(std::filesystem::exists(Dir.Path() / "Mine.TOL"));

    Ui.AnswerFile(std::filesystem::path("Mine.TOL")).Answer(1);
    EXPECT_EQ(ChooseToolFile(2), 1);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Tool 2 definition");
    EXPECT_EQ(GetText(Shell().Chk.ToolFiles[1]), "Mine.TOL");
    ToolRecord tools{};
    ASSERT_EQ(LoadToolFile(tools, true, "Mine.TOL"), 1);
    EXPECT_EQ(tools.Body[0], 42);
}

TEST_F(StatusControlChoice, ARefusedOrCancelledChoiceChangesNothing)
{
    testkit::WriteFile(Dir.Path() / "Old.TCF", "xTCF\x01\x02");
    const TextureControlRecord before = Shell().TextureControl;
    Ui.AnswerFile(std::filesystem::path("Old.TCF"));
    EXPECT_EQ(ChooseTextureControl(), 0);
    EXPECT_EQ(Ui.Last().Text(), "!! File is Old Version !!\n\nOld.TCF\n\nYou have to delete and "
                                "recreate to use this name");
    Ui.AnswerFile(std::nullopt);
    EXPECT_EQ(ChooseTextureControl(), 0);
    EXPECT_TRUE(Shell().TextureControl == before);
    EXPECT_EQ(GetText(Shell().Project.TcfFile), "DOOM2.TCF");
}

} // namespace
} // namespace kelvar::app
