// The DECORATE reader: the actors a ZDoom PWAD defines in its DECORATE lumps, added to the
// Thing table with their numbers, names, sizes and sprites, in the eight DECORATE categories.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The reader goes line by line and keeps only what the Thing table needs: the number, the
//   name, the radius, height and scale, and the first sprite. Everything else of an actor
//   (states, flags, inheritance from other lumps) is passed over.
// - A failure is a message with the line, and the actor keeps its default for that value.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kelvar::game
{

/// The most DECORATE Things the table holds: eight categories of 32 rows.
inline constexpr int DecorateLimit = 256;

/// One actor as the reader gathers it.
struct DecorateActor
{
    std::uint16_t Number = 65535; // 65535: no Thing number, not added
    std::string Name;
    int Radius = 16;
    int Height = 0; // 0: the sprite's height
    double Scale = 1.0;
    std::string Sprite; // up to 8 characters; empty for none
    bool LookUpSprite = true;
    std::uint32_t Property = 44; // DECORATE
    std::uint16_t Color = 0;     // 0: the default colour
    std::uint8_t Shape = 0;      // 0: the default shape
};

/// A sprite's picture size, for the size of an actor that gives none; nothing when the lump
/// isn't there.
struct SpriteSize
{
    int Width = 0;
    int Height = 0;
};
using SpriteLookup = std::function<std::optional<SpriteSize>(std::string_view lumpName)>;

/// The reader's state across the lines of all DECORATE lumps.
struct DecorateState
{
    DecorateActor Actor;
    bool InActor = false;   // an ACTOR header was read
    int Depth = 0;          // braces open in the actor's block
    bool Spawning = false;  // the next line gives the first sprite
    bool LimitTold = false; // the 256-item message was shown
    int Added = 0;
    SpriteLookup Sprites; // empty: no sprite is looked up
};

/// One line of a DECORATE lump.
void ParseDecorateLine(DecorateState& state, std::string_view line);

/// All lines of one DECORATE lump.
void ParseDecorateText(DecorateState& state, std::string_view text);

/// Puts an actor into the first free row of the DECORATE categories 1 to 8 (a row with its
/// number is freed first); false when all are full, after "Maximum number of 256 decorate items
/// exceeded\n\n(for now anyway)" once.
bool AddDecorateThing(DecorateState& state, const DecorateActor& actor);

/// Reads every lump named DECORATE of the open files into the current game's Thing table, then
/// squeezes the names' blanks and renumbers the Thing menu. Returns the actors added.
int ReadDecorateLumps();

} // namespace kelvar::game
