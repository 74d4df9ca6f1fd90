// Tests of laying PWADs over the IWAD: levels in their slots, lumps overlaid, markers,
// duplicates, capacity, and the warnings of the merge.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/WadFixture.h"
#include "wad/FindLump.h"
#include "wad/LevelList.h"
#include "wad/MarkerRanges.h"
#include "wad/WadState.h"

namespace kelvar::wad
{
namespace
{

using testkit::WadBuilder;
using Names = std::vector<std::string>;

class Merge : public testkit::WadFixture
{
protected:
    std::string SmallIwad(bool exmy = false)
    {
        WadBuilder iwad("IWAD");
        iwad.Lump("PLAYPAL", "palette")
            .Level(exmy ? "E1M1" : "MAP01")
            .Level(exmy ? "E1M2" : "MAP02");
        iwad.Marker("F_START").Lump("FLOOR1", std::string(4096, 'f')).Marker("F_END");
        iwad.Lump("SARGA1", "sprite").Lump("TEXTURE1", "tex");
        return iwad.Write(Dir.Path() / "iwad.wad");
    }

    // The log's lines as the user was shown them (empty when nothing was logged).
    Names Logged() const { return Ui.TextFiles.empty() ? Names{} : Ui.TextFiles.back().Lines; }

    int Find(std::string_view name) { return FindLump(Wad().Files[0], name, false); }
};

TEST_F(Merge, AScrambledLevelLandsInTheIwadsSlotsInCanonicalOrder)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    const std::size_t size = Master().Size();
    const Names scrambled = {"THINGS",   "SECTORS", "VERTEXES", "LINEDEFS", "BLOCKMAP",
                             "SIDEDEFS", "REJECT",  "NODES",    "SSECTORS", "SEGS"};
    const std::string path = WadBuilder()
                                 .Lump("DEHACKED", "x")
                                 .LevelInOrder("MAP01", scrambled)
                                 .Write(Dir.Path() / "m.wad");
    ASSERT_EQ(OpenPwad(path), 1);

    EXPECT_EQ(Master().Size(), size + 1) << "only DEHACKED is new";
    const Names canonical = {"MAP01",    "THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SEGS",
                             "SSECTORS", "NODES",  "SECTORS",  "REJECT",   "BLOCKMAP"};
    EXPECT_EQ(MasterNames(0, 11), canonical);
    // Each slot holds the PWAD's own lump of that name.
    const std::string bytes = testkit::ReadFile(path);
    for (std::size_t i = 1; i < 11; ++i)
    {
        const LumpEntry& entry = Master()[i];
        EXPECT_EQ(entry.FileNumber, 1);
        ASSERT_EQ(entry.Size, 16);
        EXPECT_EQ(bytes.substr(static_cast<std::size_t>(entry.Offset), 16),
                  testkit::LumpFiller("MAP01" + canonical[i], 16));
    }
    // The PWAD's own directory is rewritten in the same order.
    const LumpDirectory& own = Wad().Files[1].Directory;
    for (std::size_t i = 0; i < 11; ++i)
    {
        EXPECT_EQ(own[i + 1].Name.Text(), canonical[i]);
    }
    EXPECT_EQ(MasterNames(11, 1), (Names{"MAP02"}));
    EXPECT_EQ(Wad().Levels[0].FileNumber, 1);
    EXPECT_EQ(Wad().Levels[1].FileNumber, 0);
}

TEST_F(Merge, NewLevelsAndLumpsAreAppendedAndTheNewestWins)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const int iwadPlaypal = Find("PLAYPAL");
    ASSERT_EQ(
        OpenPwad(WadBuilder().Lump("PLAYPAL", "first").Level("MAP09").Write(Dir.Path() / "a.wad")),
        1);
    ASSERT_EQ(OpenPwad(WadBuilder().Lump("playpal", "second").Write(Dir.Path() / "b.wad")), 2);

    const int found = Find("PLAYPAL");
    EXPECT_EQ(Master()[static_cast<std::size_t>(found)].FileNumber, 2);
    EXPECT_EQ(FindLumpForward(Wad().Files[0], "PLAYPAL", false), iwadPlaypal)
        << "the IWAD's stays under";
    const int map09 = Find("MAP09");
    ASSERT_GT(map09, 0);
    EXPECT_EQ(MasterNames(static_cast<std::size_t>(map09), 3),
              (Names{"MAP09", "THINGS", "LINEDEFS"}));
    ASSERT_EQ(FindLevel(LumpName::From("MAP09")), 2);
    EXPECT_EQ(Wad().Levels[2].FileNumber, 1);
    EXPECT_TRUE(Logged().empty());
}

