// Playing sound and music lumps through the audio port: SND and WAV sounds, MUS and MIDI music.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// One sound and one piece of music play at a time; starting either stops the one before. The
// play functions check the lump, hand it to TheAudio() and return at once.
#pragma once

#include "platform/Canvas.h"

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <span>
#include <string_view>

namespace kelvar::sound
{

/// What the play functions return.
enum PlayResult : int
{
    PlayStarted = 1,
    PlayRefused = 0,   // not a sound (or music) this function plays; nothing happened
    PlayNotFound = -1, // no lump of that name
    PlayFailed = -2,   // the audio port did not start it
    PlayPending = 2,   // music: an earlier failure to open stands
};

/// Plays an SND lump from memory: 10 bytes or more with an SND header of 2000 to 45000 Hz.
/// The samples (the count, at most size - 8) go behind a 44-byte WAV header whose RIFF size is
/// the lump size + 36. With a `waveform` canvas the wave is drawn there. PlayStarted,
/// PlayRefused or PlayFailed.
int PlaySnd(std::span<const std::uint8_t> lump, platform::Canvas* waveform);

/// As PlaySnd, for the `size` bytes at `offset` of `file`.
int PlaySnd(std::FILE* file, std::int64_t offset, std::int64_t size, platform::Canvas* waveform);

/// Plays a WAV lump from memory: 51 bytes or more, "RIFF" and "WAVEfmt " in any case, a
/// "data" chunk at 36 or at an even position up to size - 44, and a data size from 0 to
/// size - 44. The whole lump is played. PlayStarted, PlayRefused or PlayFailed.
int PlayWav(std::span<const std::uint8_t> lump, platform::Canvas* waveform);

/// As PlayWav, for the `size` bytes at `offset` of `file`.
int PlayWav(std::FILE* file, std::int64_t offset, std::int64_t size, platform::Canvas* waveform);

/// Plays a wave file as it stands, unchecked. PlayStarted, PlayRefused for a file that can't
/// be read, or PlayFailed.
int PlayWavFile(const std::filesystem::path& file);

/// Plays the newest lump of that name in the master directory: an SND of 6000 to 45000 Hz
/// through PlaySnd, a RIFF WAVE through PlayWav. PlayNotFound, or what those return.
int PlaySoundLump(std::string_view name, platform::Canvas* waveform);

/// Stops the sound playing, if any, and lets its memory go.
void StopSound();

/// Plays a Standard MIDI file from memory: 51 bytes or more that start with "MThd", or with
/// "RIFF" and "RMIDdata" at 8. Stops the sound and the music first. An earlier failure to
/// open music gives PlayPending; a failure now shows "Play MIDI Open error %d\n" and sets that
/// failure, except for a missing audio output, which the port reports itself. PlayStarted,
/// PlayRefused, PlayPending or PlayFailed.
int PlayMidi(std::span<const std::uint8_t> midi);

/// As PlayMidi, for a MIDI file on disk; PlayRefused when it can't be read.
int PlayMidiFile(const std::filesystem::path& file);

/// Plays a MUS lump: converted to MIDI with the division 89, then PlayMidi. PlayRefused for a
/// lump the conversion refuses.
int PlayMus(std::span<const std::uint8_t> lump);

/// Plays the newest lump of that name: 20 bytes or more with "MUS" and 26 through PlayMus,
/// else a MIDI through PlayMidi. PlayNotFound, or what those return.
int PlayMusicLump(std::string_view name);

/// Stops the music playing, if any.
void StopMusic();

} // namespace kelvar::sound
