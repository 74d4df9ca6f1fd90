// Tests of the object editors' commands and choices with the recording Ui: which objects an
// editor opens on, a dialog's one undo step and its Cancel, the type menus, raw flags, argument
// texts, the free number line, the Sector flags warning, the texture keys and the Thing mask.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ObjectEditors.h"

#include "game/ThingMask.h"
#include "map/Selection.h"
#include "map/Undo.h"
#include "tests/app/CommandTestKit.h"
#include "wad/WadState.h"

namespace kelvar::app
{
namespace
{

using map::TextureName;

class ObjectEditorsTest : public CommandFixture
{
protected:
    void TearDown() override
    {
        game::TheThingMask() = {};
        ApplyThingMask();
        game::LastDoorArguments() = {16, 150};
        wad::ResetWad();
        CommandFixture::TearDown();
    }

    /// Opens the editors through `body`, noting each one's title and objects.
    void WhenOpened(std::function<void(game::ObjectEditor&)> body)
    {
        Session().Hooks.ObjectEditor = [this, body](game::ObjectEditor& editor)
        {
            Titles.push_back(editor.Title());
            Objects.push_back(editor.Objects());
            body(editor);
        };
    }

    /// A Hexen-format project: Hexen's tables, and the level in its layout.
    static void UseHexen(map::LevelData& level)
    {
        game::SelectTablesFor(map::GameHexen, map::GameHexen, false, false);
        wad::Wad().Game.Format = map::GameHexen;
        level.LevelLayout = map::LayoutHexen;
    }

    /// An editor on the map's level whose first change takes the undo step.
    static game::ObjectEditor EditorOnMap(int kind, std::vector<std::int32_t> objects)
    {
        return game::ObjectEditor(map::Map().Level, kind, std::move(objects),
                                  [] { (void)map::SaveUndoStep(); });
    }

