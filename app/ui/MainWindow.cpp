// The main window: menus from the menu rows, the map window, the info pane, the status bar.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainWindow.h"

#include "app/CommandState.h"
#include "app/Menus.h"
#include "app/Modes.h"
#include "app/ObjectEditors.h"
#include "app/PaneTexts.h"
#include "app/Router.h"
#include "app/SaveDispatcher.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/ui/CheckDialog.h"
#include "app/ui/EditorWindows.h"
#include "app/ui/LumpTools.h"
#include "app/ui/SaveDialog.h"
#include "platform/Messages.h"
#include "platform/Processes.h"
#include "platform/qt/QtText.h"
#include "run/RunState.h"
#include "run/ui/TestOptionsDialog.h"
#include "run/ui/TestR3dDialog.h"
#include "sound/InterfaceSounds.h"
#include "wad/WadState.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QFileInfo>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMouseEvent>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

namespace kelvar::app
{
namespace
{

// The interface sound a command's cue asks for; whether it plays is the sound settings' call.
void PlayCueSound(SoundCue cue)
{
    switch (cue)
    {
    case SoundCue::None:
        return;
    case SoundCue::Confirm:
        sound::PlayInterfaceSound(sound::SoundConfirm);
        return;
    case SoundCue::Mode:
        sound::PlayInterfaceSound(sound::SoundMode);
        return;
    case SoundCue::Tick:
        sound::PlayInterfaceSound(sound::SoundTick);
        return;
    case SoundCue::Selection:
        sound::PlayInterfaceSound(sound::SoundSelection);
        return;
    }
}

using platform::Text;

// The Save dialog's test of a custom builder: its program must be found.
bool CustomBuilderReady()
{
    const std::string exe = GetText(Shell().Project.CustomExe);
    const std::vector<std::string> words = platform::SplitCommandLine(exe);
    const QString program = words.empty() ? QString() : QString::fromStdString(words.front());
    if (!program.isEmpty() && !QStandardPaths::findExecutable(program).isEmpty())
    {
        return true;
    }
    if (!program.isEmpty() && QFileInfo(program).isExecutable())
    {
        return true;
    }
    platform::ShowMessageLines(0, "NodeBuilder Error",
                               {"Please correct the Nodebuilder Path:", exe});
    return false;
}

} // namespace

MainWindow::MainWindow()
{
    setWindowTitle(VersionText);
    setObjectName("KelvarMain");

    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    MapView = new MapWidget(central);
    MapView->installEventFilter(this);
    layout->addWidget(MapView, 1);

    InfoPane = new QWidget(central);
    auto* paneLayout = new QHBoxLayout(InfoPane);
    paneLayout->setContentsMargins(6, 2, 6, 2);
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    InfoLines = new QLabel(InfoPane);
    InfoLines->setFont(fixed);
    InfoLines->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    InfoLines->setObjectName("InfoLines");
    InfoTextures = new QLabel(InfoPane);
    InfoTextures->setFont(fixed);
    InfoTextures->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    paneLayout->addWidget(InfoLines, 1);
    paneLayout->addWidget(InfoTextures, 1);
    InfoLines->installEventFilter(this);
    InfoTextures->installEventFilter(this);
    layout->addWidget(InfoPane, 0);
    setCentralWidget(central);

    CoordinatesPane = new QLabel(this);
    CoordinatesPane->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    CoordinatesPane->setVisible(false);
    statusBar()->addWidget(CoordinatesPane);
    StatusMessage = new QLabel(this);
    statusBar()->addWidget(StatusMessage, 1);
    StatusClearTimer.setSingleShot(true);
    StatusClearTimer.setInterval(5000);
    connect(&StatusClearTimer, &QTimer::timeout, this,
            [this]
            {
                if (!MapView->ToolRunning())
                {
                    StatusMessage->clear();
                }
            });
    for (std::size_t i = 0; i < StatusBarTexts().size(); ++i)
    {
        auto* field = new QLabel(this);
        field->setFrameStyle(QFrame::Panel | QFrame::Sunken);
        statusBar()->addPermanentWidget(field);
        StatusFields.push_back(field);
    }

    connect(MapView, &MapWidget::RequestsLeft, this, &MainWindow::ActOnRequests);
    connect(MapView, &MapWidget::CommandKey, this, [this](int command) { Run(command, true); });
    connect(MapView, &MapWidget::PopupMenuWanted, this, &MainWindow::ShowMiscPopup);

    BuildMenus();
    InstallSessionHooks();
    RefreshStatus();
    RefreshInfoPane();
    MapView->setFocus();
}

MainWindow::~MainWindow()
{
    Session().Hooks = SessionHooks{};
    run::Run().Test.Hooks = run::TestHooks{};
}

void MainWindow::InstallSessionHooks()
{
    SessionHooks& hooks = Session().Hooks;
    hooks.WaitCursor = [](bool on)
    {
        if (on)
        {
            QApplication::setOverrideCursor(Qt::WaitCursor);
        }
        else
        {
            QApplication::restoreOverrideCursor();
        }
    };
    hooks.DestroyWindow = [this] { CloseNow(); };
    hooks.QuickSaveBackup = [](bool onExit) { return QuickSaveBackup(onExit); };
    hooks.CrashSave = [] { return CrashSave(); };
    hooks.SaveDialog = [this](wad::SaveOptions& options)
    { return SaveDialog::Ask(options, CustomBuilderReady, this); };
    hooks.CheckDialog = [this]
    {
        if (ErrorList == nullptr)
        {
            ErrorList = new ErrorListWindow(this);
        }
        return CheckDialog::Open(*ErrorList, this);
    };
    hooks.LumpTool = [this](int tool) { OpenLumpTool(tool, this); };
    InstallEditorHooks(hooks, this);
    run::TestHooks& test = run::Run().Test.Hooks;
    test.EditTestOptions = [this](run::TestOptions& options, const std::string& info)
    { return run::EditTestOptions(this, options, info); };
    test.EditViewerOptions = [this](run::Viewer3DOptions& options)
    { return run::EditViewerOptions(this, options); };
    test.MapWindowRect = [this]
    {
        const QPoint origin = MapView->mapToGlobal(QPoint(0, 0));
        return run::ScreenRect{origin.x(), origin.y(), MapView->width(), MapView->height()};
    };
    hooks.ScreenSize = [this]
    {
        const QScreen* screen = this->screen();
        const QSize size = screen != nullptr ? screen->size() : QSize();
        return std::pair<int, int>(size.width(), size.height());
    };
}

// --- Menus ---------------------------------------------------------------------------------

void MainWindow::BuildMenus()
{
    QMenuBar* bar = menuBar();
    bar->clear();
    std::vector<QMenu*> open; // the popup of each depth
    const std::vector<MenuRow> rows = MenuBarRows(EditMode());
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const MenuRow& row = rows[i];
        const auto depth = static_cast<std::size_t>(row.Depth);
        open.resize(depth);
        QMenu* parent = depth == 0 ? nullptr : open[depth - 1];
        const bool popup = row.Command == 0 || IsMiscPopup(row);
        if (depth == 0)
        {
            QMenu* menu = bar->addMenu(Text(row.Text));
            connect(menu, &QMenu::aboutToShow, this, [this, menu] { RefreshEnabledStates(menu); });
            // Escape leaves the menu bar holding the keys once the menu has gone; the map
            // takes them back after that.
            connect(menu, &QMenu::aboutToHide, this,
                    [this] { QTimer::singleShot(0, this, &MainWindow::TakeKeyboardBack); });
            open.push_back(menu);
            continue;
        }
        if (parent == nullptr)
        {
            continue;
        }
        if (row.Text.empty())
        {
            parent->addSeparator();
            continue;
        }
        if (popup)
        {
            QMenu* menu = parent->addMenu(Text(row.Text));
            const bool hasRows = i + 1 < rows.size() && rows[i + 1].Depth > row.Depth;
            if (!hasRows)
            {
                FillRecentMenu(menu);
            }
            open.push_back(menu);
            continue;
        }
        QAction* action = parent->addAction(Text(row.Text));
        const int command = row.Command;
        action->setData(command);
        action->setEnabled(IsCommandAvailable(command));
        connect(action, &QAction::triggered, this, [this, command] { Run(command); });
    }
}

