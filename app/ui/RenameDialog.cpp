// The rename window: a PWAD's rows, the name commands, the sort and the rows written back.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/RenameDialog.h"

#include "app/ui/LumpTools.h"
#include "app/ui/MergeDialogParts.h"
#include "lumps/ToolFiles.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>
#include <tuple>

namespace kelvar::app
{
RenameDialog::RenameDialog(lumps::RenameSession session, QWidget* parent)
    : QDialog(parent), Rename(std::move(session))
{
    setWindowTitle("Rename Dialog Lump");
    setObjectName("RenameDialog");
    auto* layout = new QVBoxLayout(this);

    auto* fileRow = new QHBoxLayout();
    fileRow->addWidget(new QLabel("PWAD:", this));
    File = FileLineLabel("File", this);
    fileRow->addWidget(File, 1);
    auto* open = ToolButton("&Open PWAD...", this);
    connect(open, &QPushButton::clicked, this, &RenameDialog::OpenFile);
    fileRow->addWidget(open);
    layout->addLayout(fileRow);

    auto* body = new QHBoxLayout();
    Rows = new TargetListView(true, this);
    Rows->setObjectName("RenameList");
    connect(Rows, &TargetListView::RowChecked, this, &RenameDialog::RowChecked);
    body->addWidget(Rows, 1);
    auto* column = new QVBoxLayout();
    std::tie(Up, Down) = AddTargetCommandButtons(
        column, this, false, [this](lumps::TargetCommand command) { RunCommand(command); });
    column->addSpacing(12);
    auto* sort = new QGroupBox("Sort", this);
    auto* sortLayout = new QVBoxLayout(sort);
    Asis = new QRadioButton("Sort &Asis", sort);
    Alpha = new QRadioButton("Sort Al&pha", sort);
    (Rename.SortAlpha ? Alpha : Asis)->setChecked(true);
    sortLayout->addWidget(Asis);
    sortLayout->addWidget(Alpha);
    connect(Alpha, &QRadioButton::toggled, this, &RenameDialog::SetSortAlpha);
    column->addWidget(sort);
    column->addSpacing(12);
    auto* all = ToolButton("Select A&ll", this);
    auto* none = ToolButton("Select Non&e", this);
    connect(all, &QPushButton::clicked, this, [this] { SelectAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { SelectAll(false); });
    column->addWidget(all);
    column->addWidget(none);
    column->addStretch();
    body->addLayout(column);
    layout->addLayout(body, 1);

    auto* bottom = new QHBoxLayout();
    Count = new QLabel(this);
    Count->setObjectName("Count");
    bottom->addWidget(Count, 1);
    auto* save = ToolButton("&Save", this);
    save->setObjectName("Save");
    auto* exit = ToolButton("E&xit", this);
    connect(save, &QPushButton::clicked, this, &RenameDialog::Save);
    connect(exit, &QPushButton::clicked, this, &RenameDialog::reject);
    bottom->addWidget(save);
    bottom->addWidget(exit);
    layout->addLayout(bottom);

    AddTargetCommandKeys(Rows, [this](lumps::TargetCommand command) { RunCommand(command); });

    Refresh();
    resize(620, 600);
}

void RenameDialog::Refresh()
{
    File->setText(FileLine(Rename.List));
    Rows->ShowRows(Rename.List, lumps::ListedRows(Rename), Rows->CurrentHead(),
                   [this](const lumps::TargetRow& row) { return lumps::RowSelected(Rename, row); });
    // Moving a row one place means nothing in a list sorted by name.
    Up->setEnabled(!Rename.SortAlpha);
    Down->setEnabled(!Rename.SortAlpha);
    ShowCount();
}

void RenameDialog::ShowCount()
{
    Count->setText(QString("%1 of %2 entries selected to stay; the file holds %3")
                       .arg(lumps::SelectedEntries(Rename))
                       .arg(Rename.List.Entries.size())
                       .arg(Rename.StartCount));
}

void RenameDialog::RowChecked(int head, bool checked)
{
    for (const lumps::TargetRow& row : lumps::TargetRows(Rename.List))
    {
        if (row.First == static_cast<std::size_t>(head))
        {
            lumps::SelectRow(Rename, row, checked);
        }
    }
    ShowCount();
}

void RenameDialog::OpenFile()
{
    lumps::RenameSession next;
    next.SortAlpha = Rename.SortAlpha;
    next.List.File = Rename.List.File;
    if (!lumps::ConfirmLeaveRename(Rename) || lumps::AskOpenRenameSession(next) != 1)
    {
        return;
    }
    Rename = std::move(next);
    Refresh();
}

void RenameDialog::RunCommand(lumps::TargetCommand command)
{
    const int head = lumps::RunTargetCommand(Rename.List, command, Rows->CurrentHead());
    Refresh();
    Rows->SelectHead(head);
    Rows->setFocus();
}

void RenameDialog::SetSortAlpha(bool alpha)
{
    Rename.SortAlpha = alpha;
    Refresh();
}

void RenameDialog::SelectAll(bool selected)
{
    lumps::SelectAllRows(Rename, selected);
    Refresh();
}

void RenameDialog::Save()
{
    if (Rename.List.File.empty())
    {
        return;
    }
    RewriteEditorFile(Rename.List.File,
                      [this]
                      {
                          const int saved = lumps::SaveRenameSession(Rename);
                          Refresh();
                          return saved;
                      });
}

void RenameDialog::reject()
{
    if (lumps::ConfirmLeaveRename(Rename))
    {
        QDialog::reject();
    }
}

void OpenRenameDialog(QWidget* parent)
{
    lumps::RenameSession session;
    if (lumps::AskOpenRenameSession(session) != 1)
    {
        return;
    }
    RenameDialog dialog(std::move(session), parent);
    dialog.exec();
}

} // namespace kelvar::app