    std::vector<std::string> Titles;
    std::vector<std::vector<std::int32_t>> Objects;
};

TEST_F(ObjectEditorsTest, TheEditorOfTheModeOpensOnTheSelectionNewestFirst)
{
    WhenOpened([](game::ObjectEditor&) {});
    Edit(TwoRooms(), ModeLineDefs);
    Mark({0, 4, 2});
    ASSERT_EQ(RunCommand(CmdEditObject), CommandResult::Done);

    map::ClearSelection();
    Shell().Chk.EditMode = ModeSectors;
    map::Selected().HighlightedObject = 1;
    ASSERT_EQ(RunCommand(CmdEditObjectT), CommandResult::Done);

    Shell().Chk.EditMode = ModeThings;
    Mark({0, 2});
    ASSERT_EQ(RunCommand(CmdEditObject), CommandResult::Done);

    EXPECT_EQ(Titles, (std::vector<std::string>{"Editing 3 LineDefs", "Editing Sector",
                                                "Editing 2 Things"}));
    EXPECT_EQ(Objects, (std::vector<std::vector<std::int32_t>>{{2, 4, 0}, {1}, {2, 0}}));
    EXPECT_TRUE(Shell().Requests.RedrawMap);

    // Vertexes have no editor, and with nothing to edit none opens.
    Shell().Chk.EditMode = ModeVertexes;
    EXPECT_EQ(RunCommand(CmdEditObject), CommandResult::WrongMode);
    EXPECT_FALSE(EditObjects(ModeVertexes, {0}));
    EXPECT_FALSE(EditObjects(ModeSectors, {}));
    EXPECT_FALSE(EditObjects(ModeSectors, {7}));
    EXPECT_EQ(Titles.size(), 3u);
    EXPECT_EQ(map::Map().Undo.Position, -1) << "opening changes nothing";
}

TEST_F(ObjectEditorsTest, WhatADialogChangesIsOneUndoStep)
{
    Edit(TwoRooms(), ModeLineDefs);
    const map::LevelData before = map::Map().Level;
    WhenOpened(
        [](game::ObjectEditor& editor)
        {
            (void)editor.SetLineFlag(game::LineSecret, true);
            (void)editor.SetLineType(1);
            (void)editor.SetSideTexture(1, game::SidePart::Upper, TextureName::From("DOOR3"));
        });
    ASSERT_TRUE(EditObjects(ModeLineDefs, {4, 0}));
    EXPECT_EQ(map::Map().Undo.Position, 0);
    const map::LevelData after = map::Map().Level;
    EXPECT_EQ(after.LineDefs[0].Type, 1u);

    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before);
    ASSERT_EQ(RunCommand(CmdRedo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, after);

    // The same changes again find nothing to write: no second step.
    ASSERT_TRUE(EditObjects(ModeLineDefs, {4, 0}));
    EXPECT_EQ(map::Map().Undo.Position, 0);
    EXPECT_EQ(map::Map().Level, after);
}

TEST_F(ObjectEditorsTest, CancelTakesBackOnlyTheStepOfItsOwnDialog)
{
    Edit(TwoRooms(), ModeSectors);
    const map::LevelData before = map::Map().Level;
    bool reverted = false;
    WhenOpened(
        [&reverted](game::ObjectEditor& editor)
        {
            (void)editor.SetSectorField(game::SectorField::Light, 255);
            reverted = RevertEdits(editor);
        });
    ASSERT_TRUE(EditObjects(ModeSectors, {1, 0}));
    EXPECT_TRUE(reverted);
    EXPECT_EQ(map::Map().Level, before);
    EXPECT_EQ(map::Map().Undo.Position, -1);

    // A dialog that changed nothing has nothing to take back.
    WhenOpened([&reverted](game::ObjectEditor& editor) { reverted = RevertEdits(editor); });
    ASSERT_TRUE(EditObjects(ModeSectors, {1}));
    EXPECT_FALSE(reverted);

    // With undo off the dialog took no step: Cancel mustn't undo an older command's step.
    WhenOpened([](game::ObjectEditor& editor)
               { (void)editor.SetSectorField(game::SectorField::Tag, 1); });
    ASSERT_TRUE(EditObjects(ModeSectors, {0}));
    map::Map().Options.UndoEnabled = false;
    WhenOpened(
        [&reverted](game::ObjectEditor& editor)
        {
            (void)editor.SetSectorField(game::SectorField::Light, 255);
            reverted = RevertEdits(editor);
        });
    ASSERT_TRUE(EditObjects(ModeSectors, {0}));
    EXPECT_FALSE(reverted);
    EXPECT_EQ(map::Map().Level.Sectors[0].Tag, 1);
    EXPECT_EQ(map::Map().Level.Sectors[0].Light, 255);
}

TEST_F(ObjectEditorsTest, AWallTexturePickNeedsALineDefWithThatSide)
{
    Edit(TwoRooms(), ModeLineDefs);
    Mark({0});
    ASSERT_EQ(RunCommand(CmdSide2Textures), CommandResult::Done);
    EXPECT_EQ(Ui.Beeps, 1);
    EXPECT_TRUE(Ui.ListCaptions.empty()) << "no place asked";

    Mark({4});
    Ui.AnswerList(std::nullopt);
    ASSERT_EQ(RunCommand(CmdSide2Textures), CommandResult::Done);
    EXPECT_EQ(Ui.ListCaptions, (std::vector<std::string>{"Wall texture side 2"}));
    EXPECT_EQ(map::Map().Undo.Position, -1);
}

TEST_F(ObjectEditorsTest, TheTypeMenuSetsTheTypeOfEveryLineDef)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[1].Tag = 7;
    Edit(level, ModeLineDefs);
    bool changed = false;
    WhenOpened([&changed](game::ObjectEditor& editor) { changed = ChooseLineType(editor); });

