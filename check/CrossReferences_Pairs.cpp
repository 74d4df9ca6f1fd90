// The cross-reference steps that compare objects in pairs: Vertexes at one place, LineDefs at
// one place, Vertexes on LineDefs and LineDefs along each other. The pairs are found by
// sorting and by the spatial index, never by testing all pairs, and taken in the order of the
// lower number, then the higher.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferenceSteps.h"
#include "check/CrossReferences.h"

#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MergeCheck.h"
#include "map/ObjectStore.h"
#include "map/SpatialIndex.h"
#include "map/VertexOps.h"
#include "platform/Format.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kelvar::check
{
namespace
{

using map::LevelData;
using map::LineDef;
using platform::Format;

using Pair = std::pair<std::uint32_t, std::uint32_t>;

bool HasVertexes(const LevelData& level, const LineDef& line)
{
    return line.StartVertex < level.Vertexes.size() && line.EndVertex < level.Vertexes.size();
}

// A place as one number, for sorting.
std::uint32_t PlaceKey(const map::Vertex& vertex)
{
    return static_cast<std::uint32_t>(static_cast<std::uint16_t>(vertex.X)) << 16 |
           static_cast<std::uint16_t>(vertex.Y);
}

// The pairs of objects 0 to count - 1 with equal keys, polling at each object: `keyOf(i)`
// answers an object's key, or nothing to leave it out. The objects are sorted by key, then
// number; of three or more with one key, each is paired with the next, so each but the last is
// the first of one pair. The pairs come back ordered by their first number; nothing when the
// user pressed Escape.
template <typename Key, typename KeyOf>
std::optional<std::vector<Pair>> EqualKeyPairs(CheckRun& run, std::size_t count, KeyOf keyOf)
{
    std::vector<std::pair<Key, std::uint32_t>> keyed;
    keyed.reserve(count);
    const auto addKey = [&](std::size_t i)
    {
        if (const std::optional<Key> key = keyOf(i))
        {
            keyed.emplace_back(*key, static_cast<std::uint32_t>(i));
        }
        return true;
    };
    if (!run.Each(count, addKey))
    {
        return std::nullopt;
    }
    std::sort(keyed.begin(), keyed.end());
    std::vector<Pair> pairs;
    for (std::size_t i = 1; i < keyed.size(); ++i)
    {
        if (keyed[i].first == keyed[i - 1].first)
        {
            pairs.emplace_back(keyed[i - 1].second, keyed[i].second);
        }
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

// The numbers of objects as they were at the start of a step, told in the numbers they have
// now that some were deleted: a count of the deleted ones below each, kept in a Fenwick tree.
class Renumbering
{
public:
    explicit Renumbering(std::size_t count) : Tree(count + 1, 0), Gone(count, false) {}

    void Remove(std::uint32_t atStart)
    {
        if (atStart >= Gone.size() || Gone[atStart])
        {
            return;
        }
        Gone[atStart] = true;
        for (std::size_t at = atStart + 1; at < Tree.size(); at += at & (~at + 1))
        {
            ++Tree[at];
        }
    }

    bool Removed(std::uint32_t atStart) const { return Gone[atStart]; }

    std::uint32_t Current(std::uint32_t atStart) const
    {
        std::uint32_t below = 0;
        for (std::size_t at = atStart; at > 0; at -= at & (~at + 1))
        {
            below += Tree[at];
        }
        return atStart - below;
    }

private:
    std::vector<std::uint32_t> Tree;
    std::vector<bool> Gone;
};

// Merges the first Vertex of a pair (numbered as at the start of the step) into the second,
// and notes which of the two the merge removed: the first, and the second as well when its
// only LineDefs ran to the first and went with it.
void MergeVertexPair(CheckRun& run, Renumbering& numbers, Pair atStart)
{
    run.BeforeRepair();
    LevelData& level = run.Level;
    const std::size_t before = level.Vertexes.size();
    map::ObjectList pair;
    map::ObjectListPush(pair, static_cast<std::int32_t>(numbers.Current(atStart.first)));
    map::ObjectListPush(pair, static_cast<std::int32_t>(numbers.Current(atStart.second)));
    map::MergeVertexes(level, pair);
    const std::size_t removed = before - level.Vertexes.size();
    if (removed >= 1)
    {
        numbers.Remove(atStart.first);
    }
    if (removed >= 2)
    {
        numbers.Remove(atStart.second);
    }
}

// A Vertex lies on a LineDef when the LineDef crosses the small square around it that the
// editor's merge tolerance sets, and neither end of the LineDef is the Vertex or lies at its
// place: a split there would leave a LineDef of no length.
bool LiesOn(const LevelData& level, std::uint32_t vertex, const LineDef& line, double tolerance)
{
    if (!HasVertexes(level, line) || line.StartVertex == vertex || line.EndVertex == vertex)
    {
        return false;
    }
    const map::Vertex& v = level.Vertexes[vertex];
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    return !(v == a) && !(v == b) &&
           map::LineCrossesBox(a.X, a.Y, b.X, b.Y, v.X - tolerance, v.Y - tolerance,
                               v.X + tolerance, v.Y + tolerance);
}

// The straight line a LineDef lies on, and the stretch of it the LineDef covers: the direction
// in lowest terms pointing east (or north), the offset of the line across that direction, and
// the positions of the ends along it.
struct Stretch
{
    std::int64_t DirectionX = 0;
    std::int64_t DirectionY = 0;
    std::int64_t Offset = 0;
    std::int64_t Low = 0;
    std::int64_t High = 0;
    std::uint32_t Line = 0;

    auto Key() const { return std::tie(DirectionX, DirectionY, Offset, Low, Line); }
    bool SameLine(const Stretch& other) const
    {
        return DirectionX == other.DirectionX && DirectionY == other.DirectionY &&
               Offset == other.Offset;
    }
};

Stretch StretchOf(const LevelData& level, const LineDef& line, std::uint32_t number)
{
    const map::Vertex& a = level.Vertexes[line.StartVertex];
    const map::Vertex& b = level.Vertexes[line.EndVertex];
    std::int64_t dx = b.X - a.X;
    std::int64_t dy = b.Y - a.Y;
    const std::int64_t divisor = std::gcd(dx, dy);
    dx /= divisor;
    dy /= divisor;
    if (dx < 0 || (dx == 0 && dy < 0))
    {
        dx = -dx;
        dy = -dy;
    }
    const std::int64_t along1 = dx * a.X + dy * a.Y;
    const std::int64_t along2 = dx * b.X + dy * b.Y;
    return {dx,    dy, dy * a.X - dx * a.Y, std::min(along1, along2), std::max(along1, along2),
            number};
}

// The pairs of LineDefs whose stretches of one straight line share more than a point: sorted
// by line and start, each stretch is compared with the earlier ones still open at its start.
std::vector<Pair> OverlappingPairs(const std::vector<Stretch>& stretches)
{
    std::vector<Pair> pairs;
    std::vector<const Stretch*> open;
    for (std::size_t i = 0; i < stretches.size(); ++i)
    {
        const Stretch& next = stretches[i];
        if (i == 0 || !next.SameLine(stretches[i - 1]))
        {
            open.clear();
        }
        std::erase_if(open, [&](const Stretch* earlier) { return earlier->High <= next.Low; });
        for (const Stretch* earlier : open)
        {
            pairs.emplace_back(std::min(earlier->Line, next.Line),
                               std::max(earlier->Line, next.Line));
        }
        open.push_back(&next);
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

// One pair of Vertexes at one place, numbered as at the start of the step: merged unasked with
// the merge option, otherwise asked about. False when the user stopped the check.
bool SettleVertexPair(CheckRun& run, Renumbering& numbers, Pair atStart)
{
    if (numbers.Removed(atStart.first) || numbers.Removed(atStart.second))
    {
        return true;
    }
    const auto first = numbers.Current(atStart.first);
    const std::string text =
        Format("Vertex %d and %d share the same Coordinates", static_cast<int>(first),
               static_cast<int>(numbers.Current(atStart.second)));
    // With the merge option the pair merges unasked; only a run that repairs nothing leaves it
    // for the list.
    if (run.Settings.MergeDuplicateVertices && run.Mode != RunMode::Log)
    {
        run.Log(map::KindVertex, first, text);
        run.LogDetail("(Vertex Merge option set in F5)");
        MergeVertexPair(run, numbers, atStart);
        return true;
    }
    Prompt finding;
    finding.Kind = map::KindVertex;
    finding.Index = first;
    finding.Lines = {text,
                     "Merge the Vertices?",
                     "Press Cancel to see Vertex",
                     "To see what's going on, cancel and then",
                     "drag one of them away (either the vertex or an",
                     "adjacent LineDef) and then Delete by inspection!"};
    finding.ContinueFixes = true;
    const Answer answer = run.Verify(finding);
    if (answer == Answer::Fix)
    {
        MergeVertexPair(run, numbers, atStart);
    }
    return answer != Answer::Stop;
}

// Both ends' places of a LineDef, the lower first, so that the direction doesn't count;
// nothing when a Vertex is missing.
std::optional<std::uint64_t> EndsKey(const LevelData& level, const LineDef& line)
{
    if (!HasVertexes(level, line))
    {
        return std::nullopt;
    }
    const std::uint64_t a = PlaceKey(level.Vertexes[line.StartVertex]);
    const std::uint64_t b = PlaceKey(level.Vertexes[line.EndVertex]);
    return std::min(a, b) << 32 | std::max(a, b);
}

// One pair of LineDefs at one place, numbered as at the start of the step, of which `deleted`
// LineDefs are gone. False when the user stopped the check.
bool SettleLineDefPair(CheckRun& run, std::uint32_t& deleted, Pair atStart)
{
    const LevelData& level = run.Level;
    const std::uint32_t first = atStart.first - deleted;
    const std::uint32_t second = atStart.second - deleted;
    const LineDef& a = level.LineDefs[first];
    const LineDef& b = level.LineDefs[second];
    const bool sameVertexes = (a.StartVertex == b.StartVertex && a.EndVertex == b.EndVertex) ||
                              (a.StartVertex == b.EndVertex && a.EndVertex == b.StartVertex);
    Prompt finding;
    finding.Kind = map::KindLineDef;
    finding.Index = first;
    finding.Lines = {Format(sameVertexes ? "LineDef %d and %d share the same Vertices"
                                         : "LineDef %d and %d share the same Coordinates",
                            static_cast<int>(first), static_cast<int>(second)),
                     "Delete the first redundant LineDef ?"};
    finding.ContinueFixes = true;
    const Answer answer = run.Verify(finding);
    if (answer == Answer::Fix)
    {
        run.BeforeRepair();
        map::DeleteObject(run.Level, map::KindLineDef, static_cast<int>(first));
        ++deleted;
    }
    return answer != Answer::Stop;
}

// The Vertexes that lie on LineDefs, as (Vertex, LineDef) pairs in the order of the Vertexes;
// nothing when the user pressed Escape.
std::optional<std::vector<Pair>> FindVertexesOnLineDefs(CheckRun& run, double tolerance)
{
    const LevelData& level = run.Level;
    const map::SpatialIndex& index = map::IndexOf(level);
    std::vector<Pair> found;
    const auto findLineDefs = [&](std::size_t v)
    {
        const map::Vertex spot = level.Vertexes[v];
        for (const std::int32_t line : index.LineDefsNear(spot.X - tolerance, spot.Y - tolerance,
                                                          spot.X + tolerance, spot.Y + tolerance))
        {
            const auto vertex = static_cast<std::uint32_t>(v);
            if (LiesOn(level, vertex, level.LineDefs[static_cast<std::size_t>(line)], tolerance))
            {
                found.emplace_back(vertex, static_cast<std::uint32_t>(line));
            }
        }
        return true;
    };
    if (!run.Each(level.Vertexes.size(), findLineDefs))
    {
        return std::nullopt;
    }
    return found;
}

// A Vertex found on a LineDef, asked about and split there on the answer. A split keeps every
// number and adds the new piece at the end; another Vertex found on the LineDef may lie on that
// piece by now, so `pieces` keeps the pieces of each LineDef. False when the user stopped the
// check.
bool SplitAtVertex(CheckRun& run,
                   std::unordered_map<std::uint32_t, std::vector<std::uint32_t>>& pieces,
                   double tolerance, Pair found)
{
    const LevelData& level = run.Level;
    const auto [vertex, atStart] = found;
    std::vector<std::uint32_t> candidates{atStart};
    const auto split = pieces.find(atStart);
    if (split != pieces.end())
    {
        candidates.insert(candidates.end(), split->second.begin(), split->second.end());
    }
    const auto on = std::find_if(
        candidates.begin(), candidates.end(),
        [&](std::uint32_t line) { return LiesOn(level, vertex, level.LineDefs[line], tolerance); });
    if (on == candidates.end())
    {
        return true;
    }
    Prompt finding;
    finding.Kind = map::KindVertex;
    finding.Index = vertex;
    finding.Lines = {
        Format("Vertex %d is on LineDef %d", static_cast<int>(vertex), static_cast<int>(*on)),
        "Do you want to split the LineDef there?"};
    finding.ContinueFixes = true;
    const Answer answer = run.Verify(finding);
    if (answer == Answer::Fix)
    {
        run.BeforeRepair();
        const int piece =
            map::SplitLineDefAt(run.Level, static_cast<int>(*on), static_cast<int>(vertex));
        pieces[atStart].push_back(static_cast<std::uint32_t>(piece));
    }
    return answer != Answer::Stop;
}

} // namespace

bool CheckVertexDuplicates(CheckRun& run)
{
    run.Progress("Checking Vertex Duplicates");
    const LevelData& level = run.Level;
    const std::size_t count = level.Vertexes.size();
    const std::optional<std::vector<Pair>> pairs = EqualKeyPairs<std::uint32_t>(
        run, count, [&](std::size_t i) { return std::optional(PlaceKey(level.Vertexes[i])); });
    if (!pairs)
    {
        return false;
    }
    // The merge takes out the first of each pair, so of several at one place the last stays.
    Renumbering numbers(count);
    return run.Each(pairs->size(),
                    [&](std::size_t p) { return SettleVertexPair(run, numbers, (*pairs)[p]); });
}

bool CheckDuplicateLineDefs(CheckRun& run)
{
    run.Progress("Checking Duplicate LineDefs (esc)");
    const LevelData& level = run.Level;
    const std::optional<std::vector<Pair>> pairs = EqualKeyPairs<std::uint64_t>(
        run, level.LineDefs.size(),
        [&](std::size_t i) { return EndsKey(level, level.LineDefs[i]); });
    if (!pairs)
    {
        return false;
    }
    // Only the first LineDef of a pair is ever deleted, and the pairs come in the order of
    // their first: every LineDef deleted so far lies below both of the pair at hand.
    std::uint32_t deleted = 0;
    return run.Each(pairs->size(),
                    [&](std::size_t p) { return SettleLineDefPair(run, deleted, (*pairs)[p]); });
}

bool CheckVertexesOnLineDefs(CheckRun& run)
{
    const int lineCount = run.Level.LineDefs.Count();
    run.Progress(Format("Vertex Overlap %d LineDefs\nPress Esc to Stop Check", lineCount));
    run.Progress(Format("Checking Overlap %d LineDefs Step1", lineCount));
    const double tolerance = map::Map().Options.VertexMergeTolerance;
    const std::optional<std::vector<Pair>> found = FindVertexesOnLineDefs(run, tolerance);
    if (!found)
    {
        return false;
    }
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> pieces;
    return run.Each(found->size(), [&](std::size_t p)
                    { return SplitAtVertex(run, pieces, tolerance, (*found)[p]); });
}

bool CheckCollinearOverlaps(CheckRun& run)
{
    const LevelData& level = run.Level;
    const int lineCount = level.LineDefs.Count();
    run.Progress(Format("LineDef Overlap %d LineDefs\nPress Esc to Stop Check", lineCount));
    run.Progress(Format("Checking Overlap %d LineDefs Step2", lineCount));
    std::vector<Stretch> stretches;
    stretches.reserve(level.LineDefs.size());
    const auto addStretch = [&](std::size_t i)
    {
        const LineDef& line = level.LineDefs[i];
        if (HasVertexes(level, line) &&
            !(level.Vertexes[line.StartVertex] == level.Vertexes[line.EndVertex]))
        {
            stretches.push_back(StretchOf(level, line, static_cast<std::uint32_t>(i)));
        }
        return true;
    };
    if (!run.Each(level.LineDefs.size(), addStretch))
    {
        return false;
    }
    std::sort(stretches.begin(), stretches.end(),
              [](const Stretch& a, const Stretch& b) { return a.Key() < b.Key(); });
    const std::vector<Pair> pairs = OverlappingPairs(stretches);
    const auto report = [&](std::size_t p)
    {
        Prompt finding;
        finding.Kind = map::KindLineDef;
        finding.Index = pairs[p].first;
        finding.Lines = {Format("LineDef %d and %d overlap", static_cast<int>(pairs[p].first),
                                static_cast<int>(pairs[p].second))};
        return run.Verify(finding) != Answer::Stop;
    };
    return run.Each(pairs.size(), report);
}

} // namespace kelvar::check
