// The browser window: its tool bar, the thumbnails on the display palette, keys and mouse.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/BrowserWindow.h"

#include "app/BrowserLists.h"
#include "app/BrowserPictures.h"
#include "gfx/GamePalette.h"
#include "platform/Messages.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace kelvar::app
{
namespace
{

const QColor GridBackground(48, 48, 56);
const QColor SelectionColor(255, 220, 0);
const QColor DrawnLabelColor(230, 230, 230);
const QColor UndrawnLabelColor(255, 140, 60);

// Where a picture goes in its cell: larger ones shrink to fit; smaller ones keep their size
// unless they are to be magnified; centred either way.
QRect PlaceInCell(QSize picture, const QRect& cell, bool magnifySmall)
{
    QSize size = picture;
    if (size.width() > cell.width() || size.height() > cell.height() || magnifySmall)
    {
        size = picture.scaled(cell.size(), Qt::KeepAspectRatio);
    }
    QRect place(QPoint(0, 0), size);
    place.moveCenter(cell.center());
    return place;
}

std::optional<BrowserKeyCode> KeyCodeOf(const QKeyEvent& event)
{
    switch (event.key())
    {
    case Qt::Key_Left:
        return BrowserKeyCode::Left;
    case Qt::Key_Right:
        return BrowserKeyCode::Right;
    case Qt::Key_Up:
        return BrowserKeyCode::Up;
    case Qt::Key_Down:
        return BrowserKeyCode::Down;
    case Qt::Key_PageUp:
        return BrowserKeyCode::PageUp;
    case Qt::Key_PageDown:
        return BrowserKeyCode::PageDown;
    case Qt::Key_Home:
        return BrowserKeyCode::Home;
    case Qt::Key_End:
        return BrowserKeyCode::End;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return BrowserKeyCode::Enter;
    case Qt::Key_Escape:
        return BrowserKeyCode::Escape;
    default:
        break;
    }
    const QString text = event.text();
    if (text.size() == 1 && text[0].unicode() >= ' ' && text[0].unicode() <= '~')
    {
        return BrowserKeyCode::Character;
    }
    return std::nullopt;
}

} // namespace

QImage ImageOfRaster(const gfx::ImageRaster& raster, const gfx::Palette& palette, int holeIndex)
{
    QImage image(raster.Width(), raster.Height(), QImage::Format_ARGB32);
    for (int y = 0; y < raster.Height(); ++y)
    {
        const std::uint8_t* from = raster.Row(y);
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < raster.Width(); ++x)
        {
            const gfx::Rgb colour = palette[from[x]];
            to[x] = from[x] == holeIndex ? qRgba(0, 0, 0, 0)
                                         : qRgb(colour.red, colour.green, colour.blue);
        }
    }
    return image;
}

BrowserGrid::BrowserGrid(QWidget* parent) : QWidget(parent)
{
    setObjectName("grid");
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(false);
    setMinimumSize(120, 120);
}

void BrowserGrid::ForgetPictures()
{
    Cache.clear();
}

const BrowserGrid::Thumbnail& BrowserGrid::ThumbnailOf(int index)
{
    const auto found = Cache.find(index);
    if (found != Cache.end())
    {
        return found->second;
    }
    const BrowserPicture picture = ReadBrowserPicture(Browser(), index);
    Thumbnail thumbnail;
    thumbnail.Bad = picture.Bad;
    thumbnail.Facts = picture.Facts;
    if (picture.Raster)
    {
        thumbnail.Image = ImageOfRaster(*picture.Raster, gfx::Palettes().DisplayPalette,
                                        picture.Holes ? picture.HoleIndex : -1);
    }
    return Cache.emplace(index, std::move(thumbnail)).first->second;
}

QString BrowserGrid::CurrentLabel()
{
    const BrowserState& state = Browser();
    if (state.List.empty())
    {
        return {};
    }
    return QString::fromStdString(
        BrowserLabel(state, state.Current, ThumbnailOf(state.Current).Facts));
}

