// Tests of the whole-level repairs: packing and unpacking, centring, tags, Sectors beside sides.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Repairs.h"
#include "map/ObjectStore.h"
#include "map/SideDefPacking.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"
#include "wad/WadState.h"

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;
using testkit::TwoRooms;

using Strings = std::vector<std::string>;

class Repairs : public CheckFixture
{
protected:
    void SetUp() override
    {
        CheckFixture::SetUp();
        wad::ResetWad();
        wad::Wad().ProgramDir = Logs.Path();
    }
    void TearDown() override
    {
        wad::ResetWad();
        CheckFixture::TearDown();
    }

    /// Makes `level` the editor's level, whose repairs take undo steps.
    map::LevelData& Edit(const map::LevelData& level)
    {
        map::Map().Level = level;
        return map::Map().Level;
    }

    std::vector<std::uint32_t> Sides(const map::LevelData& level) const
    {
        std::vector<std::uint32_t> sides;
        for (const map::LineDef& line : level.LineDefs)
        {
            sides.push_back(line.SideDef1);
            sides.push_back(line.SideDef2);
        }
        return sides;
    }

    testkit::TempDir Logs;
};

constexpr std::uint32_t No = map::NoSideDef;

// TwoRooms with SideDef 1 offset, so that of the eight SideDefs 0, 2 and 7 (west room) and 3
// to 6 (east room) are alike and 1 stands alone.
map::LevelData TwoRoomsOneOffset()
{
    map::LevelData level = TwoRooms();
    level.SideDefs[1].XOffset = 8;
    return level;
}

TEST_F(Repairs, PackSideDefsKeepsTheFirstOfEachAlikeAndPacksNothingTheSecondTime)
{
    map::LevelData& level = Edit(TwoRoomsOneOffset());
    const map::LevelData before = level;
    Ui.Answer(1);
    const SideDefPackResult packed = PackSideDefs(level, true);
    EXPECT_EQ(packed, (SideDefPackResult{RepairEnd::Done, 5, 8, 3}));
    EXPECT_EQ(Ui.Messages[0].Text(), "Continue and pack all the SideDefs?");
    EXPECT_EQ(Ui.Last().Title, "Packed");
    EXPECT_EQ(Ui.Last().Lines, (Strings{"sidedefs packed  \t= 5", "old sidedef count\t= 8",
                                        "new sidedef count\t= 3"}));
    ASSERT_EQ(level.SideDefs.Count(), 3);
    EXPECT_EQ(level.SideDefs[0], before.SideDefs[0]);
    EXPECT_EQ(level.SideDefs[1], before.SideDefs[1]);
    EXPECT_EQ(level.SideDefs[2], before.SideDefs[3]);
    EXPECT_EQ(Sides(level),
              (std::vector<std::uint32_t>{0, No, 1, No, 0, No, 2, No, 2, 0, 2, No, 2, No}));
    EXPECT_NE(level.ChangeCount, before.ChangeCount);
    const map::LevelData after = level;

    ASSERT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level, before) << "one undo step takes the whole packing back";
    ASSERT_EQ(map::RedoStep(), 1);
    EXPECT_EQ(map::Map().Level, after);

    Ui.Clear();
    EXPECT_EQ(PackSideDefs(map::Map().Level, false), (SideDefPackResult{RepairEnd::Done, 0, 3, 3}));
    EXPECT_EQ(map::Map().Level, after) << "nothing left to pack, nothing changed or counted";
    EXPECT_EQ(map::Map().Undo.Position, 0) << "and no undo step taken";
    EXPECT_EQ(Ui.Last().Lines[0], "sidedefs packed  \t= 0");

    Ui.Answer(0);
    EXPECT_EQ(PackSideDefs(map::Map().Level, true).End, RepairEnd::Declined);
    map::LevelData empty;
    EXPECT_EQ(PackSideDefs(empty, true).End, RepairEnd::Done) << "an empty level asks nothing";
}

