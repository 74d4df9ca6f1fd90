// The base of the game definitions' tests: clean WAD and game states, a temporary program
// directory for OPT files, and the recording Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "game/GameState.h"
#include "game/OptFile.h"
#include "tests/testkit/WadFixture.h"

#include <string>

namespace kelvar::game
{

class GameFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        ResetGame();
    }

    void TearDown() override
    {
        ResetGame();
        WadFixture::TearDown();
    }

    /// Writes `text` as the OPT file TEST.OPT in the program directory and reads it.
    bool ReadOpt(const std::string& text)
    {
        testkit::WriteFile(Dir.Path() / "TEST.OPT", text);
        return ReadOptFile("TEST.OPT");
    }

    /// The lines of every message shown, each message's title first.
    std::vector<std::string> Shown() const
    {
        std::vector<std::string> lines;
        for (const platform::Message& message : Ui.Messages)
        {
            lines.push_back("[" + message.Title + "]");
            lines.insert(lines.end(), message.Lines.begin(), message.Lines.end());
        }
        return lines;
    }
};

} // namespace kelvar::game
