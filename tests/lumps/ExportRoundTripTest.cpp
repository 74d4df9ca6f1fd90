// Round trips of the export over Freedoom data: every lump of a multi-level PWAD written raw and
// as a PWAD of its own comes back byte for byte, read by the project and by omgifol; the
// source is never touched.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportBatch.h"

#include "gfx/BmpFile.h"
#include "gfx/PcxFile.h"
#include "lumps/ExportLump.h"
#include "tests/lumps/ExportFixture.h"
#include "tests/testkit/Commands.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;

// One lump of a WAD as it lies in the file.
struct SourceLump
{
    std::string Name;
    std::string Data;
};

std::vector<SourceLump> LumpsOf(const fs::path& path)
{
    std::vector<SourceLump> lumps;
    const std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
    EXPECT_TRUE(plan.has_value()) << path;
    const std::string bytes = testkit::ReadFile(path);
    for (const wad::RewriteEntry& entry : plan ? plan->Entries : std::vector<wad::RewriteEntry>{})
    {
        lumps.push_back({entry.Name, bytes.substr(static_cast<std::size_t>(entry.Offset),
                                                  static_cast<std::size_t>(entry.Size))});
    }
    return lumps;
}

// The lines omgifol's omg_entries.py prints for these lumps: "E name hexdata" ("-" for none).
std::vector<std::string> OmgLines(const std::vector<SourceLump>& lumps)
{
    std::vector<std::string> lines;
    for (const SourceLump& lump : lumps)
    {
        std::ostringstream hex;
        for (const char c : lump.Data)
        {
            hex << std::hex << std::setw(2) << std::setfill('0')
                << static_cast<int>(static_cast<unsigned char>(c));
        }
        lines.push_back("E " + lump.Name + " " + (lump.Data.empty() ? "-" : hex.str()));
    }
    return lines;
}

std::vector<std::string> EntryLinesOf(const testkit::CommandOutput& output)
{
    std::vector<std::string> lines;
    for (const std::string& line : output.Lines())
    {
        if (line.starts_with("E "))
        {
            lines.push_back(line);
        }
    }
    return lines;
}

class ExportRoundTripTest : public ExportFixture
{
protected:
    // MAP01 of Freedoom 2 with its nodes, MAP02's objects without nodes, a Hexen-layout MAP03
    // with BEHAVIOR, and lumps of every kind from the IWAD: text, a sound, music, a flat
    // between markers, a patch and a sprite.
    fs::path FreedoomPwad()
    {
        const std::vector<SourceLump> iwad = LumpsOf(testkit::FreedoomWad("freedoom2.wad"));
        const auto find = [&](const std::string& name)
        {
            const auto found =
                std::find_if(iwad.begin(), iwad.end(),
                             [&](const SourceLump& lump) { return lump.Name == name; });
            EXPECT_NE(found, iwad.end()) << name;
            return found;
        };
        testkit::WadBuilder pwad;
        for (auto lump = find("MAP01"); lump != find("MAP01") + 11; ++lump)
        {
            pwad.Lump(lump->Name, lump->Data);
        }
        pwad.Marker("MAP02");
        for (auto lump = find("MAP02") + 1; lump != find("MAP02") + 11; ++lump)
        {
            if (lump->Name == "THINGS" || lump->Name == "LINEDEFS" || lump->Name == "SIDEDEFS" ||
                lump->Name == "VERTEXES" || lump->Name == "SECTORS")
            {
                pwad.Lump(lump->Name, lump->Data);
            }
        }
        pwad.HexenLevel("MAP03");
        pwad.Lump("DEHACKED", "Patch File for DeHackEd v3.0\n")
            .Lump("DSPISTOL", find("DSPISTOL")->Data)
            .Lump("D_RUNNIN", find("D_RUNNIN")->Data)
            .Marker("FF_START")
            .Lump("FLOOR4_8", find("FLOOR4_8")->Data)
            .Marker("FF_END")
            .Lump("AG128_1", find("AG128_1")->Data)
            .Lump("AMMOA0", find("AMMOA0")->Data);
        return pwad.Write(Dir.Path() / "freedoom_levels.wad");
    }

