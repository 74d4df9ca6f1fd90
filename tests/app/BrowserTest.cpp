// The browsers' window logic without a window: geometry, keys, jumps, clicks, the cells on
// screen, the labels and the opening through the Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Browser.h"
#include "app/BrowserLists.h"
#include "gfx/GamePalette.h"
#include "platform/test/RecordingUi.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

BrowserItem Named(std::string name, int number = -1)
{
    BrowserItem item;
    item.Name = std::move(name);
    item.Number = number;
    return item;
}

std::vector<BrowserItem> Items(const std::vector<std::string>& names)
{
    std::vector<BrowserItem> items;
    for (const std::string& name : names)
    {
        items.push_back(Named(name));
    }
    return items;
}

std::vector<BrowserItem> Numbered(int count)
{
    std::vector<BrowserItem> items;
    for (int i = 0; i < count; ++i)
    {
        items.push_back(Named("N" + std::to_string(1000 + i)));
    }
    return items;
}

// A browser of `count` names on a grid of 10 columns by 3 rows of 48-pixel cells.
BrowserState TenByThree(int count, int variant = BrowseFlats)
{
    BrowserState state;
    state.Magnification = 0;
    state.GridWidth = 10 * (48 + BrowserCellGap);
    state.GridHeight = 3 * (48 + BrowserLabelHeight + BrowserCellGap) + 20;
    StartBrowser(state, variant, Numbered(count), {});
    return state;
}

TEST(BrowserGeometry, CellSizesFollowTheMagnificationAndTheVariant)
{
    BrowserState state;
    state.GridWidth = 640;
    state.GridHeight = 480;
    for (const auto& [magnification, side] : {std::pair{0, 48}, {1, 64}, {3, 128}})
    {
        state.Magnification = magnification;
        UpdateCellGeometry(state);
        EXPECT_EQ(state.CellWidth, side);
        EXPECT_EQ(state.CellHeight, side);
        EXPECT_EQ(state.StepY, side + BrowserLabelHeight + BrowserCellGap);
    }
    state.ShowNames = false;
    UpdateCellGeometry(state);
    EXPECT_EQ(state.StepY, 128 + BrowserCellGap);

    state.Variant = BrowseLevels;
    state.Magnification = 2;
    UpdateCellGeometry(state);
    EXPECT_EQ(state.CellWidth, 156);
    EXPECT_EQ(state.CellHeight, 136);
    EXPECT_EQ(state.StepY, 136 + BrowserLabelHeight + BrowserCellGap); // levels keep their names

    // The largest step is the last at which one cell still fits: 14 * 32 + 18 <= 480 for
    // pictures, 6 * 68 + 18 <= 480 for levels, whose smallest step is 1.
    EXPECT_EQ(MaxMagnification(state), 6);
    EXPECT_EQ(MinMagnification(BrowseLevels), 1);
    state.Variant = BrowseTextures;
    state.ShowNames = true;
    EXPECT_EQ(MaxMagnification(state), 13);
    state.GridHeight = 10; // not even the smallest cell fits
    EXPECT_EQ(MaxMagnification(state), 0);
}

TEST(BrowserKeys, MagnificationStopsAtItsLimitsAndAChangeFramesTheFirstCell)
{
    BrowserState state = TenByThree(100);
    BrowserSelect(state, 57);
    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Character, '-'), BrowserAction::None);
    EXPECT_EQ(state.Magnification, 0);
    EXPECT_EQ(state.Current, 57);

    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Character, '='), BrowserAction::Redraw);
    EXPECT_EQ(state.Magnification, 1);
    EXPECT_EQ(state.CellWidth, 64);
    EXPECT_EQ(state.Current, 0);
    EXPECT_EQ(state.FirstShown, 0);

    const int top = MaxMagnification(state);
    while (BrowserKey(state, BrowserKeyCode::Character, '+') != BrowserAction::None)
    {
    }
    EXPECT_EQ(state.Magnification, top);
    BrowserSelect(state, 3);
    const BrowserState before = state;
    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Character, '+'), BrowserAction::None);
    EXPECT_EQ(state.Magnification, before.Magnification);
    EXPECT_EQ(state.Current, 3);
    EXPECT_EQ(state.FirstShown, before.FirstShown);

    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Character, '_'), BrowserAction::Redraw);
    EXPECT_EQ(state.Magnification, top - 1);
}

