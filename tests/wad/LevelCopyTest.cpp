// Tests of the level copy for another program: unknown wall textures replaced in the copy only.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/LevelCopy.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

namespace kelvar::wad
{
namespace
{

class LevelCopy : public testkit::WadFixture
{
};

std::vector<std::string> SideLines(const std::string& wad)
{
    std::vector<std::string> sides;
    for (const std::string& line : testkit::RunOmgifol("omg_levels.py", wad).Lines())
    {
        if (line.rfind("S ", 0) == 0)
        {
            sides.push_back(line);
        }
    }
    return sides;
}

TEST_F(LevelCopy, UnknownWallTexturesAreReplacedInTheCopyAndTheLevelKeepsThem)
{
    testkit::LevelBuilder rooms;
    rooms.Room(0, 0, 128, 128);
    map::LevelData level = rooms.Build();
    level.SideDefs[0].NormalTexture = map::TextureName::From("NOSUCH");
    level.SideDefs[1].NormalTexture = map::TextureName::From("-");
    level.SideDefs[1].UpperTexture = map::TextureName::From("nosuch2");
    level.SideDefs[2].NormalTexture = map::TextureName::From("$FOG");
    const map::LevelData before = level;

    TextureCleaning cleaning;
    cleaning.Known = [](const map::TextureName& name) { return name.Text() == "STARTAN3"; };
    cleaning.Replacement = map::TextureName::From("MARBLE1");
    const std::string copy = (Dir.Path() / "copy.wad").string();
    ASSERT_EQ(WriteLevelCopy(level, copy, "MAP01", &cleaning), 0);
    EXPECT_EQ(SideLines(copy),
              (std::vector<std::string>{"S 0 0 - - MARBLE1 0", "S 0 0 MARBLE1 - - 0",
                                        "S 0 0 - - _FOG 0", // omgifol shows $ as _
                                        "S 0 0 - - STARTAN3 0"}));
    EXPECT_EQ(level, before);

    const std::string plain = (Dir.Path() / "plain.wad").string();
    ASSERT_EQ(WriteLevelCopy(level, plain, "MAP01"), 0);
    EXPECT_EQ(SideLines(plain)[0], "S 0 0 - - NOSUCH 0") << "no cleaning unless asked";
}

} // namespace
} // namespace kelvar::wad
