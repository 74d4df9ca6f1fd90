// Tests of the lump search family and of reading directories straight from disk.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/FindLump.h"
#include "platform/Fatal.h"
#include "tests/testkit/WadFixture.h"
#include "wad/FileTable.h"
#include "wad/MarkerRanges.h"

namespace kelvar::wad
{
namespace
{

using testkit::WadBuilder;

class FindLumpTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        const std::string iwad = WadBuilder("IWAD")
                                     .Lump("SARGA1", "sprite")
                                     .Level("MAP01")
                                     .Level("MAP02")
                                     .Lump("WALL", std::string(20, 'p'))
                                     .Write(Dir.Path() / "iwad.wad");
        ASSERT_EQ(OpenIwad(iwad), 1);
        Pwad = WadBuilder()
                   .Marker("TX_START")
                   .Lump("WALL", std::string(30, 't'))
                   .Marker("TX_END")
                   .Lump("WALL", std::string(40, 'w'))
                   .Write(Dir.Path() / "pwad.wad");
        Wad().Options.AllowDuplicates = true;
        ASSERT_EQ(OpenPwad(Pwad), 1);
        BuildMarkerLists();
    }

    FileRec& Master0() { return Wad().Files[0]; }
    std::int32_t SizeAt(int index) { return Master()[static_cast<std::size_t>(index)].Size; }

    std::string Pwad;
};

TEST_F(FindLumpTest, EachSearchHasItsOrder)
{
    EXPECT_EQ(SizeAt(FindLump(Master0(), "wall", false)), 40);
    EXPECT_EQ(SizeAt(FindLumpForward(Master0(), "WALL", false)), 20);
    EXPECT_EQ(SizeAt(FindLumpTextureFirst(Master0(), "WALL", false)), 30);
    EXPECT_EQ(SizeAt(FindLumpSkipTextures(Master0(), "WALL", false)), 40);
    EXPECT_EQ(FindLump(Master0(), "NOSUCH", false), -1);

    // A patch is told from a texture picture of the same name by its group.
    const int texture = FindLumpTextureFirst(Master0(), "WALL", false);
    EXPECT_EQ(FindLumpByGroup(Master0(), "WALL", GroupTexture, ClassPicture), texture);
    EXPECT_EQ(SizeAt(FindLumpByGroup(Master0(), "WALL", GroupPatch, ClassPicture)), 40)
        << "no patch of that name: the newest PWAD entry";
}

TEST_F(FindLumpTest, LevelSearchesReportTheLayout)
{
    int layout = 0;
    int count = 0;
    const int map02 = FindLumpWithLevel(Master0(), "MAP02", false, &layout, &count);
    EXPECT_EQ(map02, 12);
    EXPECT_EQ(layout, 1);
    EXPECT_EQ(count, 11);
    EXPECT_EQ(FindLumpAt(Master0(), "MAP02", 12, false, &layout, &count), 12);
    EXPECT_EQ(FindLumpAt(Master0(), "MAP02", 13, false), -1);

    // The current level's lumps are found forward from its marker, and only among its own.
    Wad().CurrentFile = {0, static_cast<std::size_t>(map02)};
    EXPECT_EQ(FindLevelLump("THINGS", false), 13);
    EXPECT_EQ(FindLevelLump("PLAYPAL", false), -1);
    EXPECT_EQ(CurrentLevelEnd(), static_cast<std::size_t>(map02 + 11));
}

TEST_F(FindLumpTest, ARequiredLumpThatIsMissingIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT((void)FindLump(Master0(), "BEHAVIOR", true),
                ::testing::ExitedWithCode(platform::FatalExitCode),
                " Internal Damaged .*iwad.wad file BEHAVIOR not found");
}

TEST_F(FindLumpTest, ClosedFilesAreReopenedBySearches)
{
    CloseFiles('A', false, false);
    EXPECT_EQ(Wad().Files[1].State, 'C');
    EXPECT_EQ(FindLump(Wad().Files[1], "WALL", false), 3);
    EXPECT_EQ(Wad().Files[1].State, 'O');
    EXPECT_TRUE(Wad().Files[1].Stream);
}

TEST_F(FindLumpTest, DirectoriesOnDiskCanBeConsulted)
{
    const std::optional<LumpEntry> original = ReadIwadEntry("WALL", false);
    ASSERT_TRUE(original);
    EXPECT_EQ(original->Size, 20);
    EXPECT_FALSE(ReadIwadEntry("NOSUCH", false));

    LumpEntry entry;
    EXPECT_EQ(PeekPwadEntry(Pwad, "WALL", &entry), 1);
    EXPECT_EQ(entry.Size, 40) << "the newest of the name";
    EXPECT_EQ(PeekPwadEntry(Pwad, "NOSUCH", nullptr), 0);
    EXPECT_EQ(PeekPwadEntry(Wad().Files[0].FileName, "WALL", nullptr), -1);
    EXPECT_EQ(PeekPwadEntry(Dir.File("absent.wad"), "WALL", nullptr), -2);
}

} // namespace
} // namespace kelvar::wad
