// Reading Standard MIDI files (also inside a RIFF RMID): every track's events merged into one
// list in time order, and their times in microseconds through the file's tempo changes.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::sound
{

/// One event of a MIDI track: a channel message (status 0x80 to 0xEF with its one or two data
/// bytes) or a tempo change (status 0xFF with the microseconds a quarter in Tempo). Other meta
/// events and system exclusive messages are passed over.
struct MidiEvent
{
    std::uint64_t Tick = 0;
    std::uint8_t Status = 0;
    std::uint8_t Data1 = 0;
    std::uint8_t Data2 = 0;
    std::uint32_t Tempo = 0;

    bool operator==(const MidiEvent&) const = default;
};

/// The status of a tempo change in MidiSong::Events.
inline constexpr std::uint8_t MidiTempoStatus = 0xFF;

/// A MIDI file read: its format, the ticks a quarter note, the tick at which its last track
/// ends, and the events of all tracks in time order (at equal ticks, by track).
struct MidiSong
{
    int Format = 0;
    int Division = 0;
    std::uint64_t EndTick = 0;
    std::vector<MidiEvent> Events;
};

/// True when `bytes` start like a MIDI file: "MThd", or "RIFF" with "RMID" at 8.
bool IsMidi(std::span<const std::uint8_t> bytes);

/// Reads a MIDI file into `song`. Returns nothing, or what is wrong: "not a MIDI file",
/// "MIDI file damaged", "MIDI timing in SMPTE frames is not supported".
std::optional<std::string> ReadMidi(std::span<const std::uint8_t> bytes, MidiSong& song);

/// Converts ticks to microseconds along the song's tempo changes (500000 a quarter until the
/// first). Ticks must come in order.
class MidiClock
{
public:
    explicit MidiClock(int division) : Division(division) {}

    /// Takes a tempo change at `tick`.
    void SetTempo(std::uint64_t tick, std::uint32_t tempo);
    /// The time of `tick`, in microseconds.
    double Microseconds(std::uint64_t tick) const;

private:
    int Division;
    std::uint64_t TempoTick = 0;
    double TempoTime = 0;
    std::uint32_t Tempo = 500000;
};

} // namespace kelvar::sound