    // "Door (open)", then its first type, 1.
    Ui.AnswerList(2).AnswerList(0);
    ASSERT_TRUE(EditObjects(ModeLineDefs, {0, 1, 2}));
    EXPECT_TRUE(changed);
    ASSERT_EQ(Ui.ListCaptions.size(), 2u);
    EXPECT_EQ(Ui.ListCaptions[0], "LineDef Type");
    EXPECT_TRUE(Ui.ListItems[0][2].ends_with("Door (open)")) << Ui.ListItems[0][2];
    EXPECT_EQ(Ui.ListCaptions[1], Ui.ListItems[0][2]);
    for (const std::size_t line : {0u, 1u, 2u})
    {
        EXPECT_EQ(map::Map().Level.LineDefs[line].Type, 1u) << line;
    }
    EXPECT_EQ(map::Map().Level.LineDefs[1].Tag, 7) << "Doom tags aren't arguments";
    EXPECT_EQ(map::Map().Level.LineDefs[3].Type, 0u);

    // Cancelled in the sub-menu: nothing changes, no step.
    const map::LevelData typed = map::Map().Level;
    map::UndoReset();
    Ui.AnswerList(2).AnswerList(std::nullopt);
    ASSERT_TRUE(EditObjects(ModeLineDefs, {0, 3}));
    EXPECT_FALSE(changed);
    // The menus start where the first LineDef's type stands: its category, then the type.
    EXPECT_EQ(Ui.EntriesCurrent, (std::vector<int>{-1, -1, 2, 0}));
    EXPECT_EQ(map::Map().Level, typed);
    EXPECT_EQ(map::Map().Undo.Position, -1);

