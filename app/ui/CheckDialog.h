// The level checker's windows: the dialog of check buttons, its options page, and the error
// list that stays open to browse the findings.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "check/CheckControl.h"

#include <QDialog>
#include <QWidget>
#include <array>
#include <filesystem>
#include <vector>

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace kelvar::app
{

/// The error list: one line per entry; a click on an entry shows its object. It stays open
/// after the checker's dialog closes.
class ErrorListWindow final : public QWidget
{
    Q_OBJECT

public:
    explicit ErrorListWindow(QWidget* parent = nullptr);

    /// Shows these entries, replacing what was shown.
    void SetEntries(const std::vector<check::Finding>& entries);
    const std::vector<check::Finding>& Entries() const { return Shown; }

    /// Removes the selected entry ("&Remove Error").
    void RemoveSelected();
    /// Writes the list as text into `file`; false when it could not be written.
    bool SaveAsText(const std::filesystem::path& file) const;

private:
    void ShowEntry(int row);
    void AskAndSave();

    QListWidget* List = nullptr;
    std::vector<check::Finding> Shown;
};

/// "CheckOpt": a box for each option of the checks and the shortest line to check.
class CheckOptionsDialog final : public QDialog
{
    Q_OBJECT

public:
    CheckOptionsDialog(check::CheckSettings& settings, QWidget* parent = nullptr);

protected:
    void accept() override;

private:
    check::CheckSettings& Settings;
    std::vector<std::pair<QCheckBox*, bool check::CheckSettings::*>> Boxes;
    QSpinBox* ShortestLine = nullptr;
};

/// "CheckControl": the check buttons, the error list option, the options and Exit.
class CheckDialog final : public QDialog
{
    Q_OBJECT

public:
    CheckDialog(ErrorListWindow& errorList, QWidget* parent = nullptr);

    /// Presses a check button as a click does.
    void Press(check::CheckButton button);
    /// The button of a check, for tests.
    QPushButton* ButtonOf(check::CheckButton button) const;
    /// The dialog's message field.
    QString MessageText() const;
    check::CheckSession& Session() { return Checks; }

    /// True when the dialog was closed by its Statistics button.
    bool StatisticsAsked() const { return Statistics; }

    /// Runs the dialog modally (the checks run inside it); true when it closed by its
    /// Statistics button.
    static bool Open(ErrorListWindow& errorList, QWidget* parent);

private:
    void OpenOptions();

    check::CheckSettings Settings;
    check::CheckSession Checks;
    ErrorListWindow& ErrorList;
    std::array<QPushButton*, 16> Buttons{};
    QCheckBox* LogOption = nullptr;
    QLabel* Message = nullptr;
    bool Statistics = false;
};

} // namespace kelvar::app
