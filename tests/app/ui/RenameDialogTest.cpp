// Tests of the rename window on Freedoom 2 MAP01: F7 asks for the PWAD and opens the window, a
// row renamed and one deleted are saved with the warning and the save notice; a row whose box
// is cleared is left out, and the sort orders the list only.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/RenameDialog.h"
#include "app/LumpCommands.h"
#include "app/ui/MergeDialogParts.h"
#include "tests/app/ui/LumpToolFixture.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadRewrite.h"

#include <QLabel>
#include <QRadioButton>

namespace kelvar::app
{
namespace
{

using testkit::WadBuilder;

class RenameDialogTest : public LumpToolTest
{
protected:
    void SetUp() override
    {
        LumpToolTest::SetUp();
        Pwad = WadBuilder()
                   .Lump("SONG", "MUS\x1a")
                   .Level("MAP01")
                   .Lump("DEHACKED", "Patch File")
                   .Lump("ANIMATED", "anim")
                   .Write(Dir.Path() / "pwad.wad");
    }

    void OpenRename(const std::function<void(RenameDialog&)>& act)
    {
        Ui.AnswerFile(Pwad);
        OpenLumpTool(LumpTool::Rename, act);
        ASSERT_FALSE(Ui.FileRequests.empty());
        EXPECT_EQ(Ui.FileRequests[0].Caption, "Open Rename Lump PWAD");
    }

    std::filesystem::path Pwad;
};

TEST_F(RenameDialogTest, RenameAndDeleteAreSavedAfterTheWarning)
{
    OpenRename(
        [&](RenameDialog& dialog)
        {
            EXPECT_EQ(dialog.windowTitle(), "Rename Dialog Lump");
            TargetListView* list = dialog.List();
            EXPECT_EQ(Column(list, 0), (QStringList{"SONG", "MAP01", "DEHACKED", "ANIMATED"}));
            EXPECT_EQ(list->topLevelItem(1)->text(2), "LEVEL 11");

            list->setFocus();

            // The list's keys act only once it has the focus, which a busy machine gives late.

            ASSERT_TRUE(QTest::qWaitFor([list] { return list->hasFocus(); }));
            list->SelectHead(0);
            Ui.AnswerText("music");
            PressAlt(dialog, Qt::Key_R);
            list->setCurrentItem(list->topLevelItem(2));
            PressAlt(dialog, Qt::Key_D);
            EXPECT_EQ(Column(list, 0), (QStringList{"MUSIC", "MAP01", "ANIMATED"}));
            EXPECT_EQ(dialog.findChild<QLabel*>("Count")->text(),
                      "13 of 13 entries selected to stay; the file holds 14");
            dialog.grab().save(KELVAR_SCREENSHOT_DIR "/rename-dialog.png");

            // One entry fewer than the file had: the warning, then the notice.
            Ui.Answer(1);
            PressAlt(dialog, Qt::Key_S);
            EXPECT_EQ(Ui.Titles().at(Ui.Titles().size() - 2),
                      " Info - WARNING - All Lumps Not Selected");
            EXPECT_TRUE(Ui.Saw("The number of entries selected 13"));
            EXPECT_TRUE(Ui.Saw("Is less than the number you started with 14"));
            EXPECT_TRUE(Ui.Saw("Your old file is " + wad::BakPathOf(Pwad).string()));
            EXPECT_NE(std::find_if(Ui.Progress.begin(), Ui.Progress.end(),
                                   [](const auto& shown)
                                   { return shown.first == "Removing 1 Entries"; }),
                      Ui.Progress.end());
            PressAlt(dialog, Qt::Key_X);
            EXPECT_FALSE(dialog.isVisible());
        });
    std::vector<std::string> names = Names(Pwad);
    ASSERT_EQ(names.size(), 13U);
    EXPECT_EQ(names.front(), "MUSIC");
    EXPECT_EQ(names.back(), "ANIMATED");
}

TEST_F(RenameDialogTest, AClearedBoxLeavesTheRowOutAndTheSortOnlyOrdersTheList)
{
    OpenRename(
        [&](RenameDialog& dialog)
        {
            TargetListView* list = dialog.List();
            PressAlt(dialog, Qt::Key_P); // Sort Alpha
            EXPECT_EQ(Column(list, 0), (QStringList{"ANIMATED", "DEHACKED", "MAP01", "SONG"}));

            list->topLevelItem(0)->setCheckState(0, Qt::Unchecked); // ANIMATED
            EXPECT_EQ(dialog.findChild<QLabel*>("Count")->text(),
                      "13 of 14 entries selected to stay; the file holds 14");
            Ui.Answer(1);
            dialog.Save();
            // Leaving after the save asks nothing.
            dialog.reject();
            EXPECT_FALSE(dialog.isVisible());
        });
    EXPECT_EQ(Names(Pwad).front(), "SONG");
    EXPECT_EQ(Names(Pwad).back(), "DEHACKED"); // ANIMATED left out
}

} // namespace
} // namespace kelvar::app
