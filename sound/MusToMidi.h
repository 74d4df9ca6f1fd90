// MUS lumps to Standard MIDI files: one MIDI track per MUS channel, after a first track that
// sets the tempo.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::sound
{

/// Bytes a MIDI track may grow to while it is built, unless the caller gives another size.
inline constexpr std::size_t DefaultTrackBufferSize = 128000;
/// MIDI tracks a conversion may make, one for each channel.
inline constexpr int MaxMidiTracks = 16;

/// The codes of the MUS conversion; MusToMidiText gives their texts.
enum MusToMidiCode : int
{
    MusToMidiOk = 0,
    MusNotMus = 1,          // "not a MUS file"
    MusShortRead = 2,       // "Can't open for read"
    MusNoInput = 3,         // "Can't open file."
    MusCantWrite = 4,       // "Can't write file"
    MusCorrupted = 5,       // "Mus corrupted"
    MusTooManyChannels = 6, // "Mus contains more than 16 channels"
    MusNoMemory = 7,        // "Not enough memory"
};

/// How to write the MIDI.
struct MusToMidiOptions
{
    int Division = 89;               // ticks per quarter note in the MIDI header
    std::size_t TrackBufferSize = 0; // 0: DefaultTrackBufferSize
    bool NoRunningStatus = false;    // write every status byte
};

/// What a conversion in memory gives: a code and, for MusToMidiOk, the MIDI file's bytes.
struct MusToMidiResult
{
    int Code = MusToMidiOk;
    std::vector<std::uint8_t> Midi;
};

/// Converts a MUS lump to a format 1 MIDI file. The tempo is 631578 microseconds a quarter, so
/// a division of 89 plays the MUS ticks at about 140 a second. Codes MusNotMus, MusShortRead
/// (the header or instrument list is cut short), MusCorrupted (the score start lies past the
/// end, an undefined event type or controller, or a track overflowed its buffer) and
/// MusTooManyChannels (a primary channel count above 15).
MusToMidiResult MusToMidiBytes(std::span<const std::uint8_t> mus, const MusToMidiOptions& options);

/// Reads the MUS lump of `size` bytes at `offset` of `file` and writes its MIDI to
/// `outputName`, which is created first to test the name. Returns MusToMidiOk or a code:
/// MusCantWrite when the output can't be made, MusNoInput for a null file, else
/// MusToMidiBytes's.
[[nodiscard]] int ConvertMusToMidi(std::FILE* file, std::int64_t offset, std::int64_t size,
                                   const std::filesystem::path& outputName,
                                   const MusToMidiOptions& options);

/// ConvertMusToMidi with the division of the MusToMidiTempo setting. Returns nothing on
/// success, else the code's text.
std::optional<std::string> MusToMidi(std::FILE* file, std::int64_t offset, std::int64_t size,
                                     const std::filesystem::path& outputName,
                                     std::size_t trackBufferSize, bool noRunningStatus);

/// The text of a conversion code ("not a MUS file", ...); empty for MusToMidiOk.
const char* MusToMidiText(int code);

} // namespace kelvar::sound
