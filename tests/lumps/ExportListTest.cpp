// Tests of the export list: levels as one row, kinds, the filters, sorting and the preview's
// status line.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/lumps/ExportFixture.h"

#include "sound/SoundFormats.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using gfx::LumpKind;

class ExportListTest : public ExportFixture
{
protected:
    // Two levels (a full one, a nodeless one), a level with two GL lumps, a sound, a marker, a
    // text lump and a patch whose column table points past its end.
    static testkit::WadBuilder MixedPwad()
    {
        testkit::WadBuilder pwad;
        pwad.Level("MAP02")
            .LevelInOrder("MAP03", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
            .Level("MAP04")
            .Marker("GL_MAP04")
            .Lump("GL_VERT", "glvertex")
            .Lump("DSPOSIT", std::string(Snd(11025, 40)))
            .Marker("MARKER")
            .Lump("ZNOTES", "some text")
            .Lump("BADPIC", BrokenPatch());
        return pwad;
    }

    static std::string Snd(int rate, int count)
    {
        return SndHeader(rate, count) + std::string(static_cast<std::size_t>(count), '\x80');
    }

    // A 2-wide patch whose second column offset lies outside the lump.
    static std::string BrokenPatch()
    {
        std::string patch = PatchLump(2, 2, 10);
        patch[12] = '\x7F';
        patch[13] = '\x7F';
        return patch;
    }

    static const ExportRow& Named(const std::vector<ExportRow>& rows, std::string_view name)
    {
        const int row = FindRowByName(rows, name);
        EXPECT_GE(row, 0) << name;
        return rows[static_cast<std::size_t>(std::max(row, 0))];
    }

    static std::vector<std::string> Names(const std::vector<ExportRow>& rows)
    {
        std::vector<std::string> names;
        for (const ExportRow& row : rows)
        {
            names.push_back(row.Name.Text());
        }
        return names;
    }
};

TEST_F(ExportListTest, LevelsAreOneRowEachAndTheOtherLumpsAreClassified)
{
    OpenWith(MixedPwad());
    ExportFilters filters;
    filters.ExternalFilesOnly = true;
    filters.Control = true;
    const std::vector<ExportRow> rows = ScanExportList(filters);
    EXPECT_EQ(Names(rows), (std::vector<std::string>{"MAP02", "MAP03", "MAP04", "DSPOSIT", "MARKER",
                                                     "ZNOTES", "BADPIC"}));
    EXPECT_EQ(Ui.Progress.front().first,
              "Scanning " + std::to_string(wad::Master().Size()) + " Entries");

    const ExportRow& full = Named(rows, "MAP02");
    EXPECT_EQ(full.Kind, LumpKind::Level);
    EXPECT_EQ(full.Tag, "LVL");
    EXPECT_EQ(full.LevelLumpCount, 11);
    EXPECT_EQ(Named(rows, "MAP03").LevelLumpCount, 6);
    EXPECT_EQ(Named(rows, "DSPOSIT").Kind, LumpKind::DoomSound);
    EXPECT_EQ(Named(rows, "DSPOSIT").Tag, "SND");
    EXPECT_EQ(Named(rows, "MARKER").Size, 0);
    EXPECT_EQ(Named(rows, "BADPIC").Kind, LumpKind::Lump) << "its columns run outside the lump";
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        EXPECT_EQ(rows[i].ListPosition, static_cast<int>(i));
        EXPECT_NE(rows[i].FileNumber, 0);
    }
}

TEST_F(ExportListTest, ALevelOfThirteenLumpsOrMoreIsTaggedLgl)
{
    wad::Wad().Options.GlNodes = true;
    OpenWith(MixedPwad());
    const std::vector<ExportRow> rows = ScanAll();
    EXPECT_EQ(Named(rows, "MAP04").Tag, "LGL");
    EXPECT_EQ(Named(rows, "MAP04").LevelLumpCount, 13);
    EXPECT_EQ(Named(rows, "MAP04").Kind, LumpKind::Level);
    EXPECT_LT(FindRowByName(rows, "GL_VERT"), 0);
}

