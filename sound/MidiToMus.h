// Standard MIDI files to MUS lumps: the conversion kelvarmus does, and kelvarmus's command
// line.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::sound
{

/// What a conversion to MUS gives: the lump's bytes, or what went wrong.
struct MidiToMusResult
{
    std::optional<std::string> Error;
    std::vector<std::uint8_t> Mus;
};

/// Converts a MIDI file to a MUS lump that plays at `ticksPerSecond` MUS ticks a second. MIDI
/// channel 9 becomes the percussion channel 15, channels 0-8 keep their number and 10-15 move
/// down one. Notes, pitch wheel, program changes and the controllers MUS knows are kept; other
/// messages are dropped. Times follow the file's tempo changes and are rounded to whole MUS
/// ticks from the start of the song, so rounding never adds up.
MidiToMusResult MidiToMusBytes(std::span<const std::uint8_t> midi, int ticksPerSecond);

/// Exit codes of kelvarmus. Success is 1, which is what its callers wait for.
inline constexpr int KelvarMusConverted = 1;
inline constexpr int KelvarMusBadUsage = 2;
inline constexpr int KelvarMusCantRead = 3;
inline constexpr int KelvarMusNotConverted = 4;
inline constexpr int KelvarMusCantWrite = 5;

/// The MUS file kelvarmus writes for `input`: the same name with the extension ".MUS".
std::filesystem::path MusOutputName(const std::filesystem::path& input);

/// kelvarmus [/tTEMPO] FILE: converts the MIDI file FILE to MusOutputName(FILE), at TEMPO MUS
/// ticks a second (1 to 999, 140 when not given). Returns an exit code; `message` gets a
/// line for the user on failure.
int RunKelvarMus(const std::vector<std::string>& arguments, std::string& message);

} // namespace kelvar::sound
