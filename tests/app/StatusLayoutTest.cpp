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
    const char* Field; // the record's member, for the reader
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
            EXPECT_EQ(bytes.substr(field.Offset, field.Width), padded)
                << field.Field << " at " << field.Offset;
        }
        else
        {
            EXPECT_EQ(IntAt(bytes, field.Offset, field.Width), field.Number)
                << field.Field << " at " << field.Offset;
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
    return {{"Frame.Tag", 0, 4, 0, tag},
            {"Frame.Version", 4, 2, version},
            {"Frame.Size", 6, 2, static_cast<std::int16_t>(static_cast<std::uint16_t>(size))},
            {"EndWord", static_cast<std::size_t>(size) - 2, 2, 0x6666}};
}

using StatusLayout = StatusFixture;

TEST_F(StatusLayout, KelvarChkHoldsEveryOptionAtItsOffsetAndNothingElse)
{
    ASSERT_EQ(SaveChk(DefaultChk()), 1);
    const std::string bytes = Bytes("KELVAR.CHK");
    ASSERT_EQ(bytes.size(), 2750u);

    std::vector<Expect> fields = Frame("xCHK", 4496, 2750);
    const std::vector<Expect> named = {
        {"SessionWord", 16, 4, 0},
        {"ProjectFile", 20, 128, 0, "DOOM2.PRJ"},
        {"AdditionalLumpEntries", 152, 2, 32000},
        {"UndoLimit", 154, 2, 100},
        {"SelectedObjectsSolid", 257, 2, 256},
        {"SkipEnvironmentChecks", 259, 1, 0},
        {"TipOfTheDay", 263, 1, 1},
        {"AutoSavePeriod", 266, 2, 10},
        {"DialogRestoreCursor", 268, 1, 1},
        {"ShowObjectTip", 269, 1, 1},
        {"MouseClickMovesMap", 270, 1, 0},
        {"CursorKeysMoveMap", 271, 1, 1},
        {"LineMergePastePrefabs", 272, 1, 1},
        {"MouseWheelModeChange", 273, 1, 0},
        {"ShowNodeBuild", 274, 2, 0},
        {"MergeDuplicateVertices", 276, 1, 0},
        {"FixGlNodes", 277, 1, 1},
        {"ForceExtendedNodes", 278, 2, 0},
        {"NodeType", 280, 2, 1},     // node type
        {"SplitMode", 282, 2, 0},    // split mode
        {"SplitFactor", 284, 2, 16}, // split factor
        {"IgnoreTwoSidedLineDefs", 286, 2, 0},
        {"SeeNodeResults", 288, 2, 0},
        {"SpecialLineDefTags", 290, 2, 0},
        {"SpecialSectorTags", 292, 2, 0},
        {"GridSize", 294, 2, 8},
        {"DisplaySolidThings", 306, 2, 1},
        {"Prompt3DTestingOptions", 308, 2, 1},
        {"CheckPlayerStarts", 310, 1, 1},
        {"UpperTexture", 311, 1, 1},
        {"NormalTexture", 312, 1, 1},
        {"LowerTexture", 313, 1, 1},
        {"XOffsets", 314, 1, 0},
        {"YOffsets", 315, 1, 0},
        {"MultiPatchTextures", 316, 1, 1},
        {"SectorClosed1", 317, 1, 1},
        {"SectorClosed2", 318, 1, 1},
        {"ThingsInSector", 319, 1, 1},
        {"ThingsOnTop", 320, 1, 1},
        {"CheckTags", 321, 1, 1},
        {"CheckKeys", 322, 1, 1},
        {"CheckShortLines", 323, 1, 1},
        {"CheckDuplicateSideDefs", 324, 1, 1},
        {"CheckDuplicateVertices", 325, 1, 1},
        {"CheckDuplicateLineDefs", 326, 1, 1},
        {"CheckOverlappingLineDefs", 327, 1, 1},
        {"ThingShooter", 328, 2, 257},
        {"CheckThingTypes", 330, 1, 1},
        {"SectorClosed3", 331, 2, 257},
        {"ShortestLine", 333, 1, 0},
        {"SelectBoxDashed", 358, 2, 1},
        {"GridDashed", 360, 2, 1},
        {"KeepExtraVertexDrawing", 367, 1, 0},
        {"ShowDetailedScroll", 368, 2, 0},
        {"ShowDetailedZoom", 370, 2, 0},
        {"NoIwadWarningMsg", 372, 2, 0},
        {"DecimalTypes", 374, 2, 1},
        {"AutomaticSideUnpack", 376, 2, 0},
        {"BlankerDelay", 378, 2, 10},
        {"DuplicateLumpMsg", 396, 1, 1},
        {"AllowDuplicates", 397, 1, 0},
        {"AutomaticDrawIntersections", 398, 2, 1},
        {"NewIntersectionSectors", 400, 2, 1},
        {"LeftMouseClickOk", 428, 2, 0},
        {"EnableSoundSelect", 432, 2, 1},
        {"LineMergeDragTools", 434, 2, 1},
        {"VertexSplitDragTools", 436, 2, 1},
        {"VertexMergeDragTools", 440, 2, 1},
        {"ExpertMode", 490, 2, 0},
        {"ToolContinue", 492, 2, 1},
        {"EnableUndo", 500, 2, 1},
        {"MoveSectorThings", 506, 1, 1},
        {"DeleteSectorThings", 507, 1, 0},
        {"DragSectorThings", 508, 1, 1},
        {"DragOverlapCheck", 509, 1, 0},
        {"VertexDelJoinLineDefs", 510, 2, 1},
        {"SectorJoinDrawing", 512, 2, 0},
        {"SmartDraw", 514, 2, 1},
        {"Correct3D", 516, 2, 1},
        {"GroupSave", 522, 2, 257},
        {"EditMode", 524, 2, 8},
        {"LineMergeDragTools2", 534, 2, 1},
        {"VertexSplitDragTools2", 536, 2, 1},
        {"VertexMergeDragTools2", 538, 2, 1},
        {"AutoLoadLevels", 540, 2, 1},
        {"AutoStartProgram", 542, 2, 0},
        {"AdditiveSelect", 546, 2, 1},
        {"VertexArrows", 548, 2, 1},
        {"AlwaysShowVertex", 550, 2, 0},
        {"TextEditor", 552, 128, 0, "xdg-open"},
        {"ViewerPath", 714, 128, 0, "c:\\R3Kelvar\\bin\\R3Kelvar.EXE"},
        {"ViewerDirectory", 842, 128, 0, "c:\\R3Kelvar\\bin"},
        {"ViewerParameters", 970, 128, 0, ""},
        {"PaintProgram", 1298, 128, 0, "gimp"},
        {"QuakeMapsDir", 1426, 128, 0, "/usr/share/games/quake/id1/maps"},
        {"QuakeGfxDir", 1554, 128, 0, "/usr/share/games/quake/gfx/"},
        {"QuakeId1Dir", 1682, 128, 0, "/usr/share/games/quake/id1/"},
        {"ToolFiles", 1840, 128, 0, "ToolGeneral.TOL"},
        {"ToolFiles[1]", 1968, 128, 0, "ToolPrefabs.TOL"},
        {"ToolFiles[2]", 2096, 128, 0, "ToolTutorial.TOL"},
        {"ToolFiles[3]", 2224, 128, 0, "ToolBarControl.TOL"},
        {"ToolFiles[4]", 2352, 128, 0, "ToolTop.TOL"},
        {"TailSettings", 2736, 4, 35},
        {"Unnamed2740", 2740, 4, 10},
        {"Unnamed2744", 2744, 4, 30},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    // The window and the 15 floating panes: four -100s each, "not set".
    for (std::size_t offset = 2480; offset < 2736; offset += 4)
    {
        fields.push_back({"PaneRects", offset, 4, -100});
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
        {"Zoom", 12, 4, 0x3F800000}, // zoom 1.0
        {"CopyReject", 66, 1, 1},    // Copy Reject
        {"FileLimit", 52, 2, 100},
        {"LevelListLimit", 54, 2, 200},
        {"UserTools[0].Description", 96, 80, 0, "NotePad"},
        {"UserTools[0].Program", 176, 128, 0, "xdg-open"},
        {"UserTools[1].Description", 96 + 468, 80, 0, "DOS shell"},
        {"UserTools[1].Program", 176 + 468, 128, 0, "x-terminal-emulator"},
        {"UserTools[2].Description", 96 + 936, 80, 0, "Midi2Mus"},
        {"UserTools[2].Program", 176 + 936, 128, 0, "midi2mus"},
        {"UserTools[2].Parameters", 304 + 936, 128, 0,
         "file.mid  (type MIDI file to convert here and delete this comment"},
        {"ReservedWord", 4304, 2, 0x682D},
        {"CompilerPath", 4336, 128, 0, "kelvaracc"},
        {"TcfFile", 4848, 128, 0, "DOOM2.TCF"},
        {"IwadPath", 4976, 128, 0, "/usr/share/games/doom/freedoom2.wad"},
        {"GameExe", 5104, 128, 0, "chocolate-doom"},
        {"OptFile", 5488, 128, 0, "DOOM2.OPT"},
        {"Skill", 5616, 2, 4},
        {"ExtraParameters", 5676, 128, 0, ":"},
        {"ScriptFile", 5876, 128, 0, "SCRIPT.ACS"},
        {"ObjectFilter", 6004, 128, 0, "*.O"},
        {"MapinfoFile", 6132, 128, 0, "MAPINFO.txt"},
        {"SndinfoFile", 6260, 128, 0, "SNDINFO.txt"},
        {"SndseqFile", 6388, 128, 0, "SNDSEQ.txt"},
        {"AnimdefsFile", 6516, 128, 0, "ANIMDEFS.txt"},
        {"DehackedFile", 6644, 128, 0, "DEHACKED.deh"},
        {"FraggleFile", 6772, 128, 0, "FRAGGLE.fs"},
        {"AnyTextFile", 6900, 128, 0, "any.txt"},
        {"CustomName", 7028, 128, 0, "Custom Nodebuilder (modify parms to suit)"},
        {"CustomExe", 7156, 128, 0, "Glbsp.exe (for example replace with your location)"},
        {"CustomParameters", 7284, 128, 0, "~kelvar.wad -o $pwad"},
        {"ProjectMarker", 7860, 2, 0x6565},
        {"ListMarker", 34122, 2, 0x6565},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    // The view position: -32666.0 in both, "not set".
    const std::string unset("\x00\x00\x00\x00\x80\xE6\xDF\xC0", 8);
    EXPECT_EQ(bytes.substr(34, 8), unset);
    EXPECT_EQ(bytes.substr(42, 8), unset);
    fields.push_back({"ViewX", 34, 4, IntAt(unset, 0, 4)});
    fields.push_back({"ViewX", 38, 4, IntAt(unset, 4, 4)});
    fields.push_back({"ViewY", 42, 4, IntAt(unset, 0, 4)});
    fields.push_back({"ViewY", 46, 4, IntAt(unset, 4, 4)});
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
        fields.push_back({"TcfName", 16 + 10 * i, 10, 0, names[i]});
    }
    const long sizes[] = {128, 8, 128, 8, 16, 100};
    for (std::size_t i = 0; i < std::size(sizes); ++i)
    {
        fields.push_back({"ToolSize", 346 + 2 * i, 2, sizes[i]});
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
        fields.push_back({"Color...", 14 + 2 * i, 2, colours[i]});
    }
    const std::vector<Expect> named = {
        {"Format", 8, 2, 2},         {"LevelEntries", 10, 2, 11},
        {"ExtendedTypes", 12, 2, 0}, {"VertexSize", 110, 2, 4},
        {"ThingTypes", 114, 2, 1},   {"ThingTypes.High", 116, 2, 32767},
        {"LineTypes", 118, 2, 0},    {"LineTypes.High", 120, 2, 32767},
        {"SectorTypes", 122, 2, 0},  {"SectorTypes.High", 124, 2, 32767},
        {"Tags", 126, 2, 0},         {"Tags.High", 128, 2, 32767},
        {"Args", 130, 2, 0},         {"Args.High", 132, 2, 0},
    };
    fields.insert(fields.end(), named.begin(), named.end());
    CheckImage(config, fields);

    ASSERT_EQ(SaveToolFile(DefaultToolFile(3), "ToolTutorial.TOL"), 1);
    std::vector<Expect> tools = Frame("xTOL", 4384, 6734);
    tools.push_back({"ToolbarNumber", 8, 2, 3});
    CheckImage(Bytes("ToolTutorial.TOL"), tools);
}

} // namespace
} // namespace kelvar::app
