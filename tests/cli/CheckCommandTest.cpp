// kelvar-cli check and stats: the error list as text and JSON, the exit status a map project's
// CI reads, and --fix, which repairs one level of a PWAD and leaves the rest of it as it was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>

namespace kelvar
{
namespace
{

using Lumps = std::vector<std::pair<std::string, std::string>>; // name, bytes, in file order

Lumps ReadLumps(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const auto le32 = [&file](std::size_t at)
    {
        std::uint32_t value = 0;
        std::memcpy(&value, file.data() + at, 4);
        return value;
    };
    Lumps lumps;
    const std::uint32_t count = le32(4);
    const std::uint32_t directory = le32(8);
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const std::size_t entry = directory + 16 * std::size_t{i};
        std::string name(file.data() + entry + 8, 8);
        name.resize(std::strlen(name.c_str()));
        lumps.emplace_back(name, file.substr(le32(entry), le32(entry + 4)));
    }
    return lumps;
}

// MAP01: two rooms whose west room is tagged 9, which no LineDef names. MAP02: the same rooms
// with nothing wrong. A lump of text after them.
class CheckCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testkit::WadBuilder wad;
        testkit::LevelBuilder faulty = testkit::TwoRoomsBuilder();
        faulty.Level().Sectors[0].Tag = 9;
        faulty.WriteTo(wad, "MAP01");
        testkit::TwoRoomsBuilder().WriteTo(wad, "MAP02");
        wad.Lump("MYNOTES", "rooms\n");
        wad.Write(Pwad);
    }

    testkit::CommandOutput Check(const std::string& arguments) const
    {
        return testkit::RunCli("check " + testkit::FreedoomWad("freedoom2.wad") + " " + arguments,
                               Dir.Path());
    }

    testkit::TempDir Dir;
    std::string Pwad = Dir.File("rooms.wad");
};

TEST_F(CheckCommand, TheErrorListAndItsExitStatus)
{
    const testkit::CommandOutput found = Check(Pwad + " MAP01 --only sectors");
    EXPECT_EQ(found.Status, 1) << found.Text;
    EXPECT_EQ(found.Lines(),
              (std::vector<std::string>{"Se 00000 Sector 0 Normal",
                                        "         LineDef tag 9 not found.", "MAP01: 1 found"}));

    const testkit::CommandOutput clean = Check(Pwad + " MAP02 --only sectors,lines,closed");
    EXPECT_EQ(clean.Status, 0) << clean.Text;
    EXPECT_EQ(clean.Lines(), (std::vector<std::string>{"MAP02: 0 found"}));
}

TEST_F(CheckCommand, JsonIsValidAndKeepsAFindingsLinesTogether)
{
    const testkit::CommandOutput found = Check(Pwad + " MAP01 --only sectors --json");
    EXPECT_EQ(found.Status, 1);
    const std::string file = Dir.File("found.json");
    std::ofstream(file) << found.Text;
    const testkit::CommandOutput parsed = testkit::RunCommand(
        "python3 -c 'import json,sys; d=json.load(open(sys.argv[1])); f=d[\"findings\"][0]; "
        "print(d[\"level\"], d[\"found\"], d[\"changes\"], f[\"kind\"], f[\"index\"], f[\"text\"], "
        "\"|\".join(f[\"detail\"]))' " +
        file);
    EXPECT_EQ(parsed.Status, 0) << found.Text;
    EXPECT_EQ(parsed.Text, "MAP01 1 0 Sector 0 Sector 0 Normal LineDef tag 9 not found.\n");

    // A real level: findings of every kind, some about the level as a whole, some with
    // several further lines; and a clean one, whose list is empty.
    const testkit::CommandOutput all = testkit::RunCli(
        "check " + testkit::FreedoomWad("freedoom2.wad") + " MAP01 --json", Dir.Path());
    std::ofstream(file) << all.Text;
    const testkit::CommandOutput kinds = testkit::RunCommand(
        "python3 -c 'import json,sys; d=json.load(open(sys.argv[1])); f=d[\"findings\"]; "
        "assert d[\"found\"] == len(f); print(sorted(set(x[\"kind\"] for x in f)), "
        "max(len(x[\"detail\"]) for x in f) > 1)' " +
        file);
    EXPECT_EQ(kinds.Text, "['Level', 'LineDef', 'Sector', 'Vertex'] True\n") << all.Text;
    const testkit::CommandOutput clean = Check(Pwad + " MAP02 --only sectors --json");
    std::ofstream(file) << clean.Text;
    EXPECT_EQ(testkit::RunCommand("python3 -c 'import json,sys; "
                                  "print(json.load(open(sys.argv[1]))[\"findings\"])' " +
                                  file)
                  .Text,
              "[]\n");
}

TEST_F(CheckCommand, FixRepairsTheLevelAndLeavesEverythingElseAsItWas)
{
    const std::string out = Dir.File("fixed.wad");
    const testkit::CommandOutput fixed = Check(Pwad + " MAP01 --only sectors --fix -o " + out);
    EXPECT_EQ(fixed.Status, 1) << fixed.Text; // something was found, and repaired
    EXPECT_NE(fixed.Text.find("MAP01: 1 found, 1 changes made"), std::string::npos) << fixed.Text;

    const testkit::CommandOutput again = testkit::RunCli(
        "check " + testkit::FreedoomWad("freedoom2.wad") + " " + out + " MAP01 --only sectors",
        Dir.Path());
    EXPECT_EQ(again.Status, 0) << again.Text;

    // MAP02 and the text lump are untouched, in their places; the source file too.
    const Lumps before = ReadLumps(Pwad);
    const Lumps after = ReadLumps(out);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t i = 11; i < before.size(); ++i)
    {
        EXPECT_EQ(after[i], before[i]) << before[i].first;
    }
    EXPECT_EQ(after[0].first, "MAP01");
    EXPECT_EQ(ReadLumps(Pwad), before);
}

TEST_F(CheckCommand, BadCommandLinesAreRefused)
{
    EXPECT_EQ(testkit::RunCli("check " + Pwad, Dir.Path()).Status, 1);
    const testkit::CommandOutput unknown = Check(Pwad + " MAP01 --only walls,bogus");
    EXPECT_EQ(unknown.Status, 1);
    EXPECT_NE(unknown.Text.find("no check group 'bogus'"), std::string::npos);
    const testkit::CommandOutput noOutput = Check(Pwad + " MAP01 --fix");
    EXPECT_NE(noOutput.Text.find("--fix -o OUT.wad"), std::string::npos) << noOutput.Text;
    const testkit::CommandOutput missing = Check(Pwad + " MAP77");
    EXPECT_EQ(missing.Status, 2);
}

TEST(StatsCommand, PrintsTheReportOfALevel)
{
    testkit::TempDir dir;
    const testkit::CommandOutput stats =
        testkit::RunCli("stats " + testkit::FreedoomWad("freedoom2.wad") + " MAP01", dir.Path());
    ASSERT_EQ(stats.Status, 0) << stats.Text;
    const std::vector<std::string> lines = stats.Lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines[0], "Number of Object Statistics");
    EXPECT_NE(stats.Text.find("Save Game Estimates (< 180180)"), std::string::npos);
}

} // namespace
} // namespace kelvar
