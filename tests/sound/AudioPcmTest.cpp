// Waves decoded for an audio device and brought to its rate and channels.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AudioPcm.h"
#include "sound/SoundFormats.h"
#include "tests/sound/SoundTestKit.h"

#include <gtest/gtest.h>

namespace kelvar::platform
{
namespace
{

using sound::test::Bytes;
using sound::test::Le16;
using sound::test::Le32;

// A wave with an odd-sized chunk before "fmt " and another before "data", as editors write.
Bytes ChunkyWave(int channels, int bits, const Bytes& data)
{
    Bytes wav = sound::test::ToBytes("RIFF");
    Le32(wav, 0xFF); // the RIFF size isn't trusted
    const Bytes junk = sound::test::ToBytes("WAVEjunk");
    wav.insert(wav.end(), junk.begin(), junk.end());
    Le32(wav, 3);
    wav.insert(wav.end(), {1, 2, 3, 0}); // 3 bytes and the pad byte
    const Bytes fmt = sound::test::ToBytes("fmt ");
    wav.insert(wav.end(), fmt.begin(), fmt.end());
    Le32(wav, 16);
    Le16(wav, 1);
    Le16(wav, static_cast<unsigned>(channels));
    Le32(wav, 8000);
    Le32(wav, static_cast<std::uint32_t>(8000 * channels * bits / 8));
    Le16(wav, static_cast<unsigned>(channels * bits / 8));
    Le16(wav, static_cast<unsigned>(bits));
    const Bytes tag = sound::test::ToBytes("data");
    wav.insert(wav.end(), tag.begin(), tag.end());
    Le32(wav, 1000); // longer than what follows: cut to the bytes there
    wav.insert(wav.end(), data.begin(), data.end());
    return wav;
}

TEST(DecodeWave, ReadsEightAndSixteenBitSamplesAfterOtherChunks)
{
    const auto eight = DecodeWave(ChunkyWave(1, 8, {0, 128, 255}));
    ASSERT_TRUE(eight);
    EXPECT_EQ(*eight, (PcmWave{8000, 1, {-1.0f, 0.0f, 127.0f / 128.0f}}));

    // Two stereo frames; a trailing odd byte is no sample.
    const auto sixteen = DecodeWave(ChunkyWave(2, 16, {0x00, 0x80, 0xFF, 0x7F, 0, 0x40, 0, 0, 9}));
    ASSERT_TRUE(sixteen);
    EXPECT_EQ(*sixteen, (PcmWave{8000, 2, {-1.0f, 32767.0f / 32768.0f, 0.5f, 0.0f}}));

    const auto header = sound::MakeWavHeader(38, 11025, 2);
    Bytes plain(header.begin(), header.end());
    plain.insert(plain.end(), {128, 192});
    EXPECT_EQ(*DecodeWave(plain), (PcmWave{11025, 1, {0.0f, 0.5f}}));
}

TEST(DecodeWave, RefusesWhatIsNotPcm)
{
    Bytes adpcm = ChunkyWave(1, 8, {1, 2});
    adpcm[32] = 2; // the format tag
    EXPECT_FALSE(DecodeWave(adpcm));
    EXPECT_FALSE(DecodeWave(ChunkyWave(3, 8, {1, 2, 3})));
    EXPECT_FALSE(DecodeWave(ChunkyWave(1, 12, {1, 2})));
    Bytes noData = ChunkyWave(1, 8, {1});
    noData.resize(noData.size() - 9);
    EXPECT_FALSE(DecodeWave(noData));
    EXPECT_FALSE(DecodeWave(sound::test::ToBytes("RIFX    WAVEfmt ")));
    EXPECT_FALSE(DecodeWave({}));
}

TEST(ConvertPcm, ResamplesLinearlyAndMatchesChannels)
{
    const PcmWave mono{2, 1, {0.0f, 1.0f}};
    // Twice the rate: a point halfway between; the last frame holds at the end.
    EXPECT_EQ(ConvertPcm(mono, 4, 1), (std::vector<float>{0.0f, 0.5f, 1.0f, 1.0f}));
    EXPECT_EQ(ConvertPcm(mono, 2, 2), (std::vector<float>{0.0f, 0.0f, 1.0f, 1.0f}));

    const PcmWave stereo{4, 2, {1.0f, 0.0f, -1.0f, 0.0f, 0.5f, 0.5f, 0.0f, 0.0f}};
    EXPECT_EQ(ConvertPcm(stereo, 4, 1), (std::vector<float>{0.5f, -0.5f, 0.5f, 0.0f}));
    EXPECT_EQ(ConvertPcm(stereo, 2, 2), (std::vector<float>{1.0f, 0.0f, 0.5f, 0.5f}));
    EXPECT_TRUE(ConvertPcm(PcmWave{4, 1, {}}, 44100, 2).empty());
}

} // namespace
} // namespace kelvar::platform
