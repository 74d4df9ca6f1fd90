// Tests of the Thing checks: exits and player starts, each Thing's type, shooter target,
// Sector, room and neighbours, the keys the doors need, and a run over a large level.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ThingChecks.h"

#include "check/TypeChecks.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

#include <algorithm>

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;
using Lines = std::vector<std::string>;

constexpr std::uint16_t Trooper = 3004;
constexpr std::uint16_t HealthPotion = 2014;
constexpr std::uint16_t Deathmatch = 11;

const Lines AllSkills = {"Skill 1-2 (easy)", "Skill  3 (medium)", "Skill 4-5 (hard)"};

class ThingChecks : public CheckFixture
{
protected:
    CheckSettings Settings;

    // The lines `check` logs over `level`.
    Lines LogOf(map::LevelData& level, bool (*check)(CheckRun&))
    {
        CheckRun run(level, Settings, RunMode::Log);
        EXPECT_TRUE(check(run));
        return FoundTexts(run);
    }

    Lines StartsLog(map::LevelData& level)
    {
        CheckRun run(level, Settings, RunMode::Log);
        EXPECT_TRUE(CheckPlayerStarts(run, true));
        return FoundTexts(run);
    }
};

// A room of 512 by 512 whose LineDef 0 ends the level, with the starts of players 1 to 4 on
// every skill (Things 0 to 3) and four deathmatch starts.
LevelBuilder StartsBuilder(int deathmatch = 4)
{
    LevelBuilder builder;
    builder.Room(0, 0, 512, 512);
    builder.Level().LineDefs[0].Type = 11;
    for (std::uint16_t player = 1; player <= 4; ++player)
    {
        builder.Thing(64 * player, 64, player);
    }
    for (int i = 0; i < deathmatch; ++i)
    {
        builder.Thing(32 + 32 * i, 256, Deathmatch);
    }
    return builder;
}

// A room of 256 by 256 holding `things` (type, x, y, flags).
map::LevelData RoomWith(std::initializer_list<std::array<int, 4>> things)
{
    LevelBuilder builder;
    builder.Room(0, 0, 256, 256);
    for (const auto& [type, x, y, flags] : things)
    {
        builder.Thing(x, y, static_cast<std::uint16_t>(type), 0, static_cast<std::uint16_t>(flags));
    }
    return builder.Build();
}

TEST_F(ThingChecks, NoExitWarnsUnlessExpert)
{
    map::LevelData level = StartsBuilder().Build();
    EXPECT_TRUE(StartsLog(level).empty()) << "a level with an exit and all starts is clean";

    level.LineDefs[0].Type = 0;
    CheckRun prompt(level, Settings, RunMode::Prompt);
    EXPECT_TRUE(CheckPlayerStarts(prompt, true));
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Title, "No Exits");
    EXPECT_EQ(Ui.Last().Lines, (Lines{"WARNING", "There are no exits in this level!",
                                      "(Not displayed in Expert Mode)"}));
    EXPECT_EQ(StartsLog(level), Lines{"There are no exits in this level"});

    Settings.ExpertMode = true;
    EXPECT_TRUE(StartsLog(level).empty());
}

TEST_F(ThingChecks, MissingPlayerOneOffersToSkipTheRest)
{
    LevelBuilder builder = StartsBuilder();
    builder.Level().Things[0].Type = HealthPotion;
    map::LevelData level = builder.Build();

    CheckRun skip(level, Settings, RunMode::Prompt);
    Ui.Answer(1);
    EXPECT_TRUE(CheckPlayerStarts(skip, true)) << "skipping is no stop: the Thing checks follow";
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Title, "Player");
    EXPECT_EQ(Ui.Last().Lines,
              (Lines{"Starting positions missing.", "Skip Rest of player checks ?"}));

    Ui.Clear();
    CheckRun goOn(level, Settings, RunMode::Prompt);
    Ui.Answer(0);
    EXPECT_TRUE(CheckPlayerStarts(goOn, true));
    EXPECT_EQ(Ui.Titles(), (Lines{"Player", "Player"}));
    EXPECT_EQ(Ui.Last().Lines, (Lines{"Player 1 missing start for skill", "Skill 1-2 (easy)",
                                      "Skill  3 (medium)", "Skill 4-5 (hard)"}));

    Ui.Clear();
    CheckRun quiet(level, Settings, RunMode::Prompt);
    EXPECT_TRUE(CheckPlayerStarts(quiet, false)) << "not interactive: told, not asked";
    EXPECT_EQ(Ui.Messages.front().Lines, Lines{"Starting positions missing."});
}

