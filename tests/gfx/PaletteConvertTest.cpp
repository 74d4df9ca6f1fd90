// Tests of recolouring the PWADs' pictures: every pixel translated once, every other byte and
// the directory kept, the copy question, the source palettes, and damaged input or a full disk
// that leave the PWAD as it was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteConvert.h"

#include "gfx/ColorMatch.h"
#include "gfx/GamePalette.h"
#include "gfx/Patch.h"
#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/Commands.h"
#include "tests/testkit/LevelBuilder.h"
#include "wad/FindLump.h"
#include "wad/WadRewrite.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

#include <set>

namespace kelvar::gfx
{
namespace
{

using Bytes = std::vector<uint8_t>;

std::string Text(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

Bytes BytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

// The pixels of the shared patch: each must change under the table, and change again were it
// translated twice.
constexpr uint8_t SharedPixels[] = {10, 11, 12, 13, 14};

// Three columns of 8 rows. Column 1 has column 0's offset; column 2 starts at column 0's
// second post, so that post's bytes belong to all three columns. Pads copy their neighbours.
Bytes SharedPostsPatch()
{
    return {3,  0, 8,  0,  0,  0,  0,  0,              // width, height, offsets
            20, 0, 0,  0,  20, 0,  0,  0, 26, 0, 0, 0, // columns 0, 1 and 2
            0,  2, 10, 10, 11, 11,                     // post: rows 0-1
            4,  3, 12, 12, 13, 14, 14,                 // post: rows 4-6
            255};
}

// A flat holding every index.
Bytes FlatOfEveryIndex()
{
    Bytes flat(4096);
    for (std::size_t i = 0; i < flat.size(); ++i)
    {
        flat[i] = static_cast<uint8_t>(i * 7);
    }
    return flat;
}

// The game palette shifted by 37 entries: a table from it is far from the identity.
Palette ShiftedPalette(const Palette& game)
{
    Palette shifted{};
    for (std::size_t i = 0; i < shifted.size(); ++i)
    {
        shifted[i] = game[(i + 37) % shifted.size()];
    }
    return shifted;
}

// A directory entry as read back from a file.
struct FileEntry
{
    std::string Name;
    std::int64_t Offset = 0;
    std::int64_t Size = 0;
    bool operator==(const FileEntry&) const = default;
};

std::vector<FileEntry> DirectoryOf(const std::filesystem::path& path)
{
    std::vector<FileEntry> entries;
    const std::optional<wad::RewritePlan> plan = wad::PlanOfWad(path);
    EXPECT_TRUE(plan.has_value()) << path;
    for (const wad::RewriteEntry& entry : plan ? plan->Entries : std::vector<wad::RewriteEntry>{})
    {
        entries.push_back({entry.Name, entry.Offset, entry.Size});
    }
    return entries;
}

std::string BytesAt(const std::string& file, const FileEntry& entry)
{
    return file.substr(static_cast<std::size_t>(entry.Offset),
                       static_cast<std::size_t>(entry.Size));
}

// Every pixel of `after` is `table` applied to the same pixel of `before`, holes stay holes.
void ExpectTranslatedPatch(const std::string& before, const std::string& after,
                           const IndexTable& table)
{
    const Bytes old = BytesOf(before);
    const Bytes now = BytesOf(after);
    const auto oldLow = DecodePatch(old, 0);
    const auto oldHigh = DecodePatch(old, 255);
    const auto nowLow = DecodePatch(now, 0);
    ASSERT_TRUE(oldLow && oldHigh && nowLow);
    ASSERT_EQ(nowLow->Width(), oldLow->Width());
    ASSERT_EQ(nowLow->Height(), oldLow->Height());
    int pixels = 0;
    for (int y = 0; y < oldLow->Height(); ++y)
    {
        for (int x = 0; x < oldLow->Width(); ++x)
        {
            const bool hole = oldLow->At(x, y) == 0 && oldHigh->At(x, y) == 255;
            const uint8_t wanted = hole ? 0 : table[oldLow->At(x, y)];
            ASSERT_EQ(nowLow->At(x, y), wanted) << "pixel " << x << "," << y;
            pixels += hole ? 0 : 1;
        }
    }
    EXPECT_GT(pixels, 0);
}

class PaletteConvertTest : public test::PaletteFixture
{
protected:
    void SetUp() override
    {
        PaletteFixture::SetUp();
        ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
        ASSERT_EQ(LoadGamePalette(0), 1);
    }

    // A PWAD of three levels (MAP01 with nodes and lumps of 4096 bytes, the size of a flat;
    // MAP02 without nodes; MAP03 in Hexen layout), texture definitions and a text lump whose
    // bytes would pass for pictures, two patches and a flat.
    std::string Pwad(const std::string& name)
    {
        testkit::WadBuilder builder;
        builder.Level("MAP01", 4096);
        testkit::LevelBuilder().Room(0, 0, 256, 256).WriteTo(builder, "MAP02");
        builder.HexenLevel("MAP03", 64);
        builder.Lump("PNAMES", Text(SharedPostsPatch()))
            .Lump("TEXTURE1", std::string(4096, '\x01'))
            .Lump("DEHACKED", "Patch File for DeHackEd v3.0\n")
            .Marker("PP_START")
            .Lump("SHARED", Text(SharedPostsPatch()))
            .Lump("AG128_1", Text(test::FreedoomLump("freedoom2.wad", "AG128_1")))
            .Marker("PP_END")
            .Marker("FF_START")
            .Lump("FLAT1", Text(FlatOfEveryIndex()))
            .Marker("FF_END");
        return builder.Write(Dir.Path() / name);
    }

    // The shifted palette as a .PAC file.
    std::filesystem::path ShiftedPac()
    {
        const std::filesystem::path path = Dir.Path() / "OTHER.PAC";
        testkit::WriteFile(path, Text(PaletteToBytes(ShiftedPalette(Palettes().GamePalette))));
        return path;
    }

    ConvertChoices FromShifted(GraphicKinds kinds, std::vector<std::string> only = {})
    {
        ConvertChoices choices;
        choices.Source = PaletteSource::UserFile;
        choices.UserPalette = ShiftedPac();
        choices.Kinds = kinds;
        choices.Only = std::move(only);
        return choices;
    }
};

TEST_F(PaletteConvertTest, EveryPixelIsTranslatedOnceAndEverythingElseStaysAsItWas)
{
    const std::string path = Pwad("ART.WAD");
    const std::string before = testkit::ReadFile(path);
    ASSERT_GE(OpenPwad(path), 1);
    const ConvertChoices choices = FromShifted(GraphicKinds::Both);
    Ui.Answer(1); // keep a copy
    ConvertReport report;
    ASSERT_EQ(ConvertGraphicsToPalette(choices, &report), 1);

    const IndexTable& table = Palettes().TranslationTable;
    EXPECT_EQ(table,
              MatchPaletteTable(ShiftedPalette(Palettes().GamePalette), Palettes().GamePalette));
    for (const uint8_t pixel : SharedPixels)
    {
        ASSERT_NE(table[pixel], pixel);
        ASSERT_NE(table[table[pixel]], table[pixel]) << "a second translation would show";
    }

    // Same directory, same sizes and places; only the three pictures' bytes differ.
    const std::string after = testkit::ReadFile(path);
    const std::vector<FileEntry> directory = DirectoryOf(path);
    ASSERT_EQ(directory, DirectoryOf(wad::BakPathOf(path)));
    ASSERT_EQ(after.size(), before.size());
    const std::size_t directoryStart = after.size() - directory.size() * 16;
    EXPECT_EQ(after.substr(0, 12), before.substr(0, 12));
    EXPECT_EQ(after.substr(directoryStart), before.substr(directoryStart));
    std::set<std::string> converted;
    for (const FileEntry& entry : directory)
    {
        const std::string old = BytesAt(before, entry);
        const std::string now = BytesAt(after, entry);
        if (entry.Name == "SHARED" || entry.Name == "AG128_1")
        {
            ExpectTranslatedPatch(old, now, table);
            converted.insert(entry.Name);
        }
        else if (entry.Name == "FLAT1")
        {
            Bytes wanted = BytesOf(old);
            TranslateRaw(wanted, table);
            EXPECT_EQ(now, Text(wanted));
            converted.insert(entry.Name);
        }
        else
        {
            EXPECT_EQ(now, old) << entry.Name << " at " << entry.Offset;
        }
    }
    EXPECT_EQ(converted.size(), 3u);
    EXPECT_EQ(testkit::ReadFile(wad::BakPathOf(path)), before);

    // omgifol reads every entry as written and finds the three levels.
    std::size_t index = 0;
    int levels = 0;
    for (const std::string& line : testkit::RunOmgifol("omg_entries.py", path).Lines())
    {
        if (line.starts_with("M "))
        {
            ++levels;
            continue;
        }
        ASSERT_LT(index, directory.size());
        const FileEntry& entry = directory[index++];
        std::string hex;
        for (const char c : BytesAt(after, entry))
        {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned char>(c));
            hex += digits;
        }
        EXPECT_EQ(line, "E " + entry.Name + " " + (hex.empty() ? "-" : hex));
    }
    EXPECT_EQ(index, directory.size());
    EXPECT_EQ(levels, 3);

    // The program reads the new bytes through its reopened file; the user was told.
    const wad::LumpDirectory& master = wad::Master();
    const int flat = master.FindLast(wad::LumpName::From("FLAT1"), 0, master.Size());
    EXPECT_EQ(Text(wad::ReadLumpBytes(flat)), BytesAt(after, directory[directory.size() - 2]));
    ASSERT_EQ(report.Lumps.size(), 3u);
    EXPECT_EQ(report.Lumps[0].Name, "AG128_1");
    const platform::Message& done = Ui.Last();
    EXPECT_EQ(done.Title, "Conversion Done");
    EXPECT_EQ(done.Lines, (std::vector<std::string>{"3 textures converted", "Be sure to exit now",
                                                    "since all the textures", "are converted!"}));
    const auto shown = [this](const std::string& caption)
    {
        return std::any_of(Ui.Progress.begin(), Ui.Progress.end(),
                           [&](const auto& progress) { return progress.first == caption; });
    };
    EXPECT_TRUE(shown("Loading    1 possible FLATS"));
    EXPECT_TRUE(shown("Loading    2 possible Textures"));
    EXPECT_TRUE(shown("Converting    3 Graphics"));
    EXPECT_TRUE(std::any_of(Ui.Progress.begin(), Ui.Progress.end(),
                            [&](const auto& progress)
                            {
                                return progress.first == "Graphic Backup" &&
                                       progress.second ==
                                           "Finished Saving - " + wad::BakPathOf(path).string();
                            }));
}

TEST_F(PaletteConvertTest, OneKindOrNamesOnlyAndNoCopyKeepsAnOlderBackup)
{
    const std::string path = Pwad("ART.WAD");
    const std::string before = testkit::ReadFile(path);
    testkit::WriteFile(wad::BakPathOf(path), "an older backup");
    ASSERT_GE(OpenPwad(path), 1);

    Ui.Answer(0); // no copy
    ASSERT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Textures, {"shared", "NOSUCH"})),
              -1);
    EXPECT_TRUE(Ui.Saw("NOSUCH   Not found?"));
    EXPECT_EQ(testkit::ReadFile(wad::BakPathOf(path)), "an older backup");
    for (const auto& file : std::filesystem::directory_iterator(Dir.Path()))
    {
        EXPECT_NE(file.path().extension(), ".old") << "the older backup set aside stays aside";
    }
    const std::string after = testkit::ReadFile(path);
    for (const FileEntry& entry : DirectoryOf(path))
    {
        if (entry.Name == "SHARED")
        {
            ExpectTranslatedPatch(BytesAt(before, entry), BytesAt(after, entry),
                                  Palettes().TranslationTable);
        }
        else
        {
            EXPECT_EQ(BytesAt(after, entry), BytesAt(before, entry)) << entry.Name;
        }
    }
    EXPECT_TRUE(Ui.Saw("1 textures converted"));

    // Flats only: the flat, not the patches, not the level lumps of a flat's size.
    Ui.Answer(1);
    ConvertReport report;
    ASSERT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Flats), &report), 1);
    ASSERT_EQ(report.Lumps.size(), 1u);
    EXPECT_EQ(report.Lumps[0].Name, "FLAT1");
}

