// Tests over the key table, the menus and the routing table, and of their lookups.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Commands.h"
#include "app/Keys.h"
#include "app/Menus.h"
#include "app/Modes.h"
#include "app/Router.h"
#include "app/Session.h"
#include "app/ShellState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace kelvar::app
{
namespace
{

std::string Lower(std::string_view text)
{
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

// Reads a shortcut as the menus write it ("Shift+F5", "Ctrl+C+Shift", "shift+N", "INS",
// "(direct) Ctrl+D"); nothing for a text that names no key ("<>", "(Y Offset)").
std::optional<KeyChord> ParseShortcut(std::string_view text)
{
    const std::size_t blank = text.rfind(' ');
    std::string_view last = blank == std::string_view::npos ? text : text.substr(blank + 1);
    unsigned mods = 0;
    std::optional<KeyCode> key;
    const std::map<std::string, KeyCode> names = {
        {"ins", KeyCode::Insert},    {"insert", KeyCode::Insert},
        {"del", KeyCode::Delete},    {"delete", KeyCode::Delete},
        {"home", KeyCode::Home},     {"end", KeyCode::End},
        {"pageup", KeyCode::PageUp}, {"pagedown", KeyCode::PageDown},
        {"up", KeyCode::Up},         {"down", KeyCode::Down},
        {"tab", KeyCode::Tab},       {"enter", KeyCode::Enter},
        {"space", KeyCode::Space},   {"scroll", KeyCode::ScrollLock},
        {"pause", KeyCode::Pause},   {"[", KeyCode::Super},
        {"]", KeyCode::Menu},
    };
    while (!last.empty())
    {
        const std::size_t plus = last.find('+', 1);
        const std::string token = Lower(last.substr(0, plus));
        last = plus == std::string_view::npos ? std::string_view{} : last.substr(plus + 1);
        if (token == "ctrl" || token == "shift" || token == "alt")
        {
            mods |= token == "ctrl" ? 2u : token == "shift" ? 1u : 4u;
        }
        else if (names.contains(token))
        {
            key = names.at(token);
        }
        else if (token.size() >= 2 && token[0] == 'f' && std::isdigit(token[1]))
        {
            key = static_cast<KeyCode>(static_cast<int>(KeyCode::F1) + std::stoi(token.substr(1)) -
                                       1);
        }
        else if (token.size() == 1 && token != "<" && token != ">")
        {
            key = static_cast<KeyCode>(std::toupper(static_cast<unsigned char>(token[0])));
        }
        else
        {
            return std::nullopt;
        }
    }
    if (!key)
    {
        return std::nullopt;
    }
    return KeyChord{*key, static_cast<KeyMods>(mods)};
}

TEST(KeyTable, HasItsRowsAndCommandsAndNoKeyTwice)
{
    const std::span<const KeyRow> rows = KeyRows();
    ASSERT_EQ(rows.size(), 171u);
    std::set<std::uint16_t> commands;
    std::set<std::pair<KeyCode, KeyMods>> chords;
    int typed = 0;
    for (const KeyRow& row : rows)
    {
        commands.insert(row.Command);
        EXPECT_TRUE(chords.insert({row.Key, row.Modifiers}).second)
            << ChordText({row.Key, row.Modifiers}) << " is bound twice";
        if (IsTypedCharacter(row.Key))
        {
            ++typed;
            EXPECT_EQ(row.Modifiers, KeyMods::Plain) << row.Name;
        }
        EXPECT_FALSE(row.Name.empty());
    }
    EXPECT_EQ(commands.size(), 168u);
    EXPECT_EQ(typed, 8);
    // The three commands with two keys.
    EXPECT_EQ(RowsOfCommand(CmdToggleVertexes).size(), 2u);
    EXPECT_EQ(RowsOfCommand(CmdCenterView).size(), 2u);
    EXPECT_EQ(RowsOfCommand(CmdToolBarStyle).size(), 2u);
}

TEST(KeyTable, LooksUpKeysAndTypedCharacters)
{
    EXPECT_EQ(CommandOfKey({KeyCode::F2, KeyMods::Plain}), CmdSaveLevel);
    EXPECT_EQ(CommandOfKey({KeyCode::G, KeyMods::CtrlShift}), CmdNewGridSize);
    EXPECT_EQ(CommandOfKey({KeyCode::G, KeyMods::Shift}), CmdGridIncrease);
    EXPECT_EQ(CommandOfKey({KeyCode::Digit3, KeyMods::AltShift}), CmdSetBookmark3);
    EXPECT_EQ(CommandOfKey({KeyCode::Super, KeyMods::Plain}), CmdSlowerScroll);
    EXPECT_EQ(CommandOfKey({KeyCode::Menu, KeyMods::Plain}), CmdFasterScroll);
    EXPECT_FALSE(CommandOfKey({KeyCode::G, KeyMods::Alt})) << "modifiers must match";
    EXPECT_FALSE(CommandOfKey({KeyCode::Digit5, KeyMods::Plain})) << "digits zoom in the view";
    // A typed character matches however it was typed: '!' comes with Shift held.
    EXPECT_EQ(CommandOfKey({KeyCode::Exclamation, KeyMods::Shift}), CmdToggleRulerSolid);
    EXPECT_EQ(CommandOfKey({KeyCode::Colon, KeyMods::Shift}), CmdToggleVertexes);
    EXPECT_EQ(CommandOfKey({KeyCode::Semicolon, KeyMods::Plain}), CmdToggleVertexes);
    EXPECT_EQ(ChordText({KeyCode::Digit0, KeyMods::AltShift}), "Alt+Shift+0");
    EXPECT_EQ(ChordText({KeyCode::ScrollLock, KeyMods::Shift}), "Shift+Scroll");
    EXPECT_EQ(ChordText({KeyCode::Tilde, KeyMods::Plain}), "~");
}

TEST(Menus, EveryCommandHasARouteAndStandsOnce)
{
    std::map<std::uint16_t, int> seen;
    for (const MenuRow& row : MenuRows())
    {
        if (row.Depth == 0 || row.Command == 0)
        {
            continue;
        }
        EXPECT_NE(FindRoute(row.Command), nullptr) << row.Text << " has no route";
        ++seen[row.Command];
    }
    for (const auto& [command, count] : seen)
    {
        EXPECT_EQ(count, 1) << "command " << command << " stands in the menus " << count
                            << " times";
    }
    for (const KeyRow& row : KeyRows())
    {
        EXPECT_TRUE(seen.contains(row.Command)) << row.Name << " is in no menu";
    }
}

TEST(Menus, ShortcutTextsNameTheKeysOfTheirCommands)
{
    int parsed = 0;
    for (const MenuRow& row : MenuRows())
    {
        const std::string_view shortcut = ShortcutText(row);
        if (row.Command == 0 || row.Depth == 0)
        {
            continue;
        }
        const std::vector<KeyRow> keys = RowsOfCommand(row.Command);
        const std::optional<KeyChord> chord = ParseShortcut(shortcut);
        if (!chord)
        {
            EXPECT_TRUE(keys.empty()) << row.Text << " shows no key of its command";
            continue;
        }
        ++parsed;
        EXPECT_EQ(CommandOfKey(*chord), row.Command) << row.Text;
    }
    EXPECT_GT(parsed, 160);
}

TEST(Menus, EachModeHasItsMiscPopupAtItsPlace)
{
    for (const int mode : {1, 2, 4, 8})
    {
        const std::span<const MenuRow> misc = MiscPopupRows(mode);
        ASSERT_GT(misc.size(), 3u);
        EXPECT_EQ(misc.front().Text, "M&isc");
        EXPECT_TRUE(IsMiscPopup(misc.front()));
        const std::vector<MenuRow> bar = MenuBarRows(mode);
        std::vector<std::string_view> heads;
        for (const MenuRow& row : bar)
        {
            EXPECT_FALSE(IsMiscPopup(row) && row.Command != mode) << "another mode's popup";
            if (row.Depth == 0)
            {
                heads.push_back(row.Text);
            }
        }
        ASSERT_GT(heads.size(), std::size_t{MiscPopupPosition});
        EXPECT_EQ(heads[MiscPopupPosition], "M&isc");
        EXPECT_EQ(heads.front(), "&File");
        EXPECT_EQ(std::count(heads.begin(), heads.end(), "M&isc"), 1);
    }
    // The entries of a mode's popup are commands of that mode's Misc range or its keys.
    EXPECT_EQ(MiscPopupRows(ModeThings)[1].Command, 525);
    EXPECT_EQ(MiscPopupRows(ModeSectors)[9].Text, "&9   Renumber Selected Sectors from 0 to ...");
    EXPECT_TRUE(MiscPopupRows(3).empty());
}

TEST(RouteTable, EveryAvailableCommandCanBeReached)
{
    std::set<int> reachable;
    for (const MenuRow& row : MenuRows())
    {
        if (row.Depth > 0)
        {
            reachable.insert(row.Command);
        }
    }
    for (const KeyRow& row : KeyRows())
    {
        reachable.insert(row.Command);
    }
    // The window posts the start-up commands to itself, the checker's dialog the statistics.
    const std::set<int> posted = {CommandStartup, CommandFirstStartup, CmdStatistics};
    int available = 0;
    for (const RouteRow& row : RouteRows())
    {
        EXPECT_LE(row.First, row.Last);
        if (row.Handler == nullptr)
        {
            continue;
        }
        for (int number = row.First; number <= row.Last; ++number)
        {
            ++available;
            EXPECT_TRUE(reachable.contains(number) || posted.contains(number))
                << "command " << number << " (" << row.What << ") can't be reached";
        }
    }
    EXPECT_GT(available, 50);
}

TEST(RouteTable, TellsWhatIsBuilt)
{
    EXPECT_TRUE(IsCommandAvailable(CmdThingsMode));
    EXPECT_TRUE(IsCommandAvailable(CmdNewGridSize));
    EXPECT_TRUE(IsCommandAvailable(CmdGotoBookmark9));
    EXPECT_TRUE(IsCommandAvailable(CmdSaveLevel));
    EXPECT_TRUE(IsCommandAvailable(CmdUndo));
    EXPECT_FALSE(IsCommandAvailable(CmdCopy));
    EXPECT_FALSE(IsCommandAvailable(512)) << "Misc popup commands are object operations";
    EXPECT_TRUE(IsCommandAvailable(CmdRecentPwadFirst)) << "a recent PWAD goes through Open PWAD";
    EXPECT_FALSE(IsCommandAvailable(444)) << "no row";
    // Single numbers stand before the ranges round them.
    EXPECT_EQ(FindRoute(CmdFlipLineDef)->Modes, ModeLineDefs);
    EXPECT_STREQ(FindRoute(CmdEditObjectT)->What.data(), "edit objects");
    EXPECT_EQ(FindRoute(CmdGridOff)->Handler, FindRoute(CmdToggleGridSnap)->Handler);
}

} // namespace
} // namespace kelvar::app
