// The TestR3D dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/ui/TestR3dDialog.h"

#include "wad/WadState.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace kelvar::run
{
namespace
{

QLineEdit* PathEdit(const char* name, const std::string& value)
{
    auto* edit = new QLineEdit(QString::fromStdString(value));
    edit->setObjectName(name);
    edit->setMaxLength(static_cast<int>(wad::MaxRecordPathLength));
    return edit;
}

// A row of radio buttons whose ids are their positions.
QButtonGroup* Choices(QWidget* owner, QBoxLayout* layout, const char* name,
                      std::initializer_list<const char*> texts, int chosen)
{
    auto* group = new QButtonGroup(owner);
    group->setObjectName(name);
    int id = 0;
    for (const char* text : texts)
    {
        auto* button = new QRadioButton(text);
        button->setObjectName(QString(name) + QString::number(id));
        button->setChecked(id == chosen);
        group->addButton(button, id++);
        layout->addWidget(button);
    }
    return group;
}

} // namespace

TestR3dDialog::TestR3dDialog(const Viewer3DOptions& options, QWidget* parent)
    : QDialog(parent), Original(options)
{
    setWindowTitle("3D Mode Texture Align");
    auto* layout = new QVBoxLayout(this);
    auto* paths = new QFormLayout;
    ViewerPath = PathEdit("ViewerPath", options.ViewerPath);
    ViewerDirectory = PathEdit("ViewerDirectory", options.ViewerDirectory);
    ViewerParameters = PathEdit("ViewerParameters", options.ViewerParameters);
    paths->addRow("3D EXE", ViewerPath);
    paths->addRow("3D Working Directory", ViewerDirectory);
    paths->addRow("Parameters", ViewerParameters);
    layout->addLayout(paths);

    auto* pages = new QTabWidget;
    pages->addTab(MakeGeneralPage(), "Options");
    pages->addTab(MakeEditPage(), "Edit");
    pages->addTab(MakeScreenPage(), "Screen");
    pages->addTab(MakeSavePage(), "Map Save");
    layout->addWidget(pages);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* playOnly = buttons->addButton("Play Only", QDialogButtonBox::ActionRole);
    playOnly->setObjectName("PlayOnly");
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { done(ViewerEdit); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { done(ViewerCancel); });
    connect(playOnly, &QPushButton::clicked, this, [this] { done(ViewerPlayOnly); });
    layout->addWidget(buttons);
}

QCheckBox* TestR3dDialog::AddSwitch(QBoxLayout* layout, const char* text,
                                    bool Viewer3DOptions::*field)
{
    auto* box = new QCheckBox(text);
    box->setChecked(Original.*field);
    layout->addWidget(box);
    Switches.emplace_back(box, field);
    return box;
}

QSpinBox* TestR3dDialog::AddNumber(QFormLayout* form, const QString& label, const char* name,
                                   int low, int high, int value)
{
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(low, high);
    box->setValue(value);
    form->addRow(label, box);
    return box;
}

QWidget* TestR3dDialog::MakeGeneralPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    using V = Viewer3DOptions;
    AddSwitch(layout, "Load ALL Files (if you have custom textures in another File)",
              &V::LoadAllFiles)
        ->setObjectName("LoadAllFiles");
    AddSwitch(layout, " Wait* for 3D to End", &V::WaitFor3D)->setObjectName("WaitFor3D");
    AddSwitch(layout, "* Prompt", &V::Prompt)->setObjectName("Prompt");
    AddSwitch(layout, "nomonsters", &V::NoMonsters)->setObjectName("NoMonsters");
    AddSwitch(layout, "nomd2", &V::NoMd2)->setObjectName("NoMd2");
    AddSwitch(layout, "noobjects", &V::NoObjects)->setObjectName("NoObjects");
    AddSwitch(layout, "lights active", &V::LightsActive)->setObjectName("LightsActive");
    AddSwitch(layout, "no console", &V::NoConsole)->setObjectName("NoConsole");
    AddSwitch(layout, "no sprites", &V::NoSprites)->setObjectName("NoSprites");
    AddSwitch(layout, "no escape", &V::NoEscape)->setObjectName("NoEscape");
    AddSwitch(layout, "no infight", &V::NoInfight)->setObjectName("NoInfight");
    AddSwitch(layout, "Disable \"W\" key Exit\n(F10 also Exits)", &V::DisableWKey)
        ->setObjectName("DisableWKey");
    auto* skills = new QHBoxLayout;
    Skill =
        Choices(this, skills, "Skill", {"*All skills", "1", "2", "3", "4", "5"}, Original.Skill);
    layout->addLayout(skills);
    auto* numbers = new QFormLayout;
    Memory = AddNumber(numbers, "Memory (MB)", "Memory", 0, 512, Original.Memory);
    Memory->setSpecialValueText("-");
    MaxFps = AddNumber(numbers, "Max FPS", "MaxFps", 0, 1000, Original.MaxFps);
    MaxFps->setSpecialValueText("-");
    layout->addLayout(numbers);
    return page;
}