TEST_F(Merge, PwadMarkersAreDoubledAndTheIwadsKeepTheirPlace)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const int iwadStart = Find("F_START");
    const std::string path = WadBuilder()
                                 .Marker("F_START")
                                 .Lump("FLOOR1", std::string(4096, 'g'))
                                 .Marker("F_END")
                                 .Marker("S_START")
                                 .Lump("TROOA1", std::string(40, 't'))
                                 .Marker("S_END")
                                 .Marker("P_START")
                                 .Lump("WALL00", std::string(30, 'w'))
                                 .Marker("P_END")
                                 .Write(Dir.Path() / "art.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    EXPECT_EQ(Find("F_START"), iwadStart);
    EXPECT_GT(Find("FF_START"), iwadStart);
    EXPECT_GT(Find("SS_END"), 0);
    EXPECT_GT(Find("PP_START"), 0);
    EXPECT_EQ(Wad().Files[1].Directory[0].Name.Text(), "FF_START");

    BuildMarkerLists();
    const MarkerRanges& markers = Wad().Markers;
    EXPECT_EQ(markers.F.Count, 1);
    EXPECT_EQ(markers.FF.Count, 1);
    EXPECT_EQ(Master()[static_cast<std::size_t>(markers.FF.First)].FileNumber, 1);
    EXPECT_EQ(markers.SS.Count, 1);
    const LumpEntry& sprite = Master()[static_cast<std::size_t>(markers.SS.First)];
    EXPECT_EQ(sprite.ClassCode, ClassPicture);
    EXPECT_EQ(sprite.LumpGroup, GroupSprite);
    EXPECT_EQ(Master()[static_cast<std::size_t>(markers.PP.First)].LumpGroup, GroupPatch);
    EXPECT_EQ(markers.Tx.Start, -1);
    EXPECT_EQ(markers.Tx.Count, 0);
}

TEST_F(Merge, UnmatchedAndMisorderedMarkersWarnUnlessExpert)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(
        OpenPwad(WadBuilder().Marker("F_START").Lump("FLAT9", "f").Write(Dir.Path() / "a.wad")), 1);
    EXPECT_EQ(Ui.Last().Title, "Flat loading");
    EXPECT_EQ(Ui.Last().Lines, (Names{"Caution - F_START / FF_START is not matched",
                                      "with F_END / FF_END or wrong sequence?",
                                      "FLAT replacements only will show up!"}));
    EXPECT_GE(Find("FLAT9"), 0) << "it opens all the same";

    Ui.Clear();
    ASSERT_EQ(OpenPwad(WadBuilder().Marker("SS_END").Marker("TX_END").Write(Dir.Path() / "b.wad")),
              2);
    EXPECT_EQ(Ui.Titles(), (Names{"Spriteloading", "TX loading", "TX loading"}));
    EXPECT_EQ(Ui.Messages[0].Lines, (Names{"Caution - S_END,SS_END before S_START,SS_END",
                                           "All SPRITE replacements may not show up!",
                                           "(This msg is NOT displayed in Expert Mode)"}));
    EXPECT_EQ(Ui.Messages[2].Lines, (Names{"Caution - TX_START is not matched with TX_END"}));

    Ui.Clear();
    Wad().Options.ExpertMode = true;
    ASSERT_EQ(
        OpenPwad(WadBuilder().Marker("FF_END").Marker("FF_START").Write(Dir.Path() / "c.wad")), 3);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(Merge, LevelLumpsOutsideALevelAreIgnored)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::size_t size = Master().Size();
    ASSERT_EQ(
        OpenPwad(
            WadBuilder().Lump("THINGS", "loose").Lump("GL_VERT", "gl").Write(Dir.Path() / "a.wad")),
        1);
    EXPECT_EQ(Master().Size(), size) << "GL lumps go too while the GL option is off";
    EXPECT_EQ(Logged(), (Names{"   1.  WARNING entry 0 ignored: reserved name THINGS found outside "
                               "of level name area **",
                               ""}));
}

TEST_F(Merge, DuplicatesInsideOnePwadAreDroppedUnlessAllowed)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::string path =
        WadBuilder().Lump("DEHACKED", "one").Lump("DEHACKED", "two").Write(Dir.Path() / "dup.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    EXPECT_EQ(Master().Positions(LumpName::From("DEHACKED")).size(), 1u);
    EXPECT_EQ(Logged(),
              (Names{"   1. ** Duplicate ** entry1 DEHACKED in PWAD",
                     "       - ignored (use F7 Lump tool to fix) **",
                     "       or enable duplicates in F5 project options", "       " + path}));

    Wad().Options.AllowDuplicates = true;
    ASSERT_EQ(
        OpenPwad(
            WadBuilder().Lump("DEHACKED", "1").Lump("DEHACKED", "2").Write(Dir.Path() / "ok.wad")),
        2);
    EXPECT_EQ(Master().Positions(LumpName::From("DEHACKED")).size(), 3u);
}

