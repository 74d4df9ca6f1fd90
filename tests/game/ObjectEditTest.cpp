// Tests of the object editors' rules on sets of objects: a change written only where it
// differs, fields left untouched staying as each object has them, one undo step for a dialog
// and none when nothing changed, the side and Sector flag operations, and the bulk flag keys.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/ObjectEdit.h"

#include "game/GameState.h"
#include "map/MapState.h"
#include "map/ObjectStore.h"
#include "map/Undo.h"
#include "tests/game/GameFixture.h"
#include "tests/testkit/LevelBuilder.h"

#include <algorithm>
#include <numeric>

namespace kelvar::game
{
namespace
{

using map::TextureName;

/// `rooms` square rooms in a row: room r has Sector r, LineDefs and SideDefs 4r to 4r + 3.
map::LevelData Rooms(int rooms)
{
    testkit::LevelBuilder builder;
    for (int room = 0; room < rooms; ++room)
    {
        builder.Room(room * 256, 0, 128, 128);
    }
    return builder.Build();
}

/// Every object of the array as it was, number by number.
template <class Record>
void ExpectSameRecords(const map::ObjectArray<Record>& actual,
                       const map::ObjectArray<Record>& expected, const char* what)
{
    ASSERT_EQ(actual.Count(), expected.Count()) << what;
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        EXPECT_EQ(actual[i], expected[i]) << what << " " << i;
    }
}

void ExpectSameLevel(const map::LevelData& actual, const map::LevelData& expected)
{
    ExpectSameRecords(actual.Things, expected.Things, "Thing");
    ExpectSameRecords(actual.LineDefs, expected.LineDefs, "LineDef");
    ExpectSameRecords(actual.SideDefs, expected.SideDefs, "SideDef");
    ExpectSameRecords(actual.Vertexes, expected.Vertexes, "Vertex");
    ExpectSameRecords(actual.Sectors, expected.Sectors, "Sector");
    EXPECT_EQ(actual.ChangeCount, expected.ChangeCount);
    EXPECT_EQ(actual.GeometryChangeCount, expected.GeometryChangeCount);
}

/// All objects from 0 to count - 1, the head `head` first.
std::vector<std::int32_t> AllWithHead(std::int32_t count, std::int32_t head)
{
    std::vector<std::int32_t> objects(static_cast<std::size_t>(count));
    std::iota(objects.begin(), objects.end(), 0);
    std::rotate(objects.begin(), objects.begin() + head, objects.end());
    return objects;
}

class ObjectEditTest : public GameFixture
{
protected:
    void SetUp() override
    {
        GameFixture::SetUp();
        map::ResetMap();
        SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    }

    void TearDown() override
    {
        map::ResetMap();
        GameFixture::TearDown();
    }

    /// An editor whose undo step is counted in Steps.
    ObjectEditor Open(map::LevelData& level, int kind, std::vector<std::int32_t> objects)
    {
        return ObjectEditor(level, kind, std::move(objects), [this] { ++Steps; });
    }