TEST_F(PaletteConvertTest, LumpsSharingTheirBytesComeOutApartAndTheProgramFollows)
{
    // COPY is a second directory entry for SHARED's bytes: each is translated once, on its own.
    testkit::WadBuilder builder;
    builder.Level("MAP01");
    const std::int32_t shared = builder.NextOffset();
    const Bytes patch = SharedPostsPatch();
    builder.Lump("SHARED", Text(patch))
        .Entry(shared, static_cast<std::int32_t>(patch.size()), "COPY")
        .Lump("DEHACKED", "Patch File\n");
    const std::string path = builder.Write(Dir.Path() / "PACKED.WAD");
    ASSERT_GE(OpenPwad(path), 1);
    Ui.Answer(1);
    ASSERT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Textures)), 1);
    EXPECT_TRUE(Ui.Saw("2 textures converted"));

    const std::string after = testkit::ReadFile(path);
    const std::vector<FileEntry> directory = DirectoryOf(path);
    const wad::LumpDirectory& master = wad::Master();
    for (const FileEntry& entry : directory)
    {
        const int index = master.FindLast(wad::LumpName::From(entry.Name), 0, master.Size());
        if (entry.Name == "SHARED" || entry.Name == "COPY")
        {
            ExpectTranslatedPatch(Text(patch), BytesAt(after, entry), Palettes().TranslationTable);
            EXPECT_EQ(Text(wad::ReadLumpBytes(index)), BytesAt(after, entry));
        }
    }
    const int dehacked = master.FindLast(wad::LumpName::From("DEHACKED"), 0, master.Size());
    EXPECT_EQ(Text(wad::ReadLumpBytes(dehacked)), "Patch File\n") << "the moved lump is followed";
    EXPECT_EQ(testkit::RunOmgifol("omg_directory.py", path).Lines().size(), directory.size());
}

