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
#include "sound/Playback.h"
#include "view/Colors.h"
#include "view/Renderer.h"
#include "view/ViewState.h"

#include <QCursor>
#include <QPainter>
#include <QPen>
#include <QTimer>

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
    QPainter painter(this);
    painter.drawImage(0, 0, Buffer);
    int lx1 = 0, ly1 = 0, lx2 = 0, ly2 = 0;
    if (RubberLine(Tools, lx1, ly1, lx2, ly2))
    {
        painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
        painter.drawLine(lx1, ly1, lx2, ly2);
    }
    painter.end();
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
    if (meaning == view::ClickMeaning::Edit)
    {
        // The editor opens once no second click has come to make the click a double one.
        QTimer::singleShot(MouseState.Clicks.DoubleClickMs + 10, this,
                           [this]
                           {
                               if (RunPendingEdit(MouseState))
                               {
                                   emit RequestsLeft();
                               }
                           });
    }
    emit RequestsLeft();
}

// --- The interactive tools -------------------------------------------------------------------

bool MapWidget::StartLineDrawTool()
{
    if (Dragging(MouseState) || !StartLineDraw(Tools))
    {
        return false;
    }
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    if (rect().contains(pointer))
    {
        MapToolPointer(Tools, pointer.x(), pointer.y());
    }
    ToolActed();
    return true;
}

bool MapWidget::StartRotateTool()
{
    if (Dragging(MouseState))
    {
        return false;
    }
    const QPoint pointer = mapFromGlobal(QCursor::pos());
    const bool started = StartRotateScale(Tools, pointer.x(), pointer.y());
    ToolActed();
    return started;
}

bool MapWidget::ToolRunning() const
{
    return Tools.Active != MapTool::None || Dragging(MouseState);
}

QString MapWidget::ToolCaption() const
{
    return QString::fromStdString(Tools.Caption);
}

void MapWidget::ToolActed()
{
    update();
    emit RequestsLeft();
}

// A mouse event while a tool runs; false when no tool runs.
bool MapWidget::ToolMouse(QMouseEvent* event, bool press)
{
    if (Tools.Active == MapTool::None)
    {
        return false;
    }
    const QPoint at = event->position().toPoint();
    if (!press)
    {
        MapToolPointer(Tools, at.x(), at.y());
    }
    else if (Tools.Active == MapTool::LineDraw && event->button() == Qt::LeftButton)
    {
        LineDrawInput(Tools, tools::DrawAction::Click, at.x(), at.y());
    }
    else if (Tools.Active == MapTool::LineDraw && event->button() == Qt::RightButton)
    {
        LineDrawInput(Tools, tools::DrawAction::Close, at.x(), at.y());
    }
    else if (Tools.Active == MapTool::RotateScale && event->button() == Qt::LeftButton)
    {
        RotateScaleClick(Tools);
    }
    ToolActed();
    return true;
}

// A key while a tool runs: the tool's keys go to it and the others nowhere, so no command
// changes the level under the tool. False when no tool runs.
bool MapWidget::ToolKey(QKeyEvent* event)
{
    if (Tools.Active == MapTool::None)
    {
        return false;
    }
    const int key = event->key();
    if (Tools.Active == MapTool::LineDraw)
    {
        const QPoint pointer = Tools.PointerKnown ? QPoint(Tools.PointerX, Tools.PointerY)
                                                  : mapFromGlobal(QCursor::pos());
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
        {
            LineDrawInput(Tools, tools::DrawAction::Click, pointer.x(), pointer.y());
        }
        else if (key == Qt::Key_Insert)
        {
            LineDrawInput(Tools, tools::DrawAction::CloseOneSided, pointer.x(), pointer.y());
        }
        else if (ViewKeyUnderTool(event))
        {
            // The map moved under the pointer: the pane follows what is under it now.
            MapToolPointer(Tools, pointer.x(), pointer.y());
        }
        // Esc acts on its release.
    }
    else
    {
        const bool shift = (event->modifiers() & Qt::ShiftModifier) != 0;
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
        {
            RotateScaleInputKey(Tools, tools::RotateKeyEnter, shift);
        }
        else if (key == Qt::Key_Escape)
        {
            RotateScaleInputKey(Tools, tools::RotateKeyEscape, shift);
        }
        else if (key == Qt::Key_R)
        {
            RotateScaleInputKey(Tools, 'R', shift);
        }
        else if (const char character = CharacterOfKeyEvent(*event); character != 0)
        {
            RotateScaleInputKey(Tools, character, shift);
        }
    }
    ToolActed();
    return true;
}

// Home, End, the arrows and the zoom keys move the view while LineDraw runs.
bool MapWidget::ViewKeyUnderTool(QKeyEvent* event)
{
    const std::optional<KeyChord> chord = ChordOfKeyEvent(*event);
    const std::optional<std::uint16_t> command =
        chord ? CommandOfKey(*chord) : std::optional<std::uint16_t>();
    if (command && ToolLetsCommandThrough(Tools, *command))
    {
        emit CommandKey(*command);
        return true;
    }
    if (command)
    {
        return false;
    }
    const char character = CharacterOfKeyEvent(*event);
    if ((character != 0 && HandleMapCharacter(character)) || (chord && HandleMapKey(*chord)))
    {
        emit RequestsLeft();
        return true;
    }
    return false;
}

void MapWidget::keyReleaseEvent(QKeyEvent* event)
{
    if (Tools.Active == MapTool::LineDraw && event->key() == Qt::Key_Escape &&
        !event->isAutoRepeat())
    {
        const QPoint pointer = Tools.PointerKnown ? QPoint(Tools.PointerX, Tools.PointerY)
                                                  : mapFromGlobal(QCursor::pos());
        LineDrawInput(Tools, tools::DrawAction::Escape, pointer.x(), pointer.y());
        ToolActed();
        return;
    }
    QWidget::keyReleaseEvent(event);
}

// --- The mouse -------------------------------------------------------------------------------

void MapWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    if (position == LastPointer)
    {
        return;
    }
    LastPointer = position;
    if (ToolMouse(event, false))
    {
        return;
    }
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
    if (ToolMouse(event, true))
    {
        return;
    }
    Mouse(MouseInputOf(*event, view::MouseEventKind::Press, Clock.elapsed()));
}

void MapWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (Tools.Active != MapTool::None)
    {
        return;
    }
    Mouse(MouseInputOf(*event, view::MouseEventKind::Release, Clock.elapsed()));
    update();
}

void MapWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // A quick second click is a click of its own to the tools.
    if (ToolMouse(event, true))
    {
        return;
    }
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
    if (event->key() == Qt::Key_Escape)
    {
        // Esc silences a sound or music that is playing, and goes on to do what it does here.
        sound::StopSound();
        sound::StopMusic();
    }
    if (ToolKey(event))
    {
        return;
    }
    if (event->key() == Qt::Key_Escape && MapMouseKey(MouseState, view::KeyEscape))
    {
        emit RequestsLeft();
        update();
        return;
    }
    if (Dragging(MouseState))
    {
        return; // the drag ends with the release or Esc, before any other key acts
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
    if (event->type() == QEvent::ShortcutOverride && ToolRunning())
    {
        event->accept();
        return true;
    }
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
