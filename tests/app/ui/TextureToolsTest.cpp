// Tests of the texture name tools' window on Freedoom 2 MAP01: F7's Convert runs a .CVT written
// here into a new PWAD, Used reports a level's names, and Unused deletes a flat no level uses and
// saves the PWAD without it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/TextureTools.h"
#include "app/LumpCommands.h"
#include "lumps/TargetList.h"
#include "tests/app/ui/LumpToolFixture.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "tests/testkit/WadBuilder.h"
#include "wad/WadRewrite.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <fstream>

namespace kelvar::app
{
namespace
{

using testkit::LevelBuilder;
using testkit::WadBuilder;

class TextureToolsTest : public LumpToolTest
{
protected:
    void SetUp() override
    {
        LumpToolTest::SetUp();
        WadBuilder wad;
        LevelBuilder().Room(0, 0, 128, 128).Thing(64, 64, 1).WriteTo(wad, "MAP01");
        wad.Marker("FF_START").Lump("UNUSEDF", std::string(4096, 'u')).Marker("FF_END");
        Pwad = wad.Write(Dir.Path() / "pwad.wad");
    }

    void OpenTool(LumpTool tool, const std::function<void(TextureToolsDialog&)>& act)
    {
        OpenLumpTool(tool, act);
    }

    static void SetPwad(TextureToolsDialog& dialog, const std::filesystem::path& pwad)
    {
        auto* field = dialog.findChild<QLineEdit*>("Pwad");
        field->setText(QString::fromStdString(pwad.string()));
        emit field->editingFinished();
    }

    // The names of a WAD's entries and the bytes of the one named `name`.
    static std::pair<std::vector<std::string>, std::string> Read(const std::filesystem::path& file,
                                                                 const std::string& name)
    {
        std::string magic;
        std::vector<lumps::TargetEntry> entries;
        EXPECT_EQ(lumps::ReadWadEntries(file, magic, entries), lumps::WadRead::Read);
        const std::string bytes = testkit::ReadFile(file);
        std::pair<std::vector<std::string>, std::string> read;
        for (const lumps::TargetEntry& entry : entries)
        {
            read.first.push_back(entry.Name.Text());
            if (entry.Name.Is(name))
            {
                read.second = bytes.substr(static_cast<std::size_t>(entry.FileOffset),
                                           static_cast<std::size_t>(entry.Size));
            }
        }
        return read;
    }

    std::filesystem::path Pwad;
};

TEST_F(TextureToolsTest, ConvertWritesTheNamesOfTheTableIntoTheOutput)
{
    const std::filesystem::path cvt = Dir.Path() / "test.cvt";
    std::ofstream(cvt) << "[TEXTURES]\nSTARTAN3  BROWN1\n[FLATS]\nFLOOR4_8  FLAT14\n";
    const std::filesystem::path output = Dir.Path() / "out.wad";
    OpenTool(LumpTool::Convert,
             [&](TextureToolsDialog& dialog)
             {
                 EXPECT_EQ(dialog.Pages()->currentIndex(), 0);
                 SetPwad(dialog, Pwad);
                 // The output is proposed beside the PWAD.
                 EXPECT_EQ(dialog.findChild<QLineEdit*>("Output")->text().toStdString(),
                           (Dir.Path() / "pwad_CVT.wad").string());
                 dialog.findChild<QLineEdit*>("Cvt")->setText(QString::fromStdString(cvt.string()));
                 dialog.findChild<QLineEdit*>("Output")->setText(
                     QString::fromStdString(output.string()));
                 dialog.findChild<QCheckBox*>("ListReplacements")->setChecked(true);
                 dialog.grab().save(KELVAR_SCREENSHOT_DIR "/texture-tools-convert.png");
                 PressAlt(dialog, Qt::Key_V);
             });
    ASSERT_EQ(Ui.TextFiles.size(), 1U);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "List of WAD Textures and Flats Replaced");
    const auto [names, sideDefs] = Read(output, "SIDEDEFS");
    EXPECT_EQ(names, Read(Pwad, "SIDEDEFS").first);
    ASSERT_EQ(sideDefs.size(), 4 * 30U);
    EXPECT_EQ(sideDefs.substr(20, 6), "BROWN1");
    EXPECT_EQ(Read(output, "SECTORS").second.substr(4, 6), "FLAT14");
    // The input stays as it was.
    EXPECT_EQ(Read(Pwad, "SIDEDEFS").second.substr(20, 8), "STARTAN3");
}

TEST_F(TextureToolsTest, UsedListsTheNamesOfTheLevelChosen)
{
    OpenTool(LumpTool::Used,
             [&](TextureToolsDialog& dialog)
             {
                 EXPECT_EQ(dialog.Pages()->currentIndex(), 1);
                 SetPwad(dialog, Pwad);
                 auto* level = dialog.findChild<QComboBox*>("Level");
                 ASSERT_EQ(level->count(), 2);
                 level->setCurrentIndex(1);
                 dialog.grab().save(KELVAR_SCREENSHOT_DIR "/texture-tools-used.png");
                 dialog.findChild<QPushButton*>("ListUsed")->click();
             });
    ASSERT_EQ(Ui.TextFiles.size(), 1U);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "List of WAD Textures and Flats Used");
    const std::vector<std::string>& lines = Ui.TextFiles[0].Lines;
    EXPECT_NE(std::find(lines.begin(), lines.end(), "     Level MAP01"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "STARTAN3"), lines.end());
}

TEST_F(TextureToolsTest, UnusedDeletesAFlatNoLevelUsesAndSaveWritesThePwad)
{
    OpenTool(LumpTool::Unused,
             [&](TextureToolsDialog& dialog)
             {
                 EXPECT_EQ(dialog.Pages()->currentIndex(), 2);
                 SetPwad(dialog, Pwad);
                 auto* save = dialog.findChild<QPushButton*>("Save");
                 EXPECT_FALSE(save->isEnabled());
                 dialog.findChild<QCheckBox*>("DeleteUnused")->setChecked(true);
                 dialog.findChild<QPushButton*>("ListUnused")->click();
                 ASSERT_TRUE(dialog.PendingDeletion().has_value());
                 EXPECT_EQ(dialog.PendingDeletion()->Flats, 1);
                 EXPECT_TRUE(save->isEnabled());
                 dialog.grab().save(KELVAR_SCREENSHOT_DIR "/texture-tools-unused.png");

                 // Leaving with the deletion not saved asks; No stays.
                 Ui.Answer(0);
                 dialog.reject();
                 EXPECT_TRUE(dialog.isVisible());
                 save->click();
                 EXPECT_FALSE(dialog.PendingDeletion().has_value());
                 dialog.reject();
                 EXPECT_FALSE(dialog.isVisible());
             });
    EXPECT_TRUE(Ui.Saw("Your old file is " + wad::BakPathOf(Pwad).string()));
    const std::vector<std::string> names = Read(Pwad, "UNUSEDF").first;
    EXPECT_EQ(std::find(names.begin(), names.end(), "UNUSEDF"), names.end());
    EXPECT_NE(std::find(names.begin(), names.end(), "SIDEDEFS"), names.end());
    EXPECT_TRUE(std::filesystem::exists(wad::BakPathOf(Pwad)));
}

} // namespace
} // namespace kelvar::app
