// One run of the level checker: prompts, the error list, Escape and progress.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckRun.h"

#include "game/GameState.h"
#include "map/MapState.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Ui.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kelvar::check
{
namespace
{

// The user interface is asked for Escape once in this many polls: often enough to feel
// immediate, rarely enough that a quarter of a million objects cost nothing in event handling.
constexpr std::size_t PollPeriod = 256;

constexpr std::size_t PromptLineLimit = 12;

const char* GameNameForCrash()
{
    switch (game::Game().IwadKind)
    {
    case map::GameHeretic:
        return "HERETIC";
    case map::GameHexen:
        return "HEXEN";
    case map::GameStrife:
        return "STRIFE";
    default:
        return "DOOM";
    }
}

// True for a prompt's closing question, which asks what to do ("Delete the LineDef ?",
// "Continue (leaves it alone)?") rather than tells what is wrong ("is in a wall. Can it
// move?").
bool IsClosingQuestion(const std::string& line)
{
    static constexpr std::array<std::string_view, 10> Asks = {
        "Continue",    "Delete",           "Reset", "Set ", "Clear", "Merge", "Separate",
        "Do you want", "Possible problem", "Skip"};
    return line.ends_with('?') &&
           std::any_of(Asks.begin(), Asks.end(),
                       [&line](std::string_view ask) { return line.starts_with(ask); });
}

// The lines of a prompt that belong in the error list: not the question a prompt ends with,
// nor its "Press Cancel ..." hint, which only make sense with the prompt's buttons.
std::vector<std::string> ListLines(const std::vector<std::string>& lines)
{
    std::vector<std::string> kept;
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        const std::string& line = lines[i];
        const bool question = i > 0 && i + 1 == lines.size() && IsClosingQuestion(line);
        if (!question && !line.starts_with("Press Cancel"))
        {
            kept.push_back(line);
        }
    }
    return kept;
}

} // namespace

std::string CrashWarning()
{
    return platform::Format("%s may crash if you play this level.", GameNameForCrash());
}

CheckRun::CheckRun(map::LevelData& level, const CheckSettings& settings, RunMode mode)
    : Level(level), Settings(settings), Mode(mode)
{
}

void CheckRun::Progress(const std::string& text)
{
    platform::TheUi().ShowProgress(text, "");
}

bool CheckRun::Poll(std::size_t done, std::size_t total)
{
    const bool due = PollCalls++ % PollPeriod == 0 || done >= total;
    return due && platform::TheUi().PollEscape();
}

void CheckRun::Log(int kind, std::uint32_t index, const std::string& text)
{
    Findings.push_back({static_cast<std::uint16_t>(kind), index, text, false});
    ++ErrorCount;
}

void CheckRun::LogDetail(const std::string& text)
{
    Findings.push_back({0, 0, text, true});
}

// Lines of one finding about an object (kind 0 for none): the first opens it under the object,
// the others are its detail.
void CheckRun::LogLines(int kind, std::uint32_t index, const std::vector<std::string>& lines)
{
    for (std::size_t i = 0; i < lines.size(); ++i)
    {
        if (i == 0)
        {
            Log(kind, index, lines[i]);
        }
        else
        {
            LogDetail(lines[i]);
        }
    }
}

Answer CheckRun::Verify(const Prompt& prompt)
{
    const bool offersFix = prompt.ContinueFixes || !prompt.FixButton.empty();
    if (Logging())
    {
        LogLines(prompt.Kind, prompt.Index, ListLines(prompt.Lines));
        if (prompt.Crash)
        {
            LogDetail(CrashWarning());
        }
        return Mode == RunMode::LogAndFix && offersFix ? Answer::Fix : Answer::Continue;
    }

    platform::Message message;
    message.Title =
        platform::Format("Verification Failed on (%s  # %lu)", map::KindName(prompt.Kind),
                         static_cast<unsigned long>(prompt.Index));
    const std::size_t shown = std::min(prompt.Lines.size(), PromptLineLimit);
    message.Lines.assign(prompt.Lines.begin(),
                         prompt.Lines.begin() + static_cast<std::ptrdiff_t>(shown));
    if (prompt.Crash)
    {
        message.Lines.push_back(CrashWarning());
    }
    message.Lines.push_back("Press Cancel to see the Object");
    message.Icon = platform::MessageIcon::Exclamation;
    message.Centered = true;
    if (prompt.FixButton.empty())
    {
        message.Buttons = platform::MessageButtons::OkCancel;
        message.ButtonTexts = {"Continue", "Cancel"};
    }
    else
    {
        message.Buttons = platform::MessageButtons::YesNoCancel;
        message.ButtonTexts = {"Continue", "Cancel", prompt.FixButton};
    }
    switch (platform::TheUi().Show(message))
    {
    case 1:
        return prompt.ContinueFixes ? Answer::Fix : Answer::Continue;
    case 2:
        return Answer::Fix;
    default:
        return CancelAt(prompt.Kind, prompt.Index);
    }
}

Answer CheckRun::CancelAt(int kind, std::uint32_t index)
{
    if (ShowObject)
    {
        ShowObject(kind, index);
    }
    return Answer::Stop;
}

Answer CheckRun::Ask(const std::string& title, const std::vector<std::string>& lines)
{
    if (Logging())
    {
        LogLines(0, 0, ListLines(lines));
        return Mode == RunMode::LogAndFix ? Answer::Fix : Answer::Continue;
    }
    platform::Message message;
    message.Title = title;
    message.Lines = lines;
    message.Icon = platform::MessageIcon::Question;
    message.Buttons = platform::MessageButtons::YesNo;
    message.Centered = true;
    return platform::TheUi().Show(message) == 1 ? Answer::Fix : Answer::Continue;
}

void CheckRun::Tell(const std::string& title, const std::vector<std::string>& lines)
{
    if (Logging())
    {
        LogLines(0, 0, lines);
        return;
    }
    platform::Message message;
    message.Title = title;
    message.Lines = lines;
    message.Icon = platform::MessageIcon::Exclamation;
    message.Centered = true;
    (void)platform::TheUi().Show(message);
}

void CheckRun::BeforeRepair()
{
    if (&Level == &map::Map().Level)
    {
        (void)map::SaveUndoStep();
    }
}

std::string FindingLine(const Finding& finding)
{
    if (finding.Kind == 0)
    {
        // A finding's further lines stand under its text, past the kind and the number.
        return finding.Detail ? "         " + finding.Text : finding.Text;
    }
    // The number is shown in five digits, as the list's columns are laid out for; the entry
    // keeps the whole number for showing the object.
    return platform::Format("%.2s %05hu %s", map::KindName(finding.Kind),
                            static_cast<unsigned short>(finding.Index), finding.Text.c_str());
}

} // namespace kelvar::check
