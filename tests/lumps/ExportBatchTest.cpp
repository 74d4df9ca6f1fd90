// Tests of the export buttons over a selection: each button's test, Auto, batches into a folder
// with refused names and Escape, combined duplicates, the PWAD exports and Analyze Graphics.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/ExportBatch.h"

#include "lumps/ExportLump.h"
#include "tests/lumps/ExportFixture.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

namespace fs = std::filesystem;

class ExportBatchTest : public ExportFixture
{
protected:
    static std::string Snd()
    {
        return std::string{3, 0, 0x11, 0x2B, 40, 0, 0, 0} + std::string(40, '\x80');
    }

    // Two levels and a Hexen one, text lumps (one named AR?A), a sound, a PWAD stored as a
    // lump and a patch.
    static testkit::WadBuilder BatchPwad()
    {
        testkit::WadBuilder inner;
        inner.Lump("INNER", "inner lump");
        testkit::WadBuilder pwad;
        pwad.Level("MAP02")
            .LevelInOrder("MAP03", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
            .HexenLevel("MAP05")
            .Lump("AR?A", "question")
            .Lump("FIRST", "first text")
            .Lump("SECOND", "second text")
            .Lump("DSPOSIT", Snd())
            .Lump("INWAD", inner.Bytes())
            .Lump("MYPATCH", PatchLump(3, 2, 60));
        return pwad;
    }

    std::string OutFile(const std::string& name) const { return testkit::ReadFile(Out / name); }

    std::string LumpText(const std::string& name) const
    {
        const std::vector<std::uint8_t> bytes =
            wad::ReadLumpBytes(wad::FindLump(wad::Wad().Files[0], name, false));
        return std::string(bytes.begin(), bytes.end());
    }

    // The names and data of a PWAD's entries, as "NAME=data".
    static std::vector<std::string> EntriesOf(const fs::path& path)
    {
        std::vector<std::string> entries;
        const std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
        EXPECT_TRUE(plan.has_value()) << path;
        const std::string bytes = testkit::ReadFile(path);
        for (const wad::RewriteEntry& entry :
             plan ? plan->Entries : std::vector<wad::RewriteEntry>{})
        {
            entries.push_back(entry.Name + "=" +
                              bytes.substr(static_cast<std::size_t>(entry.Offset),
                                           static_cast<std::size_t>(entry.Size)));
        }
        return entries;
    }
};

TEST_F(ExportBatchTest, ANameNoFileCanTakeIsRefusedWhileTheRestGoOn)
{
    OpenWith(BatchPwad());
    const ExportReport report = ExportNamed({"FIRST", "AR?A", "SECOND"}, ExportButton::Lmp);
    EXPECT_EQ(report.Written, 2);
    EXPECT_EQ(report.Refused, 1);
    EXPECT_FALSE(report.Stopped);
    EXPECT_EQ(Ui.Titles(), (std::vector<std::string>{" Info - Not Valid Name"}));
    EXPECT_EQ(OutFile("FIRST.LMP"), "first text");
    EXPECT_EQ(OutFile("SECOND.LMP"), "second text");
    EXPECT_EQ(Ui.Progress.back().first, "Saving 3 Entries");
    EXPECT_EQ(Ui.StatusTexts,
              (std::vector<std::string>{(Out / "FIRST.LMP").string(), (Out / "AR?A.LMP").string(),
                                        (Out / "SECOND.LMP").string()}));
}

TEST_F(ExportBatchTest, EachButtonRefusesTheKindsItCantWrite)
{
    OpenWith(BatchPwad());
    const std::vector<ExportRow> rows = ScanAll();
    const auto row = [&](const std::string& name)
    { return rows[static_cast<std::size_t>(FindRowByName(rows, name))]; };
    const std::vector<std::tuple<ExportButton, std::string, std::vector<std::string>>> cases = {
        {ExportButton::Lmp, "MAP02", {"MAP02", "Is a Level"}},
        {ExportButton::Bmp, "DSPOSIT", {"DSPOSIT", "Is not a graphics lump, it's", "DOOMSOUND"}},
        {ExportButton::Pcx, "FIRST", {"FIRST", "Is not a graphics lump, it's", "LUMP"}},
        {ExportButton::Wav, "MYPATCH", {"MYPATCH", "Is not a Wave lump, it's", "PIC"}},
        {ExportButton::Mid, "FIRST", {"FIRST", "Is not a MUS/MIDI lump, it's", "LUMP"}},
        {ExportButton::Mus, "DSPOSIT", {"DSPOSIT", "Is not a MUS/MIDI lump, it's", "DOOMSOUND"}},
        {ExportButton::Txt, "INWAD", {"INWAD", "Is not a text lump, it's", "PWAD"}},
        {ExportButton::Auto, "MAP03", {"MAP03", "Use WAD to save levels"}}};
    for (const auto& [button, name, lines] : cases)
    {
        EXPECT_FALSE(ButtonAccepts(button, row(name))) << name;
        EXPECT_EQ(LastLines(), lines) << name;
    }
    EXPECT_EQ(Ui.Titles(), (std::vector<std::string>{" Info - It's a Level", " Info - Not Graphics",
                                                     " Info - Not Graphics", " Info - Not WAVE",
                                                     " Info - Not MID/MUS", " Info - Not MID/MUS",
                                                     " Info - Not text", " Info - Not Levels"}));
    EXPECT_TRUE(ButtonAccepts(ExportButton::Bmp, row("MYPATCH")));
    EXPECT_TRUE(ButtonAccepts(ExportButton::Wav, row("DSPOSIT")));
    EXPECT_TRUE(ButtonAccepts(ExportButton::Txt, row("FIRST")));
    EXPECT_TRUE(ButtonAccepts(ExportButton::Lmp, row("INWAD")));
}

TEST_F(ExportBatchTest, AutoWritesEachLumpByItsKind)
{
    OpenWith(BatchPwad());
    Exports().Settings.AutoGraphicFormat = ".PCX";
    const ExportReport report =
        ExportNamed({"FIRST", "INWAD", "DSPOSIT", "MYPATCH", "MAP02"}, ExportButton::Auto);
    EXPECT_EQ(report.Written, 4);
    EXPECT_EQ(report.Refused, 1) << "a level";
    EXPECT_EQ(OutFile("FIRST.LMP"), "first text") << "kind 0 as LMP";
    EXPECT_EQ(OutFile("INWAD.LMP"), LumpText("INWAD")) << "a PWAD inside a PWAD is written raw";
    EXPECT_TRUE(fs::exists(Out / "DSPOSIT.WAV"));
    EXPECT_TRUE(fs::exists(Out / "MYPATCH.PCX"));
    EXPECT_EQ(Ui.Last().Title, " Info - Not Levels");
}

TEST_F(ExportBatchTest, EscapeBetweenLumpsAsksAndNoGoesOn)
{
    OpenWith(BatchPwad());
    Ui.EscapeFromPoll(2).Answer(0).Answer(1);
    const ExportReport report = ExportNamed({"FIRST", "SECOND", "DSPOSIT"}, ExportButton::Lmp);
    EXPECT_EQ(Ui.Messages.size(), 2U);
    EXPECT_EQ(Ui.Messages[0].Text(), " Export Interrupted\n\nDo you want to stop ?");
    EXPECT_EQ(report.Written, 2) << "No: the second lump is written; Yes: the third is not";
    EXPECT_TRUE(report.Stopped);
    EXPECT_TRUE(fs::exists(Out / "SECOND.LMP"));
    EXPECT_FALSE(fs::exists(Out / "DSPOSIT.LMP"));
}

TEST_F(ExportBatchTest, ALevelAsTextIsItsHeaderAfterTheQuestion)
{
    testkit::WadBuilder header;
    header.Lump("MAP06", "level header text");
    for (const std::string lump : {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
    {
        header.Lump(lump, lump);
    }
    header.Level("MAP07");
    OpenWith(header);
    Ui.Answer(1).Answer(0);
    const ExportReport report = ExportNamed({"MAP06", "MAP07"}, ExportButton::Txt);
    EXPECT_EQ(Ui.Messages[0].Title, "A Level");
    EXPECT_EQ(
        Ui.Messages[0].Lines,
        (std::vector<std::string>{"MAP06", "This will export the contents of the level header",
                                  "Press Y to continue"}));
    EXPECT_EQ(OutFile("MAP06.TXT"), "level header text");
    EXPECT_FALSE(fs::exists(Out / "MAP07.TXT")) << "answered no";
    EXPECT_EQ(report.Written, 1);
}

TEST_F(ExportBatchTest, DuplicatesOfASortedListCanBeCombinedIntoOneTextFile)
{
    testkit::WadBuilder first;
    first.Lump("NOTES", "one;");
    testkit::WadBuilder second;
    second.Lump("NOTES", "two;");
    ASSERT_EQ(OpenIwad(SmallIwad()), 1);
    ASSERT_GT(OpenPwad(first.Write(Dir.Path() / "first.wad")), 0);
    ASSERT_GT(OpenPwad(second.Write(Dir.Path() / "second.wad")), 0);
    testkit::WriteFile(Out / "NOTES.TXT", "old;");
    Ui.Clear();
    Exports().Filters.SortedList = true;
    ExportFilters filters = Exports().Filters;
    filters.ExternalFilesOnly = true;
    const std::vector<ExportRow> rows = ScanExportList(filters);
    ASSERT_EQ(rows.size(), 2U);
    ExportRequest request;
    request.Button = ExportButton::Txt;
    request.Folder = Out;
    Ui.Answer(1);
    const ExportReport report = ExportSelection(rows, {0, 1}, request);
    EXPECT_EQ(report.Written, 2);
    EXPECT_TRUE(Ui.Messages[0].Text().starts_with("All names are duplicates\n\nIf you reply Y"));
    EXPECT_TRUE(Ui.Messages[0].Text().ends_with("Do you want to combine them into 1 lump?"));
    EXPECT_EQ(OutFile("NOTES.TXT"), "old;one;two;") << "extended, not erased";
}

TEST_F(ExportBatchTest, SeveralLumpsGoToOnePwadOrToOneEach)
{
    OpenWith(BatchPwad());
    const std::vector<ExportRow> rows = ScanAll();
    const std::vector<int> selected = RowsNamed(rows, {"SECOND", "FIRST", "DSPOSIT"});
    ExportRequest request;
    request.Button = ExportButton::Wad;
    Ui.AnswerList(0).AnswerFile(Out / "all.wad");
    ExportReport report = ExportSelection(rows, selected, request);
    EXPECT_EQ(Ui.ListItems.back(),
              (std::vector<std::string>{"Export All lumps as one PWAD file",
                                        "Export All lumps as Separate PWAD files"}));
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Grouped PWAD");
    EXPECT_EQ(report.Written, 3);
    EXPECT_EQ(EntriesOf(Out / "all.wad"),
              (std::vector<std::string>{"SECOND=second text", "FIRST=first text",
                                        "DSPOSIT=" + LumpText("DSPOSIT")}));

    Ui.AnswerList(1).AnswerFile(Out / "any.name").Answer(1);
    report = ExportSelection(rows, selected, request);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Directory for Saves");
    EXPECT_EQ(Ui.Last().Title, "Group Export");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"3 Lumps will be exported to", Out.string(),
                                        "(once started escape stops Export too)"}));
    EXPECT_EQ(report.Written, 3);
    EXPECT_EQ(EntriesOf(Out / "FIRST.WAD"), (std::vector<std::string>{"FIRST=first text"}));
    EXPECT_EQ(EntriesOf(Out / "SECOND.WAD"), (std::vector<std::string>{"SECOND=second text"}));
}

