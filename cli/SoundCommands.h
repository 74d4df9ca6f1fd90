// kelvar-cli sound and music: sound lumps to WAV and back, music lumps to MIDI and MUS, and
// music rendered to a wave through fluidsynth.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

namespace kelvar::cli
{

/// kelvar-cli sound export IWAD [PWAD...] LUMP -o FILE.wav|FILE.snd
/// kelvar-cli sound export IWAD [PWAD...] --all -d DIR
/// kelvar-cli sound import FILE -o OUT.wad [--name LUMP]
int SoundCommand(const std::vector<std::string>& arguments);

/// kelvar-cli music export IWAD [PWAD...] LUMP -o FILE.mid|FILE.mus [--tempo N]
/// kelvar-cli music import FILE -o OUT.wad [--name LUMP] [--tempo N]
/// kelvar-cli music render IWAD [PWAD...] LUMP -o FILE.wav [--soundfont FILE.sf2]
int MusicCommand(const std::vector<std::string>& arguments);

} // namespace kelvar::cli
