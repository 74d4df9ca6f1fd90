// A Canvas for tests that records every operation with its arguments.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Canvas.h"

#include <string>

namespace kelvar::platform
{

/// One recorded operation: its name and its arguments, as "LineTo 30,40" reads.
struct CanvasOp
{
    std::string Name;
    std::vector<int> Args;
    std::string Text;

    /// "Name a,b,c" or "Name a,b 'text'".
    std::string ToString() const;
    bool operator==(const CanvasOp&) const = default;
};

/// Records the operations in order, and keeps the drawing state so tests can ask which pen a
/// line was drawn with.
class RecordingCanvas final : public Canvas
{
public:
    RecordingCanvas(int width = 800, int height = 600) : W(width), H(height) {}

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
    void Flush() override;

    /// A drawn line segment with the pen and mode it was drawn in.
    struct Segment
    {
        Point From;
        Point To;
        int Pen = 0;
        RasterOp Op = RasterOp::Copy;
        bool operator==(const Segment&) const = default;
    };

    std::vector<CanvasOp> Ops;
    std::vector<Segment> Segments;
    std::vector<std::string> Texts;
    int Pen = 0;
    int Brush = NullBrush;
    int TextColor = 0;
    RasterOp Op = RasterOp::Copy;

    /// The operations named `name`.
    std::vector<CanvasOp> OpsNamed(std::string_view name) const;
    /// The segments drawn with pen `color`.
    std::vector<Segment> SegmentsInColor(int color) const;

private:
    void Record(std::string name, std::vector<int> args, std::string text = {});

    int W;
    int H;
    Point Cursor;
};

} // namespace kelvar::platform
