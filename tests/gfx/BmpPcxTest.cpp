// Tests of BMP and PCX files: round trips of every pitch, the PCX run coding byte for byte,
// pictures PIL made, damaged files and the readers' messages.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/BmpFile.h"
#include "gfx/GamePalette.h"
#include "gfx/PaletteFiles.h"
#include "gfx/PcxFile.h"

#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::gfx
{
namespace
{

ImageRaster RandomRaster(int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    ImageRaster raster(width, height, 0xEE); // padding that must never show
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            // Runs and single pixels both, values over 192 too.
            raster.Set(x, y, static_cast<uint8_t>(random() % 3 == 0 ? 200 : random() % 256));
        }
    }
    return raster;
}

PictureRead Decoded(const FilePicture& picture, const Palette& game)
{
    PictureOptions options;
    return ToGamePalette(picture, game, options);
}

class PictureFileTest : public test::FreedoomPaletteFixture
{
protected:
    std::string Write(const std::string& name, const std::vector<uint8_t>& bytes)
    {
        const std::string path = Dir.File(name);
        EXPECT_TRUE(WriteFileBytes(path, bytes));
        return path;
    }
};

TEST(BmpAndPcx, RoundTripsOfEveryPitch)
{
    const Palette gray = GrayRamp(); // no duplicates: the translation is the identity
    for (int width = 1; width <= 9; ++width)
    {
        for (int height : {1, 2, 5})
        {
            const ImageRaster raster =
                RandomRaster(width, height, static_cast<unsigned>(width * 7 + height));
            FilePicture picture;
            ASSERT_EQ(DecodeBmp(EncodeBmp(raster, gray), picture), BmpStatus::Ok);
            EXPECT_EQ(picture.FilePalette, gray);
            EXPECT_EQ(Decoded(picture, gray).Raster, raster) << "BMP " << width << "x" << height;
            ASSERT_EQ(DecodePcx(EncodePcx(raster, gray), picture, nullptr), PcxStatus::Ok);
            EXPECT_EQ(picture.FilePalette, gray);
            EXPECT_EQ(Decoded(picture, gray).Raster, raster) << "PCX " << width << "x" << height;
        }
    }
}

TEST(BmpAndPcx, APictureInTheGamePaletteKeepsEveryIndexEvenOfARepeatedColour)
{
    Palette game{};
    for (int i = 0; i < 256; ++i)
    {
        game[static_cast<size_t>(i)] = {static_cast<uint8_t>(i), static_cast<uint8_t>(255 - i), 7};
    }
    game[200] = game[100]; // palettes repeat colours; matching would send 200 to 100
    ImageRaster raster(3, 1);
    raster.Set(0, 0, 100);
    raster.Set(1, 0, 200);
    raster.Set(2, 0, 5);
    FilePicture decoded;
    ASSERT_EQ(DecodeBmp(EncodeBmp(raster, game), decoded), BmpStatus::Ok);
    PictureOptions options;
    const ImageRaster back = ToGamePalette(decoded, game, options).Raster;
    EXPECT_EQ(back.At(1, 0), 200);
    Palette other = game;
    other[5] = {1, 2, 3};
    EXPECT_EQ(ToGamePalette(decoded, other, options).Raster.At(1, 0), 100)
        << "a picture in another palette is matched, repeated colours to the first";
}

TEST(Bmp, HeaderAsWrittenAndOptionalFields)
{
    const Palette palette = test::FreedoomPalette();
    const ImageRaster raster = RandomRaster(5, 3, 1);
    std::vector<uint8_t> bytes = EncodeBmp(raster, palette);
    ASSERT_EQ(bytes.size(), 1078u + 8u * 3u);
    EXPECT_EQ(bytes[0], 'B');
    EXPECT_EQ(bytes[10] | bytes[11] << 8, 1078);
    EXPECT_EQ(bytes[46] | bytes[47] << 8, 256); // colours used
    EXPECT_EQ(bytes[54 + 176 * 4 + 2], 255);    // entry 176 is red: blue, green, red, 0
    // The bottom row comes first.
    EXPECT_TRUE(std::equal(raster.Row(2), raster.Row(2) + 5, bytes.begin() + 1078));

    // A colour count and an image size of 0 read the same.
    bytes[46] = bytes[47] = 0;
    bytes[34] = bytes[35] = bytes[36] = bytes[37] = 0;
    FilePicture picture;
    ASSERT_EQ(DecodeBmp(bytes, picture), BmpStatus::Ok);
    EXPECT_EQ(picture.FilePalette, palette);
    PictureOptions keep;
    keep.MatchPalette = false;
    EXPECT_EQ(ToGamePalette(picture, palette, keep).Raster, raster);
}