    int Steps = 0;
};

TEST_F(ObjectEditTest, OpeningKeepsTheOrderDropsRepeatsAndChangesNothing)
{
    map::LevelData level = Rooms(2);
    const map::LevelData before = level;
    const ObjectEditor editor = Open(level, map::KindLineDef, {5, 1, 5, -1, 8, 0});
    EXPECT_EQ(editor.Objects(), (std::vector<std::int32_t>{5, 1, 0}));
    EXPECT_EQ(editor.Head(), 5);
    EXPECT_EQ(editor.Title(), "Editing 3 LineDefs");
    EXPECT_EQ(level, before);
    EXPECT_EQ(Steps, 0);

    EXPECT_EQ(Open(level, map::KindLineDef, {2}).Title(), "Editing 1 LineDef");
    EXPECT_EQ(Open(level, map::KindSector, {1}).Title(), "Editing Sector");
    EXPECT_EQ(Open(level, map::KindSector, {1, 0}).Title(), "Editing 2 Sectors");
    EXPECT_TRUE(Open(level, map::KindThing, {0}).Empty()) << "the level has no Things";
}

TEST_F(ObjectEditTest, OneAndTwoLineDefsAreWrittenOnlyWhereTheValueDiffers)
{
    map::LevelData level = Rooms(1);
    level.LineDefs[0].Flags |= LineSecret;
    level.LineDefs[1].Type = 1;

    ObjectEditor one = Open(level, map::KindLineDef, {0});
    EXPECT_EQ(one.SetLineFlag(LineSecret, true), 0);
    EXPECT_EQ(one.SetLineType(0), 0);
    EXPECT_EQ(Steps, 0) << "nothing changed: no undo step";
    EXPECT_EQ(level.ChangeCount, 0);
    EXPECT_EQ(one.SetLineFlag(LineSecret, false), 1);
    EXPECT_EQ(level.LineDefs[0].Flags & LineSecret, 0);
    EXPECT_EQ(Steps, 1);

    ObjectEditor two = Open(level, map::KindLineDef, {1, 2});
    EXPECT_EQ(two.SetLineType(1), 1) << "LineDef 1 has it already";
    EXPECT_EQ(level.LineDefs[2].Type, 1u);
    EXPECT_EQ(two.Changes(), 1);
    EXPECT_EQ(Steps, 2) << "one step for each editor that changed something";
    EXPECT_EQ(level.ChangeCount, 2);
    EXPECT_EQ(level.GeometryChangeCount, 2);
}

TEST_F(ObjectEditTest, ManyLineDefsKeepTheirMixedFieldsAndCountOnlyRealChanges)
{
    map::LevelData level = Rooms(13); // 52 LineDefs
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        map::LineDef& line = level.LineDefs[i];
        line.Flags = static_cast<std::uint16_t>(line.Flags | (i % 3 == 0 ? LineSecret : 0) |
                                                (i % 2 == 0 ? LineBlockSound : 0));
        line.Type = i % 4 == 0 ? 0 : 1;
        line.Tag = static_cast<std::uint16_t>(i % 5);
    }
    const map::LevelData before = level;
    const auto count = [&before](auto test) {
        return static_cast<int>(
            std::count_if(before.LineDefs.begin(), before.LineDefs.end(), test));
    };
    ObjectEditor editor = Open(level, map::KindLineDef, AllWithHead(52, 17));

    const int lacking =
        count([](const map::LineDef& line) { return (line.Flags & LineSecret) == 0; });
    EXPECT_EQ(editor.SetLineFlag(LineSecret, true), lacking);
    EXPECT_EQ(editor.SetLineFlag(LineSecret, true), 0) << "the second time nothing differs";
    const int untyped = count([](const map::LineDef& line) { return line.Type != 1; });
    EXPECT_EQ(editor.SetLineType(1), untyped);
    const int otherTags = count([](const map::LineDef& line) { return line.Tag != 3; });
    EXPECT_EQ(editor.SetLineTag(3), otherTags);

    EXPECT_EQ(Steps, 1);
    EXPECT_EQ(editor.Changes(), lacking + untyped + otherTags);
    EXPECT_EQ(level.ChangeCount, editor.Changes());
    for (std::size_t i = 0; i < level.LineDefs.size(); ++i)
    {
        const map::LineDef& line = std::as_const(level).LineDefs[i];
        map::LineDef expected = before.LineDefs[i];
        expected.Flags |= LineSecret;
        expected.Type = 1;
        expected.Tag = 3;
        EXPECT_EQ(line, expected) << i << ": the block sound bit stays as it was";
    }
    ExpectSameRecords(level.SideDefs, before.SideDefs, "SideDef");
}

