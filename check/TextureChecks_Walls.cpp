// The Sector height check and the wall test: ceilings below floors, missing normal textures,
// and the upper and lower textures two-sided LineDefs need, also once specials move Sectors.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TextureChecks.h"

#include "check/TextureChecks_Shared.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "platform/Format.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace kelvar::check
{
namespace
{

// What a LineDef special moves, as its type row's motion says.
constexpr std::uint16_t MotionRaiseFloor = 0x8001;
constexpr std::uint16_t MotionLowerFloor = 0x8002;
constexpr std::uint16_t MotionRaiseCeiling = 0x2001;
constexpr std::uint16_t MotionLowerCeiling = 0x2002;
constexpr std::uint16_t MotionRaiseStair = 0x1001;
constexpr std::uint16_t MotionRaiseLower = 3; // a floor that goes up and down

// The lists of MovingSectors as bits, for the tag table.
constexpr std::uint8_t InLowerFloor = 1;
constexpr std::uint8_t InRaiseFloor = 2;
constexpr std::uint8_t InLowerCeiling = 4;
constexpr std::uint8_t InRaiseCeiling = 8;

std::uint8_t ListsOfMotion(std::uint16_t motion)
{
    switch (motion)
    {
    case MotionLowerFloor:
        return InLowerFloor;
    case MotionRaiseFloor:
        return InRaiseFloor;
    case MotionLowerCeiling:
        return InLowerCeiling;
    case MotionRaiseCeiling:
        return InRaiseCeiling;
    case MotionRaiseLower:
        return InLowerFloor | InRaiseFloor;
    default:
        return 0;
    }
}

// The motion of a LineDef type. The table lookup walks the game's rows, so each type is looked
// up once per check, however many LineDefs have it.
class MotionCache
{
public:
    std::uint16_t Of(std::uint16_t type)
    {
        const auto [at, added] = Motions.try_emplace(type, 0);
        if (added)
        {
            at->second = game::LookupLineType(type, 0).Motion;
        }
        return at->second;
    }

private:
    std::unordered_map<std::uint16_t, std::uint16_t> Motions;
};

// The ceiling of Sector `index`, when it lies below the floor.
bool CheckCeiling(CheckRun& run, bool fix, std::uint32_t index)
{
    const map::Sector& sector = std::as_const(run.Level).Sectors[index];
    if (sector.CeilingHeight >= sector.FloorHeight)
    {
        return true;
    }
    const int number = static_cast<int>(index);
    Prompt prompt;
    prompt.Kind = map::KindSector;
    prompt.Index = index;
    prompt.Lines = {platform::Format("Sector %d has its ceiling lower than its floor.", number),
                    "if you cannot go there", "The textures will never be displayed"};
    prompt.FixButton = "Raise Ceiling";
    const Settled settled = Settle(run, fix, prompt);
    if (settled == Settled::Repair)
    {
        // The ceiling comes up to the floor: a closed Sector, as a shut door is.
        Repair(run, map::KindSector, index,
               platform::Format("Fixed Ceiling Height Sector %d", number),
               [&]
               {
                   map::Sector& fixed = run.Level.Sectors[index];
                   fixed.CeilingHeight = fixed.FloorHeight;
               });
    }
    return settled != Settled::Stop;
}

bool CheckCeilings(CheckRun& run, bool fix)
{
    run.Progress("Checking Sector Heights (esc)");
    return run.Each(run.Level.Sectors.size(), [&](std::size_t i)
                    { return CheckCeiling(run, fix, static_cast<std::uint32_t>(i)); });
}

// The normal texture of LineDef `index`'s only side, when it has none.
bool CheckNormalTexture(CheckRun& run, bool fix, std::uint32_t index)
{
    const map::LevelData& level = run.Level;
    const map::LineDef& line = level.LineDefs[index];
    if (line.SideDef2 != map::NoSideDef || line.SideDef1 >= level.SideDefs.size() ||
        !level.SideDefs[line.SideDef1].NormalTexture.IsNone())
    {
        return true;
    }
    const std::uint32_t side = line.SideDef1;
    Prompt prompt;
    prompt.Kind = map::KindLineDef;
    prompt.Index = index;
    prompt.Lines = {platform::Format("Linedef %d: sideDef1 %d missing normal texture",
                                     static_cast<int>(index), static_cast<int>(side)),
                    "Continue (leaves it alone)?"};
    prompt.FixButton = "Pick Texture";
    const Settled settled = Settle(run, fix, prompt);
    if (settled != Settled::Repair)
    {
        return settled != Settled::Stop;
    }
    if (const auto texture = RepairTexture(run, fix, "Normal Wall Texture", "MARBLE1"))
    {
        // Listed under the LineDef, where the finding was; the edit is counted the same.
        Repair(run, map::KindLineDef, index,
               platform::Format("Linedef %d Fixed sideDef1 %d", static_cast<int>(index),
                                static_cast<int>(side)),
               [&] { run.Level.SideDefs[side].NormalTexture = *texture; });
    }
    return true;
}

bool CheckNormalTextures(CheckRun& run, bool fix)
{
    if (!run.Settings.NormalTexture)
    {
        return true;
    }
    run.Progress("Checking Missing Normal Wall Textures (esc)");
    return run.Each(run.Level.LineDefs.size(), [&](std::size_t i)
                    { return CheckNormalTexture(run, fix, static_cast<std::uint32_t>(i)); });
}

// A needed upper or lower texture that is missing; repeats of earlier runs are passed over.
bool ReportMissing(CheckRun& run, bool fix, const WallRun& wallRun, const WallSide& wall)
{
    const std::uint8_t bit = wall.Upper ? ReportedUpper : ReportedLower;
    std::uint8_t& reported = (*wallRun.Reported)[wall.SideDef];
    const map::SideDef& side = std::as_const(run.Level).SideDefs[wall.SideDef];
    if ((reported & bit) != 0 || !(wall.Upper ? side.UpperTexture : side.LowerTexture).IsNone())
    {
        return true;
    }
    reported |= bit;
    const int line = static_cast<int>(wall.Line);
    const int sideDef = static_cast<int>(wall.SideDef);
    Prompt prompt;
    prompt.Kind = map::KindLineDef;
    prompt.Index = wall.Line;
    prompt.Lines = {
        wall.Upper
            ? (wall.Side == 1
                   ? platform::Format("Linedef %d: sideDef1 %d has no upper texture", line, sideDef)
                   : platform::Format("Linedef %d: sideDef2 %d has no upper texture", line,
                                      sideDef))
            : (wall.Side == 1
                   ? platform::Format("Linedef %d: sideDef1 %d has no lower texture", line, sideDef)
                   : platform::Format("Linedef %d: sideDef2 %d has no lower texture", line,
                                      sideDef)),
        platform::Format("%s LineDef requires Texture.", wallRun.Name.c_str()),
        "Continue (leaves it alone)?"};
    prompt.FixButton = "Pick Texture";
    const Settled settled = Settle(run, fix, prompt);
    if (settled != Settled::Repair)
    {
        return settled != Settled::Stop;
    }
    const auto texture = wall.Upper ? RepairTexture(run, fix, "Upper Wall Texture", "MARBGRAY")
                                    : RepairTexture(run, fix, "Lower Wall Texture", "MARBGRAY");
    if (texture)
    {
        Repair(run, map::KindLineDef, wall.Line,
               WallFixLine(wall.Line, wall.Side, wall.Upper, wall.SideDef),
               [&]
               {
                   map::SideDef& fixed = run.Level.SideDefs[wall.SideDef];
                   (wall.Upper ? fixed.UpperTexture : fixed.LowerTexture) = *texture;
               });
    }
    return true;
}

// Patch counts of wall textures, each name looked up once per run: the lookup walks TEXTUREx.
class PatchCounts
{
public:
    int Of(const map::TextureName& name)
    {
        const wad::LumpName key{name.Chars};
        const auto [at, added] = Counts.try_emplace(key.Key(), 0);
        // Only names of the catalogue are looked up: TEXTUREx must be there to be read.
        if (added && gfx::Catalogue().Textures.Contains(key))
        {
            const std::optional<gfx::TextureRecord> record = gfx::LookupTexture(name.Text());
            at->second = record ? record->PatchCount : 0;
        }
        return at->second;
    }

private:
    std::unordered_map<std::uint64_t, int> Counts;
};

// The normal texture of a two-sided LineDef's side, when it is made of several patches: the game
// draws only one patch per column of a see-through wall, so the others go missing.
bool ReportPatches(CheckRun& run, PatchCounts& counts, std::uint32_t line, std::uint32_t sideDef)
{
    const map::TextureName& texture = std::as_const(run.Level).SideDefs[sideDef].NormalTexture;
    if (texture.IsNone() || texture.IsSpecial())
    {
        return true;
    }
    const int patches = counts.Of(texture);
    if (patches <= 1)
    {
        return true;
    }
    Prompt prompt;
    prompt.Kind = map::KindLineDef;
    prompt.Index = line;
    prompt.Lines = {platform::Format("Linedef %d, texture %s has %hd patches!",
                                     static_cast<int>(line), texture.Text().c_str(),
                                     static_cast<short>(patches)),
                    "Possible problem, continue?"};
    return run.Verify(prompt) != Answer::Stop;
}

// The tests of one two-sided LineDef in a wall run.
bool TestWall(CheckRun& run, bool fix, const WallRun& wallRun, std::uint32_t index,
              const TwoSides& sides)
{
    const WallNeeds needs = NeedsOf(wallRun.Heights[sides.Front], wallRun.Heights[sides.Back]);
    const bool upper = run.Settings.UpperTexture;
    const bool lower = run.Settings.LowerTexture;
    const WallSide walls[] = {{index, 1, sides.Side1, true},
                              {index, 1, sides.Side1, false},
                              {index, 2, sides.Side2, true},
                              {index, 2, sides.Side2, false}};
    const bool wanted[] = {upper && needs.Upper1, lower && needs.Lower1, upper && needs.Upper2,
                           lower && needs.Lower2};
    for (std::size_t i = 0; i < 4; ++i)
    {
        if (wanted[i] && !ReportMissing(run, fix, wallRun, walls[i]))
        {
            return false;
        }
    }
    return true;
}

} // namespace

const char* MoveName(Move move)
{
    switch (move)
    {
    case Move::LowerFloor:
        return "Lower Floor";
    case Move::RaiseFloor:
        return "Raise Floor";
    case Move::LowerCeiling:
        return "Lower Ceiling";
    default:
        return "Raise Ceiling";
    }
}

std::optional<MovingSectors> FindMovingSectors(CheckRun& run)
{
    const map::LevelData& level = run.Level;
    const bool hexen = game::Game().LevelFormat == map::GameHexen;
    const std::size_t lineCount = level.LineDefs.size();
    const std::size_t total = lineCount + level.Sectors.size();
    MovingSectors moving;
    // The lists each tag's Sectors go into: gathered from the LineDefs first, so that the
    // Sectors are walked once however many LineDefs share a tag.
    std::vector<std::uint8_t> listsOfTag(std::numeric_limits<std::uint16_t>::max() + 1, 0);
    MotionCache motions;
    for (std::size_t i = 0; i < lineCount; ++i)
    {
        if (run.Poll(i, total))
        {
            return std::nullopt;
        }
        const map::LineDef& line = level.LineDefs[i];
        // In the Hexen layout the special is the type's low byte, its first argument the tag's.
        const auto type = static_cast<std::uint16_t>(hexen ? line.Type & 0xFF : line.Type);
        const auto tag = static_cast<std::uint16_t>(hexen ? line.Tag & 0xFF : line.Tag);
        if (type == 0)
        {
            continue;
        }
        const std::uint16_t motion = motions.Of(type);
        moving.RisingStairs = moving.RisingStairs || motion == MotionRaiseStair;
        if (tag != 0)
        {
            listsOfTag[tag] |= ListsOfMotion(motion);
        }
    }
    const std::size_t sectorCount = level.Sectors.size();
    for (auto* list :
         {&moving.LowerFloor, &moving.RaiseFloor, &moving.LowerCeiling, &moving.RaiseCeiling})
    {
        list->assign(sectorCount, 0);
    }
    for (std::size_t i = 0; i < sectorCount; ++i)
    {
        if (run.Poll(lineCount + i, total))
        {
            return std::nullopt;
        }
        const std::uint8_t lists = listsOfTag[level.Sectors[i].Tag];
        moving.LowerFloor[i] = (lists & InLowerFloor) != 0;
        moving.RaiseFloor[i] = (lists & InRaiseFloor) != 0;
        moving.LowerCeiling[i] = (lists & InLowerCeiling) != 0;
        moving.RaiseCeiling[i] = (lists & InRaiseCeiling) != 0;
    }
    return moving;
}

std::vector<std::uint8_t> MovedBy(const MovingSectors& moving, Move move)
{
    switch (move)
    {
    case Move::RaiseFloor:
        return moving.RaiseFloor;
    case Move::RaiseCeiling:
        return moving.RaiseCeiling;
    default:
        break;
    }
    // A Sector that one special lowers and another raises is tested raised only.
    const bool floor = move == Move::LowerFloor;
    std::vector<std::uint8_t> moved = floor ? moving.LowerFloor : moving.LowerCeiling;
    const std::vector<std::uint8_t>& rising = floor ? moving.RaiseFloor : moving.RaiseCeiling;
    for (std::size_t i = 0; i < moved.size(); ++i)
    {
        moved[i] = moved[i] != 0 && rising[i] == 0;
    }
    return moved;
}

SectorHeights MovedHeight(SectorHeights heights, Move move)
{
    constexpr std::int16_t Lowest = std::numeric_limits<std::int16_t>::min();
    constexpr std::int16_t Highest = std::numeric_limits<std::int16_t>::max();
    const auto down = [](std::int16_t& height)
    { height = height > Lowest ? static_cast<std::int16_t>(height - 1) : height; };
    const auto up = [](std::int16_t& height)
    { height = height < Highest ? static_cast<std::int16_t>(height + 1) : height; };
    switch (move)
    {
    case Move::LowerFloor:
        down(heights.Floor);
        break;
    case Move::RaiseFloor:
        up(heights.Floor);
        break;
    case Move::LowerCeiling:
        down(heights.Ceiling);
        break;
    case Move::RaiseCeiling:
        up(heights.Ceiling);
        break;
    }
    return heights;
}

std::vector<SectorHeights> MovedHeights(std::vector<SectorHeights> heights,
                                        const std::vector<std::uint8_t>& moved, Move move)
{
    for (std::size_t i = 0; i < heights.size() && i < moved.size(); ++i)
    {
        if (moved[i] != 0)
        {
            heights[i] = MovedHeight(heights[i], move);
        }
    }
    return heights;
}

bool AnyFlag(const std::vector<std::uint8_t>& flags)
{
    return std::any_of(flags.begin(), flags.end(), [](std::uint8_t flag) { return flag != 0; });
}

bool TestWalls(CheckRun& run, bool fix, const WallRun& wallRun)
{
    run.Progress(platform::Format("Checking %s Wall Textures (esc Cancel)", wallRun.Name.c_str()));
    // The patch count doesn't change as Sectors move: it is tested over the whole level only.
    // The automatic fix has nothing to do about it and doesn't stop for it.
    const bool patchTest = wallRun.Only == nullptr && !fix && run.Settings.MultiPatchTextures;
    PatchCounts patchCounts;
    const auto test = [&](std::uint32_t index, const TwoSides& sides)
    {
        if (wallRun.Only != nullptr && (*wallRun.Only)[sides.Front] == 0 &&
            (*wallRun.Only)[sides.Back] == 0)
        {
            return true;
        }
        return TestWall(run, fix, wallRun, index, sides) &&
               (!patchTest || (ReportPatches(run, patchCounts, index, sides.Side1) &&
                               ReportPatches(run, patchCounts, index, sides.Side2)));
    };
    return EachTwoSided(run, test);
}

bool CheckWallTextures(CheckRun& run, bool fix, const std::vector<std::uint32_t>& sectors,
                       const std::string& name)
{
    std::vector<std::uint8_t> reported(run.Level.SideDefs.size(), 0);
    std::vector<std::uint8_t> only;
    WallRun wallRun{name, CopyHeights(run.Level), nullptr, &reported};
    if (!sectors.empty())
    {
        only.assign(run.Level.Sectors.size(), 0);
        for (const std::uint32_t sector : sectors)
        {
            if (sector < only.size())
            {
                only[sector] = 1;
            }
        }
        wallRun.Only = &only;
    }
    return TestWalls(run, fix, wallRun);
}

bool CheckSectorHeights(CheckRun& run, bool fix)
{
    if (!CheckCeilings(run, fix) || !CheckNormalTextures(run, fix))
    {
        return false;
    }
    const std::optional<MovingSectors> moving = FindMovingSectors(run);
    if (!moving)
    {
        return false;
    }
    // The level as it is, then each kind of move on its own; the heights the runs read are
    // copies, the level keeps its own.
    const std::vector<SectorHeights> heights = CopyHeights(run.Level);
    std::vector<std::uint8_t> reported(run.Level.SideDefs.size(), 0);
    if (!TestWalls(run, fix, {"2-sided", heights, nullptr, &reported}))
    {
        return false;
    }
    for (const Move move : AllMoves)
    {
        const std::vector<std::uint8_t> moved = MovedBy(*moving, move);
        if (AnyFlag(moved) &&
            !TestWalls(run, fix,
                       {MoveName(move), MovedHeights(heights, moved, move), &moved, &reported}))
        {
            return false;
        }
    }
    return true;
}

} // namespace kelvar::check
