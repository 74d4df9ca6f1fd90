// The drawing port: pens and brushes by colour index, copy or XOR drawing, lines, shapes, text.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kelvar::platform
{

/// How a drawing operation combines with what is there: replace it, or XOR with it (drawing
/// twice restores the picture, which is how feedback is drawn and erased).
enum class RasterOp : std::uint8_t
{
    Copy,
    Xor,
};

enum class PenStyle : std::uint8_t
{
    Solid,
    Dash,
    Null,
};

struct Point
{
    int X = 0;
    int Y = 0;

    bool operator==(const Point&) const = default;
};

/// A rectangle of pixels, right and bottom excluded.
struct Rect
{
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    bool operator==(const Rect&) const = default;
};

/// A one-bit picture: the set pixels are drawn in one colour, the others leave the canvas as
/// it is. The grid's dots, the 64-unit marks and the Vertex squares are drawn this way.
struct MonoBitmap
{
    int Width = 0;
    int Height = 0;
    std::vector<std::uint8_t> Bits; // one byte a pixel, row after row; non-zero is set
    /// Not 0: names this content, so a canvas may keep what it made of it and reuse it while
    /// the same version comes again. 0: compare the bits.
    std::uint64_t Version = 0;

    bool At(int x, int y) const { return Bits[static_cast<std::size_t>(y * Width + x)] != 0; }
};

/// A picture of palette indexes in its own 256 colours (0x00RRGGBB), rows `Pitch` bytes apart:
/// sprites and textures, coloured by the game's palette rather than the canvas's table. Pixels
/// of `Transparent` (0 to 255; -1 for none) leave the canvas as it is.
struct IndexedPicture
{
    int Width = 0;
    int Height = 0;
    int Pitch = 0;
    std::span<const std::uint8_t> Pixels;
    std::span<const std::uint32_t> Colors;
    int Transparent = -1;
};

/// No brush: shapes are drawn as outlines only.
inline constexpr int NullBrush = -1;

/// A surface the map is drawn on. Colours are indices in the canvas's colour table. LineTo
/// draws from the current point up to, not including, its end point, so a chain of lines in
/// XOR mode has no doubled pixels at its joints; rectangles and ellipses take the box from
/// left/top to right/bottom with right and bottom excluded.
class Canvas
{
public:
    virtual ~Canvas() = default;

    virtual int Width() const = 0;
    virtual int Height() const = 0;

    virtual void SetPen(int color, int width = 1, PenStyle style = PenStyle::Solid) = 0;
    virtual void SetBrush(int color) = 0;
    virtual void SetRasterOp(RasterOp op) = 0;
    virtual void SetTextColor(int color) = 0;

    virtual void MoveTo(int x, int y) = 0;
    virtual void LineTo(int x, int y) = 0;
    virtual void Rectangle(int left, int top, int right, int bottom) = 0;
    virtual void Ellipse(int left, int top, int right, int bottom) = 0;
    virtual void Polygon(std::span<const Point> points) = 0;
    virtual void FillRect(const Rect& rect, int color) = 0;
    /// Text with a transparent background, its top-left corner at (x, y).
    virtual void TextOut(int x, int y, std::string_view text) = 0;
    /// Draws the set pixels of `bitmap` with its top-left corner at (x, y).
    virtual void BlitMask(const MonoBitmap& bitmap, int x, int y, int color) = 0;
    /// Draws the picture stretched into `target`, each canvas pixel taking the picture pixel
    /// nearest to it; clipped to the canvas.
    virtual void DrawPicture(const IndexedPicture& picture, const Rect& target) = 0;
    /// The picture is finished: show it.
    virtual void Flush() = 0;
};

} // namespace kelvar::platform
