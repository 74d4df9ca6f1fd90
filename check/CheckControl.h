// The checker's dialog, without its window: its buttons, the run flags of a dialog session,
// the run flow around each button, and the error list.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - One CheckSession lives as long as one opening of the dialog. The window only lays out the
//   buttons of CheckButtons(), calls Press, and shows Report and the error list; so the whole
//   behaviour is tested without a window.
// - The seven single checks (buttons 2 to 8) run once per session: a second press does
//   nothing until the level has changed since the run started. Group buttons always run and
//   mark their members as run.
#pragma once

#include "check/CheckRun.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvar::check
{

/// The dialog's buttons.
enum class CheckButton : std::uint8_t
{
    Statistics,          // " &1   Statistics"
    SectorsClosed,       // 2
    CrossReferences,     // 3
    MissingTextures,     // 4
    TextureNames,        // 5
    Things,              // 6
    LineTypes,           // 7
    SectorTypes,         // 8
    Group5678,           // 9
    Group234,            // A
    GroupAll,            // B: 2 to 8
    Group23456,          // C
    ExtraTextures,       // D
    FixMissingTextures,  // E
    FixTextureNames,     // F
    RemoveExtraTextures, // G
};

/// A button and its text, in the order the dialog shows them.
struct CheckButtonRow
{
    CheckButton Button;
    const char* Text;
};

/// All sixteen check buttons.
const std::array<CheckButtonRow, 16>& CheckButtons();

/// The text of the option that sends findings to the error list, of the options button, and
/// of the note beside the exit button.
inline constexpr const char* ErrorLogOptionText = " Write Error Dialog Log";
inline constexpr const char* CheckOptionsButtonText = " Error Check Options";
inline constexpr const char* ErrorListNote = "Close this Dialog to use Error List to Browse Errors";

/// The lines at the head of a fresh error list.
const std::array<const char*, 4>& ErrorListHeader();

/// What a press led to.
enum class PressResult : std::uint8_t
{
    Ran,            // the checks ran to their end
    Stopped,        // a check was stopped (Escape or Cancel); what it changed stays
    Skipped,        // a single check already run in this session
    OpenStatistics, // the dialog closes and the statistics open
};

/// The single checks a button runs, in order: itself for a single check, the members of a
/// group; none for Statistics.
std::vector<CheckButton> GroupMembers(CheckButton button);

/// Runs one button's checks (for a group, its members in order, stopping at the first that
/// returns false). True when all ran to their end.
bool RunChecksOf(CheckButton button, CheckRun& run);

class CheckSession
{
public:
    CheckSession(map::LevelData& level, const CheckSettings& settings);

    /// The "Write Error Dialog Log" option: findings go to the error list, no prompt appears.
    bool ErrorLogEnabled = false;

    /// The error list; it keeps its entries between runs until a run starts it afresh.
    std::vector<Finding> ErrorList;

    /// The texts reported in the dialog's message field during the last press, in order;
    /// the last one is what the field shows afterwards.
    std::vector<std::string> Reports;

    /// Shows an object after a prompt's Cancel, or a click on the error list.
    std::function<void(int kind, std::uint32_t index)> ShowObject;

    /// Runs the button, with the run flow around it.
    PressResult Press(CheckButton button);

    /// True when the single check of `button` ran in this session (and nothing changed since).
    bool HasRun(CheckButton button) const;

    /// The findings of the last press that ended in the error list.
    int ErrorCount() const { return Errors; }

private:
    void StartRun();
    void Report(std::string text);

    map::LevelData& Level;
    const CheckSettings& Settings;
    std::array<bool, 7> RunFlags{}; // buttons 2 to 8
    std::uint16_t ChangeAtStart = 0;
    int Errors = 0;
};

} // namespace kelvar::check
