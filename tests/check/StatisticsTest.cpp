// Tests of the level statistics report.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/Statistics.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

#include <algorithm>

namespace kelvar::check
{
namespace
{

using Strings = std::vector<std::string>;

using Statistics = CheckFixture;

// The lines from the one equal to `first` on, `count` of them; empty when `first` is missing.
Strings Block(const Strings& lines, const std::string& first, std::size_t count)
{
    const auto at = std::find(lines.begin(), lines.end(), first);
    if (at == lines.end())
    {
        return {};
    }
    const auto end = lines.end() - at < static_cast<std::ptrdiff_t>(count)
                         ? lines.end()
                         : at + static_cast<std::ptrdiff_t>(count);
    return Strings(at, end);
}

// TwoRooms (7 LineDefs, 8 SideDefs, 6 Vertexes, 2 Sectors) with seven Things: the player
// start and two Troopers on every skill, a Sarge on hard only, deaf and in net games, a
// Shotgun on easy only, a Teleport Landing and a pillar (a decoration) on every skill.
map::LevelData StockedRooms()
{
    testkit::LevelBuilder builder = testkit::TwoRoomsBuilder();
    builder.Thing(30, 30, 9, 0, 4 | 8 | 16).Thing(40, 40, 2001, 0, 1);
    builder.Thing(50, 50, 14).Thing(60, 60, 30);
    map::LevelData level = builder.Build();
    level.SegCount = 100;     // 1,200 bytes: 1 Kb
    level.SSectorCount = 128; // 512 bytes, which round to 0 Kb
    level.NodeCount = 40;     // 1,120 bytes: 1 Kb
    level.RejectSize = 513;   // a byte over half a Kb rounds up
    level.BlockmapSize = 2000;
    level.BehaviorSize = 3000; // not shown outside the Hexen format
    return level;
}

TEST_F(Statistics, ReportsSizesRangesEstimatesAndThingTables)
{
    const Strings lines = StatisticsLines(StockedRooms(), {true, 1537});
    const Strings expected{
        "Number of Object Statistics",
        " Description      Number Size Kb",
        "Things                7      0",
        "Vertices              6      0",
        "LineDefs              7      0",
        "SideDefs              8      0",
        "Sectors               2      0",
        "Segs                100      1",
        "SSectors            128      0",
        "Nodes                40      1",
        "Reject              513      1",
        "BlockMap           2000      2",
        "MapInfo            1537      2",
        "                  Total      7",
        "",
        "X range               0    256",
        "Y range               0    128",
        "Z range               0    128",
        "#Floor&WallTxts       2      1",
        "",
        "Save Game Estimates (< 180180)",
        "Easy    (   6)          1357",
        "Medium  (   5)          1201",
        "Hard    (   6)          1357",
        "",
        "Summary",
        "Description          Easy Medium Hard  Deaf   Net",
        "Enemies                 2     2     3     1     1",
        "Equipment               0     0     0     0     0",
        "Weapons                 1     0     0     0     0",
        "Ammunition              0     0     0     0     0",
        "Keys                    0     0     0     0     0",
        "Players/Teleports       2     2     2     0     0",
        "",
        "Enemies",
        "Description             Easy   Med  Hard  Deaf   Net",
        "Sarge/Shot                 0     0     1     1     1",
        "Trooper                    2     2     2     0     0",
        "Totals        2     2     3     1     1",
        "",
        "Weapons",
        "Description             Easy   Med  Hard  Deaf   Net",
        "Shotgun                    1     0     0     0     0",
        "Totals        1     0     0     0     0",
        "",
        "Players/Teleports",
        "Description             Easy   Med  Hard  Deaf   Net",
        "Player 1 Start             1     1     1     0     0",
        "Teleport Landing           1     1     1     0     0",
        "Totals        2     2     2     0     0",
    };
    EXPECT_EQ(lines, expected);
}

TEST_F(Statistics, HexenFormatCountsWiderRecordsAndClassesAndModes)
{
    game::SelectTablesFor(4, 4, false, false);
    testkit::LevelBuilder builder;
    builder.Room(-512, -64, 1024, 320);
    builder.Thing(0, 0, 10030, 0, 1 | 2 | 4 | 0x20 | 0x100); // Ettin: fighter, single
    builder.Thing(8, 8, 10030, 0,
                  4 | 0x10 | 0x40 | 0x80 | 0x600); // dormant, cleric, mage, co-op, dm
    builder.Thing(16, 16, 9002, 0, 2 | 8);         // Yorick's Skull, a puzzle item
    for (int i = 0; i < 60; ++i)
    {
        builder.Thing(i, 0, 81, 0, 7); // Vials
    }
    map::LevelData level = builder.Build();
    level.LevelLayout = map::LayoutHexen;
    level.BehaviorSize = 600;
    const Strings lines = StatisticsLines(level, {});

    EXPECT_EQ(Block(lines, "Things               63      1", 3),
              (Strings{"Things               63      1", "Vertices              4      0",
                       "LineDefs              4      0"}))
        << "20-byte Things, 16-byte LineDefs";
    EXPECT_EQ(Block(lines, "Behavior            600      1", 2),
              (Strings{"Behavior            600      1", "                  Total      2"}));
    EXPECT_EQ(Block(lines, "X range            -512    512", 1).size(), 1u);
    EXPECT_EQ(Block(lines, "Summary", 9),
              (Strings{"Summary",
                       "Description        Easy Medium Hard  Deaf Dormant Fighter Cleric Mage "
                       "Single Coop Death",
                       "Enemies               1     1     2     0     1        1     1     1     1"
                       "     1     1",
                       "Weapons               0     0     0     0     0        0     0     0     0"
                       "     0     0",
                       "Ammunition           60    60    60     0     0        0     0     0     0"
                       "     0     0",
                       "Keys                  0     0     0     0     0        0     0     0     0"
                       "     0     0",
                       "Artifacts             0     0     0     0     0        0     0     0     0"
                       "     0     0",
                       "Puzzle                0     1     0     1     0        0     0     0     0"
                       "     0     0",
                       "Players/Teleports     0     0     0     0     0        0     0     0     0"
                       "     0     0"}));
    EXPECT_EQ(Block(lines, "Enemies", 4),
              (Strings{"Enemies",
                       "Description             Easy   Med  Hard  Deaf Dormant Fighter Cleric Mage "
                       "Single Coop Death",
                       "Ettin                      1     1     2     0     1        1     1     1"
                       "     1     1     1",
                       "Totals        1     1     2     0     1        1     1     1     1     1"
                       "     1"}));
}

TEST_F(Statistics, BoomFlagsCountTheModesAThingAppearsIn)
{
    game::SelectTablesFor(2, 2, true, false);
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 64, 64);
    builder.Thing(8, 8, 3004, 0, 7 | 0x10); // not in single player
    builder.Thing(9, 9, 3004, 0, 7 | 0x20); // not in deathmatch
    builder.Thing(9, 9, 3004, 0, 7 | 0x40); // not in co-op
    const Strings lines = StatisticsLines(builder.Build(), {});
    EXPECT_EQ(
        Block(lines, "Summary", 3),
        (Strings{"Summary", "Description        Easy Medium Hard  Deaf Dormant Single Coop Death",
                 "Enemies               3     3     3     0     0     2     2     2"}));
    EXPECT_EQ(Block(lines, "Enemies", 4),
              (Strings{"Enemies",
                       "Description             Easy   Med  Hard  Deaf Dormant Single Coop Death",
                       "Trooper                    3     3     3     0     0     2     2     2",
                       "Totals        3     3     3     0     0     2     2     2"}));
}

TEST_F(Statistics, StrifeSummaryFoldsThePeopleIntoOneRow)
{
    game::SelectTablesFor(5, 5, false, false);
    testkit::LevelBuilder builder;
    builder.Room(0, 0, 64, 64).Thing(8, 8, 9).Thing(9, 9, 141).Thing(10, 10, 3004);
    const Strings lines = StatisticsLines(builder.Build(), {});
    const Strings summary = Block(lines, "Summary", 10);
    ASSERT_EQ(summary.size(), 10u);
    EXPECT_EQ(summary[7], "Rebels/etc              3     3     3     0     0");
    for (const char* heading : {"Rebels", "Beggars", "Peasants"})
    {
        EXPECT_EQ(Block(lines, heading, 1).size(), 1u) << heading;
    }
    EXPECT_TRUE(Block(lines, "ShopKeepers", 1).empty()) << "a category without Things is left out";
}

} // namespace
} // namespace kelvar::check
