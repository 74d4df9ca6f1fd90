// Tests of the Thing filter mask: the defaults that show every Thing, the skill, mode, class and
// "ONLY" filters of both formats, and the categories the Thing tables give each type.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/ThingMask.h"

#include "tests/game/GameFixture.h"

namespace kelvar::game
{
namespace
{

map::Thing ThingWith(int flags, std::uint16_t type = 3004)
{
    map::Thing thing;
    thing.Type = type;
    thing.Flags = static_cast<std::uint16_t>(flags);
    return thing;
}

class ThingMaskTest : public GameFixture
{
protected:
    void SetUp() override
    {
        GameFixture::SetUp();
        SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    }

    /// The mask with only the given modes ticked.
    static ThingMask Modes(bool single, bool coop, bool deathMatch)
    {
        ThingMask mask;
        mask.SinglePlayer = single;
        mask.Cooperative = coop;
        mask.DeathMatch = deathMatch;
        return mask;
    }

    static bool PassesDoom(int flags, const ThingMask& mask)
    {
        return ThingPassesMask(ThingWith(flags), mask, false);
    }
    static bool PassesHexen(int flags, const ThingMask& mask)
    {
        return ThingPassesMask(ThingWith(flags), mask, true);
    }
};

TEST_F(ThingMaskTest, TheDefaultsShowEveryThingEvenOneWithoutSkills)
{
    const ThingMask mask;
    EXPECT_TRUE(MaskShowsAll(mask));
    for (const int flags : {0, 7, 0x10, 0x70, 0x7FF, 0xFFFF})
    {
        EXPECT_TRUE(PassesDoom(flags, mask)) << flags;
        EXPECT_TRUE(PassesHexen(flags, mask)) << flags;
    }
    EXPECT_TRUE(ThingPassesMask(ThingWith(0, 9999), mask, false)) << "a type no row has";

    // Any box cleared, or an ONLY box ticked, makes the mask filter.
    ThingMask changed;
    changed.Mage = false;
    EXPECT_FALSE(MaskShowsAll(changed));
    changed = {};
    changed.DeafOnly = true;
    EXPECT_FALSE(MaskShowsAll(changed));
    changed = {};
    changed.Categories[static_cast<std::size_t>(MaskCategory::PolyObjects)] = false;
    EXPECT_FALSE(MaskShowsAll(changed));
}

TEST_F(ThingMaskTest, SkillsShowAThingWithOneTickedSkillBit)
{
    ThingMask easyCleared;
    easyCleared.Easy = false;
    EXPECT_FALSE(PassesDoom(1, easyCleared)) << "easy only";
    EXPECT_TRUE(PassesDoom(1 | 2, easyCleared));
    EXPECT_TRUE(PassesDoom(4, easyCleared));
    EXPECT_FALSE(PassesDoom(0, easyCleared)) << "no skill bit once skills filter";

    ThingMask hardOnly;
    hardOnly.Easy = false;
    hardOnly.Medium = false;
    EXPECT_TRUE(PassesDoom(4, hardOnly));
    EXPECT_FALSE(PassesDoom(1 | 2, hardOnly));
    EXPECT_TRUE(PassesHexen(4 | 0x700, hardOnly));
    EXPECT_FALSE(PassesHexen(2 | 0x700, hardOnly));
}

TEST_F(ThingMaskTest, DoomModesReadTheMultiplayerAndBoomBits)
{
    constexpr std::uint16_t Multiplayer = 0x10;
    constexpr std::uint16_t NotDeathMatch = 0x20;
    constexpr std::uint16_t NotCoop = 0x40;

    const ThingMask single = Modes(true, false, false);
    EXPECT_TRUE(PassesDoom(7, single));
    EXPECT_FALSE(PassesDoom(7 | Multiplayer, single)) << "multiplayer only";
    EXPECT_TRUE(PassesDoom(7 | NotDeathMatch | NotCoop, single));

    const ThingMask deathMatch = Modes(false, false, true);
    EXPECT_TRUE(PassesDoom(7 | Multiplayer, deathMatch));
    EXPECT_FALSE(PassesDoom(7 | NotDeathMatch, deathMatch));
    EXPECT_TRUE(PassesDoom(7 | NotCoop, deathMatch));

    const ThingMask coop = Modes(false, true, false);
    EXPECT_FALSE(PassesDoom(7 | NotCoop, coop));
    EXPECT_TRUE(PassesDoom(7 | NotDeathMatch | Multiplayer, coop));

    // A Thing that is neither for one player nor for death match shows in neither.
    const ThingMask singleAndDeathMatch = Modes(true, false, true);
    EXPECT_FALSE(PassesDoom(7 | Multiplayer | NotDeathMatch, singleAndDeathMatch));
    EXPECT_TRUE(PassesDoom(7 | Multiplayer, singleAndDeathMatch));
    EXPECT_FALSE(PassesDoom(7, Modes(false, false, false))) << "no mode ticked";
}

TEST_F(ThingMaskTest, HexenModesAndClassesReadTheirOwnBits)
{
    constexpr std::uint16_t Single = 0x100;
    constexpr std::uint16_t Coop = 0x200;
    constexpr std::uint16_t DeathMatch = 0x400;
    constexpr std::uint16_t Fighter = 0x20;
    constexpr std::uint16_t Cleric = 0x40;
    constexpr std::uint16_t Mage = 0x80;
    constexpr std::uint16_t Classes = Fighter | Cleric | Mage;

    const ThingMask deathMatch = Modes(false, false, true);
    EXPECT_TRUE(PassesHexen(7 | Classes | DeathMatch, deathMatch));
    EXPECT_FALSE(PassesHexen(7 | Classes | Single | Coop, deathMatch));
    const ThingMask single = Modes(true, false, false);
    // Bit 0x10 is dormant in Hexen, not multiplayer: the Thing is a single player Thing.
    EXPECT_TRUE(PassesHexen(7 | Classes | Single | 0x10, single));
    EXPECT_FALSE(PassesDoom(7 | Single | 0x10, single));
    EXPECT_FALSE(PassesHexen(7 | Classes | Coop, single));

    ThingMask noFighter;
    noFighter.Fighter = false;
    EXPECT_FALSE(PassesHexen(7 | 0x700 | Fighter, noFighter));
    EXPECT_TRUE(PassesHexen(7 | 0x700 | Fighter | Mage, noFighter));
    EXPECT_FALSE(PassesHexen(7 | 0x700, noFighter)) << "no class bit once classes filter";
    EXPECT_TRUE(PassesDoom(7 | Fighter, noFighter)) << "the Doom format has no classes";
}

TEST_F(ThingMaskTest, DeafAndDormantOnlyHideTheOthers)
{
    ThingMask deaf;
    deaf.DeafOnly = true;
    EXPECT_TRUE(PassesDoom(7 | 8, deaf));
    EXPECT_FALSE(PassesDoom(7, deaf));
    EXPECT_FALSE(PassesHexen(7 | 0x700 | 0x10, deaf)) << "dormant isn't deaf";

    ThingMask dormant;
    dormant.DormantOnly = true;
    EXPECT_TRUE(PassesHexen(7 | 0x700 | 0x10, dormant));
    EXPECT_FALSE(PassesHexen(7 | 0x700 | 8, dormant));
    EXPECT_TRUE(PassesDoom(7, dormant)) << "the Doom format has no dormant Things";

    dormant.DeafOnly = true;
    EXPECT_TRUE(PassesHexen(7 | 0x700 | 0x18, dormant));
    EXPECT_FALSE(PassesHexen(7 | 0x700 | 0x10, dormant)) << "both ONLY boxes must be met";
}

TEST_F(ThingMaskTest, CategoriesComeFromTheRowsAndTheirHeadings)
{
    EXPECT_EQ(MaskCategoryOf(13), MaskCategory::Keys);
    EXPECT_EQ(MaskCategoryOf(3004), MaskCategory::Enemies);
    EXPECT_EQ(MaskCategoryOf(1), MaskCategory::Starts);
    EXPECT_EQ(MaskCategoryOf(11), MaskCategory::Starts) << "death match start";
    EXPECT_EQ(MaskCategoryOf(14), MaskCategory::Starts) << "teleport landing";
    EXPECT_EQ(MaskCategoryOf(2001), MaskCategory::Weapons);
    EXPECT_EQ(MaskCategoryOf(2028), MaskCategory::Other) << "a decoration";
    EXPECT_EQ(MaskCategoryOf(9999), MaskCategory::Other) << "a type no row has";

    ThingMask noEnemies;
    noEnemies.Categories[static_cast<std::size_t>(MaskCategory::Enemies)] = false;
    EXPECT_FALSE(ThingPassesMask(ThingWith(7, 3004), noEnemies, false));
    EXPECT_TRUE(ThingPassesMask(ThingWith(7, 13), noEnemies, false));
    EXPECT_TRUE(ThingPassesMask(ThingWith(0, 2028), noEnemies, false))
        << "a category alone doesn't make skills filter";

    SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
    // The polyobject spots stand under the starts' heading; their property puts them apart.
    EXPECT_EQ(MaskCategoryOf(3001), MaskCategory::PolyObjects);
    EXPECT_EQ(MaskCategoryOf(3002), MaskCategory::PolyObjects);
    EXPECT_EQ(MaskCategoryOf(3000), MaskCategory::PolyObjects) << "the anchor";
    EXPECT_EQ(MaskCategoryOf(9001), MaskCategory::Starts) << "map spot";
    EXPECT_EQ(MaskCategoryOf(8030), MaskCategory::Keys);
    EXPECT_EQ(MaskCategoryOf(9002), MaskCategory::Puzzle);

    ThingMask noPolyObjects;
    noPolyObjects.Categories[static_cast<std::size_t>(MaskCategory::PolyObjects)] = false;
    EXPECT_FALSE(ThingPassesMask(ThingWith(0, 3001), noPolyObjects, true));
    EXPECT_TRUE(ThingPassesMask(ThingWith(0, 1), noPolyObjects, true));
}

} // namespace
} // namespace kelvar::game
