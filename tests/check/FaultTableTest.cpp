// The table of faults: for each check, a fault put into a clean level of two rooms. The check
// must not report it before the fault, must report it after, and where it offers a repair, a
// run that takes every repair leaves a level in which it is not reported again.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckControl.h"

#include "tests/check/CatalogueFixture.h"
#include "tests/testkit/LevelBuilder.h"

#include <algorithm>
#include <functional>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::TextureName;

struct FaultRow
{
    const char* What;
    CheckButton Button;
    std::function<void(LevelData&)> Fault;
    const char* Reported; // a line of the error list
    bool Repaired;        // the check offers a repair that removes the fault
};

map::LineDef LineOf(std::uint32_t start, std::uint32_t end, std::uint32_t side)
{
    map::LineDef line;
    line.StartVertex = start;
    line.EndVertex = end;
    line.Flags = map::FlagImpassable;
    line.SideDef1 = side;
    return line;
}

map::Thing ThingOf(int x, int y, std::uint16_t type)
{
    map::Thing thing;
    thing.X = x;
    thing.Y = y;
    thing.Type = type;
    thing.Flags = 7;
    return thing;
}

const std::vector<FaultRow>& Faults()
{
    static const std::vector<FaultRow> rows = {
        {"a Sector whose edges don't meet", CheckButton::SectorsClosed,
         [](LevelData& level) { level.SideDefs[5].Sector = 0; }, "Sector 1 is not closed!", false},
        {"a one-sided wall with a room behind it", CheckButton::SectorsClosed,
         [](LevelData& level)
         {
             level.LineDefs[4].SideDef2 = map::NoSideDef;
             level.LineDefs[4].Flags = map::FlagImpassable;
         },
         "line 4 Side2 missing", true},
        {"a LineDef of no length", CheckButton::CrossReferences,
         [](LevelData& level)
         {
             level.SideDefs.push_back(level.SideDefs[0]);
             level.LineDefs.push_back(LineOf(1, 1, 8));
         },
         "LineDef 7 is -0- length!", true},
        {"a Vertex no LineDef uses", CheckButton::CrossReferences,
         [](LevelData& level) {
             level.Vertexes.push_back({500, 500});
         },
         "1 Vertexes are not used", true},
        {"a one-sided LineDef that isn't impassable", CheckButton::CrossReferences,
         [](LevelData& level) { level.LineDefs[0].Flags = 0; },
         "Some LineDefs have only 1 side (starting with 0)", true},
        {"a ceiling below its floor", CheckButton::MissingTextures,
         [](LevelData& level) { level.Sectors[1].CeilingHeight = -8; },
         "Sector 1 has its ceiling lower than its floor.", true},
        {"a one-sided wall without a texture", CheckButton::MissingTextures,
         [](LevelData& level) { level.SideDefs[0].NormalTexture = map::NoTexture; },
         "Linedef 0: sideDef1 0 missing normal texture", true},
        {"a step in the ceiling without its upper texture", CheckButton::MissingTextures,
         [](LevelData& level) { level.SideDefs[7].UpperTexture = map::NoTexture; },
         "Linedef 4: sideDef2 7 has no upper texture", true},
        {"a wall texture the files don't have", CheckButton::TextureNames,
         [](LevelData& level) { level.SideDefs[1].NormalTexture = TextureName::From("NOSUCH"); },
         "SideDef 1, normal", true},
        {"a flat the files don't have", CheckButton::TextureNames,
         [](LevelData& level) { level.Sectors[0].FloorTexture = TextureName::From("NOFLAT"); },
         "Sector 0, floor", true},
        {"a Thing of a type no table knows", CheckButton::Things,
         [](LevelData& level) { level.Things.push_back(ThingOf(64, 32, 9999)); },
         "Thing 3, Invalid Type 9999", false},
        {"a monster in a room too low for it", CheckButton::Things,
         [](LevelData& level) { level.Sectors[1].CeilingHeight = 40; },
         "Sector 1 height 40 < min 56", false},
        {"a LineDef type no table knows", CheckButton::LineTypes,
         [](LevelData& level) { level.LineDefs[0].Type = 9999; }, "LineDef 0, Invalid Type 9999",
         false},
        {"a tag on a type that takes none", CheckButton::LineTypes,
         [](LevelData& level)
         {
             level.LineDefs[4].Type = 1;
             level.LineDefs[4].Tag = 5;
         },
         "Sector tag 5 not required.", true},
        {"a switch whose Sector tag nothing has", CheckButton::LineTypes,
         [](LevelData& level)
         {
             level.LineDefs[0].Type = 23;
             level.LineDefs[0].Tag = 7;
         },
         "Sector tag 7 not found", false},
        {"a Sector type no table knows", CheckButton::SectorTypes,
         [](LevelData& level) { level.Sectors[0].Type = 999; }, "Sector 0, Invalid Sector type 999",
         false},
        {"a tagged Sector no LineDef names", CheckButton::SectorTypes,
         [](LevelData& level) { level.Sectors[0].Tag = 9; }, "LineDef tag 9 not found.", true},
        {"an upper texture no step needs", CheckButton::ExtraTextures,
         [](LevelData& level) { level.SideDefs[6].UpperTexture = TextureName::From("STARTAN3"); },
         "Linedef 4: sideDef1 6 upper STARTAN3 not req", true},
    };
    return rows;
}

