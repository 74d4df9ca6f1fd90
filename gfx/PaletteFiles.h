// Palette files: the binary .PAC, the JASC text .PAL, and the palette export command.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kelvar::gfx
{

/// A .PAC file: 768 bytes of red, green, blue; nothing when the bytes are fewer.
std::optional<Palette> ReadPacBytes(std::span<const uint8_t> bytes);

/// The JASC text of a palette: "JASC-PAL", "0100", "256", then one "red green blue" line an
/// entry, every line closed by CR LF.
std::string JascPaletteText(const Palette& palette);

/// A palette from JASC text; nothing when the header or a line is wrong. Lines may end in
/// LF or CR LF; fewer than 256 entries leave the rest black.
std::optional<Palette> ParseJascPalette(std::string_view text);

/// Reads a palette file: JASC text when it starts "JASC-PAL", else binary. Nothing when the
/// file can't be read or is neither.
std::optional<Palette> ReadPaletteFile(const std::filesystem::path& path);

/// Writes bytes to a new file; false when it can't be created or written.
bool WriteFileBytes(const std::filesystem::path& path, std::span<const uint8_t> bytes);

/// Reads a whole file; nothing when it can't be opened.
std::optional<std::vector<uint8_t>> ReadFileBytes(const std::filesystem::path& path);

/// The palette export command: asks for the file ("Export Palette File", *.PAL) and the kind
/// ("Type of Palette"), then writes the JASC text of the IWAD's first PLAYPAL palette
/// whatever the answer. Returns 1 written, 0 cancelled, -1 after "File Creation Error" or a
/// missing PLAYPAL.
[[nodiscard]] int ExportPaletteFile();

} // namespace kelvar::gfx