    ExportReport ExportRows(const std::vector<ExportRow>& rows, ExportButton button,
                            const fs::path& folder)
    {
        fs::create_directories(folder);
        std::vector<int> all;
        for (std::size_t i = 0; i < rows.size(); ++i)
        {
            all.push_back(static_cast<int>(i));
        }
        ExportRequest request;
        request.Button = button;
        request.Folder = folder;
        request.Grouping = WadGrouping::Separate;
        return ExportSelection(rows, all, request);
    }

    static std::vector<ExportRow> ExternalRows(bool levels)
    {
        ExportFilters filters;
        filters.ExternalFilesOnly = true;
        filters.Levels = levels;
        return ScanExportList(filters);
    }

    // The source's level of that name: its marker and the lumps after it that belong to it.
    static std::vector<SourceLump> LevelOf(const std::vector<SourceLump>& source,
                                           const std::string& name, std::size_t count)
    {
        const auto marker = std::find_if(source.begin(), source.end(),
                                         [&](const SourceLump& lump) { return lump.Name == name; });
        return std::vector<SourceLump>(marker, marker + static_cast<long>(count));
    }
};

TEST_F(ExportRoundTripTest, EveryLumpComesBackRawAndAsItsOwnPwad)
{
    const fs::path pwad = FreedoomPwad();
    const std::string before = testkit::ReadFile(pwad);
    const std::vector<SourceLump> source = LumpsOf(pwad);
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ASSERT_GT(OpenPwad(pwad.string()), 0);
    Ui.Clear();

    const std::vector<ExportRow> lumps = ExternalRows(false);
    ASSERT_EQ(lumps.size(), 6U) << "the lumps of the PWAD, markers left out";
    EXPECT_EQ(ExportRows(lumps, ExportButton::Lmp, Out / "raw").Written, 6);
    EXPECT_EQ(ExportRows(lumps, ExportButton::Wad, Out / "wad").Written, 6);
    ExportFilters levelsOnly;
    levelsOnly.ExternalFilesOnly = true;
    levelsOnly.Graphics = levelsOnly.Sounds = levelsOnly.MidiMus = levelsOnly.Flats =
        levelsOnly.Other = false;
    std::vector<ExportRow> levels = ScanExportList(levelsOnly);
    ASSERT_EQ(levels.size(), 3U);
    EXPECT_EQ(ExportRows(levels, ExportButton::Wad, Out / "wad").Written, 0)
        << "MAP03 is of Hexen's layout and the game is Doom 2: nothing goes";
    EXPECT_EQ(Ui.Last().Text(), " MAP03 - Level to be exported does not belong to this game\n\n"
                                "Save the level first, then Exit and start over");
    levels.pop_back();
    EXPECT_EQ(ExportRows(levels, ExportButton::Wad, Out / "wad").Written, 2);

    // Compared whole: the hex of a level runs to megabytes, too long to print on a failure.
    for (const std::string name :
         {"DEHACKED", "DSPISTOL", "D_RUNNIN", "FLOOR4_8", "AG128_1", "AMMOA0"})
    {
        const SourceLump lump = LevelOf(source, name, 1).front();
        EXPECT_TRUE(testkit::ReadFile(Out / "raw" / (name + ".LMP")) == lump.Data) << name;
        const fs::path one = Out / "wad" / (name + ".WAD");
        EXPECT_TRUE(EntryLinesOf(testkit::RunOmgifol("omg_entries.py", one.string())) ==
                    OmgLines({lump}))
            << name;
    }
    const std::vector<SourceLump> map01 = LevelOf(source, "MAP01", 11);
    const std::vector<SourceLump> map02 = LevelOf(source, "MAP02", 6);
    EXPECT_TRUE(OmgLines(LumpsOf(Out / "wad" / "MAP01.WAD")) == OmgLines(map01));
    EXPECT_TRUE(OmgLines(LumpsOf(Out / "wad" / "MAP02.WAD")) == OmgLines(map02));
    const testkit::CommandOutput omg =
        testkit::RunOmgifol("omg_entries.py", (Out / "wad" / "MAP01.WAD").string());
    EXPECT_TRUE(EntryLinesOf(omg) == OmgLines(map01));
    EXPECT_EQ(omg.Lines().back(),
              "M MAP01 THINGS LINEDEFS SIDEDEFS VERTEXES SEGS SSECTORS NODES SECTORS REJECT "
              "BLOCKMAP");

    EXPECT_EQ(testkit::ReadFile(pwad), before) << "the source is only read";
    EXPECT_FALSE(fs::exists(wad::BakPathOf(pwad)));
}

