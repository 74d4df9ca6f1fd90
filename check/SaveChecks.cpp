// The checks a save runs before it writes: port limits, zero-length lines and player starts.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/SaveChecks.h"

#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "map/ObjectList.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "platform/Ui.h"

#include <algorithm>
#include <utility>

namespace kelvar::check
{
namespace
{

constexpr const char* ShortLinesProgress = "Checking %d Short LineDefs (esc Cancel)";
constexpr const char* ShortLinesCancelled = "Short LineDef check Cancelled!";

// Escape is polled every hundred LineDefs, from the first: often enough to feel immediate,
// rarely enough that the window's event handling costs nothing on a large level.
bool PollDue(std::size_t index)
{
    return index % 100 == 0;
}

// The first zero-length LineDef from `first` on, or -1; `escaped` is set when the user pressed
// Escape on the way.
int NextZeroLength(const map::LevelData& level, std::size_t first, bool& escaped)
{
    const std::size_t count = level.LineDefs.size();
    for (std::size_t i = first; i < count; ++i)
    {
        if (PollDue(i) && platform::TheUi().PollEscape())
        {
            escaped = true;
            return -1;
        }
        if (IsZeroLength(level, level.LineDefs[i]))
        {
            return static_cast<int>(i);
        }
    }
    return -1;
}

// The type of the game's player 1 start: the first row with that property; 0 for none.
std::uint16_t PlayerOneType()
{
    for (const game::ThingTypeRow& row : game::Game().Things)
    {
        if (row.Type == game::EndOfTable)
        {
            break;
        }
        if (row.Type != 0 && row.Type < game::FirstHeading &&
            row.Property == game::PropertyPlayerStart1)
        {
            return static_cast<std::uint16_t>(row.Type);
        }
    }
    return 0;
}

bool HasPlayerOneStart(const map::LevelData& level)
{
    return std::any_of(
        level.Things.begin(), level.Things.end(),
        [](const map::Thing& thing)
        { return game::ThingRowOfType(thing.Type).Property == game::PropertyPlayerStart1; });
}

} // namespace

bool PlayerOneReady(const map::LevelData& level)
{
    return PlayerOneType() == 0 || HasPlayerOneStart(level);
}

bool PortLimitCaution(const map::LevelData& level, const CheckOptions& options)
{
    if (options.ExpertMode)
    {
        return true;
    }
    if (level.LineDefs.Count() < PortLineLimit && level.SideDefs.Count() < PortLineLimit &&
        level.Vertexes.Count() < PortVertexLimit)
    {
        return true;
    }
    return platform::AskYesNo("Caution\n\nThis level exceeds the limits of most\nDOOM ports and "
                              "will crash the game\n\n(this message does not appear if F5 Expert "
                              "set)\n\nContinue with Save?");
}

bool IsZeroLength(const map::LevelData& level, const map::LineDef& line)
{
    const auto count = static_cast<std::uint32_t>(level.Vertexes.Count());
    if (line.StartVertex >= count || line.EndVertex >= count)
    {
        return false;
    }
    return line.StartVertex == line.EndVertex ||
           level.Vertexes[line.StartVertex] == level.Vertexes[line.EndVertex];
}

bool ShortLineCheck(const map::LevelData& level)
{
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress(platform::Format(ShortLinesProgress, level.LineDefs.Count()), "");
    bool escaped = false;
    const int line = NextZeroLength(level, 0, escaped);
    ui.EndProgress();
    if (escaped)
    {
        platform::ShowInfo("%s", ShortLinesCancelled);
        return false;
    }
    // Only the first one asks: the checker, not the save, is the place to deal with them all.
    return line < 0 || !platform::AskYesNo("!! LineDef %d is -0- length !!\n\nPlease Press F10, "
                                           "Run Error checker\nand Fix or Nodes will blow "
                                           "up!\n\nQuit Save Now (yes recommended)?",
                                           line);
}

int ArgumentRangeCheck(map::LevelData& level)
{
    if (level.LevelLayout != map::LayoutHexen)
    {
        return 0;
    }
    int changed = 0;
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        if (std::as_const(level).LineDefs[i].Tag <= 0xFF)
        {
            continue;
        }
        // One message for the level: the rest are set to 0 the same way.
        if (changed == 0)
        {
            platform::ShowInfo("One or more argument values of LineDef %hu exceeds 255\n\nSet to 0",
                               static_cast<unsigned short>(i));
        }
        level.LineDefs[i].Tag = 0;
        ++changed;
    }
    if (changed > 0)
    {
        map::NoteChange(level, map::KindThing);
    }
    return changed;
}

