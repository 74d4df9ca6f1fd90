// The key table and the names of keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Keys.h"

#include "app/Commands.h"

#include <algorithm>
#include <array>

namespace kelvar::app
{
namespace
{

constexpr KeyRow KeyTable[] = {
#include "res/KeyTable.inc"
};

static_assert(std::size(KeyTable) == KeyRowCount);

constexpr std::array<KeyCode, 8> TypedCharacters = {
    KeyCode::Exclamation, KeyCode::DoubleQuote, KeyCode::Asterisk,  KeyCode::Colon,
    KeyCode::Semicolon,   KeyCode::At,          KeyCode::Backslash, KeyCode::Caret,
};

struct NamedKey
{
    KeyCode Key;
    std::string_view Name;
};

// Keys without a character of their own, by the names the key table uses.
constexpr NamedKey KeyNames[] = {
    {KeyCode::Space, "Space"},
    {KeyCode::Tab, "Tab"},
    {KeyCode::Enter, "Enter"},
    {KeyCode::Insert, "Insert"},
    {KeyCode::Delete, "Delete"},
    {KeyCode::Home, "Home"},
    {KeyCode::End, "End"},
    {KeyCode::PageUp, "PageUp"},
    {KeyCode::PageDown, "PageDown"},
    {KeyCode::Left, "Left"},
    {KeyCode::Up, "Up"},
    {KeyCode::Right, "Right"},
    {KeyCode::Down, "Down"},
    {KeyCode::ScrollLock, "Scroll"},
    {KeyCode::Pause, "Pause"},
    {KeyCode::Super, "Win"},
    {KeyCode::Menu, "Apps"},
    {KeyCode::F1, "F1"},
    {KeyCode::F2, "F2"},
    {KeyCode::F3, "F3"},
    {KeyCode::F4, "F4"},
    {KeyCode::F5, "F5"},
    {KeyCode::F6, "F6"},
    {KeyCode::F7, "F7"},
    {KeyCode::F8, "F8"},
    {KeyCode::F9, "F9"},
    {KeyCode::F10, "F10"},
    {KeyCode::F11, "F11"},
    {KeyCode::F12, "F12"},
};

// The printable keys, one character each, indexed by their code.
constexpr std::string_view Printable =
    "                                 !\"#$%&'()*+,-./0123456789:;<=>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    "[\\]^_`abcdefghijklmnopqrstuvwxyz{|}~";
static_assert(Printable['!'] == '!' && Printable['A'] == 'A' && Printable['~'] == '~');

} // namespace

std::span<const KeyRow> KeyRows()
{
    return KeyTable;
}

bool IsTypedCharacter(KeyCode key)
{
    return std::find(TypedCharacters.begin(), TypedCharacters.end(), key) != TypedCharacters.end();
}

std::optional<std::uint16_t> CommandOfKey(KeyChord chord)
{
    for (const KeyRow& row : KeyTable)
    {
        if (row.Key == chord.Key && (IsTypedCharacter(row.Key) || row.Modifiers == chord.Modifiers))
        {
            return row.Command;
        }
    }
    return std::nullopt;
}

std::vector<KeyRow> RowsOfCommand(std::uint16_t command)
{
    std::vector<KeyRow> rows;
    for (const KeyRow& row : KeyTable)
    {
        if (row.Command == command)
        {
            rows.push_back(row);
        }
    }
    return rows;
}

std::string_view KeyName(KeyCode key)
{
    for (const NamedKey& named : KeyNames)
    {
        if (named.Key == key)
        {
            return named.Name;
        }
    }
    const auto code = static_cast<std::size_t>(key);
    if (code > ' ' && code < Printable.size())
    {
        return Printable.substr(code, 1);
    }
    return "?";
}

std::string ChordText(KeyChord chord)
{
    const auto bits = static_cast<unsigned>(chord.Modifiers);
    std::string text;
    if ((bits & static_cast<unsigned>(KeyMods::Ctrl)) != 0)
    {
        text += "Ctrl+";
    }
    if ((bits & static_cast<unsigned>(KeyMods::Alt)) != 0)
    {
        text += "Alt+";
    }
    if ((bits & static_cast<unsigned>(KeyMods::Shift)) != 0)
    {
        text += "Shift+";
    }
    return text.append(KeyName(chord.Key));
}

} // namespace kelvar::app
