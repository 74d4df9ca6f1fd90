// The base of the checks' tests: clean map and game states with the Doom 2 tables, and a
// recording Ui.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"
#include "game/GameState.h"
#include "map/MapState.h"
#include "platform/Assert.h"
#include "platform/test/RecordingUi.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvar::check
{

/// The single text of each message shown, in order.
inline std::vector<std::string> MessageTexts(const platform::RecordingUi& ui)
{
    std::vector<std::string> texts;
    for (const platform::Message& message : ui.Messages)
    {
        texts.push_back(message.Text());
    }
    return texts;
}

/// The text of each finding of a run, in order.
inline std::vector<std::string> FoundTexts(const CheckRun& run)
{
    std::vector<std::string> texts;
    for (const Finding& finding : run.Findings)
    {
        texts.push_back(finding.Text);
    }
    return texts;
}

/// The error list of a run as its lines read, a finding's further lines without the indent that
/// lines them up under its text.
inline std::vector<std::string> ListLines(const CheckRun& run)
{
    std::vector<std::string> lines;
    for (const Finding& finding : run.Findings)
    {
        lines.push_back(finding.Detail ? finding.Text : FindingLine(finding));
    }
    return lines;
}

class CheckFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        map::ResetMap();
        game::ResetGame();
        game::SelectTablesFor(2, 2, false, false);
        platform::InstallAssertHandler(
            [](const char* condition, const char* file, int line)
            { ADD_FAILURE_AT(file, line) << "internal check: " << condition; });
    }

    void TearDown() override
    {
        map::ResetMap();
        game::ResetGame();
        platform::InstallAssertHandler({});
    }

    std::vector<std::string> Texts() const { return MessageTexts(Ui); }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

} // namespace kelvar::check
