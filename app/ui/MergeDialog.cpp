// The Merge/Import window: the target's list beside the import list, the options, Save.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MergeDialog.h"

#include "app/ui/LumpTools.h"
#include "app/ui/MergeDialogParts.h"
#include "lumps/ExportList.h"
#include "lumps/ToolFiles.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QRadioButton>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <system_error>

namespace kelvar::app
{
MergeDialog::MergeDialog(QWidget* parent) : QDialog(parent)
{
    setWindowTitle("Merge/Import");
    setObjectName("MergeDialog");
    auto* layout = new QVBoxLayout(this);

    auto* fileRow = new QHBoxLayout();
    auto* fileLabel = new QLabel("Target file:", this);
    TargetFile = FileLineLabel("TargetFile", this);
    auto* open = ToolButton("&Open Target...", this);
    auto* create = ToolButton("Ne&w Target...", this);
    connect(open, &QPushButton::clicked, this, &MergeDialog::OpenTarget);
    connect(create, &QPushButton::clicked, this, &MergeDialog::NewTarget);
    fileRow->addWidget(fileLabel);
    fileRow->addWidget(TargetFile, 1);
    fileRow->addWidget(open);
    fileRow->addWidget(create);
    layout->addLayout(fileRow);

    auto* sides = new QSplitter(Qt::Horizontal, this);
    sides->setChildrenCollapsible(false);
    sides->addWidget(BuildTargetSide());
    sides->addWidget(BuildImportSide());
    sides->setStretchFactor(0, 2);
    sides->setStretchFactor(1, 3);
    layout->addWidget(sides, 1);
    layout->addWidget(BuildOptions());

    auto* buttons = new QHBoxLayout();
    auto* options = ToolButton("O&ptions...", this);
    auto* save = ToolButton("&Save", this);
    save->setObjectName("Save");
    auto* exit = ToolButton("E&xit", this);
    connect(options, &QPushButton::clicked, this, &MergeDialog::OpenOptions);
    connect(save, &QPushButton::clicked, this, &MergeDialog::Save);
    connect(exit, &QPushButton::clicked, this, &MergeDialog::reject);
    buttons->addWidget(options);
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(exit);
    layout->addLayout(buttons);

    ShowOptions();
    Refresh();
    resize(1080, 660);
}

QWidget* MergeDialog::BuildTargetSide()
{
    auto* box = new QGroupBox(this);
    TargetBox = box;
    auto* layout = new QHBoxLayout(box);
    Targets = new TargetListView(false, box);
    Targets->setObjectName("TargetList");
    connect(Targets, &QTreeWidget::itemSelectionChanged, this,
            [this] { Merge.Selected = Targets->CurrentHead(); });
    layout->addWidget(Targets, 1);
    auto* column = new QVBoxLayout();
    (void)AddTargetCommandButtons(column, box, true,
                                  [this](lumps::TargetCommand command) { RunCommand(command); });
    auto* verify = ToolButton("&Verify Pnames", box);
    connect(verify, &QPushButton::clicked, this, &MergeDialog::VerifyPnames);
    column->addWidget(verify);
    column->addStretch();
    layout->addLayout(column);

    AddTargetCommandKeys(Targets, [this](lumps::TargetCommand command) { RunCommand(command); });
    return box;
}

QWidget* MergeDialog::BuildImportSide()
{
    auto* box = new QGroupBox("Files to Import", this);
    auto* layout = new QVBoxLayout(box);
    Imports = new QTreeWidget(box);
    Imports->setObjectName("ImportList");
    Imports->setColumnCount(4);
    Imports->setHeaderLabels({"Lump", "Type", "Index", "File"});
    Imports->setRootIsDecorated(false);
    Imports->setUniformRowHeights(true);
    Imports->setAllColumnsShowFocus(true);
    Imports->setSelectionMode(QAbstractItemView::ExtendedSelection);
    Imports->setTextElideMode(Qt::ElideMiddle);
    Imports->setFont(QFont("Monospace"));
    Imports->setColumnWidth(0, 100);
    Imports->setColumnWidth(1, 90);
    Imports->setColumnWidth(2, 60);
    layout->addWidget(Imports, 1);
    auto* row = new QHBoxLayout();
    auto* add = ToolButton("&Add Files...", box);
    auto* remove = ToolButton("R&emove", box);
    auto* rename = ToolButton("Re&name", box);
    connect(add, &QPushButton::clicked, this, &MergeDialog::AddFiles);
    connect(remove, &QPushButton::clicked, this, &MergeDialog::RemoveImports);
    connect(rename, &QPushButton::clicked, this, &MergeDialog::RenameImport);
    row->addWidget(add);
    row->addWidget(remove);
    row->addWidget(rename);
    row->addStretch();
    ImportCount = new QLabel(box);
    ImportCount->setObjectName("ImportCount");
    row->addWidget(ImportCount);
    layout->addLayout(row);
    AddKey(Imports, Qt::Key_Delete, [this] { RemoveImports(); });
    AddKey(Imports, Qt::Key_F2, [this] { RenameImport(); });
    return box;
}

QWidget* MergeDialog::BuildOptions()
{
    auto* strip = new QWidget(this);
    auto* layout = new QHBoxLayout(strip);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* target = new QGroupBox("Target Options", strip);
    auto* targetLayout = new QGridLayout(target);
    IwadHeader = new QRadioButton("Save IWAD header", target);
    PwadHeader = new QRadioButton("Save PWAD header", target);
    SortTextures = new QCheckBox("Sort &Textures", target);
    AllowDuplicates = new QCheckBox("Allow D&uplicates", target);
    targetLayout->addWidget(IwadHeader, 0, 0);
    targetLayout->addWidget(PwadHeader, 1, 0);
    targetLayout->addWidget(SortTextures, 0, 1);
    targetLayout->addWidget(AllowDuplicates, 1, 1);
    layout->addWidget(target);

    auto* import = new QGroupBox("Import Options", strip);
    auto* importLayout = new QGridLayout(import);
    auto* kinds = new QButtonGroup(import);
    const auto& choices = lumps::PictureKindChoices();
    for (std::size_t i = 0; i < choices.size(); ++i)
    {
        PictureKinds[i] = new QRadioButton(choices[i].Label, import);
        kinds->addButton(PictureKinds[i]);
        importLayout->addWidget(PictureKinds[i], static_cast<int>(i % 2), static_cast<int>(i / 2));
    }
    Formats = new QLabel(import);
    Formats->setObjectName("Formats");
    importLayout->addWidget(Formats, 0, 4, 2, 1, Qt::AlignRight | Qt::AlignVCenter);
    importLayout->setColumnStretch(4, 1);
    layout->addWidget(import, 1);
    return strip;
}

// The options as the session holds them, into the boxes.
void MergeDialog::ShowOptions()
{
    const lumps::MergeOptions& options = Merge.Options;
    (options.Magic == "IWAD" ? IwadHeader : PwadHeader)->setChecked(true);
    SortTextures->setChecked(options.SortTextures);
    AllowDuplicates->setChecked(options.AllowDuplicates);
    const auto& choices = lumps::PictureKindChoices();
    for (std::size_t i = 0; i < choices.size(); ++i)
    {
        PictureKinds[i]->setChecked(choices[i].Kind == options.PictureKind);
    }
    const lumps::ExportSettings& settings = lumps::Exports().Settings;
    Formats->setText(QString("Sounds as %1\nMusic as %2")
                         .arg(QString::fromStdString(settings.AutoSoundFormat),
                              QString::fromStdString(settings.AutoMusicFormat)));
}

// The boxes into the session's options.
void MergeDialog::ReadOptions()
{
    lumps::MergeOptions& options = Merge.Options;
    options.Magic = IwadHeader->isChecked() ? "IWAD" : "PWAD";
    options.SortTextures = SortTextures->isChecked();
    options.AllowDuplicates = AllowDuplicates->isChecked();
    const auto& choices = lumps::PictureKindChoices();
    for (std::size_t i = 0; i < choices.size(); ++i)
    {
        if (PictureKinds[i]->isChecked())
        {
            options.PictureKind = choices[i].Kind;
        }
    }
    lumps::ApplyImportSettings(options);
}

void MergeDialog::Refresh()
{
    TargetFile->setText(FileLine(Merge.Target));
    TargetBox->setTitle(QString("Target: %1 entries").arg(Merge.Target.Entries.size()));
    const int selected = Merge.Selected;
    Targets->ShowRows(Merge.Target, lumps::TargetRows(Merge.Target), selected);
    Merge.Selected = Targets->CurrentHead();
    const QList<QTreeWidgetItem*> chosen = Imports->selectedItems();
    const int current = Imports->currentIndex().row();
    Imports->clear();
    QList<QTreeWidgetItem*> items;
    for (const lumps::ImportRow& row : Merge.Imports)
    {
        const std::array<std::string, 4> columns = lumps::ImportRowColumns(row);
        auto* item = new QTreeWidgetItem(
            {QString::fromStdString(columns[1]), QString::fromStdString(columns[3]),
             QString::fromStdString(columns[2]), QString::fromStdString(columns[0])});
        item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(3, QString::fromStdString(columns[0]));
        items.push_back(item);
    }
    Imports->addTopLevelItems(items);
    if (current >= 0 && current < Imports->topLevelItemCount() && !chosen.empty())
    {
        Imports->setCurrentItem(Imports->topLevelItem(current));
    }
    ImportCount->setText(QString("%1 rows").arg(Merge.Imports.size()));
}

void MergeDialog::OpenTarget()
{
    const std::optional<std::filesystem::path> file =
        lumps::AskWadFile("Select Target PWAD", Merge.Target.File);
    if (!file || !lumps::ConfirmLeave(Merge.Target, false))
    {
        return;
    }
    ReadOptions();
    if (lumps::OpenMergeTarget(Merge, *file) != 1)
    {
        // A file that can't be read is no target: Save must not write over it.
        Merge.Target = lumps::TargetList();
    }
    Merge.Options.Magic = Merge.Target.Magic == "IWAD" ? "IWAD" : "PWAD";
    ShowOptions();
    Refresh();
}

void MergeDialog::NewTarget()
{
    const std::optional<std::filesystem::path> file =
        lumps::AskNewWadFile("New Target PWAD", Merge.Target.File);
    if (!file || !lumps::ConfirmLeave(Merge.Target, false))
    {
        return;
    }
    // A file of that name is replaced: the list starts empty, and Save keeps the old file as
    // its .BAK.
    ReadOptions();
    std::error_code error;
    Merge.Target = lumps::TargetList();
    Merge.Target.File = *file;
    Merge.Target.DirectoryChanged = std::filesystem::exists(*file, error);
    Merge.Selected = -1;
    Merge.Options.Magic = "PWAD";
    ShowOptions();
    Refresh();
}

void MergeDialog::RunCommand(lumps::TargetCommand command)
{
    Merge.Selected = lumps::RunTargetCommand(Merge.Target, command, Targets->CurrentHead());
    Refresh();
    Targets->setFocus();
}

void MergeDialog::VerifyPnames()
{
    (void)lumps::VerifyPnames(Merge);
}

void MergeDialog::AddFiles()
{
    ReadOptions();
    const std::size_t before = Merge.Imports.size();
    if (lumps::AskAddInputFiles(Merge) > 0)
    {
        Refresh();
        Imports->setCurrentItem(Imports->topLevelItem(static_cast<int>(before)));
        Imports->setFocus();
    }
}

void MergeDialog::RemoveImports()
{
    std::vector<int> rows;
    for (QTreeWidgetItem* item : Imports->selectedItems())
    {
        rows.push_back(Imports->indexOfTopLevelItem(item));
    }
    if (lumps::RemoveImportRows(Merge, rows) > 0)
    {
        Refresh();
    }
}

void MergeDialog::RenameImport()
{
    QTreeWidgetItem* item = Imports->currentItem();
    const int row = item != nullptr && item->isSelected() ? Imports->indexOfTopLevelItem(item) : -1;
    if (lumps::AskRenameImportRow(Merge, row) == 1)
    {
        Refresh();
    }
}

void MergeDialog::Save()
{
    ReadOptions();
    RewriteEditorFile(Merge.Target.File,
                      [this]
                      {
                          const int saved = lumps::SaveMergeReleased(Merge);
                          Refresh();
                          return saved;
                      });
}

void MergeDialog::OpenOptions()
{
    if (LumpOptionsDialog::Ask(this))
    {
        ShowOptions();
    }
}

void MergeDialog::reject()
{
    if (lumps::ConfirmLeave(Merge.Target, !Merge.Imports.empty()))
    {
        QDialog::reject();
    }
}

void OpenMergeDialog(QWidget* parent)
{
    MergeDialog dialog(parent);
    dialog.exec();
}

} // namespace kelvar::app
