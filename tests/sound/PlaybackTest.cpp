// Playing sounds and music through the recording audio port: the checks on SND, WAV, MUS and
// MIDI lumps, the wave built for an SND, the waveform, and the interface sounds' settings.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/Playback.h"
#include "platform/AudioPcm.h"
#include "platform/test/RecordingAudio.h"
#include "platform/test/RecordingCanvas.h"
#include "sound/InterfaceSounds.h"
#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"
#include "sound/Waveform.h"
#include "tests/sound/SoundTestKit.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

namespace kelvar::sound
{
namespace
{

using platform::Point;
using test::Bytes;
using test::Le16;
using test::Le32;

Bytes Snd(unsigned rate, std::int32_t count, const Bytes& samples)
{
    Bytes snd;
    Le16(snd, 3);
    Le16(snd, rate);
    Le32(snd, static_cast<std::uint32_t>(count));
    snd.insert(snd.end(), samples.begin(), samples.end());
    return snd;
}

// A wave of a plain 44-byte header and `data`, or with `extra` bytes of another chunk before
// the data chunk.
Bytes Wave(int tag, int channels, int bits, const Bytes& data, std::size_t extra = 0)
{
    Bytes wav = test::ToBytes("RIFF");
    Le32(wav, static_cast<std::uint32_t>(36 + extra + data.size()));
    const Bytes fmt = test::ToBytes("WAVEfmt ");
    wav.insert(wav.end(), fmt.begin(), fmt.end());
    Le32(wav, 16);
    Le16(wav, static_cast<unsigned>(tag));
    Le16(wav, static_cast<unsigned>(channels));
    Le32(wav, 11025);
    Le32(wav, static_cast<std::uint32_t>(11025 * channels * bits / 8));
    Le16(wav, static_cast<unsigned>(channels * bits / 8));
    Le16(wav, static_cast<unsigned>(bits));
    if (extra > 0)
    {
        const Bytes list = test::ToBytes("LIST");
        wav.insert(wav.end(), list.begin(), list.end());
        Le32(wav, static_cast<std::uint32_t>(extra - 8));
        wav.insert(wav.end(), extra - 8, 0);
    }
    const Bytes tag4 = test::ToBytes("data");
    wav.insert(wav.end(), tag4.begin(), tag4.end());
    Le32(wav, static_cast<std::uint32_t>(data.size()));
    wav.insert(wav.end(), data.begin(), data.end());
    return wav;
}

Bytes Words(std::initializer_list<unsigned> values)
{
    Bytes out;
    for (unsigned value : values)
    {
        Le16(out, value);
    }
    return out;
}

class PlaybackTest : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        ResetSound();
    }
    void TearDown() override
    {
        ResetSound();
        WadFixture::TearDown();
    }

    platform::RecordingAudio Audio;
    platform::ScopedAudio Installed{Audio};
};

TEST(WaveformPoints, EightBitMonoScalesEachSample)
{
    const auto points = WaveformPoints(Wave(1, 1, 8, {0, 64, 128, 255}), 100, 200);
    ASSERT_TRUE(points);
    EXPECT_EQ(*points, (std::vector<Point>{{0, 0}, {25, 50}, {50, 100}, {75, 199}}));
}

TEST(WaveformPoints, SixteenBitAndStereoAreReducedFirst)
{
    // Unsigned x becomes (x - 32768) / 256: 0 -> 128, 0x4000 -> 192, 0xC000 -> 64, 0xFFFF -> 127.
    const auto sixteen = WaveformPoints(Wave(1, 1, 16, Words({0, 0x4000, 0xC000, 0xFFFF})), 8, 256);
    ASSERT_TRUE(sixteen);
    EXPECT_EQ(*sixteen, (std::vector<Point>{{0, 128}, {2, 192}, {4, 64}, {6, 127}}));

    // 8-bit stereo takes the mean of each pair: 15 and 150.
    const auto stereo = WaveformPoints(Wave(1, 2, 8, {10, 20, 100, 200}), 10, 128);
    ASSERT_TRUE(stereo);
    EXPECT_EQ(*stereo, (std::vector<Point>{{0, 7}, {5, 75}}));

    // 16-bit stereo keeps the left channel.
    const auto left = WaveformPoints(Wave(1, 2, 16, Words({0x4000, 0, 0xC000, 0})), 2, 256);
    ASSERT_TRUE(left);
    EXPECT_EQ(*left, (std::vector<Point>{{0, 192}, {1, 64}}));
}