TEST(Pcx, RunCodingByteForByte)
{
    const Palette palette = GrayRamp();
    const auto rowBytes = [&](std::initializer_list<uint8_t> row)
    {
        ImageRaster raster(static_cast<int>(row.size()), 1);
        int x = 0;
        for (uint8_t value : row)
        {
            raster.Set(x++, 0, value);
        }
        std::vector<uint8_t> bytes = EncodePcx(raster, palette);
        return std::vector<uint8_t>(bytes.begin() + 128, bytes.end() - 769);
    };
    // A single pixel at the end of a row takes a count; in the middle, the bare value.
    EXPECT_EQ(rowBytes({0, 0, 0, 176}), (std::vector<uint8_t>{0xC3, 0, 0xC1, 176}));
    EXPECT_EQ(rowBytes({5, 0, 0, 0}), (std::vector<uint8_t>{5, 0xC3, 0}));
    EXPECT_EQ(rowBytes({200, 0, 0, 0}), (std::vector<uint8_t>{0xC1, 200, 0xC3, 0}));
    // Runs stop at 63; the padding of the pitch is coded too.
    ImageRaster wide(66, 1, 9);
    std::vector<uint8_t> bytes = EncodePcx(wide, palette);
    EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 128, bytes.end() - 769),
              (std::vector<uint8_t>{0xFF, 9, 0xC5, 9}));
    EXPECT_EQ(bytes[66], 68); // bytes per line: the pitch
    EXPECT_EQ(bytes[bytes.size() - 769], 12);

    // A count byte of 192 writes no pixel.
    std::vector<uint8_t> file = EncodePcx(ImageRaster(2, 1), palette);
    file.erase(file.begin() + 128, file.end() - 769);
    file.insert(file.begin() + 128, {0xC0, 77, 3, 4});
    FilePicture picture;
    ASSERT_EQ(DecodePcx(file, picture, nullptr), PcxStatus::Ok);
    EXPECT_EQ(picture.Indexes, (std::vector<uint8_t>{3, 4}));
}

