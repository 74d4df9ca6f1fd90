// Tests of texture alignment along chains of LineDefs: the X offsets run on by each LineDef's
// length modulo the texture's width, on either side, scaled, from an initial offset; the chain
// and texture refusals; the Y offsets of scaled textures.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "map/TextureAlign.h"
#include "map/ObjectList.h"
#include "platform/test/RecordingUi.h"
#include "tests/testkit/LevelBuilder.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <string>

namespace kelvar::map
{
namespace
{

using testkit::Marked;

// A wall of three LineDefs along y = 0 from x = 0, of lengths 100, 50 and 70, running east,
// two-sided onto a second Sector behind, textures on both sides given per LineDef.
LevelData Wall(const std::vector<std::string>& textures)
{
    testkit::LevelBuilder wall;
    wall.Sector().Sector();
    for (const int x : {0, 100, 150, 220})
    {
        wall.Vertex(x, 0);
    }
    for (std::size_t i = 0; i < 3; ++i)
    {
        wall.Side(0, textures[i]).Side(1, textures[i]);
        const auto at = static_cast<std::uint32_t>(i);
        wall.Line(at, at + 1, 2 * at, 2 * at + 1);
    }
    return wall.Build();
}

// Texture sizes by name, any case, as the texture lumps would give them.
TextureSizeOf Sizes(std::map<std::string, TextureSize> known)
{
    return [known](const TextureName& name) -> std::optional<TextureSize>
    {
        std::string key = name.Text();
        for (char& c : key)
        {
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        }
        const auto found = known.find(key);
        return found == known.end() ? std::nullopt : std::optional<TextureSize>(found->second);
    };
}

std::vector<int> XOffsets(const LevelData& level, int side)
{
    std::vector<int> offsets;
    for (const LineDef& line : level.LineDefs)
    {
        offsets.push_back(level.SideDefs[line.Side(side)].XOffset);
    }
    return offsets;
}

class TextureAlignTest : public ::testing::Test
{
protected:
    void SetUp() override { Previous = platform::InstallUi(&Ui); }
    void TearDown() override { platform::InstallUi(Previous); }

    platform::RecordingUi Ui;
    platform::Ui* Previous = nullptr;
};

TEST_F(TextureAlignTest, XOffsetsRunOnAlongTheChainInAnyMarkingOrderAndEitherSide)
{
    const TextureSizeOf sizes = Sizes({{"BRICK", {64, 128, 8, 8}}});
    for (const auto& marking : {Marked({0, 1, 2}), Marked({2, 0, 1}), Marked({1, 2, 0})})
    {
        LevelData level = Wall({"BRICK", "BRICK", "BRICK"});
        ASSERT_EQ(AlignTexturesX(level, marking, {}, sizes), AlignResult::Done);
        // 0; 100 % 64 = 36; (36 + 50) % 64 = 22.
        EXPECT_EQ(XOffsets(level, 1), (std::vector<int>{0, 36, 22}));
        EXPECT_EQ(XOffsets(level, 2), (std::vector<int>{0, 0, 0})) << "side 2 untouched";
    }
    // The back walks the wall from its east end: 0; 70 % 64 = 6; (6 + 50) % 64 = 56.
    LevelData level = Wall({"BRICK", "BRICK", "BRICK"});
    XAlignOptions back;
    back.Side = 2;
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), back, sizes), AlignResult::Done);
    EXPECT_EQ(XOffsets(level, 2), (std::vector<int>{56, 6, 0}));
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TextureAlignTest, AnInitialOffsetAndAScaledTextureShiftTheRun)
{
    LevelData level = Wall({"BRICK", "BRICK", "BRICK"});
    XAlignOptions from10;
    from10.InitialOffset = 10;
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), from10, Sizes({{"BRICK", {64, 64, 8, 8}}})),
              AlignResult::Done);
    EXPECT_EQ(XOffsets(level, 1), (std::vector<int>{10, 46, 32}));

    // Scale 16 eighths: the stored offset is twice the running one (0, 36, 22 doubled).
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), {}, Sizes({{"BRICK", {64, 64, 16, 8}}})),
              AlignResult::Done);
    EXPECT_EQ(XOffsets(level, 1), (std::vector<int>{0, 72, 44}));
}

TEST_F(TextureAlignTest, TheMeasuredTextureIsTheNormalThenTheUpperThenTheLower)
{
    LevelData level = Wall({"BRICK", "-", "-"});
    level.SideDefs[2].UpperTexture = TextureName::From("WIDE");
    level.SideDefs[4].LowerTexture = TextureName::From("WIDE");
    XAlignOptions any;
    any.SameTexture = false;
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), any,
                             Sizes({{"BRICK", {64, 64, 8, 8}}, {"WIDE", {128, 64, 8, 8}}})),
              AlignResult::Done);
    // 0; 100 % 64 = 36 (BRICK's width) on the upper; (36 + 50) % 128 = 86 (the upper WIDE's).
    EXPECT_EQ(XOffsets(level, 1), (std::vector<int>{0, 36, 86}));
}

