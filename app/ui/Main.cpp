// kelvar: the editor's entry. Process start, the running-copy test, the window, the loop.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/ui/BrowserWindow.h"
#include "app/ui/MainWindow.h"
#include "platform/Fatal.h"
#include "platform/Paths.h"
#include "platform/qt/QtAudio.h"
#include "platform/qt/QtClock.h"
#include "platform/qt/QtUi.h"

#include <QApplication>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>
#include <cstdlib>

namespace
{

using namespace kelvar;

// Puts the window where KELVAR.CHK had it, checked against the screen.
void PlaceMainWindow(app::MainWindow& window)
{
    const app::StatusRect stored = app::Shell().Chk.WindowRect;
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect area = screen != nullptr ? screen->availableGeometry() : QRect(0, 0, 1280, 800);
    const app::WindowPlacement place = app::PlaceWindow(stored.Left, stored.Top, stored.Right,
                                                        stored.Bottom, area.width(), area.height());
    if (place.Maximised)
    {
        window.setGeometry(area);
        window.showMaximized();
        return;
    }
    window.setGeometry(place.Left, place.Top, place.Right - place.Left, place.Bottom - place.Top);
    window.show();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QApplication::setApplicationName("Kelvar");
    QApplication::setApplicationVersion("13.0.5");

    platform::QtUi ui;
    platform::InstallUi(&ui);
    platform::InstallOutOfMemoryHandler();

    const app::CommandLine line = app::ParseCommandLine(app::CommandLineText(argc, argv));
    app::ProcessStart(line, platform::DefaultProgramDir());
    if (!app::CheckSecondCopy())
    {
        return 0;
    }

    platform::QtClock clock;
    platform::QtAudio audio;
    platform::ScopedAudio installedAudio(audio);
    app::MainWindow window;
    ui.SetOwner(&window);
    ui.SetStatusSink([&window](const std::string& text) { window.ShowStatusText(text); });
    ui.SetBrowser([&window](const platform::BrowseRequest& request)
                  { return app::BrowserWindow::Open(request, &window); });
    platform::InstallFatalHook([] { app::FatalShutdown(); });

    const int startup = app::CreateSession(&clock);
    if (startup == 0)
    {
        return 0;
    }
    // For the start-up benchmark: the time from process start to the first painted map.
    if (std::getenv("KELVAR_QUIT_AFTER_FIRST_PAINT") != nullptr)
    {
        QObject::connect(window.Map(), &app::MapWidget::FirstMapPainted, &window,
                         [&window]
                         { QTimer::singleShot(0, &window, [&window] { window.close(); }); });
    }
    PlaceMainWindow(window);
    // The files load from the event loop, with the window on screen.
    QTimer::singleShot(0, &window, [&window, startup] { window.Run(startup); });
    const int status = QApplication::exec();
    platform::InstallFatalHook({});
    platform::InstallUi(nullptr);
    return status;
}
