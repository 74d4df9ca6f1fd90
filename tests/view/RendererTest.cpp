// Tests of the renderer through the recording canvas, and of XOR drawing on the raster canvas.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/Renderer.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "map/MapState.h"
#include "platform/raster/RasterCanvas.h"
#include "platform/test/RecordingCanvas.h"
#include "tests/testkit/LevelBuilder.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kelvar::view
{
namespace
{

using platform::RecordingCanvas;

class Renderer : public ::testing::Test
{
protected:
    void SetUp() override
    {
        map::ResetMap();
        SetWindowSize(State.Viewport, 800, 600);
        State.Viewport.Scale = 1.0f;
        CenterOn(State.Viewport, 64, 64);
    }

    MapPicture Picture(const map::LevelData& level, int mode = ModeLineDefs)
    {
        MapPicture picture;
        picture.Level = &level;
        picture.EditMode = mode;
        return picture;
    }

    ViewState State;
};

TEST_F(Renderer, LineColoursFollowTheFirstRuleThatMatches)
{
    const ColorRoles& c = State.Colors;
    map::LineDef line;
    line.SideDef1 = 0;
    line.SideDef2 = 1;
    EXPECT_EQ(LineColor(line, State), c.Line2Sided);
    line.SideDef2 = map::NoSideDef;
    EXPECT_EQ(LineColor(line, State), c.Line1Sided);
    line.SideDef2 = 1;
    line.Flags = 2 | 32;
    EXPECT_EQ(LineColor(line, State), c.LineMonsterBlock) << "flags are tested 1, 2, 32, 64, 128";
    line.Tag = 4;
    EXPECT_EQ(LineColor(line, State), c.LineTagged);
    line.Type = 62;
    EXPECT_EQ(LineColor(line, State), c.LineSpecial);
    line.Type = 97;
    EXPECT_EQ(LineColor(line, State), c.LineTeleport);
    line.Tag = 0;
    EXPECT_EQ(LineColor(line, State), c.LineTypedNoTag);
    line.Flags = 128;
    EXPECT_EQ(LineColor(line, State), -1) << "a hidden line isn't drawn";
    State.Options.ShowInvisibleLines = true;
    EXPECT_EQ(LineColor(line, State), c.LineTypedNoTag);
}

TEST_F(Renderer, SpecialPensDependOnTheLevelFormat)
{
    RecordingCanvas canvas;
    const auto pen = [&](std::uint32_t type, int format)
    {
        State.Options.LevelFormat = format;
        SelectSpecialPen(canvas, type, State);
        return canvas.Pen;
    };
    EXPECT_EQ(pen(125, 1), State.Colors.LineSpecial);
    EXPECT_EQ(pen(125, 2), State.Colors.LineTeleport);
    EXPECT_EQ(pen(39, 5), State.Colors.LineTeleport);
    EXPECT_EQ(pen(80, 4), State.Colors.LineScript);
    EXPECT_EQ(pen(74, 4), State.Colors.LineTeleport);
    EXPECT_EQ(pen(72, 4), State.Colors.LineSpecial);
    EXPECT_EQ(pen(39, 4), State.Colors.LineSpecial);
}

TEST_F(Renderer, LinesAreDrawnInScreenCoordinatesAndOffWindowOnesSkipped)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 128, 128);
    builder.Vertex(5000, 5000).Vertex(6000, 5000).Side(0).Line(4, 5, 4); // far off the window
    const map::LevelData level = builder.Build();
    RecordingCanvas canvas;
    DrawMap(canvas, Picture(level), State, DrawFull);
    const auto lines = canvas.SegmentsInColor(State.Colors.Line1Sided);
    ASSERT_EQ(lines.size(), 4u);
    // Room walls run (0,0)->(0,128)->(128,128)->(128,0); the view is centred on (64,64).
    EXPECT_EQ(lines[0].From, (platform::Point{336, 364}));
    EXPECT_EQ(lines[0].To, (platform::Point{336, 236}));
    EXPECT_EQ(lines[2].To, (platform::Point{464, 364}));
    EXPECT_EQ(canvas.OpsNamed("FillRect").size(), 1u);
    EXPECT_EQ(canvas.OpsNamed("Flush").size(), 1u);
}

