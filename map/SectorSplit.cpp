// Dividing a Sector by a new line between two Vertexes; joining two Vertexes by a plain line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorSplit.h"

#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorRays.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Ui.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace kelvar::map
{
namespace
{

constexpr const char* SplitTitle = "Split Sector";

bool Ask(const std::string& title, std::vector<std::string> lines)
{
    platform::Message message;
    message.Title = title;
    message.Lines = std::move(lines);
    message.Buttons = platform::MessageButtons::OkCancel;
    message.ButtonTexts = {"Continue", "Cancel"};
    return platform::TheUi().Show(message) == 1;
}

void Tell(const std::string& title, std::vector<std::string> lines)
{
    platform::Message message;
    message.Title = title;
    message.Lines = std::move(lines);
    platform::TheUi().Show(message);
}

bool Touches(const LineDef& line, std::uint32_t vertex)
{
    return line.StartVertex == vertex || line.EndVertex == vertex;
}

// One step of the walk: a LineDef and the side of it that lies in the Sector.
struct WalkStep
{
    std::int32_t Line;
    int Side; // 1 or 2
};

enum class WalkEnd
{
    Reached, // arrived at the second Vertex
    Circled, // came back to the first
    NoWayOn, // no side of the Sector leads on
};

struct Walk
{
    std::vector<WalkStep> Steps;
    WalkEnd End = WalkEnd::NoWayOn;
    std::uint32_t StuckAt = 0;
};

// The first LineDef not yet taken that leads on from `at` with the Sector on its right: its
// front in the Sector and starting at `at`, or its back in the Sector and ending there.
std::optional<WalkStep> NextStep(const LevelData& level, std::uint32_t sector, std::uint32_t at,
                                 const std::vector<bool>& taken)
{
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& line = level.LineDefs[i];
        if (taken[i])
        {
            continue;
        }
        if (SectorOfSide(level, line.SideDef1) == sector && line.StartVertex == at)
        {
            return WalkStep{static_cast<std::int32_t>(i), 1};
        }
        if (SectorOfSide(level, line.SideDef2) == sector && line.EndVertex == at)
        {
            return WalkStep{static_cast<std::int32_t>(i), 2};
        }
    }
    return std::nullopt;
}

// Follows the sides of `sector` from `from`, keeping the Sector on the right, until `to`.
// LineDef `skip` (-1 for none) is never taken.
Walk WalkSector(const LevelData& level, std::uint32_t sector, std::uint32_t from, std::uint32_t to,
                int skip)
{
    Walk walk;
    std::vector<bool> taken(level.LineDefs.size(), false);
    if (skip >= 0)
    {
        taken[static_cast<std::size_t>(skip)] = true;
    }
    for (std::uint32_t at = from;;)
    {
        const std::optional<WalkStep> step = NextStep(level, sector, at, taken);
        if (!step)
        {
            walk.End = WalkEnd::NoWayOn;
            walk.StuckAt = at;
            return walk;
        }
        taken[static_cast<std::size_t>(step->Line)] = true;
        walk.Steps.push_back(*step);
        const LineDef& line = level.LineDefs[static_cast<std::size_t>(step->Line)];
        at = step->Side == 1 ? line.EndVertex : line.StartVertex;
        if (at == to || at == from)
        {
            walk.End = at == to ? WalkEnd::Reached : WalkEnd::Circled;
            return walk;
        }
    }
}

// True when a SideDef of the walk serves twice, or also serves a LineDef off the walk.
bool WalkSharesSideDefs(const LevelData& level, const Walk& walk)
{
    std::vector<std::uint8_t> onWalk(level.LineDefs.size(), 0);
    std::vector<std::uint32_t> sorted;
    for (const WalkStep& step : walk.Steps)
    {
        onWalk[static_cast<std::size_t>(step.Line)] = 1;
        sorted.push_back(level.LineDefs[static_cast<std::size_t>(step.Line)].Side(step.Side));
    }
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end())
    {
        return true;
    }
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& line = level.LineDefs[i];
        if (onWalk[i] != 0)
        {
            continue;
        }
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            if (side != NoSideDef && std::binary_search(sorted.begin(), sorted.end(), side))
            {
                return true;
            }
        }
    }
    return false;
}

// The walked sides go to the Sector of the part the walk closed off.
void MoveWalkedSides(LevelData& level, const Walk& walk, std::uint32_t sector)
{
    for (const WalkStep& step : walk.Steps)
    {
        const std::uint32_t side =
            std::as_const(level).LineDefs[static_cast<std::size_t>(step.Line)].Side(step.Side);
        level.SideDefs[side].Sector = sector;
    }
}

