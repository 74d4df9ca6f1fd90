// The Thing checks of the checker (button 6): each Thing's type, shooter target, Sector, room
// and neighbours.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/ThingChecks.h"

#include "check/CheckWalk.h"
#include "game/GameState.h"
#include "map/SectorRays.h"
#include "map/SpatialIndex.h"
#include "platform/Format.h"
#include "view/HitTest.h"

#include <algorithm>
#include <array>
#include <optional>
#include <tuple>

namespace kelvar::check
{
namespace
{

using map::KindThing;
using map::LevelData;
using platform::Format;

constexpr int SkillCount = 3;

// Thing flags: the multiplayer-only bit, Boom's "not in cooperative play", and the Hexen modes
// of single and cooperative play.
constexpr std::uint16_t FlagMultiplayer = 0x10;
constexpr std::uint16_t FlagNotCoop = 0x40;
constexpr std::uint16_t FlagHexenSingleOrCoop = 0x300;

// A wall counts when it lies this much inside a Thing's radius: a Thing that only brushes a
// wall can still move off it.
constexpr int WallGrace = 8;

constexpr std::uint32_t PropertySound = 1;

// The boss that fires at spots of a type of its own, which it needs in the level. Hexen's and
// Strife's bosses need no such spot.
struct ShooterPair
{
    std::uint16_t Shooter = 0;
    std::uint16_t Target = 0;
};

std::optional<ShooterPair> ShooterOfGame()
{
    switch (game::Game().IwadKind)
    {
    case map::GameDoom:
    case map::GameDoom2:
        return ShooterPair{89, 87};
    case map::GameHeretic:
        return ShooterPair{7, 56};
    default:
        return std::nullopt;
    }
}

std::string ShooterText(std::size_t thing, const ShooterPair& pair)
{
    const int number = static_cast<int>(thing);
    if (game::Game().IwadKind == map::GameHeretic)
    {
        return Format("Thing %d, Dsparil %hd, No DsparilSpot %hd found", number,
                      AsShort(pair.Shooter), AsShort(pair.Target));
    }
    return Format("Thing %d, ShootType %hd, No TargetType %hd found", number, AsShort(pair.Shooter),
                  AsShort(pair.Target));
}

struct ThingWalk
{
    const LevelData& Level;
    RowCache Rows{};
    bool Hexen = false;
    bool Boom = false;
    std::optional<ShooterPair> Shooter{};
    bool TargetFound = false;
    // The Enemies sorted by point, then number; and each Thing's place in that order, or -1.
    std::vector<std::int32_t> EnemiesByPoint{};
    std::vector<std::int32_t> PlaceByPoint{};
};

// Looks for the shooter's target and sorts the Enemies by point; false when the user pressed
// Escape.
bool PrepareWalk(CheckRun& run, ThingWalk& walk)
{
    const LevelData& level = walk.Level;
    const CheckSettings& settings = run.Settings;
    walk.Hexen = HexenFormat();
    walk.Boom = game::Game().BoomTypes;
    walk.Shooter = settings.ThingShooter ? ShooterOfGame() : std::nullopt;
    const std::size_t count = level.Things.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const std::uint16_t type = level.Things[i].Type;
        walk.TargetFound = walk.TargetFound || (walk.Shooter && type == walk.Shooter->Target);
        if (settings.ThingsOnTop && IsEnemyType(walk.Rows, type))
        {
            walk.EnemiesByPoint.push_back(static_cast<std::int32_t>(i));
        }
    }
    // Things on one point are neighbours in this order, so each Thing meets only those that
    // share its point, and the later ones of them in ascending number.
    std::sort(walk.EnemiesByPoint.begin(), walk.EnemiesByPoint.end(),
              [&](std::int32_t a, std::int32_t b)
              {
                  const map::Thing& ta = level.Things[static_cast<std::size_t>(a)];
                  const map::Thing& tb = level.Things[static_cast<std::size_t>(b)];
                  return std::tie(ta.X, ta.Y, a) < std::tie(tb.X, tb.Y, b);
              });
    walk.PlaceByPoint.assign(count, -1);
    for (std::size_t at = 0; at < walk.EnemiesByPoint.size(); ++at)
    {
        walk.PlaceByPoint[static_cast<std::size_t>(walk.EnemiesByPoint[at])] =
            static_cast<std::int32_t>(at);
    }
    return true;
}

// Whether two Things take part in one game together. In the Hexen format they must share a
// mode of single or cooperative play. In the other formats every Thing is in a cooperative
// game, unless Boom's "not in coop" bit keeps it out; then both must be in a single-player
// game, which the multiplayer bit keeps a Thing out of.
bool MeetInAGame(std::uint16_t a, std::uint16_t b, bool hexen, bool boom)
{
    if (hexen)
    {
        return (a & b & FlagHexenSingleOrCoop) != 0;
    }
    if (!boom)
    {
        return true;
    }
    const bool bothSingle = ((a | b) & FlagMultiplayer) == 0;
    const bool bothCoop = ((a | b) & FlagNotCoop) == 0;
    return bothSingle || bothCoop;
}

bool CheckOnTop(CheckRun& run, ThingWalk& walk, std::size_t i)
{
    const LevelData& level = walk.Level;
    const std::int32_t place = walk.PlaceByPoint[i];
    if (place < 0)
    {
        return true;
    }
    const map::Thing& thing = level.Things[i];
    for (auto at = static_cast<std::size_t>(place) + 1; at < walk.EnemiesByPoint.size(); ++at)
    {
        const auto j = static_cast<std::size_t>(walk.EnemiesByPoint[at]);
        const map::Thing& other = level.Things[j];
        if (other.X != thing.X || other.Y != thing.Y)
        {
            break;
        }
        if ((thing.Flags & other.Flags & SkillBits) == 0 ||
            !MeetInAGame(thing.Flags, other.Flags, walk.Hexen, walk.Boom))
        {
            continue;
        }
        if (!ReportObject(
                run, KindThing, i,
                {Format("Thing %d %s and", static_cast<int>(i), ThingNameOf(thing.Type).c_str()),
                 Format("Thing %d %s", static_cast<int>(j), ThingNameOf(other.Type).c_str()),
                 "are on top of each other."}))
        {
            return false;
        }
    }
    return true;
}

// The first one-sided LineDef nearer to the point than `reach`, by the distance of hit testing
// (a LineDef counts only where the point's perpendicular foot falls on it); -1 for none.
int WallWithin(const LevelData& level, double x, double y, double reach)
{
    const std::size_t vertexes = level.Vertexes.size();
    for (const std::int32_t i :
         map::IndexOf(level).LineDefsNear(x - reach, y - reach, x + reach, y + reach))
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        if (line.SideDef2 != map::NoSideDef || line.StartVertex >= vertexes ||
            line.EndVertex >= vertexes)
        {
            continue;
        }
        const map::Vertex& a = level.Vertexes[line.StartVertex];
        const map::Vertex& b = level.Vertexes[line.EndVertex];
        const double distance = view::LineDistanceSquared(a.X, a.Y, b.X, b.Y, x, y);
        if (distance >= 0.0 && distance < reach * reach)
        {
            return i;
        }
    }
    return -1;
}

