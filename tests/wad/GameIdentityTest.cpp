// Tests of telling the game from its IWAD and of choosing the IWAD.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "wad/GameIdentity.h"
#include "tests/testkit/WadFixture.h"
#include "wad/WadState.h"

namespace kelvar::wad
{
namespace
{

using testkit::WadBuilder;
using Names = std::vector<std::string>;

class GameIdentityTest : public testkit::WadFixture
{
protected:
    Names LevelNames() const
    {
        Names names;
        for (const LevelListEntry& level : Wad().Levels)
        {
            names.push_back(level.Name.Text());
        }
        return names;
    }
};

TEST_F(GameIdentityTest, FreedoomIsDoomAndDoom2WithAllTheirLevels)
{
    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom1.wad")), 1);
    EXPECT_EQ(Wad().Game.Game, 1);
    EXPECT_EQ(Wad().Game.Format, 1);
    EXPECT_EQ(Wad().Game.ConfigFile, "DOOM1.DFG");
    Names expected;
    for (int episode = 1; episode <= 4; ++episode)
    {
        for (int map = 1; map <= 9; ++map)
        {
            expected.push_back("E" + std::to_string(episode) + "M" + std::to_string(map));
        }
    }
    EXPECT_EQ(LevelNames(), expected);

    ASSERT_EQ(OpenIwad(testkit::FreedoomWad("freedoom2.wad")), 1);
    EXPECT_EQ(Wad().Game.Game, 2);
    EXPECT_EQ(Wad().Game.DisplayName, "DOOM");
    EXPECT_EQ(Wad().Game.ConfigFile, "DOOM2.DFG");
    EXPECT_EQ(Wad().Game.ExpectedLevelEntries, 11);
    EXPECT_EQ(Wad().Files[0].LevelLayout, 1);
    expected.clear();
    for (int map = 1; map <= 32; ++map)
    {
        expected.push_back((map < 10 ? "MAP0" : "MAP") + std::to_string(map));
    }
    EXPECT_EQ(LevelNames(), expected);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(GameIdentityTest, EachGameIsKnownByItsLumps)
{
    struct Case
    {
        std::string Level;
        std::string Sprite;
        bool Behavior;
        int Game;
        int Format;
        std::string Config;
    };
    const std::vector<Case> cases = {
        {"E1M1", "SARGA1", false, 1, 1, "DOOM1.DFG"},
        {"E1M1", "IMPXA1", false, 3, 3, "HERETIC.DFG"},
        {"MAP01", "MAGEA1", true, 4, 4, "HEXEN.DFG"},
        {"MAP01", "PEASA1", false, 5, 5, "STRIFE.DFG"},
    };
    for (const Case& c : cases)
    {
        WadBuilder iwad("IWAD");
        c.Behavior ? iwad.HexenLevel(c.Level) : iwad.Level(c.Level);
        iwad.Lump(c.Sprite, "sprite");
        ASSERT_EQ(OpenIwad(iwad.Write(Dir.Path() / (c.Sprite + ".wad"))), 1) << c.Sprite;
        EXPECT_EQ(Wad().Game.Game, c.Game) << c.Sprite;
        EXPECT_EQ(Wad().Game.Format, c.Format) << c.Sprite;
        EXPECT_EQ(Wad().Game.ConfigFile, c.Config) << c.Sprite;
    }
    EXPECT_EQ(Wad().Game.TextureHeadSize, 22) << "a small Strife PNAMES keeps Doom's layout";

    const std::string strife = WadBuilder("IWAD")
                                   .Level("MAP01")
                                   .Lump("PEASA1", "p")
                                   .Lump("PNAMES", std::string(5141, 'n'))
                                   .Write(Dir.Path() / "strife1.wad");
    ASSERT_EQ(OpenIwad(strife), 1);
    EXPECT_EQ(Wad().Game.TextureHeadSize, 18);
    EXPECT_EQ(Wad().Game.TexturePatchSize, 6);
    EXPECT_EQ(Wad().Game.TexturePatchCountIndex, 8);
    EXPECT_EQ(Wad().Game.ExpectedLevelEntries, 11);

    const std::string unknown = WadBuilder("IWAD").Level("MAP01").Write(Dir.Path() / "odd.wad");
    ASSERT_EQ(OpenIwad(unknown), 1);
    EXPECT_EQ(Wad().Game.Game, 2);
    EXPECT_EQ(Ui.Last().Text(), "Unable to identify IWAD type\n\nDOOM2 is assumed\n\nUse a stock "
                                "IWAD to fix this problem");
}

TEST_F(GameIdentityTest, ProjectOptionsDecideTheFormat)
{
    const std::string doom2 =
        WadBuilder("IWAD").Level("MAP01").Lump("SARGA1", "s").Write(Dir.Path() / "doom2.wad");
    Wad().Options.BoomTypes = true;
    ASSERT_EQ(OpenIwad(doom2), 1);
    EXPECT_EQ(Wad().Game.ConfigFile, "BOOM.DFG");
    EXPECT_EQ(Wad().Game.DisplayName, "BOOM");
    EXPECT_TRUE(Wad().Game.ExtendedTypes);

    Wad().Options.BoomTypes = false;
    Wad().Options.ZdoomHexenFormat = true;
    ASSERT_EQ(OpenIwad(doom2), 1);
    EXPECT_EQ(Wad().Game.Game, 2);
    EXPECT_EQ(Wad().Game.Format, 4);
    EXPECT_EQ(Wad().Game.ConfigFile, "ZDOOMHEXEN.DFG");
    EXPECT_EQ(Wad().Game.ExpectedLevelEntries, 12);
    EXPECT_EQ(Ui.Last().Text(), "IWAD " + doom2 +
                                    "\ndoes not have BEHAVIOR\nPlease convert the "
                                    "IWAD using ZWADCONV\n\nUse F5 Options and set IWAD message to "
                                    "bypass this message and not reset anything\n\n");
    Ui.Clear();
    ASSERT_EQ(OpenIwad(doom2), 1);
    EXPECT_TRUE(Ui.Messages.empty()) << "once a session";

    const std::string heretic = WadBuilder("IWAD").Level("E1M1").Write(Dir.Path() / "heretic.wad");
    ASSERT_EQ(OpenIwad(heretic), 1);
    EXPECT_EQ(Wad().Game.ConfigFile, "ZDOOMHERETIC.DFG");
}

TEST_F(GameIdentityTest, TooManyLevelsAreCutAtTheListsLimit)
{
    Wad().Options.LevelListLimit = 3;
    const std::string iwad = WadBuilder("IWAD")
                                 .Level("MAP01")
                                 .Level("MAP02")
                                 .Level("MAP03")
                                 .Lump("SARGA1", "s")
                                 .Write(Dir.Path() / "doom2.wad");
    ASSERT_EQ(OpenIwad(iwad), 1);
    EXPECT_EQ(LevelNames(), (Names{"MAP01", "MAP02"}));
    EXPECT_EQ(Ui.Last().Text(), "IWAD has too many levels.\nExcess ignored.");
}

TEST_F(GameIdentityTest, ALaterRunScansTheStoredIwadAtOnce)
{
    Wad().Options.IwadPath = testkit::FreedoomWad("freedoom2.wad");
    EXPECT_EQ(SelectMainIwad(false), 1);
    EXPECT_EQ(Wad().Game.Game, 2);
    EXPECT_TRUE(Ui.Messages.empty());
}

TEST_F(GameIdentityTest, AFirstRunAsksAboutTheStoredIwad)
{
    Wad().Options.IwadPath = testkit::FreedoomWad("freedoom1.wad");
    Ui.Answer(1);
    EXPECT_EQ(SelectMainIwad(true), 1);
    EXPECT_EQ(Ui.Last().Text(), "IWAD = " + Wad().Options.IwadPath +
                                    " found!!\n\nIs this the IWAD to use for this project?\n\n"
                                    "Press NO to choose the file yourself\n");
    EXPECT_EQ(Wad().Game.Game, 1);
}

TEST_F(GameIdentityTest, AMissingIwadIsSearchedForAndStored)
{
    const std::filesystem::path games = Dir.Path() / "games" / "doom" / "deeper";
    std::filesystem::create_directories(games);
    const std::string real =
        WadBuilder("IWAD").Level("MAP01").Lump("SARGA1", "s").Write(games / "Doom2.WAD");
    Wad().Options.IwadPath = (Dir.Path() / "games" / "DOOM2.WAD").string(); // stored, moved since
    int saved = 0;
    Wad().Hooks.SaveStatusFiles = [&saved] { ++saved; };
    Ui.Answer(1); // find IWAD: Continue
    EXPECT_EQ(SelectMainIwad(false), 1);
    ASSERT_EQ(Ui.Messages.size(), 2u) << "a stored file that is simply gone needs no message";
    EXPECT_EQ(Ui.Messages[0].Title, "find IWAD");
    EXPECT_EQ(Ui.Messages[0].Lines,
              (Names{"!! No Main IWAD found !!", "Press Continue to have Kelvar find it for you",
                     "Press Cancel to choose the file yourself"}));
    EXPECT_EQ(Ui.Messages[1].Title, "found IWAD");
    EXPECT_EQ(Ui.Messages[1].Lines, (Names{real}));
    EXPECT_EQ(Wad().Options.IwadPath, real);
    EXPECT_EQ(saved, 1);
    ASSERT_FALSE(Ui.Progress.empty());
    EXPECT_EQ(Ui.Progress[0].first, "(press ESC to cancel) Searching for IWAD DOOM2.WAD");
}

TEST_F(GameIdentityTest, GivingUpOnTheIwadListsTheGames)
{
    Wad().Options.IwadPath = Dir.File("nowhere/NOSUCH.WAD");
    Ui.Answer(0);                // find IWAD: Cancel
    Ui.AnswerFile(std::nullopt); // and no file chosen either
    EXPECT_EQ(SelectMainIwad(false), 0);
    EXPECT_EQ(Ui.FileRequests[0].Caption, "Game IWAD file");
    EXPECT_EQ(Ui.FileRequests[0].NameLimit, 127u);
    EXPECT_EQ(Ui.Last().Title, "Games");
    EXPECT_EQ(Ui.Last().Lines.back(), "If you don't do either, please EXIT Kelvar!");
}

TEST_F(GameIdentityTest, EscapeCanStopTheSearch)
{
    std::filesystem::create_directories(Dir.Path() / "a" / "b");
    Wad().Options.IwadPath = (Dir.Path() / "NOSUCH.WAD").string();
    Ui.EscapeFromPoll(1);
    Ui.Answer(1); // stop? yes
    EXPECT_FALSE(SearchForIwad(Wad().Options.IwadPath));
    EXPECT_EQ(Ui.Last().Text(),
              " Volume Scan Interrupted\n\nDo you want to stop ?\nConfirm Stop - Find IWAD");
    EXPECT_EQ(Ui.EscapePolls, 1);
}

} // namespace
} // namespace kelvar::wad
