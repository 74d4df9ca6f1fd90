// The map renderer: DrawMap's order of work, the grid, the selection overlay and feedback.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Renderer.h"

#include "game/ThingMask.h"
#include "view/RendererParts.h"

#include <algorithm>
#include <cmath>

namespace kelvar::view
{
namespace
{

// The first grid multiple at or below a map value.
int GridFloor(int value, int grid)
{
    return value >= 0 ? value / grid * grid : -((-value + grid - 1) / grid * grid);
}

// The pixel columns of the grid's verticals in the window, each once: at a grid finer than a
// pixel several of them fall on one column.
std::vector<int> GridColumns(const MapViewport& viewport, int grid)
{
    std::vector<int> columns;
    for (int x = GridFloor(ScreenToMapX(viewport, -1), grid);; x += grid)
    {
        const int column = MapToScreenX(viewport, x);
        if (column >= viewport.WidthPx)
        {
            return columns;
        }
        if (column >= 0 && (columns.empty() || columns.back() != column))
        {
            columns.push_back(column);
        }
    }
}

// The pixel rows of the grid's horizontals, each once, from the bottom of the window up.
std::vector<int> GridRows(const MapViewport& viewport, int grid)
{
    std::vector<int> rows;
    for (int y = GridFloor(ScreenToMapY(viewport, viewport.HeightPx), grid);; y += grid)
    {
        const int row = MapToScreenY(viewport, y);
        if (row < 0)
        {
            return rows;
        }
        if (row < viewport.HeightPx && (rows.empty() || rows.back() != row))
        {
            rows.push_back(row);
        }
    }
}

// Fills `picture` with the grid: dots at the crossings, or lines through them.
void PaintGrid(platform::MonoBitmap& picture, const MapViewport& viewport, int grid, bool lines,
               bool dashed)
{
    picture.Width = viewport.WidthPx;
    picture.Height = viewport.HeightPx;
    picture.Bits.assign(
        static_cast<std::size_t>(picture.Width) * static_cast<std::size_t>(picture.Height), 0);
    const auto set = [&](int x, int y)
    {
        picture.Bits[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.Width) +
                     static_cast<std::size_t>(x)] = 1;
    };
    const std::vector<int> columns = GridColumns(viewport, grid);
    const std::vector<int> rows = GridRows(viewport, grid);
    if (!lines)
    {
        for (const int y : rows)
        {
            for (const int x : columns)
            {
                set(x, y);
            }
        }
        return;
    }
    for (const int x : columns)
    {
        for (int y = 0; y < picture.Height; ++y)
        {
            if (!dashed || y % 6 < 3)
            {
                set(x, y);
            }
        }
    }
    for (const int y : rows)
    {
        for (int x = 0; x < picture.Width; ++x)
        {
            if (!dashed || x % 6 < 3)
            {
                set(x, y);
            }
        }
    }
}

// The grid of the current size, as one picture of the window's size blitted at once: dots at
// the crossings, or lines through them (dashed with the option). It is drawn however fine it
// is: zoomed far out, a grid finer than the pixels fills the window with its colour, which is
// the user's cue to coarsen it (G) or hide it (H).
void DrawGrid(platform::Canvas& canvas, const ViewState& view)
{
    const int grid = view.Settings.GridSize;
    const MapViewport& viewport = view.Viewport;
    if ((view.Options.GridDisplay & GridShown) == 0 || grid <= 0 || !(viewport.Scale > 0.0f) ||
        viewport.WidthPx <= 0 || viewport.HeightPx <= 0)
    {
        return;
    }
    // The picture is made again only when the grid, the view or the style changed.
    GridPicture& cache = view.Grid;
    const bool lines = view.Options.GridLines;
    const bool dashed = view.Options.GridDashed;
    if (cache.Picture.Bits.empty() || cache.Grid != grid || !(cache.Viewport == viewport) ||
        cache.Lines != lines || cache.Dashed != dashed)
    {
        const std::uint64_t version = cache.Picture.Version;
        PaintGrid(cache.Picture, viewport, grid, lines, dashed);
        cache.Picture.Version = version + 1;
        cache.Grid = grid;
        cache.Viewport = viewport;
        cache.Lines = lines;
        cache.Dashed = dashed;
    }
    canvas.BlitMask(cache.Picture, 0, 0, view.Colors.Grid);
}

// Small crosses at every crossing of the 64-unit grid in the window.
void DrawGrid64(platform::Canvas& canvas, const ViewState& view)
{
    const MapViewport& viewport = view.Viewport;
    if ((view.Options.GridDisplay & Grid64Shown) == 0 || viewport.Scale < 0.1f)
    {
        return;
    }
    const int size = std::clamp(view.Settings.Grid64MarkSize, 2, 6);
    platform::MonoBitmap cross;
    cross.Width = cross.Height = 2 * size + 1;
    cross.Bits.assign(static_cast<std::size_t>(cross.Width * cross.Height), 0);
    for (int i = 0; i < cross.Width; ++i)
    {
        cross.Bits[static_cast<std::size_t>(size * cross.Width + i)] = 1;
        cross.Bits[static_cast<std::size_t>(i * cross.Width + size)] = 1;
    }
    for (int x = GridFloor(ScreenToMapX(viewport, -1), 64);
         MapToScreenX(viewport, x) < viewport.WidthPx; x += 64)
    {
        for (int y = GridFloor(ScreenToMapY(viewport, viewport.HeightPx), 64);
             MapToScreenY(viewport, y) >= 0; y += 64)
        {
            canvas.BlitMask(cross, MapToScreenX(viewport, x) - size,
                            MapToScreenY(viewport, y) - size, view.Colors.Grid64);
        }
    }
}

bool ThingsShown(int mode, const ViewState& view)
{
    return mode == ModeThings || view.Options.ThingsInAllModes;
}

void DrawThings(platform::Canvas& canvas, const map::LevelData& level, const ViewState& view,
                bool sprites)
{
    const game::ThingMask& mask = game::TheThingMask();
    const bool everything = game::MaskShowsAll(mask);
    const bool hexenFormat = level.LevelLayout == map::LayoutHexen;
    for (const map::Thing& thing : level.Things)
    {
        if (everything || game::ThingPassesMask(thing, mask, hexenFormat))
        {
            DrawThing(canvas, thing, view, false, sprites);
        }
    }
}

// One object of the edit mode in the highlight style: lines thick, points boxed.
void DrawMarked(platform::Canvas& canvas, const MapPicture& picture, const ViewState& view,
                int object, int width)
{
    const map::LevelData& level = *picture.Level;
    const auto index = static_cast<std::size_t>(object);
    canvas.SetPen(view.Colors.Selection, width);
    switch (picture.EditMode)
    {
    case ModeThings:
        if (index < level.Things.size())
        {
            const map::Thing& thing = level.Things[index];
            const int x = MapToScreenX(view.Viewport, thing.X);
            const int y = MapToScreenY(view.Viewport, thing.Y);
            const int r = std::max(static_cast<int>(16 * view.Viewport.Scale), 3) + 2 * width;
            canvas.Rectangle(x - r, y - r, x + r + 1, y + r + 1);
        }
        break;
    case ModeVertexes:
        if (index < level.Vertexes.size())
        {
            const map::Vertex& vertex = level.Vertexes[index];
            const int x = MapToScreenX(view.Viewport, vertex.X);
            const int y = MapToScreenY(view.Viewport, vertex.Y);
            const int r = view.Options.VertexSize / 2 + 1 + width;
            canvas.Rectangle(x - r, y - r, x + r + 1, y + r + 1);
        }
        break;
    case ModeLineDefs:
        if (index < level.LineDefs.size())
        {
            DrawLevelLine(canvas, level, level.LineDefs[index], view);
            DrawLineTick(canvas, level, level.LineDefs[index], view);
        }
        break;
    case ModeSectors:
        for (const map::LineDef& line : level.LineDefs)
        {
            for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
            {
                if (side != map::NoSideDef && side < level.SideDefs.size() &&
                    level.SideDefs[side].Sector == static_cast<std::uint32_t>(object))
                {
                    DrawLevelLine(canvas, level, line, view);
                    break;
                }
            }
        }
        break;
    default:
        break;
    }
}

} // namespace

