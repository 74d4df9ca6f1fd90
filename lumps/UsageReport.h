// The texture and flat reports of a PWAD: the names its levels use, the names it defines, and
// what it defines that no level uses, with the deletion of those.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// The PWAD is read from its file, whether it is open in the program or not; the IWAD is the
// one open now (its TEXTURE1/TEXTURE2 and lumps), when there is one. Each report is written to
// the common log and shown in the text viewer.
//
// Deleting what is unused leaves the game able to load the result:
// - the first texture of TEXTURE1 (the one the games never draw) and every texture whose name
//   begins "SKY" (the games and their level info name the skies, no wall does) count as used;
// - PNAMES entries are removed only when every texture lump the game reads them through is in
//   the PWAD, and every patch index at or above a removed entry is lowered in both TEXTUREx
//   lumps, so the remaining textures compose as before;
// - a patch lump goes only when no remaining PNAMES entry names it.
#pragma once

#include "wad/WadRewrite.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// The names the levels of the PWAD use, under "List of WAD Textures and Flats Used": for each
/// level "     Level" and its name, "== Flats ==", each flat once, "%d unique Flats used",
/// "== Textures ==", each wall texture once, "%d unique Textures used"; then "%d Levels Found".
/// With `levelName` only that level; "Not a Level" (titled "Not Level") when the PWAD has no
/// level of that name. Returns 1 when the report was shown, 0 when refused or the PWAD could not
/// be read.
[[nodiscard]] int ListTexturesUsed(const std::filesystem::path& pwad,
                                   std::string_view levelName = {});

/// The names the PWAD defines, under "List of WAD Texture and Flat names": its flats, the
/// textures of its TEXTURE1 and TEXTURE2 (marked " *" when the IWAD's lumps don't define them)
/// and its PNAMES (marked " *" when the patch lump is in the PWAD). "No TEXTUREx & PNAMES
/// found" and "No FLATS found" tell what it lacks. Returns 1 when shown, 0 when the PWAD could
/// not be read.
[[nodiscard]] int ListTextureNames(const std::filesystem::path& pwad);

/// What ListUnused does besides listing.
struct UnusedOptions
{
    bool DeleteMode = false;       // delete what no level uses
    bool PromptForDeletes = false; // ask "Delete FLAT?", "Delete Texture?", "Delete PNAMES?"
    bool NextStepNotice = true;    // after deleting, tell the user to press Save
    /// Further PWADs whose levels count as users (maps kept apart from their resources).
    std::vector<std::filesystem::path> LevelFiles;
};

/// The PWAD as a deletion run leaves it, to be written with wad::RewriteWad.
struct UnusedDeletion
{
    wad::RewritePlan Plan; // the PWAD's entries without those deleted, TEXTUREx and PNAMES new
    int Flats = 0;
    int Textures = 0;
    int Patches = 0;
};

/// Lists the flats, textures and patches the PWAD defines and no level uses, under "List of
/// WAD Flats and Patches not Used", with the check's banners. In delete mode each is deleted
/// (asked first with PromptForDeletes; a No keeps it, " *** cancelled ***"), the result going
/// into `deletion`. Returns 1 when the report was shown, 0 when a file could not be read.
[[nodiscard]] int ListUnused(const std::filesystem::path& pwad, const UnusedOptions& options,
                             UnusedDeletion* deletion = nullptr);

} // namespace kelvar::lumps
