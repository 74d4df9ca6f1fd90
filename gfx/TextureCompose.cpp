// Texture composition from the patch table of the catalogue.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/TextureCompose.h"

#include "gfx/Patch.h"
#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "wad/FindLump.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kelvar::gfx
{
namespace
{

// Draws the pixels of `patch` that posts cover onto `target` at (x, y), clipped.
void DrawOver(ImageRaster& target, const ImageRaster& patch, int x, int y, std::uint8_t hole)
{
    const int left = std::max(0, -x);
    const int top = std::max(0, -y);
    const int right = std::min(patch.Width(), target.Width() - x);
    const int bottom = std::min(patch.Height(), target.Height() - y);
    for (int row = top; row < bottom; ++row)
    {
        const std::uint8_t* from = patch.Row(row);
        std::uint8_t* to = target.Row(row + y);
        for (int column = left; column < right; ++column)
        {
            if (from[column] != hole)
            {
                to[column + x] = from[column];
            }
        }
    }
}

} // namespace

const std::vector<std::uint8_t>& PatchBytes(int index, std::int32_t cacheLimit)
{
    static std::vector<std::uint8_t> uncached; // a patch too large to keep, or none
    std::vector<PatchRecord>& patches = Catalogue().Patches;
    if (index < 0 || static_cast<std::size_t>(index) >= patches.size())
    {
        uncached.clear();
        return uncached;
    }
    PatchRecord& record = patches[static_cast<std::size_t>(index)];
    if (record.Data.empty())
    {
        std::vector<std::uint8_t> bytes = wad::ReadLumpBytes(record.DirectoryIndex);
        if (record.Size > cacheLimit)
        {
            uncached = std::move(bytes);
            return uncached;
        }
        record.Data = std::move(bytes);
    }
    return record.Data;
}

std::optional<ImageRaster> ComposeTexture(std::string_view name, const ComposeOptions& options)
{
    const std::optional<TextureRecord> texture = LookupTexture(name);
    if (!texture || texture->Width <= 0 || texture->Height <= 0)
    {
        return std::nullopt;
    }
    const TextureLumpsState& lumps = TextureLumps();
    const std::optional<TextureLump>& lump = texture->Lump == 1 ? lumps.Texture1 : lumps.Texture2;
    if (!lump)
    {
        return std::nullopt;
    }
    ImageRaster picture(texture->Width, texture->Height, options.Background);
    for (const TexturePatch& placed : lump->Patches(*texture))
    {
        const std::vector<std::uint8_t>& bytes = PatchBytes(placed.Index, options.CacheLimit);
        const std::optional<ImageRaster> patch =
            bytes.empty() ? std::nullopt : DecodePatch(bytes, options.Background);
        if (patch)
        {
            DrawOver(picture, *patch, placed.X, placed.Y, options.Background);
        }
    }
    return picture;
}

} // namespace kelvar::gfx