TEST_F(Renderer, LongLinesAreClippedKeepingTheirAngle)
{
    testkit::LevelBuilder builder;
    builder.Sector().Side(0).Vertex(-30000, -15000).Vertex(30000, 15000).Line(0, 1, 0);
    const map::LevelData level = builder.Build();
    State.Viewport.Scale = 4.0f;
    CenterOn(State.Viewport, 0, 0);
    RecordingCanvas canvas;
    DrawMap(canvas, Picture(level), State, DrawFull);
    const auto lines = canvas.SegmentsInColor(State.Colors.Line1Sided);
    ASSERT_EQ(lines.size(), 1u);
    const auto& line = lines[0];
    EXPECT_GE(line.From.X, -4097);
    EXPECT_LE(line.To.X, 800 + 4097);
    const double slope = static_cast<double>(line.To.Y - line.From.Y) / (line.To.X - line.From.X);
    EXPECT_NEAR(slope, -0.5, 0.001);
}

TEST_F(Renderer, SectorModeMarksTaggedAndTypedSectors)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 64, 64).Room(100, 0, 64, 64).Room(200, 0, 64, 64);
    builder.Level().Sectors[1].Tag = 3;
    builder.Level().Sectors[2].Type = 9;
    const map::LevelData level = builder.Build();
    RecordingCanvas canvas;
    DrawMap(canvas, Picture(level, ModeSectors), State, DrawFull);
    EXPECT_EQ(canvas.SegmentsInColor(State.Colors.LineSpecial).size(), 4u);
    EXPECT_EQ(canvas.SegmentsInColor(State.Colors.SectorTyped).size(), 4u);
    EXPECT_EQ(canvas.SegmentsInColor(State.Colors.Line1Sided).size(), 4u);
}

TEST_F(Renderer, SectorModeDrawsALineByItsFirstSectorThenByItsSecond)
{
    testkit::LevelBuilder builder;
    builder.Sector().Sector().Sector();
    builder.Level().Sectors[0].Tag = 3;
    builder.Level().Sectors[1].Type = 9;
    builder.Side(0).Side(1).Side(1).Side(0).Side(2);
    builder.Vertex(0, 0).Vertex(0, 64).Vertex(64, 0).Vertex(64, 64).Vertex(128, 0).Vertex(128, 64);
    builder.Line(0, 1, 0, 1).Line(2, 3, 2, 3).Line(4, 5, 4);
    const map::LevelData level = builder.Build();
    RecordingCanvas canvas;
    DrawMap(canvas, Picture(level, ModeSectors), State, DrawFull);
    std::vector<int> pens;
    std::vector<int> columns;
    for (const RecordingCanvas::Segment& segment : canvas.Segments)
    {
        if (segment.Pen != State.Colors.Grid64) // the frame
        {
            pens.push_back(segment.Pen);
            columns.push_back(segment.From.X);
        }
    }
    const ColorRoles& c = State.Colors;
    EXPECT_EQ(pens, (std::vector<int>{c.LineSpecial, c.SectorTyped, c.SectorTyped, c.LineSpecial,
                                      c.Line1Sided}))
        << "tagged then typed, typed then tagged, and a one-sided line once";
    EXPECT_EQ(columns, (std::vector<int>{336, 336, 400, 400, 464}));

    State.Options.ShowInvisibleLines = false;
    builder.Level().LineDefs[0].Flags |= 128;
    const map::LevelData hidden = builder.Build();
    RecordingCanvas second;
    DrawMap(second, Picture(hidden, ModeSectors), State, DrawFull);
    EXPECT_EQ(second.SegmentsInColor(c.LineSpecial).size(), 1u) << "a hidden line not at all";
}

