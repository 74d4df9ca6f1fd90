// Tests of the Merge/Import window on Freedoom 2 MAP01: F7 opens it, a target and an input PWAD
// are chosen by its keys, Save writes the target; the target list's commands, the questions on
// leaving, the target the editor has open read again after the merge, the options page.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MergeDialog.h"
#include "app/LumpCommands.h"
#include "app/ui/MergeDialogParts.h"
#include "lumps/ExportList.h"
#include "platform/qt/QtUi.h"
#include "tests/app/ui/DialogAnswers.h"
#include "tests/app/ui/LumpToolFixture.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/FileTable.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>
#include <QTreeWidget>

namespace kelvar::app
{
namespace
{

using testkit::WadBuilder;
using testkit::WhenModal;

class MergeDialogTest : public LumpToolTest
{
protected:
    void SetUp() override
    {
        LumpToolTest::SetUp();
        lumps::ResetExports();
        Target = WadBuilder()
                     .Lump("README", "read me")
                     .Lump("SONG", "MUS\x1a")
                     .Write(Dir.Path() / "target.wad");
        Input = WadBuilder()
                    .Lump("NEWLUMP", "new data")
                    .Lump("DEHACKED", "Patch File")
                    .Write(Dir.Path() / "input.wad");
    }

    // F7, then the Merge entry of the menu, with `act` run on the window once it is up.
    void OpenMerge(const std::function<void(MergeDialog&)>& act)
    {
        OpenLumpTool(LumpTool::Merge, act);
    }

    // The target and the input chosen through the window's own commands.
    void ChooseTargetAndInput(MergeDialog& dialog)
    {
        Ui.AnswerFile(Target);
        dialog.OpenTarget();
        Ui.AnswerFile(Input);
        dialog.AddFiles();
    }

