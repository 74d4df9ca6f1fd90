// SND lumps to WAV and back: the rate ranges, the header, the reductions, damaged waves.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/WaveConversion.h"
#include "sound/SoundFormats.h"
#include "tests/sound/SoundTestKit.h"
#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <random>

namespace kelvar::sound
{
namespace
{

using test::Bytes;
using test::Le16;
using test::Le32;

Bytes Snd(unsigned rate, std::int32_t count, std::size_t samples, std::uint16_t format = 3)
{
    Bytes snd;
    Le16(snd, format);
    Le16(snd, rate);
    Le32(snd, static_cast<std::uint32_t>(count));
    for (std::size_t i = 0; i < samples; ++i)
    {
        snd.push_back(static_cast<std::uint8_t>(i * 7));
    }
    return snd;
}

// A wave with a plain 44-byte header, or with `extra` chunk bytes between fmt and data.
Bytes Wave(int tag, int channels, std::uint32_t rate, int bits, const Bytes& data,
           std::size_t extra = 0, std::int32_t dataSize = -1)
{
    Bytes wav = test::ToBytes("RIFF");
    Le32(wav, static_cast<std::uint32_t>(36 + extra + data.size()));
    const Bytes fmt = test::ToBytes("WAVEfmt ");
    wav.insert(wav.end(), fmt.begin(), fmt.end());
    Le32(wav, 16);
    Le16(wav, static_cast<unsigned>(tag));
    Le16(wav, static_cast<unsigned>(channels));
    Le32(wav, rate);
    Le32(wav, rate * static_cast<std::uint32_t>(channels * bits / 8));
    Le16(wav, static_cast<unsigned>(channels * bits / 8));
    Le16(wav, static_cast<unsigned>(bits));
    if (extra != 0)
    {
        const Bytes list = test::ToBytes("LIST");
        wav.insert(wav.end(), list.begin(), list.end());
        Le32(wav, static_cast<std::uint32_t>(extra - 8));
        wav.resize(wav.size() + extra - 8, 'x');
    }
    const Bytes chunk = test::ToBytes("data");
    wav.insert(wav.end(), chunk.begin(), chunk.end());
    Le32(wav, static_cast<std::uint32_t>(dataSize < 0 ? static_cast<std::int32_t>(data.size())
                                                      : dataSize));
    wav.insert(wav.end(), data.begin(), data.end());
    return wav;
}

TEST(SndTest, RateRangesDependOnTheCaller)
{
    EXPECT_TRUE(IsSnd(Snd(5000, 40, 40), ListRateLow));
    EXPECT_FALSE(IsSnd(Snd(5000, 40, 40), ConvertRateLow));
    Bytes wav;
    EXPECT_EQ(SndToWav(Snd(5000, 40, 40), wav), "Entry not sound?");
    EXPECT_EQ(SndToWav(Snd(6000, 40, 40), wav), std::nullopt);
    EXPECT_TRUE(IsSnd(Snd(2000, 1, 1), ListRateLow));
    EXPECT_FALSE(IsSnd(Snd(1999, 1, 1), ListRateLow));
    EXPECT_TRUE(IsSnd(Snd(45000, 1, 1), ListRateLow));
    EXPECT_FALSE(IsSnd(Snd(45001, 1, 1), ListRateLow));
    EXPECT_FALSE(IsSnd(Snd(11025, 0, 4), ListRateLow)); // no samples
    EXPECT_TRUE(IsSnd(Snd(11025, 12, 4), ListRateLow)); // up to the lump's size
    EXPECT_FALSE(IsSnd(Snd(11025, 13, 4), ListRateLow));
    EXPECT_FALSE(IsSnd(Snd(11025, 4, 4, 2), ListRateLow)); // format 3 only
    EXPECT_FALSE(IsSnd(Bytes{3, 0, 0x11}, ListRateLow));
}

TEST(SndToWav, WritesTheHeaderAndEveryByteAfterTheSndHeader)
{
    // The count says 40, but all 50 bytes after the header go out, as the lump holds them.
    const Bytes snd = Snd(11025, 40, 50);
    Bytes wav;
    ASSERT_EQ(SndToWav(snd, wav), std::nullopt);
    Bytes expected = test::ToBytes("RIFF");
    Le32(expected, 58 + 28);
    const Bytes rest = test::ToBytes("WAVEfmt ");
    expected.insert(expected.end(), rest.begin(), rest.end());
    for (const unsigned word : {16u, 0u, 1u, 1u})
    {
        Le16(expected, word);
    }
    Le32(expected, 11025);
    Le32(expected, 11025);
    Le16(expected, 1);
    Le16(expected, 8);
    const Bytes data = test::ToBytes("data");
    expected.insert(expected.end(), data.begin(), data.end());
    Le32(expected, 50);
    expected.insert(expected.end(), snd.begin() + 8, snd.end());
    EXPECT_EQ(wav, expected);
    EXPECT_EQ(wav.size(), snd.size() + 36);

    // A lump that already is a wave is copied; short or doubtful ones are refused.
    const Bytes riff = Wave(1, 1, 22050, 8, Bytes(10, 0x80));
    ASSERT_EQ(SndToWav(riff, wav), std::nullopt);
    EXPECT_EQ(wav, riff);
    EXPECT_EQ(SndToWav(Snd(11025, 37, 37), wav), "size too small");   // 45 bytes
    EXPECT_EQ(SndToWav(Snd(11025, 39, 38), wav), "Entry not sound?"); // count past the data
}

TEST(WavToSnd, SixteenBitStereoBecomesEightBitMonoAtTheSameRate)
{
    Bytes data;
    const std::int16_t left[] = {-32768, -1, 0, 255, 256, 32767};
    for (const std::int16_t sample : left)
    {
        Le16(data, static_cast<std::uint16_t>(sample));
        Le16(data, 0x1234); // the right channel is dropped
    }
    Bytes snd;
    ASSERT_EQ(WavToSnd(Wave(1, 2, 44100, 16, data), snd), std::nullopt);
    EXPECT_EQ(snd, (Bytes{3, 0, 0x44, 0xAC, 6, 0, 0, 0, 0, 127, 128, 128, 129, 255}));

    // 16-bit mono uses the same reduction; 8-bit stereo takes the mean of the pair.
    ASSERT_EQ(WavToSnd(Wave(1, 1, 22050, 16, {0x00, 0x80, 0xFF, 0x7F}), snd), std::nullopt);
    EXPECT_EQ(Bytes(snd.begin() + 4, snd.end()), (Bytes{2, 0, 0, 0, 0, 255}));
    ASSERT_EQ(WavToSnd(Wave(1, 2, 11025, 8, {10, 21, 255, 254}), snd), std::nullopt);
    EXPECT_EQ(Bytes(snd.begin() + 4, snd.end()), (Bytes{2, 0, 0, 0, 15, 254}));
    // A rate past 16 bits keeps its low 16 bits.
    ASSERT_EQ(WavToSnd(Wave(1, 1, 0x10000 + 8000, 8, {1, 2}), snd), std::nullopt);
    EXPECT_EQ(snd[2] | (snd[3] << 8), 8000);
}

TEST(WavToSnd, FindsTheDataChunkAndTrustsTheFileOverItsSize)
{
    Bytes snd;
    // A LIST chunk before the data: the chunk is found at the next even position.
    ASSERT_EQ(WavToSnd(Wave(1, 1, 11025, 8, Bytes(40, 7), 12), snd), std::nullopt);
    EXPECT_EQ(snd.size(), 48u);
    // A data size past the end, or none, takes the rest of the file.
    ASSERT_EQ(WavToSnd(Wave(1, 1, 11025, 8, Bytes(20, 7), 0, 5000), snd), std::nullopt);
    EXPECT_EQ(snd.size(), 28u);
    ASSERT_EQ(WavToSnd(Wave(1, 1, 11025, 8, Bytes(20, 7), 0, 0), snd), std::nullopt);
    EXPECT_EQ(snd.size(), 28u);
    // Searched only up to size - 44: a small wave behind a long chunk is not found.
    EXPECT_EQ(WavToSnd(Wave(1, 1, 11025, 8, Bytes(10, 7), 100), snd), "WAV 'data' control missing");
    Bytes noData = Wave(1, 1, 11025, 8, Bytes(20, 7));
    noData[36] = 'D';
    EXPECT_EQ(WavToSnd(noData, snd), "WAV 'data' control missing");
    EXPECT_EQ(ConvertWavToSnd(Wave(1, 1, 11025, 8, {}), snd), "Wave size <= 0 : 0");
}

TEST(WavToSnd, RefusesWhatItCannotReduce)
{
    Bytes snd;
    const Bytes data(20, 0);
    EXPECT_EQ(WavToSnd(Wave(85, 2, 44100, 16, data), snd),
              "Type 1 (PCM), 8/16 bit .WAV files only\n\nType=85\nBits=16\nChannels=2\n\n"
              "Probably MPEG Use Sound Recorder to convert");
    EXPECT_EQ(WavToSnd(Wave(2, 1, 11025, 4, data), snd),
              "Type 1 (PCM), 8/16 bit .WAV files only\n\nType=2\nBits=4\nChannels=1\n\n"
              "Probably PCM Use Sound Recorder to convert");
    EXPECT_EQ(WavToSnd(Wave(1, 3, 11025, 8, data), snd),
              "Type 1 (PCM), 8/16 bit .WAV files only\n\nType=1\nBits=8\nChannels=3\n\n"
              "Use Sound Recorder to convert");
    EXPECT_EQ(WavToSnd(Bytes(45, 0), snd), "size too small");
    // Not a wave: an SND header must stand at 44, so a plain SND lump is refused here.
    EXPECT_EQ(WavToSnd(Snd(11025, 100, 100), snd), "Entry not sound?");
    Bytes shifted(44, 0);
    const Bytes inner = Snd(11025, 100, 100);
    shifted.insert(shifted.end(), inner.begin(), inner.end());
    ASSERT_EQ(WavToSnd(shifted, snd), std::nullopt);
    EXPECT_EQ(snd, shifted);
}

TEST(SoundFiles, ConvertBetweenOffsetsAndReportClosedFiles)
{
    testkit::TempDir dir;
    const Bytes snd = Snd(22050, 60, 60);
    testkit::WriteFile(dir.File("in.lmp"), "0123" + std::string(snd.begin(), snd.end()));
    std::FILE* in = std::fopen(dir.File("in.lmp").c_str(), "rb");
    std::FILE* out = std::fopen(dir.File("out.wav").c_str(), "w+b");
    ASSERT_TRUE(in != nullptr && out != nullptr);
    std::int32_t size = static_cast<std::int32_t>(snd.size());
    ASSERT_EQ(SndLumpToWav(out, 2, in, 4, size), std::nullopt);
    EXPECT_EQ(size, 68 + 36);
    const Bytes written = ReadRange(out, 2, -1);
    Bytes wav;
    ASSERT_EQ(SndToWav(snd, wav), std::nullopt);
    EXPECT_EQ(written, wav);
    // And back: the size is unknown (-1) and read to the end of the file.
    std::int32_t unknown = -1;
    std::FILE* back = std::fopen(dir.File("back.snd").c_str(), "w+b");
    ASSERT_EQ(WavLumpToSnd(back, 0, out, 2, unknown), std::nullopt);
    EXPECT_EQ(ReadRange(back, 0, -1), snd);
    EXPECT_EQ(unknown, static_cast<std::int32_t>(snd.size()));

    std::int32_t small = 45;
    EXPECT_EQ(SndLumpToWav(out, 0, in, 0, small), "size too small");
    std::int32_t enough = 60;
    EXPECT_EQ(SndLumpToWav(nullptr, 0, in, 0, enough), "Snd-to-Wav sound Files not open");
    EXPECT_EQ(WavLumpToSnd(out, 0, nullptr, 0, enough), "Wav-to-Snd sound Files not open");
    EXPECT_EQ(WavLumpToSnd(out, 0, in, 0, small), "size too small");
    for (std::FILE* file : {in, out, back})
    {
        std::fclose(file);
    }
}

TEST(SoundFiles, RandomDamageNeverCrashes)
{
    Bytes wave16 = Wave(1, 2, 44100, 16, Bytes(64, 9), 12);
    const Bytes snd = Snd(11025, 80, 80);
    std::mt19937 random(11);
    for (int round = 0; round < 4000; ++round)
    {
        Bytes damaged = round % 2 == 0 ? wave16 : snd;
        for (int hits = 0; hits < 3; ++hits)
        {
            damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
        }
        damaged.resize(random() % (damaged.size() + 1));
        Bytes out;
        (void)WavToSnd(damaged, out);
        (void)ConvertWavToSnd(damaged, out);
        (void)SndToWav(damaged, out);
        (void)IsSnd(damaged, ListRateLow);
    }
}

} // namespace
} // namespace kelvar::sound
