// Every picture lump of the Freedoom IWADs: decoded as deutex decodes it, and through each writer.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/Patch.h"
#include "gfx/Picture.h"
#include "gfx/RawPictures.h"
#include "tests/gfx/PicturePrinters.h"
#include "tests/gfx/WadLumps.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>

namespace kelvar::gfx
{
namespace
{

namespace fs = std::filesystem;

const std::string Deutex = "/usr/games/deutex";
// deutex writes holes as this index, so Kelvar decodes with it as the fill to compare.
constexpr std::uint8_t DeutexHole = 247;

// Lumps of a level that a size test could take for a flat; they are no pictures.
bool IsLevelLump(const std::string& name)
{
    static const std::set<std::string> Names = {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES",
                                                "SEGS",   "SSECTORS", "NODES",    "SECTORS",
                                                "REJECT", "BLOCKMAP"};
    return Names.contains(name);
}

// The lumps of a WAD that classify as a picture Kelvar decodes.
std::vector<testkit::WadLump> PictureLumps(const testkit::WadLumps& wad)
{
    std::vector<testkit::WadLump> found;
    for (const testkit::WadLump& lump : wad.Lumps())
    {
        const LumpKind kind = ClassifyLumpPrefix(wad.Bytes(lump), lump.Size).Kind;
        if (IsDecodedKind(kind) && !IsLevelLump(lump.Name))
        {
            found.push_back(lump);
        }
    }
    return found;
}

DecodedPicture DecodeLump(const testkit::WadLumps& wad, const testkit::WadLump& lump,
                          std::uint8_t fill)
{
    const LumpKind kind = ClassifyLumpPrefix(wad.Bytes(lump), lump.Size).Kind;
    return DecodePictureAs(wad.BytesFrom(lump, PictureReadSize(kind, lump.Size)), lump.Size, kind,
                           fill);
}

// deutex's file name of a lump.
std::string DeutexFileName(const std::string& lumpName)
{
    std::string name;
    for (const char c : lumpName)
    {
        name += c == '\\' ? '^' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

// A picture as png_indexes.py wrote it.
std::optional<ImageRaster> ReadIndexFile(const fs::path& path)
{
    const std::string bytes = testkit::ReadFile(path);
    if (bytes.size() < 16)
    {
        return std::nullopt;
    }
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    ImageRaster raster(wad::ReadLe32(data), wad::ReadLe32(data + 4));
    raster.leftOffset = static_cast<std::int16_t>(wad::ReadLe32(data + 8));
    raster.topOffset = static_cast<std::int16_t>(wad::ReadLe32(data + 12));
    for (int y = 0; y < raster.Height(); ++y)
    {
        std::copy_n(data + 16 + static_cast<std::size_t>(y * raster.Width()), raster.Width(),
                    raster.Row(y));
    }
    return raster;
}

// Runs deutex's extraction of every picture of `pwad` (nothing: the IWAD itself) and turns
// the PNGs into index files in `dir`/idx.
void ExtractWithDeutex(const fs::path& dir, const std::string& iwad, const std::string& pwad)
{
    fs::create_directories(dir / "iwad");
    fs::create_directories(dir / "ex");
    fs::create_symlink(iwad, dir / "iwad" / "doom2.wad");
    const std::string extract = "cd '" + dir.string() + "' && " + Deutex +
                                " -doom2 iwad -dir ex -patches -sprites -graphics -flats" +
                                " -extract " + pwad + " >deutex.log 2>&1";
    ASSERT_EQ(testkit::RunCommand(extract).Status, 0) << testkit::ReadFile(dir / "deutex.log");
    const std::string convert = std::string("/usr/bin/python3 '") + KELVAR_SOURCE_DIR +
                                "/tests/gfx/png_indexes.py' '" + (dir / "ex").string() + "' '" +
                                (dir / "idx").string() + "' 2>&1";
    const testkit::CommandOutput output = testkit::RunCommand(convert);
    ASSERT_EQ(output.Status, 0) << output.Text;
}

// The pictures of the Freedoom 2 IWAD as deutex extracts them, made once for all tests.
const testkit::TempDir& DeutexIwadPictures()
{
    static const std::unique_ptr<testkit::TempDir> dir = []
    {
        auto made = std::make_unique<testkit::TempDir>();
        ExtractWithDeutex(made->Path(), testkit::FreedoomWad("freedoom2.wad"), "");
        return made;
    }();
    return *dir;
}

class DeutexOracle : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!fs::exists(Deutex))
        {
            GTEST_SKIP() << "deutex is not installed";
        }
    }
};

TEST_F(DeutexOracle, EveryPictureLumpDecodesToDeutexsPixelsAndOffsets)
{
    const testkit::WadLumps wad(testkit::FreedoomWad("freedoom2.wad"));
    const fs::path idx = DeutexIwadPictures().Path() / "idx";
    int compared = 0;
    for (const testkit::WadLump& lump : PictureLumps(wad))
    {
        const fs::path file = idx / (DeutexFileName(lump.Name) + ".idx");
        const std::optional<ImageRaster> expected = ReadIndexFile(file);
        ASSERT_TRUE(expected) << lump.Name << " was not extracted by deutex";
        const DecodedPicture decoded = DecodeLump(wad, lump, DeutexHole);
        ASSERT_TRUE(decoded.Raster) << lump.Name;
        EXPECT_EQ(*decoded.Raster, *expected) << lump.Name;
        ++compared;
    }
    // Every PNG deutex made was compared: Kelvar finds the same set of pictures.
    const auto extracted = std::distance(fs::directory_iterator(idx), fs::directory_iterator());
    EXPECT_EQ(compared, extracted);
    EXPECT_GT(compared, 3000);
}

TEST_F(DeutexOracle, DeutexReadsKelvarsPatchesBackToTheSamePixels)
{
    const testkit::WadLumps wad(testkit::FreedoomWad("freedoom2.wad"));
    testkit::TempDir dir;
    // A PWAD of every patch picture of the IWAD re-encoded by Kelvar, sprites and patches
    // between their markers as deutex expects them.
    std::map<std::string, ImageRaster> written;
    testkit::WadBuilder pwad;
    for (const auto& [start, end] : {std::pair("S_START", "S_END"), std::pair("P_START", "P_END")})
    {
        pwad.Marker(start);
        for (const testkit::WadLump& lump : wad.Between(start, end))
        {
            const DecodedPicture decoded = DecodeLump(wad, lump, DeutexHole);
            ASSERT_TRUE(decoded.Raster) << lump.Name;
            const std::vector<std::uint8_t> bytes = EncodePatch(*decoded.Raster, DeutexHole);
            pwad.Lump(lump.Name, std::string(bytes.begin(), bytes.end()));
            written.emplace(lump.Name, *decoded.Raster);
        }
        pwad.Marker(end);
    }
    pwad.Write(dir.Path() / "kelvar.wad");

    ExtractWithDeutex(dir.Path(), testkit::FreedoomWad("freedoom2.wad"), "kelvar.wad");
    ASSERT_GT(written.size(), 2000u);
    for (const auto& [name, raster] : written)
    {
        const std::optional<ImageRaster> read =
            ReadIndexFile(dir.Path() / "idx" / (DeutexFileName(name) + ".idx"));
        ASSERT_TRUE(read) << name << " was not read by deutex";
        EXPECT_EQ(*read, raster) << name;
    }
}

// The first index among a few that the picture does not use as a colour, so that holes and
// pixels stay apart through a writer.
std::uint8_t UnusedFill(const testkit::WadLumps& wad, const testkit::WadLump& lump)
{
    for (const int candidate : {251, 247, 0, 255, 1, 254})
    {
        const auto fill = static_cast<std::uint8_t>(candidate);
        if (!DecodeLump(wad, lump, fill).TransparentUsed)
        {
            return fill;
        }
    }
    ADD_FAILURE() << lump.Name << " uses every candidate fill index";
    return 251;
}

void ExpectRoundTrip(const ImageRaster& original, LumpKind kind, std::uint8_t fill,
                     const std::string& name)
{
    const std::vector<std::uint8_t> bytes = WriteLumpFromRaster(original, kind, fill);
    const DecodedPicture back =
        DecodePictureAs(bytes, static_cast<std::int64_t>(bytes.size()), kind, fill);
    ASSERT_TRUE(back.Raster) << name << " as kind " << static_cast<int>(kind);
    ImageRaster expected = original;
    if (kind != LumpKind::Pic && kind != LumpKind::Imgz)
    {
        expected.leftOffset = 0; // raw formats keep no offsets
        expected.topOffset = 0;
    }
    EXPECT_EQ(*back.Raster, expected) << name << " as kind " << static_cast<int>(kind);
}

class FreedoomRoundTrip : public ::testing::TestWithParam<std::string>
{
};

TEST_P(FreedoomRoundTrip, EveryPictureComesBackThroughEachWriter)
{
    const testkit::WadLumps wad(testkit::FreedoomWad(GetParam()));
    int pictures = 0;
    for (const testkit::WadLump& lump : PictureLumps(wad))
    {
        const std::uint8_t fill = UnusedFill(wad, lump);
        const DecodedPicture decoded = DecodeLump(wad, lump, fill);
        ASSERT_TRUE(decoded.Raster) << lump.Name;
        const ImageRaster& raster = *decoded.Raster;
        ExpectRoundTrip(raster, LumpKind::Pic, fill, lump.Name);
        ExpectRoundTrip(raster, LumpKind::Imgz, fill, lump.Name);
        // The raw writers take the rows as they lie in memory, which only holds the picture
        // for widths without row padding.
        if (raster.Width() % 4 == 0)
        {
            ExpectRoundTrip(raster, LumpKind::FlatLeg, fill, lump.Name);
        }
        if (decoded.Kind != LumpKind::Pic)
        {
            ExpectRoundTrip(raster, decoded.Kind, fill, lump.Name);
        }
        if (HasFailure())
        {
            return;
        }
        ++pictures;
    }
    EXPECT_GT(pictures, 2000);
}

INSTANTIATE_TEST_SUITE_P(BothIwads, FreedoomRoundTrip,
                         ::testing::Values("freedoom1.wad", "freedoom2.wad"));

} // namespace
} // namespace kelvar::gfx
