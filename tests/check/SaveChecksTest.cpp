// Tests of the checks before a save: port limits, zero-length lines, player starts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SaveChecks.h"
#include "game/GameState.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;

constexpr const char* CautionText =
    "Caution\n\nThis level exceeds the limits of most\nDOOM ports and will crash the game\n\n"
    "(this message does not appear if F5 Expert set)\n\nContinue with Save?";

using SaveChecks = CheckFixture;

TEST_F(SaveChecks, PortLimitCautionAsksFromTheLimitsOnUnlessExpert)
{
    map::LevelData level;
    const CheckOptions normal;
    level.LineDefs.resize(32674);
    level.SideDefs.resize(32674);
    level.Vertexes.resize(32764);
    EXPECT_TRUE(PortLimitCaution(level, normal));
    EXPECT_TRUE(Ui.Messages.empty()) << "one below each limit passes without a question";

    const auto askedAt = [&](auto& array)
    {
        array.resize(32675);
        Ui.Answer(0).Answer(1);
        EXPECT_FALSE(PortLimitCaution(level, normal));
        EXPECT_TRUE(PortLimitCaution(level, normal));
        array.resize(32674);
    };
    askedAt(level.LineDefs);
    askedAt(level.SideDefs);
    level.Vertexes.resize(32765);
    Ui.Answer(0);
    EXPECT_FALSE(PortLimitCaution(level, normal));
    ASSERT_EQ(Ui.Messages.size(), 5u);
    EXPECT_EQ(Ui.Last().Title, "Kelvar Confirm");
    EXPECT_EQ(Ui.Last().Text(), CautionText);

    Ui.Clear();
    level.LineDefs.resize(70000);
    CheckOptions expert;
    expert.ExpertMode = true;
    EXPECT_TRUE(PortLimitCaution(level, expert));
    EXPECT_TRUE(Ui.Messages.empty());
}

// A room (LineDefs 0 to 3) and two zero-length LineDefs: 4 between two Vertexes at one place,
// 5 from a Vertex to itself; 6 has a Vertex number beyond the Vertexes.
map::LevelData ZeroLengthLevel()
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128).Vertex(64, 64).Vertex(64, 64).Side(0).Side(0).Side(0);
    builder.Line(4, 5, 4).Line(2, 2, 5).Line(0, 99, 6);
    return builder.Build();
}

TEST_F(SaveChecks, ShortLineCheckAsksAboutTheFirstZeroLengthLineOnly)
{
    const map::LevelData level = ZeroLengthLevel();
    const map::LevelData before = level;
    Ui.Answer(0);
    EXPECT_TRUE(ShortLineCheck(level)) << "No goes on with the save";
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Text(), "!! LineDef 4 is -0- length !!\n\nPlease Press F10, Run Error "
                                "checker\nand Fix or Nodes will blow up!\n\nQuit Save Now (yes "
                                "recommended)?");
    ASSERT_FALSE(Ui.Progress.empty());
    EXPECT_EQ(Ui.Progress.front().first, "Checking 7 Short LineDefs (esc Cancel)");

    Ui.Answer(1);
    EXPECT_FALSE(ShortLineCheck(level)) << "Yes stops it";
    EXPECT_EQ(level, before) << "the save's check changes nothing";

    Ui.Clear();
    Ui.EscapeFromPoll(Ui.EscapePolls + 1);
    EXPECT_FALSE(ShortLineCheck(level));
    EXPECT_EQ(Texts(), std::vector<std::string>{"Short LineDef check Cancelled!"});

    Ui.Clear();
    Ui.EscapeFromPoll(0);
    EXPECT_TRUE(ShortLineCheck(LevelBuilder().Room(0, 0, 64, 64).Build()));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(SaveChecks, AHexenFirstArgumentAbove255IsSetTo0WithOneMessage)
{
    map::LevelData level = LevelBuilder().Room(0, 0, 128, 128).Build();
    level.LevelLayout = map::LayoutHexen;
    level.LineDefs[0].Tag = 12;
    level.LineDefs[1].Tag = 300;
    level.LineDefs[3].Tag = 0xFF00;
    const std::uint16_t changes = level.ChangeCount;
    EXPECT_EQ(ArgumentRangeCheck(level), 2);
    EXPECT_EQ(Texts(), std::vector<std::string>{
                           "One or more argument values of LineDef 1 exceeds 255\n\nSet to 0"});
    EXPECT_EQ(level.LineDefs[0].Tag, 12);
    EXPECT_EQ(level.LineDefs[1].Tag, 0);
    EXPECT_EQ(level.LineDefs[3].Tag, 0);
    EXPECT_EQ(static_cast<std::uint16_t>(level.ChangeCount - changes), 1);

    Ui.Clear();
    map::LevelData doom = LevelBuilder().Room(0, 0, 128, 128).Build();
    doom.LineDefs[1].Tag = 300;
    EXPECT_EQ(ArgumentRangeCheck(doom), 0) << "a Doom tag is a full number";
    EXPECT_EQ(doom.LineDefs[1].Tag, 300);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(SaveChecks, CheckShortLinesDeletesEveryZeroLengthLine)
{
    map::LevelData level = ZeroLengthLevel();
    const map::LevelData before = level;
    Ui.EscapeFromPoll(1);
    EXPECT_FALSE(CheckShortLines(level));
    EXPECT_EQ(level, before) << "Escape comes before any deletion";

    Ui.Clear();
    Ui.EscapeFromPoll(0);
    EXPECT_TRUE(CheckShortLines(level));
    EXPECT_EQ(Texts(), std::vector<std::string>{"2 -0- length lines deleted"});
    ASSERT_EQ(level.LineDefs.Count(), 5);
    EXPECT_EQ(level.LineDefs[4].SideDef1, 4u) << "the line beyond the Vertexes isn't short";
    EXPECT_EQ(level.SideDefs.Count(), 5) << "the deleted lines' SideDefs went with them";
    for (int i = 0; i < 4; ++i)
    {
        EXPECT_EQ(level.LineDefs[static_cast<std::size_t>(i)], before.LineDefs[i]);
    }
    EXPECT_NE(level.ChangeCount, 0);

    Ui.Clear();
    EXPECT_TRUE(CheckShortLines(level));
    EXPECT_TRUE(Ui.Messages.empty()) << "nothing to delete, nothing said";
}

const std::vector<std::string> NoPlayerOneLines = {"No Player 1 found!", "Do you want Kelvar to",
                                                   "add a Player 1 Start", "in the center?",
                                                   "(Required for Testing)"};

TEST_F(SaveChecks, PlayerOneCheckOffersAStartInTheMiddle)
{
    map::LevelData withPlayer = LevelBuilder().Room(0, 0, 64, 64).Thing(32, 32, 1).Build();
    EXPECT_FALSE(PlayerOneCheck(withPlayer));
    EXPECT_TRUE(Ui.Messages.empty()) << "a level with player 1 passes";

    map::LevelData level = LevelBuilder().Room(-64, 0, 256, 128).Thing(10, 10, 2).Build();
    const map::LevelData before = level;
    Ui.Answer(0);
    EXPECT_FALSE(PlayerOneCheck(level));
    EXPECT_EQ(level, before) << "No adds nothing";
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Title, "No Player 1");
    EXPECT_EQ(Ui.Last().Lines, NoPlayerOneLines);
    EXPECT_EQ(Ui.Last().Buttons, platform::MessageButtons::YesNo);

    Ui.Answer(1);
    EXPECT_TRUE(PlayerOneCheck(level));
    ASSERT_EQ(level.Things.Count(), 2);
    const map::Thing& added = level.Things[1];
    EXPECT_EQ(added.Type, 1);
    EXPECT_EQ(added.X, 64);
    EXPECT_EQ(added.Y, 64);
    EXPECT_EQ(added.Angle, 90);
    EXPECT_EQ(added.Flags, 7) << "on every skill";
    EXPECT_NE(level.ChangeCount, 0);
    EXPECT_FALSE(PlayerOneCheck(level)) << "asked once: now there is one";
}

