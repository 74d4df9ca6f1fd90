// Grid snapping: rounding to the nearest multiple, away from zero at the half, on both sides of
// the origin.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/Snap.h"

#include <gtest/gtest.h>

namespace kelvar::tools
{
namespace
{

TEST(SnapTest, RoundsToNearestMultipleOnBothSidesOfZero)
{
    struct Case
    {
        int Value, Grid, Expected;
    };
    for (const Case c : {Case{0, 8, 0}, Case{3, 8, 0}, Case{4, 8, 8}, Case{12, 8, 16},
                         Case{-3, 8, 0}, Case{-4, 8, -8}, Case{-12, 8, -16}, Case{-13, 8, -16},
                         Case{100, 64, 128}, Case{95, 64, 64}, Case{7, 1, 7}, Case{-7, 1, -7},
                         Case{5, 0, 5}, Case{-9, 0, -9}, Case{4, 7, 7}, Case{3, 7, 0}})
    {
        EXPECT_EQ(SnapToGrid(c.Value, c.Grid), c.Expected) << c.Value << " on " << c.Grid;
    }
}

TEST(SnapTest, PointTruncatesTowardZeroBeforeSnapping)
{
    EXPECT_EQ(SnapPoint(10.9, -10.9, 8, false), (SnappedPoint{10, -10}));
    EXPECT_EQ(SnapPoint(11.9, -11.9, 8, true), (SnappedPoint{8, -8}));
    EXPECT_EQ(SnapPoint(12.2, -12.2, 8, true), (SnappedPoint{16, -16}));
    EXPECT_EQ(SnapPoint(12.2, -12.2, 0, true), (SnappedPoint{12, -12}));
}

} // namespace
} // namespace kelvar::tools
