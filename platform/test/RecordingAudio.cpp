// The audio port's test double.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/test/RecordingAudio.h"

namespace kelvar::platform
{

bool RecordingAudio::PlayWave(std::span<const std::uint8_t> wave)
{
    Calls.push_back({"PlayWave", {wave.begin(), wave.end()}});
    return WaveStarts;
}

int RecordingAudio::PlayMidi(std::span<const std::uint8_t> midi)
{
    Calls.push_back({"PlayMidi", {midi.begin(), midi.end()}});
    return MidiResult;
}

void RecordingAudio::StopSound()
{
    Calls.push_back({"StopSound", {}});
}

void RecordingAudio::StopMusic()
{
    Calls.push_back({"StopMusic", {}});
}

std::vector<std::string> RecordingAudio::Names() const
{
    std::vector<std::string> names;
    for (const AudioCall& call : Calls)
    {
        names.push_back(call.Name);
    }
    return names;
}

} // namespace kelvar::platform
