// Tests of the .CVT reader: sections in any case, comments, short and long lines, kept names.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "lumps/CvtFile.h"

#include "tests/testkit/TempDir.h"

#include <gtest/gtest.h>

namespace kelvar::lumps
{
namespace
{

// The pairs as "OLD=NEW" texts, NEW empty for a kept name.
std::vector<std::string> Pairs(const std::vector<CvtEntry>& entries)
{
    std::vector<std::string> pairs;
    for (const CvtEntry& entry : entries)
    {
        pairs.push_back(entry.OldName.Text() + "=" + entry.NewName.Text());
    }
    return pairs;
}

TEST(CvtFile, ReadsBothSectionsWithTheirCommentsKeptNamesAndLineRules)
{
    // The new name stands past character 130, where the line is cut.
    const std::string longLine = "LONGLINE" + std::string(122, ' ') + "NEWNAME";
    const CvtTable table = ParseCvtText("Converted from the old pack\n"
                                        "OUTSIDE  ANYSECTN\n"
                                        "[textures]\r\n"
                                        "STARTAN3   brown1\r\n"
                                        "// a comment line\n"
                                        "   // an indented comment\n"
                                        "ab\n"
                                        "SW1COMP\n"
                                        "STARTAN2 // kept, a comment where the new name goes\n"
                                        "VERYLONGNAME12  AVERYLONGNEWNAME  trailing words\n"
                                        "\tTABBED\tTABNEW\n" +
                                        longLine +
                                        "\n"
                                        "[OTHER]\n"
                                        "NOTTAKEN ANYWHERE\n"
                                        "  [Flats]  \n"
                                        "FLOOR4_8 FLAT14\n"
                                        "CEIL3_5 ceil1_1");
    EXPECT_EQ(Pairs(table.Textures),
              (std::vector<std::string>{"STARTAN3=BROWN1", "SW1COMP=", "STARTAN2=",
                                        "VERYLONG=AVERYLON", "TABBED=TABNEW", "LONGLINE="}));
    EXPECT_EQ(Pairs(table.Flats), (std::vector<std::string>{"FLOOR4_8=FLAT14", "CEIL3_5=CEIL1_1"}));
}

TEST(CvtFile, TheFirstEntryOfANameWinsWhateverItsCase)
{
    const CvtTable table = ParseCvtText("[TEXTURES]\n"
                                        "sw1comp\n"
                                        "SW1COMP SW2COMP\n"
                                        "Brown1 GRAY1\n"
                                        "BROWN1 GRAY2\n");
    const CvtEntry* kept = FindCvtEntry(table.Textures, wad::LumpName::From("SW1COMP"));
    ASSERT_NE(kept, nullptr);
    EXPECT_TRUE(kept->Keeps());
    const CvtEntry* brown = FindCvtEntry(table.Textures, wad::LumpName::From("brown1"));
    ASSERT_NE(brown, nullptr);
    EXPECT_EQ(brown->NewName.Text(), "GRAY1");
    EXPECT_EQ(FindCvtEntry(table.Textures, wad::LumpName::From("BROWN")), nullptr);
    EXPECT_EQ(FindCvtEntry(table.Flats, wad::LumpName::From("BROWN1")), nullptr);
}

TEST(CvtFile, AFileIsReadWholeAndAMissingOneIsNoTable)
{
    const testkit::TempDir dir;
    testkit::WriteFile(dir.Path() / "pack.cvt", "[FLATS]\nNUKAGE1 SLIME01\n");
    const std::optional<CvtTable> table = ReadCvtFile(dir.Path() / "pack.cvt");
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(Pairs(table->Flats), (std::vector<std::string>{"NUKAGE1=SLIME01"}));
    EXPECT_TRUE(table->Textures.empty());
    EXPECT_FALSE(ReadCvtFile(dir.Path() / "missing.cvt").has_value());
    EXPECT_FALSE(ReadCvtFile(dir.Path()).has_value());
}

} // namespace
} // namespace kelvar::lumps
