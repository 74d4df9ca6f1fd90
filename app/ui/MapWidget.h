// The map window: the level drawn from a back buffer, and its mouse and keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/MapMouse.h"
#include "app/MapTools.h"
#include "platform/qt/QtCanvas.h"

#include <QElapsedTimer>
#include <QImage>
#include <QTimer>
#include <QWidget>

namespace kelvar::app
{

/// Paints the level into a back buffer through the Qt canvas and shows it in one blit. Its
/// mouse events go to the map's mouse handler and its keys to the key table, the map's own
/// keys and the rubber band; after each the window is told to act on the requests left.
class MapWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit MapWidget(QWidget* parent = nullptr);

    /// The picture is out of date: it is drawn again at the next paint.
    void Redraw();

    /// Starts LineDraw, or Rotate and Scale, in the map: the window's mouse and keys go to the
    /// tool until it ends. Returns false when the tool didn't start.
    bool StartLineDrawTool();
    bool StartRotateTool();
    /// True while an interactive tool or a drag has the mouse and keys.
    bool ToolRunning() const;
    /// The running tool's line for the status bar; empty when none runs.
    QString ToolCaption() const;

    /// The picture as last painted (for tests and screenshots).
    const QImage& Picture() const { return Buffer; }

signals:
    /// An event left requests for the window.
    void RequestsLeft();
    /// A key the key table runs: the window routes its command.
    void CommandKey(int command);
    /// A double right click: the mode's pop-up menu at this window position.
    void PopupMenuWanted(QPoint position);
    /// The first picture of a loaded level reached the screen.
    void FirstMapPainted();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void Mouse(const view::MouseInput& input);
    bool ToolMouse(QMouseEvent* event, bool press);
    bool ToolKey(QKeyEvent* event);
    bool ViewKeyUnderTool(QKeyEvent* event);
    void ToolActed();
    void RenderBuffer();
    void EdgeScrollTick();

    MapMouseState MouseState;
    MapToolState Tools;
    QImage Buffer;
    platform::QtMaskPictures MaskPictures; // the grid's picture from one redraw to the next
    bool Dirty = true;
    QElapsedTimer Clock;
    QTimer EdgeTimer;
    QPoint LastPointer{-1, -1};
    bool MapPainted = false;
};

} // namespace kelvar::app
