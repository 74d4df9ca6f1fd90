// Tests of the merge run: rows placed at the insert position, duplicates asked about and
// replaced, PNAMES and textures merged into one TEXTURE1, names refused, the log, and targets
// whose other lumps come through byte for byte, or not at all touched when the run stops.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/Merge.h"

#include "tests/lumps/MergeTestLumps.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

using testing::LumpsNamed;
using testing::PnamesBytes;
using testing::ReadWadLumps;
using testing::TextureBytes;
using testing::TextureDef;
using testing::WadLump;
using testkit::WadBuilder;

class MergeTest : public testkit::WadFixture
{
protected:
    // A target with levels of every length around plain lumps.
    std::filesystem::path MultiLevelTarget()
    {
        WadBuilder builder;
        builder.Lump("DEHACKED", "Patch File")
            .Level("MAP01")
            .LevelInOrder("MAP02", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
            .Lump("SONG", "MUS\x1a")
            .HexenLevel("MAP03")
            .Lump("ENDOOM", std::string(4000, 'e'));
        return builder.Write(Dir.Path() / "target.wad");
    }

    MergeSession Open(const std::filesystem::path& target)
    {
        MergeSession session;
        EXPECT_EQ(OpenMergeTarget(session, target), 1);
        return session;
    }

    // Runs the merge, answering the position question first with `answers` after it.
    int Save(MergeSession& session, std::initializer_list<int> answers = {})
    {
        Ui.Answer(1);
        for (const int answer : answers)
        {
            Ui.Answer(answer);
        }
        return SaveMerge(session);
    }

    static std::vector<std::string> Names(const std::vector<WadLump>& lumps)
    {
        std::vector<std::string> names;
        for (const WadLump& lump : lumps)
        {
            names.push_back(lump.Name);
        }
        return names;
    }

    static std::vector<std::uint8_t> Only(const std::vector<WadLump>& lumps,
                                          const std::string& name)
    {
        const std::vector<WadLump> found = LumpsNamed(lumps, name);
        EXPECT_EQ(found.size(), 1u) << name;
        return found.empty() ? std::vector<std::uint8_t>() : testing::AsBytes(found.front().Data);
    }

    std::vector<std::string> LogLines() const
    {
        return testkit::RunCommand("cat '" + MergeLogPath().string() + "'").Lines();
    }
};

TEST_F(MergeTest, RowsGoAfterTheSelectionAndEveryOtherLumpComesThroughByteForByte)
{
    const std::filesystem::path target = MultiLevelTarget();
    const std::string before = testkit::ReadFile(target);
    const std::vector<WadLump> old = ReadWadLumps(target);
    WadBuilder source;
    source.Lump("NEWLUMP", "new")
        .LevelInOrder("MAP05", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
        .Lump("DEHACKED", "Patch File 2")
        .Marker("MARKER");
    const std::filesystem::path sourcePath = source.Write(Dir.Path() / "source.wad");
    const std::string sourceBytes = testkit::ReadFile(sourcePath);
    testkit::WriteFile(Dir.Path() / "notes.txt", "plain text");

    MergeSession session = Open(target);
    EXPECT_EQ(AddInputFile(session, sourcePath), 4);
    EXPECT_EQ(AddInputFile(session, Dir.Path() / "notes.txt"), 1);
    EXPECT_EQ(session.Imports[1].TypeName, "LEVEL");
    EXPECT_EQ(session.Imports[4].LumpName, "NOTES");
    session.Selected = static_cast<int>(FindTargetEntry(session.Target, "MAP01")->Index);
    ASSERT_EQ(Save(session, {1}), 1);
    EXPECT_EQ(Ui.Messages[0].Lines, (std::vector<std::string>{"Insert All files after", "MAP01"}));
    EXPECT_EQ(Ui.Messages[1].Title, "Duplicate");
    EXPECT_EQ(Ui.Messages[1].Lines[1], "DEHACKED");

    // The old lumps, less the one replaced, in their order; the new rows after MAP01.
    const std::vector<WadLump> added = ReadWadLumps(sourcePath);
    std::vector<WadLump> expected(old.begin() + 1, old.begin() + 12);
    expected.insert(expected.end(), added.begin(), added.end());
    expected.push_back({"NOTES", "plain text"});
    expected.insert(expected.end(), old.begin() + 12, old.end());
    const std::vector<WadLump> written = ReadWadLumps(target);
    EXPECT_EQ(Names(written), Names(expected));
    EXPECT_EQ(written, expected);
    const std::vector<std::string> reading = testing::OmgReading(target);
    EXPECT_EQ(testing::LinesOf(reading, "E"), testing::EntryLines(expected));
    EXPECT_EQ(testing::LinesOf(reading, "M").size(), 4u);

    EXPECT_EQ(testkit::ReadFile(wad::BakPathOf(target)), before);
    EXPECT_EQ(testkit::ReadFile(sourcePath), sourceBytes) << "a source is only read";
    EXPECT_EQ(session.Counts.Added, 5);
    EXPECT_EQ(session.Counts.Replaced, 1);
    EXPECT_TRUE(session.Imports.empty());
    EXPECT_EQ(session.Target.Entries.size(), expected.size());
    ASSERT_EQ(Ui.TextFiles.size(), 1u);
    EXPECT_EQ(Ui.TextFiles[0].Caption, "Merge/Import Log");
    const std::vector<std::string> log = LogLines();
    const auto has = [&](const std::string& line)
    { return std::find(log.begin(), log.end(), line) != log.end(); };
    EXPECT_TRUE(has("Processing 5 Imported Lumps"));
    EXPECT_TRUE(has("Transparent Color index=251 RGB=255,0,255 GammaAdj=0"));
    EXPECT_TRUE(has("WAV format left as is"));
    EXPECT_TRUE(has("MIDI format left as is"));
    EXPECT_TRUE(has("Total Added= 5 Duplicates= 1"));
    EXPECT_TRUE(has("Target File Entries=" + std::to_string(expected.size())));
    EXPECT_TRUE(has("DEHACKED ** Duplicate Name (deleted)"));
}

TEST_F(MergeTest, ATexture2OnlySourceEndsUpInTexture1AndTexture2HoldsTheDummy)
{
    const std::vector<TextureDef> targetTextures = {{"WALL", 64, 64, {{0, 0, 0}}},
                                                    {"DOOR", 64, 72, {{0, 0, 1}, {32, 0, 1}}}};
    WadBuilder target;
    target.Lump("PNAMES", PnamesBytes({"PA", "PB"}))
        .Lump("TEXTURE1", TextureBytes(targetTextures))
        .Level("MAP01")
        .Lump("PNAMES", PnamesBytes({"ZZ"}));
    const std::filesystem::path targetPath = target.Write(Dir.Path() / "target.wad");
    // The source's DOOR has its patches moved (the same size: overwritten in place); BAD uses
    // an index past its PNAMES, which stays and is counted.
    WadBuilder source;
    source.Lump("PNAMES", PnamesBytes({"PC", "PA", "PB"}))
        .Lump("TEXTURE2", TextureBytes({{"NEW", 32, 32, {{0, 0, 0}}},
                                        {"DOOR", 64, 72, {{0, 0, 2}, {40, 0, 2}}},
                                        {"BAD", 16, 16, {{0, 0, 9}}}}));
    MergeSession session = Open(targetPath);
    ASSERT_EQ(AddInputFile(session, source.Write(Dir.Path() / "source.wad")), 2);
    Ui.Clear();
    ASSERT_EQ(Save(session), 1);
    EXPECT_EQ(Ui.Messages[1].Title, " Info - Pnames");
    EXPECT_EQ(Ui.Messages[1].Lines,
              (std::vector<std::string>{"Target has more than one PNAMES lump",
                                        "Only the first one is used"}));

    const std::vector<WadLump> written = ReadWadLumps(targetPath);
    EXPECT_EQ(Names(written),
              (std::vector<std::string>{"PNAMES", "TEXTURE1", "MAP01", "THINGS", "LINEDEFS",
                                        "SIDEDEFS", "VERTEXES", "SEGS", "SSECTORS", "NODES",
                                        "SECTORS", "REJECT", "BLOCKMAP", "TEXTURE2"}));
    EXPECT_EQ(testing::ReadPnames(Only(written, "PNAMES")),
              (std::vector<std::string>{"PA", "PB", "PC"}));
    const std::vector<std::uint8_t> texture1 = Only(written, "TEXTURE1");
    EXPECT_EQ(testing::ReadTextures(texture1),
              (std::vector<TextureDef>{{"WALL", 64, 64, {{0, 0, 0}}},
                                       {"DOOR", 64, 72, {{0, 0, 1}, {40, 0, 1}}},
                                       {"NEW", 32, 32, {{0, 0, 2}}},
                                       {"BAD", 16, 16, {{0, 0, 9}}}}));
    // DOOR was overwritten where it stood: the target's first two offsets are unchanged but
    // for the two new entries of the offset table.
    const std::vector<std::uint8_t> old = testing::AsBytes(TextureBytes(targetTextures));
    EXPECT_EQ(wad::ReadLe32(texture1.data() + 8), wad::ReadLe32(old.data() + 8) + 8);
    EXPECT_EQ(testing::ReadTextures(Only(written, "TEXTURE2")),
              (std::vector<TextureDef>{{"AADUMMY1", 0, 0, {{0, 0, 1}}}}));

    const std::vector<std::string> log = LogLines();
    EXPECT_NE(
        std::find(log.begin(), log.end(), "Texture      BAD patchcount=1 invalid patch count=1"),
        log.end());
    EXPECT_NE(std::find(log.begin(), log.end(), "added NEW"), log.end());
    // omgifol reads the textures with every patch named, BAD left out as it can't be.
    WadBuilder readable;
    for (const WadLump& lump : written)
    {
        if (lump.Name != "TEXTURE1")
        {
            readable.Lump(lump.Name, lump.Data);
        }
    }
    std::vector<TextureDef> good = testing::ReadTextures(texture1);
    good.pop_back();
    readable.Lump("TEXTURE1", TextureBytes(good));
    EXPECT_EQ(testing::LinesOf(testing::OmgReading(readable.Write(Dir.Path() / "omg.wad")), "T"),
              (std::vector<std::string>{"T WALL 64 64 PA@0,0", "T DOOR 64 72 PB@0,0 PB@40,0",
                                        "T NEW 32 32 PC@0,0", "T AADUMMY1 0 0 PB@0,0"}));
}

TEST_F(MergeTest, ATargetWithoutPnamesGetsTheSourcesAtTheInsertPosition)
{
    WadBuilder target;
    target.Level("MAP01").Lump("SONG", "MUS\x1a").Lump("LAST", "z");
    const std::filesystem::path targetPath = target.Write(Dir.Path() / "target.wad");
    const std::string pnames = PnamesBytes({"PA", "PB"});
    const std::string textures = TextureBytes({{"WALL", 64, 64, {{0, 0, 1}}}});
    WadBuilder source;
    source.Lump("EXTRA", "x").Lump("TEXTURE1", textures).Lump("PNAMES", pnames);
    MergeSession session = Open(targetPath);
    ASSERT_EQ(AddInputFile(session, source.Write(Dir.Path() / "source.wad")), 3);
    session.Selected = static_cast<int>(FindTargetEntry(session.Target, "SONG")->Index);
    Ui.Clear();
    ASSERT_EQ(Save(session), 1);
    const std::vector<WadLump> written = ReadWadLumps(targetPath);
    const std::vector<std::string> names = Names(written);
    EXPECT_EQ(std::vector<std::string>(names.begin() + 11, names.end()),
              (std::vector<std::string>{"SONG", "PNAMES", "TEXTURE1", "EXTRA", "LAST"}));
    EXPECT_EQ(Only(written, "PNAMES"), testing::AsBytes(pnames));
    EXPECT_EQ(Only(written, "TEXTURE1"), testing::AsBytes(textures));
}

TEST_F(MergeTest, ADamagedTextureLumpInTheTargetKeepsEveryTextureLumpAsItIs)
{
    // The target's PNAMES counts ten names and holds two.
    std::string pnames = PnamesBytes({"PA", "PB"});
    testing::PutLe(pnames, 0, 10, 4);
    const std::string textures = TextureBytes({{"WALL", 64, 64, {{0, 0, 1}}}});
    WadBuilder target;
    target.Lump("PNAMES", pnames).Lump("TEXTURE1", textures).Level("MAP01");
    const std::filesystem::path targetPath = target.Write(Dir.Path() / "target.wad");
    WadBuilder source;
    source.Lump("PNAMES", PnamesBytes({"PX"}))
        .Lump("TEXTURE1", TextureBytes({{"NEW", 8, 8, {{0, 0, 0}}}}))
        .Lump("EXTRA", "x");
    MergeSession session = Open(targetPath);
    AddInputFile(session, source.Write(Dir.Path() / "source.wad"));
    Ui.Clear();
    ASSERT_EQ(Save(session), 1);
    EXPECT_EQ(Ui.Messages[1].Text(), "Target PNAMES is damaged\n\nTextures and PNAMES are not "
                                     "merged; the Target's are kept as they are");
    const std::vector<WadLump> written = ReadWadLumps(targetPath);
    EXPECT_EQ(Only(written, "PNAMES"), testing::AsBytes(pnames));
    EXPECT_EQ(Only(written, "TEXTURE1"), testing::AsBytes(textures));
    EXPECT_EQ(written.back(), (WadLump{"EXTRA", "x"}));
    EXPECT_EQ(session.Counts.Skipped, 2);
    const std::vector<std::string> log = LogLines();
    EXPECT_NE(std::find(log.begin(), log.end(),
                        "PNAMES ignored: the Target's PNAMES or TEXTUREx is damaged"),
              log.end());
}

TEST_F(MergeTest, VerifyPnamesNamesEveryPatchWanting)
{
    const std::string textures = TextureBytes(
        {{"T1", 64, 64, {{0, 0, 0}, {8, 0, 2}}}, {"T2", 64, 64, {{0, 0, 1}, {0, 0, 7}}}});
    WadBuilder target;
    target.Lump("PA", "patch a")
        .Lump("PB", "patch b")
        .Lump("PNAMES", PnamesBytes({"PA", "PB", "GONE"}));
    MergeSession noTextures = Open(target.Write(Dir.Path() / "plain.wad"));
    EXPECT_EQ(VerifyPnames(noTextures), -1);
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{"No TEXTURE lump in Target File",
                                                         "with TEXTURE1 or TEXTURE2 entries"}));
    target.Lump("TEXTURE1", textures);
    MergeSession session = Open(target.Write(Dir.Path() / "target.wad"));
    std::vector<std::string> report;
    EXPECT_EQ(VerifyPnames(session, &report), 2);
    EXPECT_EQ(report, (std::vector<std::string>{
                          "== Checking Patch names used in Textures ==",
                          "No IWAD or PWAD with graphics is open: only the Target File is searched",
                          "T1       patch GONE     not found", "T2       Invalid patch index = 7",
                          "Total TEXURES= 2 size= 96\nTotal PNAMES = 3 size= 28\n"}));
    EXPECT_EQ(Ui.TextFiles.back().Caption, "Verify Pnames");

