// Tests of the Qt dialogs behind the Ui port: what a message box and a list choice show, which
// answer each button gives, and which Escapes a long operation sees.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtUi.h"
#include "tests/app/ui/WhenUp.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

namespace kelvar::platform
{
namespace
{

using testkit::WhenModal;

QPushButton* ButtonNamed(QWidget* dialog, const QString& text)
{
    for (QPushButton* button : dialog->findChildren<QPushButton*>())
    {
        if (button->text() == text)
        {
            return button;
        }
    }
    return nullptr;
}

TEST(QtUiTest, MessageBoxShowsTheTitleTextAndOwnButtonTexts)
{
    QtUi ui;
    Message warning;
    warning.Title = "Kelvar -            !! WARNING !!";
    warning.Lines = {"\nCaution - Kelvar is already active!", "Using the ClipBoard is OK"};
    warning.Buttons = MessageButtons::OkCancel;
    warning.ButtonTexts = {"&OK Continue", "&Cancel"};
    QString title;
    QString text;
    bool bothButtons = false;
    WhenModal(
        [&](QWidget* dialog)
        {
            auto* box = qobject_cast<QMessageBox*>(dialog);
            ASSERT_NE(box, nullptr);
            title = box->windowTitle();
            text = box->text();
            bothButtons = ButtonNamed(box, "&OK Continue") != nullptr &&
                          ButtonNamed(box, "&Cancel") != nullptr;
            ButtonNamed(box, "&Cancel")->click();
        });
    EXPECT_EQ(ui.Show(warning), 0);
    EXPECT_EQ(title.toStdString(), "Kelvar -            !! WARNING !!");
    EXPECT_EQ(text.toStdString(),
              "\nCaution - Kelvar is already active!\nUsing the ClipBoard is OK");
    EXPECT_TRUE(bothButtons);

    WhenModal([](QWidget* dialog) { ButtonNamed(dialog, "&OK Continue")->click(); });
    EXPECT_EQ(ui.Show(warning), 1);
}

TEST(QtUiTest, ThreeWayQuestionAnswersTwoForItsThirdButton)
{
    QtUi ui;
    Message question;
    question.Title = "Kelvar Confirm";
    question.Lines = {"File has been modified. Save Changes?"};
    question.Buttons = MessageButtons::YesNoCancel;
    WhenModal(
        [](QWidget* dialog)
        {
            auto* box = qobject_cast<QMessageBox*>(dialog);
            box->button(QMessageBox::Cancel)->click();
        });
    EXPECT_EQ(ui.Show(question), 2);
    WhenModal([](QWidget* dialog)
              { qobject_cast<QMessageBox*>(dialog)->button(QMessageBox::No)->click(); });
    EXPECT_EQ(ui.Show(question), 0);
}

TEST(QtUiTest, ListChoiceGivesTheRowOrNothing)
{
    QtUi ui;
    WhenModal(
        [](QWidget* dialog)
        {
            dialog->findChild<QListWidget*>("choices")->setCurrentRow(2);
            dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        });
    EXPECT_EQ(ui.ChooseFromList("Edit Level - MAP01", {"MAP01", "MAP02", "MAP03"}), 2);
    WhenModal(
        [](QWidget* dialog)
        { dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->click(); });
    EXPECT_FALSE(ui.ChooseFromList("Edit Level - MAP01", {"MAP01"}).has_value());
}

void PostEscape(QObject* receiver)
{
    QCoreApplication::postEvent(receiver,
                                new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
}

TEST(QtUiTest, EscapeCountsOnlyWhenPressedWhileALongOperationRuns)
{
    QtUi ui;
    QWidget window;
    window.show();
    Message question;
    question.Title = "Kelvar Confirm";
    question.Lines = {"Continue?"};
    question.Buttons = MessageButtons::YesNo;

    // Escape while nothing runs goes to the window that has the keys (a menu, the map).
    QTest::keyClick(&window, Qt::Key_Escape);
    EXPECT_FALSE(ui.PollEscape());
    // Escape that cancels a dialog.
    WhenModal([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    EXPECT_EQ(ui.Show(question), 0);
    EXPECT_FALSE(ui.PollEscape());

    // Pressed while the operation runs, it waits in the queue until the poll; it counts once.
    PostEscape(&window);
    EXPECT_TRUE(ui.PollEscape());
    EXPECT_FALSE(ui.PollEscape());

    // Pressed as the progress panel came up and never polled: the next operation doesn't see
    // it, whether the panel closed or the application waited for input meanwhile.
    PostEscape(&window);
    ui.ShowProgress("Checking 7 Short LineDefs (esc Cancel)", "");
    ui.EndProgress();
    EXPECT_FALSE(ui.PollEscape());
    PostEscape(&window);
    ui.ShowProgress("Checking 7 Short LineDefs (esc Cancel)", "");
    QTest::qWait(30);
    QEventLoop idle;
    QTimer::singleShot(20, &idle, &QEventLoop::quit);
    idle.exec();
    EXPECT_FALSE(ui.PollEscape());
    ui.EndProgress();

    // A question the operation puts while it runs: its Escape answers it and stops nothing.
    int answer = -1;
    QTimer::singleShot(0, [&] { answer = ui.Show(question); });
    WhenModal([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    EXPECT_FALSE(ui.PollEscape());
    EXPECT_EQ(answer, 0);
}

} // namespace
} // namespace kelvar::platform
