// The base of the export tools' tests: a small IWAD with a palette, PWADs laid over it, the
// export list and an output folder.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "gfx/GamePalette.h"
#include "gfx/Patch.h"
#include "lumps/ExportBatch.h"
#include "lumps/ExportList.h"
#include "sound/SoundState.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

#include <filesystem>
#include <string>
#include <vector>

namespace kelvar::lumps
{

class ExportFixture : public testkit::WadFixture
{
protected:
    void SetUp() override
    {
        WadFixture::SetUp();
        ResetExports();
        gfx::ResetPalettes();
        sound::ResetSound();
        Out = Dir.Path() / "out";
        std::filesystem::create_directories(Out);
    }

    void TearDown() override
    {
        ResetExports();
        gfx::ResetPalettes();
        WadFixture::TearDown();
    }

    /// The 8 bytes heading a Doom sound lump of `count` samples (below 256) at `rate`.
    static std::string SndHeader(int rate, int count)
    {
        return {3,
                0,
                static_cast<char>(rate & 0xFF),
                static_cast<char>(rate >> 8),
                static_cast<char>(count),
                0,
                0,
                0};
    }

    /// A Doom 2 IWAD in miniature: a palette whose entry i is (i, i, i), a sprite patch,
    /// MAP01 and one flat between the flat markers.
    std::string SmallIwad()
    {
        std::string palette;
        for (int i = 0; i < 256; ++i)
        {
            palette += std::string(3, static_cast<char>(i));
        }
        testkit::WadBuilder iwad("IWAD");
        iwad.Lump("PLAYPAL", palette)
            .Lump("SARGA1", PatchLump(4, 3, 7))
            .Level("MAP01")
            .Marker("F_START")
            .Lump("FLOOR0_1", std::string(4096, '\x05'))
            .Marker("F_END");
        return iwad.Write(Dir.Path() / "small.wad");
    }

    /// Opens the small IWAD and `pwad` over it.
    void OpenWith(const testkit::WadBuilder& pwad, const std::string& name = "pwad.wad")
    {
        ASSERT_EQ(OpenIwad(SmallIwad()), 1);
        ASSERT_GT(OpenPwad(pwad.Write(Dir.Path() / name)), 0);
        Ui.Clear();
    }

    /// A patch of `width` by `height` whose pixel (x, y) is `base + x + width * y`, with a hole
    /// (the transparent index) at (0, 0).
    static std::string PatchLump(int width, int height, int base)
    {
        gfx::ImageRaster raster(width, height);
        for (int y = 0; y < height; ++y)
        {
            for (int x = 0; x < width; ++x)
            {
                raster.Set(x, y, static_cast<std::uint8_t>(base + x + width * y));
            }
        }
        raster.Set(0, 0, gfx::DefaultTransparentIndex);
        const std::vector<std::uint8_t> bytes =
            gfx::EncodePatch(raster, gfx::DefaultTransparentIndex);
        return std::string(bytes.begin(), bytes.end());
    }

    /// Every row, markers included.
    static std::vector<ExportRow> ScanAll()
    {
        ExportFilters filters;
        filters.Control = true;
        return ScanExportList(filters);
    }

    /// The rows of those names, in that order.
    static std::vector<int> RowsNamed(const std::vector<ExportRow>& rows,
                                      const std::vector<std::string>& names)
    {
        std::vector<int> selected;
        for (const std::string& name : names)
        {
            const int row = FindRowByName(rows, name);
            EXPECT_GE(row, 0) << name << " is not listed";
            selected.push_back(row);
        }
        return selected;
    }

    /// Exports the rows of those names into Out with `button`.
    ExportReport ExportNamed(const std::vector<std::string>& names, ExportButton button)
    {
        const std::vector<ExportRow> rows = ScanAll();
        ExportRequest request;
        request.Button = button;
        request.Folder = Out;
        request.Grouping = WadGrouping::Separate;
        return ExportSelection(rows, RowsNamed(rows, names), request);
    }

    /// The lines of the last message.
    std::vector<std::string> LastLines() const { return Ui.Last().Lines; }

    std::filesystem::path Out;
};

} // namespace kelvar::lumps