    WadBuilder bare;
    bare.Lump("TEXTURE1", textures);
    MergeSession noPnames = Open(bare.Write(Dir.Path() / "bare.wad"));
    Ui.Clear();
    EXPECT_EQ(VerifyPnames(noPnames), -1);
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"No PNAMES lump in Target File", "with a PNAMES entry"}));
}

TEST_F(MergeTest, TheDuplicateQuestionReplacesStopsAskingOrCancels)
{
    WadBuilder target;
    target.Lump("ONE", "1").Lump("TWO", "2").Lump("THREE", "3").Lump("KEEP", "k");
    const std::filesystem::path targetPath = target.Write(Dir.Path() / "target.wad");
    WadBuilder source;
    source.Lump("THREE", "c").Lump("ONE", "a").Lump("TWO", "b");
    const std::filesystem::path sourcePath = source.Write(Dir.Path() / "source.wad");

    // Cancel: nothing is written and the list is as it was.
    const std::string before = testkit::ReadFile(targetPath);
    MergeSession cancelled = Open(targetPath);
    AddInputFile(cancelled, sourcePath);
    EXPECT_EQ(Save(cancelled, {1, 2}), 0);
    EXPECT_EQ(Ui.Last().Text(), "Import cancelled");
    EXPECT_EQ(testkit::ReadFile(targetPath), before);
    EXPECT_EQ(cancelled.Target.Entries.size(), 4u);
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(targetPath)));

    // N: the first is replaced and no question comes for the others, which are replaced too.
    MergeSession session = Open(targetPath);
    AddInputFile(session, sourcePath);
    Ui.Clear();
    ASSERT_EQ(Save(session, {0}), 1);
    EXPECT_EQ(std::count_if(Ui.Messages.begin(), Ui.Messages.end(),
                            [](const platform::Message& m) { return m.Title == "Duplicate"; }),
              1);
    EXPECT_EQ(ReadWadLumps(targetPath),
              (std::vector<WadLump>{{"KEEP", "k"}, {"THREE", "c"}, {"ONE", "a"}, {"TWO", "b"}}));
    EXPECT_EQ(session.Counts.Replaced, 3);

    // Range markers are never replaced: a second range goes beside the target's.
    WadBuilder flats;
    flats.Marker("FF_START").Lump("FLAT1", std::string(4096, 'f')).Marker("FF_END");
    WadBuilder withFlats;
    withFlats.Marker("FF_START").Lump("OLDFLAT", std::string(4096, 'o')).Marker("FF_END");
    const std::filesystem::path flatTarget = withFlats.Write(Dir.Path() / "flats.wad");
    MergeSession ranges = Open(flatTarget);
    AddInputFile(ranges, flats.Write(Dir.Path() / "newflats.wad"));
    ASSERT_EQ(Save(ranges), 1);
    EXPECT_EQ(
        Names(ReadWadLumps(flatTarget)),
        (std::vector<std::string>{"FF_START", "OLDFLAT", "FF_END", "FF_START", "FLAT1", "FF_END"}));

    // Allow Duplicates: no question, both kept.
    MergeSession both = Open(targetPath);
    both.Options.AllowDuplicates = true;
    AddInputFile(both, sourcePath);
    ASSERT_EQ(Save(both), 1);
    EXPECT_EQ(Names(ReadWadLumps(targetPath)),
              (std::vector<std::string>{"KEEP", "THREE", "ONE", "TWO", "THREE", "ONE", "TWO"}));
    const std::vector<std::string> log = LogLines();
    EXPECT_NE(std::find(log.begin(), log.end(), "ONE ** Duplicate Name added ** "), log.end());
}

