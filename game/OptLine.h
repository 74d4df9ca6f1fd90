// The parts of one OPT line: its number, its two quoted names and the keyword tokens after them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::game
{

/// Longest line read at once; a longer one is read as several.
inline constexpr std::size_t MaxOptLine = 254;
/// Longest quoted name kept, after its trailing blanks are dropped.
inline constexpr std::size_t MaxOptName = 73;
/// Most tokens read after the names, and the longest token kept.
inline constexpr std::size_t MaxOptTokens = 9;
inline constexpr std::size_t MaxOptToken = 34;
/// Radius and height of a Thing line are cut to this.
inline constexpr int MaxOptSize = 300;

/// The fields of an entry line.
struct OptEntry
{
    std::string First;  // Things: the sprite; LineDefs and Sectors: the name
    std::string Second; // Things: the name; LineDefs and Sectors: the short name
    std::vector<std::string> Tokens;
};

/// A token that is not what its place asks for: the message's heading line and the token.
struct OptTokenError
{
    std::string What; // "Thing with invalid Property", "Line with invalid Tag Type", ...
    std::string Token;
};

/// What a Thing line sets; a field it doesn't give stays empty.
struct ThingFields
{
    std::optional<std::uint16_t> Color;
    std::optional<std::uint16_t> Radius;
    std::optional<std::uint16_t> Height;
    std::optional<std::uint32_t> Property;
    std::optional<std::uint8_t> Shape;
    std::optional<std::string> ShapeText;
    std::vector<OptTokenError> Errors;
};

/// What a LineDef line sets, with the defaults of the fields it doesn't give.
struct LineFields
{
    std::uint32_t Motion = 0;
    std::uint32_t Property = 0;
    std::uint32_t TagType = 1; // SectorTag
    std::uint16_t Color = 0;
    std::array<std::uint8_t, 5> Args{};
    std::vector<OptTokenError> Errors;
};

/// The text between the first double quote at or after `at` and the next one, with trailing
/// blanks dropped and cut to MaxOptName; `at` moves past the closing quote. Nothing when a
/// quote is missing or the text is empty.
std::optional<std::string> QuotedText(std::string_view line, std::size_t& at);

/// Up to MaxOptTokens blank-separated tokens of `rest`, each cut to MaxOptToken characters,
/// ending before the first token that begins with '/'.
std::vector<std::string> Tokens(std::string_view rest);

/// Reads a number token: "0x" or "0X" and hexadecimal digits, else an optionally signed
/// decimal. `number` keeps its value when nothing can be read.
void ReadOptNumber(std::string_view token, std::int64_t& number);

/// An entry line that begins with a number: the number into `number` (kept when unreadable),
/// then the two quoted names and the tokens. Nothing when a name is missing or empty.
std::optional<OptEntry> ReadEntryLine(std::string_view line, std::int64_t& number);

/// Thing tokens: colour, radius, height, then a property or a shape, a shape after a property,
/// and the text of a CHAR shape.
ThingFields ReadThingFields(const std::vector<std::string>& tokens);

/// LineDef tokens: motion, property, tag type, an optional colour, then five arguments.
LineFields ReadLineFields(const std::vector<std::string>& tokens);

} // namespace kelvar::game
