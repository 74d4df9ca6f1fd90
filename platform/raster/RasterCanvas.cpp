// A Canvas on a plain buffer of 32-bit pixels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/raster/RasterCanvas.h"

#include "platform/raster/Font5x7.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace kelvar::platform
{

RasterCanvas::RasterCanvas(int width, int height, std::span<const std::uint32_t> colors)
    : W(std::max(width, 1)), H(std::max(height, 1)),
      Pixels(static_cast<std::size_t>(W) * static_cast<std::size_t>(H), 0),
      Colors(colors.begin(), colors.end())
{
}

std::uint32_t RasterCanvas::ColorOf(int index) const
{
    return index >= 0 && static_cast<std::size_t>(index) < Colors.size()
               ? Colors[static_cast<std::size_t>(index)]
               : 0;
}

void RasterCanvas::SetPen(int color, int width, PenStyle style)
{
    PenRgb = ColorOf(color);
    PenWidth = std::max(width, 1);
    PenKind = style;
}

void RasterCanvas::SetBrush(int color)
{
    BrushIndex = color;
}

void RasterCanvas::SetRasterOp(RasterOp op)
{
    Op = op;
}

void RasterCanvas::SetTextColor(int color)
{
    TextRgb = ColorOf(color);
}

void RasterCanvas::Plot(int x, int y, std::uint32_t rgb)
{
    if (x < 0 || y < 0 || x >= W || y >= H)
    {
        return;
    }
    std::uint32_t& pixel = Pixels[static_cast<std::size_t>(y * W + x)];
    pixel = Op == RasterOp::Xor ? (pixel ^ rgb) & 0xFFFFFF : rgb;
}

void RasterCanvas::Span(int y, int x1, int x2, std::uint32_t rgb)
{
    if (y < 0 || y >= H)
    {
        return;
    }
    const int first = std::max(x1, 0);
    const int last = std::min(x2, W - 1);
    if (first > last)
    {
        return;
    }
    std::uint32_t* row = Pixels.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(W);
    if (Op != RasterOp::Xor)
    {
        std::fill(row + first, row + last + 1, rgb);
        return;
    }
    for (int x = first; x <= last; ++x)
    {
        row[x] = (row[x] ^ rgb) & 0xFFFFFF;
    }
}

// Bresenham's line; a dashed pen skips four pixels after each four, carried along a chain of
// lines so the dashes don't restart at every joint.
void RasterCanvas::Line(Point from, Point to, bool last)
{
    if (PenKind == PenStyle::Null)
    {
        return;
    }
    const int dx = std::abs(to.X - from.X);
    const int dy = -std::abs(to.Y - from.Y);
    const int sx = from.X < to.X ? 1 : -1;
    const int sy = from.Y < to.Y ? 1 : -1;
    int error = dx + dy;
    int x = from.X;
    int y = from.Y;
    // Lines far off the canvas are walked only while they can still reach it.
    for (;;)
    {
        const bool atEnd = x == to.X && y == to.Y;
        if (atEnd && !last)
        {
            break;
        }
        const bool on = PenKind == PenStyle::Solid || (DashPhase++ / 4) % 2 == 0;
        if (on)
        {
            for (int w = 0; w < PenWidth; ++w)
            {
                Plot(x + (dy < -dx ? w : 0), y + (dy < -dx ? 0 : w), PenRgb);
            }
        }
        if (atEnd)
        {
            break;
        }
        const int twice = 2 * error;
        if (twice >= dy)
        {
            error += dy;
            x += sx;
        }
        if (twice <= dx)
        {
            error += dx;
            y += sy;
        }
    }
}

void RasterCanvas::MoveTo(int x, int y)
{
    Cursor = {x, y};
}

void RasterCanvas::LineTo(int x, int y)
{
    // Coordinates far outside would make the walk long for nothing: such lines are clipped by
    // their callers, and anything still beyond a generous margin is cut back here.
    const Point to{std::clamp(x, -W * 8, W * 9), std::clamp(y, -H * 8, H * 9)};
    const Point from{std::clamp(Cursor.X, -W * 8, W * 9), std::clamp(Cursor.Y, -H * 8, H * 9)};
    Line(from, to, false);
    Cursor = {x, y};
}

void RasterCanvas::Rectangle(int left, int top, int right, int bottom)
{
    if (right <= left || bottom <= top)
    {
        return;
    }
    if (BrushIndex != NullBrush)
    {
        for (int y = top + 1; y < bottom - 1; ++y)
        {
            Span(y, left + 1, right - 2, ColorOf(BrushIndex));
        }
    }
    const int saved = DashPhase;
    Line({left, top}, {right - 1, top}, false);
    Line({right - 1, top}, {right - 1, bottom - 1}, false);
    Line({right - 1, bottom - 1}, {left, bottom - 1}, false);
    Line({left, bottom - 1}, {left, top}, false);
    DashPhase = saved;
}

void RasterCanvas::Ellipse(int left, int top, int right, int bottom)
{
    if (right <= left || bottom <= top)
    {
        return;
    }
    const double cx = (left + right - 1) / 2.0;
    const double cy = (top + bottom - 1) / 2.0;
    const double rx = (right - left - 1) / 2.0;
    const double ry = (bottom - top - 1) / 2.0;
    // Each row of the box gets the span the ellipse covers there: filled with the brush, its
    // two ends (and the runs between rows) drawn with the pen.
    int previousLeft = 0;
    int previousRight = 0;
    for (int y = top; y < bottom; ++y)
    {
        const double t = ry > 0 ? (y - cy) / ry : 0.0;
        const double half = rx * std::sqrt(std::max(0.0, 1.0 - t * t));
        const int x1 = static_cast<int>(std::lround(cx - half));
        const int x2 = static_cast<int>(std::lround(cx + half));
        if (BrushIndex != NullBrush && x2 - x1 > 1)
        {
            Span(y, x1 + 1, x2 - 1, ColorOf(BrushIndex));
        }
        if (PenKind != PenStyle::Null)
        {
            const bool edgeRow = y == top || y == bottom - 1;
            if (edgeRow)
            {
                Span(y, x1, x2, PenRgb);
            }
            else
            {
                // Each end joins the row above, so steep parts of the rim have no gaps.
                Span(y, std::min(x1, previousLeft + 1), std::max(x1, previousLeft - 1), PenRgb);
                Span(y, std::min(x2, previousRight + 1), std::max(x2, previousRight - 1), PenRgb);
            }
        }
        previousLeft = x1;
        previousRight = x2;
    }
}

void RasterCanvas::Polygon(std::span<const Point> points)
{
    if (points.size() < 2)
    {
        return;
    }
    if (BrushIndex != NullBrush && points.size() >= 3)
    {
        // Even-odd scanline fill through pixel centres.
        int top = points[0].Y;
        int bottom = points[0].Y;
        for (const Point& p : points)
        {
            top = std::min(top, p.Y);
            bottom = std::max(bottom, p.Y);
        }
        std::vector<double> crossings;
        for (int y = std::max(top, 0); y <= std::min(bottom, H - 1); ++y)
        {
            crossings.clear();
            const double sampleY = y + 0.5;
            for (std::size_t i = 0; i < points.size(); ++i)
            {
                const Point& a = points[i];
                const Point& b = points[(i + 1) % points.size()];
                if ((a.Y <= sampleY) != (b.Y <= sampleY))
                {
                    crossings.push_back(a.X + (sampleY - a.Y) * (b.X - a.X) / (b.Y - a.Y));
                }
            }
            std::sort(crossings.begin(), crossings.end());
            for (std::size_t i = 0; i + 1 < crossings.size(); i += 2)
            {
                Span(y, static_cast<int>(std::ceil(crossings[i] - 0.5)),
                     static_cast<int>(std::floor(crossings[i + 1] - 0.5)), ColorOf(BrushIndex));
            }
        }
    }
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        Line(points[i], points[(i + 1) % points.size()], false);
    }
}