TEST_F(Repairs, UnpackThenPackGivesTheSameCountExceptForScrollingSides)
{
    map::LevelData level = TwoRoomsOneOffset();
    ASSERT_EQ(PackSideDefs(level, false).NewCount, 3);

    Ui.Clear();
    const SideDefUnpackResult unpacked = UnpackSideDefs(level, false);
    EXPECT_EQ(unpacked.End, RepairEnd::Done);
    EXPECT_EQ(unpacked.Unpacked, 5);
    EXPECT_EQ(level.SideDefs.Count(), 8);
    EXPECT_FALSE(map::SideDefsShared(level));
    EXPECT_EQ(Ui.Last().Title, "UnPacked");
    EXPECT_EQ(Ui.Last().Lines, Strings{"5 SideDefs UnPacked"});
    EXPECT_EQ(PackSideDefs(level, false).NewCount, 3);

    // Each game's scrolling types keep their SideDefs apart; other types don't.
    struct Case
    {
        int Iwad, Format;
        std::uint32_t Scrolling, Plain;
    };
    for (const Case game :
         {Case{2, 2, 48, 99}, Case{3, 3, 99, 100}, Case{4, 4, 101, 48}, Case{5, 5, 143, 99}})
    {
        SCOPED_TRACE(game.Iwad);
        game::SelectTablesFor(game.Iwad, game.Format, false, false);
        map::LevelData scrolling = TwoRoomsOneOffset();
        scrolling.LineDefs[5].Type = game.Scrolling; // SideDef 4, east room
        scrolling.LineDefs[2].Type = game.Plain;     // SideDef 2, west room
        EXPECT_EQ(PackSideDefs(scrolling, false).NewCount, 4);
        EXPECT_EQ(UnpackSideDefs(scrolling, false).Unpacked, 4);
        EXPECT_EQ(PackSideDefs(scrolling, false).NewCount, 4);
        EXPECT_NE(scrolling.LineDefs[5].SideDef1, scrolling.LineDefs[6].SideDef1);
    }
}

TEST_F(Repairs, UnpackSideDefsNotesBadSidesAndStopsAtEscape)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[1].SideDef2 = 40;
    level.LineDefs[2].SideDef1 = No;
    Ui.Answer(1);
    EXPECT_EQ(UnpackSideDefs(level, true).Unpacked, 1) << "side 1 set to 0 shares SideDef 0";
    EXPECT_EQ(Ui.Messages[0].Text(), "Continue and unpack all duplicate SideDefs?");
    EXPECT_EQ(Ui.Last().Lines,
              (Strings{"LineDef 1 SideDef out of range", "LineDef 2 missing side 1 set to 0",
                       "1 SideDefs UnPacked"}));
    EXPECT_EQ(level.LineDefs[2].SideDef1, 8u);

    // 150 LineDefs on one SideDef; Escape at the first poll, after the 100th LineDef.
    LevelBuilder many;
    many.Sector().Vertex(0, 0).Vertex(64, 0).Side(0);
    for (int i = 0; i < 150; ++i)
    {
        many.Line(0, 1, 0);
    }
    map::LevelData& shared = Edit(many.Build());
    Ui.Clear();
    Ui.EscapeFromPoll(1);
    const SideDefUnpackResult cancelled = UnpackSideDefs(shared, false);
    EXPECT_EQ(cancelled.End, RepairEnd::Cancelled);
    EXPECT_EQ(cancelled.Unpacked, 98) << "the copies made before Escape stay";
    EXPECT_EQ(shared.SideDefs.Count(), 99);
    EXPECT_EQ(Ui.Last().Title, "UnPack");
    EXPECT_EQ(Ui.Last().Lines, Strings{"UnPacking SideDefs Cancelled!"});
    EXPECT_EQ(map::Map().Undo.Position, 0);
}

