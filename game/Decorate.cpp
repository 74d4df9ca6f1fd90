// The DECORATE reader: actors with Thing numbers added to the Thing table.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/Decorate.h"

#include "game/GameState.h"
#include "game/Keywords.h"
#include "game/OptFile.h"
#include "game/TypeMenus.h"
#include "game/TypeRows.h"
#include "platform/Format.h"
#include "platform/Messages.h"
#include "wad/FindLump.h"
#include "wad/LumpDirectory.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <vector>

namespace kelvar::game
{
namespace
{

constexpr std::uint16_t NoNumber = 65535;

std::string Upper(std::string_view text)
{
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return upper;
}

bool SameWord(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && Upper(a) == Upper(b);
}

// The words of a line: runs of anything but blanks, with '{' and '}' as words of their own.
std::vector<std::string_view> Words(std::string_view line)
{
    std::vector<std::string_view> words;
    std::size_t i = 0;
    while (i < line.size())
    {
        if (std::isspace(static_cast<unsigned char>(line[i])) != 0)
        {
            ++i;
            continue;
        }
        if (line[i] == '{' || line[i] == '}')
        {
            words.push_back(line.substr(i, 1));
            ++i;
            continue;
        }
        const std::size_t start = i;
        while (i < line.size() && std::isspace(static_cast<unsigned char>(line[i])) == 0 &&
               line[i] != '{' && line[i] != '}')
        {
            ++i;
        }
        words.push_back(line.substr(start, i - start));
    }
    return words;
}

std::optional<int> Number(std::string_view word)
{
    int value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc{} || end != word.data() + word.size())
    {
        return std::nullopt;
    }
    return value;
}

void Tell(std::string_view line, const std::string& what)
{
    platform::ShowError("%s\n\n%s", std::string(line).c_str(), what.c_str());
}

// The sprite of a frame base and letter: "BAL1" and 'A' give "BAL1A0".
std::string FrameSprite(std::string_view base, char frame)
{
    return Upper(base.substr(0, 4)) + static_cast<char>(std::toupper(frame)) + "0";
}

// "ACTOR name [: parent] [replaces other] [number] [// sprite colour shape property]"
void StartActor(DecorateState& state, std::string_view line)
{
    state.Actor = DecorateActor{};
    state.InActor = true;
    state.Spawning = false;
    const std::size_t comment = line.find("//");
    const std::vector<std::string_view> words = Words(line.substr(0, comment));
    if (words.size() > 1)
    {
        std::string_view name = words[1];
        name = name.substr(0, name.find(':'));
        state.Actor.Name = std::string(name);
    }
    for (std::size_t i = 2; i < words.size(); ++i)
    {
        if (const std::optional<int> number = Number(words[i]); number && *number >= 0)
        {
            state.Actor.Number = static_cast<std::uint16_t>(std::min(*number, 65535));
            break;
        }
    }
    if (comment == std::string_view::npos)
    {
        return;
    }
    // The comment form: sprite, colour, shape and property, each as far as given.
    const std::vector<std::string_view> extra = Words(line.substr(comment + 2));
    if (!extra.empty())
    {
        state.Actor.LookUpSprite = !SameWord(extra[0], "none");
        state.Actor.Sprite = state.Actor.LookUpSprite ? Upper(extra[0].substr(0, 8)) : "";
    }
    if (extra.size() > 1)
    {
        const std::optional<std::uint16_t> color = FindColor(extra[1]);
        state.Actor.Color = color.value_or(15);
        if (!color)
        {
            Tell(line, platform::Format("Invalid Color %s", std::string(extra[1]).c_str()));
        }
    }
    if (extra.size() > 2)
    {
        const std::optional<std::uint32_t> shape = FindKeyword(ShapeKeywords(), extra[2]);
        state.Actor.Shape = static_cast<std::uint8_t>(shape.value_or(ShapeChar));
        if (!shape)
        {
            Tell(line, platform::Format("Invalid Shape %s", std::string(extra[2]).c_str()));
        }
    }
    if (extra.size() > 3)
    {
        const std::optional<std::uint32_t> property =
            FindKeyword(ThingPropertyKeywords(), extra[3]);
        state.Actor.Property = property.value_or(44);
        if (!property)
        {
            Tell(line, platform::Format("Invalid Property %s", std::string(extra[3]).c_str()));
        }
    }
}

void CloseActor(DecorateState& state)
{
    if (state.Actor.Number != NoNumber)
    {
        (void)AddDecorateThing(state, state.Actor);
    }
    state.Actor = DecorateActor{};
    state.InActor = false;
    state.Spawning = false;
}

// A property line inside an actor's block.
void ReadProperty(DecorateState& state, std::string_view line,
                  const std::vector<std::string_view>& words)
{
    DecorateActor& actor = state.Actor;
    const std::string_view first = words[0];
    const std::string_view value = words.size() > 1 ? words[1] : std::string_view{};
    if (SameWord(first, "DoomEdNum") || SameWord(first, "Radius") || SameWord(first, "Height"))
    {
        const std::optional<int> number = Number(value);
        if (!number)
        {
            Tell(line, platform::Format("invalid %s [%s]", std::string(first).c_str(),
                                        std::string(value).c_str()));
            return;
        }
        const int clamped = std::clamp(*number, 0, 65535);
        if (SameWord(first, "DoomEdNum"))
        {
            actor.Number = static_cast<std::uint16_t>(clamped);
        }
        else if (SameWord(first, "Radius"))
        {
            actor.Radius = clamped;
        }
        else
        {
            actor.Height = clamped;
        }
    }
    else if (SameWord(first, "Scale"))
    {
        char* end = nullptr;
        const std::string text(value);
        const double scale = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0' || !(scale > 0.0) || !std::isfinite(scale))
        {
            Tell(line, platform::Format("invalid Scale [%s]", text.c_str()));
            actor.Scale = 1.0;
            return;
        }
        actor.Scale = scale;
    }
    else if (SameWord(first, "Sprite"))
    {
        const std::size_t open = line.find('"');
        const std::size_t close = open == std::string_view::npos ? open : line.find('"', open + 1);
        if (close != std::string_view::npos)
        {
            std::string sprite =
                Upper(line.substr(open + 1, std::min<std::size_t>(close - open - 1, 8)));
            actor.Sprite = sprite.size() <= 4 ? sprite + "A0" : sprite;
        }
    }
    else if (SameWord(first, "Frames"))
    {
        const std::size_t colon = line.find(':');
        const std::vector<std::string_view> after = colon == std::string_view::npos
                                                        ? std::vector<std::string_view>{}
                                                        : Words(line.substr(colon + 1));
        if (!after.empty() && !actor.Sprite.empty())
        {
            actor.Sprite = FrameSprite(actor.Sprite, after[0][0]);
        }
    }
}

} // namespace

