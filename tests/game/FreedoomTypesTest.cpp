// Every type used in the levels of both Freedoom IWADs is known to the Doom tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeLookup.h"
#include "game/TypeTables.h"
#include "map/MapState.h"
#include "tests/game/GameFixture.h"
#include "wad/LevelReader.h"
#include "wad/WadState.h"

#include <map>
#include <set>
#include <sstream>

namespace kelvar::game
{
namespace
{

class FreedoomTypes : public GameFixture, public ::testing::WithParamInterface<const char*>
{
};

// Freedoom is made for Boom, so the tables are those of a Boom project with its OPT file.
// Boom's generalized LineDef types belong to the generalized decoder: the test takes one as
// known when it lies in the generalized range, and counts them. A Thing on no skill level
// never enters play, and a type there names nothing. One LineDef of E2M1 carries type 340, a
// slope of later ports that a Boom engine ignores; it is listed below rather than given a row.
TEST_P(FreedoomTypes, EveryTypeOfEveryLevelIsKnown)
{
    const std::set<std::string> knownGaps = {"LineDef 340"};
    wad::Wad().Options.BoomTypes = true;
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad(GetParam())), 1);
    SelectGameTables();
    ASSERT_TRUE(ReadOptFile(std::string(KELVAR_SOURCE_DIR) + "/res/opt/BOOM.OPT"));

    std::map<std::string, std::set<std::string>> unknown; // type -> levels
    int generalized = 0;
    for (const wad::LevelListEntry& entry : wad::Wad().Levels)
    {
        const std::string name = entry.Name.Text();
        map::ResetMap();
        map::LevelData level;
        ASSERT_EQ(wad::ReadLevel(level, name, false), 1);
        for (const map::Thing& thing : level.Things)
        {
            if ((thing.Flags & 7) != 0 && &ThingRowOfType(thing.Type) == &UnknownThingRow)
            {
                unknown["Thing " + std::to_string(thing.Type)].insert(name);
            }
        }
        for (const map::LineDef& line : level.LineDefs)
        {
            const auto type = static_cast<std::uint16_t>(line.Type);
            if (LineTypeIsGeneralized(type))
            {
                ++generalized;
            }
            else if (&LookupLineType(type, 0) == &UnknownLineRow)
            {
                unknown["LineDef " + std::to_string(type)].insert(name);
            }
        }
        for (const map::Sector& sector : level.Sectors)
        {
            if (&LookupSectorType(static_cast<std::int16_t>(sector.Type)) == &UnknownSectorRow)
            {
                unknown["Sector " + std::to_string(sector.Type)].insert(name);
            }
        }
    }
    std::ostringstream report;
    for (const auto& [type, levels] : unknown)
    {
        if (!knownGaps.contains(type))
        {
            report << type << " in";
            for (const std::string& level : levels)
            {
                report << ' ' << level;
            }
            report << '\n';
        }
    }
    EXPECT_EQ(report.str(), "") << "types the tables don't know";
    EXPECT_GT(generalized, 0);
    EXPECT_TRUE(Ui.Messages.empty());
}

INSTANTIATE_TEST_SUITE_P(BothIwads, FreedoomTypes,
                         ::testing::Values("freedoom1.wad", "freedoom2.wad"),
                         [](const auto& param) { return std::string(param.param).substr(0, 9); });

} // namespace
} // namespace kelvar::game
