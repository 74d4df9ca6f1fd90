// Tests of undo and redo: the exchange, the table's top and limit, the switch, and a random
// walk of edits, undos and redos against a model that keeps plain full copies.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/Undo.h"

#include "map/LineOps.h"
#include "map/MapState.h"
#include "map/MoverOps.h"
#include "map/ObjectStore.h"
#include "map/SectorOps.h"
#include "map/VertexOps.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/LevelReader.h"

#include <gtest/gtest.h>
#include <random>

namespace kelvar::map
{
namespace
{

class UndoTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ResetMap();
        Map().Level = testkit::TwoRooms();
    }
    void TearDown() override { ResetMap(); }

    // An edit as a command makes it: a step first, then the change.
    static void MoveVertex(int vertex, std::int16_t x)
    {
        ASSERT_EQ(SaveUndoStep(), 1);
        Map().Level.Vertexes[static_cast<std::size_t>(vertex)].X = x;
        NoteChange(Map().Level, KindVertex);
    }

    static std::int16_t X0() { return std::as_const(Map().Level).Vertexes[0].X; }

    platform::RecordingUi Ui;
    platform::ScopedUi Guard{Ui};
};

TEST_F(UndoTest, UndoAndRedoExchangeTheLevelWithItsCountersAndKeepTheStepsAbove)
{
    const LevelData loaded = Map().Level;
    MoveVertex(0, 10);
    MoveVertex(0, 20);
    MoveVertex(0, 30);
    EXPECT_EQ(Map().Level.ChangeCount, 3);

    ASSERT_EQ(UndoStep(), 1);
    ASSERT_EQ(UndoStep(), 1);
    EXPECT_EQ(X0(), 10);
    EXPECT_EQ(Map().Level.ChangeCount, 1) << "the counters travel with the level";
    ASSERT_EQ(UndoStep(), 1);
    EXPECT_EQ(Map().Level, loaded) << "back at the load, with no changes to save";
    EXPECT_EQ(UndoStep(), 0) << "nothing further back";

    ASSERT_EQ(RedoStep(), 1);
    EXPECT_EQ(X0(), 10);

    // A new edit after undos doesn't cut the steps above it: a redo brings back the step that
    // lay above the new one.
    MoveVertex(0, 99);
    EXPECT_EQ(Map().Undo.Top, 2);
    ASSERT_EQ(RedoStep(), 1);
    EXPECT_EQ(X0(), 30);
    EXPECT_EQ(RedoStep(), 0) << "the top is reached";
}

TEST_F(UndoTest, TheLimitGivesUpTheOldestStep)
{
    Map().Options.UndoLimit = 10;
    for (std::int16_t i = 1; i <= 11; ++i)
    {
        MoveVertex(0, i);
    }
    EXPECT_EQ(Map().Undo.Position, 9);
    int undone = 0;
    while (UndoStep() == 1)
    {
        ++undone;
    }
    EXPECT_EQ(undone, 10);
    EXPECT_EQ(X0(), 1) << "the level before the first edit is given up";
}

TEST_F(UndoTest, ForcedStepsRecordWithUndoOffAndRedoWaitsForItBackOn)
{
    Map().Options.UndoEnabled = false;
    EXPECT_EQ(SaveUndoStep(), 0);
    EXPECT_EQ(Map().Undo.Position, -1);
    ASSERT_EQ(SaveUndoStep(true), 1);
    Map().Level.Vertexes[0].X = 77;
    ASSERT_EQ(UndoStep(), 1);
    EXPECT_EQ(X0(), 0);
    EXPECT_EQ(RedoStep(), 0) << "redo is refused while undo is off";
    Map().Options.UndoEnabled = true;
    ASSERT_EQ(RedoStep(), 1);
    EXPECT_EQ(X0(), 77);
}

TEST_F(UndoTest, ADroppedStepIsGoneAndTheResetEmptiesTheTable)
{
    MoveVertex(0, 5);
    ASSERT_EQ(SaveUndoStep(), 1);
    EXPECT_EQ(DropLastUndoStep(), 1);
    EXPECT_EQ(Map().Undo.Position, 0);
    ASSERT_EQ(UndoStep(), 1);
    EXPECT_EQ(X0(), 0);
    EXPECT_EQ(DropLastUndoStep(), 0);
    EXPECT_EQ(Map().Undo.Position, -1);

    MoveVertex(0, 6);
    UndoReset();
    EXPECT_EQ(UndoStep(), 0);
    EXPECT_EQ(RedoStep(), 0);
    EXPECT_EQ(X0(), 6);
}

