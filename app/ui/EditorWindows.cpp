// The parts the object editors share (previews, number fields, OK and Cancel), the small
// dialogs they open, and the hooks that put them in the session.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/EditorWindows.h"

#include "app/ObjectEditors.h"
#include "app/Session.h"
#include "app/ui/BrowserWindow.h"
#include "game/ThingMask.h"
#include "game/TypeLookup.h"
#include "gfx/GamePalette.h"
#include "map/LevelData.h"
#include "platform/qt/QtText.h"
#include "view/ViewState.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kelvar::app
{
namespace
{

using platform::Text;

QDialogButtonBox* OkCancel(QDialog* dialog)
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    return buttons;
}

// A radio group of `texts` in a box titled `title`; the button of value i has id i.
QButtonGroup* RadioGroup(QWidget* parent, QLayout* into, const QString& title,
                         const std::vector<QString>& texts, int checked)
{
    auto* box = new QGroupBox(title, parent);
    auto* layout = new QVBoxLayout(box);
    auto* group = new QButtonGroup(box);
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        auto* button = new QRadioButton(texts[i], box);
        group->addButton(button, static_cast<int>(i));
        layout->addWidget(button);
    }
    if (QAbstractButton* button = group->button(checked))
    {
        button->setChecked(true);
    }
    layout->addStretch();
    into->addWidget(box);
    return group;
}

} // namespace

// --- Shared parts --------------------------------------------------------------------------

PicturePreview::PicturePreview(int width, int height, QWidget* parent)
    : QLabel(parent), BoxWidth(width), BoxHeight(height)
{
    setFixedSize(width + 4, height + 4);
    setAlignment(Qt::AlignCenter);
    setFrameStyle(QFrame::Panel | QFrame::Sunken);
    setCursor(Qt::PointingHandCursor);
}

void PicturePreview::SetPicture(const BrowserPicture& picture, const QString& name)
{
    setToolTip(name);
    if (!picture.Raster)
    {
        setPixmap({});
        setText(picture.Bad ? " bad lump " : name);
        return;
    }
    const QImage image = ImageOfRaster(*picture.Raster, gfx::Palettes().DisplayPalette,
                                       picture.Holes ? picture.HoleIndex : -1);
    QImage shown = image;
    if (image.width() > BoxWidth || image.height() > BoxHeight)
    {
        shown = image.scaled(BoxWidth, BoxHeight, Qt::KeepAspectRatio, Qt::FastTransformation);
    }
    setText({});
    setPixmap(QPixmap::fromImage(shown));
}

void PicturePreview::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
    {
        emit Clicked();
    }
}

EditorNumber::EditorNumber(QSpinBox* box, std::function<void(int)> apply)
    : QObject(box), Box(box), Apply(std::move(apply))
{
    connect(box, &QSpinBox::valueChanged, this,
            [this]
            {
                if (!Showing)
                {
                    Touched = true;
                }
            });
    connect(box, &QSpinBox::editingFinished, this,
            [this]
            {
                if (Touched)
                {
                    Touched = false;
                    Apply(Box->value());
                }
            });
}

void EditorNumber::Show(int value)
{
    Showing = true;
    Box->setValue(value);
    Showing = false;
}

ObjectEditorDialog::ObjectEditorDialog(game::ObjectEditor& editor, QWidget* parent)
    : QDialog(parent), Edit(editor)
{
    setWindowTitle(Text(editor.Title()));
}

void ObjectEditorDialog::reject()
{
    (void)RevertEdits(Edit);
    QDialog::reject();
}

void ObjectEditorDialog::FinishLayout(QWidget* content)
{
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(content);
    layout->addWidget(OkCancel(this));
}

void ObjectEditorDialog::Change(const std::function<void()>& change)
{
    change();
    Refresh();
}

std::vector<std::pair<QCheckBox*, std::uint16_t>>
ObjectEditorDialog::FlagBoxes(QGridLayout* grid, const std::vector<game::FlagRow>& rows,
                              int columns, const std::function<void(std::uint16_t, bool)>& set)
{
    std::vector<std::pair<QCheckBox*, std::uint16_t>> boxes;
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        auto* box = new QCheckBox(Text(rows[i].Label), grid->parentWidget());
        const std::uint16_t bit = rows[i].Bit;
        // clicked is the user's alone: showing a value with setChecked doesn't send it.
        connect(box, &QCheckBox::clicked, this,
                [this, set, bit](bool on) { Change([&] { set(bit, on); }); });
        grid->addWidget(box, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
        boxes.emplace_back(box, bit);
    }
    return boxes;
}

