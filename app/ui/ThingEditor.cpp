// The Thing editor "ThingEdit": type (menu, number or picture), angle, position, the Hexen
// fields and the flags.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"
#include "app/ObjectEditors.h"
#include "app/Session.h"
#include "app/ui/EditorWindows.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "platform/qt/QtText.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kelvar::app
{
namespace
{

using platform::Text;

// The angle buttons, and the angle each stands for.
constexpr std::array<std::pair<const char*, int>, 8> AngleButtons{{{"N", 90},
                                                                   {"NE", 45},
                                                                   {"E", 0},
                                                                   {"SE", 315},
                                                                   {"S", 270},
                                                                   {"SW", 225},
                                                                   {"W", 180},
                                                                   {"NW", 135}}};

} // namespace

ThingEditorDialog::ThingEditorDialog(game::ObjectEditor& editor, QWidget* parent)
    : ObjectEditorDialog(editor, parent)
{
    setObjectName("ThingEdit");
    const bool hexen = HexenFormat();
    auto* content = new QWidget(this);
    auto* layout = new QHBoxLayout(content);
    auto* left = new QVBoxLayout();

    // The type.
    auto* typeRow = new QHBoxLayout();
    TypeButton = new QPushButton("&Type", content);
    connect(TypeButton, &QPushButton::clicked, this,
            [this] { Change([this] { (void)ChooseThingType(Edit); }); });
    TypeName = new QLabel(content);
    TypeName->setMinimumWidth(260);
    typeRow->addWidget(TypeButton);
    typeRow->addWidget(TypeName, 1);
    left->addLayout(typeRow);

    // The numbers.
    auto* grid = new QGridLayout();
    std::vector<std::tuple<const char*, game::ThingField, int, int>> rows{
        {"Type #", game::ThingField::Type, 0, 65535},
        {"PolyID/Angle", game::ThingField::Angle, 0, 359},
        {"X-coord", game::ThingField::X, -32768, 32767},
        {"Y-coord", game::ThingField::Y, -32768, 32767}};
    if (hexen)
    {
        rows.emplace_back("Z-height", game::ThingField::Z, -32768, 32767);
        rows.emplace_back("Thing TID", game::ThingField::Tid, 0, 65535);
    }
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const auto& [text, field, low, high] = rows[i];
        auto* label = new QLabel(text, content);
        auto* box = new QSpinBox(content);
        box->setRange(low, high);
        box->setKeyboardTracking(false);
        label->setBuddy(box);
        const game::ThingField changed = field;
        Numbers.emplace_back(field,
                             new EditorNumber(box,
                                              [this, changed](int value)
                                              {
                                                  Change(
                                                      [&]
                                                      {
                                                          const bool headOnly =
                                                              changed == game::ThingField::Angle &&
                                                              !AllAngles->isChecked();
                                                          Edit.SetHeadOnly(headOnly);
                                                          (void)Edit.SetThingField(changed, value);
                                                          Edit.SetHeadOnly(false);
                                                      });
                                              }));
        grid->addWidget(label, static_cast<int>(i), 0);
        grid->addWidget(box, static_cast<int>(i), 1);
    }
    left->addLayout(grid);
    FreeText = new QLabel(content);
    left->addWidget(FreeText);
    if (hexen)
    {
        auto* hexenRow = new QHBoxLayout();
        SpecialButton = new QPushButton("&Special", content);
        connect(SpecialButton, &QPushButton::clicked, this,
                [this] { Change([this] { (void)ChooseThingSpecial(Edit); }); });
        auto* args = new QPushButton("&Args", content);
        connect(args, &QPushButton::clicked, this,
                [this]
                {
                    Change(
                        [this]
                        {
                            if (Session().Hooks.HexenArgs)
                            {
                                (void)Session().Hooks.HexenArgs(Edit);
                            }
                        });
                });
        hexenRow->addWidget(SpecialButton, 1);
        hexenRow->addWidget(args);
        left->addLayout(hexenRow);
    }

    // The angle.
    auto* angleBox = new QGroupBox("Angle", content);
    auto* angleGrid = new QGridLayout(angleBox);
    Angles = new QButtonGroup(angleBox);
    static const std::array<std::pair<int, int>, 8> places{
        {{0, 1}, {0, 2}, {1, 2}, {2, 2}, {2, 1}, {2, 0}, {1, 0}, {0, 0}}};
    for (std::size_t i = 0; i < AngleButtons.size(); ++i)
    {
        auto* button = new QRadioButton(AngleButtons[i].first, angleBox);
        Angles->addButton(button, AngleButtons[i].second);
        angleGrid->addWidget(button, places[i].first, places[i].second);
    }
    AllAngles = new QCheckBox("Change ALL Angles", angleBox);
    AllAngles->setChecked(true);
    angleGrid->addWidget(AllAngles, 3, 0, 1, 3);
    connect(Angles, &QButtonGroup::idClicked, this,
            [this](int angle)
            {
                Change(
                    [this, angle]
                    {
                        Edit.SetHeadOnly(!AllAngles->isChecked());
                        (void)Edit.SetThingField(game::ThingField::Angle, angle);
                        Edit.SetHeadOnly(false);
                    });
            });
    left->addWidget(angleBox);
    layout->addLayout(left, 1);

    // The picture and the flags.
    auto* right = new QVBoxLayout();
    Picture = new PicturePreview(96, 96, content);
    connect(Picture, &PicturePreview::Clicked, this,
            [this] { Change([this] { (void)BrowseThingType(Edit); }); });
    right->addWidget(Picture);
    right->addWidget(new QLabel("Click on Picture to Browse", content));
    auto* flagsBox = new QGroupBox(hexen ? "HEXEN Appears" : "Flags", content);
    auto* flagGrid = new QGridLayout(flagsBox);
    Flags = FlagBoxes(flagGrid, game::ThingFlagRows(hexen, game::Game().ZdoomTypes), 2,
                      [this](std::uint16_t bit, bool on) { (void)Edit.SetThingFlag(bit, on); });
    auto* skills = new QPushButton("Set / Clear Skills", flagsBox);
    connect(skills, &QPushButton::clicked, this,
            [this]
            {
                // All three skills on, unless the head has them all: then all off.
                const bool all =
                    (Edit.HeadThing().Flags & game::ThingSkillBits) == game::ThingSkillBits;
                Change(
                    [this, all]
                    {
                        for (const std::uint16_t bit :
                             {std::uint16_t{1}, std::uint16_t{2}, std::uint16_t{4}})
                        {
                            (void)Edit.SetThingFlag(bit, !all);
                        }
                    });
            });
    auto* raw = new QPushButton("Edit Raw Flags", flagsBox);
    connect(raw, &QPushButton::clicked, this,
            [this] { Change([this] { (void)EditRawFlags(Edit); }); });
    const int next = flagGrid->rowCount();
    flagGrid->addWidget(skills, next, 0);
    flagGrid->addWidget(raw, next, 1);
    right->addWidget(flagsBox);
    right->addStretch();
    layout->addLayout(right);

    FinishLayout(content);
    Refresh();
}

