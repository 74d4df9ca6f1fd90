// kelvar-cli over built PWADs: the merged directory it prints, and its exit status.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sys/wait.h>

namespace kelvar
{
namespace
{

struct Output
{
    int Status = -1;
    std::vector<std::string> Lines;
};

Output RunCli(const std::string& arguments, const testkit::TempDir& config)
{
    const testkit::CommandOutput output = testkit::RunCli(arguments, config.Path());
    return {output.Status, output.Lines()};
}

TEST(KelvarCli, LumpsShowsAPwadLevelInTheIwadsSlots)
{
    testkit::TempDir dir;
    const std::string pwad =
        testkit::WadBuilder()
            .LevelInOrder("MAP01",
                          {"THINGS", "VERTEXES", "LINEDEFS", "SIDEDEFS", "SECTORS", "BLOCKMAP",
                           "SEGS", "SSECTORS", "NODES", "REJECT"},
                          8)
            .Lump("NEWLUMP", "new")
            .Write(dir.Path() / "over.wad");
    const Output output =
        RunCli("lumps " + testkit::FreedoomWad("freedoom2.wad") + " " + pwad, dir);
    ASSERT_EQ(output.Status, 0);
    ASSERT_EQ(output.Lines.size(), 1u + 3649 + 1 + 1);
    EXPECT_EQ(output.Lines[0], " index  name      file      offset        size  kind");
    EXPECT_EQ(output.Lines[1], "     0  MAP01        1          12           0  LEVEL");
    EXPECT_EQ(output.Lines[2], "     1  THINGS       1          12           8  LEVEL");
    EXPECT_EQ(output.Lines[3], "     2  LINEDEFS     1          28           8  LEVEL");
    EXPECT_EQ(output.Lines[5], "     4  VERTEXES     1          20           8  LEVEL");
    EXPECT_EQ(output.Lines[11], "    10  BLOCKMAP     1          52           8  LEVEL");
    EXPECT_EQ(output.Lines[3651], "  3650  NEWLUMP      1          92           3  LUMP");
}

TEST(KelvarCli, ABadFileIsReportedOnStderrWithAFailingStatus)
{
    testkit::TempDir dir;
    testkit::WriteFile(dir.Path() / "junk.wad", "JUNKJUNKJUNKJUNK");
    const Output output =
        RunCli("lumps " + testkit::FreedoomWad("freedoom2.wad") + " " + dir.File("junk.wad"), dir);
    EXPECT_EQ(output.Status, 2);
    EXPECT_EQ(output.Lines[0], "Kelvar Error:");
    EXPECT_EQ(output.Lines[1], "  " + dir.File("junk.wad") + " is not _WAD, found JUNK ");
}

} // namespace
} // namespace kelvar
