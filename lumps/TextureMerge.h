// The merge buffers of an import: one PNAMES and one TEXTURE1 built from the target's and the
// sources' lumps, the operations on them, and the dummy TEXTURE2 that stands in for the rest.
// SPDX-License-Identifier: GPL-3.0-or-later
//
// Design notes
// - The buffers hold the lumps' bytes as they will be written: PNAMES as a count and 8-byte
//   names, TEXTURE1 as a count, an offset table and the records. The record layout (Doom's or
//   the older Strife one) is the buffers' TextureLayout.
// - The order of PNAMES names never changes once a name is in: the target's textures keep
//   their patch indexes, and a source's textures are translated to the merged names.
// - All textures end up in the one texture buffer; TEXTURE2 becomes a dummy holding the one
//   texture "AADUMMY1", which the merge itself never takes in from a source.
// - Nothing here shows a message: what happens goes to the merge's log, and the counters Add,
//   Dup and Rep. Every read of a record is bounded by its buffer, whatever its offsets claim.
#pragma once

#include "gfx/TextureLumps.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvar::lumps
{

/// The merge buffers of one run, its counters and its log.
struct MergeBuffers
{
    gfx::TextureLayout Layout;
    std::vector<std::uint8_t> Pnames;
    std::vector<std::uint8_t> Textures;
    std::vector<std::uint8_t> DummyTexture2;
    int Add = 0;         // textures appended
    int Dup = 0;         // textures met again with the same bytes
    int Rep = 0;         // textures replaced by a source's of the same name
    int BadTextures = 0; // textures with a patch index that could not be translated
    std::vector<std::string> Log;
};

/// The texture that stands in TEXTURE2 after a merge, and that a merge never takes in.
inline constexpr std::string_view DummyTextureName = "AADUMMY1";

/// True when a PNAMES lump holds the names its count says: a count over 0 whose names fit.
bool PnamesLumpFits(std::span<const std::uint8_t> lump);

/// The count of a PNAMES or TEXTUREx buffer; 0 for one too short to have it.
std::int32_t LumpCount(std::span<const std::uint8_t> lump);

/// Adds the names of the PNAMES lump `source` to the merged PNAMES: an empty buffer takes the
/// source as it is (logging "PNAMES size error\n\ndata size=%d, should be %d" when its size
/// isn't count * 8 + 4); otherwise each name not yet there (8 characters, case ignored) is
/// appended and the buffer is cut to count * 8 + 4.
void MergePnames(MergeBuffers& buffers, std::span<const std::uint8_t> source);

/// Translates the patch indexes of the texture lump `textures`, made against the PNAMES lump
/// `sourcePnames`, into indexes of the merged PNAMES. An index below 0, at or past the source's
/// count, or whose name is not in the merged PNAMES is an error and stays as it is; a texture
/// with errors logs "Texture %8.8s patchcount=%d invalid patch count=%d" and counts as bad
/// (it stays in the merge). Returns the textures with errors.
int RemapTexturePatches(MergeBuffers& buffers, std::string_view tag,
                        std::vector<std::uint8_t>& textures,
                        std::span<const std::uint8_t> sourcePnames);

/// Merges the texture lump `source` into the texture buffer. An empty buffer takes the source
/// as it stands. Otherwise each source texture in order but "AADUMMY1": a new name is
/// appended (Add, "added " and the name in the log); a name already there with the same bytes
/// counts as Dup; with the same record size its record is overwritten in place, with another
/// size it is deleted and the new one appended (Rep either way).
void MergeTextures(MergeBuffers& buffers, std::string_view tag,
                   std::span<const std::uint8_t> source);

/// Removes the texture `name` from the texture lump `buffer`: its offset and its record with
/// any spare bytes behind it, up to the next record in the lump (its end for the last). A
/// next record by index that lies before this one logs "TEXTURE control invalid?\n". Returns
/// 1 removed, 0 when no texture has that name.
int DeleteTextureEntry(MergeBuffers& buffers, std::string_view tag, std::string_view name,
                       std::vector<std::uint8_t>& buffer);

/// Sorts the textures of `buffer` by name (case ignored; equal names keep their order) and
/// writes the records back to back. A size that changes logs "    *** After TEXTUREx sort
/// **TEXTURE Lump size Change\nTEXTURE Lump size was=%d and size now=%d\nMost likely TEXTUREx
/// lumps imported had empty space".
void SortTextureBuffer(MergeBuffers& buffers, std::vector<std::uint8_t>& buffer);

/// The dummy TEXTURE2: one texture "AADUMMY1" of size 0 by 0 with one patch of index 1.
std::vector<std::uint8_t> MakeDummyTexture2(const gfx::TextureLayout& layout);

/// The names of the textures of a texture lump, in order (records outside it are left out).
std::vector<std::string> TextureNames(std::span<const std::uint8_t> buffer,
                                      const gfx::TextureLayout& layout);

/// Checks every patch index of the texture buffer against the merged PNAMES, logging each
/// texture with a bad one as RemapTexturePatches does. Returns the textures with errors.
int CheckMergedPatches(MergeBuffers& buffers);

} // namespace kelvar::lumps
