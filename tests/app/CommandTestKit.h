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

using testkit::TwoRooms;

} // namespace kelvar::app