TEST(BrowserKeys, ArrowsPagesHomeAndEndMoveTheFrameAndKeepItOnScreen)
{
    BrowserState state = TenByThree(100);
    ASSERT_EQ(BrowserColumns(state), 10);
    ASSERT_EQ(BrowserRows(state), 3);

    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Left), BrowserAction::Redraw);
    EXPECT_EQ(state.Current, 0); // held to the list
    BrowserKey(state, BrowserKeyCode::Right);
    BrowserKey(state, BrowserKeyCode::Down);
    EXPECT_EQ(state.Current, 11);
    BrowserKey(state, BrowserKeyCode::Down);
    BrowserKey(state, BrowserKeyCode::Down);
    EXPECT_EQ(state.Current, 31);
    EXPECT_EQ(state.FirstShown, 10); // the fourth row needs the grid one row down

    BrowserKey(state, BrowserKeyCode::End);
    EXPECT_EQ(state.Current, 99);
    EXPECT_EQ(state.FirstShown, 70); // the last row at the bottom
    BrowserKey(state, BrowserKeyCode::PageUp);
    EXPECT_EQ(state.Current, 69);
    EXPECT_EQ(state.FirstShown, 40);
    BrowserKey(state, BrowserKeyCode::PageDown);
    BrowserKey(state, BrowserKeyCode::PageDown);
    EXPECT_EQ(state.Current, 99);
    EXPECT_EQ(state.FirstShown, 70);
    BrowserKey(state, BrowserKeyCode::Up);
    EXPECT_EQ(state.Current, 89);
    BrowserKey(state, BrowserKeyCode::Home);
    EXPECT_EQ(state.Current, 0);
    EXPECT_EQ(state.FirstShown, 0);

    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Enter), BrowserAction::Choose);
    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Escape), BrowserAction::Close);
    EXPECT_EQ(BrowserChosenName(state), "N1000");
}

TEST(BrowserKeys, APrintableKeyJumpsToTheFirstNameBeginningWithIt)
{
    BrowserState state = TenByThree(0);
    ReplaceBrowserList(state, Items({"AASHITTY", "BIGDOOR1", "BRICK1", "COMPSTA1", "SKY1",
                                     "SLADWALL", "STARTAN3", "SW1BRN1", "TEKWALL1"}));
    EXPECT_EQ(BrowserKey(state, BrowserKeyCode::Character, 's'), BrowserAction::Redraw);
    EXPECT_EQ(BrowserChosenName(state), "SKY1");
    BrowserFind(state, "ST");
    EXPECT_EQ(BrowserChosenName(state), "STARTAN3");

    // No name begins with Q: the first cell is framed and shown.
    BrowserKey(state, BrowserKeyCode::Character, 'Q');
    EXPECT_EQ(state.Current, 0);
    EXPECT_EQ(state.FirstShown, 0);

    // The sprite list is in directory order: the walk stops at the first name at or above.
    state.Variant = BrowseSprites;
    ReplaceBrowserList(state, Items({"BAR1A0", "TROOA1", "POSSA1", "SARGA1"}));
    BrowserKey(state, BrowserKeyCode::Character, 'q');
    EXPECT_EQ(BrowserChosenName(state), "TROOA1");
    BrowserKey(state, BrowserKeyCode::Character, 'U');
    EXPECT_EQ(state.Current, 0);
    state.Variant = BrowsePatches;
    BrowserKey(state, BrowserKeyCode::Character, 'q');
    EXPECT_EQ(state.Current, 0);
    BrowserKey(state, BrowserKeyCode::Character, 'S');
    EXPECT_EQ(BrowserChosenName(state), "SARGA1");
}

TEST(BrowserKeys, AJumpFarDownTheListHeadsTheGridWithTheName)
{
    BrowserState state = TenByThree(100);
    BrowserFind(state, "N1045");
    EXPECT_EQ(state.Current, 45);
    EXPECT_EQ(state.FirstShown, 40);
    BrowserFind(state, "N1095"); // the grid can't go past the last row
    EXPECT_EQ(state.FirstShown, 70);
}

