// Tests of the closed-Sector check: edges that don't meet, sides facing the wrong Sector, and
// one-sided LineDefs with a Sector behind them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ClosedChecks.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Undo.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;

using ClosedChecks = CheckFixture;

// Settings with only the given steps of the check on.
CheckSettings Steps(bool first, bool second, bool third)
{
    CheckSettings settings;
    settings.SectorClosed1 = first;
    settings.SectorClosed2 = second;
    settings.SectorClosed3 = third;
    return settings;
}

// The list of a run of the check over `level` that repairs nothing.
std::vector<std::string> LoggedFindings(map::LevelData& level, const CheckSettings& settings)
{
    CheckRun run(level, settings, RunMode::Log);
    EXPECT_TRUE(CheckSectorsClosed(run));
    return ListLines(run);
}

TEST_F(ClosedChecks, ClosedLevelsPassIncludingSeparateRoomsSideBySide)
{
    map::LevelData twoRooms = testkit::TwoRooms();
    EXPECT_EQ(LoggedFindings(twoRooms, CheckSettings{}), std::vector<std::string>{});
    // The back of one room's wall faces the back of the other's: the void, not a Sector.
    map::LevelData apart = LevelBuilder().Room(0, 0, 128, 128).Room(256, 0, 128, 128).Build();
    EXPECT_EQ(LoggedFindings(apart, CheckSettings{}), std::vector<std::string>{});
    EXPECT_EQ(Ui.Progress.front().first, "Checking All Sectors Closed Step 1 (esc)");
}

TEST_F(ClosedChecks, ASideInTheWrongSectorBreaksTheEdgesOfBothSectors)
{
    // The shared wall's back (SideDef 7) should face the west room, Sector 0.
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    builder.Level().SideDefs[7].Sector = 1;
    map::LevelData level = builder.Build();
    EXPECT_EQ(LoggedFindings(level, Steps(true, false, false)),
              (std::vector<std::string>{
                  "Se 00000 Sector 0 is not closed!", "No SideDef starting at Vertex 2",
                  "Se 00000 Sector 0 is not closed!", "No SideDef ending at Vertex 3",
                  "Se 00001 Sector 1 is not closed!", "No SideDef ending at Vertex 2",
                  "Se 00001 Sector 1 is not closed!", "No SideDef starting at Vertex 3"}));
    EXPECT_EQ(
        LoggedFindings(level, Steps(false, true, false)),
        (std::vector<std::string>{"Li 00000 Sectors 0 and 1 not closed!", "(Not the same Sector)",
                                  "Check LineDef 0 (SideDef1 0)", "and LineDef 4 (SideDef 7)",
                                  "Li 00004 Sectors 1 and hd not closed!", "(Not the same Sector)",
                                  "Check LineDef 4 (sideDef2 7)", "and LineDef 0 (SideDef 0)"}));
}

TEST_F(ClosedChecks, ASideFacingNoSectorIsReportedWithTheLineItMeets)
{
    // The east wall turned round faces out: the west wall's ray meets its missing back, and its
    // own ray meets nothing.
    LevelBuilder room;
    room.Room(0, 0, 128, 128);
    std::swap(room.Level().LineDefs[2].StartVertex, room.Level().LineDefs[2].EndVertex);
    map::LevelData turned = room.Build();
    EXPECT_EQ(LoggedFindings(turned, Steps(false, true, true)),
              (std::vector<std::string>{"Li 00000 Sector 0 not closed! (no opposite Sector found)",
                                        "Check LineDef 0 (SideDef1 0)", "and LineDef 2",
                                        "Li 00002 Sector 0 not closed! (no opposite Sector found)",
                                        "Check LineDef 2 (SideDef1 2)"}))
        << "a wall with nothing in front of it is not a line inside the level";

    LevelBuilder rooms = testkit::TwoRoomsBuilder();
    rooms.Level().LineDefs[0].SideDef1 = map::NoSideDef;
    map::LevelData open = rooms.Build();
    EXPECT_EQ(LoggedFindings(open, Steps(false, true, false)),
              (std::vector<std::string>{"Li 00004 Sector 0 not closed! (no opposite Sector Found)",
                                        "Check LineDef 4 (sideDef2 7)", "and LineDef 0"}));
}

