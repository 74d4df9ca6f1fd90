// The recent lists: newest first, no duplicates, twenty names at most.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/RecentLists.h"
#include "app/StatusDefaults.h"

#include <gtest/gtest.h>

namespace kelvar::app
{
namespace
{

using Names = std::vector<std::string>;

TEST(StatusRecentLists, NewNamesGoFirstAndTheTwentyFirstPushesTheOldestOut)
{
    ProjectRecord project = DefaultProject();
    for (int i = 1; i <= 21; ++i)
    {
        EXPECT_TRUE(AddRecentPwad(project, "/wads/" + std::to_string(i) + ".wad"));
    }
    const Names names = RecentNames(project.RecentPwads);
    ASSERT_EQ(names.size(), 20u);
    EXPECT_EQ(names.front(), "/wads/21.wad");
    EXPECT_EQ(names.back(), "/wads/2.wad");
    EXPECT_TRUE(RecentNames(project.RecentPrefabs).empty());
}

TEST(StatusRecentLists, AKnownNameMovesToTheFrontAndTheOthersCloseUp)
{
    ProjectRecord project = DefaultProject();
    for (const char* name : {"a.wad", "b.wad", "c.wad", "d.wad"})
    {
        AddRecentPrefab(project, name);
    }
    // Names compare without case; the new spelling is the one kept.
    AddRecentPrefab(project, "B.WAD");
    EXPECT_EQ(RecentNames(project.RecentPrefabs), (Names{"B.WAD", "d.wad", "c.wad", "a.wad"}));
    AddRecentPrefab(project, "B.WAD");
    EXPECT_EQ(RecentNames(project.RecentPrefabs), (Names{"B.WAD", "d.wad", "c.wad", "a.wad"}));
    AddRecentPrefab(project, "a.wad");
    EXPECT_EQ(RecentNames(project.RecentPrefabs), (Names{"a.wad", "B.WAD", "d.wad", "c.wad"}));

    // A full list whose last name comes again loses nothing.
    for (int i = 0; i < 16; ++i)
    {
        AddRecentPrefab(project, "p" + std::to_string(i));
    }
    ASSERT_EQ(RecentNames(project.RecentPrefabs).back(), "c.wad");
    AddRecentPrefab(project, "c.wad");
    const Names names = RecentNames(project.RecentPrefabs);
    EXPECT_EQ(names.size(), 20u);
    EXPECT_EQ(names.front(), "c.wad");
    EXPECT_EQ(names.back(), "d.wad");
}

TEST(StatusRecentLists, NamesThatDontFitAreRefusedAndChangeNothing)
{
    ProjectRecord project = DefaultProject();
    AddRecentPwad(project, "kept.wad");
    EXPECT_FALSE(AddRecentPwad(project, ""));
    EXPECT_FALSE(AddRecentPwad(project, std::string(260, 'x')));
    EXPECT_TRUE(AddRecentPwad(project, std::string(259, 'y')));
    const Names names = RecentNames(project.RecentPwads);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], std::string(259, 'y'));
    EXPECT_EQ(names[1], "kept.wad");
}

} // namespace
} // namespace kelvar::app