// What one scan of the LineDefs finds about the two Vertexes.
struct Survey
{
    int Joining = -1;                   // a LineDef that already joins them
    int Second = -1;                    // and a second one, a duplicate
    std::uint32_t SectorAtA = NoSector; // the Sector next to each end, by its LineDefs
    std::uint32_t SectorAtB = NoSector;
};

Survey SurveyVertexes(const LevelData& level, std::uint32_t a, std::uint32_t b,
                      std::uint32_t sector)
{
    Survey found;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& line = level.LineDefs[i];
        const bool joins = (line.StartVertex == a && line.EndVertex == b) ||
                           (line.StartVertex == b && line.EndVertex == a);
        if (joins)
        {
            if (found.Joining < 0)
            {
                found.Joining = static_cast<int>(i);
            }
            else if (found.Second < 0)
            {
                found.Second = static_cast<int>(i);
            }
        }
        const bool inSector = sector != NoSector && (SectorOfSide(level, line.SideDef1) == sector ||
                                                     SectorOfSide(level, line.SideDef2) == sector);
        if (inSector && Touches(line, a))
        {
            found.SectorAtA = sector;
        }
        if (inSector && Touches(line, b))
        {
            found.SectorAtB = sector;
        }
    }
    return found;
}

std::uint32_t SectorAtVertex(const LevelData& level, std::uint32_t vertex)
{
    const Vertex& v = level.Vertexes[vertex];
    const int found = SectorAt(level, v.X, v.Y, SectorAtMode::Loose);
    return found < 0 ? NoSector : static_cast<std::uint32_t>(found);
}

// A SideDef for the new line: a copy of `from` when there is one, else the defaults, with no
// normal texture and facing `sector`.
std::uint32_t NewSide(LevelData& level, std::uint32_t from, std::uint32_t sector)
{
    const int source = from < level.SideDefs.size() ? static_cast<int>(from) : -1;
    const auto side = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, source, 0, 0));
    level.SideDefs[side].NormalTexture = NoTexture;
    level.SideDefs[side].Sector = sector;
    return side;
}

// Step 9 of a split: every other side of the old Sector that a ray puts in the new one moves,
// and what is joined to the moved LineDefs through shared Vertexes (islands, spurs) goes along.
// The new line's own Vertexes border both halves and never carry the flood.
void SortOutTheRest(LevelData& level, std::uint32_t oldSector, std::uint32_t newSector,
                    std::uint32_t a, std::uint32_t b)
{
    platform::TheUi().SetStatusText("Splitting Sector");
    const LevelData& view = level; // reads through a const view keep the spatial index
    std::vector<std::uint8_t> inSet(view.Vertexes.size(), 0);
    bool any = false;
    for (int i = 0; i < view.LineDefs.Count(); ++i)
    {
        for (const int which : {1, 2})
        {
            const std::uint32_t side = view.LineDefs[static_cast<std::size_t>(i)].Side(which);
            if (SectorOfSide(view, side) != oldSector)
            {
                continue;
            }
            if (SectorBeside(view, i, which).Sector == static_cast<int>(newSector))
            {
                level.SideDefs[side].Sector = newSector;
                const LineDef& line = view.LineDefs[static_cast<std::size_t>(i)];
                inSet[line.StartVertex] = 1;
                inSet[line.EndVertex] = 1;
                any = true;
            }
        }
    }
    if (!any)
    {
        return;
    }
    inSet[a] = 0;
    inSet[b] = 0;
    const auto hasOldSide = [&](const LineDef& line)
    {
        return SectorOfSide(view, line.SideDef1) == oldSector ||
               SectorOfSide(view, line.SideDef2) == oldSector;
    };
    for (bool grew = true; grew;)
    {
        grew = false;
        for (const LineDef& line : view.LineDefs)
        {
            if (!hasOldSide(line) || (inSet[line.StartVertex] == 0 && inSet[line.EndVertex] == 0))
            {
                continue;
            }
            for (const std::uint32_t end : {line.StartVertex, line.EndVertex})
            {
                if (inSet[end] == 0 && end != a && end != b)
                {
                    inSet[end] = 1;
                    grew = true;
                }
            }
        }
    }
    for (const LineDef& line : view.LineDefs)
    {
        if (inSet[line.StartVertex] == 0 && inSet[line.EndVertex] == 0)
        {
            continue;
        }
        for (const std::uint32_t side : {line.SideDef1, line.SideDef2})
        {
            if (SectorOfSide(view, side) == oldSector)
            {
                level.SideDefs[side].Sector = newSector;
            }
        }
    }
}

