// kelvar-cli textures: the lists of Freedoom 2 with the sizes omgifol reads.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace kelvar
{
namespace
{

const std::string Freedoom2 = "/usr/share/games/doom/freedoom2.wad";

// "NAME W H" of each row of a kelvar-cli listing ("NAME  W x H  where  file").
std::set<std::string> Listed(const std::string& arguments)
{
    testkit::TempDir dir;
    const testkit::CommandOutput output = testkit::RunCli("textures " + arguments, dir.Path());
    EXPECT_EQ(output.Status, 0) << output.Text.substr(0, 500);
    std::set<std::string> rows;
    for (const std::string& line : output.Lines())
    {
        std::istringstream words(line);
        std::string name, by;
        int width = 0, height = 0;
        words >> name >> width >> by >> height;
        rows.insert(name + " " + std::to_string(width) + " " + std::to_string(height));
    }
    return rows;
}

std::set<std::string> Omgifol(const std::string& expression)
{
    const testkit::CommandOutput output =
        testkit::RunCommand("/usr/bin/python3 -c \"import omg, omg.txdef; w = omg.WAD('" +
                            Freedoom2 + "'); " + expression + "\"");
    EXPECT_EQ(output.Status, 0) << output.Text;
    const std::vector<std::string> lines = output.Lines();
    return {lines.begin(), lines.end()};
}

TEST(TexturesList, WallTexturesAndSpritesHaveTheSizesOmgifolReads)
{
    EXPECT_EQ(Listed(Freedoom2), Omgifol("[print(n, t.width, t.height) for n, t in "
                                         "omg.txdef.Textures(w.txdefs).items()]"));
    EXPECT_EQ(Listed(Freedoom2 + " --sprites"),
              Omgifol("[print(n, s.width, s.height) for n, s in w.sprites.items()]"));
    const std::set<std::string> flats = Listed(Freedoom2 + " --flats");
    EXPECT_EQ(flats.size(), Omgifol("[print(n) for n in w.flats]").size());
    EXPECT_TRUE(flats.contains("FLOOR4_8 64 64"));
}

} // namespace
} // namespace kelvar
