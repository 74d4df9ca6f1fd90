// The main window: the menu bar built from the menu rows, the map window, the info pane and
// the status bar; it runs the commands and acts on the requests they leave.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/ui/MapWidget.h"

#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QTimer>
#include <string>
#include <vector>

namespace kelvar::app
{

class ErrorListWindow;

/// The window of the editor. It hooks itself into the session, so the session's start-up
/// steps reach its menus, cursor and closing.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow();
    ~MainWindow() override;

    /// Runs a command by number as the menu or a key does, then acts on its requests.
    void Run(int command, bool fromKey = false);

    /// Acts on the requests the commands and the map window left: redraws, the status bar,
    /// the info pane, the menus, the exit.
    void ActOnRequests();

    /// Closes the window without the exit prompt (a start-up that can't go on).
    void CloseNow();

    MapWidget* Map() const { return MapView; }
    /// The status bar fields in order, and the info pane's text.
    std::vector<QString> StatusTexts() const;
    /// The status line: the last text a command or tool gave (it clears after a while unless
    /// a tool runs), and the coordinates pane where a running tool shows its line.
    void ShowStatusText(const std::string& text);
    QString StatusLine() const { return StatusMessage->text(); }
    QString CoordinatesPaneText() const { return CoordinatesPane->text(); }
    QString InfoPaneText() const;
    bool InfoPaneVisible() const;

protected:
    bool event(QEvent* event) override;
    /// The info pane's hot areas: clicks on its lines and texture boxes, and keys typed with the
    /// pointer over it.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void BuildMenus();
    void FillRecentMenu(QMenu* menu);
    void RefreshEnabledStates(QMenu* menu);
    void RefreshStatus();
    void RefreshInfoPane();
    void InstallSessionHooks();
    void NoteWindowRect();
    void ShowMiscPopup(QPoint position);
    void TakeKeyboardBack();
    /// The line of a pane label under a point of it.
    static int PaneLineAt(const QLabel* label, QPoint at);
    bool PaneKey(QKeyEvent* key);

    MapWidget* MapView = nullptr;
    ErrorListWindow* ErrorList = nullptr; // the checker's findings; made on first use
    QWidget* InfoPane = nullptr;
    QLabel* InfoLines = nullptr;
    QLabel* InfoTextures = nullptr;
    QLabel* CoordinatesPane = nullptr;
    QLabel* StatusMessage = nullptr;
    QTimer StatusClearTimer;
    std::vector<QLabel*> StatusFields;
    bool ClosingConfirmed = false;
    bool Acting = false;
};

} // namespace kelvar::app