TEST_F(PictureFileTest, PicturesPilMade)
{
    const Palette game = Palettes().GamePalette;
    // An 8-bit BMP and PCX with their own palette, a 24-bit and a 1-bit BMP; every colour
    // is a Freedoom one, so each must come back as an entry of that colour.
    const std::string script =
        "import sys\nfrom PIL import Image\n"
        "cols=[(255,0,0),(0,0,0),(255,255,255),(119,255,111),(0,0,255),(167,107,107),(31,23,11)]\n"
        "im=Image.new('RGB',(7,3))\n"
        "im.putdata([cols[(x+y)%7] for y in range(3) for x in range(7)])\n"
        "d=sys.argv[1]\n"
        "im.save(d+'/rgb.bmp')\n"
        "p=im.quantize(colors=7); p.save(d+'/pal.bmp'); p.save(d+'/pal.pcx')\n"
        "m=Image.new('1',(7,3)); m.putdata([(x+y)%2 for y in range(3) for x in range(7)])\n"
        "m.save(d+'/mono.bmp')\n";
    testkit::WriteFile(Dir.File("make.py"), script);
    ASSERT_EQ(
        testkit::RunCommand("/usr/bin/python3 " + Dir.File("make.py") + " " + Dir.Path().string())
            .Status,
        0);

    const Rgb expected[7] = {{255, 0, 0}, {0, 0, 0},       {255, 255, 255}, {119, 255, 111},
                             {0, 0, 255}, {167, 107, 107}, {31, 23, 11}};
    for (const char* name : {"rgb.bmp", "pal.bmp", "pal.pcx"})
    {
        PictureRead read;
        const int kind = std::string(name).ends_with(".pcx") ? ImageKindPcx : ImageKindBmp;
        ASSERT_EQ(ReadImageFile(kind, true, 1, Dir.File(name), false, read), 1) << name;
        EXPECT_EQ(LastImageKind(), kind);
        ASSERT_EQ(read.Raster.Width(), 7);
        ASSERT_EQ(read.Raster.Height(), 3);
        for (int y = 0; y < 3; ++y)
        {
            for (int x = 0; x < 7; ++x)
            {
                EXPECT_EQ(game[read.Raster.At(x, y)], expected[(x + y) % 7])
                    << name << " " << x << "," << y;
            }
        }
    }
    PictureRead mono;
    ASSERT_EQ(LoadBmp(Dir.File("mono.bmp"), 2, true, mono), 1);
    EXPECT_EQ(mono.Bits, 1);
    EXPECT_EQ(mono.Raster.Width(), 14); // scale 2
    EXPECT_EQ(game[mono.Raster.At(0, 0)], (Rgb{0, 0, 0}));
    EXPECT_EQ(game[mono.Raster.At(2, 1)], (Rgb{255, 255, 255})); // pixel (1, 0)
    EXPECT_EQ(game[mono.Raster.At(2, 2)], (Rgb{0, 0, 0}));       // pixel (1, 1)
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(PictureFileTest, DamagedFilesGetTheirMessagesAndNeverCrash)
{
    const ImageRaster raster = RandomRaster(7, 5, 3);
    const std::vector<uint8_t> bmp = EncodeBmp(raster, GrayRamp());
    const std::vector<uint8_t> pcx = EncodePcx(raster, GrayRamp());
    // Every truncation of either decodes to a refusal or a picture, never past the bytes.
    for (size_t size = 0; size < bmp.size(); ++size)
    {
        FilePicture picture;
        EXPECT_NE(DecodeBmp(std::span(bmp).first(size), picture), BmpStatus::Ok) << size;
    }
    for (size_t size = 0; size < pcx.size(); ++size)
    {
        FilePicture picture;
        (void)DecodePcx(std::span(pcx).first(size), picture, nullptr);
    }

    PictureRead read;
    EXPECT_EQ(LoadBmp(Dir.File("none.bmp"), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(), "Image " + Dir.File("none.bmp") + "\nnot found");
    EXPECT_EQ(LastImageKind(), ImageKindNone);
    EXPECT_EQ(LoadBmp(Write("short.bmp", {'B', 'M', 0}), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(), "DIB Error reading file!\n" + Dir.File("short.bmp"));
    EXPECT_EQ(
        LoadBmp(Write("cut.bmp", std::vector<uint8_t>(bmp.begin(), bmp.end() - 1)), 1, true, read),
        0);
    EXPECT_TRUE(Ui.Last().Text().starts_with("DIB Error reading file!"));

    const auto patched = [&](size_t at, uint8_t value)
    {
        std::vector<uint8_t> bytes = bmp;
        bytes[at] = value;
        return bytes;
    };
    EXPECT_EQ(LoadBmp(Write("x.bmp", patched(0, 'X')), 1, true, read), 0);
    EXPECT_TRUE(Ui.Saw("DIB Not a Windows BMP/DIB file!"));
    EXPECT_EQ(LoadBmp(Write("v5.bmp", patched(14, 124)), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(), "DIB Not a Windows BMP/DIB file!");
    EXPECT_EQ(LoadBmp(Write("rle.bmp", patched(30, 1)), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Title, "RLE BMP");
    EXPECT_EQ(Ui.Last().Text(), "RLE BMPs not supported");
    EXPECT_EQ(LoadBmp(Write("bits.bmp", patched(28, 7)), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(), "DIB Not a supported format!");
    EXPECT_EQ(LoadBmp(Write("huge.bmp", patched(21, 0x7F)), 1, true, read), 0);
    EXPECT_EQ(Ui.Last().Text(), "DIB Not a supported format!");
    EXPECT_EQ(LoadBmp(Write("flat.bmp", patched(22, 0)), 1, true, read), 0);

    Ui.Clear();
    EXPECT_EQ(ReadImageFile(ImageKindPcx, true, 1,
                            Write("s.pcx", std::vector<uint8_t>(pcx.begin(), pcx.begin() + 130)),
                            false, read),
              0);
    EXPECT_EQ(Ui.Last().Title, "Size");
    EXPECT_EQ(Ui.Last().Text(), "Size is too small?");
    std::vector<uint8_t> bad = pcx;
    bad[2] = 0;
    bad[8] = 0xFF; // xmax -1
    bad[9] = 0xFF;
    EXPECT_EQ(ReadImageFile(ImageKindPcx, true, 1, Write("b.pcx", bad), false, read), 0);
    EXPECT_EQ(Ui.Last().Title, "Not Supported");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"size=" + std::to_string(pcx.size()) +
                                            " X=0,-1 Y=0,4  control=10,5,0,8",
                                        "Image size or type not supported (must be 10,5,1,8)!"}));
    Ui.Clear();
    EXPECT_EQ(ReadImageFile(ImageKindPcx, true, 1, Dir.File("b.pcx"), true, read), 0);
    EXPECT_TRUE(Ui.Messages.empty()); // quiet
    EXPECT_EQ(ReadImageFile(22, true, 1, Dir.File("b.pcx"), false, read), 0);
}

TEST_F(PictureFileTest, SavesWithTheDialogAndReportsFailures)
{
    const ImageRaster raster = RandomRaster(3, 2, 5);
    const std::string path = Dir.File("TROO.BMP");
    Ui.AnswerFile(path);
    EXPECT_EQ(SaveBmp("TROO", raster, nullptr, "", true), BmpSaved);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "BMP name");
    EXPECT_EQ(Ui.FileRequests.back().InitialPath.filename(), "TROO.BMP");
    EXPECT_EQ(Ui.Last().Text(), "BMP " + path + " (3 x 2) Saved Successfully");
    PictureRead read;
    ASSERT_EQ(LoadBmp(path, 1, false, read), 1);
    EXPECT_EQ(read.Raster, raster);
    EXPECT_EQ(read.FilePalette, Palettes().GamePalette);

    Ui.Clear();
    EXPECT_EQ(SavePcx("X", raster, nullptr, Dir.File("quiet.pcx"), false), BmpSaved);
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(SaveBmp("X", raster, nullptr, Dir.Path() / "no" / "x.bmp", false), BmpCreateFailed);
    EXPECT_EQ(Ui.Last().Text(), "DIB Error opening file!");
}

} // namespace
} // namespace kelvar::gfx
