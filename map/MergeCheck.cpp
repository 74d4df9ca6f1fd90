// The clean-up after Vertexes moved: merges of Vertexes and LineDefs, splits of LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/MergeCheck.h"

#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/SectorRays.h"
#include "map/VertexOps.h"
#include "platform/Format.h"
#include "platform/Messages.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace kelvar::map
{

namespace
{

constexpr std::size_t LongScanLines = 3000;
constexpr std::size_t LongScanVertexes = 100;

// The questions of the clean-up: asked in the interactive form, until the first yes.
struct Questions
{
    bool Interactive = false;
    bool Asking = true;

    bool Ask(const std::string& title, const std::vector<std::string>& lines)
    {
        if (!Interactive || !Asking)
        {
            return true;
        }
        const bool yes = platform::ShowMessageLines(platform::LinesCancel, title, lines,
                                                    platform::MessageButtons::YesNo) == 1;
        Asking = !yes;
        return yes;
    }
};

// Escape, polled every 100 steps of a scan.
bool Cancelled(std::size_t step)
{
    return step % 100 == 99 && platform::TheUi().PollEscape();
}

bool Joins(const LineDef& line, std::uint32_t vertex)
{
    return line.StartVertex == vertex || line.EndVertex == vertex;
}

// Numbers above a deleted one come down by one; the deleted one becomes `replacement`.
void Renumbered(std::vector<std::int32_t>& numbers, std::int32_t deleted, std::int32_t replacement)
{
    for (std::int32_t& number : numbers)
    {
        number = number == deleted ? replacement : number - (number > deleted ? 1 : 0);
    }
}

// Step 1: each listed Vertex on the same spot as another is merged into that one.
void MergeVertexDuplicates(LevelData& level, std::vector<std::int32_t>& listed,
                           Questions& questions, MergeCheckCounts& counts)
{
    for (std::size_t i = 0; i < listed.size() && !Cancelled(i); ++i)
    {
        const std::int32_t vertex = listed[i];
        if (vertex < 0 || vertex >= level.Vertexes.Count())
        {
            continue;
        }
        const Vertex spot = level.Vertexes[static_cast<std::size_t>(vertex)];
        for (std::int32_t other = 0; other < level.Vertexes.Count(); ++other)
        {
            if (other == vertex || !(spot == level.Vertexes[static_cast<std::size_t>(other)]))
            {
                continue;
            }
            platform::TheUi().SetStatusText(
                platform::Format("Starting with Vertex %d & %d", vertex, other));
            if (!questions.Ask("Vertices", {"One or more Vertices specify the same position",
                                            "Merge them into one ?"}))
            {
                break;
            }
            ObjectList pair;
            ObjectListPush(pair, vertex);
            ObjectListPush(pair, other); // the head stays
            MergeVertexes(level, pair);
            Renumbered(listed, vertex, other > vertex ? other - 1 : other);
            ++counts.VertexMerges;
            break;
        }
    }
}

// The LineDefs with an end in the box of the listed Vertexes.
std::vector<std::int32_t> CandidatesAround(const LevelData& level,
                                           const std::vector<std::int32_t>& listed)
{
    int minX = 32767, minY = 32767, maxX = -32768, maxY = -32768;
    for (const std::int32_t vertex : listed)
    {
        if (vertex >= 0 && vertex < level.Vertexes.Count())
        {
            const Vertex& v = level.Vertexes[static_cast<std::size_t>(vertex)];
            minX = std::min<int>(minX, v.X);
            minY = std::min<int>(minY, v.Y);
            maxX = std::max<int>(maxX, v.X);
            maxY = std::max<int>(maxY, v.Y);
        }
    }
    const auto inBox = [&](std::uint32_t vertex)
    {
        const Vertex& v = level.Vertexes[vertex];
        return v.X >= minX && v.X <= maxX && v.Y >= minY && v.Y <= maxY;
    };
    std::vector<std::int32_t> candidates;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const LineDef& line = level.LineDefs[i];
        if (line.StartVertex < level.Vertexes.size() && line.EndVertex < level.Vertexes.size() &&
            (inBox(line.StartVertex) || inBox(line.EndVertex)))
        {
            candidates.push_back(static_cast<std::int32_t>(i));
        }
    }
    return candidates;
}

// Step 2: a listed Vertex within the tolerance of a candidate LineDef splits it.
void SplitLinesAtVertexes(LevelData& level, std::vector<std::int32_t>& listed,
                          std::vector<std::int32_t>& candidates, Questions& questions,
                          MergeCheckCounts& counts)
{
    for (const std::int32_t line : candidates)
    {
        for (const std::uint32_t end : {level.LineDefs[static_cast<std::size_t>(line)].StartVertex,
                                        level.LineDefs[static_cast<std::size_t>(line)].EndVertex})
        {
            if (std::find(listed.begin(), listed.end(), static_cast<std::int32_t>(end)) ==
                listed.end())
            {
                listed.push_back(static_cast<std::int32_t>(end));
            }
        }
    }
    const bool progress = level.LineDefs.size() > LongScanLines && listed.size() > LongScanVertexes;
    if (progress)
    {
        platform::TheUi().ShowProgress(
            platform::Format("Checking %d Vertexes (esc Cancel)", static_cast<int>(listed.size())),
            "");
    }
    const double tolerance = Map().Options.VertexMergeTolerance;
    for (std::size_t i = 0; i < listed.size() && !Cancelled(i); ++i)
    {
        const auto vertex = static_cast<std::uint32_t>(listed[i]);
        if (vertex >= level.Vertexes.size())
        {
            continue;
        }
        const Vertex spot = level.Vertexes[vertex];
        for (std::size_t c = 0; c < candidates.size(); ++c)
        {
            const LineDef line =
                std::as_const(level).LineDefs[static_cast<std::size_t>(candidates[c])];
            if (Joins(line, vertex))
            {
                continue;
            }
            const Vertex& a = level.Vertexes[line.StartVertex];
            const Vertex& b = level.Vertexes[line.EndVertex];
            if (spot == a || spot == b)
            {
                continue; // a split there would leave a LineDef of no length
            }
            if (!LineCrossesBox(a.X, a.Y, b.X, b.Y, spot.X - tolerance, spot.Y - tolerance,
                                spot.X + tolerance, spot.Y + tolerance))
            {
                continue;
            }
            platform::TheUi().SetStatusText(
                platform::Format("Starting with LineDef %d Vertex %d", candidates[c], vertex));
            if (!questions.Ask("Vertices",
                               {"One or more Vertices are on a LineDef", "Split the LineDef ?"}))
            {
                continue;
            }
            candidates.push_back(SplitLineDefAt(level, candidates[c], static_cast<int>(vertex)));
            ++counts.LineSplits;
        }
    }
    if (progress)
    {
        platform::TheUi().EndProgress();
    }
}

bool Superimposed(const LineDef& a, const LineDef& b)
{
    return (a.StartVertex == b.StartVertex && a.EndVertex == b.EndVertex) ||
           (a.StartVertex == b.EndVertex && a.EndVertex == b.StartVertex);
}

// Step 3: candidates that lie on each other become one.
void MergeSuperimposed(LevelData& level, std::vector<std::int32_t>& candidates,
                       Questions& questions, MergeCheckCounts& counts)
{
    const bool progress = level.LineDefs.size() > LongScanLines;
    if (progress)
    {
        platform::TheUi().ShowProgress(platform::Format("Checking %d LineDefs (esc Cancel)",
                                                        static_cast<int>(candidates.size())),
                                       "");
    }
    bool stopped = false;
    for (std::size_t i = 0; i < candidates.size() && !stopped && !Cancelled(i); ++i)
    {
        for (std::size_t j = i + 1; j < candidates.size() && !stopped; ++j)
        {
            const std::int32_t kept = candidates[i];
            const std::int32_t removed = candidates[j];
            if (kept < 0 || removed < 0 || kept == removed ||
                !Superimposed(level.LineDefs[static_cast<std::size_t>(kept)],
                              level.LineDefs[static_cast<std::size_t>(removed)]))
            {
                continue;
            }
            if (!questions.Ask(
                    "LineDefs",
                    {platform::Format("LineDefs %d & %d are Superimposed", kept, removed),
                     "Merge them into one ?", "(LineDef Merge option set in F5)"}))
            {
                continue;
            }
            if (!MergeLineDefs(level, kept, removed))
            {
                stopped = true;
                break;
            }
            ++counts.LineMerges;
            candidates.erase(candidates.begin() + static_cast<std::ptrdiff_t>(j));
            Renumbered(candidates, removed, -1);
            --j;
        }
    }
    if (progress)
    {
        platform::TheUi().EndProgress();
    }
}

// The wall textures a merge collects from the four sides: upper, lower, normal.
struct Collected
{
    TextureName Upper = NoTexture;
    TextureName Lower = NoTexture;
    TextureName Normal = NoTexture;
};

Collected CollectTextures(const LevelData& level, const std::array<std::uint32_t, 4>& sides)
{
    Collected found;
    const auto take = [](TextureName& slot, const TextureName& name)
    {
        if (slot.IsNone() && !name.IsNone())
        {
            slot = name;
        }
    };
    for (const std::uint32_t side : sides)
    {
        if (side < level.SideDefs.size())
        {
            take(found.Upper, level.SideDefs[side].UpperTexture);
            take(found.Lower, level.SideDefs[side].LowerTexture);
            take(found.Normal, level.SideDefs[side].NormalTexture);
        }
    }
    take(found.Upper, found.Normal);
    take(found.Upper, found.Lower);
    const DefaultTextures& defaults = Map().Textures;
    take(found.Upper, defaults.Upper);
    take(found.Lower, defaults.Lower);
    take(found.Normal, defaults.Normal);
    return found;
}

bool IsSky(const TextureName& flat)
{
    const TextureName& sky = Map().Textures.SkyFlat;
    return std::equal(flat.Chars.begin(), flat.Chars.begin() + 5, sky.Chars.begin());
}

// The wall textures of a two-sided LineDef filled where one side's Sector shows a step, each
// face from its own names.
void FillByHeights(LevelData& level, const LineDef& line, const Collected& frontNames,
                   const Collected& backNames)
{
    const std::uint32_t front = SectorOfSide(level, line.SideDef1);
    const std::uint32_t back = SectorOfSide(level, line.SideDef2);
    if (front >= level.Sectors.size() || back >= level.Sectors.size())
    {
        return;
    }
    const Sector f = level.Sectors[front];
    const Sector b = level.Sectors[back];
    const bool notSky = !IsSky(f.CeilingTexture) || !IsSky(b.CeilingTexture);
    const auto fill =
        [&](std::uint32_t side, const Sector& own, const Sector& other, const Collected& names)
    {
        SideDef& wall = level.SideDefs[side];
        if (own.CeilingHeight > other.CeilingHeight && notSky && wall.UpperTexture.IsNone())
        {
            wall.UpperTexture = names.Upper;
        }
        if (own.FloorHeight < other.FloorHeight && wall.LowerTexture.IsNone())
        {
            wall.LowerTexture = names.Lower;
        }
    };
    fill(line.SideDef1, f, b, frontNames);
    fill(line.SideDef2, b, f, backNames);
}

// Step 4 of a merge: each surviving side checked against the Sector its ray finds.
bool SidesFaceTheirSectors(LevelData& level, int kept, const std::array<std::uint32_t, 4>& seen)
{
    const auto known = [&](int sector)
    {
        return sector >= 0 && std::find(seen.begin(), seen.end(),
                                        static_cast<std::uint32_t>(sector)) != seen.end();
    };
    const auto at = static_cast<std::size_t>(kept);
    for (int side = 1; side <= 2; ++side)
    {
        for (int attempt = 0; attempt < 2; ++attempt)
        {
            const LineDef& line = std::as_const(level).LineDefs[at];
            const std::uint32_t face = line.Side(side);
            if (face >= level.SideDefs.size())
            {
                break;
            }
            const int truth = SectorBeside(level, kept, side).Sector;
            const auto own = static_cast<int>(std::as_const(level).SideDefs[face].Sector);
            if (own == truth)
            {
                break;
            }
            if (known(truth))
            {
                level.SideDefs[face].Sector = static_cast<std::uint32_t>(truth);
                break;
            }
            const bool oneSide = line.SideDef1 == NoSideDef || line.SideDef2 == NoSideDef;
            if (attempt == 0 && oneSide)
            {
                LineDef& turned = level.LineDefs[at];
                std::swap(turned.StartVertex, turned.EndVertex);
                continue; // the test again, the other way round
            }
            if (side == 2)
            {
                level.LineDefs[at].SideDef2 = NoSideDef; // nothing of this level is behind it
                break;
            }
            if (!Map().Options.ExpertMode &&
                platform::ShowMessageLines(platform::LinesCancel, "sector ref",
                                           {platform::Format("sideDef1 of LineDef %d", kept),
                                            "Sector reference is incorrect. This happens if you",
                                            "merge LineDefs pointing different directions and one",
                                            "Continue ?"},
                                           platform::MessageButtons::YesNo) != 1)
            {
                return false;
            }
            break;
        }
    }
    return true;
}

} // namespace