void MainWindow::FillRecentMenu(QMenu* menu)
{
    for (const RecentEntry& entry : RecentPwadEntries())
    {
        QAction* action = menu->addAction(QString::fromStdString(entry.Text));
        const int command = entry.Command;
        action->setData(command);
        connect(action, &QAction::triggered, this, [this, command] { Run(command); });
    }
    menu->setEnabled(!menu->isEmpty());
}

void MainWindow::RefreshEnabledStates(QMenu* menu)
{
    for (QAction* action : menu->actions())
    {
        if (action->menu() != nullptr)
        {
            RefreshEnabledStates(action->menu());
        }
        else if (action->data().isValid())
        {
            action->setEnabled(IsCommandEnabled(action->data().toInt()));
        }
    }
}

void MainWindow::ShowMiscPopup(QPoint position)
{
    QMenu popup(this);
    std::vector<QMenu*> open{&popup};
    const std::span<const MenuRow> rows = MiscPopupRows(EditMode());
    for (std::size_t i = 1; i < rows.size(); ++i)
    {
        const MenuRow& row = rows[i];
        const auto depth = static_cast<std::size_t>(row.Depth);
        open.resize(std::max<std::size_t>(depth, 1));
        QMenu* parent = open[depth - 1];
        if (row.Text.empty())
        {
            parent->addSeparator();
        }
        else if (row.Command == 0)
        {
            open.push_back(parent->addMenu(Text(row.Text)));
        }
        else
        {
            QAction* action = parent->addAction(Text(row.Text));
            action->setEnabled(IsCommandEnabled(row.Command));
            const int command = row.Command;
            connect(action, &QAction::triggered, this, [this, command] { Run(command); });
        }
    }
    popup.exec(MapView->mapToGlobal(position));
    TakeKeyboardBack();
}

