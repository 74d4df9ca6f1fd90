// The parts of one OPT line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/OptLine.h"

#include "game/Keywords.h"
#include "game/TypeRows.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <span>

namespace kelvar::game
{
namespace
{

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

// A decimal token as atoi reads it: leading digits, 0 when there are none.
int Decimal(const std::string& token)
{
    return static_cast<int>(std::strtol(token.c_str(), nullptr, 10));
}

std::uint16_t Size(const std::string& token)
{
    return static_cast<std::uint16_t>(std::clamp(Decimal(token), 0, MaxOptSize));
}

} // namespace

std::optional<std::string> QuotedText(std::string_view line, std::size_t& at)
{
    const std::size_t open = line.find('"', at);
    if (open == std::string_view::npos)
    {
        return std::nullopt;
    }
    const std::size_t close = line.find('"', open + 1);
    if (close == std::string_view::npos)
    {
        return std::nullopt;
    }
    at = close + 1;
    std::string_view text = line.substr(open + 1, close - open - 1);
    while (!text.empty() && IsBlank(text.back()))
    {
        text.remove_suffix(1);
    }
    if (text.empty())
    {
        return std::nullopt;
    }
    return std::string(text.substr(0, MaxOptName));
}

std::vector<std::string> Tokens(std::string_view rest)
{
    std::vector<std::string> tokens;
    std::size_t at = 0;
    while (tokens.size() < MaxOptTokens)
    {
        while (at < rest.size() && IsBlank(rest[at]))
        {
            ++at;
        }
        if (at >= rest.size() || rest[at] == '/')
        {
            break;
        }
        const std::size_t start = at;
        while (at < rest.size() && !IsBlank(rest[at]))
        {
            ++at;
        }
        tokens.emplace_back(rest.substr(start, std::min(at - start, MaxOptToken)));
    }
    return tokens;
}

void ReadOptNumber(std::string_view token, std::int64_t& number)
{
    const std::string text(token);
    const bool hexadecimal =
        text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    const char* digits = text.c_str() + (hexadecimal ? 2 : 0);
    if (hexadecimal && !std::isxdigit(static_cast<unsigned char>(*digits)))
    {
        return;
    }
    char* end = nullptr;
    const long long value = std::strtoll(digits, &end, hexadecimal ? 16 : 10);
    if (end != digits)
    {
        number = value;
    }
}

std::optional<OptEntry> ReadEntryLine(std::string_view line, std::int64_t& number)
{
    std::size_t at = 0;
    while (at < line.size() && !IsBlank(line[at]) && line[at] != '"')
    {
        ++at;
    }
    ReadOptNumber(line.substr(0, at), number);
    OptEntry entry;
    std::optional<std::string> first = QuotedText(line, at);
    if (!first)
    {
        return std::nullopt;
    }
    std::optional<std::string> second = QuotedText(line, at);
    if (!second)
    {
        return std::nullopt;
    }
    entry.First = std::move(*first);
    entry.Second = std::move(*second);
    entry.Tokens = Tokens(line.substr(at));
    return entry;
}

ThingFields ReadThingFields(const std::vector<std::string>& tokens)
{
    ThingFields fields;
    const std::size_t count = tokens.size();
    if (count > 0)
    {
        fields.Color = FindColor(tokens[0]); // an unknown colour counts as not given
    }
    if (count > 1)
    {
        fields.Radius = Size(tokens[1]);
    }
    if (count > 2)
    {
        fields.Height = Size(tokens[2]);
    }
    std::size_t next = 3;
    if (count > next)
    {
        if (const auto property = FindKeyword(ThingPropertyKeywords(), tokens[next]))
        {
            fields.Property = *property;
            ++next;
        }
    }
    if (count > next)
    {
        if (const auto shape = FindKeyword(ShapeKeywords(), tokens[next]))
        {
            fields.Shape = static_cast<std::uint8_t>(*shape);
            if (*shape == ShapeChar && count > next + 1)
            {
                fields.ShapeText = tokens[next + 1].substr(0, 8);
            }
        }
        else if (!fields.Property || !FindKeyword(ThingPropertyKeywords(), tokens[next]))
        {
            fields.Errors.push_back({"Thing with invalid Property", tokens[next]});
        }
    }
    return fields;
}

LineFields ReadLineFields(const std::vector<std::string>& tokens)
{
    LineFields fields;
    const std::size_t count = tokens.size();
    const auto read = [&](std::size_t index, std::span<const Keyword> table, const char* what,
                          std::uint32_t& field)
    {
        if (count <= index)
        {
            return;
        }
        if (const auto code = FindKeyword(table, tokens[index]))
        {
            field = *code;
        }
        else
        {
            fields.Errors.push_back({what, tokens[index]});
        }
    };
    read(0, MotionKeywords(), "Line with invalid Floor Property", fields.Motion);
    read(1, LinePropertyKeywords(), "Line with invalid Property", fields.Property);
    read(2, TagTypeKeywords(), "Line with invalid Tag Type", fields.TagType);
    std::size_t next = 3;
    if (count > next)
    {
        if (const auto color = FindColor(tokens[next]))
        {
            fields.Color = *color;
            ++next;
        }
    }
    for (std::size_t i = 0; i < fields.Args.size() && next + i < count; ++i)
    {
        fields.Args[i] = static_cast<std::uint8_t>(Decimal(tokens[next + i]) & 0xFF);
    }
    return fields;
}

} // namespace kelvar::game
