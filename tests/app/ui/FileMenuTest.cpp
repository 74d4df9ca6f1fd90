// Tests of the File menu in the editor's window with the real dialogs: Open PWAD by its key
// and its file dialog, the recent PWADs in the menu, Close 1 File by the menu and its list.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/ui/MainWindow.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "platform/qt/QtUi.h"
#include "tests/app/StatusTestKit.h"
#include "tests/app/ui/DialogAnswers.h"
#include "tests/testkit/LevelBuilder.h"
#include "view/ViewState.h"
#include "wad/WadState.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <memory>

namespace kelvar::app
{
namespace
{

// Answers the modal windows that come up: a file dialog with `File`, a list with the row that
// reads `Row`, a message box with its first button. Keeps the titles it saw, and the rows of
// the lists.
class DialogDriver
{
public:
    DialogDriver()
    {
        Timer.setInterval(10);
        QObject::connect(&Timer, &QTimer::timeout, [this] { Answer(); });
        Timer.start();
    }

    QString File;
    QString Row;
    QStringList Seen;
    QStringList Rows;

private:
    void Answer()
    {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr)
        {
            return;
        }
        Seen << modal->windowTitle();
        if (auto* box = qobject_cast<QMessageBox*>(modal))
        {
            box->buttons().front()->click();
        }
        else if (auto* files = qobject_cast<QFileDialog*>(modal))
        {
            AcceptFile(files, File);
        }
        else if (auto* list = modal->findChild<QListWidget*>("choices"))
        {
            Rows.clear();
            for (int i = 0; i < list->count(); ++i)
            {
                Rows << list->item(i)->text();
            }
            const QList<QListWidgetItem*> found = list->findItems(Row, Qt::MatchExactly);
            list->setCurrentItem(found.isEmpty() ? nullptr : found.front());
            modal->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        }
    }

    QTimer Timer;
};

class FileMenuTest : public StatusFixture
{
protected:
    void SetUp() override
    {
        StatusFixture::SetUp();
        ResetSession();
        map::ResetMap();
        view::ResetView();
        game::ResetGame();

        ProcessStart({}, Dir.Path() / "");
        ASSERT_TRUE(CheckSecondCopy());
        Window = std::make_unique<MainWindow>();
        ASSERT_EQ(CreateSession(nullptr), CommandFirstStartup);
        Shell().Chk.SkipEnvironmentChecks = 1;
        Window->resize(1000, 760);
        Window->show();
        Ui.AnswerFile(Dir.Path() / "DOOM2.PRJ").Answer(1).AnswerList(0);
        Window->Run(CommandFirstStartup);
        ASSERT_TRUE(Session().LevelLoaded);
        Map01Lines = map::Map().Level.LineDefs.Count();
        QApplication::processEvents();

        // From here on the real dialogs answer.
        RealUi = std::make_unique<platform::QtUi>(Window.get());
        Previous = platform::InstallUi(RealUi.get());
    }

    void TearDown() override
    {
        platform::InstallUi(Previous);
        RealUi.reset();
        Window->CloseNow();
        Window.reset();
        ResetSession();
        StatusFixture::TearDown();
    }

    /// A PWAD whose `level` is one square room.
    std::string RoomPwad(const std::string& file, const std::string& level) const
    {
        testkit::WadBuilder wad;
        testkit::LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(wad, level);
        return wad.Write(Dir.Path() / file);
    }

    /// The File menu's entry of a command, searched through its sub-menus.
    QAction* FileEntry(int command, QMenu* menu = nullptr) const
    {
        if (menu == nullptr)
        {
            menu = Window->menuBar()->actions().front()->menu();
        }
        for (QAction* action : menu->actions())
        {
            if (action->menu() != nullptr)
            {
                if (QAction* found = FileEntry(command, action->menu()))
                {
                    return found;
                }
            }
            else if (action->data().toInt() == command)
            {
                return action;
            }
        }
        return nullptr;
    }

    /// Opens the File menu, as the user does, so its entries show their states.
    void ShowFileMenu() const
    {
        QMenu* menu = Window->menuBar()->actions().front()->menu();
        menu->popup(Window->mapToGlobal(QPoint(0, 0)));
        QApplication::processEvents();
        menu->hide();
    }

    QWidget* Map() const { return Window->Map(); }

    std::unique_ptr<MainWindow> Window;
    std::unique_ptr<platform::QtUi> RealUi;
    platform::Ui* Previous = nullptr;
    int Map01Lines = 0;
};

TEST_F(FileMenuTest, ShiftF5OpensAPwadThroughTheFileDialogAndTheMenuListsIt)
{
    const std::string path = RoomPwad("room.wad", "MAP07");
    DialogDriver driver;
    driver.File = QString::fromStdString(path);

    QTest::keyClick(Map(), Qt::Key_F5, Qt::ShiftModifier);

    EXPECT_EQ(driver.Seen, QStringList{"Open PWAD"});
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP07");
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), 4);
    EXPECT_EQ(wad::Wad().OpenFiles[0], path);
    QAction* recent = FileEntry(CmdRecentPwadFirst);
    ASSERT_NE(recent, nullptr) << "the File menu's recent PWADs";
    EXPECT_EQ(recent->text().toStdString(), "&1 " + path);

    // The recent entry opens it again without the dialog.
    ASSERT_EQ(QTest::qWaitFor([] { return QApplication::activeModalWidget() == nullptr; }), true);
    recent->trigger();
    EXPECT_EQ(driver.Seen, QStringList{"Open PWAD"});
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP07");
}

TEST_F(FileMenuTest, CloseOneFileFromTheMenuListsTheFilesAndClosesTheChosenOne)
{
    ShowFileMenu();
    QAction* closeOne = FileEntry(CmdCloseOneFile);
    ASSERT_NE(closeOne, nullptr);
    EXPECT_FALSE(closeOne->isEnabled()) << "no PWAD to close";

    const std::string over = RoomPwad("over.wad", "MAP01");
    const std::string other = RoomPwad("other.wad", "MAP09");
    DialogDriver driver;
    driver.File = QString::fromStdString(over);
    Window->Run(CmdOpenPwad);
    driver.File = QString::fromStdString(other);
    Window->Run(CmdOpenPwad);
    ASSERT_EQ(GetText(Shell().Project.LevelName), "MAP09");
    driver.Row = "MAP01";
    Window->Run(CmdEditLevel); // back to MAP01, from over.wad
    ASSERT_EQ(GetText(Shell().Project.LevelName), "MAP01");
    ASSERT_EQ(map::Map().Level.LineDefs.Count(), 4);

    ShowFileMenu();
    closeOne = FileEntry(CmdCloseOneFile);
    ASSERT_NE(closeOne, nullptr);
    EXPECT_TRUE(closeOne->isEnabled());
    driver.Seen.clear();
    driver.Row = QString::fromStdString(over);
    closeOne->trigger();

    EXPECT_EQ(driver.Seen, QStringList{"Select File to Reset"});
    EXPECT_EQ(driver.Rows,
              (QStringList{QString::fromStdString(over), QString::fromStdString(other)}));
    EXPECT_EQ(wad::Wad().OpenFiles[0], other);
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP01");
    EXPECT_EQ(map::Map().Level.LineDefs.Count(), Map01Lines) << "MAP01 is the IWAD's again";
    EXPECT_EQ(wad::Wad().CurrentFile.FileNumber, 0);
    EXPECT_TRUE(Session().LevelLoaded);
}

} // namespace
} // namespace kelvar::app
