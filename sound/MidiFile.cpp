// Reading Standard MIDI files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/MidiFile.h"

#include <algorithm>
#include <cstring>

namespace kelvar::sound
{
namespace
{

bool HasText(std::span<const std::uint8_t> bytes, std::size_t at, const char* text)
{
    return bytes.size() >= at + 4 && std::memcmp(&bytes[at], text, 4) == 0;
}

std::uint32_t ReadBe32(std::span<const std::uint8_t> bytes, std::size_t at)
{
    return (std::uint32_t{bytes[at]} << 24) | (std::uint32_t{bytes[at + 1]} << 16) |
           (std::uint32_t{bytes[at + 2]} << 8) | bytes[at + 3];
}

// A cursor over one track's bytes; every read past the end marks the track damaged.
struct TrackReader
{
    std::span<const std::uint8_t> Bytes;
    std::size_t At = 0;
    bool Damaged = false;

    bool AtEnd() const { return At >= Bytes.size(); }

    std::uint8_t Byte()
    {
        if (AtEnd())
        {
            Damaged = true;
            return 0;
        }
        return Bytes[At++];
    }

    // A variable-length number of at most four bytes.
    std::uint32_t Number()
    {
        std::uint32_t value = 0;
        for (int count = 0; count < 4; ++count)
        {
            const std::uint8_t byte = Byte();
            value = (value << 7) | (byte & 0x7Fu);
            if ((byte & 0x80) == 0)
            {
                return value;
            }
        }
        Damaged = true;
        return value;
    }

    void Skip(std::uint32_t count)
    {
        if (count > Bytes.size() - std::min(At, Bytes.size()))
        {
            Damaged = true;
            At = Bytes.size();
            return;
        }
        At += count;
    }
};

struct TrackEvent
{
    MidiEvent Event;
    std::size_t Track = 0;
};

// Reads one track's events into `events`; returns the tick at which the track ends, or
// nothing when it is damaged.
std::optional<std::uint64_t> ReadTrack(std::span<const std::uint8_t> bytes, std::size_t track,
                                       std::vector<TrackEvent>& events)
{
    TrackReader in{bytes};
    std::uint64_t tick = 0;
    std::uint8_t running = 0;
    while (!in.AtEnd() && !in.Damaged)
    {
        tick += in.Number();
        std::uint8_t status = in.Byte();
        if (status < 0x80)
        {
            if (running == 0)
            {
                return std::nullopt;
            }
            --in.At; // running status: this was the first data byte
            status = running;
        }
        if (status == 0xFF)
        {
            const std::uint8_t type = in.Byte();
            const std::uint32_t length = in.Number();
            if (type == 0x51 && length == 3 && in.At + 3 <= bytes.size())
            {
                const std::uint32_t tempo = (std::uint32_t{bytes[in.At]} << 16) |
                                            (std::uint32_t{bytes[in.At + 1]} << 8) |
                                            bytes[in.At + 2];
                events.push_back({{tick, MidiTempoStatus, 0, 0, tempo}, track});
            }
            in.Skip(length);
            if (type == 0x2F)
            {
                break;
            }
            continue;
        }
        if (status == 0xF0 || status == 0xF7)
        {
            in.Skip(in.Number());
            continue;
        }
        if (status > 0xF0)
        {
            return std::nullopt; // no other system message belongs in a file
        }
        running = status;
        MidiEvent event{tick, status, in.Byte(), 0, 0};
        const std::uint8_t kind = status & 0xF0;
        if (kind != 0xC0 && kind != 0xD0)
        {
            event.Data2 = in.Byte();
        }
        if ((event.Data1 | event.Data2) & 0x80)
        {
            return std::nullopt;
        }
        events.push_back({event, track});
    }
    if (in.Damaged)
    {
        return std::nullopt;
    }
    return tick;
}

// The Standard MIDI data of a RIFF RMID file: the body of its "data" chunk.
std::span<const std::uint8_t> UnwrapRiff(std::span<const std::uint8_t> bytes)
{
    if (!HasText(bytes, 0, "RIFF") || !HasText(bytes, 8, "RMID"))
    {
        return bytes;
    }
    std::size_t at = 12;
    while (at + 8 <= bytes.size())
    {
        const std::uint32_t size = bytes[at + 4] | (std::uint32_t{bytes[at + 5]} << 8) |
                                   (std::uint32_t{bytes[at + 6]} << 16) |
                                   (std::uint32_t{bytes[at + 7]} << 24);
        if (HasText(bytes, at, "data"))
        {
            return bytes.subspan(at + 8, std::min<std::size_t>(size, bytes.size() - at - 8));
        }
        // Summed as std::size_t: in 32 bits a size near 4 GB wraps to a step of 0 and the walk
        // never ends.
        at += 8 + std::size_t{size} + (size & 1);
    }
    return {};
}

} // namespace

bool IsMidi(std::span<const std::uint8_t> bytes)
{
    return HasText(bytes, 0, "MThd") || (HasText(bytes, 0, "RIFF") && HasText(bytes, 8, "RMID"));
}

std::optional<std::string> ReadMidi(std::span<const std::uint8_t> bytes, MidiSong& song)
{
    const std::span<const std::uint8_t> smf = UnwrapRiff(bytes);
    if (!HasText(smf, 0, "MThd") || smf.size() < 14)
    {
        return "not a MIDI file";
    }
    const std::uint32_t headerSize = ReadBe32(smf, 4);
    song = MidiSong{};
    song.Format = (smf[8] << 8) | smf[9];
    song.Division = (smf[12] << 8) | smf[13];
    if ((song.Division & 0x8000) != 0)
    {
        return "MIDI timing in SMPTE frames is not supported";
    }
    if (song.Division == 0 || headerSize < 6 || headerSize > smf.size() - 8)
    {
        return "MIDI file damaged";
    }
    std::vector<TrackEvent> events;
    std::size_t track = 0;
    for (std::size_t at = 8 + headerSize; at + 8 <= smf.size(); ++track)
    {
        // A chunk that claims more than the file holds ends with the file.
        const std::size_t size = std::min<std::size_t>(ReadBe32(smf, at + 4), smf.size() - at - 8);
        if (HasText(smf, at, "MTrk"))
        {
            const auto end = ReadTrack(smf.subspan(at + 8, size), track, events);
            if (!end)
            {
                return "MIDI file damaged";
            }
            song.EndTick = std::max(song.EndTick, *end);
        }
        at += 8 + size;
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const TrackEvent& a, const TrackEvent& b)
                     { return a.Event.Tick < b.Event.Tick; });
    song.Events.reserve(events.size());
    for (const TrackEvent& each : events)
    {
        song.Events.push_back(each.Event);
    }
    return std::nullopt;
}

void MidiClock::SetTempo(std::uint64_t tick, std::uint32_t tempo)
{
    TempoTime = Microseconds(tick);
    TempoTick = tick;
    Tempo = tempo;
}

double MidiClock::Microseconds(std::uint64_t tick) const
{
    return TempoTime +
           static_cast<double>(tick - TempoTick) * static_cast<double>(Tempo) / Division;
}

} // namespace kelvar::sound