TEST(BrowserCells, OnlyTheCellsOnScreenAreVisited)
{
    BrowserState state = TenByThree(100);
    BrowserWheel(state, 2);
    const std::vector<BrowserCell> cells = VisibleCells(state);
    ASSERT_EQ(cells.size(), 30u);
    EXPECT_EQ(cells.front(), (BrowserCell{20, 0, 0}));
    EXPECT_EQ(cells[11], (BrowserCell{31, state.StepX, state.StepY}));
    EXPECT_EQ(cells.back().Index, 49);
    EXPECT_LE(cells.back().Y + state.StepY - BrowserCellGap, state.GridHeight);

    // The wheel stops where the last row stands at the bottom, and at the top.
    EXPECT_EQ(BrowserWheel(state, 50), BrowserAction::Redraw);
    EXPECT_EQ(state.FirstShown, 70);
    EXPECT_EQ(BrowserWheel(state, 1), BrowserAction::None);
    BrowserWheel(state, -50);
    EXPECT_EQ(state.FirstShown, 0);
}

TEST(BrowserCells, AListShorterThanAWindowShowsOnlyItsCells)
{
    BrowserState state = TenByThree(5);
    const std::vector<BrowserCell> cells = VisibleCells(state);
    ASSERT_EQ(cells.size(), 5u);
    EXPECT_EQ(cells.back(), (BrowserCell{4, 4 * state.StepX, 0}));
    EXPECT_EQ(BrowserWheel(state, 3), BrowserAction::None);
    BrowserKey(state, BrowserKeyCode::PageDown);
    EXPECT_EQ(state.Current, 4);
    EXPECT_EQ(state.FirstShown, 0);
    EXPECT_EQ(BrowserCellAt(state, 6 * state.StepX + 2, 2), -1); // past the last name

    BrowserState empty = TenByThree(0);
    EXPECT_TRUE(VisibleCells(empty).empty());
    EXPECT_EQ(BrowserKey(empty, BrowserKeyCode::Down), BrowserAction::None);
    EXPECT_EQ(BrowserKey(empty, BrowserKeyCode::Enter), BrowserAction::Close);
    EXPECT_FALSE(BrowserChosenName(empty).has_value());
}

TEST(BrowserMouse, AClickFramesTheCellUnderThePointerAndADoubleClickChoosesIt)
{
    BrowserState state = TenByThree(100);
    BrowserWheel(state, 1);
    EXPECT_EQ(BrowserClick(state, 2 * state.StepX + 5, state.StepY + 5, false),
              BrowserAction::Redraw);
    EXPECT_EQ(state.Current, 22);
    EXPECT_EQ(BrowserClick(state, 10 * state.StepX + 1, 5, false), BrowserAction::None);
    EXPECT_EQ(BrowserClick(state, 5, 3 * state.StepY + 1, true), BrowserAction::None);
    EXPECT_EQ(state.Current, 22);
    EXPECT_EQ(BrowserClick(state, 5, 5, true), BrowserAction::Choose);
    EXPECT_EQ(BrowserChosenName(state), "N1010");
}

TEST(BrowserStart, TheStartNameIsFramedAndAResizeKeepsItOnScreen)
{
    BrowserState state = TenByThree(0);
    state.Magnification = 0;
    StartBrowser(state, BrowseTextures, Numbered(100), "n1077");
    EXPECT_EQ(state.Current, 77);
    EXPECT_EQ(state.FirstShown, 50); // its row at the bottom

    SetBrowserGridSize(state, 5 * (48 + BrowserCellGap), 2 * (48 + 24));
    EXPECT_EQ(BrowserColumns(state), 5);
    EXPECT_EQ(BrowserRows(state), 2);
    EXPECT_EQ(state.FirstShown, 70);
    ReplaceBrowserList(state, Numbered(90)); // the framed name is in the new list too
    EXPECT_EQ(state.Current, 77);

    // Levels can't be shown at magnification 0.
    StartBrowser(state, BrowseLevels, Items({"MAP01"}), {});
    EXPECT_EQ(state.Magnification, 1);
}

