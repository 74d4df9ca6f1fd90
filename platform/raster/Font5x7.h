// A small 5x7 bitmap font for the labels of pictures drawn without a window system.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

namespace kelvar::platform
{

/// Pixels a glyph takes across, with its gap, and down.
inline constexpr int GlyphAdvance = 6;
inline constexpr int GlyphHeight = 7;

/// The five columns of a character's glyph; bit 0 of a column is its top pixel. Characters
/// outside printable ASCII get a small box.
const std::array<std::uint8_t, 5>& Glyph(char c);

} // namespace kelvar::platform