TEST_F(ThingChecks, StartsAreCountedPerPlayerAndSkill)
{
    LevelBuilder builder = StartsBuilder();
    map::LevelData& built = builder.Level();
    built.Things[1].Flags = 1;        // player 2 on easy only
    built.Things[3].Type = 3;         // player 4 gone, a second player 3 start instead...
    built.Things[3].Flags = 4;        // ...on hard
    builder.Thing(400, 400, 2, 0, 0); // Thing 8: player 2 without skills
    map::LevelData level = builder.Build();

    CheckRun run(level, Settings, RunMode::Log);
    EXPECT_TRUE(CheckPlayerStarts(run, true));
    EXPECT_EQ(
        FoundTexts(run),
        (Lines{"This level is not for multi-player games", "Player 2 invalid skill level",
               "This works, but is bad practice", "Player 2 missing start for skill",
               "Skill  3 (medium)", "Skill 4-5 (hard)", "Player 3 has more than 1 start for skill",
               "Skill 4-5 (hard)", "These players will be GHOSTS", "(and are easy to pick on)"}));
    EXPECT_EQ(run.ErrorCount, 4);
    EXPECT_EQ(run.Findings[1].Kind, map::KindThing);
    EXPECT_EQ(run.Findings[1].Index, 8u) << "the start without skills";
    EXPECT_EQ(run.Findings[3].Index, 1u) << "player 2's first start";

    Settings.PlayerStarts = false;
    EXPECT_TRUE(StartsLog(level).empty());
}

TEST_F(ThingChecks, DeathmatchStartsBetweenFourAndTheGamesLimit)
{
    map::LevelData few = StartsBuilder(3).Build();
    EXPECT_EQ(StartsLog(few), (Lines{"Only 3 DeathMatch starts present.",
                                     "You need at least 4 DeathMatch starts"}));
    map::LevelData ten = StartsBuilder(10).Build();
    EXPECT_TRUE(StartsLog(ten).empty());
    map::LevelData many = StartsBuilder(11).Build();
    EXPECT_EQ(StartsLog(many),
              (Lines{"There are 11 DeathMatch starts", "Only the first 10 are used?"}));

    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    EXPECT_TRUE(StartsLog(many).empty()) << "Boom keeps any number";

    // Hexen keeps 16, and has starts for players 5 to 8.
    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    LevelBuilder hexen = StartsBuilder(17);
    hexen.Level().LineDefs[0].Type = 75; // Hexen's exits are other specials
    for (const int type : {9100, 9101, 9102, 9103})
    {
        hexen.Thing(300, 200 + type % 100, static_cast<std::uint16_t>(type));
    }
    map::LevelData seventeen = hexen.Build();
    EXPECT_EQ(StartsLog(seventeen),
              (Lines{"There are 17 DeathMatch starts", "Only the first 16 are used?"}));
    seventeen.Things[seventeen.Things.size() - 1].Type = HealthPotion;
    EXPECT_EQ(StartsLog(seventeen).front(), "This level is not for multi-player games");
}

