// The browser window on Freedoom 2: keys move the frame, Enter picks the framed texture, only
// the cells on screen are read, and a bad lump shows its sign without closing the window.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/BrowserWindow.h"
#include "app/BrowserLists.h"

#include "game/GameState.h"
#include "gfx/GamePalette.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "tests/app/BrowserFixture.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

class BrowserWindowTest : public FreedoomBrowserFixture
{
protected:
    // Opens the browser's list as OpenBrowser does, and the window on it, shown.
    std::unique_ptr<BrowserWindow> Show(int variant, const std::string& start)
    {
        EnsureBrowserCatalogues();
        BrowserState& state = Browser();
        StartBrowser(state, variant, BuildBrowserList(variant, state.ExternalOnly), start);
        platform::BrowseRequest request{BrowserCaption(variant), variant, {}, state.Current};
        for (const BrowserItem& item : state.List)
        {
            request.Names.push_back(item.Name);
        }
        auto window = std::make_unique<BrowserWindow>(request);
        window->resize(900, 640);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
        QApplication::processEvents();
        return window;
    }
};

TEST_F(BrowserWindowTest, KeysMoveTheFrameAndEnterPicksTheFramedTexture)
{
    std::unique_ptr<BrowserWindow> window = Show(BrowseTextures, "-");
    BrowserGrid* grid = window->Grid();
    const BrowserState& state = Browser();
    const int columns = BrowserColumns(state);
    ASSERT_GT(columns, 2);
    EXPECT_LE(grid->PicturesRead(), VisibleCells(state).size() + 1)
        << "only the cells on screen are read";

    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Right);
    QTest::keyClick(grid, Qt::Key_Down);
    const std::string expected = state.List[static_cast<std::size_t>(2 + columns)].Name;
    EXPECT_EQ(state.Current, 2 + columns);
    EXPECT_EQ(window->findChild<QLabel*>("current")->text().split(' ', Qt::SkipEmptyParts).first(),
              QString::fromStdString(expected));

    const QImage shot = grid->grab().toImage();
    EXPECT_TRUE(shot.save(KELVAR_SCREENSHOT_DIR "/browser-textures.png"));
    // The third cell of the second row shows a texture: not all of its pixels are background.
    const QColor background = shot.pixelColor(shot.width() - 1, shot.height() - 1);
    int painted = 0;
    for (int y = state.StepY + 8; y < state.StepY + 40; ++y)
    {
        for (int x = 2 * state.StepX + 8; x < 2 * state.StepX + 40; ++x)
        {
            painted += shot.pixelColor(x, y) != background ? 1 : 0;
        }
    }
    EXPECT_GT(painted, 500);

    QTest::keyClick(grid, Qt::Key_Return);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(window->Picked(), expected);
}

TEST_F(BrowserWindowTest, TheToolBarAndTheSearchFieldMoveTheFrameAndEscPicksNothing)
{
    std::unique_ptr<BrowserWindow> window = Show(BrowseFlats, {});
    QTest::mouseClick(window->findChild<QPushButton*>("Botm"), Qt::LeftButton);
    EXPECT_EQ(Browser().Current, static_cast<int>(Browser().List.size()) - 1);
    const int magnification = Browser().Magnification;
    QTest::mouseClick(window->findChild<QPushButton*>("+"), Qt::LeftButton);
    EXPECT_EQ(Browser().Magnification, magnification + 1);
    EXPECT_EQ(Browser().Current, 0);

    QTest::keyClicks(window->findChild<QLineEdit*>("search"), "FLOOR4");
    EXPECT_EQ(BrowserChosenName(Browser()).value_or("").substr(0, 6), "FLOOR4");
    QTest::keyClick(window->Grid(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(window->Picked().has_value());
}

TEST_F(BrowserWindowTest, ABadLumpShowsItsSignAndTheWindowStaysOpen)
{
    const std::string pwad = testkit::WadBuilder()
                                 .Marker("PP_START")
                                 .Lump("JUNK", std::string(40, '\xff'))
                                 .Marker("PP_END")
                                 .Write(Dir.Path() / "junk.wad");
    ASSERT_EQ(OpenPwad(pwad), 1);
    Browser().ExternalOnly = true;
    std::unique_ptr<BrowserWindow> window = Show(BrowsePatches, {});
    ASSERT_EQ(Browser().List.size(), 1u);
    const QImage shot = window->Grid()->grab().toImage();
    const QColor middle = shot.pixelColor(3 + Browser().CellWidth / 2, 3 + 4);
    EXPECT_EQ(middle, QColor(Qt::red));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(Ui.Messages.empty());
}

} // namespace
} // namespace kelvar::app
