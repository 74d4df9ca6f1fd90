// Tests of what the export dialog shows and plays of a row: the wave drawn for a sound, the
// lines of a data lump, playing each kind through the audio port, and the controls' labels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportView.h"

#include "platform/test/RecordingAudio.h"
#include "sound/MusToMidi.h"
#include "sound/Playback.h"
#include "tests/lumps/ExportFixture.h"
#include "tests/sound/SoundTestKit.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <cctype>
#include <set>

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using namespace std::string_literals;
using sound::test::Bytes;
using sound::test::ToBytes;

Bytes Snd(int rate, int count, int samples)
{
    Bytes snd;
    sound::test::Le16(snd, 3);
    sound::test::Le16(snd, static_cast<unsigned>(rate));
    sound::test::Le32(snd, static_cast<std::uint32_t>(count));
    for (int i = 0; i < samples; ++i)
    {
        snd.push_back(static_cast<std::uint8_t>(i * 7));
    }
    return snd;
}

TEST(PreviewWave, IsTheWaveASoundPlaysAs)
{
    // 5000 Hz is below what the conversions take, but a listed sound is drawn and played.
    const Bytes snd = Snd(5000, 40, 40);
    const auto wave = PreviewWave(snd);
    ASSERT_TRUE(wave);
    ASSERT_EQ(wave->size(), 44U + 40);
    EXPECT_EQ(std::string(wave->begin(), wave->begin() + 16), "RIFF\x54\0\0\0WAVEfmt "s);
    EXPECT_EQ(wad::ReadLe32(wave->data() + 24), 5000);
    EXPECT_EQ(wad::ReadLe32(wave->data() + 40), 40);
    EXPECT_TRUE(std::equal(snd.begin() + 8, snd.end(), wave->begin() + 44));

    // A count up to the lump size passes; past the samples there are it is cut to them.
    const auto cut = PreviewWave(Snd(11025, 26, 20));
    ASSERT_TRUE(cut);
    EXPECT_EQ(wad::ReadLe32(cut->data() + 40), 20);
    EXPECT_EQ(cut->size(), 44U + 20);

    const Bytes riff = *PreviewWave(snd);
    EXPECT_EQ(PreviewWave(riff), riff) << "a WAV lump is drawn as it stands";
    EXPECT_FALSE(PreviewWave(Snd(1000, 40, 40)));
    EXPECT_FALSE(PreviewWave(ToBytes("plain text, no sound at all")));
}

TEST(DataPreviewLines, TextComesAsLinesAndAnythingElseAsAHexDump)
{
    const std::string text = "Patch File\r\n\tx = 1\n" + std::string(200, 'w') + "\n";
    const std::vector<std::string> lines = DataPreviewLines(ToBytes(text + "\0\0\0"s), 10);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "Patch File");
    EXPECT_EQ(lines[1], "        x = 1");
    EXPECT_EQ(lines[2], std::string(120, 'w'));
    EXPECT_EQ(DataPreviewLines(ToBytes(text), 1), std::vector<std::string>{"Patch File"});

    Bytes binary = ToBytes("AB\0CDEFGHIJKLMNOPQ"s);
    binary[5] = 0xFF;
    const std::vector<std::string> dump = DataPreviewLines(binary, 10);
    ASSERT_EQ(dump.size(), 2U);
    EXPECT_EQ(dump[0], "000000  41 42 00 43 44 FF 46 47 48 49 4A 4B 4C 4D 4E 4F  AB.CD.FGHIJKLMNO");
    EXPECT_EQ(dump[1], "000010  50 51" + std::string(14 * 3, ' ') + "  PQ");
    EXPECT_EQ(DataPreviewLines(binary, 1).size(), 1U);
    EXPECT_EQ(DataPreviewLines(Bytes(4, 0), 10),
              std::vector<std::string>{"000000  00 00 00 00" + std::string(12 * 3, ' ') + "  ...."})
        << "zeros alone are no text";
    EXPECT_TRUE(DataPreviewLines({}, 10).empty());
}

class PlayExportRowTest : public ExportFixture
{
protected:
    platform::RecordingAudio Audio;
    platform::ScopedAudio Installed{Audio};
};

TEST_F(PlayExportRowTest, SoundsAndMusicPlayByTheirKindAndOtherRowsAreRefused)
{
    const Bytes snd = Snd(11025, 60, 60);
    const Bytes mus = sound::test::MusBuilder()
                          .Event(1, 0, {60 | 0x80, 100})
                          .Delay(10)
                          .Event(0, 0, {60})
                          .End()
                          .Build();
    testkit::WadBuilder pwad;
    pwad.Lump("DSPOSIT", std::string(snd.begin(), snd.end()))
        .Lump("D_TUNE", std::string(mus.begin(), mus.end()))
        .Lump("ZNOTES", "some text");
    OpenWith(pwad);
    const std::vector<ExportRow> rows = ScanAll();
    const auto row = [&rows](const char* name)
    { return rows[static_cast<std::size_t>(FindRowByName(rows, name))]; };

    EXPECT_EQ(PlayExportRow(row("DSPOSIT")), sound::PlayStarted);
    ASSERT_EQ(Audio.Names(), std::vector<std::string>{"PlayWave"});
    EXPECT_EQ(Audio.Calls[0].Bytes, *PreviewWave(snd));

    Audio.Calls.clear();
    sound::Sound().MusToMidiTempo = 120; // an export's division; playing keeps its own
    EXPECT_EQ(PlayExportRow(row("D_TUNE")), sound::PlayStarted);
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic", "PlayMidi"}));
    EXPECT_EQ(Audio.Calls.back().Bytes, sound::MusToMidiBytes(mus, {}).Midi);

    Audio.Calls.clear();
    EXPECT_EQ(PlayExportRow(row("ZNOTES")), sound::PlayRefused);
    ExportRow gone = row("DSPOSIT");
    gone.Name = wad::LumpName::From("DSGONE");
    EXPECT_EQ(PlayExportRow(gone), sound::PlayNotFound);
    EXPECT_TRUE(Audio.Calls.empty());

    StopExportPlayback();
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic"}));
}

TEST(ExportLabels, EveryControlHasItsOwnMnemonicAndEveryFilterItsOwnBox)
{
    std::vector<std::string> texts = {ExportPlayText, ExportStopText, ExportAnalyzeText,
                                      ExportOptionsText};
    for (const ExportButtonLabel& label : ExportButtonLabels())
    {
        texts.emplace_back(label.Text);
    }
    std::vector<bool ExportFilters::*> flags;
    for (const ExportFilterLabel& label : ExportFilterLabels())
    {
        texts.emplace_back(label.Text);
        EXPECT_EQ(std::count(flags.begin(), flags.end(), label.Flag), 0) << label.Text;
        flags.push_back(label.Flag);
    }

    std::set<char> keys;
    for (const std::string& text : texts)
    {
        const std::size_t at = text.find('&');
        ASSERT_NE(at, std::string::npos) << text;
        ASSERT_LT(at + 1, text.size()) << text;
        EXPECT_EQ(text.find('&', at + 1), std::string::npos) << text;
        EXPECT_TRUE(keys.insert(static_cast<char>(std::tolower(text[at + 1]))).second)
            << text << " shares its key";
    }
}

} // namespace
} // namespace kelvar::lumps
