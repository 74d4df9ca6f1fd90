// PWADs of flats, sprites and patches for the graphics tools: the writers and the questions
// that choose their markers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadRewrite.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace kelvar::lumps
{

/// The lumps a picture PWAD holds: each a name with its bytes, or a span of a file.
using PictureLumps = std::vector<wad::RewriteEntry>;

/// The texture definitions a texture PWAD may carry along with its patches.
struct TextureControlLumps
{
    std::optional<wad::RewriteEntry> Texture1;
    std::optional<wad::RewriteEntry> Texture2;
    std::optional<wad::RewriteEntry> Pnames;
};

/// Writes `flats` between F_START and F_END, or with `doubledMarkers` between FF_START and
/// FF_END followed by one more empty F_END. Panels "Making FLATs %s", "Updating Entries %s".
/// An existing target is kept as its .BAK; one the editor has open is refused. Returns 1 when
/// the file was written, 0 when it couldn't be.
[[nodiscard]] int WriteFlatPwad(const std::filesystem::path& target, const PictureLumps& flats,
                                bool doubledMarkers);

/// Writes `sprites` between S_START and S_END, or SS_START and SS_END. Panels "Making Sprites
/// %s", "Updating Entries %s". Returns as WriteFlatPwad.
[[nodiscard]] int WriteSpritePwad(const std::filesystem::path& target, const PictureLumps& sprites,
                                  bool doubledMarkers);

/// Writes the definitions of `control` that are given (TEXTURE1, TEXTURE2, PNAMES), when it
/// isn't null, then `patches` between P_START and P_END. Panels "Making Texture %s",
/// "Updating Entries %s". Returns as WriteFlatPwad.
[[nodiscard]] int WriteTexturePwad(const std::filesystem::path& target, const PictureLumps& patches,
                                   const TextureControlLumps* control);

// The commands of the graphics tools: the question "Flat PWAD", "Sprite PWAD" or "Texture
// PWAD", a save dialog proposing *.WAD (a file the editor has open is refused), then the
// writer. Each returns 1 when the file was written, 0 when the user cancelled, -1 when the
// file couldn't be written.

[[nodiscard]] int SaveFlatPwad(const PictureLumps& flats);
[[nodiscard]] int SaveSpritePwad(const PictureLumps& sprites);
[[nodiscard]] int SaveTexturePwad(const PictureLumps& patches, const TextureControlLumps& control);

} // namespace kelvar::lumps
