// Tests of saving the palette lumps: a PWAD rebuilt with PLAYPAL and COLORMAP replaced in
// place or appended, the backup, and the save command's questions.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteSave.h"

#include "tests/testkit/WadFixture.h"
#include "wad/CheckedFile.h"
#include "wad/WadScan.h"
#include "wad/WadState.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

using LumpList = std::vector<std::pair<std::string, std::string>>;

class PaletteSaveTest : public testkit::WadFixture
{
protected:
    // Name and data of each lump of a WAD file, in order.
    LumpList Lumps(const std::string& path)
    {
        const wad::StreamPtr stream = wad::OpenStream(path, "rb");
        const std::string bytes = testkit::ReadFile(path);
        LumpList lumps;
        for (const wad::LumpEntry& entry : wad::ReadDirectoryQuietly(stream.get(), nullptr))
        {
            lumps.emplace_back(entry.Name.Text(), bytes.substr(static_cast<size_t>(entry.Offset),
                                                               static_cast<size_t>(entry.Size)));
        }
        return lumps;
    }
};

TEST_F(PaletteSaveTest, ReplacesInPlaceAppendsTheMissingAndKeepsABackup)
{
    const std::string path = Dir.File("RES.WAD");
    testkit::WadBuilder()
        .Lump("FIRST", "abc")
        .Lump("COLORMAP", "old")
        .Lump("LAST", "xyz")
        .Write(path);
    const std::vector<uint8_t> playpal(768, 7);
    const std::vector<uint8_t> colormap(512, 9);
    ASSERT_EQ(WritePaletteLumps(path, {&playpal, &colormap}), 1);
    EXPECT_EQ(Lumps(path), (LumpList{{"FIRST", "abc"},
                                     {"COLORMAP", std::string(512, '\x09')},
                                     {"LAST", "xyz"},
                                     {"PLAYPAL", std::string(768, '\x07')}}));
    EXPECT_EQ(Lumps(Dir.File("RES.BAK")),
              (LumpList{{"FIRST", "abc"}, {"COLORMAP", "old"}, {"LAST", "xyz"}}));
    EXPECT_EQ(testkit::ReadFile(path).substr(0, 4), "PWAD");

    // Only PLAYPAL chosen: COLORMAP is copied as it stands; a new file gets the lump alone.
    const std::vector<uint8_t> other(768, 1);
    ASSERT_EQ(WritePaletteLumps(path, {&other, nullptr}), 1);
    EXPECT_EQ(Lumps(path)[1].second, std::string(512, '\x09'));
    EXPECT_EQ(Lumps(path)[3].second, std::string(768, '\x01'));
    ASSERT_EQ(WritePaletteLumps(Dir.File("NEW.WAD"), {nullptr, &colormap}), 1);
    EXPECT_EQ(Lumps(Dir.File("NEW.WAD")), (LumpList{{"COLORMAP", std::string(512, '\x09')}}));
}

TEST_F(PaletteSaveTest, TheCommandAsksForTheTarget)
{
    PaletteEditorState state;
    EXPECT_EQ(SavePaletteLumps(state), 0);
    EXPECT_EQ(Ui.Last().Text(), "Please select PLAYPAL and COLORMAP options");

    state.SaveColormap = true;
    state.Colormap.assign(256, 3);
    Ui.AnswerFile(Dir.File("OUT.WAD"));
    ASSERT_EQ(SavePaletteLumps(state), 1);
    EXPECT_EQ(Ui.FileRequests.back().Caption, "Target PWAD to receive PALETTE-COLORMAP Lumps");
    EXPECT_EQ(Lumps(Dir.File("OUT.WAD")), (LumpList{{"COLORMAP", std::string(256, '\x03')}}));
    ASSERT_FALSE(Ui.Progress.empty());
    EXPECT_EQ(Ui.Progress.back().first, "Copying 1 Entries");

    Ui.AnswerFile(std::nullopt);
    EXPECT_EQ(SavePaletteLumps(state), 0);
}

TEST_F(PaletteSaveTest, ADamagedTargetOrAFullDiskLeavesTheTargetAsItWas)
{
    const std::vector<uint8_t> playpal(768, 7);
    const std::string damaged = Dir.File("BAD.WAD");
    testkit::WriteFile(damaged, "PWAD\x05");
    EXPECT_EQ(WritePaletteLumps(damaged, {&playpal, nullptr}), -1);
    EXPECT_EQ(Ui.Last().Text(), "Failure reading old File?");
    EXPECT_EQ(testkit::ReadFile(damaged), "PWAD\x05");

    const std::string path = testkit::WadBuilder()
                                 .Level("MAP01")
                                 .Marker("MAP02")
                                 .Lump("THINGS", "tt")
                                 .Lump("LINEDEFS", "ll")
                                 .Lump("SIDEDEFS", "ss")
                                 .Lump("VERTEXES", "vv")
                                 .Lump("SECTORS", "ee")
                                 .HexenLevel("MAP03")
                                 .Write(Dir.File("RES.WAD"));
    const std::string before = testkit::ReadFile(path);
    wad::Wad().WriteBudget = 100;
    Ui.Answer(0); // the I/O error's "Quit now?": no
    EXPECT_EQ(WritePaletteLumps(path, {&playpal, nullptr}), -1);
    wad::Wad().WriteBudget = -1;
    EXPECT_EQ(testkit::ReadFile(path), before);
    EXPECT_FALSE(std::filesystem::exists(Dir.File("RES.BAK")));

    // Written whole, the levels' lumps read back as they were, PLAYPAL after them.
    ASSERT_EQ(WritePaletteLumps(path, {&playpal, nullptr}), 1);
    const LumpList lumps = Lumps(path);
    LumpList old = Lumps(Dir.File("RES.BAK"));
    old.emplace_back("PLAYPAL", std::string(768, '\x07'));
    EXPECT_EQ(lumps, old);
}

} // namespace
} // namespace kelvar::gfx
