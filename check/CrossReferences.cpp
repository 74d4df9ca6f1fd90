// The cross-reference check in its order of steps, and its steps over single LineDefs: missing
// and doubled sides, short LineDefs, and flags that disagree with the sides.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferences.h"

#include "check/CrossReferenceSteps.h"
#include "check/SaveChecks.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::LineDef;
using platform::Format;

bool HasSide(std::uint32_t side)
{
    return side != map::NoSideDef;
}

// The length of a LineDef, rounded to whole map units; -1 when a Vertex is missing.
long LineLength(const LevelData& level, const LineDef& line)
{
    if (line.StartVertex >= level.Vertexes.size() || line.EndVertex >= level.Vertexes.size())
    {
        return -1;
    }
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    const double dx = double(b.X) - a.X;
    const double dy = double(b.Y) - a.Y;
    return std::lround(std::sqrt(dx * dx + dy * dy));
}

// The finding about a LineDef's missing or doubled SideDef, or no lines when its sides are
// fine.
std::vector<std::string> SideDefText(const CheckRun& run, const LineDef& line, int number)
{
    if (!HasSide(line.SideDef1))
    {
        return {Format("LineDef %d has no first SideDef.", number)};
    }
    if (line.SideDef1 != line.SideDef2 || !run.Settings.DuplicateSideDefs)
    {
        return {};
    }
    // The list keeps a note of how to turn the check off; the prompt warns instead.
    std::vector<std::string> lines = {
        Format("LineDef %d uses %d SideDef twice", number, static_cast<int>(line.SideDef1))};
    if (run.Logging())
    {
        lines.push_back("Use File Unpack Sidedef CMD to UNDO");
        lines.push_back("See Checking options to disable check");
    }
    else
    {
        lines.push_back("Recommended only for experts!");
        lines.push_back("Use File Unpack SideDef CMD to UNDO");
    }
    return lines;
}

// The finding about a short LineDef, or no lines when it is long enough.
std::vector<std::string> ShortLineText(const CheckRun& run, const LineDef& line, int number)
{
    if (IsZeroLength(run.Level, line))
    {
        return {Format("LineDef %d is -0- length!", number)};
    }
    const long length = LineLength(run.Level, line);
    if (length >= 0 && length < run.Settings.ShortestLine)
    {
        return {Format("LineDef %d is less than %hd long! Remnant?", number,
                       static_cast<short>(run.Settings.ShortestLine))};
    }
    return {};
}

// One pass of the flag test: the LineDefs `faulty` picks out, asked about once with the lines
// `text` makes from the number of the first of them; the answer changes the flags of all by
// `repair`.
template <typename Faulty, typename Text, typename Repair>
bool FlagPass(CheckRun& run, Faulty faulty, Text text, Repair repair)
{
    const LevelData& level = run.Level;
    std::vector<std::size_t> found;
    const auto test = [&](std::size_t i)
    {
        if (faulty(level.LineDefs[i]))
        {
            found.push_back(i);
        }
        return true;
    };
    if (!run.Each(level.LineDefs.size(), test))
    {
        return false;
    }
    if (found.empty() ||
        run.Ask("LineDef Flags", text(static_cast<int>(found.front()))) != Answer::Fix)
    {
        return true;
    }
    run.BeforeRepair();
    for (const std::size_t i : found)
    {
        LineDef& line = run.Level.LineDefs[i];
        line.Flags = static_cast<std::uint16_t>(repair(line.Flags));
    }
    map::NoteChange(run.Level, map::KindLineDef);
    return true;
}

bool OneSided(const LineDef& line)
{
    return HasSide(line.SideDef1) && !HasSide(line.SideDef2);
}

bool TwoSided(const LineDef& line)
{
    return HasSide(line.SideDef1) && HasSide(line.SideDef2);
}

} // namespace

bool CheckMissingSideDefs(CheckRun& run)
{
    run.Progress("Checking Missing SideDefs (esc)");
    const LevelData& level = run.Level;
    const auto check = [&](std::size_t i)
    {
        Prompt finding;
        finding.Kind = map::KindLineDef;
        finding.Index = static_cast<std::uint32_t>(i);
        finding.Lines = SideDefText(run, level.LineDefs[i], static_cast<int>(i));
        return finding.Lines.empty() || run.Verify(finding) != Answer::Stop;
    };
    return run.Each(level.LineDefs.size(), check);
}

