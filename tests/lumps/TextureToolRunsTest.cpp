// Tests of the texture name tools as the editor runs them: the unused run kept for Save and the
// PWAD written without it, the levels of the editor's other files counting as users, the
// converted file's name, the levels offered, and the table opened in the text editor.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/TextureToolRuns.h"

#include "lumps/TargetList.h"
#include "platform/test/RecordingProcesses.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadRewrite.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testkit::LevelBuilder;
using testkit::WadBuilder;

class TextureToolRunsTest : public testkit::WadFixture
{
protected:
    // A level on FLOOR4_8 and CEIL3_5 (when `withLevel`), and the flats FLOOR4_8 and SPARE.
    std::filesystem::path Resources(bool withLevel)
    {
        WadBuilder wad;
        if (withLevel)
        {
            LevelBuilder().Room(0, 0, 128, 128).WriteTo(wad, "MAP01");
        }
        wad.Marker("FF_START")
            .Lump("FLOOR4_8", std::string(4096, 'f'))
            .Lump("SPARE", std::string(4096, 's'))
            .Marker("FF_END");
        return wad.Write(Dir.Path() / (withLevel ? "level.wad" : "resources.wad"));
    }

    static std::vector<std::string> Names(const std::filesystem::path& file)
    {
        std::string magic;
        std::vector<TargetEntry> entries;
        EXPECT_EQ(ReadWadEntries(file, magic, entries), WadRead::Read);
        std::vector<std::string> names;
        for (const TargetEntry& entry : entries)
        {
            names.push_back(entry.Name.Text());
        }
        return names;
    }
};

TEST_F(TextureToolRunsTest, UnusedKeepsTheDeletionForSaveWhichWritesThePwadWithoutIt)
{
    const std::filesystem::path pwad = Resources(true);
    TextureToolForm form;
    form.Pwad = pwad;
    std::optional<UnusedDeletion> pending;
    // Listing only: nothing to save.
    ASSERT_EQ(RunUnusedTool(form, pending), 1);
    EXPECT_FALSE(pending.has_value());

    form.DeleteUnused = true;
    ASSERT_EQ(RunUnusedTool(form, pending), 1);
    ASSERT_TRUE(pending.has_value());
    EXPECT_EQ(pending->Flats, 1);
    EXPECT_EQ(DeletedCount(*pending), 1);
    ASSERT_EQ(SaveUnusedDeletion(pwad, *pending), 1);
    std::vector<std::string> names = Names(pwad);
    EXPECT_EQ(std::count(names.begin(), names.end(), "SPARE"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "FLOOR4_8"), 1);
    EXPECT_EQ(Ui.Last().Lines.back(), "Your old file is " + wad::BakPathOf(pwad).string());

    // Asked one by one, a No keeps the flat.
    const std::filesystem::path again = Resources(false);
    form.Pwad = again;
    form.PromptForDeletes = true;
    Ui.Answer(0).Answer(0);
    ASSERT_EQ(RunUnusedTool(form, pending), 1);
    EXPECT_FALSE(pending.has_value());
}

TEST_F(TextureToolRunsTest, TheLevelsOfTheEditorsOtherFilesUseTheResourcesFlats)
{
    const std::filesystem::path levels = Resources(true);
    const std::filesystem::path resources = Resources(false);
    ASSERT_GT(OpenPwad(levels.string()), 0);
    ASSERT_GT(OpenPwad(resources.string()), 0);
    Ui.Clear();
    TextureToolForm form;
    form.Pwad = resources;
    form.DeleteUnused = true;
    std::optional<UnusedDeletion> pending;
    ASSERT_EQ(RunUnusedTool(form, pending), 1);
    // FLOOR4_8 is on the floor of the other file's level: only SPARE goes.
    ASSERT_TRUE(pending.has_value());
    EXPECT_EQ(pending->Flats, 1);
    EXPECT_TRUE(Ui.TextFiles.back().Lines.end() != std::find(Ui.TextFiles.back().Lines.begin(),
                                                             Ui.TextFiles.back().Lines.end(),
                                                             "SPARE    deleted"));
}

TEST_F(TextureToolRunsTest, TheFormOffersLevelsAndAnOutputName)
{
    EXPECT_EQ(PwadLevelNames(Resources(true)), (std::vector<std::string>{"MAP01"}));
    EXPECT_TRUE(PwadLevelNames(Resources(false)).empty());
    EXPECT_TRUE(PwadLevelNames(Dir.Path() / "missing.wad").empty());
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(ProposedConvertOutput("/maps/e1.wad"), std::filesystem::path("/maps/e1_CVT.wad"));
    EXPECT_TRUE(ProposedConvertOutput("").empty());
}

TEST_F(TextureToolRunsTest, EditingATableThatIsNotThereMakesItFirst)
{
    platform::RecordingProcesses processes;
    EXPECT_EQ(EditCvtFile("", "editor"), 0);
    EXPECT_EQ(Ui.Last().Text(), "** Please select a Texture Conversion File **\n\n");

    const std::filesystem::path cvt = Dir.Path() / "new table.cvt";
    EXPECT_EQ(EditCvtFile(cvt, "gedit --new-window"), 1);
    EXPECT_EQ(testkit::ReadFile(cvt), "[TEXTURES]\n\n[FLATS]\n");
    ASSERT_EQ(processes.Runs.size(), 1U);
    EXPECT_EQ(processes.Runs[0].CommandLine, "gedit --new-window \"" + cvt.string() + "\"");
    EXPECT_EQ(processes.Runs[0].Flags, 0); // the window goes on while the editor runs
    // A table that exists is opened as it is.
    testkit::WriteFile(cvt, "[FLATS]\nA B\n");
    EXPECT_EQ(EditCvtFile(cvt, "gedit"), 1);
    EXPECT_EQ(testkit::ReadFile(cvt), "[FLATS]\nA B\n");
}

} // namespace
} // namespace kelvar::lumps
