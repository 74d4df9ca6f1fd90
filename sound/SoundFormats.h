// The Doom SND lump and the RIFF WAVE header: their layouts and the tests that tell them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace kelvar::sound
{

/// Bytes of the SND header: format, rate, sample count.
inline constexpr int SndHeaderSize = 8;
/// The format word of every SND lump.
inline constexpr std::uint16_t SndFormatTag = 3;
/// The rates an SND may have. Lists and playing accept the wider range; the conversions to and
/// from WAV the narrower one. The two differ on purpose: a lump of 5000 Hz is shown and played
/// as a sound, but not converted.
inline constexpr int ListRateLow = 2000;
inline constexpr int ConvertRateLow = 6000;
inline constexpr int RateHigh = 45000;

/// Bytes of the WAV header as written: RIFF, fmt and data chunk headers.
inline constexpr int WavHeaderSize = 44;

/// The header of an SND lump.
struct SndHeader
{
    std::uint16_t Format = 0;
    std::uint16_t Rate = 0;
    std::int32_t Count = 0;

    bool operator==(const SndHeader&) const = default;
};

/// The SND header in the first 8 bytes of `bytes` (which must hold that many).
SndHeader ReadSndHeader(std::span<const std::uint8_t> bytes);

/// True when `header` is an SND's: format 3, the rate from `lowestRate` to 45000, and a
/// sample count from 1 to `countLimit`.
bool IsSndHeader(const SndHeader& header, int lowestRate, std::int64_t countLimit);

/// True when a whole lump counts as an SND: 8 bytes or more and IsSndHeader with the lump's
/// size as the count limit.
bool IsSnd(std::span<const std::uint8_t> lump, int lowestRate);

/// True when `bytes` start with "RIFF" and hold "WAVEfmt " at 8, without regard to case.
bool IsRiffWave(std::span<const std::uint8_t> bytes);

/// The 44-byte header of an 8-bit mono PCM wave: "RIFF", `riffSize`, "WAVE", the fmt chunk
/// (PCM, 1 channel, `rate`, byte rate equal to the rate, block align 1, 8 bits), "data",
/// `dataSize`.
std::array<std::uint8_t, WavHeaderSize> MakeWavHeader(std::int32_t riffSize, std::int32_t rate,
                                                      std::int32_t dataSize);

} // namespace kelvar::sound
