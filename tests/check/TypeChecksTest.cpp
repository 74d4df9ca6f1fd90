// Tests of the type and tag checks: LineDef types, what their tags refer to, teleport
// landings, Hexen's Thing ids, and Sector types and tags, with the tag repairs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TypeChecks.h"

#include "map/MapState.h"
#include "map/Undo.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;
using Lines = std::vector<std::string>;

constexpr std::uint16_t LowerFloor = 23; // "S1 LowerFloor to Lowest  adjacent floor", a Sector tag
constexpr std::uint16_t ManualDoor = 1;  // "DR*OpenDoor Wait/Close": no tag without Boom
constexpr std::uint16_t Teleport = 97;
constexpr std::uint16_t TeleportLanding = 14;

class TypeChecks : public CheckFixture
{
protected:
    CheckSettings Settings;

    Lines LogOf(map::LevelData& level, bool (*check)(CheckRun&), RunMode mode = RunMode::Log)
    {
        CheckRun run(level, Settings, mode);
        EXPECT_TRUE(check(run));
        return FoundTexts(run);
    }

    // The lines of the last message a prompted run of `check` showed, each answered Continue.
    Lines PromptedLines(map::LevelData& level, bool (*check)(CheckRun&))
    {
        CheckRun run(level, Settings, RunMode::Prompt);
        Ui.Answer(1);
        EXPECT_TRUE(check(run));
        return Ui.Messages.empty() ? Lines{} : Ui.Last().Lines;
    }
};

// Three rooms side by side, Sectors 0, 1 and 2; LineDef 0 is the west wall of room 0, and
// each room's LineDefs are 4 * room to 4 * room + 3.
map::LevelData ThreeRooms()
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Room(256, 0, 128, 128).Room(512, 0, 128, 128);
    return builder.Build();
}

map::Thing ThingAt(int x, int y, std::uint16_t type, std::uint16_t flags = 7)
{
    return {.X = x, .Y = y, .Type = type, .Flags = flags};
}

TEST_F(TypeChecks, UnknownLineTypesButNotBoomsGeneralizedOnes)
{
    map::LevelData level = ThreeRooms();
    level.LineDefs[1].Type = 999;
    level.LineDefs[2].Type = 0x3000;
    EXPECT_EQ(LogOf(level, CheckLineTypes),
              (Lines{"LineDef 1, Invalid Type 999", "LineDef 2, Invalid Type 12288"}));
    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    EXPECT_EQ(LogOf(level, CheckLineTypes), Lines{"LineDef 1, Invalid Type 999"});
    EXPECT_EQ(Ui.Progress.front().first, "Checking LineDef Types/Tags (esc)");
}

TEST_F(TypeChecks, TagsMustNameWhatTheTypeActsOn)
{
    map::LevelData level = ThreeRooms();
    level.LineDefs[0].Type = LowerFloor;
    level.LineDefs[1].Type = LowerFloor;
    level.LineDefs[1].Tag = 5;
    EXPECT_EQ(
        LogOf(level, CheckLineTypes),
        (Lines{"LineDef 0, type 23 requires a Sector tag",
               "LineDef 1 S1 LowerFloor to Lowest  adjacent floor", "Sector tag 5 not found"}));
    level.Sectors[2].Tag = 5;
    level.LineDefs[0].Tag = 5;
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty());
    level.Sectors[2].Tag = 0;
    Settings.CheckTags = false;
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty());
    Settings.CheckTags = true;

    // A type that refers to LineDefs by tag needs another LineDef with it, which may carry a
    // type that takes no tag of its own.
    game::GameState& game = game::Game();
    game.LineDefs[static_cast<std::size_t>(game::FindTypeRow(game.LineDefs, 13))].TagType =
        game::TagLine;
    map::LevelData lines = ThreeRooms();
    lines.LineDefs[0].Type = 13;
    lines.LineDefs[0].Tag = 9;
    lines.LineDefs[5].Type = 48;
    lines.LineDefs[5].Tag = 9;
    EXPECT_TRUE(LogOf(lines, CheckLineTypes).empty());
    lines.LineDefs[5].Tag = 8;
    EXPECT_EQ(LogOf(lines, CheckLineTypes),
              (Lines{"LineDef 0 W1 Light ON    Level goes to 255", "LineDef tag 9 not found",
                     "LineDef 5 -L Scroll Wall Left", "Sector tag 8 not required."}));
}

