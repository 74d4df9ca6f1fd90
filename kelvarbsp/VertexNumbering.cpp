// The editor's own Vertex numbering kept through a build.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "kelvarbsp/VertexNumbering.h"

#include "platform/Format.h"
#include "wad/LevelReader.h"
#include "wad/WadFormat.h"

#include <cstring>
#include <unordered_map>
#include <vector>

namespace kelvar::kelvarbsp
{
namespace
{

using wad::SegSize;
using wad::VertexSize;

constexpr std::uint32_t Unmapped = 0xFFFFFFFF;

std::uint16_t Le16(const std::string& bytes, std::size_t offset)
{
    return wad::ReadLe16(reinterpret_cast<const std::uint8_t*>(bytes.data()) + offset);
}

void PutLe16(std::string& bytes, std::size_t offset, std::uint32_t value)
{
    wad::WriteLe16(reinterpret_cast<std::uint8_t*>(bytes.data()) + offset,
                   static_cast<std::uint16_t>(value));
}

std::uint32_t PlaceOf(const std::string& vertexes, std::size_t vertex)
{
    std::uint32_t place = 0;
    std::memcpy(&place, vertexes.data() + vertex * VertexSize, VertexSize);
    return place;
}

bool SamePlace(const std::string& a, std::size_t indexA, const std::string& b, std::size_t indexB)
{
    return (indexA + 1) * VertexSize <= a.size() && (indexB + 1) * VertexSize <= b.size() &&
           std::memcmp(a.data() + indexA * VertexSize, b.data() + indexB * VertexSize,
                       VertexSize) == 0;
}

/// For each of zdbsp's Vertexes the input's number, learnt from the LineDefs, which must be
/// the same lines in the same order with the same Vertex positions.
std::optional<std::vector<std::uint32_t>> MapFromLineDefs(const VertexLumps& input,
                                                          const VertexLumps& built,
                                                          std::size_t lineSize, std::string& why)
{
    if (built.LineDefs.size() != input.LineDefs.size())
    {
        why = platform::Format("zdbsp changed the LineDefs from %zu to %zu",
                               input.LineDefs.size() / lineSize, built.LineDefs.size() / lineSize);
        return std::nullopt;
    }
    std::vector<std::uint32_t> map(built.Vertexes.size() / VertexSize, Unmapped);
    for (std::size_t line = 0; line + lineSize <= input.LineDefs.size(); line += lineSize)
    {
        // Everything but the two Vertex numbers stays as the editor wrote it.
        if (std::memcmp(input.LineDefs.data() + line + 4, built.LineDefs.data() + line + 4,
                        lineSize - 4) != 0)
        {
            why = platform::Format("zdbsp changed LineDef %zu", line / lineSize);
            return std::nullopt;
        }
        for (std::size_t end = 0; end < 4; end += 2)
        {
            const std::uint16_t from = Le16(built.LineDefs, line + end);
            const std::uint16_t to = Le16(input.LineDefs, line + end);
            if (from >= map.size() || !SamePlace(built.Vertexes, from, input.Vertexes, to))
            {
                why = platform::Format("zdbsp moved a Vertex of LineDef %zu", line / lineSize);
                return std::nullopt;
            }
            if (map[from] == Unmapped)
            {
                map[from] = to;
            }
        }
    }
    return map;
}

} // namespace

std::optional<VertexLumps> KeepVertexNumbering(const VertexLumps& input, const VertexLumps& built,
                                               bool hexen, std::string& why)
{
    const std::size_t lineSize = hexen ? wad::HexenLineSize : wad::DoomLineSize;
    std::optional<std::vector<std::uint32_t>> map = MapFromLineDefs(input, built, lineSize, why);
    if (!map)
    {
        return std::nullopt;
    }
    VertexLumps kept{input.Vertexes, input.LineDefs, built.Segs};
    // zdbsp's Vertexes that no LineDef uses but a seg does are the ones its splits made. One
    // where the editor already has a Vertex (often an unused one from the last build) takes
    // that; the others go behind the editor's. So building again adds nothing.
    std::unordered_map<std::uint32_t, std::uint32_t> places;
    for (std::size_t vertex = input.Vertexes.size() / VertexSize; vertex-- > 0;)
    {
        places[PlaceOf(input.Vertexes, vertex)] = static_cast<std::uint32_t>(vertex);
    }
    for (std::size_t seg = 0; seg + SegSize <= kept.Segs.size(); seg += SegSize)
    {
        for (std::size_t end = 0; end < 4; end += 2)
        {
            const std::uint16_t vertex = Le16(kept.Segs, seg + end);
            if (vertex >= map->size())
            {
                why = platform::Format("seg %zu names Vertex %u", seg / SegSize, vertex);
                return std::nullopt;
            }
            std::uint32_t& number = (*map)[vertex];
            if (number == Unmapped)
            {
                const auto [place, added] =
                    places.emplace(PlaceOf(built.Vertexes, vertex),
                                   static_cast<std::uint32_t>(kept.Vertexes.size() / VertexSize));
                if (added)
                {
                    kept.Vertexes.append(built.Vertexes, vertex * VertexSize, VertexSize);
                }
                number = place->second;
            }
            if (number > 0xFFFF)
            {
                why = "the Vertexes would pass 65535";
                return std::nullopt;
            }
            PutLe16(kept.Segs, seg + end, number);
        }
    }
    return kept;
}

} // namespace kelvar::kelvarbsp
