// The TestR3D dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/ui/TestR3dDialog.h"

#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace kelvar::run
{
namespace
{

using V = Viewer3DOptions;

constexpr SwitchRow<V> GeneralSwitches[] = {
    {"Load ALL Files (if you have custom textures in another File)", "LoadAllFiles",
     &V::LoadAllFiles},
    {" Wait* for 3D to End", "WaitFor3D", &V::WaitFor3D},
    {"* Prompt", "Prompt", &V::Prompt},
    {"nomonsters", "NoMonsters", &V::NoMonsters},
    {"nomd2", "NoMd2", &V::NoMd2},
    {"noobjects", "NoObjects", &V::NoObjects},
    {"lights active", "LightsActive", &V::LightsActive},
    {"no console", "NoConsole", &V::NoConsole},
    {"no sprites", "NoSprites", &V::NoSprites},
    {"no escape", "NoEscape", &V::NoEscape},
    {"no infight", "NoInfight", &V::NoInfight},
    {"Disable \"W\" key Exit\n(F10 also Exits)", "DisableWKey", &V::DisableWKey},
};

constexpr SwitchRow<V> EditSwitches[] = {
    {"Auto Position", "AutoPosition", &V::AutoPosition},
    {"Invisible Things", "InvisibleThings", &V::InvisibleThings},
    {"Clip to Floor", "ClipToFloor", &V::ClipToFloor},
    {"Clip to Ceiling", "ClipToCeiling", &V::ClipToCeiling},
    {"Auto Speed", "AutoSpeed", &V::AutoSpeed},
    {"Analyze", "Analyze", &V::Analyze},
    {"Caching", "Caching", &V::Caching},
    {"Use Specials", "UseSpecials", &V::UseSpecials},
    {"HiRes Flats", "HiResFlats", &V::HiResFlats},
    {"HiRes TX", "HiResTx", &V::HiResTx},
    {"HiResTexture", "HiResTexture", &V::HiResTexture},
};

constexpr SwitchRow<V> SaveSwitches[] = {
    {"Show  invisible lines", "ShowInvisibleLines", &V::ShowInvisibleLines},
    {"Remove unused", "RemoveUnused", &V::RemoveUnused},
    {"Apply missing textures", "ApplyMissingTextures", &V::ApplyMissingTextures},
    {"Check invalid textures", "CheckInvalidTextures", &V::CheckInvalidTextures},
    {"Merge Duplicate Vertices", "MergeDuplicateVertices", &V::MergeDuplicateVertices},
    {"See Node Results", "SeeNodeResults", &V::SeeNodeResults},
    {"Copy All Special Lumps", "CopyAllSpecialLumps", &V::CopyAllSpecialLumps},
    {"AutoFix Sides", "AutoFixSides", &V::AutoFixSides},
    {"Clear all Sector Specials", "ClearSectorSpecials", &V::ClearSectorSpecials},
    {"R3Dglbsp Nodes", "R3dglbspNodes", &V::R3dglbspNodes},
};

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
    AddGeneralPage(pages);
    AddEditPage(pages);
    AddScreenPage(pages);
    AddPage(pages, "Map Save", SaveSwitches);
    layout->addWidget(pages);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* playOnly = buttons->addButton("Play Only", QDialogButtonBox::ActionRole);
    playOnly->setObjectName("PlayOnly");
    connect(buttons, &QDialogButtonBox::accepted, this, [this] { done(ViewerEdit); });
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { done(ViewerCancel); });
    connect(playOnly, &QPushButton::clicked, this, [this] { done(ViewerPlayOnly); });
    layout->addWidget(buttons);
}

QVBoxLayout* TestR3dDialog::AddPage(QTabWidget* pages, const QString& title,
                                    std::span<const SwitchRow<Viewer3DOptions>> switches)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (const SwitchRow<Viewer3DOptions>& row : switches)
    {
        layout->addWidget(Switches.Add(row, Original));
    }
    pages->addTab(page, title);
    return layout;
}

QSpinBox* TestR3dDialog::AddNumber(QFormLayout* form, const QString& label, const char* name,
                                   int low, int high, int value)
{
    QSpinBox* box = NumberBox(name, low, high, value);
    form->addRow(label, box);
    return box;
}

void TestR3dDialog::AddGeneralPage(QTabWidget* pages)
{
    QVBoxLayout* layout = AddPage(pages, "Options", GeneralSwitches);
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
}

void TestR3dDialog::AddEditPage(QTabWidget* pages)
{
    QVBoxLayout* layout = AddPage(pages, "Edit", EditSwitches);
    auto* numbers = new QFormLayout;
    Speed = AddNumber(numbers, "Speed", "Speed", 0, 1000, Original.Speed);
    layout->addLayout(numbers);
    auto* scope = new QHBoxLayout;
    Scope = Choices(this, scope, "Scope", {"complete", "partial", "play"},
                    static_cast<int>(Original.Scope));
    layout->addLayout(scope);
}

void TestR3dDialog::AddScreenPage(QTabWidget* pages)
{
    QVBoxLayout* layout = AddPage(pages, "Screen", {});
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
}

Viewer3DOptions TestR3dDialog::Options() const
{
    Viewer3DOptions options = Original;
    options.ViewerPath = ViewerPath->text().toStdString();
    options.ViewerDirectory = ViewerDirectory->text().toStdString();
    options.ViewerParameters = ViewerParameters->text().toStdString();
    Switches.Store(options);
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
