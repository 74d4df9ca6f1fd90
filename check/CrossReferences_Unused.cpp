// The cross-reference steps over references: Vertex, SideDef and Sector numbers that name
// nothing, SideDefs two LineDefs share, and the objects nothing uses.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferenceSteps.h"

#include "map/ObjectStore.h"
#include "platform/Format.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::LineDef;
using platform::Format;

int CountUnused(const std::vector<std::uint8_t>& used)
{
    return static_cast<int>(std::count(used.begin(), used.end(), 0));
}

// Asks about the objects of one kind whose mark is 0, and on the answer removes them in one
// pass, renumbering what stays. `kind` picks the marks to use.
void OfferRemoval(CheckRun& run, int kind, std::vector<std::uint8_t> used,
                  std::vector<std::string> lines)
{
    if (CountUnused(used) == 0 || run.Ask("Unused", lines) != Answer::Fix)
    {
        return;
    }
    run.BeforeRepair();
    map::KeepMarks marks = map::MarksForAll(run.Level, 1);
    (kind == map::KindVertex    ? marks.Vertexes
     : kind == map::KindSideDef ? marks.SideDefs
                                : marks.Sectors) = std::move(used);
    map::RemoveUnmarked(run.Level, marks);
    map::NoteChange(run.Level, kind);
}

// A finding about a LineDef whose repair sets its wrong numbers to 0. True when the answer is
// to repair; `stopped` is set on Stop.
bool AskSetToZero(CheckRun& run, std::size_t line, const std::string& text, bool& stopped)
{
    Prompt finding;
    finding.Kind = map::KindLineDef;
    finding.Index = static_cast<std::uint32_t>(line);
    finding.Lines = {text, "Continue sets to 0"};
    finding.ContinueFixes = true;
    const Answer answer = run.Verify(finding);
    stopped = answer == Answer::Stop;
    return answer == Answer::Fix;
}

bool SideOutOfRange(std::uint32_t side, std::size_t count)
{
    return side != map::NoSideDef && side >= count;
}

// Sets a LineDef's SideDef numbers that name no SideDef to 0; with no SideDef at all there is
// no 0 to point at. `missingFront` takes a missing front side too.
void ZeroSides(CheckRun& run, std::size_t index, bool missingFront)
{
    const std::size_t count = run.Level.SideDefs.size();
    if (count == 0)
    {
        return;
    }
    run.BeforeRepair();
    LineDef& line = run.Level.LineDefs[index];
    if (missingFront && line.SideDef1 == map::NoSideDef)
    {
        line.SideDef1 = 0;
    }
    for (std::uint32_t* side : {&line.SideDef1, &line.SideDef2})
    {
        if (SideOutOfRange(*side, count))
        {
            *side = 0;
        }
    }
    map::NoteChange(run.Level, map::KindLineDef);
}

// The SideDef findings of one LineDef: a missing front side, numbers out of range, and with
// the option a SideDef an earlier LineDef uses already. `owner` keeps the first user of each
// SideDef. False when stopped.
bool CheckLineSides(CheckRun& run, std::size_t index, std::vector<std::int32_t>& owner)
{
    const int number = static_cast<int>(index);
    const std::size_t count = owner.size();
    bool stopped = false;
    if (std::as_const(run.Level).LineDefs[index].SideDef1 == map::NoSideDef &&
        AskSetToZero(run, index, Format("LineDef %d missing side 1", number), stopped))
    {
        ZeroSides(run, index, true);
    }
    const LineDef sides = std::as_const(run.Level).LineDefs[index];
    if (!stopped &&
        (SideOutOfRange(sides.SideDef1, count) || SideOutOfRange(sides.SideDef2, count)) &&
        AskSetToZero(run, index, Format("LineDef %d SideDef out of range", number), stopped))
    {
        ZeroSides(run, index, false);
    }
    const LineDef line = std::as_const(run.Level).LineDefs[index];
    for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
    {
        if (stopped || side >= count)
        {
            continue;
        }
        if (owner[side] < 0)
        {
            owner[side] = number;
            continue;
        }
        if (owner[side] != number && run.Settings.DuplicateSideDefs)
        {
            Prompt finding;
            finding.Kind = map::KindLineDef;
            finding.Index = static_cast<std::uint32_t>(index);
            finding.Lines = {
                Format("LineDef %d SideDef %d duplicate", number, static_cast<int>(side))};
            stopped = run.Verify(finding) == Answer::Stop;
        }
    }
    return !stopped;
}

} // namespace

