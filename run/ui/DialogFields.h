// The fields both test dialogs are built of: path edits, number boxes, and check boxes bound
// to the flags of the record a dialog edits.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "wad/WadState.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSpinBox>
#include <string>
#include <utility>
#include <vector>

namespace kelvar::run
{

/// A line edit named `name` holding `value`, as long as a path of the status records may be.
inline QLineEdit* PathEdit(const QString& name, const std::string& value)
{
    auto* edit = new QLineEdit(QString::fromStdString(value));
    edit->setObjectName(name);
    edit->setMaxLength(static_cast<int>(wad::MaxRecordPathLength));
    return edit;
}

/// A spin box named `name` from `low` to `high`, showing `value`.
inline QSpinBox* NumberBox(const char* name, int low, int high, int value)
{
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(low, high);
    box->setValue(value);
    return box;
}

/// A switch of a dialog: its text, its widget's name and the flag of the record it sets.
template <class Record> struct SwitchRow
{
    const char* Text;
    const char* Name;
    bool Record::*Field;
};

/// The check boxes of a dialog's switches, each bound to its flag of the record.
template <class Record> class SwitchBoxes
{
public:
    /// A check box for `row`, checked as `record` has the flag; the caller lays it out.
    QCheckBox* Add(const SwitchRow<Record>& row, const Record& record)
    {
        auto* box = new QCheckBox(row.Text);
        box->setObjectName(row.Name);
        box->setChecked(record.*row.Field);
        Boxes.emplace_back(box, row.Field);
        return box;
    }

    /// Sets each flag of `record` as its box is checked now.
    void Store(Record& record) const
    {
        for (const auto& [box, field] : Boxes)
        {
            record.*field = box->isChecked();
        }
    }

private:
    std::vector<std::pair<QCheckBox*, bool Record::*>> Boxes;
};

} // namespace kelvar::run