    std::filesystem::path Target;
    std::filesystem::path Input;
};

TEST_F(MergeDialogTest, F7ChoosesTargetAndInputByKeysAndSaveWritesTheTarget)
{
    OpenMerge(
        [&](MergeDialog& dialog)
        {
            EXPECT_EQ(dialog.windowTitle(), "Merge/Import");
            Ui.AnswerFile(Target);
            PressAlt(dialog, Qt::Key_O);
            EXPECT_EQ(Column(dialog.TargetView(), 0), (QStringList{"README", "SONG"}));
            EXPECT_EQ(dialog.findChild<QLabel*>("TargetFile")->text(),
                      QString::fromStdString(Target.string()) + "  (PWAD)");

            Ui.AnswerFile(Input);
            PressAlt(dialog, Qt::Key_A);
            ASSERT_EQ(Ui.FileRequests.size(), 2U);
            EXPECT_EQ(Ui.FileRequests[1].Caption, "Select Files to Import");
            EXPECT_EQ(Column(dialog.ImportView(), 0), (QStringList{"NEWLUMP", "DEHACKED"}));
            EXPECT_EQ(Column(dialog.ImportView(), 1), (QStringList{"PWAD", "PWAD"}));
            EXPECT_EQ(Column(dialog.ImportView(), 2), (QStringList{"0", "1"}));
            dialog.grab().save(KELVAR_SCREENSHOT_DIR "/merge-dialog.png");

            // No row of the target selected: the new ones go to the end.
            Ui.Answer(1);
            PressAlt(dialog, Qt::Key_S);
            EXPECT_TRUE(Ui.Saw("All files will be added to the end"));
            EXPECT_EQ(dialog.ImportView()->topLevelItemCount(), 0);
            EXPECT_EQ(Column(dialog.TargetView(), 0),
                      (QStringList{"README", "SONG", "NEWLUMP", "DEHACKED"}));
            // Nothing is left unsaved: Exit asks nothing.
            PressAlt(dialog, Qt::Key_X);
            EXPECT_FALSE(dialog.isVisible());
        });
    EXPECT_EQ(Names(Target), (std::vector<std::string>{"README", "SONG", "NEWLUMP", "DEHACKED"}));
    EXPECT_TRUE(std::filesystem::exists(wad::BakPathOf(Target)));
    ASSERT_EQ(Ui.TextFiles.size(), 1U);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "Merge/Import Log");
}

TEST_F(MergeDialogTest, TargetCommandsAndInputRenameWorkFromTheListsKeys)
{
    OpenMerge(
        [&](MergeDialog& dialog)
        {
            ChooseTargetAndInput(dialog);

            // F2 on the target's first row renames it; Delete takes the second away.
            TargetListView* targets = dialog.TargetView();
            targets->setFocus();
            // The list's keys act only once it has the focus, which a busy machine gives late.
            ASSERT_TRUE(QTest::qWaitFor([targets] { return targets->hasFocus(); }));
            targets->SelectHead(0);
            Ui.AnswerText("RENAMED");
            QTest::keyClick(targets, Qt::Key_F2);
            targets->SelectHead(1);
            QTest::keyClick(targets, Qt::Key_Delete);
            EXPECT_EQ(Column(targets, 0), (QStringList{"RENAMED"}));

            // The input DEHACKED becomes DEH2; a level component's name is refused.
            QTreeWidget* imports = dialog.ImportView();
            imports->setFocus();
            // The list's keys act only once it has the focus, which a busy machine gives late.
            ASSERT_TRUE(QTest::qWaitFor([imports] { return imports->hasFocus(); }));
            imports->setCurrentItem(imports->topLevelItem(1));
            Ui.AnswerText("deh2");
            QTest::keyClick(imports, Qt::Key_F2);
            Ui.AnswerText("THINGS");
            QTest::keyClick(imports, Qt::Key_F2);
            EXPECT_TRUE(Ui.Saw("This name is reserved for level components"));
            EXPECT_EQ(Column(imports, 0), (QStringList{"NEWLUMP", "DEH2"}));

            // Leaving with inputs not written asks; No keeps the window.
            Ui.Answer(0);
            dialog.reject();
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(Ui.Last().Lines[0].rfind("You have added files that were not saved.", 0), 0U);

            // With the inputs removed the directory change is what is asked about.
            imports->selectAll();
            QTest::keyClick(imports, Qt::Key_Delete);
            EXPECT_EQ(imports->topLevelItemCount(), 0);
            Ui.Answer(1);
            dialog.reject();
            EXPECT_FALSE(dialog.isVisible());
            EXPECT_EQ(Ui.Last().Lines[0].rfind("You have made directory changes", 0), 0U);
        });
    // Nothing was saved.
    EXPECT_EQ(Names(Target), (std::vector<std::string>{"README", "SONG"}));
}

TEST_F(MergeDialogTest, ATargetTheEditorHasOpenIsReadAgainAfterTheMerge)
{
    ReloadWith(Target);
    ASSERT_GT(wad::FindFileRecord(Target.string()), 0);
    Ui.Clear();
    OpenMerge(
        [&](MergeDialog& dialog)
        {
            ChooseTargetAndInput(dialog);
            // After the README row: the new rows go in between.
            dialog.TargetView()->SelectHead(0);
            Ui.Answer(1);
            dialog.Save();
            EXPECT_TRUE(Ui.Saw("Insert All files after"));
        });
    EXPECT_EQ(Names(Target), (std::vector<std::string>{"README", "NEWLUMP", "DEHACKED", "SONG"}));
    const int record = wad::FindFileRecord(Target.string());
    ASSERT_GT(record, 0);
    const wad::FileRec& file = wad::Wad().Files[static_cast<std::size_t>(record)];
    EXPECT_GE(file.Directory.FindLast(wad::LumpName::From("NEWLUMP"), 0, file.Directory.Size()), 0);
    const wad::LumpDirectory& master = wad::Master();
    EXPECT_GE(master.FindLast(wad::LumpName::From("NEWLUMP"), 0, master.Size()), 0);
    EXPECT_TRUE(Session().LevelLoaded);
}

TEST_F(MergeDialogTest, TheOptionsPageStoresTheFormatsAndLimits)
{
    OpenMerge(
        [&](MergeDialog& dialog)
        {
            WhenModal(
                [](QWidget* widget)
                {
                    ASSERT_EQ(widget->objectName(), "LumpImportExportOptions");
                    for (QRadioButton* button : widget->findChildren<QRadioButton*>())
                    {
                        if (button->text() == "&SND" || button->text() == "M&US")
                        {
                            button->setChecked(true);
                        }
                    }
                    QList<QSpinBox*> spins = widget->findChildren<QSpinBox*>();
                    ASSERT_GE(spins.size(), 4);
                    spins[0]->setValue(256); // maximum X
                    widget->grab().save(KELVAR_SCREENSHOT_DIR "/merge-options.png");
                    dynamic_cast<QDialog*>(widget)->accept();
                });
            dialog.OpenOptions();
            EXPECT_EQ(dialog.findChild<QLabel*>("Formats")->text(),
                      "Sounds as .SND\nMusic as .MUS");
        });
    const lumps::ExportSettings& settings = lumps::Exports().Settings;
    EXPECT_EQ(settings.AutoSoundFormat, ".SND");
    EXPECT_EQ(settings.AutoMusicFormat, ".MUS");
    EXPECT_EQ(settings.ImportLimits.MaxWidth, 256);
}

TEST_F(MergeDialogTest, TheRealFileDialogTakesSeveralInputsAtOnce)
{
    platform::QtUi real(Window.get());
    const platform::ScopedUi installed(real);
    WhenModal(
        [&](QWidget* widget)
        {
            auto* files = qobject_cast<QFileDialog*>(widget);
            ASSERT_NE(files, nullptr);
            EXPECT_EQ(files->fileMode(), QFileDialog::ExistingFiles);
            AcceptFile(files, QString("\"%1\" \"%2\"")
                                  .arg(QString::fromStdString(Target.string()),
                                       QString::fromStdString(Input.string())));
        });
    lumps::MergeSession session;
    EXPECT_EQ(lumps::AskAddInputFiles(session), 4);
    ASSERT_EQ(session.Imports.size(), 4U);
    EXPECT_EQ(session.Imports[0].File, Target);
    EXPECT_EQ(session.Imports[3].File, Input);
}

} // namespace
} // namespace kelvar::app
