// One run of the level checker: the options the checks read, how findings reach the user
// (prompts, the error list, or the error list with every repair taken), Escape and progress.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A check is a function `bool CheckSomething(CheckRun&)` that walks the level, reports each
//   finding through the run, and returns false when the user stopped it (Escape, or Cancel on
//   a prompt). False stops the group of checks it belongs to; what it repaired stays.
// - The run decides what a finding does, so the checks never test the mode themselves except
//   for texts that differ between the prompt and the list:
//   - Prompt: a "Verification Failed" box; Continue goes on (taking the repair the prompt's
//     lines offer, if any), Cancel shows the object and stops.
//   - Log: the finding goes to the error list and the check goes on; nothing is repaired.
//   - LogAndFix: as Log, and every repair a finding offers is taken. This is what a script
//     asks for when it wants a level fixed without questions.
// - Every repair is one undo step when the run's level is the editor's level; a repair
//   marks the level changed through map::NoteChange.
// - Everything the user sees goes through platform::TheUi(), so tests script the answers.
#pragma once

#include "map/LevelData.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvar::check
{

/// The options of the checker's page, as the KELVAR.CHK status file keeps them, and the few
/// editor options the checks read.
struct CheckSettings
{
    bool UpperTexture = true;        // "Upper Texture"
    bool NormalTexture = true;       // "Normal Texture"
    bool LowerTexture = true;        // "Lower Texture"
    bool XOffsets = false;           // "X Offsets"
    bool YOffsets = false;           // "Y Offsets"
    bool MultiPatchTextures = true;  // "Multi-Patch Txtr.'s"
    bool SectorClosed1 = true;       // "Sector Closed 1"
    bool SectorClosed2 = true;       // "Sector Closed 2"
    bool SectorClosed3 = true;       // "Sector Closed 3"
    bool OverlappingLineDefs = true; // "Check Overlapping Linedefs"
    bool DuplicateSideDefs = true;   // "Check Duplicate Sidedefs"
    bool DuplicateLineDefs = true;   // "Check Duplicate Linedefs"
    bool DuplicateVertices = true;   // "Check Duplicate Vertex"
    bool ThingsInSector = true;      // "Things in Sector"
    bool ThingShooter = true;        // "Thing Shooter"
    bool ThingsOnTop = true;         // "Things on Top"
    bool CheckKeys = true;           // "Check Keys ( HEXEN )"
    bool CheckTags = true;           // "Check Tags"
    bool ShortLines = true;          // "Check Short Lines"
    int ShortestLine = 0;            // "Shortest Line to check\n( 0 - 8 units )"
    bool PlayerStarts = true;        // "Check Player Starts"
    bool ThingTypes = true;          // "Check Thing Type"

    bool ExpertMode = false;             // "Expert Mode (Fewer Messages)"
    bool MergeDuplicateVertices = false; // "Merge Duplicate Vertices": pairs merge unasked
    int OffsetMinimum = -1023;           // the texture offsets the offset checks accept
    int OffsetMaximum = 1023;

    bool operator==(const CheckSettings&) const = default;
};

/// The longest the shortest-line option may be set to.
inline constexpr int ShortestLineLimit = 8;

/// How findings reach the user.
enum class RunMode : std::uint8_t
{
    Prompt,    // each finding asks
    Log,       // findings go to the error list; nothing is repaired
    LogAndFix, // findings go to the error list; every offered repair is taken
};

/// One entry of the error list: the object's kind (map::Kind...; 0 for a line of text), its
/// number and the text. The lines of one finding after its first are marked Detail, so a
/// reader of the list can keep a finding's lines together.
struct Finding
{
    std::uint16_t Kind = 0;
    std::uint32_t Index = 0;
    std::string Text;
    bool Detail = false;

    bool operator==(const Finding&) const = default;
};

/// "DOOM may crash if you play this level." with the game's name in place of DOOM.
std::string CrashWarning();

/// What a finding's prompt decided.
enum class Answer : std::uint8_t
{
    Continue, // go on and leave it
    Fix,      // go on and take the repair the prompt offered
    Stop,     // stop the check (and its group)
};

/// A finding about one object, as the verification prompt shows it.
struct Prompt
{
    int Kind = 0;
    std::uint32_t Index = 0;
    std::vector<std::string> Lines; // at most 12
    /// The prompt's lines say that Continue repairs ("Continue sets to 0", "Delete the
    /// LineDef ?"): Continue answers Fix.
    bool ContinueFixes = false;
    /// When not empty, a third button with this text offers the repair while Continue leaves
    /// the object alone ("Pick Texture", say).
    std::string FixButton;
    /// Adds the CrashWarning line.
    bool Crash = false;
};

class CheckRun
{
public:
    CheckRun(map::LevelData& level, const CheckSettings& settings, RunMode mode);

    map::LevelData& Level;
    const CheckSettings Settings; // a copy: a run may outlive the settings it was given
    const RunMode Mode;

    /// The error list of the run, in the order found, and the count of findings logged.
    std::vector<Finding> Findings;
    int ErrorCount = 0;

    /// Shows the object a prompt was about, after Cancel: the editor sets the mode, makes it
    /// current and centres the view. Nothing when not set.
    std::function<void(int kind, std::uint32_t index)> ShowObject;

    /// True when findings go to the error list rather than to prompts.
    bool Logging() const { return Mode != RunMode::Prompt; }

    /// ReportProgress: the line in the dialog's message field.
    void Progress(const std::string& text);

    /// CheckPoll: the progress bar at `done` of `total`; true when the user pressed Escape.
    /// Cheap enough to call per object: the user interface is asked every few hundred calls
    /// and at the end.
    bool Poll(std::size_t done, std::size_t total);

    /// Calls `visit(i)` for i from 0 to count - 1, polling before each. False as soon as the
    /// user pressed Escape or `visit` answered false (stop); true when all were visited.
    template <class Visit> bool Each(std::size_t count, Visit&& visit)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            if (Poll(i, count) || !visit(i))
            {
                return false;
            }
        }
        return true;
    }

    /// LogError: a line of the error list, counted as a finding.
    void Log(int kind, std::uint32_t index, const std::string& text);

    /// A further line of the finding logged last.
    void LogDetail(const std::string& text);

    /// VerifyFinding. Prompting: the box titled "Verification Failed on (%s  # %lu)" with the
    /// lines and "Press Cancel to see the Object", Continue and Cancel (and the fix button);
    /// Cancel shows the object and answers Stop. Logging: the lines go to the list, the first
    /// under the object, all but a closing question and a "Press Cancel" hint; the answer is
    /// Continue, or Fix under LogAndFix when the prompt offers a repair.
    Answer Verify(const Prompt& prompt);

    /// What Cancel on a prompt about an object does: shows the object (through ShowObject, when
    /// set) and answers Stop.
    Answer CancelAt(int kind, std::uint32_t index);

    /// A yes/no question about the level as a whole ("Delete unused Vertices?"), under
    /// `title`. Prompting: Yes answers Fix, No Continue. Logging: the lines but the question go
    /// to the list as one finding; Continue, or Fix under LogAndFix.
    Answer Ask(const std::string& title, const std::vector<std::string>& lines);

    /// A message with only OK. Prompting: shown under `title`; logging: its lines go to the
    /// list as one finding.
    void Tell(const std::string& title, const std::vector<std::string>& lines);

    /// Before a repair: takes the undo step when the run's level is the editor's level.
    /// Returns nothing; the repair then changes the level and calls map::NoteChange.
    void BeforeRepair();

private:
    void LogLines(int kind, std::uint32_t index, const std::vector<std::string>& lines);

    std::size_t PollCalls = 0;
};

/// The form of an error list line: "%.02s %#05hu %s", the first two letters of the kind's
/// name, the number and the text; a text line (kind 0) is its text, indented under the
/// finding's text when it is a further line of one.
std::string FindingLine(const Finding& finding);

} // namespace kelvar::check
