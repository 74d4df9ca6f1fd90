// The TestOptions dialog: the game's program, directory, warp, parameters and switches of
// Test Level.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "run/TestOptions.h"
#include "run/ui/DialogFields.h"

#include <QDialog>
#include <string>

class QFormLayout;

namespace kelvar::run
{

/// Edits a copy of the options; Options() gives them back with the dialog's values.
class TestOptionsDialog final : public QDialog
{
    Q_OBJECT

public:
    /// `info` is the line naming the PWAD and the level (" level - ").
    TestOptionsDialog(const TestOptions& options, const std::string& info,
                      QWidget* parent = nullptr);

    /// The options the dialog was opened with, with the values its fields hold now.
    TestOptions Options() const;

private:
    QLineEdit* AddPathRow(QFormLayout* form, const QString& label, const QString& name,
                          const std::string& value, bool directory);

    TestOptions Original;
    QLineEdit* GameExe = nullptr;
    QLineEdit* GameDirectory = nullptr;
    QLineEdit* WarpText = nullptr;
    QLineEdit* ExtraParameters = nullptr;
    QSpinBox* Skill = nullptr;
    QSpinBox* Turbo = nullptr;
    SwitchBoxes<TestOptions> Switches;
};

/// Shows the dialog over `parent`; with OK the values go into `options` and the result is
/// true, Cancel leaves them and gives false.
bool EditTestOptions(QWidget* parent, TestOptions& options, const std::string& info);

} // namespace kelvar::run
