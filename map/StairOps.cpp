// Make Stairs from 2 Linedefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/StairOps.h"

#include "map/Geometry.h"
#include "map/LineOps.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace kelvar::map
{

namespace
{

const TextureName StairFloor = TextureName::From("FLAT5_4");
const TextureName StairCeiling = TextureName::From("FLAT4");
const TextureName StairRiser = TextureName::From("STONE4");

bool Refuse(const std::string& title, const std::vector<std::string>& lines)
{
    platform::ShowMessageLines(0, title, lines);
    return false;
}

// The LineDef joining two Vertexes, either way round, or -1.
int LineBetween(const LevelData& level, std::uint32_t a, std::uint32_t b)
{
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& line = level.LineDefs[i];
        if ((line.StartVertex == a && line.EndVertex == b) ||
            (line.StartVertex == b && line.EndVertex == a))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// What the user wants: the steps, their height and which end the stairs start from.
struct StairAnswers
{
    int Steps = 0;
    int Height = 0;
    bool Reverse = false;
};

std::optional<StairAnswers> AskStairs(int sector)
{
    const std::string caption = platform::Format("Stairs in Sector %d", sector);
    const std::optional<int> steps =
        platform::TheUi().AskNumber(caption, "Number of Steps", 8, 2, 64);
    const std::optional<int> height =
        steps ? platform::TheUi().AskNumber(caption, "Step Height", 8, -24, 24) : std::nullopt;
    if (!height)
    {
        return std::nullopt;
    }
    const bool reverse =
        platform::ShowMessageLines(platform::LinesCancel, caption, {"Reverse Stair Direction?"},
                                   platform::MessageButtons::YesNo) == 1;
    return StairAnswers{*steps, *height, reverse};
}

// The side of a dividing LineDef that faces `point` is put in `sector`; a missing one is made.
void FaceTowards(LevelData& level, int line, Point point, std::uint32_t sector)
{
    const LineDef& divider = std::as_const(level).LineDefs[static_cast<std::size_t>(line)];
    const int side = SideFacing(level, divider, point);
    std::uint32_t face = divider.Side(side);
    if (face == NoSideDef)
    {
        face = static_cast<std::uint32_t>(InsertObject(level, KindSideDef, -1, 0, 0));
        level.LineDefs[static_cast<std::size_t>(line)].Side(side) = face;
        level.SideDefs[face].NormalTexture = NoTexture;
    }
    level.SideDefs[face].Sector = sector;
}

// One Sector a step, its floor a step above the one before; the ceiling stays unless the
// floor comes within a step of it.
std::vector<std::uint32_t> MakeStepSectors(LevelData& level, const Sector& room,
                                           const StairAnswers& answers)
{
    std::vector<std::uint32_t> steps;
    int floor = room.FloorHeight;
    int ceiling = room.CeilingHeight;
    for (int step = 0; step < answers.Steps; ++step)
    {
        floor += answers.Height;
        if (ceiling - floor < answers.Height)
        {
            ceiling += answers.Height;
        }
        const auto sector = static_cast<std::uint32_t>(InsertObject(level, KindSector, -1, 0, 0));
        Sector& made = level.Sectors[sector];
        made.FloorHeight = static_cast<std::int16_t>(floor);
        made.CeilingHeight = static_cast<std::int16_t>(ceiling);
        made.FloorTexture = StairFloor;
        made.CeilingTexture = StairCeiling;
        made.Light = room.Light;
        steps.push_back(sector);
    }
    return steps;
}

// A part of a selected LineDef faces its step: its side in the room moves to the step.
void MoveToStep(LevelData& level, int part, std::uint32_t room, std::uint32_t step)
{
    const LineDef& piece = std::as_const(level).LineDefs[static_cast<std::size_t>(part)];
    for (const std::uint32_t side : {piece.SideDef1, piece.SideDef2})
    {
        if (SectorOfSide(level, side) == room)
        {
            level.SideDefs[side].Sector = step;
            return;
        }
    }
}

// The Vertex of a part at the lower end of its step (`lower`) or at the upper end; `reversed`
// when the stairs climb against the LineDef's direction.
std::uint32_t StepEnd(const LevelData& level, int part, bool lower, bool reversed)
{
    const LineDef& piece = level.LineDefs[static_cast<std::size_t>(part)];
    return lower != reversed ? piece.StartVertex : piece.EndVertex;
}

// The boundary between two neighbours of the stairs, from `v1` to `v2`: a LineDef there
// already is used. A one-sided wall only has its side put in the step it faces (`inside` is a
// point of the step named `inner`). Otherwise the LineDef is two-sided, its front facing the
// lower floor, whose side shows the riser.
void MakeBoundary(LevelData& level, std::uint32_t v1, std::uint32_t v2, std::uint32_t inner,
                  std::uint32_t outer, Point inside)
{
    int line = LineBetween(level, v1, v2);
    const bool wall =
        line >= 0 &&
        (std::as_const(level).LineDefs[static_cast<std::size_t>(line)].SideDef1 == NoSideDef ||
         std::as_const(level).LineDefs[static_cast<std::size_t>(line)].SideDef2 == NoSideDef);
    if (line < 0)
    {
        line = InsertObject(level, KindLineDef, -1, 0, 0);
        LineDef& made = level.LineDefs[static_cast<std::size_t>(line)];
        made.StartVertex = v1;
        made.EndVertex = v2;
    }
    const Point a = VertexPoint(level, v1);
    const Point outside = {2 * a.X - inside.X, 2 * a.Y - inside.Y};
    FaceTowards(level, line, inside, inner);
    if (wall)
    {
        return;
    }
    FaceTowards(level, line, outside, outer);
    LineDef& riser = level.LineDefs[static_cast<std::size_t>(line)];
    const int frontFloor = level.Sectors[SectorOfSide(level, riser.SideDef1)].FloorHeight;
    const int backFloor = level.Sectors[SectorOfSide(level, riser.SideDef2)].FloorHeight;
    if (frontFloor > backFloor)
    {
        std::swap(riser.StartVertex, riser.EndVertex);
        std::swap(riser.SideDef1, riser.SideDef2);
    }
    riser.Flags = static_cast<std::uint16_t>((riser.Flags | FlagTwoSided) & ~FlagImpassable);
    level.SideDefs[riser.SideDef1].LowerTexture = StairRiser;
    level.SideDefs[riser.SideDef1].NormalTexture = NoTexture;
    level.SideDefs[riser.SideDef2].NormalTexture = NoTexture;
}

// True when `line` cut into `parts` gives parts over 2 map units; else "Steps are too small %d".
bool PartsFit(const LevelData& level, const LineDef& line, int parts)
{
    const double fraction =
        Distance(VertexPoint(level, line.StartVertex), VertexPoint(level, line.EndVertex)) / parts;
    if (fraction > 2.0)
    {
        return true;
    }
    platform::ShowMessageLines(
        0, "Stair error", {platform::Format("Steps are too small %d", static_cast<int>(fraction))});
    return false;
}

} // namespace

std::vector<int> SplitEven(LevelData& level, int line, int parts)
{
    const LineDef whole = std::as_const(level).LineDefs[static_cast<std::size_t>(line)];
    if (!PartsFit(level, whole, parts))
    {
        return {};
    }
    const Point start = VertexPoint(level, whole.StartVertex);
    const Point end = VertexPoint(level, whole.EndVertex);
    const double dx = end.X - start.X;
    const double dy = end.Y - start.Y;
    const double length = std::hypot(dx, dy);
    const double fraction = length / parts;
    std::vector<int> pieces = {line};
    for (int k = 1; k < parts; ++k)
    {
        const auto x = static_cast<int>(start.X + std::trunc(dx * k * fraction / length));
        const auto y = static_cast<int>(start.Y + std::trunc(dy * k * fraction / length));
        const int vertex = InsertObject(level, KindVertex, -1, x, y);
        pieces.push_back(SplitLineDefAt(level, pieces.back(), vertex));
    }
    return pieces;
}

bool MakeStairs(LevelData& level, const ObjectList& list)
{
    const std::vector<std::int32_t> lines = list.Objects();
    if (lines.size() != 2)
    {
        return Refuse(
            "Stair Mistake",
            {"Select 2 LineDefs Opposite one another", "Stairs are constructed IN BETWEEN 2 Lines",
             "And run parallel to them",
             platform::Format("You have %d LineDefs selected", static_cast<int>(lines.size()))});
    }
    // The first marked is the first LineDef; the list is newest first.
    const int first = lines[1];
    const int second = lines[0];
    const LineDef a = std::as_const(level).LineDefs[static_cast<std::size_t>(first)];
    const LineDef b = std::as_const(level).LineDefs[static_cast<std::size_t>(second)];
    if (a.StartVertex == b.StartVertex || a.StartVertex == b.EndVertex ||
        a.EndVertex == b.StartVertex || a.EndVertex == b.EndVertex)
    {
        return Refuse("Stair error", {"The 2 LineDefs share", "a common Vertex!"});
    }
    // The sides that face each other, and whether the two run the same way.
    const std::uint32_t sideA = a.Side(SideFacing(level, a, PointAlong(level, b, 0.5)));
    const std::uint32_t sideB = b.Side(SideFacing(level, b, PointAlong(level, a, 0.5)));
    const std::uint32_t sectorA = SectorOfSide(level, sideA);
    const std::uint32_t sectorB = SectorOfSide(level, sideB);
    if (sectorA != sectorB || sectorA >= level.Sectors.size())
    {
        return Refuse("Stair error",
                      {"The 2 LineDefs do not share",
                       platform::Format("the same sector %d,%d?", static_cast<int>(sectorA),
                                        static_cast<int>(sectorB))});
    }
    const Point aStart = VertexPoint(level, a.StartVertex);
    const bool sameWay = Distance(aStart, VertexPoint(level, b.StartVertex)) <
                         Distance(aStart, VertexPoint(level, b.EndVertex));
    const std::optional<StairAnswers> answers = AskStairs(static_cast<int>(sectorA));
    if (!answers)
    {
        return false;
    }
    // Both LineDefs must take the steps before either is cut.
    if (!PartsFit(level, a, answers->Steps) || !PartsFit(level, b, answers->Steps))
    {
        return false;
    }
    std::vector<int> partsA = SplitEven(level, first, answers->Steps);
    std::vector<int> partsB = SplitEven(level, second, answers->Steps);
    if (!sameWay)
    {
        std::reverse(partsB.begin(), partsB.end());
    }
    if (answers->Reverse)
    {
        std::reverse(partsA.begin(), partsA.end());
        std::reverse(partsB.begin(), partsB.end());
    }
    const Sector room = std::as_const(level).Sectors[sectorA];
    const std::vector<std::uint32_t> steps = MakeStepSectors(level, room, *answers);
    for (std::size_t step = 0; step < steps.size(); ++step)
    {
        MoveToStep(level, partsA[step], sectorA, steps[step]);
        MoveToStep(level, partsB[step], sectorA, steps[step]);
    }
    // The boundaries: before each step, and after the last.
    const bool runA = answers->Reverse;
    const bool runB = answers->Reverse != !sameWay;
    for (std::size_t k = 0; k <= steps.size(); ++k)
    {
        const bool last = k == steps.size();
        const int partA = partsA[last ? k - 1 : k];
        const int partB = partsB[last ? k - 1 : k];
        const std::uint32_t v1 = StepEnd(level, partA, !last, runA);
        const std::uint32_t v2 = StepEnd(level, partB, !last, runB);
        const std::uint32_t before = k == 0 ? sectorA : steps[k - 1];
        const std::uint32_t after = last ? sectorA : steps[k];
        const Point inside =
            PointAlong(level, std::as_const(level).LineDefs[static_cast<std::size_t>(partA)], 0.5);
        MakeBoundary(level, v1, v2, last ? before : after, last ? after : before, inside);
    }
    NoteChange(level, KindSector);
    return true;
}

} // namespace kelvar::map
