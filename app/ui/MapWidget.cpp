// The map window: the level drawn from a back buffer, and its mouse and keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MapWidget.h"

#include "app/MapKeys.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ui/KeyEvents.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "platform/qt/QtCanvas.h"
#include "view/Colors.h"
#include "view/Renderer.h"
#include "view/ViewState.h"

#include <QCursor>
#include <QPainter>

namespace kelvar::app
{

MapWidget::MapWidget(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(200, 150);
    Clock.start();
    EdgeTimer.setInterval(30);
    connect(&EdgeTimer, &QTimer::timeout, this, &MapWidget::EdgeScrollTick);
}

void MapWidget::Redraw()
{
    Dirty = true;
    update();
}

void MapWidget::RenderBuffer()
{
    if (Buffer.size() != size())
    {
        Buffer = QImage(size(), QImage::Format_RGB32);
    }
    platform::QtCanvas canvas(Buffer, view::ColorTable(), &MaskPictures);
    const view::ViewState& view = view::View();
    if (!Session().LevelLoaded)
    {
        canvas.FillRect({0, 0, width(), height()}, view.Colors.Background);
    }
    else
    {
        view::MapPicture picture;
        picture.Level = &map::Map().Level;
        picture.EditMode = EditMode();
        picture.Selection = &map::Selected().Selection;
        picture.Highlighted = map::Selected().HighlightedObject;
        view::DrawMap(canvas, picture, view, view::DrawFull);
    }
    Dirty = false;
}

void MapWidget::paintEvent(QPaintEvent*)
{
    if (Dirty || Buffer.size() != size())
    {
        RenderBuffer();
    }
    // The band is drawn in XOR into the buffer for the blit and drawn again after it, which
    // takes it away: the map under it needs no redraw.
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    const bool band = RubberBand(MouseState, x1, y1, x2, y2);
    const auto xorBand = [&]
    {
        platform::QtCanvas canvas(Buffer, view::ColorTable());
        view::XorRubberBand(canvas, view::View(), x1, y1, x2, y2);
    };
    if (band)
    {
        xorBand();
    }
    QPainter(this).drawImage(0, 0, Buffer);
    if (band)
    {
        xorBand();
        return;
    }
    if (!MapPainted && Session().LevelLoaded)
    {
        MapPainted = true;
        emit FirstMapPainted();
    }
}

void MapWidget::resizeEvent(QResizeEvent*)
{
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    MapWindowResized(MouseState, width(), height(), pointer.x(), pointer.y());
    Redraw();
    emit RequestsLeft();
}

void MapWidget::Mouse(const view::MouseInput& input)
{
    const view::ClickMeaning meaning = MapMouseEvent(MouseState, input);
    if (meaning == view::ClickMeaning::PopupMenu)
    {
        emit PopupMenuWanted(QPoint(input.X, input.Y));
    }
    emit RequestsLeft();
}

void MapWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (position == LastPointer)
    {
        return;
    }
    LastPointer = position;
    Mouse(MouseInputOf(*event, view::MouseEventKind::Move, Clock.elapsed()));
    const EdgeScroll edge = EdgeScrollDirection(position.x(), position.y(), width(), height(),
                                                view::View().Settings.ScrollBorder);
    if ((edge.Dx != 0 || edge.Dy != 0) && event->buttons() == Qt::NoButton)
    {
        EdgeTimer.start();
    }
    else
    {
        EdgeTimer.stop();
    }
    if (MouseState.Box.Active)
    {
        update();
    }
}

void MapWidget::mousePressEvent(QMouseEvent* event)
{
    EdgeTimer.stop();
    Mouse(MouseInputOf(*event, view::MouseEventKind::Press, Clock.elapsed()));
}

void MapWidget::mouseReleaseEvent(QMouseEvent* event)
{
    Mouse(MouseInputOf(*event, view::MouseEventKind::Release, Clock.elapsed()));
    update();
}

void MapWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    Mouse(MouseInputOf(*event, view::MouseEventKind::DoubleClick, Clock.elapsed()));
}

void MapWidget::wheelEvent(QWheelEvent* event)
{
    if (event->angleDelta().y() != 0)
    {
        Mouse(MouseInputOf(*event, Clock.elapsed()));
    }
    event->accept();
}

void MapWidget::leaveEvent(QEvent*)
{
    EdgeTimer.stop();
}

void MapWidget::EdgeScrollTick()
{
    const QPoint position = mapFromGlobal(QCursor::pos());
    const EdgeScroll edge = EdgeScrollDirection(position.x(), position.y(), width(), height(),
                                                view::View().Settings.ScrollBorder);
    if (!EdgeScrollStep(edge))
    {
        EdgeTimer.stop();
    }
    emit RequestsLeft();
}

void MapWidget::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && MapMouseKey(MouseState, view::KeyEscape))
    {
        emit RequestsLeft();
        update();
        return;
    }
    if (event->key() == Qt::Key_Z && MapMouseKey(MouseState, view::KeyZ))
    {
        emit RequestsLeft();
        return;
    }
    const std::optional<KeyChord> chord = ChordOfKeyEvent(*event);
    if (chord)
    {
        const std::optional<std::uint16_t> command = CommandOfKey(*chord);
        if (command)
        {
            emit CommandKey(*command);
            return;
        }
    }
    const char character = CharacterOfKeyEvent(*event);
    if ((character != 0 && HandleMapCharacter(character)) || (chord && HandleMapKey(*chord)))
    {
        emit RequestsLeft();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool MapWidget::event(QEvent* event)
{
    // Keys of the key table win over the menu bar's Alt mnemonics and Qt's own shortcuts, as
    // the table's accelerators did.
    if (event->type() == QEvent::ShortcutOverride)
    {
        const auto* key = static_cast<QKeyEvent*>(event);
        const std::optional<KeyChord> chord = ChordOfKeyEvent(*key);
        if (chord && CommandOfKey(*chord))
        {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

bool MapWidget::focusNextPrevChild(bool)
{
    // Tab and Shift+Tab step the edit mode.
    return false;
}

} // namespace kelvar::app