TEST(BrowserLabels, EachVariantWordsItsLabel)
{
    BrowserState state = TenByThree(0);
    const PictureFacts none;
    PictureFacts facts;
    facts.Drawn = true;
    facts.Width = 64;
    facts.Height = 128;
    facts.Left = 19;
    facts.Top = -52;

    StartBrowser(state, BrowseLevels, Items({"MAP01"}), {});
    EXPECT_EQ(BrowserLabel(state, 0, facts), "MAP01       ");
    StartBrowser(state, BrowseFlats, Items({"FLOOR0_1"}), {});
    EXPECT_EQ(BrowserLabel(state, 0, facts), " FLOOR0_1 64x128");
    EXPECT_EQ(BrowserLabel(state, 0, none), "FLOOR0_1    ");
    StartBrowser(state, BrowseSprites, Items({"TROOA1"}), {});
    EXPECT_EQ(BrowserLabel(state, 0, facts), " TROOA1 64x128 (x=19 y=-52)");

    StartBrowser(state, BrowseTextures, Items({"BIGDOOR1"}), {});
    facts.PatchCount = 3;
    EXPECT_EQ(BrowserLabel(state, 0, facts), " BIGDOOR1 64x128 3 patches");
    facts.PatchCount = -1;
    facts.KindName = "PNG";
    EXPECT_EQ(BrowserLabel(state, 0, facts), " BIGDOOR1 64x128 PNG");
    EXPECT_EQ(BrowserLabel(state, 1, facts), "");

    StartBrowser(state, BrowseThings, {Named("Former Human Trooper", 3004)}, {});
    EXPECT_EQ(BrowserLabel(state, 0, none), " Former Human Trooper [3004]");
    state.CellWidth = 160;
    EXPECT_EQ(BrowserLabel(state, 0, none), "Former Human Trooper 3004");
    state.CellWidth = 288;
    EXPECT_EQ(BrowserLabel(state, 0, none), "Former Human Trooper" + std::string(21, ' ') + "3004");
}

TEST(OpenBrowser, TheUiGetsTheNamesAndTheFramedOneAndTheListGoesAfterwards)
{
    platform::RecordingUi ui;
    platform::ScopedUi scoped(ui);
    ResetBrowser();
    wad::ResetWad();
    gfx::Palettes().Loaded = true; // no game file to take a palette from
    wad::Wad().Levels = {{wad::LumpName::From("MAP01"), 0, 0},
                         {wad::LumpName::From("MAP02"), 0, 0}};
    ui.AnswerBrowse("MAP02").AnswerBrowse(std::nullopt);
    EXPECT_EQ(OpenBrowser(BrowseLevels, "map02"), "MAP02");
    ASSERT_EQ(ui.BrowseRequests.size(), 1u);
    const platform::BrowseRequest& request = ui.BrowseRequests.front();
    EXPECT_EQ(request.Caption, "Levels");
    EXPECT_EQ(request.Variant, BrowseLevels);
    EXPECT_EQ(request.Names, (std::vector<std::string>{"MAP01", "MAP02"}));
    EXPECT_EQ(request.Current, 1);
    EXPECT_TRUE(Browser().List.empty());
    EXPECT_FALSE(OpenBrowser(BrowseLevels, {}).has_value());
    wad::ResetWad();
    gfx::ResetPalettes();
}

TEST(OpenBrowser, TheListFormOfTheUiOffersTheNames)
{
    platform::RecordingUi ui;
    ui.AnswerList(1).AnswerList(7);
    platform::Ui& plain = ui;
    const platform::BrowseRequest request{"Flats", BrowseFlats, {"FLAT1", "FLAT2"}, 0};
    EXPECT_EQ(plain.platform::Ui::Browse(request), "FLAT2");
    EXPECT_EQ(ui.ListCaptions.back(), "Flats");
    EXPECT_FALSE(plain.platform::Ui::Browse(request).has_value());
}

} // namespace
} // namespace kelvar::app
