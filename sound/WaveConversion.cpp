// SND lumps to RIFF WAVE and back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/WaveConversion.h"

#include "platform/Format.h"
#include "sound/SoundFormats.h"
#include "wad/WadFormat.h"

#include <algorithm>
#include <cstring>

namespace kelvar::sound
{
namespace
{

// The fields of a wave's fmt chunk, read where a plain 44-byte header has them.
struct WaveFormat
{
    std::int16_t Tag = 0;
    std::int16_t Channels = 0;
    std::int32_t Rate = 0;
    std::int16_t Bits = 0;
};

// A header shorter than 44 bytes reads as zeros past its end, as a short read into a
// cleared buffer would.
WaveFormat ReadWaveFormat(std::span<const std::uint8_t> wav)
{
    std::array<std::uint8_t, WavHeaderSize> header{};
    std::copy_n(wav.begin(), std::min<std::size_t>(wav.size(), WavHeaderSize), header.begin());
    return {static_cast<std::int16_t>(wad::ReadLe16(&header[20])),
            static_cast<std::int16_t>(wad::ReadLe16(&header[22])), wad::ReadLe32(&header[24]),
            static_cast<std::int16_t>(wad::ReadLe16(&header[34]))};
}

std::string WrongFormatText(const WaveFormat& format)
{
    std::string text = platform::Format(
        "Type 1 (PCM), 8/16 bit .WAV files only\n\nType=%hd\nBits=%hd\nChannels=%hd\n\n",
        format.Tag, format.Bits, format.Channels);
    if (format.Tag == 85)
    {
        text += "Probably MPEG ";
    }
    if (format.Tag == 2)
    {
        text += "Probably PCM ";
    }
    return text + "Use Sound Recorder to convert";
}

bool IsDataChunk(std::span<const std::uint8_t> wav, std::size_t at)
{
    return at + 8 <= wav.size() && std::memcmp(&wav[at], "data", 4) == 0;
}

// Where the "data" chunk header stands: at 36 in a plain header, else the first even position
// from 36 to size - 44 that holds it.
std::optional<std::size_t> FindDataChunk(std::span<const std::uint8_t> wav)
{
    if (IsDataChunk(wav, 36))
    {
        return 36;
    }
    if (wav.size() > WavHeaderSize)
    {
        for (std::size_t at = 36; at <= wav.size() - WavHeaderSize; at += 2)
        {
            if (IsDataChunk(wav, at))
            {
                return at;
            }
        }
    }
    return std::nullopt;
}

// A 16-bit sample as an unsigned byte. The subtraction is done on unsigned 32-bit values, so
// the division floors and the whole range maps to 0..255 in order.
std::uint8_t ReduceSample(std::uint16_t sample)
{
    return static_cast<std::uint8_t>((static_cast<std::uint32_t>(sample) - 32768u) / 256u);
}

std::vector<std::uint8_t> ReduceToMono8(std::span<const std::uint8_t> data,
                                        const WaveFormat& format)
{
    std::vector<std::uint8_t> samples;
    if (format.Bits == 16)
    {
        // Stereo keeps the left channel only.
        const std::size_t step = format.Channels == 2 ? 4 : 2;
        samples.reserve(data.size() / step);
        for (std::size_t at = 0; at + step <= data.size(); at += step)
        {
            samples.push_back(ReduceSample(wad::ReadLe16(&data[at])));
        }
    }
    else
    {
        samples.reserve(data.size() / 2);
        for (std::size_t at = 0; at + 2 <= data.size(); at += 2)
        {
            samples.push_back(static_cast<std::uint8_t>((data[at] + data[at + 1]) >> 1));
        }
    }
    return samples;
}

} // namespace

std::optional<std::string> ConvertWavToSnd(std::span<const std::uint8_t> wav,
                                           std::vector<std::uint8_t>& snd)
{
    const WaveFormat format = ReadWaveFormat(wav);
    if ((format.Bits != 8 && format.Bits != 16) || format.Tag != 1 ||
        (format.Channels != 1 && format.Channels != 2))
    {
        return WrongFormatText(format);
    }
    const std::optional<std::size_t> chunk = FindDataChunk(wav);
    if (!chunk)
    {
        return "WAV 'data' control missing";
    }
    // A chunk size past the end of the file, or none, takes the rest of the file.
    const auto rest = static_cast<std::int64_t>(wav.size()) - static_cast<std::int64_t>(*chunk + 8);
    std::int64_t dataSize = wad::ReadLe32(&wav[*chunk + 4]);
    if (dataSize > rest || dataSize < 1)
    {
        dataSize = rest;
    }
    if (dataSize < 1)
    {
        return platform::Format("Wave size <= 0 : %d", static_cast<int>(dataSize));
    }
    const std::span<const std::uint8_t> data =
        wav.subspan(*chunk + 8, static_cast<std::size_t>(dataSize));
    std::vector<std::uint8_t> samples;
    if (format.Bits == 8 && format.Channels == 1)
    {
        samples.assign(data.begin(), data.end());
    }
    else
    {
        samples = ReduceToMono8(data, format);
    }
    snd.assign(SndHeaderSize, 0);
    wad::WriteLe16(&snd[0], SndFormatTag);
    wad::WriteLe16(&snd[2], static_cast<std::uint16_t>(format.Rate)); // the low 16 bits
    wad::WriteLe32(&snd[4], static_cast<std::int32_t>(samples.size()));
    snd.insert(snd.end(), samples.begin(), samples.end());
    return std::nullopt;
}

std::optional<std::string> SndToWav(std::span<const std::uint8_t> lump,
                                    std::vector<std::uint8_t>& wav)
{
    if (lump.size() < 46)
    {
        return "size too small";
    }
    if (IsRiffWave(lump))
    {
        wav.assign(lump.begin(), lump.end());
        return std::nullopt;
    }
    const auto size = static_cast<std::int32_t>(lump.size());
    const SndHeader header = ReadSndHeader(lump);
    if (!IsSndHeader(header, ConvertRateLow, size - SndHeaderSize))
    {
        return "Entry not sound?";
    }
    // Every byte after the header goes out, padding included, not just `Count` of them.
    const auto top = MakeWavHeader(size + 28, header.Rate, size - SndHeaderSize);
    wav.assign(top.begin(), top.end());
    wav.insert(wav.end(), lump.begin() + SndHeaderSize, lump.end());
    return std::nullopt;
}

std::optional<std::string> WavToSnd(std::span<const std::uint8_t> lump,
                                    std::vector<std::uint8_t>& snd)
{
    if (lump.size() <= 45)
    {
        return "size too small";
    }
    if (IsRiffWave(lump))
    {
        return ConvertWavToSnd(lump, snd);
    }
    // Anything else must carry an SND header behind a wave-sized header.
    if (lump.size() >= WavHeaderSize + SndHeaderSize &&
        IsSndHeader(ReadSndHeader(lump.subspan(WavHeaderSize)), ConvertRateLow,
                    static_cast<std::int64_t>(lump.size())))
    {
        snd.assign(lump.begin(), lump.end());
        return std::nullopt;
    }
    return "Entry not sound?";
}

std::vector<std::uint8_t> ReadRange(std::FILE* file, std::int64_t offset, std::int64_t size)
{
    std::vector<std::uint8_t> bytes;
    if (size < 0)
    {
        // Unknown: the rest of the file.
        if (std::fseek(file, 0, SEEK_END) != 0)
        {
            return bytes;
        }
        size = std::ftell(file) - offset;
    }
    if (offset < 0 || size <= 0 || std::fseek(file, offset, SEEK_SET) != 0)
    {
        return bytes;
    }
    bytes.resize(static_cast<std::size_t>(size));
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    return bytes;
}

bool WriteRange(std::FILE* file, std::int64_t offset, std::span<const std::uint8_t> bytes)
{
    return std::fseek(file, offset, SEEK_SET) == 0 &&
           std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

std::optional<std::string> SndLumpToWav(std::FILE* target, std::int64_t targetOffset,
                                        std::FILE* source, std::int64_t sourceOffset,
                                        std::int32_t& sizeInOut)
{
    if (sizeInOut < 46)
    {
        return "size too small";
    }
    if (target == nullptr || source == nullptr)
    {
        return "Snd-to-Wav sound Files not open";
    }
    std::vector<std::uint8_t> wav;
    if (auto error = SndToWav(ReadRange(source, sourceOffset, sizeInOut), wav))
    {
        return error;
    }
    if (!WriteRange(target, targetOffset, wav))
    {
        return "Can't write file";
    }
    sizeInOut = static_cast<std::int32_t>(wav.size());
    return std::nullopt;
}

std::optional<std::string> WavLumpToSnd(std::FILE* target, std::int64_t targetOffset,
                                        std::FILE* source, std::int64_t sourceOffset,
                                        std::int32_t& sizeInOut)
{
    if (sizeInOut >= 0 && sizeInOut <= 45)
    {
        return "size too small";
    }
    if (target == nullptr || source == nullptr)
    {
        return "Wav-to-Snd sound Files not open";
    }
    std::vector<std::uint8_t> snd;
    if (auto error = WavToSnd(ReadRange(source, sourceOffset, sizeInOut), snd))
    {
        return error;
    }
    if (!WriteRange(target, targetOffset, snd))
    {
        return "Can't write file";
    }
    sizeInOut = static_cast<std::int32_t>(snd.size());
    return std::nullopt;
}

} // namespace kelvar::sound