// Three rooms: Sectors 0 and 2 alike, Sector 1 brighter.
map::LevelData ThreeRooms()
{
    LevelBuilder builder;
    builder.Room(0, 0, 64, 64).Room(128, 0, 64, 64).Room(256, 0, 64, 64);
    builder.Level().Sectors[1].Light = 200;
    return builder.Build();
}

constexpr const char* PackSectorsQuestion =
    "!! Caution !! This step cannot be undone\n\nContinue and pack all the Sectors?";

TEST_F(Repairs, PackSectorsMergesAlikeSectorsAndCutsTheUndoHistory)
{
    map::LevelData& level = Edit(ThreeRooms());
    ASSERT_EQ(map::SaveUndoStep(), 1);
    const map::Sector west = level.Sectors[0];
    const map::Sector middle = level.Sectors[1];
    Ui.Answer(1);
    EXPECT_EQ(PackSectors(level), (SectorPackResult{RepairEnd::Done, 1, 0}));
    EXPECT_EQ(Ui.Messages[0].Text(), PackSectorsQuestion);
    EXPECT_EQ(Ui.Last().Title, "Packed");
    EXPECT_EQ(Ui.Last().Lines, (Strings{"1 Sectors packed", "More SideDefs may now pack"}));
    ASSERT_EQ(level.Sectors.Count(), 2);
    EXPECT_EQ(level.Sectors[0], west);
    EXPECT_EQ(level.Sectors[1], middle);
    for (std::size_t i = 0; i < 12; ++i)
    {
        EXPECT_EQ(level.SideDefs[i].Sector, i / 4 == 1 ? 1u : 0u) << "SideDef " << i;
    }
    EXPECT_EQ(map::Map().Undo.Position, -1);
    EXPECT_NE(level.ChangeCount, 0);

    Ui.Clear();
    Ui.Answer(1);
    EXPECT_EQ(PackSectors(level).Packed, 0);
    EXPECT_EQ(Ui.Last().Lines, Strings{"0 Sectors packed"});
}

TEST_F(Repairs, PackSectorsAsksAgainOverStairsAndStopsAtEscape)
{
    map::LevelData level = ThreeRooms();
    level.LineDefs[0].Type = 8; // W1 Raise Stairs 8
    level.LineDefs[5].Type = 7; // S1 Raise Stairs 8
    const map::LevelData before = level;
    Ui.Answer(1).Answer(0);
    EXPECT_EQ(PackSectors(level), (SectorPackResult{RepairEnd::Declined, 0, 2}));
    EXPECT_EQ(Ui.Last().Text(), "!! Caution !! 2 Stairs Exist\n\nNo guarantee that all Stair "
                                "sectors will be found\n\nRelies on Stair Sectors all having same "
                                "textures!\n\nContinue and pack all the Sectors?");
    EXPECT_EQ(level, before);

    Ui.Answer(1).Answer(1).EscapeFromPoll(1);
    EXPECT_EQ(PackSectors(level).End, RepairEnd::Cancelled);
    EXPECT_EQ(Ui.Last().Text(), "Packing Sectors Cancelled!");
    EXPECT_EQ(level, before);
}