TEST_F(MergeTest, RefusedRowsAreLeftOutWithTheirWords)
{
    const std::filesystem::path targetPath = MultiLevelTarget();
    WadBuilder source;
    source.Lump("THINGS", "lone things")
        .Lump("\x07ODD", "odd")
        .LevelInOrder("MAP02", {"THINGS", "LINEDEFS", "SIDEDEFS", "VERTEXES", "SECTORS"})
        .Lump("GOOD", "good");
    const std::filesystem::path sourcePath = source.Write(Dir.Path() / "source.wad");
    MergeSession session = Open(targetPath);
    ASSERT_EQ(AddInputFile(session, sourcePath), 4);
    EXPECT_EQ(Ui.Last().Title, " Info - Lump Names");
    EXPECT_EQ(AddInputFile(session, sourcePath), 0);
    EXPECT_EQ(Ui.Last().Text(),
              "This File is a Duplicate\n\n" + sourcePath.string() + "\n\nand is ignored");
    EXPECT_EQ(AddInputFile(session, Dir.Path() / "missing.lmp"), 0);
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"Could not access", (Dir.Path() / "missing.lmp").string(),
                                        "Ignored as a new lump"}));
    WadBuilder damaged;
    damaged.Lump("A", "1").Entry(99999, 4, "B");
    EXPECT_EQ(AddInputFile(session, damaged.Write(Dir.Path() / "damaged.wad")), 0);
    EXPECT_EQ(Ui.Last().Lines[0], "Damaged WAD directory");
    const std::vector<std::string> log = session.Log;
    EXPECT_NE(log[0].find(" ** Reserved Name (please rename) "), std::string::npos) << log[0];
    EXPECT_NE(log[2].find(" ** Duplicate Name (rename or allow duplicates) "), std::string::npos);

    Ui.Clear();
    ASSERT_EQ(Save(session), 1);
    EXPECT_EQ(Ui.Messages[1].Title, " Info - Reserved Name");
    EXPECT_EQ(
        Ui.Messages[1].Lines,
        (std::vector<std::string>{"** WARNING **", "THINGS",
                                  "This name is reserved for level contents and can't be used"}));
    EXPECT_EQ(Ui.Messages[2].Text(),
              "Level MAP02 is a duplicate\nLevels can not be duplicates\n\nPlease RENAME!");
    const std::vector<std::string> names = Names(ReadWadLumps(targetPath));
    EXPECT_EQ(std::vector<std::string>(names.end() - 2, names.end()),
              (std::vector<std::string>{"bad0", "GOOD"}));
    EXPECT_EQ(session.Counts.Skipped, 2);
    EXPECT_EQ(session.Counts.Added, 2);
}

