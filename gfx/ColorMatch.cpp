// Colour matching: the weighted match with its dominance rule, and the fast match.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/ColorMatch.h"

#include <cstdlib>

namespace kelvar::gfx
{
namespace
{

enum class Channel
{
    None,
    Red,
    Green,
    Blue,
};

// What the dominance test makes of a wanted colour: the dominant channel, if any, and the
// blue weight. Blue's weight is doubled as soon as blue passes the first margin, also when it
// misses the second.
struct Dominance
{
    Channel Dominant = Channel::None;
    int BlueWeight = 1;
};

bool Above(int value, int other1, int other2, int margin)
{
    return value > other1 + margin && value > other2 + margin;
}

Dominance TestDominance(int red, int green, int blue, const MatchMargins& margins)
{
    const int m = margins.DominantMargin;
    const int strong = margins.StrongDominantMargin;
    Dominance result;
    if (Above(red, green, blue, m))
    {
        result.Dominant = Above(red, green, blue, strong) ? Channel::Red : Channel::None;
    }
    else if (Above(green, blue, red, m))
    {
        result.Dominant = Above(green, blue, red, strong) ? Channel::Green : Channel::None;
    }
    else if (Above(blue, green, red, m))
    {
        result.BlueWeight = 2;
        result.Dominant = Above(blue, green, red, strong) ? Channel::Blue : Channel::None;
    }
    return result;
}

// True when the entry's own colour has `channel` above the other two by the first margin.
bool EntryHasChannel(const Rgb& entry, Channel channel, int margin)
{
    switch (channel)
    {
    case Channel::Red:
        return Above(entry.red, entry.green, entry.blue, margin);
    case Channel::Green:
        return Above(entry.green, entry.blue, entry.red, margin);
    case Channel::Blue:
        return Above(entry.blue, entry.green, entry.red, margin);
    case Channel::None:
        break;
    }
    return false;
}

int Distance(const Rgb& entry, int red, int green, int blue, int blueWeight)
{
    const int dRed = 3 * (red - entry.red);
    const int dGreen = 5 * (green - entry.green);
    const int dBlue = blueWeight * (blue - entry.blue);
    return dRed * dRed + dGreen * dGreen + dBlue * dBlue;
}

// Nearest entry; the first of equals wins.
uint8_t PlainSearch(const Palette& palette, int red, int green, int blue, int blueWeight)
{
    int best = NoDistance;
    int bestIndex = 0;
    for (int i = 0; i < 256; ++i)
    {
        const int distance =
            Distance(palette[static_cast<size_t>(i)], red, green, blue, blueWeight);
        if (distance == 0)
        {
            return static_cast<uint8_t>(i);
        }
        if (distance < best)
        {
            best = distance;
            bestIndex = i;
        }
    }
    return static_cast<uint8_t>(bestIndex);
}

// Nearest entry with the same dominant channel, else nearest overall. Among dominant
// entries a later one at equal distance wins.
uint8_t DominantSearch(const Palette& palette, int red, int green, int blue,
                       const Dominance& dominance, int margin)
{
    int bestOverall = NoDistance;
    int bestDominant = NoDistance;
    int overallIndex = 0;
    int dominantIndex = -1;
    for (int i = 0; i < 256; ++i)
    {
        const Rgb& entry = palette[static_cast<size_t>(i)];
        const int distance = Distance(entry, red, green, blue, dominance.BlueWeight);
        if (distance > bestDominant)
        {
            continue;
        }
        if (distance == 0)
        {
            return static_cast<uint8_t>(i);
        }
        if (distance < bestOverall)
        {
            bestOverall = distance;
            overallIndex = i;
        }
        if (EntryHasChannel(entry, dominance.Dominant, margin))
        {
            bestDominant = distance;
            dominantIndex = i;
        }
    }
    return static_cast<uint8_t>(dominantIndex >= 0 ? dominantIndex : overallIndex);
}

} // namespace

uint8_t MatchColor(const Palette& palette, int red, int green, int blue,
                   const MatchMargins& margins)
{
    const Dominance dominance = TestDominance(red, green, blue, margins);
    if (dominance.Dominant == Channel::None)
    {
        return PlainSearch(palette, red, green, blue, dominance.BlueWeight);
    }
    return DominantSearch(palette, red, green, blue, dominance, margins.DominantMargin);
}

uint8_t FastMatchColor(const Palette& palette, int red, int green, int blue, int pngMatch)
{
    const int goodEnough = 101 - (pngMatch == 0 ? 50 : pngMatch);
    int best = NoDistance;
    int bestIndex = 0;
    for (int i = 0; i < 256; ++i)
    {
        const Rgb& entry = palette[static_cast<size_t>(i)];
        const int distance =
            std::abs(red - entry.red) + std::abs(green - entry.green) + std::abs(blue - entry.blue);
        if (distance < goodEnough)
        {
            return static_cast<uint8_t>(i);
        }
        if (distance < best)
        {
            best = distance;
            bestIndex = i;
        }
    }
    return static_cast<uint8_t>(bestIndex);
}

IndexTable MatchPaletteTable(const Palette& source, const Palette& target,
                             const MatchMargins& margins)
{
    IndexTable table{};
    for (size_t i = 0; i < 256; ++i)
    {
        table[i] = MatchColor(target, source[i].red, source[i].green, source[i].blue, margins);
    }
    return table;
}

IndexTable IdentityTable()
{
    IndexTable table{};
    for (size_t i = 0; i < 256; ++i)
    {
        table[i] = static_cast<uint8_t>(i);
    }
    return table;
}

} // namespace kelvar::gfx