void ThingEditorDialog::Refresh()
{
    if (Edit.Empty())
    {
        return;
    }
    const map::Thing& thing = Edit.HeadThing();
    TypeName->setText(QString("%1  %2").arg(thing.Type).arg(Text(game::ThingTypeName(thing.Type))));
    for (const auto& [field, number] : Numbers)
    {
        number->Show(game::ThingFieldValue(thing, field));
    }
    if (QAbstractButton* button = Angles->button(thing.Angle))
    {
        button->setChecked(true);
    }
    else if (QAbstractButton* checked = Angles->checkedButton())
    {
        // No button stands for the angle: none is shown checked.
        Angles->setExclusive(false);
        checked->setChecked(false);
        Angles->setExclusive(true);
    }
    for (const auto& [box, bit] : Flags)
    {
        box->setChecked((thing.Flags & bit) != 0);
    }
    FreeText->setText(Text(FreeNumberText(Edit)));
    if (SpecialButton != nullptr)
    {
        SpecialButton->setText(
            QString("&Special  %1 %2")
                .arg(thing.Special)
                .arg(Text(game::Text(game::LookupLineType(thing.Special, 0).Name))));
    }
    Picture->SetPicture(ThingPreview(thing.Type), Text(game::ThingTypeName(thing.Type)));
}

} // namespace kelvar::app
