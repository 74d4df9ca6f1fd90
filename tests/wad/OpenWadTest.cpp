// Tests of opening WADs: damaged headers and directories, the IWAD's spare slots, the table.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/WadFixture.h"
#include "wad/FileTable.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

namespace kelvar::wad
{
namespace
{

using testkit::WadBuilder;
using Names = std::vector<std::string>;

class OpenWadTest : public testkit::WadFixture
{
protected:
    // A small Doom 2 style IWAD.
    std::string SmallIwad(const std::string& name = "main.wad")
    {
        return WadBuilder("IWAD")
            .Lump("PLAYPAL", "palette")
            .Level("MAP01")
            .Level("MAP02")
            .Lump("SARGA1", "sprite")
            .Write(Dir.Path() / name);
    }
};

TEST_F(OpenWadTest, DamagedHeadersAreRefusedWithTheirReason)
{
    const std::string tiny = Dir.File("tiny.wad");
    testkit::WriteFile(tiny, std::string("IWAD\1\0\0\0", 8));
    const std::string pastEnd = WadBuilder("IWAD")
                                    .Lump("A", "data")
                                    .HeaderDirectory(5000)
                                    .Write(Dir.Path() / "pastend.wad");
    const std::string negative =
        WadBuilder("IWAD").Lump("A", "data").HeaderCount(-3).Write(Dir.Path() / "negative.wad");

    EXPECT_EQ(OpenIwad(tiny), 0);
    EXPECT_EQ(Ui.Last().Text(), "File " + tiny + "\n\nsize 8 is too small");
    EXPECT_EQ(OpenIwad(pastEnd), 0);
    EXPECT_EQ(Ui.Last().Text(), "File " + pastEnd + "\n\nDir offset=5000 is invalid");
    EXPECT_EQ(OpenIwad(negative), 0);
    EXPECT_EQ(Ui.Last().Text(), "File " + negative + "\n\nLump count=-3 is invalid");
    EXPECT_EQ(Wad().Files[0].State, 0) << "a refused file leaves no record behind";
}

TEST_F(OpenWadTest, APwadsReadingStopsAtABadEntryKeepingWhatCameBefore)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::size_t before = Master().Size();
    const std::string pastEnd = WadBuilder()
                                    .Lump("GOOD1", "one")
                                    .Lump("GOOD2", "two")
                                    .Entry(12, 99999, "HUGE")
                                    .Lump("LOST", "three")
                                    .Write(Dir.Path() / "bad.wad");
    const std::string negative = WadBuilder()
                                     .Lump("FINE", "one")
                                     .Entry(12, -4, "NEGATIVE")
                                     .Write(Dir.Path() / "negative.wad");
    const std::int64_t size = static_cast<std::int64_t>(testkit::ReadFile(pastEnd).size());

    EXPECT_EQ(OpenPwad(pastEnd), 1);
    EXPECT_EQ(Ui.Last().Text(), "File " + pastEnd + " size=" + std::to_string(size) +
                                    "\n\nLump HUGE\nInvalid: offset=12 size=99999\nIgnored - "
                                    "launch again");
    EXPECT_EQ(OpenPwad(negative), 2);
    // The spare entry stays where the IWAD's scan put it; later lumps come after it.
    EXPECT_EQ(MasterNames(before - 1, 4), (Names{"k_e  v_r", "GOOD1", "GOOD2", "FINE"}));
}

TEST_F(OpenWadTest, ADirectoryLongerThanTheFileIsReadAsFarAsItGoes)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::string path = WadBuilder()
                                 .Lump("ONE", "1")
                                 .Lump("TWO", "2")
                                 .HeaderCount(0x7FFFFFF0)
                                 .Write(Dir.Path() / "huge.wad");
    EXPECT_EQ(OpenPwad(path), 1);
    EXPECT_NE(Ui.Last().Text().find("runs past the end\nOnly the first 2 entries are read"),
              std::string::npos)
        << Ui.Last().Text();
    EXPECT_GE(Master().FindLast(LumpName::From("TWO"), 0, Master().Size()), 0);
}

TEST_F(OpenWadTest, TheIwadsScanGoesOnPastBadEntries)
{
    const std::string path = WadBuilder("IWAD")
                                 .Lump("SARGA1", "s")
                                 .Entry(-1, 4, "BAD1")
                                 .Entry(8, 9999, "BAD2")
                                 .Level("MAP01")
                                 .Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(path), 1);
    EXPECT_EQ(MasterNames(0, 3), (Names{"SARGA1", "MAP01", "THINGS"}));
    EXPECT_EQ(Ui.Messages.size(), 1u) << "the first bad entry is shown, the next is logged";
    ASSERT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "List of WAD problems");
    EXPECT_EQ(Ui.TextFiles[0].Lines,
              (Names{"   1. Lump BAD2 Invalid: offset=8 size=9999 Ignored"}));
}

