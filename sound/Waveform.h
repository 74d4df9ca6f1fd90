// The picture of a sound: its samples as a line across a canvas.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "platform/Canvas.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvar::sound
{

/// The note drawn instead of a wave there is nothing to draw of.
inline constexpr const char* EmptyWaveformNote = "No wave data to show";

/// The points of the line that pictures `wave` (a RIFF WAVE with its 44-byte header) on a
/// `width` by `height` area. The samples are taken as unsigned bytes, 16-bit and stereo data
/// first reduced as ConvertWavToSnd does. Every step-th sample makes a point, the step being
/// samples / 1000 and at least 1; point k stands at X = k * width / (samples / step) and
/// Y = byte * height / 256. Nothing for a wave that is not PCM of 8 or 16 bits with one or
/// two channels, or that has no samples.
std::optional<std::vector<platform::Point>> WaveformPoints(std::span<const std::uint8_t> wave,
                                                           int width, int height);

/// Clears `canvas` to `background` and draws the line of WaveformPoints over the whole of it
/// in `color`, or EmptyWaveformNote when there is no line.
void DrawWaveform(platform::Canvas& canvas, std::span<const std::uint8_t> wave, int background,
                  int color);

} // namespace kelvar::sound
