// Tests of the level checker's windows on Freedoom 2 MAP01: F10's dialog runs a check into the
// error list, a click on the list shows the object, and the Statistics button ends the dialog
// and shows the report.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/CheckDialog.h"

#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace kelvar::app
{
namespace
{

using testkit::WhenModal;

class CheckDialogTest : public MainWindowTest
{
protected:
    static ErrorListWindow* OpenErrorList()
    {
        for (QWidget* widget : QApplication::topLevelWidgets())
        {
            if (widget->objectName() == "ErrorList" && widget->isVisible())
            {
                return dynamic_cast<ErrorListWindow*>(widget);
            }
        }
        return nullptr;
    }
};

TEST_F(CheckDialogTest, F10RunsACheckIntoTheErrorListAndAClickShowsTheObject)
{
    QString message;
    WhenModal(
        [&message](QWidget* widget)
        {
            auto* dialog = dynamic_cast<CheckDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->windowTitle(), "Check Level");
            dialog->findChild<QCheckBox*>()->setChecked(true); // " Write Error Dialog Log"
            QPushButton* texture = dialog->ButtonOf(check::CheckButton::MissingTextures);
            EXPECT_EQ(texture->text(), " &4   Check missing Sidef Textures");
            texture->click();
            message = dialog->MessageText();
            EXPECT_TRUE(texture->isChecked());
            dialog->grab().save(KELVAR_SCREENSHOT_DIR "/check-dialog.png");
            dialog->accept();
        });
    QTest::keyClick(Map(), Qt::Key_F10);
    EXPECT_EQ(message, ".. Errors Found ..");

    ErrorListWindow* list = OpenErrorList();
    ASSERT_NE(list, nullptr);
    const std::vector<check::Finding>& entries = list->Entries();
    ASSERT_GT(entries.size(), check::ErrorListHeader().size());
    EXPECT_EQ(entries[0].Text, check::ErrorListHeader()[0]);
    const auto line =
        std::find_if(entries.begin(), entries.end(),
                     [](const check::Finding& f) { return f.Kind == map::KindLineDef; });
    ASSERT_NE(line, entries.end());
    EXPECT_EQ(line->Text.rfind("Linedef ", 0), 0U) << line->Text;

    auto* view = list->findChild<QListWidget*>();
    const int row = static_cast<int>(line - entries.begin());
    EXPECT_EQ(view->item(row)->text().toStdString(), check::FindingLine(*line));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualItemRect(view->item(row)).center());
    EXPECT_EQ(EditMode(), ModeLineDefs);
    EXPECT_EQ(map::Selected().HighlightedObject, static_cast<int>(line->Index));
    list->grab().save(KELVAR_SCREENSHOT_DIR "/check-error-list.png");

    const std::size_t before = entries.size();
    view->setCurrentRow(row);
    list->RemoveSelected();
    EXPECT_EQ(list->Entries().size(), before - 1);
}

TEST_F(CheckDialogTest, StatisticsEndsTheDialogAndShowsTheReport)
{
    bool closed = false;
    WhenModal(
        [&closed](QWidget* widget)
        {
            auto* dialog = dynamic_cast<CheckDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            dialog->ButtonOf(check::CheckButton::Statistics)->click();
            closed = !dialog->isVisible();
        });
    QTest::keyClick(Map(), Qt::Key_F10);
    QApplication::processEvents();
    EXPECT_TRUE(closed);
    ASSERT_EQ(Ui.TextFiles.size(), 1U);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "Statistics");
    ASSERT_FALSE(Ui.TextFiles[0].Lines.empty());
    EXPECT_EQ(Ui.TextFiles[0].Lines[0], "Number of Object Statistics");
}

} // namespace
} // namespace kelvar::app