void RasterCanvas::FillRect(const Rect& rect, int color)
{
    const RasterOp saved = Op;
    Op = RasterOp::Copy;
    for (int y = rect.Top; y < rect.Bottom; ++y)
    {
        Span(y, rect.Left, rect.Right - 1, ColorOf(color));
    }
    Op = saved;
}

void RasterCanvas::TextOut(int x, int y, std::string_view text)
{
    for (const char c : text)
    {
        const std::array<std::uint8_t, 5>& glyph = Glyph(c);
        for (int column = 0; column < 5; ++column)
        {
            for (int row = 0; row < GlyphHeight; ++row)
            {
                if ((glyph[static_cast<std::size_t>(column)] >> row) & 1)
                {
                    Plot(x + column, y + row, TextRgb);
                }
            }
        }
        x += GlyphAdvance;
    }
}

void RasterCanvas::DrawPicture(const IndexedPicture& picture, const Rect& target)
{
    const int width = target.Right - target.Left;
    const int height = target.Bottom - target.Top;
    if (width <= 0 || height <= 0 || picture.Width <= 0 || picture.Height <= 0 ||
        picture.Colors.size() < 256 ||
        picture.Pixels.size() <
            static_cast<std::size_t>(picture.Pitch) * static_cast<std::size_t>(picture.Height - 1) +
                static_cast<std::size_t>(picture.Width))
    {
        return;
    }
    for (int y = std::max(target.Top, 0); y < std::min(target.Bottom, H); ++y)
    {
        const int row = (y - target.Top) * picture.Height / height;
        const std::uint8_t* source =
            picture.Pixels.data() +
            static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.Pitch);
        for (int x = std::max(target.Left, 0); x < std::min(target.Right, W); ++x)
        {
            const std::uint8_t index = source[(x - target.Left) * picture.Width / width];
            if (index != picture.Transparent)
            {
                Pixels[static_cast<std::size_t>(y * W + x)] = picture.Colors[index] & 0xFFFFFFu;
            }
        }
    }
}

void RasterCanvas::BlitMask(const MonoBitmap& bitmap, int x, int y, int color)
{
    const std::uint32_t rgb = ColorOf(color);
    const bool xorMode = Op == RasterOp::Xor;
    // Only the part that lies on the canvas is walked, a row at a time.
    const int firstColumn = std::max(0, -x);
    const int lastColumn = std::min(bitmap.Width, W - x);
    for (int row = std::max(0, -y); row < bitmap.Height && y + row < H; ++row)
    {
        const std::uint8_t* bits = bitmap.Bits.data() + static_cast<std::size_t>(row) *
                                                            static_cast<std::size_t>(bitmap.Width);
        std::uint32_t* pixels =
            Pixels.data() + static_cast<std::size_t>(y + row) * static_cast<std::size_t>(W) + x;
        for (int column = firstColumn; column < lastColumn; ++column)
        {
            // Eight clear bits at a time are passed over in one test: masks are mostly clear.
            std::uint64_t eight = 0;
            if (column + 8 <= lastColumn)
            {
                std::memcpy(&eight, bits + column, sizeof eight);
                if (eight == 0)
                {
                    column += 7;
                    continue;
                }
            }
            if (bits[column] == 0)
            {
                continue;
            }
            std::uint32_t& pixel = pixels[column];
            pixel = xorMode ? (pixel ^ rgb) & 0xFFFFFF : rgb;
        }
    }
}

} // namespace kelvar::platform