TEST_F(TypeChecks, UnwantedLineTagIsResetOnRequest)
{
    map::Map().Level = ThreeRooms();
    map::LevelData& level = map::Map().Level;
    level.LineDefs[6].Type = ManualDoor;
    level.LineDefs[6].Tag = 7;
    const Lines asked = {"LineDef 6 DR*OpenDoor Wait/Close", "Sector tag 7 not required.",
                         "Press Cancel to see LineDef", "Reset tag to 0?"};

    CheckRun run(level, Settings, RunMode::Prompt);
    std::vector<std::pair<int, std::uint32_t>> shown;
    run.ShowObject = [&](int kind, std::uint32_t index) { shown.emplace_back(kind, index); };
    Ui.Answer(0).Answer(2).Answer(1);
    EXPECT_TRUE(CheckLineTypes(run)) << "No leaves the tag";
    EXPECT_EQ(level.LineDefs[6].Tag, 7);
    EXPECT_EQ(Ui.Last().Title, "LineDef tag");
    EXPECT_EQ(Ui.Last().Lines, asked);
    EXPECT_EQ(Ui.Last().Buttons, platform::MessageButtons::YesNoCancel);
    EXPECT_FALSE(CheckLineTypes(run)) << "Cancel stops";
    EXPECT_EQ(shown, (std::vector<std::pair<int, std::uint32_t>>{{map::KindLineDef, 6}}));
    EXPECT_TRUE(CheckLineTypes(run));
    EXPECT_EQ(level.LineDefs[6].Tag, 0) << "Yes resets it";
    EXPECT_NE(level.ChangeCount, 0);
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level.LineDefs[6].Tag, 7) << "as one undo step";

    map::LevelData copy = map::Map().Level;
    EXPECT_EQ(LogOf(copy, CheckLineTypes, RunMode::LogAndFix),
              (Lines{"LineDef 6 DR*OpenDoor Wait/Close", "Sector tag 7 not required."}));
    EXPECT_EQ(copy.LineDefs[6].Tag, 0);
    EXPECT_TRUE(LogOf(copy, CheckLineTypes).empty()) << "repaired, nothing is left to find";

    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    EXPECT_TRUE(LogOf(map::Map().Level, CheckLineTypes).empty()) << "Boom's doors take a tag";
}

TEST_F(TypeChecks, TeleportsNeedALandingForEverySkill)
{
    map::LevelData level = ThreeRooms();
    level.LineDefs[0].Type = Teleport;
    level.LineDefs[0].Tag = 3;
    level.LineDefs[1].Type = Teleport; // the same tag is looked at once
    level.LineDefs[1].Tag = 3;
    level.Sectors[1].Tag = 3;
    level.Things.push_back(ThingAt(300, 64, TeleportLanding, 3));
    const Lines missingHard = {
        "LineDef 0 WR*Teleport to Tagged sector (with TeleThing) (sector tag 3)",
        "Teleport Thing missing for skill", "Skill 4-5 (hard)", "in sector 1"};
    EXPECT_EQ(LogOf(level, CheckLineTypes), missingHard);

    level.Sectors[2].Tag = 3;
    level.Things.push_back(ThingAt(600, 64, TeleportLanding, 7));
    Lines twoSectors = missingHard;
    twoSectors.push_back("2 Sectors have same Teleport Tag?");
    EXPECT_EQ(LogOf(level, CheckLineTypes), twoSectors);
    Lines asked = missingHard;
    asked.insert(asked.end(),
                 {"2 Sectors have same Teleport Tag?", "Press Cancel to see the Object"});
    EXPECT_EQ(PromptedLines(level, CheckLineTypes), asked)
        << "the list leaves out the closing question, the prompt asks it";

    level.Things[0].Flags = 4;
    level.Things.push_back(ThingAt(310, 64, TeleportLanding, 3));
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty()) << "two landings between them";
}

TEST_F(TypeChecks, HexenThingIdsAboveTheGamesLimit)
{
    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    map::LevelData level = ThreeRooms();
    for (int tid = 1; tid <= 201; ++tid)
    {
        map::Thing spot = ThingAt(64, 64, 9001);
        spot.Tid = static_cast<std::uint16_t>(tid);
        level.Things.push_back(spot);
    }
    level.Things.push_back(level.Things[5]); // a repeated id counts once
    CheckRun run(level, Settings, RunMode::Prompt);
    EXPECT_TRUE(CheckLineTypes(run));
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Title, "HEXEN Tid max of 200 exceeded!");
    EXPECT_EQ(Ui.Last().Lines, (Lines{"There are 201 Tids", "Exceeded max HEXEN TID of 200"}));

    level.Things[0].Tid = 0;
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty()) << "200 are allowed";

    level.Things[0].Tid = 1;
    game::SelectTablesFor(map::GameDoom2, map::GameHexen, false, true);
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty()) << "the ports keep more";
}