QWidget* TestR3dDialog::MakeEditPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    using V = Viewer3DOptions;
    AddSwitch(layout, "Auto Position", &V::AutoPosition)->setObjectName("AutoPosition");
    AddSwitch(layout, "Invisible Things", &V::InvisibleThings)->setObjectName("InvisibleThings");
    AddSwitch(layout, "Clip to Floor", &V::ClipToFloor)->setObjectName("ClipToFloor");
    AddSwitch(layout, "Clip to Ceiling", &V::ClipToCeiling)->setObjectName("ClipToCeiling");
    AddSwitch(layout, "Auto Speed", &V::AutoSpeed)->setObjectName("AutoSpeed");
    AddSwitch(layout, "Analyze", &V::Analyze)->setObjectName("Analyze");
    AddSwitch(layout, "Caching", &V::Caching)->setObjectName("Caching");
    AddSwitch(layout, "Use Specials", &V::UseSpecials)->setObjectName("UseSpecials");
    AddSwitch(layout, "HiRes Flats", &V::HiResFlats)->setObjectName("HiResFlats");
    AddSwitch(layout, "HiRes TX", &V::HiResTx)->setObjectName("HiResTx");
    AddSwitch(layout, "HiResTexture", &V::HiResTexture)->setObjectName("HiResTexture");
    auto* numbers = new QFormLayout;
    Speed = AddNumber(numbers, "Speed", "Speed", 0, 1000, Original.Speed);
    layout->addLayout(numbers);
    auto* scope = new QHBoxLayout;
    Scope = Choices(this, scope, "Scope", {"complete", "partial", "play"},
                    static_cast<int>(Original.Scope));
    layout->addLayout(scope);
    return page;
}

QWidget* TestR3dDialog::MakeScreenPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    Screen = Choices(this, layout, "Screen",
                     {"FullScreen Hardware", "Full Screen Window", "Automatic", "Custom Hardware",
                      "Custom Window"},
                     static_cast<int>(Original.Screen));
    auto* numbers = new QFormLayout;
    Width = AddNumber(numbers, "Width", "Width", 0, 32767, Original.Width);
    Height = AddNumber(numbers, "Height", "Height", 0, 32767, Original.Height);
    XPos = AddNumber(numbers, "X", "XPos", -32768, 32767, Original.XPos);
    YPos = AddNumber(numbers, "Y", "YPos", -32768, 32767, Original.YPos);
    layout->addLayout(numbers);
    return page;
}

QWidget* TestR3dDialog::MakeSavePage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    using V = Viewer3DOptions;
    AddSwitch(layout, "Show  invisible lines", &V::ShowInvisibleLines)
        ->setObjectName("ShowInvisibleLines");
    AddSwitch(layout, "Remove unused", &V::RemoveUnused)->setObjectName("RemoveUnused");
    AddSwitch(layout, "Apply missing textures", &V::ApplyMissingTextures)
        ->setObjectName("ApplyMissingTextures");
    AddSwitch(layout, "Check invalid textures", &V::CheckInvalidTextures)
        ->setObjectName("CheckInvalidTextures");
    AddSwitch(layout, "Merge Duplicate Vertices", &V::MergeDuplicateVertices)
        ->setObjectName("MergeDuplicateVertices");
    AddSwitch(layout, "See Node Results", &V::SeeNodeResults)->setObjectName("SeeNodeResults");
    AddSwitch(layout, "Copy All Special Lumps", &V::CopyAllSpecialLumps)
        ->setObjectName("CopyAllSpecialLumps");
    AddSwitch(layout, "AutoFix Sides", &V::AutoFixSides)->setObjectName("AutoFixSides");
    AddSwitch(layout, "Clear all Sector Specials", &V::ClearSectorSpecials)
        ->setObjectName("ClearSectorSpecials");
    AddSwitch(layout, "R3Dglbsp Nodes", &V::R3dglbspNodes)->setObjectName("R3dglbspNodes");
    return page;
}

Viewer3DOptions TestR3dDialog::Options() const
{
    Viewer3DOptions options = Original;
    options.ViewerPath = ViewerPath->text().toStdString();
    options.ViewerDirectory = ViewerDirectory->text().toStdString();
    options.ViewerParameters = ViewerParameters->text().toStdString();
    for (const auto& [box, field] : Switches)
    {
        options.*field = box->isChecked();
    }
    options.Scope = static_cast<ViewerScope>(std::max(Scope->checkedId(), 0));
    options.Screen = static_cast<ViewerScreen>(std::max(Screen->checkedId(), 0));
    options.Skill = static_cast<std::int16_t>(std::max(Skill->checkedId(), 0));
    options.Width = static_cast<std::int16_t>(Width->value());
    options.Height = static_cast<std::int16_t>(Height->value());
    options.XPos = static_cast<std::int16_t>(XPos->value());
    options.YPos = static_cast<std::int16_t>(YPos->value());
    options.Speed = static_cast<std::int16_t>(Speed->value());
    options.Memory = static_cast<std::int16_t>(Memory->value());
    options.MaxFps = static_cast<std::int16_t>(MaxFps->value());
    return options;
}

int EditViewerOptions(QWidget* parent, Viewer3DOptions& options)
{
    TestR3dDialog dialog(options, parent);
    const int answer = dialog.exec();
    if (answer != ViewerCancel)
    {
        options = dialog.Options();
    }
    return answer;
}

} // namespace kelvar::run
