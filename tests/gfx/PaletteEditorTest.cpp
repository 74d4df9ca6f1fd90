// Tests of the palette editor's core: loading the lumps with their limits and messages,
// edits that reach the lump copy, gradients, duplicates, a palette taken from a picture.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteEditor.h"

#include "gfx/BmpFile.h"
#include "gfx/Colormap.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

class PaletteEditorTest : public test::PaletteFixture
{
protected:
    void OpenFreedoom()
    {
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
        Palettes().GamePalette = test::FreedoomPalette();
        ASSERT_EQ(LoadPalette(Editor, 0), 1);
        ASSERT_EQ(LoadColormap(Editor, 0), 1);
    }

    PaletteEditorState Editor;
};

TEST_F(PaletteEditorTest, LoadsTheLumpsWithTheirLimits)
{
    OpenFreedoom();
    EXPECT_EQ(Editor.Playpal.size(), 14u * 768u);
    EXPECT_EQ(Editor.Colormap.size(), 34u * 256u);
    EXPECT_EQ(Editor.EditedPalette, test::FreedoomPalette());
    EXPECT_EQ(Editor.PlaypalFile, 0);

    EXPECT_EQ(LoadPalette(Editor, 20), 1);
    EXPECT_EQ(Ui.Last().Text(), "Invalid PLAYPAL number=20");
    EXPECT_EQ(Editor.PaletteNumber, 13);
    EXPECT_EQ(LoadColormap(Editor, 34), 1);
    EXPECT_EQ(Ui.Last().Text(), "Invalid COLORMAP number=34");
    EXPECT_EQ(Editor.MapNumber, 33);

    // The map applied to the palette shown.
    ASSERT_EQ(LoadPalette(Editor, 0), 1);
    Editor.ProcessColormap = true;
    Editor.MapNumber = 31;
    RefreshEditedPalette(Editor);
    const IndexTable map = ColormapMap(Editor.Colormap, 31);
    EXPECT_EQ(Editor.EditedPalette[200], test::FreedoomPalette()[map[200]]);
}

TEST_F(PaletteEditorTest, ShortOrMissingLumps)
{
    const std::string pwad = Dir.File("short.wad");
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    testkit::WadBuilder().Lump("PLAYPAL", std::string(767, '\1')).Write(pwad);
    ASSERT_GE(OpenPwad(pwad), 1);
    Editor.IwadPalette = false;
    EXPECT_EQ(LoadPalette(Editor, 0), 0);
    EXPECT_EQ(Ui.Last().Text(), "PLAYPAL size is too small=767");

    const std::string bare = Dir.File("bare.wad");
    testkit::WadBuilder("IWAD").Level("MAP01").Write(bare);
    wad::ResetWad();
    ASSERT_EQ(OpenIwad(bare), 1);
    EXPECT_EQ(LoadPalette(Editor, 0), 0);
    EXPECT_EQ(Ui.Last().Text(), "No PLAYPAL found ?");
    EXPECT_EQ(LoadColormap(Editor, 0), 0);
    EXPECT_EQ(Ui.Last().Text(), "No COLORMAP found?");
}

TEST_F(PaletteEditorTest, EditsGradientsAndAdjustments)
{
    OpenFreedoom();
    const std::vector<uint8_t> original = Editor.Playpal;
    SetSingleColor(Editor, 5, {1, 2, 3});
    EXPECT_EQ(Editor.Playpal, original); // only Apply Palette reaches the lump copy
    Editor.PaletteNumber = 2;
    ApplyEditedPalette(Editor);
    EXPECT_EQ(LumpPalette(Editor, 2)[5], (Rgb{1, 2, 3}));
    EXPECT_EQ(LumpPalette(Editor, 0), test::FreedoomPalette());

    Editor.First = 10;
    Editor.Last = 11;
    EXPECT_EQ(GradientColors(Editor, {0, 0, 0}, {255, 255, 255}), 0);
    EXPECT_EQ(Ui.Last().Title, "Set Range");
    EXPECT_EQ(Ui.Last().Lines.size(), 4u);
    Editor.Last = 14;
    ASSERT_EQ(GradientColors(Editor, {0, 100, 200}, {100, 0, 200}), 1);
    EXPECT_EQ(Editor.EditedPalette[10], (Rgb{0, 100, 200}));
    EXPECT_EQ(Editor.EditedPalette[12], (Rgb{50, 50, 200}));
    EXPECT_EQ(Editor.EditedPalette[14], (Rgb{100, 0, 200}));
    ASSERT_EQ(GradientColormap(Editor, 0, 8), 1);
    EXPECT_EQ(ColormapMap(Editor.Colormap, 0)[13], 6);

    // Percent and absolute shifts, held to 0..255.
    Editor.EditedPalette[10] = {100, 200, 250};
    Editor.Last = 10;
    AdjustColors(Editor, {0, 50, 10, 10});
    EXPECT_EQ(Editor.EditedPalette[10], (Rgb{150, 220, 255}));
    Editor.PercentChange = false;
    AdjustColors(Editor, {-200, 0, 0, 0});
    EXPECT_EQ(Editor.EditedPalette[10], (Rgb{0, 20, 55}));
    // All palettes: every palette of the lump copy moves.
    Editor.AllPalettes = true;
    AdjustColors(Editor, {0, 1, 0, 0});
    EXPECT_EQ(LumpPalette(Editor, 13)[10].red,
              std::min(PaletteFromBytes(original, 13)[10].red + 1, 255));

    MakeGrayscalePaletteStandard(Editor);
    EXPECT_EQ(Editor.EditedPalette, GrayRamp());
}

