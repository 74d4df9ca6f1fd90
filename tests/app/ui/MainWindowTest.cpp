// Tests of the editor's window on Freedoom 2: start-up to MAP01, modes, picking, the rubber
// band, zoom, the level list, the info pane and the exit.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MainWindow.h"

#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/StatusFiles.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "platform/test/RecordingProcesses.h"
#include "run/RunState.h"
#include "tests/app/StatusTestKit.h"
#include "view/HitTest.h"
#include "view/ViewState.h"
#include "wad/WadState.h"

#include <algorithm>

#include <QTest>
#include <memory>

namespace kelvar::app
{
namespace
{

class MainWindowTest : public StatusFixture
{
protected:
    void SetUp() override
    {
        StatusFixture::SetUp();
        ResetSession();
        map::ResetMap();
        view::ResetView();
        game::ResetGame();

        ProcessStart({}, Dir.Path() / "");
        ASSERT_TRUE(CheckSecondCopy());
        Window = std::make_unique<MainWindow>();
        ASSERT_EQ(CreateSession(nullptr), CommandFirstStartup);
        // The offscreen screen is 800 by 600: the start-up checks would ask about it.
        Shell().Chk.SkipEnvironmentChecks = 1;
        Window->resize(1000, 760);
        Window->show();
        Ui.AnswerFile(Dir.Path() / "DOOM2.PRJ").Answer(1).AnswerList(0);
        Window->Run(CommandFirstStartup);
        ASSERT_TRUE(Session().LevelLoaded);
        QApplication::processEvents();
        Ui.Clear();
    }

    void TearDown() override
    {
        Window.reset();
        ResetSession();
        StatusFixture::TearDown();
    }

    QWidget* Map() const { return Window->Map(); }

    /// L: LineDef mode.
    void UseLineDefMode()
    {
        QTest::keyClick(Map(), Qt::Key_L);
        ASSERT_EQ(EditMode(), ModeLineDefs);
    }

    /// The window position of a map point.
    QPoint Pixel(double x, double y) const
    {
        const view::MapViewport& viewport = view::View().Viewport;
        return {view::MapToScreenX(viewport, x), view::MapToScreenY(viewport, y)};
    }

    /// The middle of a LineDef, in the window.
    QPoint LineMiddle(int line) const
    {
        const map::LevelData& level = map::Map().Level;
        const map::LineDef& lineDef = level.LineDefs[static_cast<std::size_t>(line)];
        const map::Vertex& a = level.Vertexes[lineDef.StartVertex];
        const map::Vertex& b = level.Vertexes[lineDef.EndVertex];
        return Pixel((a.X + b.X) / 2.0, (a.Y + b.Y) / 2.0);
    }

    /// A LineDef whose middle is well inside the window and near no other line's middle.
    int VisibleLine() const
    {
        const map::LevelData& level = map::Map().Level;
        for (int i = 0; i < level.LineDefs.Count(); ++i)
        {
            const QPoint middle = LineMiddle(i);
            if (Map()->rect().adjusted(40, 40, -40, -40).contains(middle) &&
                view::FindNearPointer(level, view::View().Viewport, ModeLineDefs, 10.0, middle.x(),
                                      middle.y()) == i)
            {
                return i;
            }
        }
        return -1;
    }

    void Click(QPoint at)
    {
        QTest::mouseMove(Map(), at);
        QTest::mouseClick(Map(), Qt::LeftButton, Qt::NoModifier, at);
        QTest::qWait(350); // past the double click time
    }

    std::vector<int> SelectedObjects() const
    {
        std::vector<int> objects = map::Selected().Selection.Objects();
        std::sort(objects.begin(), objects.end());
        return objects;
    }

    std::unique_ptr<MainWindow> Window;
};

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

TEST_F(MainWindowTest, KeyITogglesTheInfoPane)
{
    EXPECT_TRUE(Window->InfoPaneVisible());
    QTest::keyClick(Map(), Qt::Key_I);
    EXPECT_FALSE(Window->InfoPaneVisible());
    QTest::keyClick(Map(), Qt::Key_I);
    EXPECT_TRUE(Window->InfoPaneVisible());
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
