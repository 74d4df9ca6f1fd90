// kelvar-cli types: a game's table after an OPT file, and the refusals of bad arguments.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace kelvar
{
namespace
{

struct Output
{
    int Status = -1;
    std::vector<std::string> Lines;
};

Output RunTypes(const std::string& arguments, const testkit::TempDir& config)
{
    const testkit::CommandOutput output = testkit::RunCli("types " + arguments, config.Path());
    return {output.Status, output.Lines()};
}

TEST(TypesCommand, ListsTheTableWithItsCategoriesAfterTheOverlay)
{
    testkit::TempDir dir;
    const Output builtIn = RunTypes("doom things", dir);
    ASSERT_EQ(builtIn.Status, 0);
    ASSERT_GT(builtIn.Lines.size(), 2u);
    EXPECT_EQ(builtIn.Lines[0],
              "[0xFFFF8002] Player Start/Teleport  (menu \"Player Start/Teleport\")");
    EXPECT_EQ(builtIn.Lines[1], "    1  PLAYA1    Player 1 Start                        color  2  "
                                "radius  16  height  56  property 0x1001  shape 5 Play1");
    EXPECT_EQ(builtIn.Lines[7], "       + 29 free rows");

    testkit::WriteFile(dir.Path() / "MY.OPT", "[SECTORS]\n\"Hazards\" HealthDamage\n"
                                              "18 \"Water Force Scroll East\" \"Water East\"\n");
    const Output strife = RunTypes("strife sectors --opt " + (dir.Path() / "MY.OPT").string(), dir);
    ASSERT_EQ(strife.Status, 0);
    EXPECT_EQ(strife.Lines[11], "[0xFFFF8002] Health  (menu \"Hazards\")");
    EXPECT_EQ(strife.Lines[23],
              "   18  Water Force Scroll East                           Water East");
}

TEST(TypesCommand, DecodesAGeneralizedTypeOfABoomProject)
{
    testkit::TempDir dir;
    const Output door = RunTypes("boom lines --decode 15631", dir);
    ASSERT_EQ(door.Status, 0);
    EXPECT_EQ(door.Lines, std::vector<std::string>{"15631 DR  Door Norm o-c Nomonst 4 "});
    const Output floor = RunTypes("boom lines --decode 0x6000", dir);
    EXPECT_EQ(floor.Lines, std::vector<std::string>{"24576 W1  Floor Slow no dn HnF noc  "});
    // Without Boom the number is no type of the game.
    const Output plain = RunTypes("doom2 lines --decode 15631", dir);
    ASSERT_EQ(plain.Status, 0);
    EXPECT_EQ(plain.Lines.size(), 1U);
    EXPECT_EQ(plain.Lines[0].find("Door"), std::string::npos) << plain.Lines[0];
    EXPECT_EQ(RunTypes("boom lines --decode twelve", dir).Status, 1);
    EXPECT_EQ(RunTypes("boom things --decode 1", dir).Status, 1);
}

TEST(TypesCommand, ShowsTheThingTableAfterAPwadsDecorate)
{
    testkit::TempDir dir;
    testkit::WadBuilder wad;
    wad.Lump("DECORATE", "ACTOR Lamp 20010\n{\n Radius 7\n Height 30\n}\nACTOR NoNumber\n{\n}\n");
    const std::string pwad = wad.Write(dir.Path() / "deco.wad");
    const Output things = RunTypes("zdoom things --decorate " + pwad, dir);
    ASSERT_EQ(things.Status, 0);
    const auto heading =
        std::find(things.Lines.begin(), things.Lines.end(), "[0xFFFF0101] Decorate things 1");
    ASSERT_NE(heading, things.Lines.end());
    ASSERT_NE(heading + 1, things.Lines.end());
    EXPECT_EQ((heading + 1)->rfind("20010", 0), 0U) << *(heading + 1);
    EXPECT_NE((heading + 1)->find("Lamp"), std::string::npos);
    EXPECT_NE((heading + 1)->find("radius   7  height  30"), std::string::npos);
    EXPECT_EQ(RunTypes("zdoom things --decorate " + dir.File("none.wad"), dir).Status, 2);
}

TEST(TypesCommand, RefusesWhatItCannotList)
{
    testkit::TempDir dir;
    EXPECT_EQ(RunTypes("quake things", dir).Status, 1);
    EXPECT_EQ(RunTypes("doom monsters", dir).Status, 1);
    const Output missing = RunTypes("hexen lines --opt " + dir.File("NONE.OPT"), dir);
    EXPECT_EQ(missing.Status, 2);
    EXPECT_EQ(missing.Lines, std::vector<std::string>{"kelvar-cli: can't read the OPT file " +
                                                      dir.File("NONE.OPT")});
}

} // namespace
} // namespace kelvar
