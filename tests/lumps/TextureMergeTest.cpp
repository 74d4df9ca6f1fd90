// Tests of the merge buffers: PNAMES merged without moving old names, patch indexes translated,
// textures added, overwritten and replaced, deleted and sorted, and the dummy TEXTURE2.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureMerge.h"

#include "tests/lumps/MergeTestLumps.h"
#include "wad/WadFormat.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kelvar::lumps
{
namespace
{

using testing::AsBytes;
using testing::PnamesBytes;
using testing::ReadPnames;
using testing::ReadTextures;
using testing::TextureBytes;
using testing::TextureDef;

std::int32_t OffsetAt(const std::vector<std::uint8_t>& lump, int index)
{
    return wad::ReadLe32(lump.data() + 4 + 4 * index);
}

TEST(MergePnames, KeepsTheOldOrderAndAppendsOnlyNewNames)
{
    MergeBuffers buffers;
    MergePnames(buffers, AsBytes(PnamesBytes({"WALL1", "WALL2", "DOOR1"})));
    EXPECT_TRUE(buffers.Log.empty());
    MergePnames(buffers, AsBytes(PnamesBytes({"door1", "SKY1", "WALL2", "STEP1"})));
    EXPECT_EQ(ReadPnames(buffers.Pnames),
              (std::vector<std::string>{"WALL1", "WALL2", "DOOR1", "SKY1", "STEP1"}));
    EXPECT_EQ(buffers.Pnames.size(), 4u + 5 * 8);

    // A first lump with spare bytes is taken as it is, and said so; the next merge cuts it
    // to its names.
    MergeBuffers padded;
    std::string withSpare = PnamesBytes({"A", "B"}) + std::string(6, '\0');
    MergePnames(padded, AsBytes(withSpare));
    ASSERT_EQ(padded.Log.size(), 1u);
    EXPECT_EQ(padded.Log[0], "PNAMES size error\n\ndata size=26, should be 20");
    MergePnames(padded, AsBytes(PnamesBytes({"C"})));
    EXPECT_EQ(ReadPnames(padded.Pnames), (std::vector<std::string>{"A", "B", "C"}));
    EXPECT_EQ(padded.Pnames.size(), 28u);

    EXPECT_FALSE(PnamesLumpFits(AsBytes(PnamesBytes({"A", "B"}).substr(0, 15))));
    EXPECT_FALSE(PnamesLumpFits(AsBytes(PnamesBytes({}))));
    EXPECT_TRUE(PnamesLumpFits(AsBytes(withSpare)));
}

TEST(MergePnames, ADamagedCountNeverGrowsTheBufferPastTheNamesItHolds)
{
    // The first lump claims a billion names and holds two; a negative count holds none.
    for (const std::int32_t claimed : {1'000'000'000, -5})
    {
        MergeBuffers buffers;
        std::string lump = PnamesBytes({"A", "B"});
        std::memcpy(lump.data(), &claimed, 4);
        MergePnames(buffers, AsBytes(lump));
        MergePnames(buffers, AsBytes(PnamesBytes({"C"})));
        EXPECT_LE(buffers.Pnames.size(), lump.size() + 8) << claimed;
        EXPECT_EQ(ReadPnames(buffers.Pnames).back(), "C") << claimed;
    }
}

TEST(RemapTexturePatches, TranslatesToTheMergedNamesAndCountsBadIndexes)
{
    MergeBuffers buffers;
    MergePnames(buffers, AsBytes(PnamesBytes({"WALL1", "WALL2", "DOOR1"})));
    const std::string source = PnamesBytes({"DOOR1", "NEWPATCH", "WALL1"});
    MergePnames(buffers, AsBytes(source));
    std::vector<std::uint8_t> textures = AsBytes(TextureBytes({
        {"GOOD", 64, 64, {{0, 0, 0}, {32, 0, 2}, {0, 32, 1}}},
        {"BAD", 64, 64, {{0, 0, 3}, {0, 0, -1}, {0, 0, 1}}},
    }));
    EXPECT_EQ(RemapTexturePatches(buffers, "TEXT1source", textures, AsBytes(source)), 1);
    const std::vector<TextureDef> read = ReadTextures(textures);
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].Patches, (std::vector<testing::PatchDef>{{0, 0, 2}, {32, 0, 0}, {0, 32, 3}}));
    // The stale indexes stay as they were; the good one beside them is translated.
    EXPECT_EQ(read[1].Patches, (std::vector<testing::PatchDef>{{0, 0, 3}, {0, 0, -1}, {0, 0, 3}}));
    EXPECT_EQ(buffers.BadTextures, 1);
    EXPECT_EQ(buffers.Log.back(), "Texture      BAD patchcount=3 invalid patch count=2");
}

TEST(MergeTextures, AddsOverwritesInPlaceAndReplacesWithEveryCount)
{
    MergeBuffers buffers;
    const std::vector<TextureDef> target = {
        {"STARTAN", 64, 128, {{0, 0, 0}}},
        {"DOOR", 64, 72, {{0, 0, 1}, {32, 0, 1}}},
        {"SKY1", 256, 128, {{0, 0, 2}}},
    };
    MergeTextures(buffers, "TEXT1target", AsBytes(TextureBytes(target)));
    const std::vector<std::uint8_t> first = buffers.Textures;
    EXPECT_EQ(first, AsBytes(TextureBytes(target))) << "an empty buffer takes the lump as it is";

    // DOOR: same patch count, moved patch, so the same record size: overwritten in place.
    // SKY1: one patch more: deleted and appended. STARTAN: the same bytes. NEW: added.
    // AADUMMY1 is never taken in.
    const std::vector<TextureDef> source = {
        {"door", 64, 72, {{0, 0, 1}, {40, 0, 1}}},
        {"AADUMMY1", 0, 0, {{0, 0, 1}}},
        {"SKY1", 256, 128, {{0, 0, 2}, {128, 0, 2}}},
        {"STARTAN", 64, 128, {{0, 0, 0}}},
        {"NEW", 32, 32, {{0, 0, 3}}},
    };
    MergeTextures(buffers, "TEXT1source", AsBytes(TextureBytes(source)));
    const std::vector<TextureDef> merged = ReadTextures(buffers.Textures);
    ASSERT_EQ(merged.size(), 4u);
    EXPECT_EQ(merged[0], target[0]);
    EXPECT_EQ(merged[1], (TextureDef{"door", 64, 72, {{0, 0, 1}, {40, 0, 1}}}));
    EXPECT_EQ(merged[2], source[2]);
    EXPECT_EQ(merged[3], source[4]);
    EXPECT_EQ(buffers.Add, 1);
    EXPECT_EQ(buffers.Dup, 1);
    EXPECT_EQ(buffers.Rep, 2);
    EXPECT_NE(std::find(buffers.Log.begin(), buffers.Log.end(), "added NEW"), buffers.Log.end());
    // Every record lies behind the offset table, back to back, with no byte to spare.
    const std::size_t expected = 4 + 4 * 4 + (22 + 10) + (22 + 20) + (22 + 20) + (22 + 10);
    EXPECT_EQ(buffers.Textures.size(), expected);
    EXPECT_TRUE(gfx::CheckTextureLump(buffers.Textures, gfx::TextureLayout{}));
}

TEST(DeleteTextureEntry, RemovesTheRecordAndItsHoleAndMovesTheOffsets)
{
    MergeBuffers buffers;
    // B's record is followed by 6 spare bytes before C's: they go with it.
    std::string lump = TextureBytes(
        {{"A", 64, 64, {{0, 0, 0}}}, {"B", 64, 64, {{0, 0, 1}}}, {"C", 64, 64, {{0, 0, 2}}}});
    const std::size_t cAt = static_cast<std::size_t>(OffsetAt(AsBytes(lump), 2));
    lump.insert(cAt, 6, '\x7f');
    testing::PutLe(lump, 12, static_cast<std::int64_t>(cAt + 6), 4);
    std::vector<std::uint8_t> buffer = AsBytes(lump);
    EXPECT_EQ(DeleteTextureEntry(buffers, "deletetexure1", "NOPE", buffer), 0);
    ASSERT_EQ(DeleteTextureEntry(buffers, "deletetexure1", "b", buffer), 1);
    EXPECT_EQ(ReadTextures(buffer),
              (std::vector<TextureDef>{{"A", 64, 64, {{0, 0, 0}}}, {"C", 64, 64, {{0, 0, 2}}}}));
    EXPECT_EQ(buffer.size(), 4u + 8 + 32 + 32);
    EXPECT_TRUE(buffers.Log.empty());

    // Records out of order: the next record by index lies before this one, which is logged;
    // the record still ends where the next record by place begins.
    std::string shuffled = TextureBytes({{"A", 64, 64, {{0, 0, 0}}}, {"B", 64, 64, {{0, 0, 1}}}});
    const std::int32_t a = OffsetAt(AsBytes(shuffled), 0);
    const std::int32_t b = OffsetAt(AsBytes(shuffled), 1);
    testing::PutLe(shuffled, 4, b, 4);
    testing::PutLe(shuffled, 8, a, 4);
    std::vector<std::uint8_t> backwards = AsBytes(shuffled);
    ASSERT_EQ(DeleteTextureEntry(buffers, "deletetexure1", "B", backwards), 1);
    EXPECT_EQ(buffers.Log, (std::vector<std::string>{"TEXTURE control invalid?\n"}));
    EXPECT_EQ(ReadTextures(backwards), (std::vector<TextureDef>{{"A", 64, 64, {{0, 0, 0}}}}));
    EXPECT_EQ(backwards.size(), 4u + 4 + 32);
}

TEST(SortTextureBuffer, OrdersByNameIgnoringCaseAndDropsSpareBytes)
{
    MergeBuffers buffers;
    std::vector<std::uint8_t> buffer = AsBytes(
        TextureBytes({{"zig", 8, 8, {}}, {"Alpha", 16, 16, {{1, 2, 3}}}, {"MIDDLE", 32, 32, {}}}) +
        std::string(10, '\0'));
    SortTextureBuffer(buffers, buffer);
    const std::vector<TextureDef> sorted = ReadTextures(buffer);
    ASSERT_EQ(sorted.size(), 3u);
    EXPECT_EQ(sorted[0].Name, "Alpha");
    EXPECT_EQ(sorted[1].Name, "MIDDLE");
    EXPECT_EQ(sorted[2].Name, "zig");
    EXPECT_EQ(sorted[0].Patches, (std::vector<testing::PatchDef>{{1, 2, 3}}));
    ASSERT_EQ(buffers.Log.size(), 1u);
    EXPECT_EQ(buffers.Log[0],
              "    *** After TEXTUREx sort **TEXTURE Lump size Change\nTEXTURE Lump "
              "size was=102 and size now=92\nMost likely TEXTUREx lumps imported "
              "had empty space");
}

TEST(MakeDummyTexture2, IsOneEmptyTextureWithOnePatch)
{
    const std::vector<std::uint8_t> dummy = MakeDummyTexture2(gfx::TextureLayout{});
    EXPECT_EQ(dummy.size(), 40u);
    EXPECT_EQ(ReadTextures(dummy), (std::vector<TextureDef>{{"AADUMMY1", 0, 0, {{0, 0, 1}}}}));
}

TEST(TextureMerge, DamagedRecordsAreSkippedNotRead)
{
    // Offsets past the end and patch counts the lump can't hold: nothing reads outside it.
    std::string lump = TextureBytes({{"OK", 64, 64, {{0, 0, 0}}}, {"CUT", 64, 64, {{0, 0, 0}}}});
    testing::PutLe(lump, 8, 5000, 4);
    MergeBuffers buffers;
    MergeTextures(buffers, "TEXT1target", AsBytes(TextureBytes({{"X", 8, 8, {}}})));
    MergeTextures(buffers, "TEXT1source", AsBytes(lump));
    EXPECT_EQ(TextureNames(buffers.Textures, buffers.Layout),
              (std::vector<std::string>{"X", "OK"}));
    std::string tooMany = TextureBytes({{"MANY", 64, 64, {{0, 0, 0}}}});
    testing::PutLe(tooMany, 8 + 20, 300, 2);
    EXPECT_TRUE(TextureNames(AsBytes(tooMany), buffers.Layout).empty());
    buffers.Textures = AsBytes(tooMany);
    EXPECT_EQ(CheckMergedPatches(buffers), 0);
}

} // namespace
} // namespace kelvar::lumps