TEST_F(SaveChecks, PlayerOneCheckTakesTheTypeFromTheGamesTable)
{
    // A table whose player 1 start has another number: type 1 is then an unknown Thing.
    for (game::ThingTypeRow& row : game::Game().Things)
    {
        if (row.Property == game::PropertyPlayerStart1)
        {
            row.Type = 4001;
        }
    }
    map::LevelData level = LevelBuilder().Room(0, 0, 64, 64).Thing(32, 32, 1).Build();
    Ui.Answer(1);
    EXPECT_TRUE(PlayerOneCheck(level));
    EXPECT_EQ(level.Things[1].Type, 4001);

    game::ResetGame();
    EXPECT_FALSE(PlayerOneCheck(level)) << "without tables there is no type to add";
}

map::LevelData WithThings(std::initializer_list<std::uint16_t> types)
{
    LevelBuilder builder;
    for (const std::uint16_t type : types)
    {
        builder.Thing(0, 0, type);
    }
    return builder.Build();
}

TEST_F(SaveChecks, CountStartsByTheirRowsProperties)
{
    EXPECT_EQ(CountStarts(WithThings({1, 2, 3, 4, 4, 11, 11, 11, 3004, 14, 9999})),
              (StartCounts{5, 3}));
    game::SelectTablesFor(4, 4, false, false);
    EXPECT_EQ(CountStarts(WithThings({1, 9100, 9103, 11})), (StartCounts{3, 1}))
        << "players 5 to 8 count too";
}

TEST_F(SaveChecks, NotEnoughStartsOffersTheLevelCheck)
{
    LevelBuilder builder;
    builder.Room(0, 0, 64, 64).Thing(1, 1, 1).Thing(2, 2, 2).Thing(3, 3, 11);
    const map::LevelData level = builder.Build();
    int runs = 0;
    bool checkResult = false;
    const std::function<bool()> levelCheck = [&]
    {
        ++runs;
        return checkResult;
    };
    const CheckOptions options;

    Ui.Answer(0).Answer(1).Answer(1);
    EXPECT_TRUE(PlayerStartCountCheck(level, options, levelCheck)) << "No goes on";
    EXPECT_EQ(runs, 0);
    EXPECT_FALSE(PlayerStartCountCheck(level, options, levelCheck)) << "the check failed";
    checkResult = true;
    EXPECT_TRUE(PlayerStartCountCheck(level, options, levelCheck));
    EXPECT_EQ(runs, 2);
    ASSERT_EQ(Ui.Messages.size(), 3u);
    EXPECT_EQ(Ui.Last().Title, "Not enough");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"2 player starts found", "1 deathmatch starts found",
                                        "Check for Player Starts&Exits?",
                                        "(to disable this msg change: F5-Check Player Start)"}));

    Ui.Clear();
    CheckOptions off;
    off.CheckPlayerStarts = false;
    EXPECT_TRUE(PlayerStartCountCheck(level, off, levelCheck));
    EXPECT_TRUE(PlayerStartCountCheck(level, options, {})) << "no checker, no question";
    EXPECT_TRUE(
        PlayerStartCountCheck(WithThings({1, 2, 3, 4, 11, 11, 11, 11}), options, levelCheck));
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(runs, 2);
}

} // namespace
} // namespace kelvar::check
