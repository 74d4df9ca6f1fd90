// What the lump tools' windows share: the target list view, their buttons, file lines and keys,
// and the editor's files around a rewrite of one of them.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lumps/TargetList.h"
#include "lumps/ToolLists.h"

#include <QBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

namespace kelvar::app
{

/// A target list as rows: name, size and type, a level as one row. With check boxes, a row's
/// box tells whether it is selected to stay.
class TargetListView final : public QTreeWidget
{
    Q_OBJECT

public:
    explicit TargetListView(bool checkable, QWidget* parent = nullptr);

    /// Shows `rows` of `list` in that order; `selected` tells each row's box (checkable views).
    /// The current row stays on the entry `head` when it still heads a row.
    void ShowRows(const lumps::TargetList& list, const std::vector<lumps::TargetRow>& rows,
                  int head, const std::function<bool(const lumps::TargetRow&)>& selected = {});

    /// The entry heading the current row; -1 when no row is current and selected.
    int CurrentHead() const;
    /// Makes the row headed by `head` current (none for -1).
    void SelectHead(int head);

signals:
    /// A row's box was changed by the user.
    void RowChecked(int head, bool checked);

private:
    bool Checkable;
    bool Filling = false;
};

/// A button of a tool window: Enter in a list never presses it.
QPushButton* ToolButton(const QString& text, QWidget* parent);

/// The command buttons of a target list, one under another in `column`: Rename, Delete, Insert,
/// Move, Up and Dn, then Clear when `withClear`; `run` runs the command. Gives Up and Dn.
std::pair<QPushButton*, QPushButton*>
AddTargetCommandButtons(QBoxLayout* column, QWidget* parent, bool withClear,
                        const std::function<void(lumps::TargetCommand)>& run);

/// A window's file line: a sunken panel whose text can be selected, taking the row's spare
/// width.
QLabel* FileLineLabel(const QString& objectName, QWidget* parent);

/// A key of a list, working while the list has the focus.
void AddKey(QWidget* list, const QKeySequence& key, const std::function<void()>& act);

/// The keys of a target list's commands: F2 renames, Delete deletes, Insert inserts, Ctrl+Up
/// and Ctrl+Down move a row; `run` runs the command.
void AddTargetCommandKeys(QWidget* list, const std::function<void(lumps::TargetCommand)>& run);

/// A tool's rewrite of `file`: when the editor has it open, first the unsaved-changes question
/// (nothing is written when the user stays), then `write`, which gives 1 when it wrote the file;
/// the editor then reads its files and its level again, the view kept where it is.
void RewriteEditorFile(const std::filesystem::path& file, const std::function<int()>& write);

/// A WAD's file name with its header, for a window's file line: "%s  (%s)", the header being
/// "new file" for a file with none yet; "(none)" when no file is chosen.
QString FileLine(const lumps::TargetList& list);

} // namespace kelvar::app
