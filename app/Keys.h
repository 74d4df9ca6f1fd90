// Kelvar's key codes, modifier sets and the key table: which key runs which command.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The key table is data: one row per key, compiled in from res/KeyTable.inc. The window
//   turns the rows into shortcuts in one loop; kelvar-cli keys prints them.
// - Key codes are Kelvar's own. A printable key has the code of its character (letters in
//   upper case), so a toolkit's key number maps over directly; the other keys sit above 0xFF.
// - Eight rows name a typed character rather than a key: ! " * : ; @ \ ^. Such a row
//   matches the character however it was typed (Shift included), and its modifier set is
//   Plain. Every other row names a key and the exact modifiers held with it.
// - The map scroll speed rows use the two Windows keys (Super and Menu on Linux), although
//   the menu calls them [ and ].
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::app
{

enum class KeyCode : std::uint16_t
{
    None = 0,
    // Printable keys carry their character.
    Space = ' ',
    Exclamation = '!',
    DoubleQuote = '"',
    Asterisk = '*',
    Slash = '/', // the key with / and ?
    Digit0 = '0',
    Digit1,
    Digit2,
    Digit3,
    Digit4,
    Digit5,
    Digit6,
    Digit7,
    Digit8,
    Digit9,
    Colon = ':',
    Semicolon = ';',
    At = '@',
    A = 'A',
    B,
    C,
    D,
    E,
    F,
    G,
    H,
    I,
    J,
    K,
    L,
    M,
    N,
    O,
    P,
    Q,
    R,
    S,
    T,
    U,
    V,
    W,
    X,
    Y,
    Z,
    Backslash = '\\',
    Caret = '^',
    Tilde = '~', // the key with ` and ~
    // Keys without a character.
    Tab = 0x101,
    Enter,
    Insert,
    Delete,
    Home,
    End,
    PageUp,
    PageDown,
    Left,
    Up,
    Right,
    Down,
    ScrollLock,
    Pause,
    Super, // the left Windows key
    Menu,  // the application key
    F1 = 0x141,
    F2,
    F3,
    F4,
    F5,
    F6,
    F7,
    F8,
    F9,
    F10,
    F11,
    F12,
};

/// The modifier sets of the key table; bit 0 Shift, bit 1 Ctrl, bit 2 Alt.
enum class KeyMods : std::uint8_t
{
    Plain = 0,
    Shift = 1,
    Ctrl = 2,
    CtrlShift = 3,
    Alt = 4,
    AltShift = 5,
};

/// A key with the modifiers held.
struct KeyChord
{
    KeyCode Key = KeyCode::None;
    KeyMods Modifiers = KeyMods::Plain;

    bool operator==(const KeyChord&) const = default;
};

/// One row of the key table.
struct KeyRow
{
    std::uint16_t Command;
    KeyCode Key;
    KeyMods Modifiers;
    std::string_view Name;
};

/// Rows of the key table, and the commands they run (three commands have two keys).
inline constexpr std::size_t KeyRowCount = 171;
inline constexpr std::size_t KeyCommandCount = 168;

/// The key table in res/KeyTable.inc's order, which kelvar-cli keys prints; CommandOfKey takes
/// the first row that matches a key.
std::span<const KeyRow> KeyRows();

/// True for the eight keys that are matched as typed characters.
bool IsTypedCharacter(KeyCode key);

/// The command a key runs, for a key the window has seen. A typed character matches on the
/// character alone; other keys need their exact modifiers. Nothing for a key without a row.
std::optional<std::uint16_t> CommandOfKey(KeyChord chord);

/// The rows of a command, in table order (none for a command without a key).
std::vector<KeyRow> RowsOfCommand(std::uint16_t command);

/// How a key is written: "A", "5", "F12", "PageUp", "Win", "Apps", "Scroll", "!" ...
std::string_view KeyName(KeyCode key);

/// How a chord is written: "Ctrl+Shift+G", "Alt+F4", "Tab".
std::string ChordText(KeyChord chord);

} // namespace kelvar::app
