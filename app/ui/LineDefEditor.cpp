// The LineDef editor "EditLineDef2": type, tag or Hexen arguments, flags, and both sides with
// their texture previews.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"
#include "app/ObjectEditors.h"
#include "app/ui/EditorWindows.h"
#include "game/GameState.h"
#include "game/TypeLookup.h"
#include "map/MapState.h"
#include "platform/qt/QtText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kelvar::app
{
namespace
{

using platform::Text;

constexpr std::array<game::SidePart, 3> Parts{game::SidePart::Upper, game::SidePart::Normal,
                                              game::SidePart::Lower};

QSpinBox* NumberBox(QWidget* parent, int low, int high)
{
    auto* box = new QSpinBox(parent);
    box->setRange(low, high);
    box->setKeyboardTracking(false);
    return box;
}

} // namespace

LineDefEditorDialog::LineDefEditorDialog(game::ObjectEditor& editor, QWidget* parent)
    : ObjectEditorDialog(editor, parent)
{
    setObjectName("EditLineDef2");
    const bool hexen = HexenFormat();
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);

    // Type and tag.
    auto* typeRow = new QHBoxLayout();
    TypeButton = new QPushButton("&Type", content);
    TypeNumber = new QPushButton(content);
    TypeName = new QLabel(content);
    TypeName->setMinimumWidth(320);
    connect(TypeButton, &QPushButton::clicked, this,
            [this] { Change([this] { (void)ChooseLineType(Edit); }); });
    connect(TypeNumber, &QPushButton::clicked, this,
            [this] { Change([this] { (void)AskLineType(Edit); }); });
    typeRow->addWidget(TypeButton);
    typeRow->addWidget(TypeNumber);
    typeRow->addWidget(TypeName, 1);
    layout->addLayout(typeRow);
    auto* tagRow = new QHBoxLayout();
    TagButton = new QPushButton(Text(LineTagButtonText()), content);
    connect(TagButton, &QPushButton::clicked, this,
            [this] { Change([this] { (void)AskLineTag(Edit); }); });
    TagValue = new QLabel(content);
    FreeText = new QLabel(content);
    tagRow->addWidget(TagButton);
    tagRow->addWidget(TagValue);
    tagRow->addWidget(FreeText, 1);
    layout->addLayout(tagRow);

    // Flags.
    auto* flagsBox = new QGroupBox("Flags", content);
    auto* flagGrid = new QGridLayout(flagsBox);
    Flags = FlagBoxes(flagGrid, game::LineDefFlagRows(hexen, game::Game().ZdoomTypes), 4,
                      [this](std::uint16_t bit, bool on) { (void)Edit.SetLineFlag(bit, on); });
    const int nextRow = flagGrid->rowCount();
    if (hexen)
    {
        auto* label = new QLabel("Actived When", flagsBox);
        Activation = new QComboBox(flagsBox);
        for (const std::string& text : game::ActivationTexts(game::Game().ZdoomTypes))
        {
            Activation->addItem(Text(text));
        }
        label->setBuddy(Activation);
        connect(Activation, &QComboBox::activated, this,
                [this](int index)
                { Change([this, index] { (void)Edit.SetLineActivation(index); }); });
        flagGrid->addWidget(label, nextRow, 0);
        flagGrid->addWidget(Activation, nextRow, 1, 1, 2);
    }
    auto* raw = new QPushButton("Edit Raw Flags", flagsBox);
    connect(raw, &QPushButton::clicked, this,
            [this] { Change([this] { (void)EditRawFlags(Edit); }); });
    flagGrid->addWidget(raw, nextRow, 3);
    layout->addWidget(flagsBox);

    // The sides.
    auto* sides = new QHBoxLayout();
    sides->addWidget(SideGroup(1, {'U', 'N', 'L'}));
    sides->addWidget(SideGroup(2, {'P', 'O', 'W'}));
    layout->addLayout(sides);

    FinishLayout(content);
    Refresh();
}

