// Tests of the Misc menu and the editing keys through the real window: F8 opens the mode's
// popup with the built entries enabled, an entry runs on the object under the pointer, and
// Delete, Ctrl+Z and Ctrl+Y reach the level.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"

#include <QMenu>
#include <functional>

namespace kelvar::app
{
namespace
{

using testkit::WhenPopup;

QAction* EntryNamed(QMenu* menu, const QString& name)
{
    for (QAction* action : menu->actions())
    {
        if (action->text().contains(name))
        {
            return action;
        }
    }
    return nullptr;
}

class MiscMenuTest : public MainWindowTest
{
};

TEST_F(MiscMenuTest, F8OpensTheModesPopupAndAnEntryRunsOnTheHighlightedSector)
{
    QTest::keyClick(Map(), Qt::Key_S);
    ASSERT_EQ(EditMode(), ModeSectors);
    Settle();
    map::Selected().HighlightedObject = 1;
    const map::LevelData before = map::Map().Level;
    const int sectors = before.Sectors.Count();

    bool shown = false;
    WhenPopup(
        [&shown](QMenu* menu)
        {
            shown = true;
            QAction* rotate = EntryNamed(menu, "Rotate and Scale");
            QAction* merge = EntryNamed(menu, "Distribute Sector Lighting");
            ASSERT_NE(rotate, nullptr);
            ASSERT_NE(merge, nullptr);
            EXPECT_TRUE(rotate->isEnabled());
            EXPECT_TRUE(merge->isEnabled());
            menu->close();
        });
    QTest::keyClick(Map(), Qt::Key_F8);
    ASSERT_TRUE(shown);

    // An entry chosen by its mnemonic: First Free Tag shows its statistics, changing nothing.
    WhenPopup([](QMenu* menu) { QTest::keyClick(menu, Qt::Key_2); }); // "&2   First Free Tag"
    QTest::keyClick(Map(), Qt::Key_F8);
    QApplication::processEvents();
    EXPECT_EQ(Ui.Last().Title, "tag stats");
    EXPECT_EQ(map::Map().Level.Sectors.Count(), sectors);
}

TEST_F(MiscMenuTest, DeleteUndoAndRedoFromTheKeyboard)
{
    QTest::keyClick(Map(), Qt::Key_T);
    ASSERT_EQ(EditMode(), ModeThings);
    Settle();
    const int things = map::Map().Level.Things.Count();
    map::Selected().HighlightedObject = 0;
    QTest::keyClick(Map(), Qt::Key_Delete);
    EXPECT_EQ(map::Map().Level.Things.Count(), things - 1);
    EXPECT_EQ(Window->StatusTexts()[11].toStdString(), "Change=YES");

    QTest::keyClick(Map(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(map::Map().Level.Things.Count(), things);
    EXPECT_EQ(Window->StatusTexts()[11].toStdString(), "Change=NO");
    QTest::keyClick(Map(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(map::Map().Level.Things.Count(), things - 1);
}

} // namespace
} // namespace kelvar::app
