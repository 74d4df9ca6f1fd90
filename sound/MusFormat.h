// The MUS music lump: header layout, event types and the controller table shared by both
// directions of MIDI conversion.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace kelvar::sound
{

/// Bytes of the MUS header before the instrument list.
inline constexpr int MusHeaderSize = 16;
/// The four bytes a MUS starts with: "MUS" and 26.
inline constexpr std::array<std::uint8_t, 4> MusMagic = {'M', 'U', 'S', 26};

/// Event types, bits 4-6 of an event's first byte. Bit 7 says a delay follows the event.
enum MusEventType : std::uint8_t
{
    MusReleaseNote = 0,
    MusPlayNote = 1,
    MusPitchWheel = 2,
    MusSystemEvent = 3,
    MusController = 4,
    MusScoreEnd = 6,
};

/// The MUS channel whose notes are percussion; MIDI has it as channel 9.
inline constexpr int MusPercussionChannel = 15;
inline constexpr int MidiPercussionChannel = 9;

/// The MIDI controller of each MUS controller number: 0 is the program change (sent as its own
/// MIDI message), 1 bank select, 2 modulation, 3 volume, 4 pan, 5 expression, 6 reverb,
/// 7 chorus, 8 sustain, 9 soft pedal; 10-14 are the system events: all sounds off, all notes
/// off, mono, poly, reset all controllers.
inline constexpr std::array<std::uint8_t, 15> MusControllerToMidi = {
    0, 0, 1, 7, 10, 11, 91, 93, 64, 67, 120, 123, 126, 127, 121};

/// The first MUS controller number that is a system event.
inline constexpr int MusFirstSystemEvent = 10;
/// The system event whose MIDI value is the channel count (mono mode).
inline constexpr int MusMonoEvent = 12;

} // namespace kelvar::sound