TEST_F(Renderer, ThingsAreAtLeastOnePixelAndTheirTextNeedsRoom)
{
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Thing(64, 64, 31999); // a type no table knows: "?" in a circle
    const map::LevelData level = builder.Build();
    RecordingCanvas canvas;
    State.Viewport.Scale = 0.05f;
    DrawMap(canvas, Picture(level, ModeThings), State, DrawFull);
    // At 0.05 the radius 14 is under a pixel: drawn with 1, and as a plus, not text.
    const auto lines = canvas.SegmentsInColor(4);
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0].To.X - lines[0].From.X, 3) << "a plus of radius 1";
    EXPECT_TRUE(canvas.Texts.empty());

    canvas.Ops.clear();
    canvas.Texts.clear();
    State.Viewport.Scale = 0.34f;
    DrawThing(canvas, level.Things[0], State, false);
    EXPECT_TRUE(canvas.Texts.empty());
    canvas.Ops.clear();
    State.Viewport.Scale = 0.35f;
    DrawThing(canvas, level.Things[0], State, false);
    EXPECT_EQ(canvas.Texts, (std::vector<std::string>{"?"}));
    EXPECT_EQ(canvas.OpsNamed("Ellipse").size(), 1u);
    EXPECT_EQ(canvas.OpsNamed("Polygon").size(), 1u) << "the arrow's head";
}

TEST_F(Renderer, ThingsAndLineTypesTakeTheirLookFromTheGamesRows)
{
    game::SelectTablesFor(2, 2, false, false);
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Thing(64, 64, 3001); // an imp
    const map::LevelData level = builder.Build();
    const game::ThingTypeRow& imp = game::ThingRowOfType(3001);
    ASSERT_GT(imp.Radius, 0);

    RecordingCanvas canvas;
    DrawThing(canvas, level.Things[0], State, false);
    const auto ellipses = canvas.OpsNamed("Ellipse");
    ASSERT_EQ(ellipses.size(), 1u);
    EXPECT_EQ(ellipses[0].Args[2] - ellipses[0].Args[0], 2 * imp.Radius + 1) << "radius at scale 1";
    bool rowPen = false;
    for (const auto& op : canvas.OpsNamed("Pen"))
    {
        rowPen = rowPen || op.Args[0] == imp.Color;
    }
    EXPECT_TRUE(rowPen) << "the pen is the row's colour " << imp.Color;

    // A LineDef type whose row has a colour is drawn in it.
    const game::GameState& tables = game::Game();
    const auto coloured =
        std::find_if(tables.LineDefs.begin(), tables.LineDefs.end(),
                     [](const game::LineTypeRow& row)
                     { return row.Type > 0 && row.Type < 0x10000 && row.Color != 0; });
    if (coloured != tables.LineDefs.end())
    {
        map::LineDef line;
        line.Type = coloured->Type;
        line.Tag = 1;
        EXPECT_EQ(LineColor(line, State), coloured->Color);
    }
    game::ResetGame();
}

TEST_F(Renderer, TheGridIsOneBlitAtEverySize)
{
    const map::LevelData level = testkit::LevelBuilder().Room(0, 0, 128, 128).Build();
    RecordingCanvas canvas;
    State.Settings.GridSize = 8;
    State.Viewport.Scale = 1.0f;
    DrawMap(canvas, Picture(level), State, DrawFull);
    const auto blits = canvas.OpsNamed("BlitMask");
    ASSERT_FALSE(blits.empty());
    EXPECT_EQ(blits[0].Args, (std::vector<int>{0, 0, 800, 600, State.Colors.Grid}));

    RecordingCanvas fine;
    State.Viewport.Scale = 0.025f; // 8 units are a fifth of a pixel
    State.Options.GridDisplay = GridShown;
    DrawMap(fine, Picture(level), State, DrawFull);
    ASSERT_EQ(fine.OpsNamed("BlitMask").size(), 1u);
    EXPECT_EQ(fine.OpsNamed("BlitMask")[0].Args, blits[0].Args);

    RecordingCanvas off;
    State.Settings.GridSize = 0;
    DrawMap(off, Picture(level), State, DrawFull);
    EXPECT_TRUE(off.OpsNamed("BlitMask").empty()) << "grid 0 is no grid";
}

