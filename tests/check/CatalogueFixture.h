// The base of the tests that need texture and flat names: a small catalogue in memory and
// the TEXTURE1 it would have been read from, over CheckFixture.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "tests/check/CheckFixture.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <string>
#include <utility>
#include <vector>

namespace kelvar::check
{

// A TEXTURE1 lump in Doom's layout with the given textures and patch counts.
inline std::vector<std::uint8_t> Texture1(const std::vector<std::pair<std::string, int>>& textures)
{
    std::vector<std::uint8_t> bytes(4 + 4 * textures.size(), 0);
    wad::WriteLe32(bytes.data(), static_cast<std::int32_t>(textures.size()));
    for (std::size_t i = 0; i < textures.size(); ++i)
    {
        wad::WriteLe32(bytes.data() + 4 + 4 * i, static_cast<std::int32_t>(bytes.size()));
        std::vector<std::uint8_t> record(22 + 10 * static_cast<std::size_t>(textures[i].second), 0);
        std::copy(textures[i].first.begin(), textures[i].first.end(), record.begin());
        wad::WriteLe16(record.data() + 12, 64);
        wad::WriteLe16(record.data() + 14, 128);
        wad::WriteLe16(record.data() + 20, static_cast<std::uint16_t>(textures[i].second));
        bytes.insert(bytes.end(), record.begin(), record.end());
    }
    return bytes;
}

/// Textures STARTAN3, MARBLE1, MARBGRAY, STONE2 (one patch each) and MIDGRATE (three);
/// flats FLOOR4_8, CEIL3_5, FLAT4, F_SKY1 and NUKAGE1; the colour map WATERMAP.
class CatalogueFixture : public CheckFixture
{
protected:
    void SetUp() override
    {
        CheckFixture::SetUp();
        ResetCatalogue();
        gfx::CatalogueState& catalogue = gfx::Catalogue();
        const std::vector<std::pair<std::string, int>> textures = {
            {"STARTAN3", 1}, {"MARBLE1", 1}, {"MARBGRAY", 1}, {"STONE2", 1}, {"MIDGRATE", 3}};
        catalogue.Textures.Append(Entry("-", gfx::GroupTextureName), true);
        for (const auto& texture : textures)
        {
            catalogue.Textures.Append(Entry(texture.first, gfx::GroupTextureName), true);
        }
        for (const char* flat : {"FLOOR4_8", "CEIL3_5", "FLAT4", "F_SKY1", "NUKAGE1"})
        {
            catalogue.Flats.Append(Entry(flat, gfx::GroupFlat), true);
        }
        catalogue.Colormaps.push_back({0, wad::LumpName::From("WATERMAP")});
        // The TEXTUREx lumps as if read from the open files.
        gfx::TextureLumpsState& lumps = gfx::TextureLumps();
        lumps.DirectoryStamp = wad::Master().Stamp();
        lumps.Texture1.emplace(Texture1(textures), 1, 0, gfx::TextureLayout{});
        lumps.Texture2.emplace();
    }

    void TearDown() override
    {
        ResetCatalogue();
        CheckFixture::TearDown();
    }

    static void ResetCatalogue()
    {
        gfx::Catalogue() = {};
        gfx::TextureLumps() = {};
    }

    static gfx::CatalogueEntry Entry(const std::string& name, std::uint16_t group)
    {
        gfx::CatalogueEntry entry;
        entry.Name = wad::LumpName::From(name);
        entry.Group = group;
        entry.Class = group == gfx::GroupFlat ? gfx::ClassFlatLump : gfx::ClassTextureEntry;
        return entry;
    }
};

} // namespace kelvar::check
