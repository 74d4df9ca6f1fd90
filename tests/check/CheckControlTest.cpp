// Tests of the checker dialog's session: run flags, groups, the error list and the reports.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckControl.h"

#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

namespace kelvar::check
{
namespace
{

class CheckSessionTest : public CheckFixture
{
protected:
    map::LevelData Level = testkit::TwoRooms();
    CheckSettings Settings;
    CheckSession Session{Level, Settings};

    // A Sector that isn't closed: the east room loses its north wall's LineDef.
    void OpenTheEastRoom()
    {
        Level.LineDefs[5].SideDef1 = 7; // now a side of Sector 0 far from the west room
        ++Level.ChangeCount;
    }
};

TEST_F(CheckSessionTest, ButtonsAreTheDialogsInOrder)
{
    const auto& rows = CheckButtons();
    EXPECT_STREQ(rows.front().Text, " &1   Statistics");
    EXPECT_STREQ(rows[10].Text, " &B   Check ( 2 . . . 8 ) ALL");
    EXPECT_STREQ(rows.back().Text, " &G   Automatic Remove Extra Texture Names");
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        EXPECT_EQ(static_cast<std::size_t>(rows[i].Button), i);
    }
    EXPECT_EQ(GroupMembers(CheckButton::Group5678),
              (std::vector<CheckButton>{CheckButton::TextureNames, CheckButton::Things,
                                        CheckButton::LineTypes, CheckButton::SectorTypes}));
    EXPECT_EQ(GroupMembers(CheckButton::GroupAll).size(), 7U);
    EXPECT_TRUE(GroupMembers(CheckButton::Statistics).empty());
}

TEST_F(CheckSessionTest, StatisticsRunsNothing)
{
    EXPECT_EQ(Session.Press(CheckButton::Statistics), PressResult::OpenStatistics);
    EXPECT_TRUE(Session.Reports.empty());
    EXPECT_TRUE(Ui.Progress.empty());
}

TEST_F(CheckSessionTest, ASingleCheckRunsOncePerSessionUntilTheLevelChanges)
{
    EXPECT_EQ(Session.Press(CheckButton::SectorsClosed), PressResult::Ran);
    EXPECT_EQ(Session.Reports,
              (std::vector<std::string>{"Beginning Check . . .", ".. No Errors Found .."}));
    EXPECT_TRUE(Session.HasRun(CheckButton::SectorsClosed));

    EXPECT_EQ(Session.Press(CheckButton::SectorsClosed), PressResult::Skipped);
    EXPECT_TRUE(Session.Reports.empty());

    ++Level.ChangeCount;
    EXPECT_FALSE(Session.HasRun(CheckButton::SectorsClosed));
    EXPECT_EQ(Session.Press(CheckButton::SectorsClosed), PressResult::Ran);
}

TEST_F(CheckSessionTest, GroupsAlwaysRunAndMarkTheirMembers)
{
    Session.ErrorLogEnabled = true;
    EXPECT_NE(Session.Press(CheckButton::Group234), PressResult::Skipped);
    EXPECT_NE(Session.Press(CheckButton::Group234), PressResult::Skipped);
    EXPECT_TRUE(Session.HasRun(CheckButton::SectorsClosed));
    EXPECT_TRUE(Session.HasRun(CheckButton::CrossReferences));
    EXPECT_TRUE(Session.HasRun(CheckButton::MissingTextures));
    EXPECT_FALSE(Session.HasRun(CheckButton::TextureNames));
    EXPECT_EQ(Session.Press(CheckButton::CrossReferences), PressResult::Skipped);
}

TEST_F(CheckSessionTest, TheErrorListStartsWithItsHeaderAndCollectsFindingsWithoutPrompts)
{
    OpenTheEastRoom();
    Session.ErrorLogEnabled = true;
    EXPECT_EQ(Session.Press(CheckButton::SectorsClosed), PressResult::Ran);
    EXPECT_TRUE(Ui.Messages.empty());
    ASSERT_GT(Session.ErrorList.size(), ErrorListHeader().size());
    EXPECT_EQ(Session.ErrorList[0].Text, "** Change Error Check Options to ignore some errors  **");
    EXPECT_EQ(Session.ErrorList[3].Text, "");
    EXPECT_GT(Session.ErrorCount(), 0);
    EXPECT_EQ(Session.Reports.back(), ".. Errors Found ..");

    // A fresh run starts the list afresh.
    ++Level.ChangeCount;
    const std::size_t size = Session.ErrorList.size();
    (void)Session.Press(CheckButton::SectorsClosed);
    EXPECT_EQ(Session.ErrorList.size(), size);
}

TEST_F(CheckSessionTest, CancelOnAPromptStopsTheGroupAndShowsTheObject)
{
    OpenTheEastRoom();
    std::vector<int> shownKinds;
    Session.ShowObject = [&](int kind, std::uint32_t) { shownKinds.push_back(kind); };
    Ui.Answer(0);
    EXPECT_EQ(Session.Press(CheckButton::GroupAll), PressResult::Stopped);
    EXPECT_EQ(Ui.Messages.size(), 1U);
    EXPECT_EQ(shownKinds.size(), 1U);
}

TEST_F(CheckSessionTest, EscapeStopsTheGroupAndKeepsWhatWasRepaired)
{
    Session.ErrorLogEnabled = true;
    Ui.EscapeFromPoll(1);
    EXPECT_EQ(Session.Press(CheckButton::GroupAll), PressResult::Stopped);
    EXPECT_EQ(Session.Reports.front(), "Beginning Check . . .");
}

} // namespace
} // namespace kelvar::check
