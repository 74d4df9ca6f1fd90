// Tests of the palette files: JASC text byte for byte, .PAC, reading either back, the export
// command's questions and messages.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "gfx/PaletteFiles.h"

#include "gfx/GamePalette.h"
#include "tests/gfx/PaletteTestData.h"
#include "tests/testkit/WadFixture.h"

#include <gtest/gtest.h>

namespace kelvar::gfx
{
namespace
{

TEST(JascPalette, TextAsWrittenAndReadBack)
{
    Palette palette = GrayRamp();
    palette[1] = {255, 0, 7};
    const std::string text = JascPaletteText(palette);
    EXPECT_EQ(text.substr(0, 42), "JASC-PAL\r\n0100\r\n256\r\n0 0 0\r\n255 0 7\r\n2 2 2");
    EXPECT_TRUE(text.ends_with("\r\n254 254 254\r\n255 255 255\r\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 259);
    EXPECT_EQ(ParseJascPalette(text), palette);

    // Plain line ends read too; damage is refused.
    std::string unix = text;
    std::erase(unix, '\r');
    EXPECT_EQ(ParseJascPalette(unix), palette);
    EXPECT_FALSE(ParseJascPalette("JASC-PAL\r\n0100\r\n256\r\n0 0 0\r\n"));
    EXPECT_FALSE(ParseJascPalette("JASC-PAL\r\n0100\r\n2\r\n0 0 0\r\n256 0 0\r\n"));
    EXPECT_FALSE(ParseJascPalette("RIFF"));
}

TEST(PacPalette, SevenHundredSixtyEightBytes)
{
    const Palette palette = test::FreedoomPalette();
    const std::vector<uint8_t> bytes = PaletteToBytes(palette);
    ASSERT_EQ(bytes.size(), 768u);
    EXPECT_EQ(ReadPacBytes(bytes), palette);
    EXPECT_FALSE(ReadPacBytes(std::span(bytes).first(767)));

    testkit::TempDir dir;
    ASSERT_TRUE(WriteFileBytes(dir.File("DOOM.PAC"), bytes));
    EXPECT_EQ(ReadPaletteFile(dir.File("DOOM.PAC")), palette);
    const std::string text = JascPaletteText(palette);
    testkit::WriteFile(dir.File("doom.pal"), text);
    EXPECT_EQ(ReadPaletteFile(dir.File("doom.pal")), palette);
    EXPECT_FALSE(ReadPaletteFile(dir.File("missing.pal")));
}

class ExportPaletteFileTest : public testkit::WadFixture
{
};

TEST_F(ExportPaletteFileTest, AlwaysJascWhateverTheAnswer)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    const std::string path = Dir.File("out.PAL");
    Ui.AnswerFile(path).Answer(0); // "No" would ask for the binary file
    EXPECT_EQ(ExportPaletteFile(), 1);
    ASSERT_EQ(Ui.FileRequests.size(), 1u);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Export Palette File");
    EXPECT_EQ(Ui.Last().Title, "Type of Palette");
    EXPECT_EQ(Ui.Last().Lines,
              (std::vector<std::string>{"Create a PSP JASC file?",
                                        "(N creates the binary file used by Kelvar)"}));
    EXPECT_EQ(testkit::ReadFile(path), JascPaletteText(test::FreedoomPalette()));

    Ui.Clear();
    Ui.AnswerFile(Dir.Path() / "no" / "such" / "dir.PAL").Answer(1);
    EXPECT_EQ(ExportPaletteFile(), -1);
    EXPECT_TRUE(Ui.Saw("File Creation Error"));

    Ui.AnswerFile(std::nullopt);
    EXPECT_EQ(ExportPaletteFile(), 0);
}

} // namespace
} // namespace kelvar::gfx
