// Tests of raw pictures: flat sizes, short flats, IMGZ's run-length stream and its limits,
// FLATLEG, and the sizes the raw writers give.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/RawPictures.h"

#include "gfx/Picture.h"
#include "tests/gfx/PicturePrinters.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kelvar::gfx
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

Bytes ImgzLump(int width, int height, int compression, const Bytes& data)
{
    Bytes lump(ImgzHeaderBytes + data.size(), 0);
    std::memcpy(lump.data(), "IMGZ", 4);
    wad::WriteLe16(lump.data() + 4, static_cast<std::uint16_t>(width));
    wad::WriteLe16(lump.data() + 6, static_cast<std::uint16_t>(height));
    wad::WriteLe16(lump.data() + 8, static_cast<std::uint16_t>(-3));
    wad::WriteLe16(lump.data() + 10, 9);
    lump[12] = static_cast<std::uint8_t>(compression);
    std::copy(data.begin(), data.end(), lump.begin() + ImgzHeaderBytes);
    return lump;
}

Bytes Pixels(const ImageRaster& raster)
{
    Bytes pixels;
    for (int y = 0; y < raster.Height(); ++y)
    {
        pixels.insert(pixels.end(), raster.Row(y), raster.Row(y) + raster.Width());
    }
    return pixels;
}

TEST(FlatSize, SquareSidesFromTheLumpSizeAndEverythingElse64)
{
    EXPECT_EQ(FlatSizeFromLumpSize(64000), (PictureSize{320, 200}));
    EXPECT_EQ(FlatSizeFromLumpSize(16385), (PictureSize{128, 128}));
    EXPECT_EQ(FlatSizeFromLumpSize(4194304), (PictureSize{2048, 2048}));
    EXPECT_EQ(FlatSizeFromLumpSize(50560), (PictureSize{64, 64}));
    EXPECT_EQ(FlatSizeFromLumpSize(32768), (PictureSize{64, 64}));
}

TEST(FlatDecoder, AShortFlatTakesWhatFollowsAndZerosPastTheFile)
{
    Bytes bytes(5000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        bytes[i] = static_cast<std::uint8_t>(i * 7);
    }
    // A 100-byte flat whose file goes on: 64 x 64 from the bytes that follow.
    const ImageRaster flat = DecodeFlat(std::span(bytes).first(4096), 100);
    ASSERT_EQ(flat.Width(), 64);
    EXPECT_EQ(flat.At(63, 63), static_cast<std::uint8_t>(4095 * 7));
    // A flat at the end of the file: the rest is 0.
    const ImageRaster cut = DecodeFlat(std::span(bytes).first(70), 100);
    EXPECT_EQ(cut.At(5, 1), static_cast<std::uint8_t>(69 * 7));
    EXPECT_EQ(cut.At(6, 1), 0);
    EXPECT_EQ(cut.At(63, 63), 0);

    ImageRaster doubled(128, 128);
    ExpandRawToRaster(64, 64, bytes, doubled, 2);
    EXPECT_EQ(doubled.At(3, 2), bytes[65]);
    EXPECT_EQ(doubled.At(127, 127), bytes[4095]);
}

TEST(ImgzDecoder, RunsLiteralsAndTheNoOpCode)
{
    // 2 + 1 literals, a run of 4, the no-op, a literal, then a run that overshoots the end.
    const Bytes stream = {2, 10, 11, 12, 0xFD, 20, 0x80, 0, 30, 0x81, 40};
    const std::optional<ImageRaster> raster = DecodeImgz(ImgzLump(4, 3, 1, stream));
    ASSERT_TRUE(raster);
    EXPECT_EQ(Pixels(*raster), (Bytes{10, 11, 12, 20, 20, 20, 20, 30, 40, 40, 40, 40}));
    EXPECT_EQ(raster->leftOffset, -3);
    EXPECT_EQ(raster->topOffset, 9);

    // A stream that stops early reads on as zeros.
    const std::optional<ImageRaster> early = DecodeImgz(ImgzLump(3, 3, 1, {0xFE, 7}));
    ASSERT_TRUE(early);
    EXPECT_EQ(Pixels(*early), (Bytes{7, 7, 7, 0, 0, 0, 0, 0, 0}));
    const std::optional<ImageRaster> raw = DecodeImgz(ImgzLump(2, 2, 0, {1, 2, 3}));
    ASSERT_TRUE(raw);
    EXPECT_EQ(Pixels(*raw), (Bytes{1, 2, 3, 0}));
}

TEST(ImgzDecoder, SizeLimitsAndShortLumps)
{
    EXPECT_TRUE(DecodeImgz(ImgzLump(1024, 1, 1, {0x81, 1})));
    EXPECT_FALSE(DecodeImgz(ImgzLump(1025, 1, 1, {0x81, 1})));
    EXPECT_FALSE(DecodeImgz(ImgzLump(1, 0, 1, {0x81, 1})));
    EXPECT_FALSE(DecodeImgz(ImgzLump(1, 1, 0, {}))); // 24 bytes
    EXPECT_TRUE(DecodeImgz(ImgzLump(1, 1, 0, {5}))); // 25 bytes
    Bytes notImgz = ImgzLump(1, 1, 0, {5});
    notImgz[0] = 'J';
    EXPECT_FALSE(DecodeImgz(notImgz));
    EXPECT_EQ(DecodePicture(ImgzLump(2000, 1, 0, {1}), 0).Error, PictureError::InvalidSize);
}

TEST(RawWriters, SizesHeadersAndPaddingRemovalOfImgzOnly)
{
    ImageRaster odd(3, 2, 5);
    odd.Set(2, 1, 6);
    odd.leftOffset = 1;
    odd.topOffset = -2;
    const Bytes imgz = WriteLumpFromRaster(odd, LumpKind::Imgz, 0);
    ASSERT_EQ(imgz.size(), ImgzHeaderBytes + 6);
    EXPECT_EQ(Bytes(imgz.begin(), imgz.begin() + 13),
              (Bytes{'I', 'M', 'G', 'Z', 3, 0, 2, 0, 1, 0, 0xFE, 0xFF, 0}));
    EXPECT_EQ(Bytes(imgz.begin() + 24, imgz.end()), (Bytes{5, 5, 5, 5, 5, 6}));
    EXPECT_EQ(DecodeImgz(imgz), odd);

    EXPECT_EQ(WriteLumpFromRaster(ImageRaster(64, 64), LumpKind::Flat, 0).size(), 4096u);
    EXPECT_EQ(WriteLumpFromRaster(ImageRaster(320, 200), LumpKind::FlatBig, 0).size(), 64000u);
    EXPECT_EQ(WriteLumpFromRaster(ImageRaster(320, 158), LumpKind::FlatBig158, 0).size(), 50560u);

    ImageRaster wide(8, 3, 1);
    wide.Set(7, 2, 2);
    const Bytes flatleg = WriteLumpFromRaster(wide, LumpKind::FlatLeg, 0);
    ASSERT_EQ(flatleg.size(), 8u + 24u);
    EXPECT_EQ(Bytes(flatleg.begin(), flatleg.begin() + 8), (Bytes{8, 0, 0, 0, 3, 0, 0, 0}));
    EXPECT_EQ(DecodeFlatleg(flatleg), wide);
    const Bytes shortLeg(flatleg.begin(), flatleg.end() - 1);
    EXPECT_FALSE(DecodeFlatleg(shortLeg));
    Bytes hugeLeg = flatleg;
    hugeLeg[1] = 0x08; // width 2056
    EXPECT_FALSE(DecodeFlatleg(hugeLeg));
}

} // namespace
} // namespace kelvar::gfx