TEST_F(PaletteConvertTest, SourcePalettes)
{
    // DOOM.PAC is made from a Doom IWAD where it is missing; no PWAD is open.
    ConvertChoices choices;
    EXPECT_EQ(ConvertGraphicsToPalette(choices), 0);
    EXPECT_EQ(Ui.Last().Title, "No Graphics Found");
    EXPECT_EQ(Ui.Last().Text(), "No external PWAD files to convert found!");
    const std::filesystem::path doom = wad::Wad().ProgramDir / "DOOM.PAC";
    EXPECT_EQ(
        BytesOf(testkit::ReadFile(doom)),
        Bytes(PaletteToBytes(PaletteFromBytes(test::FreedoomLump("freedoom2.wad", "PLAYPAL")))));

    // Another game's palette can't be made from this IWAD: the message says how.
    choices.Source = PaletteSource::Heretic;
    EXPECT_EQ(ConvertGraphicsToPalette(choices), -1);
    const std::string heretic = (wad::Wad().ProgramDir / "HERETIC.PAC").string();
    EXPECT_EQ(Ui.Last().Text(), heretic +
                                    " not found\n\nIt holds the colours the graphics were made "
                                    "with.\nMake it from that game's IWAD with\n"
                                    "kelvar-cli palette export IWAD -o " +
                                    heretic);
    // Found in any case of its name.
    testkit::WriteFile(wad::Wad().ProgramDir / "heretic.pac", std::string(768, '\x20'));
    EXPECT_EQ(LoadSourcePalette(choices).value()[5], (Rgb{32, 32, 32}));

    // A user's file, chosen in the dialog or given; one too short is refused.
    choices.Source = PaletteSource::UserFile;
    Ui.AnswerFile(std::nullopt);
    EXPECT_EQ(ConvertGraphicsToPalette(choices), 0);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "User Palette file");
    EXPECT_NE(Ui.FileRequests.back().Filter.find("*.PAC"), std::string::npos);
    choices.UserPalette = Dir.Path() / "SHORT.PAC";
    testkit::WriteFile(choices.UserPalette, std::string(700, '\0'));
    EXPECT_EQ(ConvertGraphicsToPalette(choices), -1);
    EXPECT_EQ(Ui.Last().Text(), choices.UserPalette.string() +
                                    " is not a palette file\n\nA .PAC file holds 768 bytes of "
                                    "red, green and blue.");
}