bool CheckShortLines(map::LevelData& level)
{
    platform::Ui& ui = platform::TheUi();
    ui.ShowProgress(platform::Format(ShortLinesProgress, level.LineDefs.Count()), "");
    // All are found before any is deleted, so Escape leaves the level as it was.
    map::ObjectList found;
    int deleted = 0;
    bool escaped = false;
    for (int line = NextZeroLength(level, 0, escaped); line >= 0;
         line = NextZeroLength(level, static_cast<std::size_t>(line) + 1, escaped))
    {
        map::ObjectListPush(found, line);
        ++deleted;
    }
    ui.EndProgress();
    if (escaped)
    {
        map::ObjectListClear(found);
        platform::ShowInfo("%s", ShortLinesCancelled);
        return false;
    }
    if (deleted > 0)
    {
        map::DeleteObjectList(level, map::KindLineDef, found);
        platform::ShowInfo("%d -0- length lines deleted", deleted);
    }
    return true;
}

bool PlayerOneCheck(map::LevelData& level)
{
    const std::uint16_t type = PlayerOneType();
    if (type == 0 || HasPlayerOneStart(level))
    {
        return false;
    }
    const int answer = platform::ShowMessageLines(platform::LinesCancel, "No Player 1",
                                                  {"No Player 1 found!", "Do you want Kelvar to",
                                                   "add a Player 1 Start", "in the center?",
                                                   "(Required for Testing)"});
    if (answer != 1)
    {
        return false;
    }
    const map::VertexBox box = map::VertexBounds(level);
    // A new Thing gets the flags of every skill (and in the Hexen format every class and mode).
    const int thing = map::InsertObject(level, map::KindThing, -1, (box.MinX + box.MaxX) / 2,
                                        (box.MinY + box.MaxY) / 2);
    level.Things[static_cast<std::size_t>(thing)].Type = type;
    level.Things[static_cast<std::size_t>(thing)].Angle = 90;
    return true;
}

StartCounts CountStarts(const map::LevelData& level)
{
    StartCounts counts;
    for (const map::Thing& thing : level.Things)
    {
        const std::uint32_t property = game::ThingRowOfType(thing.Type).Property;
        if (property >= game::PropertyPlayerStart1 && property < game::PropertyPlayerStart)
        {
            ++counts.Players;
        }
        else if (property == game::PropertyDeathMatch)
        {
            ++counts.DeathMatch;
        }
    }
    return counts;
}

bool PlayerStartCountCheck(const map::LevelData& level, const CheckOptions& options,
                           const std::function<bool()>& levelCheck)
{
    // Without the checker there is nothing the Yes could run, so the question isn't put.
    if (!options.CheckPlayerStarts || !levelCheck)
    {
        return true;
    }
    const StartCounts counts = CountStarts(level);
    if (counts.Players >= 4 && counts.DeathMatch >= 4)
    {
        return true;
    }
    const int answer = platform::ShowMessageLines(
        platform::LinesCancel, "Not enough",
        {platform::Format("%d player starts found", counts.Players),
         platform::Format("%d deathmatch starts found", counts.DeathMatch),
         "Check for Player Starts&Exits?", "(to disable this msg change: F5-Check Player Start)"});
    return answer != 1 || levelCheck();
}

} // namespace kelvar::check
