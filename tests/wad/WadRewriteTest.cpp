// Tests of the whole-file rewrite: a multi-level PWAD read back unchanged, entries replaced,
// dropped and added, SCRIPT names, a new file, and a full disk that leaves the old file as it
// was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/WadRewrite.h"

#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::wad
{
namespace
{

using testkit::LevelBuilder;
using testkit::WadBuilder;

class WadRewriteTest : public testkit::WadFixture
{
protected:
    // MAP01 with all its lumps, MAP02 without nodes (the short form), a script, a text lump
    // and an empty marker between them.
    std::string MultiLevelPwad()
    {
        WadBuilder builder;
        LevelBuilder().Room(0, 0, 256, 256).Room(512, 0, 128, 128).WriteTo(builder, "MAP01");
        builder.Marker("MAP02")
            .Lump("THINGS", std::string(10, 't'))
            .Lump("LINEDEFS", std::string(28, 'l'))
            .Lump("SIDEDEFS", std::string(60, 's'))
            .Lump("VERTEXES", std::string(8, 'v'))
            .Lump("SECTORS", std::string(26, 'e'));
        builder.Lump("SCRIPT01", "script 1 { }").Marker("MARKER").Lump("DEHACKED", "Patch File");
        return builder.Write(Dir.Path() / "multi.wad");
    }

    // The omgifol reading of a WAD: one "name size" line per entry, and each entry's bytes.
    static std::vector<std::string> OmgDirectory(const std::string& path)
    {
        std::vector<std::string> lines;
        for (const std::string& line : testkit::RunOmgifol("omg_directory.py", path).Lines())
        {
            const std::size_t first = line.find(' ');
            const std::size_t last = line.rfind(' ');
            lines.push_back(line.substr(0, first) + line.substr(last));
        }
        return lines;
    }
};

TEST_F(WadRewriteTest, AnUnchangedPlanWritesTheSameLumpsAndKeepsTheOldFileAsBak)
{
    const std::string path = MultiLevelPwad();
    const std::string before = testkit::ReadFile(path);
    const std::vector<std::string> directory = OmgDirectory(path);
    const std::optional<RewritePlan> plan = PlanOfWad(path);
    ASSERT_TRUE(plan.has_value());
    EXPECT_EQ(plan->Magic, "PWAD");
    ASSERT_TRUE(RewriteWad(path, *plan));

    EXPECT_EQ(OmgDirectory(path), directory);
    EXPECT_EQ(testkit::ReadFile(path), before) << "data from byte 12, the directory last";
    EXPECT_EQ(testkit::ReadFile(BakPathOf(path)), before);
}

TEST_F(WadRewriteTest, EntriesReplacedDroppedAndAddedLeaveTheOthersAsTheyWere)
{
    const std::string path = MultiLevelPwad();
    RewritePlan plan = *PlanOfWad(path);
    const std::size_t count = plan.Entries.size();
    // DEHACKED replaced, the marker dropped, a lump from memory and a lump of another file
    // added at the end.
    plan.Entries[count - 1] = RewriteEntry::FromBytes("DEHACKED", {'n', 'e', 'w'});
    plan.Entries.erase(plan.Entries.end() - 2);
    plan.Entries.push_back(RewriteEntry::FromBytes("NOTES", {'h', 'i'}));
    WadBuilder other;
    other.Lump("FIRST", "1111").Lump("SECOND", "22");
    const std::string otherPath = other.Write(Dir.Path() / "other.wad");
    plan.Entries.push_back(RewriteEntry::FromFile("SECOND", otherPath, 16, 2));
    ASSERT_TRUE(RewriteWad(path, plan));

    const RewritePlan read = *PlanOfWad(path);
    const RewritePlan old = *PlanOfWad(BakPathOf(path));
    ASSERT_EQ(read.Entries.size(), count + 1);
    const auto bytes = [](const std::filesystem::path& file, const RewriteEntry& entry)
    {
        return testkit::ReadFile(file).substr(static_cast<std::size_t>(entry.Offset),
                                              static_cast<std::size_t>(entry.Size));
    };
    for (std::size_t i = 0; i + 2 < count; ++i)
    {
        EXPECT_EQ(read.Entries[i].Name, old.Entries[i].Name);
        EXPECT_EQ(bytes(path, read.Entries[i]), bytes(BakPathOf(path), old.Entries[i]))
            << old.Entries[i].Name;
    }
    EXPECT_EQ(read.Entries[count - 2].Name, "DEHACKED");
    EXPECT_EQ(bytes(path, read.Entries[count - 2]), "new");
    EXPECT_EQ(bytes(path, read.Entries[count - 1]), "hi");
    EXPECT_EQ(bytes(path, read.Entries[count]), "22");
    EXPECT_EQ(OmgDirectory(path).size(), count + 1);
}

TEST_F(WadRewriteTest, ScriptNamesAndANewFile)
{
    const std::string path = MultiLevelPwad();
    RewritePlan plan = *PlanOfWad(path);
    plan.KeepScriptNames = false;
    plan.Magic = "IWAD";
    const std::filesystem::path made = Dir.Path() / "made.wad";
    ASSERT_TRUE(RewriteWad(made, plan));
    EXPECT_FALSE(std::filesystem::exists(BakPathOf(made)));
    const RewritePlan read = *PlanOfWad(made);
    EXPECT_EQ(read.Magic, "IWAD");
    const auto script =
        std::find_if(read.Entries.begin(), read.Entries.end(),
                     [](const RewriteEntry& e) { return e.Name.starts_with("SCRIPT"); });
    ASSERT_NE(script, read.Entries.end());
    EXPECT_EQ(script->Name, "SCRIPTS");
}

TEST_F(WadRewriteTest, AFullDiskLeavesTheOldFileAsItWas)
{
    const std::string path = MultiLevelPwad();
    const std::string before = testkit::ReadFile(path);
    RewritePlan plan = *PlanOfWad(path);
    plan.Entries.push_back(RewriteEntry::FromBytes("BIG", std::vector<std::uint8_t>(5000, 7)));
    Wad().WriteBudget = 1000;
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_FALSE(RewriteWad(path, plan));
    Wad().WriteBudget = -1;
    EXPECT_EQ(Ui.Last().Title, "I/O error");
    EXPECT_EQ(testkit::ReadFile(path), before);
    EXPECT_FALSE(std::filesystem::exists(BakPathOf(path)));
}

TEST_F(WadRewriteTest, ACallersPanelCountsToAHundredAndACallersCreateFailureIsShown)
{
    RewritePlan plan;
    plan.Entries = {RewriteEntry::FromBytes("ONE", std::vector<std::uint8_t>(300, 1)),
                    RewriteEntry::FromBytes("TWO", std::vector<std::uint8_t>(100, 2))};
    plan.ProgressCaption = "Writing";
    plan.DirectoryCaption = "Updating";
    plan.ProgressTotal = 400;
    const std::filesystem::path made = Dir.Path() / "made.wad";
    ASSERT_TRUE(RewriteWad(made, plan));
    using Shown = std::pair<std::string, std::string>;
    EXPECT_EQ(Ui.Progress, (std::vector<Shown>{{"Writing", "0 of 100"},
                                               {"Writing", "75 of 100"},
                                               {"Writing", "100 of 100"},
                                               {"Updating", "100 of 100"}}));

    plan.CreateFailure = "Unable to create : %s";
    const std::filesystem::path nowhere = Dir.Path() / "missing" / "x.wad";
    EXPECT_FALSE(RewriteWad(nowhere, plan));
    EXPECT_EQ(Ui.Last().Text(), "Unable to create : " + nowhere.string());
}

TEST_F(WadRewriteTest, ADamagedSourceIsRefusedBeforeAnythingIsWritten)
{
    const std::filesystem::path bad = Dir.Path() / "bad.wad";
    testkit::WriteFile(bad, "PWAD\x05");
    EXPECT_FALSE(PlanOfWad(bad).has_value());
    EXPECT_EQ(Ui.Last().Text(), "Failure reading old File?");
}

} // namespace
} // namespace kelvar::wad
