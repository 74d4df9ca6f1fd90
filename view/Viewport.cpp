// The map window's viewport: map units to pixels, zoom, scroll, grid and snapping.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Viewport.h"

#include <algorithm>
#include <cmath>

namespace kelvar::view
{
namespace
{

int Truncate(double value)
{
    // Far beyond the window the value only has to stay far beyond it.
    return static_cast<int>(std::clamp(value, -1.0e9, 1.0e9));
}

// The scale that fits an extent of map units into the window, with margins of 10 and 50
// pixels; 0 for an axis of no extent.
double FitScale(const MapViewport& view, double width, double height)
{
    const double scaleX = width != 0.0 ? (view.WidthPx - 10) / std::abs(width) : 0.0;
    const double scaleY = height != 0.0 ? (view.HeightPx - 50) / std::abs(height) : 0.0;
    if (scaleX == 0.0)
    {
        return scaleY;
    }
    return scaleY == 0.0 ? scaleX : std::min(scaleX, scaleY);
}

} // namespace

void SetWindowSize(MapViewport& view, int width, int height)
{
    view.WidthPx = std::max(width, 1);
    view.HeightPx = std::max(height, 1);
    view.CenterXPx = view.WidthPx / 2;
    view.CenterYPx = view.HeightPx / 2;
}

int MapToScreenX(const MapViewport& view, double x)
{
    return Truncate((x - view.OriginX) * view.Scale + view.CenterXPx);
}

int MapToScreenY(const MapViewport& view, double y)
{
    return Truncate((view.OriginY - y) * view.Scale + view.CenterYPx);
}

double ScreenToMapXExact(const MapViewport& view, double px)
{
    return (px - view.CenterXPx) / view.Scale + view.OriginX;
}

double ScreenToMapYExact(const MapViewport& view, double py)
{
    return (view.CenterYPx - py) / view.Scale + view.OriginY;
}

int ScreenToMapX(const MapViewport& view, double px)
{
    return Truncate(ScreenToMapXExact(view, px));
}

int ScreenToMapY(const MapViewport& view, double py)
{
    return Truncate(ScreenToMapYExact(view, py));
}

void CenterOn(MapViewport& view, double x, double y)
{
    view.OriginX = x;
    view.OriginY = y;
}

void BestFit(MapViewport& view, const map::LevelData& level)
{
    if (level.Vertexes.empty())
    {
        view.Scale = 0.5f;
        view.OriginX = (static_cast<double>(level.MaxX) + level.MinX) / 2;
        view.OriginY = (static_cast<double>(level.MaxY) + level.MinY) / 2 - 16 / view.Scale;
        return;
    }
    std::int32_t minX = level.Vertexes[0].X;
    std::int32_t maxX = minX;
    std::int32_t minY = level.Vertexes[0].Y;
    std::int32_t maxY = minY;
    for (const map::Vertex& vertex : level.Vertexes)
    {
        minX = std::min<std::int32_t>(minX, vertex.X);
        maxX = std::max<std::int32_t>(maxX, vertex.X);
        minY = std::min<std::int32_t>(minY, vertex.Y);
        maxY = std::max<std::int32_t>(maxY, vertex.Y);
    }
    double scale = FitScale(view, maxX - minX, maxY - minY);
    scale = scale == 0.0 ? 0.5 : std::clamp(scale, 0.01, 16.0);
    view.Scale = static_cast<float>(scale);
    view.OriginX = (static_cast<double>(maxX) + minX) / 2;
    view.OriginY = (static_cast<double>(maxY) + minY) / 2 - 16 / static_cast<double>(view.Scale);
}

void ZoomToRectangle(MapViewport& view, double x1, double y1, double x2, double y2)
{
    view.OlderScale = view.PreviousScale;
    view.OlderX = view.PreviousX;
    view.OlderY = view.PreviousY;
    view.PreviousScale = view.Scale;
    view.PreviousX = view.OriginX;
    view.PreviousY = view.OriginY;
    double scale = FitScale(view, x2 - x1, y2 - y1);
    scale = scale == 0.0 ? 1.0 : scale;
    view.Scale = static_cast<float>(std::clamp(scale, 0.01, 100.0));
    CenterOn(view, (x1 + x2) / 2, (y1 + y2) / 2);
}

bool ZoomStep(MapViewport& view, const ViewSettings& settings, int direction, int pointerX,
              int pointerY, bool keepPointer)
{
    const bool zoomIn = direction > 0;
    if (zoomIn && settings.ZoomAtPointer && keepPointer)
    {
        CenterOn(view, ScreenToMapX(view, pointerX), ScreenToMapY(view, pointerY));
        view.Scale = static_cast<float>(view.Scale * settings.ZoomInFactor);
        return true;
    }
    // The scale is kept in single precision: the limits are compared in it too.
    if (zoomIn ? view.Scale >= static_cast<float>(settings.MaximumScale)
               : view.Scale <= static_cast<float>(settings.MinimumScale))
    {
        return false;
    }
    // The map point under the pointer stays under it: step to it, scale, step back.
    const auto offsetX = [&] { return static_cast<int>((pointerX - view.CenterXPx) / view.Scale); };
    const auto offsetY = [&] { return static_cast<int>((view.CenterYPx - pointerY) / view.Scale); };
    view.OriginX += offsetX();
    view.OriginY += offsetY();
    const double scaled = view.Scale * (zoomIn ? settings.ZoomInFactor : settings.ZoomOutFactor);
    view.Scale = static_cast<float>(zoomIn ? std::min(scaled, settings.MaximumScale)
                                           : std::max(scaled, settings.MinimumScale));
    view.OriginX -= offsetX();
    view.OriginY -= offsetY();
    return true;
}

void ZoomToDigit(MapViewport& view, const ViewSettings& settings, int digit)
{
    if (digit >= 0 && digit <= 9)
    {
        view.Scale = static_cast<float>(settings.DigitScales[static_cast<std::size_t>(digit)]);
    }
}

void ToggleZoom(MapViewport& view, const ViewSettings& settings)
{
    view.Scale = static_cast<float>(std::abs(view.Scale - settings.ToggleScaleA) < 1e-6
                                        ? settings.ToggleScaleB
                                        : settings.ToggleScaleA);
}

void SwapStoredView(MapViewport& view)
{
    if (view.PreviousScale <= 0.01)
    {
        return;
    }
    const double scale = view.Scale;
    const double x = view.OriginX;
    const double y = view.OriginY;
    view.Scale = static_cast<float>(view.PreviousScale);
    view.OriginX = view.PreviousX;
    view.OriginY = view.PreviousY;
    view.PreviousScale = scale;
    view.PreviousX = x;
    view.PreviousY = y;
}

int ScrollStep(const MapViewport& view, const ViewSettings& settings)
{
    return std::max(static_cast<int>(settings.ScrollUnit * 2 / static_cast<double>(view.Scale)), 1);
}

bool Scroll(MapViewport& view, const ViewSettings& settings, const map::LevelData& level, int dx,
            int dy)
{
    const int step = ScrollStep(view, settings);
    const double newX = view.OriginX + dx * step;
    const double newY = view.OriginY + dy * step;
    // Seen from the window's far edge in the direction of the step, the target must still
    // show some of the level.
    const double halfWidth = view.WidthPx / 2.0 / view.Scale;
    const double halfHeight = view.HeightPx / 2.0 / view.Scale;
    if ((dx > 0 && newX - halfWidth > level.MaxX) || (dx < 0 && newX + halfWidth < level.MinX) ||
        (dy > 0 && newY - halfHeight > level.MaxY) || (dy < 0 && newY + halfHeight < level.MinY))
    {
        return false;
    }
    view.OriginX = newX;
    view.OriginY = newY;
    return true;
}

void GridKeyFiner(ViewSettings& settings)
{
    int& grid = settings.GridSize;
    grid = grid == 0 ? settings.GridUpper : (grid <= settings.GridLower ? 0 : grid / 2);
}

void GridKeyCoarser(ViewSettings& settings)
{
    int& grid = settings.GridSize;
    grid = grid == 0 ? settings.GridLower : (grid >= settings.GridUpper ? 0 : grid * 2);
}

void GridMenuDecrease(ViewSettings& settings)
{
    int& grid = settings.GridSize;
    grid = grid == settings.GridLower ? settings.GridUpper : grid / 2;
}

void GridMenuIncrease(ViewSettings& settings)
{
    int& grid = settings.GridSize;
    grid = grid == settings.GridUpper ? settings.GridLower : grid * 2;
}

void ChangeScrollUnit(ViewSettings& settings, int delta)
{
    settings.ScrollUnit = std::clamp(settings.ScrollUnit + delta, 1, 50);
}

int SnapToGrid(const ViewSettings& settings, int value)
{
    const int grid = settings.GridSize;
    if (grid <= 0 || !settings.GridSnap)
    {
        return value;
    }
    return value >= 0 ? (value + grid / 2) / grid * grid : (value - grid / 2) / grid * grid;
}

} // namespace kelvar::view