// Where a Thing stands: inside a Sector, and for what `moves` (Enemies and player starts) a
// Sector tall enough; false when the user stopped the check.
bool CheckThingSector(CheckRun& run, const ThingWalk& walk, std::size_t i,
                      const game::ThingTypeRow& row, bool moves)
{
    const LevelData& level = walk.Level;
    const map::Thing& thing = level.Things[i];
    // Sounds may sit anywhere, and a polyobject's anchor lies outside the level on purpose.
    if (row.Property == PropertySound || (walk.Hexen && row.Property == game::PropertyPolyAnchor))
    {
        return true;
    }
    const int number = static_cast<int>(i);
    const int sector = map::SectorAt(level, thing.X, thing.Y, map::SectorAtMode::Loose);
    if (sector < 0)
    {
        return ReportObject(run, KindThing, i,
                            {Format("Thing %d %s", number, ThingNameOf(thing.Type).c_str()),
                             "is outside of every Sector."});
    }
    const map::Sector& room = level.Sectors[static_cast<std::size_t>(sector)];
    const int height = room.CeilingHeight - room.FloorHeight;
    if (!moves || height >= row.Height)
    {
        return true;
    }
    return ReportObject(
        run, KindThing, i,
        {Format("Sector %d height %hd < min %hd", sector, AsShort(height), AsShort(row.Height)),
         Format("Thing %d %s can't fit!", number, ThingNameOf(thing.Type).c_str())});
}

