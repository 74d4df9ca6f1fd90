// Tests of the info pane texts of each mode, on built levels and on Freedoom 2 MAP01, and of
// the status bar fields.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "view/InfoPane.h"

#include "game/GameState.h"
#include "map/MapState.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "view/HitTest.h"
#include "wad/LevelReader.h"

#include <gtest/gtest.h>

namespace kelvar::view
{
namespace
{

using Lines = std::vector<std::string>;

// A text padded with blanks to `width`, as the "%-Ns" formats write it.
std::string Padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

class InfoPaneTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        map::ResetMap();
        game::ResetGame();
        game::SelectTablesFor(2, 2, false, false);
    }
    void TearDown() override { game::ResetGame(); }

    // Two rooms sharing the wall x = 128 (LineDef 4, front in the east room). The east room,
    // Sector 1, is a secret 80 high on a floor of 16, tagged 7 by the lift switch LineDef 5.
    static map::LevelData Rooms()
    {
        testkit::LevelBuilder builder;
        builder.Sector().Sector(16, 96);
        builder.Vertex(0, 0).Vertex(0, 128).Vertex(128, 128).Vertex(128, 0).Vertex(256, 128).Vertex(
            256, 0);
        for (const std::uint32_t sector : {0u, 0u, 0u, 1u, 1u, 1u, 1u, 0u})
        {
            builder.Side(sector);
        }
        builder.Line(0, 1, 0)
            .Line(1, 2, 1)
            .Line(3, 0, 2)
            .Line(2, 4, 3)
            .Line(3, 2, 6, 7)
            .Line(4, 5, 4)
            .Line(5, 3, 5);
        builder.Thing(64, 64, 1, 90, 7).Thing(200, 64, 3004, 45, 0x18);
        map::LevelData level = builder.Build();
        level.Sectors[1].Type = 9;
        level.Sectors[1].Tag = 7;
        level.LineDefs[5].Type = 62;
        level.LineDefs[5].Tag = 7;
        level.SideDefs[6].NormalTexture = map::NoTexture;
        level.SideDefs[7].NormalTexture = map::NoTexture;
        level.SideDefs[7].LowerTexture = map::TextureName::From("STEP1");
        level.SideDefs[6].XOffset = 12;
        level.SideDefs[6].YOffset = -3;
        return level;
    }

    InfoPaneOptions Options;
};

TEST_F(InfoPaneTest, ThingPaneShowsTypeAngleSectorPositionAndFlags)
{
    const map::LevelData level = Rooms();
    InfoPane pane = ObjectInfo(level, map::ModeThings, 0, Options);
    EXPECT_EQ(pane.Lines,
              (Lines{Padded("T0    Player 1 Start", 46), "Type      1", "Angle    90     N",
                     "Sector    0", "Coord    64,64    Flags:0007", "E-M-H-"}));
    EXPECT_EQ(pane.Sprite, "PLAYA1");

    Options.HexTypes = true;
    pane = ObjectInfo(level, map::ModeThings, 1, Options);
    EXPECT_EQ(pane.Lines[1], "Type  0BBC");
    EXPECT_EQ(pane.Lines[2], "Angle    45    NE");
    EXPECT_EQ(pane.Lines[3], "Sector    1");
    EXPECT_EQ(pane.Lines[5], "Deaf Net ");

    // The Hexen format adds the TID, the height and the special, and has its own flag texts.
    map::LevelData hexen = level;
    hexen.Things[0].Tid = 12;
    hexen.Things[0].Z = 24;
    hexen.Things[0].Flags = 0x2E7;
    Options = {4, false};
    pane = ThingInfo(hexen, 0, Options);
    ASSERT_EQ(pane.Lines.size(), 9u);
    EXPECT_EQ(pane.Lines[3], "Tid      12");
    EXPECT_EQ(pane.Lines[4], "Height   24");
    EXPECT_EQ(pane.Lines[6].substr(0, 9), "Spec   0 ");
    EXPECT_EQ(pane.Lines[8], "E-M-H-fcmC");
}

