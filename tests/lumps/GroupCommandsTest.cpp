// Tests of the Group, UnGroup and make-IWAD command flows and the picture PWAD writers: their
// questions, dialogs and refusals, and the markers the picture PWADs get.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Group.h"
#include "lumps/PicturePwads.h"

#include "platform/Format.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <filesystem>

namespace kelvar::lumps
{
namespace
{

using testkit::ReadFile;
using testkit::WadBuilder;
using Names = std::vector<std::string>;

// The names of a WAD file's entries and their sizes, "NAME:size".
Names EntriesOf(const std::filesystem::path& path)
{
    Names names;
    for (const wad::RewriteEntry& entry : wad::PlanOfWad(path).value_or(wad::RewritePlan{}).Entries)
    {
        names.push_back(entry.Name + ":" + std::to_string(entry.Size));
    }
    return names;
}

class GroupCommandsTest : public testkit::WadFixture
{
protected:
    void OpenIwadOnly()
    {
        WadBuilder iwad("IWAD");
        iwad.Lump("SARGA1", "sprite").Level("MAP01");
        ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / "iwad.wad")), 1);
    }

    void OpenPwads()
    {
        OpenIwadOnly();
        PathA = WadBuilder().Level("MAP02").Lump("DEHACKED", "a").Write(Dir.Path() / "a.wad");
        ASSERT_EQ(OpenPwad(PathA), 1);
        Ui.Clear();
    }

    std::filesystem::path Target() const { return Dir.Path() / "out.wad"; }

    std::string PathA;
};

TEST_F(GroupCommandsTest, GroupAsksWhatToIncludeWhereToWriteAndWhetherToReload)
{
    OpenPwads();
    Ui.Answer(0).AnswerFile(Target()).Answer(1); // levels only, the file, reload
    const GroupCommandResult result = GroupCommand();
    EXPECT_TRUE(result.Written);
    EXPECT_TRUE(result.Reload);
    EXPECT_EQ(result.Target, Target());
    EXPECT_EQ(Ui.Messages[0].Title, "Include ALL");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (Names{"Reply Y to include all Levels and data",
                     "(e.g., extra textures, sounds and sprites)", "Include non-level data?",
                     "This is for ALL files you have loaded"}));
    ASSERT_EQ(Ui.FileRequests.size(), 1U);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Grouped PWAD");
    EXPECT_EQ(Ui.FileRequests[0].NameLimit, 256U);
    EXPECT_EQ(Ui.Last().Title, "Reload");
    EXPECT_EQ(Ui.Last().Text(), "Reload Group file ?");
    EXPECT_EQ(EntriesOf(Target()).size(), 11U) << "MAP02 alone";
}

TEST_F(GroupCommandsTest, GroupAndUngroupRefuseWithoutPwadsOrWithLevelsOfAnotherGame)
{
    OpenIwadOnly();
    EXPECT_FALSE(GroupCommand().Written);
    EXPECT_EQ(Ui.Last().Title, "No PWADs");
    EXPECT_EQ(Ui.Last().Lines, (Names{"You have not read any", "PWAD files to group!"}));
    EXPECT_FALSE(UngroupCommand().Written);
    EXPECT_EQ(Ui.Last().Lines, (Names{"You have not read any", "PWAD files to ungroup!"}));

    // A Hexen-layout level in a Doom project.
    ASSERT_EQ(OpenPwad(WadBuilder().HexenLevel("MAP05").Write(Dir.Path() / "h.wad")), 1);
    EXPECT_FALSE(GroupCommand().Written);
    EXPECT_EQ(Ui.Last().Text(), "Levels from another game found\n\n      !!! Group Cancelled !!!");
    EXPECT_FALSE(UngroupCommand().Written);
    EXPECT_EQ(Ui.Last().Text(), "Levels from another game found\n\n   !!! UnGroup Cancelled !!!");
    EXPECT_TRUE(Ui.FileRequests.empty());
}

