// MIDI to MUS: the conversion, kelvarmus's command line, and the editor's run of it.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MidiToMus.h"
#include "platform/Processes.h"
#include "platform/test/RecordingProcesses.h"
#include "platform/test/RecordingUi.h"
#include "sound/MusToMidi.h"
#include "sound/OutsidePrograms.h"
#include "sound/SoundState.h"
#include "tests/sound/SoundTestKit.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::sound
{
namespace
{

namespace fs = std::filesystem;
using test::Bytes;

// A format 0 MIDI file of one track with these events after its header.
Bytes Midi(const Bytes& events, unsigned division = 96)
{
    Bytes midi = {'M', 'T', 'h', 'd', 0, 0, 0, 6, 0, 0, 0, 1};
    midi.push_back(static_cast<std::uint8_t>(division >> 8));
    midi.push_back(static_cast<std::uint8_t>(division));
    midi.insert(midi.end(),
                {'M', 'T', 'r', 'k', 0, 0, 0, static_cast<std::uint8_t>(events.size())});
    midi.insert(midi.end(), events.begin(), events.end());
    return midi;
}

Bytes Score(const Bytes& mus)
{
    return Bytes(mus.begin() + (mus[6] | (mus[7] << 8)), mus.end());
}

TEST(MidiToMus, ChannelMessagesBecomeMusEventsWithDelaysInTicks)
{
    // 96 ticks a quarter at 500000 us: a quarter note is 70 MUS ticks at 140 a second.
    const Bytes midi = Midi({0x00, 0xC2, 30,              // program on channel 2
                             0x00, 0x92, 60,   100,       // note, new velocity
                             0x60, 0x82, 60,   0,         // a quarter later: note off
                             0x00, 0x92, 62,   100,       // same velocity: left out
                             0x00, 62,   0,               // running status: note-on 0 releases
                             0x00, 0xB9, 7,    99,        // volume, percussion channel
                             0x00, 0xBA, 123,  0,         // all notes off: system event, ch 10 -> 9
                             0x00, 0xEA, 0x40, 0x50,      // pitch wheel
                             0x00, 0xB2, 2,    5,         // breath: MUS has none, dropped
                             0x00, 0xA2, 60,   5,         // aftertouch: dropped
                             0x81, 0x40, 0xFF, 0x2F, 0}); // ends 192 ticks later
    const MidiToMusResult result = MidiToMusBytes(midi, 140);
    ASSERT_EQ(result.Error, std::nullopt);
    const Bytes& mus = result.Mus;
    EXPECT_EQ(Bytes(mus.begin(), mus.begin() + 4), (Bytes{'M', 'U', 'S', 26}));
    EXPECT_EQ(mus[8], 10); // primary channels: up to MUS channel 9
    EXPECT_EQ(mus[12], 1); // instruments: program 30
    EXPECT_EQ(mus[16], 30);
    EXPECT_EQ(Score(mus),
              (Bytes{0x42, 0,    30, 0x92, 0x80 | 60, 100, 70,   0x02, 60,   0x12, 62,  0x02,
                     62,   0x4F, 3,  99,   0x39,      11,  0xA9, 0xA1, 0x81, 0x0C, 0x60}));
    EXPECT_EQ(mus[4] | (mus[5] << 8), static_cast<int>(Score(mus).size()));
}

TEST(MidiToMus, RoundTripKeepsEveryEventAndTime)
{
    const Bytes midi =
        Midi({0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20, // 500000 us a quarter
              0x30, 0x90, 60,   90,                     // waits before the first
              0x30, 0x91, 64,   80,   0x30, 0x80, 60,   0, 0x00, 0x81, 64, 0, 0x00, 0xFF, 0x2F, 0});
    const MidiToMusResult mus = MidiToMusBytes(midi, 140);
    ASSERT_EQ(mus.Error, std::nullopt);
    const MusToMidiResult back = MusToMidiBytes(mus.Mus, {});
    ASSERT_EQ(back.Code, MusToMidiOk);
    // The wait before the first note is held by a centred pitch wheel on its channel.
    const std::vector<Bytes> tracks = test::MidiTracks(back.Midi);
    ASSERT_EQ(tracks.size(), 3u);
    const Bytes first(tracks[1].begin() + 35, tracks[1].end());
    EXPECT_EQ(first,
              (Bytes{0x00, 0xE0, 0x00, 0x40, 0x23, 0x90, 60, 90, 0x46, 60, 0, 0, 0xFF, 0x2F, 0}));
    EXPECT_EQ(tracks[2], (Bytes{0x46, 0x91, 64, 80, 0x23, 64, 0, 0, 0xFF, 0x2F, 0}));
}

TEST(MidiToMus, DamagedMidiIsRefusedWithoutCrashing)
{
    EXPECT_EQ(MidiToMusBytes(test::ToBytes("MUS\x1a nothing"), 140).Error, "not a MIDI file");
    EXPECT_EQ(MidiToMusBytes(Midi({0x00, 0x90, 60}), 140).Error, "MIDI file damaged");
    EXPECT_EQ(MidiToMusBytes(Midi({0x00, 60, 60}), 140).Error, "MIDI file damaged");
    EXPECT_EQ(MidiToMusBytes(Midi({}, 0xE728), 140).Error,
              "MIDI timing in SMPTE frames is not supported");
    const Bytes good =
        Midi({0x00, 0xC0, 5,    0x10, 0x90, 60,   100, 0x81, 0x00, 0x80, 60,   0, 0x00,
              0xF0, 0x02, 0x7E, 0xF7, 0x00, 0xB0, 7,   100,  0x00, 0xFF, 0x2F, 0});
    ASSERT_EQ(MidiToMusBytes(good, 140).Error, std::nullopt);
    std::mt19937 random(5);
    for (int round = 0; round < 4000; ++round)
    {
        Bytes damaged = good;
        for (int hits = 0; hits < 3; ++hits)
        {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        damaged.resize(random() % (damaged.size() + 1));
        const MidiToMusResult result =
            MidiToMusBytes(damaged, 1 + static_cast<int>(random() % 999));
        if (!result.Error)
        {
            EXPECT_EQ(MusToMidiBytes(result.Mus, {}).Code, MusToMidiOk);
        }
    }
}

TEST(KelvarMus, ConvertsTheFileItIsGivenAndExitsWithOne)
{
    testkit::TempDir dir;
    const Bytes midi = Midi({0x00, 0x90, 60, 100, 0x60, 0x80, 60, 0, 0x00, 0xFF, 0x2F, 0});
    testkit::WriteFile(dir.File("tune.tmp"), std::string(midi.begin(), midi.end()));
    const std::string program = KELVARMUS;
    testkit::CommandOutput run =
        testkit::RunCommand(program + " /t70 " + dir.File("tune.tmp") + " 2>&1");
    EXPECT_EQ(run.Status, 1) << run.Text;
    const std::string mus = testkit::ReadFile(dir.File("tune.MUS"));
    const Bytes expected = MidiToMusBytes(midi, 70).Mus;
    EXPECT_EQ(mus, std::string(expected.begin(), expected.end()));

    EXPECT_EQ(testkit::RunCommand(program + " 2>&1").Status, KelvarMusBadUsage);
    EXPECT_EQ(testkit::RunCommand(program + " /t0 " + dir.File("tune.tmp") + " 2>&1").Status,
              KelvarMusBadUsage);
    EXPECT_EQ(testkit::RunCommand(program + " " + dir.File("none.mid") + " 2>&1").Status,
              KelvarMusCantRead);
    testkit::WriteFile(dir.File("text.mid"), "just some text, no music");
    run = testkit::RunCommand(program + " " + dir.File("text.mid") + " 2>&1");
    EXPECT_EQ(run.Status, KelvarMusNotConverted);
    EXPECT_NE(run.Text.find("not a MIDI file"), std::string::npos) << run.Text;
}

class ConvertMidiToMusRun : public ::testing::Test
{
protected:
    void SetUp() override { ResetSound(); }
    void TearDown() override { ResetSound(); }

    testkit::TempDir Dir;
    platform::RecordingUi Ui;
    platform::ScopedUi UiGuard{Ui};
    platform::RecordingProcesses Processes;
};

TEST_F(ConvertMidiToMusRun, WritesTheLumpToATemporaryFileAndRunsTheConverterOnIt)
{
    testkit::WriteFile(Dir.File("wad"), "xxxxMThd-lump-bytes");
    std::FILE* wad = std::fopen(Dir.File("wad").c_str(), "rb");
    ASSERT_NE(wad, nullptr);
    Sound().MidiToMusTempo = 120;
    std::string seen;
    Processes.Exit(1).OnRun = [&](const platform::ChildRequest& request)
    {
        seen = testkit::ReadFile(Dir.File("D_SONG.tmp"));
        (void)request;
    };
    fs::path output;
    EXPECT_EQ(ConvertMidiToMus(wad, 4, 15, Dir.File("D_SONG.mid"), Dir.File("prog"), output),
              std::nullopt);
    std::fclose(wad);
    ASSERT_EQ(Processes.Runs.size(), 1u);
    const platform::ChildRequest& run = Processes.Runs[0];
    EXPECT_EQ(run.Directory, Dir.File("prog"));
    EXPECT_EQ(run.CommandLine,
              "\"" + LocateKelvarMus().string() + "\" /t120 \"" + Dir.File("D_SONG.tmp") + "\"");
    EXPECT_EQ(platform::SplitCommandLine(run.CommandLine).at(2), Dir.File("D_SONG.tmp"));
    EXPECT_TRUE(run.Flags & platform::ChildWait);
    EXPECT_EQ(seen, "MThd-lump-bytes");
    EXPECT_FALSE(fs::exists(Dir.File("D_SONG.tmp")));
    EXPECT_EQ(output, Dir.File("D_SONG.MUS"));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(ConvertMidiToMusRun, ReportsFailuresAsTheEditorWordsThem)
{
    fs::path output;
    EXPECT_EQ(ConvertMidiToMus(nullptr, 0, 0, Dir.File("song.Mus"), "", output),
              "Input file name cannot end in .MUS");
    EXPECT_TRUE(Processes.Runs.empty());
    testkit::WriteFile(Dir.File("wad"), "MThd");
    std::FILE* wad = std::fopen(Dir.File("wad").c_str(), "rb");
    EXPECT_EQ(ConvertMidiToMus(wad, 0, 4, Dir.File("no/dir/song.mid"), "", output),
              "Can't open for writing");
    std::fclose(wad);

    Processes.Exit(platform::ChildDidNotStart);
    EXPECT_EQ(ConvertMidiToMus(nullptr, 0, 0, Dir.File("song.mid"), "", output),
              "Error code -666 starting Midi2Mus");
    // Any other code than 1 is shown, and the caller goes on to look for the file.
    Processes.Exit(4);
    EXPECT_EQ(ConvertMidiToMus(nullptr, 0, 0, Dir.File("song.mid"), "", output), std::nullopt);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Text(), "Error code 4 converting\nMidi2Mus possibly could not convert "
                                "this file\nVerify conversion");
    EXPECT_EQ(output, Dir.File("song.MUS"));
}

TEST(RenderMidiToWav, RunsFluidSynthWithTheSoundFont)
{
    platform::RecordingProcesses processes;
    processes.Exit(0);
    EXPECT_EQ(RenderMidiToWav("/a b/in.mid", "/c/out.wav"), 0);
    ASSERT_EQ(processes.Runs.size(), 1u);
    EXPECT_EQ(platform::SplitCommandLine(processes.Runs[0].CommandLine),
              (std::vector<std::string>{"fluidsynth", "-ni", "-q", "-T", "wav", "-r", "44100", "-F",
                                        "/c/out.wav", DefaultSoundFont, "/a b/in.mid"}));
}

} // namespace
} // namespace kelvar::sound