// --- Hexen arguments -----------------------------------------------------------------------

HexenArgsDialog::HexenArgsDialog(game::ObjectEditor& editor, QWidget* parent)
    : QDialog(parent), Edit(editor)
{
    setObjectName("EditHexenArgs");
    const bool lines = editor.Kind() == map::KindLineDef;
    const std::uint32_t special = lines ? editor.HeadLine().Type : editor.HeadThing().Special;
    setWindowTitle(
        Text(game::Text(game::LookupLineType(static_cast<std::uint16_t>(special), 0).Name)));
    const std::vector<std::string> labels = LineArgumentLabels(special);
    const std::array<std::uint8_t, 5> values =
        lines ? HeadLineArguments(editor) : editor.HeadThing().Args;
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout();
    for (std::size_t i = 0; i < Edits.size(); ++i)
    {
        auto* label = new QLabel(Text(labels[i]), this);
        Edits[i] = new QLineEdit(QString::number(values[i]), this);
        label->setBuddy(Edits[i]);
        grid->addWidget(label, static_cast<int>(i), 0);
        grid->addWidget(Edits[i], static_cast<int>(i), 1);
    }
    layout->addLayout(grid);
    auto* free = new QLabel(Text(FreeNumberText(editor)), this);
    layout->addWidget(free);
    layout->addWidget(OkCancel(this));
}

void HexenArgsDialog::accept()
{
    std::array<std::string, 5> texts;
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        texts[i] = Edits[i]->text().toStdString();
    }
    const bool written = Edit.Kind() == map::KindLineDef ? CommitLineArguments(Edit, texts)
                                                         : CommitThingArguments(Edit, texts);
    if (written)
    {
        QDialog::accept();
    }
}

// --- Generalized LineDef types -------------------------------------------------------------

GeneralizedDialog::GeneralizedDialog(std::uint16_t type, QWidget* parent) : QDialog(parent)
{
    Category = game::CategoryOfType(type).value_or(game::GeneralizedCategory::Floor);
    auto* layout = new QVBoxLayout(this);
    auto* help = new QLabel("BOOM is a modified DOOM port\n"
                            "These types do more than the standard DOOM. You must have BOOM/ZDOOM",
                            this);
    help->setObjectName("BOOM LineDefs");
    layout->addWidget(help);
    if (Category == game::GeneralizedCategory::Floor ||
        Category == game::GeneralizedCategory::Ceiling)
    {
        // Floors and Ceilings share the dialog; switching sets the base.
        auto* row = new QHBoxLayout();
        auto* group = new QButtonGroup(this);
        auto* floors = new QRadioButton("Floor", this);
        auto* ceilings = new QRadioButton("Ceiling", this);
        group->addButton(floors, 0);
        group->addButton(ceilings, 1);
        (Category == game::GeneralizedCategory::Floor ? floors : ceilings)->setChecked(true);
        row->addWidget(floors);
        row->addWidget(ceilings);
        row->addStretch();
        layout->addLayout(row);
        connect(group, &QButtonGroup::idClicked, this,
                [this](int id)
                {
                    const std::uint16_t kept = Type();
                    const std::vector<int> values = game::DecodeFieldValues(kept);
                    Build(id == 0 ? game::GeneralizedCategory::Floor
                                  : game::GeneralizedCategory::Ceiling,
                          values);
                });
    }
    Fields = new QWidget(this);
    new QHBoxLayout(Fields);
    layout->addWidget(Fields);
    Result = new QLabel(this);
    Result->setObjectName("GeneralizedResult");
    layout->addWidget(Result);
    layout->addWidget(OkCancel(this));
    Build(Category, game::DecodeFieldValues(type));
}