TEST_F(ThingChecks, UnknownTypesAndShootersWithoutTarget)
{
    map::LevelData level = RoomWith({{89, 64, 64, 7}, {9999, 128, 128, 7}});
    EXPECT_EQ(LogOf(level, CheckThings), (Lines{"Thing 0, ShootType 89, No TargetType 87 found",
                                                "Thing 1, Invalid Type 9999"}));
    Settings.ThingTypes = false;
    Settings.ThingShooter = false;
    EXPECT_TRUE(LogOf(level, CheckThings).empty());

    Settings.ThingShooter = true;
    map::LevelData targeted = RoomWith({{89, 64, 64, 7}, {87, 128, 128, 7}});
    EXPECT_TRUE(LogOf(targeted, CheckThings).empty());

    game::SelectTablesFor(map::GameHeretic, map::GameHeretic, false, false);
    map::LevelData heretic = RoomWith({{7, 128, 128, 7}});
    EXPECT_EQ(LogOf(heretic, CheckThings), Lines{"Thing 0, Dsparil 7, No DsparilSpot 56 found"});
}

TEST_F(ThingChecks, ThingsOutsideOrTooTallForTheirSector)
{
    map::LevelData level =
        RoomWith({{Trooper, 128, 128, 7}, {1, 64, 64, 7}, {HealthPotion, 300, 40, 7}});
    level.Sectors[0].CeilingHeight = 56;
    EXPECT_EQ(LogOf(level, CheckThings),
              (Lines{"Thing 2 Health Potion", "is outside of every Sector."}))
        << "a Sector as tall as the Thing is tall enough";

    level.Sectors[0].CeilingHeight = 55;
    EXPECT_EQ(LogOf(level, CheckThings),
              (Lines{"Sector 0 height 55 < min 56", "Thing 0 Trooper can't fit!",
                     "Sector 0 height 55 < min 56", "Thing 1 Player 1 Start can't fit!",
                     "Thing 2 Health Potion", "is outside of every Sector."}));

    Settings.ThingsInSector = false;
    EXPECT_TRUE(LogOf(level, CheckThings).empty());
}

TEST_F(ThingChecks, EnemiesOnTopOfEachOtherWhenTheyMeetInAGame)
{
    map::LevelData level = RoomWith({{Trooper, 128, 128, 7},
                                     {Trooper, 128, 128, 4},
                                     {Trooper, 64, 64, 1},
                                     {Trooper, 64, 64, 6},
                                     {HealthPotion, 128, 128, 7},
                                     {Trooper, 128, 128, 7}});
    EXPECT_EQ(LogOf(level, CheckThings),
              (Lines{"Thing 0 Trooper and", "Thing 1 Trooper", "are on top of each other.",
                     "Thing 0 Trooper and", "Thing 5 Trooper", "are on top of each other.",
                     "Thing 1 Trooper and", "Thing 5 Trooper", "are on top of each other."}))
        << "disjoint skills don't meet, and a bonus is no Enemy";
    Settings.ThingsOnTop = false;
    EXPECT_TRUE(LogOf(level, CheckThings).empty());
    Settings.ThingsOnTop = true;

    // Multiplayer-only and not-in-coop keep two Things apart only where Boom reads the latter.
    map::LevelData modes = RoomWith({{Trooper, 128, 128, 7 | 16}, {Trooper, 128, 128, 7 | 64}});
    EXPECT_EQ(LogOf(modes, CheckThings).size(), 3u);
    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    EXPECT_TRUE(LogOf(modes, CheckThings).empty());

    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    map::LevelData hexen = RoomWith({{10030, 128, 128, 7 | 0x100}, {10030, 128, 128, 7 | 0x200}});
    EXPECT_TRUE(LogOf(hexen, CheckThings).empty()) << "single player and coop only";
    hexen.Things[1].Flags = 7 | 0x300;
    EXPECT_EQ(LogOf(hexen, CheckThings).front(), "Thing 0 Ettin and");
}