bool LineCrossesBox(double x1, double y1, double x2, double y2, double minX, double minY,
                    double maxX, double maxY)
{
    const auto inside = [&](double x, double y)
    { return x >= minX && x <= maxX && y >= minY && y <= maxY; };
    if (inside(x1, y1) || inside(x2, y2))
    {
        return true;
    }
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    // A horizontal edge at `y`: exactly one end beyond it, the crossing within the box.
    const auto crossesRow = [&](double y, bool below)
    {
        const bool first = below ? y1 < y : y1 > y;
        const bool second = below ? y2 < y : y2 > y;
        if (first == second)
        {
            return false;
        }
        const double x = dx * (y - y1) / dy + x1;
        return x >= minX && x <= maxX;
    };
    const auto crossesColumn = [&](double x, bool left)
    {
        const bool first = left ? x1 < x : x1 > x;
        const bool second = left ? x2 < x : x2 > x;
        if (first == second)
        {
            return false;
        }
        const double y = dy * (x - x1) / dx + y1;
        return y >= minY && y <= maxY;
    };
    return crossesRow(minY, true) || crossesRow(maxY, false) || crossesColumn(minX, true) ||
           crossesColumn(maxX, false);
}

bool MergeLineDefs(LevelData& level, int kept, int removed)
{
    const LineDef k = std::as_const(level).LineDefs[static_cast<std::size_t>(kept)];
    const LineDef r = std::as_const(level).LineDefs[static_cast<std::size_t>(removed)];
    const std::array<std::uint32_t, 4> sides = {r.SideDef1, r.SideDef2, k.SideDef1, k.SideDef2};
    std::array<std::uint32_t, 4> seen{};
    for (std::size_t i = 0; i < 4; ++i)
    {
        seen[i] = SectorOfSide(level, sides[i]);
    }
    const Collected names = CollectTextures(level, sides);

    // The sides that face the way kept's right and left sides face.
    const bool same = k.StartVertex == r.StartVertex;
    const std::uint32_t removedRight = same ? r.SideDef1 : r.SideDef2;
    const std::uint32_t removedLeft = same ? r.SideDef2 : r.SideDef1;
    std::uint32_t right = k.SideDef1 != NoSideDef ? k.SideDef1 : removedRight;
    std::uint32_t left = k.SideDef2 != NoSideDef ? k.SideDef2 : removedLeft;
    const bool allFour = k.SideDef1 != NoSideDef && k.SideDef2 != NoSideDef &&
                         r.SideDef1 != NoSideDef && r.SideDef2 != NoSideDef;
    if (allFour && !same)
    {
        left = r.SideDef1;
        if (SectorOfSide(level, k.SideDef2) != SectorOfSide(level, r.SideDef2))
        {
            right = r.SideDef2;
        }
    }
    LineDef& merged = level.LineDefs[static_cast<std::size_t>(kept)];
    merged.SideDef1 = right != NoSideDef ? right : left;
    merged.SideDef2 = right != NoSideDef ? left : NoSideDef;
    if (right == NoSideDef)
    {
        std::swap(merged.StartVertex, merged.EndVertex); // the one side left faces right
    }
    // The removed LineDef's sides are not its own any more: deleting it leaves them.
    level.LineDefs[static_cast<std::size_t>(removed)].SideDef1 = NoSideDef;
    level.LineDefs[static_cast<std::size_t>(removed)].SideDef2 = NoSideDef;

    if (!SidesFaceTheirSectors(level, kept, seen))
    {
        level.LineDefs[static_cast<std::size_t>(kept)] = k;
        level.LineDefs[static_cast<std::size_t>(removed)] = r;
        return false;
    }
    LineDef& line = level.LineDefs[static_cast<std::size_t>(kept)];
    if (line.SideDef1 == NoSideDef || line.SideDef2 == NoSideDef)
    {
        if (line.SideDef1 == NoSideDef)
        {
            std::swap(line.SideDef1, line.SideDef2);
        }
        line.Flags = static_cast<std::uint16_t>((line.Flags & ~FlagTwoSided) | FlagImpassable);
        SideDef& wall = level.SideDefs[line.SideDef1];
        wall.UpperTexture = NoTexture;
        wall.LowerTexture = NoTexture;
        if (wall.NormalTexture.IsNone())
        {
            wall.NormalTexture = names.Normal;
        }
    }
    else
    {
        line.Flags = static_cast<std::uint16_t>((line.Flags | FlagTwoSided) & ~FlagImpassable);
        level.SideDefs[line.SideDef1].NormalTexture = NoTexture;
        level.SideDefs[line.SideDef2].NormalTexture = NoTexture;
        FillByHeights(level, std::as_const(level).LineDefs[static_cast<std::size_t>(kept)], names,
                      names);
    }
    DeleteObject(level, KindLineDef, removed);
    NoteChange(level, KindLineDef);
    return true;
}