    // "Normal (no menu)" sets 0 straight away.
    Ui.AnswerList(0);
    ASSERT_TRUE(EditObjects(ModeLineDefs, {0, 3}));
    EXPECT_EQ(map::Map().Level.LineDefs[0].Type, 0u);
    EXPECT_EQ(Ui.ListCaptions.size(), 5u) << "no sub-menu";
}

TEST_F(ObjectEditorsTest, TheTypeNumberIsTypedInTheBaseTheNumbersAreShownIn)
{
    Edit(TwoRooms(), ModeLineDefs);
    game::ObjectEditor editor = EditorOnMap(map::KindLineDef, {0, 1});

    Shell().Chk.DecimalTypes = 1;
    EXPECT_EQ(LineTypeButtonText(26), "  &2.   26");
    Ui.AnswerNumber(26);
    EXPECT_TRUE(AskLineType(editor));
    EXPECT_EQ(map::Map().Level.LineDefs[1].Type, 26u);

    Shell().Chk.DecimalTypes = 0;
    EXPECT_EQ(LineTypeButtonText(26), "  &2.   001A");
    Ui.AnswerText("3c01"); // a generalized floor
    EXPECT_TRUE(AskLineType(editor));
    EXPECT_EQ(map::Map().Level.LineDefs[0].Type, 0x3C01u);
    ASSERT_EQ(Ui.TextPrompts.size(), 1u);
    EXPECT_EQ(Ui.TextPrompts[0].Caption, "LineDef Type");
    EXPECT_EQ(Ui.TextPrompts[0].Initial, "001A");

    const map::LevelData typed = map::Map().Level;
    Ui.AnswerText("26g");
    EXPECT_FALSE(AskLineType(editor));
    EXPECT_EQ(map::Map().Level, typed) << "a text that is no hexadecimal number changes nothing";
    EXPECT_EQ(Ui.Beeps, 1);
}

TEST_F(ObjectEditorsTest, HexenTypesBringTheirArgumentsAndDoorsTheLastOnesUsed)
{
    map::LevelData level = TwoRooms();
    UseHexen(level);
    level.LineDefs[1].Args = {9, 9, 9, 9};
    Edit(level, ModeLineDefs);
    game::ObjectEditor editor = EditorOnMap(map::KindLineDef, {0, 1});
    const auto args = [](std::size_t line) { return map::Map().Level.LineDefs[line].Args; };
    using Args = std::array<std::uint8_t, 4>;

    // "ALL Doors": 10, 11, 12 and the key doors 13.
    Ui.AnswerList(1).AnswerList(3);
    ASSERT_TRUE(ChooseLineType(editor));
    EXPECT_TRUE(Ui.ListItems[1][3].find("Open Steel Key") != std::string::npos);
    EXPECT_EQ(map::Map().Level.LineDefs[0].Type, 13u);
    EXPECT_EQ(args(0), (Args{16, 100, 1, 0}));
    EXPECT_EQ(args(1), (Args{16, 100, 1, 0}));

    Ui.AnswerList(1).AnswerList(2);
    ASSERT_TRUE(ChooseLineType(editor));
    EXPECT_EQ(map::Map().Level.LineDefs[1].Type, 12u);
    EXPECT_EQ(args(1), (Args{16, 150, 0, 0})) << "the session's door arguments";

    // Arguments typed for a type 12 become the ones the next door takes.
    ASSERT_TRUE(CommitLineArguments(editor, {"0", "24", "200", "0", "0"}));
    EXPECT_EQ(game::LastDoorArguments(), (std::array<std::uint8_t, 2>{24, 200}));
    Ui.AnswerList(1).AnswerList(0).AnswerList(1).AnswerList(2);
    ASSERT_TRUE(ChooseLineType(editor));
    ASSERT_TRUE(ChooseLineType(editor));
    EXPECT_EQ(args(0), (Args{24, 200, 0, 0}));
    EXPECT_EQ(map::Map().Undo.Position, 0) << "one step for the editor";
}

TEST_F(ObjectEditorsTest, RawFlagsAreHexadecimalAndWrittenWhereTheyDiffer)
{
    map::LevelData level = TwoRooms();
    level.LineDefs[4].Flags = 0x201;
    Edit(level, ModeLineDefs);
    game::ObjectEditor editor = EditorOnMap(map::KindLineDef, {0, 4});

    Ui.AnswerText("zz").AnswerText(std::nullopt).AnswerText("0201");
    EXPECT_FALSE(EditRawFlags(editor));
    EXPECT_EQ(Ui.Beeps, 1) << "not a hexadecimal number";
    ASSERT_EQ(Ui.TextPrompts.size(), 1u);
    EXPECT_EQ(Ui.TextPrompts[0].Caption, "Edit Raw Flags");
    EXPECT_EQ(Ui.TextPrompts[0].Prompt, "Old Flags (0001)") << "the head's word";
    EXPECT_EQ(Ui.TextPrompts[0].Initial, "0001");
    EXPECT_FALSE(EditRawFlags(editor));
    EXPECT_EQ(editor.Changes(), 0);
    EXPECT_EQ(map::Map().Undo.Position, -1);

    ASSERT_TRUE(EditRawFlags(editor));
    EXPECT_EQ(map::Map().Level.LineDefs[0].Flags, 0x201);
    EXPECT_EQ(editor.Changes(), 1) << "LineDef 4 had the word already";
    EXPECT_EQ(map::Map().Level.ChangeCount, 1);

    game::ObjectEditor things = EditorOnMap(map::KindThing, {1, 2});
    Ui.AnswerText(" 1f ");
    ASSERT_TRUE(EditRawFlags(things));
    EXPECT_EQ(map::Map().Level.Things[2].Flags, 0x1F);
    EXPECT_EQ(map::Map().Level.Things[0].Flags, 7);
}

TEST_F(ObjectEditorsTest, ArgumentsOutOfRangeAreRefusedAndArgumentsLeftAsShownStayMixed)
{
    map::LevelData level = TwoRooms();
    UseHexen(level);
    level.LineDefs[0].Tag = 5;
    level.LineDefs[0].Args = {1, 2, 3, 4};
    level.LineDefs[1].Tag = 6;
    level.LineDefs[1].Args = {9, 9, 9, 9};
    Edit(level, ModeLineDefs);
    const map::LevelData before = map::Map().Level;
    game::ObjectEditor editor = EditorOnMap(map::KindLineDef, {0, 1});

    EXPECT_FALSE(CommitLineArguments(editor, {"5", "300", "30", "3", "4"}));
    ASSERT_EQ(Ui.Messages.size(), 1u);
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{"Argument values are from 0 to 255"}));
    EXPECT_EQ(map::Map().Level, before) << "the valid texts aren't written either";
    EXPECT_EQ(map::Map().Undo.Position, -1);

    ASSERT_TRUE(CommitLineArguments(editor, {"5", "1", "30", "3", "4"}));
    EXPECT_EQ(map::Map().Level.LineDefs[0].Args, (std::array<std::uint8_t, 4>{1, 30, 3, 4}));
    EXPECT_EQ(map::Map().Level.LineDefs[1].Args, (std::array<std::uint8_t, 4>{9, 30, 9, 9}));
    EXPECT_EQ(map::Map().Level.LineDefs[1].Tag, 6);
    EXPECT_EQ(editor.Changes(), 2) << "the third argument of both";

    game::ObjectEditor things = EditorOnMap(map::KindThing, {0, 1});
    EXPECT_FALSE(CommitThingArguments(things, {"0", "0", "", "0", "0"}));
    EXPECT_EQ(Ui.Messages.size(), 2u);
    ASSERT_TRUE(CommitThingArguments(things, {"0", "0", "0", "0", "7"}));
    EXPECT_EQ(map::Map().Level.Things[1].Args, (std::array<std::uint8_t, 5>{0, 0, 0, 0, 7}));
}