void GeneralizedDialog::Build(game::GeneralizedCategory category, const std::vector<int>& values)
{
    Category = category;
    const game::GeneralizedCategoryRow& row = game::CategoryRow(category);
    setObjectName(row.Dialog);
    setWindowTitle(row.Title);
    QLayout* layout = Fields->layout();
    while (QLayoutItem* item = layout->takeAt(0))
    {
        delete item->widget();
        delete item;
    }
    Groups.clear();
    const std::vector<game::GeneralizedField>& fields = game::FieldsOf(category);
    for (std::size_t i = 0; i < fields.size(); ++i)
    {
        std::vector<QString> texts;
        for (const char* text : fields[i].Texts)
        {
            texts.push_back(*text == '\0' ? QString("(none)") : QString(text));
        }
        Groups.push_back(
            RadioGroup(Fields, layout, fields[i].Label, texts, i < values.size() ? values[i] : 0));
        connect(Groups.back(), &QButtonGroup::idClicked, this, [this] { ShowResult(); });
    }
    ShowResult();
}

void GeneralizedDialog::ShowResult()
{
    const std::uint16_t type = Type();
    Result->setText(QString("%1 (%2)  %3")
                        .arg(type)
                        .arg(QString::number(type, 16).toUpper().rightJustified(4, '0'))
                        .arg(QString::fromStdString(game::GeneralizedLineName(type))));
}

std::uint16_t GeneralizedDialog::Type() const
{
    std::vector<int> values;
    for (const QButtonGroup* group : Groups)
    {
        values.push_back(std::max(0, group->checkedId()));
    }
    return game::ComposeLineType(Category, values);
}

// --- Sector flags ----------------------------------------------------------------------------

SectorFlagsDialog::SectorFlagsDialog(game::ObjectEditor& editor, QWidget* parent)
    : QDialog(parent), Edit(editor)
{
    Bits = game::CurrentSectorFlags().value_or(game::SectorFlagBits{});
    Zdoom = Bits.Mask == 0x1F00;
    setObjectName(Zdoom ? "EditSectorZDOOM" : "EditSectorBOOM");
    setWindowTitle(Zdoom ? "ZDOOM Sector Flags" : "BOOM Sector Flags");
    const std::uint16_t type = editor.HeadSector().Type;
    auto* layout = new QVBoxLayout(this);
    auto* groups = new QHBoxLayout();
    if (!Zdoom)
    {
        const auto& lightTypes = game::BoomLightTypes;
        const auto at = std::find(lightTypes.begin(), lightTypes.end(), type & 0x1F);
        Lights =
            RadioGroup(this, groups, "Lights",
                       {"None", "Random", "FastBlink", "SlowBlink", "Pulsating", "SlowSync",
                        "FastSync", "Flicker"},
                       at == lightTypes.end() ? -1 : static_cast<int>(at - lightTypes.begin()));
    }
    const int damage = Bits.Mask == 0 ? 0 : (type & Bits.Damage) >> Bits.DamageShift;
    Damage =
        RadioGroup(this, groups, "Damage",
                   Zdoom ? std::vector<QString>{"No Damage", "Damage 5", "Damage 10", "Damage 20"}
                         : std::vector<QString>{"None", "5", "10", "20"},
                   damage);
    layout->addLayout(groups);
    Secret = new QCheckBox("Secret", this);
    Ice = new QCheckBox(Zdoom ? "BOOM Icy (friction)" : "Ice", this);
    Wind = new QCheckBox(Zdoom ? "BOOM Wind (pusher)" : "Wind", this);
    Secret->setChecked((type & Bits.Secret) != 0);
    Ice->setChecked((type & Bits.Ice) != 0);
    Wind->setChecked((type & Bits.Wind) != 0);
    for (QCheckBox* box : {Secret, Ice, Wind})
    {
        layout->addWidget(box);
    }
    layout->addWidget(OkCancel(this));
}

void SectorFlagsDialog::accept()
{
    if (Lights != nullptr && Lights->checkedId() >= 0)
    {
        (void)Edit.SetSectorType(
            game::BoomLightTypes[static_cast<std::size_t>(Lights->checkedId())],
            static_cast<std::uint16_t>(~0x1Fu & 0xFFFFu));
    }
    std::uint16_t flags =
        static_cast<std::uint16_t>(std::max(0, Damage->checkedId()) << Bits.DamageShift);
    flags = static_cast<std::uint16_t>(flags | (Secret->isChecked() ? Bits.Secret : 0) |
                                       (Ice->isChecked() ? Bits.Ice : 0) |
                                       (Wind->isChecked() ? Bits.Wind : 0));
    (void)ApplySectorFlags(Edit, flags);
    QDialog::accept();
}

// --- The Thing filter mask -----------------------------------------------------------------

