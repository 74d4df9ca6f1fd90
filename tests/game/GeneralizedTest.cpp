// Tests of Boom's generalized LineDef types and Sector flags: numbers of the published
// reference decoded to their names, every number composed back from its fields, the lookups
// in and out of the range, and the Sector flag bits of Boom and ZDoom.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/Generalized.h"

#include "game/TypeLookup.h"
#include "tests/game/GameFixture.h"

namespace kelvar::game
{
namespace
{

class GeneralizedTest : public GameFixture
{
protected:
    void SetUp() override
    {
        GameFixture::SetUp();
        SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    }
};

// Numbers worked out from the reference's bases and bit fields, and what each decodes to.
struct ReferenceType
{
    std::uint16_t Type;
    const char* Name;
    std::uint16_t TagType;
    std::uint32_t Property;
};

TEST_F(GeneralizedTest, ReferenceNumbersDecodeToTheirNames)
{
    const ReferenceType table[] = {
        // Floor base 0x6000: W1, slow, trigger model, down, highest neighbour floor.
        {0x6000, "W1  Floor Slow no dn HnF noc  ", TagSector, 0},
        // Every bit of the floor fields: DR, turbo, numeric model, up, by 32, type change, crush.
        {0x7FFF, "DR  Floor Turb mon up 32 typ crush ", TagOption, 0},
        // Ceiling base 0x4000: SR, fast, up to the floor, texture change.
        {0x4000 + 3 + (2 << 3) + (1 << 6) + (4 << 7) + (2 << 10), "SR  Ceiling Fast no up F txt  ",
         TagSector, 0},
        // Door base 0x3C00: DR, normal, open-wait-close, no monsters, 4 seconds.
        {0x3C00 + 7 + (1 << 3) + (1 << 8), "DR  Door Norm o-c Nomonst 4 ", TagOption, 0},
        // Locked base 0x3800: SR, fast, open and stay, blue card, six keys.
        {0x3800 + 3 + (2 << 3) + (1 << 5) + (2 << 6) + (1 << 9), "SR  Locked Fast o Bk 6k ",
         TagSector, 0x2002},
        {0x3800 + 6 + (7 << 6), "D1  Locked Slow o-c all 3k ", TagOption, 0x200B},
        // Lift base 0x3400: WR, turbo, monsters, 3 seconds, next neighbour floor.
        {0x3400 + 1 + (3 << 3) + (1 << 5) + (1 << 6) + (1 << 8), "WR  Lift Turb Monst 3 NnF ",
         TagSector, 0},
        // Stairs base 0x3000: S1, slow, no monsters, 8 high, up, ignoring textures.
        {0x3000 + 2 + (1 << 6) + (1 << 8) + (1 << 9), "S1  Stair Slow Nomonst 8 up Igntxt ",
         TagSector, 0},
        // Crusher base 0x2F80: GR, fast, monsters, silent.
        {0x2F80 + 5 + (2 << 3) + (1 << 5) + (1 << 6), "GR  Crusher Fast Monst Silent ", TagSector,
         0},
    };
    for (const ReferenceType& reference : table)
    {
        SCOPED_TRACE(reference.Type);
        const LineTypeRow& row = LookupLineType(reference.Type, 0);
        EXPECT_EQ(row.Type, reference.Type);
        EXPECT_EQ(Text(row.Name), reference.Name);
        EXPECT_EQ(Text(row.ShortName), std::string(reference.Name).substr(0, 16));
        EXPECT_EQ(row.TagType, reference.TagType);
        EXPECT_EQ(row.Property, reference.Property);
    }
}

TEST_F(GeneralizedTest, EveryNumberOfTheRangeComposesBackFromItsFields)
{
    for (int type = FirstGeneralizedLineType; type <= LastGeneralizedLineType; ++type)
    {
        const auto number = static_cast<std::uint16_t>(type);
        const std::optional<GeneralizedCategory> category = CategoryOfType(number);
        ASSERT_TRUE(category.has_value()) << type;
        ASSERT_EQ(ComposeLineType(*category, DecodeFieldValues(number)), number) << type;
    }
    // A dialog's values beyond their bits are kept to their bits.
    EXPECT_EQ(ComposeLineType(GeneralizedCategory::Crusher, {9, 0, 0, 0}), 0x2F80 + 1);
}

TEST_F(GeneralizedTest, TheRangeEndsAndTheBoomSwitch)
{
    EXPECT_FALSE(CategoryOfType(12159).has_value());
    EXPECT_EQ(&LookupLineType(12159, 0), &LookupLineType(9999, 0)) << "12159 is a plain type";
    EXPECT_EQ(*CategoryOfType(32767), GeneralizedCategory::Floor);

    SelectTablesFor(map::GameDoom2, map::GameDoom2, false, false);
    EXPECT_NE(LookupLineType(0x6000, 0).Type, 0x6000U) << "without Boom: the unknown row";
}

TEST_F(GeneralizedTest, WhatTheTypesMoveFeedsTheLookAhead)
{
    EXPECT_EQ(LookupLineType(0x6000, 0).Motion, 0x8002);            // floor down
    EXPECT_EQ(LookupLineType(0x6000 + (1 << 6), 0).Motion, 0x8001); // floor up
    EXPECT_EQ(LookupLineType(0x4000 + (1 << 6), 0).Motion, 0x2001); // ceiling up
    EXPECT_EQ(LookupLineType(0x3400, 0).Motion, 3);                 // lifts go down and up
    EXPECT_EQ(LookupLineType(0x3C00, 0).Motion, 0x4001);            // doors
}

TEST_F(GeneralizedTest, SectorFlagsOfBoomAndZdoom)
{
    // Boom: damage in bits 5 and 6, secret 128, ice 256, wind 512.
    EXPECT_TRUE(SectorFlagTest(1 + 128, 128));
    EXPECT_FALSE(SectorFlagTest(1, 128));
    EXPECT_EQ(WithSectorFlags(1 + 64, 256), std::optional<std::uint16_t>(1 + 256));
    EXPECT_EQ(WithSectorFlags(9, 256), std::nullopt) << "type 9 takes no flags";
    EXPECT_EQ(WithSectorFlags(17, 0x20 | 0x8000), std::optional<std::uint16_t>(17 + 0x20));

    // ZDoom in the Hexen format: bits 8 to 12, and any type takes them.
    SelectTablesFor(map::GameHexen, map::GameHexen, false, true);
    EXPECT_TRUE(SectorFlagTest(0x400 + 9, 0x400));
    EXPECT_EQ(WithSectorFlags(9, 0x800), std::optional<std::uint16_t>(9 + 0x800));

    SelectTablesFor(map::GameDoom2, map::GameDoom2, false, false);
    EXPECT_FALSE(SectorFlagTest(128, 128));
    EXPECT_EQ(WithSectorFlags(1, 128), std::nullopt);
}

} // namespace
} // namespace kelvar::game
