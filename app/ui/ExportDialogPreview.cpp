// The export window's preview pane and its Auto Options page.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/ExportDialog.h"

#include "app/BrowserPictures.h"
#include "app/ui/BrowserWindow.h"
#include "gfx/GamePalette.h"
#include "sound/SoundState.h"
#include "sound/Waveform.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

namespace kelvar::app
{
namespace
{

// Pictures and waves sit on a dark ground, so the light and the dark of a picture both show.
const QColor PictureGround(40, 40, 48);
const QColor CaptionColor(200, 200, 200);
const QColor WaveGround(0, 0, 0);
const QColor WaveColor(0, 220, 0);
constexpr int Margin = 6;

// Where a picture goes in `area`: the largest whole multiple of its size that fits, or, for
// one larger than the area, reduced to fit; centred.
QRect PlacePicture(QSize picture, const QRect& area)
{
    QSize size = picture;
    if (picture.width() > area.width() || picture.height() > area.height())
    {
        size = picture.scaled(area.size(), Qt::KeepAspectRatio);
    }
    else if (!picture.isEmpty())
    {
        const int factor =
            std::max(1, std::min(area.width() / picture.width(), area.height() / picture.height()));
        size = picture * factor;
    }
    QRect place(QPoint(0, 0), size);
    place.moveCenter(area.center());
    return place;
}

} // namespace

ExportPreviewPane::ExportPreviewPane(QWidget* parent) : QFrame(parent)
{
    setObjectName("Preview");
    setFrameShape(QFrame::StyledPanel);
    setFrameShadow(QFrame::Sunken);
    setMinimumSize(400, 300);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void ExportPreviewPane::Clear()
{
    Shown = Content::Nothing;
    Image = {};
    Wave.clear();
    Text.clear();
    update();
}

void ExportPreviewPane::ShowPicture(const QImage& picture, const QString& caption)
{
    Clear();
    Shown = Content::Picture;
    Image = picture;
    Caption = caption;
}

void ExportPreviewPane::ShowRaster(const gfx::ImageRaster& raster, int holeIndex)
{
    ShowPicture(ImageOfRaster(raster, gfx::Palettes().GamePalette, holeIndex),
                QString("%1 x %2").arg(raster.Width()).arg(raster.Height()));
}

void ExportPreviewPane::ShowWave(std::vector<std::uint8_t> wave)
{
    Clear();
    Shown = Content::Wave;
    Wave = std::move(wave);
}

void ExportPreviewPane::ShowLines(const QStringList& lines)
{
    Clear();
    Shown = Content::Lines;
    Text = lines;
}

void ExportPreviewPane::ShowLevel(const std::string& name)
{
    Clear();
    Shown = Content::Level;
    LevelName = name;
    DrawLevel();
}

void ExportPreviewPane::DrawLevel()
{
    const gfx::Palette& palette = gfx::Palettes().GamePalette;
    const QRect area = contentsRect().adjusted(Margin, Margin, -Margin, -Margin);
    const std::optional<gfx::ImageRaster> map =
        LevelThumbnail(LevelName, area.width(), area.height(),
                       gfx::MatchColor(palette, 220, 220, 220), gfx::MatchColor(palette, 0, 0, 0));
    Image = {};
    if (map)
    {
        ShowRaster(*map, -1);
        Shown = Content::Level;
        Caption = QString::fromStdString(LevelName);
    }
}

void ExportPreviewPane::resizeEvent(QResizeEvent* event)
{
    QFrame::resizeEvent(event);
    if (Shown == Content::Level)
    {
        DrawLevel();
    }
}

void ExportPreviewPane::PaintPicture(QPainter& painter, const QRect& area) const
{
    painter.fillRect(contentsRect(), PictureGround);
    if (Image.isNull())
    {
        return;
    }
    const QRect place = PlacePicture(Image.size(), area);
    // Whole-factor enlargements keep their pixels sharp; reductions are smoothed.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, place.width() < Image.width());
    painter.drawImage(place, Image);
    painter.setPen(CaptionColor);
    painter.drawText(area, Qt::AlignLeft | Qt::AlignBottom, Caption);
}

void ExportPreviewPane::PaintWave(QPainter& painter, const QRect& area) const
{
    painter.fillRect(contentsRect(), WaveGround);
    const auto points = sound::WaveformPoints(Wave, area.width(), area.height());
    painter.setPen(WaveColor);
    if (!points)
    {
        painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, sound::EmptyWaveformNote);
        return;
    }
    QPolygon line;
    line.reserve(static_cast<int>(points->size()));
    for (const platform::Point& point : *points)
    {
        line.append(QPoint(area.left() + point.X, area.top() + point.Y));
    }
    painter.drawPolyline(line);
}

void ExportPreviewPane::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect area = contentsRect().adjusted(Margin, Margin, -Margin, -Margin);
    switch (Shown)
    {
    case Content::Nothing:
        break;
    case Content::Picture:
    case Content::Level:
        PaintPicture(painter, area);
        break;
    case Content::Wave:
        PaintWave(painter, area);
        break;
    case Content::Lines:
        painter.fillRect(contentsRect(), palette().base());
        painter.setPen(palette().text().color());
        painter.setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, Text.join('\n'));
        break;
    }
}

ExportOptionsDialog::ExportOptionsDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Auto Options");
    setObjectName("ExportAutoOptions");
    const lumps::ExportSettings& settings = lumps::Exports().Settings;
    auto* layout = new QVBoxLayout(this);
    auto* formats = new QHBoxLayout();
    // One box of two choices for each kind of lump the Auto conversion converts.
    const auto choice =
        [this, formats](const char* title, const char* first, const char* second, bool secondChosen)
    {
        auto* box = new QGroupBox(title, this);
        auto* column = new QVBoxLayout(box);
        auto* group = new QButtonGroup(box);
        for (const char* text : {first, second})
        {
            auto* button = new QRadioButton(text, box);
            group->addButton(button, static_cast<int>(group->buttons().size()));
            column->addWidget(button);
        }
        group->button(secondChosen ? 1 : 0)->setChecked(true);
        formats->addWidget(box);
        return group;
    };
    Graphic = choice("Graphics", "&BMP", "&PCX", settings.AutoGraphicFormat == ".PCX");
    Sound = choice("Sounds", "&WAV", "&SND", settings.AutoSoundFormat == ".SND");
    Music = choice("Music", "&MID", "M&US", settings.AutoMusicFormat == ".MUS");
    layout->addLayout(formats);

    auto* tempoRow = new QHBoxLayout();
    auto* tempoLabel = new QLabel("MUS to MIDI &tempo (1 - 999)", this);
    Tempo = new QSpinBox(this);
    Tempo->setRange(1, 999);
    Tempo->setValue(sound::Sound().MusToMidiTempo);
    tempoLabel->setBuddy(Tempo);
    tempoRow->addWidget(tempoLabel);
    tempoRow->addWidget(Tempo);
    tempoRow->addStretch();
    layout->addLayout(tempoRow);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void ExportOptionsDialog::accept()
{
    lumps::ExportSettings& settings = lumps::Exports().Settings;
    settings.AutoGraphicFormat = Graphic->checkedId() == 1 ? ".PCX" : ".BMP";
    settings.AutoSoundFormat = Sound->checkedId() == 1 ? ".SND" : ".WAV";
    settings.AutoMusicFormat = Music->checkedId() == 1 ? ".MUS" : ".MID";
    sound::Sound().MusToMidiTempo = Tempo->value();
    QDialog::accept();
}

} // namespace kelvar::app
