// Sectors for drawn lines: the closed run's own Sector, sides by rays, pieces of cut Sectors.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/SectorDraw.h"

#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorRays.h"
#include "map/SectorSplit.h"
#include "platform/Format.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace kelvar::map
{
namespace
{

bool Has(const std::vector<int>& list, int value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

// The lines of the run that close on themselves: a line with an end that no other line of the
// set touches is dropped, again and again, until every end is shared.
std::vector<int> ClosedPart(const LevelData& level, std::vector<int> lines)
{
    for (bool dropped = true; dropped;)
    {
        dropped = false;
        std::vector<int> uses(level.Vertexes.size(), 0);
        for (const int i : lines)
        {
            const LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
            ++uses[line.StartVertex];
            ++uses[line.EndVertex];
        }
        const auto hanging = [&](int i)
        {
            const LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
            return uses[line.StartVertex] < 2 || uses[line.EndVertex] < 2 ||
                   line.StartVertex == line.EndVertex;
        };
        const std::size_t before = lines.size();
        std::erase_if(lines, hanging);
        dropped = lines.size() != before;
    }
    return lines;
}

// Whether the point lies inside the closed lines, by the count of their crossings with a ray
// to the east (half-open at the ends, so a Vertex on the ray counts once).
bool InsideOf(const LevelData& level, const std::vector<int>& closed, double px, double py)
{
    bool inside = false;
    for (const int i : closed)
    {
        const LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        const Vertex& a = level.Vertexes[line.StartVertex];
        const Vertex& b = level.Vertexes[line.EndVertex];
        if ((py < a.Y) == (py < b.Y))
        {
            continue;
        }
        const double x = a.X + (py - a.Y) * (b.X - a.X) / (b.Y - a.Y);
        if (x > px)
        {
            inside = !inside;
        }
    }
    return inside;
}

// The side (1 or 2) of a closed line that faces the inside of the closed set.
int InnerSide(const LevelData& level, const std::vector<int>& closed, int i)
{
    const LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
    const Vertex& a = level.Vertexes[line.StartVertex];
    const Vertex& b = level.Vertexes[line.EndVertex];
    const double dx = b.X - a.X;
    const double dy = b.Y - a.Y;
    const double length = std::sqrt(dx * dx + dy * dy);
    // Half a unit to the right of the middle: the front side.
    const double px = (a.X + b.X) / 2.0 + 0.5 * dy / length;
    const double py = (a.Y + b.Y) / 2.0 - 0.5 * dx / length;
    return InsideOf(level, closed, px, py) ? 1 : 2;
}

std::uint32_t AddSide(LevelData& level, int line, int which, std::uint32_t sector)
{
    const auto side = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, -1, 0, 0));
    level.SideDefs[side].Sector = sector;
    level.LineDefs[static_cast<std::size_t>(line)].Side(which) = side;
    return side;
}

// Steps 2 and 3: the closed part gets a Sector, cloned from the one the drawing started in.
void FillClosedPart(LevelData& level, const DrawnRun& run, const std::vector<int>& closed)
{
    const int made = InsertObject(level, KindSector, run.StartSector, 0, 0);
    const auto sector = static_cast<std::uint32_t>(made);
    level.Sectors[sector].Type = 0;
    level.Sectors[sector].Tag = 0;
    for (const int i : closed)
    {
        const int inner = InnerSide(level, closed, i);
        const std::uint32_t side =
            std::as_const(level).LineDefs[static_cast<std::size_t>(i)].Side(inner);
        if (side == NoSideDef)
        {
            AddSide(level, i, inner, sector);
        }
        else
        {
            level.SideDefs[side].Sector = sector;
        }
    }
}

// Step 4 for one line: each side takes the Sector its ray finds; a side whose ray finds none
// goes. The question about a two-sided line's invalid side is asked once, and its answer
// (kept in `removeInvalidBacks`) stands for the rest of the lines.
void CorrectByRays(LevelData& level, int i, std::optional<bool>& removeInvalidBacks)
{
    const LevelData& view = level;
    for (const int which : {1, 2})
    {
        const std::uint32_t side = view.LineDefs[static_cast<std::size_t>(i)].Side(which);
        const int found = SectorBeside(view, i, which).Sector;
        if (found >= 0)
        {
            if (side == NoSideDef)
            {
                AddSide(level, i, which, static_cast<std::uint32_t>(found));
            }
            else if (SectorOfSide(view, side) != static_cast<std::uint32_t>(found))
            {
                level.SideDefs[side].Sector = static_cast<std::uint32_t>(found);
            }
            continue;
        }
        if (side == NoSideDef)
        {
            continue;
        }
        const LineDef& line = view.LineDefs[static_cast<std::size_t>(i)];
        if (line.SideDef1 != NoSideDef && line.SideDef2 != NoSideDef)
        {
            if (!removeInvalidBacks)
            {
                platform::Message question;
                question.Title = "Drawing";
                question.Lines = {
                    platform::Format("2 sided new Line %hu points to an invalid sector",
                                     static_cast<unsigned short>(i)),
                    "Do you want to delete SD2 and flip it?", "(This includes all the rest too.)"};
                question.Buttons = platform::MessageButtons::YesNo;
                removeInvalidBacks = platform::TheUi().Show(question) == 1;
            }
            if (!*removeInvalidBacks)
            {
                continue;
            }
        }
        LineDef& edited = level.LineDefs[static_cast<std::size_t>(i)];
        edited.Side(which) = NoSideDef;
        if (which == 1 && edited.SideDef2 != NoSideDef)
        {
            // The side left over becomes the front: the line turns round.
            std::swap(edited.StartVertex, edited.EndVertex);
            std::swap(edited.SideDef1, edited.SideDef2);
        }
    }
}

void TellConflict(const DrawnRun& run)
{
    if (Map().Options.ExpertMode)
    {
        return;
    }
    platform::Message message;
    if (run.LineDrawMode)
    {
        message.Title = "LineDraw";
        message.Lines = {"LineDraw Create Conflict", "Could not determine all Sectors",
                         "Check the Sectors of the new lines, or undo and draw again"};
    }
    else
    {
        message.Title = "Sector Ref bad";
        message.Lines = {"Fix the Sector References",
                         "The Sector just added to the Linedef/Sidedefs"};
    }
    platform::TheUi().Show(message);
}

// The LineDefs of a list that exist.
std::vector<int> Existing(const LevelData& level, const std::vector<int>& lines)
{
    std::vector<int> kept;
    for (const int i : lines)
    {
        if (i >= 0 && i < level.LineDefs.Count())
        {
            kept.push_back(i);
        }
    }
    return kept;
}

} // namespace