TEST_F(GroupCommandsTest, UngroupAsksBeforeWritingOverAFileAndRefusesAnOpenOne)
{
    OpenPwads();
    testkit::WriteFile(Target(), "keep me");
    Ui.Answer(1).AnswerFile(Target()).Answer(0); // data only, the file, don't overwrite
    EXPECT_FALSE(UngroupCommand().Written);
    EXPECT_EQ(Ui.Messages[0].Title, "Ungroup");
    EXPECT_EQ(Ui.Messages[0].Lines[2], "Reply N to include only Levels (maps)");
    EXPECT_EQ(Ui.FileRequests[0].Caption, "UnGrouped PWAD");
    EXPECT_EQ(Ui.Last().Text(),
              "     OVERWRITE WARNING !\n\nOverwrite Existing File - " + Target().string() + " ?");
    EXPECT_EQ(ReadFile(Target()), "keep me");

    Ui.Answer(1).AnswerFile(PathA); // the open PWAD itself
    const std::string before = ReadFile(PathA);
    EXPECT_FALSE(UngroupCommand().Written);
    EXPECT_EQ(Ui.Last().Text(),
              "File 1\n\n" + PathA + "\n\nis in use by Kelvar\nCan't write over file");
    EXPECT_EQ(ReadFile(PathA), before);

    Ui.Answer(1).AnswerFile(Target()).Answer(1).Answer(0); // overwrite, no reload
    const GroupCommandResult result = UngroupCommand();
    EXPECT_TRUE(result.Written);
    EXPECT_FALSE(result.Reload);
    EXPECT_EQ(EntriesOf(Target()), (Names{"DEHACKED:1"}));
}

TEST_F(GroupCommandsTest, MakeIwadProposesMyiwadAndIsRefusedInZdoomHexenProjects)
{
    OpenPwads();
    Ui.AnswerFile(Target());
    const GroupCommandResult made = MakeIwadCommand();
    EXPECT_TRUE(made.Written);
    EXPECT_FALSE(made.Reload);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "IWAD name");
    EXPECT_EQ(Ui.FileRequests[0].InitialPath.filename(), "MYIWAD.WAD");
    EXPECT_EQ(wad::PlanOfWad(Target())->Magic, "IWAD");

    wad::Wad().Options.ZdoomHexenFormat = true;
    EXPECT_FALSE(MakeIwadCommand().Written);
    EXPECT_EQ(Ui.Last().Text(), "You can't build an IWAD in ZDOOM-HEXEN mode\n\nSwitch to one of "
                                "the DOOM projects to create an IWAD\n\n-OR-\n\nUse CONVERTER (to "
                                "be posted later)");
}

