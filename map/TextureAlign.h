// Texture alignment across selected LineDefs: the vertical offsets of one side made to line up
// with the first listed side's, and the horizontal offsets run on along a chain of LineDefs.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "map/LevelData.h"
#include "map/ObjectList.h"

#include <functional>
#include <optional>
#include <vector>

namespace kelvar::map
{

/// LineDef flag bits that peg a wall's textures to its own ceiling or floor.
inline constexpr std::uint16_t FlagUpperUnpegged = 8;
inline constexpr std::uint16_t FlagLowerUnpegged = 16;

/// What an alignment did.
enum class AlignResult
{
    Done,
    NothingDone, // no listed LineDef has the side
    AllPegged,   // every listed LineDef is unpegged, so none was aligned
    Refused,     // the LineDefs don't make a chain, or the user stopped: told already
};

/// A wall texture's size and scale (in eighths: 8 is no scaling) as the texture lumps give it.
struct TextureSize
{
    int Width = 0;
    int Height = 0;
    int XScale = 8;
    int YScale = 8; // read as a signed byte: a negative one asks for the height's remainder
};

/// Finds a texture's size by name; nothing when the texture is not known.
using TextureSizeOf = std::function<std::optional<TextureSize>(const TextureName&)>;

/// Orders LineDefs into one chain in which each one's end Vertex is the next one's start;
/// nothing when they don't make exactly one such chain (a closed loop starts at the first
/// listed).
std::optional<std::vector<std::int32_t>> ChainLineDefs(const LevelData& level,
                                                       const std::vector<std::int32_t>& lines);

/// How an X alignment runs.
struct XAlignOptions
{
    int Side = 1;                     // 1 or 2; side 2 walks the chain backward
    bool SameTexture = true;          // ask before going on past a change of texture
    std::optional<int> InitialOffset; // where the first side starts; 0 when not given
    bool AnyTexture = false;          // a texture of unknown size is no error (the ports)
};

/// The height a side's wall texture hangs from: its Sector's ceiling, or the other side's
/// Sector's when that one is lower and above this side's floor.
int SideCeiling(const LevelData& level, const LineDef& line, int side);

/// Lines up the vertical offsets of side `side` (1 or 2) of the listed LineDefs, skipping the
/// unpegged ones: the first listed side is the reference, with offset 0; every other side gets
/// the difference of the reference's ceiling and its own, kept within -127 to 127 by its
/// remainder by 128 (a texture's own height is not known here).
/// With `sizes`, a texture of a scale other than 8 gets its offset scaled: scale * delta / 8, or
/// for a negative scale the remainder by its height.
AlignResult AlignTexturesY(LevelData& level, const ObjectList& list, int side,
                           const TextureSizeOf& sizes = {});

/// Lines up the horizontal offsets of the chosen side along the chain of the listed LineDefs:
/// each side starts where the last one's texture ended, the running offset taken modulo the
/// texture's width. The messages tell why a chain or a texture stops the walk.
AlignResult AlignTexturesX(LevelData& level, const ObjectList& list, const XAlignOptions& options,
                           const TextureSizeOf& sizes);

} // namespace kelvar::map
