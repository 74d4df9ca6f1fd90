// The level checks a save runs first.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/PreSaveChecks.h"

#include "app/CheckerCommands.h"
#include "app/ShellState.h"
#include "check/SaveChecks.h"
#include "check/ThingChecks.h"
#include "map/MapState.h"

namespace kelvar::app
{
namespace
{

check::CheckOptions OptionsOfChk()
{
    const ChkRecord& chk = Shell().Chk;
    check::CheckOptions options;
    options.ExpertMode = chk.ExpertMode != 0;
    options.CheckPlayerStarts = chk.CheckPlayerStarts != 0;
    return options;
}

} // namespace

bool RunPreSaveChecks()
{
    map::LevelData& level = map::Map().Level;
    const check::CheckOptions options = OptionsOfChk();
    if (!check::PortLimitCaution(level, options) || !check::ShortLineCheck(level))
    {
        return false;
    }
    (void)check::ArgumentRangeCheck(level);
    check::PlayerOneCheck(level);
    // Yes to the start count's question runs the checker's player start and exit check.
    const check::CheckSettings settings = CheckerSettings();
    return check::PlayerStartCountCheck(level, options,
                                        [&level, &settings]
                                        {
                                            check::CheckRun run(level, settings,
                                                                check::RunMode::Prompt);
                                            run.ShowObject = ShowCheckedObject;
                                            return check::CheckPlayerStarts(run, true);
                                        });
}

bool RunSaveAsChecks()
{
    map::LevelData& level = map::Map().Level;
    if (!check::ShortLineCheck(level) || !check::PortLimitCaution(level, OptionsOfChk()))
    {
        return false;
    }
    (void)check::ArgumentRangeCheck(level);
    return true;
}

} // namespace kelvar::app