TEST_F(UndoTest, AStepSharesTheLevelUntilAnEditTouchesABlock)
{
    LevelData& level = Map().Level;
    for (int i = 0; i < 5000; ++i)
    {
        InsertObject(level, KindVertex, -1, i % 3000, i / 3000);
    }
    ASSERT_EQ(SaveUndoStep(), 1);
    const LevelData& step = *Map().Undo.Slots[0];
    EXPECT_EQ(step.Vertexes.SharedBlocks(), step.Vertexes.BlockCount());

    level.Vertexes[4500].Y = 42;
    EXPECT_EQ(step.Vertexes.SharedBlocks(), step.Vertexes.BlockCount() - 1) << "one block copied";
    EXPECT_EQ(step.Vertexes[4500].Y, 1) << "the step keeps what it held";
    // Reading through a const level copies nothing.
    const LevelData& reading = level;
    long sum = 0;
    for (const Vertex& vertex : reading.Vertexes)
    {
        sum += vertex.X;
    }
    EXPECT_GT(sum, 0);
    EXPECT_EQ(step.Vertexes.SharedBlocks(), step.Vertexes.BlockCount() - 1);
}

// The model's level: the five arrays as plain vectors and the header, nothing shared.
struct PlainLevel
{
    std::vector<Thing> Things;
    std::vector<LineDef> LineDefs;
    std::vector<SideDef> SideDefs;
    std::vector<Vertex> Vertexes;
    std::vector<Sector> Sectors;
    std::uint16_t ChangeCount = 0;
    std::uint16_t GeometryChangeCount = 0;

    static PlainLevel Of(const LevelData& level)
    {
        return {level.Things.ToVector(),   level.LineDefs.ToVector(), level.SideDefs.ToVector(),
                level.Vertexes.ToVector(), level.Sectors.ToVector(),  level.ChangeCount,
                level.GeometryChangeCount};
    }
    bool operator==(const PlainLevel&) const = default;
};

// Undo as the table keeps it, over full copies.
struct PlainUndo
{
    std::vector<std::optional<PlainLevel>> Slots = std::vector<std::optional<PlainLevel>>(1000);
    int Position = -1;
    int Top = -1;

    void Save(const PlainLevel& level, int limit)
    {
        if (++Position >= limit)
        {
            Slots.erase(Slots.begin());
            Slots.emplace_back();
            Position = limit - 1;
        }
        Top = std::max(Top, Position);
        Slots[static_cast<std::size_t>(Position)] = level;
    }
    bool Undo(PlainLevel& level)
    {
        if (Position < 0)
        {
            return false;
        }
        std::optional<PlainLevel>& step = Slots[static_cast<std::size_t>(Position--)];
        if (!step)
        {
            return false;
        }
        std::swap(level, *step);
        return true;
    }
    bool Redo(PlainLevel& level)
    {
        if (Position >= Top || !Slots[static_cast<std::size_t>(Position + 1)])
        {
            return false;
        }
        std::swap(level, *Slots[static_cast<std::size_t>(++Position)]);
        return true;
    }
};

// A list of `count` distinct random objects below `total`.
ObjectList RandomList(std::mt19937& random, std::int32_t total, int count)
{
    ObjectList list;
    while (list.Size() < count)
    {
        const auto object = static_cast<std::int32_t>(random() % static_cast<unsigned>(total));
        if (!ObjectListContains(list, object))
        {
            ObjectListPush(list, object);
        }
    }
    return list;
}