void ParseDecorateLine(DecorateState& state, std::string_view line)
{
    std::vector<std::string_view> words = Words(line);
    if (words.empty() || words[0].starts_with("//"))
    {
        return;
    }
    if (SameWord(words[0], "ACTOR"))
    {
        if (state.InActor && state.Depth == 0)
        {
            CloseActor(state);
        }
        StartActor(state, line);
        for (const char c : line.substr(0, line.find("//")))
        {
            if (c == '{')
            {
                ++state.Depth;
            }
        }
        return;
    }
    if (state.Spawning && state.InActor && words.size() >= 2 && words[0].size() == 4)
    {
        // The first state after "Spawn:": "BAL1 AB 4" shows BAL1A0.
        state.Spawning = false;
        if (state.Actor.Sprite.empty())
        {
            state.Actor.Sprite = FrameSprite(words[0], words[1][0]);
        }
    }
    if (SameWord(words[0], "Spawn:"))
    {
        state.Spawning = true;
    }
    else if (words[0] != "{" && words[0] != "}" && state.InActor)
    {
        ReadProperty(state, line, words);
    }
    // Braces close the actor when its own block ends; the blocks inside (States) don't.
    for (const std::string_view word : words)
    {
        if (word == "{")
        {
            if (!state.InActor)
            {
                state.InActor = true;
                state.Actor = DecorateActor{};
            }
            ++state.Depth;
        }
        else if (word == "}" && state.Depth > 0 && --state.Depth == 0 && state.InActor)
        {
            CloseActor(state);
        }
    }
}

