// Tests of colour matching: the weighted match against a plain nearest search, the dominance
// rule by hand-worked cases, the fast match's early stop, whole-palette tables.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/ColorMatch.h"

#include "tests/gfx/PaletteTestData.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::gfx
{
namespace
{

using test::PaletteOf;

// The nearest entry under (3 dRed)^2 + (5 dGreen)^2 + (w dBlue)^2, the first of equals.
int Nearest(const Palette& palette, int r, int g, int b, int blueWeight)
{
    long best = -1;
    int bestIndex = 0;
    for (int i = 0; i < 256; ++i)
    {
        const Rgb& e = palette[static_cast<size_t>(i)];
        const long d = 9L * (r - e.red) * (r - e.red) + 25L * (g - e.green) * (g - e.green) +
                       long{blueWeight} * blueWeight * (b - e.blue) * (b - e.blue);
        if (best < 0 || d < best)
        {
            best = d;
            bestIndex = i;
        }
    }
    return bestIndex;
}

bool Exceeds(int value, int a, int b, int margin)
{
    return value > a + margin && value > b + margin;
}

TEST(MatchColor, EqualsTheNearestColourWhenNoChannelStandsOut)
{
    const Palette palette = test::FreedoomPalette();
    std::mt19937 random(7);
    std::uniform_int_distribution<int> component(0, 255);
    int compared = 0;
    for (int n = 0; n < 20000; ++n)
    {
        const int r = component(random), g = component(random), b = component(random);
        // Colours with no candidate channel: the weighted nearest with blue weight 1.
        if (Exceeds(r, g, b, 10) || Exceeds(g, r, b, 10) || Exceeds(b, r, g, 10))
        {
            continue;
        }
        ++compared;
        ASSERT_EQ(MatchColor(palette, r, g, b), Nearest(palette, r, g, b, 1))
            << r << "," << g << "," << b;
    }
    EXPECT_GT(compared, 2000);
}

TEST(MatchColor, StronglyDominantColoursGetTheNearestEntryOfTheirChannel)
{
    const Palette palette = test::FreedoomPalette();
    std::mt19937 random(11);
    std::uniform_int_distribution<int> component(0, 255);
    for (int n = 0; n < 5000; ++n)
    {
        int c[3] = {component(random), component(random), component(random)};
        const int channel = n % 3;
        if (!Exceeds(c[channel], c[(channel + 1) % 3], c[(channel + 2) % 3], 35))
        {
            continue;
        }
        const uint8_t got = MatchColor(palette, c[0], c[1], c[2]);
        const Rgb& e = palette[got];
        const int own[3] = {e.red, e.green, e.blue};
        // Freedoom has entries of every dominant channel, so the answer has it too.
        EXPECT_TRUE(Exceeds(own[channel], own[(channel + 1) % 3], own[(channel + 2) % 3], 10))
            << c[0] << "," << c[1] << "," << c[2] << " -> " << int{got};
    }
}

TEST(MatchColor, DominanceRuleByHand)
{
    // Entry 0 is a gray nearer to (200, 10, 10) than the red entry 1; white fills the rest.
    const Palette palette = PaletteOf({{140, 135, 135}, {255, 160, 160}});
    ASSERT_EQ(Nearest(palette, 200, 10, 10, 1), 0);
    EXPECT_EQ(MatchColor(palette, 200, 10, 10), 1); // strongly red: stays red
    EXPECT_EQ(MatchColor(palette, 60, 40, 40), 0);  // over the first margin only: plain

    // (10, 10, 40) passes blue's first margin only: no dominance, but blue weighs 2. By
    // weight 1 entry 1 is nearer (400 against 900), by weight 2 entry 0 (900 against 1600).
    const Palette blues = PaletteOf({{20, 10, 40}, {10, 10, 60}});
    ASSERT_EQ(Nearest(blues, 10, 10, 40, 1), 1);
    EXPECT_EQ(MatchColor(blues, 10, 10, 40), 0);

    // A dominant colour with no entry of its channel takes the nearest overall.
    const Palette grays = PaletteOf({{90, 90, 90}, {150, 150, 150}});
    EXPECT_EQ(MatchColor(grays, 200, 10, 10), Nearest(grays, 200, 10, 10, 1));

    // The margins are settings: with a strong margin of 200 (200, 10, 10) is not dominant.
    EXPECT_EQ(MatchColor(palette, 200, 10, 10, MatchMargins{10, 200}), 0);
}

TEST(MatchColor, ExactColoursAndTies)
{
    const Rgb red{210, 10, 10};
    const Rgb gray{101, 100, 100};
    Palette palette = PaletteOf({});
    palette[3] = gray;
    palette[7] = gray;
    palette[4] = red;
    palette[9] = red;
    palette[12] = {200, 10, 10};
    palette[13] = {100, 100, 100};
    // Exact colours return the first index holding them, in both searches.
    EXPECT_EQ(MatchColor(palette, 200, 10, 10), 12);
    EXPECT_EQ(MatchColor(palette, 100, 100, 100), 13);
    palette[12] = palette[13] = {0, 0, 0};
    // Plain search: the lower of equal entries; dominance search: the higher.
    EXPECT_EQ(MatchColor(palette, 100, 100, 100), 3);
    EXPECT_EQ(MatchColor(palette, 200, 10, 10), 9);
}

TEST(FastMatchColor, StopsAtTheFirstEntryCloseEnough)
{
    const Palette palette = PaletteOf({{0, 0, 0}, {40, 0, 0}, {20, 0, 0}});
    EXPECT_EQ(FastMatchColor(palette, 20, 0, 0, 50), 0);  // 20 < 51: the first one wins
    EXPECT_EQ(FastMatchColor(palette, 20, 0, 0, 0), 0);   // 0 counts as 50
    EXPECT_EQ(FastMatchColor(palette, 20, 0, 0, 100), 2); // only exact stops at once
    EXPECT_EQ(FastMatchColor(palette, 30, 0, 0, 100), 1); // nearest by sum, first of equals
    EXPECT_EQ(FastMatchColor(palette, 120, 0, 0, 100), 1);
}

TEST(MatchPaletteTable, MapsEveryEntryToAnEntryOfTheSameColour)
{
    const Palette palette = test::FreedoomPalette();
    const IndexTable table = MatchPaletteTable(palette, palette);
    for (size_t i = 0; i < 256; ++i)
    {
        EXPECT_EQ(palette[table[i]], palette[i]) << i;
        EXPECT_LE(table[i], i); // the first of duplicates
    }
    Palette shuffled{};
    for (size_t i = 0; i < 256; ++i)
    {
        shuffled[i] = palette[255 - i];
    }
    const IndexTable back = MatchPaletteTable(shuffled, palette);
    for (size_t i = 0; i < 256; ++i)
    {
        EXPECT_EQ(palette[back[i]], shuffled[i]) << i;
    }
}

} // namespace
} // namespace kelvar::gfx
