// Tests of the rename window on Freedoom 2 MAP01: F7 asks for the PWAD and opens the window, a
// row renamed and one deleted are saved with the warning and the save notice; a row whose box
// is cleared is left out, and the sort orders the list only.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/RenameDialog.h"
#include "app/LumpCommands.h"
#include "app/ui/MergeDialogParts.h"
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadRewrite.h"

#include <QLabel>
#include <QRadioButton>

namespace kelvar::app
{
namespace
{

using testkit::WadBuilder;
using testkit::WhenModal;

// Alt and a button's letter: the button clicks itself a moment later, as on the screen.
void PressAlt(QWidget& window, Qt::Key key)
{
    QTest::keyClick(&window, key, Qt::AltModifier);
    QTest::qWait(150);
}

class RenameDialogTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        MainWindowTest::SetUp();
        Pwad = WadBuilder()
                   .Lump("SONG", "MUS\x1a")
                   .Level("MAP01")
                   .Lump("DEHACKED", "Patch File")
                   .Lump("ANIMATED", "anim")
                   .Write(Dir.Path() / "pwad.wad");
    }

    void OpenRename(const std::function<void(RenameDialog&)>& act)
    {
        bool ran = false;
        WhenModal(
            [&](QWidget* widget)
            {
                auto* dialog = dynamic_cast<RenameDialog*>(widget);
                ASSERT_NE(dialog, nullptr);
                // The window takes the keys, as it does on the screen.
                dialog->activateWindow();
                ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
                act(*dialog);
                ran = true;
                if (dialog->isVisible())
                {
                    dialog->done(QDialog::Rejected);
                }
            });
        Ui.AnswerList(static_cast<int>(LumpTool::Rename)).AnswerFile(Pwad);
        QTest::keyClick(Map(), Qt::Key_F7);
        EXPECT_TRUE(ran);
        ASSERT_FALSE(Ui.FileRequests.empty());
        EXPECT_EQ(Ui.FileRequests[0].Caption, "Open Rename Lump PWAD");
    }

    static QStringList Rows(const TargetListView* list)
    {
        QStringList rows;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
        {
            rows << list->topLevelItem(i)->text(0);
        }
        return rows;
    }

    static std::vector<std::string> Names(const std::filesystem::path& file)
    {
        std::string magic;
        std::vector<lumps::TargetEntry> entries;
        EXPECT_EQ(lumps::ReadWadEntries(file, magic, entries), lumps::WadRead::Read);
        std::vector<std::string> names;
        for (const lumps::TargetEntry& entry : entries)
        {
            names.push_back(entry.Name.Text());
        }
        return names;
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
            EXPECT_EQ(Rows(list), (QStringList{"SONG", "MAP01", "DEHACKED", "ANIMATED"}));
            EXPECT_EQ(list->topLevelItem(1)->text(2), "LEVEL 11");

            list->setFocus();
            list->SelectHead(0);
            Ui.AnswerText("music");
            PressAlt(dialog, Qt::Key_R);
            list->setCurrentItem(list->topLevelItem(2));
            PressAlt(dialog, Qt::Key_D);
            EXPECT_EQ(Rows(list), (QStringList{"MUSIC", "MAP01", "ANIMATED"}));
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
            EXPECT_EQ(Rows(list), (QStringList{"ANIMATED", "DEHACKED", "MAP01", "SONG"}));

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