TEST_F(Repairs, CenterMapMovesByWholeBlocksAndLeavesACentredMap)
{
    LevelBuilder builder;
    builder.Room(1000, 2000, 128, 128).Thing(1064, 2064, 1);
    map::LevelData& level = Edit(builder.Build());
    const map::LevelData before = level;
    Ui.Answer(1);
    EXPECT_EQ(CenterMap(level), (CenterResult{RepairEnd::Done, 1024, 2048}));
    EXPECT_EQ(Ui.Last().Text(), "Continue and center map coordinates?");
    EXPECT_EQ(level.Vertexes[0], (map::Vertex{-24, -48}));
    EXPECT_EQ(level.Vertexes[2], (map::Vertex{104, 80}));
    EXPECT_EQ(level.Things[0].X, 40);
    EXPECT_EQ(level.Things[0].Y, 16);
    EXPECT_EQ(level.MinX, -24);
    EXPECT_EQ(level.MaxY, 80);
    const map::LevelData after = level;
    ASSERT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level, before);
    ASSERT_EQ(map::RedoStep(), 1);
    EXPECT_EQ(map::Map().Level, after);

    Ui.Answer(1);
    EXPECT_EQ(CenterMap(map::Map().Level), (CenterResult{RepairEnd::Done, 0, 0}));
    EXPECT_EQ(map::Map().Level, after) << "a centred map stays as it is";

    // Below 0 the middle is rounded down too: -936 becomes -960.
    map::LevelData west = LevelBuilder().Room(-1000, -1000, 128, 128).Build();
    Ui.Answer(1);
    EXPECT_EQ(CenterMap(west), (CenterResult{RepairEnd::Done, -960, -960}));
    EXPECT_EQ(west.Vertexes[0], (map::Vertex{-40, -40}));

    Ui.Answer(0);
    EXPECT_EQ(CenterMap(west).End, RepairEnd::Declined);
}

constexpr const char* RenumberWarning = "==  WARNING  ==\n\nBOOM tags can be special\n\nHEXEN "
                                        "tags can be special\n\nNO check is made for any special "
                                        "tag...";

// TwoRooms and a third, unused Sector. LineDef tags 0, 7, 3, 7, 9 (no Sector has 9), the rest
// 0; Sector tags 3, 7, 5 (no LineDef has 5).
map::LevelData TaggedRooms()
{
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    builder.Sector();
    map::LevelData& level = builder.Level();
    const std::uint16_t lineTags[] = {0, 7, 3, 7, 9};
    for (std::size_t i = 0; i < 5; ++i)
    {
        level.LineDefs[i].Tag = lineTags[i];
    }
    level.Sectors[0].Tag = 3;
    level.Sectors[1].Tag = 7;
    level.Sectors[2].Tag = 5;
    return builder.Build();
}

TEST_F(Repairs, RenumberTagsNumbersInLineDefOrderThenTheSectorsLeft)
{
    map::LevelData& level = Edit(TaggedRooms());
    Ui.Answer(1);
    const TagRenumberResult result = RenumberTags(level);
    EXPECT_EQ(result, (TagRenumberResult{RepairEnd::Done, 4, 3, 1, 1, 0, 0, false}));
    EXPECT_EQ(Ui.Messages[0].Text(), RenumberWarning);
    EXPECT_EQ(Ui.Last().Title, "Renumber");
    EXPECT_EQ(Ui.Last().Lines,
              (Strings{"4 LineDef Tag and 3 Sector Tags renumbered",
                       "1 LineDefs and 1 Sectors did not reference any Sector",
                       "0 LineDefs and 0 Sectors had negative tags  (not changed)"}));
    std::vector<std::uint16_t> lineTags;
    for (const map::LineDef& line : level.LineDefs)
    {
        lineTags.push_back(line.Tag);
    }
    EXPECT_EQ(lineTags, (std::vector<std::uint16_t>{0, 1, 2, 1, 3, 0, 0}));
    EXPECT_EQ(level.Sectors[0].Tag, 2);
    EXPECT_EQ(level.Sectors[1].Tag, 1);
    EXPECT_EQ(level.Sectors[2].Tag, 4) << "after the LineDefs' tags, so it joins none of them";
    EXPECT_EQ(map::Map().Undo.Position, 0);

    const map::LevelData renumbered = level;
    Ui.Answer(1);
    const TagRenumberResult again = RenumberTags(level);
    EXPECT_EQ(again.LineDefs + again.Sectors, 0) << "a second run finds them in order";
    EXPECT_EQ(level, renumbered);

    Ui.Answer(0);
    EXPECT_EQ(RenumberTags(level).End, RepairEnd::Declined);
}