void MainWindow::TakeKeyboardBack()
{
    // The map's keys are the window's keys: whatever a menu or dialog left the keyboard with,
    // it goes back to the map once no menu or dialog is up.
    if (QApplication::activePopupWidget() != nullptr ||
        QApplication::activeModalWidget() != nullptr)
    {
        return;
    }
    MapView->setFocus(Qt::OtherFocusReason);
}

// --- Commands and requests -----------------------------------------------------------------

void MainWindow::Run(int command, bool fromKey)
{
    const CommandResult result =
        RunCommand(command, fromKey ? CommandSource::Key : CommandSource::Menu);
    if (result == CommandResult::Busy || result == CommandResult::Unknown ||
        result == CommandResult::NotAvailable)
    {
        QApplication::beep();
    }
    ActOnRequests();
    // A command's dialogs have closed by now.
    TakeKeyboardBack();
}

void MainWindow::ActOnRequests()
{
    if (Acting)
    {
        return;
    }
    Acting = true;
    const CommandRequests requests = TakeRequests();
    PlayCueSound(requests.Sound);
    if (requests.MiscMenuChanged || requests.MenuStateChanged)
    {
        BuildMenus();
    }
    if (requests.LayoutChanged)
    {
        InfoPane->setVisible(Shell().Commands.InfoPaneShown);
    }
    if (requests.MovePointer)
    {
        QCursor::setPos(MapView->mapToGlobal(QPoint(requests.PointerX, requests.PointerY)));
    }
    if (requests.RedrawMap)
    {
        MapView->Redraw();
    }
    if (requests.RefreshStatus || requests.RedrawMap)
    {
        RefreshStatus();
    }
    if (requests.RefreshInfoPanes || requests.RedrawMap)
    {
        RefreshInfoPane();
    }
    // The running tool's line stands in the coordinates pane; it goes when the tool ends.
    const QString caption = MapView->ToolRunning() ? MapView->ToolCaption() : QString();
    CoordinatesPane->setText(caption);
    CoordinatesPane->setVisible(!caption.isEmpty());
    Acting = false;
    if (requests.StartLineDraw && !MapView->StartLineDrawTool())
    {
        QApplication::beep();
    }
    if (requests.StartRotate)
    {
        (void)MapView->StartRotateTool();
    }
    if (requests.ShowMiscMenu)
    {
        // F8: the popup opens at the pointer when it is over the map, else at the map's middle.
        QPoint at = MapView->mapFromGlobal(QCursor::pos());
        if (!MapView->rect().contains(at))
        {
            at = MapView->rect().center();
        }
        ShowMiscPopup(at);
    }
    if (requests.PostedCommand != 0)
    {
        Run(requests.PostedCommand, false);
    }
    if (requests.QuitRequested)
    {
        close();
    }
}

void MainWindow::ShowStatusText(const std::string& text)
{
    StatusMessage->setText(QString::fromStdString(text));
    StatusClearTimer.start();
}

void MainWindow::RefreshStatus()
{
    const std::vector<std::string> texts = StatusBarTexts();
    for (std::size_t i = 0; i < texts.size() && i < StatusFields.size(); ++i)
    {
        StatusFields[i]->setText(QString::fromStdString(texts[i]));
        StatusFields[i]->setVisible(!texts[i].empty());
    }
}

