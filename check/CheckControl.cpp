// The checker dialog session: buttons, run flags, and the run flow around each button.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckControl.h"

#include "check/ClosedChecks.h"
#include "check/CrossReferences.h"
#include "check/TextureChecks.h"
#include "check/ThingChecks.h"
#include "check/TypeChecks.h"
#include "platform/Format.h"
#include "platform/Ui.h"

#include <algorithm>

namespace kelvar::check
{
namespace
{

// The position of a single check's run flag: buttons 2 to 8 are 0 to 6; -1 for the others.
int FlagOf(CheckButton button)
{
    const auto value = static_cast<int>(button);
    const auto first = static_cast<int>(CheckButton::SectorsClosed);
    const auto last = static_cast<int>(CheckButton::SectorTypes);
    return value >= first && value <= last ? value - first : -1;
}

bool RunSingle(CheckButton button, CheckRun& run)
{
    switch (button)
    {
    case CheckButton::SectorsClosed:
        return CheckSectorsClosed(run);
    case CheckButton::CrossReferences:
        return CheckCrossReferences(run);
    case CheckButton::MissingTextures:
        return CheckSectorHeights(run, false);
    case CheckButton::TextureNames:
        return CheckTextureNames(run, false);
    case CheckButton::Things:
        return CheckPlayerStarts(run, true) && CheckThings(run);
    case CheckButton::LineTypes:
        return CheckLineTypes(run);
    case CheckButton::SectorTypes:
        return CheckSectorTypes(run);
    case CheckButton::ExtraTextures:
        return CheckExtraTextures(run, false);
    case CheckButton::FixMissingTextures:
        return CheckSectorHeights(run, true);
    case CheckButton::FixTextureNames:
        return CheckTextureNames(run, true);
    case CheckButton::RemoveExtraTextures:
        return CheckExtraTextures(run, true);
    default:
        return true;
    }
}

std::vector<CheckButton> Range(CheckButton first, CheckButton last)
{
    std::vector<CheckButton> buttons;
    for (auto b = static_cast<int>(first); b <= static_cast<int>(last); ++b)
    {
        buttons.push_back(static_cast<CheckButton>(b));
    }
    return buttons;
}

} // namespace

const std::array<CheckButtonRow, 16>& CheckButtons()
{
    static const std::array<CheckButtonRow, 16> rows = {{
        {CheckButton::Statistics, " &1   Statistics"},
        {CheckButton::SectorsClosed, " &2   Check if all sectors are closed"},
        {CheckButton::CrossReferences, " &3   Check Xref, Dups, Unused, Invalid"},
        {CheckButton::MissingTextures, " &4   Check missing Sidef Textures"},
        {CheckButton::TextureNames, " &5   Check Invalid Textures names/offsets"},
        {CheckButton::Things, " &6   Check Thing Names/Sectors"},
        {CheckButton::LineTypes, " &7   Check Linedefs types/tags"},
        {CheckButton::SectorTypes, " &8   Check Sector types/tags"},
        {CheckButton::Group5678, " &9   Check ( 5,6,7,8 )"},
        {CheckButton::Group234, " &A   Check ( 2,3,4 )"},
        {CheckButton::GroupAll, " &B   Check ( 2 . . . 8 ) ALL"},
        {CheckButton::Group23456, " &C   Check ( 2,3,4,5,6 )"},
        {CheckButton::ExtraTextures, " &D   Check for textures not required"},
        {CheckButton::FixMissingTextures, " &E   Automatic Fix Missing Textures"},
        {CheckButton::FixTextureNames, " &F   Automatic Fix Texture Names/Offsets"},
        {CheckButton::RemoveExtraTextures, " &G   Automatic Remove Extra Texture Names"},
    }};
    return rows;
}

const std::array<const char*, 4>& ErrorListHeader()
{
    static const std::array<const char*, 4> lines = {
        "** Change Error Check Options to ignore some errors  **",
        "*  !!  TEXTURES checked are per current SETTINGs  !!  *",
        "** Remove Error Dialog option to manually see errors **",
        "",
    };
    return lines;
}

std::vector<CheckButton> GroupMembers(CheckButton button)
{
    switch (button)
    {
    case CheckButton::Statistics:
        return {};
    case CheckButton::Group5678:
        return Range(CheckButton::TextureNames, CheckButton::SectorTypes);
    case CheckButton::Group234:
        return Range(CheckButton::SectorsClosed, CheckButton::MissingTextures);
    case CheckButton::GroupAll:
        return Range(CheckButton::SectorsClosed, CheckButton::SectorTypes);
    case CheckButton::Group23456:
        return Range(CheckButton::SectorsClosed, CheckButton::Things);
    default:
        return {button};
    }
}

bool RunChecksOf(CheckButton button, CheckRun& run)
{
    for (const CheckButton member : GroupMembers(button))
    {
        if (!RunSingle(member, run))
        {
            return false;
        }
    }
    return true;
}

CheckSession::CheckSession(map::LevelData& level, const CheckSettings& settings)
    : Level(level), Settings(settings)
{
}

bool CheckSession::HasRun(CheckButton button) const
{
    const int flag = FlagOf(button);
    return flag >= 0 && RunFlags[static_cast<std::size_t>(flag)] &&
           Level.ChangeCount == ChangeAtStart;
}

void CheckSession::Report(std::string text)
{
    platform::TheUi().ShowProgress(text, "");
    Reports.push_back(std::move(text));
}

// A run starts afresh when no single check has run yet, or the level changed since the run
// began: the flags are cleared and the change counter noted.
void CheckSession::StartRun()
{
    const bool anyRun = std::any_of(RunFlags.begin(), RunFlags.end(), [](bool f) { return f; });
    if (!anyRun || Level.ChangeCount != ChangeAtStart)
    {
        RunFlags.fill(false);
        ChangeAtStart = Level.ChangeCount;
    }
    Errors = 0;
    if (ErrorLogEnabled)
    {
        ErrorList.clear();
        for (const char* line : ErrorListHeader())
        {
            ErrorList.push_back({0, 0, line});
        }
    }
}

PressResult CheckSession::Press(CheckButton button)
{
    Reports.clear();
    if (button == CheckButton::Statistics)
    {
        return PressResult::OpenStatistics;
    }
    const int flag = FlagOf(button);
    if (flag >= 0 && HasRun(button))
    {
        return PressResult::Skipped;
    }
    StartRun();
    const std::uint16_t changesBefore = ChangeAtStart;
    Report("Beginning Check . . .");

    CheckRun run(Level, Settings, ErrorLogEnabled ? RunMode::Log : RunMode::Prompt);
    run.ShowObject = ShowObject;
    const bool finished = RunChecksOf(button, run);
    for (const CheckButton member : GroupMembers(button))
    {
        const int memberFlag = FlagOf(member);
        if (memberFlag >= 0)
        {
            RunFlags[static_cast<std::size_t>(memberFlag)] = true;
        }
    }
    (void)run.Poll(100, 100);
    Errors = run.ErrorCount;

    bool errorsFound = false;
    if (ErrorLogEnabled)
    {
        ErrorList.insert(ErrorList.end(), run.Findings.begin(), run.Findings.end());
        errorsFound = Errors != 0 || ErrorList.size() > ErrorListHeader().size();
        if (errorsFound)
        {
            Report(".. Errors Found ..");
        }
    }
    const auto changes = static_cast<std::uint16_t>(Level.ChangeCount - changesBefore);
    if (changes != 0)
    {
        Report(platform::Format(".. %hd changes made ..", static_cast<short>(changes)));
    }
    else if (!errorsFound)
    {
        Report(".. No Errors Found ..");
    }
    // The changes were noted from the start of the run: a repair resets the single checks'
    // flags at the next press, so they can run again over the changed level.
    return finished ? PressResult::Ran : PressResult::Stopped;
}

} // namespace kelvar::check
