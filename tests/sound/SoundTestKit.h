// Helpers of the sound tests: byte strings, MUS scores built event by event, MIDI chunks.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace kelvar::sound::test
{

using Bytes = std::vector<std::uint8_t>;

/// The bytes of a text, as a lump or file holds them.
inline Bytes ToBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

/// Little-endian words and double words appended to `out`.
inline void Le16(Bytes& out, unsigned value)
{
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}
inline void Le32(Bytes& out, std::uint32_t value)
{
    Le16(out, value & 0xFFFF);
    Le16(out, value >> 16);
}

/// A MUS lump built event by event: `MusBuilder().Event(1, 0, {60}).Delay(10).End()`.
class MusBuilder
{
public:
    MusBuilder& Primary(unsigned count)
    {
        PrimaryChannels = count;
        return *this;
    }
    MusBuilder& Instruments(unsigned count)
    {
        InstrumentCount = count;
        return *this;
    }
    /// An event of `type` on `channel` with its data bytes.
    MusBuilder& Event(int type, int channel, std::initializer_list<std::uint8_t> data)
    {
        Last = Score.size();
        Score.push_back(static_cast<std::uint8_t>((type << 4) | channel));
        Score.insert(Score.end(), data);
        return *this;
    }
    /// Sets the last event's flag and writes the delay after it.
    MusBuilder& Delay(std::uint32_t ticks)
    {
        Score[*Last] |= 0x80;
        Bytes groups;
        do
        {
            groups.insert(groups.begin(), static_cast<std::uint8_t>(ticks & 0x7F));
            ticks >>= 7;
        } while (ticks != 0);
        for (std::size_t i = 0; i + 1 < groups.size(); ++i)
        {
            groups[i] |= 0x80;
        }
        Score.insert(Score.end(), groups.begin(), groups.end());
        return *this;
    }
    MusBuilder& End() { return Event(6, 0, {}); }
    /// Raw score bytes.
    MusBuilder& Raw(std::initializer_list<std::uint8_t> bytes)
    {
        Score.insert(Score.end(), bytes);
        return *this;
    }

    Bytes Build() const
    {
        Bytes mus = {'M', 'U', 'S', 26};
        Le16(mus, static_cast<unsigned>(Score.size()));
        Le16(mus, 16 + 2 * InstrumentCount);
        Le16(mus, PrimaryChannels);
        Le16(mus, 0);
        Le16(mus, InstrumentCount);
        Le16(mus, 0);
        for (unsigned i = 0; i < InstrumentCount; ++i)
        {
            Le16(mus, i);
        }
        mus.insert(mus.end(), Score.begin(), Score.end());
        return mus;
    }

private:
    Bytes Score;
    std::optional<std::size_t> Last;
    unsigned PrimaryChannels = 1;
    unsigned InstrumentCount = 0;
};

/// The chunks of a MIDI file after its header: each "MTrk" body as its length field says.
inline std::vector<Bytes> MidiTracks(const Bytes& midi)
{
    std::vector<Bytes> tracks;
    for (std::size_t at = 14; at + 8 <= midi.size();)
    {
        const std::size_t length = (std::size_t{midi[at + 4]} << 24) |
                                   (std::size_t{midi[at + 5]} << 16) |
                                   (std::size_t{midi[at + 6]} << 8) | midi[at + 7];
        const std::size_t end = std::min(midi.size(), at + 8 + length);
        tracks.emplace_back(midi.begin() + static_cast<long>(at + 8),
                            midi.begin() + static_cast<long>(end));
        at = end;
    }
    return tracks;
}

} // namespace kelvar::sound::test
