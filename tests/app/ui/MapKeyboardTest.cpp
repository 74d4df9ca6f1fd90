// Tests of the map window's keyboard around menus and dialogs: an Escape that closed a menu or
// cancelled a dialog is not taken for an Escape of the next long operation, and the map takes
// the keys back when a menu or dialog closes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"

#include "platform/qt/QtUi.h"

#include <QMenuBar>
#include <functional>

namespace kelvar::app
{
namespace
{

using testkit::WhenModal;

// The recording Ui of the fixture for what the test scripts, and the real Qt Ui for Escape,
// progress and the number prompt, so Escapes take the same way as the user's.
class EscapeWatchingUi final : public platform::Ui
{
public:
    EscapeWatchingUi(platform::RecordingUi& recording, QWidget* owner)
        : Recording(recording), Real(owner)
    {
    }

    int Show(const platform::Message& message) override { return Recording.Show(message); }
    void ShowTextFile(const std::string& caption, const std::filesystem::path& file) override
    {
        Recording.ShowTextFile(caption, file);
    }
    std::optional<std::filesystem::path> ChooseFile(const platform::FileChoice& choice) override
    {
        return Recording.ChooseFile(choice);
    }
    std::optional<int> ChooseFromList(const std::string& caption,
                                      const std::vector<std::string>& items) override
    {
        return Recording.ChooseFromList(caption, items);
    }
    std::optional<int> AskNumber(const std::string& caption, const std::string& prompt, int initial,
                                 int low, int high) override
    {
        return Real.AskNumber(caption, prompt, initial, low, high);
    }
    std::optional<std::string> AskText(const std::string& caption, const std::string& prompt,
                                       const std::string& initial) override
    {
        return Recording.AskText(caption, prompt, initial);
    }
    void SetStatusText(const std::string& text) override { Recording.SetStatusText(text); }
    void ShowProgress(const std::string& caption, const std::string& detail) override
    {
        Recording.ShowProgress(caption, detail);
        if (OnProgress)
        {
            OnProgress(caption);
        }
        Real.ShowProgress(caption, detail);
    }
    void EndProgress() override { Real.EndProgress(); }
    bool PollEscape() override { return Real.PollEscape(); }
    void Beep() override { Recording.Beep(); }

    /// Runs as a progress panel opens, with its caption.
    std::function<void(const std::string&)> OnProgress;

private:
    platform::RecordingUi& Recording;
    platform::QtUi Real;
};

class MapKeyboardTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        MainWindowTest::SetUp();
        Escapes = std::make_unique<EscapeWatchingUi>(Ui, Window.get());
        PreviousUi = platform::InstallUi(Escapes.get());
        Window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window.get()));
        ASSERT_EQ(KeyTarget(), Map());
    }

    void TearDown() override
    {
        platform::InstallUi(PreviousUi);
        Escapes.reset();
        MainWindowTest::TearDown();
    }

    /// Opens the File menu with a click on the menu bar, as the user does, and closes it with
    /// Escape.
    void EscapeFromTheFileMenu()
    {
        QMenuBar* bar = Window->menuBar();
        QAction* file = bar->actions().front();
        QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, bar->actionGeometry(file).center());
        QWidget* popup = QApplication::activePopupWidget();
        ASSERT_NE(popup, nullptr);
        ASSERT_EQ(popup, file->menu());
        QTest::keyClick(popup, Qt::Key_Escape);
        ASSERT_FALSE(file->menu()->isVisible());
        QApplication::processEvents();
    }

    /// The widget that gets the window's keys. (The offscreen platform keeps a closed popup or
    /// dialog as its active window, so QApplication::focusWidget() can't tell.)
    QWidget* KeyTarget() const { return Window->focusWidget(); }

    /// Ctrl+Shift+G asks for a new grid size in a real dialog; Escape cancels it.
    void EscapeFromTheGridSizeDialog()
    {
        const int grid = view::View().Settings.GridSize;
        bool asked = false;
        WhenModal(
            [&asked](QWidget* dialog)
            {
                asked = true;
                QTest::keyClick(dialog, Qt::Key_Escape);
            });
        QTest::keyClick(Map(), Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
        ASSERT_TRUE(asked);
        ASSERT_EQ(QApplication::activeModalWidget(), nullptr);
        ASSERT_EQ(view::View().Settings.GridSize, grid) << "the dialog was cancelled";
        QApplication::processEvents();
    }

    /// F2 saves the IWAD's level into a PWAD of its own: true when the file was written.
    bool SaveWithF2(QWidget* target)
    {
        const std::filesystem::path pwad = Dir.Path() / "MAP01.wad";
        Ui.AnswerFile(pwad);
        QTest::keyClick(target, Qt::Key_F2);
        return std::filesystem::exists(pwad);
    }

    std::unique_ptr<EscapeWatchingUi> Escapes;
    platform::Ui* PreviousUi = nullptr;
};

TEST_F(MapKeyboardTest, EscapeThatClosedAMenuOrCancelledADialogDoesNotStopTheSave)
{
    EscapeFromTheFileMenu();
    EscapeFromTheGridSizeDialog();
    EXPECT_TRUE(SaveWithF2(Map()));
    EXPECT_FALSE(Ui.Saw("Short LineDef check Cancelled!"));
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(Window->StatusTexts()[11].toStdString(), "Change=NO");
}

TEST_F(MapKeyboardTest, EscapeWhileTheShortLineCheckRunsStopsTheSave)
{
    Escapes->OnProgress = [this](const std::string& caption)
    {
        if (caption.rfind("Checking ", 0) == 0)
        {
            // The user presses Escape as the check starts: it waits in the queue until the
            // check looks.
            QCoreApplication::postEvent(
                Map(), new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        }
    };
    QTest::keyClick(Map(), Qt::Key_F2);
    EXPECT_EQ(Ui.Last().Text(), "Short LineDef check Cancelled!");
    EXPECT_TRUE(Ui.FileRequests.empty()) << "the save stopped before it asked for its file";
}

TEST_F(MapKeyboardTest, MapTakesTheKeysBackWhenAMenuOrDialogCloses)
{
    EscapeFromTheFileMenu();
    ASSERT_EQ(KeyTarget(), Map()) << "not the menu bar";

    // End reaches the map: the level is fitted again after a zoom.
    QTest::keyClick(Map(), Qt::Key_Minus);
    const float zoomed = view::View().Viewport.Scale;
    QTest::keyClick(KeyTarget(), Qt::Key_End);
    EXPECT_NE(view::View().Viewport.Scale, zoomed);

    EscapeFromTheGridSizeDialog();
    ASSERT_EQ(KeyTarget(), Map());
    EXPECT_TRUE(SaveWithF2(KeyTarget()));
}

} // namespace
} // namespace kelvar::app