QGroupBox* LineDefEditorDialog::SideGroup(int side, std::array<char, 3> mnemonics)
{
    SideWidgets& widgets = Sides[static_cast<std::size_t>(side - 1)];
    widgets.Mnemonics = mnemonics;
    widgets.Group = new QGroupBox(side == 1 ? "Side 1 (front)" : "Side 2 (back)", this);
    auto* grid = new QGridLayout(widgets.Group);
    static const std::array<const char*, 3> captions{"New UPPER Texture", "New NORMAL Texture",
                                                     "New LOWER Texture"};
    for (std::size_t i = 0; i < Parts.size(); ++i)
    {
        widgets.Textures[i] = new QPushButton(widgets.Group);
        widgets.Textures[i]->setToolTip(captions[i]);
        widgets.Previews[i] = new PicturePreview(96, 64, widgets.Group);
        const game::SidePart part = Parts[i];
        const auto pick = [this, side, part]
        { Change([this, side, part] { (void)ChooseSideTexture(Edit, side, part); }); };
        connect(widgets.Textures[i], &QPushButton::clicked, this, pick);
        connect(widgets.Previews[i], &PicturePreview::Clicked, this, pick);
        grid->addWidget(widgets.Textures[i], static_cast<int>(i), 0);
        grid->addWidget(widgets.Previews[i], static_cast<int>(i), 1);
    }
    auto* numbers = new QGridLayout();
    widgets.XOffset = NumberBox(widgets.Group, -32768, 32767);
    widgets.YOffset = NumberBox(widgets.Group, -32768, 32767);
    widgets.Sector = NumberBox(widgets.Group, 0, 65535);
    const std::array<std::pair<const char*, QSpinBox*>, 3> rows{
        {{"X offset", widgets.XOffset}, {"Y offset", widgets.YOffset}, {"Sector", widgets.Sector}}};
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        auto* label = new QLabel(rows[i].first, widgets.Group);
        label->setBuddy(rows[i].second);
        numbers->addWidget(label, static_cast<int>(i), 0);
        numbers->addWidget(rows[i].second, static_cast<int>(i), 1);
    }
    widgets.Numbers = {
        new EditorNumber(
            widgets.XOffset,
            [this, side](int value) {
                Change([&] { (void)Edit.SetSideXOffset(side, static_cast<std::int16_t>(value)); });
            }),
        new EditorNumber(
            widgets.YOffset,
            [this, side](int value) {
                Change([&] { (void)Edit.SetSideYOffset(side, static_cast<std::int16_t>(value)); });
            }),
        new EditorNumber(
            widgets.Sector,
            [this, side](int value) {
                Change([&] { (void)Edit.SetSideSector(side, static_cast<std::uint32_t>(value)); });
            }),
    };
    grid->addLayout(numbers, 3, 0, 1, 2);
    widgets.Delete =
        new QPushButton(side == 1 ? " &7. Delete Side1" : " &8. Delete Side2", widgets.Group);
    connect(widgets.Delete, &QPushButton::clicked, this,
            [this, side] { Change([this, side] { (void)Edit.DeleteSide(side); }); });
    widgets.Extra = new QPushButton(side == 1 ? "Clone SideDef" : "Add Side2", widgets.Group);
    connect(
        widgets.Extra, &QPushButton::clicked, this,
        [this, side]
        { Change([this, side] { (void)(side == 1 ? Edit.CloneSideDef(1) : Edit.AddSide2()); }); });
    grid->addWidget(widgets.Delete, 4, 0);
    grid->addWidget(widgets.Extra, 4, 1);
    return widgets.Group;
}

void LineDefEditorDialog::Refresh()
{
    if (Edit.Empty())
    {
        return;
    }
    const map::LineDef& line = Edit.HeadLine();
    const auto type = static_cast<std::uint16_t>(line.Type);
    TypeNumber->setText(Text(LineTypeButtonText(line.Type)));
    TypeName->setText(Text(game::Text(game::LookupLineType(type, line.Args[3]).Name)));
    FreeText->setText(Text(FreeNumberText(Edit)));
    if (HexenFormat())
    {
        const std::array<std::uint8_t, 5> args = HeadLineArguments(Edit);
        TagValue->setText(QString("%1 %2 %3 %4 %5")
                              .arg(args[0])
                              .arg(args[1])
                              .arg(args[2])
                              .arg(args[3])
                              .arg(args[4]));
    }
    else
    {
        TagValue->setText(QString("Tag %1").arg(line.Tag));
    }
    for (const auto& [box, bit] : Flags)
    {
        box->setChecked((line.Flags & bit) != 0);
    }
    if (Activation != nullptr)
    {
        Activation->setCurrentIndex((line.Flags & game::LineActivationMask) >>
                                    game::LineActivationShift);
    }
    RefreshSide(1);
    RefreshSide(2);
}

void LineDefEditorDialog::RefreshSide(int side)
{
    SideWidgets& widgets = Sides[static_cast<std::size_t>(side - 1)];
    const map::SideDef* head = Edit.HeadSide(side);
    const bool any = Edit.AnySide(side);
    for (std::size_t i = 0; i < Parts.size(); ++i)
    {
        const std::string name =
            head != nullptr ? game::SideTexture(*head, Parts[i]).Text() : std::string();
        widgets.Textures[i]->setText(Text(TextureButtonText(widgets.Mnemonics[i], name)));
        widgets.Textures[i]->setEnabled(any);
        widgets.Previews[i]->setEnabled(any);
        widgets.Previews[i]->SetPicture(
            name.empty() || name == "-" ? BrowserPicture{} : PreviewPicture(BrowseTextures, name),
            Text(name));
    }
    widgets.Numbers[0]->Show(head != nullptr ? head->XOffset : 0);
    widgets.Numbers[1]->Show(head != nullptr ? head->YOffset : 0);
    widgets.Numbers[2]->Show(
        head != nullptr ? static_cast<int>(std::min<std::uint32_t>(head->Sector, 65535)) : 0);
    for (QSpinBox* box : {widgets.XOffset, widgets.YOffset, widgets.Sector})
    {
        box->setEnabled(any);
    }
    widgets.Delete->setEnabled(any);
    if (side == 1)
    {
        widgets.Extra->setEnabled(head != nullptr && Edit.Objects().size() > 1);
    }
    else
    {
        const bool missing = std::any_of(
            Edit.Objects().begin(), Edit.Objects().end(),
            [this](std::int32_t index)
            {
                const map::LineDef& line =
                    std::as_const(Edit.Level()).LineDefs[static_cast<std::size_t>(index)];
                return line.SideDef2 == map::NoSideDef && line.SideDef1 != map::NoSideDef;
            });
        widgets.Extra->setEnabled(missing);
    }
}

} // namespace kelvar::app
