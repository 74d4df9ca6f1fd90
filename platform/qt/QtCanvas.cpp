// The Canvas port over QPainter.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/qt/QtCanvas.h"

#include <QPolygon>

namespace kelvar::platform
{

QtCanvas::QtCanvas(QImage& buffer, std::span<const std::uint32_t> colors, QtMaskPictures* kept)
    : Buffer(buffer), Painter(&buffer), Colors(colors.begin(), colors.end()),
      Kept(kept != nullptr ? kept : &OwnPictures)
{
    QFont font("Monospace");
    font.setStyleHint(QFont::TypeWriter);
    font.setPixelSize(10);
    Painter.setFont(font);
    Painter.setRenderHint(QPainter::Antialiasing, false);
    Pen.setCosmetic(true);
}

QtCanvas::~QtCanvas()
{
    Painter.end();
}

QColor QtCanvas::ColorOf(int index) const
{
    const std::uint32_t rgb = index >= 0 && static_cast<std::size_t>(index) < Colors.size()
                                  ? Colors[static_cast<std::size_t>(index)]
                                  : 0;
    return QColor::fromRgb(rgb);
}

void QtCanvas::SetPen(int color, int width, PenStyle style)
{
    Pen = QPen(ColorOf(color), width);
    Pen.setCapStyle(Qt::FlatCap);
    Pen.setStyle(style == PenStyle::Solid  ? Qt::SolidLine
                 : style == PenStyle::Dash ? Qt::DashLine
                                           : Qt::NoPen);
    Painter.setPen(Pen);
}

void QtCanvas::SetBrush(int color)
{
    Painter.setBrush(color == NullBrush ? QBrush(Qt::NoBrush) : QBrush(ColorOf(color)));
}

void QtCanvas::SetRasterOp(RasterOp op)
{
    Painter.setCompositionMode(op == RasterOp::Xor ? QPainter::RasterOp_SourceXorDestination
                                                   : QPainter::CompositionMode_SourceOver);
}

void QtCanvas::SetTextColor(int color)
{
    TextColor = ColorOf(color);
}

void QtCanvas::MoveTo(int x, int y)
{
    Cursor = QPoint(x, y);
}

void QtCanvas::LineTo(int x, int y)
{
    Painter.drawLine(Cursor, QPoint(x, y));
    Cursor = QPoint(x, y);
}

void QtCanvas::Rectangle(int left, int top, int right, int bottom)
{
    // The box's right and bottom are outside it; Qt's rectangle of a 1-pixel pen is drawn
    // on the edge pixels, so it spans one less.
    Painter.drawRect(left, top, right - left - 1, bottom - top - 1);
}

void QtCanvas::Ellipse(int left, int top, int right, int bottom)
{
    Painter.drawEllipse(left, top, right - left - 1, bottom - top - 1);
}

void QtCanvas::Polygon(std::span<const Point> points)
{
    QPolygon polygon;
    for (const Point& point : points)
    {
        polygon << QPoint(point.X, point.Y);
    }
    Painter.drawPolygon(polygon);
}

void QtCanvas::FillRect(const Rect& rect, int color)
{
    const QPainter::CompositionMode mode = Painter.compositionMode();
    Painter.setCompositionMode(QPainter::CompositionMode_Source);
    Painter.fillRect(QRect(rect.Left, rect.Top, rect.Right - rect.Left, rect.Bottom - rect.Top),
                     ColorOf(color));
    Painter.setCompositionMode(mode);
}

void QtCanvas::TextOut(int x, int y, std::string_view text)
{
    const QPen pen = Painter.pen();
    Painter.setPen(TextColor);
    const QFontMetrics metrics = Painter.fontMetrics();
    Painter.drawText(x, y + metrics.ascent(),
                     QString::fromLocal8Bit(text.data(), static_cast<qsizetype>(text.size())));
    Painter.setPen(pen);
}

namespace
{

QImage PictureOf(const MonoBitmap& bitmap, QRgb rgb)
{
    QImage picture(bitmap.Width, bitmap.Height, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    for (int row = 0; row < bitmap.Height; ++row)
    {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(row));
        const std::uint8_t* bits = bitmap.Bits.data() + static_cast<std::size_t>(row) *
                                                            static_cast<std::size_t>(bitmap.Width);
        for (int column = 0; column < bitmap.Width; ++column)
        {
            if (bits[column] != 0)
            {
                line[column] = rgb;
            }
        }
    }
    return picture;
}

} // namespace

void QtCanvas::DrawPicture(const IndexedPicture& picture, const Rect& target)
{
    if (picture.Width <= 0 || picture.Height <= 0 || picture.Colors.size() < 256 ||
        target.Right <= target.Left || target.Bottom <= target.Top)
    {
        return;
    }
    // The pixels are wrapped, not copied; the colour table carries the transparent index as a
    // clear colour.
    QImage image(picture.Pixels.data(), picture.Width, picture.Height, picture.Pitch,
                 QImage::Format_Indexed8);
    QList<QRgb> colors(256);
    for (int i = 0; i < 256; ++i)
    {
        colors[i] = i == picture.Transparent
                        ? qRgba(0, 0, 0, 0)
                        : (0xFF000000u | picture.Colors[static_cast<std::size_t>(i)]);
    }
    image.setColorTable(colors);
    Painter.drawImage(
        QRect(target.Left, target.Top, target.Right - target.Left, target.Bottom - target.Top),
        image);
}

void QtCanvas::BlitMask(const MonoBitmap& bitmap, int x, int y, int color)
{
    if (bitmap.Width <= 0 || bitmap.Height <= 0)
    {
        return;
    }
    const QRgb rgb = ColorOf(color).rgb();
    if (bitmap.Version != 0)
    {
        // The grid: its picture is made when its version or colour changes, and kept.
        if (Kept->Picture.isNull() || Kept->Version != bitmap.Version || Kept->Rgb != rgb)
        {
            Kept->Picture = PictureOf(bitmap, rgb);
            Kept->Version = bitmap.Version;
            Kept->Rgb = rgb;
        }
        Painter.drawImage(x, y, Kept->Picture);
        return;
    }
    // The Vertex squares and the 64-unit marks blit one mask many times over: its picture is
    // made once and kept until another mask or colour comes.
    if (MaskPicture.isNull() || rgb != MaskRgb || bitmap.Width != Mask.Width ||
        bitmap.Height != Mask.Height || bitmap.Bits != Mask.Bits)
    {
        MaskPicture = PictureOf(bitmap, rgb);
        Mask = bitmap;
        MaskRgb = rgb;
    }
    Painter.drawImage(x, y, MaskPicture);
}

void QtCanvas::Flush()
{
    if (OnFlush)
    {
        OnFlush();
    }
}

} // namespace kelvar::platform
