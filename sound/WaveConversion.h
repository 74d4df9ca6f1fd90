// SND lumps to RIFF WAVE and back: the pure conversions over bytes and their file forms.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::sound
{

/// An 8 or 16-bit PCM wave of one or two channels as an SND lump into `snd`. 8-bit mono is
/// copied as it stands; stereo keeps the left channel (16-bit) or the mean of the pair
/// (8-bit); 16-bit samples become unsigned bytes. The rate is kept, never resampled.
/// Returns nothing on success, else the error text: "Type 1 (PCM), 8/16 bit .WAV files
/// only..." with the type, bits and channels, "WAV 'data' control missing" or
/// "Wave size <= 0 : %d".
std::optional<std::string> ConvertWavToSnd(std::span<const std::uint8_t> wav,
                                           std::vector<std::uint8_t>& snd);

/// An SND lump as a WAV into `wav`: a lump of 46 bytes or more that is already a RIFF WAVE is
/// copied; an SND of 6000 to 45000 Hz whose count fits gets the 44-byte header and all its
/// bytes after the SND header. Returns nothing, "size too small" or "Entry not sound?".
std::optional<std::string> SndToWav(std::span<const std::uint8_t> lump,
                                    std::vector<std::uint8_t>& wav);

/// A lump that should become an SND, into `snd`: a RIFF WAVE goes through ConvertWavToSnd;
/// otherwise the 8 bytes at 44 must be an SND header of 6000 to 45000 Hz whose count is not
/// over the size, and the lump is copied whole (so a plain SND lump is usually refused here).
/// Returns nothing, "size too small" (45 bytes or fewer), "Entry not sound?" or
/// ConvertWavToSnd's text.
std::optional<std::string> WavToSnd(std::span<const std::uint8_t> lump,
                                    std::vector<std::uint8_t>& snd);

/// Reads the SND lump of `sizeInOut` bytes at `sourceOffset` of `source`, writes its WAV at
/// `targetOffset` of `target`, and sets `sizeInOut` to the bytes written. Returns nothing,
/// SndToWav's texts, "Snd-to-Wav sound Files not open" for a null file, or "Can't write file".
std::optional<std::string> SndLumpToWav(std::FILE* target, std::int64_t targetOffset,
                                        std::FILE* source, std::int64_t sourceOffset,
                                        std::int32_t& sizeInOut);

/// As SndLumpToWav, the other way through WavToSnd. A negative size means "unknown": the
/// rest of the file from `sourceOffset`. A null file gives "Wav-to-Snd sound Files not open".
std::optional<std::string> WavLumpToSnd(std::FILE* target, std::int64_t targetOffset,
                                        std::FILE* source, std::int64_t sourceOffset,
                                        std::int32_t& sizeInOut);

/// Reads `size` bytes at `offset` of `file`; fewer when the file ends first. A negative size
/// reads to the end of the file.
std::vector<std::uint8_t> ReadRange(std::FILE* file, std::int64_t offset, std::int64_t size);

/// Writes `bytes` at `offset` of `file`; false when the seek or the write failed.
bool WriteRange(std::FILE* file, std::int64_t offset, std::span<const std::uint8_t> bytes);

} // namespace kelvar::sound
