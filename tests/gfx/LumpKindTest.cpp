// Tests of lump classification: the order of the byte tests, their size guards, the flat
// names, and every lump of both Freedoom IWADs against its marker range.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/LumpKind.h"

#include "gfx/Patch.h"
#include "tests/gfx/PicturePrinters.h"
#include "tests/gfx/WadLumps.h"
#include "tests/testkit/WadFixture.h"
#include "wad/MarkerRanges.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

namespace kelvar::gfx
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

Bytes Text(std::string_view text, std::size_t size)
{
    Bytes bytes(size, 0);
    std::memcpy(bytes.data(), text.data(), std::min(text.size(), size));
    return bytes;
}

void Put16(Bytes& bytes, std::size_t at, int value)
{
    wad::WriteLe16(bytes.data() + at, static_cast<std::uint16_t>(value));
}

void Put32(Bytes& bytes, std::size_t at, std::int64_t value)
{
    wad::WriteLe32(bytes.data() + at, static_cast<std::int32_t>(value));
}

// A patch header of `width` x `height` with the first column offset right after the table.
Bytes PatchLump(std::size_t size, int width = 4, int height = 4, int left = 0, int top = 0)
{
    Bytes bytes(size, 0);
    Put16(bytes, 0, width);
    Put16(bytes, 2, height);
    Put16(bytes, 4, left);
    Put16(bytes, 6, top);
    Put32(bytes, 8, 8 + width * 4);
    return bytes;
}

LumpClass Classify(const Bytes& bytes)
{
    return ClassifyLumpPrefix(bytes, static_cast<std::int64_t>(bytes.size()));
}

TEST(ClassifyLumpPrefix, EachFormatIsKnownByItsBytesWithinItsSizeGuard)
{
    Bytes wadBytes = Text("PWAD", 12);
    Put32(wadBytes, 8, 12);
    Bytes wadPastEnd = wadBytes;
    Put32(wadPastEnd, 8, 13);
    Bytes mus = Text("MUS\x1A", 20);
    Put16(mus, 4, 10);
    Put16(mus, 6, 10);
    Put16(mus, 8, 15);
    Bytes musChannels = mus;
    Put16(musChannels, 8, 16);
    Bytes pcx = Text("\x0A\x05\x01\x08", 897);
    Bytes pcxNegative = pcx;
    Put16(pcxNegative, 10, -1);
    Bytes snd(100, 0);
    Put16(snd, 0, 3);
    Put16(snd, 2, 11025);
    Put32(snd, 4, 100);
    Bytes sndLong = snd;
    Put32(sndLong, 4, 101);
    Bytes bmp = Text("BM", 55);
    Put32(bmp, 2, 55);
    Put32(bmp, 14, 40);
    Bytes bmpRle = bmp;
    Put32(bmpRle, 30, 1);
    Bytes png = Text(std::string_view("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR", 16), 30);
    png[19] = 1; // width 1 << 0, big-endian
    png[22] = 2; // height 2 << 8
    Bytes flatleg(8 + 3 * 5, 0);
    Put32(flatleg, 0, 3);
    Put32(flatleg, 4, 5);
    Bytes flatlegShort(8 + 3 * 5 - 1, 0);
    Put32(flatlegShort, 0, 3);
    Put32(flatlegShort, 4, 5);

    const struct
    {
        const char* What;
        Bytes Lump;
        LumpClass Expected;
    } cases[] = {
        {"empty", {}, {}},
        {"PWAD", wadBytes, {LumpKind::Pwad, "WAD"}},
        {"PWAD directory past the end", wadPastEnd, {}},
        {"WAVE any case", Text("riffxxxxwavefmt ", 46), {LumpKind::Wave, "WAV"}},
        {"WAVE of 45 bytes", Text("RIFFxxxxWAVEfmt ", 45), {}},
        {"MIDI", Text("MThd", 46), {LumpKind::Midi, "MID"}},
        {"MIDI of 45 bytes", Text("MThd", 45), {}},
        {"RMID", Text("RIFFxxxxRMIDdata", 46), {LumpKind::Midi, "MID"}},
        {"MUS", mus, {LumpKind::DoomMus, "MUS"}},
        {"MUS of 16 channels", musChannels, {}},
        {"PCX", pcx, {LumpKind::Pcx, "PCX"}},
        {"PCX negative window", pcxNegative, {}},
        {"SND", snd, {LumpKind::DoomSound, "SND"}},
        {"SND counts past the end", sndLong, {}},
        {"BMP", bmp, {LumpKind::Bmp, "BMP"}},
        {"BMP compressed", bmpRle, {}},
        {"IMGZ", Text("IMGZ", 25), {LumpKind::Imgz, "IMG"}},
        {"IMGZ of 24 bytes", Text("IMGZ", 24), {}},
        {"PNG", png, {LumpKind::Png, "PNG", 1, 512}},
        {"fLaC", Text("fLaC", 12), {LumpKind::Flac, "fLaC"}},
        {"FON", Text("FON2", 12), {LumpKind::Font, "FONT"}},
        {"Ogg", Text(std::string_view("OggS\0\2", 6), 12), {LumpKind::Ogg, "OggS"}},
        {"Ogg of 11 bytes", Text(std::string_view("OggS\0\2", 6), 11), {}},
        {"JFIF", Text("\xFF\xD8\xFF\xE0xxJFIF", 10), {LumpKind::Jpg, "JPG"}},
        {"Exif", Text("\xFF\xD8\xFF\xE1xxExif", 10), {LumpKind::Jpg, "JPG"}},
        {"FLATLEG", flatleg, {LumpKind::FlatLeg, "FLT", 3, 5}},
        {"FLATLEG a byte short", flatlegShort, {}},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(Classify(c.Lump), c.Expected) << c.What;
    }
}