// The Split Options question: 0 Exit, 1 two-sided line, 2 split; nothing when cancelled.
std::optional<int> AskSplitOptions(const LevelData& level, std::uint32_t a, std::uint32_t b)
{
    bool used = false;
    for (const LineDef& line : level.LineDefs)
    {
        used = used || Touches(line, a) || Touches(line, b);
    }
    return platform::TheUi().ChooseEntry("  Split Options",
                                         {"&1.  Exit (to replace a deleted line-drawing only)",
                                          "&2.  2-Sided Line (existing area is 1 sector)",
                                          "&3.  Split Sector (existing area is 1 sector)"},
                                         {true, true, used});
}

} // namespace

int SplitSector(LevelData& level, int vertexA, int vertexB, bool takeUndoStep)
{
    if (vertexA < 0 || vertexB < 0 || vertexA >= level.Vertexes.Count() ||
        vertexB >= level.Vertexes.Count())
    {
        return SplitNothing;
    }
    const auto a = static_cast<std::uint32_t>(vertexA);
    const auto b = static_cast<std::uint32_t>(vertexB);
    const LevelData& view = level; // reads through a const view keep the spatial index
    const std::optional<int> choice = AskSplitOptions(view, a, b);
    if (!choice || *choice == 0)
    {
        return SplitExit;
    }
    bool split = *choice == 2 && a != b;

    const Vertex& va = view.Vertexes[a];
    const Vertex& vb = view.Vertexes[b];
    const int found = SectorAt(view, (va.X + vb.X) / 2.0, (va.Y + vb.Y) / 2.0, SectorAtMode::Loose);
    if (found != -1 && !Ask(SplitTitle, {"No Sector found between",
                                         platform::Format("Vertex %d and %d", vertexA, vertexB),
                                         "Reply Continue to make the line"}))
    {
        return SplitNothing;
    }
    std::uint32_t sector = found < 0 ? NoSector : static_cast<std::uint32_t>(found);

    const Survey survey = SurveyVertexes(view, a, b, sector);
    if (survey.Second >= 0)
    {
        Tell(SplitTitle, {platform::Format("LineDef %d and %d are duplicates?", survey.Joining,
                                           survey.Second)});
        return SplitNothing;
    }
    if (survey.Joining >= 0)
    {
        const LineDef& line = view.LineDefs[static_cast<std::size_t>(survey.Joining)];
        const std::uint32_t s1 = SectorOfSide(view, line.SideDef1);
        const std::uint32_t s2 = SectorOfSide(view, line.SideDef2);
        if (line.SideDef1 != NoSideDef && line.SideDef2 != NoSideDef && s1 != s2)
        {
            Tell(SplitTitle,
                 {platform::Format("LineDef %d already splits sector", survey.Joining)});
            return SplitNothing;
        }
    }

    // Where an end has no neighbour in the Sector, the Sector at the Vertex stands in.
    const std::uint32_t atA =
        survey.SectorAtA != NoSector ? survey.SectorAtA : SectorAtVertex(view, a);
    const std::uint32_t atB =
        survey.SectorAtB != NoSector ? survey.SectorAtB : SectorAtVertex(view, b);
    if (split)
    {
        const bool looseA = survey.SectorAtA == NoSector;
        const bool looseB = survey.SectorAtB == NoSector;
        if (looseA && looseB)
        {
            Tell(SplitTitle,
                 {"New line is not connected to another", "line belonging to same sector."});
            split = false;
        }
        else if (atA != atB)
        {
            Tell(SplitTitle, {platform::Format("Vertexes %d and %d are not in the same Sector?",
                                               vertexA, vertexB)});
            split = false;
        }
        else if (looseA || looseB)
        {
            Tell("Caution", {"2-sided line is not connected to a line on both sides"});
            split = false;
        }
        if (sector == NoSector)
        {
            sector = atA;
        }
    }

    Walk walk;
    if (split)
    {
        walk = WalkSector(view, sector, a, b, -1);
        if (walk.End == WalkEnd::Circled)
        {
            if (!Ask(SplitTitle, {"Could not connect Vertex1 to Vertex2",
                                  "Possibly vertex on one side touches an inner area",
                                  "and the other is the outside, but the two don't meet.",
                                  "Usually continue makes a 2-sided line"}))
            {
                return SplitNothing;
            }
            split = false;
        }
        else if (walk.End == WalkEnd::NoWayOn)
        {
            const bool atStart = walk.StuckAt == a;
            const std::vector<std::string> lines =
                atStart ? std::vector<std::string>{platform::Format(
                              "There is no SideDef starting from Vertex %d", vertexA)}
                        : std::vector<std::string>{platform::Format("Cannot go past Vertex %d)",
                                                                    static_cast<int>(walk.StuckAt)),
                                                   "Could not connect Vertex1 to Vertex2",
                                                   "Either the area is not closed or reached",
                                                   "an inner area not connected to beginnning!",
                                                   "(delete/fix line if not continuing)"};
            if (!Ask(SplitTitle, lines))
            {
                return SplitNothing;
            }
            split = false;
        }
        if (split && WalkSharesSideDefs(view, walk))
        {
            Tell(SplitTitle, {"ERROR\n\nPacked/Duplicate Sidedefs can't be split"});
            return SplitNothing;
        }
    }

    if (takeUndoStep)
    {
        SaveUndoStep();
    }
    const StoreChange busy;
    if (sector == NoSector)
    {
        // Nothing around the line: it gets a Sector of its own, with the defaults.
        sector = static_cast<std::uint32_t>(InsertObject(level, KindSector, -1, 0, 0));
    }
    std::uint32_t farSector = sector;
    if (split)
    {
        farSector = static_cast<std::uint32_t>(
            InsertObject(level, KindSector, static_cast<int>(sector), 0, 0));
    }

    // The line: the existing one with its missing side added, or a new one.
    int line = survey.Joining;
    std::uint32_t oldStart = 0;
    std::uint32_t present = NoSideDef;
    if (line < 0)
    {
        line = InsertLineDef(level, a, b); // its ends are set below
    }
    else
    {
        const LineDef& old = view.LineDefs[static_cast<std::size_t>(line)];
        oldStart = old.StartVertex;
        present = old.SideDef1 != NoSideDef ? old.SideDef1 : old.SideDef2;
    }
    const std::uint32_t first = present != NoSideDef ? present : NewSide(level, NoSideDef, sector);
    level.SideDefs[first].Sector = sector;
    level.SideDefs[first].NormalTexture = NoTexture;
    const std::uint32_t second = NewSide(level, first, farSector);
    LineDef& made = level.LineDefs[static_cast<std::size_t>(line)];
    made.StartVertex = split ? b : a;
    made.EndVertex = split ? a : b;
    made.SideDef1 = second;
    made.SideDef2 = first;
    made.Flags = 4;
    if (split)
    {
        MoveWalkedSides(level, walk, farSector);
        SortOutTheRest(level, sector, farSector, a, b);
    }
    if (survey.Joining >= 0 &&
        view.LineDefs[static_cast<std::size_t>(line)].StartVertex != oldStart)
    {
        LineDef& back = level.LineDefs[static_cast<std::size_t>(line)];
        std::swap(back.StartVertex, back.EndVertex);
        std::swap(back.SideDef1, back.SideDef2);
    }
    NoteChange(level, KindLineDef);
    return SplitDone;
}

