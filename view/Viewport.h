// The map window's viewport: map units to pixels, zoom, scroll, grid and snapping.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every part of the editor that turns a map coordinate into a pixel, or a pointer position
// into a map coordinate, uses these formulas and nothing else. The map's y axis runs up, the
// window's down. All arithmetic is in double precision and converting back to an integer
// truncates toward zero.
#pragma once

#include "map/LevelData.h"

#include <array>
#include <cstdint>

namespace kelvar::view
{

/// The mapping between map units and pixels of the map window.
struct MapViewport
{
    double OriginX = 0.0; // map point at the window's centre
    double OriginY = 0.0;
    float Scale = 0.5f;       // pixels per map unit
    double CenterXPx = 400.0; // pixel position of the centre point
    double CenterYPx = 300.0;
    std::int32_t WidthPx = 800;
    std::int32_t HeightPx = 600;
    double PreviousScale = 0.0; // the view before the last zoom-to-rectangle step
    double PreviousX = 0.0;
    double PreviousY = 0.0;
    double OlderScale = 0.0; // the view before that one
    double OlderX = 0.0;
    double OlderY = 0.0;

    bool operator==(const MapViewport&) const = default;
};

/// The settings of zoom, scroll and grid, with their built-in defaults.
struct ViewSettings
{
    int GridSize = 8;
    int GridLower = 1;   // 1 to 16
    int GridUpper = 512; // 16 to 4096
    bool GridSnap = true;
    int ScrollUnit = 5; // pixels a step, 1 to 50
    int ScrollBorder = 10;
    double MinimumScale = 0.025;
    double MaximumScale = 100.0;
    double ZoomOutFactor = 0.9;
    double ZoomInFactor = 1.1;
    std::array<double, 10> DigitScales = {0.1, 1.0,   0.5,   0.333, 0.25,
                                          0.2, 0.166, 0.142, 0.125, 0.111};
    double ToggleScaleA = 8.0; // the two scales Z switches between
    double ToggleScaleB = 0.125;
    bool ZoomAtPointer = true;
    int Grid64MarkSize = 2; // 2 to 6
    int RulerRadius = 128;  // 0 to 2048

    bool operator==(const ViewSettings&) const = default;
};

/// Sets the window's size; the centre point is its middle.
void SetWindowSize(MapViewport& view, int width, int height);

int MapToScreenX(const MapViewport& view, double x);
int MapToScreenY(const MapViewport& view, double y);
int ScreenToMapX(const MapViewport& view, double px);
int ScreenToMapY(const MapViewport& view, double py);
/// The map point of a pixel without truncation.
double ScreenToMapXExact(const MapViewport& view, double px);
double ScreenToMapYExact(const MapViewport& view, double py);

/// Puts the map point (x, y) at the window's centre.
void CenterOn(MapViewport& view, double x, double y);

/// Fits the level's Vertexes in the window: the smaller of the scales of the two axes (an
/// axis of no extent doesn't count), 0.5 for a level with no Vertexes, limited to 0.01 to 16,
/// with room left below for the info panes.
void BestFit(MapViewport& view, const map::LevelData& level);

/// Fits the rectangle of map corners in the window, limited to 0.01 to 100; the old view is
/// kept for Shift+Z.
void ZoomToRectangle(MapViewport& view, double x1, double y1, double x2, double y2);

/// Zooms out (direction < 0) or in (> 0) by one step, keeping the map point under the pointer
/// (pixel position) where it is. With ZoomAtPointer and `keepPointer`, zooming in centres on
/// the pointer instead. Returns false when the step was refused (at the limit).
bool ZoomStep(MapViewport& view, const ViewSettings& settings, int direction, int pointerX,
              int pointerY, bool keepPointer);

/// Sets the scale of digit key 0 to 9.
void ZoomToDigit(MapViewport& view, const ViewSettings& settings, int digit);

/// Z: toggles between the two fixed scales.
void ToggleZoom(MapViewport& view, const ViewSettings& settings);

/// Shift+Z: swaps the current view with the stored one, when that has a scale above 0.01.
void SwapStoredView(MapViewport& view);

/// The step of a scroll in map units: the scroll unit twice over, at the current scale.
int ScrollStep(const MapViewport& view, const ViewSettings& settings);

/// Scrolls one step (dx, dy in -1, 0, 1; dy 1 is up the map). A step that would take the
/// window's far edge past the level's bounding box is refused: returns false.
bool Scroll(MapViewport& view, const ViewSettings& settings, const map::LevelData& level, int dx,
            int dy);

/// Key G: at or below the lower limit the grid goes off; off becomes the upper limit;
/// otherwise halved.
void GridKeyFiner(ViewSettings& settings);
/// Key Shift+G: at or above the upper limit the grid goes off; off becomes the lower limit;
/// otherwise doubled.
void GridKeyCoarser(ViewSettings& settings);
/// Menu "Grid Decrease": the lower limit wraps to the upper; otherwise halved.
void GridMenuDecrease(ViewSettings& settings);
/// Menu "Grid Increase": the upper limit wraps to the lower; otherwise doubled.
void GridMenuIncrease(ViewSettings& settings);
/// [ and ]: the scroll unit down or up by one, within 1 and 50.
void ChangeScrollUnit(ViewSettings& settings, int delta);

/// Rounds a coordinate to the nearest grid multiple, halves away from zero, when the grid is
/// on and snapping is on.
int SnapToGrid(const ViewSettings& settings, int value);

} // namespace kelvar::view
