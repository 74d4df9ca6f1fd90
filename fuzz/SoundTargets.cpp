// Fuzz targets of the sound readers: SND and WAV lumps, MUS and MIDI music.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/FuzzKit.h"
#include "sound/MidiFile.h"
#include "sound/MidiToMus.h"
#include "sound/MusToMidi.h"
#include "sound/SoundFormats.h"
#include "sound/WaveConversion.h"

#include <cstdio>
#include <cstdlib>

namespace kelvar::fuzz
{
namespace
{

using Bytes = std::span<const std::uint8_t>;

// A property every input must keep; a broken one is a fault for the fuzzer to report.
void Require(bool holds, const char* what)
{
    if (!holds)
    {
        std::fprintf(stderr, "fuzz: %s\n", what);
        std::abort();
    }
}

void ReadSoundBytes(Bytes lump)
{
    if (lump.size() >= static_cast<std::size_t>(sound::SndHeaderSize))
    {
        (void)sound::IsSndHeader(sound::ReadSndHeader(lump), sound::ListRateLow,
                                 static_cast<std::int64_t>(lump.size()));
    }
    (void)sound::IsSnd(lump, sound::ListRateLow);
    (void)sound::IsRiffWave(lump);

    // A lump that is a WAV already is copied as it stands, damage and all; one that is an SND
    // gets a WAV header written here, and that WAV must be one this program reads.
    std::vector<std::uint8_t> wav;
    if (!sound::SndToWav(lump, wav) && !sound::IsRiffWave(lump))
    {
        std::vector<std::uint8_t> snd;
        Require(!sound::ConvertWavToSnd(wav, snd), "a WAV made from a lump does not convert back");
    }
    std::vector<std::uint8_t> snd;
    (void)sound::WavToSnd(lump, snd);
    snd.clear();
    (void)sound::ConvertWavToSnd(lump, snd);
}

void ReadMusicBytes(Bytes bytes)
{
    for (const bool noRunningStatus : {false, true})
    {
        sound::MusToMidiOptions options;
        options.NoRunningStatus = noRunningStatus;
        const sound::MusToMidiResult midi = sound::MusToMidiBytes(bytes, options);
        if (midi.Code == sound::MusToMidiOk)
        {
            // The conversion copies a damaged MUS's note and volume bytes as they stand, so its
            // MIDI need not read; the MIDI reader still gets to try.
            sound::MidiSong song;
            (void)sound::ReadMidi(midi.Midi, song);
        }
    }
    // A small track buffer runs the overflow checks on short inputs too.
    sound::MusToMidiOptions small;
    small.TrackBufferSize = 64;
    (void)sound::MusToMidiBytes(bytes, small);

    (void)sound::IsMidi(bytes);
    sound::MidiSong song;
    if (!sound::ReadMidi(bytes, song))
    {
        sound::MidiClock clock(song.Division);
        for (const sound::MidiEvent& event : song.Events)
        {
            if (event.Status == sound::MidiTempoStatus)
            {
                clock.SetTempo(event.Tick, event.Tempo);
            }
            (void)clock.Microseconds(event.Tick);
        }
    }
    const sound::MidiToMusResult mus = sound::MidiToMusBytes(bytes, 140);
    if (!mus.Error)
    {
        const sound::MusToMidiResult back = sound::MusToMidiBytes(mus.Mus, {});
        Require(back.Code != sound::MusNotMus && back.Code != sound::MusShortRead,
                "a MUS made from a MIDI file does not read");
    }
}

} // namespace

void FuzzSounds(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { ReadSoundBytes(input); });
}

void FuzzMusic(std::span<const std::uint8_t> input)
{
    RunGuarded(FatalRule::IsAFault, [&] { ReadMusicBytes(input); });
}

} // namespace kelvar::fuzz