bool CheckThingInWall(CheckRun& run, const ThingWalk& walk, std::size_t i,
                      const game::ThingTypeRow& row)
{
    const map::Thing& thing = walk.Level.Things[i];
    const int reach = row.Radius - WallGrace;
    if (reach <= 0 || WallWithin(walk.Level, thing.X, thing.Y, reach) < 0)
    {
        return true;
    }
    return ReportObject(
        run, KindThing, i,
        {Format("Thing %d %s", static_cast<int>(i), ThingNameOf(thing.Type).c_str()),
         "is in a wall. Can it move?"});
}

bool CheckThing(CheckRun& run, ThingWalk& walk, std::size_t i)
{
    const CheckSettings& settings = run.Settings;
    const map::Thing& thing = walk.Level.Things[i];
    const game::ThingTypeRow& row = CachedThingRow(walk.Rows, thing.Type);
    const int number = static_cast<int>(i);
    if (settings.ThingTypes && IsUnknownRow(row) &&
        !ReportObject(run, KindThing, i,
                      {Format("Thing %d, Invalid Type %hd", number, AsShort(thing.Type))}))
    {
        return false;
    }
    if (walk.Shooter && thing.Type == walk.Shooter->Shooter && !walk.TargetFound &&
        !ReportObject(run, KindThing, i, {ShooterText(i, *walk.Shooter)}))
    {
        return false;
    }
    const bool moves =
        IsEnemyType(walk.Rows, thing.Type) || game::IsPlayerStartProperty(row.Property);
    if (settings.ThingsInSector && !CheckThingSector(run, walk, i, row, moves))
    {
        return false;
    }
    if (settings.ThingsOnTop && !CheckOnTop(run, walk, i))
    {
        return false;
    }
    return !settings.ThingsInSector || !moves || CheckThingInWall(run, walk, i, row);
}

// The door check runs in every format but Strife's, whose doors open with quest items as
// much as with keys; in the Hexen format only when its option asks for it.
bool KeyCheckRuns(const CheckSettings& settings)
{
    const int format = game::Game().LevelFormat;
    if (format == map::GameStrife)
    {
        return false;
    }
    return format != map::GameHexen || settings.CheckKeys;
}

} // namespace

std::vector<std::string> SkillLines(unsigned skills)
{
    static constexpr std::array<const char*, SkillCount> Labels = {
        "Skill 1-2 (easy)", "Skill  3 (medium)", "Skill 4-5 (hard)"};
    std::vector<std::string> lines;
    for (std::size_t skill = 0; skill < Labels.size(); ++skill)
    {
        if ((skills >> skill & 1u) != 0)
        {
            lines.emplace_back(Labels[skill]);
        }
    }
    return lines;
}

std::string TypeNameOf(std::string_view rowName)
{
    std::string_view name = rowName.substr(0, rowName.find('+'));
    while (!name.empty() && name.back() == ' ')
    {
        name.remove_suffix(1);
    }
    while (!name.empty() && name.front() == ' ')
    {
        name.remove_prefix(1);
    }
    return std::string(name);
}

std::string ThingNameOf(std::uint16_t type)
{
    return TypeNameOf(game::Text(game::ThingRowOfType(type).Name));
}

bool CheckThings(CheckRun& run)
{
    run.Progress("Checking Thing Names/Doors/Sectors (esc Cancel)");
    ThingWalk walk{.Level = run.Level};
    if (!PrepareWalk(run, walk))
    {
        return false;
    }
    return run.Each(run.Level.Things.size(),
                    [&](std::size_t i) { return CheckThing(run, walk, i); }) &&
           (!KeyCheckRuns(run.Settings) || CheckKeyDoors(run));
}

} // namespace kelvar::check
