// The Doom SND lump and the RIFF WAVE header.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/SoundFormats.h"

#include "wad/WadFormat.h"

#include <cctype>
#include <cstring>

namespace kelvar::sound
{
namespace
{

bool SameLetters(std::span<const std::uint8_t> bytes, std::size_t at, const char* text)
{
    const std::size_t length = std::strlen(text);
    if (bytes.size() < at + length)
    {
        return false;
    }
    for (std::size_t i = 0; i < length; ++i)
    {
        if (std::toupper(bytes[at + i]) != std::toupper(static_cast<unsigned char>(text[i])))
        {
            return false;
        }
    }
    return true;
}

void PutText(std::uint8_t* at, const char* text)
{
    std::memcpy(at, text, std::strlen(text));
}

} // namespace

SndHeader ReadSndHeader(std::span<const std::uint8_t> bytes)
{
    return {wad::ReadLe16(bytes.data()), wad::ReadLe16(bytes.data() + 2),
            wad::ReadLe32(bytes.data() + 4)};
}

bool IsSndHeader(const SndHeader& header, int lowestRate, std::int64_t countLimit)
{
    return header.Format == SndFormatTag && header.Rate >= lowestRate && header.Rate <= RateHigh &&
           header.Count >= 1 && header.Count <= countLimit;
}

bool IsSnd(std::span<const std::uint8_t> lump, int lowestRate)
{
    return lump.size() >= SndHeaderSize &&
           IsSndHeader(ReadSndHeader(lump), lowestRate, static_cast<std::int64_t>(lump.size()));
}

bool IsRiffWave(std::span<const std::uint8_t> bytes)
{
    return SameLetters(bytes, 0, "RIFF") && SameLetters(bytes, 8, "WAVEfmt ");
}

std::array<std::uint8_t, WavHeaderSize> MakeWavHeader(std::int32_t riffSize, std::int32_t rate,
                                                      std::int32_t dataSize)
{
    std::array<std::uint8_t, WavHeaderSize> header{};
    std::uint8_t* at = header.data();
    PutText(at, "RIFF");
    wad::WriteLe32(at + 4, riffSize);
    PutText(at + 8, "WAVEfmt ");
    wad::WriteLe32(at + 16, 16);
    wad::WriteLe16(at + 20, 1); // PCM
    wad::WriteLe16(at + 22, 1); // one channel
    wad::WriteLe32(at + 24, rate);
    wad::WriteLe32(at + 28, rate); // one byte a sample
    wad::WriteLe16(at + 32, 1);
    wad::WriteLe16(at + 34, 8);
    PutText(at + 36, "data");
    wad::WriteLe32(at + 40, dataSize);
    return header;
}

} // namespace kelvar::sound