bool SmartDrawSectors(LevelData& level, const DrawnRun& run)
{
    const StoreChange busy;
    const LevelData& view = level;
    const std::vector<int> newLines = Existing(view, run.NewLines);
    // Step 1: the closed part of the run.
    const std::vector<int> closed = ClosedPart(view, Existing(view, run.Lines));
    // Steps 2 and 3.
    if (!closed.empty())
    {
        FillClosedPart(level, run, closed);
    }
    // Step 4: rays have the last word on the lines the run made.
    std::optional<bool> removeInvalidBacks;
    for (const int i : newLines)
    {
        CorrectByRays(level, i, removeInvalidBacks);
    }
    // Step 5: a closed line that still faces nothing on its inner side is a conflict.
    const auto sideless = [&](int i)
    {
        const LineDef& line = view.LineDefs[static_cast<std::size_t>(i)];
        return line.SideDef1 == NoSideDef && line.SideDef2 == NoSideDef;
    };
    if (std::any_of(closed.begin(), closed.end(), sideless))
    {
        TellConflict(run);
    }
    // Step 6.
    if (Map().Options.NewIntersectionSectors && run.Crossings > 0)
    {
        NewIntersectionSectors(level, run.StartSector, newLines);
    }
    // Step 7: final flags and textures; a one-sided-lines run drops every back side.
    for (const int i : newLines)
    {
        LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        if (line.SideDef1 == NoSideDef && line.SideDef2 != NoSideDef)
        {
            std::swap(line.StartVertex, line.EndVertex);
            std::swap(line.SideDef1, line.SideDef2);
        }
        if (run.Action == 2 && line.SideDef1 != NoSideDef)
        {
            line.SideDef2 = NoSideDef;
        }
        FinishDrawnLine(level, i);
    }
    // Existing lines the run went along or closed on got a side: their flags and faces too.
    for (const std::vector<int>& lines : {Existing(view, run.ExistingLines), closed})
    {
        for (const int i : lines)
        {
            if (!Has(newLines, i))
            {
                FinishDrawnLine(level, i);
            }
        }
    }
    NoteChange(level, KindSector);
    // After step 7 a line with no front has no side at all.
    for (const int i : newLines)
    {
        if (Has(closed, i) && sideless(i))
        {
            platform::Message message;
            message.Title = "LineDraw";
            message.Lines = {platform::Format("line %d sideDef1 is missing?", i)};
            platform::TheUi().Show(message);
            return false;
        }
    }
    return true;
}

int NewIntersectionSectors(LevelData& level, int sector, const std::vector<int>& drawnLines)
{
    // The Sector cut by the drawing (any, for -1), and each piece made of it so far.
    std::vector<std::uint32_t> pieces{static_cast<std::uint32_t>(sector)};
    const bool anySector = sector < 0;
    for (int pass = 1; pass <= 500; ++pass)
    {
        platform::TheUi().SetStatusText(
            platform::Format("Getting All Lines %hd", static_cast<short>(pass)));
        bool divided = false;
        for (const int i : Existing(level, drawnLines))
        {
            const LineDef& line = std::as_const(level).LineDefs[static_cast<std::size_t>(i)];
            const std::uint32_t front = SectorOfSide(level, line.SideDef1);
            if (front == NoSector || front != SectorOfSide(level, line.SideDef2) ||
                (!anySector && std::find(pieces.begin(), pieces.end(), front) == pieces.end()))
            {
                continue;
            }
            const int made = DivideSectorAlong(level, i);
            if (made >= 0)
            {
                pieces.push_back(static_cast<std::uint32_t>(made));
                divided = true;
            }
        }
        if (!divided)
        {
            return static_cast<int>(pieces.size()) - 1;
        }
    }
    platform::Message message;
    message.Title = "LineDraw";
    message.Lines = {platform::Format(
        "Possible Loop > %d\n\nCreate New Sectors for Intersections aborted", 500)};
    platform::TheUi().Show(message);
    return static_cast<int>(pieces.size()) - 1;
}

} // namespace kelvar::map