TEST_F(ObjectEditTest, HexenArgumentsAndActivationChangeOnlyTheirOwnBytesAndBits)
{
    map::LevelData level = Rooms(1);
    level.LineDefs[0].Args = {1, 2, 3, 4};
    level.LineDefs[1].Args = {5, 6, 7, 8};
    level.LineDefs[0].Flags |= 4 << LineActivationShift;
    level.LineDefs[1].Tag = 9;
    const map::LevelData before = level;
    ObjectEditor editor = Open(level, map::KindLineDef, {1, 0});

    EXPECT_EQ(editor.SetLineArg(2, 7), 2);
    EXPECT_EQ(editor.SetLineArg(2, 7), 0);
    EXPECT_EQ(editor.SetLineArg(0, 9), 1) << "the first argument is the tag";
    EXPECT_EQ(editor.SetLineArg(5, 1), 0) << "there are five arguments";
    EXPECT_EQ(level.LineDefs[0].Args, (std::array<std::uint8_t, 4>{1, 7, 3, 4}));
    EXPECT_EQ(level.LineDefs[1].Args, (std::array<std::uint8_t, 4>{5, 7, 7, 8}));
    EXPECT_EQ(level.LineDefs[0].Tag, 9);

    EXPECT_EQ(editor.SetLineActivation(3), 2);
    for (const std::size_t i : {0u, 1u})
    {
        EXPECT_EQ(level.LineDefs[i].Flags & LineActivationMask, 3 << LineActivationShift);
        EXPECT_EQ(level.LineDefs[i].Flags & ~LineActivationMask,
                  before.LineDefs[i].Flags & ~LineActivationMask);
    }

    // A menu type brings its arguments in the Hexen format only.
    EXPECT_EQ(editor.SetLineTypeWithArgs(12, {4, 16, 150, 0, 0}, false), 2);
    EXPECT_EQ(level.LineDefs[0].Args, (std::array<std::uint8_t, 4>{1, 7, 3, 4}));
    EXPECT_EQ(editor.SetLineTypeWithArgs(12, {4, 16, 150, 0, 0}, true), 2);
    for (const std::size_t i : {0u, 1u})
    {
        EXPECT_EQ(level.LineDefs[i].Type, 12u);
        EXPECT_EQ(level.LineDefs[i].Tag, 4);
        EXPECT_EQ(level.LineDefs[i].Args, (std::array<std::uint8_t, 4>{16, 150, 0, 0}));
    }
    EXPECT_EQ(Steps, 1);
}

TEST_F(ObjectEditTest, SideChangesWriteEachSideDefOnceAndLeaveMissingSidesAlone)
{
    map::LevelData level = testkit::TwoRooms();
    level.LineDefs[1].SideDef1 = 0; // LineDefs 0 and 1 share SideDef 0
    level.SideDefs[0].XOffset = 8;
    level.SideDefs[6].UpperTexture = TextureName::From("BIGDOOR1");
    const map::LevelData before = level;
    // LineDef 4 is two-sided (SideDefs 6 and 7); 0, 1 and 5 have a front only (0, 0, 4).
    ObjectEditor editor = Open(level, map::KindLineDef, {4, 0, 1, 5});
    EXPECT_TRUE(editor.AnySide(2));
    EXPECT_EQ(editor.HeadSide(2), &std::as_const(level).SideDefs[7]);

    EXPECT_EQ(editor.SetSideTexture(1, SidePart::Upper, TextureName::From("BIGDOOR1")), 2)
        << "SideDefs 0 and 4; SideDef 6 has it already";
    EXPECT_EQ(editor.SetSideTexture(2, SidePart::Normal, TextureName::From("MIDGRATE")), 1);
    EXPECT_EQ(editor.SetSideXOffset(1, 8), 2) << "SideDef 0 has it already";
    EXPECT_EQ(editor.SetSideSector(1, 2), 0) << "there is no Sector 2";
    EXPECT_EQ(editor.Changes(), 5);
    EXPECT_EQ(level.ChangeCount, 5);
    EXPECT_EQ(Steps, 1);

    for (const std::size_t side : {0u, 4u, 6u})
    {
        EXPECT_EQ(level.SideDefs[side].UpperTexture, TextureName::From("BIGDOOR1")) << side;
        EXPECT_EQ(level.SideDefs[side].XOffset, 8) << side;
        EXPECT_EQ(level.SideDefs[side].NormalTexture, before.SideDefs[side].NormalTexture);
    }
    EXPECT_EQ(level.SideDefs[7].NormalTexture, TextureName::From("MIDGRATE"));
    EXPECT_EQ(level.SideDefs[7].UpperTexture, map::NoTexture);
    for (const std::size_t side : {1u, 2u, 3u, 5u})
    {
        EXPECT_EQ(level.SideDefs[side], before.SideDefs[side]) << side << " isn't in the set";
    }
    ExpectSameRecords(level.LineDefs, before.LineDefs, "LineDef");

    // Side 2 of LineDefs without one: nothing to write, no step.
    ObjectEditor fronts = Open(level, map::KindLineDef, {0, 1});
    EXPECT_FALSE(fronts.AnySide(2));
    EXPECT_EQ(fronts.SetSideTexture(2, SidePart::Upper, TextureName::From("X")), 0);
    EXPECT_EQ(fronts.CloneSideDef(2), 0);
    EXPECT_EQ(Steps, 1);

    // The head's front copied to the others' fronts, its Sector too.
    EXPECT_EQ(editor.CloneSideDef(1), 1) << "SideDef 4 is like SideDef 6 by now";
    EXPECT_EQ(level.SideDefs[0], level.SideDefs[6]);
    EXPECT_EQ(level.SideDefs[4], level.SideDefs[6]);
    EXPECT_EQ(level.SideDefs[0].Sector, 1u);
}

