// The save's links to the level checks and the node builders.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/SaveChecks.h"

#include "app/RunSettings.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "check/SaveChecks.h"
#include "map/MapState.h"
#include "run/NodeBuilder.h"
#include "run/RunState.h"
#include "wad/WadState.h"

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
    if (check::PlayerOneCheck(level))
    {
        map::LevelChanged();
    }
    // The level checker isn't part of the editor yet: the start count can't offer it.
    return check::PlayerStartCountCheck(level, options, {});
}

bool RunSaveAsChecks()
{
    map::LevelData& level = map::Map().Level;
    return check::ShortLineCheck(level) && check::PortLimitCaution(level, OptionsOfChk());
}

void InstallSaveHooks()
{
    wad::SaveHooks& hooks = wad::Wad().Save;
    hooks.SaveClockReset = [] { Session().MinutesSinceSave = 0; };
    hooks.RedrawMap = [] { Shell().Requests.RedrawMap = true; };
    hooks.BuildNodes =
        [](const std::string& temporary, const std::string& target, const std::string& levelName)
    {
        // The Save dialog's choices of this save stand over the stored ones.
        run::BuilderOptions& builder = PrepareBuilder();
        const wad::SaveOptions& choices = wad::Wad().SaveChoices;
        builder.ShowBuild = choices.ShowBuild;
        builder.SeeResults = choices.SeeResults;
        builder.CustomBuilder = choices.CustomBuilder;
        builder.ZeroBlockmap = choices.ZeroBlockmap;
        const int result = builder.CustomBuilder
                               ? run::RunCustomBuilder(temporary, target, levelName, false)
                               : run::RunBuiltInBuilder(target, levelName, true);
        map::Map().Level.ChangeCount = 0;
        return result;
    };
    hooks.UnusedCleanup = []
    {
        if (check::CheckUnused(map::Map().Level))
        {
            map::LevelChanged();
        }
    };
}

} // namespace kelvar::app