void DrawSelection(platform::Canvas& canvas, const MapPicture& picture, const ViewState& view)
{
    canvas.SetRasterOp(platform::RasterOp::Xor);
    canvas.SetBrush(platform::NullBrush);
    if (picture.Selection != nullptr)
    {
        picture.Selection->ForEach([&](std::int32_t object)
                                   { DrawMarked(canvas, picture, view, object, 3); });
    }
    if (picture.Highlighted >= 0)
    {
        DrawMarked(canvas, picture, view, picture.Highlighted, 1);
    }
    canvas.SetRasterOp(platform::RasterOp::Copy);
}

void DrawMap(platform::Canvas& canvas, const MapPicture& picture, const ViewState& view, int flags)
{
    if (picture.Level == nullptr)
    {
        return;
    }
    const map::LevelData& level = *picture.Level;
    if ((flags & DrawSelectionOnly) != 0)
    {
        DrawSelection(canvas, picture, view);
        return;
    }
    const bool sprites = picture.EditMode == ModeThings && view.Options.SpriteDisplay;
    const int background = sprites ? view.Colors.BackgroundThings : view.Colors.Background;
    canvas.SetRasterOp(platform::RasterOp::Copy);
    if ((flags & DrawFull) != 0)
    {
        canvas.FillRect({-1, -1, view.Viewport.WidthPx + 1, view.Viewport.HeightPx + 1},
                        background);
    }
    if (level.LineDefs.empty() && level.Things.empty() && level.Vertexes.empty())
    {
        canvas.Flush();
        return; // an empty level has nothing more to show
    }
    if ((flags & DrawLinesOnly) != 0)
    {
        canvas.SetPen(view.Colors.Line2Sided);
        for (const map::LineDef& line : level.LineDefs)
        {
            DrawLevelLine(canvas, level, line, view);
        }
        canvas.Flush();
        return;
    }
    DrawGrid(canvas, view);
    DrawGrid64(canvas, view);
    canvas.SetPen(view.Colors.Grid64);
    canvas.MoveTo(0, 0);
    canvas.LineTo(0, view.Viewport.HeightPx);
    canvas.MoveTo(view.Viewport.WidthPx - 1, 0);
    canvas.LineTo(view.Viewport.WidthPx - 1, view.Viewport.HeightPx);

    DrawLinesInMode(canvas, level, picture.EditMode, view);
    if (picture.EditMode == ModeVertexes || view.Options.ShowVertexes)
    {
        DrawVertexMarks(canvas, level, view);
    }
    if (ThingsShown(picture.EditMode, view))
    {
        DrawThings(canvas, level, view, sprites);
    }
    DrawSelection(canvas, picture, view);
    canvas.Flush();
}

