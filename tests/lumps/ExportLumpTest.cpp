// Tests of writing one lump to one file: the extensions and their file names, the sound and
// music conversions, the dialogs, and the failures that must leave every file as it was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportLump.h"

#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/WaveConversion.h"
#include "tests/lumps/ExportFixture.h"
#include "tests/sound/SoundTestKit.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

std::string Text(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

Bytes ToBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

class ExportLumpTest : public ExportFixture
{
protected:
    static std::string Snd(int rate, int count)
    {
        std::string snd = SndHeader(rate, count);
        for (int i = 0; i < count; ++i)
        {
            snd += static_cast<char>(100 + i);
        }
        return snd;
    }

    static std::string Wave(int samples)
    {
        const auto header = sound::MakeWavHeader(36 + samples, 11025, samples);
        return std::string(header.begin(), header.end()) +
               std::string(static_cast<std::size_t>(samples), '\x90');
    }

    static Bytes Mus()
    {
        return sound::test::MusBuilder()
            .Event(1, 0, {60})
            .Delay(20)
            .Event(0, 0, {60})
            .Delay(5)
            .End()
            .Build();
    }

    static testkit::WadBuilder LumpsPwad()
    {
        const Bytes mus = Mus();
        const Bytes midi = sound::MusToMidiBytes(mus, {}).Midi;
        testkit::WadBuilder pwad;
        pwad.Lump("ZNOTES", "some notes\n")
            .Lump("SCRIPT01", "script 1 (void) { }")
            .Lump("MAPINFO", "map MAP01 \"Entry\"")
            .Lump("DEHACKED", "Patch File for DeHackEd v3.0")
            .Lump("FRAGGLE", "[scripts]")
            .Lump("DSPOSIT", Snd(11025, 60))
            .Lump("DSLOW", Snd(5000, 60))
            .Lump("DSWAVE", Wave(60))
            .Lump("D_MUS", Text(mus))
            .Lump("D_MIDI", Text(midi));
        return pwad;
    }

    // Exports into Out; returns the result and, through `written`, the file.
    int ExportTo(const std::string& name, const std::string& extension, fs::path& written,
                 int flags = 0)
    {
        written = Out;
        return ExportLump(name, -1, extension, written, flags);
    }

    Bytes LumpOf(const std::string& name) const
    {
        return wad::ReadLumpBytes(wad::FindLump(wad::Wad().Files[0], name, false));
    }

    static Bytes FileBytes(const fs::path& path) { return ToBytes(testkit::ReadFile(path)); }
};

TEST_F(ExportLumpTest, RawExtensionsWriteTheBytesUnderTheirOwnFileExtensions)
{
    OpenWith(LumpsPwad());
    const std::vector<std::pair<std::string, std::pair<std::string, std::string>>> cases = {
        {"ZNOTES", {".TXT", "ZNOTES.TXT"}},          {"ZNOTES", {".lmp", "ZNOTES.LMP"}},
        {"SCRIPT01", {".SCRIPT", "SCRIPT01.ACS"}},   {"MAPINFO", {".MAPINFO", "MAPINFO.txt"}},
        {"DEHACKED", {".DEHACKED", "DEHACKED.deh"}}, {"FRAGGLE", {".FRAGGLE", "FRAGGLE.fs"}},
        {"DSPOSIT", {".LMP", "DSPOSIT.LMP"}}};
    for (const auto& [name, expected] : cases)
    {
        fs::path written;
        ASSERT_EQ(ExportTo(name, expected.first, written), ExportWritten) << name;
        EXPECT_EQ(written, Out / expected.second);
        EXPECT_EQ(FileBytes(written), LumpOf(name)) << name;
    }
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_FALSE(fs::exists(Out / "~KELVAR.EXP"));

    // The folder last used for a kind of file is where the next one goes without a folder.
    fs::path next;
    ASSERT_EQ(ExportLump("MAPINFO", -1, ".LMP", next, 0), ExportWritten);
    EXPECT_EQ(next, Out / "MAPINFO.LMP");
}

TEST_F(ExportLumpTest, RefusalsNameTheirCause)
{
    OpenWith(LumpsPwad());
    fs::path written;
    EXPECT_EQ(ExportTo("ZNOTES", ".XYZ", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Invalid SaveLump option");
    EXPECT_EQ(ExportTo("nope", ".LMP", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), " NOPE - Lump Name not found");
    written = Dir.Path() / "no" / "such" / "folder";
    EXPECT_EQ(ExportLump("ZNOTES", -1, ".LMP", written, 0), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Could not create " + (written / "ZNOTES.LMP").string());
    EXPECT_TRUE(fs::is_empty(Out));
}

TEST_F(ExportLumpTest, SoundsAreWrappedReducedOrRefused)
{
    OpenWith(LumpsPwad());
    fs::path written;
    Bytes expected;
    ASSERT_EQ(ExportTo("DSPOSIT", ".WAV", written), ExportWritten);
    ASSERT_FALSE(sound::SndToWav(LumpOf("DSPOSIT"), expected));
    EXPECT_EQ(FileBytes(written), expected) << "an SND gets the WAV header";
    ASSERT_EQ(ExportTo("DSWAVE", ".WAV", written), ExportWritten);
    EXPECT_EQ(FileBytes(written), LumpOf("DSWAVE")) << "a WAV is copied";
    ASSERT_EQ(ExportTo("DSWAVE", ".SND", written), ExportWritten);
    ASSERT_FALSE(sound::ConvertWavToSnd(LumpOf("DSWAVE"), expected));
    EXPECT_EQ(FileBytes(written), expected) << "a WAV is reduced to an SND";
    ASSERT_EQ(ExportTo("DSPOSIT", ".SND", written), ExportWritten);
    EXPECT_EQ(FileBytes(written), LumpOf("DSPOSIT"));
    EXPECT_TRUE(Ui.Messages.empty());

    ASSERT_EQ(ExportTo("ZNOTES", ".SND", written), ExportWritten);
    EXPECT_EQ(Ui.Last().Text(), "Entry ZNOTES probably not sound?\n\nCopied anyway, but check it!");
    EXPECT_EQ(FileBytes(written), LumpOf("ZNOTES"));

    EXPECT_EQ(ExportTo("ZNOTES", ".WAV", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Entry ZNOTES\nError not WAVE or Sound format!");
    EXPECT_EQ(ExportTo("DSLOW", ".WAV", written), ExportFailed)
        << "5000 Hz is listed, not converted";
    EXPECT_EQ(Ui.Last().Text(), "File=" + (Out / "DSLOW.WAV").string() +
                                    "\nEntry=DSLOW\nEntry not sound?!\nData not copied");
    EXPECT_FALSE(fs::exists(Out / "ZNOTES.WAV"));
    EXPECT_FALSE(fs::exists(Out / "DSLOW.WAV"));
}

TEST_F(ExportLumpTest, MusicIsConvertedWithTheTempoSettingOrCopied)
{
    OpenWith(LumpsPwad());
    sound::Sound().MusToMidiTempo = 120;
    fs::path written;
    ASSERT_EQ(ExportTo("D_MUS", ".MID", written), ExportWritten);
    sound::MusToMidiOptions options;
    options.Division = 120;
    EXPECT_EQ(FileBytes(written), sound::MusToMidiBytes(Mus(), options).Midi);
    ASSERT_EQ(ExportTo("D_MIDI", ".MID", written), ExportWritten);
    EXPECT_EQ(FileBytes(written), LumpOf("D_MIDI"));
    ASSERT_EQ(ExportTo("D_MUS", ".MUS", written), ExportWritten);
    EXPECT_EQ(FileBytes(written), Mus());
    EXPECT_TRUE(Ui.Messages.empty());

    EXPECT_EQ(ExportTo("ZNOTES", ".MID", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Entry ZNOTES\nError not MIDI or MUS format!");
    EXPECT_EQ(ExportTo("DSPOSIT", ".MUS", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Entry DSPOSIT\nError not MIDI or MUS format!");
}

TEST_F(ExportLumpTest, TheSaveLumpDialogChoosesTheFileAndItsFolderIsRemembered)
{
    OpenWith(LumpsPwad());
    fs::path written = Out;
    Ui.AnswerFile(std::nullopt);
    EXPECT_EQ(ExportLump("ZNOTES", -1, ".TXT", written, ExportAskName), ExportCancelled);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Save Lump");
    EXPECT_EQ(Ui.FileRequests.back().InitialPath, Out / "ZNOTES.TXT");
    EXPECT_TRUE(Ui.Messages.empty());

    const fs::path elsewhere = Dir.Path() / "elsewhere";
    fs::create_directories(elsewhere);
    Ui.AnswerFile(elsewhere / "notes.txt");
    ASSERT_EQ(ExportLump("ZNOTES", -1, ".TXT", written, ExportAskName), ExportWritten);
    EXPECT_EQ(written, elsewhere / "notes.txt");
    EXPECT_EQ(Ui.Last().Text(), "Entry ZNOTES Saved Successfully");
    EXPECT_EQ(Exports().LastFolders["TXT"], elsewhere);
}

TEST_F(ExportLumpTest, AOneLumpPwadTakesTheNameAskedFor)
{
    OpenWith(LumpsPwad());
    fs::path written = Out;
    Ui.AnswerFile(Out / "one.wad").AnswerText("renamed9X");
    ASSERT_EQ(ExportLump("DEHACKED", -1, ".WAD", written, ExportAskName), ExportWritten);
    const std::optional<wad::RewritePlan> plan = wad::PlanOfWad(written);
    ASSERT_TRUE(plan.has_value());
    EXPECT_EQ(plan->Magic, "PWAD");
    ASSERT_EQ(plan->Entries.size(), 1U);
    EXPECT_EQ(plan->Entries[0].Name, "RENAMED9");
    EXPECT_EQ(testkit::ReadFile(written).substr(12, 28), "Patch File for DeHackEd v3.0");
}

TEST_F(ExportLumpTest, OpenFilesAreNeverWrittenOver)
{
    OpenWith(LumpsPwad());
    const fs::path pwad = Dir.Path() / "pwad.wad";
    const std::string before = testkit::ReadFile(pwad);
    fs::path written = Dir.Path();
    Ui.AnswerFile(pwad);
    EXPECT_EQ(ExportLump("DSPOSIT", -1, ".WAD", written, ExportAskName), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(),
              "File 1\n\n" + pwad.string() + "\n\nis in use by Kelvar\nCan't write over file");
    EXPECT_EQ(testkit::ReadFile(pwad), before);
    EXPECT_FALSE(fs::exists(wad::BakPathOf(pwad)));

    Ui.AnswerFile(Dir.Path() / "small.wad");
    EXPECT_EQ(ExportLump("ZNOTES", -1, ".LMP", written, ExportAskName), ExportFailed)
        << "nor is the IWAD";
}

TEST_F(ExportLumpTest, AFullDiskLeavesAnOlderFileAsItWas)
{
    OpenWith(LumpsPwad());
    testkit::WriteFile(Out / "ZNOTES.LMP", "older file");
    testkit::WriteFile(Out / "ZNOTES.TXT", "start:");
    fs::path written;
    wad::Wad().WriteBudget = 3;
    Ui.Answer(0).Answer(0); // each I/O error's "Quit now?": no
    EXPECT_EQ(ExportTo("ZNOTES", ".LMP", written), ExportFailed);
    wad::Wad().WriteBudget = 3;
    EXPECT_EQ(ExportTo("ZNOTES", ".TXT", written, ExportAppend), ExportFailed);
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(Ui.Titles(), (std::vector<std::string>{"I/O error", "I/O error"}));
    EXPECT_EQ(testkit::ReadFile(Out / "ZNOTES.LMP"), "older file");
    EXPECT_EQ(testkit::ReadFile(Out / "ZNOTES.TXT"), "start:") << "the append is cut back";
    EXPECT_FALSE(fs::exists(Out / "~KELVAR.EXP"));

    ASSERT_EQ(ExportTo("ZNOTES", ".TXT", written, ExportAppend), ExportWritten);
    EXPECT_EQ(testkit::ReadFile(written), "start:some notes\n");
}

TEST_F(ExportLumpTest, ALumpCutShortOnDiskIsReportedAndNothingIsWritten)
{
    OpenWith(LumpsPwad());
    const fs::path pwad = Dir.Path() / "pwad.wad";
    const wad::LumpEntry entry = wad::Master()[static_cast<std::size_t>(
        wad::FindLump(wad::Wad().Files[0], "D_MIDI", false))];
    fs::resize_file(pwad, static_cast<std::uintmax_t>(entry.Offset + 10));
    Ui.Answer(0);
    fs::path written;
    EXPECT_EQ(ExportTo("D_MIDI", ".LMP", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Title, "I/O error");
    EXPECT_FALSE(fs::exists(Out / "D_MIDI.LMP"));
    Ui.Answer(0);
    EXPECT_EQ(ExportTo("D_MIDI", ".WAD", written), ExportFailed);
    EXPECT_EQ(Ui.Last().Text(), "Failure reading old File?");
    EXPECT_FALSE(fs::exists(Out / "D_MIDI.WAD"));
}

} // namespace
} // namespace kelvar::lumps