TEST_F(TypeChecks, HexenThingIdsAndPolyobjects)
{
    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    map::LevelData level = ThreeRooms();
    level.LineDefs[0].Type = 70; // Teleport to a Thing id
    level.LineDefs[0].Tag = 5;
    level.LineDefs[1].Type = 1; // Poly StartLine
    level.LineDefs[1].Tag = 2;
    level.LineDefs[2].Type = 100; // scrolls: its first argument is a speed
    level.LineDefs[2].Tag = 8;
    EXPECT_EQ(LogOf(level, CheckLineTypes),
              (Lines{"LineDef 0 Teleport", "Tid 5 not found.", "LineDef 1 Poly StartLine",
                     "PolyId 2 not found."}));

    map::Thing unknown = ThingAt(64, 64, 9999);
    unknown.Tid = 5;
    level.Things.push_back(unknown);
    map::Thing spot = ThingAt(300, 64, 3001);
    spot.Angle = 2;
    level.Things.push_back(spot);
    EXPECT_EQ(LogOf(level, CheckLineTypes),
              (Lines{"LineDef 0 Teleport", "Tid 5 found, but it's not a normal type?"}));
    EXPECT_EQ(PromptedLines(level, CheckLineTypes),
              (Lines{"LineDef 0 Teleport", "Tid 5 found, but it's not a normal type?",
                     "Press Cancel to see the Object"}));
    level.Things[0].Type = 9001;
    EXPECT_TRUE(LogOf(level, CheckLineTypes).empty());
}

TEST_F(TypeChecks, StrifesTypesThatNeedNoTagTest)
{
    game::SelectTablesFor(map::GameStrife, map::GameStrife, false, false);
    map::LevelData level = ThreeRooms();
    level.LineDefs[0].Type = 145;
    level.LineDefs[0].Tag = 9;
    level.LineDefs[1].Type = 205;
    level.LineDefs[2].Type = 70;
    level.LineDefs[2].Tag = 9;
    EXPECT_EQ(LogOf(level, CheckLineTypes),
              (Lines{"LineDef 2 SR LowerFloor to 8 above highest adjacent floor",
                     "Sector tag 9 not found"}));
}

TEST_F(TypeChecks, SectorTypesAndTagsNoLineDefNames)
{
    map::LevelData level = ThreeRooms();
    level.Sectors[0].Type = 999;
    level.Sectors[1].Tag = 4;
    level.Sectors[2].Tag = 6;
    level.LineDefs[0].Tag = 6;
    const Lines found = {"Sector 0, Invalid Sector type 999", "Sector 1 Normal",
                         "LineDef tag 4 not found."};
    EXPECT_EQ(LogOf(level, CheckSectorTypes), found);
    EXPECT_EQ(Ui.Progress.front().first, "Checking Sector Types/Tags (esc)");

    CheckRun prompt(level, Settings, RunMode::Prompt);
    Ui.Answer(1).Answer(1);
    EXPECT_TRUE(CheckSectorTypes(prompt));
    EXPECT_EQ(Ui.Last().Title, "Sector tag");
    EXPECT_EQ(Ui.Last().Lines, (Lines{"Sector 1 Normal", "LineDef tag 4 not found.",
                                      "Press Cancel to see LineDef", "Reset tag to 0?"}));
    EXPECT_EQ(level.Sectors[1].Tag, 0);
    EXPECT_EQ(level.Sectors[2].Tag, 6);

    level.Sectors[1].Tag = 4;
    EXPECT_EQ(LogOf(level, CheckSectorTypes, RunMode::LogAndFix), found);
    EXPECT_EQ(LogOf(level, CheckSectorTypes), Lines{"Sector 0, Invalid Sector type 999"});

    // Scripts may name a Hexen Sector's tag: it is reported, and never reset unasked.
    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    level.Sectors[0].Type = 0;
    level.Sectors[1].Tag = 4;
    EXPECT_EQ(LogOf(level, CheckSectorTypes, RunMode::LogAndFix),
              (Lines{"Sector 1 Normal", "LineDef tag 4 not found.", "Sector 2 Normal",
                     "LineDef tag 6 not found."}))
        << "a Hexen LineDef's tag counts only where its special takes a Sector tag";
    EXPECT_EQ(level.Sectors[1].Tag, 4);
}

TEST_F(TypeChecks, EscapeStopsTheChecks)
{
    map::LevelData level = ThreeRooms();
    level.LineDefs[3].Type = 999;
    Ui.EscapeFromPoll(1);
    CheckRun lines(level, Settings, RunMode::Log);
    EXPECT_FALSE(CheckLineTypes(lines));
    EXPECT_TRUE(lines.Findings.empty());
    CheckRun sectors(level, Settings, RunMode::Log);
    EXPECT_FALSE(CheckSectorTypes(sectors));
}

} // namespace
} // namespace kelvar::check