void BrowserGrid::PaintCell(QPainter& painter, const BrowserCell& cell)
{
    const BrowserState& state = Browser();
    const Thumbnail& thumbnail = ThumbnailOf(cell.Index);
    const QRect box(cell.X, cell.Y, state.CellWidth, state.CellHeight);
    if (thumbnail.Bad)
    {
        painter.fillRect(box, Qt::red);
        painter.setPen(Qt::white);
        painter.drawText(box, Qt::AlignCenter, " bad lump ");
    }
    else if (!thumbnail.Image.isNull())
    {
        painter.drawImage(PlaceInCell(thumbnail.Image.size(), box, state.MagnifySmall),
                          thumbnail.Image);
    }
    if (state.ShowNames || state.Variant == BrowseLevels)
    {
        const QRect label(cell.X, cell.Y + state.CellHeight, state.CellWidth, BrowserLabelHeight);
        painter.setPen(thumbnail.Facts.Drawn ? DrawnLabelColor : UndrawnLabelColor);
        painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         QString::fromStdString(BrowserLabel(state, cell.Index, thumbnail.Facts)));
    }
    if (cell.Index == state.Current)
    {
        painter.setPen(QPen(SelectionColor, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(box.adjusted(-2, -2, 1, 1));
    }
}

void BrowserGrid::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), GridBackground);
    QFont font = painter.font();
    font.setPixelSize(11);
    painter.setFont(font);
    // The cells are inset by the frame's width so the frame of the first row shows whole.
    painter.translate(3, 3);
    for (const BrowserCell& cell : VisibleCells(Browser()))
    {
        painter.save();
        painter.setClipRect(cell.X - 3, cell.Y - 3, Browser().StepX, Browser().StepY);
        PaintCell(painter, cell);
        painter.restore();
    }
}

void BrowserGrid::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const int magnification = Browser().Magnification;
    SetBrowserGridSize(Browser(), width() - 6, height() - 6);
    if (Browser().Variant == BrowseLevels && magnification != Browser().Magnification)
    {
        ForgetPictures(); // a level is drawn at its cell's size
    }
    emit Changed();
}

void BrowserGrid::Act(BrowserAction action)
{
    switch (action)
    {
    case BrowserAction::None:
        return;
    case BrowserAction::Redraw:
        update();
        emit Changed();
        return;
    case BrowserAction::Choose:
        emit Chosen();
        return;
    case BrowserAction::Close:
        emit Closed();
        return;
    }
}

void BrowserGrid::keyPressEvent(QKeyEvent* event)
{
    const std::optional<BrowserKeyCode> code = KeyCodeOf(*event);
    if (!code)
    {
        QWidget::keyPressEvent(event);
        return;
    }
    const int magnification = Browser().Magnification;
    const char typed = *code == BrowserKeyCode::Character ? event->text().toLatin1().at(0) : '\0';
    const BrowserAction action = BrowserKey(Browser(), *code, typed);
    if (Browser().Variant == BrowseLevels && magnification != Browser().Magnification)
    {
        ForgetPictures();
    }
    Act(action);
}

void BrowserGrid::mousePressEvent(QMouseEvent* event)
{
    // Any button frames the cell under the pointer.
    const QPoint at = event->position().toPoint() - QPoint(3, 3);
    Act(BrowserClick(Browser(), at.x(), at.y(), false));
}

void BrowserGrid::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint() - QPoint(3, 3);
    Act(BrowserClick(Browser(), at.x(), at.y(), event->button() == Qt::LeftButton));
}

void BrowserGrid::wheelEvent(QWheelEvent* event)
{
    // One notch (120) is one row; turning away from the user goes down the list.
    WheelRest -= event->angleDelta().y();
    const int rows = WheelRest / 120;
    WheelRest %= 120;
    Act(BrowserWheel(Browser(), rows));
}

BrowserWindow::BrowserWindow(const platform::BrowseRequest& request, QWidget* parent)
    : QDialog(parent)
{
    setObjectName("browser");
    setWindowTitle(QString::fromStdString(request.Caption));
    BrowserState& state = Browser();
    // A caller that did not open the browser's list gets its names without pictures.
    std::vector<std::string> names;
    for (const BrowserItem& item : state.List)
    {
        names.push_back(item.Name);
    }
    if (names != request.Names)
    {
        std::vector<BrowserItem> items;
        for (const std::string& name : request.Names)
        {
            BrowserItem item;
            item.Name = name;
            items.push_back(std::move(item));
        }
        StartBrowser(state, request.Variant, std::move(items), {});
        BrowserSelect(state, request.Current);
    }

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    BuildToolBar(layout);
    GridView = new BrowserGrid(this);
    layout->addWidget(GridView, 1);
    CurrentText = new QLabel(this);
    CurrentText->setObjectName("current");
    layout->addWidget(CurrentText);
    connect(GridView, &BrowserGrid::Chosen, this, &QDialog::accept);
    connect(GridView, &BrowserGrid::Closed, this, &QDialog::reject);
    connect(GridView, &BrowserGrid::Changed, this, &BrowserWindow::Refresh);

    const QRect area = parent != nullptr     ? parent->geometry()
                       : screen() != nullptr ? screen()->availableGeometry()
                                             : QRect(0, 0, 1024, 768);
    resize(area.size() * 9 / 10);
    if (state.WindowLeft >= 0 && state.WindowTop >= 0)
    {
        move(state.WindowLeft, state.WindowTop);
    }
    GridView->setFocus();
}

