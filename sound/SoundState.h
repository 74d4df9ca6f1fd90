// The settings of sound and music: the tempos of the two MIDI directions, the interface sounds.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The codecs (SND and WAV, MUS to MIDI, MIDI to MUS) work on bytes in memory and return an
//   error text or code; they never show a message. The file-level functions read a lump's
//   bytes from an open file at an offset, convert, and write the result at another offset.
// - MIDI to MUS is done by kelvarmus, a program of this project, which the editor runs
//   through the process port with the command line `kelvarmus /t<tempo> <path>`.
#pragma once

#include <cstddef>

namespace kelvar::sound
{

/// The tempo settings, each 1 to 999.
struct SoundState
{
    /// The division (ticks per quarter note) written into a MIDI made from a MUS.
    int MusToMidiTempo = 89;
    /// The MUS tick rate, in ticks per second, that kelvarmus writes.
    int MidiToMusTempo = 140;
    /// Whether the interface sounds play at all.
    bool InterfaceSoundsOn = true;
    /// Off: the interface sounds are the plain beep instead.
    bool SoundHardwareOn = true;
    /// Set when music failed to open; later music is refused until the session ends.
    bool MidiOpenFailed = false;
};

/// The one instance.
SoundState& Sound();

/// Back to the defaults (tests).
void ResetSound();

} // namespace kelvar::sound
