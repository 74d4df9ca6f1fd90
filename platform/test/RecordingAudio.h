// The audio port's test double: records every call, plays nothing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Audio.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::platform
{

/// One call to the port: "PlayWave", "PlayMidi", "StopSound" or "StopMusic", with the bytes
/// of a play.
struct AudioCall
{
    std::string Name;
    std::vector<std::uint8_t> Bytes;

    bool operator==(const AudioCall&) const = default;
};

class RecordingAudio final : public Audio
{
public:
    bool PlayWave(std::span<const std::uint8_t> wave) override;
    int PlayMidi(std::span<const std::uint8_t> midi) override;
    void StopSound() override;
    void StopMusic() override;
    bool HasDevice() override { return Device; }

    /// The names of the calls in order.
    std::vector<std::string> Names() const;

    std::vector<AudioCall> Calls;
    bool Device = true;
    bool WaveStarts = true;        // what PlayWave answers
    int MidiResult = AudioStarted; // what PlayMidi answers
};

} // namespace kelvar::platform
