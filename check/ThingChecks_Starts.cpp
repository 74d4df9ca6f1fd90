// The player start checks of the checker (button 6): exits, the starts of each player per
// skill, and the deathmatch starts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckWalk.h"
#include "check/ThingChecks.h"
#include "game/GameState.h"
#include "platform/Format.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kelvar::check
{
namespace
{

using map::KindThing;
using map::LevelData;
using platform::Format;

constexpr int MaxPlayers = 8;
constexpr int SkillCount = 3;

// False when the user pressed Escape.
bool CheckExits(CheckRun& run, RowCache& rows)
{
    const LevelData& level = run.Level;
    const std::size_t count = level.LineDefs.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        if ((CachedLineRow(rows, level.LineDefs[i]).TagType & game::TagExit) != 0)
        {
            return true;
        }
    }
    if (run.Logging())
    {
        run.Log(0, 0, "There are no exits in this level");
    }
    else
    {
        run.Tell("No Exits", {"WARNING", "There are no exits in this level!",
                              "(Not displayed in Expert Mode)"});
    }
    return true;
}

// The player a start is for, 1 to 8; 0 for every other Thing, the any-player start included.
int PlayerOf(std::uint32_t property)
{
    if (property < game::PropertyPlayerStart1 || property >= game::PropertyPlayerStart)
    {
        return 0;
    }
    return static_cast<int>(property - game::PropertyPlayerStart1) + 1;
}

// The players whose starts are looked for: players 5 to 8 have starts only in the Hexen format
// and in the Boom ports, and only where the game's table has a type for them.
int PlayersConsidered()
{
    const game::GameState& game = game::Game();
    if (!game.BoomTypes && game.LevelFormat != map::GameHexen)
    {
        return 4;
    }
    int players = 4;
    for (const game::ThingTypeRow& row : game.Things)
    {
        if (row.Type == game::EndOfTable)
        {
            break;
        }
        if (row.Type < game::FirstHeading && row.Name[0] != 'x')
        {
            players = std::max(players, std::min(PlayerOf(row.Property), MaxPlayers));
        }
    }
    return players;
}

struct StartTally
{
    std::array<std::array<int, SkillCount>, MaxPlayers> PerSkill{};
    std::array<int, MaxPlayers> Count{};
    std::array<int, MaxPlayers> First{};
    int DeathMatch = 0;
};

// False when the user pressed Escape.
bool TallyStarts(CheckRun& run, RowCache& rows, StartTally& tally)
{
    const LevelData& level = run.Level;
    const int players = PlayersConsidered();
    tally.First.fill(-1);
    const std::size_t count = level.Things.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::Thing& thing = level.Things[i];
        const std::uint32_t property = CachedThingRow(rows, thing.Type).Property;
        const int player = PlayerOf(property);
        if (property == game::PropertyDeathMatch)
        {
            ++tally.DeathMatch;
        }
        if (player == 0 || player > players)
        {
            continue;
        }
        const auto at = static_cast<std::size_t>(player - 1);
        ++tally.Count[at];
        if (tally.First[at] < 0)
        {
            tally.First[at] = static_cast<int>(i);
        }
        for (int skill = 0; skill < SkillCount; ++skill)
        {
            tally.PerSkill[at][static_cast<std::size_t>(skill)] += (thing.Flags >> skill) & 1;
        }
    }
    return true;
}

// Starts without skill bits: the game places players whatever their skills say, so such a
// start works, but it is a slip all the same. False when the user stopped the check.
bool CheckStartSkills(CheckRun& run, RowCache& rows)
{
    const LevelData& level = run.Level;
    const int players = PlayersConsidered();
    const std::size_t count = level.Things.size();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (run.Poll(i, count))
        {
            return false;
        }
        const map::Thing& thing = level.Things[i];
        const int player = PlayerOf(CachedThingRow(rows, thing.Type).Property);
        if (player == 0 || player > players || (thing.Flags & SkillBits) != 0)
        {
            continue;
        }
        if (!ReportObject(run, KindThing, i,
                          {Format("Player %hd invalid skill level", AsShort(player)),
                           "This works, but is bad practice"}))
        {
            return false;
        }
    }
    return true;
}

