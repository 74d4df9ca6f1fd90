// The base of the test launcher's tests: a session of an IWAD and PWADs laid into the WAD
// layer's tables by hand, a recording Ui and a recording process starter.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/MapState.h"
#include "platform/test/RecordingProcesses.h"
#include "run/RunState.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <filesystem>
#include <string>

namespace kelvar::run
{

class TestRunFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        run::ResetRun();
        map::ResetMap();
        wad::WadState& wad = wad::Wad();
        wad.Files[0].FileName = Iwad;
        wad.Files[0].State = 'C';
        wad.Files[0].IsMain = 1;
        wad.Game.Game = 2;
        wad.Game.Format = 2;
        // Most tests look at the line without the IWAD's part that ':' adds.
        run::Run().Test.ExtraParameters.clear();
    }

    void TearDown() override
    {
        run::ResetRun();
        map::ResetMap();
        WadFixture::TearDown();
    }

    /// Adds a PWAD to the name table; `current` makes it the level's file.
    void AddPwad(const std::string& path, bool current)
    {
        wad::WadState& wad = wad::Wad();
        const auto number = static_cast<std::size_t>(++PwadCount);
        wad.Files[number].FileName = path;
        wad.Files[number].State = 'C';
        wad.Files[number].ListIndex = static_cast<std::int16_t>(number - 1);
        wad.OpenFiles[number - 1] = path;
        if (current)
        {
            wad.CurrentFile.FileNumber = static_cast<int>(number);
        }
    }

    /// The test launcher's options (gtest's own Run() hides run::Run in a fixture).
    static TestOptions& Options() { return run::Run().Test; }

    /// The level comes from the IWAD.
    void LevelFromIwad() { wad::Wad().CurrentFile.FileNumber = 0; }

    const std::string Iwad = "/usr/share/games/doom/freedoom2.wad";
    platform::RecordingProcesses Processes;

private:
    int PwadCount = 0;
};

} // namespace kelvar::run
