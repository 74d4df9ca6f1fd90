// Saving the palette editor's PLAYPAL and COLORMAP into a PWAD, rebuilt around them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/PaletteEditor.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace kelvar::gfx
{

/// The lumps a save puts in place: each is written when its bytes are given.
struct PaletteLumps
{
    const std::vector<uint8_t>* Playpal = nullptr;
    const std::vector<uint8_t>* Colormap = nullptr;
};

/// Rewrites `target` as a PWAD through the shared WAD writer: its old file becomes the same
/// name with ".BAK" (an older .BAK is deleted first), and every entry is copied in order,
/// PLAYPAL and COLORMAP replaced in place by the given lumps; a lump the file lacked is
/// appended, PLAYPAL first. A target that doesn't exist yet gets the lumps alone. Returns 1,
/// or -1 after "Err %d: Could not rename file...", "Failure reading old File?" (a target that
/// is no whole WAD, left untouched) or a reported write failure, after which the .BAK is the
/// target again.
[[nodiscard]] int WritePaletteLumps(const std::filesystem::path& target, const PaletteLumps& lumps);

/// &Save: asks for the target ("Target PWAD to receive PALETTE-COLORMAP Lumps", proposing the
/// PWAD the palette came from) and writes the lumps chosen for saving. A target open in the
/// program is closed for the rewrite and opened again; its directory in the file table is
/// then out of date, and the caller resets the file table and texture lists. Returns 1
/// saved, 0 cancelled or nothing chosen ("Please select PLAYPAL and COLORMAP options"), -1
/// failed.
[[nodiscard]] int SavePaletteLumps(const PaletteEditorState& state);

} // namespace kelvar::gfx
