// Tests of the checker's run: the prompt, the error list in its two modes, questions, Escape.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckRun.h"

#include "game/GameState.h"
#include "map/MapState.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

namespace kelvar::check
{
namespace
{

class CheckRunTest : public CheckFixture
{
protected:
    map::LevelData Level = testkit::LevelBuilder().Room(0, 0, 128, 128).Build();
    CheckSettings Settings;

    static Prompt LinePrompt(bool continueFixes = false, std::string fixButton = {})
    {
        Prompt prompt;
        prompt.Kind = map::KindLineDef;
        prompt.Index = 3;
        prompt.Lines = {"LineDef 3 is -0- length!", "Delete the LineDef ?"};
        prompt.ContinueFixes = continueFixes;
        prompt.FixButton = std::move(fixButton);
        return prompt;
    }
};

TEST_F(CheckRunTest, PromptShowsTheLinesUnderTheObjectAndAnswersByItsButtons)
{
    CheckRun run(Level, Settings, RunMode::Prompt);
    Ui.Answer(1).Answer(1).Answer(2);
    EXPECT_EQ(run.Verify(LinePrompt()), Answer::Continue);
    EXPECT_EQ(run.Verify(LinePrompt(true)), Answer::Fix);
    EXPECT_EQ(run.Verify(LinePrompt(false, "Pick Texture")), Answer::Fix);

    const platform::Message& first = Ui.Messages.front();
    EXPECT_EQ(first.Title, "Verification Failed on (LineDef  # 3)");
    EXPECT_EQ(first.Lines,
              (std::vector<std::string>{"LineDef 3 is -0- length!", "Delete the LineDef ?",
                                        "Press Cancel to see the Object"}));
    EXPECT_EQ(first.ButtonTexts, (std::vector<std::string>{"Continue", "Cancel"}));
    EXPECT_EQ(Ui.Last().ButtonTexts,
              (std::vector<std::string>{"Continue", "Cancel", "Pick Texture"}));
    EXPECT_TRUE(run.Findings.empty());
}

TEST_F(CheckRunTest, CancelShowsTheObjectAndStops)
{
    CheckRun run(Level, Settings, RunMode::Prompt);
    std::vector<std::pair<int, std::uint32_t>> shown;
    run.ShowObject = [&](int kind, std::uint32_t index) { shown.emplace_back(kind, index); };
    Ui.Answer(0);
    EXPECT_EQ(run.Verify(LinePrompt(true)), Answer::Stop);
    EXPECT_EQ(shown, (std::vector<std::pair<int, std::uint32_t>>{{map::KindLineDef, 3}}));
}

TEST_F(CheckRunTest, CrashFlagAddsTheGamesWarning)
{
    game::SelectTablesFor(map::GameHeretic, map::GameHeretic, false, false);
    game::Game().IwadKind = map::GameHeretic;
    CheckRun run(Level, Settings, RunMode::Prompt);
    Prompt prompt = LinePrompt();
    prompt.Crash = true;
    Ui.Answer(1);
    (void)run.Verify(prompt);
    EXPECT_TRUE(Ui.Saw("HERETIC may crash if you play this level."));
    game::Game().IwadKind = map::GameDoom2;
    EXPECT_EQ(CrashWarning(), "DOOM may crash if you play this level.");
}

TEST_F(CheckRunTest, LoggingNeverAsksAndRepairsOnlyWhenToldTo)
{
    CheckRun log(Level, Settings, RunMode::Log);
    EXPECT_EQ(log.Verify(LinePrompt(true)), Answer::Continue);
    EXPECT_EQ(log.Ask("Unused", {"3 Vertexes are not used", "Delete unused Vertices?"}),
              Answer::Continue);
    EXPECT_EQ(log.ErrorCount, 2);
    EXPECT_EQ(log.Findings,
              (std::vector<Finding>{{map::KindLineDef, 3, "LineDef 3 is -0- length!", false},
                                    {0, 0, "3 Vertexes are not used", false}}));

    CheckRun fix(Level, Settings, RunMode::LogAndFix);
    EXPECT_EQ(fix.Verify(LinePrompt(true)), Answer::Fix);
    EXPECT_EQ(fix.Verify(LinePrompt(false, "Pick Texture")), Answer::Fix);
    EXPECT_EQ(fix.Verify(LinePrompt()), Answer::Continue); // nothing offered: nothing taken
    EXPECT_EQ(fix.Ask("Unused", {"Delete unused Vertices?"}), Answer::Fix);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(CheckRunTest, TheListKeepsWhatIsWrongAndDropsWhatThePromptAsks)
{
    CheckRun log(Level, Settings, RunMode::Log);
    Prompt wall;
    wall.Kind = map::KindThing;
    wall.Index = 4;
    wall.Lines = {"Thing 4 Trooper", "is in a wall. Can it move?"};
    (void)log.Verify(wall);
    Prompt tag;
    tag.Kind = map::KindSector;
    tag.Index = 2;
    tag.Lines = {"Sector 2 Normal", "LineDef tag 9 not found.", "Press Cancel to see LineDef",
                 "Reset tag to 0?"};
    (void)log.Verify(tag);
    EXPECT_EQ(FoundTexts(log),
              (std::vector<std::string>{"Thing 4 Trooper", "is in a wall. Can it move?",
                                        "Sector 2 Normal", "LineDef tag 9 not found."}));
}

TEST_F(CheckRunTest, AskTellsYesFromNo)
{
    CheckRun run(Level, Settings, RunMode::Prompt);
    Ui.Answer(1).Answer(0);
    EXPECT_EQ(run.Ask("Flags", {"Set the '2-sided' flag ?"}), Answer::Fix);
    EXPECT_EQ(run.Ask("Flags", {"Set the '2-sided' flag ?"}), Answer::Continue);
    EXPECT_EQ(Ui.Last().Buttons, platform::MessageButtons::YesNo);
}

TEST_F(CheckRunTest, PollAsksTheUiSparinglyButAlwaysAtTheEnd)
{
    CheckRun run(Level, Settings, RunMode::Log);
    for (std::size_t i = 0; i < 1000; ++i)
    {
        (void)run.Poll(i, 1000);
    }
    EXPECT_LE(Ui.EscapePolls, 5);
    const int before = Ui.EscapePolls;
    (void)run.Poll(1000, 1000);
    EXPECT_EQ(Ui.EscapePolls, before + 1);

    Ui.EscapeFromPoll(Ui.EscapePolls + 1);
    EXPECT_TRUE(run.Poll(1000, 1000));
}

TEST_F(CheckRunTest, EachStopsWhereTheVisitOrEscapeSays)
{
    std::vector<std::size_t> visited;
    const auto visit = [&](std::size_t i)
    {
        visited.push_back(i);
        return i != 1;
    };
    CheckRun run(Level, Settings, RunMode::Log);
    EXPECT_TRUE(run.Each(1, visit));
    EXPECT_FALSE(run.Each(5, visit));
    EXPECT_EQ(visited, (std::vector<std::size_t>{0, 0, 1}));

    CheckRun escaped(Level, Settings, RunMode::Log);
    Ui.EscapeFromPoll(Ui.EscapePolls + 1);
    EXPECT_FALSE(escaped.Each(5, visit));
    EXPECT_EQ(visited.size(), 3u) << "visited after Escape";
}

TEST_F(CheckRunTest, RepairsOfTheEditorsLevelTakeAnUndoStep)
{
    map::Map().Level = Level;
    CheckRun editor(map::Map().Level, Settings, RunMode::LogAndFix);
    editor.BeforeRepair();
    EXPECT_EQ(map::Map().Undo.Position, 0);

    CheckRun detached(Level, Settings, RunMode::LogAndFix);
    detached.BeforeRepair();
    EXPECT_EQ(map::Map().Undo.Position, 0);
}

TEST(FindingLineTest, ShowsTheKindsFirstTwoLettersAndFiveDigits)
{
    EXPECT_EQ(FindingLine({map::KindLineDef, 42, "LineDef 42 has no first SideDef."}),
              "Li 00042 LineDef 42 has no first SideDef.");
    EXPECT_EQ(FindingLine({map::KindSector, 7, "Sector 7 is not closed!"}),
              "Se 00007 Sector 7 is not closed!");
    EXPECT_EQ(FindingLine({0, 0, "3 Vertexes are not used"}), "3 Vertexes are not used");
    EXPECT_EQ(FindingLine({0, 0, "and LineDef 9", true}), "         and LineDef 9");
}

} // namespace
} // namespace kelvar::check