// The two rooms with the shared wall one-sided: its back, SideDef 7, is gone.
map::LevelData MissingBack()
{
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    map::LineDef& wall = builder.Level().LineDefs[4];
    wall.SideDef2 = map::NoSideDef;
    map::SetSideFlags(wall);
    return builder.Build();
}

TEST_F(ClosedChecks, AOneSidedLineWithASectorBehindGetsItsSecondSide)
{
    map::LevelData level = MissingBack();
    EXPECT_EQ(
        LoggedFindings(level, Steps(false, false, true)),
        (std::vector<std::string>{"Li 00004 line 4 possible problem", "line 4 Side2 missing"}));

    const CheckSettings settings = Steps(false, false, true);
    CheckRun fix(level, settings, RunMode::LogAndFix);
    EXPECT_TRUE(CheckSectorsClosed(fix));
    EXPECT_EQ(ListLines(fix),
              (std::vector<std::string>{"Li 00004 line 4 possible problem", "line 4 Side2 missing",
                                        "List of linedef problems corrected",
                                        "line 4 Side2 missing added sd2=8 set to 2-sided"}));
    const map::LineDef& wall = level.LineDefs[4];
    EXPECT_EQ(wall.SideDef2, 8u);
    EXPECT_NE(wall.Flags & map::FlagTwoSided, 0);
    EXPECT_EQ(level.SideDefs[8].Sector, 0u);
    EXPECT_TRUE(level.SideDefs[8].NormalTexture.IsNone()) << "an opening shows no wall";
    EXPECT_EQ(LoggedFindings(level, CheckSettings{}), std::vector<std::string>{});
}

TEST_F(ClosedChecks, ThePromptOffersTheRepairAsOneUndoStep)
{
    map::Map().Level = MissingBack();
    const map::LevelData before = map::Map().Level;
    const CheckSettings settings = Steps(false, false, true);
    CheckRun run(map::Map().Level, settings, RunMode::Prompt);
    Ui.Answer(2);
    EXPECT_TRUE(CheckSectorsClosed(run));
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Title, "Verification Failed on (LineDef  # 4)");
    EXPECT_EQ(Ui.Messages[0].ButtonTexts,
              (std::vector<std::string>{"Continue", "Cancel", "Add Side2"}));
    EXPECT_EQ(Ui.Messages[1].Lines,
              (std::vector<std::string>{"List of linedef problems corrected",
                                        "line 4 Side2 missing added sd2=8 set to 2-sided"}));
    EXPECT_NE(map::Map().Level.ChangeCount, 0);
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level.LineDefs, before.LineDefs);
    EXPECT_EQ(map::Map().Level.SideDefs, before.SideDefs);

    // Continue leaves the LineDef alone; Cancel shows it and stops the check.
    Ui.Clear();
    int shownKind = 0;
    std::uint32_t shown = 0;
    run.ShowObject = [&](int kind, std::uint32_t index)
    {
        shownKind = kind;
        shown = index;
    };
    Ui.Answer(1).Answer(0);
    EXPECT_TRUE(CheckSectorsClosed(run));
    EXPECT_FALSE(CheckSectorsClosed(run));
    EXPECT_EQ(Ui.Messages.size(), 2u) << "no list of corrections when nothing was corrected";
    EXPECT_EQ(shownKind, map::KindLineDef);
    EXPECT_EQ(shown, 4u);
    EXPECT_EQ(map::Map().Level.LineDefs, before.LineDefs);
}

TEST_F(ClosedChecks, EscapeStopsTheCheckBeforeAnyFinding)
{
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    builder.Level().SideDefs[7].Sector = 1;
    map::LevelData level = builder.Build();
    Ui.EscapeFromPoll(1);
    const CheckSettings settings;
    CheckRun run(level, settings, RunMode::LogAndFix);
    EXPECT_FALSE(CheckSectorsClosed(run));
    EXPECT_TRUE(run.Findings.empty());
}

} // namespace
} // namespace kelvar::check