TEST(WaveformPoints, LongWavesTakeEveryStepthSample)
{
    Bytes data(2500);
    for (std::size_t i = 0; i < data.size(); ++i)
    {
        data[i] = static_cast<std::uint8_t>(i);
    }
    // The step is 2500 / 1000 = 2, so 1250 points, point k from sample 2k.
    const auto points = WaveformPoints(Wave(1, 1, 8, data), 500, 256);
    ASSERT_TRUE(points);
    ASSERT_EQ(points->size(), 1250u);
    EXPECT_EQ((*points)[1], (Point{0, 2}));
    EXPECT_EQ((*points)[3], (Point{1, 6}));
    EXPECT_EQ(points->back(), (Point{1249 * 500 / 1250, (2 * 1249) % 256}));
}

TEST(WaveformPoints, WavesWithNothingToDrawGiveTheNote)
{
    EXPECT_FALSE(WaveformPoints(Wave(1, 1, 8, {}), 100, 100));         // no data
    EXPECT_FALSE(WaveformPoints(Bytes(20, 0), 100, 100));              // no header
    EXPECT_FALSE(WaveformPoints(Wave(2, 1, 8, {1, 2, 3}), 100, 100));  // ADPCM
    EXPECT_FALSE(WaveformPoints(Wave(1, 3, 8, {1, 2, 3}), 100, 100));  // three channels
    EXPECT_FALSE(WaveformPoints(Wave(1, 1, 24, {1, 2, 3}), 100, 100)); // 24 bits

    platform::RecordingCanvas canvas(64, 32);
    DrawWaveform(canvas, Wave(85, 1, 8, {1}), 0, 2);
    EXPECT_EQ(canvas.Texts, std::vector<std::string>{EmptyWaveformNote});
    EXPECT_TRUE(canvas.OpsNamed("LineTo").empty());
}

