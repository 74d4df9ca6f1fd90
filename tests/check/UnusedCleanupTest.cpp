// Tests of the save's clean-up of unused objects and wrong references.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SaveChecks.h"
#include "map/MapState.h"
#include "platform/Format.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <set>
#include <sstream>

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;

using UnusedCleanup = CheckFixture;

// The objects of two levels agree, record by record.
void ExpectSameObjects(const map::LevelData& ours, const map::LevelData& expected)
{
    EXPECT_EQ(ours.Things, expected.Things);
    EXPECT_EQ(ours.LineDefs, expected.LineDefs);
    EXPECT_EQ(ours.SideDefs, expected.SideDefs);
    EXPECT_EQ(ours.Vertexes, expected.Vertexes);
    EXPECT_EQ(ours.Sectors, expected.Sectors);
}

// Rooms with unused objects of every kind before, between and after them: an unused Sector,
// Vertex and SideDef (facing the unused Sector, which stays unused) ahead of each room, and a
// spare SideDef facing the room's own Sector behind it. `clean` leaves the extras out.
LevelBuilder RoomsWithSpares(int rooms, bool clean)
{
    LevelBuilder builder;
    for (int i = 0; i < rooms; ++i)
    {
        if (!clean)
        {
            builder.Sector(8, 16).Vertex(-5, -5);
            builder.Side(static_cast<std::uint32_t>(builder.Level().Sectors.Count() - 1), "SPARE");
        }
        // Rooms on a grid that stays well inside the 16-bit coordinates.
        builder.Room((i % 224) * 128 - 14336, (i / 224) * 128 - 14336, 64, 64);
        if (!clean)
        {
            builder.Side(static_cast<std::uint32_t>(builder.Level().Sectors.Count() - 1), "SPARE2");
        }
    }
    if (!clean)
    {
        builder.Sector(0, 0).Vertex(7, 7);
    }
    return builder;
}

TEST_F(UnusedCleanup, RemovesWhatNoLineUsesKeepingOrderAndReferences)
{
    map::LevelData level = RoomsWithSpares(3, false).Thing(5, 5, 1).Build();
    const map::LevelData expected = RoomsWithSpares(3, true).Thing(5, 5, 1).Build();
    ASSERT_TRUE(CheckUnused(level));
    ExpectSameObjects(level, expected);
    EXPECT_EQ(level.MaxX, expected.MaxX) << "the bounds are measured again";
    EXPECT_EQ(level.MaxY, expected.MaxY);
    EXPECT_NE(level.ChangeCount, 0);
    EXPECT_NE(level.GeometryChangeCount, 0);
    EXPECT_EQ(Texts(),
              std::vector<std::string>{
                  "Please Wait while 6 unused sidedefs are removed\n\nPress OK to continue"});
    ASSERT_EQ(Ui.Progress.size(), 1u);
    EXPECT_EQ(Ui.Progress[0].first, "Checking for Unused objects (esc)");

    Ui.Clear();
    const std::uint16_t changes = level.ChangeCount;
    EXPECT_TRUE(CheckUnused(level));
    EXPECT_TRUE(Ui.Messages.empty()) << "a clean level gives no message";
    EXPECT_EQ(level.ChangeCount, changes) << "and isn't changed";

    Ui.Clear();
    map::LevelData noSpareSides = RoomsWithSpares(1, true).Sector().Vertex(1, 1).Build();
    EXPECT_TRUE(CheckUnused(noSpareSides));
    EXPECT_TRUE(Ui.Messages.empty()) << "only the removal of SideDefs is announced";
    EXPECT_EQ(noSpareSides.Sectors.Count(), 1);
    EXPECT_EQ(noSpareSides.Vertexes.Count(), 4);
}

TEST_F(UnusedCleanup, SetsWrongReferencesToZeroAndSaysSo)
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Sector();
    map::LevelData& level = builder.Level();
    level.LineDefs[0].StartVertex = 50;          // back to 0, where it was
    level.LineDefs[1].SideDef1 = map::NoSideDef; // SideDef 1 loses its only user
    level.LineDefs[2].SideDef2 = 77;
    level.SideDefs[3].Sector = 40; // a stale Sector number stays stale
    level.Sectors[0].Tag = 9;

    ASSERT_TRUE(CheckUnused(level));
    EXPECT_EQ(Texts(),
              (std::vector<std::string>{
                  "LineDef 0 Vertex out of range\nset to 0", "LineDef 1 missing side 1 set to 0",
                  "LineDef 2 SideDef 77 out of range set to 0",
                  "Please Wait while 1 unused sidedefs are removed\n\nPress OK to continue"}));
    EXPECT_EQ(Ui.Titles(), std::vector<std::string>(4, "Kelvar Information"));
    EXPECT_EQ(level.LineDefs[0].StartVertex, 0u);
    EXPECT_EQ(level.LineDefs[1].SideDef1, 0u);
    EXPECT_EQ(level.LineDefs[2].SideDef1, 1u) << "SideDef 2 moved down into the gap";
    EXPECT_EQ(level.LineDefs[2].SideDef2, 0u);
    EXPECT_EQ(level.LineDefs[3].SideDef1, 2u);
    ASSERT_EQ(level.SideDefs.Count(), 3);
    EXPECT_EQ(level.SideDefs[2].Sector, 40u);
    ASSERT_EQ(level.Sectors.Count(), 1) << "Sector 0 is still faced by SideDefs 0 and 2";
    EXPECT_EQ(level.Sectors[0].Tag, 9);
}

