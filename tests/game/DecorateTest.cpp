// Tests of the DECORATE reader: actors with numbers added with their names, sizes and sprites,
// comments, nested blocks, odd whitespace, the built-in Thing an actor replaces, and the limit
// of 256 items.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "game/Decorate.h"

#include "game/Keywords.h"
#include "game/TypeLookup.h"
#include "tests/game/GameFixture.h"

namespace kelvar::game
{
namespace
{

class DecorateTest : public GameFixture
{
protected:
    void SetUp() override
    {
        GameFixture::SetUp();
        SelectTablesFor(map::GameDoom2, map::GameDoom2, true, true);
        State.Sprites = [](std::string_view name) -> std::optional<SpriteSize>
        {
            if (name == "BAL1A0")
            {
                return SpriteSize{40, 30};
            }
            return std::nullopt;
        };
    }

    // The text of each message shown.
    std::vector<std::string> Messages() const
    {
        std::vector<std::string> texts;
        for (const platform::Message& message : Ui.Messages)
        {
            texts.push_back(message.Text());
        }
        return texts;
    }

    DecorateState State;
};

TEST_F(DecorateTest, ActorsWithNumbersGetRowsWithTheirNamesSizesAndSprites)
{
    ParseDecorateText(State, "// a comment line\n"
                             "ACTOR Fireball : DoomImpBall 20001\n"
                             "{\n"
                             "\tScale 0.5\r\n"
                             "  States\n"
                             "  {\n"
                             "  Spawn:\n"
                             "    BAL1 AB 4 Bright\n"
                             "    Loop\n"
                             "  }\n"
                             "   Height   12 // after the States block: still the actor's\n"
                             "}\n"
                             "actor NoNumber\n{\n  Radius 8\n}\n"
                             "ACTOR Late\n{\n DoomEdNum 20002\n Sprite \"TROO\"\n}\n");
    EXPECT_EQ(State.Added, 2);
    const ThingTypeRow& fireball = ThingRowOfType(20001);
    EXPECT_EQ(Text(fireball.Name), "Fireball");
    EXPECT_EQ(Text(fireball.Sprite), "BAL1A0");
    EXPECT_EQ(fireball.Radius, 10) << "half the sprite's width, scaled";
    EXPECT_EQ(fireball.Height, 12) << "the actor's own height";
    EXPECT_EQ(fireball.Property, 44U);
    const ThingTypeRow& late = ThingRowOfType(20002);
    EXPECT_EQ(Text(late.Sprite), "TROOA0");
    EXPECT_EQ(late.Radius, 16) << "no picture: the default radius";
    EXPECT_EQ(ThingCategoryOf(20001), DecorateCategoryBase + 1);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(DecorateTest, TheCommentFormAndItsMistakes)
{
    ParseDecorateText(State, "ACTOR Lamp 20010 // none RED ROUND Enemy\n{\n}\n"
                             "ACTOR Odd 20011 // none PURPLEISH\n{\n}\n");
    const ThingTypeRow& lamp = ThingRowOfType(20010);
    EXPECT_EQ(lamp.Color, *FindColor("RED"));
    EXPECT_EQ(lamp.Property, 0x100AU);
    EXPECT_EQ(Text(lamp.Sprite), "");
    EXPECT_EQ(ThingRowOfType(20011).Color, 15);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_NE(Messages()[0].find("Invalid Color PURPLEISH"), std::string::npos);
}

TEST_F(DecorateTest, AnActorWithABuiltInNumberReplacesIt)
{
    ASSERT_NE(ThingCategoryOf(3004), DecorateCategoryBase + 1);
    ParseDecorateText(State, "ACTOR BetterZombie 3004\n{\n Radius 21\n Height 60\n}\n");
    const ThingTypeRow& row = ThingRowOfType(3004);
    EXPECT_EQ(Text(row.Name), "BetterZombie");
    EXPECT_EQ(row.Radius, 21);
    EXPECT_EQ(ThingCategoryOf(3004), DecorateCategoryBase + 1);
}

TEST_F(DecorateTest, The257thItemIsRefusedOnceWithTheMessage)
{
    std::string text;
    for (int i = 0; i < 260; ++i)
    {
        text += "ACTOR A" + std::to_string(i) + " " + std::to_string(21000 + i) + "\n{\n}\n";
    }
    ParseDecorateText(State, text);
    EXPECT_EQ(State.Added, DecorateLimit);
    const ThingTypeRow* unknown = &ThingRowOfType(65000);
    EXPECT_NE(&ThingRowOfType(21255), unknown);
    EXPECT_EQ(&ThingRowOfType(21256), unknown);
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_NE(Messages()[0].find("Maximum number of 256 decorate items exceeded"),
              std::string::npos);
}

TEST_F(DecorateTest, BadValuesKeepTheirDefaultsAndNothingBreaksOnRubbish)
{
    ParseDecorateText(State, "ACTOR Bad 20020\n{\n Scale wide\n Radius many\n}\n");
    EXPECT_EQ(ThingRowOfType(20020).Radius, 16);
    EXPECT_EQ(Messages().size(), 2U);
    // Unbalanced braces, stray words and binary bytes: no crash, no actor without a number.
    ParseDecorateText(State, "}}}{ ACTOR\n{{\n\x01\x02 Radius\nSpawn:\nX\n}\nACTOR : 5\n");
    ParseDecorateText(State, std::string("ACTOR Z 20021 {\0\n}", 19));
}

} // namespace
} // namespace kelvar::game