TEST_F(PaletteConvertTest, DamagedInputAndAFullDiskLeaveThePwadAsItWas)
{
    // A patch whose second post runs past its end is listed by its header and then refused.
    Bytes broken = SharedPostsPatch();
    broken[27] = 200;
    const std::string damaged =
        testkit::WadBuilder().Lump("BROKEN", Text(broken)).Write(Dir.Path() / "BROKEN.WAD");
    const std::string damagedBefore = testkit::ReadFile(damaged);
    ASSERT_GE(OpenPwad(damaged), 1);
    Ui.Answer(1);
    EXPECT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Textures)), -1);
    EXPECT_TRUE(Ui.Saw("BROKEN   Invalid Image"));
    EXPECT_EQ(testkit::ReadFile(damaged), damagedBefore);
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(damaged)));

    // A file with an entry past its end: the program passes over the entry, the conversion
    // refuses to rewrite the file rather than lose it.
    const std::string truncated = testkit::WadBuilder()
                                      .Lump("FLAT2", Text(FlatOfEveryIndex()))
                                      .Entry(12, 99999, "CUT")
                                      .Write(Dir.Path() / "SHORT.WAD");
    const std::string truncatedBefore = testkit::ReadFile(truncated);
    ASSERT_GE(OpenPwad(truncated), 1);
    Ui.Answer(1);
    EXPECT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Flats, {"FLAT2"})), -1);
    EXPECT_TRUE(Ui.Saw("Failure reading old File?"));
    EXPECT_EQ(testkit::ReadFile(truncated), truncatedBefore);
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(truncated)));

    // A full disk: the rewrite stops, the old file is put back and still read by the program.
    const std::string path = Pwad("ART.WAD");
    const std::string before = testkit::ReadFile(path);
    ASSERT_GE(OpenPwad(path), 1);
    wad::Wad().WriteBudget = 5000;
    Ui.Answer(1); // keep a copy
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_EQ(ConvertGraphicsToPalette(FromShifted(GraphicKinds::Flats)), -1);
    wad::Wad().WriteBudget = -1;
    EXPECT_TRUE(Ui.Saw("File was not backed up\n\nConversion not done!"));
    EXPECT_EQ(testkit::ReadFile(path), before);
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(path)));
    const wad::LumpDirectory& master = wad::Master();
    const int flat = master.FindLast(wad::LumpName::From("FLAT1"), 0, master.Size());
    EXPECT_EQ(wad::ReadLumpBytes(flat), FlatOfEveryIndex());
}

