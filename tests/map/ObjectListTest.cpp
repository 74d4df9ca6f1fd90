// Tests of ObjectList: order, duplicates, removal, the live counters.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/ObjectList.h"
#include "map/MapState.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::map
{
namespace
{

class ObjectListTest : public ::testing::Test
{
protected:
    void SetUp() override { ResetMap(); }
};

TEST_F(ObjectListTest, NewestComesFirstAndRemovalTakesTheNewestEntry)
{
    ObjectList list;
    for (int object : {4, 8, 4, 15})
    {
        ObjectListPush(list, object);
    }
    EXPECT_EQ(list.Objects(), (std::vector<std::int32_t>{15, 4, 8, 4}));
    EXPECT_EQ(list.Head(), 15);
    ObjectListRemove(list, 4);
    EXPECT_EQ(list.Objects(), (std::vector<std::int32_t>{15, 8, 4}));
    EXPECT_TRUE(ObjectListContains(list, 4)) << "the older entry of 4 remains";
    ObjectListRemove(list, 99);
    EXPECT_EQ(list.Size(), 3);
    EXPECT_EQ(Map().SelectedCount, 3);
    ObjectListClear(list);
    EXPECT_FALSE(ObjectListContains(list, 15));
    EXPECT_EQ(Map().SelectedCount, 0);
}

TEST_F(ObjectListTest, EachFamilyCountsItsOwnLiveEntries)
{
    {
        ObjectList selection;
        ObjectList drawing(ListFamily::Drawing);
        ObjectListPush(selection, 1);
        ObjectListPush(drawing, 1);
        ObjectListPush(drawing, 2);
        EXPECT_EQ(Map().SelectedCount, 1);
        EXPECT_EQ(Map().DrawingCount, 2);
        ObjectList moved = std::move(drawing);
        EXPECT_EQ(Map().DrawingCount, 2);
    }
    EXPECT_EQ(Map().SelectedCount, 0) << "lists going out of scope give their count back";
    EXPECT_EQ(Map().DrawingCount, 0);
}

// The list with its index must behave exactly as the plain list of numbers it stands for.
TEST_F(ObjectListTest, AgreesWithAPlainListThroughRandomChanges)
{
    std::mt19937 random(99);
    ObjectList list;
    std::vector<std::int32_t> plain; // newest first
    for (int step = 0; step < 5000; ++step)
    {
        const auto object = static_cast<std::int32_t>(random() % 40);
        switch (random() % 4)
        {
        case 0:
        case 1:
            ObjectListPush(list, object);
            plain.insert(plain.begin(), object);
            break;
        case 2:
        {
            ObjectListRemove(list, object);
            const auto it = std::find(plain.begin(), plain.end(), object);
            if (it != plain.end())
            {
                plain.erase(it);
            }
            break;
        }
        default:
            ASSERT_EQ(ObjectListContains(list, object),
                      std::find(plain.begin(), plain.end(), object) != plain.end());
        }
    }
    EXPECT_EQ(list.Objects(), plain);
    EXPECT_EQ(Map().SelectedCount, static_cast<int>(plain.size()));
}

} // namespace
} // namespace kelvar::map
