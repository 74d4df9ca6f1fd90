// Set tag or height (Alt+T) and the free tag search its dialog shows.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/TagCommands.h"

#include "app/CommandHandlers.h"
#include "app/Modes.h"
#include "app/Session.h"
#include "app/ShellState.h"
#include "game/TypeLookup.h"
#include "map/GameCodes.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "platform/Format.h"
#include "platform/Ui.h"
#include "wad/WadState.h"

#include <algorithm>
#include <optional>

namespace kelvar::app
{
namespace
{

// Tags are shown as the signed 16-bit numbers they are read as.
int SignedTag(std::uint16_t tag)
{
    return static_cast<std::int16_t>(tag);
}

// A Hexen-layout LineDef keeps its first argument in the low byte of its tag.
constexpr std::uint16_t ArgumentMask = 0xFF;

int TagOf(const map::LevelData& level, int mode, int object, bool hexenFormat)
{
    const auto index = static_cast<std::size_t>(object);
    if (mode == ModeLineDefs)
    {
        const std::uint16_t tag = level.LineDefs[index].Tag;
        return hexenFormat ? tag & ArgumentMask : SignedTag(tag);
    }
    return SignedTag(level.Sectors[index].Tag);
}

// Writes a tag; true when it differs from the one the object had.
bool SetTag(map::LevelData& level, int mode, int object, int value, bool hexenFormat)
{
    const auto index = static_cast<std::size_t>(object);
    std::uint16_t& tag =
        mode == ModeLineDefs ? level.LineDefs[index].Tag : level.Sectors[index].Tag;
    const auto wanted = static_cast<std::uint16_t>(
        hexenFormat && mode == ModeLineDefs
            ? (tag & ~ArgumentMask) | (static_cast<std::uint16_t>(value) & ArgumentMask)
            : static_cast<std::uint16_t>(value));
    if (tag == wanted)
    {
        return false;
    }
    tag = wanted;
    return true;
}

} // namespace

FreeNumbers FreeTagInfo(std::vector<int> numbers)
{
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    if (numbers.empty())
    {
        return {};
    }
    FreeNumbers found{numbers.back() + 1, numbers.back()};
    for (std::size_t i = 1; i < numbers.size(); ++i)
    {
        if (numbers[i] != numbers[i - 1] + 1)
        {
            found.Free = numbers[i - 1] + 1;
            break;
        }
    }
    return found;
}

std::vector<int> TagsInUse(const map::LevelData& level, bool hexenFormat)
{
    std::vector<int> tags;
    for (const map::LineDef& line : level.LineDefs)
    {
        if (hexenFormat)
        {
            const std::uint16_t refers =
                game::LookupLineType(static_cast<std::uint16_t>(line.Type), 0).TagType;
            if ((refers & (game::TagSector | game::TagLine)) != 0 && (line.Tag & ArgumentMask) > 0)
            {
                tags.push_back(line.Tag & ArgumentMask);
            }
        }
        else if (SignedTag(line.Tag) > 0)
        {
            tags.push_back(SignedTag(line.Tag));
        }
    }
    for (const map::Sector& sector : level.Sectors)
    {
        if (SignedTag(sector.Tag) > 0)
        {
            tags.push_back(SignedTag(sector.Tag));
        }
    }
    return tags;
}

NumberStats FirstFreeNumber(std::vector<int> numbers)
{
    NumberStats stats;
    stats.Count = static_cast<int>(numbers.size());
    std::sort(numbers.begin(), numbers.end());
    for (const int number : numbers)
    {
        stats.Free += number == stats.Free ? 1 : 0;
        stats.Last = std::max(stats.Last, number);
    }
    return stats;
}

void SetTagCommand(int /*number*/, CommandSource /*source*/)
{
    map::LevelData& level = map::Map().Level;
    const int mode = EditMode();
    const std::vector<std::int32_t> objects = map::SelectionOrHighlight(level, mode);
    if (!Session().LevelLoaded || objects.empty())
    {
        return;
    }
    const bool hexenFormat = wad::Wad().Game.Format == map::GameHexen;
    const FreeNumbers free = FreeTagInfo(TagsInUse(level, hexenFormat));
    const int low = hexenFormat ? 0 : -32768;
    const int high = hexenFormat ? 255 : 32767;
    const int initial = std::clamp(TagOf(level, mode, objects.front(), hexenFormat), low, high);
    const std::optional<int> value = platform::TheUi().AskNumber(
        platform::Format("Free=%hd, Last=%hd", static_cast<short>(free.Free),
                         static_cast<short>(free.Last)),
        mode == ModeLineDefs ? "LineDef Tag" : "Sector Tag", initial, low, high);
    if (!value || *value < low || *value > high)
    {
        return;
    }
    (void)map::SaveUndoStep();
    bool changed = false;
    for (const std::int32_t object : objects)
    {
        changed = SetTag(level, mode, object, *value, hexenFormat) || changed;
    }
    if (changed)
    {
        // A tag is no part of the node tree: only the change counter goes up.
        map::NoteChange(level, map::KindThing);
    }
    else
    {
        (void)map::DropLastUndoStep(); // nothing to take back
    }
}

} // namespace kelvar::app
