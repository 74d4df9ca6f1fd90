// MUS scores written byte by byte, converted to MIDI and compared event by event.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MusToMidi.h"
#include "sound/MidiFile.h"
#include "sound/SoundState.h"
#include "tests/sound/SoundTestKit.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::sound
{
namespace
{

using test::Bytes;
using test::MusBuilder;
using test::ToBytes;

const Bytes NameEvent = []
{
    Bytes name = {0x00, 0xFF, 0x03, 31};
    const Bytes text = ToBytes("Kelvar MUS-MID work file  v1.01");
    name.insert(name.end(), text.begin(), text.end());
    return name;
}();

MusToMidiResult Convert(const MusBuilder& mus, MusToMidiOptions options = {})
{
    return MusToMidiBytes(mus.Build(), options);
}

// The events of track `n` (1 = the first channel track) without its name and end events.
Bytes TrackEvents(const Bytes& midi, std::size_t n)
{
    const std::vector<Bytes> tracks = test::MidiTracks(midi);
    EXPECT_GT(tracks.size(), n);
    if (tracks.size() <= n)
    {
        return {};
    }
    Bytes events = tracks[n];
    const std::size_t skip = n == 1 ? NameEvent.size() : 0;
    EXPECT_GE(events.size(), skip + 4);
    EXPECT_EQ(Bytes(events.end() - 4, events.end()), (Bytes{0x00, 0xFF, 0x2F, 0x00}));
    return Bytes(events.begin() + static_cast<long>(skip), events.end() - 4);
}

TEST(MusToMidi, EmptyScoreWritesTheHeaderAndTheTempoTrackOnly)
{
    const MusToMidiResult result = Convert(MusBuilder().End());
    ASSERT_EQ(result.Code, MusToMidiOk);
    Bytes expected = {'M', 'T', 'h', 'd', 0,   0, 0, 6, 0,  1,    0,    1,    0,
                      89,  'M', 'T', 'r', 'k', 0, 0, 0, 42, 0x00, 0xFF, 0x02, 21};
    const Bytes text = ToBytes("Kelvar wrk midi file ");
    expected.insert(expected.end(), text.begin(), text.end());
    expected.insert(expected.end(), {0x00, 0xFF, 0x59, 0x02, 0x00, 0x00, 0x00, 0xFF, 0x51, 0x03,
                                     0x09, 0xA3, 0x1A, 0x00, 0xFF, 0x2F, 0x00});
    EXPECT_EQ(result.Midi, expected);
    // A lump that ends without its end event gives the same.
    EXPECT_EQ(MusToMidiBytes(MusBuilder().Build(), {}).Midi, expected);
}

TEST(MusToMidi, EveryEventKindAndControllerBecomesItsMidiMessage)
{
    MusBuilder mus;
    mus.Primary(3)
        .Event(1, 0, {0x80 | 60, 100}) // note with a new velocity
        .Delay(10)
        .Event(1, 0, {62}) // the track's velocity again
        .Event(0, 0, {60}) // release
        .Delay(200)        // two-byte delay
        .Event(2, 0, {0x81});
    for (std::uint8_t system = 10; system <= 14; ++system)
    {
        mus.Event(3, 0, {system});
    }
    mus.Event(4, 0, {0, 30}); // program change
    for (std::uint8_t controller = 1; controller <= 9; ++controller)
    {
        mus.Event(4, 0, {controller, static_cast<std::uint8_t>(controller + 100)});
    }
    const MusToMidiResult result = Convert(mus.End());
    ASSERT_EQ(result.Code, MusToMidiOk);
    const Bytes expected = {
        0x00, 0x90, 60,   100,                                   // status written once
        0x0A, 62,   100,  0x00, 60,   0x00,                      // running status
        0x81, 0x48, 0xE0, 0x40, 0x40,                            // (1 & 1) * 64, 0x81 >> 1
        0x00, 0xB0, 120,  0,    0x00, 123,  0,    0x00, 126,  4, // mono: primary + 1
        0x00, 127,  0,    0x00, 121,  0,    0x00, 0xC0, 30,      // program change
        0x00, 0xB0, 0,    101,  0x00, 1,    102,  0x00, 7,    103, 0x00, 10,   104, 0x00,
        11,   105,  0x00, 91,   106,  0x00, 93,   107,  0x00, 64,  108,  0x00, 67,  109};
    EXPECT_EQ(TrackEvents(result.Midi, 1), expected);
    EXPECT_EQ(test::MidiTracks(result.Midi)[1].size(), NameEvent.size() + expected.size() + 4);
}

TEST(MusToMidi, PercussionTakesChannelNineAndTheOthersPassOverIt)
{
    MusBuilder mus;
    mus.Primary(10).Event(1, 15, {0x80 | 36, 90});
    for (int channel = 0; channel < 10; ++channel)
    {
        mus.Event(1, channel, {0x80 | 60, 90});
    }
    const MusToMidiResult result = Convert(mus.End());
    ASSERT_EQ(result.Code, MusToMidiOk);
    EXPECT_EQ(result.Midi[11], 12); // eleven channel tracks and the tempo track
    const std::vector<int> expected = {9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 10};
    for (std::size_t track = 1; track <= expected.size(); ++track)
    {
        EXPECT_EQ(TrackEvents(result.Midi, track).at(1), 0x90 | expected[track - 1])
            << "track " << track;
    }
}

TEST(MusToMidi, VelocityStartsAtSixtyFourAndDelaysReachUnusedTracks)
{
    const MusToMidiResult result = Convert(
        MusBuilder().Event(1, 0, {60}).Delay(7).Event(0, 0, {60}).Delay(3).Event(1, 1, {64}).End());
    ASSERT_EQ(result.Code, MusToMidiOk);
    EXPECT_EQ(TrackEvents(result.Midi, 1), (Bytes{0x00, 0x90, 60, 64, 0x07, 60, 0}));
    // The second channel's first event waits for both delays.
    EXPECT_EQ(TrackEvents(result.Midi, 2), (Bytes{0x0A, 0x91, 64, 64}));
}

TEST(MusToMidi, RunningStatusCanBeTurnedOff)
{
    const MusBuilder mus = MusBuilder().Event(1, 0, {60}).Event(1, 0, {62}).End();
    EXPECT_EQ(TrackEvents(Convert(mus).Midi, 1), (Bytes{0, 0x90, 60, 64, 0, 62, 64}));
    EXPECT_EQ(TrackEvents(Convert(mus, {89, 0, true}).Midi, 1),
              (Bytes{0, 0x90, 60, 64, 0, 0x90, 62, 64}));
}

TEST(MusToMidi, PrimaryChannelsAboveFifteenAreRefused)
{
    EXPECT_EQ(Convert(MusBuilder().Primary(15).Event(1, 0, {60}).End()).Code, MusToMidiOk);
    EXPECT_EQ(Convert(MusBuilder().Primary(16).Event(1, 0, {60}).End()).Code, MusTooManyChannels);
    EXPECT_STREQ(MusToMidiText(MusTooManyChannels), "Mus contains more than 16 channels");
}

TEST(MusToMidi, DamagedLumpsGetTheirCodes)
{
    EXPECT_EQ(MusToMidiBytes(ToBytes("MThd\0\0\0\6\0\1\0\1\0\x60\0\0"), {}).Code, MusNotMus);
    EXPECT_EQ(MusToMidiBytes(ToBytes("MUS\x1a\0\0"), {}).Code, MusShortRead);
    EXPECT_EQ(MusToMidiBytes(MusBuilder().Instruments(3).Build(), {}).Code, MusToMidiOk);
    Bytes cutInstruments = MusBuilder().Instruments(3).Build();
    cutInstruments.resize(18);
    EXPECT_EQ(MusToMidiBytes(cutInstruments, {}).Code, MusShortRead);
    Bytes pastEnd = MusBuilder().End().Build();
    pastEnd[6] = 200;
    EXPECT_EQ(MusToMidiBytes(pastEnd, {}).Code, MusCorrupted);
    EXPECT_EQ(Convert(MusBuilder().Event(5, 0, {1}).End()).Code, MusCorrupted);
    EXPECT_EQ(Convert(MusBuilder().Event(7, 0, {1}).End()).Code, MusCorrupted);
    EXPECT_EQ(Convert(MusBuilder().Event(4, 0, {15, 1}).End()).Code, MusCorrupted);
    EXPECT_EQ(Convert(MusBuilder().Event(3, 0, {15}).End()).Code, MusCorrupted);
    // A track that outgrows its buffer.
    MusBuilder many;
    for (int i = 0; i < 10; ++i)
    {
        many.Event(1, 0, {60});
    }
    EXPECT_EQ(Convert(many.End(), {89, 16, false}).Code, MusCorrupted);
    EXPECT_EQ(Convert(many.End(), {89, 64, false}).Code, MusToMidiOk);
    // An event cut short by the end of the lump is left out; the file stays readable.
    const MusToMidiResult cut = Convert(MusBuilder().Event(1, 0, {60}).Raw({0x90, 0x80 | 62}));
    ASSERT_EQ(cut.Code, MusToMidiOk);
    EXPECT_EQ(TrackEvents(cut.Midi, 1), (Bytes{0, 0x90, 60, 64}));
}

TEST(MusToMidi, TrackLengthsAreCountedInSixteenBits)
{
    MusBuilder mus;
    for (int i = 0; i < 22000; ++i)
    {
        mus.Event(i % 2, 0, {60}); // three bytes each under running status
    }
    const MusToMidiResult result = Convert(mus.End());
    ASSERT_EQ(result.Code, MusToMidiOk);
    const std::size_t body = result.Midi.size() - 14 - 8 - 42 - 8;
    const std::size_t written =
        (std::size_t{result.Midi[14 + 50 + 6]} << 8) | result.Midi[14 + 50 + 7];
    EXPECT_EQ(body, NameEvent.size() + 66001 + 4); // the first event has its status
    EXPECT_EQ(written, body % 65536);
}

TEST(MusToMidi, RandomDamageNeverCrashesAndGivesReadableMidi)
{
    MusBuilder mus;
    mus.Primary(4);
    for (int i = 0; i < 60; ++i)
    {
        mus.Event(i % 5, i % 4 == 3 ? 15 : i % 4, {static_cast<std::uint8_t>(i % 10), 40})
            .Delay(static_cast<std::uint32_t>(i));
    }
    const Bytes good = mus.End().Build();
    std::mt19937 random(7);
    for (int round = 0; round < 3000; ++round)
    {
        Bytes damaged = good;
        for (int hits = 0; hits < 4; ++hits)
        {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        damaged.resize(random() % (damaged.size() + 1));
        const MusToMidiResult result = MusToMidiBytes(damaged, {});
        if (result.Code == MusToMidiOk)
        {
            // Release notes pass their byte through as it is, so a damaged one may make a
            // message a reader refuses; reading must still end cleanly.
            MidiSong song;
            (void)ReadMidi(result.Midi, song);
        }
    }
}

TEST(MusToMidi, FilesReportTheirCodesAsTexts)
{
    testkit::TempDir dir;
    const Bytes mus = MusBuilder().Event(1, 0, {60}).End().Build();
    testkit::WriteFile(dir.File("in.mus"), "padding" + std::string(mus.begin(), mus.end()));
    std::FILE* in = std::fopen(dir.File("in.mus").c_str(), "rb");
    ASSERT_NE(in, nullptr);
    ResetSound();
    Sound().MusToMidiTempo = 140;
    EXPECT_EQ(
        MusToMidi(in, 7, static_cast<std::int64_t>(mus.size()), dir.File("out.mid"), 0, false),
        std::nullopt);
    const std::string midi = testkit::ReadFile(dir.File("out.mid"));
    ASSERT_GE(midi.size(), 14u);
    EXPECT_EQ(static_cast<unsigned char>(midi[13]), 140);
    EXPECT_EQ(MusToMidi(in, 0, 20, dir.File("out.mid"), 0, false), "not a MUS file");
    EXPECT_EQ(MusToMidi(in, 7, 10, dir.File("out.mid"), 0, false), "Can't open for read");
    EXPECT_EQ(MusToMidi(in, 7, 100, dir.File("no/such/dir.mid"), 0, false), "Can't write file");
    EXPECT_EQ(MusToMidi(nullptr, 0, 100, dir.File("out.mid"), 0, false), "Can't open file.");
    std::fclose(in);
    ResetSound();
}

} // namespace
} // namespace kelvar::sound
