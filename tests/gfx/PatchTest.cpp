// Tests of patches: tall columns through the encoder and decoder, the bytes the writer makes,
// scaled decoding, the transparent-colour notice and damaged lumps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Patch.h"

#include "gfx/Picture.h"
#include "platform/test/RecordingUi.h"
#include "tests/gfx/PicturePrinters.h"
#include "tests/gfx/WadLumps.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::gfx
{
namespace
{

constexpr std::uint8_t Hole = DefaultTransparentIndex;

using Bytes = std::vector<std::uint8_t>;

ImageRaster Column(int height, std::initializer_list<std::pair<int, int>> opaqueRuns)
{
    ImageRaster raster(1, height, Hole);
    for (const auto& [first, last] : opaqueRuns)
    {
        for (int y = first; y <= last; ++y)
        {
            raster.Set(0, y, static_cast<std::uint8_t>(y % 200));
        }
    }
    return raster;
}

// The (delta, count) pairs of the one column of a patch lump.
std::vector<std::pair<int, int>> Posts(const Bytes& lump)
{
    std::vector<std::pair<int, int>> posts;
    std::size_t at = lump[8] | (lump[9] << 8);
    while (lump[at] != 255)
    {
        posts.emplace_back(lump[at], lump[at + 1]);
        at += 4 + lump[at + 1];
    }
    return posts;
}

ImageRaster RoundTrip(const ImageRaster& raster)
{
    const std::optional<ImageRaster> back = DecodePatch(EncodePatch(raster, Hole), Hole);
    return back ? *back : ImageRaster();
}

TEST(PatchColumns, TallColumnsSplitAt254AndComeBackByTheTallRule)
{
    // 300 opaque rows: a post of 254, then one that starts at row 254 exactly.
    const ImageRaster tall = Column(300, {{0, 299}});
    EXPECT_EQ(Posts(EncodePatch(tall, Hole)),
              (std::vector<std::pair<int, int>>{{0, 254}, {254, 46}}));
    EXPECT_EQ(RoundTrip(tall), tall);

    // A post that starts above row 254 is cut where it reaches it; past it, deltas count on
    // from the post before, with empty posts of 254 for longer jumps.
    const ImageRaster holes = Column(1200, {{100, 260}, {600, 610}, {1190, 1199}});
    EXPECT_EQ(Posts(EncodePatch(holes, Hole)),
              (std::vector<std::pair<int, int>>{
                  {100, 154}, {254, 7}, {254, 0}, {92, 11}, {254, 0}, {254, 0}, {82, 10}}));
    EXPECT_EQ(RoundTrip(holes), holes);

    // The 255th pixel of a post that starts past row 254 opens a post of delta 254.
    const ImageRaster longPast = Column(900, {{300, 899}});
    EXPECT_EQ(Posts(EncodePatch(longPast, Hole)),
              (std::vector<std::pair<int, int>>{{254, 0}, {46, 254}, {254, 254}, {254, 92}}));
    EXPECT_EQ(RoundTrip(longPast), longPast);
}

TEST(PatchColumns, RandomPicturesWithHolesRoundTrip)
{
    std::mt19937 random(1234);
    for (int picture = 0; picture < 200; ++picture)
    {
        const int width = 1 + static_cast<int>(random() % 9);
        const int height = 1 + static_cast<int>(random() % 1100);
        ImageRaster raster(width, height, Hole);
        raster.leftOffset = static_cast<std::int16_t>(static_cast<int>(random() % 400) - 200);
        raster.topOffset = static_cast<std::int16_t>(static_cast<int>(random() % 400) - 200);
        // Holes per thousand pixels: long posts, short ones, or mostly holes.
        const auto kind = random() % 3;
        const auto holesPerThousand =
            kind == 0 ? 1 + random() % 10 : (kind == 1 ? 50 + random() % 400 : 900);
        for (int x = 0; x < width; ++x)
        {
            for (int y = 0; y < height; ++y)
            {
                const bool hole = random() % 1000 < holesPerThousand;
                raster.Set(x, y, hole ? Hole : static_cast<std::uint8_t>(random() % 250));
            }
        }
        ASSERT_EQ(RoundTrip(raster), raster)
            << "picture " << picture << ", " << width << "x" << height;
    }
}

TEST(PatchWriter, BytesOfHeaderTableAndPostsAndAnEmptyColumn)
{
    ImageRaster raster(2, 3, Hole);
    raster.leftOffset = -5;
    raster.topOffset = 7;
    raster.Set(0, 1, 9);
    raster.Set(0, 2, 8);
    const Bytes lump = EncodePatch(raster, Hole);
    const Bytes expected = {2,  0, 3, 0, 0xFB, 0xFF, 7,   0, // size and offsets
                            16, 0, 0, 0, 23,   0,    0,   0, // column offsets
                            1,  2, 0, 9, 8,    0,    255,    // a post at row 1
                            255};                            // only holes
    EXPECT_EQ(lump, expected);
    EXPECT_EQ(PatchSizeFromColumns(ConvertRawY(raster, Hole)), expected.size());
    EXPECT_EQ(PatchSizeFromColumns({}), 8u);
}

TEST(PatchDecoder, ScalesUpAndDownAndWarnsOnceAboutTheFillIndexAsAColour)
{
    ImageRaster raster(3, 3, Hole);
    raster.Set(0, 0, 1);
    raster.Set(1, 1, 2);
    raster.Set(2, 2, 3);
    const Bytes lump = EncodePatch(raster, Hole);

    ImageRaster doubled(6, 6);
    EXPECT_TRUE(DecodePatchToRaster(lump, doubled, 2, Hole).Complete);
    EXPECT_EQ(doubled.At(0, 1), 1);
    EXPECT_EQ(doubled.At(3, 2), 2);
    EXPECT_EQ(doubled.At(5, 5), 3);
    EXPECT_EQ(doubled.At(2, 0), Hole);

    ImageRaster halved(2, 2); // scale 0: every second column and pixel
    EXPECT_TRUE(DecodePatchToRaster(lump, halved, 0, Hole).Complete);
    EXPECT_EQ(halved.At(0, 0), 1);
    EXPECT_EQ(halved.At(1, 1), 3);
    EXPECT_EQ(halved.At(1, 0), Hole);

    platform::RecordingUi ui;
    platform::ScopedUi scoped(ui);
    ImageRaster target(3, 3);
    EXPECT_TRUE(DecodePatchToRaster("SPOTS", lump, target, 1, 2).TransparentUsed);
    EXPECT_TRUE(DecodePatchToRaster(nullptr, lump, target, 1, 2).TransparentUsed);
    ASSERT_EQ(ui.Titles(), std::vector<std::string>{"Transparent used"});
    EXPECT_EQ(ui.Last().Lines,
              (std::vector<std::string>{"Warning - transparent color is used as an actual color",
                                        "SPOTS"}));
}

TEST(PatchDecoder, TrimmedSizeIsTheBoxThePostsCover)
{
    ImageRaster raster(10, 400, Hole);
    raster.Set(3, 5, 1);
    raster.Set(6, 300, 1);
    const std::optional<TrimmedSize> size = ReadPatchTrimmedSize(EncodePatch(raster, Hole));
    ASSERT_TRUE(size);
    EXPECT_EQ(size->Width, 4);
    EXPECT_EQ(size->Height, 296);
    EXPECT_EQ(size->MinColumn, 3);
    EXPECT_EQ(size->MinRow, 5);
}

// Every truncation and a scatter of byte damage of a real sprite: each decode ends cleanly,
// and a patch whose posts run past its end is refused.
TEST(PatchDecoder, DamagedLumpsAreRefusedWithoutReadingPastThem)
{
    const testkit::WadLumps wad(testkit::FreedoomWad("freedoom2.wad"));
    const std::vector<testkit::WadLump> sprites = wad.Between("S_START", "S_END");
    ASSERT_FALSE(sprites.empty());
    const auto bytes = wad.Bytes(sprites.front());
    const Bytes whole(bytes.begin(), bytes.end());
    ASSERT_TRUE(DecodePatch(whole, Hole));
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(DecodePatch(cut, Hole)) << size;
        const DecodedPicture picture =
            DecodePictureAs(cut, static_cast<std::int64_t>(size), LumpKind::Pic, Hole);
        EXPECT_EQ(picture.Error, PictureError::InvalidFormat) << size;
    }
    std::mt19937 random(99);
    for (int trial = 0; trial < 2000; ++trial)
    {
        Bytes damaged = whole;
        for (int hit = 0; hit < 4; ++hit)
        {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        (void)DecodePicture(damaged, Hole);
        (void)ReadPatchTrimmedSize(damaged);
    }

    // Column offsets past the end fail the bounds test; the decoder draws BADIMAGE.
    Bytes pastEnd = whole;
    pastEnd[12] = 0xFF;
    pastEnd[13] = 0xFF;
    EXPECT_FALSE(CheckPatchColumns(pastEnd));
    const Bytes cut(whole.begin(), whole.end() - 3);
    ImageRaster target(ReadPatchHeader(whole).Width, ReadPatchHeader(whole).Height);
    EXPECT_FALSE(DecodePatchToRaster(cut, target, 1, Hole).Complete);
    ImageRaster bad(target.Width(), target.Height());
    DrawPlaceholder(bad, Placeholder::BadImage, Hole);
    EXPECT_EQ(target, bad);
}

class ReadPictureLumpTest : public testkit::WadFixture
{
};

TEST_F(ReadPictureLumpTest, BadPicturesOfTheDirectoryAreReportedByName)
{
    ImageRaster raster(3, 2, 7);
    raster.leftOffset = 1;
    const Bytes patch = EncodePatch(raster, Hole);
    const Bytes cut(patch.begin(), patch.end() - 2);
    Bytes imgz = WriteLumpFromRaster(raster, LumpKind::Imgz, Hole);
    imgz[5] = 0x08; // width 2051
    const auto text = [](const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); };
    const std::string iwad = testkit::WadBuilder("IWAD")
                                 .Level("MAP01")
                                 .Lump("GOOD", text(patch))
                                 .Lump("BROKEN", text(cut))
                                 .Lump("WIDEIMGZ", text(imgz))
                                 .Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    Ui.Clear(); // the notice about an IWAD of no known game
    const auto indexOf = [](const char* name)
    { return static_cast<std::size_t>(ClassifyDirectoryEntry(name, -1).Index); };

    EXPECT_EQ(ReadPictureLump(indexOf("GOOD"), Hole), raster);
    EXPECT_TRUE(Ui.Titles().empty());
    EXPECT_FALSE(ReadPictureLump(indexOf("BROKEN"), Hole));
    EXPECT_EQ(Ui.Last().Text(), "Could not process Graphic BROKEN\n\nProbably invalid format!");
    EXPECT_FALSE(ReadPictureLump(indexOf("WIDEIMGZ"), Hole));
    EXPECT_EQ(Ui.Last().Text(), "Not enough Memory to read or invalid size WIDEIMGZ!");
    EXPECT_EQ(Ui.Titles().size(), 2u);
}

} // namespace
} // namespace kelvar::gfx