void ParseDecorateText(DecorateState& state, std::string_view text)
{
    std::size_t start = 0;
    while (start <= text.size())
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        std::string_view line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
        {
            line.remove_suffix(1);
        }
        ParseDecorateLine(state, line);
        start = end + 1;
    }
}

bool AddDecorateThing(DecorateState& state, const DecorateActor& actor)
{
    std::vector<ThingTypeRow>& rows = Game().Things;
    // A row of the same number gives way to the actor.
    if (const std::ptrdiff_t old = FindTypeRow(rows, actor.Number); old >= 0)
    {
        ThingTypeRow& freed = rows[static_cast<std::size_t>(old)];
        freed.Type = 0;
        freed.Name[0] = 'x';
        freed.Property = SpareProperty;
    }
    for (std::uint32_t category = 1; category <= 8; ++category)
    {
        const std::ptrdiff_t heading = FindTypeRow(rows, DecorateCategoryBase + category);
        if (heading < 0)
        {
            continue;
        }
        for (auto i = static_cast<std::size_t>(heading) + 1;
             i < rows.size() && rows[i].Type < FirstHeading; ++i)
        {
            ThingTypeRow& row = rows[i];
            if (row.Type != 0 || row.Name[0] != 'x')
            {
                continue;
            }
            row = ThingTypeRow{};
            row.Type = actor.Number;
            SetText(row.Name, actor.Name.empty() ? std::string("Undefined") : actor.Name);
            SetText(row.Sprite, actor.Sprite);
            row.Color = actor.Color;
            row.Shape = actor.Shape;
            row.Property = actor.Property;
            int radius = actor.Radius;
            int height = actor.Height;
            const std::optional<SpriteSize> size =
                actor.LookUpSprite && !actor.Sprite.empty() && state.Sprites
                    ? state.Sprites(actor.Sprite)
                    : std::nullopt;
            if (size)
            {
                radius = static_cast<int>(size->Width / 2 * actor.Scale);
                if (height == 0)
                {
                    height = static_cast<int>(size->Height * actor.Scale);
                }
            }
            row.Radius = static_cast<std::uint16_t>(std::clamp(radius, 0, 65535));
            row.Height = static_cast<std::uint16_t>(std::clamp(height, 0, 65535));
            ++state.Added;
            return true;
        }
    }
    if (!state.LimitTold)
    {
        state.LimitTold = true;
        platform::ShowError("Maximum number of 256 decorate items exceeded\n\n(for now anyway)");
    }
    return false;
}

int ReadDecorateLumps()
{
    DecorateState state;
    state.Sprites = [](std::string_view name) -> std::optional<SpriteSize>
    {
        const wad::LumpDirectory& master = wad::Master();
        // The frame as given, then its other rotations, then the mirrored pair.
        std::vector<std::string> tries = {std::string(name)};
        if (name.size() >= 6)
        {
            for (char rotation = '0'; rotation <= '8'; ++rotation)
            {
                tries.push_back(std::string(name.substr(0, 5)) + rotation);
            }
            tries.push_back(std::string(name.substr(0, 4)) + "A1A5");
        }
        for (const std::string& lump : tries)
        {
            for (std::size_t i = master.Size(); i-- > 0;)
            {
                if (master[i].Name.Is(lump))
                {
                    const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(static_cast<int>(i));
                    if (bytes.size() < 4)
                    {
                        return std::nullopt;
                    }
                    return SpriteSize{bytes[0] | (bytes[1] << 8), bytes[2] | (bytes[3] << 8)};
                }
            }
        }
        return std::nullopt;
    };
    const wad::LumpDirectory& master = wad::Master();
    for (std::size_t i = 0; i < master.Size(); ++i)
    {
        if (!master[i].Name.Is("DECORATE"))
        {
            continue;
        }
        const std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(static_cast<int>(i));
        ParseDecorateText(
            state, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
        if (state.InActor && state.Depth == 0)
        {
            CloseActor(state);
        }
        state.InActor = false;
        state.Depth = 0;
    }
    if (state.Added > 0)
    {
        SqueezeTypeNames();
        RenumberThingMenu();
    }
    return state.Added;
}

} // namespace kelvar::game