TEST_F(InfoPaneTest, LineDefPaneShowsTagTargetAndTheTexturesEachSideNeeds)
{
    const map::LevelData level = Rooms();
    InfoPane pane = ObjectInfo(level, map::ModeLineDefs, 4, Options);
    ASSERT_GE(pane.Lines.size(), 5u);
    EXPECT_EQ(pane.Lines[0], Padded("L4    -- Normal --", 40));
    EXPECT_EQ(pane.Lines[1], "Type :  0");
    EXPECT_EQ(pane.Lines[2], "Flags:0004 2");
    EXPECT_EQ(pane.Lines[3], "Flags:0004   Length=128      90");
    EXPECT_EQ(pane.Lines[4], "Tag 0 n/a");
    EXPECT_EQ(Lines(pane.Lines.begin() + 5, pane.Lines.end()),
              (Lines{"s  6", "x12 y-3  (   1)", "high  80 (  16)", "s  7", "x0  y0   (   0)",
                     "high 128 (   0)"}));
    // The front, in the lower room with the higher floor, needs nothing; the back needs its
    // upper wall (missing) and its lower one (set).
    EXPECT_EQ(pane.Textures, (std::vector<TextureBox>{{1, "upper", "-"},
                                                      {1, "normal", "-"},
                                                      {1, "lower", "-"},
                                                      {2, "upper", "missing"},
                                                      {2, "normal", "-"},
                                                      {2, "lower", "STEP1"}}));

    pane = ObjectInfo(level, map::ModeLineDefs, 5, Options);
    EXPECT_EQ(pane.Lines[2], "Flags:0001 I");
    EXPECT_EQ(pane.Lines[4], "Tag :  7 (  1 Secret)");
    EXPECT_EQ(pane.Textures.size(), 3u) << "one side";
    EXPECT_EQ(pane.Textures[1].Text, "STARTAN3");
    EXPECT_EQ(LineDefShortInfo(level, 5), (Lines{"L=128   270", "Tag   7   1=Secret"}));

    map::LevelData untagged = level;
    untagged.LineDefs[5].Tag = 0;
    EXPECT_EQ(ObjectInfo(untagged, map::ModeLineDefs, 5, Options).Lines[4], "No Sector Tag");
    EXPECT_EQ(LineDefShortInfo(untagged, 5)[1], "tagmiss");
    untagged.LineDefs[5].Tag = 8;
    EXPECT_EQ(ObjectInfo(untagged, map::ModeLineDefs, 5, Options).Lines[4], "Tag : 8 (missing)");
    EXPECT_EQ(LineDefShortInfo(untagged, 5)[1], "Tag   8 (missing)");

    // A sky over both sides waives the upper wall.
    map::LevelData sky = level;
    sky.Sectors[0].CeilingTexture = map::TextureName::From("F_SKY1");
    sky.Sectors[1].CeilingTexture = map::TextureName::From("F_SKY1");
    EXPECT_EQ(ObjectInfo(sky, map::ModeLineDefs, 4, Options).Textures[3].Text, "-");
}

TEST_F(InfoPaneTest, VertexAndSectorPanes)
{
    map::LevelData level = Rooms();
    EXPECT_EQ(ObjectInfo(level, map::ModeVertexes, 3, Options).Lines,
              (Lines{"Vertex 3", "Coordinates 128,0"}));
    EXPECT_EQ(ObjectInfo(level, map::ModeSectors, 1, Options).Lines,
              (Lines{Padded("S1    Secret (credit if discovered)", 46), "Type   9     Height 80   ",
                     "Ceiling Height", "      96", "Floor   Height", "      16", "Ceiling Texture",
                     " CEIL3_5", "Floor   Texture", "FLOOR4_8", "Light   Level", "     160",
                     "LineDef Tag 7 (5) SR LowerLift      Wait, raise"}));
    Options.HexTypes = true;
    EXPECT_EQ(ObjectInfo(level, map::ModeSectors, 1, Options).Lines[1],
              "Type 0009     Height 80   ");
    EXPECT_EQ(ObjectInfo(level, map::ModeSectors, 0, Options).Lines.size(), 12u)
        << "no tag, no tag line";

    // A tag no LineDef carries is explained by what the games do with it themselves.
    const auto tagLine = [&](std::uint16_t tag, int format)
    {
        level.Sectors[0].Tag = tag;
        return ObjectInfo(level, map::ModeSectors, 0, {format, false}).Lines.back();
    };
    EXPECT_EQ(tagLine(99, 2), "LineDef Tag 99 (stairs?)");
    EXPECT_EQ(tagLine(999, 3), "LineDef Tag 999 (stairs?)");
    EXPECT_EQ(tagLine(666, 1), "LineDef Tag 666 (lower@end)");
    EXPECT_EQ(tagLine(667, 2), "LineDef Tag 667 (MAP07)");
    EXPECT_EQ(tagLine(667, 3), "LineDef Tag 667 (missing)");
    EXPECT_EQ(tagLine(99, 4), "LineDef Tag 99 (script?)");
    EXPECT_EQ(tagLine(5, 2), "LineDef Tag 5 (missing)");
}

