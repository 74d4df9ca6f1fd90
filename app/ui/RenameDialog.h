// The rename window: a PWAD's entries as a list to rename, delete, insert and move, each row's
// box telling whether it is written back, and the sort of the list.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/RenameSession.h"
#include "lumps/ToolLists.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QRadioButton;

namespace kelvar::app
{

class TargetListView;

/// "Rename Dialog Lump": the file's rows with their boxes, the name commands, Sort Asis and
/// Sort Alpha, and Save, which writes the rows selected to stay. Leaving with changes not
/// written asks first.
class RenameDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit RenameDialog(lumps::RenameSession session, QWidget* parent = nullptr);

    lumps::RenameSession& Session() { return Rename; }
    TargetListView* List() const { return Rows; }

    // What the buttons do.
    void OpenFile();
    void RunCommand(lumps::TargetCommand command);
    void SetSortAlpha(bool alpha);
    void SelectAll(bool selected);
    void Save();

    /// Shows the session again.
    void Refresh();

public slots:
    void reject() override;

private:
    void RowChecked(int head, bool checked);
    void ShowCount();

    lumps::RenameSession Rename;
    QLabel* File = nullptr;
    TargetListView* Rows = nullptr;
    QLabel* Count = nullptr;
    QRadioButton* Asis = nullptr;
    QRadioButton* Alpha = nullptr;
    QPushButton* Up = nullptr;
    QPushButton* Down = nullptr;
};

} // namespace kelvar::app
