// Tests of the Qt dialogs behind the Ui port: what a message box and a list choice show, and
// which answer each button gives.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtUi.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

namespace kelvar::platform
{
namespace
{

/// Runs `act` on the modal dialog once it is up.
void WhenModal(std::function<void(QWidget*)> act)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout,
                     [timer, act]
                     {
                         QWidget* modal = QApplication::activeModalWidget();
                         if (modal == nullptr)
                         {
                             return;
                         }
                         timer->stop();
                         timer->deleteLater();
                         act(modal);
                     });
    timer->start();
}

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

} // namespace
} // namespace kelvar::platform
