// The Sector editor "EditSector": heights, light, tag, type and flags, and the flats picked by
// clicking their previews.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/BrowserLists.h"
#include "app/ObjectEditors.h"
#include "app/Session.h"
#include "app/ui/EditorWindows.h"
#include "game/Generalized.h"
#include "game/TypeLookup.h"
#include "platform/Ui.h"
#include "platform/qt/QtText.h"

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

} // namespace

SectorEditorDialog::SectorEditorDialog(game::ObjectEditor& editor, QWidget* parent)
    : ObjectEditorDialog(editor, parent)
{
    setObjectName("EditSector");
    auto* content = new QWidget(this);
    auto* layout = new QHBoxLayout(content);

    auto* left = new QVBoxLayout();
    auto* grid = new QGridLayout();
    NumberRow(content, grid, 0, "&4 Light Level   ++", game::SectorField::Light)
        ->setObjectName("Light");
    NumberRow(content, grid, 1, "&5 Ceiling Height ++", game::SectorField::Ceiling)
        ->setObjectName("Ceiling");
    NumberRow(content, grid, 2, "Floor Height  ++", game::SectorField::Floor)
        ->setObjectName("Floor");
    auto* tagLabel = new QLabel("&6 LineDef Tag", content);
    auto* tag = new QSpinBox(content);
    tag->setObjectName("Tag");
    tag->setRange(0, 65535);
    tag->setKeyboardTracking(false);
    tagLabel->setBuddy(tag);
    Numbers.emplace_back(
        game::SectorField::Tag,
        new EditorNumber(
            tag, [this](int value)
            { Change([&] { (void)Edit.SetSectorField(game::SectorField::Tag, value); }); }));
    grid->addWidget(tagLabel, 3, 0);
    grid->addWidget(tag, 3, 1);
    FreeText = new QLabel(content);
    grid->addWidget(FreeText, 3, 2);
    left->addLayout(grid);

    auto* typeRow = new QHBoxLayout();
    TypeButton = new QPushButton(content);
    connect(TypeButton, &QPushButton::clicked, this,
            [this] { Change([this] { (void)ChooseSectorType(Edit); }); });
    typeRow->addWidget(TypeButton, 1);
    FlagsButton = new QPushButton("Flags", content);
    FlagsButton->setVisible(game::CurrentSectorFlags().has_value());
    connect(FlagsButton, &QPushButton::clicked, this,
            [this]
            {
                Change(
                    [this]
                    {
                        if (Session().Hooks.SectorFlags)
                        {
                            (void)Session().Hooks.SectorFlags(Edit);
                        }
                    });
            });
    typeRow->addWidget(FlagsButton);
    left->addLayout(typeRow);
    auto* clone = new QPushButton("&f  Clone Sector", content);
    clone->setEnabled(Edit.Objects().size() > 1);
    connect(clone, &QPushButton::clicked, this,
            [this] { Change([this] { (void)Edit.CloneSector(); }); });
    left->addWidget(clone);
    auto* note = new QLabel(
        "Texture Settings here and LineDef dialog are used by the Error Checker", content);
    note->setWordWrap(true);
    left->addWidget(note);
    left->addStretch();
    layout->addLayout(left, 1);

    auto* flats = new QGroupBox("Flats", content);
    auto* flatLayout = new QVBoxLayout(flats);
    Ceiling = new PicturePreview(64, 64, flats);
    Floor = new PicturePreview(64, 64, flats);
    flatLayout->addWidget(new QLabel("Choose New Ceiling", flats));
    flatLayout->addWidget(Ceiling);
    flatLayout->addWidget(new QLabel("Choose New Floor", flats));
    flatLayout->addWidget(Floor);
    connect(Ceiling, &PicturePreview::Clicked, this,
            [this] { Change([this] { (void)ChooseSectorFlat(Edit, false); }); });
    connect(Floor, &PicturePreview::Clicked, this,
            [this] { Change([this] { (void)ChooseSectorFlat(Edit, true); }); });
    layout->addWidget(flats);

    FinishLayout(content);
    Refresh();
}

QWidget* SectorEditorDialog::NumberRow(QWidget* parent, QGridLayout* grid, int row,
                                       const QString& text, game::SectorField field)
{
    // The label is a button: it adds an amount to every Sector's value ("++"), where the field
    // sets one value for all.
    auto* add = new QPushButton(text, parent);
    auto* box = new QSpinBox(parent);
    box->setRange(-32768, 32767);
    box->setKeyboardTracking(false);
    Numbers.emplace_back(
        field, new EditorNumber(box, [this, field](int value)
                                { Change([&] { (void)Edit.SetSectorField(field, value); }); }));
    connect(add, &QPushButton::clicked, this,
            [this, field, text]
            {
                const std::optional<int> delta = platform::TheUi().AskNumber(
                    text.toStdString(), "Add to every Sector", 0, -32768, 32767);
                if (delta && *delta != 0)
                {
                    Change([&] { (void)Edit.AddToSectorField(field, *delta); });
                }
            });
    grid->addWidget(add, row, 0);
    grid->addWidget(box, row, 1);
    return box;
}

void SectorEditorDialog::Refresh()
{
    if (Edit.Empty())
    {
        return;
    }
    const map::Sector& sector = Edit.HeadSector();
    for (const auto& [field, number] : Numbers)
    {
        number->Show(game::SectorFieldValue(sector, field));
    }
    const auto type = static_cast<std::int16_t>(sector.Type);
    TypeButton->setText(
        QString("Type %1  %2").arg(sector.Type).arg(Text(game::SectorTypeName(type))));
    FreeText->setText(Text(FreeNumberText(Edit)));
    const std::string ceiling = sector.CeilingTexture.Text();
    const std::string floor = sector.FloorTexture.Text();
    Ceiling->SetPicture(PreviewPicture(BrowseFlats, ceiling), Text(ceiling));
    Floor->SetPicture(PreviewPicture(BrowseFlats, floor), Text(floor));
}

} // namespace kelvar::app