void MainWindow::RefreshInfoPane()
{
    const view::InfoPane pane = InfoPaneTexts();
    QStringList lines;
    for (const std::string& line : pane.Lines)
    {
        lines << QString::fromStdString(line);
    }
    InfoLines->setText(lines.join('\n'));
    QStringList textures;
    for (const view::TextureBox& box : pane.Textures)
    {
        textures << QString("s%1 %2: %3")
                        .arg(box.Side)
                        .arg(QString::fromStdString(box.Label), -6)
                        .arg(QString::fromStdString(box.Text));
    }
    if (!pane.Sprite.empty())
    {
        textures << QString::fromStdString(pane.Sprite);
    }
    InfoTextures->setText(textures.join('\n'));
}

std::vector<QString> MainWindow::StatusTexts() const
{
    std::vector<QString> texts;
    for (const QLabel* field : StatusFields)
    {
        texts.push_back(field->text());
    }
    return texts;
}

int MainWindow::PaneLineAt(const QLabel* label, QPoint at)
{
    const int top = label->contentsRect().top();
    const int spacing = std::max(1, label->fontMetrics().lineSpacing());
    return at.y() < top ? -1 : (at.y() - top) / spacing;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == MapView && event->type() == QEvent::KeyPress)
    {
        return PaneKey(static_cast<QKeyEvent*>(event)) || QMainWindow::eventFilter(watched, event);
    }
    if ((watched != InfoLines && watched != InfoTextures) ||
        event->type() != QEvent::MouseButtonPress)
    {
        return QMainWindow::eventFilter(watched, event);
    }
    const auto* mouse = static_cast<QMouseEvent*>(event);
    if (mouse->button() != Qt::LeftButton || Acting)
    {
        return false;
    }
    const int line = PaneLineAt(static_cast<QLabel*>(watched), mouse->position().toPoint());
    const bool lines = watched == InfoLines;
    if (PaneClick(EditMode(), lines ? line : -1, lines ? -1 : line))
    {
        ActOnRequests();
    }
    return true;
}

bool MainWindow::PaneKey(QKeyEvent* key)
{
    const int mode = EditMode();
    if (!InfoPane->isVisible() || (mode != ModeSectors && mode != ModeLineDefs) ||
        (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0 ||
        key->text().size() != 1 || !key->text().front().isPrint())
    {
        return false;
    }
    const QPoint global = QCursor::pos();
    if (!InfoPane->rect().contains(InfoPane->mapFromGlobal(global)))
    {
        return false;
    }
    PanePlace place;
    if (mode == ModeSectors)
    {
        // Left of the pane's middle is the ceiling, right of it the floor.
        place.Floor = InfoPane->mapFromGlobal(global).x() >= InfoPane->width() / 2;
    }
    else
    {
        const QPoint at = InfoTextures->mapFromGlobal(global);
        const std::optional<PanePlace> box = InfoTextures->rect().contains(at)
                                                 ? PanePlaceOfBox(PaneLineAt(InfoTextures, at))
                                                 : std::nullopt;
        if (!box)
        {
            return false;
        }
        place = *box;
    }
    if (PaneTextureKey(mode, place, key->text().front().toLatin1()) > 0)
    {
        ActOnRequests();
    }
    return true;
}

QString MainWindow::InfoPaneText() const
{
    return InfoLines->text();
}

bool MainWindow::InfoPaneVisible() const
{
    return InfoPane->isVisible();
}

// --- The window's life ---------------------------------------------------------------------

void MainWindow::NoteWindowRect()
{
    if (isMaximized() || isMinimized() || isFullScreen())
    {
        return;
    }
    const QRect frame = frameGeometry();
    Shell().Chk.WindowRect =
        StatusRect{frame.left(), frame.top(), frame.right() + 1, frame.bottom() + 1};
}

bool MainWindow::event(QEvent* event)
{
    // The window is active again: a dialog closed, or the user came back from another window.
    if (event->type() == QEvent::WindowActivate)
    {
        TakeKeyboardBack();
    }
    return QMainWindow::event(event);
}

void MainWindow::moveEvent(QMoveEvent* event)
{
    NoteWindowRect();
    QMainWindow::moveEvent(event);
}

void MainWindow::resizeEvent(QResizeEvent* event)
{
    NoteWindowRect();
    QMainWindow::resizeEvent(event);
}

void MainWindow::CloseNow()
{
    ClosingConfirmed = true;
    close();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    // The close of the window is the Exit command; its prompt decides.
    if (!ClosingConfirmed)
    {
        if (ExitPrompt() == ExitAnswer::Stay)
        {
            event->ignore();
            return;
        }
        ClosingConfirmed = true;
    }
    const StatusRect rect = Shell().Chk.WindowRect;
    ShutdownOnce(rect.Left, rect.Top, rect.Right, rect.Bottom);
    event->accept();
}

} // namespace kelvar::app
