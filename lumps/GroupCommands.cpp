// The command flows of Group, UnGroup and Save and make an IWAD: checks, questions, dialogs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Group.h"

#include "lumps/ToolFiles.h"
#include "platform/Messages.h"
#include "platform/Ui.h"
#include "wad/WadState.h"

#include <optional>
#include <string>
#include <system_error>

namespace kelvar::lumps
{
namespace
{

// The longest name the group dialogs take.
constexpr std::size_t GroupNameLimit = 256;

bool AnyPwadOpen()
{
    const wad::WadState& state = wad::Wad();
    for (int file = 1; file < wad::FileTableSize; ++file)
    {
        if (state.Files[static_cast<std::size_t>(file)].State != 0)
        {
            return true;
        }
    }
    return false;
}

// The save dialog of a command; nothing when cancelled or when the name is that of a file the
// editor has open (after saying so).
std::optional<std::filesystem::path>
AskTarget(const char* caption, const std::filesystem::path& proposed, std::size_t nameLimit)
{
    platform::FileChoice choice;
    choice.Caption = caption;
    choice.Filter = "PWAD files (*.wad)|*.wad;*.WAD|";
    choice.InitialPath = proposed.empty() ? wad::Wad().Options.DefaultPwadDir : proposed;
    choice.NameLimit = nameLimit;
    choice.ForSaving = true;
    return ChooseFileNotInUse(choice);
}

bool AskReload()
{
    platform::Message question;
    question.Title = "Reload";
    question.Lines = {"Reload Group file ?"};
    question.Icon = platform::MessageIcon::Question;
    question.Buttons = platform::MessageButtons::YesNo;
    return platform::TheUi().Show(question) == 1;
}

GroupCommandResult Written(const std::filesystem::path& target, bool askReload)
{
    GroupCommandResult result;
    result.Written = true;
    result.Target = target;
    result.Reload = askReload && AskReload();
    return result;
}

} // namespace

bool ReadyToGroup(bool ungrouping)
{
    if (!AnyPwadOpen())
    {
        platform::ShowMessageLines(0, "No PWADs",
                                   {"You have not read any", ungrouping ? "PWAD files to ungroup!"
                                                                        : "PWAD files to group!"});
        return false;
    }
    if (wad::Wad().OtherGameLevels > 0)
    {
        if (ungrouping)
        {
            platform::ShowError("Levels from another game found\n\n   !!! UnGroup Cancelled !!!");
        }
        else
        {
            platform::ShowError("Levels from another game found\n\n      !!! Group Cancelled !!!");
        }
        return false;
    }
    return true;
}

GroupCommandResult GroupCommand()
{
    if (!ReadyToGroup(false))
    {
        return {};
    }
    const bool includeAll =
        platform::ShowMessageLines(
            platform::LinesCancel, "Include ALL",
            {"Reply Y to include all Levels and data", "(e.g., extra textures, sounds and sprites)",
             "Include non-level data?", "This is for ALL files you have loaded"},
            platform::MessageButtons::YesNo) == 1;
    const std::optional<std::filesystem::path> target =
        AskTarget("Grouped PWAD", {}, GroupNameLimit);
    if (!target || GroupWads(*target, includeAll) != 1)
    {
        return {};
    }
    return Written(*target, true);
}

GroupCommandResult UngroupCommand()
{
    if (!ReadyToGroup(true))
    {
        return {};
    }
    const bool nonLevelsOnly =
        platform::ShowMessageLines(
            platform::LinesCancel, "Ungroup",
            {"Reply Y to include only non-level data", "(e.g., extra textures, sounds, etc)",
             "Reply N to include only Levels (maps)", "Include only non-level data?",
             "This is for ALL files you have loaded"},
            platform::MessageButtons::YesNo) == 1;
    const std::optional<std::filesystem::path> target =
        AskTarget("UnGrouped PWAD", {}, GroupNameLimit);
    if (!target)
    {
        return {};
    }
    std::error_code error;
    if (std::filesystem::exists(*target, error) &&
        !platform::AskYesNo("     OVERWRITE WARNING !\n\nOverwrite Existing File - %s ?",
                            target->c_str()))
    {
        return {};
    }
    if (UngroupWads(*target, nonLevelsOnly) != 1)
    {
        return {};
    }
    return Written(*target, true);
}

GroupCommandResult MakeIwadCommand()
{
    if (wad::Wad().Options.ZdoomHexenFormat)
    {
        platform::ShowError("You can't build an IWAD in ZDOOM-HEXEN mode\n\n"
                            "Switch to one of the DOOM projects to create an IWAD\n\n"
                            "-OR-\n\nUse CONVERTER (to be posted later)");
        return {};
    }
    const std::filesystem::path& directory = wad::Wad().Options.DefaultPwadDir;
    const std::optional<std::filesystem::path> target =
        AskTarget("IWAD name", directory.empty() ? "MYIWAD.WAD" : directory / "MYIWAD.WAD",
                  wad::MaxPathLength);
    if (!target || WriteIwad(*target) != 1)
    {
        return {};
    }
    return Written(*target, false);
}

} // namespace kelvar::lumps
