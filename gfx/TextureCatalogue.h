// The texture and flat catalogues: every wall texture, flat, patch and colormap name of the open
// files, where each lies, in the lists the pickers and the checker use.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/LumpName.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kelvar::gfx
{

/// What a catalogue row is: a TEXTUREx entry, a picture lump, or a flat.
inline constexpr std::uint16_t ClassTextureEntry = 1;
inline constexpr std::uint16_t ClassPictureLump = 2;
inline constexpr std::uint16_t ClassFlatLump = 3;

/// Where a row comes from.
inline constexpr std::uint16_t GroupTxPicture = 1;   // between TX_START and TX_END, or HI_
inline constexpr std::uint16_t GroupTextureName = 2; // a TEXTURE1 or TEXTURE2 name
inline constexpr std::uint16_t GroupPatchName = 3;   // a PNAMES name
inline constexpr std::uint16_t GroupFlat = 4;
inline constexpr std::uint16_t GroupSprite = 5;

/// One name of a catalogue.
struct CatalogueEntry
{
    wad::LumpName Name;
    int DirectoryIndex = -1; // its lump in the master directory; -1 for TEXTUREx names
    int File = 0;            // 0 when it lies in the IWAD
    std::uint16_t Class = 0;
    std::uint16_t Group = 0;
};

/// A list of names, each once (8 characters, case ignored), with row 0 "-" in the texture list;
/// the rows in the order of insertion or sorted, and the rows that come from PWADs.
class NameCatalogue
{
public:
    /// Adds a row; with `unique` a name already there is passed over. Returns its row or -1.
    int Append(const CatalogueEntry& entry, bool unique);
    /// Also lists the row among the rows from PWADs.
    void MarkFromPwad(int row);
    /// Sorts both lists by name, case ignored.
    void Sort();

    bool Contains(const wad::LumpName& name) const { return ByKey.contains(name.Key()); }
    /// The position of the name in the list, plus one; 0 when it isn't there.
    int Position(const wad::LumpName& name) const;

    const std::vector<CatalogueEntry>& Rows() const { return Entries; }
    CatalogueEntry& Row(int row) { return Entries[static_cast<std::size_t>(row)]; }
    /// Row numbers in list order.
    const std::vector<int>& List() const { return Order; }
    const std::vector<int>& PwadList() const { return FromPwads; }
    std::size_t Size() const { return Order.size(); }

private:
    std::vector<CatalogueEntry> Entries;
    std::vector<int> Order;
    std::vector<int> FromPwads;
    std::unordered_map<std::uint64_t, int> ByKey; // the first row of each name
};

/// A PNAMES entry with the lump it resolved to (zero when there is none).
struct PatchRecord
{
    wad::LumpName Name;
    int File = 0;
    std::int32_t Offset = 0;
    std::int32_t Size = 0;
    int DirectoryIndex = -1;
    std::vector<std::uint8_t> Data; // the lump's bytes once read, when small enough to keep
};

/// A Boom colormap name from the C_START run.
struct ColormapName
{
    int File = 0;
    wad::LumpName Name;
};

/// At most this many colormap names are kept.
inline constexpr std::size_t ColormapNameLimit = 50;

/// What the game and the settings decide about the lists.
struct CatalogueOptions
{
    bool AnyGraphicAsTexture = false; // ports that put flats, patches and sprites on walls
    bool SortTextureNames = true;
};

/// The catalogues of the files now open.
struct CatalogueState
{
    NameCatalogue Textures;
    NameCatalogue Flats;
    std::vector<CatalogueEntry> TxNames; // the TX and HI runs: searched first when drawing
    std::vector<PatchRecord> Patches;    // one per PNAMES entry, in PNAMES order
    std::vector<ColormapName> Colormaps;
};

CatalogueState& Catalogue();

/// Rebuilds the texture list from the TX and HI runs, TEXTURE1 and TEXTURE2, the colormap
/// names, the flats of the FF run, and in the ports also flats, patches and sprites. Resolves
/// every PNAMES entry to its lump. Needs the marker runs of the master directory.
void BuildTextureCatalogue(const CatalogueOptions& options);

/// Rebuilds the flat list: the flats of the directory, and in the ports also the textures and
/// pictures of the texture list. Run after BuildTextureCatalogue.
void BuildFlatCatalogue(const CatalogueOptions& options);

/// Adds the names between C_START and C_END when both lie in one file; tells when they don't,
/// and when the list is full.
void LoadColormapNames();

/// Drops the colormap names of a file that closes.
void FreeColormapNames(int file);

} // namespace kelvar::gfx
