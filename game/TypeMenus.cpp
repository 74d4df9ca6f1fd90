// The pop-up menus from which a type is picked.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeMenus.h"

#include "game/GameState.h"
#include "map/GameCodes.h"
#include "map/LevelData.h"
#include "platform/Format.h"

#include <string_view>

namespace kelvar::game
{
namespace
{

std::vector<CategoryMenuRow>& MenuOf(int kind)
{
    GameState& game = Game();
    return kind == map::KindThing    ? game.ThingMenu
           : kind == map::KindSector ? game.SectorMenu
                                     : game.LineDefMenu;
}

// The Boom builder's row is shown only in the projects that have its types: its first two
// characters are written before each opening.
void MarkGeneralizedRow(int kind, std::vector<CategoryMenuRow>& menu)
{
    const GameState& game = Game();
    const char* mark = nullptr;
    if (game.LevelFormat <= map::GameHeretic && kind != map::KindThing)
    {
        mark = game.BoomTypes ? "BO" : "xx";
    }
    else if (game.LevelFormat == map::GameHexen && kind == map::KindSector)
    {
        mark = game.ZdoomTypes ? "ZD" : "xx";
    }
    if (mark == nullptr)
    {
        return;
    }
    for (CategoryMenuRow& row : menu)
    {
        if (row.Category == DirectEntry && row.Command == MenuGeneralized)
        {
            row.Label[0] = mark[0];
            row.Label[1] = mark[1];
        }
    }
}

TypeMenuEntry SeparatorEntry()
{
    TypeMenuEntry entry;
    entry.Separator = true;
    return entry;
}

char Mnemonic(std::size_t index)
{
    return static_cast<char>(index < 9 ? '1' + index : 'A' + (index - 9));
}

template <class Row>
std::vector<TypeMenuEntry> SubMenuOf(const std::vector<Row>& rows, std::uint32_t category,
                                     bool hexadecimal, std::size_t limit, bool dropDoom2)
{
    std::vector<TypeMenuEntry> entries;
    std::size_t at = 0;
    while (at < rows.size() && rows[at].Type != EndOfTable && rows[at].Type != category)
    {
        ++at;
    }
    std::size_t numbered = 0;
    for (++at; at < rows.size() && rows[at].Type < FirstHeading && entries.size() < limit; ++at)
    {
        const Row& row = rows[at];
        const std::string_view name = Text(row.Name);
        if (row.Type == SeparatorType)
        {
            entries.push_back(SeparatorEntry());
            continue;
        }
        if (name.starts_with('x') || (dropDoom2 && name.ends_with('2')))
        {
            continue;
        }
        const char mnemonic[2] = {Mnemonic(numbered), '\0'};
        const std::string label(name);
        const auto number = static_cast<unsigned short>(row.Type);
        TypeMenuEntry entry;
        entry.Text = hexadecimal ? platform::Format("&%-.1s   %-24s\t[%04X]", mnemonic,
                                                    label.c_str(), static_cast<unsigned>(number))
                                 : platform::Format("&%-.1s   %-24s\t[ %-2hu ]", mnemonic,
                                                    label.c_str(), number);
        entry.Command = TypeMenuFirst + static_cast<std::uint32_t>(numbered);
        entry.Type = row.Type;
        if constexpr (requires { row.Args; })
        {
            entry.Args = row.Args;
        }
        entries.push_back(std::move(entry));
        ++numbered;
    }
    return entries;
}

template <class Row> std::uint32_t HeadingIn(const std::vector<Row>& rows, std::uint32_t type)
{
    std::uint32_t heading = 0;
    for (std::size_t i = 0; i < rows.size() && rows[i].Type != EndOfTable; ++i)
    {
        if (rows[i].Type >= FirstHeading)
        {
            heading = rows[i].Type;
        }
        else if (rows[i].Type == type && type != SeparatorType)
        {
            return heading;
        }
    }
    return 0;
}

} // namespace

std::uint32_t HeadingOfType(int kind, std::uint32_t type)
{
    const GameState& game = Game();
    return kind == map::KindThing    ? HeadingIn(game.Things, type)
           : kind == map::KindSector ? HeadingIn(game.Sectors, type)
                                     : HeadingIn(game.LineDefs, type);
}

std::vector<TypeMenuEntry> CategoryMenu(int kind)
{
    std::vector<CategoryMenuRow>& menu = MenuOf(kind);
    MarkGeneralizedRow(kind, menu);
    std::vector<TypeMenuEntry> entries;
    for (CategoryMenuRow& row : menu)
    {
        if (row.Category == 0)
        {
            break;
        }
        if (row.Category == SeparatorType)
        {
            entries.push_back(SeparatorEntry());
            continue;
        }
        std::string label(Text(row.Label));
        if (label.starts_with('x'))
        {
            continue;
        }
        while (!label.empty() && label.back() == ' ')
        {
            label.pop_back();
        }
        SetText(row.Label, label);
        TypeMenuEntry entry;
        entry.Text = std::string(row.Mnemonic.data(), row.Mnemonic.size()) + label;
        entry.Command = row.Command;
        entry.Category = row.Category == DirectEntry ? 0 : row.Category;
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::vector<TypeMenuEntry> TypeSubMenu(int kind, std::uint32_t category, bool hexadecimal)
{
    const GameState& game = Game();
    if (kind == map::KindThing)
    {
        return SubMenuOf(game.Things, category, hexadecimal, ThingSubMenuLimit,
                         game.LevelFormat == map::GameDoom);
    }
    if (kind == map::KindSector)
    {
        return SubMenuOf(game.Sectors, category, hexadecimal, TypeSubMenuLimit, false);
    }
    return SubMenuOf(game.LineDefs, category, hexadecimal, TypeSubMenuLimit, false);
}

void RenumberThingMenu()
{
    std::size_t index = 0;
    for (CategoryMenuRow& row : Game().ThingMenu)
    {
        if (row.Category == 0)
        {
            break;
        }
        if (row.Category == SeparatorType)
        {
            continue;
        }
        const char current = row.Mnemonic[1];
        if (current == 'x' || current == 'y' || current == 'z')
        {
            break;
        }
        row.Mnemonic[1] = Mnemonic(index++);
    }
}

} // namespace kelvar::game