bool CheckShortLineDefs(CheckRun& run)
{
    run.Progress("Checking Short LineDefs (esc)");
    // A deleted LineDef's place is taken by the next one, which is looked at next, so the
    // numbers shown are always the current ones.
    for (std::size_t i = 0; i < run.Level.LineDefs.size();)
    {
        const LevelData& level = run.Level;
        if (run.Poll(i, level.LineDefs.size()))
        {
            return false;
        }
        const int number = static_cast<int>(i);
        Prompt finding;
        finding.Kind = map::KindLineDef;
        finding.Index = static_cast<std::uint32_t>(i);
        finding.Lines = ShortLineText(run, level.LineDefs[i], number);
        if (finding.Lines.empty())
        {
            ++i;
            continue;
        }
        finding.Lines.push_back("Delete the LineDef ?");
        finding.Lines.push_back("Press Cancel to see LineDef");
        finding.ContinueFixes = true;
        const Answer answer = run.Verify(finding);
        if (answer == Answer::Stop)
        {
            return false;
        }
        if (answer != Answer::Fix)
        {
            ++i;
            continue;
        }
        run.BeforeRepair();
        map::DeleteObject(run.Level, map::KindLineDef, number);
    }
    return true;
}

bool CheckInvalidFlags(CheckRun& run)
{
    run.Progress("Checking for Invalid Flags (esc)");
    using map::FlagImpassable;
    using map::FlagTwoSided;
    const auto oneSidedPassable = [](const LineDef& line)
    { return OneSided(line) && (line.Flags & FlagImpassable) == 0; };
    const auto oneSidedMarkedTwo = [](const LineDef& line)
    { return OneSided(line) && (line.Flags & FlagTwoSided) != 0; };
    const auto twoSidedUnmarked = [](const LineDef& line)
    { return TwoSided(line) && (line.Flags & FlagTwoSided) == 0; };
    const auto oneSideText = [](int first, std::vector<std::string> rest)
    {
        rest.insert(rest.begin(),
                    Format("Some LineDefs have only 1 side (starting with %d)", first));
        return rest;
    };
    return FlagPass(
               run, oneSidedPassable,
               [&](int first)
               {
                   return oneSideText(
                       first, {"but the Impassible bit is not set. Set the 'Im' flag?",
                               "(Normally one-sided LineDefs are set impassable)",
                               "(Although not required, IM lines draw brighter in Kelvar)"});
               },
               [](int flags) { return flags | FlagImpassable; }) &&
           FlagPass(
               run, oneSidedMarkedTwo,
               [&](int first) {
                   return oneSideText(
                       first, {"But their 2 Sided bit is set.", "Clear the '2-sided' flag?"});
               },
               [](int flags) { return flags & ~FlagTwoSided; }) &&
           FlagPass(
               run, twoSidedUnmarked,
               [](int first)
               {
                   return std::vector<std::string>{
                       Format("Some LineDefs have 2 sides (starting with %d)", first),
                       "But their 2 Sided bit is not set.", "Set the '2-sided' flag ?"};
               },
               [](int flags) { return flags | FlagTwoSided; });
}

bool CheckCrossReferences(CheckRun& run)
{
    const CheckSettings& settings = run.Settings;
    return (!settings.DuplicateVertices || CheckVertexDuplicates(run)) &&
           CheckMissingSideDefs(run) && (!settings.ShortLines || CheckShortLineDefs(run)) &&
           (!settings.DuplicateLineDefs || CheckDuplicateLineDefs(run)) &&
           (!settings.OverlappingLineDefs ||
            (CheckVertexesOnLineDefs(run) && CheckCollinearOverlaps(run))) &&
           CheckInvalidFlags(run) && CheckUnusedVertexes(run) && CheckUnusedSideDefs(run) &&
           CheckUnusedSectors(run);
}

} // namespace kelvar::check
