// Texture composition: a TEXTUREx entry's patches drawn in order into one picture, through a
// cache of patch lumps.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/ImageRaster.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kelvar::gfx
{

/// The largest patch lump kept in memory once read; larger ones are read for each use.
inline constexpr std::int32_t DefaultTextureCacheLimit = 512000;

/// How a texture is composed.
struct ComposeOptions
{
    std::uint8_t Background = DefaultTransparentIndex; // where no patch reaches
    std::int32_t CacheLimit = DefaultTextureCacheLimit;
};

/// Composes the named texture at its stored size: filled with the background, then each patch
/// drawn at its origin, later ones over earlier ones, clipped to the texture. A patch index
/// outside PNAMES, a patch with no lump and a damaged patch draw nothing. Nothing for "-", an
/// unknown name, or a texture of no size. Needs the texture catalogue's patch table.
std::optional<ImageRaster> ComposeTexture(std::string_view name,
                                          const ComposeOptions& options = {});

/// The bytes of PNAMES entry `index`, read once and kept when not larger than `cacheLimit`.
/// Empty when the entry has no lump. The bytes of a patch too large to keep are valid until the
/// next call.
const std::vector<std::uint8_t>& PatchBytes(int index, std::int32_t cacheLimit);

} // namespace kelvar::gfx
