// Tests of Things shown as their sprites: frames found in Freedoom's sprite runs (rotation 0 for
// a frame not there under its own name), drawn fitted into the Thing's box, short Things in half
// the box, a framed question mark for a type with no sprite; and the pictures a canvas stretches.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/GameState.h"
#include "gfx/GamePalette.h"
#include "map/GameCodes.h"
#include "platform/raster/RasterCanvas.h"
#include "platform/test/RecordingCanvas.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "view/Renderer.h"
#include "view/SpriteFrames.h"
#include "view/Viewport.h"
#include "wad/LevelReader.h"
#include "wad/MarkerRanges.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace kelvar::view
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

class SpriteDisplay : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        gfx::ResetPalettes();
        ClearSpriteFrames();
        ASSERT_EQ(OpenIwad(Freedoom2), 1);
        wad::BuildMarkerLists();
        ASSERT_EQ(gfx::LoadGamePalette(0), 1);
        game::SelectTablesFor(map::GameDoom2, map::GameDoom2, false, false);
    }
    void TearDown() override
    {
        ClearSpriteFrames();
        gfx::ResetPalettes();
        WadFixture::TearDown();
    }
};

TEST_F(SpriteDisplay, FramesAreFoundInTheSpriteRunsWithTheSizesOmgifolReads)
{
    const testkit::CommandOutput oracle =
        testkit::RunCommand("/usr/bin/python3 -c \"import omg; w = omg.WAD('" + Freedoom2 +
                            "'); [print(n, w.sprites[n].width, w.sprites[n].height) for n in "
                            "('PLAYA1', 'CLIPA0', 'SARGA1', 'BON1A0')]\"");
    ASSERT_EQ(oracle.Status, 0) << oracle.Text;
    for (const std::string& line : oracle.Lines())
    {
        std::istringstream words(line);
        std::string name;
        int width = 0, height = 0;
        words >> name >> width >> height;
        const gfx::ImageRaster* frame = SpriteFrame(name);
        ASSERT_NE(frame, nullptr) << name;
        EXPECT_EQ(frame->Width(), width) << name;
        EXPECT_EQ(frame->Height(), height) << name;
    }
    EXPECT_EQ(SpriteFrame("CLIPA1"), SpriteFrame("CLIPA0")) << "rotation 0 serves every angle";
    EXPECT_EQ(SpriteFrame("NONEZ9"), nullptr);
    EXPECT_EQ(SpriteFrame("PLAYA1"), SpriteFrame("playa1")) << "kept once decoded";
}

TEST_F(SpriteDisplay, ThingsInThingModeAreTheirSpritesFittedIntoTheirBoxes)
{
    map::LevelData level;
    map::Thing player;
    player.Type = 1; // radius 16, height 56
    player.X = 0;
    map::Thing clip;
    clip.Type = 2007; // a short Thing: radius 20, height 16
    clip.X = 200;
    map::Thing unknown;
    unknown.Type = 9999;
    unknown.X = -200;
    level.Things.push_back(player);
    level.Things.push_back(clip);
    level.Things.push_back(unknown);

    ViewState state;
    SetWindowSize(state.Viewport, 800, 600);
    state.Viewport.Scale = 2.0f;
    CenterOn(state.Viewport, 0, 0);
    state.Options.SpriteDisplay = true;
    MapPicture picture;
    picture.Level = &level;
    picture.EditMode = ModeThings;
    platform::RecordingCanvas canvas(800, 600);
    DrawMap(canvas, picture, state, DrawFull);

    const std::vector<platform::CanvasOp> drawn = canvas.OpsNamed("DrawPicture");
    ASSERT_EQ(drawn.size(), 2u) << "the unknown type draws no picture";
    // The player: a box of 2 * 32 + 1 pixels about (400, 300); the frame keeps its proportions.
    const gfx::ImageRaster& play = *SpriteFrame("PLAYA1");
    const std::vector<int>& box = drawn[0].Args;
    EXPECT_EQ(box[4], play.Width());
    EXPECT_LE(box[2] - box[0], 65);
    EXPECT_LE(box[3] - box[1], 65);
    EXPECT_TRUE(box[2] - box[0] == 65 || box[3] - box[1] == 65) << "fitted to the box";
    EXPECT_NEAR((box[0] + box[2]) / 2.0, 400, 1);
    // The clip: radius 40 pixels, halved to 20 since it is under 33 high.
    const std::vector<int>& small = drawn[1].Args;
    EXPECT_LE(small[2] - small[0], 41);
    EXPECT_LE(small[3] - small[1], 41);
    EXPECT_TRUE(small[2] - small[0] == 41 || small[3] - small[1] == 41);
    EXPECT_FALSE(canvas.OpsNamed("TextOut").empty()) << "the unknown type's question mark";

    // Outside Thing mode, or with the display off, the symbols come back.
    platform::RecordingCanvas symbols(800, 600);
    state.Options.SpriteDisplay = false;
    DrawMap(symbols, picture, state, DrawFull);
    EXPECT_TRUE(symbols.OpsNamed("DrawPicture").empty());
}