TEST_F(ObjectEditorsTest, TheFreeNumberLineFollowsTheFormatAndTheFirstArgument)
{
    map::LevelData level = TwoRooms();
    level.Sectors[0].Tag = 1;
    level.Sectors[1].Tag = 3;
    level.LineDefs[0].Tag = 2;
    level.LineDefs[1].Tag = 5;
    Edit(level, ModeLineDefs);
    EXPECT_EQ(FreeNumberText(EditorOnMap(map::KindLineDef, {0})), "Free=4, Last=5");
    EXPECT_EQ(FreeNumberText(EditorOnMap(map::KindSector, {1})), "Free=4, Last=5");
    EXPECT_EQ(FreeNumberText(EditorOnMap(map::KindThing, {1})), "") << "Doom Things have no id";

    UseHexen(level);
    level.LineDefs[2].Type = 70; // Teleport: its first argument is a Thing id
    for (const std::size_t thing : {0u, 1u, 2u})
    {
        level.Things[thing].Tid = static_cast<std::uint16_t>(thing == 2 ? 4 : thing + 1);
    }
    Edit(level, ModeLineDefs);
    EXPECT_EQ(FreeNumberText(EditorOnMap(map::KindLineDef, {2})), "Tid free=3 last=4");
    EXPECT_EQ(FreeNumberText(EditorOnMap(map::KindThing, {0})), "TID free=3");
}

TEST_F(ObjectEditorsTest, SectorFlagsWarnWhenNoSectorTakesThem)
{
    game::SelectTablesFor(map::GameDoom2, map::GameDoom2, true, false);
    map::LevelData level = TwoRooms();
    level.Sectors[0].Type = 9;
    level.Sectors[1].Type = 1;
    Edit(level, ModeSectors);

    game::ObjectEditor secret = EditorOnMap(map::KindSector, {0});
    EXPECT_EQ(ApplySectorFlags(secret, 256), 0);
    EXPECT_EQ(Ui.Last().Title, "Warning");
    EXPECT_EQ(Ui.Last().Lines, (std::vector<std::string>{"! No flags changed !", "",
                                                         "This is not a BOOM Sector type"}));
    game::ObjectEditor both = EditorOnMap(map::KindSector, {0, 1});
    EXPECT_EQ(ApplySectorFlags(both, 256), 1);
    EXPECT_EQ(map::Map().Level.Sectors[1].Type, 1 | 256);
    EXPECT_EQ(Ui.Messages.size(), 1u) << "no warning when one Sector took them";
}

