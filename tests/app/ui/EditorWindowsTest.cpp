// Tests of the object editors' windows on Freedoom 2 MAP01: each editor opens on a marked set
// through its key or the right click, a change reaches every object of the set and nothing
// else, one undo takes it all back, and Cancel leaves the level as it was.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/EditorWindows.h"

#include "app/ObjectEditors.h"

#include "game/ThingMask.h"
#include "map/Undo.h"
#include "tests/app/ui/MainWindowFixture.h"
#include "tests/app/ui/WhenUp.h"
#include "wad/WadState.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <cstring>

namespace kelvar::app
{
namespace
{

using testkit::WhenModal;

template <class Record> std::vector<Record> Records(const map::ObjectArray<Record>& array)
{
    return std::vector<Record>(array.begin(), array.end());
}

class EditorWindowsTest : public MainWindowTest
{
protected:
    void Mark(const std::vector<int>& objects)
    {
        map::ClearSelection();
        for (const int object : objects)
        {
            map::ObjectListPush(map::Selected().Selection, object);
        }
    }

    static QCheckBox* Box(QWidget* dialog, const QString& text)
    {
        for (QCheckBox* box : dialog->findChildren<QCheckBox*>())
        {
            if (box->text() == text)
            {
                return box;
            }
        }
        return nullptr;
    }

    static QPushButton* Button(QWidget* dialog, const QString& text)
    {
        for (QPushButton* button : dialog->findChildren<QPushButton*>())
        {
            if (button->text().startsWith(text))
            {
                return button;
            }
        }
        return nullptr;
    }

