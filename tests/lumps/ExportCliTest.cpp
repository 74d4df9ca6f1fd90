// Tests of kelvar-cli export: named lumps and whole kinds written into a folder, what it says
// and its exit status.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"
#include "tests/testkit/WadBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace kelvar
{
namespace
{

namespace fs = std::filesystem;

class ExportCliTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testkit::WadBuilder pwad;
        pwad.Level("MAP02")
            .Lump("ZNOTES", "notes")
            .Lump("DSPOSIT", std::string{3, 0, 0x11, 0x2B, 40, 0, 0, 0} + std::string(40, '\x80'))
            .Lump("DEHACKED", "Patch File");
        Pwad = pwad.Write(Dir.Path() / "pwad.wad");
        Out = Dir.Path() / "out";
    }

    testkit::CommandOutput Export(const std::string& words)
    {
        return testkit::RunCli("export " + testkit::FreedoomWad("freedoom2.wad") + " " + Pwad +
                                   " " + words,
                               Dir.Path() / "config");
    }

    std::vector<std::string> Written() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(Out))
        {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    testkit::TempDir Dir;
    std::string Pwad;
    fs::path Out;
};

TEST_F(ExportCliTest, NamedLumpsGoIntoTheFolderInTheirAutoFormats)
{
    const testkit::CommandOutput output = Export("ZNOTES dsposit PLAYPAL -d " + Out.string());
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(Written(), (std::vector<std::string>{"DSPOSIT.WAV", "PLAYPAL.LMP", "ZNOTES.LMP"}));
    EXPECT_EQ(testkit::ReadFile(Out / "ZNOTES.LMP"), "notes");
    EXPECT_EQ(output.Lines().back(), "3 lumps written to " + Out.string());
}

TEST_F(ExportCliTest, ALevelGoesAsAPwadAndIsRefusedAsRawData)
{
    testkit::CommandOutput output = Export("MAP02 -d " + Out.string() + " --as lmp");
    EXPECT_EQ(output.Status, 2);
    EXPECT_NE(output.Text.find("Is a Level"), std::string::npos) << output.Text;
    output = Export("MAP02 ZNOTES -d " + Out.string() + " --as wad");
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(Written(), (std::vector<std::string>{"MAP02.WAD"}))
        << "with levels among the lumps only the levels go";
    const testkit::CommandOutput omg =
        testkit::RunOmgifol("omg_entries.py", (Out / "MAP02.WAD").string());
    EXPECT_EQ(omg.Lines().back(),
              "M MAP02 THINGS LINEDEFS SIDEDEFS VERTEXES SEGS SSECTORS NODES SECTORS REJECT "
              "BLOCKMAP");
}

TEST_F(ExportCliTest, AllLumpsOfTheKindsAsked)
{
    testkit::CommandOutput output = Export("--all --external -d " + Out.string());
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(Written(), (std::vector<std::string>{"DEHACKED.LMP", "DSPOSIT.WAV", "ZNOTES.LMP"}));
    fs::remove_all(Out);
    output = Export("--all --external --kind sounds --kind other -d " + Out.string() + " --as lmp");
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(Written(), (std::vector<std::string>{"DEHACKED.LMP", "DSPOSIT.LMP", "ZNOTES.LMP"}));
    fs::remove_all(Out);
    output = Export("--all --external --kind levels -d " + Out.string());
    EXPECT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(Written(), (std::vector<std::string>{"MAP02.WAD"})) << "levels go as PWADs";
}

TEST_F(ExportCliTest, MusicConvertedToMusByTheOutsideConverter)
{
    const testkit::CommandOutput output = Export("D_RUNNIN -d " + Out.string() + " --as mus");
    ASSERT_EQ(output.Status, 0) << output.Text;
    EXPECT_EQ(testkit::ReadFile(Out / "D_RUNNIN.MUS").substr(0, 4), std::string("MUS\x1a"));
}

TEST_F(ExportCliTest, MistakesGiveTheirStatus)
{
    testkit::CommandOutput output = Export("NOPE ZNOTES -d " + Out.string());
    EXPECT_EQ(output.Status, 2);
    EXPECT_NE(output.Text.find(" NOPE - Lump Name not found"), std::string::npos) << output.Text;
    EXPECT_TRUE(fs::exists(Out / "ZNOTES.LMP")) << "the other names go on";
    EXPECT_EQ(Export("ZNOTES -d " + Out.string() + " --as png").Status, 1);
    EXPECT_EQ(Export("ZNOTES").Status, 1) << "no folder";
    EXPECT_EQ(Export("ZNOTES --all -d " + Out.string()).Status, 1);
}

} // namespace
} // namespace kelvar
