// The LineDraw tool: placing Vertexes, drawing and splitting lines, closing runs into Sectors.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/LineDraw.h"

#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/SectorDraw.h"
#include "map/SectorRays.h"
#include "map/SectorSplit.h"
#include "map/SpatialIndex.h"
#include "map/Undo.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "tools/Snap.h"
#include "view/HitTest.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kelvar::tools
{
namespace
{

// Rounding of a crossing: half a unit away from zero, then truncated.
double RoundAway(double value)
{
    return static_cast<double>(static_cast<long long>(value < 0 ? value - 0.5 : value + 0.5));
}

bool Contains(const std::vector<int>& list, int value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

void PushOnce(std::vector<int>& list, int value)
{
    if (!Contains(list, value))
    {
        list.push_back(value);
    }
}

const map::LineDef& LineAt(const map::LevelData& level, int i)
{
    return level.LineDefs[static_cast<std::size_t>(i)];
}

// The LineDef that already joins two Vertexes, either way round, or -1.
int JoiningLine(const map::LevelData& level, int a, int b)
{
    const auto ua = static_cast<std::uint32_t>(a);
    const auto ub = static_cast<std::uint32_t>(b);
    const map::Point p = map::VertexPoint(level, ua);
    for (const std::int32_t i : map::IndexOf(level).LineDefsNear(p.X, p.Y, p.X, p.Y))
    {
        const map::LineDef& line = LineAt(level, i);
        if ((line.StartVertex == ua && line.EndVertex == ub) ||
            (line.StartVertex == ub && line.EndVertex == ua))
        {
            return i;
        }
    }
    return -1;
}

} // namespace

std::optional<map::Point> LineIntersection(map::Point a1, map::Point a2, map::Point b1,
                                           map::Point b2, bool round)
{
    const auto same = [](map::Point p, map::Point q) { return p.X == q.X && p.Y == q.Y; };
    if (same(a1, b1) || same(a1, b2) || same(a2, b1) || same(a2, b2))
    {
        return std::nullopt;
    }
    const double determinant = (a2.X - a1.X) * (b2.Y - b1.Y) - (a2.Y - a1.Y) * (b2.X - b1.X);
    if (determinant == 0)
    {
        return std::nullopt;
    }
    const double t = ((b1.X - a1.X) * (b2.Y - b1.Y) - (b1.Y - a1.Y) * (b2.X - b1.X)) / determinant;
    map::Point crossing{a1.X + t * (a2.X - a1.X), a1.Y + t * (a2.Y - a1.Y)};
    if (round)
    {
        crossing = {RoundAway(crossing.X), RoundAway(crossing.Y)};
    }
    return crossing;
}

std::vector<int> SplitAtCrossings(map::LevelData& level, int line, int& crossings)
{
    const map::LevelData& view = level;
    const map::LineDef drawn = LineAt(view, line);
    const map::Vertex p = view.Vertexes[drawn.StartVertex];
    const map::Vertex q = view.Vertexes[drawn.EndVertex];
    const long long dx = q.X - p.X;
    const long long dy = q.Y - p.Y;
    const auto cross = [&](const map::Vertex& v)
    { return dx * (static_cast<long long>(v.Y) - p.Y) - dy * (static_cast<long long>(v.X) - p.X); };
    const auto samePlace = [](const map::Vertex& a, const map::Vertex& b)
    { return a.X == b.X && a.Y == b.Y; };

    // The LineDefs to split, with the place of each crossing, found before anything changes.
    struct Crossing
    {
        int Line;
        map::Point At;
    };
    std::vector<Crossing> found;
    for (const std::int32_t i : map::IndexOf(view).LineDefsNear(
             std::min(p.X, q.X), std::min(p.Y, q.Y), std::max(p.X, q.X), std::max(p.Y, q.Y)))
    {
        const map::LineDef& other = LineAt(view, i);
        if (i == line || other.StartVertex >= view.Vertexes.size() ||
            other.EndVertex >= view.Vertexes.size())
        {
            continue;
        }
        const map::Vertex& a = view.Vertexes[other.StartVertex];
        const map::Vertex& b = view.Vertexes[other.EndVertex];
        if (samePlace(a, p) || samePlace(a, q) || samePlace(b, p) || samePlace(b, q))
        {
            continue;
        }
        const long long ca = cross(a);
        const long long cb = cross(b);
        if (ca == 0 || cb == 0 || (ca < 0) == (cb < 0))
        {
            continue;
        }
        const std::optional<map::Point> at =
            LineIntersection({double(p.X), double(p.Y)}, {double(q.X), double(q.Y)},
                             {double(a.X), double(a.Y)}, {double(b.X), double(b.Y)}, false);
        if (!at || !map::LineCrossesBox(p.X, p.Y, q.X, q.Y, at->X - 0.2, at->Y - 0.2, at->X + 0.2,
                                        at->Y + 0.2))
        {
            continue; // the lines meet beyond the drawn one's ends
        }
        found.push_back({i, {RoundAway(at->X), RoundAway(at->Y)}});
    }
    std::vector<int> vertexes;
    for (const Crossing& c : found)
    {
        const int vertex = map::InsertObject(level, map::KindVertex, -1, static_cast<int>(c.At.X),
                                             static_cast<int>(c.At.Y));
        map::SplitLineDefAt(level, c.Line, vertex);
        vertexes.push_back(vertex);
    }
    // Along the drawn line from its start: nearest first.
    std::stable_sort(vertexes.begin(), vertexes.end(),
                     [&](int a, int b)
                     {
                         const auto distance = [&](int v)
                         {
                             const map::Vertex& w = view.Vertexes[static_cast<std::size_t>(v)];
                             const double ex = w.X - p.X;
                             const double ey = w.Y - p.Y;
                             return ex * ex + ey * ey;
                         };
                         return distance(a) < distance(b);
                     });
    std::vector<int> pieces{line};
    for (const int vertex : vertexes)
    {
        pieces.push_back(map::SplitLineDefAt(level, pieces.back(), vertex));
    }
    crossings += static_cast<int>(vertexes.size());
    return pieces;
}

LineDrawTool::LineDrawTool(map::LevelData& level, int startVertex)
    : Level(level), VertexCountAtStart(level.Vertexes.Count())
{
    const map::DefaultTextures& defaults = map::Map().Textures;
    SavedUpper = defaults.Upper;
    SavedNormal = defaults.Normal;
    SavedLower = defaults.Lower;
    ResetRun();
    if (startVertex >= 0 && startVertex < level.Vertexes.Count())
    {
        // The run starts from the selected Vertex as if it had been clicked first.
        FirstVertex = LastVertex = startVertex;
        const map::Point at = map::VertexPoint(level, static_cast<std::uint32_t>(startVertex));
        SectorAtFirst = SectorLast = map::SectorAt(level, at.X, at.Y, map::SectorAtMode::Drawing);
    }
    platform::TheUi().SetStatusText("LeftButton=Insert, RightButton=Close/Quit (F1=Help)");
}

LineDrawTool::~LineDrawTool()
{
    map::DefaultTextures& defaults = map::Map().Textures;
    defaults.Upper = SavedUpper;
    defaults.Normal = SavedNormal;
    defaults.Lower = SavedLower;
}

void LineDrawTool::ResetRun()
{
    DrawnVertexes.clear();
    DrawnLines.clear();
    NewLines.clear();
    ExistingLines.clear();
    LineSplits.clear();
    FirstVertex = LastVertex = -1;
    ClickCount = 0;
    SectorAtFirst = SectorLast = -1;
    IntersectionsMade = SplitsMade = 0;
}

DrawState LineDrawTool::Feed(const DrawInput& input)
{
    switch (input.Action)
    {
    case DrawAction::Click:
        Click(input.X, input.Y);
        return DrawState::Drawing;
    case DrawAction::Close:
    case DrawAction::CloseOneSided:
    case DrawAction::Escape:
        if (DrawnVertexes.empty())
        {
            return DrawState::Left; // nothing drawn: the second Esc or right click leaves
        }
        CloseRun(input.Action == DrawAction::Close           ? 1
                 : input.Action == DrawAction::CloseOneSided ? 2
                                                             : 3);
        return DrawState::Waiting;
    }
    return DrawState::Waiting;
}

std::optional<map::Point> LineDrawTool::RubberStart() const
{
    if (LastVertex < 0 || LastVertex >= Level.Vertexes.Count())
    {
        return std::nullopt;
    }
    return map::VertexPoint(Level, static_cast<std::uint32_t>(LastVertex));
}

int LineDrawTool::VertexNear(double x, double y) const
{
    const double range = map::Map().Options.DrawingSelectRange;
    const map::LevelData& view = Level;
    int best = -1;
    double bestDistance = 0;
    for (const std::int32_t i :
         map::IndexOf(view).VertexesIn(x - range, y - range, x + range, y + range))
    {
        const map::Vertex& v = view.Vertexes[static_cast<std::size_t>(i)];
        const double dx = v.X - x;
        const double dy = v.Y - y;
        if (dx * dx <= 0.25 && dy * dy <= 0.25)
        {
            return i; // a direct hit
        }
        const double distance = dx * dx + dy * dy;
        if (best < 0 || distance < bestDistance)
        {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

int LineDrawTool::LineUnder(double x, double y) const
{
    const map::LevelData& view = Level;
    const int line =
        view::FindObject(view, view::MapViewport{}, false, map::ModeLineDefs, x, y, x, y);
    if (line < 0)
    {
        return -1;
    }
    const double half = std::max(0.5, map::Map().Options.DrawingSelectRange);
    const map::LineDef& l = LineAt(view, line);
    const map::Point a = map::VertexPoint(view, l.StartVertex);
    const map::Point b = map::VertexPoint(view, l.EndVertex);
    return map::LineCrossesBox(a.X, a.Y, b.X, b.Y, x - half, y - half, x + half, y + half) ? line
                                                                                           : -1;
}

std::string LineDrawTool::PaneText(double x, double y) const
{
    if (VertexNear(x, y) >= 0)
    {
        return LastLineText;
    }
    const int line = LineUnder(x, y);
    return line >= 0 ? platform::Format(" On Line %4hu ", static_cast<unsigned short>(line))
                     : std::string(" Crossing NO Line  ");
}

// Steps 2 and 3 of a click: a Vertex at the pointer, held to the grid, or on the LineDef under
// it, which is split there.
int LineDrawTool::PlaceVertex(double x, double y)
{
    const map::EditOptions& options = map::Map().Options;
    const SnappedPoint at = SnapPoint(x, y, options.GridSize, options.GridSnap);
    const int line = LineUnder(at.X, at.Y);
    const int vertex = map::InsertObject(Level, map::KindVertex, -1, at.X, at.Y);
    if (line < 0)
    {
        return vertex;
    }
    const map::LevelData& view = Level;
    const map::LineDef under = LineAt(view, line);
    const map::Point a = map::VertexPoint(view, under.StartVertex);
    const map::Point b = map::VertexPoint(view, under.EndVertex);
    const map::Point click{double(at.X), double(at.Y)};
    // The test line: the run's last line, or a short one across the LineDef through the click.
    map::Point from;
    if (LastVertex >= 0)
    {
        from = map::VertexPoint(view, static_cast<std::uint32_t>(LastVertex));
    }
    else
    {
        const double length = std::hypot(b.X - a.X, b.Y - a.Y);
        from = {click.X + (b.Y - a.Y) / length, click.Y - (b.X - a.X) / length};
    }
    if (const std::optional<map::Point> crossing = LineIntersection(a, b, from, click, true))
    {
        map::Vertex& placed = Level.Vertexes[static_cast<std::size_t>(vertex)];
        placed.X = static_cast<std::int16_t>(crossing->X);
        placed.Y = static_cast<std::int16_t>(crossing->Y);
    }
    // New lines carry on the look of the line they start from.
    if (under.SideDef1 < view.SideDefs.size())
    {
        const map::SideDef& side = view.SideDefs[under.SideDef1];
        map::DefaultTextures& defaults = map::Map().Textures;
        for (const auto& [name, slot] : {std::pair{side.UpperTexture, &defaults.Upper},
                                         std::pair{side.NormalTexture, &defaults.Normal},
                                         std::pair{side.LowerTexture, &defaults.Lower}})
        {
            if (!name.IsNone())
            {
                *slot = name;
            }
        }
    }
    const int half = map::SplitLineDefAt(Level, line, vertex);
    ++SplitsMade;
    PushOnce(LineSplits, line);
    PushOnce(LineSplits, half);
    return vertex;
}

void LineDrawTool::Click(double x, double y)
{
    ++ClickCount;
    if (DrawnVertexes.empty())
    {
        map::SaveUndoStep();
        if (LastVertex >= 0)
        {
            DrawnVertexes.push_back(LastVertex); // the run starts from the selected Vertex
        }
    }
    const int near = VertexNear(x, y);
    const int vertex = near >= 0 ? near : PlaceVertex(x, y);
    if (vertex == LastVertex)
    {
        return;
    }
    PushOnce(DrawnVertexes, vertex);
    const map::Point at = map::VertexPoint(Level, static_cast<std::uint32_t>(vertex));
    const int sector = map::SectorAt(Level, at.X, at.Y, map::SectorAtMode::Drawing);
    if (FirstVertex < 0)
    {
        FirstVertex = vertex;
        SectorAtFirst = SectorLast = sector;
    }
    else if (sector >= 0)
    {
        SectorLast = sector;
    }
    if (LastVertex >= 0)
    {
        DrawLine(LastVertex, vertex);
    }
    LastVertex = vertex;
}

// Step 6 of a click: the line from the previous Vertex, or the LineDef already there.
void LineDrawTool::DrawLine(int from, int to)
{
    const int existing = JoiningLine(Level, from, to);
    if (existing >= 0)
    {
        LastLineText = platform::Format(" OldLine %4hu ", static_cast<unsigned short>(existing));
        const map::LineDef line = LineAt(Level, existing);
        if (line.SideDef2 == map::NoSideDef && line.SideDef1 < Level.SideDefs.size() &&
            line.StartVertex == static_cast<std::uint32_t>(from))
        {
            const auto side = static_cast<std::uint32_t>(
                map::InsertObject(Level, map::KindSideDef, static_cast<int>(line.SideDef1), 0, 0));
            Level.LineDefs[static_cast<std::size_t>(existing)].SideDef2 = side;
            map::SetSideFlags(Level.LineDefs[static_cast<std::size_t>(existing)]);
            PushOnce(ExistingLines, existing);
        }
        PushOnce(DrawnLines, existing);
        return;
    }
    const int line =
        map::InsertLineDef(Level, static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
    LastLineText = platform::Format(" NewLine %4d ", line);
    std::vector<int> pieces{line};
    if (map::Map().Options.AutoDrawIntersections)
    {
        pieces = SplitAtCrossings(Level, line, IntersectionsMade);
    }
    for (const int piece : pieces)
    {
        PushOnce(DrawnLines, piece);
        PushOnce(NewLines, piece);
    }
}

void LineDrawTool::CloseRun(int action)
{
    map::ClearSelection();
    const auto touched = [&](int v) { return Contains(DrawnVertexes, v); };
    const bool canClose = touched(FirstVertex) && touched(LastVertex) && FirstVertex != LastVertex;
    if (canClose && !(ClickCount != 2 && action == 3))
    {
        if (ClickCount == 2)
        {
            // A single line: perhaps it divides a Sector. A line cut by crossings leaves that
            // to the pieces of the Sectors it crossed; on Exit its sides take what their rays
            // find, which the Sector work below does for every new line.
            if (IntersectionsMade == 0 && JoiningLine(Level, FirstVertex, LastVertex) >= 0)
            {
                map::SplitSector(Level, LastVertex, FirstVertex, false);
            }
        }
        else
        {
            DrawLine(LastVertex, FirstVertex);
        }
    }
    // Step 6: Vertexes the run made that no LineDef uses.
    if (!map::Map().Options.KeepExtraVertex)
    {
        std::vector<bool> used(Level.Vertexes.size(), false);
        for (const map::LineDef& line : std::as_const(Level).LineDefs)
        {
            for (const std::uint32_t end : {line.StartVertex, line.EndVertex})
            {
                if (end < used.size())
                {
                    used[end] = true;
                }
            }
        }
        std::vector<int> unused;
        for (const int v : DrawnVertexes)
        {
            if (!used[static_cast<std::size_t>(v)] && v >= VertexCountAtStart)
            {
                unused.push_back(v);
            }
        }
        std::sort(unused.rbegin(), unused.rend());
        for (const int v : unused)
        {
            map::DeleteObject(Level, map::KindVertex, v);
            std::erase(DrawnVertexes, v);
            for (int& later : DrawnVertexes)
            {
                later -= later > v ? 1 : 0;
            }
        }
    }
    // Steps 9 and 10: the Sectors.
    if (ClickCount > 1)
    {
        map::DrawnRun run;
        run.Lines = DrawnLines;
        run.NewLines = NewLines;
        run.ExistingLines = ExistingLines;
        for (const int split : LineSplits)
        {
            PushOnce(run.Lines, split);
        }
        run.StartSector = SectorLast >= 0 ? SectorLast : SectorAtFirst;
        run.Action = action;
        run.Crossings = IntersectionsMade + SplitsMade;
        map::SmartDrawSectors(Level, run);
    }
    // Step 7: the clean-up of the run's Vertexes.
    map::ObjectList vertexes;
    for (const int v : DrawnVertexes)
    {
        map::ObjectListPush(vertexes, v);
    }
    {
        const map::PlacedVertexTolerance tolerance;
        map::MergeCheckAfterMove(Level, vertexes, false);
    }
    map::ObjectListClear(vertexes);
    ResetRun();
}

} // namespace kelvar::tools