TEST_F(Merge, ALevelTwiceInOnePwadKeepsTheFirst)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(
        OpenPwad(
            WadBuilder().Level("MAP05", 10).Level("MAP05", 20).Write(Dir.Path() / "twice.wad")),
        1);
    const int marker = Find("MAP05");
    EXPECT_EQ(Master().Positions(LumpName::From("MAP05")).size(), 1u);
    EXPECT_EQ(Master()[static_cast<std::size_t>(marker) + 1].Size, 10);
}

TEST_F(Merge, TextureListsInTwoPwadsAreReported)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    std::vector<std::string> reset;
    Wad().Hooks.ResetCatalogue = [&reset](const LumpName& name) { reset.push_back(name.Text()); };
    const std::string a = WadBuilder().Lump("TEXTURE1", "a").Write(Dir.Path() / "a.wad");
    const std::string b =
        WadBuilder().Lump("TEXTURE1", "b").Lump("PNAMES", "p").Write(Dir.Path() / "b.wad");
    ASSERT_EQ(OpenPwad(a), 1);
    ASSERT_EQ(OpenPwad(b), 2);
    EXPECT_EQ(reset, (Names{"TEXTURE1", "TEXTURE1", "PNAMES"}));
    EXPECT_EQ(Logged(), (Names{"   1. ** WARNING ** entry0 lump TEXTURE1 duplicate exists in the "
                               "following files",
                               "       Textures display may be incorrect",
                               "       Reloading and Saving may rearrange order",
                               "       (Close All Files and Open again to fix)",
                               "       (or get rid of duplicate resources using F7-Lump tool)",
                               "       (Disable this message in F5 - Duplicate msg)", "       " + a,
                               "       " + b}));
}

TEST_F(Merge, DoomLevelsInAHexenProjectGetAnEmptyBehavior)
{
    Wad().Options.ZdoomHexenFormat = true;
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    Ui.Clear();
    ASSERT_EQ(
        OpenPwad(WadBuilder().Level("MAP07").Level("MAP01", 24).Write(Dir.Path() / "doom.wad")), 1);
    const std::size_t map07 = static_cast<std::size_t>(Find("MAP07"));
    EXPECT_EQ(MasterNames(map07 + 10, 3), (Names{"BLOCKMAP", "BEHAVIOR"}));
    EXPECT_EQ(Master()[map07 + 11].Size, 0);
    // Laid over the IWAD's MAP01, the BEHAVIOR slot stays empty.
    EXPECT_EQ(MasterNames(11, 3), (Names{"BLOCKMAP", "BEHAVIOR", "SCRIPTS"}));
    EXPECT_EQ(Master()[11].Size, 24);
    EXPECT_EQ(Master()[12].Size, 0);
    // Two Doom-layout levels are from another game for a Hexen project; MAP07 isn't Hexen.
    const Names log = Logged();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log[0], "   1. WARNING - Level ** MAP07 ** is not HEXEN (missing BEHAVIOR)");
    EXPECT_EQ(log[2], "   2.  **WARNING** 2 Levels from another game found ");
}

TEST_F(Merge, HexenLevelsInADoomProjectLoseTheirBehavior)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(
        OpenPwad(
            WadBuilder().HexenLevel("MAP08").Lump("DEHACKED", "d").Write(Dir.Path() / "hexen.wad")),
        1);
    const std::size_t map08 = static_cast<std::size_t>(Find("MAP08"));
    EXPECT_EQ(MasterNames(map08 + 10, 2), (Names{"BLOCKMAP", "DEHACKED"}));
    EXPECT_EQ(Wad().Files[1].LevelLayout, 2);
}

