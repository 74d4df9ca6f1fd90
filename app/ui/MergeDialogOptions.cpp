// The import and export settings page, and its Color && Gamma page.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MergeDialog.h"
#include "app/ui/MergeDialogParts.h"
#include "gfx/GamePalette.h"
#include "lumps/ExportList.h"
#include "sound/SoundState.h"
#include "wad/LumpName.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <tuple>

namespace kelvar::app
{
namespace
{

QSpinBox* Spin(int low, int high, int value, QWidget* parent)
{
    auto* spin = new QSpinBox(parent);
    spin->setRange(low, high);
    spin->setValue(value);
    spin->setMinimumWidth(72);
    return spin;
}

// Two radio buttons of one choice in a row, the one matching `current` checked.
std::pair<QRadioButton*, QRadioButton*> Pair(QGridLayout* grid, int row, const char* first,
                                             const char* second, bool firstChosen, QWidget* parent)
{
    auto* group = new QButtonGroup(parent);
    auto* a = new QRadioButton(first, parent);
    auto* b = new QRadioButton(second, parent);
    group->addButton(a);
    group->addButton(b);
    (firstChosen ? a : b)->setChecked(true);
    grid->addWidget(a, row, 1);
    grid->addWidget(b, row, 2);
    return {a, b};
}

// A field with its label before it, the label's letter taking the focus to the field.
void AddLabelled(QGridLayout* grid, int row, int column, const char* text, QWidget* field,
                 QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    grid->addWidget(label, row, column);
    grid->addWidget(field, row, column + 1);
}

} // namespace

LumpOptionsDialog::LumpOptionsDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Lump Import/Export Options");
    setObjectName("LumpImportExportOptions");
    const lumps::ExportSettings& settings = lumps::Exports().Settings;
    const sound::SoundState& tempos = sound::Sound();
    auto* layout = new QVBoxLayout(this);

    auto* formats = new QGroupBox("Formats", this);
    auto* grid = new QGridLayout(formats);
    grid->addWidget(new QLabel("Graphics export:", formats), 0, 0);
    std::tie(Bmp, Pcx) = Pair(grid, 0, "&BMP", "&PCX",
                              wad::UpperText(settings.AutoGraphicFormat) != ".PCX", formats);
    grid->addWidget(new QLabel("Music:", formats), 1, 0);
    std::tie(Mid, Mus) =
        Pair(grid, 1, "M&ID", "M&US", wad::UpperText(settings.AutoMusicFormat) != ".MUS", formats);
    grid->addWidget(new QLabel("Sound:", formats), 2, 0);
    std::tie(Wav, Snd) =
        Pair(grid, 2, "&WAV", "&SND", wad::UpperText(settings.AutoSoundFormat) != ".SND", formats);
    grid->setColumnStretch(3, 1);
    layout->addWidget(formats);

    const gfx::ImportSizeLimits& limits = settings.ImportLimits;
    auto* sizes = new QGroupBox("Picture import size", this);
    auto* sizeGrid = new QGridLayout(sizes);
    MaxWidth = Spin(1, 2048, limits.MaxWidth, sizes);
    MaxHeight = Spin(1, 2048, limits.MaxHeight, sizes);
    MinWidth = Spin(1, 2048, limits.MinWidth, sizes);
    MinHeight = Spin(1, 2048, limits.MinHeight, sizes);
    AddLabelled(sizeGrid, 0, 0, "Maximum size &X", MaxWidth, sizes);
    AddLabelled(sizeGrid, 0, 2, "&Y", MaxHeight, sizes);
    AddLabelled(sizeGrid, 1, 0, "Minimum size X", MinWidth, sizes);
    AddLabelled(sizeGrid, 1, 2, "Y", MinHeight, sizes);
    sizeGrid->setColumnStretch(4, 1);
    layout->addWidget(sizes);

    auto* music = new QGroupBox("MIDI tempo", this);
    auto* musicGrid = new QGridLayout(music);
    MusToMidi = Spin(1, 999, tempos.MusToMidiTempo, music);
    MidiToMus = Spin(1, 999, tempos.MidiToMusTempo, music);
    AddLabelled(musicGrid, 0, 0, "MUStoMIDI", MusToMidi, music);
    AddLabelled(musicGrid, 0, 2, "MIDItoMUS", MidiToMus, music);
    musicGrid->setColumnStretch(4, 1);
    layout->addWidget(music);