TEST_F(Repairs, RenumberTagsRenumbersNegativeTagsOnlyWhenAllowed)
{
    map::LevelData level = TaggedRooms();
    level.LineDefs[5].Tag = 0xFFFF; // -1
    level.Sectors[2].Tag = 0xFFFF;
    const map::LevelData before = level;
    Ui.Answer(1).Answer(0);
    TagRenumberResult result = RenumberTags(level);
    EXPECT_EQ(result.NegativeLineDefs, 1);
    EXPECT_EQ(result.NegativeSectors, 1);
    EXPECT_FALSE(result.NegativeChanged);
    EXPECT_EQ(Ui.Messages[1].Text(), "Negative Tags\nWarning Negative Tags exist\n\nMaking them "
                                     "positive can affect some Ports\n\nDo you want to make...");
    EXPECT_EQ(Ui.Last().Lines[2], "1 LineDefs and 1 Sectors had negative tags  (not changed)");
    EXPECT_EQ(level.LineDefs[5].Tag, 0xFFFF);
    EXPECT_EQ(level.Sectors[2].Tag, 0xFFFF);

    level = before;
    Ui.Answer(1).Answer(1);
    result = RenumberTags(level);
    EXPECT_TRUE(result.NegativeChanged);
    EXPECT_EQ(Ui.Last().Lines[2], "1 LineDefs and 1 Sectors had negative tags  (changed)");
    EXPECT_EQ(level.LineDefs[5].Tag, 4);
    EXPECT_EQ(level.Sectors[2].Tag, 4);
}

TEST_F(Repairs, AutoFixSectorSetsSidesToTheSectorBesideThemAndLogsEach)
{
    map::LevelData wrong = TwoRooms();
    wrong.SideDefs[6].Sector = 0; // LineDef 4's east side, in the east room (Sector 1)
    wrong.SideDefs[0].Sector = 1; // LineDef 0, the west room's west wall
    map::LevelData& level = Edit(wrong);
    const SectorFixResult fixed = AutoFixSector(level);
    EXPECT_EQ(fixed.End, RepairEnd::Done);
    EXPECT_EQ(fixed.Fixes, (Strings{"LD=0 SD1=0 was sector=1 Set to Sector=0",
                                    "LD=4 SD1=6 was sector=0 Set to Sector=1"}));
    map::LevelData right = TwoRooms();
    for (std::size_t i = 0; i < 8; ++i)
    {
        EXPECT_EQ(level.SideDefs[i], right.SideDefs[i]) << "SideDef " << i;
    }
    ASSERT_EQ(Ui.Progress.size(), 1u);
    EXPECT_EQ(Ui.Progress[0],
              (std::pair<std::string, std::string>{"Fix Checking - Press Esc to Cancel",
                                                   "Checking 7 LineDefs (esc Cancel)"}));
    ASSERT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "List of Fixed LineDefs");
    EXPECT_EQ(Ui.TextFiles[0].Lines, (Strings{"   1. LD=0 SD1=0 was sector=1 Set to Sector=0",
                                              "   2. LD=4 SD1=6 was sector=0 Set to Sector=1"}));
    ASSERT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level, wrong);
    ASSERT_EQ(map::RedoStep(), 1);

    const map::LevelData after = map::Map().Level;
    EXPECT_TRUE(AutoFixSector(map::Map().Level).Fixes.empty()) << "a fixed level stays fixed";
    EXPECT_EQ(map::Map().Level, after);
    EXPECT_EQ(map::Map().Undo.Position, 0);
}

TEST_F(Repairs, AutoFixSectorRefusesSharedSideDefs)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[1].SideDef1 = 0;
    const map::LevelData before = level;
    EXPECT_EQ(AutoFixSector(level).End, RepairEnd::Refused);
    EXPECT_EQ(Ui.Last().Text(), "Automatic Sector checking can't\nbe done with packed "
                                "Sidedefs\n\nUnpack the sidedefs first");
    EXPECT_EQ(level, before);
    EXPECT_TRUE(Ui.TextFiles.empty());
}

} // namespace
} // namespace kelvar::check