bool CheckUnusedVertexes(CheckRun& run)
{
    run.Progress("Checking for Unused Vertexes (esc)");
    const LevelData& level = run.Level;
    const std::size_t lines = level.LineDefs.size();
    const std::size_t count = level.Vertexes.size();
    std::vector<std::uint8_t> used(count, 0);
    for (std::size_t i = 0; i < lines; ++i)
    {
        if (run.Poll(i, lines))
        {
            return false;
        }
        const LineDef line = level.LineDefs[i];
        bool stopped = false;
        if ((line.StartVertex >= count || line.EndVertex >= count) &&
            AskSetToZero(run, i, Format("LineDef %d Vertex out of range", static_cast<int>(i)),
                         stopped) &&
            count > 0)
        {
            run.BeforeRepair();
            LineDef& repaired = run.Level.LineDefs[i];
            repaired.StartVertex = repaired.StartVertex < count ? repaired.StartVertex : 0;
            repaired.EndVertex = repaired.EndVertex < count ? repaired.EndVertex : 0;
            map::NoteChange(run.Level, map::KindLineDef);
        }
        if (stopped)
        {
            return false;
        }
        for (const std::uint32_t vertex :
             {level.LineDefs[i].StartVertex, level.LineDefs[i].EndVertex})
        {
            if (vertex < count)
            {
                used[vertex] = 1;
            }
        }
    }
    OfferRemoval(
        run, map::KindVertex, used,
        {Format("%d Vertexes are not used", CountUnused(used)), "Delete unused Vertices?"});
    return true;
}

bool CheckUnusedSideDefs(CheckRun& run)
{
    run.Progress("Checking for Unused/Duplicate SideDefs (esc)");
    std::vector<std::int32_t> owner(run.Level.SideDefs.size(), -1);
    if (!run.Each(run.Level.LineDefs.size(),
                  [&](std::size_t i) { return CheckLineSides(run, i, owner); }))
    {
        return false;
    }
    std::vector<std::uint8_t> used(owner.size(), 0);
    std::transform(owner.begin(), owner.end(), used.begin(),
                   [](std::int32_t line) { return static_cast<std::uint8_t>(line >= 0); });
    OfferRemoval(run, map::KindSideDef, used,
                 {Format("%d SideDefs are not used", CountUnused(used)), "Delete unused SideDefs?",
                  "(can take some time if many)"});
    return true;
}

bool CheckUnusedSectors(CheckRun& run)
{
    run.Progress("Checking for Unused Sectors (esc)");
    const LevelData& level = run.Level;
    const std::size_t lines = level.LineDefs.size();
    const std::size_t sides = level.SideDefs.size();
    const std::size_t count = level.Sectors.size();
    const auto outOfRange = [&](std::uint32_t side)
    { return side < sides && level.SideDefs[side].Sector >= count; };
    for (std::size_t i = 0; i < lines; ++i)
    {
        if (run.Poll(i, lines))
        {
            return false;
        }
        const LineDef& line = level.LineDefs[i];
        if (!outOfRange(line.SideDef1) && !outOfRange(line.SideDef2))
        {
            continue;
        }
        Prompt finding;
        finding.Kind = map::KindLineDef;
        finding.Index = static_cast<std::uint32_t>(i);
        finding.Lines = {Format("LineDef %d Sector out of range", static_cast<int>(i))};
        if (run.Verify(finding) == Answer::Stop)
        {
            return false;
        }
    }
    // Every SideDef keeps its Sector, used or not: one that stayed after the step before still
    // names it, and a removal must not leave it naming nothing.
    std::vector<std::uint8_t> used(count, 0);
    for (std::size_t s = 0; s < sides; ++s)
    {
        if (run.Poll(s, sides))
        {
            return false;
        }
        const std::uint32_t sector = level.SideDefs[s].Sector;
        if (sector < count)
        {
            used[sector] = 1;
        }
    }
    OfferRemoval(run, map::KindSector, used,
                 {Format("%d Sectors are not used", CountUnused(used)), "Delete unused Sectors?"});
    return true;
}

} // namespace kelvar::check
