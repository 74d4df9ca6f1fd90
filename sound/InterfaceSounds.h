// The twelve short sounds of the editor's own interface, and their playing.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <span>

namespace kelvar::sound
{

/// The interface sounds by number, 1 to 12.
enum InterfaceSound : int
{
    SoundTick = 1,  // a bookmark was set
    SoundConfirm,   // a toggle changed
    SoundMode,      // the edit mode changed
    SoundSelection, // objects were marked
    SoundError,     // error messages
    SoundInfo,      // information messages
    SoundNothing,   // nothing under the pointer
    SoundQuestion,  // a question is put
    SoundDone,      // a long operation finished
    SoundOpen,      // a file was opened
    SoundSave,      // a file was saved
    SoundClose,     // a file was closed
};

inline constexpr int InterfaceSoundCount = 12;

/// The RIFF WAVE of sound `number` (1 to 12): a short tone of 8-bit mono PCM at 11025 Hz, made
/// by the program itself. Empty for any other number.
std::span<const std::uint8_t> InterfaceSoundWave(int number);

/// Plays interface sound `number`. With InterfaceSoundsOn off nothing happens; with
/// SoundHardwareOn off, or a number out of range, the plain beep sounds. Otherwise the sound
/// playing is stopped and this one started, with the beep when it doesn't start.
void PlayInterfaceSound(int number);

/// The sound that goes with error messages.
void PlayErrorSound();

/// The sound that goes with information messages.
void PlayInfoSound();

} // namespace kelvar::sound
