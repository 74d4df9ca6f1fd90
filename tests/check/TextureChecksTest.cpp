// Tests of the texture checks: Sector heights, missing wall textures with the look-ahead at
// moving Sectors, unknown names and offsets, and textures no wall needs.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "check/TextureChecks.h"

#include "gfx/TextureCatalogue.h"
#include "gfx/TextureLumps.h"
#include "map/Undo.h"
#include "tests/check/CatalogueFixture.h"
#include "tests/testkit/LevelBuilder.h"
#include "wad/WadFormat.h"
#include "wad/WadState.h"

#include <algorithm>
#include <utility>

namespace kelvar::check
{
namespace
{

using map::TextureName;

class TextureChecks : public CatalogueFixture
{
protected:
    // The texts a check put in the list, in order; with LogAndFix every repair is taken.
    template <class Check>
    std::vector<std::string> Found(map::LevelData& level, Check check, RunMode mode = RunMode::Log)
    {
        CheckRun run(level, Settings, mode);
        EXPECT_TRUE(check(run));
        return FoundTexts(run);
    }

    template <class Check> std::vector<std::string> Fixed(map::LevelData& level, Check check)
    {
        return Found(level, check, RunMode::LogAndFix);
    }

    CheckSettings Settings;
};

const auto Heights = [](CheckRun& run) { return CheckSectorHeights(run, false); };
const auto HeightsFix = [](CheckRun& run) { return CheckSectorHeights(run, true); };
const auto Names = [](CheckRun& run) { return CheckTextureNames(run, false); };
const auto Extra = [](CheckRun& run) { return CheckExtraTextures(run, false); };

// Two rooms sharing LineDef 4 (front SideDef 6 in the east room, Sector 1, ceiling 96; back
// SideDef 7 in the west room, Sector 0, ceiling 128), with every wall the heights need
// textured: the west side's upper texture.
map::LevelData CleanTwoRooms()
{
    map::LevelData level = testkit::TwoRooms();
    level.SideDefs[6].NormalTexture = map::NoTexture;
    level.SideDefs[7].NormalTexture = map::NoTexture;
    level.SideDefs[7].UpperTexture = TextureName::From("STARTAN3");
    return level;
}

bool Has(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

TEST_F(TextureChecks, ACeilingBelowItsFloorIsReportedAndRaisedToIt)
{
    map::LevelData level = CleanTwoRooms();
    EXPECT_TRUE(Found(level, Heights).empty()) << "the clean level has nothing to report";

    level.Sectors[1].FloorHeight = 100;
    level.Sectors[1].CeilingHeight = 96;
    level.SideDefs[7].LowerTexture = TextureName::From("STARTAN3");
    EXPECT_EQ(Found(level, Heights),
              (std::vector<std::string>{"Sector 1 has its ceiling lower than its floor.",
                                        "if you cannot go there",
                                        "The textures will never be displayed"}));
    EXPECT_EQ(Fixed(level, Heights),
              (std::vector<std::string>{
                  "Sector 1 has its ceiling lower than its floor.", "if you cannot go there",
                  "The textures will never be displayed", "Fixed Ceiling Height Sector 1"}));
    EXPECT_EQ(level.Sectors[1].CeilingHeight, 100);
    EXPECT_EQ(level.Sectors[1].FloorHeight, 100);
    EXPECT_TRUE(Found(level, Heights).empty());
}

TEST_F(TextureChecks, AOneSidedWallWithoutANormalTextureGetsMarble)
{
    map::LevelData level = CleanTwoRooms();
    level.SideDefs[2].NormalTexture = map::NoTexture;
    const std::vector<std::string> missing = {"Linedef 2: sideDef1 2 missing normal texture"};
    EXPECT_EQ(Found(level, Heights), missing);
    Settings.NormalTexture = false;
    EXPECT_TRUE(Found(level, Heights).empty()) << "the option gates the test";
    Settings.NormalTexture = true;

    // The automatic fix lists the repair alone.
    map::LevelData automatic = level;
    CheckRun run(automatic, Settings, RunMode::Prompt);
    EXPECT_TRUE(CheckSectorHeights(run, true));
    ASSERT_EQ(run.Findings.size(), 1u);
    EXPECT_EQ(run.Findings[0], (Finding{map::KindLineDef, 2, "Linedef 2 Fixed sideDef1 2"}));
    EXPECT_EQ(automatic.SideDefs[2].NormalTexture, TextureName::From("MARBLE1"));
    EXPECT_TRUE(Ui.Messages.empty()) << "the automatic fix asks nothing";
    EXPECT_TRUE(Found(automatic, Heights).empty());
}

TEST_F(TextureChecks, TwoSidedWallsNeedUpperAndLowerTexturesWhereHeightsDiffer)
{
    map::LevelData level = testkit::TwoRooms();
    level.Sectors[1].FloorHeight = 16; // the west side sees the east room's step up
    level.Sectors[0].FloorHeight = 0;
    EXPECT_EQ(Found(level, Heights),
              (std::vector<std::string>{"Linedef 4: sideDef2 7 has no upper texture",
                                        "2-sided LineDef requires Texture.",
                                        "Linedef 4: sideDef2 7 has no lower texture",
                                        "2-sided LineDef requires Texture."}));

    // The mirror rules: the east side sees the west room's higher floor and lower ceiling.
    map::LevelData mirror = testkit::TwoRooms();
    mirror.Sectors[0].FloorHeight = 8;
    mirror.Sectors[0].CeilingHeight = 64;
    const std::vector<std::string> found = Found(mirror, Heights);
    EXPECT_TRUE(Has(found, "Linedef 4: sideDef1 6 has no upper texture"));
    EXPECT_TRUE(Has(found, "Linedef 4: sideDef1 6 has no lower texture"));
    EXPECT_EQ(found.size(), 4u);

    Settings.UpperTexture = false;
    EXPECT_EQ(Found(level, Heights).size(), 2u) << "only the lower texture is tested";
    Settings.LowerTexture = false;
    EXPECT_TRUE(Found(level, Heights).empty());
    Settings = {};

    const std::vector<std::string> fixed = Fixed(level, Heights);
    EXPECT_TRUE(Has(fixed, "LineDef 4 Fixed Upper sideDef2 7"));
    EXPECT_TRUE(Has(fixed, "LineDef 4 Fixed Lower sideDef2 7"));
    EXPECT_EQ(level.SideDefs[7].UpperTexture, TextureName::From("MARBGRAY"));
    EXPECT_EQ(level.SideDefs[7].LowerTexture, TextureName::From("MARBGRAY"));
    EXPECT_TRUE(Found(level, Heights).empty());
}

TEST_F(TextureChecks, TwoSkyCeilingsWaiveTheUpperTextureOnly)
{
    map::LevelData level = testkit::TwoRooms();
    level.Sectors[0].CeilingTexture = TextureName::From("F_SKY1");
    level.Sectors[1].CeilingTexture = TextureName::From("F_SKY");
    EXPECT_TRUE(Found(level, Heights).empty());

    level.Sectors[1].FloorHeight = 16;
    EXPECT_EQ(Found(level, Heights).front(), "Linedef 4: sideDef2 7 has no lower texture");

    level.Sectors[1].CeilingTexture = TextureName::From("CEIL3_5");
    EXPECT_TRUE(Has(Found(level, Heights), "Linedef 4: sideDef2 7 has no upper texture"))
        << "one sky is not enough";
}

// CleanTwoRooms with LineDef 0 a lift (type 88, lower, wait, raise) tagged to the east room.
map::LevelData LiftLevel()
{
    map::LevelData level = CleanTwoRooms();
    level.LineDefs[0].Type = 88;
    level.LineDefs[0].Tag = 5;
    level.Sectors[1].Tag = 5;
    return level;
}

TEST_F(TextureChecks, AWallThatShowsOnlyOnceALiftHasLoweredIsFound)
{
    map::LevelData level = LiftLevel();
    EXPECT_TRUE(
        Found(level, [](CheckRun& run) { return CheckWallTextures(run, false, {}, "x"); }).empty())
        << "at rest the floors are level";
    const map::LevelData before = level;

    EXPECT_EQ(Found(level, Heights),
              (std::vector<std::string>{"Linedef 4: sideDef1 6 has no lower texture",
                                        "Lower Floor LineDef requires Texture."}));
    EXPECT_EQ(level, before) << "the moved heights never reach the level";
    const auto& progress = Ui.Progress;
    EXPECT_TRUE(
        std::any_of(progress.begin(), progress.end(),
                    [](const auto& shown)
                    { return shown.first == "Checking Lower Floor Wall Textures (esc Cancel)"; }));

    // A wall already reported at rest is not reported again when the lift moves.
    level.Sectors[1].FloorHeight = 16;
    const std::vector<std::string> found = Found(level, Heights);
    EXPECT_EQ(std::count(found.begin(), found.end(), "Linedef 4: sideDef2 7 has no lower texture"),
              1);
    EXPECT_EQ(found.size(), 2u);

    // The run over a list tests only the LineDefs that touch it.
    level.Sectors[1].FloorHeight = 0;
    level.Sectors[1].CeilingHeight = 160;
    EXPECT_EQ(Found(level, [](CheckRun& run)
                    { return CheckWallTextures(run, false, {1}, "Raise Ceiling"); })
                  .at(1),
              "Raise Ceiling LineDef requires Texture.");

    level = LiftLevel();
    EXPECT_FALSE(Fixed(level, HeightsFix).empty());
    EXPECT_EQ(level.SideDefs[6].LowerTexture, TextureName::From("MARBGRAY"));
    EXPECT_EQ(level.Sectors, before.Sectors);
    EXPECT_TRUE(Found(level, Heights).empty());
}

TEST_F(TextureChecks, CeilingsThatMoveAreTestedRaisedAndLowered)
{
    // With both ceilings at 128, raising the east room's (LineDef 0, type 40) or lowering the
    // west room's (LineDef 1, type 44) opens the same wall; the runs go lower before raise.
    map::LevelData level = CleanTwoRooms();
    level.Sectors[1].CeilingHeight = 128;
    level.SideDefs[7].UpperTexture = map::NoTexture;
    level.LineDefs[0].Type = 40;
    level.LineDefs[0].Tag = 1;
    level.Sectors[1].Tag = 1;
    const std::string missing = "Linedef 4: sideDef1 6 has no upper texture";
    EXPECT_EQ(Found(level, Heights),
              (std::vector<std::string>{missing, "Raise Ceiling LineDef requires Texture."}));
    level.LineDefs[1].Type = 44;
    level.LineDefs[1].Tag = 2;
    level.Sectors[0].Tag = 2;
    EXPECT_EQ(Found(level, Heights),
              (std::vector<std::string>{missing, "Lower Ceiling LineDef requires Texture."}));
}

TEST_F(TextureChecks, EscapeInAMovedRunLeavesTheSectorsAsTheyWere)
{
    // Enough LineDefs that Escape, polled every few hundred objects, lands in each run.
    testkit::LevelBuilder builder = testkit::TwoRoomsBuilder();
    for (int i = 0; i < 600; ++i)
    {
        builder.Side(0).Line(0, 1, static_cast<std::uint32_t>(builder.Level().SideDefs.size() - 1));
    }
    map::LevelData level = builder.Build();
    level.LineDefs[0].Type = 88;
    level.LineDefs[0].Tag = 5;
    level.Sectors[1].Tag = 5;
    const map::LevelData before = level;
    bool stoppedInMovedRun = false;
    for (int poll = 1; poll < 40 && !stoppedInMovedRun; ++poll)
    {
        platform::RecordingUi ui;
        platform::ScopedUi guard(ui);
        ui.EscapeFromPoll(poll);
        CheckRun run(level, Settings, RunMode::Log);
        const bool finished = CheckSectorHeights(run, false);
        ASSERT_FALSE(finished && ui.EscapePolls >= poll);
        stoppedInMovedRun = !finished && ui.Progress.back().first ==
                                             "Checking Lower Floor Wall Textures (esc Cancel)";
        EXPECT_EQ(level, before);
    }
    EXPECT_TRUE(stoppedInMovedRun);
}

TEST_F(TextureChecks, AMultiPatchNormalTextureOnATwoSidedLineIsAWarningOnce)
{
    map::LevelData level = LiftLevel();
    level.SideDefs[6].NormalTexture = TextureName::From("MIDGRATE");
    level.SideDefs[6].LowerTexture = TextureName::From("STARTAN3");
    const std::vector<std::string> warning = {"Linedef 4, texture MIDGRATE has 3 patches!"};
    EXPECT_EQ(Found(level, Heights), warning) << "once, not again in the lift's run";
    EXPECT_TRUE(Found(level, HeightsFix).empty()) << "the automatic fix has nothing to do";
    Settings.MultiPatchTextures = false;
    EXPECT_TRUE(Found(level, Heights).empty());
}

TEST_F(TextureChecks, APromptPicksTheTextureOrStops)
{
    map::LevelData level = testkit::TwoRooms();
    CheckRun run(level, Settings, RunMode::Prompt);
    std::vector<std::pair<int, std::uint32_t>> shown;
    run.ShowObject = [&](int kind, std::uint32_t index) { shown.emplace_back(kind, index); };
    Ui.Answer(2).AnswerBrowse("STONE2");
    EXPECT_TRUE(CheckSectorHeights(run, false));
    EXPECT_EQ(level.SideDefs[7].UpperTexture, TextureName::From("STONE2"));
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Title, "Verification Failed on (LineDef  # 4)");
    EXPECT_EQ(Ui.Last().ButtonTexts,
              (std::vector<std::string>{"Continue", "Cancel", "Pick Texture"}));
    ASSERT_EQ(Ui.BrowseRequests.size(), 1u);
    const platform::BrowseRequest& request = Ui.BrowseRequests[0];
    EXPECT_EQ(request.Caption, "Upper Wall Texture");
    EXPECT_EQ(request.Names,
              (std::vector<std::string>{"STARTAN3", "MARBLE1", "MARBGRAY", "STONE2", "MIDGRATE"}));
    EXPECT_EQ(request.Current, 2) << "the browser opens on the default repair";

    // A browser closed without a pick leaves the wall; Cancel shows the object and stops.
    level.SideDefs[7].UpperTexture = map::NoTexture;
    Ui.Answer(2).AnswerBrowse(std::nullopt);
    EXPECT_TRUE(CheckSectorHeights(run, false));
    EXPECT_TRUE(level.SideDefs[7].UpperTexture.IsNone());
    Ui.Answer(0);
    EXPECT_FALSE(CheckSectorHeights(run, false));
    EXPECT_EQ(shown, (std::vector<std::pair<int, std::uint32_t>>{{map::KindLineDef, 4}}));
}

TEST_F(TextureChecks, EachRepairOfTheEditorsLevelIsOneUndoStep)
{
    map::Map().Level = testkit::TwoRooms();
    map::Map().Level.Sectors[1].FloorHeight = 16;
    const map::LevelData before = map::Map().Level;
    CheckRun run(map::Map().Level, Settings, RunMode::LogAndFix);
    ASSERT_TRUE(CheckSectorHeights(run, false));
    EXPECT_NE(map::Map().Level.ChangeCount, before.ChangeCount);
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level.SideDefs[7].LowerTexture, map::NoTexture);
    EXPECT_EQ(map::Map().Level.SideDefs[7].UpperTexture, TextureName::From("MARBGRAY"));
    EXPECT_EQ(map::UndoStep(), 1);
    EXPECT_EQ(map::Map().Level.SideDefs, before.SideDefs);
    EXPECT_EQ(map::Map().Level.Sectors, before.Sectors);
}

// CleanTwoRooms with a bad name on every surface and special names that are never looked up.
map::LevelData BadNames()
{
    map::LevelData level = CleanTwoRooms();
    level.Sectors[0].CeilingTexture = TextureName::From("NOCEIL");
    level.Sectors[1].FloorTexture = TextureName::From("NOFLOOR");
    level.SideDefs[2].UpperTexture = TextureName::From("NOUPPER");
    level.SideDefs[2].LowerTexture = TextureName::From("NOLOWER");
    level.SideDefs[2].NormalTexture = TextureName::From("NONORMAL");
    level.SideDefs[3].UpperTexture = TextureName::From("$FOG");
    level.SideDefs[3].LowerTexture = TextureName::From("#400000");
    return level;
}

TEST_F(TextureChecks, UnknownFlatsAndWallTexturesAreFoundAndReplaced)
{
    map::LevelData level = BadNames();
    EXPECT_EQ(Found(level, Names),
              (std::vector<std::string>{"Sector 0, ceiling", "texture NOCEIL not found",
                                        "Sector 1, floor", "texture NOFLOOR not found",
                                        "SideDef 2, upper", "texture NOUPPER not found",
                                        "SideDef 2, lower", "texture NOLOWER not found",
                                        "SideDef 2, normal", "texture NONORMAL not found"}));
    Settings.UpperTexture = false;
    Settings.NormalTexture = false;
    EXPECT_EQ(Found(level, Names).size(), 6u) << "wall textures are checked per the options";
    Settings = {};

    EXPECT_EQ(Fixed(level, Names),
              (std::vector<std::string>{
                  "Sector 0, ceiling", "texture NOCEIL not found", "Fixed Ceiling Sector 0",
                  "Sector 1, floor", "texture NOFLOOR not found", "Fixed Floor Sector 1",
                  "SideDef 2, upper", "texture NOUPPER not found", "Fixed Upper Sidedef 2",
                  "SideDef 2, lower", "texture NOLOWER not found", "Fixed Lower Sidedef 2",
                  "SideDef 2, normal", "texture NONORMAL not found", "Fixed Normal Sidedef 2"}));
    EXPECT_EQ(level.Sectors[0].CeilingTexture, TextureName::From("FLAT4"));
    EXPECT_EQ(level.Sectors[1].FloorTexture, TextureName::From("FLOOR4_8"));
    EXPECT_EQ(level.SideDefs[2].UpperTexture, TextureName::From("MARBGRAY"));
    EXPECT_EQ(level.SideDefs[2].LowerTexture, TextureName::From("MARBGRAY"));
    EXPECT_EQ(level.SideDefs[2].NormalTexture, TextureName::From("MARBLE1"));
    EXPECT_TRUE(Found(level, Names).empty());

    // In a prompt the user picks the flat from the flat list.
    level.Sectors[1].CeilingTexture = TextureName::From("NOCEIL");
    CheckRun run(level, Settings, RunMode::Prompt);
    Ui.Answer(2).AnswerBrowse("NUKAGE1");
    EXPECT_TRUE(CheckTextureNames(run, false));
    EXPECT_EQ(level.Sectors[1].CeilingTexture, TextureName::From("NUKAGE1"));
    ASSERT_EQ(Ui.BrowseRequests.size(), 1u);
    EXPECT_EQ(Ui.BrowseRequests[0].Caption, "Ceiling Flat");
    EXPECT_EQ(Ui.BrowseRequests[0].Names.size(), 5u);
}

TEST_F(TextureChecks, OffsetsBeyondTheLimitsAreFoundWithTheirOptionsAndBroughtIn)
{
    map::LevelData level = CleanTwoRooms();
    level.SideDefs[3].XOffset = 2000;
    level.SideDefs[3].YOffset = -1500;
    EXPECT_TRUE(Found(level, Names).empty()) << "both options are off by default";
    Settings.XOffsets = true;
    Settings.YOffsets = true;
    EXPECT_EQ(Found(level, Names),
              (std::vector<std::string>{"SideDef 3, Xoffset 2000 (maxoffset set in F5 options)",
                                        "X=1023, Continue ignores",
                                        "SideDef 3, Yoffset -1500 (maxoffset set in F5 options)",
                                        "Continue ignores"}));

    map::LevelData prompted = level;
    CheckRun run(prompted, Settings, RunMode::Prompt);
    Ui.Answer(2).AnswerNumber(5).Answer(1);
    EXPECT_TRUE(CheckTextureNames(run, false));
    EXPECT_EQ(prompted.SideDefs[3].XOffset, 5);
    EXPECT_EQ(prompted.SideDefs[3].YOffset, -1500) << "Continue ignores";
    ASSERT_EQ(Ui.NumberPrompts.size(), 1u);
    EXPECT_EQ(Ui.NumberPrompts[0].Caption, "Texture X offset");
    EXPECT_EQ(Ui.NumberPrompts[0].Low, -1023);
    EXPECT_EQ(Ui.NumberPrompts[0].High, 1023);

    const std::vector<std::string> fixed = Fixed(level, Names);
    EXPECT_TRUE(Has(fixed, "Fixed Xoffset Sidedef 3"));
    EXPECT_TRUE(Has(fixed, "Fixed Yoffset Sidedef 3"));
    EXPECT_EQ(level.SideDefs[3].XOffset, 1023);
    EXPECT_EQ(level.SideDefs[3].YOffset, -1023);
    EXPECT_TRUE(Found(level, Names).empty());
}

// CleanTwoRooms with textures on LineDef 4 that no height needs: an upper on the east side and
// lowers on both.
map::LevelData ExtraLevel()
{
    map::LevelData level = CleanTwoRooms();
    level.SideDefs[6].UpperTexture = TextureName::From("STONE2");
    level.SideDefs[6].LowerTexture = TextureName::From("STARTAN3");
    level.SideDefs[7].LowerTexture = TextureName::From("STARTAN3");
    return level;
}

TEST_F(TextureChecks, TexturesNoHeightNeedsAreFoundAndUppersRemoved)
{
    map::LevelData level = ExtraLevel();
    const std::vector<std::string> extra = {"Linedef 4: sideDef1 6 upper STONE2 not req",
                                            "Linedef 4: sideDef1 6 lower STARTAN3 not req",
                                            "Linedef 4: sideDef2 7 lower STARTAN3 not req"};
    EXPECT_EQ(Found(level, Extra), extra);

    // The automatic fixes remove the upper texture and leave the lower ones.
    EXPECT_EQ(Fixed(level, Extra),
              (std::vector<std::string>{"Linedef 4: sideDef1 6 upper STONE2 not req",
                                        "LineDef 4 Fixed Upper sideDef1 6"}));
    EXPECT_TRUE(level.SideDefs[6].UpperTexture.IsNone());
    EXPECT_EQ(level.SideDefs[7].UpperTexture, TextureName::From("STARTAN3")) << "needed";
    level.SideDefs[6].UpperTexture = TextureName::From("STONE2");
    EXPECT_EQ(Found(level, [](CheckRun& run) { return CheckExtraTextures(run, true); }),
              (std::vector<std::string>{"LineDef 4 Fixed Upper sideDef1 6"}));
    EXPECT_EQ(Found(level, Extra), std::vector<std::string>(extra.begin() + 1, extra.end()));

    // The prompt asks first whether to look at lower textures.
    level.SideDefs[6].UpperTexture = TextureName::From("STONE2");
    CheckRun run(level, Settings, RunMode::Prompt);
    Ui.Answer(0).Answer(2);
    EXPECT_TRUE(CheckExtraTextures(run, false));
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Text(),
              "Do you want to check lower textures?\nAutomatic fix ignores Lower Textures");
    EXPECT_EQ(Ui.Messages[1].ButtonTexts,
              (std::vector<std::string>{"Continue", "Cancel", "Remove Texture"}));
    EXPECT_TRUE(level.SideDefs[6].UpperTexture.IsNone());
    EXPECT_EQ(level.SideDefs[6].LowerTexture, TextureName::From("STARTAN3"));
}