TEST_F(GroupCommandsTest, PicturePwadsTakeTheMarkersTheAnswerChose)
{
    const PictureLumps flats = {
        wad::RewriteEntry::FromBytes("FLAT1", std::vector<std::uint8_t>(4096, 1))};
    Ui.Answer(1).AnswerFile(Target());
    EXPECT_EQ(SaveFlatPwad(flats), 1);
    EXPECT_EQ(Ui.Messages[0].Title, "Flat PWAD");
    EXPECT_EQ(Ui.Messages[0].Text(),
              "Select control modification:\n\nIf you Reply Y, F_START, F_END is\nchanged to "
              "FF_START, FF_END\nRefer to help for details.\n\nModify F_START to FF_START?");
    EXPECT_EQ(Ui.FileRequests[0].InitialPath, "*.WAD");
    EXPECT_EQ(EntriesOf(Target()), (Names{"FF_START:0", "FLAT1:4096", "FF_END:0", "F_END:0"}));
    EXPECT_EQ(Ui.Progress.front().first, "Making FLATs " + Target().string());
    EXPECT_EQ(Ui.Progress.back(),
              std::make_pair("Updating Entries " + Target().string(), std::string("100 of 100")));

    Ui.Answer(0).AnswerFile(Target());
    EXPECT_EQ(SaveFlatPwad(flats), 1);
    EXPECT_EQ(EntriesOf(Target()), (Names{"F_START:0", "FLAT1:4096", "F_END:0"}));

    // Sprites from a file on disk, between the single pair.
    const std::string source =
        WadBuilder().Lump("TROOA1", "sprite bytes").Write(Dir.Path() / "sprites.wad");
    Ui.Answer(0).AnswerFile(Target());
    EXPECT_EQ(SaveSpritePwad({wad::RewriteEntry::FromFile("TROOA1", source, 12, 12)}), 1);
    EXPECT_EQ(Ui.Messages.back().Title, "Sprite PWAD");
    EXPECT_EQ(EntriesOf(Target()), (Names{"S_START:0", "TROOA1:12", "S_END:0"}));

    // Textures with their definitions; TEXTURE2 not given.
    TextureControlLumps control;
    control.Texture1 = wad::RewriteEntry::FromBytes("TEXTURE1", {1, 0, 0, 0});
    control.Pnames = wad::RewriteEntry::FromBytes("PNAMES", {0, 0, 0, 0});
    const PictureLumps patches = {wad::RewriteEntry::FromBytes("WALL1", {9, 9})};
    Ui.Clear();
    Ui.Answer(1).AnswerFile(Target());
    EXPECT_EQ(SaveTexturePwad(patches, control), 1);
    EXPECT_EQ(EntriesOf(Target()),
              (Names{"TEXTURE1:4", "PNAMES:4", "P_START:0", "WALL1:2", "P_END:0"}));
    Ui.Answer(0).AnswerFile(Target());
    EXPECT_EQ(SaveTexturePwad(patches, control), 1);
    EXPECT_EQ(EntriesOf(Target()), (Names{"P_START:0", "WALL1:2", "P_END:0"}));
    EXPECT_EQ(Ui.Progress.front().first, "Making Texture " + Target().string());

    Ui.Answer(0).AnswerFile(std::nullopt); // the dialog cancelled
    EXPECT_EQ(SaveSpritePwad({}), 0);
    EXPECT_EQ(ReadFile(source), testkit::WadBuilder().Lump("TROOA1", "sprite bytes").Bytes());
}

TEST_F(GroupCommandsTest, TheCliVerbsWriteOrSayWhyNot)
{
    WadBuilder iwad("IWAD");
    iwad.Lump("SARGA1", "sprite").Level("MAP01");
    const std::string iwadPath = iwad.Write(Dir.Path() / "iwad.wad");
    const std::string a =
        WadBuilder().Level("MAP02").Lump("DEHACKED", "a").Write(Dir.Path() / "a.wad");
    const std::string out = Target().string();
    const auto cli = [&](const std::string& arguments)
    { return testkit::RunCli(arguments, Dir.Path() / "config").Status; };

    EXPECT_EQ(cli("group " + iwadPath + " -o " + out), 1) << "no PWAD";
    EXPECT_EQ(cli("ungroup " + iwadPath + " " + a + " -o " + out + " --data --levels"), 1);
    EXPECT_EQ(cli("group " + iwadPath + " " + a + " missing.wad -o " + out), 2);
    EXPECT_FALSE(std::filesystem::exists(Target()));
    EXPECT_EQ(cli("group " + iwadPath + " " + a + " -o " + a), 2) << "a source as the output";

    EXPECT_EQ(cli("group " + iwadPath + " " + a + " -o " + out + " --levels-only"), 0);
    EXPECT_EQ(EntriesOf(Target()).size(), 11U);
    EXPECT_EQ(cli("ungroup " + iwadPath + " " + a + " -o " + out), 0);
    EXPECT_EQ(EntriesOf(Target()), (Names{"DEHACKED:1"}));
    EXPECT_EQ(cli("make-iwad " + iwadPath + " " + a + " -o " + out), 0);
    EXPECT_EQ(wad::PlanOfWad(Target())->Entries.size(), 24U) << "both levels and both lumps";
}

} // namespace
} // namespace kelvar::lumps
