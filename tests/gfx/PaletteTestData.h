// What the palette and picture tests share: lumps read straight from the Freedoom IWADs, and
// the fixtures that reset the palette state around each test.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/GamePalette.h"
#include "gfx/ImageRaster.h"
#include "tests/testkit/WadFixture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kelvar::gfx::test
{

/// The bytes of the newest lump `name` in Freedoom's `wadName`, read by a plain directory
/// walk so that the tests do not lean on the WAD layer; fails the test when it is missing.
std::vector<uint8_t> FreedoomLump(const std::string& wadName, const std::string& name);

/// Palette 0 of freedoom2.wad's PLAYPAL.
Palette FreedoomPalette();

/// A palette of `fill` with the given entries set from index 0 on.
Palette PaletteOf(std::initializer_list<Rgb> entries, Rgb fill = {255, 255, 255});

/// The base of the palette tests: the WAD layer and the palette state reset before and after
/// each test.
class PaletteFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        ResetPalettes();
    }
    void TearDown() override
    {
        ResetPalettes();
        WadFixture::TearDown();
    }
};

/// The same with Freedoom's palette as the game palette.
class FreedoomPaletteFixture : public PaletteFixture
{
protected:
    void SetUp() override
    {
        PaletteFixture::SetUp();
        Palettes().GamePalette = FreedoomPalette();
    }
};

} // namespace kelvar::gfx::test