TEST_F(MergeTest, NothingIsWrittenWhenTheSourceIsTheTargetOrTheDiskFills)
{
    const std::filesystem::path targetPath = MultiLevelTarget();
    const std::string before = testkit::ReadFile(targetPath);
    MergeSession itself = Open(targetPath);
    AddInputFile(itself, targetPath);
    EXPECT_EQ(Save(itself), 0);
    EXPECT_EQ(Ui.Last().Text(), "The Source File\n\n" + targetPath.string() +
                                    "\n\nduplicates the Target File\n\nPlease select different "
                                    "names!");

    MergeSession none;
    EXPECT_EQ(SaveMerge(none), 0);
    EXPECT_EQ(Ui.Last().Lines, std::vector<std::string>{"Please Select a Target PWAD"});

    testkit::WriteFile(Dir.Path() / "big.lmp", std::string(20000, 'b'));
    MergeSession full = Open(targetPath);
    AddInputFile(full, Dir.Path() / "big.lmp");
    wad::Wad().WriteBudget = 5000;
    EXPECT_EQ(Save(full, {0}), -1); // 0: the I/O error's "Quit now?"
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(testkit::ReadFile(targetPath), before);
    EXPECT_EQ(full.Target.Entries.size(), ReadWadLumps(targetPath).size());

    // With no inputs the question offers to rewrite the target alone; SCRIPT names follow
    // the setting.
    WadBuilder scripted;
    scripted.Lump("SCRIPT01", "s1").Lump("SCRIPT02", "s2");
    const std::filesystem::path scriptPath = scripted.Write(Dir.Path() / "scripts.wad");
    MergeSession rewrite = Open(scriptPath);
    rewrite.Options.KeepScriptNames = false;
    Ui.Answer(1);
    ASSERT_EQ(Save(rewrite), 1);
    EXPECT_EQ(Ui.Messages[Ui.Messages.size() - 2].Title, " Info - No Source Files");
    EXPECT_EQ(Names(ReadWadLumps(scriptPath)), (std::vector<std::string>{"SCRIPTS", "SCRIPTS"}));
}

} // namespace
} // namespace kelvar::lumps