void BrowserWindow::BuildToolBar(QVBoxLayout* layout)
{
    auto* bar = new QWidget(this);
    bar->setObjectName("BrowsingTool");
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    const auto button = [&](const char* text, BrowserKeyCode code, char typed = 0)
    {
        auto* push = new QPushButton(text, bar);
        push->setObjectName(text);
        push->setFocusPolicy(Qt::NoFocus);
        push->setAutoDefault(false);
        connect(push, &QPushButton::clicked, this,
                [this, code, typed]
                {
                    const int magnification = Browser().Magnification;
                    (void)BrowserKey(Browser(), code, typed);
                    if (magnification != Browser().Magnification)
                    {
                        GridView->ForgetPictures();
                    }
                    Refresh();
                });
        row->addWidget(push);
    };
    button("Top", BrowserKeyCode::Home);
    button("Botm", BrowserKeyCode::End);
    button("+", BrowserKeyCode::Character, '+');
    button("-", BrowserKeyCode::Character, '-');
    button("<<", BrowserKeyCode::PageUp);
    button(">>", BrowserKeyCode::PageDown);
    auto* help = new QPushButton("?", bar);
    help->setObjectName("?");
    help->setFocusPolicy(Qt::NoFocus);
    help->setAutoDefault(false);
    connect(help, &QPushButton::clicked, this,
            [] { platform::ShowMessageLines(platform::LinesHelp, "", BrowsingCommandsHelp()); });
    row->addWidget(help);

    const auto check = [&](const char* text, bool on, auto changed)
    {
        auto* box = new QCheckBox(text, bar);
        box->setObjectName(text);
        box->setFocusPolicy(Qt::NoFocus);
        box->setChecked(on);
        connect(box, &QCheckBox::toggled, this, changed);
        return box;
    };
    row->addWidget(check("Mag", Browser().MagnifySmall,
                         [this](bool on)
                         {
                             Browser().MagnifySmall = on;
                             Refresh();
                         }));
    Search = new QLineEdit(bar);
    Search->setObjectName("search");
    Search->setPlaceholderText("find");
    Search->setMaximumWidth(160);
    connect(Search, &QLineEdit::textEdited, this,
            [this](const QString& text)
            {
                BrowserFind(Browser(), text.toStdString());
                Refresh();
            });
    connect(Search, &QLineEdit::returnPressed, this, &QDialog::accept);
    row->addWidget(Search);
    row->addWidget(check("Name", Browser().ShowNames,
                         [this](bool on)
                         {
                             Browser().ShowNames = on;
                             SetBrowserGridSize(Browser(), Browser().GridWidth,
                                                Browser().GridHeight);
                             Refresh();
                         }));
    row->addWidget(
        check("Extrn", Browser().ExternalOnly, [this](bool on) { ExternalOnlyChanged(on); }));
    row->addStretch(1);
    layout->addWidget(bar);
}

void BrowserWindow::ExternalOnlyChanged(bool on)
{
    BrowserState& state = Browser();
    state.ExternalOnly = on;
    ReplaceBrowserList(state, BuildBrowserList(state.Variant, on));
    GridView->ForgetPictures();
    Refresh();
}

void BrowserWindow::Refresh()
{
    GridView->update();
    if (CurrentText != nullptr)
    {
        CurrentText->setText(GridView->CurrentLabel());
    }
}

void BrowserWindow::done(int result)
{
    BrowserState& state = Browser();
    PickedName = result == QDialog::Accepted ? BrowserChosenName(state) : std::nullopt;
    state.WindowLeft = pos().x();
    state.WindowTop = pos().y();
    QDialog::done(result);
}

std::optional<std::string> BrowserWindow::Open(const platform::BrowseRequest& request,
                                               QWidget* parent)
{
    BrowserWindow window(request, parent);
    window.exec();
    return window.Picked();
}

} // namespace kelvar::app
