// Texture alignment: vertical offsets lined up across selected LineDefs, horizontal offsets run
// along a chain of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/TextureAlign.h"

#include "map/Geometry.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/Selection.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <utility>

namespace kelvar::map
{

namespace
{

bool Unpegged(const LineDef& line)
{
    return (line.Flags & (FlagUpperUnpegged | FlagLowerUnpegged)) != 0;
}

// The vertical offset for a ceiling difference: kept within -127 to 127 by the remainder by 128
// (the sign stays), unless the side's texture is scaled.
int YOffsetFor(int delta, const SideDef& side, const TextureSizeOf& sizes)
{
    const int plain = delta % 128;
    if (!sizes || side.NormalTexture.IsNone())
    {
        return plain;
    }
    const std::optional<TextureSize> size = sizes(side.NormalTexture);
    if (!size || size->YScale == 8)
    {
        return plain;
    }
    if (size->YScale < 0)
    {
        return size->Height > 0 ? delta % size->Height : plain;
    }
    return size->YScale * delta / 8;
}

// The texture that an X alignment measures on a side: the normal one, else the upper, else the
// lower; `which` tells which it was (0 normal, 1 upper, 2 lower).
TextureName AlignedTexture(const SideDef& side, int& which)
{
    which = !side.NormalTexture.IsNone() ? 0 : (!side.UpperTexture.IsNone() ? 1 : 2);
    return which == 0 ? side.NormalTexture : (which == 1 ? side.UpperTexture : side.LowerTexture);
}

bool SameTextureName(const TextureName& a, const TextureName& b)
{
    const std::string x = a.Text();
    const std::string y = b.Text();
    return std::equal(x.begin(), x.end(), y.begin(), y.end(),
                      [](char p, char q)
                      {
                          return std::toupper(static_cast<unsigned char>(p)) ==
                                 std::toupper(static_cast<unsigned char>(q));
                      });
}

void ChainRefused()
{
    platform::ShowMessageLines(
        0, "select bad",
        {"Please Reselect LineDefs.", "LineDefs selected must all connect",
         "and be going in the the same direction.", "You can select in any order, so long as",
         "all the arrows point the same way and", "each LineDef connects to only 1 other",
         "LineDef at each vertex."});
}

// One side of the walk: the LineDef it belongs to and its SideDef.
struct WalkedSide
{
    std::int32_t Line;
    std::uint32_t Side;
};

// Where one side's LineDef ends along the walk, and where the next one's begins: the ends of
// the chain as the walk meets them (side 2 walks each LineDef from its end to its start).
std::pair<std::uint32_t, std::uint32_t> WalkEnds(const LineDef& line, int side)
{
    return side == 1 ? std::pair{line.StartVertex, line.EndVertex}
                     : std::pair{line.EndVertex, line.StartVertex};
}

// Checks that consecutive sides of the walk meet on the map; tells the user when they don't.
bool SidesMeet(const LevelData& level, const WalkedSide& last, const WalkedSide& next, int side)
{
    const LineDef& a = level.LineDefs[static_cast<std::size_t>(last.Line)];
    const LineDef& b = level.LineDefs[static_cast<std::size_t>(next.Line)];
    const std::uint32_t leaving = WalkEnds(a, side).second;
    const std::uint32_t arriving = WalkEnds(b, side).first;
    const Point out = VertexPoint(level, leaving);
    const auto at = [&](std::uint32_t vertex)
    {
        const Point p = VertexPoint(level, vertex);
        return p.X == out.X && p.Y == out.Y;
    };
    if (at(arriving))
    {
        return true;
    }
    // Lines that touch at the wrong ends run the other way.
    const bool reversed = at(WalkEnds(b, side).second);
    const std::string first =
        reversed
            ? platform::Format("LineDef %hu not same direction",
                               static_cast<unsigned short>(next.Line))
            : platform::Format(side == 1 ? "Not connected: sd1 LineDef %d  vert %d & %d"
                                         : "Not connected: sd2 LineDef %d  vert %d & %d",
                               next.Line, static_cast<int>(leaving), static_cast<int>(arriving));
    platform::ShowMessageLines(
        0, "select bad",
        {first, platform::Format("For Side %hu Alignment", static_cast<unsigned short>(side)),
         "Please Reselect LineDefs or side.", "LineDefs must make a Connected line",
         "OR you have - PACKED - SideDefs", "The 2nd side is not continuous.",
         "of 1-sided and 2-sided linedefs!"});
    return false;
}

// Asks whether to go on when the texture changes along the walk; false stops.
bool GoOnPastNewTexture(std::uint32_t sideNumber, const TextureName& before, const TextureName& now,
                        int which)
{
    const std::string used =
        which == 1   ? platform::Format("Upper Texture %s used", now.Text().c_str())
        : which == 2 ? platform::Format("Lower Texture %s used", now.Text().c_str())
                     : platform::Format("Texture %s used", now.Text().c_str());
    return platform::ShowMessageLines(
               platform::LinesCancel, "Texture Align",
               {"DIFFERENT TEXTURES",
                platform::Format("SideDef %d, Texture Different", static_cast<int>(sideNumber)),
                platform::Format("Texture %s followed by %s", before.Text().c_str(),
                                 now.Text().c_str()),
                used},
               platform::MessageButtons::YesNo) == 1;
}

} // namespace

std::optional<std::vector<std::int32_t>> ChainLineDefs(const LevelData& level,
                                                       const std::vector<std::int32_t>& lines)
{
    std::unordered_map<std::uint32_t, std::int32_t> byStart;
    std::unordered_map<std::uint32_t, std::int32_t> byEnd;
    for (const std::int32_t number : lines)
    {
        const LineDef& line = level.LineDefs[static_cast<std::size_t>(number)];
        if (!byStart.emplace(line.StartVertex, number).second ||
            !byEnd.emplace(line.EndVertex, number).second)
        {
            return std::nullopt; // two LineDefs leave or reach the same Vertex
        }
    }
    // The head is the one LineDef that no other leads into; a closed loop has none.
    std::optional<std::int32_t> head;
    for (const std::int32_t number : lines)
    {
        const LineDef& line = level.LineDefs[static_cast<std::size_t>(number)];
        if (!byEnd.contains(line.StartVertex))
        {
            if (head)
            {
                return std::nullopt;
            }
            head = number;
        }
    }
    std::vector<std::int32_t> chain;
    for (std::int32_t at = head.value_or(lines.empty() ? -1 : lines.front());
         at >= 0 && chain.size() < lines.size();)
    {
        chain.push_back(at);
        const auto next = byStart.find(level.LineDefs[static_cast<std::size_t>(at)].EndVertex);
        at = next == byStart.end() ? -1 : next->second;
    }
    if (chain.size() != lines.size())
    {
        return std::nullopt;
    }
    return chain;
}

int SideCeiling(const LevelData& level, const LineDef& line, int side)
{
    const std::uint32_t own = SectorOfSide(level, line.Side(side));
    if (own >= level.Sectors.size())
    {
        return 0;
    }
    const Sector& mine = level.Sectors[own];
    const std::uint32_t other = SectorOfSide(level, line.Side(side == 1 ? 2 : 1));
    if (other < level.Sectors.size() && level.Sectors[other].CeilingHeight > mine.FloorHeight)
    {
        return std::min<int>(mine.CeilingHeight, level.Sectors[other].CeilingHeight);
    }
    return mine.CeilingHeight;
}

AlignResult AlignTexturesY(LevelData& level, const ObjectList& list, int side,
                           const TextureSizeOf& sizes)
{
    bool anyPegged = false;
    std::optional<int> reference;
    for (const std::int32_t number : list.Objects())
    {
        const LineDef line = std::as_const(level).LineDefs[static_cast<std::size_t>(number)];
        if (Unpegged(line))
        {
            continue;
        }
        anyPegged = true;
        const std::uint32_t face = line.Side(side);
        if (face >= level.SideDefs.size())
        {
            continue;
        }
        const int ceiling = SideCeiling(level, line, side);
        if (!reference)
        {
            reference = ceiling;
        }
        const int offset = YOffsetFor(*reference - ceiling, level.SideDefs[face], sizes);
        level.SideDefs[face].YOffset = static_cast<std::int16_t>(offset);
    }
    if (!anyPegged && !list.Empty())
    {
        return AlignResult::AllPegged;
    }
    if (!reference)
    {
        return AlignResult::NothingDone;
    }
    NoteChange(level, KindSideDef);
    return AlignResult::Done;
}

AlignResult AlignTexturesX(LevelData& level, const ObjectList& list, const XAlignOptions& options,
                           const TextureSizeOf& sizes)
{
    const LevelData& view = level;
    const std::optional<std::vector<std::int32_t>> chain = ChainLineDefs(view, list.Objects());
    if (!chain)
    {
        ChainRefused();
        return AlignResult::Refused;
    }
    // The chosen sides in walking order: side 2 runs the chain backward.
    std::vector<WalkedSide> walk;
    for (const std::int32_t number : *chain)
    {
        const std::uint32_t face =
            view.LineDefs[static_cast<std::size_t>(number)].Side(options.Side);
        if (face < view.SideDefs.size())
        {
            walk.push_back({number, face});
        }
    }
    if (options.Side == 2)
    {
        std::reverse(walk.begin(), walk.end());
    }
    if (walk.empty())
    {
        platform::ShowMessageLines(
            0, "Select", {platform::Format("Select at least %d %ss", 1, KindName(KindSideDef))});
        return AlignResult::NothingDone;
    }

    // A walk stopped halfway keeps what it did: the sides before the stop stay aligned.
    const auto stopped = [&level](std::size_t aligned)
    {
        if (aligned > 0)
        {
            NoteChange(level, KindSideDef);
        }
        return AlignResult::Refused;
    };
    int running = options.InitialOffset.value_or(0);
    std::optional<TextureName> previous;
    for (std::size_t i = 0; i < walk.size(); ++i)
    {
        const WalkedSide& step = walk[i];
        int which = 0;
        const TextureName texture = AlignedTexture(view.SideDefs[step.Side], which);
        // A texture of no known width counts as unknown: its side starts at 0.
        const TextureSize size = (sizes ? sizes(texture) : std::nullopt).value_or(TextureSize{});
        const bool known = size.Width > 0;
        if (!known && !options.AnyTexture)
        {
            platform::ShowMessageLines(
                0, "Texture Align",
                {platform::Format("Texture %s not found?", texture.Text().c_str())});
        }
        if (options.SameTexture && previous && !SameTextureName(*previous, texture) &&
            !GoOnPastNewTexture(step.Side, *previous, texture, which))
        {
            return stopped(i);
        }
        previous = texture;
        if (i > 0 && !SidesMeet(view, walk[i - 1], step, options.Side))
        {
            return stopped(i);
        }
        const int scale = known ? size.XScale : 8;
        const int offset = !known ? 0 : (scale != 8 ? scale * running / 8 : running);
        level.SideDefs[step.Side].XOffset = static_cast<std::int16_t>(offset);
        const LineDef& line = view.LineDefs[static_cast<std::size_t>(step.Line)];
        const double length =
            Distance(VertexPoint(view, line.StartVertex), VertexPoint(view, line.EndVertex));
        running = known ? (running + static_cast<int>(length)) % size.Width : 0;
    }
    NoteChange(level, KindSideDef);
    return AlignResult::Done;
}

} // namespace kelvar::map
