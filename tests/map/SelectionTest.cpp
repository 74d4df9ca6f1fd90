// Tests of the selection: clicks, boxes, mode translation, walking, tags, the guard, bookmarks.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/Selection.h"
#include "map/MapState.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "view/Navigation.h"

#include <gtest/gtest.h>

namespace kelvar::map
{
namespace
{

using testkit::LevelBuilder;
using Objects = std::vector<std::int32_t>;

class SelectionTest : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
    void TearDown() override { ResetMap(); }

    Objects Marked() const { return Selected().Selection.Objects(); }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

// Two rooms sharing the wall x = 128 (LineDef 4), the east room also bordered by 3, 5, 6.
TEST_F(SelectionTest, ClicksReplaceAddOrRemove)
{
    SelectionState& state = Selected();
    state.HighlightedObject = 3;
    ToggleHighlighted(false);
    state.HighlightedObject = 5;
    ToggleHighlighted(false);
    EXPECT_EQ(Marked(), (Objects{5})) << "without Additive Select or Ctrl a click replaces";
    state.HighlightedObject = 7;
    ToggleHighlighted(true);
    EXPECT_EQ(Marked(), (Objects{7, 5}));
    state.HighlightedObject = 5;
    ToggleHighlighted(false);
    EXPECT_EQ(Marked(), (Objects{7}))
        << "a click on a marked object unmarks it, whatever the options";
    state.HighlightedObject = -1;
    ToggleHighlighted(true);
    EXPECT_EQ(Ui.Beeps, 1);
    EXPECT_EQ(Map().SelectedCount, 1);
}

TEST_F(SelectionTest, BoxesSelectWholeLinesAndTheSectorsOfAnyLineInside)
{
    const LevelData level = testkit::TwoRooms();
    ObjectList lines = SelectInBox(level, ModeLineDefs, 127, -1, 300, 200);
    EXPECT_EQ(lines.Objects(), (Objects{6, 5, 4, 3})) << "ascending, so the highest is the head";
    EXPECT_TRUE(SelectInBox(level, ModeLineDefs, 129, -1, 300, 200).Objects() == (Objects{5}))
        << "a LineDef with one end outside isn't selected";
    ObjectList sectors = SelectInBox(level, ModeSectors, 250, -10, 260, 200);
    EXPECT_EQ(sectors.Objects(), (Objects{1})) << "one LineDef inside is enough";
    ObjectList shared = SelectInBox(level, ModeSectors, 127, -1, 129, 129);
    EXPECT_EQ(shared.Objects(), (Objects{1, 0}));
    ObjectList vertexes = SelectInBox(level, ModeVertexes, 128, 128, 0, 0);
    EXPECT_EQ(vertexes.Objects(), (Objects{3, 2, 1, 0})) << "edges count as inside";

    Selected().HighlightedObject = 2;
    ObjectListPush(Selected().Selection, 0);
    FinishBoxSelection(level, ModeLineDefs, 1000, 1000, 1100, 1100, false);
    EXPECT_TRUE(Marked().empty());
    EXPECT_EQ(Selected().HighlightedObject, -1);
    ObjectListPush(Selected().Selection, 0);
    FinishBoxSelection(level, ModeLineDefs, 127, -1, 300, 200, true);
    EXPECT_EQ(Marked(), (Objects{0, 6, 5, 4, 3})) << "the old marks on top of the new";
    EXPECT_EQ(Selected().HighlightedObject, 0);
}

TEST_F(SelectionTest, ModeChangesTranslateTheSelection)
{
    const LevelData level = testkit::TwoRooms();
    for (const std::int32_t line : {3, 4, 5, 6})
    {
        ObjectListPush(Selected().Selection, line);
    }
    TranslateSelection(level, ModeLineDefs, ModeSectors);
    EXPECT_EQ(Marked(), (Objects{1})) << "the west room has unselected walls";
    TranslateSelection(level, ModeSectors, ModeLineDefs);
    EXPECT_EQ(Marked(), (Objects{6, 5, 4, 3}));
    TranslateSelection(level, ModeLineDefs, ModeVertexes);
    EXPECT_EQ(Marked(), (Objects{5, 4, 3, 2}));

    ClearSelection();
    ObjectListPush(Selected().Selection, 2);
    TranslateSelection(level, ModeVertexes, ModeLineDefs);
    EXPECT_TRUE(Marked().empty()) << "one Vertex makes no LineDef";
    ObjectListPush(Selected().Selection, 1);
    TranslateSelection(level, ModeLineDefs, ModeThings);
    EXPECT_TRUE(Marked().empty()) << "a pair the table doesn't list empties the selection";
}

TEST_F(SelectionTest, TheHighlightOfAModeComesBackWithIt)
{
    const LevelData level = testkit::TwoRooms();
    Selected().HighlightedObject = 4;
    TranslateSelection(level, ModeLineDefs, ModeSectors);
    Selected().HighlightedObject = 1;
    TranslateSelection(level, ModeSectors, ModeLineDefs);
    EXPECT_EQ(Selected().HighlightedObject, 4);
    EXPECT_EQ(Selected().PreviousMode, ModeSectors);
}

TEST_F(SelectionTest, NextAndPreviousWrap)
{
    const LevelData level = testkit::TwoRooms();
    Selected().HighlightedObject = 6;
    EXPECT_EQ(NextObject(level, ModeLineDefs), 0);
    EXPECT_EQ(PreviousObject(level, ModeLineDefs), 6);
    Selected().HighlightedObject = -1;
    EXPECT_EQ(PreviousObject(level, ModeLineDefs), 6);
    EXPECT_EQ(NextObject(LevelData{}, ModeThings), -1) << "no Things";
}

TEST_F(SelectionTest, TheGuardCountsAndComplains)
{
    ObjectList list;
    ObjectListPush(list, 4);
    ObjectListPush(list, 9);
    int count = 0;
    int first = 0;
    int last = 0;
    EXPECT_TRUE(CountOrComplain(KindLineDef, false, 2, count, list, first, last));
    EXPECT_EQ(first, 9);
    EXPECT_EQ(last, 4);
    EXPECT_FALSE(CountOrComplain(KindLineDef, false, 3, count, list, first, last));
    EXPECT_EQ(Ui.Last().Title, "Select");
    EXPECT_EQ(Ui.Last().Text(), "Select at least 3 LineDefs");
    EXPECT_FALSE(CountOrComplain(KindVertex, true, 1, count, list, first, last));
    EXPECT_EQ(Ui.Last().Text(), "Select exactly 1 Vertexs");
    EXPECT_EQ(list.Size(), 2) << "the selection stays as it was";
}

TEST_F(SelectionTest, SameThingsAndTagWalks)
{
    LevelData level = testkit::TwoRooms();
    level = LevelBuilder().Thing(0, 0, 3004).Thing(1, 1, 9).Thing(2, 2, 3004).Build();
    Selected().HighlightedObject = 2;
    MarkAllSameThings(level);
    EXPECT_EQ(Marked(), (Objects{2, 0}));

    LevelData rooms = testkit::TwoRooms();
    rooms.Sectors[1].Tag = 7;
    rooms.LineDefs[2].Tag = 7;
    rooms.LineDefs[5].Tag = 7;
    Selected().HighlightedObject = 2;
    TagJump jump = JumpToTags(rooms, ModeLineDefs);
    EXPECT_EQ(jump.Mode, ModeSectors);
    EXPECT_EQ(jump.Object, 1);
    jump = JumpToTags(rooms, ModeSectors);
    EXPECT_EQ(jump.Mode, ModeLineDefs);
    EXPECT_EQ(jump.Object, 2) << "the LineDefs of tag 7 from the start";
    jump = JumpToTags(rooms, ModeLineDefs);
    EXPECT_EQ(jump.Object, 1) << "past the last Sector of the tag the walk wraps to it again";
    // One stored index serves both directions, so the walk settles between the two.
    jump = JumpToTags(rooms, ModeSectors);
    EXPECT_EQ(jump.Object, 2);
    Selected().HighlightedObject = 5; // a LineDef of the tag picked by hand
    jump = JumpToTags(rooms, ModeLineDefs);
    EXPECT_EQ(jump.Mode, ModeSectors);
    Selected().HighlightedObject = 0; // tag 0: nothing to follow
    ClearSelection();
    EXPECT_EQ(JumpToTags(rooms, ModeLineDefs).Mode, 0);
}

TEST_F(SelectionTest, BookmarksBelongToTheirLevel)
{
    LevelData level = testkit::TwoRooms();
    view::MapViewport viewport;
    viewport.Scale = 2.0f;
    view::CenterOn(viewport, 64, 64);
    view::SetBookmark(3, 1, 2, ModeLineDefs, 4, 10, 20, viewport);
    EXPECT_TRUE(view::BookmarkEnabled(3, 1, 2));
    EXPECT_FALSE(view::BookmarkEnabled(3, 1, 5)) << "another level";
    EXPECT_FALSE(view::BookmarkEnabled(4, 1, 2)) << "an unused slot";
    view::CenterOn(viewport, 0, 0);
    viewport.Scale = 0.5f;
    EXPECT_EQ(view::GotoBookmark(level, viewport, 3), ModeLineDefs);
    EXPECT_FLOAT_EQ(viewport.Scale, 2.0f);
    EXPECT_DOUBLE_EQ(viewport.OriginX, 64.0);
    EXPECT_EQ(Selected().HighlightedObject, 4);
    level.LineDefs.resize(2); // the object is gone
    EXPECT_EQ(view::GotoBookmark(level, viewport, 3), 0);
    EXPECT_EQ(Ui.Beeps, 1);
}

TEST_F(SelectionTest, GotoFindsAPointInsideTheSector)
{
    // A ring: the outer Sector 0 around an inner Sector 1, whose centre is the ring's centre.
    LevelBuilder builder;
    builder.Room(0, 0, 300, 300).Room(100, 100, 100, 100);
    LevelData level = builder.Build();
    for (int side = 4; side < 8; ++side)
    {
        level.LineDefs[static_cast<std::size_t>(side)].SideDef2 = 0; // the inner walls face out too
    }
    view::MapViewport viewport;
    view::SetWindowSize(viewport, 800, 600);
    const view::MapPoint centre = view::ObjectCenter(level, KindSector, 0);
    EXPECT_DOUBLE_EQ(centre.X, 150.0);
    view::GotoObject(level, viewport, KindSector, 0, false);
    EXPECT_FALSE(viewport.OriginX > 100 && viewport.OriginX < 200 && viewport.OriginY > 100 &&
                 viewport.OriginY < 200)
        << "not the hole in the middle: " << viewport.OriginX << "," << viewport.OriginY;
    view::GotoObject(level, viewport, KindLineDef, 1, false);
    EXPECT_DOUBLE_EQ(viewport.OriginX, 150.0);
    EXPECT_DOUBLE_EQ(viewport.OriginY, 300.0);
}

} // namespace
} // namespace kelvar::map
