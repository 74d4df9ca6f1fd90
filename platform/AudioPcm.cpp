// PCM waves for an audio device: decoding and rate and channel conversion.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/AudioPcm.h"

#include <algorithm>
#include <cstring>

namespace kelvar::platform
{

namespace
{

std::uint32_t U32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 |
                                      bytes[at + 3] << 24);
}

std::uint16_t U16(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

bool TagAt(std::span<const std::uint8_t> bytes, std::size_t at, const char* tag)
{
    return bytes.size() >= at + 4 && std::memcmp(bytes.data() + at, tag, 4) == 0;
}

struct WaveFormat
{
    int Tag = 0;
    int Channels = 0;
    int Rate = 0;
    int Bits = 0;
};

} // namespace

std::optional<PcmWave> DecodeWave(std::span<const std::uint8_t> wave)
{
    if (!TagAt(wave, 0, "RIFF") || !TagAt(wave, 8, "WAVE"))
    {
        return std::nullopt;
    }
    std::optional<WaveFormat> format;
    std::span<const std::uint8_t> data;
    bool haveData = false;
    // Chunks are padded to even sizes.
    for (std::size_t at = 12; at + 8 <= wave.size();)
    {
        const std::size_t size = U32(wave, at + 4);
        const std::size_t body = at + 8;
        const std::size_t available = std::min(size, wave.size() - body);
        if (TagAt(wave, at, "fmt ") && available >= 16)
        {
            format = WaveFormat{U16(wave, body), U16(wave, body + 2),
                                static_cast<int>(U32(wave, body + 4)), U16(wave, body + 14)};
        }
        else if (TagAt(wave, at, "data"))
        {
            data = wave.subspan(body, available);
            haveData = true;
            break;
        }
        at = body + size + (size & 1);
    }
    if (!format || !haveData || format->Tag != 1 || format->Channels < 1 || format->Channels > 2 ||
        (format->Bits != 8 && format->Bits != 16) || format->Rate <= 0)
    {
        return std::nullopt;
    }
    PcmWave pcm{format->Rate, format->Channels, {}};
    const std::size_t frameBytes = static_cast<std::size_t>(format->Channels * format->Bits / 8);
    const std::size_t samples = data.size() / frameBytes * static_cast<std::size_t>(pcm.Channels);
    pcm.Samples.reserve(samples);
    for (std::size_t i = 0; i < samples; ++i)
    {
        // 8-bit samples are unsigned around 128, 16-bit ones signed around 0.
        pcm.Samples.push_back(
            format->Bits == 8
                ? static_cast<float>(data[i] - 128) / 128.0f
                : static_cast<float>(static_cast<std::int16_t>(U16(data, i * 2))) / 32768.0f);
    }
    return pcm;
}

std::vector<float> ConvertPcm(const PcmWave& wave, int rate, int channels)
{
    const std::size_t frames = wave.Samples.size() / static_cast<std::size_t>(wave.Channels);
    if (frames == 0 || rate <= 0 || wave.Rate <= 0)
    {
        return {};
    }
    auto sample = [&](std::size_t frame, int channel)
    {
        const std::size_t base = frame * static_cast<std::size_t>(wave.Channels);
        if (wave.Channels == channels)
        {
            return wave.Samples[base + static_cast<std::size_t>(channel)];
        }
        return wave.Channels == 1 ? wave.Samples[base]
                                  : (wave.Samples[base] + wave.Samples[base + 1]) / 2.0f;
    };
    const auto outFrames =
        static_cast<std::size_t>(static_cast<std::int64_t>(frames) * rate / wave.Rate);
    std::vector<float> out;
    out.reserve(outFrames * static_cast<std::size_t>(channels));
    const double step = static_cast<double>(wave.Rate) / rate;
    for (std::size_t i = 0; i < outFrames; ++i)
    {
        const double position = static_cast<double>(i) * step;
        const auto left = static_cast<std::size_t>(position);
        const std::size_t right = std::min(left + 1, frames - 1);
        const auto weight = static_cast<float>(position - static_cast<double>(left));
        for (int c = 0; c < channels; ++c)
        {
            out.push_back(sample(left, c) * (1.0f - weight) + sample(right, c) * weight);
        }
    }
    return out;
}

} // namespace kelvar::platform
