// PCM waves for an audio device: a RIFF WAVE decoded to samples, and those samples brought to
// the rate and channel count a device asks for.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::platform
{

/// Samples from -1 to 1, the channels of each frame side by side.
struct PcmWave
{
    int Rate = 0;
    int Channels = 0;
    std::vector<float> Samples;

    bool operator==(const PcmWave&) const = default;
};

/// The samples of a RIFF WAVE of 8 or 16-bit PCM with one or two channels. The chunks are
/// walked from byte 12, so a "data" chunk after other chunks is found; a data chunk longer
/// than the bytes there is cut to them. Nothing for any other wave, or no wave at all.
std::optional<PcmWave> DecodeWave(std::span<const std::uint8_t> wave);

/// `wave` at `rate` with `channels` (1 or 2): resampled by linear interpolation, a mono wave
/// copied to both sides, a stereo one mixed down to its mean.
std::vector<float> ConvertPcm(const PcmWave& wave, int rate, int channels);

} // namespace kelvar::platform