TEST_F(ExportListTest, FiltersChooseTheRowsByKind)
{
    OpenWith(MixedPwad());
    ExportFilters filters;
    const std::vector<ExportRow> all = ScanExportList(filters);
    EXPECT_LT(FindRowByName(all, "MARKER"), 0) << "size 0 follows Control (0), off by default";
    EXPECT_GE(FindRowByName(all, "MAP01"), 0) << "the IWAD's level";
    EXPECT_EQ(Named(all, "SARGA1").Kind, LumpKind::Pic);
    EXPECT_EQ(Named(all, "FLOOR0_1").Kind, LumpKind::Flat);

    filters.Sounds = false;
    filters.Levels = false;
    filters.Flats = false;
    const std::vector<ExportRow> some = ScanExportList(filters);
    EXPECT_LT(FindRowByName(some, "DSPOSIT"), 0);
    EXPECT_LT(FindRowByName(some, "MAP02"), 0);
    EXPECT_LT(FindRowByName(some, "THINGS"), 0) << "a level's lumps never stand alone";
    EXPECT_LT(FindRowByName(some, "FLOOR0_1"), 0);
    EXPECT_GE(FindRowByName(some, "ZNOTES"), 0);

    filters = ExportFilters{};
    filters.Graphics = false;
    filters.Other = false;
    const std::vector<ExportRow> graphicsOff = ScanExportList(filters);
    EXPECT_LT(FindRowByName(graphicsOff, "SARGA1"), 0);
    EXPECT_LT(FindRowByName(graphicsOff, "BADPIC"), 0)
        << "without the Graphics filter the columns aren't tested: still a picture, not listed";
}

TEST_F(ExportListTest, SortingIsByNameWithTheDirectoryOrderKeptAmongEqualNames)
{
    testkit::WadBuilder second;
    second.Lump("ZNOTES", "second").Lump("ANOTES", "a");
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_GT(OpenPwad(MixedPwad().Write(Dir.Path() / "first.wad")), 0);
    ASSERT_GT(OpenPwad(second.Write(Dir.Path() / "second.wad")), 0);
    ExportFilters filters;
    filters.ExternalFilesOnly = true;
    filters.SortedList = true;
    filters.Levels = false;
    const std::vector<ExportRow> rows = ScanExportList(filters);
    EXPECT_EQ(Names(rows),
              (std::vector<std::string>{"ANOTES", "BADPIC", "DSPOSIT", "ZNOTES", "ZNOTES"}));
    EXPECT_LT(rows[3].DirectoryIndex, rows[4].DirectoryIndex);
    EXPECT_EQ(FindRowByName(rows, "znotes"), 4) << "the newest lump of a name";
}

TEST_F(ExportListTest, ThePreviewLineNamesEntryKindSizeAndFile)
{
    OpenWith(MixedPwad());
    const std::vector<ExportRow> rows = ScanAll();
    const ExportRow& sound = Named(rows, "DSPOSIT");
    const std::string file = Dir.File("pwad.wad");
    EXPECT_EQ(PreviewStatusText(sound),
              std::to_string(sound.DirectoryIndex) + "  DSPOSIT Sound 11025 8x48 " + file);
    const ExportRow& text = Named(rows, "ZNOTES");
    EXPECT_EQ(PreviewStatusText(text),
              std::to_string(text.DirectoryIndex) + "   ZNOTES data 9 " + file);
    const ExportRow& level = Named(rows, "MAP02");
    EXPECT_EQ(PreviewStatusText(level),
              std::to_string(level.DirectoryIndex) + "    MAP02 LVL 0 " + file);
    ExportRow gone = text;
    gone.DirectoryIndex = 1;
    EXPECT_EQ(PreviewStatusText(gone), "  ZNOTES ERROR - name not found?");
}

} // namespace
} // namespace kelvar::lumps
