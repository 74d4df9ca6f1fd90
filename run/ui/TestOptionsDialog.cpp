// The TestOptions dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "run/ui/TestOptionsDialog.h"
#include "platform/qt/QtText.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kelvar::run
{
namespace
{

constexpr SwitchRow<TestOptions> FileSwitches[] = {
    {"ResponseFile", "ResponseFile", &TestOptions::ResponseFile},
    {"Short FileNames", "ShortFileNames", &TestOptions::ShortFileNames},
    {"Quote Response", "QuoteResponse", &TestOptions::QuoteResponse},
    {"Quote FileNames", "QuoteFileNames", &TestOptions::QuoteFileNames},
    {"Load ALL Files", "LoadAllFiles", &TestOptions::LoadAllFiles},
    {" Wait** for Game to End", "WaitForGame", &TestOptions::WaitForGame},
};

constexpr SwitchRow<TestOptions> GameSwitches[] = {
    {" devparm", "DevParm", &TestOptions::DevParm},
    {"nomonsters", "NoMonsters", &TestOptions::NoMonsters},
    {"nomusic", "NoMusic", &TestOptions::NoMusic},
    {"nosound", "NoSound", &TestOptions::NoSound},
    {"nosfx", "NoSfx", &TestOptions::NoSfx},
    {"fast monsters", "FastMonsters", &TestOptions::FastMonsters},
    {"deathmatch", "Deathmatch", &TestOptions::Deathmatch},
    {"altdeath", "AltDeath", &TestOptions::AltDeath},
    {"respawn", "Respawn", &TestOptions::Respawn},
};

using platform::Text;

std::string Text(const QLineEdit* edit)
{
    return edit->text().toStdString();
}

} // namespace

TestOptionsDialog::TestOptionsDialog(const TestOptions& options, const std::string& info,
                                     QWidget* parent)
    : QDialog(parent), Original(options)
{
    setWindowTitle("Test Level");
    auto* layout = new QVBoxLayout(this);
    auto* infoLine = new QLabel(Text(info));
    infoLine->setObjectName("Info");
    layout->addWidget(infoLine);

    auto* form = new QFormLayout;
    GameExe = AddPathRow(form, "Game EXE", "GameExe", options.GameExe, false);
    GameDirectory =
        AddPathRow(form, "Game Working Directory", "GameDirectory", options.GameDirectory, true);
    WarpText = PathEdit("WarpText", options.WarpText);
    WarpText->setPlaceholderText(" -warp ");
    form->addRow("Custom Warp", WarpText);
    ExtraParameters = PathEdit("ExtraParameters", options.ExtraParameters);
    form->addRow("Extra Parameters", ExtraParameters);
    Skill = NumberBox("Skill", 0, 5, options.Skill);
    Skill->setSpecialValueText("-");
    form->addRow("Skill", Skill);
    Turbo = NumberBox("Turbo", 0, 400, options.Turbo);
    Turbo->setSpecialValueText("-");
    form->addRow("Turbo", Turbo);
    layout->addLayout(form);

    auto* switches = new QGridLayout;
    int line = 0;
    for (const SwitchRow<TestOptions>& row : FileSwitches)
    {
        switches->addWidget(Switches.Add(row, options), line++, 0);
    }
    line = 0;
    for (const SwitchRow<TestOptions>& row : GameSwitches)
    {
        switches->addWidget(Switches.Add(row, options), line++, 1);
    }
    layout->addLayout(switches);

    auto* notes = new QGroupBox("Testing Level Notes");
    auto* notesLayout = new QVBoxLayout(notes);
    notesLayout->addWidget(
        new QLabel("**For NOWAIT\nAlt+Tab to get Game Active \nYou can't save to the PWAD"));
    layout->addWidget(notes);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

QLineEdit* TestOptionsDialog::AddPathRow(QFormLayout* form, const QString& label,
                                         const QString& name, const std::string& value,
                                         bool directory)
{
    QLineEdit* edit = PathEdit(name, value);
    auto* browse = new QPushButton("...");
    browse->setObjectName(name + "Browse");
    connect(browse, &QPushButton::clicked, this,
            [this, edit, label, directory]
            {
                const QString chosen =
                    directory ? QFileDialog::getExistingDirectory(this, label, edit->text())
                              : QFileDialog::getOpenFileName(this, label, edit->text());
                if (!chosen.isEmpty())
                {
                    edit->setText(chosen);
                }
            });
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(browse);
    form->addRow(label, row);
    return edit;
}

TestOptions TestOptionsDialog::Options() const
{
    TestOptions options = Original;
    options.GameExe = Text(GameExe);
    options.GameDirectory = Text(GameDirectory);
    options.WarpText = Text(WarpText);
    options.ExtraParameters = Text(ExtraParameters);
    options.Skill = static_cast<std::int16_t>(Skill->value());
    options.Turbo = static_cast<std::int16_t>(Turbo->value());
    Switches.Store(options);
    return options;
}

bool EditTestOptions(QWidget* parent, TestOptions& options, const std::string& info)
{
    TestOptionsDialog dialog(options, info, parent);
    if (dialog.exec() != QDialog::Accepted)
    {
        return false;
    }
    options = dialog.Options();
    return true;
}

} // namespace kelvar::run