TEST_F(ExportBatchTest, WithLevelsAmongTheRowsOnlyTheLevelsAreWrittenEachToItsOwnPwad)
{
    OpenWith(BatchPwad());
    const std::vector<ExportRow> rows = ScanAll();
    ExportRequest request;
    request.Button = ExportButton::Wad;
    Ui.AnswerFile(Out / "second.wad").AnswerFile(std::nullopt);
    const ExportReport report =
        ExportSelection(rows, RowsNamed(rows, {"FIRST", "MAP02", "MAP03", "DSPOSIT"}), request);
    EXPECT_EQ(Ui.Messages[0].Title, " Info - Levels and Data");
    EXPECT_EQ(
        Ui.Messages[0].Lines,
        (std::vector<std::string>{"2 levels and 2 lumps selected", "To save levels individually",
                                  "Do them one at a time", "Cancel the next prompt to quit"}));
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Save Lump");
    EXPECT_EQ(Ui.FileRequests[0].InitialPath.filename(), "MAP02.WAD");
    EXPECT_EQ(report.Written, 1);
    EXPECT_TRUE(report.Stopped) << "the second dialog was cancelled";
    const std::vector<std::string> level = EntriesOf(Out / "second.wad");
    ASSERT_EQ(level.size(), 11U);
    EXPECT_EQ(level[0], "MAP02=");
    EXPECT_EQ(level[1], "THINGS=" + testkit::LumpFiller("MAP02THINGS", 16));
    EXPECT_EQ(Ui.Last().Text(), "Entry MAP02 Saved Successfully");
}

