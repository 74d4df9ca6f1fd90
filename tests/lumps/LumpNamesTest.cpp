// Tests of the lump tools' names: names a file can't take, and unreadable names.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/LumpNames.h"

#include "tests/testkit/WadFixture.h"

namespace kelvar::lumps
{
namespace
{

class LumpNamesTest : public testkit::WadFixture
{
};

TEST_F(LumpNamesTest, NamesWithWildcardsOrBackslashesAreRefusedWithTheNotice)
{
    EXPECT_TRUE(IsExportableName("AR_A1"));
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_FALSE(IsExportableName("AR?A1"));
    EXPECT_FALSE(IsExportableName("A\\B"));
    EXPECT_FALSE(IsExportableName("*"));
    ASSERT_EQ(Ui.Messages.size(), 3U);
    EXPECT_EQ(Ui.Messages[0].Lines,
              (std::vector<std::string>{"AR?A1", "Contains invalid characters for a file name",
                                        "Export manually with a valid name"}));
}

TEST_F(LumpNamesTest, UnreadableNamesAreNumberedInTheOrderMet)
{
    BadNames names;
    EXPECT_EQ(names.Clean("PLAYPAL"), "PLAYPAL");
    EXPECT_FALSE(names.Any());
    EXPECT_EQ(names.Clean(std::string_view("\x07XYZ", 4)), "bad0");
    EXPECT_EQ(names.Clean(""), "bad1");
    EXPECT_EQ(names.Clean(" SPACE"), " SPACE");
    EXPECT_TRUE(names.Any());
}

} // namespace
} // namespace kelvar::lumps