class FaultTable : public CatalogueFixture
{
protected:
    // Two rooms whose shared wall has the upper texture the higher ceiling of the west room
    // asks for, and an exit switch.
    static LevelData CleanLevel()
    {
        LevelData level = testkit::TwoRooms();
        level.SideDefs[7].UpperTexture = TextureName::From("STARTAN3");
        level.LineDefs[1].Type = 11; // S1 Exit level
        return level;
    }

    std::vector<std::string> Reported(LevelData& level, CheckButton button, RunMode mode)
    {
        CheckRun run(level, Settings, mode);
        EXPECT_TRUE(RunChecksOf(button, run));
        return FoundTexts(run);
    }

    static bool Has(const std::vector<std::string>& lines, const std::string& line)
    {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }

    CheckSettings Settings;
};

TEST_F(FaultTable, EachCheckFindsItsFaultAndItsRepairRemovesIt)
{
    for (const FaultRow& row : Faults())
    {
        SCOPED_TRACE(row.What);
        LevelData level = CleanLevel();
        EXPECT_FALSE(Has(Reported(level, row.Button, RunMode::Log), row.Reported))
            << "reported before the fault";

        row.Fault(level);
        const std::vector<std::string> found = Reported(level, row.Button, RunMode::Log);
        EXPECT_TRUE(Has(found, row.Reported)) << "not reported: " << row.Reported;
        if (!row.Repaired)
        {
            continue;
        }
        const std::uint16_t changes = level.ChangeCount;
        (void)Reported(level, row.Button, RunMode::LogAndFix);
        EXPECT_NE(level.ChangeCount, changes) << "the repair changed nothing";
        EXPECT_FALSE(Has(Reported(level, row.Button, RunMode::Log), row.Reported))
            << "still reported after the repair";
    }
    EXPECT_TRUE(Ui.Messages.empty()); // the error list never asks
}

TEST_F(FaultTable, TheCleanLevelPassesEveryCheck)
{
    LevelData level = CleanLevel();
    CheckRun run(level, Settings, RunMode::Log);
    ASSERT_TRUE(RunChecksOf(CheckButton::GroupAll, run));
    ASSERT_TRUE(RunChecksOf(CheckButton::ExtraTextures, run));
    // Two rooms are no place for a game of several players: that, and only that, is said.
    std::vector<std::string> lines;
    for (const Finding& finding : run.Findings)
    {
        if (!finding.Detail)
        {
            lines.push_back(finding.Text);
        }
    }
    for (const std::string& line : lines)
    {
        EXPECT_TRUE(line.find("start") != std::string::npos ||
                    line.find("multi-player") != std::string::npos)
            << line;
    }
}

} // namespace
} // namespace kelvar::check
