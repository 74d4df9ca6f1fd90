// The base of the browser tests: Freedoom 2 open with the Doom 2 tables and its palette, and
// the browser, game, palette and catalogue state dropped before and after each test.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/BrowserLists.h"
#include "game/GameState.h"
#include "gfx/GamePalette.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "map/GameCodes.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

namespace kelvar::app
{

class FreedoomBrowserFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        DropAll();
        ASSERT_EQ(OpenIwad("/usr/share/games/doom/freedoom2.wad"), 1);
        game::SelectTablesFor(map::GameDoom2, map::GameDoom2, false, false);
        ASSERT_EQ(gfx::LoadGamePalette(0), 1);
    }
    void TearDown() override
    {
        DropAll();
        WadFixture::TearDown();
    }
    static void DropAll()
    {
        ResetBrowser();
        game::ResetGame();
        gfx::ResetPalettes();
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
    }
};

} // namespace kelvar::app