TEST(ClassifyLumpPrefix, RawPicturesAreKnownByTheirExactSize)
{
    const struct
    {
        std::size_t Size;
        LumpClass Expected;
    } cases[] = {
        {4096, {LumpKind::Flat, "FLT", 64, 64}},
        {4160, {LumpKind::Flat, "FLT", 64, 64}},
        {8192, {LumpKind::Flat, "FLT", 64, 64}},
        {4097, {}},
        {16384, {LumpKind::Flat, "FLT", 128, 128}},
        {65536, {LumpKind::Flat, "FLT", 256, 256}},
        {4194304, {LumpKind::Flat, "FLT", 2048, 2048}},
        {32768, {}},
        {64000, {LumpKind::FlatBig, "FLT", 320, 200}},
        {50560, {LumpKind::FlatBig158, "FLT", 320, 158}},
    };
    for (const auto& c : cases)
    {
        // 0xEE bytes: no header test takes them.
        EXPECT_EQ(Classify(Bytes(c.Size, 0xEE)), c.Expected) << c.Size;
    }
}

TEST(ClassifyLumpPrefix, ThePatchTestComesBeforeTheSizeTestsAndNeedsMoreThan12Bytes)
{
    EXPECT_EQ(Classify(PatchLump(64000, 320, 200)), (LumpClass{LumpKind::Pic, "PIC", 320, 200}));
    EXPECT_EQ(Classify(PatchLump(4096, 64, 64)).Kind, LumpKind::Pic);
    // Twelve bytes hold a whole header that passes every field test, but never a patch.
    Bytes twelve = PatchLump(12, 1, 1);
    Put32(twelve, 8, 4);
    EXPECT_EQ(IsPatchHeader(twelve, 13), PatchYes);
    EXPECT_EQ(IsPatchHeader(twelve, 12), PatchNo);
    EXPECT_EQ(Classify(twelve).Kind, LumpKind::Lump);
    EXPECT_EQ(Classify(PatchLump(13, 1, 1)).Kind, LumpKind::Pic);
    // A WAD header comes before everything.
    Bytes wadLike = PatchLump(64000, 320, 200);
    std::memcpy(wadLike.data(), "IWAD", 4);
    Put32(wadLike, 8, 100);
    EXPECT_EQ(Classify(wadLike).Kind, LumpKind::Pwad);
}

TEST(IsPatchHeader, FieldLimitsAndTheLooseFirstColumnTest)
{
    EXPECT_EQ(IsPatchHeader(PatchLump(100, 4, 4, -2046, 2046), 100), PatchYes);
    EXPECT_EQ(IsPatchHeader(PatchLump(100, 4, 4, 2047, 0), 100), PatchNo);
    EXPECT_EQ(IsPatchHeader(PatchLump(100, 4, 4, 0, -2047), 100), PatchNo);
    EXPECT_EQ(IsPatchHeader(PatchLump(100, 0, 4), 100), PatchNo);
    EXPECT_EQ(IsPatchHeader(PatchLump(100, 4, 2049), 100), PatchNo);
    // The first column may start at width * 4, inside the table; one less fails, and so does
    // an offset at or past the size.
    Bytes loose = PatchLump(100, 4, 4);
    Put32(loose, 8, 16);
    EXPECT_EQ(IsPatchHeader(loose, 100), PatchYes);
    Put32(loose, 8, 15);
    EXPECT_EQ(IsPatchHeader(loose, 100), PatchNo);
    Put32(loose, 8, 100);
    EXPECT_EQ(IsPatchHeader(loose, 100), PatchNo);
    EXPECT_EQ(IsPatchHeader(Text("\x89PNG\r\n\x1A\n", 40), 40), PatchIsPng);
    // The size query's wider rule takes what the quick test refuses.
    const Bytes wide = PatchLump(100, 4, 4, 2047, -2048);
    ASSERT_TRUE(ReadPatchSize(wide));
    EXPECT_EQ(ReadPatchSize(wide)->LeftOffset, 2047);
    EXPECT_FALSE(ReadPatchSize(PatchLump(100, 4, 4, 2049, 0)));
}