TEST_F(ObjectEditTest, SectorFieldsTexturesAndCloneWithClampingAtTheEnds)
{
    testkit::LevelBuilder builder;
    for (int i = 0; i < 50; ++i)
    {
        builder.Sector(i % 5 * 8, 128 + i % 3 * 8);
        builder.Level().Sectors[static_cast<std::size_t>(i)].Light =
            static_cast<std::int16_t>(i % 2 == 0 ? 160 : 200);
    }
    map::LevelData level = builder.Build();
    level.Sectors[3].FloorHeight = 32760;
    level.Sectors[4].FloorHeight = 32767;
    level.Sectors[5].CeilingHeight = -32768;
    level.Sectors[6].FloorTexture = TextureName::From("NUKAGE1");
    const map::LevelData before = level;
    ObjectEditor editor = Open(level, map::KindSector, AllWithHead(50, 6));

    EXPECT_EQ(editor.SetSectorField(SectorField::Light, 200), 25);
    EXPECT_EQ(editor.AddToSectorField(SectorField::Floor, 16), 49) << "Sector 4 is at the top";
    EXPECT_EQ(level.Sectors[3].FloorHeight, 32767);
    EXPECT_EQ(level.Sectors[4].FloorHeight, 32767);
    EXPECT_EQ(editor.AddToSectorField(SectorField::Ceiling, -16), 49) << "Sector 5 at the bottom";
    EXPECT_EQ(level.Sectors[5].CeilingHeight, -32768);
    EXPECT_EQ(editor.SetSectorTexture(true, TextureName::From("NUKAGE1")), 49);
    EXPECT_EQ(editor.SetSectorField(SectorField::Type, 70000), 50) << "held to 65535";
    EXPECT_EQ(level.Sectors[0].Type, 65535);
    EXPECT_EQ(Steps, 1);
    EXPECT_EQ(level.ChangeCount, editor.Changes());

    for (std::size_t i = 0; i < level.Sectors.size(); ++i)
    {
        const map::Sector& sector = std::as_const(level).Sectors[i];
        const map::Sector& old = before.Sectors[i];
        EXPECT_EQ(sector.Tag, old.Tag);
        EXPECT_EQ(sector.CeilingTexture, old.CeilingTexture) << i;
        if (i != 3 && i != 4)
        {
            EXPECT_EQ(sector.FloorHeight, old.FloorHeight + 16) << i << ": heights stay mixed";
        }
    }

    // Clone writes the head's values where a Sector differs from them: not the head, nor
    // Sectors 21 and 36, whose mixed heights happen to match it.
    const int changes = editor.Changes();
    EXPECT_EQ(editor.CloneSector(), 47);
    EXPECT_EQ(editor.Changes(), changes + 47);
    for (const map::Sector& sector : std::as_const(level).Sectors)
    {
        EXPECT_EQ(sector, std::as_const(level).Sectors[6]);
    }
}

