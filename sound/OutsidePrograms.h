// The programs music conversion runs: kelvarmus for MIDI to MUS, fluidsynth to render a MIDI
// file to a wave. Both go through the process port.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace kelvar::sound
{

/// The MIDI to MUS converter, a program of this project.
inline constexpr const char* KelvarMusName = "kelvarmus";
/// The General MIDI soundfont Debian's fluid-soundfont-gm installs.
inline constexpr const char* DefaultSoundFont = "/usr/share/sounds/sf2/FluidR3_GM.sf2";

/// kelvarmus beside the running program when it is there, else the bare name (looked up on
/// PATH when it runs).
std::filesystem::path LocateKelvarMus();

/// The converter's command line: the program, "/t<tempo> " and the input path, quoted.
std::string KelvarMusCommandLine(const std::filesystem::path& program, int tempo,
                                 const std::filesystem::path& input);

/// Converts MIDI to MUS through kelvarmus with the MidiToMusTempo setting, run in
/// `programDir` and waited for. With a `file`, the `size` bytes at `offset` are the MIDI: they
/// are first written to `inputName` with the extension ".tmp", which is removed afterwards.
/// Without one, `inputName` is the MIDI file itself, which must not end in ".mus". On return
/// `outputName` is the input name with ".MUS": the caller checks that the file is there.
/// Returns nothing, or the text "Can't open for writing", "Input file name cannot end in .MUS"
/// or "Error code %d starting Midi2Mus". An exit code other than 1 shows "Error code %d
/// converting\nMidi2Mus possibly could not convert this file\nVerify conversion" and goes on.
std::optional<std::string> ConvertMidiToMus(std::FILE* file, std::int64_t offset, std::int64_t size,
                                            const std::filesystem::path& inputName,
                                            const std::filesystem::path& programDir,
                                            std::filesystem::path& outputName);

/// The fluidsynth command line that renders `midi` to the 16-bit stereo 44100 Hz wave `wav`.
std::string FluidSynthCommandLine(const std::filesystem::path& midi,
                                  const std::filesystem::path& wav,
                                  const std::filesystem::path& soundFont);

/// Renders a MIDI file to a wave with fluidsynth and waits for it. Returns its exit code: 0
/// when it rendered, platform::ChildDidNotStart when it isn't installed.
int RenderMidiToWav(const std::filesystem::path& midi, const std::filesystem::path& wav,
                    const std::filesystem::path& soundFont = DefaultSoundFont);

} // namespace kelvar::sound