ThingMaskDialog::ThingMaskDialog(QWidget* parent) : QDialog(parent)
{
    setObjectName("ThingMask");
    setWindowTitle("Thing Filter Mask");
    game::ThingMask& mask = game::TheThingMask();
    auto* layout = new QHBoxLayout(this);
    auto* first = new QGroupBox("Show Things of", this);
    auto* firstLayout = new QVBoxLayout(first);
    const std::vector<std::pair<const char*, bool*>> rows{{"Skill 1-2 (easy)", &mask.Easy},
                                                          {"Skill  3 (medium)", &mask.Medium},
                                                          {"Skill 4-5 (hard)", &mask.Hard},
                                                          {"Death Match", &mask.DeathMatch},
                                                          {"Single Player", &mask.SinglePlayer},
                                                          {"Cooperative", &mask.Cooperative},
                                                          {"Deaf   ONLY", &mask.DeafOnly},
                                                          {"Dormant  ONLY", &mask.DormantOnly},
                                                          {"Fighter", &mask.Fighter},
                                                          {"Cleric", &mask.Cleric},
                                                          {"Mage", &mask.Mage}};
    for (const auto& [label, value] : rows)
    {
        auto* box = new QCheckBox(label, first);
        box->setChecked(*value);
        firstLayout->addWidget(box);
        Boxes.emplace_back(box, value);
    }
    layout->addWidget(first);
    auto* second = new QGroupBox("Categories", this);
    auto* secondLayout = new QVBoxLayout(second);
    for (std::size_t i = 0; i < Categories.size(); ++i)
    {
        Categories[i] = new QCheckBox(Text(game::MaskCategoryLabels()[i]), second);
        Categories[i]->setChecked(mask.Categories[i]);
        secondLayout->addWidget(Categories[i]);
    }
    Numbers = new QCheckBox("Number Poly/Map/Tid", second);
    Numbers->setChecked(view::View().Options.NumberLabels);
    secondLayout->addWidget(Numbers);
    auto* right = new QVBoxLayout();
    right->addWidget(second);
    right->addWidget(OkCancel(this));
    layout->addLayout(right);
}

void ThingMaskDialog::accept()
{
    game::ThingMask& mask = game::TheThingMask();
    const game::ThingMask before = mask;
    for (const auto& [box, value] : Boxes)
    {
        *value = box->isChecked();
    }
    for (std::size_t i = 0; i < Categories.size(); ++i)
    {
        mask.Categories[i] = Categories[i]->isChecked();
    }
    bool& numbers = view::View().Options.NumberLabels;
    ChangedMask = mask != before || numbers != Numbers->isChecked();
    numbers = Numbers->isChecked();
    QDialog::accept();
}

// --- The hooks -----------------------------------------------------------------------------

void InstallEditorHooks(SessionHooks& hooks, QWidget* parent)
{
    hooks.ObjectEditor = [parent](game::ObjectEditor& editor)
    {
        std::unique_ptr<ObjectEditorDialog> dialog;
        switch (editor.Kind())
        {
        case map::KindLineDef:
            dialog = std::make_unique<LineDefEditorDialog>(editor, parent);
            break;
        case map::KindSector:
            dialog = std::make_unique<SectorEditorDialog>(editor, parent);
            break;
        case map::KindThing:
            dialog = std::make_unique<ThingEditorDialog>(editor, parent);
            break;
        default:
            return;
        }
        dialog->exec();
    };
    hooks.ThingMask = [parent]
    {
        ThingMaskDialog dialog(parent);
        return dialog.exec() == QDialog::Accepted && dialog.Changed();
    };
    hooks.GeneralizedLine = [parent](std::uint16_t type) -> std::optional<std::uint16_t>
    {
        GeneralizedDialog dialog(type, parent);
        if (dialog.exec() != QDialog::Accepted)
        {
            return std::nullopt;
        }
        return dialog.Type();
    };
    hooks.HexenArgs = [parent](game::ObjectEditor& editor)
    {
        const int before = editor.Changes();
        HexenArgsDialog dialog(editor, parent);
        (void)dialog.exec();
        return editor.Changes() != before;
    };
    hooks.SectorFlags = [parent](game::ObjectEditor& editor)
    {
        if (!game::CurrentSectorFlags())
        {
            return false;
        }
        const int before = editor.Changes();
        SectorFlagsDialog dialog(editor, parent);
        (void)dialog.exec();
        return editor.Changes() != before;
    };
}

} // namespace kelvar::app