TEST_F(TextureChecks, TexturesAMoveNeedsAndMapNamesAreNotExtra)
{
    // The lift's lower texture is needed once it goes down; a colormap name and a fog name
    // stand where textures do on special lines.
    map::LevelData level = LiftLevel();
    level.SideDefs[6].LowerTexture = TextureName::From("STARTAN3");
    level.SideDefs[6].UpperTexture = TextureName::From("WATERMAP");
    level.SideDefs[7].LowerTexture = TextureName::From("$FOG");
    EXPECT_TRUE(Found(level, Extra).empty());

    // Rising stairs warn that lower textures are wanted.
    level.LineDefs[1].Type = 8;
    level.LineDefs[1].Tag = 9;
    EXPECT_EQ(Found(level, Extra), (std::vector<std::string>{"Caution ! Rising stairs exist !",
                                                             "They require lower textures!"}));
}

TEST_F(TextureChecks, AQuarterMillionLineDefsAreCheckedInOnePassPerRun)
{
    // A row of 80,000 Sectors, each closed by two one-sided walls and separated from the next
    // by a two-sided LineDef, all tagged to one lift: every run looks at every LineDef.
    constexpr int Sectors = 80000;
    testkit::LevelBuilder builder;
    for (int i = 0; i <= Sectors; ++i)
    {
        builder.Vertex(i % 4096 * 8, 0).Vertex(i % 4096 * 8, 64);
    }
    for (int i = 0; i < Sectors; ++i)
    {
        const auto sector = static_cast<std::uint32_t>(i);
        const auto left = static_cast<std::uint32_t>(2 * i);
        const auto side = static_cast<std::uint32_t>(builder.Level().SideDefs.size());
        builder.Sector(i % 2 * 8, 128)
            .Side(sector)
            .Side(sector)
            .Side(sector, "-")
            .Side(sector, "-");
        builder.Line(left, left + 2, side).Line(left + 3, left + 1, side + 1);
        if (i > 0)
        {
            builder.Line(left + 1, left, side + 2, side - 1);
        }
    }
    map::LevelData level = builder.Build();
    level.LineDefs[0].Type = 88;
    level.LineDefs[0].Tag = 1;
    for (map::Sector& sector : level.Sectors)
    {
        sector.Tag = 1;
    }
    ASSERT_GT(level.LineDefs.size(), 230000u);
    EXPECT_EQ(Found(level, Heights).size(), 2u * (Sectors - 1)) << "every step's riser";
    EXPECT_EQ(Found(level, Extra).size(), 0u);
}

} // namespace
} // namespace kelvar::check
