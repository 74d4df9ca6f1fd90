// Playing sound and music lumps through the audio port.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/Playback.h"

#include "platform/Audio.h"
#include "platform/Messages.h"
#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"
#include "sound/WaveConversion.h"
#include "sound/Waveform.h"
#include "wad/FindLump.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace kelvar::sound
{
namespace
{

// Black and green in the map window's colour table.
constexpr int WaveformBackground = 0;
constexpr int WaveformColor = 2;

// The smallest WAV lump played: a 44-byte header and a little more.
constexpr std::size_t LeastWav = 51;
constexpr std::size_t LeastSnd = 10;
constexpr std::size_t LeastMidi = 51;
constexpr std::size_t LeastMus = 20;

bool TagAt(std::span<const std::uint8_t> bytes, std::size_t at, const char* tag)
{
    const std::size_t length = std::strlen(tag);
    return bytes.size() >= at + length && std::memcmp(bytes.data() + at, tag, length) == 0;
}

std::vector<std::uint8_t> ReadWholeFile(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

int Start(std::span<const std::uint8_t> wave, platform::Canvas* waveform)
{
    const bool started = platform::TheAudio().PlayWave(wave);
    if (waveform != nullptr)
    {
        DrawWaveform(*waveform, wave, WaveformBackground, WaveformColor);
    }
    return started ? PlayStarted : PlayFailed;
}

// The data chunk of a WAV lump: at 36, else searched for from byte 0 in steps of 2.
std::optional<std::size_t> DataChunkAt(std::span<const std::uint8_t> lump)
{
    if (TagAt(lump, 36, "data"))
    {
        return 36;
    }
    for (std::size_t at = 0; at + WavHeaderSize <= lump.size(); at += 2)
    {
        if (TagAt(lump, at, "data"))
        {
            return at;
        }
    }
    return std::nullopt;
}

bool IsMidi(std::span<const std::uint8_t> bytes)
{
    return bytes.size() >= LeastMidi &&
           (TagAt(bytes, 0, "MThd") || (TagAt(bytes, 0, "RIFF") && TagAt(bytes, 8, "RMIDdata")));
}

bool IsMus(std::span<const std::uint8_t> bytes)
{
    return bytes.size() >= LeastMus && TagAt(bytes, 0, "MUS\x1a");
}

std::optional<std::vector<std::uint8_t>> LumpNamed(std::string_view name)
{
    const int entry = wad::FindLump(wad::Wad().Files[0], name, false);
    if (entry < 0)
    {
        return std::nullopt;
    }
    return wad::ReadLumpBytes(entry);
}

} // namespace

int PlaySnd(std::span<const std::uint8_t> lump, platform::Canvas* waveform)
{
    if (lump.size() < LeastSnd || !IsSnd(lump, ListRateLow))
    {
        return PlayRefused;
    }
    const SndHeader header = ReadSndHeader(lump);
    const auto size = static_cast<std::int32_t>(lump.size());
    const std::int32_t count = std::min(header.Count, size - SndHeaderSize);
    const auto wavHeader = MakeWavHeader(size + 36, header.Rate, count);
    std::vector<std::uint8_t> wave(wavHeader.begin(), wavHeader.end());
    const auto samples = lump.subspan(SndHeaderSize, static_cast<std::size_t>(count));
    wave.insert(wave.end(), samples.begin(), samples.end());
    return Start(wave, waveform);
}

int PlaySnd(std::FILE* file, std::int64_t offset, std::int64_t size, platform::Canvas* waveform)
{
    return PlaySnd(ReadRange(file, offset, size), waveform);
}

int PlayWav(std::span<const std::uint8_t> lump, platform::Canvas* waveform)
{
    if (lump.size() < LeastWav || !IsRiffWave(lump))
    {
        return PlayRefused;
    }
    const std::optional<std::size_t> data = DataChunkAt(lump);
    if (!data || *data + 8 > lump.size())
    {
        return PlayRefused;
    }
    const std::int32_t dataSize = wad::ReadLe32(&lump[*data + 4]);
    if (dataSize < 0 || dataSize > static_cast<std::int64_t>(lump.size()) - WavHeaderSize)
    {
        return PlayRefused;
    }
    return Start(lump, waveform);
}

int PlayWav(std::FILE* file, std::int64_t offset, std::int64_t size, platform::Canvas* waveform)
{
    return PlayWav(ReadRange(file, offset, size), waveform);
}

int PlayWavFile(const std::filesystem::path& file)
{
    const std::vector<std::uint8_t> bytes = ReadWholeFile(file);
    if (bytes.empty())
    {
        return PlayRefused;
    }
    return Start(bytes, nullptr);
}

int PlaySoundLump(std::string_view name, platform::Canvas* waveform)
{
    const auto lump = LumpNamed(name);
    if (!lump)
    {
        return PlayNotFound;
    }
    if (IsSnd(*lump, ConvertRateLow))
    {
        return PlaySnd(*lump, waveform);
    }
    if (IsRiffWave(*lump))
    {
        return PlayWav(*lump, waveform);
    }
    return PlayRefused;
}

void StopSound()
{
    platform::TheAudio().StopSound();
}

int PlayMidi(std::span<const std::uint8_t> midi)
{
    platform::TheAudio().StopAll();
    if (Sound().MidiOpenFailed)
    {
        return PlayPending;
    }
    if (!IsMidi(midi))
    {
        return PlayRefused;
    }
    const int code = platform::TheAudio().PlayMidi(midi);
    if (code == platform::AudioNoDevice)
    {
        // The port has said once in the status line that there is no output; no box for it.
        return PlayFailed;
    }
    if (code != platform::AudioStarted)
    {
        platform::ShowError("Play MIDI Open error %d\n", code);
        Sound().MidiOpenFailed = true;
        return PlayFailed;
    }
    return PlayStarted;
}

int PlayMidiFile(const std::filesystem::path& file)
{
    const std::vector<std::uint8_t> bytes = ReadWholeFile(file);
    if (bytes.empty())
    {
        return PlayRefused;
    }
    return PlayMidi(bytes);
}

int PlayMus(std::span<const std::uint8_t> lump)
{
    MusToMidiOptions options;
    options.Division = 89;
    const MusToMidiResult midi = MusToMidiBytes(lump, options);
    if (midi.Code != MusToMidiOk)
    {
        return PlayRefused;
    }
    return PlayMidi(midi.Midi);
}

int PlayMusicLump(std::string_view name)
{
    const auto lump = LumpNamed(name);
    if (!lump)
    {
        return PlayNotFound;
    }
    return IsMus(*lump) ? PlayMus(*lump) : PlayMidi(*lump);
}

void StopMusic()
{
    platform::TheAudio().StopMusic();
}

} // namespace kelvar::sound
