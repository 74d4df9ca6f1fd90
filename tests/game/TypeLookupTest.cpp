// The choice of the tables by game and project, the type lookups and the type menus.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/TypeLookup.h"
#include "game/TypeMenus.h"
#include "tests/game/GameFixture.h"
#include "wad/WadState.h"

namespace kelvar::game
{
namespace
{

using LookupTest = GameFixture;

std::vector<std::string> Texts(const std::vector<TypeMenuEntry>& entries)
{
    std::vector<std::string> texts;
    for (const TypeMenuEntry& entry : entries)
    {
        texts.push_back(entry.Separator ? "-" : entry.Text);
    }
    return texts;
}

map::Thing ThingOf(std::uint16_t type, std::uint8_t firstArgument = 0)
{
    map::Thing thing;
    thing.Type = type;
    thing.Args[0] = firstArgument;
    return thing;
}

TEST_F(LookupTest, TablesFollowTheIwadAndTheProjectSwitches)
{
    // A ZDoom project on a Doom 2 IWAD: Doom's Things, Hexen's LineDefs and Sectors.
    wad::Wad().Game.Game = 2;
    wad::Wad().Game.Format = 2;
    wad::Wad().Options.ZdoomHexenFormat = true;
    SelectGameTables();
    EXPECT_EQ(Game().LevelFormat, 4);
    EXPECT_EQ(ThingTypeName(2001), "Shotgun");
    EXPECT_EQ(Text(LookupLineType(80, 0).Name), "Script Run     +Script-Map-Arg1-Arg2-Arg3");
    EXPECT_EQ(SectorTypeName(201), "Scroll North Slow");
    EXPECT_EQ(Texts(CategoryMenu(map::KindThing)).back(), "&z   Thing Special");
    EXPECT_EQ(Texts(CategoryMenu(map::KindSector))[4], "&B   ZDOOM Sector Flags");

    SelectTablesFor(3, 3, false, false);
    EXPECT_EQ(ThingTypeName(2005), "Gauntlets Necromancer");
    EXPECT_EQ(Text(LookupLineType(28, 0).Name), "DR OpenGreen   Wait, close");
    EXPECT_EQ(SectorTypeName(40), "Wind East  Weak");

    SelectTablesFor(5, 5, false, false);
    EXPECT_EQ(ThingTypeName(3001), "Robot Reaver");
    EXPECT_EQ(Texts(CategoryMenu(map::KindLineDef))[2], "&3   Door (quest)");
    EXPECT_EQ(Texts(CategoryMenu(map::KindLineDef)).back(), "&Y   Sector Tag");
}

TEST_F(LookupTest, LineTypesAnswerTheirRowOrTheUnknownRow)
{
    SelectTablesFor(2, 2, false, false);
    EXPECT_EQ(Text(LookupLineType(9999, 0).Name), "Unknown+1-2-3-4-5");
    EXPECT_EQ(Text(LookupLineType(9999, 0).ShortName), "Unknown");
    EXPECT_EQ(Text(LookupLineType(97, 0).ShortName), "WR*Teleport to Tag");
    // A manual door takes a tag only where Boom lets it have one; the row keeps the answer.
    EXPECT_EQ(LookupLineType(1, 0).TagType, 0);
    SelectTablesFor(2, 2, true, false);
    EXPECT_EQ(LookupLineType(1, 0).TagType, TagOption);
    const std::ptrdiff_t door = FindTypeRow(Game().LineDefs, 1);
    EXPECT_EQ(Game().LineDefs[static_cast<std::size_t>(door)].TagType, TagOption);
    EXPECT_EQ(LookupLineType(97, 0).TagType, TagSector);
    // Boom's generalized types are not the table's.
    EXPECT_TRUE(LineTypeIsGeneralized(15889));
    EXPECT_FALSE(LineTypeIsGeneralized(12159));
    SelectTablesFor(2, 2, false, false);
    EXPECT_FALSE(LineTypeIsGeneralized(15889));
}

TEST_F(LookupTest, HexenKeyDoorsAreFoundByTheirKey)
{
    SelectTablesFor(4, 4, false, false);
    EXPECT_EQ(Text(LookupLineType(13, 0).Name), "Open Steel Key  +Tag-Speed-Delay-Key");
    EXPECT_EQ(Text(LookupLineType(13, 7).Name), "Open SilverKey  +Tag-Speed-Delay-Key");
    EXPECT_EQ(LookupLineType(13, 11).Args[3], 11);
    EXPECT_EQ(Text(LookupLineType(13, 12).Name), "Unknown+1-2-3-4-5");
    EXPECT_TRUE(LineIsDoorSpecial(12));
    EXPECT_FALSE(LineIsDoorSpecial(10));
    EXPECT_TRUE(LineTagIsPolyId(2));
    EXPECT_TRUE(LineTagIsTid(70));
    EXPECT_FALSE(LineTagIsTid(80));
    SelectTablesFor(2, 2, false, false);
    EXPECT_FALSE(LineIsDoorSpecial(12)); // Hexen's specials only
}

TEST_F(LookupTest, SectorTypesOfThePortsAreMaskedOrDecoded)
{
    SelectTablesFor(2, 2, false, false);
    EXPECT_EQ(SectorTypeName(9), "Secret (credit if discovered)");
    EXPECT_EQ(SectorTypeName(72), "Unknown          ");
    // Boom keeps the light kind in the low five bits; the damage and secret bits above them.
    SelectTablesFor(2, 2, true, false);
    EXPECT_EQ(SectorTypeName(72), "Pulse Light");
    EXPECT_EQ(LookupSectorType(77).Type, 77u);
    EXPECT_EQ(SectorTypeShortName(77), "Fsync Light");
    EXPECT_EQ(SectorTypeName(32), "no Light");
    EXPECT_EQ(SectorTypeName(96 + 4), "Unknown          ");
    SelectTablesFor(5, 5, true, false); // not on the Strife IWAD
    EXPECT_EQ(SectorTypeName(72), "Unknown          ");
    // ZDoom's flags in bits 8 to 12 are not part of the type.
    SelectTablesFor(2, 4, false, true);
    EXPECT_EQ(SectorTypeName(0x1F00 + 201), "Scroll North Slow");
    EXPECT_EQ(SectorTypeName(0x2000 + 201), "Unknown          ");
}

TEST_F(LookupTest, ThingLookupsReadThePropertiesOfTheRows)
{
    SelectTablesFor(4, 4, false, false);
    EXPECT_EQ(ThingTypeName(9999), "<?unknown?>");
    EXPECT_EQ(ThingColor(9999), 15);
    EXPECT_EQ(ThingRadius(ThingOf(9999)), 16);
    EXPECT_EQ(Text(ThingRowOfType(9999).ShapeText), "?");
    EXPECT_EQ(ThingCategoryOf(8030), 0xFFFF8006u);
    EXPECT_EQ(ThingCategoryOf(34952), 0u); // before any heading
    EXPECT_EQ(ThingCategoryOf(9999), 0u);
    EXPECT_TRUE(ThingIsMapSpot(9013));
    EXPECT_TRUE(ThingIsPlayerStart(9103));
    EXPECT_FALSE(ThingIsPlayerStart(11)); // deathmatch
    EXPECT_TRUE(ThingIsPolyAnchor(3000));
    EXPECT_TRUE(ThingIsPolyStart(3002));
    EXPECT_TRUE(ThingIsPolyOrHate(3001));
    EXPECT_FALSE(ThingIsPolyStart(9001));
    EXPECT_TRUE(ThingIsTeleportLanding(14));

    // A row of radius 0 gets 32 once looked up; the change stays in the table.
    EXPECT_EQ(ThingRadius(ThingOf(34952)), 0);
    EXPECT_EQ(ThingRow(ThingOf(34952)).Radius, 32);
    EXPECT_EQ(ThingRadius(ThingOf(34952)), 32);
}

TEST_F(LookupTest, BridgesTakeTheirRadiusFromTheirFirstArgument)
{
    SelectTablesFor(2, 4, false, true);
    ASSERT_TRUE(ReadOpt("[THINGS]\n\"Bridges\"\n9990 \"TFOGB0\" \"Custom Bridge\" WHITE 32 8 "
                        "Bridge\n118 \"TLGLB0\" \"Glitter Bridge\" WHITE 20 8 Bridge\n"));
    EXPECT_EQ(ThingRadius(ThingOf(9990, 80)), 80);
    EXPECT_EQ(ThingRadius(ThingOf(9990, 0)), 32);
    EXPECT_EQ(ThingRadius(ThingOf(118, 50)), 20); // only type 9990 answers its argument here
    EXPECT_EQ(ThingRow(ThingOf(118, 50)).Radius, 50);
    EXPECT_EQ(ThingRadius(ThingOf(118, 0)), 50);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(LookupTest, MenusShowVisibleCategoriesAndNumberTheirTypes)
{
    SelectTablesFor(1, 1, false, false);
    const std::vector<std::string> lines = Texts(CategoryMenu(map::KindLineDef));
    ASSERT_EQ(lines.size(), 17u);
    EXPECT_EQ(lines[0], "&1   Normal (no menu)");
    EXPECT_EQ(lines[12], "&D   Teleport/End/Special");
    EXPECT_EQ(lines[13], "-");
    EXPECT_EQ(lines[14], "-"); // the Boom builder is hidden without the Boom switch
    EXPECT_EQ(lines[15], "&x   LineDef Type #");
    SelectTablesFor(2, 2, true, false);
    const std::vector<TypeMenuEntry> boom = CategoryMenu(map::KindLineDef);
    EXPECT_EQ(boom[14].Text, "&P   BOOM LineDef Menu");
    EXPECT_EQ(boom[14].Command, MenuGeneralized);
    EXPECT_EQ(boom[1].Category, 0xFFFF8001u);
    EXPECT_EQ(boom[1].Command, 0u);

    const std::vector<TypeMenuEntry> keys = TypeSubMenu(map::KindLineDef, 0xFFFF8001, false);
    ASSERT_EQ(keys.size(), 12u);
    EXPECT_EQ(keys[0].Text, "&1   DR OpenBlue   Wait/Close\t[ 26 ]");
    EXPECT_EQ(keys[9].Text, "&A   S1 OpenRed    Fast, Stay Open2\t[ 135 ]");
    EXPECT_EQ(keys[9].Command, TypeMenuFirst + 9);
    EXPECT_EQ(keys[9].Type, 135u);
    EXPECT_EQ(TypeSubMenu(map::KindLineDef, 0xFFFF8001, true)[0].Text,
              "&1   DR OpenBlue   Wait/Close\t[001A]");

    // A Doom 1 project doesn't offer the Doom 2 types, but knows them.
    SelectTablesFor(1, 1, false, false);
    const std::vector<std::string> weapons = Texts(TypeSubMenu(map::KindThing, 0xFFFF8004, false));
    ASSERT_EQ(weapons.size(), 6u);
    EXPECT_EQ(weapons[1], "&2   Chaingun                \t[ 2002 ]");
    EXPECT_EQ(ThingTypeName(82), "SuperShotgun2");
    SelectTablesFor(2, 2, false, false);
    EXPECT_EQ(TypeSubMenu(map::KindThing, 0xFFFF8004, false).size(), 7u);

    SelectTablesFor(4, 4, false, false);
    const std::vector<TypeMenuEntry> doors = TypeSubMenu(map::KindLineDef, 0xFFFF800E, false);
    EXPECT_EQ(doors[5].Args, (std::array<std::uint8_t, 5>{0, 16, 100, 3, 0}));
    EXPECT_EQ(Texts(CategoryMenu(map::KindSector))[4], "-");
}

} // namespace
} // namespace kelvar::game