// The grid's pixels on a raster, in a window the level's lines stay out of.
class GridPixels : public Renderer
{
protected:
    int CountGridPixels(int gridSize, float scale, bool lines)
    {
        const map::LevelData level = testkit::LevelBuilder().Room(5000, 5000, 64, 64).Build();
        SetWindowSize(State.Viewport, 200, 100);
        State.Viewport.Scale = scale;
        CenterOn(State.Viewport, 3, -5);
        State.Settings.GridSize = gridSize;
        State.Options.GridDisplay = GridShown;
        State.Options.GridLines = lines;
        State.Options.GridDashed = false;
        platform::RasterCanvas canvas(200, 100, ColorTable());
        DrawMap(canvas, Picture(level), State, DrawFull);
        const std::uint32_t color = ColorTable()[static_cast<std::size_t>(State.Colors.Grid)];
        int count = 0;
        for (int y = 0; y < 100; ++y)
        {
            for (int x = 1; x < 199; ++x) // columns 0 and 199 hold the frame
            {
                count += canvas.Data()[static_cast<std::size_t>(y * 200 + x)] == color;
            }
        }
        return count;
    }
};

TEST_F(GridPixels, DotsSitAtEveryCrossingAndAFinerGridThanThePixelsFillsTheWindow)
{
    // Scale 1, grid 8: the crossings lie 8 pixels apart; (3, -5) is the window's centre
    // (100, 50), so the verticals are at pixels 1, 9, ... 193 and the horizontals at 5, ... 93.
    EXPECT_EQ(CountGridPixels(8, 1.0f, false), 25 * 12);
    // Scale 0.5, grid 4: 2 pixels apart, columns 2 to 198 and rows 1 to 99, and row 0 as well:
    // the crossing half a pixel above the window truncates to it.
    EXPECT_EQ(CountGridPixels(4, 0.5f, false), 99 * 51);
    // Scale 0.3, grid 8: 2.4 pixels apart, 82 columns and 42 rows of the window.
    EXPECT_EQ(CountGridPixels(8, 0.3f, false), 82 * 42);
    EXPECT_EQ(CountGridPixels(1, 0.025f, false), 198 * 100) << "all of it";
    EXPECT_EQ(CountGridPixels(2, 0.2f, true), 198 * 100) << "and in lines too";
}

TEST_F(Renderer, AnEmptyLevelGetsOnlyItsBackground)
{
    map::LevelData empty;
    RecordingCanvas canvas;
    DrawMap(canvas, Picture(empty), State, DrawFull);
    EXPECT_EQ(canvas.OpsNamed("FillRect").size(), 1u);
    EXPECT_TRUE(canvas.Segments.empty());
}