TEST_F(PlaybackTest, SndPlaysAsAWaveBuiltInMemory)
{
    // The count (10) is more than the 4 samples there: the data is cut to size - 8.
    const Bytes lump = Snd(5000, 10, {1, 2, 3, 4});
    platform::RecordingCanvas canvas(40, 256);
    EXPECT_EQ(PlaySnd(lump, &canvas), PlayStarted);
    ASSERT_EQ(Audio.Names(), std::vector<std::string>{"PlayWave"});
    const auto header = MakeWavHeader(12 + 36, 5000, 4);
    Bytes expected(header.begin(), header.end());
    expected.insert(expected.end(), {1, 2, 3, 4});
    EXPECT_EQ(Audio.Calls[0].Bytes, expected);
    EXPECT_EQ(canvas.OpsNamed("LineTo").size(), 4u);

    Audio.Calls.clear();
    EXPECT_EQ(PlaySnd(Snd(11025, 1, {9}), nullptr), PlayRefused); // 9 bytes
    EXPECT_EQ(PlaySnd(Snd(1999, 2, {9, 9}), nullptr), PlayRefused);
    EXPECT_EQ(PlaySnd(Snd(11025, 11, {1, 2}), nullptr), PlayRefused); // count over the size
    EXPECT_TRUE(Audio.Calls.empty());

    Audio.WaveStarts = false;
    EXPECT_EQ(PlaySnd(lump, nullptr), PlayFailed);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(PlaybackTest, WavChecksItsHeaderAndDataChunk)
{
    const Bytes wave = Wave(1, 1, 8, Bytes(7, 128)); // 51 bytes
    EXPECT_EQ(PlayWav(wave, nullptr), PlayStarted);
    EXPECT_EQ(Audio.Calls.back().Bytes, wave);

    Bytes lower = wave;
    std::copy_n("riff", 4, lower.begin());
    std::copy_n("wavefmt ", 8, lower.begin() + 8);
    EXPECT_EQ(PlayWav(lower, nullptr), PlayStarted);

    // A chunk between fmt and data: the data chunk is searched for.
    EXPECT_EQ(PlayWav(Wave(1, 1, 8, Bytes(60, 128), 12), nullptr), PlayStarted);
    // ... but only up to size - 44, so a short wave with the chunk late is refused.
    EXPECT_EQ(PlayWav(Wave(1, 1, 8, Bytes(8, 128), 12), nullptr), PlayRefused);

    Audio.Calls.clear();
    EXPECT_EQ(PlayWav(Wave(1, 1, 8, Bytes(6, 128)), nullptr), PlayRefused); // 50 bytes
    Bytes oversized = wave;
    oversized[40] = 8; // data size 8 > 51 - 44
    EXPECT_EQ(PlayWav(oversized, nullptr), PlayRefused);
    Bytes noData = wave;
    std::copy_n("junk", 4, noData.begin() + 36);
    EXPECT_EQ(PlayWav(noData, nullptr), PlayRefused);
    EXPECT_EQ(PlayWav(Snd(11025, 60, Bytes(60, 1)), nullptr), PlayRefused);
    EXPECT_TRUE(Audio.Calls.empty());
}

TEST_F(PlaybackTest, SoundLumpsAreFoundByNameWithTheNarrowerRate)
{
    const Bytes slow = Snd(5000, 4, {1, 2, 3, 4});
    const Bytes pistol = Snd(11025, 4, {1, 2, 3, 4});
    const Bytes wave = Wave(1, 1, 8, Bytes(10, 128));
    const std::string iwad = testkit::WadBuilder("IWAD")
                                 .Lump("DSSLOW", std::string(slow.begin(), slow.end()))
                                 .Lump("DSPISTOL", std::string(pistol.begin(), pistol.end()))
                                 .Lump("DSWAVE", std::string(wave.begin(), wave.end()))
                                 .Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);

    EXPECT_EQ(PlaySoundLump("dspistol", nullptr), PlayStarted);
    EXPECT_EQ(PlaySoundLump("DSWAVE", nullptr), PlayStarted);
    EXPECT_EQ(Audio.Calls.back().Bytes, wave);
    // 5000 Hz plays from a list (PlaySnd) but not by name.
    EXPECT_EQ(PlaySoundLump("DSSLOW", nullptr), PlayRefused);
    EXPECT_EQ(PlaySoundLump("DSNONE", nullptr), PlayNotFound);
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"PlayWave", "PlayWave"}));

    StopSound();
    EXPECT_EQ(Audio.Names().back(), "StopSound");
}

TEST_F(PlaybackTest, MusicStopsEverythingAndAFailedOpenStands)
{
    Bytes midi = test::ToBytes("MThd");
    midi.resize(51);
    EXPECT_EQ(PlayMidi(midi), PlayStarted);
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic", "PlayMidi"}));

    Audio.Calls.clear();
    Bytes rmid = test::ToBytes("RIFF....RMIDdata");
    rmid.resize(51);
    EXPECT_EQ(PlayMidi(rmid), PlayStarted);
    EXPECT_EQ(PlayMidi(Bytes(midi.begin(), midi.end() - 1)), PlayRefused);
    EXPECT_EQ(PlayMidi(test::ToBytes(std::string("MUS\x1a") + std::string(60, '\0'))), PlayRefused);

    // No output: the port says so in the status line, and later music is still tried.
    Audio.MidiResult = platform::AudioNoDevice;
    EXPECT_EQ(PlayMidi(midi), PlayFailed);
    EXPECT_TRUE(Ui.Messages.empty());

    Audio.Calls.clear();
    Audio.MidiResult = platform::AudioNoSynth;
    EXPECT_EQ(PlayMidi(midi), PlayFailed);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Title, "Kelvar Error");
    EXPECT_EQ(Ui.Messages[0].Text(), "Play MIDI Open error 3\n");
    Audio.MidiResult = platform::AudioStarted;
    EXPECT_EQ(PlayMidi(midi), PlayPending);
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "StopMusic", "PlayMidi",
                                                       "StopSound", "StopMusic"}));
    EXPECT_EQ(Ui.Messages.size(), 1u);
}