TEST_F(TextureAlignTest, ADifferentTextureAsksAndNoStopsTheWalk)
{
    LevelData level = Wall({"BRICK", "BRICK", "stone"});
    level.SideDefs[4].XOffset = 99;
    Ui.Answer(0);
    EXPECT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), {},
                             Sizes({{"BRICK", {64, 64, 8, 8}}, {"STONE", {64, 64, 8, 8}}})),
              AlignResult::Refused);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Title, "Texture Align");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (std::vector<std::string>{"DIFFERENT TEXTURES", "SideDef 4, Texture Different",
                                        "Texture BRICK followed by stone", "Texture stone used"}));
    EXPECT_EQ(level.SideDefs[4].XOffset, 99) << "the walk stopped before it";
    EXPECT_EQ(level.SideDefs[2].XOffset, 36) << "and kept what it did before the stop";

    // The same name in another case is the same texture: no question.
    Ui.Messages.clear();
    level = Wall({"BRICK", "brick", "Brick"});
    EXPECT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), {}, Sizes({{"BRICK", {64, 64, 8, 8}}})),
              AlignResult::Done);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TextureAlignTest, AnUnknownTextureIsToldUnlessAnyTextureGoesAndItsSideStartsAtZero)
{
    LevelData level = Wall({"BRICK", "NOSUCH", "BRICK"});
    XAlignOptions any;
    any.SameTexture = false;
    level.SideDefs[2].XOffset = 5;
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), any, Sizes({{"BRICK", {64, 64, 8, 8}}})),
              AlignResult::Done);
    EXPECT_EQ(XOffsets(level, 1), (std::vector<int>{0, 0, 0})) << "no width: the run restarts";
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Messages[0].Lines[0], "Texture NOSUCH not found?");

    Ui.Messages.clear();
    any.AnyTexture = true;
    ASSERT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), any, Sizes({{"BRICK", {64, 64, 8, 8}}})),
              AlignResult::Done);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(TextureAlignTest, LineDefsThatMakeNoChainAreRefusedWithTheAdvice)
{
    LevelData level = Wall({"BRICK", "BRICK", "BRICK"});
    const LevelData before = level;
    std::swap(level.LineDefs[1].StartVertex, level.LineDefs[1].EndVertex); // against the others
    EXPECT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), {}, Sizes({})), AlignResult::Refused);
    EXPECT_EQ(AlignTexturesX(level, Marked({0, 2}), {}, Sizes({})), AlignResult::Refused)
        << "a gap between them";
    ASSERT_EQ(Ui.Messages.size(), 2u);
    EXPECT_EQ(Ui.Messages[0].Title, "select bad");
    EXPECT_EQ(Ui.Messages[0].Lines.front(), "Please Reselect LineDefs.");
    EXPECT_EQ(Ui.Messages[0].Lines.back(), "LineDef at each vertex.");
    EXPECT_EQ(level.SideDefs, before.SideDefs);

    EXPECT_TRUE(ChainLineDefs(before, {2, 0, 1}));
    EXPECT_EQ(*ChainLineDefs(before, {2, 0, 1}), (std::vector<std::int32_t>{0, 1, 2}));
}

TEST_F(TextureAlignTest, ASecondSideMissingInTheMiddleBreaksTheWalk)
{
    LevelData level = Wall({"BRICK", "BRICK", "BRICK"});
    level.LineDefs[1].SideDef2 = NoSideDef;
    XAlignOptions back;
    back.Side = 2;
    EXPECT_EQ(AlignTexturesX(level, Marked({0, 1, 2}), back, Sizes({{"BRICK", {64, 64, 8, 8}}})),
              AlignResult::Refused);
    ASSERT_EQ(Ui.Messages.size(), 1u);
    // Walking back, LineDef 2 leaves from Vertex 2; LineDef 0 is reached at Vertex 1.
    EXPECT_EQ(Ui.Messages[0].Lines[0], "Not connected: sd2 LineDef 0  vert 2 & 1");
    EXPECT_EQ(Ui.Messages[0].Lines[1], "For Side 2 Alignment");
}

TEST_F(TextureAlignTest, ScaledTexturesScaleTheYOffsetOrWrapAtTheirHeight)
{
    // One wall under a ceiling of 256 (the reference), three under 56: a difference of 200.
    testkit::LevelBuilder rooms;
    rooms.Sector(0, 256).Sector(0, 56);
    rooms.Vertex(0, 0).Vertex(64, 0).Vertex(128, 0).Vertex(192, 0);
    rooms.Side(0, "BRICK").Side(1, "TALL").Side(1, "HALF").Side(1, "-");
    rooms.Line(0, 1, 0).Line(1, 2, 1).Line(2, 3, 2).Line(3, 0, 3);
    LevelData walls = rooms.Build();
    const TextureSizeOf sizes = Sizes({{"TALL", {64, 256, 8, -1}}, {"HALF", {64, 64, 8, 4}}});
    ASSERT_EQ(AlignTexturesY(walls, Marked({3, 2, 1, 0}), 1, sizes), AlignResult::Done);
    EXPECT_EQ(walls.SideDefs[1].YOffset, 200) << "negative scale: 200 modulo the height 256";
    EXPECT_EQ(walls.SideDefs[2].YOffset, 100) << "scale 4 eighths: 4 * 200 / 8";
    EXPECT_EQ(walls.SideDefs[3].YOffset, 72) << "no texture: the remainder by 128";
    ASSERT_EQ(AlignTexturesY(walls, Marked({3, 2, 1, 0}), 1, Sizes({{"TALL", {64, 256, 8, 8}}})),
              AlignResult::Done);
    EXPECT_EQ(walls.SideDefs[1].YOffset, 72) << "unscaled, 256 high: still the remainder by 128";
}

} // namespace
} // namespace kelvar::map
