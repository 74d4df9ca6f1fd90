// A Canvas for tests that records every operation with its arguments.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/test/RecordingCanvas.h"

namespace kelvar::platform
{

std::string CanvasOp::ToString() const
{
    std::string text = Name;
    for (std::size_t i = 0; i < Args.size(); ++i)
    {
        text += (i == 0 ? " " : ",") + std::to_string(Args[i]);
    }
    if (!Text.empty())
    {
        text += " '" + Text + "'";
    }
    return text;
}

void RecordingCanvas::Record(std::string name, std::vector<int> args, std::string text)
{
    Ops.push_back({std::move(name), std::move(args), std::move(text)});
}

void RecordingCanvas::SetPen(int color, int width, PenStyle style)
{
    Pen = color;
    Record("Pen", {color, width, static_cast<int>(style)});
}

void RecordingCanvas::SetBrush(int color)
{
    Brush = color;
    Record("Brush", {color});
}

void RecordingCanvas::SetRasterOp(RasterOp op)
{
    Op = op;
    Record("RasterOp", {static_cast<int>(op)});
}

void RecordingCanvas::SetTextColor(int color)
{
    TextColor = color;
    Record("TextColor", {color});
}

void RecordingCanvas::MoveTo(int x, int y)
{
    Cursor = {x, y};
    Record("MoveTo", {x, y});
}

void RecordingCanvas::LineTo(int x, int y)
{
    Segments.push_back({Cursor, {x, y}, Pen, Op});
    Cursor = {x, y};
    Record("LineTo", {x, y});
}

void RecordingCanvas::Rectangle(int left, int top, int right, int bottom)
{
    Record("Rectangle", {left, top, right, bottom});
}

void RecordingCanvas::Ellipse(int left, int top, int right, int bottom)
{
    Record("Ellipse", {left, top, right, bottom});
}

void RecordingCanvas::Polygon(std::span<const Point> points)
{
    std::vector<int> args;
    for (const Point& point : points)
    {
        args.push_back(point.X);
        args.push_back(point.Y);
    }
    Record("Polygon", std::move(args));
}

void RecordingCanvas::FillRect(const Rect& rect, int color)
{
    Record("FillRect", {rect.Left, rect.Top, rect.Right, rect.Bottom, color});
}

void RecordingCanvas::TextOut(int x, int y, std::string_view text)
{
    Texts.emplace_back(text);
    Record("TextOut", {x, y}, std::string(text));
}

void RecordingCanvas::DrawPicture(const IndexedPicture& picture, const Rect& target)
{
    Record("DrawPicture",
           {target.Left, target.Top, target.Right, target.Bottom, picture.Width, picture.Height});
}

void RecordingCanvas::BlitMask(const MonoBitmap& bitmap, int x, int y, int color)
{
    Record("BlitMask", {x, y, bitmap.Width, bitmap.Height, color});
}

void RecordingCanvas::Flush()
{
    Record("Flush", {});
}

std::vector<CanvasOp> RecordingCanvas::OpsNamed(std::string_view name) const
{
    std::vector<CanvasOp> found;
    for (const CanvasOp& op : Ops)
    {
        if (op.Name == name)
        {
            found.push_back(op);
        }
    }
    return found;
}

std::vector<RecordingCanvas::Segment> RecordingCanvas::SegmentsInColor(int color) const
{
    std::vector<Segment> found;
    for (const Segment& segment : Segments)
    {
        if (segment.Pen == color)
        {
            found.push_back(segment);
        }
    }
    return found;
}

} // namespace kelvar::platform
