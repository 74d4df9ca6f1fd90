// A Canvas on a plain buffer of 32-bit pixels, with no window system: pictures of maps for
// the command line and pixel tests.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Canvas.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace kelvar::platform
{

/// Draws into width x height pixels of 0x00RRGGBB. Colour indices are looked up in the
/// table given at construction; an index outside it draws black.
class RasterCanvas final : public Canvas
{
public:
    RasterCanvas(int width, int height, std::span<const std::uint32_t> colors);

    int Width() const override { return W; }
    int Height() const override { return H; }
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
    void Flush() override {}

    /// The pixel at (x, y), 0x00RRGGBB.
    std::uint32_t PixelAt(int x, int y) const
    {
        return Pixels[static_cast<std::size_t>(y * W + x)];
    }
    std::span<const std::uint32_t> Data() const { return Pixels; }
    /// The RGB value of a colour index.
    std::uint32_t ColorOf(int index) const;

private:
    void Plot(int x, int y, std::uint32_t rgb);
    void Span(int y, int x1, int x2, std::uint32_t rgb);
    void Line(Point from, Point to, bool last);

    int W;
    int H;
    std::vector<std::uint32_t> Pixels;
    std::vector<std::uint32_t> Colors;
    std::uint32_t PenRgb = 0;
    PenStyle PenKind = PenStyle::Solid;
    int PenWidth = 1;
    int BrushIndex = NullBrush;
    std::uint32_t TextRgb = 0;
    RasterOp Op = RasterOp::Copy;
    Point Cursor;
    int DashPhase = 0;
};

/// Writes pixels of 0x00RRGGBB as an 8-bit RGB PNG file. Returns false when the file can't be
/// written.
[[nodiscard]] bool WritePng(const std::filesystem::path& path, int width, int height,
                            std::span<const std::uint32_t> pixels);

/// Reads an 8-bit RGB or RGBA PNG file into pixels of 0x00RRGGBB; empty on failure.
std::vector<std::uint32_t> ReadPng(const std::filesystem::path& path, int& width, int& height);

} // namespace kelvar::platform