TEST_F(PaletteEditorTest, DuplicatesAndColormapsFromTheDisplay)
{
    Palette palette = GrayRamp();
    EXPECT_EQ(DuplicateColorLines(palette), std::vector<std::string>{"No duplicate Colors"});
    palette[200] = palette[3];
    EXPECT_EQ(DuplicateColorLines(palette),
              std::vector<std::string>{"Duplicate Color index=  3 =200 RGB=  3,  3,  3"});

    OpenFreedoom();
    const std::vector<uint8_t> shipped = Editor.Colormap;
    Palette black{};
    CreateColormapsFromDisplay(Editor, black);
    std::vector<uint8_t> expected = shipped;
    CreateColormaps(expected, test::FreedoomPalette(), black, test::FreedoomPalette());
    EXPECT_EQ(Editor.Colormap, expected);
}

TEST_F(PaletteEditorTest, PaletteFromAPicture)
{
    OpenFreedoom();
    Palette reversed{};
    const Palette freedoom = test::FreedoomPalette();
    for (size_t i = 0; i < 256; ++i)
    {
        reversed[i] = freedoom[255 - i];
    }
    const std::string bmp = Dir.File("pal.bmp");
    ASSERT_TRUE(WriteFileBytes(bmp, EncodeBmp(ImageRaster(4, 4), reversed)));

    // Yes: map 0 translates the picture's palette; every game colour is in it.
    Ui.Answer(1);
    ASSERT_EQ(GetPaletteFromPicture(Editor, bmp), 1);
    EXPECT_EQ(LumpPalette(Editor, 0), reversed);
    const IndexTable map0 = ColormapMap(Editor.Colormap, 0);
    EXPECT_EQ(freedoom[map0[0]], reversed[0]);
    EXPECT_EQ(Ui.Messages[0].Title, "Match Palette");
    ASSERT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "Palette Conversion Results");

    // No, then yes to new colormaps: the stock darkening in the new colours.
    ASSERT_EQ(LoadPalette(Editor, 0), 1);
    ASSERT_EQ(LoadColormap(Editor, 0), 1);
    const std::vector<uint8_t> shipped = Editor.Colormap;
    Ui.Answer(0).Answer(1);
    ASSERT_EQ(GetPaletteFromPicture(Editor, bmp), 1);
    for (size_t i = 0; i < 32 * 256; ++i)
    {
        ASSERT_EQ(reversed[Editor.Colormap[i]], freedoom[shipped[i]]) << i;
    }

    // No, no, then reset.
    Ui.Answer(0).Answer(0).Answer(1);
    ASSERT_EQ(GetPaletteFromPicture(Editor, bmp), 1);
    EXPECT_EQ(ColormapMap(Editor.Colormap, 31), IdentityTable());

    Ui.Clear();
    testkit::WriteFile(Dir.File("x.txt"), "hello");
    EXPECT_EQ(GetPaletteFromPicture(Editor, Dir.File("x.txt")), 0);
    EXPECT_EQ(Ui.Last().Text(), Dir.File("x.txt") + " is not BMP or PCX");
}

} // namespace
} // namespace kelvar::gfx
