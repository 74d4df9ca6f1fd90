// Tests of the cross-reference check: each step finds its fault with its words, its repair
// leaves nothing to find, and a grid of 60,000 LineDefs is checked without testing all pairs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/CrossReferences.h"
#include "check/ClosedChecks.h"
#include "check/CrossReferenceSteps.h"
#include "map/MapState.h"
#include "tests/check/CheckFixture.h"
#include "tests/testkit/LevelBuilder.h"

#include <functional>
#include <optional>

namespace kelvar::check
{
namespace
{

using testkit::LevelBuilder;
using Lines = std::vector<std::string>;

using CrossReferences = CheckFixture;

using Step = std::function<bool(CheckRun&)>;

// The list of one run of `step` over `level` in `mode`; the step must run to its end.
Lines RunStep(const Step& step, map::LevelData& level, RunMode mode,
              const CheckSettings& settings = CheckSettings{})
{
    CheckRun run(level, settings, mode);
    EXPECT_TRUE(step(run));
    return ListLines(run);
}

// A room from (0, 0) to (128, 128): Vertexes 0 to 3 at (0, 0), (0, 128), (128, 128), (128, 0);
// LineDefs 0 to 3 from each to the next, SideDefs 0 to 3, Sector 0.
LevelBuilder Room()
{
    LevelBuilder builder;
    builder.Room(0, 0, 128, 128);
    return builder;
}

// The merge prompt's lines as the list keeps them: its question stays, as it is not the last
// line, but the "Press Cancel" hint goes.
const Lines MergePrompt = {"Merge the Vertices?", "To see what's going on, cancel and then",
                           "drag one of them away (either the vertex or an",
                           "adjacent LineDef) and then Delete by inspection!"};

// The lines of a Vertex finding followed by the merge prompt's, as listed.
Lines WithMergePrompt(const std::string& first)
{
    Lines lines{first};
    lines.insert(lines.end(), MergePrompt.begin(), MergePrompt.end());
    return lines;
}

Lines Joined(std::initializer_list<Lines> parts)
{
    Lines all;
    for (const Lines& part : parts)
    {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

TEST_F(CrossReferences, VertexesAtOnePlaceAreReportedInPairsAndMergedIntoTheLast)
{
    // Vertexes 0, 4 and 5 at (0, 0); merging 0 into 4 makes the old 4 and 5 into 3 and 4.
    map::LevelData level = Room().Vertex(0, 0).Vertex(0, 0).Build();
    EXPECT_EQ(RunStep(CheckVertexDuplicates, level, RunMode::Log),
              Joined({WithMergePrompt("Ve 00000 Vertex 0 and 4 share the same Coordinates"),
                      WithMergePrompt("Ve 00004 Vertex 4 and 5 share the same Coordinates")}));
    EXPECT_EQ(RunStep(CheckVertexDuplicates, level, RunMode::LogAndFix),
              Joined({WithMergePrompt("Ve 00000 Vertex 0 and 4 share the same Coordinates"),
                      WithMergePrompt("Ve 00003 Vertex 3 and 4 share the same Coordinates")}));
    ASSERT_EQ(level.Vertexes.Count(), 4);
    EXPECT_EQ(level.LineDefs[0].StartVertex, 3u);
    EXPECT_EQ(level.LineDefs[3].EndVertex, 3u);
    EXPECT_EQ(RunStep(CheckCrossReferences, level, RunMode::Log), Lines{});

    // With the merge option they merge unasked, even when prompting.
    map::LevelData unasked = Room().Vertex(0, 0).Vertex(0, 0).Build();
    CheckSettings merge;
    merge.MergeDuplicateVertices = true;
    EXPECT_EQ(RunStep(CheckVertexDuplicates, unasked, RunMode::Prompt, merge),
              (Lines{"Ve 00000 Vertex 0 and 4 share the same Coordinates",
                     "(Vertex Merge option set in F5)",
                     "Ve 00003 Vertex 3 and 4 share the same Coordinates",
                     "(Vertex Merge option set in F5)"}));
    EXPECT_TRUE(Ui.Messages.empty());
    EXPECT_EQ(unasked.Vertexes, level.Vertexes);
}

TEST_F(CrossReferences, AMergeThatTakesBothVertexesSkipsThePairsOfTheSecond)
{
    // Vertexes 4, 5 and 6 at one place, with a LineDef of no length from 4 to 5 only: merging 4
    // into 5 deletes that LineDef, and 5 goes with it as nothing uses it any more.
    LevelBuilder builder = Room();
    builder.Vertex(50, 50).Vertex(50, 50).Vertex(50, 50).Side(0).Line(4, 5, 4);
    map::LevelData level = builder.Build();
    EXPECT_EQ(RunStep(CheckVertexDuplicates, level, RunMode::LogAndFix),
              WithMergePrompt("Ve 00004 Vertex 4 and 5 share the same Coordinates"));
    EXPECT_EQ(level.Vertexes.Count(), 5);
    EXPECT_EQ(level.LineDefs.Count(), 4);
    EXPECT_EQ(level.Vertexes[4], (map::Vertex{50, 50}));
    EXPECT_EQ(level.LineDefs, Room().Build().LineDefs);
}

TEST_F(CrossReferences, MissingAndDoubledSidesAreWordedForTheListOrThePrompt)
{
    LevelBuilder builder = Room();
    builder.Side(0).Line(0, 2, map::NoSideDef).Line(1, 3, 4, 4);
    map::LevelData level = builder.Build();
    EXPECT_EQ(
        RunStep(CheckMissingSideDefs, level, RunMode::Log),
        (Lines{"Li 00004 LineDef 4 has no first SideDef.",
               "Li 00005 LineDef 5 uses 4 SideDef twice", "Use File Unpack Sidedef CMD to UNDO",
               "See Checking options to disable check"}));

    Ui.Answer(1).Answer(1);
    EXPECT_EQ(RunStep(CheckMissingSideDefs, level, RunMode::Prompt).size(), 0u);
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[1].Lines,
              (Lines{"LineDef 5 uses 4 SideDef twice", "Recommended only for experts!",
                     "Use File Unpack SideDef CMD to UNDO", "Press Cancel to see the Object"}));

    CheckSettings off;
    off.DuplicateSideDefs = false;
    EXPECT_EQ(RunStep(CheckMissingSideDefs, level, RunMode::Log, off),
              Lines{"Li 00004 LineDef 4 has no first SideDef."});
}

TEST_F(CrossReferences, ShortLineDefsAreMeasuredRoundedAndDeletedInTurn)
{
    // LineDef 4 has no length; 5 runs from (10, 10) to (12, 12), 2.83 units, which is 3.
    LevelBuilder builder = Room();
    builder.Vertex(10, 10).Vertex(12, 12).Side(0).Side(0).Line(4, 4, 4).Line(4, 5, 5);
    map::LevelData level = builder.Build();
    CheckSettings settings;
    settings.ShortestLine = 3;
    EXPECT_EQ(RunStep(CheckShortLineDefs, level, RunMode::Log, settings),
              (Lines{"Li 00004 LineDef 4 is -0- length!", "Delete the LineDef ?"}));
    settings.ShortestLine = 4;
    EXPECT_EQ(RunStep(CheckShortLineDefs, level, RunMode::LogAndFix, settings),
              (Lines{"Li 00004 LineDef 4 is -0- length!", "Delete the LineDef ?",
                     "Li 00004 LineDef 4 is less than 4 long! Remnant?", "Delete the LineDef ?"}))
        << "the second is named by its number after the first was deleted";
    EXPECT_EQ(level.LineDefs, Room().Build().LineDefs);
    EXPECT_EQ(RunStep(CheckShortLineDefs, level, RunMode::Log, settings), Lines{});
}

TEST_F(CrossReferences, DuplicateLineDefsAreFoundByVertexesOrByPlaceAndTheFirstIsDeleted)
{
    // 4 joins the Vertexes of 0 the other way; 5 and 6 lie on 2, with Vertexes of their own.
    LevelBuilder builder = Room();
    builder.Side(0).Side(0).Side(0).Line(1, 0, 4);
    builder.Vertex(128, 128).Vertex(128, 0).Line(4, 5, 5).Line(5, 4, 6);
    map::LevelData level = builder.Build();
    EXPECT_EQ(RunStep(CheckDuplicateLineDefs, level, RunMode::Log),
              (Lines{"Li 00000 LineDef 0 and 4 share the same Vertices",
                     "Li 00002 LineDef 2 and 5 share the same Coordinates",
                     "Li 00005 LineDef 5 and 6 share the same Vertices"}));
    EXPECT_EQ(RunStep(CheckDuplicateLineDefs, level, RunMode::LogAndFix),
              (Lines{"Li 00000 LineDef 0 and 4 share the same Vertices",
                     "Li 00001 LineDef 1 and 4 share the same Coordinates",
                     "Li 00003 LineDef 3 and 4 share the same Vertices"}));
    ASSERT_EQ(level.LineDefs.Count(), 4);
    EXPECT_EQ(level.LineDefs[2].StartVertex, 1u) << "the old LineDef 4 stays";
    EXPECT_EQ(level.LineDefs[3].StartVertex, 5u) << "the last of the three at one place stays";
    EXPECT_EQ(RunStep(CheckDuplicateLineDefs, level, RunMode::Log), Lines{});
}

TEST_F(CrossReferences, AVertexOnALineDefSplitsItAndTheNextVertexFindsThePiece)
{
    // 4 and 5 lie on the north wall, LineDef 1; 6 is at a corner, 7 just off the wall.
    map::LevelData level =
        Room().Vertex(32, 128).Vertex(96, 128).Vertex(0, 0).Vertex(64, 130).Build();
    EXPECT_EQ(RunStep(CheckVertexesOnLineDefs, level, RunMode::Log),
              (Lines{"Ve 00004 Vertex 4 is on LineDef 1", "Ve 00005 Vertex 5 is on LineDef 1"}));
    EXPECT_EQ(RunStep(CheckVertexesOnLineDefs, level, RunMode::LogAndFix),
              (Lines{"Ve 00004 Vertex 4 is on LineDef 1", "Ve 00005 Vertex 5 is on LineDef 4"}));
    ASSERT_EQ(level.LineDefs.Count(), 6);
    EXPECT_EQ(level.LineDefs[1].EndVertex, 4u);
    EXPECT_EQ(level.LineDefs[4].EndVertex, 5u);
    EXPECT_EQ(level.LineDefs[5].StartVertex, 5u);
    EXPECT_EQ(level.LineDefs[5].EndVertex, 2u);
    EXPECT_EQ(RunStep(CheckVertexesOnLineDefs, level, RunMode::Log), Lines{});
    EXPECT_EQ(Ui.Progress.front().first, "Vertex Overlap 4 LineDefs\nPress Esc to Stop Check");
    EXPECT_EQ(Ui.Progress[1].first, "Checking Overlap 4 LineDefs Step1");
}

TEST_F(CrossReferences, LineDefsAlongOneStraightLineOverlapWhenTheyShareMoreThanAPoint)
{
    LevelBuilder builder = Room();
    builder.Side(0).Side(0).Side(0).Side(0).Side(0);
    builder.Vertex(-64, 0).Vertex(64, 0).Line(4, 5, 4);       // 4 covers half the south wall, 3
    builder.Vertex(192, 0).Line(3, 6, 5);                     // 5 only touches 3 at its end
    builder.Vertex(0, 1).Vertex(64, 1).Line(7, 8, 6);         // 6 is beside 3, not on its line
    builder.Vertex(200, 200).Vertex(230, 220).Line(9, 10, 7); // 7 and 8 slant the same way
    builder.Vertex(215, 210).Vertex(245, 230).Line(11, 12, 8);
    map::LevelData level = builder.Build();
    EXPECT_EQ(RunStep(CheckCollinearOverlaps, level, RunMode::Log),
              (Lines{"Li 00003 LineDef 3 and 4 overlap", "Li 00007 LineDef 7 and 8 overlap"}));
}

TEST_F(CrossReferences, FlagsThatDisagreeWithTheSidesAreAskedAboutOncePerFault)
{
    LevelBuilder builder = Room();
    builder.Side(0).Side(0).Line(0, 2, 4, 5).Line(1, 3, 4, 5);
    builder.Level().LineDefs[0].Flags = 0;
    builder.Level().LineDefs[2].Flags = 0;
    builder.Level().LineDefs[1].Flags |= map::FlagTwoSided;
    builder.Level().LineDefs[4].Flags = 0;
    builder.Level().LineDefs[5].Flags = 0;
    map::LevelData level = builder.Build();
    // Listed without the closing questions; the first fault's question is not its last line.
    const Lines all = {"Some LineDefs have only 1 side (starting with 0)",
                       "but the Impassible bit is not set. Set the 'Im' flag?",
                       "(Normally one-sided LineDefs are set impassable)",
                       "(Although not required, IM lines draw brighter in Kelvar)",
                       "Some LineDefs have only 1 side (starting with 1)",
                       "But their 2 Sided bit is set.",
                       "Some LineDefs have 2 sides (starting with 4)",
                       "But their 2 Sided bit is not set."};
    EXPECT_EQ(RunStep(CheckInvalidFlags, level, RunMode::Log), all);

    // Yes to the first and last questions, no to the second.
    Ui.Answer(1).Answer(0).Answer(1);
    EXPECT_EQ(RunStep(CheckInvalidFlags, level, RunMode::Prompt), Lines{});
    EXPECT_EQ(Ui.Titles(), (Lines{"LineDef Flags", "LineDef Flags", "LineDef Flags"}));
    EXPECT_EQ(level.LineDefs[0].Flags, map::FlagImpassable);
    EXPECT_EQ(level.LineDefs[2].Flags, map::FlagImpassable);
    EXPECT_NE(level.LineDefs[1].Flags & map::FlagTwoSided, 0);
    EXPECT_EQ(level.LineDefs[4].Flags, map::FlagTwoSided);
    EXPECT_EQ(level.LineDefs[5].Flags, map::FlagTwoSided);

    EXPECT_EQ(RunStep(CheckInvalidFlags, level, RunMode::LogAndFix), (Lines{all[4], all[5]}));
    EXPECT_EQ(RunStep(CheckInvalidFlags, level, RunMode::Log), Lines{});
}

TEST_F(CrossReferences, VertexNumbersOutOfRangeAreSetTo0AndUnusedVertexesDeleted)
{
    LevelBuilder builder = Room();
    builder.Vertex(500, 500).Side(0).Line(0, 99, 4);
    map::LevelData level = builder.Build();
    const Lines found = {"Li 00004 LineDef 4 Vertex out of range", "Continue sets to 0",
                         "1 Vertexes are not used"};
    EXPECT_EQ(RunStep(CheckUnusedVertexes, level, RunMode::Log), found);
    EXPECT_EQ(RunStep(CheckUnusedVertexes, level, RunMode::LogAndFix), found);
    EXPECT_EQ(level.LineDefs[4].EndVertex, 0u);
    EXPECT_EQ(level.Vertexes, Room().Build().Vertexes);
    EXPECT_EQ(RunStep(CheckUnusedVertexes, level, RunMode::Log), Lines{});
}

TEST_F(CrossReferences, SideDefNumbersAreRepairedSharedSideDefsReportedAndUnusedOnesDeleted)
{
    // SideDef 4 is unused; LineDef 4 lacks its front, 5 names SideDef 77, 7 shares 5 with 6.
    LevelBuilder builder = Room();
    builder.Side(0, "SPARE").Side(0, "SHARED");
    builder.Line(0, 2, map::NoSideDef).Line(1, 3, 77).Line(0, 2, 5).Line(1, 3, 5);
    map::LevelData level = builder.Build();
    const Lines unused = {"1 SideDefs are not used", "Delete unused SideDefs?",
                          "(can take some time if many)"};
    EXPECT_EQ(RunStep(CheckUnusedSideDefs, level, RunMode::Log),
              Joined({{"Li 00004 LineDef 4 missing side 1", "Continue sets to 0",
                       "Li 00005 LineDef 5 SideDef out of range", "Continue sets to 0",
                       "Li 00007 LineDef 7 SideDef 5 duplicate"},
                      unused}));
    // Set to 0, the two LineDefs share SideDef 0 with LineDef 0.
    EXPECT_EQ(RunStep(CheckUnusedSideDefs, level, RunMode::LogAndFix),
              Joined({{"Li 00004 LineDef 4 missing side 1", "Continue sets to 0",
                       "Li 00004 LineDef 4 SideDef 0 duplicate",
                       "Li 00005 LineDef 5 SideDef out of range", "Continue sets to 0",
                       "Li 00005 LineDef 5 SideDef 0 duplicate",
                       "Li 00007 LineDef 7 SideDef 5 duplicate"},
                      unused}));
    ASSERT_EQ(level.SideDefs.Count(), 5);
    EXPECT_EQ(level.SideDefs[4].NormalTexture, map::TextureName::From("SHARED"));
    EXPECT_EQ(level.LineDefs[6].SideDef1, 4u);
    EXPECT_EQ(level.LineDefs[7].SideDef1, 4u);

    CheckSettings shared;
    shared.DuplicateSideDefs = false;
    EXPECT_EQ(RunStep(CheckUnusedSideDefs, level, RunMode::Log, shared), Lines{});
}

TEST_F(CrossReferences, SectorNumbersOutOfRangeAreReportedAndUnusedSectorsDeleted)
{
    LevelBuilder builder = Room();
    builder.Sector(8, 16).Side(2).Line(0, 2, 4); // Sector 2 is one past the last
    map::LevelData level = builder.Build();
    const Lines found = {"Li 00004 LineDef 4 Sector out of range", "1 Sectors are not used"};
    EXPECT_EQ(RunStep(CheckUnusedSectors, level, RunMode::Log), found);
    EXPECT_EQ(RunStep(CheckUnusedSectors, level, RunMode::LogAndFix), found);
    EXPECT_EQ(level.Sectors.Count(), 1);
    EXPECT_EQ(RunStep(CheckUnusedSectors, level, RunMode::Log),
              Lines{"Li 00004 LineDef 4 Sector out of range"});
}

TEST_F(CrossReferences, AFullRunRepairsWhatItCanAndASecondRunFindsNothing)
{
    // The two rooms with a Vertex doubling Vertex 0, a LineDef of no length, a passable wall,
    // and an unused SideDef and Sector.
    LevelBuilder builder = testkit::TwoRoomsBuilder();
    builder.Vertex(0, 0).Side(0).Line(2, 2, 8).Sector(5, 50).Side(2, "SPARE");
    builder.Level().LineDefs[0].Flags = 0;
    map::LevelData level = builder.Build();
    const CheckSettings settings;
    CheckRun fix(level, settings, RunMode::LogAndFix);
    EXPECT_TRUE(CheckCrossReferences(fix));
    EXPECT_GE(fix.ErrorCount, 5);
    EXPECT_EQ(RunStep(CheckCrossReferences, level, RunMode::Log), Lines{});
    EXPECT_EQ(RunStep(CheckSectorsClosed, level, RunMode::Log), Lines{});
    EXPECT_EQ(level.LineDefs.Count(), 7);
    EXPECT_EQ(level.Sectors.Count(), 2);
}

TEST_F(CrossReferences, CancelOnAPromptStopsTheRemainingSteps)
{
    map::LevelData level = Room().Vertex(0, 0).Vertex(900, 900).Build();
    const CheckSettings settings;
    CheckRun run(level, settings, RunMode::Prompt);
    Ui.Answer(0);
    EXPECT_FALSE(CheckCrossReferences(run));
    EXPECT_EQ(Ui.Messages.size(), 1u) << "the unused Vertexes are not asked about";
    EXPECT_EQ(level.Vertexes.Count(), 6);
}

TEST_F(CrossReferences, OverlapCommandsSeparateWhatTheMarkedObjectsShare)
{
    map::LevelData level = Room().Vertex(0, 0).Vertex(0, 0).Side(0).Line(1, 0, 4).Build();
    const CheckSettings settings;
    CheckRun run(level, settings, RunMode::Prompt);
    EXPECT_TRUE(CheckVertexOverlap(run, testkit::Marked({})));
    EXPECT_TRUE(CheckVertexOverlap(run, testkit::Marked({4})));
    EXPECT_TRUE(CheckVertexOverlap(run, testkit::Marked({1, 2})));
    Ui.Answer(1);
    EXPECT_TRUE(CheckVertexOverlap(run, testkit::Marked({5, 0, 1, 4})));
    EXPECT_TRUE(CheckVertexOverlap(run, testkit::Marked({5, 0, 1, 4})));
    EXPECT_EQ(MessageTexts(Ui),
              (Lines{"In Vertex Mode, Select Vertexes area to include\nin the "
                     "area to check (use Drag Select tool)",
                     "You need to select at least 2 Vertexes", "No vertices Overlap",
                     "3 vertices overlap\nSeparate the Vertices?", "No vertices Overlap"}));
    EXPECT_EQ(level.Vertexes[0], (map::Vertex{0, 0}));
    EXPECT_EQ(level.Vertexes[4], (map::Vertex{8, 8}));
    EXPECT_EQ(level.Vertexes[5], (map::Vertex{16, 16}));

    Ui.Clear();
    EXPECT_TRUE(CheckLineOverlap(run, testkit::Marked({})));
    EXPECT_TRUE(CheckLineOverlap(run, testkit::Marked({0, 1})));
    Ui.Answer(1);
    EXPECT_TRUE(CheckLineOverlap(run, testkit::Marked({4, 0, 1})));
    EXPECT_TRUE(CheckLineOverlap(run, testkit::Marked({4, 0, 1})));
    EXPECT_EQ(MessageTexts(Ui), (Lines{"In LineDef Mode, Select LineDef area to include\nin the "
                                       "area to check (use Drag Select tool)",
                                       "No LineDefs Share Vertexes",
                                       "2 LineDefs share the same Vertexes\nSeparate the LineDefs?",
                                       "No LineDefs Share Vertexes"}));
    // LineDef 4 ran down the west wall: it moves 8 units east, onto Vertexes of its own.
    const map::LineDef& moved = level.LineDefs[4];
    EXPECT_EQ(level.Vertexes[moved.StartVertex], (map::Vertex{8, 128}));
    EXPECT_EQ(level.Vertexes[moved.EndVertex], (map::Vertex{8, 0}));
    EXPECT_EQ(level.LineDefs[0].StartVertex, 0u);
}

// A grid of `size` by `size` square Sectors 64 units wide: 2 * size * (size + 1) LineDefs,
// two-sided inside, one-sided round the edge with their fronts facing in.
map::LevelData Grid(int size)
{
    LevelBuilder builder;
    const auto vertex = [&](int x, int y)
    { return static_cast<std::uint32_t>(y * (size + 1) + x); };
    const auto cell = [&](int x, int y) { return static_cast<std::uint32_t>(y * size + x); };
    for (int y = 0; y <= size; ++y)
    {
        for (int x = 0; x <= size; ++x)
        {
            builder.Vertex(x * 64, y * 64);
        }
    }
    for (int i = 0; i < size * size; ++i)
    {
        builder.Sector();
    }
    auto sides = static_cast<std::uint32_t>(0);
    // A LineDef from `a` to `b` with `right` (and `left`) the cells on its sides.
    const auto line = [&](std::uint32_t a, std::uint32_t b, std::uint32_t right,
                          std::optional<std::uint32_t> left)
    {
        builder.Side(right);
        const std::uint32_t front = sides++;
        std::uint32_t back = map::NoSideDef;
        if (left)
        {
            builder.Side(*left, "-");
            back = sides++;
        }
        builder.Line(a, b, front, back);
    };
    for (int y = 0; y <= size; ++y)
    {
        for (int x = 0; x < size; ++x)
        {
            if (y == 0)
            {
                line(vertex(x + 1, 0), vertex(x, 0), cell(x, 0), std::nullopt);
            }
            else
            {
                line(vertex(x, y), vertex(x + 1, y), cell(x, y - 1),
                     y < size ? std::optional(cell(x, y)) : std::nullopt);
            }
        }
    }
    for (int x = 0; x <= size; ++x)
    {
        for (int y = 0; y < size; ++y)
        {
            if (x == size)
            {
                line(vertex(x, y + 1), vertex(x, y), cell(x - 1, y), std::nullopt);
            }
            else
            {
                line(vertex(x, y), vertex(x, y + 1), cell(x, y),
                     x > 0 ? std::optional(cell(x - 1, y)) : std::nullopt);
            }
        }
    }
    return builder.Build();
}

TEST_F(CrossReferences, AGridOfSixtyThousandLineDefsIsCheckedWithoutFindings)
{
    map::LevelData level = Grid(173);
    ASSERT_EQ(level.LineDefs.Count(), 60204);
    EXPECT_EQ(RunStep(CheckCrossReferences, level, RunMode::Log), Lines{});
    EXPECT_EQ(RunStep(CheckSectorsClosed, level, RunMode::Log), Lines{});
}

} // namespace
} // namespace kelvar::check