// One of the Misc menus' operations that asks nothing, on random objects.
void RandomOperation(LevelData& level, std::mt19937& random)
{
    switch (random() % 8)
    {
    case 0:
        SplitLineDefsAtMidpoint(level, RandomList(random, level.LineDefs.Count(), 2));
        break;
    case 1:
        FlipLineDefs(level, RandomList(random, level.LineDefs.Count(), 3),
                     static_cast<FlipWhat>(random() % 3));
        break;
    case 2:
        MergeSectors(level, RandomList(random, level.Sectors.Count(), 2));
        break;
    case 3:
        (void)Distribute(level, RandomList(random, level.Sectors.Count(), 4),
                         static_cast<Distributed>(random() % 3));
        break;
    case 4:
    {
        ObjectList list = RandomList(random, level.Sectors.Count(), 3);
        RenumberSelected(level, random() % 2 == 0 ? KindSector : KindLineDef, list);
        break;
    }
    case 5:
        MergeVertexes(level, RandomList(random, level.Vertexes.Count(), 2));
        break;
    case 6:
    {
        // A wall between two Sectors, so the join goes ahead.
        const auto line =
            static_cast<int>(random() % static_cast<unsigned>(level.LineDefs.Count()));
        const LineDef& wall = std::as_const(level).LineDefs[static_cast<std::size_t>(line)];
        const auto hasSector = [&](std::uint32_t side)
        {
            return side < level.SideDefs.size() &&
                   std::as_const(level).SideDefs[side].Sector < level.Sectors.size();
        };
        if (hasSector(wall.SideDef1) && hasSector(wall.SideDef2))
        {
            ObjectList one;
            ObjectListPush(one, line);
            EXPECT_TRUE(DeleteLineDefsJoinSectors(level, one));
        }
        break;
    }
    default:
        (void)AlignLineDefToGrid(
            level, static_cast<int>(random() % static_cast<unsigned>(level.LineDefs.Count())), 64);
        break;
    }
}

// A random edit of the kinds commands make: moves, field changes, insertions, deletions, and
// the object operations.
void RandomEdit(LevelData& level, std::mt19937& random)
{
    const auto pick = [&](std::int32_t count)
    { return static_cast<std::size_t>(std::uniform_int_distribution<int>(0, count - 1)(random)); };
    switch (std::uniform_int_distribution<int>(0, 9)(random))
    {
    case 0:
        level.Vertexes[pick(level.Vertexes.Count())].X += 8;
        NoteChange(level, KindVertex);
        break;
    case 1:
        level.Sectors[pick(level.Sectors.Count())].FloorHeight -= 8;
        NoteChange(level, KindSector);
        break;
    case 2:
        InsertObject(level, KindThing, -1, static_cast<int>(random() % 2000), 0);
        break;
    case 3:
        if (level.Things.Count() > 1)
        {
            DeleteObject(level, KindThing, static_cast<int>(pick(level.Things.Count())));
        }
        break;
    case 4:
        if (level.LineDefs.Count() > 10)
        {
            DeleteObject(level, KindLineDef, static_cast<int>(pick(level.LineDefs.Count())));
        }
        break;
    case 5:
        InsertObject(level, KindVertex, -1, static_cast<int>(random() % 3000), 5);
        break;
    case 6:
        level.SideDefs[pick(level.SideDefs.Count())].XOffset += 1;
        NoteChange(level, KindSideDef);
        break;
    default:
        RandomOperation(level, random);
        break;
    }
}

class UndoWalk : public testkit::WadFixture
{
};

TEST_F(UndoWalk, ThousandsOfEditsUndosAndRedosAgreeWithFullCopies)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ResetMap();
    ASSERT_EQ(wad::ReadLevel(Map().Level, "MAP05", false), 1);
    Map().Options.UndoLimit = 40; // the shift at the limit is walked through too
    PlainUndo model;
    PlainLevel plain = PlainLevel::Of(Map().Level);
    std::mt19937 random(20261124);
    for (int step = 0; step < 4000; ++step)
    {
        const int action = std::uniform_int_distribution<int>(0, 9)(random);
        if (action < 6)
        {
            ASSERT_EQ(SaveUndoStep(), 1);
            model.Save(plain, Map().Options.UndoLimit);
            RandomEdit(Map().Level, random);
            plain = PlainLevel::Of(Map().Level);
        }
        else if (action < 8)
        {
            ASSERT_EQ(UndoStep() == 1, model.Undo(plain)) << "step " << step;
        }
        else
        {
            ASSERT_EQ(RedoStep() == 1, model.Redo(plain)) << "step " << step;
        }
        ASSERT_EQ(PlainLevel::Of(Map().Level), plain) << "step " << step;
    }
    ResetMap();
}

} // namespace
} // namespace kelvar::map