void FinishDrawnLine(LevelData& level, int lineNumber)
{
    const LineDef line = level.LineDefs[static_cast<std::size_t>(lineNumber)];
    const DefaultTextures& defaults = Map().Textures;
    // What each side had, then the side emptied.
    const auto takeOut = [&](std::uint32_t side)
    {
        Collected names;
        if (side >= level.SideDefs.size())
        {
            return names;
        }
        SideDef& wall = level.SideDefs[side];
        names = {wall.UpperTexture, wall.LowerTexture, wall.NormalTexture};
        wall.UpperTexture = wall.LowerTexture = wall.NormalTexture = NoTexture;
        return names;
    };
    const bool front = line.SideDef1 < level.SideDefs.size();
    const bool back = line.SideDef2 < level.SideDefs.size();
    Collected frontNames = takeOut(line.SideDef1);
    Collected backNames = takeOut(line.SideDef2);
    LineDef& flags = level.LineDefs[static_cast<std::size_t>(lineNumber)];
    if (front && back)
    {
        flags.Flags = static_cast<std::uint16_t>((flags.Flags & ~1) | 4);
        for (Collected* names : {&frontNames, &backNames})
        {
            names->Upper = names->Upper.IsNone() ? defaults.Upper : names->Upper;
            names->Lower = names->Lower.IsNone() ? defaults.Lower : names->Lower;
        }
        FillByHeights(level, std::as_const(level).LineDefs[static_cast<std::size_t>(lineNumber)],
                      frontNames, backNames);
        return;
    }
    flags.Flags = static_cast<std::uint16_t>((flags.Flags & ~4) | 1);
    const std::uint32_t only = front ? line.SideDef1 : line.SideDef2;
    if (only < level.SideDefs.size())
    {
        const Collected& names = front ? frontNames : backNames;
        level.SideDefs[only].NormalTexture = names.Normal.IsNone() ? defaults.Normal : names.Normal;
    }
}