TEST_F(OpenWadTest, TheIwadGetsSpareSlotsForOptionalLevelLumps)
{
    Wad().Options.GlNodes = true;
    Wad().Options.ZdoomHexenFormat = true;
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    EXPECT_EQ(MasterNames(11, 10), (Names{"BLOCKMAP", "BEHAVIOR", "GL_MAP01", "GL_VERT", "GL_SEGS",
                                          "GL_SSECT", "GL_NODES", "GL_PVS", "SCRIPTS", "MAP02"}));
    const LumpEntry& scripts = Master()[19];
    EXPECT_EQ(scripts.LumpGroup, GroupScript);
    EXPECT_EQ(scripts.Size, 0);
    EXPECT_EQ(Master()[Master().Size() - 1].Name.Text(), "k_e  v_r");
    EXPECT_EQ(Wad().MasterCapacity, 32000u + 4 * 24);
    for (std::size_t i = 0; i < Master().Size(); ++i)
    {
        ASSERT_EQ(Master()[i].Ordinal, static_cast<int>(i));
    }
}

TEST_F(OpenWadTest, AHexenIwadsOwnBehaviorTakesItsSlot)
{
    const std::string path =
        WadBuilder("IWAD").HexenLevel("MAP01").Lump("MAGEA1", "m").Write(Dir.Path() / "hexen.wad");
    ASSERT_EQ(OpenIwad(path), 1);
    EXPECT_EQ(MasterNames(10, 4), (Names{"BLOCKMAP", "BEHAVIOR", "SCRIPTS", "MAGEA1"}));
    EXPECT_GT(Master()[11].Size, 0) << "the real BEHAVIOR fills the spare slot";
    EXPECT_TRUE(Wad().Game.IwadHasBehavior);
}

TEST_F(OpenWadTest, TheFileTableHasItsLimits)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    Wad().Options.FileLimit = 2;
    EXPECT_EQ(OpenPwad(WadBuilder().Lump("A", "a").Write(Dir.Path() / "a.wad")), 1);
    EXPECT_EQ(OpenPwad(WadBuilder().Lump("B", "b").Write(Dir.Path() / "b.wad")), 2);
    EXPECT_EQ(OpenPwad(WadBuilder().Lump("C", "c").Write(Dir.Path() / "c.wad")), -1);
    EXPECT_EQ(Ui.Last().Title, "File Limit");
    EXPECT_EQ(Ui.Last().Text(), "File Limit of 2 Exceeded");

    // A PWAD is opened through the name table only.
    EXPECT_EQ(OpenWad(Dir.File("a.wad.copy"), "PWAD", true), -1);
    const std::string stray = WadBuilder().Write(Dir.Path() / "stray.wad");
    Wad().Options.FileLimit = 10;
    EXPECT_EQ(OpenWad(stray, "PWAD", true), -1);
    EXPECT_EQ(Ui.Last().Text(), "File " + stray + " mismatch?");
}

TEST_F(OpenWadTest, OpeningAnOpenOrClosedFileAgainReusesItsRecord)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::string path = WadBuilder().Lump("DEHACKED", "x").Write(Dir.Path() / "a.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    const std::size_t size = Master().Size();
    EXPECT_EQ(OpenPwad(path), 1);
    CloseFiles('P', false, false);
    EXPECT_EQ(Wad().Files[1].State, 'C');
    EXPECT_EQ(OpenPwad(path), 1);
    EXPECT_EQ(Wad().Files[1].State, 'O');
    EXPECT_EQ(Master().Size(), size);

    // Freed and scanned again, its lumps are recognised as already merged.
    CloseFiles('P', true, false);
    EXPECT_EQ(OpenPwad(path), 1);
    EXPECT_EQ(Master().Size(), size);
}

TEST_F(OpenWadTest, ClosingPassesOverTheCurrentFileUnlessAsked)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP03").Write(Dir.Path() / "a.wad")), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Lump("B", "b").Write(Dir.Path() / "b.wad")), 2);
    Wad().CurrentFile.FileNumber = 1;
    CloseFiles('P', false, false);
    EXPECT_EQ(Wad().Files[0].State, 'O');
    EXPECT_EQ(Wad().Files[1].State, 'O');
    EXPECT_EQ(Wad().Files[2].State, 'C');
    CloseFiles('L', false, false);
    EXPECT_EQ(Wad().Files[1].State, 'C');
    int dropped = 0;
    Wad().Hooks.DropCatalogues = [&dropped] { ++dropped; };
    CloseFiles('A', true, true);
    EXPECT_EQ(dropped, 1);
    EXPECT_EQ(Wad().Files[0].State, 0);
    EXPECT_TRUE(Wad().OpenFiles[0].empty());
    EXPECT_TRUE(Wad().Levels.empty());
}

TEST_F(OpenWadTest, FilesNoEntryUsesAreDroppedAndTheNameTableClosesUp)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP01").Write(Dir.Path() / "old.wad")), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP01", 20).Write(Dir.Path() / "new.wad")), 2);
    ASSERT_EQ(OpenPwad(WadBuilder().Lump("EXTRA", "e").Write(Dir.Path() / "extra.wad")), 3);
    DropUnusedFiles(); // new.wad's MAP01 replaced every entry of old.wad
    EXPECT_EQ(Wad().Files[1].State, 0);
    EXPECT_EQ(Wad().OpenFiles[0], Dir.File("new.wad"));
    EXPECT_EQ(Wad().OpenFiles[1], Dir.File("extra.wad"));
    EXPECT_TRUE(Wad().OpenFiles[2].empty());
    EXPECT_EQ(Wad().Files[2].ListIndex, 0);
    EXPECT_EQ(Wad().Files[3].ListIndex, 1);
}

} // namespace
} // namespace kelvar::wad