TEST_F(Merge, LevelNamesOfTheOtherNamingOpenWithAWarning)
{
    ASSERT_EQ(OpenIwad(SmallIwad(true)), 1);
    ASSERT_EQ(Wad().Game.Game, 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP01").Write(Dir.Path() / "map.wad")), 1);
    EXPECT_GE(Find("MAP01"), 0);
    EXPECT_EQ(Logged(),
              (Names{"   1.  Level Name ** MAP01 ** is not for this Game",
                     "       Use \"Save Level As NewMap\" (F3) To change the level name", ""}));
}

TEST_F(Merge, DamagedLevelsAreTakenOrLeftByTheirSize)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::string path =
        WadBuilder()
            .LevelInOrder("MAP11", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
            .Marker("PADDING")
            .LevelInOrder("MAP12", {"THINGS", "LINEDEFS"})
            .Write(Dir.Path() / "damaged.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(
        Ui.Messages[0].Text(),
        "entry0 Level MAP11 [DOOMformat] is damaged - has only 6 entries\n\n!  Warning Level "
        "may crash Kelvar  !\n\nThis is usually caused by missing Level Lumps\n\nIf the level "
        "displays, saving will fix this error");
    EXPECT_EQ(Ui.Messages[1].Text(),
              "entry7 Level MAP12 [DOOMformat] is damaged - has only 3 "
              "entries\n\n! Missing data will crash Kelvar and is ignored !");
    EXPECT_GE(Find("MAP11"), 0);
    EXPECT_LT(Find("MAP12"), 0);
}

TEST_F(Merge, GlNodesComeWithTheLevelOrAreMadeRoomFor)
{
    Wad().Options.GlNodes = true;
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_EQ(OpenPwad(WadBuilder().Level("MAP20").Write(Dir.Path() / "nogl.wad")), 1);
    const std::size_t map20 = static_cast<std::size_t>(Find("MAP20"));
    EXPECT_EQ(MasterNames(map20 + 10, 7), (Names{"BLOCKMAP", "GL_MAP20", "GL_VERT", "GL_SEGS",
                                                 "GL_SSECT", "GL_NODES", "GL_PVS"}));
    ASSERT_EQ(OpenPwad(WadBuilder()
                           .Level("MAP02", 8)
                           .Lump("GL_MAP02", "")
                           .Lump("GL_VERT", "vvvv")
                           .Write(Dir.Path() / "gl.wad")),
              2);
    // Laid over the IWAD's MAP02 and its spare GL slots.
    const std::size_t map02 = static_cast<std::size_t>(Find("MAP02"));
    EXPECT_EQ(MasterNames(map02 + 11, 2), (Names{"GL_MAP02", "GL_VERT"}));
    EXPECT_EQ(Master()[map02 + 12].Size, 4);
    EXPECT_EQ(Master()[map02 + 12].FileNumber, 2);
    EXPECT_EQ(Master()[map02 + 13].Size, 0);
}

TEST_F(Merge, AFullDirectoryRejectsWhatDoesntFit)
{
    Wad().Options.AdditionalLumpEntries = 0; // room for 4 x 28 entries; 29 are in use
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    WadBuilder many;
    for (int i = 0; i < 95; ++i)
    {
        many.Lump("LUMP" + std::to_string(i), "x");
    }
    many.Level("MAP30");
    ASSERT_EQ(OpenPwad(many.Write(Dir.Path() / "many.wad")), 1);
    EXPECT_EQ(Master().Size(), 112u);
    EXPECT_EQ(Ui.Last().Text(), "Increase the Additional Lump Entries by 23\n\nLocated in F5 "
                                "options (under Set Main IWAD)");
    const Names log = Logged(); // each line of the log ends in a blank one
    ASSERT_EQ(log.size(), 26u);
    EXPECT_EQ(log[0], "   1. entry83   LUMP83 ** Max new Lumps Exceeded - ignored **");
    EXPECT_EQ(log[24], "  13. entry95    MAP30 ** Max new Lumps Exceeded - ignored **");
    EXPECT_EQ(FindLevel(LumpName::From("MAP30")), -1) << "a level left out isn't listed";
}

TEST_F(Merge, AnIwadOpenedAsAPwadGivesOnlyItsLevels)
{
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    const std::string other =
        WadBuilder("IWAD").Lump("PLAYPAL", "other").Level("MAP03").Write(Dir.Path() / "HEXDD.WAD");
    ASSERT_EQ(OpenPwad(other), 1);
    EXPECT_GE(Find("MAP03"), 0);
    EXPECT_EQ(Master()[static_cast<std::size_t>(Find("PLAYPAL"))].FileNumber, 0);
}

TEST_F(Merge, ScriptsFollowTheirSlotAndOddNamesArePassedOver)
{
    Wad().Options.ZdoomHexenFormat = true;
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    Ui.Clear();
    const std::string path = WadBuilder()
                                 .Lump(std::string("\x01ODD", 4), "o")
                                 .HexenLevel("MAP01")
                                 .Lump("SCRIPTS", "script")
                                 .Write(Dir.Path() / "s.wad");
    ASSERT_EQ(OpenPwad(path), 1);
    // The first script slot, MAP01's, takes the script.
    const LumpEntry& slot =
        Master()[static_cast<std::size_t>(FindLumpForward(Wad().Files[0], "SCRIPTS", false))];
    EXPECT_EQ(slot.LumpGroup, GroupScript);
    EXPECT_EQ(slot.FileNumber, 1);
    EXPECT_EQ(slot.Size, 6);
    EXPECT_LT(Find(std::string("\x01ODD", 4)), 0);
    EXPECT_TRUE(Master().IndexConsistent());
}

} // namespace
} // namespace kelvar::wad