// A finding about one player: on its first start when it has one, else about the level.
bool ReportPlayer(CheckRun& run, int firstStart, std::vector<std::string> lines)
{
    if (firstStart >= 0)
    {
        return ReportObject(run, KindThing, static_cast<std::size_t>(firstStart), std::move(lines));
    }
    run.Tell("Player", lines);
    return true;
}

// Per skill, each player needs exactly one start: with more, the extra ones become the
// player's lifeless doubles. Players without any start were reported as a whole before.
bool CheckStartsPerSkill(CheckRun& run, const StartTally& tally)
{
    for (int player = 1; player <= PlayersConsidered(); ++player)
    {
        const auto at = static_cast<std::size_t>(player - 1);
        if (player > 1 && tally.Count[at] == 0)
        {
            continue;
        }
        unsigned missing = 0;
        unsigned doubled = 0;
        for (std::size_t skill = 0; skill < SkillCount; ++skill)
        {
            missing |= tally.PerSkill[at][skill] == 0 ? 1u << skill : 0u;
            doubled |= tally.PerSkill[at][skill] > 1 ? 1u << skill : 0u;
        }
        if (missing != 0)
        {
            std::vector<std::string> lines = {
                Format("Player %hd missing start for skill", AsShort(player))};
            const std::vector<std::string> skills = SkillLines(missing);
            lines.insert(lines.end(), skills.begin(), skills.end());
            if (!ReportPlayer(run, tally.First[at], std::move(lines)))
            {
                return false;
            }
        }
        if (doubled != 0)
        {
            std::vector<std::string> lines = {
                Format("Player %hd has more than 1 start for skill", AsShort(player))};
            const std::vector<std::string> skills = SkillLines(doubled);
            lines.insert(lines.end(), skills.begin(), skills.end());
            lines.push_back("These players will be GHOSTS");
            lines.push_back("(and are easy to pick on)");
            if (!ReportPlayer(run, tally.First[at], std::move(lines)))
            {
                return false;
            }
        }
    }
    return true;
}

// The deathmatch starts the game keeps; the others are ignored. The Boom and ZDoom ports keep
// any number.
std::optional<int> DeathMatchLimit()
{
    const game::GameState& game = game::Game();
    if (game.ZdoomTypes || (game.BoomTypes && game.LevelFormat != map::GameHexen))
    {
        return std::nullopt;
    }
    return game.LevelFormat == map::GameHexen ? 16 : 10;
}

void CheckDeathMatchStarts(CheckRun& run, int starts)
{
    if (starts < 4)
    {
        run.Tell("Warning", {Format("Only %hd DeathMatch starts present.", AsShort(starts)),
                             "You need at least 4 DeathMatch starts"});
        return;
    }
    const std::optional<int> limit = DeathMatchLimit();
    if (limit && starts > *limit)
    {
        run.Tell("Warning",
                 {Format("There are %d DeathMatch starts", starts),
                  *limit == 16 ? "Only the first 16 are used?" : "Only the first 10 are used?"});
    }
}

} // namespace

bool CheckPlayerStarts(CheckRun& run, bool interactive)
{
    RowCache rows;
    if (!run.Settings.ExpertMode && !CheckExits(run, rows))
    {
        return false;
    }
    if (!run.Settings.PlayerStarts || run.Level.Things.empty())
    {
        return true;
    }
    StartTally tally;
    if (!TallyStarts(run, rows, tally))
    {
        return false;
    }
    if (tally.Count[0] == 0)
    {
        if (interactive && !run.Logging())
        {
            if (run.Ask("Player", {"Starting positions missing.",
                                   "Skip Rest of player checks ?"}) == Answer::Fix)
            {
                return true;
            }
        }
        else
        {
            run.Tell("Player", {"Starting positions missing."});
        }
    }
    const int players = PlayersConsidered();
    for (int player = 2; player <= players; ++player)
    {
        if (tally.Count[static_cast<std::size_t>(player - 1)] == 0)
        {
            run.Tell("Warning", {"This level is not for multi-player games"});
            break;
        }
    }
    if (!CheckStartSkills(run, rows) || !CheckStartsPerSkill(run, tally))
    {
        return false;
    }
    CheckDeathMatchStarts(run, tally.DeathMatch);
    return true;
}

} // namespace kelvar::check
