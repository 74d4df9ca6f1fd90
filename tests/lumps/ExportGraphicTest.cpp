// Tests of pictures written as BMP and PCX: every graphics kind read back through the picture
// readers to the lump's own pixels, the flat sizes, and the pictures that can't be decoded.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportLump.h"

#include "gfx/BmpFile.h"
#include "gfx/PcxFile.h"
#include "gfx/RawPictures.h"
#include "tests/lumps/ExportFixture.h"
#include "wad/FindLump.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;
using gfx::LumpKind;
using Bytes = std::vector<std::uint8_t>;

// A run of bytes counting up from `first`, wrapping at 256.
std::string Counting(std::size_t size, int first = 0)
{
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
    {
        bytes[i] = static_cast<char>((first + static_cast<int>(i)) & 0xFF);
    }
    return bytes;
}

std::string Text(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

class ExportGraphicTest : public ExportFixture
{
protected:
    static testkit::WadBuilder PicturesPwad()
    {
        gfx::ImageRaster small(5, 2);
        for (int y = 0; y < 2; ++y)
        {
            for (int x = 0; x < 5; ++x)
            {
                small.Set(x, y, static_cast<std::uint8_t>(30 + x + 5 * y));
            }
        }
        std::string cutPatch = PatchLump(4, 3, 40);
        cutPatch.resize(cutPatch.size() - 4);
        std::string hugeImgz = Text(gfx::EncodeImgz(small));
        hugeImgz[4] = '\xD0'; // width 2000
        hugeImgz[5] = '\x07';
        testkit::WadBuilder pwad;
        pwad.Lump("F_SKY1", Counting(4096))
            .Lump("SPARE", Counting(4160, 9))
            .Lump("F_SKYBIG", Counting(20000, 3))
            .Lump("TITLEPIC", Counting(64000, 1))
            .Lump("STBAR158", Counting(50560, 2))
            .Lump("LEGACY", Text(gfx::EncodeFlatleg(small)))
            .Lump("ZIMG", Text(gfx::EncodeImgz(small)))
            .Lump("CUTPATCH", cutPatch)
            .Lump("HUGEIMGZ", hugeImgz);
        return pwad;
    }

    // Exports the lump as the kind the list gives it, into Out; ExportWritten or the failure.
    int Export(const std::string& name, const std::string& extension,
               int transparentIndex = gfx::DefaultTransparentIndex)
    {
        const std::vector<ExportRow> rows = ScanAll();
        const int row = FindRowByName(rows, name);
        EXPECT_GE(row, 0) << name;
        const ExportRow& found = rows[static_cast<std::size_t>(std::max(row, 0))];
        Kinds[name] = found.Kind;
        fs::path path = Out / (name + extension);
        return ExportGraphic(extension, name, found.DirectoryIndex, found.Kind, transparentIndex,
                             path, false);
    }

    // The picture file read back through the project's readers.
    gfx::FilePicture ReadBack(const std::string& file)
    {
        const std::string text = testkit::ReadFile(Out / file);
        const Bytes bytes(text.begin(), text.end());
        gfx::FilePicture picture;
        if (wad::UpperText(file).ends_with(".PCX"))
        {
            EXPECT_EQ(gfx::DecodePcx(bytes, picture, nullptr), gfx::PcxStatus::Ok) << file;
        }
        else
        {
            EXPECT_EQ(gfx::DecodeBmp(bytes, picture), gfx::BmpStatus::Ok) << file;
        }
        return picture;
    }

    static Bytes LumpOf(const std::string& name)
    {
        return wad::ReadLumpBytes(wad::FindLump(wad::Wad().Files[0], name, false));
    }

    // The indexes of a raster, row by row without padding.
    static Bytes Pixels(const gfx::ImageRaster& raster)
    {
        Bytes pixels;
        for (int y = 0; y < raster.Height(); ++y)
        {
            pixels.insert(pixels.end(), raster.Row(y), raster.Row(y) + raster.Width());
        }
        return pixels;
    }

    std::map<std::string, LumpKind> Kinds;
};

TEST_F(ExportGraphicTest, FlatsExportAsTheLargestLegalSquareTheirBytesHold)
{
    OpenWith(PicturesPwad());
    ASSERT_EQ(Export("F_SKY1", ".BMP"), ExportWritten);
    EXPECT_EQ(Kinds["F_SKY1"], LumpKind::Flat);
    const gfx::FilePicture sky = ReadBack("F_SKY1.BMP");
    EXPECT_EQ(sky.Width, 64);
    EXPECT_EQ(sky.Height, 64);
    EXPECT_EQ(sky.Indexes, LumpOf("F_SKY1"));

    ASSERT_EQ(Export("SPARE", ".PCX"), ExportWritten);
    const gfx::FilePicture spare = ReadBack("SPARE.PCX");
    EXPECT_EQ(spare.Width, 64) << "4160 bytes: 64 x 64, the spare 64 bytes dropped";
    const Bytes spareLump = LumpOf("SPARE");
    EXPECT_EQ(spare.Indexes, Bytes(spareLump.begin(), spareLump.begin() + 4096));

    ASSERT_EQ(Export("F_SKYBIG", ".BMP"), ExportWritten);
    EXPECT_EQ(Kinds["F_SKYBIG"], LumpKind::Flat) << "listed as a flat by its name";
    const gfx::FilePicture odd = ReadBack("F_SKYBIG.BMP");
    EXPECT_EQ(odd.Width, 128) << "20000 bytes hold a 128 x 128 square";
    const Bytes oddLump = LumpOf("F_SKYBIG");
    EXPECT_EQ(odd.Indexes, Bytes(oddLump.begin(), oddLump.begin() + 16384));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(ExportGraphicTest, PatchHolesTakeTheTransparentIndexInBothFormats)
{
    OpenWith(PicturesPwad());
    const std::optional<gfx::ImageRaster> patch = gfx::DecodePatch(LumpOf("SARGA1"), 251);
    ASSERT_TRUE(patch.has_value());
    for (const std::string extension : {".BMP", ".PCX"})
    {
        ASSERT_EQ(Export("SARGA1", extension), ExportWritten);
        const gfx::FilePicture picture = ReadBack("SARGA1" + extension);
        EXPECT_EQ(picture.Width, 4);
        EXPECT_EQ(picture.Height, 3);
        EXPECT_EQ(picture.Indexes, Pixels(*patch)) << extension;
        EXPECT_EQ(picture.Indexes[0], 251);
        EXPECT_EQ(picture.FilePalette[100], (gfx::Rgb{100, 100, 100})) << "the game palette";
    }
    ASSERT_EQ(Export("SARGA1", ".BMP", 0), ExportWritten);
    EXPECT_EQ(ReadBack("SARGA1.BMP").Indexes[0], 0) << "the hole in the index asked for";
}

TEST_F(ExportGraphicTest, FullScreenFlatlegAndImgzPicturesKeepTheirSizes)
{
    OpenWith(PicturesPwad());
    const std::vector<std::tuple<std::string, LumpKind, int, int>> cases = {
        {"TITLEPIC", LumpKind::FlatBig, 320, 200},
        {"STBAR158", LumpKind::FlatBig158, 320, 158},
        {"LEGACY", LumpKind::FlatLeg, 5, 2},
        {"ZIMG", LumpKind::Imgz, 5, 2}};
    for (const auto& [name, kind, width, height] : cases)
    {
        ASSERT_EQ(Export(name, ".BMP"), ExportWritten) << name;
        EXPECT_EQ(Kinds[name], kind) << name;
        const gfx::FilePicture picture = ReadBack(name + ".BMP");
        EXPECT_EQ(picture.Width, width) << name;
        EXPECT_EQ(picture.Height, height) << name;
        const gfx::DecodedPicture lump = gfx::DecodePictureAs(
            LumpOf(name), static_cast<std::int64_t>(LumpOf(name).size()), kind, 0);
        ASSERT_TRUE(lump.Raster.has_value());
        EXPECT_EQ(picture.Indexes, Pixels(*lump.Raster)) << name;
    }
}

TEST_F(ExportGraphicTest, PicturesThatDontDecodeAreReportedAndNotWritten)
{
    OpenWith(PicturesPwad());
    EXPECT_EQ(Export("CUTPATCH", ".BMP"), ExportFailed);
    EXPECT_EQ(Kinds["CUTPATCH"], LumpKind::Pic);
    EXPECT_EQ(Ui.Last().Text(), "Could not process Graphic CUTPATCH\n\nProbably invalid format!");
    EXPECT_EQ(Export("HUGEIMGZ", ".PCX"), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Not enough Memory to read or invalid size HUGEIMGZ!");
    EXPECT_TRUE(fs::is_empty(Out));
}

TEST_F(ExportGraphicTest, APromptedSaveUsesThePictureDialogAndReportsTheSize)
{
    OpenWith(PicturesPwad());
    fs::path path;
    Ui.AnswerFile(Out / "sprite.pcx");
    ASSERT_EQ(ExportGraphic(".pcx", "SARGA1", -1, LumpKind::Pic, 251, path, true), ExportWritten);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "PCX name");
    EXPECT_EQ(path, Out / "sprite.pcx");
    EXPECT_EQ(Ui.Last().Text(), "PCX " + path.string() + " (4 x 3) Saved Successfully");
    EXPECT_EQ(ReadBack("sprite.pcx").Width, 4);
}

} // namespace
} // namespace kelvar::lumps
