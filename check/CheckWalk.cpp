// What the Thing and type checks share: type rows found once per type, findings about one
// object.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CheckWalk.h"

#include "game/GameState.h"
#include "game/TypeTables.h"
#include "map/GameCodes.h"
#include "map/ObjectStore.h"
#include "platform/Ui.h"

#include <utility>

namespace kelvar::check
{
namespace
{

constexpr std::size_t TypeNumbers = 0x10000;

// The heading of the Thing tables' "Enemies" category.
constexpr std::uint32_t EnemiesHeading = 0xFFFF8003;

// In the Hexen format the first argument of a special sits in the low byte of the tag.
constexpr std::uint16_t ArgumentMask = 0xFF;

} // namespace

bool HexenFormat()
{
    return game::Game().LevelFormat == map::GameHexen;
}

const game::ThingTypeRow& CachedThingRow(RowCache& cache, std::uint16_t type)
{
    if (cache.Things.empty())
    {
        cache.Things.assign(TypeNumbers, nullptr);
    }
    const game::ThingTypeRow*& row = cache.Things[type];
    if (row == nullptr)
    {
        row = &game::ThingRowOfType(type);
    }
    return *row;
}

bool IsEnemyType(RowCache& cache, std::uint16_t type)
{
    if (cache.Enemies.empty())
    {
        cache.Enemies.assign(TypeNumbers, -1);
    }
    std::int8_t& enemy = cache.Enemies[type];
    if (enemy < 0)
    {
        // The built-in tables name their monsters by the heading they stand under; the Enemy
        // property is what an OPT file gives the types it adds.
        enemy = CachedThingRow(cache, type).Property == game::PropertyEnemy ||
                        game::ThingCategoryOf(type) == EnemiesHeading
                    ? 1
                    : 0;
    }
    return enemy == 1;
}

const game::LineTypeRow& CachedLineRow(RowCache& cache, const map::LineDef& line)
{
    const std::uint16_t type = LineTypeOf(line);
    // Each Hexen key door is a row of its own, chosen by the key in the fourth argument.
    if (HexenFormat() && type == 13)
    {
        return game::LookupLineType(type, line.Args[2]);
    }
    if (cache.Lines.empty())
    {
        cache.Lines.assign(TypeNumbers, nullptr);
    }
    const game::LineTypeRow*& row = cache.Lines[type];
    if (row == nullptr)
    {
        row = &game::LookupLineType(type, 0);
    }
    return *row;
}

bool IsUnknownRow(const game::ThingTypeRow& row)
{
    return &row == &game::UnknownThingRow;
}

bool IsUnknownRow(const game::LineTypeRow& row)
{
    return &row == &game::UnknownLineRow;
}

bool IsUnknownRow(const game::SectorTypeRow& row)
{
    return &row == &game::UnknownSectorRow;
}

std::uint16_t LineTypeOf(const map::LineDef& line)
{
    return static_cast<std::uint16_t>(line.Type);
}

std::uint16_t LineTagOf(const map::LineDef& line)
{
    return HexenFormat() ? static_cast<std::uint16_t>(line.Tag & ArgumentMask) : line.Tag;
}

void ResetLineTag(CheckRun& run, std::size_t line)
{
    run.BeforeRepair();
    std::uint16_t& tag = run.Level.LineDefs[line].Tag;
    tag = HexenFormat() ? static_cast<std::uint16_t>(tag & ~ArgumentMask) : std::uint16_t{0};
    map::NoteChange(run.Level, map::KindLineDef);
}

bool ReportObject(CheckRun& run, int kind, std::size_t index, std::vector<std::string> lines)
{
    Prompt prompt;
    prompt.Kind = kind;
    prompt.Index = static_cast<std::uint32_t>(index);
    prompt.Lines = std::move(lines);
    return run.Verify(prompt) != Answer::Stop;
}

Answer AskAboutObject(CheckRun& run, const std::string& title, int kind, std::size_t index,
                      const std::vector<std::string>& lines)
{
    const auto number = static_cast<std::uint32_t>(index);
    if (run.Logging())
    {
        Prompt prompt;
        prompt.Kind = kind;
        prompt.Index = number;
        prompt.ContinueFixes = true;
        for (const std::string& line : lines)
        {
            if (!line.starts_with("Press Cancel"))
            {
                prompt.Lines.push_back(line);
            }
        }
        return run.Verify(prompt);
    }
    platform::Message message;
    message.Title = title;
    message.Lines = lines;
    message.Icon = platform::MessageIcon::Question;
    message.Buttons = platform::MessageButtons::YesNoCancel;
    message.Centered = true;
    switch (platform::TheUi().Show(message))
    {
    case 1:
        return Answer::Fix;
    case 0:
        return Answer::Continue;
    default:
        return run.CancelAt(kind, number);
    }
}

} // namespace kelvar::check
