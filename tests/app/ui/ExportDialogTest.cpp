// Tests of the export window on Freedoom 2: F7's Export lists the lumps, the filters narrow
// the list and stay set, a sound shows its wave and plays, WA&V and &BMP write their files, a
// batch keeps its selection, Enter plays music and Escape stops it before closing, and the
// Auto Options page sets what &AUTO conversion writes.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/ExportDialog.h"

#include "app/ui/LumpTools.h"
#include "lumps/ExportView.h"
#include "platform/test/RecordingAudio.h"
#include "sound/SoundState.h"
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"
#include "wad/FindLump.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTreeWidget>

namespace kelvar::app
{
namespace
{

namespace fs = std::filesystem;
using lumps::ExportButton;
using lumps::ExportFilters;
using testkit::WhenModal;
using Content = ExportPreviewPane::Content;

class ExportDialogTest : public MainWindowTest
{
protected:
    void SetUp() override
    {
        lumps::ResetExports();
        sound::ResetSound();
        MainWindowTest::SetUp();
        Out = Dir.Path() / "out";
        fs::create_directories(Out);
    }

    void TearDown() override
    {
        MainWindowTest::TearDown();
        lumps::ResetExports();
        sound::ResetSound();
    }

    /// Makes `row` the selected row in hand, as a click on it does.
    static void Pick(ExportDialog* dialog, const std::string& name)
    {
        const int row = lumps::FindRowByName(dialog->Rows(), name);
        ASSERT_GE(row, 0) << name << " is not listed";
        dialog->List()->setCurrentItem(dialog->List()->topLevelItem(row));
    }

    /// Lists only the kinds whose flags are given.
    static void ListOnly(ExportDialog* dialog, std::vector<bool ExportFilters::*> kinds)
    {
        for (auto flag : {&ExportFilters::Graphics, &ExportFilters::Sounds, &ExportFilters::MidiMus,
                          &ExportFilters::Flats, &ExportFilters::Other, &ExportFilters::Control,
                          &ExportFilters::Levels})
        {
            const bool on = std::find(kinds.begin(), kinds.end(), flag) != kinds.end();
            QCheckBox* box = dialog->FilterBox(flag);
            if (box->isChecked() != on)
            {
                box->click();
            }
        }
    }

    static std::string FileBytes(const fs::path& path) { return testkit::ReadFile(path); }

    static int EntryOf(const std::string& name)
    {
        return wad::FindLump(wad::Wad().Files[0], name, false);
    }

    static void Screenshot(QWidget* widget, const char* name)
    {
        widget->grab().save(QString(KELVAR_SCREENSHOT_DIR "/") + name);
    }