// MAP01 in Thing mode with every Thing as its sprite, drawn through the raster canvas, against
// a picture of it kept with the tests. KELVAR_UPDATE_GOLDEN=1 writes the picture afresh. A few
// pixels may differ (the rounding of fitted sprites); a change of what is drawn moves many.
TEST_F(SpriteDisplay, Map01WithSpritesMatchesItsGoldenPicture)
{
    map::LevelData level;
    ASSERT_TRUE(wad::ReadLevel(level, "MAP01", false));
    ViewState state;
    state.Options.SpriteDisplay = true;
    SetWindowSize(state.Viewport, 800, 600);
    BestFit(state.Viewport, level);
    platform::RasterCanvas canvas(800, 600, ColorTable());
    MapPicture picture;
    picture.Level = &level;
    picture.EditMode = ModeThings;
    DrawMap(canvas, picture, state, DrawFull);

    const std::filesystem::path golden = KELVAR_SOURCE_DIR "/tests/golden/map01_sprites.png";
    if (std::getenv("KELVAR_UPDATE_GOLDEN") != nullptr)
    {
        ASSERT_TRUE(platform::WritePng(golden, 800, 600, canvas.Data()));
    }
    int width = 0;
    int height = 0;
    const std::vector<std::uint32_t> expected = platform::ReadPng(golden, width, height);
    ASSERT_EQ(width, 800);
    ASSERT_EQ(height, 600);
    const std::span<const std::uint32_t> drawn = canvas.Data();
    int differing = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        for (int shift = 0; shift < 24; shift += 8)
        {
            const int a = static_cast<int>((drawn[i] >> shift) & 0xFF);
            const int b = static_cast<int>((expected[i] >> shift) & 0xFF);
            if (std::abs(a - b) > 8)
            {
                ++differing;
                break;
            }
        }
    }
    EXPECT_LT(differing, 800 * 600 / 500) << "pixels that differ from the golden picture";
}

TEST(CanvasPicture, ARasterCanvasStretchesToTheNearestPixelAndLeavesTheHolesAlone)
{
    const std::vector<std::uint32_t> table = {0x000000, 0x112233};
    platform::RasterCanvas canvas(8, 8, table);
    canvas.FillRect({0, 0, 8, 8}, 1);
    // 2 x 2: index 1 and 2 on the top row, a hole and 3 below; rows 4 bytes apart.
    const std::vector<std::uint8_t> pixels = {1, 2, 0, 0, 251, 3, 0, 0};
    std::array<std::uint32_t, 256> colors{};
    colors[1] = 0xFF0000;
    colors[2] = 0x00FF00;
    colors[3] = 0x0000FF;
    platform::IndexedPicture picture{2, 2, 4, pixels, colors, 251};
    canvas.DrawPicture(picture, {-2, 2, 6, 6}); // 8 x 4 pixels, half of it left of the canvas
    EXPECT_EQ(canvas.PixelAt(0, 2), 0xFF0000u);
    EXPECT_EQ(canvas.PixelAt(1, 3), 0xFF0000u);
    EXPECT_EQ(canvas.PixelAt(2, 2), 0x00FF00u);
    EXPECT_EQ(canvas.PixelAt(5, 3), 0x00FF00u);
    EXPECT_EQ(canvas.PixelAt(1, 4), 0x112233u) << "a hole leaves the canvas";
    EXPECT_EQ(canvas.PixelAt(3, 5), 0x0000FFu);
    EXPECT_EQ(canvas.PixelAt(6, 5), 0x112233u) << "right of the target";
    EXPECT_EQ(canvas.PixelAt(3, 6), 0x112233u) << "below the target";
}

} // namespace
} // namespace kelvar::view
