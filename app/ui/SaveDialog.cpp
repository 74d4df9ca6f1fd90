// The Save dialog.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/SaveDialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kelvar::app
{

SaveDialog::SaveDialog(wad::SaveOptions& options, std::function<bool()> customBuilderOk,
                       QWidget* parent)
    : QDialog(parent), Options(options), CustomBuilderOk(std::move(customBuilderOk))
{
    setWindowTitle("Kelvar - Verify REJECT, NODES & GROUP SAVE");
    setObjectName("SaveDialog");
    auto* layout = new QVBoxLayout(this);
    auto* file = new QLabel(QString::fromStdString(options.FileName), this);
    file->setObjectName("FileName");
    layout->addWidget(file);

    auto* reject = new QGroupBox("REJECT", this);
    auto* rejectLayout = new QVBoxLayout(reject);
    CopyReject = new QRadioButton("Copy Reject", reject);
    AllAttacks = new QRadioButton("ALL Attacks", reject);
    NoAttacks = new QRadioButton("NO  Attacks", reject);
    HalfAttacks = new QRadioButton("50% Attacks", reject);
    ThirdAttacks = new QRadioButton("33% Attacks", reject);
    for (QRadioButton* button : {CopyReject, AllAttacks, NoAttacks, HalfAttacks, ThirdAttacks})
    {
        rejectLayout->addWidget(button);
    }
    // The first choice that is set wins.
    QRadioButton* chosen = options.CopyReject        ? CopyReject
                           : options.AllAttacks      ? AllAttacks
                           : options.AttackStep == 1 ? HalfAttacks
                           : options.AttackStep == 2 ? ThirdAttacks
                                                     : NoAttacks;
    chosen->setChecked(true);
    layout->addWidget(reject);

    const auto check = [this, layout](const char* text, bool value)
    {
        auto* box = new QCheckBox(text, this);
        box->setChecked(value);
        layout->addWidget(box);
        return box;
    };
    GroupSave = check("Group Save Option - See Help", options.GroupSave);
    UnusedCleanup = check("Automatic Unused Object Cleanup", options.UnusedCleanup);
    RebuildNodes = check("Rebuild the Nodes ?", options.RebuildNodes);
    SeeResults = check("See Results ? [Nodes are not shown - KelvarBSP]", options.SeeResults);
    ShowBuild = check("Show Node Build ?", options.ShowBuild);
    CustomBuilder = check("Use Custom NodeBuilder", options.CustomBuilder);
    ZeroNodes = check("-0- NODES", options.ZeroNodes);
    ZeroReject = check("-0- REJECT", options.ZeroReject);
    ZeroBlockmap = check("-0- BLOCKMAP", options.ZeroBlockmap);
    layout->addWidget(new QLabel(
        "Note: The Input PWAD is ALWAYS ~KELVAR.WAD when using a Custom Node Builder", this));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SaveDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SaveDialog::reject);
    layout->addWidget(buttons);
}

void SaveDialog::Store()
{
    Options.CopyReject = CopyReject->isChecked();
    Options.AllAttacks = AllAttacks->isChecked();
    Options.AttackStep = HalfAttacks->isChecked() ? 1 : (ThirdAttacks->isChecked() ? 2 : 0);
    Options.AttackByte = 255;
    Options.GroupSave = GroupSave->isChecked();
    Options.UnusedCleanup = UnusedCleanup->isChecked();
    Options.RebuildNodes = RebuildNodes->isChecked();
    Options.SeeResults = SeeResults->isChecked();
    Options.ShowBuild = ShowBuild->isChecked();
    Options.CustomBuilder = CustomBuilder->isChecked();
    Options.ZeroNodes = ZeroNodes->isChecked();
    Options.ZeroReject = ZeroReject->isChecked();
    Options.ZeroBlockmap = ZeroBlockmap->isChecked();
}

void SaveDialog::accept()
{
    if (CustomBuilder->isChecked() && CustomBuilderOk && !CustomBuilderOk())
    {
        return;
    }
    Store();
    QDialog::accept();
}

bool SaveDialog::Ask(wad::SaveOptions& options, std::function<bool()> customBuilderOk,
                     QWidget* parent)
{
    SaveDialog dialog(options, std::move(customBuilderOk), parent);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace kelvar::app