PlacedVertexTolerance::PlacedVertexTolerance() : Saved(Map().Options.VertexMergeTolerance)
{
    Map().Options.VertexMergeTolerance = std::min(Saved, 0.2);
}

PlacedVertexTolerance::~PlacedVertexTolerance()
{
    Map().Options.VertexMergeTolerance = Saved;
}

MergeCheckCounts MergeCheckAfterMove(LevelData& level, ObjectList& vertexes, bool interactive)
{
    const EditOptions& options = Map().Options;
    MergeCheckCounts counts;
    Questions questions{interactive};
    platform::TheUi().SetStatusText("Checking Vertex Duplicates - Press Esc to Cancel");
    std::vector<std::int32_t> listed = vertexes.Objects();
    const std::size_t given = listed.size();
    if (options.VertexMerge)
    {
        MergeVertexDuplicates(level, listed, questions, counts);
    }
    std::vector<std::int32_t> candidates = CandidatesAround(level, listed);
    if (options.VertexSplit)
    {
        SplitLinesAtVertexes(level, listed, candidates, questions, counts);
    }
    if (options.LineMerge && (counts.VertexMerges + counts.LineSplits >= 2 || interactive))
    {
        MergeSuperimposed(level, candidates, questions, counts);
    }
    ObjectListClear(vertexes);
    for (std::size_t i = std::min(given, listed.size()); i-- > 0;)
    {
        if (listed[i] >= 0 && !ObjectListContains(vertexes, listed[i]))
        {
            ObjectListPush(vertexes, listed[i]);
        }
    }
    platform::TheUi().SetStatusText("");
    return counts;
}

} // namespace kelvar::map
