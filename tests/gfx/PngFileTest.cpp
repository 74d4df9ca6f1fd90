// Tests of PNG files: palette round trips with grAb offsets, pictures PIL made in palette,
// gray, RGB and RGBA forms, the fast match's threshold, damaged files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PngFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"

#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace kelvar::gfx
{
namespace
{

class PngFileTest : public test::FreedoomPaletteFixture
{
protected:
    void RunPil(const std::string& body)
    {
        testkit::WriteFile(Dir.File("make.py"),
                           "import sys\nfrom PIL import Image\nd=sys.argv[1]\n" + body);
        ASSERT_EQ(testkit::RunCommand("/usr/bin/python3 " + Dir.File("make.py") + " " +
                                      Dir.Path().string())
                      .Status,
                  0);
    }
};

TEST(Png, PaletteRoundTripsWithOffsets)
{
    const Palette palette = test::FreedoomPalette();
    for (int width : {1, 2, 3, 5, 8})
    {
        ImageRaster raster(width, 3, 0xEE);
        for (int y = 0; y < 3; ++y)
        {
            for (int x = 0; x < width; ++x)
            {
                raster.Set(x, y, static_cast<uint8_t>(x * 37 + y * 91));
            }
        }
        raster.leftOffset = static_cast<int16_t>(-width);
        raster.topOffset = 300;
        const auto bytes = EncodePng(raster, palette);
        ASSERT_TRUE(bytes);
        FilePicture picture;
        ASSERT_EQ(DecodePng(*bytes, picture), PngStatus::Ok);
        EXPECT_TRUE(picture.Indexed);
        EXPECT_EQ(picture.FilePalette, palette);
        EXPECT_EQ(picture.LeftOffset, -width);
        EXPECT_EQ(picture.TopOffset, 300);
        PictureOptions keep;
        keep.MatchPalette = false;
        EXPECT_EQ(ToGamePalette(picture, palette, keep).Raster, raster) << width;
    }
    // No offsets, no grAb chunk.
    const auto plain = EncodePng(ImageRaster(2, 2), palette);
    ASSERT_TRUE(plain);
    EXPECT_EQ(std::string(plain->begin(), plain->end()).find("grAb"), std::string::npos);
}

TEST_F(PngFileTest, PicturesPilMadeInEveryForm)
{
    // Freedoom colours in four forms, plus a transparent corner in the RGBA one and a grAb
    // chunk written by hand into the palette one.
    RunPil("import struct, zlib\n"
           "cols=[(255,0,0),(0,0,0),(255,255,255),(119,255,111),(0,0,255),(167,107,107)]\n"
           "im=Image.new('RGB',(6,4))\n"
           "im.putdata([cols[(x+2*y)%6] for y in range(4) for x in range(6)])\n"
           "im.save(d+'/rgb.png')\n"
           "a=im.convert('RGBA'); a.putpixel((0,0),(9,9,9,0)); a.save(d+'/rgba.png')\n"
           "im.quantize(colors=6).save(d+'/pal.png')\n"
           "im.convert('L').save(d+'/gray.png')\n"
           "raw=open(d+'/pal.png','rb').read()\n"
           "body=b'grAb'+struct.pack('>ii',-5,42)\n"
           "chunk=struct.pack('>I',8)+body+struct.pack('>I',zlib.crc32(body))\n"
           "open(d+'/grab.png','wb').write(raw[:33]+chunk+raw[33:])\n");
    const Palette& game = Palettes().GamePalette;
    const Rgb cols[6] = {{255, 0, 0},     {0, 0, 0},   {255, 255, 255},
                         {119, 255, 111}, {0, 0, 255}, {167, 107, 107}};
    Palettes().Options.PngMatch = 100; // only an exact colour stops the fast match early
    for (const char* name : {"rgb.png", "rgba.png", "pal.png", "grab.png"})
    {
        PictureRead read;
        ASSERT_EQ(LoadPng(Dir.File(name), 1, true, read), 1) << name;
        ASSERT_EQ(read.Raster.Width(), 6);
        ASSERT_EQ(read.Raster.Height(), 4);
        for (int y = 0; y < 4; ++y)
        {
            for (int x = 0; x < 6; ++x)
            {
                if (std::string(name) == "rgba.png" && x == 0 && y == 0)
                {
                    EXPECT_EQ(read.Raster.At(0, 0), 251); // a hole
                    continue;
                }
                EXPECT_EQ(game[read.Raster.At(x, y)], cols[(x + 2 * y) % 6]) << name;
            }
        }
    }
    PictureRead grab;
    ASSERT_EQ(LoadPng(Dir.File("grab.png"), 1, true, grab), 1);
    EXPECT_EQ(grab.Raster.leftOffset, -5);
    EXPECT_EQ(grab.Raster.topOffset, 42);
    EXPECT_EQ(LastImageKind(), ImageKindPng);

    // Gray: indexes on a gray ramp, translated to the nearest game colours.
    PictureRead gray;
    ASSERT_EQ(LoadPng(Dir.File("gray.png"), 1, true, gray), 1);
    EXPECT_EQ(gray.FilePalette, GrayRamp());
    EXPECT_EQ(game[gray.Raster.At(2, 0)], (Rgb{255, 255, 255}));

    // At the default threshold the first entry within a sum of 50 wins, not the exact one.
    Palettes().Options.PngMatch = 50;
    PictureRead rough;
    ASSERT_EQ(LoadPng(Dir.File("rgb.png"), 1, true, rough), 1);
    for (int x = 0; x < 6; ++x)
    {
        const Rgb& want = cols[x];
        const Rgb& got = game[rough.Raster.At(x, 0)];
        EXPECT_LT(std::abs(want.red - got.red) + std::abs(want.green - got.green) +
                      std::abs(want.blue - got.blue),
                  51);
    }
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(PngFileTest, DamagedFilesAreRefusedWithoutACrash)
{
    ImageRaster raster(9, 7, 4);
    raster.leftOffset = 3;
    const auto bytes = EncodePng(raster, test::FreedoomPalette());
    ASSERT_TRUE(bytes);
    for (size_t size = 0; size < bytes->size(); ++size)
    {
        FilePicture picture;
        EXPECT_NE(DecodePng(std::span(*bytes).first(size), picture), PngStatus::Ok) << size;
    }
    // A flipped bit in the pixel data fails its check sum.
    std::vector<uint8_t> flipped = *bytes;
    flipped[flipped.size() - 20] ^= 0x10;
    FilePicture picture;
    EXPECT_EQ(DecodePng(flipped, picture), PngStatus::Damaged);
    // A width of 0 and a width past the limit.
    std::vector<uint8_t> zero = *bytes;
    zero[16] = zero[17] = zero[18] = zero[19] = 0;
    EXPECT_NE(DecodePng(zero, picture), PngStatus::Ok);
    std::vector<uint8_t> huge = *bytes;
    huge[16] = 0x7F;
    EXPECT_NE(DecodePng(huge, picture), PngStatus::Ok);
    EXPECT_EQ(DecodePng(std::vector<uint8_t>{'B', 'M'}, picture), PngStatus::NotPng);

    const std::string path = Dir.File("cut.png");
    ASSERT_TRUE(WriteFileBytes(path, std::span(*bytes).first(bytes->size() / 2)));
    PictureRead read;
    EXPECT_EQ(LoadPng(path, 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(),
              "Could not process Graphic " + path + "\n\nProbably invalid format!");
    EXPECT_EQ(LastImageKind(), ImageKindNone);
}

TEST_F(PngFileTest, SavePngWritesWhatLoadPngReads)
{
    ImageRaster raster(5, 2, 176);
    raster.Set(4, 1, 251);
    raster.topOffset = -7;
    const std::string path = Dir.File("out.png");
    EXPECT_EQ(SavePng("X", raster, nullptr, path, false), 0);
    PictureRead read;
    ASSERT_EQ(LoadPng(path, 1, true, read), 1);
    EXPECT_EQ(read.Raster, raster);
    // PIL sees the same size and a palette picture.
    const testkit::CommandOutput pil =
        testkit::RunCommand("/usr/bin/python3 -c \"from PIL import Image; im=Image.open('" + path +
                            "'); print(im.size, im.mode, im.getpixel((4,1)))\"");
    EXPECT_EQ(pil.Text, "(5, 2) P 251\n");
}

} // namespace
} // namespace kelvar::gfx
