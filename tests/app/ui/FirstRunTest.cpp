// A first start with the real dialogs: every modal box, file dialog and list that comes up is
// answered as a new user would, and the session must reach Freedoom 2 MAP01.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/ui/MainWindow.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "platform/qt/QtUi.h"
#include "tests/app/ui/DialogAnswers.h"
#include "tests/testkit/TempDir.h"
#include "view/ViewState.h"
#include "wad/WadState.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

// Answers whatever modal window is up: a message box with its first button, the project's
// file dialog with DOOM2.PRJ, a list with its first row. Keeps the captions it saw.
class NewUser
{
public:
    explicit NewUser(std::filesystem::path project) : Project(std::move(project))
    {
        Timer.setInterval(10);
        QObject::connect(&Timer, &QTimer::timeout, [this] { Answer(); });
        Timer.start();
    }

    std::vector<std::string> Seen;

private:
    void Answer()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr)
        {
            return;
        }
        if (auto* box = qobject_cast<QMessageBox*>(modal))
        {
            Seen.push_back(box->windowTitle().toStdString() + ": " + box->text().toStdString());
            box->buttons().front()->click();
            return;
        }
        if (auto* files = qobject_cast<QFileDialog*>(modal))
        {
            Seen.push_back(files->windowTitle().toStdString());
            AcceptFile(files, QString::fromStdString(Project.string()));
            return;
        }
        if (auto* list = modal->findChild<QListWidget*>("choices"))
        {
            Seen.push_back(modal->windowTitle().toStdString());
            list->setCurrentRow(0);
            modal->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        }
    }

    std::filesystem::path Project;
    QTimer Timer;
};

bool SawStarting(const std::vector<std::string>& seen, const std::string& start)
{
    return std::any_of(seen.begin(), seen.end(),
                       [&](const std::string& text) { return text.rfind(start, 0) == 0; });
}

TEST(FirstRunTest, ANewUserReachesFreedoom2Map01ThroughTheRealDialogs)
{
    testkit::TempDir dir;
    ResetSession();
    ResetShell();
    map::ResetMap();
    view::ResetView();
    game::ResetGame();
    wad::ResetWad();

    ProcessStart({}, dir.Path() / "");
    ASSERT_TRUE(CheckSecondCopy());
    {
        MainWindow window;
        platform::QtUi ui(&window);
        platform::Ui* previous = platform::InstallUi(&ui);
        NewUser user(dir.Path() / "DOOM2.PRJ");

        ASSERT_EQ(CreateSession(nullptr), CommandFirstStartup);
        window.resize(1000, 760);
        window.show();
        window.Run(CommandFirstStartup);

        EXPECT_TRUE(Session().LevelLoaded);
        EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP01");
        EXPECT_EQ(wad::Wad().Game.Game, 2);
        EXPECT_TRUE(SawStarting(user.Seen, "Kelvar Information: After you have choosen"));
        EXPECT_TRUE(SawStarting(user.Seen, "Game Project"));
        EXPECT_TRUE(SawStarting(user.Seen, "Kelvar Confirm: IWAD = "));
        EXPECT_TRUE(SawStarting(user.Seen, "Edit Level - MAP01"));
        platform::InstallUi(previous);
        window.CloseNow();
    }
    ResetSession();
    wad::ResetWad();
}

} // namespace
} // namespace kelvar::app