TEST_F(ThingChecks, MovingThingsInOneSidedWalls)
{
    // A Trooper's radius is 20: a wall nearer than 12 holds it.
    map::LevelData level = RoomWith({{Trooper, 11, 128, 7},
                                     {Trooper, 128, 244, 7},
                                     {HealthPotion, 2, 64, 7},
                                     {Trooper, 250, 250, 7}});
    EXPECT_EQ(LogOf(level, CheckThings), (Lines{"Thing 0 Trooper", "is in a wall. Can it move?",
                                                "Thing 3 Trooper", "is in a wall. Can it move?"}))
        << "12 away is free, a bonus may touch walls";
    CheckRun prompt(level, Settings, RunMode::Prompt);
    Ui.Answer(1).Answer(1);
    EXPECT_TRUE(CheckThings(prompt));
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[1].Lines, (Lines{"Thing 3 Trooper", "is in a wall. Can it move?",
                                           "Press Cancel to see the Object"}))
        << "the prompt asks what the list leaves out";

    // Beside a two-sided LineDef a Thing is in the open.
    map::LevelData rooms = testkit::TwoRooms();
    rooms.Things[1].X = 133;
    EXPECT_TRUE(LogOf(rooms, CheckThings).empty());
}

TEST_F(ThingChecks, KeysAndTheDoorsThatNeedThem)
{
    map::LevelData level = RoomWith({});
    level.LineDefs[0].Type = 28; // a red door
    EXPECT_EQ(LogOf(level, CheckThings),
              (Lines{"For 1 Red key doors", "No Red key key found for skills", AllSkills[0],
                     AllSkills[1], AllSkills[2], "Doors require key from a different level"}));

    level.Things.push_back({.X = 64, .Y = 64, .Type = 13, .Flags = 1});
    EXPECT_EQ(LogOf(level, CheckThings),
              (Lines{"For 1 Red key doors", "No Red key key found for skills", AllSkills[1],
                     AllSkills[2], "Doors cannot be opened at the skills shown"}));
    level.Things.push_back({.X = 96, .Y = 64, .Type = 38, .Flags = 6});
    EXPECT_TRUE(LogOf(level, CheckThings).empty()) << "the red skull opens a red door too";

    level.Things[0].Flags = 7 | 16;
    level.Things[1].Flags = 7 | 16;
    EXPECT_EQ(LogOf(level, CheckThings).back(), "NETWORK keys don't count!");

    map::LevelData spare = RoomWith({{5, 64, 64, 7}});
    CheckRun run(spare, Settings, RunMode::Log);
    EXPECT_TRUE(CheckThings(run));
    EXPECT_EQ(FoundTexts(run),
              (Lines{"Found 1 Blue key keys but no Blue key Door",
                     "Key could be used in a different level?", "So this key is not necessary?"}));
    EXPECT_EQ(run.Findings[0].Kind, map::KindThing);
    CheckRun prompt(spare, Settings, RunMode::Prompt);
    EXPECT_TRUE(CheckThings(prompt));
    EXPECT_EQ(Ui.Titles(), Lines{"Keys"});
}

TEST_F(ThingChecks, KeysOfHereticAndHexen)
{
    // Heretic's green door carries the red key's code; its green key has a code of its own.
    game::SelectTablesFor(map::GameHeretic, map::GameHeretic, false, false);
    map::LevelData heretic = RoomWith({{73, 64, 64, 7}});
    heretic.LineDefs[0].Type = 28;
    EXPECT_TRUE(LogOf(heretic, CheckThings).empty());
    heretic.Things.pop_back();
    EXPECT_EQ(LogOf(heretic, CheckThings).front(), "For 1 Green key doors");

    game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    map::LevelData hexen = RoomWith({{8032, 64, 64, 7 | 0x100}});
    hexen.LineDefs[0].Type = 13;
    hexen.LineDefs[0].Args[2] = 3; // the axe key
    EXPECT_TRUE(LogOf(hexen, CheckThings).empty());
    hexen.Things[0].Flags = 7 | 0x200;
    EXPECT_EQ(LogOf(hexen, CheckThings),
              (Lines{"For 1 Axe doors", "No Axe key found for skills", AllSkills[0], AllSkills[1],
                     AllSkills[2], "Doors require key from a different level",
                     "NETWORK keys don't count!"}))
        << "a key of cooperative games only";
    Settings.CheckKeys = false;
    EXPECT_TRUE(LogOf(hexen, CheckThings).empty());
}

