// The twelve interface sounds: synthesized once, then played through the audio port.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/InterfaceSounds.h"

#include "platform/Audio.h"
#include "platform/Ui.h"
#include "sound/Playback.h"
#include "sound/SoundFormats.h"
#include "sound/SoundState.h"

#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace kelvar::sound
{
namespace
{

constexpr int ToneRate = 11025;

// A note of a tone: its pitch in Hz (0 for a rest) and its length in milliseconds.
struct Note
{
    int Hz = 0;
    int Ms = 0;
};

// Each sound is one to three short notes. They are quiet (a third of full scale) and fade out,
// so that a sound played on every selection doesn't tire the ear.
constexpr std::array<std::array<Note, 3>, InterfaceSoundCount> Tunes = {{
    {{{1760, 25}}},                         // tick
    {{{1319, 40}, {1760, 40}}},             // confirm
    {{{880, 45}, {1175, 45}}},              // mode
    {{{2093, 30}}},                         // selection
    {{{220, 90}, {0, 20}, {185, 120}}},     // error
    {{{988, 60}, {1319, 80}}},              // info
    {{{330, 60}}},                          // nothing here
    {{{784, 60}, {988, 90}}},               // question
    {{{1047, 50}, {1319, 50}, {1568, 90}}}, // done
    {{{659, 40}, {988, 60}}},               // open
    {{{988, 40}, {659, 60}}},               // save
    {{{784, 40}, {523, 70}}},               // close
}};

std::vector<std::uint8_t> Synthesize(const std::array<Note, 3>& tune)
{
    std::vector<std::uint8_t> samples;
    for (const Note& note : tune)
    {
        const int count = note.Ms * ToneRate / 1000;
        for (int i = 0; i < count; ++i)
        {
            double value = 0.0;
            if (note.Hz > 0)
            {
                const double t = static_cast<double>(i) / ToneRate;
                // A 2 ms rise keeps the start from clicking; the exponential fall ends the note.
                const double rise = std::min(1.0, t / 0.002);
                const double fall = std::exp(-4.0 * i / count);
                value = std::sin(2.0 * std::numbers::pi * note.Hz * t) * rise * fall;
            }
            samples.push_back(static_cast<std::uint8_t>(std::lround(128.0 + 42.0 * value)));
        }
    }
    const auto size = static_cast<std::int32_t>(samples.size());
    const auto header = MakeWavHeader(size + WavHeaderSize - 8, ToneRate, size);
    std::vector<std::uint8_t> wave(header.begin(), header.end());
    wave.insert(wave.end(), samples.begin(), samples.end());
    return wave;
}

const std::array<std::vector<std::uint8_t>, InterfaceSoundCount>& Table()
{
    static const auto table = []
    {
        std::array<std::vector<std::uint8_t>, InterfaceSoundCount> waves;
        for (std::size_t i = 0; i < waves.size(); ++i)
        {
            waves[i] = Synthesize(Tunes[i]);
        }
        return waves;
    }();
    return table;
}

} // namespace

std::span<const std::uint8_t> InterfaceSoundWave(int number)
{
    if (number < 1 || number > InterfaceSoundCount)
    {
        return {};
    }
    return Table()[static_cast<std::size_t>(number - 1)];
}

void PlayInterfaceSound(int number)
{
    if (!Sound().InterfaceSoundsOn)
    {
        return;
    }
    const std::span<const std::uint8_t> wave = InterfaceSoundWave(number);
    if (!Sound().SoundHardwareOn || wave.empty())
    {
        platform::TheUi().Beep();
        return;
    }
    StopSound();
    if (!platform::TheAudio().PlayWave(wave))
    {
        platform::TheUi().Beep();
    }
}

void PlayErrorSound()
{
    PlayInterfaceSound(SoundError);
}

void PlayInfoSound()
{
    PlayInterfaceSound(SoundInfo);
}

} // namespace kelvar::sound
