// Tests of the game palette: gamma and the transparent colour, PLAYPAL loading from the open
// files and its messages, and the state-level matcher.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/GamePalette.h"

#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

class GamePaletteTest : public test::PaletteFixture
{
};

std::string PaletteLump(Rgb first, int palettes)
{
    std::string bytes;
    for (int p = 0; p < palettes; ++p)
    {
        for (int i = 0; i < 256; ++i)
        {
            const int level = (i + p) % 256;
            bytes += static_cast<char>(i == 0 ? first.red : level);
            bytes += static_cast<char>(i == 0 ? first.green : level);
            bytes += static_cast<char>(i == 0 ? first.blue : p);
        }
    }
    return bytes;
}

TEST(ApplyPalette, GammaTransparentColourAndBlack)
{
    Palette source = GrayRamp();
    source[0] = {10, 20, 30};
    PaletteHandle handle;
    Palette out{};

    // Gamma 50 scales by 150 / 100, held to 255; entry 0 stays when holes have an index.
    ApplyPalette(handle, source, out, 50, 251, 255, 0, 255);
    EXPECT_EQ(out[0], (Rgb{10, 20, 30}));
    EXPECT_EQ(out[100], (Rgb{150, 150, 150}));
    EXPECT_EQ(out[200], (Rgb{255, 255, 255}));
    EXPECT_EQ(out[251], (Rgb{255, 0, 255}));
    EXPECT_EQ(Palettes().DisplayColorTable[100], (ColorTableEntry{150, 150, 150, 0}));
    EXPECT_EQ(handle.Gamma, 50);

    // With index 0 no transparent colour is written and entry 0 follows gamma.
    ApplyPalette(handle, source, out, 100, 0, 255, 0, 255);
    EXPECT_EQ(out[0], (Rgb{20, 40, 60}));
    EXPECT_EQ(out[251], (Rgb{255, 255, 255}));

    // 150 acts as 100; -100 makes every colour black; pure black is never scaled.
    Palette at150{};
    ApplyPalette(handle, source, at150, 150, 0, 0, 0, 0);
    EXPECT_EQ(at150, out);
    ApplyPalette(handle, source, out, -100, 0, 0, 0, 0);
    EXPECT_EQ(out[77], (Rgb{}));

    // A negative index: a gray ramp at gamma 0.
    ApplyPalette(handle, test::FreedoomPalette(), out, 60, -1, 0, 0, 0);
    EXPECT_EQ(out, GrayRamp());
    EXPECT_EQ(handle.Gamma, 0);
}

TEST_F(GamePaletteTest, LoadsTheChosenPaletteOfTheIwad)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ASSERT_EQ(LoadGamePalette(0), 1);
    const PaletteState& state = Palettes();
    const Palette freedoom = test::FreedoomPalette();
    EXPECT_EQ(state.RawGamePalette, freedoom);
    Palette expected = freedoom;
    expected[251] = {255, 0, 255};
    EXPECT_EQ(state.GamePalette, expected);
    ASSERT_TRUE(state.ActivePalette.has_value());
    EXPECT_EQ(*state.ActivePalette, expected);
    // The display is the view's version: gamma 4.
    EXPECT_EQ(state.DisplayPalette[100].red, std::min(freedoom[100].red * 104 / 100, 255));
    EXPECT_EQ(state.ViewPalette.Gamma, 4);
    EXPECT_EQ(state.ImportPalette.Gamma, 0);
    EXPECT_EQ(state.ImportPalette.Colors[100], freedoom[100]);

    // Palette 3 of the 14, and a number past the end ends with the last.
    ASSERT_EQ(LoadGamePalette(3), 1);
    const std::vector<uint8_t> playpal = test::FreedoomLump("freedoom2.wad", "PLAYPAL");
    EXPECT_EQ(Palettes().RawGamePalette, PaletteFromBytes(playpal, 3));
    ASSERT_EQ(LoadGamePalette(99), 1);
    EXPECT_EQ(Palettes().RawGamePalette, PaletteFromBytes(playpal, playpal.size() / 768 - 1));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(GamePaletteTest, PwadPaletteAndColormapOnlyWhenAsked)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    std::string colormap(256, '\0');
    for (int i = 0; i < 256; ++i)
    {
        colormap[static_cast<size_t>(i)] = static_cast<char>(255 - i);
    }
    const std::string pwad = Dir.File("pal.wad");
    testkit::WadBuilder()
        .Lump("PLAYPAL", PaletteLump({1, 2, 3}, 2))
        .Lump("COLORMAP", colormap)
        .Write(pwad);
    ASSERT_GE(OpenPwad(pwad), 1);

    ASSERT_EQ(LoadGamePalette(0), 1);
    EXPECT_EQ(Palettes().RawGamePalette, test::FreedoomPalette());

    Palettes().Options.UsePwadPalette = true;
    Palettes().Options.TransparentIndex = 0;
    ASSERT_EQ(LoadGamePalette(1), 1);
    const PaletteState& state = Palettes();
    EXPECT_EQ(state.RawGamePalette[0], (Rgb{1, 2, 3}));
    EXPECT_EQ(state.RawGamePalette[10], (Rgb{11, 11, 1}));
    // The PWAD's map 0 recolours the display (reversed here); GamePalette is the raw one.
    EXPECT_EQ(state.ImportPalette.Colors[255], state.RawGamePalette[0]);
    EXPECT_EQ(state.GamePalette, state.RawGamePalette);
}

TEST_F(GamePaletteTest, MissingPlaypalIsReported)
{
    const std::string iwad = Dir.File("bare.wad");
    testkit::WadBuilder("IWAD").Level("MAP01").Write(iwad);
    ASSERT_EQ(OpenIwad(iwad), 1);
    Ui.Clear();
    EXPECT_EQ(LoadGamePalette(0), -1);
    EXPECT_TRUE(Ui.Saw("Couldn't locate palette \"PLAYPAL\" entry"));
    EXPECT_TRUE(Ui.Saw("PLAYPAL not found in " + iwad + "?"));
    EXPECT_FALSE(Palettes().Loaded);
}

TEST_F(GamePaletteTest, WithoutAnIwadTheConfiguredGameFileIsRead)
{
    wad::Wad().Options.IwadPath = testkit::FreedoomWad("freedoom2.wad");
    ASSERT_EQ(LoadGamePalette(0), 1);
    EXPECT_EQ(Palettes().RawGamePalette, test::FreedoomPalette());
    // The state-level matcher reads the game palette now.
    EXPECT_EQ(MatchColor(0, 0, 0), MatchColor(test::FreedoomPalette(), 0, 0, 0));
    IndexTable table{};
    MatchPaletteTable(GrayRamp(), nullptr, table);
    EXPECT_EQ(table, MatchPaletteTable(GrayRamp(), Palettes().GamePalette));
}

TEST(MatchColorDeathTest, NoActivePaletteEndsTheProgram)
{
    ResetPalettes();
    EXPECT_EXIT((void)MatchColor(1, 2, 3), ::testing::ExitedWithCode(4),
                "ColorMatch-ActivePalette error");
}

} // namespace
} // namespace kelvar::gfx
