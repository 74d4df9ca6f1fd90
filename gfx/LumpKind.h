// What a lump holds: the LumpKind tags, their shown names, and classification by first bytes.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - A lump is classified from a short prefix of its bytes (at most PrefixBytes) and its size,
//   never from the whole lump, so that a list of thousands of lumps classifies cheaply.
// - The tests run in one fixed order and the first that holds decides. The order matters: a
//   64000-byte lump with a valid patch header is a patch, not a full-screen raw picture.
// - The kind found for a directory entry is kept in its LumpEntry::Kind.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

namespace kelvar::gfx
{

/// The tag classification gives a lump; the value indexes the table of shown names.
enum class LumpKind : std::uint16_t
{
    Lump = 0,        // unknown data
    Pwad = 1,        // a whole WAD file stored as a lump
    Flat = 2,        // raw square floor picture
    Pic = 3,         // Doom patch picture
    Proj = 4,        // patch of a projectile or centred object (import target only)
    Sprite = 5,      // patch of a sprite (import target only)
    Weapon = 6,      // patch of a weapon sprite (import target only)
    DoomSound = 7,   // DMX sound
    Wave = 8,        // RIFF WAVE
    DoomMus = 9,     // MUS music
    Midi = 10,       // Standard MIDI or RMID
    Pcx = 11,        // PCX image
    Bmp = 12,        // BMP image
    Pnames = 13,     // PNAMES
    Texture1 = 14,   // TEXTURE1
    Texture2 = 15,   // TEXTURE2
    Tx = 16,         // texture between TX markers
    FlatBig = 17,    // raw 320 x 200 full-screen picture
    FlatBig158 = 18, // raw 320 x 158 full-screen picture
    FlatLeg = 19,    // raw picture behind an 8-byte size header
    Imgz = 20,       // IMGZ picture
    Level = 21,      // a level, found by the level test rather than by bytes
    Png = 22,        // PNG picture
    Flac = 23,       // FLAC audio, recognised only
    Font = 24,       // font lump, recognised only
    Ogg = 25,        // Ogg audio, recognised only
    Jpg = 26,        // JPEG, recognised only
};

/// Number of rows of the kind table.
inline constexpr int LumpKindCount = 27;

/// The name lists, logs and dialogs show for a kind ("LUMP", "PWAD", "FLAT", ...). A level of
/// more than 12 lumps shows as "LEVGL". A value outside the table shows as "LUMP".
std::string_view KindName(LumpKind kind, int levelLumpCount = 0);

/// Bytes of a lump that classification reads at most.
inline constexpr std::size_t PrefixBytes = 64;

/// What classification found: the kind, a short tag of at most four characters ("LUMP",
/// "WAD", "PIC", "FLT", ...), and the picture size where the format tells it (0 otherwise).
struct LumpClass
{
    LumpKind Kind = LumpKind::Lump;
    std::string_view Tag = "LUMP";
    int Width = 0;
    int Height = 0;

    bool operator==(const LumpClass&) const = default;
};

/// Classifies a lump of `size` bytes from `prefix`, its first min(size, PrefixBytes) bytes
/// (bytes missing from a short prefix count as 0). Runs every byte test in order; the name
/// test for flats is ClassifyLumpData's.
LumpClass ClassifyLumpPrefix(std::span<const std::uint8_t> prefix, std::int64_t size);

/// Classifies the lump of `size` bytes at `offset` of `file`, reading only its first bytes.
/// When the bytes say nothing and `lumpName` is given, a name among the flats of the loaded
/// files, or beginning "F_SKY", makes it a 64 x 64 flat. A failed read leaves the missing
/// bytes 0; nothing is shown.
LumpClass ClassifyLumpData(std::FILE* file, std::int64_t offset, std::int64_t size,
                           const char* lumpName);

/// What ClassifyDirectoryEntry found.
struct EntryClass
{
    LumpClass Class;
    std::string_view KindName = "LUMP"; // the shown name of the kind
    int LevelLumpCount = 0;             // lumps of a level, its marker included; 0 no level
    int Index = -1;                     // the master entry classified; -1 none found
};

/// Classifies an entry of the master directory: the one at `entryIndex` if it is not
/// negative, otherwise the newest of `name`. A level marker gets kind Level; any other entry
/// is classified by its bytes. The kind is kept in the entry's Kind field.
EntryClass ClassifyDirectoryEntry(std::string_view name, int entryIndex);

/// The name-based kinds an import gives by file extension: with the extension "WAD",
/// TEXTURE1, TEXTURE2 and PNAMES (any case) give their kinds; anything else gives Lump.
/// The directory classifier asks with "PWAD", which never matches.
LumpKind KindFromName(std::string_view name, std::string_view extension);

/// True when `name` is one of the flats of the loaded files: in the flat catalogue, or while
/// that is not built, between the newest F_START and F_END, or FF_START and FF_END, of the
/// master directory.
bool IsFlatName(std::string_view name);

} // namespace kelvar::gfx
