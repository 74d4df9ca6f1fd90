// Data the palette and picture tests share: lumps read straight from the Freedoom IWADs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/gfx/PaletteTestData.h"

#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

#include <cstring>

namespace kelvar::gfx::test
{
namespace
{

int32_t Le32(const std::string& bytes, size_t at)
{
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + at, 4);
    return static_cast<int32_t>(value);
}

} // namespace

std::vector<uint8_t> FreedoomLump(const std::string& wadName, const std::string& name)
{
    const std::string wad = testkit::ReadFile(testkit::FreedoomWad(wadName));
    const int32_t count = Le32(wad, 4);
    const int32_t directory = Le32(wad, 8);
    std::vector<uint8_t> found;
    for (int32_t i = 0; i < count; ++i)
    {
        const size_t entry = static_cast<size_t>(directory) + static_cast<size_t>(i) * 16;
        const std::string entryName(wad.data() + entry + 8, strnlen(wad.data() + entry + 8, 8));
        if (entryName == name)
        {
            const auto offset = static_cast<size_t>(Le32(wad, entry));
            const auto size = static_cast<size_t>(Le32(wad, entry + 4));
            found.assign(wad.begin() + static_cast<std::ptrdiff_t>(offset),
                         wad.begin() + static_cast<std::ptrdiff_t>(offset + size));
        }
    }
    EXPECT_FALSE(found.empty()) << name << " not in " << wadName;
    return found;
}

Palette FreedoomPalette()
{
    const std::vector<uint8_t> playpal = FreedoomLump("freedoom2.wad", "PLAYPAL");
    Palette palette{};
    for (size_t i = 0; i < 256 && i * 3 + 2 < playpal.size(); ++i)
    {
        palette[i] = {playpal[i * 3], playpal[i * 3 + 1], playpal[i * 3 + 2]};
    }
    return palette;
}

Palette PaletteOf(std::initializer_list<Rgb> entries, Rgb fill)
{
    Palette palette;
    palette.fill(fill);
    std::copy(entries.begin(), entries.end(), palette.begin());
    return palette;
}

} // namespace kelvar::gfx::test