    // Three LineDefs of MAP01 whose Secret bits differ, the set shown head first.
    std::vector<int> MixedSecretLines() const
    {
        const map::LevelData& level = map::Map().Level;
        std::vector<int> with;
        std::vector<int> without;
        for (int i = 0; i < level.LineDefs.Count(); ++i)
        {
            auto& list =
                (level.LineDefs[static_cast<std::size_t>(i)].Flags & 0x20) != 0 ? with : without;
            list.push_back(i);
        }
        if (with.empty() || without.size() < 2)
        {
            return {};
        }
        return {without[0], with[0], without[1]};
    }
};

TEST_F(EditorWindowsTest, TheLineDefEditorSetsAFlagOnTheMarkedSetAndOneUndoTakesItBack)
{
    UseLineDefMode();
    const std::vector<int> lines = MixedSecretLines();
    ASSERT_EQ(lines.size(), 3U);
    Mark(lines);
    const std::vector<map::LineDef> before = Records(map::Map().Level.LineDefs);
    const std::vector<map::SideDef> sidesBefore = Records(map::Map().Level.SideDefs);
    const std::uint16_t changesBefore = map::Map().Level.ChangeCount;

    QString title;
    WhenModal(
        [&title](QWidget* widget)
        {
            ASSERT_EQ(widget->objectName(), "EditLineDef2");
            title = widget->windowTitle();
            QCheckBox* secret = Box(widget, "Secret");
            ASSERT_NE(secret, nullptr);
            secret->click(); // the head has it clear: every LineDef gets it
            EXPECT_TRUE(secret->isChecked());
            widget->grab().save(KELVAR_SCREENSHOT_DIR "/linedef-editor.png");
            dynamic_cast<QDialog*>(widget)->accept();
        });
    QTest::keyClick(Map(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(title, "Editing 3 LineDefs");

    const map::LevelData& level = map::Map().Level;
    for (int i = 0; i < level.LineDefs.Count(); ++i)
    {
        const map::LineDef& line = level.LineDefs[static_cast<std::size_t>(i)];
        map::LineDef expected = before[static_cast<std::size_t>(i)];
        if (std::find(lines.begin(), lines.end(), i) != lines.end())
        {
            expected.Flags = static_cast<std::uint16_t>(expected.Flags | 0x20);
        }
        ASSERT_EQ(line, expected) << "LineDef " << i;
    }
    // The one that had the bit already was not written.
    EXPECT_EQ(static_cast<std::uint16_t>(level.ChangeCount - changesBefore), 2);

    QTest::keyClick(Map(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Records(map::Map().Level.LineDefs), before);
    EXPECT_EQ(Records(map::Map().Level.SideDefs), sidesBefore);
}

TEST_F(EditorWindowsTest, ATexturePickedFromTheBrowserReachesEverySideOfTheSet)
{
    UseLineDefMode();
    const map::LevelData& level = map::Map().Level;
    std::vector<int> lines;
    for (int i = 0; i < level.LineDefs.Count() && lines.size() < 4; ++i)
    {
        if (level.LineDefs[static_cast<std::size_t>(i)].SideDef1 != map::NoSideDef)
        {
            lines.push_back(i);
        }
    }
    Mark(lines);
    Ui.AnswerBrowse("BRICK7");
    WhenModal(
        [](QWidget* widget)
        {
            QPushButton* normal = Button(widget, " &N.");
            ASSERT_NE(normal, nullptr);
            normal->click();
            EXPECT_EQ(normal->text(), " &N.  BRICK7  ");
            dynamic_cast<QDialog*>(widget)->accept();
        });
    QTest::keyClick(Map(), Qt::Key_Return, Qt::ShiftModifier);
    ASSERT_EQ(Ui.BrowseRequests.size(), 1U);
    EXPECT_EQ(Ui.BrowseRequests[0].Caption, "Textures");
    for (const int line : lines)
    {
        const map::SideDef& side =
            level.SideDefs[level.LineDefs[static_cast<std::size_t>(line)].SideDef1];
        EXPECT_EQ(side.NormalTexture.Text(), "BRICK7") << "LineDef " << line;
    }
}

TEST_F(EditorWindowsTest, CancelLeavesTheSectorsAsTheyWere)
{
    QTest::keyClick(Map(), Qt::Key_S);
    ASSERT_EQ(EditMode(), ModeSectors);
    Mark({0, 1});
    const std::vector<map::Sector> before = Records(map::Map().Level.Sectors);
    const std::uint16_t changes = map::Map().Level.ChangeCount;
    std::vector<std::int16_t> lightsWhileOpen;
    WhenModal(
        [&lightsWhileOpen](QWidget* widget)
        {
            ASSERT_EQ(widget->objectName(), "EditSector");
            EXPECT_EQ(widget->windowTitle(), "Editing 2 Sectors");
            auto* light = widget->findChild<QSpinBox*>("Light");
            ASSERT_NE(light, nullptr);
            light->setValue(77);
            emit light->editingFinished();
            const map::LevelData& level = map::Map().Level;
            lightsWhileOpen = {level.Sectors[0].Light, level.Sectors[1].Light};
            widget->grab().save(KELVAR_SCREENSHOT_DIR "/sector-editor.png");
            dynamic_cast<QDialog*>(widget)->reject();
        });
    QTest::keyClick(Map(), Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(lightsWhileOpen, (std::vector<std::int16_t>{77, 77}));
    EXPECT_EQ(Records(map::Map().Level.Sectors), before);
    EXPECT_EQ(map::Map().Level.ChangeCount, changes);
}

TEST_F(EditorWindowsTest, TheRightClickOpensTheThingEditorOnTheThingUnderThePointer)
{
    QTest::keyClick(Map(), Qt::Key_T);
    ASSERT_EQ(EditMode(), ModeThings);
    const map::LevelData& level = map::Map().Level;
    int thing = -1;
    for (int i = 0; i < level.Things.Count() && thing < 0; ++i)
    {
        const map::Thing& t = level.Things[static_cast<std::size_t>(i)];
        const QPoint at = Pixel(t.X, t.Y);
        if (Map()->rect().adjusted(40, 40, -40, -40).contains(at) &&
            view::FindNearPointer(level, view::View().Viewport, ModeThings, 10.0, at.x(), at.y()) ==
                i &&
            (t.Flags & 8) == 0)
        {
            thing = i;
        }
    }
    ASSERT_GE(thing, 0);
    const map::Thing& target = level.Things[static_cast<std::size_t>(thing)];
    const QPoint at = Pixel(target.X, target.Y);
    QTest::mouseMove(Map(), at);
    QApplication::processEvents();
    ASSERT_EQ(map::Selected().HighlightedObject, thing);

    QString title;
    WhenModal(
        [&title](QWidget* widget)
        {
            ASSERT_EQ(widget->objectName(), "ThingEdit");
            title = widget->windowTitle();
            QCheckBox* deaf = Box(widget, "Deaf");
            ASSERT_NE(deaf, nullptr);
            deaf->click();
            widget->grab().save(KELVAR_SCREENSHOT_DIR "/thing-editor.png");
            dynamic_cast<QDialog*>(widget)->accept();
        });
    const std::vector<map::Thing> before = Records(level.Things);
    QTest::mouseClick(Map(), Qt::RightButton, Qt::NoModifier, at);
    QTest::qWait(400);
    EXPECT_EQ(title, "Editing 1 Thing");
    std::vector<map::Thing> expected = before;
    expected[static_cast<std::size_t>(thing)].Flags =
        static_cast<std::uint16_t>(expected[static_cast<std::size_t>(thing)].Flags | 8);
    EXPECT_EQ(Records(map::Map().Level.Things), expected);

    QTest::keyClick(Map(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Records(map::Map().Level.Things), before);
}

TEST_F(EditorWindowsTest, TheSectorEditorAddsToEveryHeightAndOneUndoTakesItBack)
{
    QTest::keyClick(Map(), Qt::Key_S);
    Mark({4, 5, 6});
    const std::vector<map::Sector> before = Records(map::Map().Level.Sectors);
    Ui.AnswerNumber(-16);
    WhenModal(
        [](QWidget* widget)
        {
            QPushButton* floor = Button(widget, "Floor Height  ++");
            ASSERT_NE(floor, nullptr);
            floor->click();
            dynamic_cast<QDialog*>(widget)->accept();
        });
    QTest::keyClick(Map(), Qt::Key_Return, Qt::ShiftModifier);
    std::vector<map::Sector> expected = before;
    for (const std::size_t sector : {4U, 5U, 6U})
    {
        expected[sector].FloorHeight = static_cast<std::int16_t>(expected[sector].FloorHeight - 16);
    }
    EXPECT_EQ(Records(map::Map().Level.Sectors), expected)
        << "each Sector lowered from its own height";
    QTest::keyClick(Map(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Records(map::Map().Level.Sectors), before);
}

TEST_F(EditorWindowsTest, AClickOnTheSectorPanesCeilingTextureBrowsesTheFlats)
{
    QTest::keyClick(Map(), Qt::Key_S);
    Settle();
    Mark({2, 3});
    map::Selected().HighlightedObject = 2;
    Shell().Requests.RefreshInfoPanes = true;
    Window->ActOnRequests();
    auto* lines = Window->findChild<QLabel*>("InfoLines");
    ASSERT_NE(lines, nullptr);
    ASSERT_TRUE(lines->text().contains("Ceiling Texture"));
    const int spacing = lines->fontMetrics().lineSpacing();
    // Line 6 is "Ceiling Texture", line 7 its name.
    const QPoint at(10, lines->contentsRect().top() + 7 * spacing + spacing / 2);
    Ui.AnswerBrowse("CEIL1_1");
    QTest::mouseClick(lines, Qt::LeftButton, Qt::NoModifier, at);
    ASSERT_EQ(Ui.BrowseRequests.size(), 1U);
    EXPECT_EQ(Ui.BrowseRequests[0].Caption, "Flats");
    const map::LevelData& level = map::Map().Level;
    EXPECT_EQ(level.Sectors[2].CeilingTexture.Text(), "CEIL1_1");
    EXPECT_EQ(level.Sectors[3].CeilingTexture.Text(), "CEIL1_1");
    EXPECT_TRUE(lines->text().contains("CEIL1_1"));
}

TEST_F(EditorWindowsTest, TheLevelChoiceOffersTheLevelsBrowser)
{
    Ui.AnswerList(static_cast<int>(wad::Wad().Levels.size())).AnswerBrowse("MAP03");
    QTest::keyClick(Map(), Qt::Key_F2, Qt::ShiftModifier);
    ASSERT_FALSE(Ui.ListItems.empty());
    EXPECT_EQ(Ui.ListItems.back().back(), BrowseLevelsEntry);
    ASSERT_EQ(Ui.BrowseRequests.size(), 1U);
    EXPECT_EQ(Ui.BrowseRequests[0].Caption, "Levels");
    EXPECT_EQ(std::string(Shell().Project.LevelName, strnlen(Shell().Project.LevelName, 8)),
              "MAP03");
}

TEST(GeneralizedDialog, ComposesTheTypeItOpensOnAcrossTheRange)
{
    // Every 7th number reaches each field value of every category at least once.
    for (int type = 12160; type <= 32767; type += 7)
    {
        const GeneralizedDialog dialog(static_cast<std::uint16_t>(type), nullptr);
        ASSERT_EQ(dialog.Type(), type);
        const game::GeneralizedCategoryRow& row =
            game::CategoryRow(*game::CategoryOfType(static_cast<std::uint16_t>(type)));
        ASSERT_EQ(dialog.objectName(), row.Dialog);
        ASSERT_EQ(dialog.windowTitle(), row.Title);
    }
}

TEST(GeneralizedDialog, SwitchingFloorsToCeilingsKeepsTheFields)
{
    const std::uint16_t floor = 24576 + 0x1C7; // fields above the trigger and speed
    GeneralizedDialog dialog(floor, nullptr);
    auto* ceiling = dialog.findChildren<QRadioButton*>().at(1);
    ASSERT_EQ(ceiling->text(), "Ceiling");
    ceiling->click();
    EXPECT_EQ(dialog.windowTitle(), "BOOM Ceilings");
    dialog.grab().save(KELVAR_SCREENSHOT_DIR "/generalized-dialog.png");
    EXPECT_EQ(dialog.Type(), 16384 + 0x1C7);
    EXPECT_EQ(dialog.findChild<QLabel*>("GeneralizedResult")->text().toStdString(),
              "16839 (41C7)  " + game::GeneralizedLineName(16384 + 0x1C7));
}

TEST_F(EditorWindowsTest, TheThingMaskHidesThingsFromTheBoxSelection)
{
    QTest::keyClick(Map(), Qt::Key_T);
    WhenModal(
        [](QWidget* widget)
        {
            ASSERT_EQ(widget->objectName(), "ThingMask");
            QCheckBox* enemies = Box(widget, "Enemies");
            ASSERT_NE(enemies, nullptr);
            enemies->setChecked(false);
            widget->grab().save(KELVAR_SCREENSHOT_DIR "/thing-mask.png");
            dynamic_cast<QDialog*>(widget)->accept();
        });
    QTest::keyClick(Map(), Qt::Key_K);
    EXPECT_FALSE(
        game::TheThingMask().Categories[static_cast<std::size_t>(game::MaskCategory::Enemies)]);
    const map::ObjectList all =
        map::SelectInBox(map::Map().Level, ModeThings, -40000, -40000, 40000, 40000);
    ASSERT_GT(all.Size(), 0);
    for (const std::int32_t object : all.Objects())
    {
        EXPECT_NE(
            game::MaskCategoryOf(map::Map().Level.Things[static_cast<std::size_t>(object)].Type),
            game::MaskCategory::Enemies);
    }
    EXPECT_LT(all.Size(), map::Map().Level.Things.Count());
    game::TheThingMask() = {};
    ApplyThingMask();
}

} // namespace
} // namespace kelvar::app