TEST_F(ObjectEditTest, ThingFieldsFlagsAndArgumentsAndNoGeometryChange)
{
    testkit::LevelBuilder builder;
    for (int i = 0; i < 50; ++i)
    {
        builder.Thing(i * 32, 0, static_cast<std::uint16_t>(i % 2 == 0 ? 3004 : 9),
                      static_cast<std::uint16_t>(i % 4 * 90),
                      static_cast<std::uint16_t>(1 + i % 7 + (i % 5 == 0 ? 8 : 0)));
        builder.Level().Things[static_cast<std::size_t>(i)].Args = {
            static_cast<std::uint8_t>(i), 0, 2, 0, static_cast<std::uint8_t>(i % 3)};
    }
    map::LevelData level = builder.Build();
    const map::LevelData before = level;
    ObjectEditor editor = Open(level, map::KindThing, AllWithHead(50, 20));

    EXPECT_EQ(editor.SetThingField(ThingField::Angle, -90), 38) << "-90 is 270";
    EXPECT_EQ(level.Things[0].Angle, 270);
    EXPECT_EQ(editor.SetThingField(ThingField::X, 40000), 50);
    EXPECT_EQ(level.Things[7].X, 32767);
    const int notDeaf = static_cast<int>(std::count_if(before.Things.begin(), before.Things.end(),
                                                       [](const map::Thing& thing)
                                                       { return (thing.Flags & 8) == 0; }));
    EXPECT_EQ(editor.SetThingFlag(8, true), notDeaf);
    EXPECT_EQ(editor.SetThingArg(2, 2), 0);
    EXPECT_EQ(editor.SetThingArg(1, 5), 50);
    EXPECT_EQ(Steps, 1);
    EXPECT_EQ(level.ChangeCount, editor.Changes());
    EXPECT_EQ(level.GeometryChangeCount, 0) << "Things need no node rebuild";

    for (std::size_t i = 0; i < level.Things.size(); ++i)
    {
        const map::Thing& thing = std::as_const(level).Things[i];
        const map::Thing& old = before.Things[i];
        EXPECT_EQ(thing.Type, old.Type);
        EXPECT_EQ(thing.Y, old.Y);
        EXPECT_EQ(thing.Flags, old.Flags | 8) << i << ": the skills stay mixed";
        EXPECT_EQ(thing.Args, (std::array<std::uint8_t, 5>{old.Args[0], 5, 2, 0, old.Args[4]}));
    }
}

TEST_F(ObjectEditTest, OneUndoStepTakesBackAllTheDialogDid)
{
    map::Map().Level = testkit::TwoRooms();
    map::Map().Level.LineDefs[0].Type = 1;
    const map::LevelData before = map::Map().Level;
    const auto openOnMap = [](int kind, std::vector<std::int32_t> objects)
    {
        return ObjectEditor(map::Map().Level, kind, std::move(objects),
                            [] { (void)map::SaveUndoStep(); });
    };

    ObjectEditor unchanged = openOnMap(map::KindLineDef, {0});
    EXPECT_EQ(unchanged.SetLineType(1), 0);
    EXPECT_EQ(map::Map().Undo.Position, -1) << "nothing changed: no step";

    ObjectEditor editor = openOnMap(map::KindLineDef, {4, 0, 1, 5});
    EXPECT_GT(editor.SetLineType(97), 0);
    EXPECT_GT(editor.SetLineFlag(LineSecret, true), 0);
    EXPECT_GT(editor.SetSideTexture(1, SidePart::Lower, TextureName::From("STEP1")), 0);
    EXPECT_GT(editor.SetSideTexture(2, SidePart::Upper, TextureName::From("STEP2")), 0);
    EXPECT_GT(editor.AddSide2(), 0);
    EXPECT_EQ(map::Map().Undo.Position, 0) << "one step for all of it";
    const map::LevelData after = map::Map().Level;

    ASSERT_EQ(map::UndoStep(), 1);
    ExpectSameLevel(map::Map().Level, before);
    EXPECT_EQ(map::UndoStep(), 0) << "no older step";
    ASSERT_EQ(map::RedoStep(), 1);
    ExpectSameLevel(map::Map().Level, after);
}