TEST_F(UnusedCleanup, EscapeStopsBeforeAnythingIsRemoved)
{
    map::LevelData level = RoomsWithSpares(40, false).Build();
    const map::LevelData before = level;
    Ui.EscapeFromPoll(1);
    EXPECT_FALSE(CheckUnused(level));
    EXPECT_EQ(level, before);

    Ui.EscapeFromPoll(Ui.EscapePolls + 2); // within the 160 LineDefs, after the first hundred
    EXPECT_FALSE(CheckUnused(level));
    EXPECT_EQ(level, before);
    EXPECT_TRUE(Ui.Messages.empty());
}

// A large level with 150,000 unused objects comes out with exactly the used ones (the speed
// of the clean-up is measured in bench/, not here).
TEST_F(UnusedCleanup, LargeLevelIsCleanedInOnePass)
{
    constexpr int Rooms = 50000;
    map::LevelData level = RoomsWithSpares(Rooms, false).Build();
    ASSERT_EQ(level.LineDefs.Count(), 4 * Rooms);
    ASSERT_EQ(level.SideDefs.Count(), 6 * Rooms);
    ASSERT_TRUE(CheckUnused(level));
    ExpectSameObjects(level, RoomsWithSpares(Rooms, true).Build());
    EXPECT_EQ(Texts(), std::vector<std::string>{"Please Wait while 100000 unused sidedefs are "
                                                "removed\n\nPress OK to continue"});
}

// What each LineDef stands for, with its references followed: where it runs, its sides' and
// their Sectors' contents. Equal before and after the clean-up when nothing used was lost; a
// reference to nothing throws, which fails the test. With the counts of objects equal to the
// counts used, it also shows that every object left is used.
std::vector<std::string> Resolved(const map::LevelData& level)
{
    std::vector<std::string> lines;
    for (const map::LineDef& line : level.LineDefs)
    {
        std::ostringstream out;
        const map::Vertex& from = level.Vertexes[line.StartVertex];
        const map::Vertex& to = level.Vertexes[line.EndVertex];
        out << from.X << ',' << from.Y << ' ' << to.X << ',' << to.Y << ' ' << line.Flags << ' '
            << line.Type << ' ' << line.Tag;
        for (const std::uint32_t s : {line.SideDef1, line.SideDef2})
        {
            if (s == map::NoSideDef)
            {
                out << " -";
                continue;
            }
            const map::SideDef& side = level.SideDefs[s];
            const map::Sector& sector = level.Sectors[side.Sector];
            out << ' ' << side.XOffset << ',' << side.YOffset << side.UpperTexture.Text()
                << side.LowerTexture.Text() << side.NormalTexture.Text() << ' '
                << sector.FloorHeight << ',' << sector.CeilingHeight << sector.FloorTexture.Text()
                << sector.CeilingTexture.Text() << sector.Light << ',' << sector.Type << ','
                << sector.Tag;
        }
        lines.push_back(out.str());
    }
    return lines;
}

// The count of distinct objects a level's LineDefs use, kind by kind, Sectors through SideDefs.
struct UsedCounts
{
    std::size_t Vertexes = 0;
    std::size_t SideDefs = 0;
    std::size_t Sectors = 0;
};

UsedCounts CountUsed(const map::LevelData& level)
{
    std::set<std::uint32_t> vertexes;
    std::set<std::uint32_t> sides;
    std::set<std::uint32_t> sectors;
    for (const map::LineDef& line : level.LineDefs)
    {
        vertexes.insert({line.StartVertex, line.EndVertex});
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            if (side != map::NoSideDef)
            {
                sides.insert(side);
                sectors.insert(level.SideDefs[side].Sector);
            }
        }
    }
    return {vertexes.size(), sides.size(), sectors.size()};
}

class FreedoomCleanup : public testkit::WadFixture,
                        public ::testing::WithParamInterface<const char*>
{
protected:
    void TearDown() override
    {
        map::ResetMap();
        WadFixture::TearDown();
    }
};

// Every fifth LineDef is taken straight out of the array, as if the editor had lost track of
// it: its Vertexes, SideDefs and at times whole Sectors are left over, all through the level.
TEST_P(FreedoomCleanup, LevelsWithLostLinesKeepTheirGeometryAndOnlyUsedObjects)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad(GetParam())), 1);
    ASSERT_FALSE(wad::Wad().Levels.empty());
    for (const wad::LevelListEntry& entry : wad::Wad().Levels)
    {
        const std::string name = entry.Name.Text();
        map::ResetMap();
        map::LevelData level;
        ASSERT_EQ(wad::ReadLevel(level, name, false), 1);
        std::vector<map::LineDef> lines = level.LineDefs.ToVector();
        for (std::size_t i = lines.size(); i-- > 0;)
        {
            if (i % 5 == 2)
            {
                lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        level.LineDefs.Assign(lines);
        const std::vector<std::string> before = Resolved(level);
        const UsedCounts used = CountUsed(level);
        const int unusedSides = level.SideDefs.Count() - static_cast<int>(used.SideDefs);
        Ui.Clear();
        ASSERT_TRUE(CheckUnused(level)) << name;
        EXPECT_EQ(Resolved(level), before) << name;
        EXPECT_EQ(level.Vertexes.size(), used.Vertexes) << name;
        EXPECT_EQ(level.SideDefs.size(), used.SideDefs) << name;
        EXPECT_EQ(level.Sectors.size(), used.Sectors) << name;
        EXPECT_EQ(MessageTexts(Ui),
                  std::vector<std::string>{platform::Format(
                      "Please Wait while %d unused sidedefs are removed\n\nPress OK to "
                      "continue",
                      unusedSides)})
            << name;
    }
}

INSTANTIATE_TEST_SUITE_P(BothIwads, FreedoomCleanup,
                         ::testing::Values("freedoom1.wad", "freedoom2.wad"));

} // namespace
} // namespace kelvar::check
