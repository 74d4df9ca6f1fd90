// What the texture checks share: how a finding is settled, the textures a repair puts in, the
// heights the wall test reads, which Sectors specials move, and which walls need a texture.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckRun.h"
#include "map/LevelData.h"
#include "map/ObjectStore.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvar::check
{

/// How a finding ended.
enum class Settled : std::uint8_t
{
    Left,   // leave the object as it is
    Repair, // repair it
    Stop,   // stop the check
};

/// With `fix` the finding is repaired unasked; otherwise the run's prompt or list decides.
Settled Settle(CheckRun& run, bool fix, const Prompt& prompt);

/// True when repairs take the fixed defaults rather than the user's pick: the automatic fix,
/// or the list with every repair taken.
inline bool RepairsUnasked(const CheckRun& run, bool fix)
{
    return fix || run.Logging();
}

/// The wall texture a repair puts in: `fallback` when repairs are unasked, otherwise the one
/// the user picks from the texture list in the browser titled `caption`; nothing when the
/// browser closes without a pick.
std::optional<map::TextureName> RepairTexture(CheckRun& run, bool fix, const std::string& caption,
                                              std::string_view fallback);

/// The same for a flat, from the flat list.
std::optional<map::TextureName> RepairFlat(CheckRun& run, bool fix, const std::string& caption,
                                           std::string_view fallback);

/// A repair of one object: the undo step, the change, the count of the edit and the line for
/// the list (under the object).
template <class Change>
void Repair(CheckRun& run, int kind, std::uint32_t index, const std::string& line, Change change)
{
    run.BeforeRepair();
    change();
    map::NoteChange(run.Level, kind);
    run.Log(kind, index, line);
}

/// The line a repair of a wall's upper (`upper`) or lower texture writes: "LineDef %d Fixed Upper
/// sideDef1 %d" and its kin, for side 1 or 2 of LineDef `line`.
std::string WallFixLine(std::uint32_t line, int side, bool upper, std::uint32_t sideDef);

/// What the wall test reads of a Sector.
struct SectorHeights
{
    std::int16_t Floor = 0;
    std::int16_t Ceiling = 0;
    bool SkyCeiling = false; // the ceiling flat begins with F_SKY
};

/// The heights of every Sector of the level, as they are.
std::vector<SectorHeights> CopyHeights(const map::LevelData& level);

/// The Sectors that LineDef specials move, one flag per Sector in each list.
struct MovingSectors
{
    std::vector<std::uint8_t> LowerFloor;
    std::vector<std::uint8_t> RaiseFloor;
    std::vector<std::uint8_t> LowerCeiling;
    std::vector<std::uint8_t> RaiseCeiling;
    bool RisingStairs = false; // a tagged LineDef raises stairs
};

/// The four ways the look-ahead moves Sectors, each by one unit.
enum class Move : std::uint8_t
{
    LowerFloor,
    RaiseFloor,
    LowerCeiling,
    RaiseCeiling,
};

inline constexpr Move AllMoves[] = {Move::LowerFloor, Move::RaiseFloor, Move::LowerCeiling,
                                    Move::RaiseCeiling};

/// "Lower Floor", "Raise Floor", "Lower Ceiling", "Raise Ceiling".
const char* MoveName(Move move);

/// Every LineDef whose type has a motion and which has a tag puts the Sectors of its tag into the
/// list of its motion; a floor that goes both ways goes into both floor lists. One pass over the
/// LineDefs and one over the Sectors. Nothing when the user pressed Escape.
std::optional<MovingSectors> FindMovingSectors(CheckRun& run);

/// The Sectors that `move` moves: those of its list, less, for a lowering, those that also
/// rise. One flag per Sector.
std::vector<std::uint8_t> MovedBy(const MovingSectors& moving, Move move);

/// A Sector's heights moved one unit as `move` says (never past the limits of 16 bits).
SectorHeights MovedHeight(SectorHeights heights, Move move);

/// `heights` with the Sectors flagged in `moved` moved one unit as `move` says.
std::vector<SectorHeights> MovedHeights(std::vector<SectorHeights> heights,
                                        const std::vector<std::uint8_t>& moved, Move move);

/// True when any flag is set.
bool AnyFlag(const std::vector<std::uint8_t>& flags);

/// The Sectors of a two-sided LineDef whose references all hold; nothing otherwise.
struct TwoSides
{
    std::uint32_t Side1 = 0;
    std::uint32_t Side2 = 0;
    std::uint32_t Front = 0;
    std::uint32_t Back = 0;
};
std::optional<TwoSides> TwoSidesOf(const map::LevelData& level, const map::LineDef& line);

/// Calls `visit(index, sides)` for each LineDef whose two sides hold, polling at every LineDef.
/// False as soon as the user pressed Escape or `visit` answered false (stop).
template <class Visit> bool EachTwoSided(CheckRun& run, Visit visit)
{
    return run.Each(run.Level.LineDefs.size(),
                    [&](std::size_t i)
                    {
                        const auto index = static_cast<std::uint32_t>(i);
                        const std::optional<TwoSides> sides =
                            TwoSidesOf(run.Level, std::as_const(run.Level).LineDefs[i]);
                        return !sides || visit(index, *sides);
                    });
}

/// Which upper and lower textures the sides of a two-sided LineDef need: a side needs a lower
/// texture when its floor lies below the other's, an upper one when its ceiling lies above,
/// unless both ceilings are the sky.
struct WallNeeds
{
    bool Upper1 = false;
    bool Lower1 = false;
    bool Upper2 = false;
    bool Lower2 = false;
};
WallNeeds NeedsOf(const SectorHeights& front, const SectorHeights& back);

/// One side of a LineDef and which of its textures, upper or lower, a finding is about.
struct WallSide
{
    std::uint32_t Line = 0;
    int Side = 1; // 1 the front, 2 the back
    std::uint32_t SideDef = 0;
    bool Upper = false;
};

/// Bits of the walls already reported, one byte per SideDef.
inline constexpr std::uint8_t ReportedUpper = 1;
inline constexpr std::uint8_t ReportedLower = 2;

/// One run of the wall test: the heights it reads, the Sectors whose LineDefs it tests (every
/// LineDef when null), and the walls reported by earlier runs, which it passes over and adds to.
struct WallRun
{
    std::string Name;
    std::vector<SectorHeights> Heights;
    const std::vector<std::uint8_t>* Only = nullptr;
    std::vector<std::uint8_t>* Reported = nullptr;
};

/// The wall test of CheckWallTextures over one run.
bool TestWalls(CheckRun& run, bool fix, const WallRun& wallRun);

} // namespace kelvar::check
