// Tests of the object store: growth, insertion, deletion with renumbering, bounds, copies.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/ObjectStore.h"
#include "map/MapState.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"

#include <gtest/gtest.h>

namespace kelvar::map
{
namespace
{

using testkit::LevelBuilder;

class ObjectStore : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
    void TearDown() override { ResetMap(); }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

// Two rooms side by side sharing the wall x = 128 as one two-sided LineDef (number 4).
TEST_F(ObjectStore, GrowthFollowsTheStepsOfEachKind)
{
    LevelData level;
    LevelInit(level);
    EXPECT_EQ(level.LineDefs.Capacity, 800);
    EXPECT_EQ(level.Things.Capacity, 400);
    for (int i = 0; i < 800; ++i)
    {
        ResizeObject(level, KindLineDef, 1);
    }
    EXPECT_EQ(level.LineDefs.Capacity, 800);
    ResizeObject(level, KindLineDef, 1);
    EXPECT_EQ(level.LineDefs.Capacity, 4800) << "the 801st LineDef grows the array by 4,000";
    ResizeObject(level, KindSector, -1);
    EXPECT_EQ(level.Sectors.Count(), 0) << "a shrink below zero stays at zero";
    ResizeObject(level, KindLineDef, -1);
    EXPECT_EQ(level.LineDefs.Count(), 800);
    EXPECT_EQ(level.LineDefs.Capacity, 4800) << "a shrink gives no memory back";
    EXPECT_FALSE(Map().StoreBusy);
}

TEST_F(ObjectStore, InsertionFillsDefaultsOrCopiesATemplate)
{
    LevelData level = testkit::TwoRoomsBuilder().Build();
    Map().Textures.Normal = TextureName::From("BROWN1");
    const int thing = InsertObject(level, KindThing, -1, 10, -20);
    EXPECT_EQ(level.Things[static_cast<std::size_t>(thing)].Type, 3004);
    EXPECT_EQ(level.Things[static_cast<std::size_t>(thing)].Flags, 7);
    EXPECT_EQ(level.ChangeCount, 1);
    EXPECT_EQ(level.GeometryChangeCount, 0) << "a Thing needs no new nodes";
    level.Things[static_cast<std::size_t>(thing)].Angle = 90;
    const int copy = InsertObject(level, KindThing, thing, 300, 400);
    EXPECT_EQ(level.Things[static_cast<std::size_t>(copy)].X, 300) << "the given position stays";
    EXPECT_EQ(level.Things[static_cast<std::size_t>(copy)].Angle, 90);

    const int line = InsertObject(level, KindLineDef, 4, 0, 0);
    EXPECT_EQ(level.LineDefs[static_cast<std::size_t>(line)].StartVertex, 3u);
    EXPECT_EQ(level.LineDefs[static_cast<std::size_t>(line)].SideDef1, NoSideDef);
    const int side = InsertObject(level, KindSideDef, -1, 0, 0);
    EXPECT_EQ(level.SideDefs[static_cast<std::size_t>(side)].Sector, 1u) << "the newest Sector";
    EXPECT_EQ(level.SideDefs[static_cast<std::size_t>(side)].NormalTexture,
              TextureName::From("BROWN1"));
    const int vertex = InsertObject(level, KindVertex, -1, 70000, -5);
    EXPECT_EQ(level.Vertexes[static_cast<std::size_t>(vertex)].X, 4464) << "cut to 16 bits";
    EXPECT_EQ(level.MaxX, 4464);
    EXPECT_EQ(level.GeometryChangeCount, 3);

    Map().HexenThings = true;
    EXPECT_EQ(
        level.Things[static_cast<std::size_t>(InsertObject(level, KindThing, -1, 0, 0))].Flags,
        2023);
    EXPECT_EQ(InsertObject(level, KindNode, -1, 0, 0), -1);
    EXPECT_EQ(Ui.Beeps, 1);
}

TEST_F(ObjectStore, DeletingAWallKeepsSharedSideDefsAndDropsLonelyVertexes)
{
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    // The west room's top wall shares its SideDef with the shared wall's front.
    builder.Level().LineDefs[1].SideDef1 = 6;
    LevelData level = builder.Build();
    DeleteObject(level, KindLineDef, 4);
    // The shared wall was the only two-sided user of SideDef 6 and the sole user of 7: both go,
    // and line 1, which shared 6 with it, is left without a front side.
    EXPECT_EQ(level.SideDefs.Count(), 6);
    EXPECT_EQ(level.LineDefs[1].SideDef1, NoSideDef);
    EXPECT_EQ(level.LineDefs.Count(), 6);
    EXPECT_EQ(level.Vertexes.Count(), 6) << "its Vertexes still carry other lines";
    EXPECT_EQ(level.GeometryChangeCount, 1);

    // The last line of Vertex 5's corner takes the Vertex along, and Vertexes above move down.
    LevelData corner = LevelBuilder().Room(0, 0, 64, 64).Build();
    DeleteObject(corner, KindLineDef, 3); // (64,0) -> (0,0)
    DeleteObject(corner, KindLineDef, 2); // (64,64) -> (64,0)
    EXPECT_EQ(corner.Vertexes.Count(), 3);
    EXPECT_EQ(corner.LineDefs[1].EndVertex, 2u);
    EXPECT_EQ(corner.Vertexes[2], (Vertex{64, 64}));
}

TEST_F(ObjectStore, DeletingASectorTurnsOrRemovesItsLines)
{
    LevelData level = testkit::TwoRoomsBuilder().Build();
    DeleteObject(level, KindSector, 1); // the east room
    // The shared wall had the east room in front: it turns round, keeps the west side only.
    ASSERT_EQ(level.Sectors.Count(), 1);
    const LineDef& wall = level.LineDefs[3]; // after the three west walls
    EXPECT_EQ(level.LineDefs.Count(), 4);
    EXPECT_EQ(level.Vertexes[wall.StartVertex], (Vertex{128, 128}));
    EXPECT_EQ(level.Vertexes[wall.EndVertex], (Vertex{128, 0}));
    EXPECT_EQ(wall.SideDef2, NoSideDef);
    EXPECT_EQ(wall.Flags & (FlagImpassable | FlagTwoSided), FlagImpassable);
    EXPECT_EQ(level.SideDefs[wall.SideDef1].Sector, 0u);
    EXPECT_EQ(level.Vertexes.Count(), 4) << "the east corners went with their lines";
    for (const SideDef& side : level.SideDefs)
    {
        EXPECT_EQ(side.Sector, 0u);
    }
}

TEST_F(ObjectStore, ListsDeleteExactlyTheirObjectsInAnyOrder)
{
    LevelData level;
    LevelInit(level);
    for (int i = 0; i < 10; ++i)
    {
        InsertObject(level, KindThing, -1, i, 0);
    }
    ObjectList list;
    for (int object : {7, 2, 9, 0, 5})
    {
        ObjectListPush(list, object);
    }
    DeleteObjectList(level, KindThing, list);
    EXPECT_TRUE(list.Empty());
    EXPECT_EQ(Map().SelectedCount, 0);
    std::vector<int> left;
    for (const Thing& thing : level.Things)
    {
        left.push_back(thing.X);
    }
    EXPECT_EQ(left, (std::vector<int>{1, 3, 4, 6, 8}));

    DeleteObject(level, KindThing, 4); // the last one: nothing moves
    EXPECT_EQ(level.Things.Count(), 4);
    DeleteObject(level, KindThing, -1);
    EXPECT_EQ(level.Things.Count(), 4);
}

TEST_F(ObjectStore, VertexDeletionTakesItsLinesAlong)
{
    LevelData level = LevelBuilder().Room(0, 0, 64, 64).Build();
    DeleteObject(level, KindVertex, 0);
    EXPECT_EQ(level.LineDefs.Count(), 2);
    EXPECT_EQ(level.Vertexes.Count(), 3);
    ObjectList lone;
    InsertObject(level, KindVertex, -1, 500, 500);
    Map().PurgeVertices = false;
    DeleteObject(level, KindVertex, 3); // a Vertex without lines is purged all the same
    EXPECT_EQ(level.Vertexes.Count(), 3);
}

TEST_F(ObjectStore, BoundsCopiesAndFreeing)
{
    LevelData level = testkit::TwoRoomsBuilder().Build();
    EXPECT_EQ(level.MaxX, 256);
    EXPECT_EQ(level.MinY, 0);
    LevelData empty;
    MeasureLevel(empty);
    EXPECT_EQ(empty.MaxX, 100);
    EXPECT_EQ(empty.MinX, -100);
    EXPECT_EQ(empty.MaxY, 116);
    EXPECT_EQ(empty.MinY, -116);
    EXPECT_EQ(VertexBounds(empty), VertexBox{});

    // Measured afresh: the level's own bounds still say 256 after the east wall moved in.
    LevelData moved = level;
    moved.Vertexes[0] = {-64, -32};
    moved.Vertexes[4].X = 200;
    moved.Vertexes[5].X = 200;
    EXPECT_EQ(VertexBounds(moved), (VertexBox{-64, 200, -32, 128}));
    EXPECT_EQ(moved.MaxX, 256);

    level.ChangeCount = 3;
    LevelData copy;
    LevelCopy(copy, level);
    EXPECT_EQ(copy, level);
    EXPECT_EQ(copy.LineDefs.Capacity, level.LineDefs.Capacity);
    EXPECT_EQ(copy.LineDefs.SharedBlocks(), copy.LineDefs.BlockCount()) << "a copy shares";
    LevelFree(copy);
    EXPECT_EQ(copy.LineDefs.Count(), 0);
    EXPECT_EQ(copy.LineDefs.Capacity, 0);
    EXPECT_EQ(copy.ChangeCount, 0);
}

TEST_F(ObjectStore, AWrongKindIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    LevelData level;
    EXPECT_EXIT(ResizeObject(level, KindNode, 1), ::testing::ExitedWithCode(4),
                "ResizeObject wrong type 7");
}

TEST(TextureName, IsComparedAsEightBytes)
{
    const TextureName full = TextureName::From("STARTAN3X");
    EXPECT_EQ(full.Text(), "STARTAN3");
    EXPECT_NE(TextureName::From("startan3"), TextureName::From("STARTAN3"));
    EXPECT_TRUE(NoTexture.IsNone());
    EXPECT_TRUE(TextureName::From("$FOG").IsSpecial());
    EXPECT_STREQ(KindName(KindSector), "Sector");
    EXPECT_STREQ(KindName(11), "<?unknown?>");
}

} // namespace
} // namespace kelvar::map
