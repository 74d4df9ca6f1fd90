// The renderer's lines: colour rules of each mode, clipped drawing, Vertex marks and ticks.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/GameCodes.h"
#include "view/Clip.h"
#include "view/Renderer.h"
#include "view/RendererParts.h"
#include "view/TypeLooks.h"

#include <algorithm>
#include <cmath>

namespace kelvar::view
{
namespace
{

constexpr std::uint16_t FlagBlockMonsters = 2;
constexpr std::uint16_t FlagSecret = 32;
constexpr std::uint16_t FlagBlockSound = 64;
constexpr std::uint16_t FlagHidden = 128;

// The last colour rules: the flags, then one or two sides.
int FlagColor(const map::LineDef& line, const ColorRoles& colors)
{
    if ((line.Flags & map::FlagImpassable) != 0)
    {
        return colors.Line1Sided;
    }
    if ((line.Flags & FlagBlockMonsters) != 0)
    {
        return colors.LineMonsterBlock;
    }
    if ((line.Flags & FlagSecret) != 0)
    {
        return colors.LineSecret;
    }
    if ((line.Flags & FlagBlockSound) != 0)
    {
        return colors.LineBlockSound;
    }
    if ((line.Flags & FlagHidden) != 0)
    {
        return colors.LineHidden;
    }
    return line.SideDef2 == map::NoSideDef ? colors.Line1Sided : colors.Line2Sided;
}

// A line with the hidden flag is left out unless invisible lines are shown.
bool IsHidden(const map::LineDef& line, const ViewState& view)
{
    return !view.Options.ShowInvisibleLines && (line.Flags & FlagHidden) != 0;
}

int SpecialColor(std::uint32_t type, const ViewState& view)
{
    const ColorRoles& colors = view.Colors;
    const int format = view.Options.LevelFormat;
    if (format == map::GameHexen)
    {
        if ((type >= 80 && type <= 83) || type == 121 || type == 129)
        {
            return colors.LineScript;
        }
        if (type >= 70 && type <= 75 && type != 72 && type != 73)
        {
            return colors.LineTeleport;
        }
        return colors.LineSpecial;
    }
    if (type == 39 || type == 97 || (format == map::GameDoom2 && (type == 125 || type == 126)))
    {
        return colors.LineTeleport;
    }
    return colors.LineSpecial;
}

// Behind the Things the lines step back into two quiet colours, so their types aren't
// looked up.
int ThingModeLineColor(const map::LineDef& line, const ViewState& view)
{
    if (IsHidden(line, view))
    {
        return -1;
    }
    return line.SideDef2 == map::NoSideDef ? view.Colors.Line2Sided : view.Colors.Grid;
}

const map::Sector* SectorOf(const map::LevelData& level, std::uint32_t side)
{
    if (side == map::NoSideDef || side >= level.SideDefs.size())
    {
        return nullptr;
    }
    const std::uint32_t sector = level.SideDefs[side].Sector;
    return sector < level.Sectors.size() ? &level.Sectors[sector] : nullptr;
}

} // namespace

int LineColor(const map::LineDef& line, const ViewState& view)
{
    if (IsHidden(line, view))
    {
        return -1;
    }
    if (line.Type != 0)
    {
        // A Hexen key door's row is found by its key, the special's fourth argument.
        const std::uint16_t key = view.Options.LevelFormat == map::GameHexen ? line.Args[2] : 0;
        const int own = LineTypeColor(line.Type, key);
        if (own != 0)
        {
            return own;
        }
        return line.Tag == 0 ? view.Colors.LineTypedNoTag : SpecialColor(line.Type, view);
    }
    if (line.Tag != 0)
    {
        return view.Colors.LineTagged;
    }
    return FlagColor(line, view.Colors);
}

int SectorSideColor(const map::Sector* sector, const map::LineDef& line, const ViewState& view)
{
    if (IsHidden(line, view))
    {
        return -1;
    }
    if (sector != nullptr && sector->Tag != 0)
    {
        return view.Colors.LineSpecial;
    }
    if (sector != nullptr && sector->Type != 0)
    {
        return view.Colors.SectorTyped;
    }
    return FlagColor(line, view.Colors);
}

void SelectSpecialPen(platform::Canvas& canvas, std::uint32_t type, const ViewState& view)
{
    canvas.SetPen(SpecialColor(type, view));
}

bool DrawClippedLine(platform::Canvas& canvas, const ViewState& view, double x1, double y1,
                     double x2, double y2)
{
    const MapViewport& viewport = view.Viewport;
    double ax = MapToScreenX(viewport, x1);
    double ay = MapToScreenY(viewport, y1);
    double bx = MapToScreenX(viewport, x2);
    double by = MapToScreenY(viewport, y2);
    const double width = viewport.WidthPx;
    const double height = viewport.HeightPx;
    if ((ax < 0 && bx < 0) || (ax >= width && bx >= width) || (ay < 0 && by < 0) ||
        (ay >= height && by >= height))
    {
        return false;
    }
    // The clip rectangle is wider than the window, so a long line clipped at it keeps its
    // angle on the screen.
    const double left = -ClipMargin;
    const double top = -ClipMargin;
    const double right = width + ClipMargin;
    const double bottom = height + ClipMargin;
    const bool outside = ax < left || ax > right || ay < top || ay > bottom || bx < left ||
                         bx > right || by < top || by > bottom;
    if (outside && !ClipLine(ax, ay, bx, by, left, top, right, bottom))
    {
        return false;
    }
    canvas.MoveTo(static_cast<int>(ax), static_cast<int>(ay));
    canvas.LineTo(static_cast<int>(bx), static_cast<int>(by));
    return true;
}

bool DrawLevelLine(platform::Canvas& canvas, const map::LevelData& level, const map::LineDef& line,
                   const ViewState& view)
{
    const std::size_t count = level.Vertexes.size();
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return false; // a stale reference of a damaged level has no place to be drawn
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    return DrawClippedLine(canvas, view, a.X, a.Y, b.X, b.Y);
}

void DrawLinesInMode(platform::Canvas& canvas, const map::LevelData& level, int mode,
                     const ViewState& view)
{
    int pen = -2;
    const auto draw = [&](const map::LineDef& line, int color)
    {
        if (color < 0)
        {
            return;
        }
        if (color != pen)
        {
            canvas.SetPen(color);
            pen = color;
        }
        DrawLevelLine(canvas, level, line, view);
    };
    for (const map::LineDef& line : level.LineDefs)
    {
        if (mode != ModeSectors)
        {
            draw(line, mode == ModeThings ? ThingModeLineColor(line, view) : LineColor(line, view));
            continue;
        }
        // In the colour of its first Sector, then over that in the colour of its second, so a
        // line between two Sectors shows the second's.
        draw(line, SectorSideColor(SectorOf(level, line.SideDef1), line, view));
        if (line.SideDef2 != map::NoSideDef)
        {
            draw(line, SectorSideColor(SectorOf(level, line.SideDef2), line, view));
        }
    }
}

void DrawVertexMarks(platform::Canvas& canvas, const map::LevelData& level, const ViewState& view)
{
    // One square, blitted at every Vertex in the window.
    platform::MonoBitmap square;
    square.Width = square.Height = std::max(view.Options.VertexSize, 1);
    square.Bits.assign(static_cast<std::size_t>(square.Width * square.Height), 1);
    const int size = square.Width;
    for (const map::Vertex& vertex : level.Vertexes)
    {
        const int x = MapToScreenX(view.Viewport, vertex.X) - size / 2;
        const int y = MapToScreenY(view.Viewport, vertex.Y) - size / 2;
        if (x + size >= 0 && y + size >= 0 && x < view.Viewport.WidthPx &&
            y < view.Viewport.HeightPx)
        {
            canvas.BlitMask(square, x, y, view.Colors.Vertex);
        }
    }
}

void DrawLineTick(platform::Canvas& canvas, const map::LevelData& level, const map::LineDef& line,
                  const ViewState& view)
{
    const std::size_t count = level.Vertexes.size();
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return;
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    const double dx = b.X - a.X;
    const double dy = b.Y - a.Y;
    const double length = std::hypot(dx, dy);
    if (length == 0.0)
    {
        return;
    }
    // Eight pixels long, toward the right of start to end: the front side.
    const double tick = 8.0 / view.Viewport.Scale;
    const double mx = (a.X + b.X) / 2.0;
    const double my = (a.Y + b.Y) / 2.0;
    DrawClippedLine(canvas, view, mx, my, mx + dy / length * tick, my - dx / length * tick);
}

} // namespace kelvar::view