TEST_F(ObjectEditTest, DeletingSide2RemovesTheOrphanedSideDefsAndRenumbers)
{
    map::LevelData level = testkit::TwoRooms();
    // LineDef 1 gets a back SideDef in the middle of the array: the front of LineDef 3 moves
    // to the end, SideDef 3 becomes the back of LineDef 1. LineDef 5 gets a back at the end,
    // 9; LineDef 6 shares LineDef 4's back, 7.
    const map::SideDef front3 = std::as_const(level).SideDefs[3];
    level.SideDefs.push_back(front3);
    level.LineDefs[3].SideDef1 = 8;
    level.SideDefs[3] = {4, 4, TextureName::From("BACK"), map::NoTexture, map::NoTexture, 1};
    level.LineDefs[1].SideDef2 = 3;
    level.SideDefs.push_back({0, 0, map::NoTexture, map::NoTexture, map::NoTexture, 0});
    level.LineDefs[5].SideDef2 = 9;
    level.LineDefs[6].SideDef2 = 7;
    for (const std::size_t line : {1u, 5u, 6u})
    {
        map::SetSideFlags(level.LineDefs[line]);
    }
    map::Map().Level = level;
    const map::LevelData before = level;
    ObjectEditor editor(map::Map().Level, map::KindLineDef, {4, 1, 0, 5},
                        [this]
                        {
                            ++Steps;
                            (void)map::SaveUndoStep();
                        });

    EXPECT_EQ(editor.DeleteSide(2), 3) << "LineDef 0 has no side 2";
    const map::LevelData& after = map::Map().Level;
    EXPECT_EQ(Steps, 1);
    EXPECT_GT(after.ChangeCount, 0);
    ASSERT_EQ(after.SideDefs.Count(), before.SideDefs.Count() - 2) << "3 and 9 go, 7 stays";
    for (const std::size_t line : {1u, 4u, 5u})
    {
        EXPECT_EQ(after.LineDefs[line].SideDef2, map::NoSideDef);
        EXPECT_EQ(after.LineDefs[line].Flags & (LineImpassable | LineTwoSided), LineImpassable);
    }
    for (std::size_t line = 0; line < after.LineDefs.size(); ++line)
    {
        for (const int side : {1, 2})
        {
            const std::uint32_t now = after.LineDefs[line].Side(side);
            const std::uint32_t then = before.LineDefs[line].Side(side);
            if (now != map::NoSideDef)
            {
                ASSERT_LT(now, after.SideDefs.size());
                EXPECT_EQ(after.SideDefs[now], before.SideDefs[then]) << line << " side " << side;
            }
        }
    }
    EXPECT_EQ(after.LineDefs[6].SideDef2, 6u) << "the shared SideDef, renumbered";
    EXPECT_EQ(editor.DeleteSide(2), 0);

    ASSERT_EQ(map::UndoStep(), 1);
    ExpectSameLevel(map::Map().Level, before);
}

TEST_F(ObjectEditTest, AddSide2FacesTheFrontSectorWithTheFrontsTextures)
{
    map::LevelData level = testkit::TwoRooms();
    level.SideDefs[4].UpperTexture = TextureName::From("UP");
    level.SideDefs[4].XOffset = 12;
    const map::LevelData before = level;
    ObjectEditor editor = Open(level, map::KindLineDef, {4, 0, 5});

    EXPECT_EQ(editor.AddSide2(), 2) << "LineDef 4 has one";
    EXPECT_EQ(Steps, 1);
    ASSERT_EQ(level.SideDefs.Count(), 10);
    EXPECT_EQ(level.LineDefs[4], before.LineDefs[4]);
    for (const std::size_t line : {0u, 5u})
    {
        const map::LineDef& written = level.LineDefs[line];
        ASSERT_NE(written.SideDef2, map::NoSideDef);
        map::SideDef expected = before.SideDefs[written.SideDef1];
        expected.NormalTexture = map::NoTexture;
        EXPECT_EQ(level.SideDefs[written.SideDef2], expected) << line;
        EXPECT_EQ(written.Flags & (LineImpassable | LineTwoSided), LineTwoSided);
        EXPECT_EQ(level.SideDefs[written.SideDef1], before.SideDefs[written.SideDef1]);
    }
    EXPECT_NE(level.LineDefs[0].SideDef2, level.LineDefs[5].SideDef2);
    EXPECT_EQ(editor.AddSide2(), 0);
}

