// OPT files over the type tables: what each kind of line does, its messages, and the files the
// projects ship with.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/OptFile.h"
#include "game/TypeLookup.h"
#include "game/TypeMenus.h"
#include "tests/game/GameFixture.h"

#include <filesystem>

namespace kelvar::game
{
namespace
{

class OptFileTest : public GameFixture
{
protected:
    void SetUp() override
    {
        GameFixture::SetUp();
        SelectTablesFor(2, 2, false, false);
    }

    static std::vector<std::string> MenuTexts(int kind)
    {
        std::vector<std::string> texts;
        for (const TypeMenuEntry& entry : CategoryMenu(kind))
        {
            texts.push_back(entry.Separator ? "-" : entry.Text);
        }
        return texts;
    }

    static std::vector<std::string> SubMenuTypes(int kind, std::uint32_t category)
    {
        std::vector<std::string> types;
        for (const TypeMenuEntry& entry : TypeSubMenu(kind, category, false))
        {
            types.push_back(entry.Separator ? "-" : std::to_string(entry.Type));
        }
        return types;
    }
};

TEST_F(OptFileTest, RenamesDeletesAddsRowsAndCategories)
{
    ASSERT_TRUE(ReadOpt("// A project's own types\n"
                        "[THINGS]\n"
                        "\"Power ups\" Equipment\n"
                        "2013 \"SOULA0\" \"Supercharge\" LIGHBLUE 20 16\n"
                        "2026 \"PMAPA0\" \"Computer Map\" YELLOW 20 16 DELETE\n"
                        "\"Spawners\"\n"
                        "3999 \"BOSFA0\" \"Spawn Target\" RED 16 16 Enemy CHAR Spwn\n"
                        "[LINEDEFS]\n"
                        "\"Door (keys)\" DoorKeys\n"
                        "26 \"DR Blue door\" \"Blue door\" RaiseDoor BlueKey None\n"
                        "\"Hub\"\n"
                        "300 \"S1 Exit to the hub\" \"Hub exit\" None None Exit\n"
                        "[SECTORS]\n"
                        "  9 \"Secret area\"   \"Secret\"  // trailing comment\n"));
    EXPECT_EQ(Shown(), std::vector<std::string>{});

    EXPECT_EQ(ThingTypeName(2013), "Supercharge");
    EXPECT_EQ(ThingColor(2013), 9);
    EXPECT_EQ(ThingRowOfType(2013).Property, 0xFFFF8008u); // not given: kept
    EXPECT_EQ(ThingTypeName(2026), "<?unknown?>");
    const ThingTypeRow& target = ThingRowOfType(3999);
    EXPECT_EQ(ThingCategoryOf(3999), NewCategoryBase + 1);
    EXPECT_EQ(target.Property, PropertyEnemy);
    EXPECT_EQ(target.Shape, ShapeChar);
    EXPECT_EQ(Text(target.ShapeText), "Spwn");
    EXPECT_EQ(Text(target.Sprite), "BOSFA0");
    const std::vector<std::string> things = MenuTexts(map::KindThing);
    EXPECT_EQ(things[2], "&3   Power ups");
    EXPECT_EQ(things[10], "&B   Spawners");
    EXPECT_EQ(SubMenuTypes(map::KindThing, NewCategoryBase + 1), std::vector<std::string>{"3999"});
    EXPECT_EQ(SubMenuTypes(map::KindThing, 0xFFFF8008).size(), 13u);

    const LineTypeRow& door = LookupLineType(26, 0);
    EXPECT_EQ(Text(door.Name), "DR Blue door");
    EXPECT_EQ(Text(door.ShortName), "Blue door");
    EXPECT_EQ(door.Property, 0x2002u);
    EXPECT_EQ(LookupLineType(300, 0).TagType, TagExit);
    EXPECT_EQ(MenuTexts(map::KindLineDef)[14], "&E   Hub");
    EXPECT_EQ(SubMenuTypes(map::KindLineDef, NewCategoryBase + 1), std::vector<std::string>{"300"});
    EXPECT_EQ(SectorTypeName(9), "Secret area");
    EXPECT_EQ(Game().Opt.NewThingCategories, 1);
}

TEST_F(OptFileTest, EntriesSpillOverUntilTheTableIsFullThenAreRefused)
{
    // The Secret block spills into the six empty categories after it (32 + 6 * 35 free rows);
    // then each entry is put in the next open slot from the top (28 Lights, 30 Health); the
    // 301st has no room left.
    std::string text = "[SECTORS]\n\"Secrets\" SecretOther\n";
    for (int type = 1000; type < 1000 + 305; ++type)
    {
        text += std::to_string(type) + " \"Extra " + std::to_string(type) + "\" \"Extra\"\n";
    }
    ASSERT_TRUE(ReadOpt(text));
    EXPECT_EQ(SubMenuTypes(map::KindSector, NewCategoryBase + 6).back(), "1241");
    EXPECT_EQ(SubMenuTypes(map::KindSector, 0xFFFF8001).back(), "1269");
    EXPECT_EQ(SectorTypeName(1299), "Extra 1299");
    EXPECT_EQ(SectorTypeName(1300), "Unknown          ");
    EXPECT_EQ(Game().Opt.TooManySectors, 5);
    ASSERT_EQ(Ui.Messages.size(), 58u + 5 + 1 + 1);
    EXPECT_EQ(Ui.Messages[0].Title, "OPT errors");
    EXPECT_EQ(
        Ui.Messages[0].Lines,
        (std::vector<std::string>{"Too many Sector entries for existing category.", "Starting with",
                                  "1242 \"Extra 1242\" \"Extra\"", "Put in next open slot"}));
    EXPECT_EQ(Ui.Messages[58].Lines[2], "1300 \"Extra 1300\" \"Extra\"");
    EXPECT_EQ(Ui.Messages[59].Lines,
              (std::vector<std::string>{"Too Many New Sector entries", "starting with",
                                        "1300 \"Extra 1300\" \"Extra\""}));
    EXPECT_EQ(Ui.Messages[63].Lines[2], "1304 \"Extra 1304\" \"Extra\"");
    EXPECT_EQ(Ui.Messages[64].Lines,
              (std::vector<std::string>{"One or more of the following entries", "in", "TEST.OPT",
                                        "has errors as noted", "", "Too many new Things    =0",
                                        "Too many new Sectors   =5", "Too many new LineDefs  =0",
                                        "Missing ThingCategory  =0", "Missing SectoryCategory=0",
                                        "Missing Line Categories=0", "",
                                        "* Check that you have no more than 32 entries per "
                                        "section *"}));
}

TEST_F(OptFileTest, LinesAreReadAsTheyAlwaysHaveBeen)
{
    // The last line has no newline and loses its last character; a sprite ends at a blank; a
    // number that can't be read leaves the previous one in force; radius and height stop at 300.
    ASSERT_TRUE(ReadOpt("[THINGS]\r\n"
                        "\"Keys\" Keys\r\n"
                        "2013 \"SOULA0 glowing\" \"Soul\" BLUE 301 500\n"
                        "0xZZ \"SOULB0\" \"Soul again\"\n"
                        "-\n"
                        "\"-\"\n"
                        "4000 \"BKEYA0\" \"Ring key\" BLUE 20 16 BlueKey CHAR KRing"));
    EXPECT_EQ(Shown(), std::vector<std::string>{});
    const ThingTypeRow& soul = ThingRowOfType(2013);
    EXPECT_EQ(Text(soul.Sprite), "SOULB0");
    EXPECT_EQ(Text(soul.Name), "Soul again");
    EXPECT_EQ(soul.Radius, 300);
    EXPECT_EQ(soul.Height, 300);
    EXPECT_EQ(Text(ThingRowOfType(4000).ShapeText), "KRin");
    EXPECT_EQ(SubMenuTypes(map::KindThing, 0xFFFF8006),
              (std::vector<std::string>{"5", "6", "13", "40", "39", "38", "-", "4000"}));

    // A sprite cut at a blank on a new row too; colour as the fourth LineDef token moves the
    // arguments up one place; Skip keeps an existing row's value and is stored on a new one.
    ASSERT_TRUE(ReadOpt("[LINEDEFS]\n"
                        "\"Switches\"\n"
                        "301 \"S1 One\" \"One\" None None SectorTag YELLOW 1 2 3 4 5 6\n"
                        "302 \"S1 Two\" \"Two\" None None SectorTag 1 2 3 4 300\n"
                        "97 \"WR Teleport\" \"Teleport\" None Skip\n"
                        "88 \"WR Lift\" \"Lift\" Skip\n"
                        "303 \"S1 Three\" \"Three\" Skip Skip Skip\n"));
    EXPECT_EQ(ThingRowOfType(2013).Radius, 20); // the previous read was undone first
    EXPECT_EQ(LookupLineType(301, 0).Color, 14);
    EXPECT_EQ(LookupLineType(301, 0).Args, (std::array<std::uint8_t, 5>{1, 2, 3, 4, 5}));
    EXPECT_EQ(LookupLineType(302, 0).Args, (std::array<std::uint8_t, 5>{1, 2, 3, 4, 44}));
    EXPECT_EQ(LookupLineType(97, 0).Property, PropertyTeleport);
    const LineTypeRow& lift = LookupLineType(88, 0);
    EXPECT_EQ(lift.Motion, 0x8002);
    EXPECT_EQ(lift.Property, 0u); // not Skip: the line's default
    EXPECT_EQ(lift.TagType, TagSector);
    EXPECT_EQ(LookupLineType(303, 0).Motion, CodeSkip);
    EXPECT_EQ(LookupLineType(303, 0).Property, CodeSkip);
}

TEST_F(OptFileTest, DeleteHidesASectorButForgetsALineDefOrThing)
{
    ASSERT_TRUE(ReadOpt("[THINGS]\n2035 \"BAR1A0\" \"Barrel\" BROWN 10 32 DELETE\n"
                        "[LINEDEFS]\n11 \"S- End\" \"End\" DELETE\n"
                        "[SECTORS]\n9 \"Secret\" \"Secret\" DELETE\n"));
    EXPECT_EQ(ThingTypeName(2035), "<?unknown?>");
    EXPECT_EQ(Text(LookupLineType(11, 0).Name), "Unknown+1-2-3-4-5");
    EXPECT_EQ(SectorTypeName(9), "xecret (credit if discovered)");
    EXPECT_EQ(SectorTypeShortName(9), "Secret");
    EXPECT_EQ(SubMenuTypes(map::KindSector, 0xFFFF8003), (std::vector<std::string>{"10", "14"}));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(OptFileTest, WrongWordsAreShownAndTheLineGoesOnWithDefaults)
{
    ASSERT_TRUE(ReadOpt("[THINGS]\n"
                        "\"Keys\" Keys\n"
                        "2013 \"SOULA0\" \"Soul\" PINK 20 16 Glowing\n"
                        "[LINEDEFS]\n"
                        "\"Polyobjects\" Poly\n"
                        "26 \"DR Door\" \"Door\" Open RedKey Sideways\n"
                        "[COLORMAPS]\n"
                        "1 \"WATERMAP\" \"Water\"\n"));
    EXPECT_EQ(Shown(), (std::vector<std::string>{"[OPT errors]",
                                                 "Thing with invalid Property",
                                                 "2013 \"SOULA0\" \"Soul\" PINK 20 16 Glowing",
                                                 "",
                                                 "=Property=",
                                                 "",
                                                 "Glowing",
                                                 "[LineDef Category Error]",
                                                 "Category Keyword",
                                                 "",
                                                 "Poly",
                                                 "Not found",
                                                 "\"Polyobjects\" Poly",
                                                 "[OPT errors]",
                                                 "Line with invalid Floor Property",
                                                 "26 \"DR Door\" \"Door\" Open RedKey Sideways",
                                                 "",
                                                 "=Property=",
                                                 "",
                                                 "Open",
                                                 "[OPT errors]",
                                                 "Line with invalid Tag Type",
                                                 "26 \"DR Door\" \"Door\" Open RedKey Sideways",
                                                 "",
                                                 "=Property=",
                                                 "",
                                                 "Sideways",
                                                 "[COLORMAPS]",
                                                 "COLORMAP entries are set in F5 / Texture dialog",
                                                 "",
                                                 "Please remove entries from OPT files"}));
    EXPECT_EQ(ThingColor(2013), 13); // an unknown colour is no colour
    // The row as the line left it: a lookup would set a manual door's tag type.
    const LineTypeRow& door =
        Game().LineDefs[static_cast<std::size_t>(FindTypeRow(Game().LineDefs, 26))];
    EXPECT_EQ(door.Motion, 0);
    EXPECT_EQ(door.Property, 0x2001u);
    EXPECT_EQ(door.TagType, TagSector);
    // A keyword of another game opens a category of the text instead.
    EXPECT_EQ(MenuTexts(map::KindLineDef)[14], "&E   Polyobjects");
}

TEST_F(OptFileTest, EntriesWithoutACategoryAreReportedOnce)
{
    ASSERT_TRUE(ReadOpt("[LINEDEFS]\n"
                        "400 \"S1 Lost\" \"Lost\"\n"
                        "401 \"S1 Found\" \"Found\"\n"));
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Lines, (std::vector<std::string>{"New entry with no LineDef category",
                                                              "400 \"S1 Lost\" \"Lost\""}));
    EXPECT_EQ(Ui.Messages[1].Lines[10], "Missing Line Categories=2");
    EXPECT_EQ(Text(LookupLineType(400, 0).Name), "Unknown+1-2-3-4-5");
    EXPECT_EQ(Text(LookupLineType(401, 0).Name), "S1 Found"); // into the next open slot

    // A missing Thing category alone, deliberately, brings no summary.
    Ui.Clear();
    ASSERT_TRUE(ReadOpt("[THINGS]\n4001 \"BAR1A0\" \"Keg\"\n"));
    EXPECT_EQ(Ui.Titles(), std::vector<std::string>{"OPT errors"});
}

TEST_F(OptFileTest, EachReadStartsFromTheBuiltInTables)
{
    ASSERT_TRUE(ReadOpt("[THINGS]\n\"Keys\" Keys\n2013 \"SOULA0\" \"Soul\"\n"));
    EXPECT_EQ(MenuTexts(map::KindThing)[1], "&2   Keys");
    EXPECT_FALSE(ReadOptFile("MISSING.OPT"));
    EXPECT_EQ(ThingTypeName(2013), "Soul Sphere");
    EXPECT_EQ(Game().Things, std::vector<ThingTypeRow>(BuiltInThings(TableSet::Doom).begin(),
                                                       BuiltInThings(TableSet::Doom).end()));
    EXPECT_TRUE(Ui.Messages.empty());
    // A read squeezes the blanks out of every name.
    ASSERT_TRUE(ReadOpt("// nothing\n"));
    EXPECT_EQ(Text(LookupLineType(26, 0).Name), "DR OpenBlue Wait/Close");
}

TEST_F(OptFileTest, TheThingListIsAnOptFileOfTheTable)
{
    ASSERT_EQ(WriteThingList(), 1);
    const std::string text = testkit::ReadFile(Dir.Path() / CurrentOptFileName);
    EXPECT_TRUE(text.starts_with("[THINGS]\n\" \"\n14 \"TFOGB0\" \"Teleport Landing\"\n\" \"\n5 "
                                 "\"BKEYA0\" \"Blue KeyCard\"\n"))
        << text.substr(0, 200);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1 + 10 + 123 - 5);
    EXPECT_EQ(text.find("\"PLAYA1\""), std::string::npos);
    EXPECT_NE(text.find("\n3006 \"SKULA1\" \"LostSoul\"\n"), std::string::npos);

