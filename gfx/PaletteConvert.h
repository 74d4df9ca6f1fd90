// Recolouring the pictures of the open PWADs from another game's palette to the game palette.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A picture made for another palette keeps its indexes but means other colours. The source
//   palette (a game's .PAC in the program's folder, or a user's) is matched entry by entry to
//   GamePalette, and the resulting TranslationTable is applied to the picture's bytes in
//   place: a lump keeps its name, size and place in the directory.
// - A patch is translated post by post. Posts of different columns may share bytes (columns
//   with the same offset, or a column that starts inside another), so the bytes to translate
//   are first marked in an array over the lump and then translated once each. A post's two
//   pad bytes are translated with its pixels: writers store a copy of the neighbouring pixel
//   there, and renderers that filter read it. A patch whose posts leave the lump is refused
//   before anything is changed. A flat or a full-screen raw picture is translated whole.
// - Each file is rewritten through the shared WAD writer, which renames the old file to its
//   .BAK first and puts it back on any failure. When the user declines the copy, the .BAK is
//   removed after the rewrite succeeded, and an older .BAK of the file is kept as it was.
// - A file open in the program is closed for the rewrite and opened again; were its layout to
//   change (a file with gaps between its lumps comes out packed), the directories in memory
//   follow the new offsets.
#pragma once

#include "gfx/ColorMatch.h"
#include "gfx/ImageRaster.h"
#include "gfx/LumpKind.h"
#include "wad/LumpDirectory.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::gfx
{

/// Whose palette the pictures were made for: the four buttons of the choice, or a file.
enum class PaletteSource
{
    Doom,
    Heretic,
    Hexen,
    Strife,
    UserFile,
};

/// Which pictures are listed: flats (flats and full-screen raws), textures (patches), or both.
enum class GraphicKinds
{
    Flats,
    Textures,
    Both,
};

/// What the user chose before the conversion runs.
struct ConvertChoices
{
    PaletteSource Source = PaletteSource::Doom;
    /// With UserFile: the palette file; empty asks for it ("User Palette file", "*.PAC").
    std::filesystem::path UserPalette;
    GraphicKinds Kinds = GraphicKinds::Textures;
    /// The names to convert (any case); empty converts every picture listed.
    std::vector<std::string> Only;
};

/// One picture the scan listed.
struct ConvertCandidate
{
    std::string Name;
    int FileNumber = 0;
    wad::LumpEntry Entry; // as the file's directory holds it
    LumpKind Kind = LumpKind::Lump;
    int Width = 0;
    int Height = 0;
};

/// What a conversion did, for a caller that lists it.
struct ConvertReport
{
    struct Converted
    {
        std::filesystem::path File;
        std::string Name;
    };
    std::vector<Converted> Lumps; // in the order written
};

/// The file name of a game's palette: "DOOM.PAC", "HERETIC.PAC", "HEXEN.PAC", "STRIFE.PAC".
std::string_view PaletteFileName(PaletteSource source);

/// Where a game's palette file is looked for: the program's folder, the name in any case.
std::filesystem::path PaletteFilePath(PaletteSource source);

/// The source palette of `choices`. A game's .PAC missing from the program's folder is first
/// written from the IWAD's PLAYPAL when the IWAD is of that game. Nothing after a message: the
/// file is missing (with how to make one), it holds no palette, or the file dialog was
/// cancelled (silently).
std::optional<Palette> LoadSourcePalette(const ConvertChoices& choices);

/// The pictures of `kinds` in the open PWADs (the IWAD, an IWAD opened as a PWAD and files
/// open for reading only are not converted), levels, PNAMES and TEXTUREx passed over; sorted
/// by name, then by file. Shows "Loading %4d possible FLATS" or "Loading %4d possible
/// Textures" as progress.
std::vector<ConvertCandidate> ListConvertibleGraphics(GraphicKinds kinds);

/// True for the kinds a conversion of `kinds` lists: Flat, FlatBig and FlatBig158 for flats,
/// Pic for textures.
bool IsConvertibleKind(LumpKind kind, GraphicKinds kinds);

/// Translates the posts of a patch lump through `table`, each byte once however many posts
/// hold it. False, with the lump unchanged, when the bytes are no patch or a post leaves it.
[[nodiscard]] bool TranslatePatch(std::span<std::uint8_t> lump, const IndexTable& table);

/// Translates every byte of a raw picture through `table`.
void TranslateRaw(std::span<std::uint8_t> lump, const IndexTable& table);

/// The line that describes a listed picture: "%4hd x %-4hd  %-8s  %s Scale %2hd  %-46.46s"
/// with its size, name, kind, scale and file.
std::string GraphicInfoLine(const ConvertCandidate& candidate, int scale = 1);

/// The colour conversion command. Reads the source palette, builds TranslationTable to
/// GamePalette, lists the pictures of the chosen kinds ("No Graphics Found" when there are
/// none), asks whether to keep a copy of each file ("Convert and Save all Graphics..."),
/// converts the chosen ones and rewrites their files, then reports "%d textures converted"
/// under "Conversion Done". A name not listed gives "%-8s Not found?", a picture whose bytes
/// don't hold gives "%-8s Invalid Image"; both leave the lump alone. A file that can't be
/// rewritten is left as it was ("File was not backed up\n\nConversion not done!"). Returns
/// 1 when every chosen picture was converted, 0 when nothing was to be done or the user
/// cancelled, -1 when something was refused.
[[nodiscard]] int ConvertGraphicsToPalette(const ConvertChoices& choices,
                                           ConvertReport* report = nullptr);

} // namespace kelvar::gfx