TEST_F(PlaybackTest, MusPlaysAsItsMidiConversion)
{
    const Bytes mus =
        test::MusBuilder().Event(1, 0, {60 | 0x80, 100}).Delay(10).Event(0, 0, {60}).End().Build();
    const std::string iwad = testkit::WadBuilder("IWAD")
                                 .Lump("D_RUNNIN", std::string(mus.begin(), mus.end()))
                                 .Write(Dir.Path() / "iwad.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    EXPECT_EQ(PlayMusicLump("D_RUNNIN"), PlayStarted);
    ASSERT_EQ(Audio.Calls.back().Name, "PlayMidi");
    EXPECT_EQ(Audio.Calls.back().Bytes, MusToMidiBytes(mus, MusToMidiOptions{}).Midi);
    EXPECT_EQ(PlayMusicLump("D_NONE"), PlayNotFound);
    EXPECT_EQ(PlayMus(test::ToBytes("MUS\x1a but cut short")), PlayRefused);
}

TEST_F(PlaybackTest, InterfaceSoundsFollowTheirSettings)
{
    PlayInterfaceSound(SoundMode);
    EXPECT_EQ(Audio.Names(), (std::vector<std::string>{"StopSound", "PlayWave"}));
    const auto wave = InterfaceSoundWave(SoundMode);
    EXPECT_EQ(Audio.Calls.back().Bytes, Bytes(wave.begin(), wave.end()));
    EXPECT_EQ(Ui.Beeps, 0);

    Audio.Calls.clear();
    Audio.WaveStarts = false;
    PlayErrorSound();
    EXPECT_EQ(Audio.Calls.back().Bytes.size(), InterfaceSoundWave(SoundError).size());
    EXPECT_EQ(Ui.Beeps, 1);
    PlayInterfaceSound(13);
    EXPECT_EQ(Ui.Beeps, 2);

    Audio.Calls.clear();
    Sound().SoundHardwareOn = false;
    PlayInfoSound();
    EXPECT_EQ(Ui.Beeps, 3);
    Sound().InterfaceSoundsOn = false;
    PlayInterfaceSound(SoundTick);
    EXPECT_EQ(Ui.Beeps, 3);
    EXPECT_TRUE(Audio.Calls.empty());
}

TEST(InterfaceSoundWave, TwelveDistinctShortPcmWaves)
{
    std::vector<Bytes> seen;
    for (int n = 1; n <= InterfaceSoundCount; ++n)
    {
        const auto bytes = InterfaceSoundWave(n);
        const auto pcm = platform::DecodeWave(bytes);
        ASSERT_TRUE(pcm) << n;
        EXPECT_EQ(pcm->Rate, 11025);
        EXPECT_EQ(pcm->Channels, 1);
        EXPECT_GT(pcm->Samples.size(), 200u) << n;
        EXPECT_LT(pcm->Samples.size(), 11025u / 2) << n; // under half a second
        // The wave plays through the same checks a WAV lump meets.
        platform::RecordingAudio audio;
        platform::ScopedAudio installed(audio);
        EXPECT_EQ(PlayWav(bytes, nullptr), PlayStarted) << n;
        const Bytes copy(bytes.begin(), bytes.end());
        EXPECT_EQ(std::count(seen.begin(), seen.end(), copy), 0) << n;
        seen.push_back(copy);
    }
    EXPECT_TRUE(InterfaceSoundWave(0).empty());
}

} // namespace
} // namespace kelvar::sound