TEST_F(Renderer, TheSelectionIsDrawnInXorSoDrawingItTwiceErasesIt)
{
    const map::LevelData level =
        testkit::LevelBuilder().Room(0, 0, 128, 128).Room(200, 0, 64, 64).Build();
    platform::RasterCanvas canvas(800, 600, ColorTable());
    MapPicture picture = Picture(level);
    DrawMap(canvas, picture, State, DrawFull);
    const std::vector<std::uint32_t> before(canvas.Data().begin(), canvas.Data().end());
    map::ObjectList selection;
    map::ObjectListPush(selection, 1);
    map::ObjectListPush(selection, 5);
    picture.Selection = &selection;
    picture.Highlighted = 2;
    DrawSelection(canvas, picture, State);
    EXPECT_NE(std::vector<std::uint32_t>(canvas.Data().begin(), canvas.Data().end()), before);
    DrawSelection(canvas, picture, State);
    EXPECT_EQ(std::vector<std::uint32_t>(canvas.Data().begin(), canvas.Data().end()), before);

    XorRubberBand(canvas, State, 10, 10, 300, 200);
    XorRubberBand(canvas, State, 10, 10, 300, 200);
    State.Options.RulerOn = true;
    State.Pointer = {400, 300};
    XorRuler(canvas, State);
    XorRuler(canvas, State);
    EXPECT_EQ(std::vector<std::uint32_t>(canvas.Data().begin(), canvas.Data().end()), before);
}

TEST(RasterCanvas, DrawsLinesShapesAndText)
{
    const std::uint32_t colors[] = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
    platform::RasterCanvas canvas(40, 20, colors);
    canvas.SetPen(1, 1, platform::PenStyle::Solid);
    canvas.MoveTo(0, 0);
    canvas.LineTo(10, 0);
    EXPECT_EQ(canvas.PixelAt(0, 0), 0xFF0000u);
    EXPECT_EQ(canvas.PixelAt(9, 0), 0xFF0000u);
    EXPECT_EQ(canvas.PixelAt(10, 0), 0u) << "the end point is left for the next line";
    canvas.SetBrush(2);
    canvas.Rectangle(10, 5, 15, 10);
    EXPECT_EQ(canvas.PixelAt(10, 5), 0xFF0000u);
    EXPECT_EQ(canvas.PixelAt(12, 7), 0x00FF00u);
    EXPECT_EQ(canvas.PixelAt(15, 7), 0u);
    canvas.SetTextColor(3);
    canvas.TextOut(20, 5, "I");
    EXPECT_EQ(canvas.PixelAt(22, 5), 0x0000FFu) << "the bar of an I";
    canvas.MoveTo(-100000, 5);
    canvas.LineTo(100000, 5); // far beyond the canvas: cut back, no hang
    EXPECT_EQ(canvas.PixelAt(39, 5), 0xFF0000u);
}

TEST(RasterCanvas, BlitsEveryMaskPixelWhereverItFallsAndFillsClipped)
{
    const std::uint32_t colors[] = {0x000000, 0xFF0000, 0x00FF00};
    platform::RasterCanvas canvas(37, 11, colors);
    canvas.FillRect({-5, -5, 100, 100}, 2); // beyond every edge: clipped
    EXPECT_EQ(canvas.PixelAt(0, 0), 0x00FF00u);
    EXPECT_EQ(canvas.PixelAt(36, 10), 0x00FF00u);
    // A mask wider than the canvas, placed off its left edge, with set bits scattered among
    // runs of clear ones of every length.
    platform::MonoBitmap mask;
    mask.Width = 45;
    mask.Height = 3;
    mask.Bits.assign(static_cast<std::size_t>(mask.Width * mask.Height), 0);
    // Runs of exactly eight clear bits before a set one, and runs of other lengths.
    const std::vector<int> set = {0, 1, 3, 12, 21, 22, 31, 33, 44};
    for (const int x : set)
    {
        mask.Bits[static_cast<std::size_t>(mask.Width + x)] = 1; // row 1
    }
    canvas.BlitMask(mask, -3, 4, 1);
    for (int x = 0; x < 37; ++x)
    {
        const bool wanted = std::find(set.begin(), set.end(), x + 3) != set.end();
        EXPECT_EQ(canvas.PixelAt(x, 5), wanted ? 0xFF0000u : 0x00FF00u) << "x " << x;
        EXPECT_EQ(canvas.PixelAt(x, 4), 0x00FF00u) << "a clear row, x " << x;
    }
}

} // namespace
} // namespace kelvar::view
