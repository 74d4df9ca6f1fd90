// Tests of the viewport: the formulas, fitting, zooming, scrolling, the grid commands.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Viewport.h"
#include "tests/testkit/LevelBuilder.h"

#include <gtest/gtest.h>

namespace kelvar::view
{
namespace
{

MapViewport Window(int width = 800, int height = 600)
{
    MapViewport view;
    SetWindowSize(view, width, height);
    return view;
}

TEST(Viewport, FormulasTruncateTowardZero)
{
    MapViewport view = Window();
    view.Scale = 0.3f;
    CenterOn(view, 100, -50);
    EXPECT_EQ(MapToScreenX(view, 100), 400);
    EXPECT_EQ(MapToScreenY(view, -50), 300);
    // (10 - 100) * 0.3 + 400 = 373.0 (as float 0.3 gives 372.99...), truncated.
    EXPECT_EQ(MapToScreenX(view, 10),
              static_cast<int>((10 - 100) * static_cast<double>(0.3f) + 400));
    EXPECT_EQ(ScreenToMapX(view, 0), static_cast<int>((0 - 400) / static_cast<double>(0.3f) + 100));
    // A map point left of the origin far enough gives a negative pixel, truncated toward 0.
    view.Scale = 1.0f;
    EXPECT_EQ(MapToScreenX(view, -300.5), -0);
    EXPECT_EQ(MapToScreenX(view, -301.5), -1);
    EXPECT_EQ(ScreenToMapY(view, 301.5), -51);
}

TEST(Viewport, BestFitTakesTheSmallerScaleOfTheAxesThatHaveExtent)
{
    MapViewport view = Window();
    map::LevelData empty;
    empty.MaxX = 100;
    empty.MinX = -100;
    BestFit(view, empty);
    EXPECT_FLOAT_EQ(view.Scale, 0.5f);
    EXPECT_DOUBLE_EQ(view.OriginX, 0.0);

    const map::LevelData room = testkit::LevelBuilder().Room(0, 0, 1000, 500).Build();
    BestFit(view, room);
    EXPECT_FLOAT_EQ(view.Scale, static_cast<float>(std::min(790.0 / 1000, 550.0 / 500)));
    EXPECT_DOUBLE_EQ(view.OriginX, 500.0);
    EXPECT_NEAR(view.OriginY, 250.0 - 16 / static_cast<double>(view.Scale), 1e-9);

    // A level that is one vertical line fits by its height only.
    testkit::LevelBuilder line;
    line.Vertex(40, 0).Vertex(40, 2000).Line(0, 1, 0);
    BestFit(view, line.Build());
    EXPECT_FLOAT_EQ(view.Scale, 550.0f / 2000.0f);

    testkit::LevelBuilder tiny;
    tiny.Vertex(0, 0).Vertex(1, 1).Line(0, 1, 0);
    BestFit(view, tiny.Build());
    EXPECT_FLOAT_EQ(view.Scale, 16.0f);
}

TEST(Viewport, ZoomStepKeepsThePointUnderThePointerAndStopsAtTheLimits)
{
    ViewSettings settings;
    MapViewport view = Window();
    view.Scale = 1.0f;
    const int mapX = ScreenToMapX(view, 600);
    const int mapY = ScreenToMapY(view, 100);
    ASSERT_TRUE(ZoomStep(view, settings, -1, 600, 100, true));
    EXPECT_FLOAT_EQ(view.Scale, 0.9f);
    EXPECT_NEAR(ScreenToMapX(view, 600), mapX, 2);
    EXPECT_NEAR(ScreenToMapY(view, 100), mapY, 2);

    view.Scale = 0.025f;
    const double x = view.OriginX;
    EXPECT_FALSE(ZoomStep(view, settings, -1, 10, 10, false));
    EXPECT_FLOAT_EQ(view.Scale, 0.025f);
    EXPECT_DOUBLE_EQ(view.OriginX, x) << "a refused zoom leaves the origin alone";

    // Zooming in at the pointer centres on it, with no limit check.
    view.Scale = 100.0f;
    ASSERT_TRUE(ZoomStep(view, settings, 1, 500, 300, true));
    EXPECT_FLOAT_EQ(view.Scale, 110.0f);
    settings.ZoomAtPointer = false;
    EXPECT_FALSE(ZoomStep(view, settings, 1, 500, 300, true));
}

TEST(Viewport, GridKeysAndMenuWrapDifferently)
{
    ViewSettings settings;
    settings.GridSize = 512;
    GridKeyCoarser(settings);
    EXPECT_EQ(settings.GridSize, 0);
    GridKeyCoarser(settings);
    EXPECT_EQ(settings.GridSize, 1);
    GridKeyFiner(settings);
    EXPECT_EQ(settings.GridSize, 0);
    GridKeyFiner(settings);
    EXPECT_EQ(settings.GridSize, 512);
    GridKeyFiner(settings);
    EXPECT_EQ(settings.GridSize, 256);

    settings.GridSize = 1;
    GridMenuDecrease(settings);
    EXPECT_EQ(settings.GridSize, 512) << "the menu wraps instead of switching the grid off";
    GridMenuIncrease(settings);
    EXPECT_EQ(settings.GridSize, 1);
    ChangeScrollUnit(settings, -10);
    EXPECT_EQ(settings.ScrollUnit, 1);
    ChangeScrollUnit(settings, 100);
    EXPECT_EQ(settings.ScrollUnit, 50);
}

TEST(Viewport, SnappingRoundsHalvesAwayFromZero)
{
    ViewSettings settings;
    settings.GridSize = 8;
    EXPECT_EQ(SnapToGrid(settings, 3), 0);
    EXPECT_EQ(SnapToGrid(settings, 4), 8);
    EXPECT_EQ(SnapToGrid(settings, -3), 0);
    EXPECT_EQ(SnapToGrid(settings, -4), -8);
    EXPECT_EQ(SnapToGrid(settings, -12), -16);
    settings.GridSnap = false;
    EXPECT_EQ(SnapToGrid(settings, 5), 5);
    settings.GridSnap = true;
    settings.GridSize = 0;
    EXPECT_EQ(SnapToGrid(settings, 5), 5);
}

TEST(Viewport, ScrollingStopsWhereTheLevelEnds)
{
    ViewSettings settings;
    const map::LevelData level = testkit::LevelBuilder().Room(0, 0, 512, 512).Build();
    MapViewport view = Window();
    view.Scale = 1.0f;
    CenterOn(view, 256, 256);
    EXPECT_EQ(ScrollStep(view, settings), 10);
    int steps = 0;
    while (Scroll(view, settings, level, 1, 0) && steps < 1000)
    {
        ++steps;
    }
    // The window's left edge may not pass the level's right edge.
    EXPECT_LE(view.OriginX - 400, 512);
    EXPECT_GT(view.OriginX + 10 - 400, 512);
    view.Scale = 0.0625f;
    EXPECT_EQ(ScrollStep(view, settings), 160);
    view.Scale = 0.05f; // a little above 0.05 in single precision: the step truncates to 199
    EXPECT_EQ(ScrollStep(view, settings), 199);
}

TEST(Viewport, ZoomToARectangleRemembersTheViewForShiftZ)
{
    MapViewport view = Window();
    view.Scale = 0.5f;
    CenterOn(view, 10, 20);
    ZoomToRectangle(view, 0, 0, 79, 55);
    EXPECT_FLOAT_EQ(view.Scale, 10.0f);
    EXPECT_DOUBLE_EQ(view.OriginX, 39.5);
    SwapStoredView(view);
    EXPECT_FLOAT_EQ(view.Scale, 0.5f);
    EXPECT_DOUBLE_EQ(view.OriginX, 10.0);
    SwapStoredView(view);
    EXPECT_FLOAT_EQ(view.Scale, 10.0f);
    ZoomToRectangle(view, 0, 0, 100000, 1);
    EXPECT_FLOAT_EQ(view.Scale, 0.01f);
}

} // namespace
} // namespace kelvar::view