    fs::path Out;
    platform::RecordingAudio Audio;
    platform::ScopedAudio Installed{Audio};
};

TEST_F(ExportDialogTest, F7ExportsASoundAsWaveAndAFlatAsBmp)
{
    const std::string iwad = wad::Wad().Files[0].FileName;
    const int pistol = EntryOf("DSPISTOL");
    ASSERT_GE(pistol, 0);
    const std::vector<std::uint8_t> pistolBytes = wad::ReadLumpBytes(pistol);
    bool ran = false;
    WhenModal(
        [&](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            ran = true;
            EXPECT_EQ(dialog->windowTitle(), "Export Lumps");
            EXPECT_EQ(dialog->Preview()->Showing(), Content::Picture) << "the game's logo";
            EXPECT_TRUE(dialog->StatusText().isEmpty());

            ListOnly(dialog, {&ExportFilters::Sounds});
            ASSERT_FALSE(dialog->Rows().empty());
            for (const lumps::ExportRow& row : dialog->Rows())
            {
                EXPECT_EQ(lumps::PreviewOf(row.Kind), lumps::ExportPreview::Sound)
                    << row.Name.Text();
            }
            EXPECT_EQ(dialog->List()->topLevelItemCount(), static_cast<int>(dialog->Rows().size()));

            Pick(dialog, "DSPISTOL");
            EXPECT_EQ(dialog->StatusText().toStdString(),
                      std::to_string(pistol) + " DSPISTOL Sound 22050 8x11034 " + iwad);
            EXPECT_EQ(dialog->Preview()->Showing(), Content::Wave);
            ASSERT_FALSE(Audio.Calls.empty());
            const platform::AudioCall& played = Audio.Calls.back();
            EXPECT_EQ(played.Name, "PlayWave");
            ASSERT_EQ(played.Bytes.size(), 44U + pistolBytes.size() - 8);
            EXPECT_EQ(std::string(played.Bytes.begin(), played.Bytes.begin() + 4), "RIFF");
            EXPECT_TRUE(
                std::equal(pistolBytes.begin() + 8, pistolBytes.end(), played.Bytes.begin() + 44));
            EXPECT_TRUE(dialog->Playing());
            Screenshot(dialog, "export-dialog-sound.png");

            Ui.AnswerFile(Out / "DSPISTOL.WAV");
            dialog->ButtonOf(ExportButton::Wav)->click();
            EXPECT_EQ(Ui.FileRequests.back().Caption, "Save Lump");
            EXPECT_EQ(Ui.Last().Text(), "Entry DSPISTOL Saved Successfully");
            const std::string wave = FileBytes(Out / "DSPISTOL.WAV");
            ASSERT_EQ(wave.size(), 44U + pistolBytes.size() - 8);
            EXPECT_EQ(wave.substr(0, 4), "RIFF");
            EXPECT_EQ(wave.substr(8, 8), "WAVEfmt ");
            EXPECT_EQ(IntAt(wave, 24, 4), 22050);
            EXPECT_EQ(wave.substr(44), std::string(pistolBytes.begin() + 8, pistolBytes.end()));

            // Escape stops the sound and leaves the window open.
            Audio.Calls.clear();
            QTest::keyClick(dialog->List(), Qt::Key_Escape);
            EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic"}));
            EXPECT_TRUE(dialog->isVisible());
            EXPECT_FALSE(dialog->Playing());

            ListOnly(dialog, {&ExportFilters::Flats});
            EXPECT_TRUE(dialog->SelectedRows().empty()) << "DSPISTOL is no longer listed";
            EXPECT_EQ(dialog->Preview()->Showing(), Content::Picture) << "the game's logo";
            Pick(dialog, "FLOOR0_1");
            ASSERT_EQ(dialog->Preview()->Showing(), Content::Picture);
            EXPECT_EQ(dialog->Preview()->Picture().size(), QSize(64, 64));
            Screenshot(dialog, "export-dialog-flat.png");
            Ui.AnswerFile(Out / "FLOOR0_1.BMP");
            dialog->ButtonOf(ExportButton::Bmp)->click();
            const std::string bmp = FileBytes(Out / "FLOOR0_1.BMP");
            ASSERT_GT(bmp.size(), 54U + 1024 + 4096 - 1);
            EXPECT_EQ(bmp.substr(0, 2), "BM");
            EXPECT_EQ(IntAt(bmp, 18, 4), 64);
            EXPECT_EQ(IntAt(bmp, 22, 4), 64);
            EXPECT_EQ(IntAt(bmp, 28, 2), 8);

            for (QPushButton* button : dialog->findChildren<QPushButton*>())
            {
                if (button->text() == lumps::ExportAnalyzeText)
                {
                    button->click();
                }
            }
            ASSERT_EQ(Ui.TextFiles.size(), 1U);
            EXPECT_EQ(Ui.TextFiles[0].Caption, "Pixels used Log");
            EXPECT_TRUE(dialog->isEnabled());
            dialog->accept();
        });
    Ui.AnswerList(0); // F7's menu: Export Lumps
    QTest::keyClick(Map(), Qt::Key_F7);
    ASSERT_TRUE(ran);
    EXPECT_EQ(Ui.ListCaptions.front(), "Graphics/Import/Export");

    // The boxes stay as they were left for the next opening.
    WhenModal(
        [](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            EXPECT_TRUE(dialog->FilterBox(&ExportFilters::Flats)->isChecked());
            EXPECT_FALSE(dialog->FilterBox(&ExportFilters::Sounds)->isChecked());
            EXPECT_EQ(dialog->Rows().front().Kind, gfx::LumpKind::Flat);
            dialog->reject();
        });
    OpenExportDialog(Window.get(), {});
}

TEST_F(ExportDialogTest, ABatchWritesEachRowIntoTheFolderAndKeepsTheSelection)
{
    WhenModal(
        [&](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            ListOnly(dialog, {&ExportFilters::Sounds});
            const std::vector<std::string> names = {"DSPISTOL", "DSSHOTGN", "DSPLASMA"};
            QTreeWidget* list = dialog->List();
            for (const std::string& name : names)
            {
                list->topLevelItem(lumps::FindRowByName(dialog->Rows(), name))->setSelected(true);
            }
            const std::vector<int> selected = dialog->SelectedRows();
            ASSERT_EQ(selected.size(), 3U);
            Ui.AnswerFile(Out / "any").Answer(1); // the folder, then "Group Export"
            dialog->ButtonOf(ExportButton::Auto)->click();
            EXPECT_EQ(Ui.FileRequests.back().Caption, "Directory for Saves");
            EXPECT_EQ(Ui.Messages.back().Title, "Group Export");
            for (const std::string& name : names)
            {
                EXPECT_EQ(FileBytes(Out / (name + ".WAV")).substr(0, 4), "RIFF") << name;
            }
            EXPECT_EQ(dialog->SelectedRows(), selected);
            EXPECT_TRUE(dialog->isEnabled());
            EXPECT_EQ(dialog->StatusText().toStdString(), "3 exported to " + Out.string());
            dialog->accept();
        });
    OpenExportDialog(Window.get(), {});
}

TEST_F(ExportDialogTest, EnterPlaysTheMusicInHandAndEscapeStopsItBeforeClosing)
{
    bool closed = false;
    WhenModal(
        [&](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            ASSERT_EQ(dialog->SelectedRows().size(), 1U);
            const lumps::ExportRow& row = dialog->Rows()[dialog->SelectedRows().front()];
            EXPECT_EQ(row.Name.Text(), "D_RUNNIN");
            EXPECT_TRUE(Audio.Calls.empty()) << "opening on a row plays nothing";

            QTest::keyClick(dialog->List(), Qt::Key_Return);
            ASSERT_FALSE(Audio.Calls.empty());
            EXPECT_EQ(Audio.Calls.back().Name, "PlayMidi");
            EXPECT_EQ(Audio.Calls.back().Bytes, wad::ReadLumpBytes(EntryOf("D_RUNNIN")));
            EXPECT_EQ(dialog->Preview()->Showing(), Content::Lines);

            // With the preview off, moving to a sound neither draws nor plays it.
            dialog->FilterBox(&ExportFilters::LumpPreview)->click();
            Audio.Calls.clear();
            Pick(dialog, "DSPISTOL");
            EXPECT_EQ(dialog->Preview()->Showing(), Content::Nothing);
            EXPECT_TRUE(Audio.Calls.empty());

            QTest::keyClick(dialog->List(), Qt::Key_Escape);
            EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic"}));
            EXPECT_TRUE(dialog->isVisible());
            QTest::keyClick(dialog->List(), Qt::Key_Escape);
            closed = !dialog->isVisible();
        });
    OpenExportDialog(Window.get(), "D_RUNNIN");
    EXPECT_TRUE(closed);
    EXPECT_FALSE(lumps::Exports().Filters.LumpPreview);
}

TEST_F(ExportDialogTest, ThePaneShowsTextLevelsAndTheLogoWhenNothingIsSelected)
{
    WhenModal(
        [&](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            ExportPreviewPane* pane = dialog->Preview();
            ASSERT_EQ(pane->Showing(), Content::Lines);
            EXPECT_EQ(pane->Lines().front(), "Patch File for DeHackEd v3.0");
            EXPECT_EQ(dialog->StatusText().toStdString().find(" DEHACKED data 19765 "),
                      std::to_string(EntryOf("DEHACKED")).size());
            Screenshot(dialog, "export-dialog-text.png");

            Pick(dialog, "MAP01");
            EXPECT_EQ(pane->Showing(), Content::Level);
            EXPECT_FALSE(pane->Picture().isNull());
            Screenshot(dialog, "export-dialog-level.png");

            dialog->List()->clearSelection();
            ASSERT_EQ(pane->Showing(), Content::Picture);
            const std::vector<std::uint8_t> logo = wad::ReadLumpBytes(EntryOf("M_DOOM"));
            EXPECT_EQ(pane->Picture().width(), logo[0] + 256 * logo[1]);
            EXPECT_TRUE(dialog->StatusText().isEmpty());
            Screenshot(dialog, "export-dialog-logo.png");
            dialog->accept();
        });
    OpenExportDialog(Window.get(), "DEHACKED");
}

TEST_F(ExportDialogTest, AutoOptionsSetWhatAutoConversionWrites)
{
    WhenModal(
        [&](QWidget* widget)
        {
            auto* dialog = dynamic_cast<ExportDialog*>(widget);
            ASSERT_NE(dialog, nullptr);
            WhenModal(
                [](QWidget* page)
                {
                    EXPECT_EQ(page->windowTitle(), "Auto Options");
                    for (QRadioButton* choice : page->findChildren<QRadioButton*>())
                    {
                        if (choice->text() == "&PCX" || choice->text() == "M&US")
                        {
                            choice->click();
                        }
                    }
                    page->findChild<QSpinBox*>()->setValue(120);
                    Screenshot(page, "export-auto-options.png");
                    page->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
                });
            for (QPushButton* button : dialog->findChildren<QPushButton*>())
            {
                if (button->text() == lumps::ExportOptionsText)
                {
                    button->click();
                }
            }
            EXPECT_EQ(lumps::Exports().Settings.AutoGraphicFormat, ".PCX");
            EXPECT_EQ(lumps::Exports().Settings.AutoSoundFormat, ".WAV");
            EXPECT_EQ(lumps::Exports().Settings.AutoMusicFormat, ".MUS");
            EXPECT_EQ(sound::Sound().MusToMidiTempo, 120);

            Ui.AnswerFile(Out / "FLOOR0_1.PCX");
            dialog->ButtonOf(ExportButton::Auto)->click();
            EXPECT_EQ(Ui.FileRequests.back().Caption, "PCX name");
            EXPECT_EQ(FileBytes(Out / "FLOOR0_1.PCX").substr(0, 1), "\x0A");
            dialog->accept();
        });
    OpenExportDialog(Window.get(), "FLOOR0_1");
}

} // namespace
} // namespace kelvar::app
