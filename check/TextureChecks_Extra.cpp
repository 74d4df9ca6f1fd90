// The check for upper and lower textures that no height difference needs, now or once a
// special has moved a Sector.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TextureChecks.h"

#include "check/TextureChecks_Shared.h"
#include "gfx/TextureCatalogue.h"
#include "platform/Format.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelvar::check
{
namespace
{

// Whether lower textures are looked at. The automatic fixes leave them alone: a lower texture
// that no height needs today may be the face of a step that a rising stair will need. The list
// without repairs shows them all; the prompt asks.
bool ChecksLowerTextures(CheckRun& run, bool fix)
{
    if (fix || run.Mode == RunMode::LogAndFix)
    {
        return false;
    }
    if (run.Logging())
    {
        return true;
    }
    return run.Ask("Extra Textures", {"Do you want to check lower textures?",
                                      "Automatic fix ignores Lower Textures"}) == Answer::Fix;
}

// The heights of the level and the Sectors each move of the look-ahead moves.
struct LookAhead
{
    std::vector<SectorHeights> Heights;
    std::array<std::vector<std::uint8_t>, std::size(AllMoves)> Moved;
};

LookAhead LookAheadOf(const map::LevelData& level, const MovingSectors& moving)
{
    LookAhead ahead;
    ahead.Heights = CopyHeights(level);
    for (std::size_t m = 0; m < std::size(AllMoves); ++m)
    {
        ahead.Moved[m] = MovedBy(moving, AllMoves[m]);
    }
    return ahead;
}

// What a two-sided LineDef needs as the level is or after any one move: a texture the wall
// test would ask for is never extra.
WallNeeds NeedsAtAnyTime(const LookAhead& ahead, std::uint32_t front, std::uint32_t back)
{
    WallNeeds needs = NeedsOf(ahead.Heights[front], ahead.Heights[back]);
    for (std::size_t m = 0; m < std::size(AllMoves); ++m)
    {
        const std::vector<std::uint8_t>& moved = ahead.Moved[m];
        if (moved[front] == 0 && moved[back] == 0)
        {
            continue;
        }
        const auto heightOf = [&](std::uint32_t sector)
        {
            return moved[sector] != 0 ? MovedHeight(ahead.Heights[sector], AllMoves[m])
                                      : ahead.Heights[sector];
        };
        const WallNeeds more = NeedsOf(heightOf(front), heightOf(back));
        needs.Upper1 = needs.Upper1 || more.Upper1;
        needs.Lower1 = needs.Lower1 || more.Lower1;
        needs.Upper2 = needs.Upper2 || more.Upper2;
        needs.Lower2 = needs.Lower2 || more.Lower2;
    }
    return needs;
}

// True for a name that stands for a picture on the wall. Colour and fog maps of the ports, and
// Boom's colormap names on the sides of its deep water lines, are settings kept where textures
// stand, and are never removed.
bool IsWallPicture(const map::TextureName& name)
{
    if (name.IsNone() || name.IsSpecial())
    {
        return false;
    }
    const wad::LumpName key{name.Chars};
    const std::vector<gfx::ColormapName>& colormaps = gfx::Catalogue().Colormaps;
    return std::none_of(colormaps.begin(), colormaps.end(),
                        [&](const gfx::ColormapName& colormap)
                        { return wad::SameName(colormap.Name, key); });
}

// An upper or lower texture that nothing needs.
bool ReportExtra(CheckRun& run, bool fix, const WallSide& wall)
{
    const map::SideDef& side = std::as_const(run.Level).SideDefs[wall.SideDef];
    const map::TextureName texture = wall.Upper ? side.UpperTexture : side.LowerTexture;
    if (!IsWallPicture(texture))
    {
        return true;
    }
    const int line = static_cast<int>(wall.Line);
    const int sideDef = static_cast<int>(wall.SideDef);
    const std::string name = texture.Text();
    Prompt prompt;
    prompt.Kind = map::KindLineDef;
    prompt.Index = wall.Line;
    if (wall.Upper)
    {
        prompt.Lines = {wall.Side == 1
                            ? platform::Format("Linedef %d: sideDef1 %d upper %s not req", line,
                                               sideDef, name.c_str())
                            : platform::Format("Linedef %d: sideDef2 %d upper %s not req", line,
                                               sideDef, name.c_str()),
                        "Continue (leaves it alone)?"};
    }
    else
    {
        prompt.Lines = {wall.Side == 1
                            ? platform::Format("Linedef %d: sideDef1 %d lower %s not req", line,
                                               sideDef, name.c_str())
                            : platform::Format("Linedef %d: sideDef2 %d lower %s not req", line,
                                               sideDef, name.c_str()),
                        "Continue (no change)?"};
    }
    prompt.FixButton = "Remove Texture";
    const Settled settled = Settle(run, fix, prompt);
    if (settled == Settled::Repair)
    {
        Repair(run, map::KindLineDef, wall.Line,
               WallFixLine(wall.Line, wall.Side, wall.Upper, wall.SideDef),
               [&]
               {
                   map::SideDef& fixed = run.Level.SideDefs[wall.SideDef];
                   (wall.Upper ? fixed.UpperTexture : fixed.LowerTexture) = map::NoTexture;
               });
    }
    return settled != Settled::Stop;
}

bool TestExtraWall(CheckRun& run, bool fix, bool lower, const LookAhead& ahead, std::uint32_t index,
                   const TwoSides& sides)
{
    const WallNeeds needs = NeedsAtAnyTime(ahead, sides.Front, sides.Back);
    const WallSide walls[] = {{index, 1, sides.Side1, true},
                              {index, 1, sides.Side1, false},
                              {index, 2, sides.Side2, true},
                              {index, 2, sides.Side2, false}};
    const bool extra[] = {!needs.Upper1, lower && !needs.Lower1, !needs.Upper2,
                          lower && !needs.Lower2};
    for (std::size_t i = 0; i < 4; ++i)
    {
        if (extra[i] && !ReportExtra(run, fix, walls[i]))
        {
            return false;
        }
    }
    return true;
}

} // namespace

bool CheckExtraTextures(CheckRun& run, bool fix)
{
    const bool lower = ChecksLowerTextures(run, fix);
    run.Progress("Checking Extra Wall Textures (esc)");
    const std::optional<MovingSectors> moving = FindMovingSectors(run);
    if (!moving)
    {
        return false;
    }
    if (lower && moving->RisingStairs)
    {
        run.Tell("Caution", {"Caution ! Rising stairs exist !", "They require lower textures!"});
    }
    const LookAhead ahead = LookAheadOf(run.Level, *moving);
    return EachTwoSided(run, [&](std::uint32_t index, const TwoSides& sides)
                        { return TestExtraWall(run, fix, lower, ahead, index, sides); });
}

} // namespace kelvar::check
