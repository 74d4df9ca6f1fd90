// The base of the command tests: a clean shell, session, map, view and game, a level on screen
// for editing, and the recording Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/Modes.h"
#include "app/Router.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "view/ViewState.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvar::app
{

class CommandFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ResetAll();
        // Doom 2's tables, for the names of types.
        game::SelectTablesFor(2, 2, false, false);
        view::SetWindowSize(view::View().Viewport, 800, 600);
    }

    void TearDown() override { ResetAll(); }

    static void ResetAll()
    {
        ResetShell();
        ResetSession();
        map::ResetMap();
        view::ResetView();
        game::ResetGame();
    }

    /// Puts a level on screen, editable, in `mode`.
    void Edit(map::LevelData level, int mode = ModeLineDefs)
    {
        map::Map().Level = std::move(level);
        map::LevelChanged();
        Session().LevelLoaded = true;
        Session().AppState = AppEditing;
        Shell().Chk.EditMode = static_cast<std::int16_t>(mode);
    }

    /// The selection, newest first.
    static std::vector<std::int32_t> Marked() { return map::Selected().Selection.Objects(); }

    /// Marks objects of the current mode, in the order given.
    static void Mark(std::initializer_list<std::int32_t> objects)
    {
        for (const std::int32_t object : objects)
        {
            map::ObjectListPush(map::Selected().Selection, object);
        }
    }

    static int Highlighted() { return map::Selected().HighlightedObject; }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

/// Two rooms sharing the wall x = 128 (LineDef 4). The west room, Sector 0, is bordered by
/// LineDefs 0, 1, 2 and 4; the east room, Sector 1, by 3, 4, 5 and 6.
inline map::LevelData TwoRooms()
{
    testkit::LevelBuilder builder;
    builder.Sector().Sector(0, 96);
    builder.Vertex(0, 0).Vertex(0, 128).Vertex(128, 128).Vertex(128, 0).Vertex(256, 128).Vertex(256,
                                                                                                0);
    for (const std::uint32_t sector : {0u, 0u, 0u, 1u, 1u, 1u, 1u, 0u})
    {
        builder.Side(sector);
    }
    builder.Line(0, 1, 0)
        .Line(1, 2, 1)
        .Line(3, 0, 2)
        .Line(2, 4, 3)
        .Line(3, 2, 6, 7)
        .Line(4, 5, 4)
        .Line(5, 3, 5);
    builder.Thing(64, 64, 1).Thing(200, 64, 3004).Thing(100, 100, 3004);
    return builder.Build();
}

} // namespace kelvar::app
