// kelvar-cli edit: a level made from nothing by a script, and the script errors that stop it
// before anything is written.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

namespace kelvar
{
namespace
{

std::string Edit(const testkit::TempDir& dir, const std::string& script)
{
    return "edit " + testkit::FreedoomWad("freedoom2.wad") + " MAP01 -o " + dir.File("out.wad") +
           " --new -- \"" + script + "\"";
}

TEST(EditScript, NewLevelTakesARoomAndAThingWithTheFieldsSet)
{
    testkit::TempDir dir;
    const testkit::CommandOutput made = testkit::RunCli(
        Edit(dir, "draw 0,0 256,0 256,256 0,256; mode sectors; select 0; set floor -24; "
                  "set light 200; mode things; pointer 64 128; insert; set type 1; "
                  "set angle 90; set flags 7"),
        dir.Path());
    ASSERT_EQ(made.Status, 0) << made.Text;
    const testkit::CommandOutput read = testkit::RunOmgifol("omg_levels.py", dir.File("out.wad"));
    std::map<std::string, int> counts;
    std::vector<std::string> things;
    std::vector<std::string> sectors;
    for (const std::string& line : read.Lines())
    {
        ++counts[line.substr(0, 2)];
        if (line[0] == 'T')
        {
            things.push_back(line);
        }
        if (line[0] == 'E')
        {
            sectors.push_back(line);
        }
    }
    // The IWAD's MAP01 is gone: only the drawn room and its Thing.
    EXPECT_EQ(counts["V "], 4);
    EXPECT_EQ(counts["L "], 4);
    ASSERT_EQ(sectors.size(), 1u);
    EXPECT_EQ(sectors[0].rfind("E -24 ", 0), 0u) << sectors[0];
    EXPECT_NE(sectors[0].find(" 200 0 0"), std::string::npos) << sectors[0];
    ASSERT_EQ(things.size(), 1u);
    EXPECT_EQ(things[0], "T 64 128 90 1 7");
}

TEST(EditScript, XAlignmentRunsAroundARoomByTheWidthOfItsTexture)
{
    testkit::TempDir dir;
    // A room of 200 by 136; its walls get MARBLE1, 128 wide in freedoom2's TEXTURE1. The box
    // marks the four walls, the last (200,0 to 0,0) last: the run starts there.
    const testkit::CommandOutput made = testkit::RunCli(
        Edit(dir, "draw 0,0 0,136 200,136 200,0; mode linedefs; box -10 -10 210 146; run 478"),
        dir.Path());
    ASSERT_EQ(made.Status, 0) << made.Text;
    const testkit::CommandOutput read = testkit::RunOmgifol("omg_levels.py", dir.File("out.wad"));
    std::vector<std::string> sides;
    for (const std::string& line : read.Lines())
    {
        if (line.rfind("S ", 0) == 0)
        {
            sides.push_back(line);
        }
    }
    // 0 at the last wall; then 200 % 128, (72 + 136) % 128, (80 + 200) % 128.
    EXPECT_EQ(sides, (std::vector<std::string>{"S 72 0 - - MARBLE1 0", "S 80 0 - - MARBLE1 0",
                                               "S 24 0 - - MARBLE1 0", "S 0 0 - - MARBLE1 0"}));
}

TEST(EditScript, ABadSetStopsTheScriptAndWritesNothing)
{
    const std::pair<const char*, const char*> cases[] = {
        {"mode sectors; set floor 1", "kelvar-cli: edit: set floor 1: nothing selected"},
        {"draw 0,0 64,0 64,64; mode sectors; select 0; set floor 40000",
         "kelvar-cli: edit: set floor 40000: value out of range"},
        {"mode vertexes; set x 5", "kelvar-cli: edit: set x 5: no such field in this edit mode"},
        {"mode things; set angle", "kelvar-cli: edit: set angle: set takes FIELD VALUE"},
        {"pointer 1,2", "kelvar-cli: edit: pointer 1,2: pointer takes X Y"},
    };
    for (const auto& [script, message] : cases)
    {
        testkit::TempDir dir;
        const testkit::CommandOutput run = testkit::RunCli(Edit(dir, script), dir.Path());
        EXPECT_EQ(run.Status, 1) << script;
        EXPECT_NE(run.Text.find(message), std::string::npos) << script << "\n" << run.Text;
        EXPECT_FALSE(std::filesystem::exists(dir.File("out.wad"))) << script;
    }
}

} // namespace
} // namespace kelvar