TEST_F(ThingChecks, CancelAndEscapeStopTheCheck)
{
    map::LevelData level = RoomWith({{9999, 64, 64, 7}, {9998, 96, 96, 7}});
    CheckRun run(level, Settings, RunMode::Prompt);
    std::vector<std::uint32_t> shown;
    run.ShowObject = [&](int kind, std::uint32_t index)
    {
        EXPECT_EQ(kind, map::KindThing);
        shown.push_back(index);
    };
    Ui.Answer(1).Answer(0);
    EXPECT_FALSE(CheckThings(run));
    EXPECT_EQ(shown, std::vector<std::uint32_t>{1});
    EXPECT_EQ(Ui.Last().Title, "Verification Failed on (Thing  # 1)");

    Ui.Clear();
    Ui.EscapeFromPoll(1);
    CheckRun escaped(level, Settings, RunMode::Log);
    EXPECT_FALSE(CheckThings(escaped));
    EXPECT_TRUE(escaped.Findings.empty());
}

// A grid of rooms with seven Things each (a quarter of them Troopers on top of each other), and
// a door per room that names a Sector tag: the checks' walks must stay near-linear.
TEST_F(ThingChecks, LargeLevelInLogMode)
{
    constexpr int Columns = 125;
    constexpr int Rows = 120; // 15,000 rooms, 60,000 LineDefs, 105,000 Things
    LevelBuilder builder;
    for (int row = 0; row < Rows; ++row)
    {
        for (int column = 0; column < Columns; ++column)
        {
            const int x = column * 160 - 10000;
            const int y = row * 160 - 10000;
            builder.Room(x, y, 128, 128);
            for (int i = 0; i < 6; ++i)
            {
                builder.Thing(x + 16 + 16 * i, y + 64, HealthPotion);
            }
            builder.Thing(x + 64, y + 32, Trooper);
        }
    }
    map::LevelData& built = builder.Level();
    for (std::size_t room = 0; room < built.Sectors.size(); ++room)
    {
        built.LineDefs[room * 4].Type = 23; // lowers the floor of the Sector tagged...
        built.LineDefs[room * 4].Tag = static_cast<std::uint16_t>(room % 100 + 1);
        built.Sectors[room].Tag = static_cast<std::uint16_t>(room % 100 + 1);
    }
    built.Things[6].X = built.Things[13].X;
    built.Things[6].Y = built.Things[13].Y;
    built.Things[0].Type = 1;
    map::LevelData level = builder.Build();
    ASSERT_EQ(level.Things.size(), 105000u);
    ASSERT_EQ(level.LineDefs.size(), 60000u);

    CheckRun run(level, Settings, RunMode::Log);
    ASSERT_TRUE(CheckPlayerStarts(run, true));
    ASSERT_TRUE(CheckThings(run));
    ASSERT_TRUE(CheckLineTypes(run));
    ASSERT_TRUE(CheckSectorTypes(run));
    const Lines logged = FoundTexts(run);
    EXPECT_EQ(std::count(logged.begin(), logged.end(), "are on top of each other."), 1);
    EXPECT_EQ(std::count(logged.begin(), logged.end(), "is in a wall. Can it move?"), 0);
    EXPECT_EQ(run.ErrorCount, 4) << "no exit, no players 2 to 4, too few deathmatch starts, the "
                                    "Troopers";
}

} // namespace
} // namespace kelvar::check