TEST_F(ExportBatchTest, ALevelOfAnotherGamesLayoutIsNotExported)
{
    OpenWith(BatchPwad());
    const ExportReport report = ExportNamed({"MAP02", "MAP05"}, ExportButton::Wad);
    EXPECT_EQ(report.Written, 0);
    EXPECT_TRUE(report.Stopped);
    EXPECT_EQ(Ui.Last().Text(), " MAP05 - Level to be exported does not belong to this game\n\n"
                                "Save the level first, then Exit and start over");
    EXPECT_TRUE(fs::is_empty(Out));
}

TEST_F(ExportBatchTest, NothingSelectedOrAFolderDeclinedWritesNothing)
{
    OpenWith(BatchPwad());
    const std::vector<ExportRow> rows = ScanAll();
    ExportRequest request;
    request.Button = ExportButton::Lmp;
    EXPECT_EQ(ExportSelection(rows, {}, request).Written, 0);
    EXPECT_EQ(Ui.Last().Title, " Info - No Lumps");
    EXPECT_EQ(LastLines(), (std::vector<std::string>{"There are no LUMPs Selected",
                                                     "Please select at least 1 LUMP"}));
    Ui.AnswerFile(Out).Answer(0);
    const ExportReport declined =
        ExportSelection(rows, RowsNamed(rows, {"FIRST", "SECOND"}), request);
    EXPECT_TRUE(declined.Stopped);
    EXPECT_TRUE(fs::is_empty(Out));
}