    auto* row = new QHBoxLayout();
    auto* color = ToolButton("&Color && Gamma...", this);
    connect(color, &QPushButton::clicked, this,
            [this]
            {
                ColorGammaDialog dialog(this);
                dialog.exec();
            });
    row->addWidget(color);
    row->addStretch();
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    row->addWidget(buttons);
    layout->addLayout(row);
}

void LumpOptionsDialog::accept()
{
    lumps::ExportSettings& settings = lumps::Exports().Settings;
    settings.AutoGraphicFormat = Pcx->isChecked() ? ".PCX" : ".BMP";
    settings.AutoMusicFormat = Mus->isChecked() ? ".MUS" : ".MID";
    settings.AutoSoundFormat = Snd->isChecked() ? ".SND" : ".WAV";
    // A minimum above its maximum would refuse every picture: the larger value is the maximum.
    gfx::ImportSizeLimits& limits = settings.ImportLimits;
    limits.MaxWidth = std::max(MaxWidth->value(), MinWidth->value());
    limits.MinWidth = std::min(MaxWidth->value(), MinWidth->value());
    limits.MaxHeight = std::max(MaxHeight->value(), MinHeight->value());
    limits.MinHeight = std::min(MaxHeight->value(), MinHeight->value());
    sound::Sound().MusToMidiTempo = MusToMidi->value();
    sound::Sound().MidiToMusTempo = MidiToMus->value();
    QDialog::accept();
}

bool LumpOptionsDialog::Ask(QWidget* parent)
{
    LumpOptionsDialog dialog(parent);
    return dialog.exec() == QDialog::Accepted;
}

ColorGammaDialog::ColorGammaDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Color & Gamma");
    setObjectName("ColorGamma");
    const gfx::PaletteOptions& options = gfx::Palettes().Options;
    auto* layout = new QVBoxLayout(this);
    auto* grid = new QGridLayout();
    Index = Spin(0, 255, options.TransparentIndex, this);
    Red = Spin(0, 255, options.TransparentRed, this);
    Green = Spin(0, 255, options.TransparentGreen, this);
    Blue = Spin(0, 255, options.TransparentBlue, this);
    Gamma = Spin(-50, 50, options.ImportGamma, this);
    AddLabelled(grid, 0, 0, "Transparent &index", Index, this);
    AddLabelled(grid, 1, 0, "&Red", Red, this);
    AddLabelled(grid, 2, 0, "&Green", Green, this);
    AddLabelled(grid, 3, 0, "&Blue", Blue, this);
    AddLabelled(grid, 4, 0, "Import g&amma", Gamma, this);
    auto* swatch = new QLabel(this);
    swatch->setObjectName("Swatch");
    swatch->setMinimumSize(48, 48);
    swatch->setFrameShape(QFrame::Box);
    grid->addWidget(swatch, 0, 2, 4, 1);
    const auto paint = [this, swatch]
    {
        swatch->setStyleSheet(QString("background-color: rgb(%1, %2, %3);")
                                  .arg(Red->value())
                                  .arg(Green->value())
                                  .arg(Blue->value()));
    };
    for (QSpinBox* spin : {Red, Green, Blue})
    {
        connect(spin, &QSpinBox::valueChanged, this, paint);
    }
    paint();
    layout->addLayout(grid);

    auto* defaults = new QHBoxLayout();
    auto* kelvar = ToolButton("&Kelvar Default", this);
    auto* wintex = ToolButton("&Wintex default", this);
    connect(kelvar, &QPushButton::clicked, this, [this] { SetColor(251, 255, 0, 255); });
    connect(wintex, &QPushButton::clicked, this, [this] { SetColor(247, 0, 255, 255); });
    defaults->addWidget(kelvar);
    defaults->addWidget(wintex);
    layout->addLayout(defaults);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void ColorGammaDialog::SetColor(int index, int red, int green, int blue)
{
    Index->setValue(index);
    Red->setValue(red);
    Green->setValue(green);
    Blue->setValue(blue);
}

void ColorGammaDialog::accept()
{
    gfx::PaletteOptions& options = gfx::Palettes().Options;
    options.TransparentIndex = Index->value();
    options.TransparentRed = Red->value();
    options.TransparentGreen = Green->value();
    options.TransparentBlue = Blue->value();
    options.ImportGamma = Gamma->value();
    QDialog::accept();
}

} // namespace kelvar::app
