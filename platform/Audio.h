// The audio port: a sound and a piece of music playing in the background, and stopping them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace kelvar::platform
{

/// What PlayMidi answers.
enum AudioResult : int
{
    AudioStarted = 0,  // playing, or about to once the synthesizer is ready
    AudioNoDevice = 1, // there is nothing to play on
    AudioBadData = 2,  // the bytes aren't something this port can play
    AudioNoSynth = 3,  // MIDI only: the synthesizer or its soundfont could not be loaded
};

/// Plays one sound and one piece of music at a time, each on its own, without ever waiting for
/// them: every call returns at once. Starting a sound stops the sound before it, and starting
/// music the music before it. The editor installs a Qt one, kelvar-cli a silent one, tests a
/// recorder.
class Audio
{
public:
    virtual ~Audio() = default;

    /// Starts a RIFF WAVE held in memory (8 or 16-bit PCM, one or two channels). The bytes are
    /// copied. True when it started.
    virtual bool PlayWave(std::span<const std::uint8_t> wave) = 0;

    /// Starts a Standard MIDI file held in memory; the bytes are copied. One of AudioResult.
    virtual int PlayMidi(std::span<const std::uint8_t> midi) = 0;

    /// Stops the sound and lets its copy go; nothing when none plays.
    virtual void StopSound() = 0;

    /// Stops the music; nothing when none plays.
    virtual void StopMusic() = 0;

    /// True when there is an output to play on.
    virtual bool HasDevice() = 0;

    void StopAll()
    {
        StopSound();
        StopMusic();
    }
};

/// Takes every play and plays nothing: kelvar-cli's, and what is there before the editor
/// installs its own. It has no device, but a play is no failure, so nothing beeps in its place.
class SilentAudio final : public Audio
{
public:
    bool PlayWave(std::span<const std::uint8_t>) override { return true; }
    int PlayMidi(std::span<const std::uint8_t>) override { return AudioStarted; }
    void StopSound() override {}
    void StopMusic() override {}
    bool HasDevice() override { return false; }
};

/// The installed Audio; before any is installed, a SilentAudio.
Audio& TheAudio();

/// Installs one (not owned) and returns the one it replaces; null restores the silent one.
Audio* InstallAudio(Audio* audio);

/// Installs an Audio for the lifetime of the guard.
class ScopedAudio
{
public:
    explicit ScopedAudio(Audio& audio) : Previous(InstallAudio(&audio)) {}
    ~ScopedAudio() { InstallAudio(Previous); }
    ScopedAudio(const ScopedAudio&) = delete;
    ScopedAudio& operator=(const ScopedAudio&) = delete;

private:
    Audio* Previous;
};

} // namespace kelvar::platform
