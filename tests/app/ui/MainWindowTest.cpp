// Tests of the editor's window on Freedoom 2: start-up to MAP01, modes, picking, the rubber
// band, zoom, the level list, the info pane and the exit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/ui/MainWindowFixture.h"

#include "app/StatusFiles.h"
#include "platform/test/RecordingProcesses.h"
#include "run/RunState.h"
#include "wad/WadState.h"

namespace kelvar::app
{
namespace
{

TEST_F(MainWindowTest, StartsOnFreedoomMap01DrawnInTheWindow)
{
    EXPECT_EQ(Window->windowTitle(), "Kelvar v13.0.5");
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP01");
    EXPECT_EQ(Session().AppState, AppEditing);

    Map()->repaint();
    const QImage& picture = static_cast<MapWidget*>(Map())->Picture();
    ASSERT_EQ(picture.size(), Map()->size());
    const QRgb background = picture.pixel(0, 0);
    int drawn = 0;
    for (int y = 0; y < picture.height(); y += 2)
    {
        for (int x = 0; x < picture.width(); x += 2)
        {
            drawn += picture.pixel(x, y) != background ? 1 : 0;
        }
    }
    EXPECT_GT(drawn, 2000);

    const std::vector<QString> fields = Window->StatusTexts();
    ASSERT_GE(fields.size(), 6U);
    EXPECT_EQ(fields[0].toStdString(), "Sectors"); // the built-in mode
    EXPECT_TRUE(fields[4].startsWith("Grid "));
    Window->grab().save(KELVAR_SCREENSHOT_DIR "/main-window.png");
}

TEST_F(MainWindowTest, ClickingALineSelectsItAndShowsItInTheInfoPane)
{
    UseLineDefMode();
    const int line = VisibleLine();
    ASSERT_GE(line, 0);
    Click(LineMiddle(line));
    EXPECT_EQ(SelectedObjects(), std::vector<int>{line});
    EXPECT_TRUE(Window->InfoPaneText().startsWith(QString("L%1").arg(line)))
        << Window->InfoPaneText().toStdString();

    Click(LineMiddle(line)); // a second click unmarks it
    EXPECT_TRUE(SelectedObjects().empty());
}

TEST_F(MainWindowTest, ModeKeysCarryTheSelectionAcross)
{
    UseLineDefMode();
    const int line = VisibleLine();
    ASSERT_GE(line, 0);
    Click(LineMiddle(line));
    const map::LineDef& lineDef = map::Map().Level.LineDefs[static_cast<std::size_t>(line)];

    QTest::keyClick(Map(), Qt::Key_V);
    EXPECT_EQ(EditMode(), ModeVertexes);
    std::vector<int> ends = {static_cast<int>(lineDef.StartVertex),
                             static_cast<int>(lineDef.EndVertex)};
    std::sort(ends.begin(), ends.end());
    EXPECT_EQ(SelectedObjects(), ends);
    EXPECT_EQ(Window->StatusTexts()[0].toStdString(), "Vertexes");

    QTest::keyClick(Map(), Qt::Key_L);
    EXPECT_EQ(EditMode(), ModeLineDefs);
    EXPECT_EQ(SelectedObjects(), std::vector<int>{line});

    QTest::keyClick(Map(), Qt::Key_T);
    EXPECT_EQ(EditMode(), ModeThings);
    EXPECT_TRUE(SelectedObjects().empty());

    QTest::keyClick(Map(), Qt::Key_S);
    EXPECT_EQ(EditMode(), ModeSectors);
    EXPECT_EQ(Window->StatusTexts()[0].toStdString(), "Sectors");
}

TEST_F(MainWindowTest, RubberBandSelectsWhatItHolds)
{
    UseLineDefMode();
    const QPoint from(Map()->width() / 3, Map()->height() / 3);
    const QPoint to(Map()->width() * 2 / 3, Map()->height() * 2 / 3);
    const view::MapViewport& viewport = view::View().Viewport;
    const map::ObjectList expected = map::SelectInBox(
        map::Map().Level, ModeLineDefs, view::ScreenToMapXExact(viewport, from.x()),
        view::ScreenToMapYExact(viewport, from.y()), view::ScreenToMapXExact(viewport, to.x()),
        view::ScreenToMapYExact(viewport, to.y()));
    ASSERT_GT(expected.Size(), 0);

    QTest::mouseMove(Map(), from);
    QTest::mousePress(Map(), Qt::LeftButton, Qt::NoModifier, from);
    QTest::mouseMove(Map(), from + QPoint(20, 20));
    QTest::mouseMove(Map(), to);
    QTest::mouseRelease(Map(), Qt::LeftButton, Qt::NoModifier, to);

    std::vector<int> wanted = expected.Objects();
    std::sort(wanted.begin(), wanted.end());
    EXPECT_EQ(SelectedObjects(), wanted);
}

TEST_F(MainWindowTest, EndFitsAndPlusMinusZoomAboutThePointer)
{
    QTest::keyClick(Map(), Qt::Key_End);
    view::MapViewport fitted = view::View().Viewport;
    view::BestFit(fitted, map::Map().Level);
    EXPECT_EQ(view::View().Viewport.Scale, fitted.Scale);
    EXPECT_EQ(view::View().Viewport.OriginX, fitted.OriginX);

    const QPoint pointer(Map()->width() / 4, Map()->height() / 4);
    QTest::mouseMove(Map(), pointer);
    const view::MapViewport& viewport = view::View().Viewport;
    const double mapX = view::ScreenToMapXExact(viewport, pointer.x());
    const double mapY = view::ScreenToMapYExact(viewport, pointer.y());
    const float before = viewport.Scale;

    QTest::keyClick(Map(), Qt::Key_Minus);
    EXPECT_LT(viewport.Scale, before);
    EXPECT_NEAR(view::ScreenToMapXExact(viewport, pointer.x()), mapX, 1.0);
    EXPECT_NEAR(view::ScreenToMapYExact(viewport, pointer.y()), mapY, 1.0);

    QTest::keyClick(Map(), Qt::Key_Plus);
    EXPECT_NEAR(viewport.Scale, before, 0.01);
    EXPECT_EQ(Window->StatusTexts()[3], QString::asprintf("Scale %.2f", double(viewport.Scale)));
}

TEST_F(MainWindowTest, ShiftF2ListsTheLevelsAndOpensMap02)
{
    const int map01Lines = map::Map().Level.LineDefs.Count();
    Ui.AnswerList(1);
    QTest::keyClick(Map(), Qt::Key_F2, Qt::ShiftModifier);
    EXPECT_EQ(GetText(Shell().Project.LevelName), "MAP02");
    EXPECT_NE(map::Map().Level.LineDefs.Count(), map01Lines);
    EXPECT_TRUE(Session().LevelLoaded);
}

TEST_F(MainWindowTest, F2SavesTheIwadsLevelIntoItsOwnPwadAndGoesOnFromThere)
{
    const std::string pwad = (Dir.Path() / "MAP01.wad").string();
    Ui.AnswerFile(pwad);
    QTest::keyClick(Map(), Qt::Key_F2);
    ASSERT_TRUE(std::filesystem::exists(pwad));
    EXPECT_EQ(wad::Wad().OpenFiles[0], pwad);
    const int file = wad::Wad().CurrentFile.FileNumber;
    ASSERT_GT(file, 0) << "the level now comes from the PWAD";
    EXPECT_EQ(wad::Wad().Files[static_cast<std::size_t>(file)].FileName, pwad);
    EXPECT_TRUE(Session().LevelLoaded);
    EXPECT_EQ(Window->StatusTexts()[11].toStdString(), "Change=NO");
}

TEST_F(MainWindowTest, ShiftF1StartsTheGameOnTheLevelAndReloadsItAfter)
{
    platform::RecordingProcesses processes;
    std::string info;
    run::Run().Test.Hooks.EditTestOptions = [&info](run::TestOptions&, const std::string& shown)
    {
        info = shown;
        return true;
    };
    QTest::keyClick(Map(), Qt::Key_F1, Qt::ShiftModifier);
    ASSERT_EQ(processes.Runs.size(), 1u);
    const std::string line = processes.Runs[0].CommandLine;
    EXPECT_NE(line.find("chocolate-doom"), std::string::npos) << line;
    EXPECT_NE(line.find(" -warp 1"), std::string::npos) << line;
    EXPECT_NE(line.find(" -iwad /usr/share/games/doom/freedoom2.wad"), std::string::npos) << line;
    EXPECT_EQ(line.find("-file"), std::string::npos) << "the level is the IWAD's own";
    EXPECT_NE(info.find("MAP01"), std::string::npos);
    EXPECT_TRUE(Session().LevelLoaded);
    EXPECT_EQ(Session().AppState, AppEditing);
}

TEST_F(MainWindowTest, TheMapStaysUnderThePointerWhileTheInfoPaneComesGoesAndChangesHeight)
{
    UseLineDefMode();
    // A line in the top half, so the pointer stays over the map whatever the pane's height.
    const map::LevelData& level = map::Map().Level;
    const view::MapViewport& viewport = view::View().Viewport;
    const QRect top(40, 40, Map()->width() - 80, Map()->height() / 2 - 40);
    int line = -1;
    for (int i = 0; i < level.LineDefs.Count() && line < 0; ++i)
    {
        const QPoint middle = LineMiddle(i);
        line = top.contains(middle) && view::FindNearPointer(level, viewport, ModeLineDefs, 10.0,
                                                             middle.x(), middle.y()) == i
                   ? i
                   : -1;
    }
    ASSERT_GE(line, 0);
    const QPoint pointer = LineMiddle(line);
    QTest::mouseMove(Map(), pointer);
    ASSERT_EQ(map::Selected().HighlightedObject, line);
    const double mapX = view::ScreenToMapXExact(viewport, pointer.x());
    const double mapY = view::ScreenToMapYExact(viewport, pointer.y());
    const auto expectSamePlace = [&](const char* step)
    {
        EXPECT_NEAR(view::ScreenToMapXExact(viewport, pointer.x()), mapX, 1e-6) << step;
        EXPECT_NEAR(view::ScreenToMapYExact(viewport, pointer.y()), mapY, 1e-6) << step;
        EXPECT_EQ(viewport.HeightPx, Map()->height()) << step;
        const int under =
            view::FindNearPointer(level, viewport, EditMode(), map::Map().Options.ObjectSelectRange,
                                  pointer.x(), pointer.y());
        EXPECT_EQ(map::Selected().HighlightedObject, under) << step;
    };

    const int withPane = Map()->height();
    QTest::keyClick(Map(), Qt::Key_I);
    Settle();
    EXPECT_FALSE(Window->InfoPaneVisible());
    ASSERT_GT(Map()->height(), withPane);
    expectSamePlace("pane hidden");
    EXPECT_EQ(LineMiddle(line), pointer);

    QTest::keyClick(Map(), Qt::Key_I);
    Settle();
    EXPECT_TRUE(Window->InfoPaneVisible());
    ASSERT_EQ(Map()->height(), withPane);
    expectSamePlace("pane shown");

    // The Vertex pane has fewer lines than the LineDef pane.
    QTest::keyClick(Map(), Qt::Key_V);
    Settle();
    ASSERT_NE(Map()->height(), withPane);
    expectSamePlace("Vertex mode");
}

TEST_F(MainWindowTest, ExitWithoutChangesClosesAndEndsTheSessionCleanly)
{
    QTest::keyClick(Map(), Qt::Key_F4, Qt::AltModifier);
    EXPECT_FALSE(Window->isVisible());
    EXPECT_TRUE(Ui.Titles().empty()); // nothing to save, nothing asked
    ChkRecord chk{};
    ASSERT_EQ(LoadChk(chk, false, Dir.Path()), StatusLoaded);
    EXPECT_EQ(chk.SessionWord, SessionClean);
}

TEST_F(MainWindowTest, ExitWithChangesAsksAndCancelKeepsTheWindow)
{
    map::Map().Level.ChangeCount = 1;
    Ui.Answer(2);
    QTest::keyClick(Map(), Qt::Key_F4, Qt::AltModifier);
    EXPECT_TRUE(Window->isVisible());
    EXPECT_EQ(Ui.Last().Text(), "File has been modified. Save Changes?");

    Ui.Answer(0);
    Window->close();
    EXPECT_FALSE(Window->isVisible());
}

} // namespace
} // namespace kelvar::app