TEST_F(ObjectEditTest, SectorFlagsAndTypesFollowTheBoomAndZdoomSwitches)
{
    testkit::LevelBuilder builder;
    builder.Sector().Sector().Sector().Sector();
    map::LevelData level = builder.Build();
    const std::array<std::uint16_t, 4> types{9, 1, 1 | 256, 1 | 0x20};
    for (std::size_t i = 0; i < types.size(); ++i)
    {
        level.Sectors[i].Type = types[i];
    }
    const map::LevelData before = level;

    // Boom: the secret type 9 takes no flags; ice (256) replaces the damage bits of type 1.
    EXPECT_EQ(Open(level, map::KindSector, {0}).SetSectorFlags(256), 0);
    EXPECT_EQ(Steps, 0);
    EXPECT_EQ(level, before);
    EXPECT_EQ(Open(level, map::KindSector, {0, 1, 2, 3}).SetSectorFlags(256), 2);
    EXPECT_EQ(Steps, 1);
    EXPECT_EQ(level.Sectors[0].Type, 9);
    EXPECT_EQ(level.Sectors[1].Type, 1 | 256);
    EXPECT_EQ(level.Sectors[3].Type, 1 | 256);

    // A plain type keeps the flags each Sector has.
    EXPECT_EQ(Open(level, map::KindSector, {0, 1}).SetSectorType(8, 0x3E0), 2);
    EXPECT_EQ(level.Sectors[0].Type, 8);
    EXPECT_EQ(level.Sectors[1].Type, 8 | 256);

    // ZDoom: any type takes the flags (ice is 0x800 there); without a switch none does.
    SelectTablesFor(map::GameHexen, map::GameHexen, false, true);
    level.Sectors[0].Type = 9;
    EXPECT_EQ(Open(level, map::KindSector, {0}).SetSectorFlags(0x800), 1);
    EXPECT_EQ(level.Sectors[0].Type, 9 | 0x800);
    SelectTablesFor(map::GameDoom2, map::GameDoom2, false, false);
    EXPECT_EQ(Open(level, map::KindSector, {0, 1, 2, 3}).SetSectorFlags(0), 0);
}

TEST_F(ObjectEditTest, BulkFlagKeysCountTheRunOnce)
{
    map::LevelData level = testkit::TwoRooms();
    level.LineDefs[2].Flags |= LineSecret;
    const std::vector<std::int32_t> lines{0, 1, 2, 3, 99};

    EXPECT_EQ(ChangeFlagBits(level, map::KindLineDef, lines, LineSecret, LineImpassable), 4);
    EXPECT_EQ(level.ChangeCount, 1);
    EXPECT_EQ(level.GeometryChangeCount, 1);
    EXPECT_EQ(level.LineDefs[2].Flags, LineSecret) << "its impassable bit went";
    EXPECT_EQ(level.LineDefs[4].Flags & LineSecret, 0) << "not in the list";
    EXPECT_EQ(ChangeFlagBits(level, map::KindLineDef, lines, LineSecret, LineImpassable), 0);
    EXPECT_EQ(level.ChangeCount, 1) << "nothing changed: no count";

    EXPECT_EQ(ChangeFlagBits(level, map::KindThing, {0, 1, 2}, 8, 0), 3);
    EXPECT_EQ(level.ChangeCount, 2);
    EXPECT_EQ(level.GeometryChangeCount, 1) << "Things need no node rebuild";
    EXPECT_EQ(ChangeFlagBits(level, map::KindSector, {0}, 8, 0), 0) << "Sectors have no flags";
}

TEST(ArgumentLabels, AreTheWordsAfterThePlusBetweenDashes)
{
    using Labels = std::vector<std::string>;
    EXPECT_EQ(ArgumentLabels("Door Raise+Tag-Speed-Delay"), (Labels{"Tag", "Speed", "Delay"}));
    EXPECT_EQ(ArgumentLabels("Door Open/Close +Tag-Speed-Delay"),
              (Labels{"Tag", "Speed", "Delay"}));
    EXPECT_EQ(ArgumentLabels("PolyObj StartSpot +PolyId"), (Labels{"PolyId"}));
    EXPECT_EQ(ArgumentLabels("Thing+ Tid - Type "), (Labels{"Tid", "Type"})) << "blanks go";
    EXPECT_EQ(ArgumentLabels("A+1-2-3-4-5-6"), (Labels{"1", "2", "3", "4", "5"}));
    EXPECT_TRUE(ArgumentLabels("Teleport Landing").empty());
    EXPECT_TRUE(ArgumentLabels("Nothing+").empty());
}

TEST(ParseArgument, TakesWholeNumbersFrom0To255)
{
    EXPECT_EQ(ParseArgument(" 12 "), std::optional<std::uint8_t>(12));
    EXPECT_EQ(ParseArgument("0"), std::optional<std::uint8_t>(0));
    EXPECT_EQ(ParseArgument("255"), std::optional<std::uint8_t>(255));
    for (const char* text : {"256", "-1", "x", "", "   ", "1 2", "12x", "99999999999"})
    {
        EXPECT_EQ(ParseArgument(text), std::nullopt) << '"' << text << '"';
    }
}

} // namespace
} // namespace kelvar::game