TEST_F(ExportRoundTripTest, AHexenLevelComesBackWithItsBehaviorInAHexenProject)
{
    const fs::path pwad = FreedoomPwad();
    const std::vector<SourceLump> source = LumpsOf(pwad);
    wad::Wad().Options.ZdoomHexenFormat = true;
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ASSERT_GT(OpenPwad(pwad.string()), 0);
    Ui.Clear();
    const std::vector<ExportRow> rows = ExternalRows(true);
    ExportRequest request;
    request.Button = ExportButton::Wad;
    request.Folder = Out;
    const ExportReport report = ExportSelection(rows, {FindRowByName(rows, "MAP03")}, request);
    ASSERT_EQ(report.Written, 1);
    const std::vector<SourceLump> map03 = LevelOf(source, "MAP03", 12);
    ASSERT_EQ(map03.back().Name, "BEHAVIOR");
    const testkit::CommandOutput omg =
        testkit::RunOmgifol("omg_entries.py", (Out / "MAP03.WAD").string());
    EXPECT_TRUE(EntryLinesOf(omg) == OmgLines(map03));
    EXPECT_NE(omg.Text.find("M MAP03 "), std::string::npos);
}

TEST_F(ExportRoundTripTest, PicturesOfTheIwadExportToTheirOwnPixels)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    ASSERT_TRUE(PrepareExportPalette());
    const std::vector<ExportRow> rows = ScanAll();
    const auto bytesOf = [&](const std::string& name)
    {
        const ExportRow& row = rows[static_cast<std::size_t>(FindRowByName(rows, name))];
        return wad::ReadLumpBytes(row.DirectoryIndex);
    };
    const auto pixelsOf = [](const gfx::ImageRaster& raster)
    {
        std::vector<std::uint8_t> pixels;
        for (int y = 0; y < raster.Height(); ++y)
        {
            pixels.insert(pixels.end(), raster.Row(y), raster.Row(y) + raster.Width());
        }
        return pixels;
    };
    // The pixels each picture must have, by the patch reader or the flat's own bytes.
    const std::vector<std::pair<std::string, std::vector<std::uint8_t>>> expected = {
        {"AG128_1", pixelsOf(*gfx::DecodePatch(bytesOf("AG128_1"), 251))},
        {"AMMOA0", pixelsOf(*gfx::DecodePatch(bytesOf("AMMOA0"), 251))},
        {"FLOOR4_8", bytesOf("FLOOR4_8")}};
    for (const ExportButton button : {ExportButton::Bmp, ExportButton::Pcx})
    {
        ExportRequest request;
        request.Button = button;
        request.Folder = Out;
        ASSERT_EQ(ExportSelection(rows, RowsNamed(rows, {"AG128_1", "AMMOA0", "FLOOR4_8"}), request)
                      .Written,
                  3);
        for (const auto& [name, pixels] : expected)
        {
            const bool pcx = button == ExportButton::Pcx;
            const std::string file = testkit::ReadFile(Out / (name + (pcx ? ".PCX" : ".BMP")));
            const std::vector<std::uint8_t> bytes(file.begin(), file.end());
            gfx::FilePicture read;
            if (pcx)
            {
                ASSERT_EQ(gfx::DecodePcx(bytes, read, nullptr), gfx::PcxStatus::Ok) << name;
            }
            else
            {
                ASSERT_EQ(gfx::DecodeBmp(bytes, read), gfx::BmpStatus::Ok) << name;
            }
            EXPECT_EQ(read.Indexes, pixels) << name;
            EXPECT_EQ(read.FilePalette[1], gfx::Palettes().RawGamePalette[1]) << name;
        }
    }
}

} // namespace
} // namespace kelvar::lumps
