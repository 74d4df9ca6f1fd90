// kelvar-cli render draws every Freedoom 2 level into a PNG of the asked size, lines and all.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MapState.h"
#include "platform/raster/RasterCanvas.h"
#include "tests/testkit/WadFixture.h"
#include "view/Colors.h"
#include "view/Viewport.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kelvar::view
{
namespace
{

class RenderCli : public testkit::WadFixture
{
};

TEST_F(RenderCli, EveryFreedoom2LevelBecomesAPictureWithItsLinesInIt)
{
    const std::string iwad = testkit::FreedoomWad("freedoom2.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    const ColorRoles roles;
    const std::uint32_t background = ColorTable()[static_cast<std::size_t>(roles.Background)];
    const std::uint32_t grid = ColorTable()[static_cast<std::size_t>(roles.Grid)];
    const std::uint32_t marks = ColorTable()[static_cast<std::size_t>(roles.Grid64)];
    for (int number = 1; number <= 32; ++number)
    {
        const std::string name = (number < 10 ? "MAP0" : "MAP") + std::to_string(number);
        const std::string png = Dir.File(name + ".png");
        const std::string command = std::string("XDG_CONFIG_HOME=") + Dir.File("config") + " " +
                                    KELVAR_CLI + " render " + iwad + " " + name + " -o " + png +
                                    " --size 640x480 > /dev/null";
        ASSERT_EQ(std::system(command.c_str()), 0) << name;
        int width = 0;
        int height = 0;
        const std::vector<std::uint32_t> pixels = platform::ReadPng(png, width, height);
        ASSERT_EQ(width, 640) << name;
        ASSERT_EQ(height, 480) << name;

        // The same view the command fits, to find where the level's lines must be.
        map::ResetMap();
        map::LevelData level;
        wad::ReadLevel(level, name, false);
        MapViewport viewport;
        SetWindowSize(viewport, 640, 480);
        BestFit(viewport, level);
        int checked = 0;
        for (const map::LineDef& line : level.LineDefs)
        {
            // Long one-sided plain walls: a line is drawn at their middle (theirs, or another
            // that falls on the same pixels at this scale).
            const map::Vertex& a = level.Vertexes[line.StartVertex];
            const map::Vertex& b = level.Vertexes[line.EndVertex];
            if (line.SideDef2 != map::NoSideDef || line.Type != 0 || line.Tag != 0 ||
                (line.Flags & (2 | 32 | 64 | 128)) != 0 ||
                std::hypot(b.X - a.X, b.Y - a.Y) * static_cast<double>(viewport.Scale) < 12 ||
                (a.X != b.X && a.Y != b.Y))
            {
                continue;
            }
            const int x = MapToScreenX(viewport, (a.X + b.X) / 2.0);
            const int y = MapToScreenY(viewport, (a.Y + b.Y) / 2.0);
            bool found = false;
            for (int dy = -1; dy <= 1 && !found; ++dy)
            {
                for (int dx = -1; dx <= 1 && !found; ++dx)
                {
                    const int px = std::clamp(x + dx, 0, 639);
                    const int py = std::clamp(y + dy, 0, 479);
                    const std::uint32_t pixel = pixels[static_cast<std::size_t>(py * 640 + px)];
                    found = pixel != background && pixel != grid && pixel != marks;
                }
            }
            EXPECT_TRUE(found) << name << ": no wall at " << x << "," << y;
            if (++checked == 5)
            {
                break;
            }
        }
        EXPECT_GT(checked, 0) << name;
        // Zoomed out this far the grid of 8 is finer than the pixels and covers the background;
        // either way most of the picture is empty space.
        const auto emptyPixels = std::count_if(pixels.begin(), pixels.end(),
                                               [&](std::uint32_t pixel)
                                               { return pixel == background || pixel == grid; });
        EXPECT_GT(emptyPixels, 640 * 480 / 2) << name << ": mostly empty space";
    }
}

} // namespace
} // namespace kelvar::view