TEST_F(InfoPaneTest, NoObjectSaysSoInEachMode)
{
    const map::LevelData level = Rooms();
    EXPECT_EQ(ObjectInfo(level, map::ModeThings, -1, Options).Lines, Lines{"No Thing selected"});
    EXPECT_EQ(ObjectInfo(level, map::ModeLineDefs, 7, Options).Lines, Lines{"No LineDef selected"});
    EXPECT_EQ(ObjectInfo(level, map::ModeVertexes, -1, Options).Lines, Lines{"No Vertex selected"});
    EXPECT_EQ(ObjectInfo(map::LevelData{}, map::ModeSectors, 0, Options).Lines,
              Lines{"No Sector selected"});
}

TEST(StatusBar, FieldsFollowTheSettings)
{
    StatusBarValues values;
    values.Mode = map::ModeVertexes;
    values.Scale = 0.125;
    values.Grid = 64;
    values.Speed = 7;
    EXPECT_EQ(StatusBarFields(values), (Lines{"Vertexes", "", "", "Scale 0.12", "Grid 64",
                                              "Speed 7", "Snap=ON", "AutoEdit=OFF", "AutoSel=OFF",
                                              "Center=OFF", "3DEdit=OFF", "Change=NO", "Node=NO"}));
    values = {map::ModeThings, true, 2, 1.5, 0, 1, false, true, true, 2, true, true, true};
    const Lines fields = StatusBarFields(values);
    ASSERT_EQ(fields.size(), std::size_t{StatusFieldCount});
    EXPECT_EQ(fields, (Lines{"Things", "COPY", "(bkp2)", "Scale 1.50", "Grid 0", "Speed 1",
                             "Snap=OFF", "AutoEdit=ON", "AutoSel=ON", "Center=Object", "3DEdit=ON",
                             "Change=YES", "Node=YES"}));
}

// Every object of a real level gets its pane, a visible wall never lacks a texture it needs,
// and a Thing's Sector is the one the hit test finds.
class InfoPaneFreedoom : public testkit::WadFixture
{
};

TEST_F(InfoPaneFreedoom, Map01HasAPaneForEveryObject)
{
    map::ResetMap();
    game::ResetGame();
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    game::SelectTablesFor(2, 2, true, false);
    map::LevelData level;
    ASSERT_EQ(wad::ReadLevel(level, "MAP01", false), 1);
    const InfoPaneOptions options;
    for (int i = 0; i < level.Things.Count(); ++i)
    {
        const InfoPane pane = ThingInfo(level, i, options);
        ASSERT_EQ(pane.Lines.size(), 6u);
        EXPECT_EQ(pane.Lines[0].substr(0, 5), Padded("T" + std::to_string(i), 5));
    }
    int missing = 0;
    for (int i = 0; i < level.LineDefs.Count(); ++i)
    {
        const InfoPane pane = LineDefInfo(level, i, options);
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        const std::size_t sides = (line.SideDef1 != map::NoSideDef ? 1u : 0u) +
                                  (line.SideDef2 != map::NoSideDef ? 1u : 0u);
        EXPECT_EQ(pane.Textures.size(), 3 * sides);
        for (const TextureBox& box : pane.Textures)
        {
            // The level leaves walls bare only on lines it hides from the automap.
            if (box.Text == "missing")
            {
                ++missing;
                EXPECT_NE(line.Flags & 0x80, 0) << "LineDef " << i << " " << box.Label;
            }
        }
    }
    EXPECT_EQ(missing, 16);
    for (int i = 0; i < level.Sectors.Count(); ++i)
    {
        EXPECT_EQ(SectorInfo(level, i, options).Lines.size(),
                  level.Sectors[static_cast<std::size_t>(i)].Tag != 0 ? 13u : 12u);
    }
    // The player's start stands in the Sector the hit test finds there.
    for (int i = 0; i < level.Things.Count(); ++i)
    {
        const map::Thing& thing = level.Things[static_cast<std::size_t>(i)];
        if (thing.Type == 1)
        {
            const int sector = FindObject(level, MapViewport{}, false, map::ModeSectors, thing.X,
                                          thing.Y, thing.X, thing.Y);
            ASSERT_GE(sector, 0);
            const std::string number = std::to_string(sector);
            EXPECT_EQ(ThingInfo(level, i, options).Lines[3],
                      "Sector" + std::string(5 - number.size(), ' ') + number);
        }
    }
}

} // namespace
} // namespace kelvar::view
