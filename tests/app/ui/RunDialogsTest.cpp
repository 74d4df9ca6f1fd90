// Tests of the test launcher's dialogs: each opens on the options, takes a change and gives it
// back with the button that closed it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/ui/TestOptionsDialog.h"
#include "run/ui/TestR3dDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

namespace kelvar::run
{
namespace
{

template <typename Widget> Widget* Find(QWidget* dialog, const char* name)
{
    auto* widget = dialog->findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

bool HasLabel(QWidget* dialog, const QString& text)
{
    for (const QLabel* label : dialog->findChildren<QLabel*>())
    {
        if (label->text() == text)
        {
            return true;
        }
    }
    return false;
}

TEST(TestOptionsDialog, OkGivesBackWhatTheFieldsHold)
{
    TestOptions options;
    options.Respawn = true;
    int redraws = 0;
    options.Hooks.Redraw = [&] { ++redraws; };
    TestOptionsDialog dialog(options, "a.wad level - MAP01");
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));

    EXPECT_EQ(Find<QLabel>(&dialog, "Info")->text(), "a.wad level - MAP01");
    EXPECT_TRUE(
        HasLabel(&dialog, "**For NOWAIT\nAlt+Tab to get Game Active \nYou can't save to the PWAD"));
    bool notes = false;
    for (const QGroupBox* box : dialog.findChildren<QGroupBox*>())
    {
        notes = notes || box->title() == "Testing Level Notes";
    }
    EXPECT_TRUE(notes);
    EXPECT_EQ(Find<QCheckBox>(&dialog, "WaitForGame")->text(), " Wait** for Game to End");

    QLineEdit* exe = Find<QLineEdit>(&dialog, "GameExe");
    EXPECT_EQ(exe->text(), "chocolate-doom");
    exe->clear();
    QTest::keyClicks(exe, "dsda-doom");
    QTest::mouseClick(Find<QCheckBox>(&dialog, "NoMonsters"), Qt::LeftButton);
    Find<QSpinBox>(&dialog, "Skill")->setValue(2);
    auto* buttons = dialog.findChild<QDialogButtonBox*>();
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);

    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    const TestOptions edited = dialog.Options();
    EXPECT_EQ(edited.GameExe, "dsda-doom");
    EXPECT_TRUE(edited.NoMonsters);
    EXPECT_TRUE(edited.Respawn);
    EXPECT_FALSE(edited.Deathmatch);
    EXPECT_EQ(edited.Skill, 2);
    EXPECT_EQ(edited.ExtraParameters, ":");
    edited.Hooks.Redraw();
    EXPECT_EQ(redraws, 1);
}

TEST(TestR3dDialog, PlayOnlyClosesWithItsOwnAnswerAndTheValues)
{
    Viewer3DOptions options;
    options.Skill = 3;
    TestR3dDialog dialog(options);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));

    EXPECT_EQ(Find<QCheckBox>(&dialog, "DisableWKey")->text(),
              "Disable \"W\" key Exit\n(F10 also Exits)");
    EXPECT_TRUE(Find<QRadioButton>(&dialog, "Skill3")->isChecked());
    EXPECT_TRUE(Find<QCheckBox>(&dialog, "Prompt")->isChecked());
    Find<QCheckBox>(&dialog, "NoInfight")->setChecked(true);
    Find<QCheckBox>(&dialog, "R3dglbspNodes")->setChecked(true);
    Find<QRadioButton>(&dialog, "Screen4")->setChecked(true);
    Find<QSpinBox>(&dialog, "Width")->setValue(800);
    Find<QRadioButton>(&dialog, "Skill0")->setChecked(true);
    QPushButton* playOnly = Find<QPushButton>(&dialog, "PlayOnly");
    EXPECT_EQ(playOnly->text(), "Play Only");
    QTest::mouseClick(playOnly, Qt::LeftButton);

    EXPECT_EQ(dialog.result(), ViewerPlayOnly);
    Viewer3DOptions expected = options;
    expected.NoInfight = true;
    expected.R3dglbspNodes = true;
    expected.Screen = ViewerScreen::CustomWindow;
    expected.Width = 800;
    expected.Skill = 0;
    EXPECT_EQ(dialog.Options(), expected);
}

} // namespace
} // namespace kelvar::run