TEST(KindName, BothFullScreenSizesShowAsFlatbigAndABigLevelAsLevgl)
{
    EXPECT_EQ(KindName(LumpKind::FlatBig158), "FLATBIG");
    EXPECT_EQ(KindName(LumpKind::Jpg), "JPG");
    EXPECT_EQ(KindName(LumpKind::Level, 12), "LEVEL");
    EXPECT_EQ(KindName(LumpKind::Level, 13), "LEVGL");
    EXPECT_EQ(KindFromName("texture1", "wad"), LumpKind::Texture1);
    EXPECT_EQ(KindFromName("TEXTURE2", "PWAD"), LumpKind::Lump);
}

class ClassifyDirectoryEntryTest : public testkit::WadFixture
{
};

TEST_F(ClassifyDirectoryEntryTest, NamesInTheFlatRangesAndSkiesAreFlatsWhenTheBytesSayNothing)
{
    const std::string iwad = testkit::WadBuilder("IWAD")
                                 .Level("MAP01")
                                 .Marker("F_START")
                                 .Lump("ODDFLAT", std::string(32768, 'x'))
                                 .Marker("F_END")
                                 .Lump("ODDLUMP", std::string(32768, 'x'))
                                 .Lump("F_SKY9", std::string(100, 'x'))
                                 .Lump("PICTURE", std::string(100, 'x'))
                                 .Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    wad::BuildMarkerLists();
    const auto kindOf = [](const char* name) { return ClassifyDirectoryEntry(name, -1); };
    EXPECT_EQ(kindOf("ODDFLAT").Class, (LumpClass{LumpKind::Flat, "FLT", 64, 64}));
    EXPECT_EQ(kindOf("ODDLUMP").Class.Kind, LumpKind::Lump);
    EXPECT_EQ(kindOf("F_SKY9").Class.Kind, LumpKind::Flat);
    EXPECT_EQ(kindOf("PICTURE").KindName, "LUMP");
    const EntryClass level = kindOf("MAP01");
    EXPECT_EQ(level.Class.Kind, LumpKind::Level);
    EXPECT_EQ(level.KindName, "LEVEL");
    EXPECT_EQ(level.LevelLumpCount, 11);
    EXPECT_EQ(kindOf("NOSUCH").Index, -1);
    // The kind stays in the directory record.
    EXPECT_EQ(wad::Master()[static_cast<std::size_t>(kindOf("ODDFLAT").Index)].Kind,
              static_cast<std::uint16_t>(LumpKind::Flat));
}

class FreedoomClassification : public testkit::WadFixture,
                               public ::testing::WithParamInterface<std::string>
{
};

// Sprites are patches, flats are flats, and classifying twice gives the same answer, with the
// kind kept in the directory.
TEST_P(FreedoomClassification, MarkerRangesHoldTheirKindsAndEveryAnswerIsStable)
{
    const std::string path = testkit::FreedoomWad(GetParam());
    ASSERT_EQ(OpenIwad(path), 1);
    wad::BuildMarkerLists();
    const testkit::WadLumps wadLumps(path);
    const auto expectAll = [&](const std::string& start, const std::string& end, LumpKind kind)
    {
        const std::vector<testkit::WadLump> lumps = wadLumps.Between(start, end);
        EXPECT_GT(lumps.size(), 50u) << start;
        for (const testkit::WadLump& lump : lumps)
        {
            const EntryClass found = ClassifyDirectoryEntry("", static_cast<int>(lump.Index));
            EXPECT_EQ(found.Class.Kind, kind) << lump.Name;
            EXPECT_EQ(wad::Master()[lump.Index].Kind, static_cast<std::uint16_t>(kind));
        }
    };
    expectAll("S_START", "S_END", LumpKind::Pic);
    expectAll("P_START", "P_END", LumpKind::Pic);
    expectAll("F_START", "F_END", LumpKind::Flat);

    std::map<std::string, int> kinds;
    for (std::size_t i = 0; i < wad::Master().Size(); ++i)
    {
        const EntryClass first = ClassifyDirectoryEntry("", static_cast<int>(i));
        const EntryClass second = ClassifyDirectoryEntry("", static_cast<int>(i));
        EXPECT_EQ(first.Class, second.Class) << i;
        ++kinds[std::string(first.KindName)];
    }
    EXPECT_EQ(kinds["LEVEL"], GetParam() == "freedoom1.wad" ? 36 : 32);
    EXPECT_GT(kinds["MIDI"], 30);
    EXPECT_GT(kinds["DOOMSOUND"], 60);
    EXPECT_EQ(ClassifyDirectoryEntry("PLAYPAL", -1).KindName, "LUMP");
    EXPECT_EQ(ClassifyDirectoryEntry("TEXTURE1", -1).KindName, "LUMP");
    EXPECT_EQ(ClassifyDirectoryEntry("TITLEPIC", -1).Class,
              (LumpClass{LumpKind::Pic, "PIC", 320, 200}));
}

INSTANTIATE_TEST_SUITE_P(BothIwads, FreedoomClassification,
                         ::testing::Values("freedoom1.wad", "freedoom2.wad"));

} // namespace
} // namespace kelvar::gfx
