// The Canvas port over QPainter, drawing into a back buffer that a widget shows in one blit.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Canvas.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <cstdint>
#include <span>
#include <vector>

namespace kelvar::platform
{

/// The pictures made of versioned masks (the grid), kept by their owner across canvases, so a
/// redraw blits the grid without making its picture again.
struct QtMaskPictures
{
    std::uint64_t Version = 0;
    QRgb Rgb = 0;
    QImage Picture;
};

/// Draws into a QImage of the window's size; the widget paints the image when Flush says the
/// picture is done. XOR drawing uses the raster engine's XOR composition.
class QtCanvas final : public Canvas
{
public:
    /// `kept`, when given, keeps the pictures of versioned masks from one canvas to the next.
    QtCanvas(QImage& buffer, std::span<const std::uint32_t> colors, QtMaskPictures* kept = nullptr);
    ~QtCanvas() override;
    QtCanvas(const QtCanvas&) = delete;
    QtCanvas& operator=(const QtCanvas&) = delete;

    int Width() const override { return Buffer.width(); }
    int Height() const override { return Buffer.height(); }
    void SetPen(int color, int width, PenStyle style) override;
    void SetBrush(int color) override;
    void SetRasterOp(RasterOp op) override;
    void SetTextColor(int color) override;
    void MoveTo(int x, int y) override;
    void LineTo(int x, int y) override;
    void Rectangle(int left, int top, int right, int bottom) override;
    void Ellipse(int left, int top, int right, int bottom) override;
    void Polygon(std::span<const Point> points) override;
    void FillRect(const Rect& rect, int color) override;
    void TextOut(int x, int y, std::string_view text) override;
    void BlitMask(const MonoBitmap& bitmap, int x, int y, int color) override;
    void DrawPicture(const IndexedPicture& picture, const Rect& target) override;
    void Flush() override;

    /// Called by Flush: the widget repaints from the buffer.
    std::function<void()> OnFlush;

private:
    QColor ColorOf(int index) const;

    QImage& Buffer;
    QPainter Painter;
    std::vector<std::uint32_t> Colors;
    QPen Pen;
    QColor TextColor;
    QPoint Cursor;
    MonoBitmap Mask; // the last unversioned mask blitted, in MaskRgb as MaskPicture
    QRgb MaskRgb = 0;
    QImage MaskPicture;
    QtMaskPictures OwnPictures; // when no owner keeps them
    QtMaskPictures* Kept = &OwnPictures;
};

} // namespace kelvar::platform