TEST_F(ExportBatchTest, AnalyzeGraphicsListsThePaletteIndexesNoPixelUses)
{
    OpenWith(BatchPwad());
    ExportFilters filters;
    filters.Other = false;
    filters.Sounds = false;
    filters.Levels = false;
    const std::array<bool, 256> used = AnalyzeGraphics(ScanExportList(filters));
    // The flat is all 5; the patches' pixels are 7..18 and 60..65, each with a hole.
    std::vector<int> expected = {5};
    for (int i = 8; i <= 18; ++i)
    {
        expected.push_back(i);
    }
    for (int i = 61; i <= 65; ++i)
    {
        expected.push_back(i);
    }
    std::vector<int> marked;
    for (int i = 0; i < 256; ++i)
    {
        if (used[static_cast<std::size_t>(i)])
        {
            marked.push_back(i);
        }
    }
    EXPECT_EQ(marked, expected) << "the holes mark nothing";
    ASSERT_EQ(Ui.TextFiles.size(), 1U);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "Pixels used Log");
    EXPECT_EQ(Ui.TextFiles[0].Lines[1], "Total Palette Pixels not used by any graphic = 239");
    EXPECT_EQ(Ui.TextFiles[0].Lines[2], "000,001,002,003,004,006,007,019,020,021,022,023,024,"
                                        "025,026,027,");
}

} // namespace
} // namespace kelvar::lumps
