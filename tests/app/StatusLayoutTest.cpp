// The bytes of the status files as written: every named field at its offset with its default,
// and nothing in the gaps.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ControlFiles.h"
#include "app/StatusDefaults.h"
#include "app/StatusFiles.h"
#include "tests/app/StatusTestKit.h"

#include <vector>

namespace kelvar::app
{
namespace
{

// One expected field: a number (little-endian, 1 byte unsigned, 2 or 4 signed) or a text
// zero-padded to the width.
struct Expect
{
    std::size_t Offset;
    std::size_t Width;
    long Number = 0;
    const char* Text = nullptr;
};

// Checks each field, then that every byte no field covers is zero.
void CheckImage(const std::string& bytes, const std::vector<Expect>& fields)
{
    std::vector<bool> covered(bytes.size(), false);
    for (const Expect& field : fields)
    {
        if (field.Text != nullptr)
        {
            std::string padded(field.Text);
            padded.resize(field.Width, '\0');
            EXPECT_EQ(bytes.substr(field.Offset, field.Width), padded) << "at " << field.Offset;
        }
        else
        {
            EXPECT_EQ(IntAt(bytes, field.Offset, field.Width), field.Number)
                << "at " << field.Offset;
        }
        std::fill_n(covered.begin() + static_cast<long>(field.Offset), field.Width, true);
    }
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        if (!covered[i])
        {
            EXPECT_EQ(bytes[i], '\0') << "stray byte at " << i;
        }
    }
}

std::vector<Expect> Frame(const char* tag, long version, long size)
{
    // The size word is unsigned; IntAt reads two bytes signed.
    return {{0, 4, 0, tag},
            {4, 2, version},
            {6, 2, static_cast<std::int16_t>(static_cast<std::uint16_t>(size))},
            {static_cast<std::size_t>(size) - 2, 2, 0x6666}};
}

using StatusLayout = StatusFixture;

TEST_F(StatusLayout, KelvarChkHoldsEveryOptionAtItsOffsetAndNothingElse)
{
    ASSERT_EQ(SaveChk(DefaultChk()), 1);
    const std::string bytes = Bytes("KELVAR.CHK");
    ASSERT_EQ(bytes.size(), 2750u);

    std::vector<Expect> fields = Frame("xCHK", 4496, 2750);
    const std::vector<Expect> named = {
        {16, 4, 0},
        {20, 128, 0, "DOOM2.PRJ"},
        {152, 2, 32000},
        {154, 2, 100},
        {257, 2, 256},
        {259, 1, 0},
        {263, 1, 1},
        {266, 2, 10},
        {268, 1, 1},
        {269, 1, 1},
        {270, 1, 0},
        {271, 1, 1},
        {272, 1, 1},
        {273, 1, 0},
        {274, 2, 0},
        {276, 1, 0},
        {277, 1, 1},
        {278, 2, 0},
        {280, 2, 1},  // node type
        {282, 2, 0},  // split mode
        {284, 2, 16}, // split factor
        {286, 2, 0},
        {288, 2, 0},
        {290, 2, 0},
        {292, 2, 0},
        {294, 2, 8},
        {306, 2, 1},
        {308, 2, 1},
        {310, 1, 1},
        {311, 1, 1},
        {312, 1, 1},
        {313, 1, 1},
        {314, 1, 0},
        {315, 1, 0},
        {316, 1, 1},
        {317, 1, 1},
        {318, 1, 1},
        {319, 1, 1},
        {320, 1, 1},
        {321, 1, 1},
        {322, 1, 1},
        {323, 1, 1},
        {324, 1, 1},
        {325, 1, 1},
        {326, 1, 1},
        {327, 1, 1},
        {328, 2, 257},
        {330, 1, 1},
        {331, 2, 257},
        {358, 2, 1},
        {360, 2, 1},
        {367, 1, 0},
        {368, 2, 0},
        {370, 2, 0},
        {372, 2, 0},
        {374, 2, 1},
        {376, 2, 0},
        {378, 2, 10},
        {396, 1, 1},
        {397, 1, 0},
        {398, 2, 1},
        {400, 2, 1},
        {428, 2, 0},
        {432, 2, 1},
        {434, 2, 1},
        {436, 2, 1},
        {440, 2, 1},
        {490, 2, 0},
        {492, 2, 1},
        {500, 2, 1},
        {506, 1, 1},
        {507, 1, 0},
        {508, 1, 1},
        {509, 1, 0},
        {510, 2, 1},
        {512, 2, 0},
        {514, 2, 1},
        {516, 2, 1},
        {522, 2, 257},
        {524, 2, 8},
        {534, 2, 1},
        {536, 2, 1},
        {538, 2, 1},
        {540, 2, 1},
        {542, 2, 0},
        {546, 2, 1},
        {548, 2, 1},
        {550, 2, 0},
        {552, 128, 0, "xdg-open"},
        {714, 128, 0, "c:\\R3Kelvar\\bin\\R3Kelvar.EXE"},
        {842, 128, 0, "c:\\R3Kelvar\\bin"},
        {970, 128, 0, ""},
        {1298, 128, 0, "gimp"},
        {1426, 128, 0, "/usr/share/games/quake/id1/maps"},
        {1554, 128, 0, "/usr/share/games/quake/gfx/"},
        {1682, 128, 0, "/usr/share/games/quake/id1/"},
        {1840, 128, 0, "ToolGeneral.TOL"},
        {1968, 128, 0, "ToolPrefabs.TOL"},
        {2096, 128, 0, "ToolTutorial.TOL"},
        {2224, 128, 0, "ToolBarControl.TOL"},
        {2352, 128, 0, "ToolTop.TOL"},
        {2736, 4, 35},
        {2740, 4, 10},
        {2744, 4, 30},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    // The window and the 15 floating panes: four -100s each, "not set".
    for (std::size_t offset = 2480; offset < 2736; offset += 4)
    {
        fields.push_back({offset, 4, -100});
    }
    CheckImage(bytes, fields);
}

TEST_F(StatusLayout, BuiltProjectHoldsItsFieldsAtTheirOffsets)
{
    ASSERT_EQ(SaveProject(ProjectOfRow(ProjectRows()[0]), "DOOM2.PRJ"), 1);
    const std::string bytes = Bytes("DOOM2.PRJ");
    ASSERT_EQ(bytes.size(), 44526u);

    std::vector<Expect> fields = Frame("xPRJ", 4483, 44526);
    const std::vector<Expect> named = {
        {12, 4, 0x3F800000}, // zoom 1.0
        {66, 1, 1},          // Copy Reject
        {52, 2, 100},
        {54, 2, 200},
        {96, 80, 0, "NotePad"},
        {176, 128, 0, "xdg-open"},
        {96 + 468, 80, 0, "DOS shell"},
        {176 + 468, 128, 0, "x-terminal-emulator"},
        {96 + 936, 80, 0, "Midi2Mus"},
        {176 + 936, 128, 0, "midi2mus"},
        {304 + 936, 128, 0, "file.mid  (type MIDI file to convert here and delete this comment"},
        {4304, 2, 0x682D},
        {4336, 128, 0, "kelvaracc"},
        {4848, 128, 0, "DOOM2.TCF"},
        {4976, 128, 0, "/usr/share/games/doom/freedoom2.wad"},
        {5104, 128, 0, "chocolate-doom"},
        {5488, 128, 0, "DOOM2.OPT"},
        {5616, 2, 4},
        {5676, 128, 0, ":"},
        {5876, 128, 0, "SCRIPT.ACS"},
        {6004, 128, 0, "*.O"},
        {6132, 128, 0, "MAPINFO.txt"},
        {6260, 128, 0, "SNDINFO.txt"},
        {6388, 128, 0, "SNDSEQ.txt"},
        {6516, 128, 0, "ANIMDEFS.txt"},
        {6644, 128, 0, "DEHACKED.deh"},
        {6772, 128, 0, "FRAGGLE.fs"},
        {6900, 128, 0, "any.txt"},
        {7028, 128, 0, "Custom Nodebuilder (modify parms to suit)"},
        {7156, 128, 0, "Glbsp.exe (for example replace with your location)"},
        {7284, 128, 0, "~kelvar.wad -o $pwad"},
        {7860, 2, 0x6565},
        {34122, 2, 0x6565},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    // The view position: -32666.0 in both, "not set".
    const std::string unset("\x00\x00\x00\x00\x80\xE6\xDF\xC0", 8);
    EXPECT_EQ(bytes.substr(34, 8), unset);
    EXPECT_EQ(bytes.substr(42, 8), unset);
    fields.push_back({34, 4, IntAt(unset, 0, 4)});
    fields.push_back({38, 4, IntAt(unset, 4, 4)});
    fields.push_back({42, 4, IntAt(unset, 0, 4)});
    fields.push_back({46, 4, IntAt(unset, 4, 4)});
    CheckImage(bytes, fields);
}

TEST_F(StatusLayout, DoomTextureControlListsItsNamesInRecordOrder)
{
    ASSERT_EQ(SaveTextureControl(DefaultTextureControl(2), "DOOM2.TCF"), 1);
    const std::string bytes = Bytes("DOOM2.TCF");
    ASSERT_EQ(bytes.size(), 368u);

    const char* names[] = {"MARBGRAY", "MARBLE1",  "MARBGRAY", "FLOOR4_8", "FLAT4",    "BIGDOOR2",
                           "DOORTRAK", "FLAT20",   "SHAWN2",   "MFLR8_3",  "PIPES",    "FLAT17",
                           "SLADWALL", "GRNLITE1", "FLOOR7_2", "FLAT4",    "FLAT5_4",  "STONE4",
                           "STONE5",   "FLAT4",    "FLAT5_4",  "STONE4",   "STONE5",   "GATE3",
                           "TLITE6_5", "SUPPORT3", "STEP1",    "GRNLITE1", "MARBGRAY", "MARBLE1",
                           "MARBGRAY", "FLOOR4_8", "FLAT4"};
    std::vector<Expect> fields = Frame("xTCF", 4480, 368);
    for (std::size_t i = 0; i < std::size(names); ++i)
    {
        // Eight characters, no terminator when all eight are used, two spare bytes behind.
        fields.push_back({16 + 10 * i, 10, 0, names[i]});
    }
    const long sizes[] = {128, 8, 128, 8, 16, 100};
    for (std::size_t i = 0; i < std::size(sizes); ++i)
    {
        fields.push_back({346 + 2 * i, 2, sizes[i]});
    }
    CheckImage(bytes, fields);
}

TEST_F(StatusLayout, GameConfigurationAndToolFileKeepTheirFrames)
{
    ASSERT_EQ(SaveGameConfig(DefaultGameConfig(2, false, false), "DOOM2.DFG"), 1);
    const std::string config = Bytes("DOOM2.DFG");
    ASSERT_EQ(config.size(), 486u);
    std::vector<Expect> fields = Frame("xCFG", 4483, 486);
    const long colours[] = {4, 9, 7, 29, 15, 59, 21, 22, 62, 19, 18, 10, 13, 12, 9, 9, 26};
    for (std::size_t i = 0; i < std::size(colours); ++i)
    {
        fields.push_back({14 + 2 * i, 2, colours[i]});
    }
    const std::vector<Expect> named = {
        {8, 2, 2},       {10, 2, 11},     {12, 2, 0},      {110, 2, 4}, {114, 2, 1},
        {116, 2, 32767}, {118, 2, 0},     {120, 2, 32767}, {122, 2, 0}, {124, 2, 32767},
        {126, 2, 0},     {128, 2, 32767}, {130, 2, 0},     {132, 2, 0},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    CheckImage(config, fields);

    ASSERT_EQ(SaveToolFile(DefaultToolFile(3), "ToolTutorial.TOL"), 1);
    std::vector<Expect> tools = Frame("xTOL", 4384, 6734);
    tools.push_back({8, 2, 3});
    CheckImage(Bytes("ToolTutorial.TOL"), tools);
}

} // namespace
} // namespace kelvar::app