    // Read back, it changes nothing but the blanks.
    SqueezeTypeNames();
    const std::vector<ThingTypeRow> before = Game().Things;
    ASSERT_TRUE(ReadOptFile(CurrentOptFileName));
    EXPECT_EQ(Game().Things, before);
    EXPECT_TRUE(Ui.Messages.empty());
}

// Each project's OPT file reads without a message over its game's tables.
TEST_F(OptFileTest, TheProjectsOwnFilesReadCleanly)
{
    struct Project
    {
        const char* File;
        int IwadKind;
        int LevelFormat;
        bool Boom;
        bool Zdoom;
    };
    const Project projects[] = {
        {"DOOM2.OPT", 2, 2, false, false},      {"DOOM1.OPT", 1, 1, false, false},
        {"HERETIC.OPT", 3, 3, false, false},    {"HEXEN.OPT", 4, 4, false, false},
        {"STRIFE.OPT", 5, 5, false, false},     {"BOOM.OPT", 2, 2, true, false},
        {"ETERNITY.OPT", 2, 2, true, false},    {"LEGACY.OPT", 2, 2, true, false},
        {"EDGE.OPT", 2, 2, true, false},        {"ZDOOM.OPT", 2, 2, true, false},
        {"ZDOOMHEXEN.OPT", 2, 4, false, true},  {"ZDOOMHERETIC.OPT", 3, 4, false, true},
        {"ZDOOMSTRIFE.OPT", 5, 4, false, true}, {"GZDOOMHEXEN.OPT", 2, 4, false, true},
        {"SKULLTAG.OPT", 2, 4, false, true},    {"JDOOM2.OPT", 2, 2, false, false},
        {"RISEN3D.OPT", 2, 2, true, false},     {"R3KELVAR.OPT", 2, 2, true, false},
    };
    const std::filesystem::path shipped = std::filesystem::path(KELVAR_SOURCE_DIR) / "res/opt";
    for (const Project& project : projects)
    {
        SCOPED_TRACE(project.File);
        SelectTablesFor(project.IwadKind, project.LevelFormat, project.Boom, project.Zdoom);
        EXPECT_TRUE(ReadOptFile((shipped / project.File).string()));
        EXPECT_EQ(Shown(), std::vector<std::string>{});
        Ui.Clear();
    }
    SelectTablesFor(2, 2, true, false);
    ASSERT_TRUE(ReadOptFile((shipped / "BOOM.OPT").string()));
    EXPECT_EQ(ThingRowOfType(5001).Property, 22u);
    EXPECT_EQ(Text(LookupLineType(260, 0).ShortName), "Translucent");
    EXPECT_EQ(ThingCategoryOf(5001), NewCategoryBase + 1);
}

} // namespace
} // namespace kelvar::game