int DivideSectorAlong(LevelData& level, int line)
{
    const LevelData& view = level;
    if (line < 0 || line >= view.LineDefs.Count())
    {
        return -1;
    }
    const LineDef divider = view.LineDefs[static_cast<std::size_t>(line)];
    const std::uint32_t sector = SectorOfSide(view, divider.SideDef1);
    if (sector == NoSector || SectorOfSide(view, divider.SideDef2) != sector ||
        divider.StartVertex == divider.EndVertex)
    {
        return -1;
    }
    // The walk must not take the divider itself: its sides lie in the Sector too.
    const Walk walk = WalkSector(view, sector, divider.EndVertex, divider.StartVertex, line);
    if (walk.End != WalkEnd::Reached || WalkSharesSideDefs(view, walk))
    {
        return -1;
    }
    const StoreChange busy;
    const auto made =
        static_cast<std::uint32_t>(InsertObject(level, KindSector, static_cast<int>(sector), 0, 0));
    level.Sectors[made].Type = 0;
    level.Sectors[made].Tag = 0;
    MoveWalkedSides(level, walk, made);
    level.SideDefs[divider.SideDef1].Sector = made;
    SortOutTheRest(level, sector, made, divider.StartVertex, divider.EndVertex);
    NoteChange(level, KindSector);
    return static_cast<int>(made);
}

int ConnectVertexes(LevelData& level, int vertexA, int vertexB)
{
    const StoreChange busy;
    const int line = InsertLineDef(level, static_cast<std::uint32_t>(vertexA),
                                   static_cast<std::uint32_t>(vertexB));
    // Both rays first, before a side is added that the other ray would see.
    const int front = SectorBeside(std::as_const(level), line, 1).Sector;
    const int back = SectorBeside(std::as_const(level), line, 2).Sector;
    for (const auto& [which, sector] : {std::pair{1, front}, std::pair{2, back}})
    {
        if (sector < 0)
        {
            continue;
        }
        const auto side = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, -1, 0, 0));
        level.SideDefs[side].Sector = static_cast<std::uint32_t>(sector);
        level.LineDefs[static_cast<std::size_t>(line)].Side(which) = side;
    }
    FinishDrawnLine(level, line);
    return line;
}

} // namespace kelvar::map