TEST_F(ObjectEditorsTest, PaneKeysCopyTheHeadsNameToThePlaceOfTheSelection)
{
    map::LevelData rooms = TwoRooms();
    rooms.Sectors[1].CeilingTexture = TextureName::From("CEIL_HD");
    Edit(rooms, ModeSectors);
    const map::LevelData before = map::Map().Level;
    Mark({0, 1}); // Sector 1 is the head
    PanePlace floor;
    floor.Floor = true;

    EXPECT_EQ(PaneTextureKey(ModeSectors, floor, 'c'), 2);
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.Sectors[0].FloorTexture, TextureName::From("CEIL_HD"));
    EXPECT_EQ(level.Sectors[1].FloorTexture, TextureName::From("CEIL_HD"));
    EXPECT_EQ(level.Sectors[0].CeilingTexture, TextureName::From("CEIL3_5"));
    EXPECT_EQ(PaneTextureKey(ModeSectors, floor, 'C'), 0) << "nothing differs now";
    EXPECT_EQ(map::Map().Undo.Position, 0);
    ASSERT_EQ(RunCommand(CmdUndo), CommandResult::Done);
    EXPECT_EQ(map::Map().Level, before);

    Mark({0, 1});
    EXPECT_EQ(PaneTextureKey(ModeSectors, floor, 'q'), 2);
    EXPECT_EQ(level.Sectors[0].FloorTexture, map::NoTexture);
    EXPECT_EQ(level.Sectors[0].CeilingTexture, TextureName::From("CEIL3_5"));

    // LineDef mode: the head's normal name to the upper place of side 1.
    Shell().Chk.EditMode = ModeLineDefs;
    map::ClearSelection();
    Mark({0, 4});
    PanePlace upper;
    upper.Part = game::SidePart::Upper;
    EXPECT_EQ(PaneTextureKey(ModeLineDefs, upper, 'n'), 2);
    EXPECT_EQ(level.SideDefs[0].UpperTexture, TextureName::From("STARTAN3"));
    EXPECT_EQ(level.SideDefs[6].UpperTexture, TextureName::From("STARTAN3"));
    EXPECT_EQ(PaneTextureKey(ModeThings, upper, 'n'), 0);
}

TEST_F(ObjectEditorsTest, TheBoxSelectionSkipsTheThingsTheMaskHides)
{
    Edit(TwoRooms(), ModeThings);
    const map::LevelData& level = map::Map().Level;
    using List = std::vector<std::int32_t>;
    EXPECT_EQ(map::SelectInBox(level, ModeThings, 0, 0, 256, 128).Objects().size(), 3u);

    // The mask dialog hides the enemies: only the player start can be boxed.
    Session().Hooks.ThingMask = []
    {
        game::TheThingMask().Categories[static_cast<std::size_t>(game::MaskCategory::Enemies)] =
            false;
        return true;
    };
    ASSERT_EQ(RunCommand(CmdThingMask), CommandResult::Done);
    EXPECT_TRUE(Shell().Requests.RedrawMap);
    EXPECT_EQ(map::SelectInBox(level, ModeThings, 0, 0, 256, 128).Objects(), List{0});
    EXPECT_EQ(map::SelectInBox(level, ModeLineDefs, 0, 0, 256, 128).Objects().size(), 7u)
        << "other kinds aren't filtered";

    game::TheThingMask() = {};
    ApplyThingMask();
    EXPECT_EQ(map::SelectInBox(level, ModeThings, 0, 0, 256, 128).Objects().size(), 3u);
}

} // namespace
} // namespace kelvar::app
