// What the lump tools' windows share: the target list view, buttons, the editor's files.
// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/ui/MergeDialogParts.h"

#include "app/Modes.h"
#include "app/Session.h"
#include "lumps/ToolFiles.h"
#include "lumps/ToolLists.h"

#include <QHeaderView>
#include <QShortcut>
#include <span>

namespace kelvar::app
{

TargetListView::TargetListView(bool checkable, QWidget* parent)
    : QTreeWidget(parent), Checkable(checkable)
{
    setColumnCount(3);
    setHeaderLabels({"Lump", "Size", "Type"});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setFont(QFont("Monospace"));
    header()->setStretchLastSection(true);
    header()->setSectionResizeMode(0, QHeaderView::Interactive);
    setColumnWidth(0, checkable ? 130 : 110);
    setColumnWidth(1, 80);
    connect(this, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item, int column)
            {
                if (!Filling && Checkable && column == 0)
                {
                    emit RowChecked(item->data(0, Qt::UserRole).toInt(),
                                    item->checkState(0) == Qt::Checked);
                }
            });
}

void TargetListView::ShowRows(const lumps::TargetList& list,
                              const std::vector<lumps::TargetRow>& rows, int head,
                              const std::function<bool(const lumps::TargetRow&)>& selected)
{
    Filling = true;
    clear();
    const std::vector<lumps::TargetRowText> texts = lumps::TargetRowTexts(list, rows);
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (std::size_t r = 0; r < rows.size(); ++r)
    {
        auto* item = new QTreeWidgetItem({QString::fromStdString(texts[r].Name),
                                          QString::number(texts[r].Size),
                                          QString::fromStdString(texts[r].Type)});
        item->setData(0, Qt::UserRole, static_cast<int>(rows[r].First));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
        if (Checkable)
        {
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            item->setCheckState(0, !selected || selected(rows[r]) ? Qt::Checked : Qt::Unchecked);
        }
        items.push_back(item);
    }
    addTopLevelItems(items);
    Filling = false;
    SelectHead(head);
}

int TargetListView::CurrentHead() const
{
    const QTreeWidgetItem* item = currentItem();
    return item != nullptr && item->isSelected() ? item->data(0, Qt::UserRole).toInt() : -1;
}

void TargetListView::SelectHead(int head)
{
    for (int i = 0; i < topLevelItemCount(); ++i)
    {
        QTreeWidgetItem* item = topLevelItem(i);
        if (head >= 0 && item->data(0, Qt::UserRole).toInt() == head)
        {
            setCurrentItem(item);
            scrollToItem(item);
            return;
        }
    }
    clearSelection();
}

QPushButton* ToolButton(const QString& text, QWidget* parent)
{
    auto* button = new QPushButton(text, parent);
    button->setAutoDefault(false);
    return button;
}

std::pair<QPushButton*, QPushButton*>
AddTargetCommandButtons(QBoxLayout* column, QWidget* parent, bool withClear,
                        const std::function<void(lumps::TargetCommand)>& run)
{
    std::vector<std::pair<const char*, lumps::TargetCommand>> commands = {
        {"&Rename", lumps::TargetCommand::Rename}, {"&Delete", lumps::TargetCommand::Delete},
        {"&Insert", lumps::TargetCommand::Insert}, {"&Move", lumps::TargetCommand::Move},
        {"Up", lumps::TargetCommand::Up},          {"Dn", lumps::TargetCommand::Down},
    };
    if (withClear)
    {
        commands.emplace_back("C&lear", lumps::TargetCommand::Clear);
    }
    std::pair<QPushButton*, QPushButton*> upDown{};
    for (const auto& [text, command] : commands)
    {
        auto* button = ToolButton(text, parent);
        const lumps::TargetCommand which = command;
        QObject::connect(button, &QPushButton::clicked, parent, [run, which] { run(which); });
        if (which == lumps::TargetCommand::Up)
        {
            button->setToolTip("Ctrl+Up");
            upDown.first = button;
        }
        else if (which == lumps::TargetCommand::Down)
        {
            button->setToolTip("Ctrl+Down");
            upDown.second = button;
        }
        column->addWidget(button);
    }
    return upDown;
}

QLabel* FileLineLabel(const QString& objectName, QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setFrameShape(QFrame::Panel);
    label->setFrameShadow(QFrame::Sunken);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    return label;
}

void AddKey(QWidget* list, const QKeySequence& key, const std::function<void()>& act)
{
    auto* shortcut = new QShortcut(key, list);
    shortcut->setContext(Qt::WidgetShortcut);
    QObject::connect(shortcut, &QShortcut::activated, list, act);
}

void AddTargetCommandKeys(QWidget* list, const std::function<void(lumps::TargetCommand)>& run)
{
    AddKey(list, Qt::Key_F2, [run] { run(lumps::TargetCommand::Rename); });
    AddKey(list, Qt::Key_Delete, [run] { run(lumps::TargetCommand::Delete); });
    AddKey(list, Qt::Key_Insert, [run] { run(lumps::TargetCommand::Insert); });
    AddKey(list, Qt::CTRL | Qt::Key_Up, [run] { run(lumps::TargetCommand::Up); });
    AddKey(list, Qt::CTRL | Qt::Key_Down, [run] { run(lumps::TargetCommand::Down); });
}

void RewriteEditorFile(const std::filesystem::path& file, const std::function<int()>& write)
{
    if (lumps::AnyOpenInEditor({file}) && !ContinueWithUnsavedChanges())
    {
        return;
    }
    const bool openInEditor = lumps::OpenInEditor(file);
    if (write() == 1 && openInEditor)
    {
        (void)ReloadAllFiles(true);
    }
}

QString FileLine(const lumps::TargetList& list)
{
    if (list.File.empty())
    {
        return "(none)";
    }
    return QString("%1  (%2)")
        .arg(QString::fromStdString(list.File.string()),
             QString::fromStdString(list.Magic.empty() ? std::string("new file") : list.Magic));
}

} // namespace kelvar::app
