// The audio port over Qt Multimedia, with FluidSynth to turn MIDI into sound.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Audio.h"

#include <QObject>
#include <memory>

namespace kelvar::platform
{

/// Plays waves on the default output through QAudioSink, converted to the output's rate, and
/// MIDI through a FluidSynth synthesizer that a second sink pulls samples from as it plays.
/// The soundfont loads on a worker thread the first time music plays, so the window thread
/// never waits for it. With no output device the first play says so once in the status line,
/// and every play is refused.
class QtAudio final : public QObject, public Audio
{
    Q_OBJECT

public:
    explicit QtAudio(QObject* parent = nullptr);
    ~QtAudio() override;

    bool PlayWave(std::span<const std::uint8_t> wave) override;
    int PlayMidi(std::span<const std::uint8_t> midi) override;
    void StopSound() override;
    void StopMusic() override;
    bool HasDevice() override;

    /// True while music waits for the soundfont to load (tests).
    bool MusicLoading() const;

private:
    bool CheckDevice();
    void SynthLoaded();
    void StartMusic();

    struct Parts;
    std::unique_ptr<Parts> P;
};

} // namespace kelvar::platform