TEST(TranslatePatch, RefusesPostsOutsideTheLumpAndChangesNothing)
{
    IndexTable table{};
    for (std::size_t i = 0; i < table.size(); ++i)
    {
        table[i] = static_cast<uint8_t>(255 - i);
    }
    const Bytes good = SharedPostsPatch();
    Bytes noEnd = good;
    noEnd.pop_back(); // the last column never ends
    Bytes pastEnd = good;
    pastEnd[16] = 60; // column 2 starts past the end
    Bytes longPost = good;
    longPost[21] = 20; // the first post's pixels run past the end
    const Bytes headerOnly(good.begin(), good.begin() + 12);
    std::vector<Bytes> cases = {noEnd, pastEnd, longPost, headerOnly};
    for (Bytes& bad : cases)
    {
        const Bytes unchanged = bad;
        EXPECT_FALSE(TranslatePatch(bad, table));
        EXPECT_EQ(bad, unchanged);
    }
    // Header, column table, deltas, counts and the end byte stay; pads go with their pixels.
    Bytes translated = good;
    ASSERT_TRUE(TranslatePatch(translated, table));
    for (std::size_t i = 0; i < good.size(); ++i)
    {
        const bool postByte = (i >= 22 && i <= 25) || (i >= 28 && i <= 32);
        EXPECT_EQ(translated[i], postByte ? table[good[i]] : good[i]) << "byte " << i;
    }
}

TEST_F(PaletteConvertTest, TheRecolorVerb)
{
    const std::string path = Pwad("ART.WAD");
    const std::string before = testkit::ReadFile(path);
    const std::string iwad = testkit::FreedoomWad("freedoom2.wad");
    const std::string pac = ShiftedPac().string();
    const std::filesystem::path config = Dir.Path() / "config";

    const auto run = testkit::RunCli("recolor " + iwad + " " + path + " --from " + pac +
                                         " --only FLAT1 SHARED --no-backup",
                                     config);
    EXPECT_EQ(run.Status, 0) << run.Text;
    EXPECT_NE(run.Text.find(path + ": FLAT1\n"), std::string::npos) << run.Text;
    EXPECT_NE(run.Text.find(path + ": SHARED\n"), std::string::npos) << run.Text;
    EXPECT_NE(run.Text.find("2 textures converted"), std::string::npos) << run.Text;
    EXPECT_FALSE(std::filesystem::exists(wad::BakPathOf(path)));
    EXPECT_NE(testkit::ReadFile(path), before);

    // DOOM.PAC is made in the settings folder; a missing palette and bad usage are refused.
    const auto doom = testkit::RunCli("recolor " + iwad + " " + path + " --from doom", config);
    EXPECT_EQ(doom.Status, 0) << doom.Text;
    EXPECT_TRUE(std::filesystem::exists(config / "kelvar" / "DOOM.PAC"));
    EXPECT_TRUE(std::filesystem::exists(wad::BakPathOf(path)));
    const std::string converted = testkit::ReadFile(path);
    const auto strife = testkit::RunCli("recolor " + iwad + " " + path + " --from strife", config);
    EXPECT_EQ(strife.Status, 2);
    EXPECT_NE(strife.Text.find("palette export IWAD -o"), std::string::npos) << strife.Text;
    EXPECT_EQ(testkit::ReadFile(path), converted);
    EXPECT_EQ(testkit::RunCli("recolor " + iwad + " " + path, config).Status, 1);
}

} // namespace
} // namespace kelvar::gfx