void XorRubberBand(platform::Canvas& canvas, const ViewState& view, int x1, int y1, int x2, int y2)
{
    canvas.SetRasterOp(platform::RasterOp::Xor);
    canvas.SetPen(view.Colors.Selection, 1, platform::PenStyle::Dash);
    canvas.SetBrush(platform::NullBrush);
    canvas.Rectangle(std::min(x1, x2), std::min(y1, y2), std::max(x1, x2) + 1,
                     std::max(y1, y2) + 1);
    canvas.SetRasterOp(platform::RasterOp::Copy);
}

void XorRuler(platform::Canvas& canvas, const ViewState& view)
{
    const int radius =
        static_cast<int>(view.Settings.RulerRadius * static_cast<double>(view.Viewport.Scale));
    if (!view.Options.RulerOn || radius <= 0)
    {
        return;
    }
    const int x = view.Pointer.X;
    const int y = view.Pointer.Y;
    canvas.SetRasterOp(platform::RasterOp::Xor);
    canvas.SetPen(view.Colors.Selection, 1,
                  view.Options.RulerDashed ? platform::PenStyle::Dash : platform::PenStyle::Solid);
    canvas.SetBrush(platform::NullBrush);
    if (view.Options.RulerSquare)
    {
        canvas.Rectangle(x - radius, y - radius, x + radius + 1, y + radius + 1);
    }
    else
    {
        canvas.Ellipse(x - radius, y - radius, x + radius + 1, y + radius + 1);
    }
    canvas.SetRasterOp(platform::RasterOp::Copy);
}

} // namespace kelvar::view
