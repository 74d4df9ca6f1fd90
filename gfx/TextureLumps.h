// PNAMES and TEXTURE1/TEXTURE2: the lumps read as they stand, texture lookup by name, and the
// size audit of a TEXTUREx lump.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/LumpName.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kelvar::gfx
{

/// The record layout of TEXTUREx: Doom's 22-byte head with 10-byte patch entries, or the
/// older Strife release's 18-byte head with 6-byte entries. The patch count's position is
/// counted in 16-bit words.
struct TextureLayout
{
    int HeadSize = 22;
    int PatchSize = 10;
    int PatchCountIndex = 10;
};

/// The layout of the game now identified.
TextureLayout CurrentTextureLayout();

/// One texture as its TEXTUREx record gives it. A scale byte of 0 stands for 8 (eighths).
struct TextureRecord
{
    wad::LumpName Name;
    std::uint16_t Flags = 0;
    std::uint8_t XScale = 8;
    std::uint8_t YScale = 8;
    std::int16_t Width = 0;
    std::int16_t Height = 0;
    std::int16_t PatchCount = 0;
    int Lump = 1;           // 1 TEXTURE1, 2 TEXTURE2
    int File = 0;           // the file that supplied the lump; 0 the IWAD
    std::size_t Offset = 0; // the record's place in the lump

    /// The size on screen: width * 8 / xScale and height * 8 / yScale.
    int ScaledWidth() const { return XScale == 0 ? Width : Width * 8 / XScale; }
    int ScaledHeight() const { return YScale == 0 ? Height : Height * 8 / YScale; }
};

/// One patch of a texture: where it goes and its PNAMES index.
struct TexturePatch
{
    std::int16_t X = 0;
    std::int16_t Y = 0;
    std::int16_t Index = 0;
};

/// A PNAMES lump read: its names, or none when the lump was refused.
struct PatchNames
{
    std::vector<wad::LumpName> Names;
    bool Damaged = false; // a count or a size that the lump can't hold: reported
};

/// Reads a PNAMES lump. A lump of 8 bytes or less gives "PNAMES entry size is=%d ?"; a count
/// of 0 or less, or one the lump can't hold, gives its message and no names; a name that
/// would run past the end stops the list with "PnameCount=%d, filesize=%d Corrupted data".
PatchNames ReadPatchNames(std::span<const std::uint8_t> lump);

/// A TEXTUREx lump kept as read; names, sizes and patch lists are read from its bytes.
class TextureLump
{
public:
    TextureLump() = default;
    /// Takes the bytes of TEXTURE1 (number 1) or TEXTURE2 (2), reporting a lump of 12 bytes
    /// or less ("TEXTURE1 size is=%d ?") and a count of 0 or less ("TEXTURE1 count %d is <= 0
    /// ?"); either leaves it with no textures.
    TextureLump(std::vector<std::uint8_t> bytes, int number, int file, TextureLayout layout);

    int Count() const { return Count_; }
    int File() const { return File_; }
    /// The record of texture `index`; nothing when its offset or head lies outside the lump.
    std::optional<TextureRecord> Record(int index) const;
    /// The patches of texture `index`, or of a record this lump gave, as many as it holds.
    std::vector<TexturePatch> Patches(int index) const;
    std::vector<TexturePatch> Patches(const TextureRecord& record) const;
    /// The first texture of that name (8 characters, case ignored).
    std::optional<TextureRecord> Find(const wad::LumpName& name) const;

private:
    std::optional<std::size_t> RecordOffset(int index) const;

    std::vector<std::uint8_t> Bytes;
    TextureLayout Layout;
    int Number = 1;
    int File_ = 0;
    int Count_ = 0;
};

/// The lumps of the files now open: the newest PNAMES, TEXTURE1 and TEXTURE2, loaded on
/// first use. Only the newest of each counts: a PWAD's TEXTURE1 replaces the IWAD's. A change
/// of the master directory (a file opened or closed, a lump renamed) drops them all, to be read
/// again when next needed.
struct TextureLumpsState
{
    std::uint64_t DirectoryStamp = 0; // the master directory they were read from
    std::optional<PatchNames> Pnames;
    std::optional<TextureLump> Texture1;
    std::optional<TextureLump> Texture2;
};

TextureLumpsState& TextureLumps();

/// Reads the newest PNAMES once; a missing one ends the program as a damaged game file does.
void LoadPnames();
/// Reads the newest TEXTURE1 (which must be there) and TEXTURE2 (which may not) once.
void LoadTextureLumps();
/// Drops the patch names (they are read again when next needed).
void FreePnames();
/// Drops TEXTURE1 or TEXTURE2 when it came from `file`, or whichever file for a negative one.
void FreeTexture1(int file);
void FreeTexture2(int file);

/// Looks a texture up by name: TEXTURE1 first, then TEXTURE2, the first match winning. A name
/// beginning "-" is no texture; a name of the TX or HI marker run is a picture, not a
/// TEXTUREx entry, and is not found here either.
std::optional<TextureRecord> LookupTexture(std::string_view name);

/// Audits a TEXTUREx lump's size: each record's head and patch entries must fill the room up
/// to the next record. A mismatch asks whether to go on (No fails the audit); a total that
/// differs from the lump's size only tells. Under 28 bytes fails.
bool CheckTextureLump(std::span<const std::uint8_t> lump, TextureLayout layout);

} // namespace kelvar::gfx
