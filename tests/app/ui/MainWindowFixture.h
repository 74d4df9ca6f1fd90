// The fixture of the window tests: the editor's window on Freedoom 2 MAP01, started through the
// first-run steps with a recording Ui, and helpers to find and click objects on the map.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "app/ui/MainWindow.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "map/Selection.h"
#include "tests/app/StatusTestKit.h"
#include "view/HitTest.h"
#include "view/ViewState.h"

#include <algorithm>
#include <memory>

#include <QApplication>
#include <QTest>

namespace kelvar::app
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

    /// L: LineDef mode. The mode's info pane takes its height before the test goes on.
    void UseLineDefMode()
    {
        QTest::keyClick(Map(), Qt::Key_L);
        ASSERT_EQ(EditMode(), ModeLineDefs);
        Settle();
    }

    /// Lets the window lay itself out again after the info pane changed: the layouts of the
    /// pane and of the window take a round of events each.
    void Settle() const
    {
        for (int round = 0, still = 0; round < 20 && still < 2; ++round)
        {
            const QSize size = Map()->size();
            QApplication::processEvents();
            still = Map()->size() == size ? still + 1 : 0;
        }
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

} // namespace kelvar::app
